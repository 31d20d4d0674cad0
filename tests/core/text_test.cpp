#include "core/text.h"

#include <gtest/gtest.h>

#include <clocale>

#include "core/buffer.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses {
namespace {

// What a text reads as and its length: "abc/5".
std::string shown(const Text& text) {
  return std::string(text.cString()) + '/' + std::to_string(text.length());
}

TEST(CoreText, EveryChangeLeavesTheStatedCharactersAndLengthAlsoWithoutMemory) {
  static const Text sFive("abc", 5);
  static const Buffer sOne("\xAB");
  static const Buffer sTwo("\x01\xAB");
  const tests::Change<Text> kRows[] = {
      {"assigning keeps the length", "a", [](Text& t) { t = sFive; }, "abc/5", "/0"},
      {"a copy measures, and a sum begins with one", "a", [](Text& t) { t = sFive + Text(); }, "abc/3", "/0"},
      {"moved from", "abc", [](Text& t) { Text(std::move(t)).clear(); }, "/0"},
      {"null", "abc", [](Text& t) { t = static_cast<const char*>(nullptr); }, "/0"},
      {"no room for the NUL in 32 bits", "abc", [](Text& t) { t.assign("abc", UINT32_MAX); }, "/0"},
      {"copy() fills up", "abcd", [](Text& t) { t.copy("xy\0z", 4); }, "xy/4"},
      {"copy() of more than the length", "abc", [](Text& t) { t.copy("wxyz", 0); }, "abc/3"},
      {"its own C string", "abc", [](Text& t) { t = t.cString(); }, "abc/3", "/0"},
      {"a part of it", "abc", [](Text& t) { t.assign(t.cString() + 1, 0); }, "bc/2", "/0"},
      {"a part of it, in place", "abcd", [](Text& t) { t.copy(t.cString() + 1, 0); }, "bcd/4"},
      {"one of its characters", "abc", [](Text& t) { t = t.cString()[2]; }, "c/1", "/0"},
      {"twice itself", {"abc", 5}, [](Text& t) { t += t; }, "abcabc/6"},
      {"itself and a part of it", "abc", [](Text& t) { t += t.cString() + 1; }, "abcbc/5"},
      {"itself as a line", "abc", [](Text& t) { t.appendWithTicks(t); }, "abcabc\n/7"},
      {"formatted", "abc", [](Text& t) { t.format("<%s>", t.cString()); }, "<abc>/5", "ALLOC FAILED/12"},
      {"counted", "abc", [](Text& t) { t.pString() == nullptr ? t.empty() : t.copy("xyz", 3); }, "xyz/3", "/0"},
      {"a character", {"abc", 5}, [](Text& t) { t += 'd'; }, "abcd/4"},
      {"NUL", "abc", [](Text& t) { t += '\0'; }, "abc/3"},
      {"a text of length 0", {"abc", 5}, [](Text& t) { t += Text(); }, "abc/5"},
      {"a wiped text", {"abc", 5}, [](Text& t) { t += Text("", 3); }, "abc/3"},
      {"wiped", "abc", [](Text& t) { t.clear(); }, "/3"},
      {"to a wiped text", {"", 3}, [](Text& t) { t += "d"; }, "d/1"},
      {"left", {"abc", 5}, [](Text& t) { t = t.left(4); }, "abc/4", "/0"},
      {"left, all of it", {"abc", 5}, [](Text& t) { t = t.left(UINT32_MAX); }, "abc/5", "/0"},
      {"left, none", "abc", [](Text& t) { t = t.left(0); }, "/0"},
      {"right", "abc", [](Text& t) { t = t.right(2); }, "bc/2", "/0"},
      {"center", "abcd", [](Text& t) { t = t.center(1, 2); }, "bc/2", "/0"},
      {"center, 0 for the rest", "abcd", [](Text& t) { t = t.center(1, 0); }, "bcd/3", "/0"},
      {"center, the sum wraps", "abcd", [](Text& t) { t = t.center(2, UINT32_MAX); }, "cd/2", "/0"},
      {"center from the end", "abc", [](Text& t) { t = t.center(3, 2); }, "/0", "/0"},
      {"center behind the end", "abc", [](Text& t) { t = t.center(10, 2); }, "abc/3", "/0"},
      {"on the left", "\t\n\v\f\r a ", [](Text& t) { t.trimLeft(); }, "a /2"},
      {"on the right, before the NUL", {"a\t\n\v\f\r ", 9}, [](Text& t) { t.trimRight(); }, "a/1"},
      {"on the right, not the first", "   ", [](Text& t) { t.trimRight(); }, " /1"},
      {"a log begins with a blank line", Text(), [](Text& t) { t.appendWithTicks("x"); }, "\nx\n/3"},
      {"a line with its line feed", "a\n", [](Text& t) { t.appendWithTicks("x\n"); }, "a\nx\n/4"},
      {"hex, all", "-", [](Text& t) { t.appendHexBytes(sTwo, UINT64_MAX); }, "-01 ab \n/8"},
      {"hex, one", "-", [](Text& t) { t.appendHexBytes(sTwo, 1); }, "-01 and 1 more bytes ending in 01 ab\n/37"},
      {"hex, none", "-", [](Text& t) { t.appendHexBytes(sOne, 0); }, "-and 1 more bytes ending in ff ab\n/34"},
  };
  for (const auto& row : kRows) {
    tests::expectChange(row, shown);
  }
}

TEST(CoreText, FormatStopsAt127CharactersAndHexAt42Bytes) {
  Text text;
  text.format("%-126s%d", "x", 42);
  EXPECT_EQ(shown(text), "x" + std::string(125, ' ') + "4/127");
  text.appendHexBytes(Buffer(100), 100);
  EXPECT_EQ(shown(text.center(127 + 41 * 3, 0)), "00 and 58 more bytes ending in 00 00\n/37");
}

TEST(CoreText, EqualTextsHaveTheSameLengthAndCharacters) {
  EXPECT_TRUE(Text("abc") == "abc" && Text() == Text("") && Text() == "" && Text() == nullptr && Text("") == nullptr);
  EXPECT_TRUE(Text("abc", 5) != Text("abc") && Text("abc", 5) != "abc" && Text("abc") != Text("abd") && Text() != "a");
  EXPECT_TRUE(Text("", 3) != "abc" && Text("", 3) != "" && Text("", 3) != nullptr && Text("", 3) == Text("\0bc", 3));
}

TEST(CoreText, ReadingGivesSignedCharactersACountByteAndNumbersAndBlanksOfTheCLocale) {
  const Text text("a\xE9");
  EXPECT_TRUE(text[1] == -23 && text[2] == -1 && Text()[0] == -1 && Text("42").toInt() == 0);
  const std::string content(300, 'p');
  const auto counted = Text(content.c_str()).pString();
  EXPECT_EQ(std::string(counted.get(), counted.get() + 301), '\x2C' + content);  // 300 modulo 256
  const std::string before = std::setlocale(LC_ALL, nullptr);
  std::setlocale(LC_ALL, "de_DE.ISO-8859-1");  // A decimal comma and a blank 0xA0, where the machine has it.
  EXPECT_EQ(Text(" 2.5x").toDouble() - Text("2,5").toDouble() + Text("x2").toDouble(), 2.5 - 2.0 + 0.0);
  EXPECT_EQ(shown(Text("\xA0\xA0").trimLeft().trimRight()), "\xA0\xA0/2");
  std::setlocale(LC_ALL, before.c_str());
  testing::internal::CaptureStdout();
  EXPECT_EQ(Text().log() + Text("").log() + Text("abc", 5).log(), 12 + 0 + 3);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "<empty Text>abc");
}

TEST(CoreText, AFileEndsAtItsFirstNULButKeepsItsLength) {
  const tests::TemporaryFolder folder;
  const Text path(folder.write("file", {"ab\0cd", 5}).c_str());
  const auto load = [](Text& t) { static_cast<void>(t.loadFromFile(t)); };
  tests::expectChange<Text>({"path and result in one", path, load, "ab/5", "/0"}, shown);
  Text text("abc");
  EXPECT_TRUE(text.saveToFile(path) + text.loadFromFile(path) == 0 && text[4] == 0 && text.loadFromFile("") == -1);
  EXPECT_EQ(shown(text), "/0");
}

}  // namespace
}  // namespace SharedClasses
