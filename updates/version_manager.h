// The check for newer versions: when the next one is due, by the user's preferences, and what the last one found.
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

  // The object of the program that performs "autoCheckVersions" when a check is due; null, which is the start, for none.
  static void setApplicationObject(platform::ObjectPointer application);

  // `init`
  // Reads the running program's own version, becomes the shared manager and starts the timer (syncToPrefs).
  VersionManager();
  VersionManager(const VersionManager&) = delete;
  VersionManager& operator=(const VersionManager&) = delete;
  // `dealloc`
  // Stops the timer.
  ~VersionManager();

  // Brings the timer in line with the preferences "checkForAppUpdates" and "updatesCheckInterval": to be called whenever
  // they change. Without a wish to check there is no timer. A new one ticks on the calling thread's run loop, after a second
  // where the last check is longer ago than the interval. Intervals below one second, and the one that is not a
  // number, count as one second; nothing stored, and a word, as the default of a week.
  void syncToPrefs();

  // Fetches the document and evaluates it. Only the agent does: -1, and nothing else, in any other program, and where
  // a callback asks for it while this waits. A failed fetch
  // gives its result (updates/url_fetcher.h), an answer without text -1; nothing changes then, and a check that was due
  // stays due. Otherwise the check is done, what is newer is kept, and the time is stored. Waits up to 4 seconds.
  // Kept: the result of a check that was done is that of the last comparison of versions, 1, 0 or -1, and says nothing. Ask
  // gotVersionInfo() and newerVersions().
  [[nodiscard]] std::int32_t retrieveVersionInfo();

  // Whether a document was evaluated, and no longer ago than the interval between checks.
  [[nodiscard]] bool gotVersionInfo();

  // The entries that are newer than the running program (newerVersionsOf says in which order); absent where none was
  // evaluated, or gotVersionInfo() has found the last one too old.
  [[nodiscard]] std::optional<platform::Value::List> newerVersions() const;

  // The version as the entry shows it to the user; absent where the last document had none.
  [[nodiscard]] std::optional<std::string> releaseVersString() const;
  [[nodiscard]] std::optional<std::string> updateVersString() const;
  [[nodiscard]] std::optional<std::string> testVersString() const;

  // What "CFBundleVersion" of the main bundle said when the manager was made.
  [[nodiscard]] const VersionStruct& selfVersionStruct() const { return mSelfVersionStruct; }
  // Whether that has a stage letter.
  [[nodiscard]] bool weAreTest() const { return mSelfVersionStruct.stage != 0; }

  // The periodic timer; null while nothing is to be checked.
  [[nodiscard]] const std::shared_ptr<platform::Timer>& timer() const { return mTimer; }

  // When, by `settings`, the next check is due: an interval after the last one, or after the reference date where none was
  // made yet; absent while nothing is to be checked. Counts no program start and stores nothing; safe on any thread.
  [[nodiscard]] static std::optional<platform::Date> nextCheck(const platform::SettingsStore& settings);

 private:
  void stopTimer();

  bool mGotVersionInfo = false;
  bool mIsRetrieving = false;
  std::string mSelfVersionStr;
  VersionStruct mSelfVersionStruct;
  VersionDocument mDocument;  // that was evaluated last
  platform::Value::List mNewerVersions;
  std::shared_ptr<platform::Timer> mTimer;
  std::shared_ptr<bool> mAlive = std::make_shared<bool>(true);  // goes with the manager
};

}  // namespace SharedClasses
