// The check for newer versions at the command line, and the commands beside it that take versions, codes and times.
#include <gtest/gtest.h>

#include <map>

#include "tests/support/http_server.h"
#include "tests/support/tool.h"

namespace SharedClasses::tests {
namespace {

using Words = std::vector<std::string>;

std::string documentAt(const std::string& requestLine) {
  const std::string all =
      "<dict><key>test</key><dict><key>version</key><string>2.2b1</string></dict><key>release</key><dict>"
      "<key>version</key><string>2.1</string><key>url</key><string>r\u202E\t</string></dict>"
      "<key>update</key><dict><key>version</key><string>2.0.1</string></dict></dict>";
  const std::map<std::string, std::string> documents{{"GET /all?fromVersion=2.0b3 HTTP/1.1", all},
                                                     {"GET /all?x HTTP/1.1", all},
                                                     {"GET /nothing?fromVersion=3 HTTP/1.1", "<dict/>"},
                                                     {"GET /list?x HTTP/1.1", "<array/>"},
                                                     {"GET /page?x HTTP/1.1", "<html>not here"},
                                                     {"GET /bytes?x HTTP/1.1", "<dict>\xFF</dict>"},
                                                     {"GET /long?x HTTP/1.1", "<dict/>" + std::string(262'138, ' ')}};
  const auto found = documents.find(requestLine);
  return found == documents.end() ? "" : found->second;
}

constexpr const char* kNewer =
    "update 2.0.1 (Free Update), newer than 2.0b3: no address\nrelease 2.1 (Latest), newer than 2.0b3: r??\n"
    "test 2.2b1 (Test), newer than 2.0b3, update 2.0.1, release 2.1: no address\n"
    "next check: none, checkForAppUpdates is not set, which counts as no; the first start";
constexpr const char* kNewerAsJSON =
    R"({"entry":{"type":"Latest","url":"r\u202e\u0009","version":"2.1"},"kind":"release","newerThan":["2.0.1"]}
{"entry":{"type":"Test","version":"2.2b1"},"kind":"test","newerThan":["2.0.1","update 2.0.1","release 2.1"]}
{"checks":true,"isDue":true,"nextCheck":null,"why":"none was made yet"}
)";
constexpr const char* kNothingNewerAsJSON =
    R"({"kind":"none","newerThan":["3"],"onOffer":["update 2.0.1","release 2.1","test 2.2b1"]}
{"checks":true,"isDue":true,"nextCheck":"2001-01-01T00:01:01Z","why":""}
)";
constexpr const char* kNothingNewer =
    "nothing newer than 3; on offer: update 2.0.1, release 2.1, test 2.2b1\n"
    "next check: due, none was made yet (a program that already runs checks at its own interval)\n";
constexpr const char* kAddressRule = ": an address begins with http:// or https://, in lower case, and holds no #";
constexpr const char* kVersionRule = ": a version begins with a number and a period, or is one; else";

const Words kSettings{"runCount", "checkForAppUpdates", "timeOfLastVersionCheck", "updatesCheckInterval"};

struct Row {
  const char* name;
  std::string url;  // on the server where it begins with "/"
  Words more;       // arguments
  int exitCode;
  std::string said;     // a part of the output, or, where the exit code is not 0, of the complaint
  Words settings = {};  // the first values of kSettings
};

TEST(Updates, SayWhatIsNewerWhyNothingIsAndWhenTheNextCheckIsDue) {
  const HTTPServer silent(HTTPServer::staySilent);
  const HTTPServer server([](const auto& c) { static_cast<void>(c.send(httpAnswer(documentAt(c.requestLine)))); });
  const Row kRows[] = {
      {"newer", "/all", {"--own=2.0b3"}, 0, kNewer},
      {"newer as JSON", "/all?x", {"--own=2.0.1", "--json"}, 0, kNewerAsJSON, {"1", "yes"}},
      {"nothing newer as JSON", "/all?x", {"--json"}, 0, kNothingNewerAsJSON, {"1", "yes", "1", "60"}},
      {"nothing newer", "/all?x", {}, 0, kNothingNewer, {"1", "yes", "0"}},
      {"nothing on offer", "/nothing", {}, 0, "nothing\nnext check: none, checkForAppUpdates is off\n", {"1", "no"}},
      {"not set after a start", "/nothing", {}, 0, "Updates is not set, which counts as no\n", {"2"}},
      {"due", "/nothing", {}, 0, "check: due since 2001-01-08T00:00:01Z (a", {"1", "yes", "1"}},
      {"not due", "/nothing", {}, 0, "check: 2127-10-04T07:06:41Z (a", {"1", "yes", "1", "4000000000"}},
      {"never due", "/nothing", {}, 0, "its time lies beyond the calendar (a", {"1", "yes", "1", "9999999999999"}},
      {"no dictionary", "/list?x", {}, 1, "no version document: it is no dictionary"},
      {"page of an error", "/page?x", {}, 1, "no version document: line 1: unknown element <html>"},
      {"not UTF-8", "/bytes?x", {}, 1, "no version document: it is not UTF-8"},
      {"a byte too long", "/long?x", {}, 1, "no version document: it is longer than 262144 bytes"},
      {"silence", silent.url(), {}, 2, "no answer within 4 seconds"},
      {"server gone, numeric host", "http://[::1]:1/", {}, 2, ": nothing came: "},
      {"address without its beginning", "127.0.0.1:8000/x", {}, 2, kAddressRule},
      {"address with a fragment", "/nothing#x", {}, 2, kAddressRule},
      {"address with a blank", "/a\u00A0b", {}, 2, kAddressRule},
      {"several addresses", "/{a,b}", {}, 2, kAddressRule},
      {"several pages", "/[1-2]", {}, 2, kAddressRule},
      {"several hosts", "http://127.0.0.[1-2]/", {}, 2, kAddressRule},
      {"empty version", "/nothing", {"--own="}, 2, kVersionRule},
      {"version behind a letter", "/nothing", {"--own=3b1"}, 2, kVersionRule},
      {"version with a parameter", "/nothing", {"--own=2&y"}, 2, kVersionRule}};
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    const TemporaryFolder home;
    for (std::size_t i = 0; i < row.settings.size(); ++i) {
      ASSERT_EQ(runTool({"prefs", "set", kSettings[i], row.settings[i]}, {}, home.path()).exitCode, 0);
    }
    Words arguments{"updates", "--own=3", "--url", row.url.starts_with('/') ? server.url(row.url) : row.url};
    arguments.insert(arguments.end(), row.more.begin(), row.more.end());
    const ToolResult result = runTool(arguments, {}, home.path());
    EXPECT_EQ(result.exitCode, row.exitCode) << result.complaints;
    const std::string& said = row.exitCode == 0 ? result.output : result.complaints;
    EXPECT_NE(said.find(row.said), said.npos) << said;
  }
}

TEST(OperandsOfCommands, MayBeNumbersBelowZeroOrStandardInputWhereTheCommandTakesThem) {
  EXPECT_TRUE(runTool({"message", "-94"}).output.starts_with("-94: Indigo is using the controller."));
  EXPECT_TRUE(runTool({"version", "2.0", "-", "1.9"}, "2.0b1\n").output.ends_with("older than 2.0b1\n"));
  EXPECT_NE(runTool({"version", "--self", "--json"}).output.find("\"of\":\"system\""), std::string::npos);
  EXPECT_EQ(runTool({"clock", "9:05", "9:5"}).output, "9:05: 9:05 AM\n");
}

}  // namespace
}  // namespace SharedClasses::tests
