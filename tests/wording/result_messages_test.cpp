// The texts are the shipped English ones; the programs that may hold the controller are real processes.
#include "wording/result_messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <sstream>

#include "tests/support/main_bundle.h"
#include "tests/support/named_sleeper.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool.h"

namespace SharedClasses::tests {
namespace {

// `rows` as in "0:OK,22:settings": a code, and what its text has in it.
void expectTexts(const std::string& rows) {
  std::istringstream stream(rows);
  for (std::string code, part; std::getline(stream, code, ':') && std::getline(stream, part, ',');) {
    const std::string text = Utilities::stringForResult(std::stoi(code));
    EXPECT_NE(text.find(part), std::string::npos) << code << ": " << text;
  }
}

TEST(StringForResult, EachNumberHasItsSentenceAndGapsStayGaps) {
  useShippedTexts();
  expectTexts(
      "0:OK,22:not accept the settings,35:port is busy,125:permission,127:did not answer in time,"
      "-50:cannot carry out,-54:address of the device is not,-55:house code,-58:does not fit,-59:schedule is not,"
      "-60:command is not valid,-70:No device with the address %@,-71:No device was given,-72:out of range,"
      "-78:plug-in,-87:controller is busy,-89:makes no sense,-92:device does not respond,-93:XTension is using,"
      "-94:Indigo is using,-95:controller does not,-96:No controller,-98:stopped working,-99:port was not,"
      "-1712:not answer in time,-60031:permission,-60032:permission");
  // 11 is the EAGAIN of Linux, -34 a foreign agent that stays.
  for (const int gap : {-100, -91, -90, -88, -77, -73, -57, -56, -53, -51, -49, -34, 1, 11, -2147483647}) {
    EXPECT_EQ(Utilities::stringForResult(gap), "Error " + std::to_string(gap));
  }
}

TEST(StringForResult, NamesTheProgramThatHoldsTheController) {
  const Turn turn;
  useShippedTexts();
  const TemporaryFolder folder;
  const std::string unnamed = ",126:Another program is,-97:another program has";
  const std::string classic = ",126:The Classic environment,-97:The Classic environment";
  const std::pair<std::vector<std::string>, std::string> rows[] = {
      {{}, "-536870203:Another program is" + unnamed},
      {{"TruBlueEnvironment"}, "-536870203:The Classic environment" + classic},
      {{"the XTension", "TruBlueEnvironment"}, "-536870203:XTension is using" + classic},
      {{"the XTension", "IndigoServer"}, "-536870203:Indigo is using" + unnamed}};
  for (const auto& [running, texts] : rows) {
    SCOPED_TRACE(testing::PrintToString(running));
    std::deque<NamedSleeper> programs;
    for (const std::string& program : running) {
      programs.emplace_back(folder, program);
    }
    expectTexts(texts);
  }
}

TEST(StringForResult, ATextThatTheLanguageLacksIsEmptyAndSuccessNeedsNone) {
  const TemporaryFolder folder;
  folder.write("en.lproj/Localizable.strings", "\"keyParamError\" = \"p\";");
  const MainBundle bundle(folder.path());
  EXPECT_EQ(Utilities::stringForResult(0) + Utilities::stringForResult(-72) + Utilities::stringForResult(-71), "OKp");
}

TEST(MessageCommand, ReadsDecimalAndHexAndListsEveryCode) {
  EXPECT_EQ(runTool({"message", "--", "0xFFFFFFA8", "0"}).output, "-88: Error -88\n0: OK\n");
  const ToolResult bad = runTool({"message", "--json"}, " -1 \n0x\n4294967295\n0x100000000\n1x\n");
  EXPECT_EQ(bad.exitCode, 1);
  EXPECT_EQ(bad.output.substr(0, bad.output.find('\n')), R"({"code":-1,"input":" -1 ","text":"Error -1"})");
  EXPECT_EQ(std::ranges::count(bad.complaints, '\n'), 4) << bad.complaints;
  const std::string list = runTool({"message", "--list"}).output;
  EXPECT_NE(list.find("\n-97 while Classic runs: The Classic environment"), std::string::npos) << list;
  EXPECT_EQ(runTool({"message", "--list", "1"}).exitCode, 2);
}

}  // namespace
}  // namespace SharedClasses::tests
