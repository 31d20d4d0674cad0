#include "platform/string_table.h"

#include <gtest/gtest.h>

namespace SharedClasses::platform {
namespace {

using namespace std::string_view_literals;

// The entries as "line key=text", then the issues as "line !".
std::vector<std::string> outlineOf(const ParsedStrings& parsed) {
  std::vector<std::string> outline;
  for (const StringEntry& entry : parsed.entries) {
    outline.push_back(std::to_string(entry.line) + " " + entry.key + "=" + entry.text);
  }
  for (const StringTableIssue& issue : parsed.issues) {
    outline.push_back(std::to_string(issue.line) + " !");
  }
  return outline;
}

TEST(StringTable, FilesAreReadWholeOrUpToWhatHidesTheRest) {
  const std::tuple<const char*, std::string_view, std::vector<std::string>> kRows[] = {
      {"byte order mark", "\xEF\xBB\xBF\"a\" = \"1\";", {"1 a=1"}},
      {"no blanks, empty key and text", "\"a\"=\"1\";\"\"=\"\";", {"1 a=1", "1 ="}},
      {"many blanks", "\t\"a\"\u00A0 =\t \"1\" ;  \n\n \"a\" = \"2\";", {"1 a=1", "3 a=2"}},
      {"CRLF", "/* x\r\n y */\r\n// z\r\n\"a\" = \"1\";\r\n\"b\" = \"2\";\r\n", {"4 a=1", "5 b=2"}},
      {"comments", "/**//*/*/ \"a\" = \"/* 1 */\"; // \"x\"\n/*\n */\"b\" = \"//\";", {"1 a=/* 1 */", "3 b=//"}},
      {"escapes", R"("q\"\\" = "\n\r\t\U0041\U20AC\UD83D\UDCA1";)", {"1 q\"\\=\n\r\tA\u20AC\U0001F4A1"}},
      {"Unicode line breaks are blanks", "\"a\" = \"1\u2028\";\u2028\u0085\"b\" = \"2\";", {"1 a=1\u2028", "1 b=2"}},
      {"open comment", "\"a\" = \"1\";\n\n/* open\n\"b\" = \"2\";\n", {"1 a=1", "3 !"}},
      {"UTF-16", "\xFF\xFE\"\0a\0\"\0"sv, {"1 !"}},
  };
  for (const auto& [name, bytes, expected] : kRows) {
    EXPECT_EQ(outlineOf(parseStrings(bytes)), expected) << name;
  }
}

TEST(StringTable, ABrokenLineIsReportedAndTheNextOneServes) {
  // The line and a part of the message.
  const std::pair<std::string_view, const char*> kRows[] = {
      {"\"a\" \"b\";", "'=' is missing"},          {"\"a\" = ;", "a text in double quotes is missing"},
      {"\"a\" = \"b\"", "';' is missing"},         {"\"a = ;", "a key is not closed"},
      {"\"a\" = \"b;", "a text is not closed"},    {"\"a\" = \"b\\", "unknown escape"},
      {"\"a\" = \"\\U12", "four hex digits"},      {"\"a\" = \"\\U12G4\";", "four hex digits"},
      {"\"a\" = \"\\U0000\";", "four hex digits"}, {"\"a\" = \"\\UD83D\\U0041\";", "four hex digits"},
      {"\"a\" = \"\\UDCA1\";", "four hex digits"}, {"\"a\" = \"caf\xE9\";", "UTF-8"},
      {"\"a\" = \"b\0\";"sv, "control character"}, {"\"a\" = \"b\rc\";", "control character"},
      {"*/", "a key in double quotes is missing"},
  };
  for (const std::string lineBreak : {"\n", "\r\n"}) {
    for (const auto& [line, message] : kRows) {
      SCOPED_TRACE(line);
      std::string file = "/* two" + lineBreak + "lines */" + lineBreak;
      file.append(line).append(lineBreak).append("\"last\" = \"1\";").append(lineBreak).append(line);
      const ParsedStrings parsed = parseStrings(file);
      ASSERT_EQ(outlineOf(parsed), (std::vector<std::string>{"4 last=1", "3 !", "5 !"}));
      EXPECT_NE(parsed.issues[0].message.find(message), std::string::npos) << parsed.issues[0].message;
    }
  }
}

TEST(StringTable, IssuesBeyondTheThousandthAreCountedOnly) {
  std::string file;
  for (int i = 0; i < 5000; ++i) {
    file += "broken\n";
  }
  const ParsedStrings parsed = parseStrings(file);
  EXPECT_EQ(parsed.issues.size(), 1000U);
  EXPECT_EQ(parsed.issueCount, 5000U);
}

TEST(StringTable, TheLastOfSeveralEntriesWithOneKeyCounts) {
  const StringTable table({{"a", "1", 1}, {"b", "2", 2}, {"a", "3", 3}, {"", "empty", 4}});
  EXPECT_EQ(table.find("a"), "3");
  EXPECT_EQ(table.find(""), "empty");
  EXPECT_EQ(table.find("a\0"sv), std::nullopt);
}

}  // namespace
}  // namespace SharedClasses::platform
