#include "updates/version_manager.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <thread>

#include "platform/run_loop.h"
#include "shared/preferences.h"
#include "tests/support/captured_log.h"
#include "tests/support/hand_moved_clock.h"
#include "tests/support/http_server.h"
#include "tests/support/main_bundle.h"
#include "tests/support/memory_store.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::tests {
namespace {

using platform::RunLoop;
using platform::Value;
using std::chrono::nanoseconds;
using std::chrono::seconds;

// The object of the program: counts the checks that it is told to make.
struct Application : platform::Object {
  [[nodiscard]] std::string className() const override { return "Application"; }
  [[nodiscard]] bool respondsToSelector(std::string_view selector) const override {
    return selector == "autoCheckVersions";
  }
  Value performSelector(std::string_view selector, std::span<const Value> arguments) override {
    checks += respondsToSelector(selector) && arguments.empty() ? 1 : 0;
    throw std::runtime_error("no matter");
  }
  int checks = 0;
};

// A program's settings, clock and resources, and the thread that it runs on.
class VersionManagerTest : public testing::Test {
 protected:
  VersionManagerTest() { platform::Clock::setCurrent(&mClock); }
  ~VersionManagerTest() override {
    VersionManager::setApplicationObject(nullptr);
    platform::Clock::setCurrent(nullptr);
  }

  // On a thread whose run loop goes by the clock.
  void run(const std::function<void()>& test) {
    std::thread([&] {
      VersionManager::setApplicationObject(mApplication);
      const Preferences preferences;
      test();
      EXPECT_EQ(RunLoop::current().untilNextTimer(), std::nullopt) << "a timer is left";
    }).join();
  }
  void set(const Value& wanted, const Value& interval, const Value& lastCheck = 0) {
    mStore->set("checkForAppUpdates", wanted);
    mStore->set("updatesCheckInterval", interval);
    mStore->set("timeOfLastVersionCheck", lastCheck);
  }
  // How many checks are due at the end of `span`, and none before.
  int checksAfter(nanoseconds span) {
    const int before = mApplication->checks;
    mClock.move(span - nanoseconds(1));
    EXPECT_FALSE(RunLoop::current().runOnce({})) << "early";
    mClock.move(nanoseconds(1));
    while (RunLoop::current().runOnce({})) {
    }
    return mApplication->checks - before;
  }

  CapturedLog mLog;
  StandardStore mStore{{{"runCount", 5}}};
  HandMovedClock mClock;
  const std::shared_ptr<Application> mApplication = std::make_shared<Application>();
};

TEST_F(VersionManagerTest, TheFirstCheckComesAtOnceWhenOverdueAndEachFurtherOneAfterTheInterval) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const double kNaN = std::numeric_limits<double>::quiet_NaN();
  const double now = 1'000'000;
  const struct {
    const char* name;
    Value wanted, interval, lastCheck;
    nanoseconds first{0}, further{0};  // 0: no timer
  } kRows[] = {
      {"not wanted", false, 3600, 0},
      {"nothing set", {}, {}, {}},
      {"never checked", true, 3600, 0, seconds(1), seconds(3600)},
      {"overdue by a second", true, 3600, now - 3601, seconds(1), seconds(3600)},
      {"just not overdue", true, 3600, now - 3600, seconds(3600), seconds(3600)},
      {"checked in the future", true, 3600, now + 9e9, seconds(3600), seconds(3600)},
      {"time of the last check no number", true, 3600, kNaN, seconds(1), seconds(3600)},
      {"interval with a fraction", true, 2.5, now, std::chrono::milliseconds(2500), std::chrono::milliseconds(2500)},
      {"interval negative", true, -5, now, seconds(1), seconds(1)},
      {"interval no number", true, kNaN, now, seconds(1), seconds(1)},
      {"no interval", true, {}, now, std::chrono::weeks(1), std::chrono::weeks(1)},
      {"interval a word", true, "weekly", now, std::chrono::weeks(1), std::chrono::weeks(1)},
      {"interval a text", true, "3600", now, seconds(3600), seconds(3600)},
      {"interval without end", true, kInfinity, 0, std::chrono::years(100), std::chrono::years(100)},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    mClock.move(seconds(1'000'000) - (mClock.steadyTime() - std::chrono::hours(1)));
    set(row.wanted, row.interval, row.lastCheck);
    run([&] {
      const VersionManager manager;
      ASSERT_EQ(manager.timer() != nullptr, row.first > nanoseconds(0));
      if (manager.timer() != nullptr) {
        EXPECT_EQ(checksAfter(row.first), 1);
        EXPECT_EQ(checksAfter(row.further), 1);
      }
    });
  }
  EXPECT_EQ(mLog.messages().at(0), "autoCheckVersions threw std::runtime_error.");
}

