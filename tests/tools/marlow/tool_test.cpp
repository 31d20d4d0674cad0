#include "tests/support/tool.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/temporary_folder.h"

namespace SharedClasses::tests {
namespace {

void expectParts(const std::string& text, const std::vector<std::string>& parts) {
  for (const std::string& part : parts) {
    EXPECT_NE(text.find(part), std::string::npos) << part << "\nnot in\n" << text;
  }
}

TEST(ToolExitCodes, TellWrongUseFromBadInput) {
  const struct {
    const char* name;
    std::vector<std::string> arguments;
    std::string input;
    int exitCode;
    std::string complaint;  // a part of it; empty for none at all
  } kRows[] = {
      {"help", {"--help"}, "", 0, ""},
      {"no command", {}, "", 2, ""},
      {"unknown command", {"frobnicate"}, "", 2, "no command \"frobnicate\""},
      {"unknown option", {"x10", "--colour"}, "", 2, "unknown option --colour"},
      {"option without its value", {"listen", "--devices"}, "", 2, "--devices needs a value"},
      {"missing file", {"listen", "/nonexistent"}, "", 2, "cannot be read"},
      {"a folder for a file", {"listen", "/"}, "", 2, "cannot be read"},
      {"input unreadable", {"run", "--", "/bin/sh", "-c", PROGRAM_FOLDER "/marlow size </"}, "", 1, "status 2"},
      {"missing devices", {"listen", "--devices", "/nonexistent"}, "", 2, "No such file"},
      {"good address", {"x10", "A1"}, "", 0, ""},
      {"one bad address of two", {"x10", "A1", "Q1"}, "", 1, "\"Q1\": no house letter"},
      {"address with a tail", {"x10", "A1B"}, "", 1, "more than a unit"},
      {"input of one line too long", {"x10", "-"}, std::string(70'000, ' ') + "x\n", 1, "standard input:1: the line"},
      {"addresses from standard input", {"insteon"}, "1a2b3c\n\n12 34\n", 1, "only hex digits"},
      {"log", {"log", "--action", "On", "lamp"}, "", 0, ""},
      {"log without an action", {"log"}, "", 2, "--action CODE is missing"},
      {"log of an amount that is none", {"log", "--action", "Dim", "--amount", "nan"}, "", 2, "not a number from 0"},
      {"log of no action", {"log", "--action", "on"}, "", 2, "not an action code"},
      {"log of a house that hears no such action", {"log", "--action", "On", "--house", "B"}, "", 2, "alone"},
      {"log of an unknown tense", {"log", "--action", "On", "--tense", "soon"}, "", 2, "none of past, present"},
      {"1-Wire address of too few digits", {"onewire", "e9"}, "", 1, "not sixteen hex digits, such as e9:00"},
      {"1-Wire address with a wrong CRC", {"onewire", "-"}, "4df6e5d4c3b2a128\n", 1, "is 4d but should be ac\n"},
      {"1-Wire address turned", {"onewire", "28c3fde2050000e9"}, "", 1, "first? That would be e9:00:00:05:e2:fd:c3:28"},
      {"pad with a wrong CRC", {"pad", "50054b467fff0c101d"}, "", 1, "should be 1c"},
      {"pad of eight bytes", {"pad", "50054b467fff0c10"}, "", 1, "not the nine bytes"},
      {"pad of an unknown kind", {"pad", "--kind", "ds1822"}, "", 2, "--kind is"},
      {"pad in lower-case units", {"pad", "--units", "c"}, "", 2, "--units is"},
      {"listen in unknown units", {"listen", "--units", "R"}, "", 2, "--units is"},
      {"setting without a number", {"pad", "--set", "temperature="}, "", 2, "no number behind"},
      {"setting of a part of a degree", {"pad", "--set", "lowAlarm=1.5"}, "", 2, "not a whole number"},
      {"setting that is not finite", {"pad", "--set", "temperature=nan"}, "", 2, "no number behind"},
      {"resolution of a DS18S20", {"pad", "--kind", "ds18s20", "--set", "resolution=9"}, "", 2, "only a ds18b20"},
      {"strings without a folder", {"strings", "check"}, "", 2, "marlow strings check FOLDER"},
      {"strings in a folder without texts", {"strings", "check", "/proc"}, "", 2, "no folder of texts"},
      {"run without a program", {"run"}, "", 2, "write marlow run"},
      {"run with a limit that is none", {"run", "--limit", "-1", "--", "/bin/true"}, "", 2, "not a number of seconds"},
      {"run of what is missing", {"run", "--", "/nonexistent"}, "", 2, "could not be started: No such file"},
      {"run to a good end", {"run", "--limit", "inf", "--", "/bin/true"}, "", 0, ""},
      {"run to a status", {"run", "--", "/bin/sh", "-c", "exit 3"}, "", 1, "ended with status 3"},
      {"run over the limit", {"run", "--limit", "0", "--", "/bin/sleep", "1"}, "", 1, "was left running"},
      {"run that prints rubbish", {"run", "--", "/usr/bin/printf", "\\377"}, "", 0, "is not UTF-8"},
      {"running of what is and is not", {"running", "marlow", "zq8xtension"}, "", 1, ""},
      {"running by a signature", {"running", "--signature", "Zq8x"}, "", 1, ""},
      {"running by three letters", {"running", "--signature", "QZ2"}, "", 1, "\"QZ2\": a signature has four"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const ToolResult result = runTool(row.arguments, row.input);
    EXPECT_EQ(result.exitCode, row.exitCode);
    EXPECT_TRUE(result.exitCode == 2 || !row.complaint.empty() || result.complaints.empty()) << result.complaints;
    expectParts(result.complaints, {row.complaint});
  }
}

TEST(Listen, WordsEachLineOfAGrowingStreamBeforeTheNextOneComes) {
  const TemporaryFolder folder;
  const std::string devices = folder.write("devices.txt", "# names\nA1 hall lamp\n1a2b3c\tkitchen lights\n");
  const std::string pipe = folder.makePipe("input");
  std::FILE* const tool =
      ::popen((toolCommand({"listen", "--devices", devices}, folder.path()) + " <" + pipe).c_str(), "r");
  const auto nextLine = [tool] {
    char line[100] = "";
    return std::fgets(line, sizeof line, tool) == nullptr ? "(no line)" : std::string(line);
  };
  std::ofstream input(pipe);
  input << "2026-06-01T18:05:00 x10 A1 2\n2026-06-01T18:05:04 x10 A1 4 4" << std::flush;
  ASSERT_EQ(nextLine(), "2026-06-01 18:05:00  The hall lamp was turned on.\n");
  input << "0%\n" << std::flush;
  ASSERT_EQ(nextLine(), "2026-06-01 18:05:04  The hall lamp was dimmed by 40%.\n");
  input << "2026-06-01T18:05:05 insteon 1A.2B.3C 0x14";  // the last line lacks its line break
  input.close();
  EXPECT_EQ(nextLine(), "2026-06-01 18:05:05  The kitchen lights were turned off.\n");
  EXPECT_EQ(nextLine(), "(no line)");
  EXPECT_EQ(::pclose(tool), 0);
}

TEST(Listen, ReportsABadLineWithItsNumberAndGoesOn) {
  const std::string input = "# comment\n\nrubbish\n2026-06-01T18:05:00 x10 B 1\n" + std::string(100'000, 'x') +
                            "\n2026-06-01T18:05:01 x10 C9 3\n";
  const ToolResult result = runTool({"listen"}, input);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output,
            "2026-06-01 18:05:00  All lights in house B were turned on.\n"
            "2026-06-01 18:05:01  The X10 device C9 was turned off.\n");
  expectParts(result.complaints, {"standard input:3: a time, a protocol", "standard input:5: the line is longer than"});
}

TEST(Listen, SurvivesAMegabyteOfRandomBytes) {
  std::mt19937 random(20260601);
  std::string bytes(1 << 20, '\0');
  for (char& byte : bytes) {
    byte = static_cast<char>(random());
  }
  const ToolResult result = runTool({"listen"}, bytes);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output, "");
  for (const char c : result.complaints) {
    ASSERT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= 0x20) << "a control character reached the terminal";
  }
}

TEST(Listen, TakesNamesFromAPropertyListAndReportsEachBadOne) {
  const TemporaryFolder folder;
  const std::string devices = folder.write("devices.plist",
                                           "<plist><dict><key>A1</key><string>hall lamp</string><key>Z9</key>"
                                           "<string>nowhere</string><key>A2</key><integer>7</integer></dict></plist>");
  const ToolResult result = runTool({"listen", "--devices", devices, "--json"}, "2026-06-01T18:05:00 x10 A1 4 40%\n");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output, R"({"action":"Dim ","address":"A1","device":"hall lamp","percent":40,"protocol":"x10",)"
                           R"("sentence":"The hall lamp was dimmed by 40%.","time":"2026-06-01T18:05:00"})"
                           "\n");
  expectParts(result.complaints, {"\"Z9\" is not the address", "\"A2\" is not a text"});
}

TEST(Listen, ReadsThermometersInTheUnitsAskedForButNotTheValueAfterPowerOn) {
  const std::string input =
      "2026-06-01T18:10:00 onewire e9000005e2fdc328 50054b467fff0c101c\n"
      "2026-06-01T18:10:01 onewire e9000005e2fdc328 91014b467fff0c1070\n";
  EXPECT_EQ(runTool({"listen"}, input).output,
            "2026-06-01 18:10:00  The 1-Wire thermometer e9:00:00:05:e2:fd:c3:28 has not measured yet.\n"
            "2026-06-01 18:10:01  The 1-Wire thermometer e9:00:00:05:e2:fd:c3:28 reads 77.11 °F.\n");
  expectParts(runTool({"listen", "--units", "K", "--json"}, input).output,
              {R"("temperature":298.2125,"time":"2026-06-01T18:10:01","units":"K")"});
}

TEST(Tool, PrintsTextAndEscapedJSON) {
  const auto linePrinted = [](std::vector<std::string> arguments) {
    std::string output = runTool(std::move(arguments)).output;
    EXPECT_TRUE(output.ends_with('\n'));
    return output.substr(0, output.size() - 1);
  };
  EXPECT_EQ(linePrinted({"onewire", "E9:00:00:05:E2:FD:C3:28"}),
            "e9:00:00:05:e2:fd:c3:28: compact e9000005e2fdc328, family 0x28 Thermometer (DS18B20), CRC right");
  EXPECT_EQ(linePrinted({"onewire", "--json", "ea000005e2fdc328"}),
            R"-({"address":"ea:00:00:05:e2:fd:c3:28","compact":"ea000005e2fdc328","crc":234,"error":"the CRC is ea )-"
            R"-(but should be e9","family":40,"familyName":"Thermometer (DS18B20)","input":"ea000005e2fdc328",)-"
            R"-("rightCRC":233})-");
  EXPECT_EQ(
      linePrinted({"pad", "--units", "C", "--set", "temperature=21.5,lowAlarm=-5,resolution=10", "50054b467fff0c101c"}),
      "58014bfb3fff0c1081: 21.5 °C, alarms below -5 °C and above 75 °C, 10 bits, CRC right");
  EXPECT_EQ(linePrinted({"pad", "--kind", "ds18s20", "--json", "<aa004b46 ffff0c10 87>"}),
            R"({"bytes":"aa004b46ffff0c1087","highAlarm":167,"input":"<aa004b46 ffff0c10 87>","kind":"ds18s20",)"
            R"("lowAlarm":158,"powerOnReset":true,"temperature":185,"units":"F","valid":true})");
  EXPECT_EQ(linePrinted({"run", "--json", "--input", "x", "--", "/bin/sh", "-c", "cat; echo e >&2; exit 4"}),
            R"({"error":"e\u000a","output":"x","status":4,"timedOut":false})");
  EXPECT_EQ(linePrinted({"log", "--json", "--action", "On", "a\"b\\c\x01\xFF"}),
            R"({"action":"On  ","sentence":"The a\"b\\c\u0001� was turned on."})");
}

