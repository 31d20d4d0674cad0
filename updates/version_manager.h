// The check for newer versions: when the next one is due, by the user's preferences, and what the last one found.
// A program that starts, or begins to check, when the last check is longer ago than the interval checks after a second.
// Any other checks first a whole interval after its start: with an interval of a week, up to two weeks after the last
// check. A check that failed is made again an interval later. While the machine sleeps the timer's clock stands still.
// Kept: a last check in the future, stored while the clock was wrong, is not overdue until then, and gotVersionInfo()
// stays true: a program that never runs for a whole interval does not check.
// A program makes one manager at most: each has a timer of its own that tells the application.
// For one thread, whose run loop ticks the timer and is served while a fetch waits.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/date.h"
#include "platform/object.h"
#include "platform/settings_store.h"
#include "platform/timer.h"
#include "platform/value.h"
#include "updates/version_document.h"
#include "updates/version_numbers.h"

namespace SharedClasses {

class VersionManager : public VersionNumbers {
 public:
  // The manager that was made last, or, where that is gone, the library's own, made at first need and never destroyed.
  [[nodiscard]] static VersionManager& sharedVersionManager();

  // The object of the program that performs "autoCheckVersions" when a check is due; null, as at the start, for none.
  static void setApplicationObject(platform::ObjectPointer application);

  // `init`
  // Reads the running program's own version, becomes the shared manager and starts the timer (syncToPrefs).
  VersionManager();
  VersionManager(const VersionManager&) = delete;
  VersionManager& operator=(const VersionManager&) = delete;
  // `dealloc`
  // Stops the timer.
  ~VersionManager();

  // Brings the timer in line with the preferences "checkForAppUpdates" and "updatesCheckInterval": to be called
  // whenever they change. A new timer ticks on the calling thread's run loop at every interval; first after a second
  // where the last check is longer ago than the interval, otherwise one interval from now. One whose interval has not
  // changed goes on as it was. Numbers below one second, and the one that is not a number, count as one second; more
  // than 100 years as these, though not to nextCheck(); a text as the whole number above 0 that it begins with ("2.5"
  // as 2); all else, booleans too, as the default of a week.
  // Kept: there is a timer only where Preferences::booleanOf reads a yes: a wish that is absent, in spite of its
  // default, or any other word is a no.
  void syncToPrefs();

  // Fetches the document and evaluates it. Only the agent does: -1, and nothing else, in any other program, where a
  // callback asks this manager while it waits, and where one destroys it meanwhile. A failed fetch gives its result
  // (updates/url_fetcher.h), an empty answer -1; nothing changes then, and a check that was due stays due. Otherwise
  // the check is done, what is newer is kept, and the time is stored. Waits up to 4 seconds, and for callbacks
  // meanwhile. Asks at the text under "keyLatestVersionURL", "?fromVersion=" and the main bundle's "CFBundleVersion".
  // Kept: nothing in these is escaped: a version with a blank makes each check fail, one with "#", "&" or "[1-2]" asks
  // for something else, and an address with a "?" gets a second one.
  // Kept: the request states the bundle's version of now, what is newer goes by selfVersionStruct().
  // Kept: any answer that is not empty is a check that was done, be it no document: the page of an error, the login
  // page of a hotel, a text that is too long. It offers nothing, so what an earlier check found is gone, and the next
  // check is an interval away.
  // Kept: the result of a check that was done is that of the last comparison of versions, 1, 0 or -1, and says nothing.
  // Ask gotVersionInfo() and newerVersions().
  [[nodiscard]] std::int32_t retrieveVersionInfo();

  // Whether this manager has done a check, and the stored time of the last one is no longer ago than the interval. Once
  // false for its age it stays so until the next check. True also for an answer that was no document.
  [[nodiscard]] bool gotVersionInfo();

  // The entries that are newer than the running program (newerVersionsOf says in which order); absent where no check
  // was done, or gotVersionInfo() has found the last one too old.
  [[nodiscard]] std::optional<platform::Value::List> newerVersions() const;

  // The version as the entry shows it to the user, however old the last check is; absent where that found none.
  [[nodiscard]] std::optional<std::string> releaseVersString() const;
  [[nodiscard]] std::optional<std::string> updateVersString() const;
  [[nodiscard]] std::optional<std::string> testVersString() const;

  // What "CFBundleVersion" of the main bundle said when the manager was made; 0.0 without it: any release is newer.
  [[nodiscard]] const VersionStruct& selfVersionStruct() const { return mSelfVersionStruct; }
  // Whether that has a stage letter.
  [[nodiscard]] bool weAreTest() const { return mSelfVersionStruct.stage != 0; }

  // The periodic timer; null while nothing is to be checked.
  [[nodiscard]] const std::shared_ptr<platform::Timer>& timer() const { return mTimer; }

  // When, by `settings`, the next check is due: an interval after the last one, or after the reference date where none
  // was made yet; absent while nothing is to be checked. Only a program that is started after that time checks at once,
  // after a second; one that runs already checks when its timer ticks next, which may be up to an interval later.
  // Counts no program start and stores nothing; safe on any thread.
  [[nodiscard]] static std::optional<platform::Date> nextCheck(const platform::SettingsStore& settings);

 private:
  void stopTimer();

  bool mGotVersionInfo = false;
  std::string mSelfVersionStr;
  VersionStruct mSelfVersionStruct;
  VersionDocument mDocument;  // that was evaluated last
  platform::Value::List mNewerVersions;
  std::shared_ptr<platform::Timer> mTimer;
  std::shared_ptr<bool> mAlive = std::make_shared<bool>(true);  // goes with the manager
  std::weak_ptr<bool> mRetrieval;                               // goes with the call that fetches
};

}  // namespace SharedClasses