TEST_F(VersionManagerTest, ChangedPreferencesTakeEffectWhenSynced) {
  set(true, 3600);
  run([&] {
    VersionManager manager;
    EXPECT_EQ(checksAfter(seconds(3600)), 1);
    const auto first = manager.timer();
    set(true, 3600.0, -1e9);
    manager.syncToPrefs();
    EXPECT_EQ(manager.timer(), first) << "same interval: the grid stays, overdue or not";
    set(true, 60, 3600);
    manager.syncToPrefs();
    EXPECT_EQ(checksAfter(seconds(60)), 1);
    VersionManager::setApplicationObject(nullptr);
    EXPECT_EQ(checksAfter(seconds(60)), 0);
    set("no", 60);
    manager.syncToPrefs();
    EXPECT_EQ(manager.timer(), nullptr);
    EXPECT_EQ(VersionManager::nextCheck(*mStore.operator->()), std::nullopt);
    set("yes", 60, 100);
    manager.syncToPrefs();
    EXPECT_EQ(VersionManager::nextCheck(*mStore.operator->()), platform::Date{160});
    EXPECT_NE(manager.timer(), nullptr);
  });
}

TEST_F(VersionManagerTest, OnlyTheAgentChecksAndOnlyAnAnswerCounts) {
  const std::string document =
      "<dict><key>release</key><dict><key>version</key><string>2.1</string><key>string</key><string>Two</string></dict>"
      "<key>test</key><dict><key>version</key><string>2.2a1</string></dict></dict>";
  HTTPServer server([&](const HTTPServer::Connection& connection) {
    const bool isOwn = connection.requestLine == "GET /v?fromVersion=2.0b3 HTTP/1.1";
    static_cast<void>(connection.send(httpAnswer(isOwn ? document : "<dict/>")));
  });
  const HTTPServer empty(httpAnswer("")), page(httpAnswer("<html>not here", "404 Not Found"));
  HTTPServer gone(httpAnswer(document));
  gone.stop();
  const struct {
    const char* name;
    std::string signature;
    std::string url;
    std::int32_t result;
    std::optional<std::size_t> newer;  // how many; absent when nothing is to have changed
  } kRows[] = {
      {"the GUI", "QZV2", server.url("/v"), -1, std::nullopt}, {"empty answer", "QZ2d", empty.url(), -1, std::nullopt},
      {"server gone", "QZ2d", gone.url(), -1, std::nullopt},   {"no address", "QZ2d", "", -1, std::nullopt},
      {"page of an error", "QZ2d", page.url(), -1, 0},         {"document", "QZ2d", server.url("/v"), 1, 2},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    TemporaryFolder folder;
    folder.write("Info.plist", "<plist><dict><key>CFBundleSignature</key><string>" + row.signature +
                                   "</string><key>CFBundleVersion</key><string>2.0b3</string></dict></plist>");
    folder.write("English.lproj/Localizable.strings", "\"keyLatestVersionURL\" = \"" + row.url + "\";\n");
    const MainBundle bundle(folder.path());
    set(false, 3600, -50);
    run([&] {
      VersionManager manager;
      EXPECT_TRUE(manager.weAreTest());
      EXPECT_EQ(manager.retrieveVersionInfo(), row.result);
      EXPECT_EQ(manager.gotVersionInfo(), row.newer.has_value());
      ASSERT_EQ(manager.newerVersions().has_value(), row.newer.has_value());
      const double now = mClock.now().secondsSinceReference;
      EXPECT_EQ(mStore->value("timeOfLastVersionCheck"), row.newer ? Value(now) : Value(-50));
      if (row.newer) {
        EXPECT_EQ(manager.newerVersions()->size(), *row.newer);
        EXPECT_EQ(manager.releaseVersString(), *row.newer > 0 ? std::optional<std::string>("Two") : std::nullopt);
        mClock.move(seconds(3600));
        EXPECT_TRUE(manager.gotVersionInfo());
        mClock.move(seconds(1));
        EXPECT_TRUE(manager.newerVersions().has_value()) << "nobody has asked yet";
        EXPECT_FALSE(manager.gotVersionInfo());
        EXPECT_EQ(manager.newerVersions(), std::nullopt);
      }
    });
  }
}

TEST_F(VersionManagerTest, TheNewestIsSharedAndMayEndWhileItFetches) {
  const HTTPServer server(httpAnswer("<dict/>"));
  TemporaryFolder folder;
  folder.write("Info.plist", "<plist><dict><key>CFBundleSignature</key><string>QZ2d</string></dict></plist>");
  folder.write("English.lproj/Localizable.strings", "\"keyLatestVersionURL\" = \"" + server.url() + "\";\n");
  const MainBundle bundle(folder.path());
  run([&] {
    const VersionManager older;
    auto newest = std::make_unique<VersionManager>();
    EXPECT_EQ(&VersionManager::sharedVersionManager(), newest.get());
    RunLoop::current().call([&] { newest.reset(); });
    EXPECT_EQ(newest->retrieveVersionInfo(), -1);
    EXPECT_EQ(newest, nullptr);
    EXPECT_TRUE(mStore->value("timeOfLastVersionCheck").isAbsent());
  });
}

}  // namespace
}  // namespace SharedClasses::tests