TEST(StringsCheck, FindsEachKindOfFault) {
  const TemporaryFolder folder;
  for (const char* copy : {"/English.lproj", "/fr.lproj"}) {
    std::filesystem::copy(SOURCE_FOLDER "/resources/English.lproj", folder.path() + copy);
  }
  expectParts(runTool({"strings", "check", folder.path()}).output,
              {R"("keyCurrentLanguage" is "English" but the folder is "fr.lproj")", "in 2 languages: 1 fault\n"});
  folder.write("fr.lproj/Common.strings",
               "\"keyDaysOfWeek\" = \"DLMMJVS\";\n"
               "\"keyDaysOfWeek\" = \"dlmmjvs\";\n"
               "\"keyNoPortSelected\" = \"Aucun port %@\";\n"
               "\"keyNoPortSelcted\" = \"Aucun port\";\n"
               "broken\n"
               "\"keyBy\" = \"keyBy\";\n"
               "\"keyTo\" = \"\";\n");
  folder.write("fr.lproj/Other.strings", "");
  const ToolResult result = runTool({"strings", "check", folder.path() + "/fr.lproj/"});
  EXPECT_EQ(result.exitCode, 1);
  expectParts(result.output,
              {"Common.strings:2: \"keyDaysOfWeek\" is given again; line 1",
               "Common.strings:3: \"keyNoPortSelected\" has the slots %1$@",
               "Common.strings:4: \"keyNoPortSelcted\" is never asked for",
               "Common.strings:5: a key in double quotes is missing",
               "Common.strings:6: \"keyBy\" has its own key for a text", "Common.strings:7: \"keyTo\" is empty",
               "Localizable.strings:1: \"keyCurrentLanguage\" is missing; in English it is \"English\"",
               "Other.strings:1: no text of this table"});
}

}  // namespace
}  // namespace SharedClasses::tests
