#include "updates/version_manager.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/bundle.h"
#include "platform/clock.h"
#include "platform/exceptions.h"
#include "platform/log.h"
#include "platform/run_loop.h"
#include "shared/constants.h"
#include "shared/preferences.h"
#include "system/processes/process_detection.h"
#include "updates/url_fetcher.h"
#include "wording/localized_strings.h"

namespace SharedClasses {

namespace {

using platform::Value;

constexpr std::int32_t kNothingRetrieved = -1;
constexpr double kFetchTimeout = 4.0;      // seconds
constexpr double kShortestInterval = 1.0;  // seconds

VersionManager* sVersionManager = nullptr;  // the shared one; null until there is one, and again once it is destroyed

platform::ObjectPointer& applicationObject() {
  static auto* const sApplication = new platform::ObjectPointer;  // never destroyed: timers may tick until the end
  return *sApplication;
}

std::optional<std::string> textUnder(const Value::Dictionary& entry, std::string_view key) {
  const auto found = entry.find(key);
  const std::string* const text = found == entry.end() ? nullptr : found->second.text();
  return text == nullptr ? std::nullopt : std::optional(*text);
}

std::string bundleVersion() {
  const Value version = platform::Bundle::main().infoValue("CFBundleVersion");
  return version.text() == nullptr ? std::string() : *version.text();
}

// What the settings say about checks.
struct Schedule {
  bool isWanted;
  double interval;   // seconds between two checks
  double lastCheck;  // seconds since the reference date; 0 for none yet

  explicit Schedule(const platform::SettingsStore& settings)
      : isWanted(
            Preferences::booleanOf(Preferences::valueInStore(settings, kPrefKeyCheckForNewVersions)).value_or(false)),
        interval(std::max(intervalIn(settings), kShortestInterval)),
        lastCheck(numberOf(Preferences::valueInStore(settings, kPrefKeyTimeOfLastVersionCheck))) {}
  Schedule() : Schedule(*std::shared_ptr(Preferences::sharedPreferences().userDefaults())) {}

  [[nodiscard]] bool hasRunOut() const {
    return platform::Clock::current().now().secondsSinceReference - lastCheck > interval;
  }

 private:
  // 0 for what is no number.
  static double numberOf(const Value& value) {
    const double number = value.realValue().value_or(static_cast<double>(Preferences::integerOf(value)));
    return std::isnan(number) ? 0.0 : number;
  }

  // The default where nothing is stored, a word or a boolean: nobody means to ask every second by that.
  static double intervalIn(const platform::SettingsStore& settings) {
    const Value stored = Preferences::valueInStore(settings, kPrefKeyVersionCheckInterval);
    const bool isNumber = stored.isNumber() && stored.type() != Value::Type::Boolean;
    const bool isText = stored.text() != nullptr && Preferences::integerOf(stored) > 0;
    return numberOf(isNumber || isText ? stored : Preferences::defaultValue(kPrefKeyVersionCheckInterval));
  }
};

void tellApplication() {
  const platform::ObjectPointer application = applicationObject();
  if (application == nullptr) {
    return;
  }
  const std::optional<std::string> thrown =
      platform::nameOfThrown([&] { static_cast<void>(application->performSelector("autoCheckVersions", {})); });
  if (thrown) {
    platform::log("autoCheckVersions threw " + *thrown + '.');
  }
}

}  // namespace

VersionManager& VersionManager::sharedVersionManager() {
  if (sVersionManager == nullptr) {
    static auto* const sOwn = new VersionManager;
    sVersionManager = sOwn;
  }
  return *sVersionManager;
}

void VersionManager::setApplicationObject(platform::ObjectPointer application) {
  std::swap(applicationObject(), application);  // the former one goes when all is in place
}

VersionManager::VersionManager() : mSelfVersionStr(bundleVersion()) {
  static_cast<void>(stringToVersion(mSelfVersionStr, &mSelfVersionStruct));
  syncToPrefs();
  sVersionManager = this;  // last: nobody takes back what a constructor that throws has shared
}

VersionManager::~VersionManager() {
  stopTimer();
  if (sVersionManager == this) {
    sVersionManager = nullptr;
  }
}

void VersionManager::syncToPrefs() {
  const Schedule schedule;
  if (!schedule.isWanted) {
    stopTimer();
    return;
  }
  const std::chrono::nanoseconds span =
      std::min(platform::spanOfSeconds(schedule.interval), platform::kLongestTimerInterval);
  if (mTimer != nullptr && mTimer->isValid() && mTimer->interval() == span) {
    return;
  }
  stopTimer();
  platform::RunLoop& loop = platform::RunLoop::current();
  mTimer = loop.addTimer(span, [](platform::Timer&) { tellApplication(); });
  if (schedule.hasRunOut()) {
    mTimer->setNextFiring(loop.clock().steadyTime() + std::chrono::seconds(1));
  }
}

std::int32_t VersionManager::retrieveVersionInfo() {
  if (!mRetrieval.expired() || !Utilities::appIsAgent()) {
    return kNothingRetrieved;
  }
  mSelfVersionStr = bundleVersion();
  const std::string address(Utilities::viewOfString("keyLatestVersionURL"));
  const std::weak_ptr<bool> alive = mAlive;
  const auto retrieval = std::make_shared<bool>(true);
  mRetrieval = retrieval;
  URLFetcher fetcher;
  const std::int32_t result =
      fetcher.startURLRequest({.url = address + "?fromVersion=" + mSelfVersionStr, .withTimeout = kFetchTimeout});
  if (alive.expired()) {
    return kNothingRetrieved;  // what ran while the fetch waited has destroyed this manager
  }
  if (result != URLFetcher::kFinished) {
    return result;
  }
  const std::optional<std::string> text = fetcher.textReturned();
  if (!text || text->empty()) {
    return kNothingRetrieved;
  }
  mDocument = versionDocumentFromText(*text);
  NewerVersions newer = newerVersionsOf(mDocument, mSelfVersionStruct);
  mNewerVersions = std::move(newer.entries);
  mGotVersionInfo = true;
  Preferences::sharedPreferences().setForKey(platform::Clock::current().now().secondsSinceReference,
                                             kPrefKeyTimeOfLastVersionCheck);
  return newer.lastComparison;
}

bool VersionManager::gotVersionInfo() {
  if (mGotVersionInfo && Schedule().hasRunOut()) {
    mGotVersionInfo = false;
  }
  return mGotVersionInfo;
}

std::optional<Value::List> VersionManager::newerVersions() const {
  return mGotVersionInfo ? std::optional(mNewerVersions) : std::nullopt;
}

std::optional<std::string> VersionManager::releaseVersString() const {
  return textUnder(mDocument.release, "string");
}

std::optional<std::string> VersionManager::updateVersString() const {
  return textUnder(mDocument.update, "string");
}

std::optional<std::string> VersionManager::testVersString() const {
  return textUnder(mDocument.test, "string");
}

std::optional<platform::Date> VersionManager::nextCheck(const platform::SettingsStore& settings) {
  const Schedule schedule(settings);
  return schedule.isWanted ? std::optional(platform::Date{schedule.lastCheck + schedule.interval}) : std::nullopt;
}

void VersionManager::stopTimer() {
  if (mTimer != nullptr) {
    mTimer->invalidate();
    mTimer = nullptr;
  }
}

}  // namespace SharedClasses
