#include "updates/version_manager.h"

#include <gtest/gtest.h>

#include <cmath>
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

// A program by its bundle: the agent, unless its signature is another.
struct Program : TemporaryFolder {
  explicit Program(const std::string& url, const std::string& version = "2.0b3",
                   const std::string& signature = "QZ2d") {
    write("Info.plist", "<plist><dict><key>CFBundleSignature</key><string>" + signature +
                            "</string><key>CFBundleVersion</key><string>" + version + "</string></dict></plist>");
    write("English.lproj/Localizable.strings", "\"keyLatestVersionURL\" = \"" + url + "\";\n");
    bundle.emplace(path());
  }
  std::optional<MainBundle> bundle;
};

std::string entry(const std::string& name, const std::string& version) {
  return "<key>" + name + "</key><dict><key>version</key><string>" + version + "</string><key>string</key><string>V" +
         version + "</string></dict>";
}

HTTPServer::Answer says(const std::string& body, const std::string& status = "200 OK") {
  return [=](const HTTPServer::Connection& connection) { connection.send(httpAnswer(body, status)); };
}

// The versions that are newer, and behind a colon the texts of release, update and test: "2.1 : V2.1 - -". Begins with
// a question mark where no answer was evaluated, or too long ago.
std::string told(VersionManager& manager) {
  std::string text = manager.gotVersionInfo() ? "" : "? ";
  EXPECT_EQ(manager.newerVersions().has_value(), text.empty());
  for (const Value& one : manager.newerVersions().value_or(Value::List())) {
    text += *one.find("version")->text() + ' ';
  }
  return text + ": " + manager.releaseVersString().value_or("-") + ' ' + manager.updateVersString().value_or("-") +
         ' ' + manager.testVersString().value_or("-");
}

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
  const double now = 1'000'000;
  constexpr std::chrono::weeks kWeek(1);
  // The settings, and the spans to the first check and the second.
  const std::tuple<const char*, Value, Value, nanoseconds, nanoseconds> kRows[] = {
      {"all for the first time", {}, {}, seconds(1), kWeek},
      {"never checked", 3600, 0, seconds(1), seconds(3600)},
      {"overdue by a second", 3600, now - 3601, seconds(1), seconds(3600)},
      {"just not overdue", 3600, now - 3600, seconds(3600), seconds(3600)},
      {"checked in the future", 3600, now + 9e9, seconds(3600), seconds(3600)},
      {"time of the last check no number", 3600, NAN, seconds(1), seconds(3600)},
      {"interval with a fraction", 2.5, now, std::chrono::milliseconds(2500), std::chrono::milliseconds(2500)},
      {"interval negative", -5, now, seconds(1), seconds(1)},
      {"interval no number", NAN, now, seconds(1), seconds(1)},
      {"interval a yes", true, now, kWeek, kWeek},
      {"interval a word", "weekly", now, kWeek, kWeek},
      {"interval a text", "3600", now, seconds(3600), seconds(3600)},
      {"interval without end", HUGE_VAL, 0, std::chrono::years(100), std::chrono::years(100)},
  };
  for (const auto& [name, interval, lastCheck, first, further] : kRows) {
    SCOPED_TRACE(name);
    mClock.move(seconds(1'000'000) - (mClock.steadyTime() - std::chrono::hours(1)));
    set(true, interval, lastCheck);
    run([this, first = first, further = further] {
      const VersionManager manager;
      EXPECT_EQ(checksAfter(first), 1);
      EXPECT_EQ(checksAfter(further), 1);
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
    for (const Value& unwanted : {Value("no"), Value(false), Value()}) {
      set(unwanted, 60);
      manager.syncToPrefs();
      EXPECT_EQ(manager.timer(), nullptr);
      EXPECT_EQ(VersionManager::nextCheck(*mStore.operator->()), std::nullopt);
    }
    set("yes", 60, 100);
    manager.syncToPrefs();
    EXPECT_EQ(VersionManager::nextCheck(*mStore.operator->()), platform::Date{160});
    EXPECT_NE(manager.timer(), nullptr);
  });
}

