#include "shared/preferences.h"

#include <gtest/gtest.h>
#include <pwd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <thread>

#include "platform/machine_location.h"
#include "system/processes/process_detection.h"
#include "tests/support/fork.h"
#include "tests/support/memory_store.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::tests {

using platform::Value;

// A machine whose location, settings and desktop are the test's own. Puts no variable back: no other test relies on
// them.
class PreferencesTest : public testing::Test {
 protected:
  PreferencesTest() {
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "XDG_DATA_HOME", "XDG_DATA_DIRS"}) {
      ::setenv(name, mHome.path().c_str(), 1);
    }
  }
  ~PreferencesTest() override { platform::setMachineLocation(std::nullopt); }

  TemporaryFolder mHome;
  StandardStore mStore;
};

// What the GUI and the agent expect to find, in the order of the table that they were written against.
constexpr std::string_view kFirstStart =
    "runCount=1; runs24-7=NO; runsAsRoot=NO; checkForAppUpdates=YES; updatesCheckInterval=604800; "
    "timeOfLastVersionCheck=0; setupAssistanceWanted=YES; scheduleSetInEffect=0; logCommandsSent=YES; "
    "logCommandsHeard=YES; logTimestamps=YES; limitLogs=YES; logLimit=20; logTimestampFormat=mac; useMacLocation=YES; "
    "latitudeDegrees=33; latitudeMinutes=52; latitudeSeconds=2; longitudeDegrees=151; longitudeMinutes=12; "
    "longitudeSeconds=25; latitudeNS=S; longitudeWE=E; sunTolerance=10; daylightSavingsUpdateClocks=YES; "
    "daylightSavingsStoreFreshSchedule=YES; daylightSavingsReminder=NO; respondToVoiceCmds=NO; "
    "announcementVoice=com.apple.speech.synthesis.voice.Vicki; enableDashboardWidget=NO; enableYahooWidget=NO; "
    "enableUSBAccess=NO; enableDesktopRemote=NO; enableWebCGI=NO; enableSpotlight=NO; enableSherlock=NO; "
    "enableVoiceModems=NO; enableX10QuorraServer=NO; X10QuorraServerPort=6003; VeltaroServerPort=6004; "
    "scriptEditor=/usr/share/applications/AppleScript/Script Editor; lastInterfaceTypeUsed=CM-15; "
    "lastDeviceTypeUsed=LM-467; lastLogSearchString=; lastHouseCodeUsed=A; lastGoodAgentPath=; "
    "rowIndexOfLastScheduleSelected=0; columnsShownInListView=name,id; lastViewInMainWindow=list; "
    "lastSortColumnInMainWindow=name; lastSortDirectionInMainWindow=ascending; columnOrderInMainWindow=name,id; "
    "lastPrefTabSelected=general; widthOfSchedulesList=132.0; heightOfSchedulesList=78.0; latestDateSeen=; "
    "pathToDataModel=~/Library/Application Support/Marlow Home/Hardware & Schedules.xml; hardwarePrintInfo=(null); "
    "schedulePrintInfo=(null); gadgetGuidePrintInfo=(null); logPrintInfo=(null); temperatureUnits=F; "
    "pressureUnits=mBar; attributeLifetime=300.0; attributeRefreshInterval=600.0; attributeRefreshWanted=YES; ";

TEST_F(PreferencesTest, FirstStartWritesEveryDefaultOnce) {
  platform::setMachineLocation({{-33.8675, 151.2070}});
  const Preferences preferences;
  const std::string home = ::getpwuid(::geteuid())->pw_dir;
  std::string written;
  for (const std::string& key : mStore->written) {
    const Value value = mStore->value(key);
    std::string text = value.description() + (value.type() == Value::Type::Real ? ".0" : "");
    if (text.starts_with(home)) {
      text.replace(0, home.size(), "~");
    }
    written += key + "=" + text + "; ";
    EXPECT_EQ(value, Preferences::defaultValue(key)) << key;
    EXPECT_TRUE(value.isAbsent() || value.type() == Preferences::typeOfDefault(key)) << key;
  }
  EXPECT_EQ(written, kFirstStart);
  EXPECT_TRUE(preferences.isFirstRun());
  EXPECT_EQ(mStore->synchronizations, 1);
}

TEST_F(PreferencesTest, ScriptsOpenInTheEditorThatTheDesktopNames) {
  const std::string editor = mHome.writeProgram("bin/edit");
  mHome.write("mimeapps.list", "[Default Applications]\ntext/plain=edit.desktop\n");
  mHome.write("applications/edit.desktop", "[Desktop Entry]\nType=Application\nName=Edit\nExec=" + editor + " %F\n");
  EXPECT_EQ(Preferences::defaultValue("scriptEditor"), Value(editor));
}

