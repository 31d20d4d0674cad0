#include "platform/text.h"

#include <gtest/gtest.h>
#include <locale.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace SharedClasses::platform {
namespace {

using namespace std::string_view_literals;

// Well-formed UTF-8 as the Unicode standard tables it: the first and last value of each byte of a character.
struct ByteRanges {
  std::size_t length;
  unsigned char low[4];
  unsigned char high[4];
};
constexpr ByteRanges kWellFormed[] = {
    {1, {0x00}, {0x7F}},
    {2, {0xC2, 0x80}, {0xDF, 0xBF}},
    {3, {0xE0, 0xA0, 0x80}, {0xE0, 0xBF, 0xBF}},
    {3, {0xE1, 0x80, 0x80}, {0xEC, 0xBF, 0xBF}},
    {3, {0xED, 0x80, 0x80}, {0xED, 0x9F, 0xBF}},
    {3, {0xEE, 0x80, 0x80}, {0xEF, 0xBF, 0xBF}},
    {4, {0xF0, 0x90, 0x80, 0x80}, {0xF0, 0xBF, 0xBF, 0xBF}},
    {4, {0xF1, 0x80, 0x80, 0x80}, {0xF3, 0xBF, 0xBF, 0xBF}},
    {4, {0xF4, 0x80, 0x80, 0x80}, {0xF4, 0x8F, 0xBF, 0xBF}},
};

// Length of the longest start of `text` that is a character or could become one, and whether it is one.
std::pair<std::size_t, bool> tabledStep(std::string_view text) {
  std::pair<std::size_t, bool> longest = {1, false};
  for (const ByteRanges& row : kWellFormed) {
    std::size_t fit = 0;
    while (fit < std::min(row.length, text.size()) && static_cast<unsigned char>(text[fit]) >= row.low[fit] &&
           static_cast<unsigned char>(text[fit]) <= row.high[fit]) {
      ++fit;
    }
    longest = std::max(longest, {fit, fit == row.length});
  }
  return longest;
}

// One failure a text, so that a fault does not print a million lines.
void expectDecodedAsTabled(std::string_view text) {
  std::size_t count = 0;
  bool valid = true;
  std::string repaired;
  for (std::string_view rest = text; !rest.empty(); ++count) {
    const auto [length, isCharacter] = tabledStep(rest);
    const DecodedCharacter got = decodeCharacter(rest);
    ASSERT_TRUE(got.length == length && got.valid == isCharacter && (isCharacter || got.codePoint == 0xFFFD))
        << testing::PrintToString(text) << " at " << text.size() - rest.size();
    valid = valid && isCharacter;
    repaired += isCharacter ? rest.substr(0, length) : "\xEF\xBF\xBD"sv;
    rest.remove_prefix(length);
  }
  ASSERT_TRUE(isValidUTF8(text) == valid && codePointCount(text) == count && repairedUTF8(text) == repaired)
      << testing::PrintToString(text);
}

TEST(Text, AnyBytesAreCutAsTheTableOfWellFormedUTF8Says) {
  EXPECT_EQ(decodeCharacter("").length, 0U);
  // All pairs, then each four bytes at which one of the table's ranges begins or ends.
  for (unsigned pair = 0; pair < 0x10000; ++pair) {
    const char bytes[] = {static_cast<char>(pair >> 8), static_cast<char>(pair & 0xFF), '\x80'};
    ASSERT_NO_FATAL_FAILURE(expectDecodedAsTabled({bytes, 2}));
    ASSERT_NO_FATAL_FAILURE(expectDecodedAsTabled({bytes, 3}));
  }
  constexpr auto kEdges = "\x00\x7F\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xDF\xE0\xE1\xED\xEE\xEF\xF0\xF1\xF4\xF5"sv;
  char bytes[5] = {};
  for (std::size_t i = 0; i < kEdges.size() * kEdges.size() * kEdges.size() * kEdges.size(); ++i) {
    for (std::size_t place = 0, digits = i; place < 4; ++place, digits /= kEdges.size()) {
      bytes[place] = kEdges[digits % kEdges.size()];
    }
    ASSERT_NO_FATAL_FAILURE(expectDecodedAsTabled({bytes, 5}));
  }
}

TEST(Text, EveryCharacterReadsBackAndTheImpossibleOnesAreReplaced) {
  std::string written;
  for (const char32_t c : U"\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF"sv) {
    appendUTF8(written, c);
  }
  EXPECT_EQ(written, "\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF");
  for (char32_t c = 0; c < 0x110400; ++c) {
    std::string text;
    appendUTF8(text, c);
    const bool impossible = (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF;
    const DecodedCharacter decoded = decodeCharacter(text);
    ASSERT_EQ(decoded.codePoint, impossible ? 0xFFFD : c) << static_cast<unsigned>(c);
    ASSERT_EQ(decoded.length, text.size());
  }
}

TEST(Text, CaseIsTheSameUnderEveryProcessLocale) {
  const struct {
    const char* name;
    const char* text;
    const char* lower;
    const char* words;
  } kRows[] = {
      {"plain letters", "HALL lamp 9th", "hall lamp 9th", "Hall Lamp 9th"},
      {"dotted letters of Turkish", "IŞIK istanbul", "işik istanbul", "Işik Istanbul"},
      {"accents", "ÉTÉ été", "été été", "Été Été"},
      {"beyond U+FFFF", "\U00010400\U00010401", "\U00010428\U00010429", "\U00010400\U00010429"},
      {"no single upper-case letter", "ß ﬁ", "ß ﬁ", "ß ﬁ"},
      {"blanks of other kinds part words", "a\u2003b\u00A0c\td", "a\u2003b\u00A0c\td", "A\u2003B\u00A0C\tD"},
      {"bytes that are no text", "A\xFF\xC3", "a\uFFFD\uFFFD", "A\uFFFD\uFFFD"},
  };
  const std::string before = setlocale(LC_ALL, nullptr);
  for (const char* locale : {"C", "C.UTF-8", "tr_TR.UTF-8", "de_DE.ISO-8859-1"}) {
    if (setlocale(LC_ALL, locale) == nullptr) {
      continue;  // Not on this machine.
    }
    SCOPED_TRACE(locale);
    for (const auto& row : kRows) {
      SCOPED_TRACE(row.name);
      EXPECT_EQ(lowercased(row.text), row.lower);
      EXPECT_EQ(wordsCapitalized(row.text), row.words);
    }
  }
  setlocale(LC_ALL, before.c_str());
}

TEST(Text, EndsAreComparedByWholeCharacters) {
  const struct {
    const char* name;
    std::string_view text;
    std::string_view suffix;
    bool expected;
  } kRows[] = {
      {"other case", "Porch LIGHTS", "lights", true},
      {"other case beyond ASCII", "LES ÉTÉS", "étés", true},
      {"case that changes the number of bytes", "5 \u212A", "5 k", true},
      {"longer than the text", "ts", "lights", false},
      {"last byte of a character", "é", "\xA9", false},
      {"shorter by a zero byte", "lights\0"sv, "lights", false},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(endsWithIgnoringCase(row.text, row.suffix), row.expected);
  }
}

TEST(Text, OnlyBlanksAtTheEndsAreTrimmed) {
  const struct {
    const char* name;
    std::string_view text;
    std::string_view expected;
  } kRows[] = {
      {"ASCII", " \t\r\n\v\fa b\n", "a b"},
      {"Unicode", "\u00A0\u0085\u1680\u2003\u2028\u202F\u3000x\u2029\u205F", "x"},
      {"invisible but no blank", "\u200Bx\uFEFF", "\u200Bx\uFEFF"},
      {"broken bytes stay", " \xC2 \xFF ", "\xC2 \xFF"},
      {"zero bytes stay", " \0 "sv, "\0"sv},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(trimmed(row.text), row.expected);
  }
}

TEST(Text, WholeNumbersStopAtTheEndsOfTheirRange) {
  constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
  const std::pair<const char*, std::int32_t> kRows[] = {{"", 0},
                                                        {"lamp", 0},
                                                        {"-0", 0},
                                                        {"+12", 12},
                                                        {"007x8", 7},
                                                        {" \t\n\u00A0\u2003-42 lamps", -42},
                                                        {"- 5", 0},
                                                        {"+-5", 0},
                                                        {"--5", 0},
                                                        {"0x10", 0},
                                                        {"1e3", 1},
                                                        {"\u0661\uFF15", 0},
                                                        {"\xFF 5", 0},
                                                        {"000000000000000000000000000000000005", 5},
                                                        {"2147483647", kHighest},
                                                        {"2147483648", kHighest},
                                                        {"-2147483648", kLowest},
                                                        {"-2147483649", kLowest},
                                                        {"4294967295", kHighest},
                                                        {"4294967296", kHighest},
                                                        {"42949672960", kHighest},
                                                        {"-18446744073709551617", kLowest}};
  for (const auto& [text, expected] : kRows) {
    EXPECT_EQ(lenientInteger(text), expected) << text;
  }
  EXPECT_EQ(lenientInteger(std::string(1 << 20, '9')), kHighest);
  EXPECT_EQ(lenientInteger("-" + std::string(1 << 20, '9')), kLowest);
}

TEST(Text, NumbersHaveTheirShortestText) {
  using Limits = std::numeric_limits<double>;
  const std::pair<double, const char*> kRows[] = {{85, "85"},
                                                  {25.0625, "25.0625"},
                                                  {0.1, "0.1"},
                                                  {-0.0, "-0"},
                                                  {1e300, "1e+300"},
                                                  {1.0 / 3, "0.3333333333333333"},
                                                  {5e-324, "5e-324"},
                                                  {Limits::max(), "1.7976931348623157e+308"},
                                                  {-Limits::infinity(), "-inf"},
                                                  {Limits::quiet_NaN(), "nan"},
                                                  {-Limits::quiet_NaN(), "nan"}};
  for (const auto& [number, expected] : kRows) {
    EXPECT_EQ(numberText(number), expected);
  }
}

}  // namespace
}  // namespace SharedClasses::platform
