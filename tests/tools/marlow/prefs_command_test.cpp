// The settings at the command line: what one run of the tool sets, the next one sees.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temporary_folder.h"
#include "tests/support/tool.h"

namespace SharedClasses::tests {
namespace {

struct Prefs : testing::Test {
  ToolResult run(std::vector<std::string> arguments, std::string_view input = {}) const {
    return runTool(std::move(arguments), input, home.path());
  }
  const TemporaryFolder home;
};

TEST_F(Prefs, SetsValuesOfTheRightTypeAndRefusesOthers) {
  struct Row {
    const char* name;
    std::vector<std::string> arguments;  // behind set --json
    const char* said;                    // a part of the output or of the complaint
    int exitCode = 0;
  };
  const Row rows[] = {
      {"marks of the file's own", {"logLimit", "1</integer><integer>2"}, "<integer>2\" is no integer", 1},
      {"one beyond 64 bits", {"logLimit", "9223372036854775808"}, "is no integer of 64 bits", 1},
      {"number below 0 for an option", {"logLimit", "-3"}, "stands behind --", 2},
      {"integer for a real", {"attributeLifetime", "60"}, "\"type\":\"real\",\"value\":60"},
      {"real that is not finite", {"attributeLifetime", "nan"}, "is no number", 1},
      {"boolean in words", {"limitLogs", "No"}, "\"type\":\"boolean\",\"value\":false"},
      {"boolean of another number", {"limitLogs", "2"}, "is neither yes nor no", 1},
      {"unknown key", {"color", "4"}, "\"type\":\"string\",\"value\":\"4\""},
      {"with a type", {"--type", "integer", "--", "offset", "-4"}, "\"type\":\"integer\",\"value\":-4"},
      {"type of the present value", {"offset", "0x10"}, "\"type\":\"integer\",\"value\":16"},
      {"date", {"--type=date", "born", "2024-02-29T01:02:03Z"}, "\"value\":\"2024-02-29T01:02:03Z\""},
      {"data", {"logPrintInfo", "<0aff>"}, "\"type\":\"data\",\"value\":[10,255]"},
      {"text that no file can hold", {"color", "\x01"}, "cannot carry", 1},
      {"computed key", {"latitude", "40"}, "\"latitude\": computed from latitudeDegrees", 1},
      {"empty key", {"", "40"}, "not a key", 1},
      {"type that cannot be typed", {"--type", "list", "x", "1"}, "--type is", 2},
      {"no value", {"x"}, "write marlow prefs", 2},
  };
  for (Row row : rows) {
    SCOPED_TRACE(row.name);
    row.arguments.insert(row.arguments.begin(), {"prefs", "set", "--json"});
    const ToolResult result = run(row.arguments);
    EXPECT_EQ(result.exitCode, row.exitCode) << result.complaints;
    EXPECT_NE((result.output + result.complaints).find(row.said), std::string::npos) << result.output;
    if (row.exitCode == 0) {
      EXPECT_EQ(run({"prefs", "get", "--json", row.arguments[row.arguments.size() - 2]}).output, result.output);
    }
  }
  EXPECT_TRUE(run({"prefs", "list"}).output.starts_with("limitLogs                           boolean     NO\n"));
  EXPECT_TRUE(run({"prefs", "list"}).output.ends_with("\noffset                              integer     16\n"));
}

TEST_F(Prefs, LookingChangesNothingAndResetAndUnsetSayWhatTheyChanged) {
  EXPECT_EQ(run({"prefs", "list"}).output, "");
  const ToolResult missing = run({"prefs", "get", "temperatureUnits", "latitude"});
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_EQ(missing.output, "");
  EXPECT_NE(missing.complaints.find("\"temperatureUnits\": not set; the default is \"F\""), std::string::npos);
  run({"listen"}, "2026-06-01T18:05:00 x10 A1 2\n");
  EXPECT_TRUE(std::filesystem::is_empty(home.path()));
  EXPECT_TRUE(run({"prefs", "path"}).output.starts_with(home.path()));

  EXPECT_EQ(run({"prefs", "reset"}).output, "66 settings are as on a first start; 62 of them were not before\n");
  EXPECT_EQ(run({"prefs", "unset", "logLimit", "nothing"}).exitCode, 1);
  EXPECT_EQ(run({"prefs", "reset", "--json"}).output.substr(0, 24), "{\"changed\":[\"logLimit\"],");
}

TEST_F(Prefs, GiveListenItsUnitsAndTimesUnlessItIsToldOtherwise) {
  const std::string input = "2026-06-01T18:10:01 onewire e9000005e2fdc328 91014b467fff0c1070\n";
  const std::string sentence = "The 1-Wire thermometer e9:00:00:05:e2:fd:c3:28 reads ";
  run({"prefs", "set", "temperatureUnits", "C"});
  EXPECT_EQ(run({"listen"}, input).output, "2026-06-01 18:10:01  " + sentence + "25.06 °C.\n");
  run({"prefs", "set", "logTimestamps", "no"});
  EXPECT_EQ(run({"listen", "--units", "F"}, input).output, sentence + "77.11 °F.\n");
  run({"prefs", "set", "--type", "string", "logTimestamps", "No "});
  EXPECT_EQ(run({"listen", "--units", "F"}, input).output, sentence + "77.11 °F.\n");
  run({"prefs", "set", "temperatureUnits", "R"});
  const ToolResult usual = run({"listen"}, input);
  EXPECT_EQ(usual.output, sentence + "77.11 °F.\n");
  EXPECT_NE(usual.complaints.find("\"R\", none of C, F and K"), std::string::npos) << usual.complaints;
}

TEST_F(Prefs, ReadWhatPeopleHaveMendedAndTellWhatTheyHaveBroken) {
  run({"prefs", "set", "--", "-user", "nobody"});
  EXPECT_EQ(run({"prefs", "get", "--", "-user"}).output, "nobody\n") << "a word for the agent means nothing here";
  run({"prefs", "set", "latitudeNS", "S"});
  EXPECT_EQ(run({"prefs", "get", "latitude"}).output, "0\n");
  run({"prefs", "set", "--type", "string", "latitudeDegrees", "99999999999"});
  EXPECT_EQ(run({"prefs", "get", "latitude"}).output, "-99999999999\n");
  const std::string complaints = run({"sun", "--utc"}).complaints;
  EXPECT_NE(complaints.find("latitudeDegrees"), std::string::npos) << complaints;
  home.write(".config/marlow/preferences.plist", "<plist>");
  const ToolResult broken = run({"prefs", "list"});
  EXPECT_EQ(broken.exitCode, 2);
  EXPECT_EQ(broken.complaints.find("nothing is set"), std::string::npos) << broken.complaints;
}

}  // namespace
}  // namespace SharedClasses::tests