TEST_F(PreferencesTest, EveryStartIsCounted) {
  const std::tuple<const char*, Value, std::int64_t, bool> rows[] = {
      {"first", {}, 1, true},
      {"second", 1, 2, false},
      {"less than none", -5, -4, true},
      {"the largest number", INT64_MAX, INT64_MAX, false},
      {"a text that goes on", " 7 starts", 8, false},
      {"a list", Value::List{7}, 1, true},
  };
  for (const auto& [name, before, after, isFirst] : rows) {
    SCOPED_TRACE(name);
    const StandardStore store({{"runCount", before}});
    const Preferences preferences;
    EXPECT_EQ(preferences.get("runCount"), Value(after));
    EXPECT_EQ(preferences.isFirstRun(), isFirst);
    EXPECT_EQ(store->settings.size(), before.isAbsent() ? 62U : 1U);
  }
}

TEST_F(PreferencesTest, ResetLeavesKeysWithoutADefaultAlone) {
  const StandardStore store({{"runCount", 9}, {"temperatureUnits", "K"}, {"logPrintInfo", 1}, {"useGrowl", true}});
  Preferences preferences;
  preferences.reset();
  EXPECT_TRUE(preferences.isFirstRun());
  EXPECT_EQ(Preferences::preferredUnits(), (Value::Dictionary{{"temperature", "F"}, {"pressure", "mBar"}}));
  EXPECT_TRUE(preferences.get("logPrintInfo").isAbsent());
  EXPECT_EQ(preferences.get("useGrowl"), Value(true));
  EXPECT_EQ(store->synchronizations, 1);
}

TEST_F(PreferencesTest, ThePlaceIsReadBackToTheSecondAndTheEquatorAsSouth) {
  platform::setMachineLocation({{40.4476, -79.9826}});
  Preferences preferences;
  EXPECT_EQ(preferences.get("latitudeNS"), Value("N"));
  EXPECT_EQ(preferences.get("longitudeWE"), Value("W"));
  EXPECT_NEAR(*preferences.get("latitude").realValue(), 40.4476, 1.0 / 3600);
  EXPECT_NEAR(*preferences.get("longitude").realValue(), -79.9826, 1.0 / 3600);
  platform::setMachineLocation({{0, 0}});
  preferences.reset();
  EXPECT_TRUE(std::signbit(*preferences.get("latitude").realValue()));
  EXPECT_EQ(preferences.get("longitudeWE"), Value("E"));
}

TEST_F(PreferencesTest, CoordinatesAreReadLeniently) {
  const MemoryStore mended({{"latitudeDegrees", 40.9}, {"latitudeMinutes", "26'"}, {"latitudeNS", "S"}});
  EXPECT_NEAR(*Preferences::valueInStore(mended, "latitude").realValue(), -40.433333333, 1e-9);
  const MemoryStore rubbish({{"latitude", 12.5}, {"latitudeDegrees", Value::List{4}}, {"latitudeNS", 5}});
  EXPECT_EQ(Preferences::valueInStore(rubbish, "latitude"), Value(0.0));
}

TEST_F(PreferencesTest, LaterOnesAreSharedAndTheEarlierReadWhatTheyDoNotWrite) {
  Preferences earlier;
  {
    const StandardStore store;
    const Preferences later;
    EXPECT_EQ(gPreferences, &later);
    earlier.setForKey(5, "sunTolerance");
    EXPECT_EQ(later.get("sunTolerance"), Value(5));
    EXPECT_EQ(earlier.get("sunTolerance"), Value(10));
    earlier.setForKey({}, "sunTolerance");
    EXPECT_TRUE(later.get("sunTolerance").isAbsent());
    earlier.setForKey(5, "");
    EXPECT_TRUE(later.get("").isAbsent());
    earlier.setFirstRunHandled();
    EXPECT_FALSE(later.firstRunHandled());
  }
  EXPECT_EQ(gPreferences, nullptr) << "nothing is left of the later ones";
}

TEST_F(PreferencesTest, FirstUseOnManyThreadsMakesOneAndCountsOneStart) {
  mStore->settings = {{"runCount", 7}};
  EXPECT_EQ(statusInFork([] {
              std::vector<std::jthread> threads;
              for (int i = 0; i < 8; ++i) {
                threads.emplace_back([] { static_cast<void>(Preferences::sharedPreferences()); });
              }
              threads.clear();  // waits for them
              return static_cast<int>(*gPreferences->get("runCount").integerValue());
            }),
            8);
}

TEST_F(PreferencesTest, RootUsesTheSettingsOfTheUserWhomTheAgentServes) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only root can";
  }
  if (Utilities::marlowUser() == "nobody") {  // started by the lines below
    EXPECT_EQ(Preferences::storeOfServedUser(), platform::SettingsStore::ofUser("nobody"));
    return;
  }
  EXPECT_EQ(Preferences::storeOfServedUser(), platform::SettingsStore::standard());
  const auto filter = std::string("--gtest_filter=*.") + testing::UnitTest::GetInstance()->current_test_info()->name();
  const auto again = [&] { return ::execl("/proc/self/exe", "tests", filter.c_str(), "-user", "nobody", nullptr); };
  EXPECT_EQ(statusInFork(again), 0);
}

}  // namespace SharedClasses::tests
