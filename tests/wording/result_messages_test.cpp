// The texts are the shipped English ones; the programs that may hold the controller are real processes.
#include "wording/result_messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <sstream>
#include <tuple>

#include "tests/support/main_bundle.h"
#include "tests/support/named_sleeper.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool.h"
#include "tests/support/turn.h"

namespace SharedClasses::tests {
namespace {

using Utilities::stringForResult;

TEST(StringForResult, EachNumberHasItsSentenceAndGapsStayGaps) {
  useShippedTexts();
  std::istringstream rows(
      "0:OK,22:does not accept the settings,35:port is busy,125:permission,127:did not answer in time,"
      "-50:cannot carry out,-54:address of the device is not,-55:house code,-58:does not fit,"
      "-59:schedule is not valid,-60:command is not valid,-70:No device with the address %@ was,"
      "-71:No device was given,-72:out of range,-78:plug-in,-87:controller is busy,-89:makes no sense,"
      "-92:device does not respond,-93:XTension is using,-94:Indigo is using,-95:controller does not respond,"
      "-96:No controller,-98:stopped working,-99:port was not found,-1712:did not answer in time,"
      "-60031:permission,-60032:permission");
  for (std::string code, part; std::getline(rows, code, ':') && std::getline(rows, part, ',');) {
    const std::int32_t result = std::stoi(code);
    EXPECT_NE(stringForResult(result).find(part), std::string::npos) << result << ": " << stringForResult(result);
  }
  // 11 is the EAGAIN of Linux, -34 a foreign agent that stays.
  for (const std::int32_t gap : {-100, -91, -90, -88, -77, -73, -57, -56, -53, -51, -49, -34, 1, 11, -2147483647}) {
    EXPECT_EQ(stringForResult(gap), "Error " + std::to_string(gap));
  }
}

TEST(StringForResult, NamesTheProgramThatHoldsTheController) {
  const Turn turn;
  useShippedTexts();
  const TemporaryFolder folder;
  const std::string indigo = stringForResult(-94), xTension = stringForResult(-93);
  const std::string classic = "The Classic environment may be holding the controller. Stop Classic, then try again.";
  const std::string exclusive = "Another program is using the controller. Quit that program, then try again.";
  const std::string excluded =
      "This program cannot use the controller, because another program has reserved it. Quit that program, then try "
      "again.";
  const std::tuple<const char*, std::vector<std::string>, std::string, std::string, std::string> rows[] = {
      {"none", {}, exclusive, exclusive, excluded},
      {"Classic", {"TruBlueEnvironment"}, classic, classic, classic},
      {"XTension", {"the XTension"}, xTension, exclusive, excluded},
      {"XTension and Classic", {"the XTension", "TruBlueEnvironment"}, xTension, classic, classic},
      {"Indigo", {"IndigoServer"}, indigo, exclusive, excluded},
      {"Indigo and XTension", {"the XTension", "IndigoServer"}, indigo, exclusive, excluded},
  };
  for (const auto& [name, running, refused, own126, own97] : rows) {
    SCOPED_TRACE(name);
    std::deque<NamedSleeper> programs;
    for (const std::string& program : running) {
      programs.emplace_back(folder, program);
    }
    EXPECT_EQ(stringForResult(-536870203), refused);
    EXPECT_EQ(stringForResult(126), own126);
    EXPECT_EQ(stringForResult(-97), own97);
  }
}

TEST(StringForResult, ATextThatTheLanguageLacksIsEmptyAndSuccessNeedsNone) {
  const TemporaryFolder folder;
  folder.write("en.lproj/Localizable.strings", "\"keyParamError\" = \"p\";");
  const MainBundle bundle(folder.path());
  EXPECT_EQ(stringForResult(0) + stringForResult(-72) + stringForResult(-71) + stringForResult(-88), "OKpError -88");
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
