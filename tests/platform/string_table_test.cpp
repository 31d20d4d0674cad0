#include "platform/string_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platform/text.h"

namespace SharedClasses::platform {
namespace {

using namespace std::string_view_literals;

// The entries as "line key=text" and the lines of the issues, in the order of the file.
struct Outline {
  std::vector<std::string> entries;
  std::vector<std::size_t> issues;
};

Outline outlineOf(std::string_view bytes) {
  Outline outline;
  const ParsedStrings parsed = parseStrings(bytes);
  for (const StringEntry& entry : parsed.entries) {
    outline.entries.push_back(std::to_string(entry.line) + " " + entry.key + "=" + entry.text);
  }
  for (const StringTableIssue& issue : parsed.issues) {
    EXPECT_FALSE(issue.message.empty());
    outline.issues.push_back(issue.line);
  }
  return outline;
}

TEST(StringTable, WellFormedFilesAreReadWhole) {
  const struct {
    const char* name;
    std::string_view bytes;
    std::vector<std::string> expected;
  } kRows[] = {
      {"empty file", "", {}},
      {"byte order mark", "\xEF\xBB\xBF\"a\" = \"1\";", {"1 a=1"}},
      {"no blanks, no final line break", "\"a\"=\"1\";\n\"b\"=\"2\";", {"1 a=1", "2 b=2"}},
      {"many blanks", "\t\"a\"\u00A0 =\t \"1\" ;  \n\n \"b\" = \"2\";", {"1 a=1", "3 b=2"}},
      {"CRLF", "/* x\r\n y */\r\n// z\r\n\"a\" = \"1\";\r\n\"b\" = \"2\";\r\n", {"4 a=1", "5 b=2"}},
      {"comments",
       "/**//*/*/ \"a\" = \"/* 1 */\"; // \"x\" = \"y\";\n/* \"z\"\n */\"b\" = \"//\";",
       {"1 a=/* 1 */", "3 b=//"}},
      {"repeated key", "\"a\" = \"1\";\n\"a\" = \"2\";", {"1 a=1", "2 a=2"}},
      {"empty key and text", "\"\" = \"\";", {"1 ="}},
      {"escapes", R"("q\"\\" = "\n\r\t\U0041\U00e9\U20AC\UD83D\UDCA1";)", {"1 q\"\\=\n\r\tA\u00E9\u20AC\U0001F4A1"}},
      {"Unicode line breaks are blanks", "\"a\" = \"1\u2028\";\u2028\u0085\"b\" = \"2\";", {"1 a=1\u2028", "1 b=2"}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const Outline outline = outlineOf(row.bytes);
    EXPECT_EQ(outline.entries, row.expected);
    EXPECT_TRUE(outline.issues.empty());
  }
}

TEST(StringTable, ABrokenLineIsReportedAndTheNextOneServes) {
  const struct {
    const char* name;
    std::string_view line;
  } kRows[] = {
      {"no quotes", "a = b;"},
      {"key alone", "\"a\""},
      {"no equals sign", "\"a\" \"b\";"},
      {"no text", "\"a\" = ;"},
      {"no semicolon", "\"a\" = \"b\""},
      {"open key", "\"a = ;"},
      {"open text", "\"a\" = \"b;"},
      {"text ends in an escape", "\"a\" = \"b\\"},
      {"unknown escape", "\"a\" = \"\\x41\";"},
      {"escape of no digits", "\"a\" = \"\\U\";"},
      {"escape of other letters", "\"a\" = \"\\U12G4\";"},
      {"escape cut by the end of the line", "\"a\" = \"\\U12"},
      {"escape of zero", "\"a\" = \"\\U0000\";"},
      {"high surrogate alone", "\"a\" = \"\\UD83D\";"},
      {"high surrogate and a letter", "\"a\" = \"\\UD83D\\U0041\";"},
      {"low surrogate alone", "\"a\" = \"\\UDCA1\";"},
      {"bytes that are not UTF-8", "\"a\" = \"caf\xE9\";"},
      {"surrogate as bytes", "\"a\" = \"\xED\xA0\x80\";"},
      {"zero byte inside", "\"a\" = \"b\0\";"sv},
      {"stray semicolon", "\"a\" = \"b\";;"},
      {"stray end of a comment", "*/"},
  };
  for (const std::string_view lineBreak : {"\n"sv, "\r\n"sv}) {
    for (const auto& row : kRows) {
      SCOPED_TRACE(row.name);
      std::string file = "\"first\" = \"1\";";
      for (const std::string_view line : {"/* two"sv, "lines */"sv, row.line, "\"last\" = \"2\";"sv, row.line}) {
        file += lineBreak;
        file += line;
      }
      const Outline outline = outlineOf(file);
      EXPECT_EQ(outline.issues, (std::vector<std::size_t>{4, 6}));
      EXPECT_EQ(outline.entries.front(), "1 first=1");
      EXPECT_TRUE(std::ranges::count(outline.entries, "5 last=2") == 1);
    }
  }
}

TEST(StringTable, AnOpenTextIsCalledSoUnderEveryLineBreak) {
  EXPECT_EQ(parseStrings("\"a\" = \"b;\r\n").issues.at(0).message, parseStrings("\"a\" = \"b;\n").issues.at(0).message);
}

TEST(StringTable, WhatHidesTheRestIsReportedWhereItBegins) {
  const Outline comment = outlineOf("\"a\" = \"1\";\n\n/* open\n\"b\" = \"2\";\n");
  EXPECT_EQ(comment.entries, std::vector<std::string>{"1 a=1"});
  EXPECT_EQ(comment.issues, std::vector<std::size_t>{3});
  for (const std::string_view file : {"\xFF\xFE\"\0a\0\"\0"sv, "\xFE\xFF\0\"\0a\0\""sv, "\xFF\xFE"sv}) {
    const Outline outline = outlineOf(file);
    EXPECT_TRUE(outline.entries.empty());
    EXPECT_EQ(outline.issues, std::vector<std::size_t>{1});
  }
}

TEST(StringTable, RandomFilesGiveOnlyWellFormedEntries) {
  constexpr std::string_view kPieces[] = {"\"",      "\"a\"", "\"b\"", "=",        "=",        ";",
                                          ";",       "\n",    "\r\n",  "/*",       "*/",       "//",
                                          "\\U00e9", "\\UD8", "\\n",   "\xC3\xA9", "\xEF\xBB", " "};
  std::mt19937 random(20240331);
  for (const bool anyByte : {true, false}) {
    std::string bytes;
    while (bytes.size() < 1 << 20) {
      anyByte ? void(bytes += static_cast<char>(random() & 0xFF))
              : void(bytes += kPieces[random() % std::size(kPieces)]);
    }
    const std::size_t lines = static_cast<std::size_t>(std::ranges::count(bytes, '\n')) + 1;
    const ParsedStrings parsed = parseStrings(bytes);
    EXPECT_TRUE(!parsed.issues.empty() && parsed.issues.size() <= lines);
    EXPECT_EQ(parsed.entries.empty(), anyByte);
    for (const StringEntry& entry : parsed.entries) {
      ASSERT_TRUE(isValidUTF8(entry.key) && isValidUTF8(entry.text) && entry.line <= lines);
    }
  }
}

TEST(StringTable, TheLastOfSeveralEntriesWithOneKeyCounts) {
  const StringTable table({{"a", "1", 1}, {"b", "2", 2}, {"a", "3", 3}, {"", "empty", 4}});
  EXPECT_EQ(table.size(), 3U);
  EXPECT_EQ(table.find("a"), "3");
  EXPECT_EQ(table.find("b"), "2");
  EXPECT_EQ(table.find(""), "empty");
  EXPECT_EQ(table.find("A"), std::nullopt);
  EXPECT_EQ(table.find("a\0"sv), std::nullopt);
}

}  // namespace
}  // namespace SharedClasses::platform