TEST_F(VersionManagerTest, OnlyTheAgentChecksAndEveryAnswerWithATextCounts) {
  const std::string entries = entry("update", "2.0.1") + entry("release", "2.1") + entry("test", "2.2b1");
  const std::string all = "<dict>" + entries + "</dict>", none = "? : - - -", noEntry = ": - - -";
  std::string deep = "<true/>";
  while (deep.size() < 250'000) {
    deep = "<array>" + deep + "</array>";
  }
  struct {
    const char* name;
    HTTPServer::Answer answer;
    std::string told;
    std::int32_t result = -1;
    const char* signature = "QZ2d";
    std::optional<std::string> address = std::nullopt;  // absent for the server's
    pid_t check = -1;
  } rows[] = {
      {"all entries", says(all), "2.0.1 2.1 2.2b1 : V2.1 V2.0.1 V2.2b1", 1},
      {"no entry", says("<dict/>"), noEntry},
      {"placeholders", says("<dict>" + entry("release", "2.1") + entry("test", "placeholder") + "</dict>"),
       "2.1 : V2.1 - Vplaceholder"},
      {"page of an error", says("<html>not here", "404 Not Found"), noEntry},
      {"redirect", says("<dict>" + entry("update", "2.1") + "</dict>", "302 Found\r\nLocation: /"), "2.1 : - V2.1 -"},
      {"not XML", says("2.1"), noEntry},
      {"entities", says("<!DOCTYPE plist [<!ENTITY a \"\"><!ENTITY b \"&a;&a;\">]><plist>" + all + "</plist>"),
       noEntry},
      {"deep nesting", says("<dict><key>k</key>" + deep + entries + "</dict>"), noEntry},
      {"empty answer", says(""), none},
      {"broken UTF-8", says("<dict>" + entry("update", "2.1\xFF") + "</dict>"), none},
      {"drip", HTTPServer::drip, none},
      {"endless body", HTTPServer::flood, none},
      {"silence", HTTPServer::staySilent, none},
      {"server gone", says(all), none, -1, "QZ2d", "http://127.0.0.1:1/v"},  // a port that no server is given by chance
      {"no address", says(all), none, -1, "QZ2d", ""},
      {"the GUI", says(all), none, -1, "QZV2"},
  };
  for (auto& row : rows) {  // all at once: some take their four seconds
    row.check = startInFork([&] {
      SCOPED_TRACE(row.name);
      const HTTPServer server([&](const HTTPServer::Connection& connection) {
        const bool isRight = connection.requestLine == "GET /v?fromVersion=2.0b3 HTTP/1.1";
        (isRight ? row.answer : says("<dict>" + entry("test", "9") + "</dict>"))(connection);
      });
      const Program program(row.address.value_or(server.url("/v")), "2.0b3", row.signature);
      set(false, 3600, -50);
      run([&] {
        VersionManager manager;
        EXPECT_TRUE(manager.weAreTest());
        EXPECT_EQ(manager.retrieveVersionInfo(), row.result);
        EXPECT_EQ(mStore->value("timeOfLastVersionCheck"), manager.gotVersionInfo() ? Value(0.0) : Value(-50));
        EXPECT_EQ(told(manager), row.told);
      });
      return HasFailure() ? 1 : 0;
    });
  }
  for (const auto& row : rows) {
    EXPECT_EQ(statusOfChild(row.check), 0) << row.name;
  }
}

TEST_F(VersionManagerTest, AnAnswerHoldsForAnIntervalWhateverFailsOrIsCalledMeanwhile) {
  const HTTPServer server([asked = 0](const HTTPServer::Connection& connection) mutable {
    const std::string documents[] = {"<dict>" + entry("update", "2.1") + "</dict>", "", "\xFF", "<dict/>"};
    says(documents[asked++ % 4])(connection);
  });
  const Program program(server.url(), "2.0");
  set(false, 3600);
  run([&] {
    const VersionManager& own = VersionManager::sharedVersionManager();
    auto manager = std::make_unique<VersionManager>();
    EXPECT_EQ(&VersionManager::sharedVersionManager(), manager.get());
    EXPECT_FALSE(manager->weAreTest());
    std::int32_t nested = 0;
    RunLoop::current().call([&] { nested = manager->retrieveVersionInfo(); });  // asks nobody
    for (int fetch = 0; fetch < 3; ++fetch) {
      EXPECT_EQ(manager->retrieveVersionInfo(), -1);
      mClock.move(seconds(1200));
      EXPECT_EQ(told(*manager), "2.1 : - V2.1 -");
    }
    EXPECT_EQ(nested, -1);
    mClock.move(seconds(1));
    EXPECT_TRUE(manager->newerVersions().has_value()) << "nobody has asked yet";
    EXPECT_EQ(told(*manager), "? : - V2.1 -");
    EXPECT_EQ(manager->retrieveVersionInfo(), -1);
    EXPECT_EQ(told(*manager), ": - - -");
    mClock.move(seconds(1));
    RunLoop::current().call([&] { manager.reset(); });
    EXPECT_EQ(manager->retrieveVersionInfo(), -1);
    EXPECT_EQ(manager, nullptr);
    EXPECT_EQ(mStore->value("timeOfLastVersionCheck"), Value(3601.0));
    EXPECT_EQ(&VersionManager::sharedVersionManager(), &own);
  });
}

}  // namespace
}  // namespace SharedClasses::tests
