#include "platform/text.h"

#include <gtest/gtest.h>
#include <locale.h>

#include <limits>

namespace SharedClasses::platform {
namespace {

using namespace std::string_view_literals;

TEST(Text, MalformedPiecesAreReplacedAsTheUnicodeStandardRecommends) {
  // Last what is expected, with "?" for U+FFFD.
  const std::tuple<const char*, std::string_view, const char*> kRows[] = {
      // The examples of its chapter 3.9, then the nearest neighbours of what is well formed.
      {"stray and cut", "a\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64", "a???b?c??d"},
      {"overlong", "\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41\xC1\xBF", "????????A??"},
      {"surrogates", "\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41", "????????A"},
      {"beyond U+10FFFF", "\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42", "?????A??B"},
      {"cut in a row", "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", "????A"},
      {"too small, too large", "\xE0\x9F\xBF\xF0\x8F\xBF\xBF\xF4\x90\x80\x80\xF5\x80\x80\x80", "???????????????"},
      {"too low or high behind the lead", "\xC2\x7F\xC2\xC0\xF1\x80\x80\x7F\xF1\x80\x80\xC0", "?\x7F???\x7F??"},
  };
  for (const auto& [name, bytes, pattern] : kRows) {
    SCOPED_TRACE(name);
    std::string expected;
    for (const char c : std::string_view(pattern)) {
      expected += c == '?' ? "\uFFFD"sv : std::string_view(&c, 1);
    }
    EXPECT_EQ(repairedUTF8(bytes), expected);
    EXPECT_EQ(codePointCount(bytes), std::string_view(pattern).size());
    EXPECT_FALSE(isValidUTF8(bytes));
  }
}

TEST(Text, EveryCharacterReadsBackAndTheImpossibleOnesAreReplaced) {
  for (char32_t c = 0; c < 0x110400; ++c) {
    std::string text;
    appendUTF8(text, c);
    const bool impossible = (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF;
    const DecodedCharacter decoded = decodeCharacter(text);
    ASSERT_TRUE(decoded.valid && decoded.length == text.size()) << static_cast<unsigned>(c);
    ASSERT_EQ(decoded.codePoint, impossible ? 0xFFFD : c);
  }
}

TEST(Text, CaseIsTheSameUnderEveryProcessLocale) {
  const std::tuple<const char*, const char*, const char*, const char*> kRows[] = {
      {"dotted letters of Turkish", "IŞIK 9th istanbul", "işik 9th istanbul", "Işik 9th Istanbul"},
      {"beyond U+FFFF", "\U00010400\U00010401", "\U00010428\U00010429", "\U00010400\U00010429"},
      {"no single upper-case letter", "ß", "ß", "ß"},
      {"blanks of other kinds part words", "a\u2003b\u00A0c\td", "a\u2003b\u00A0c\td", "A\u2003B\u00A0C\tD"},
  };
  const std::string before = setlocale(LC_ALL, nullptr);
  for (const char* locale : {"C", "C.UTF-8", "tr_TR.UTF-8", "de_DE.ISO-8859-1"}) {
    SCOPED_TRACE(locale);
    setlocale(LC_ALL, locale);  // Where the machine lacks it, the one before is tried again.
    for (const auto& [name, text, lower, words] : kRows) {
      SCOPED_TRACE(name);
      EXPECT_EQ(lowercased(text), lower);
      EXPECT_EQ(wordsCapitalized(text), words);
    }
  }
  setlocale(LC_ALL, before.c_str());
}

TEST(Text, EndsAreComparedByWholeCharacters) {
  EXPECT_TRUE(endsWithIgnoringCase("ÄLights", "lights")) << "ASCII end of a text that is not";
  EXPECT_TRUE(endsWithIgnoringCase("LÄMPCHEN", "lämpchen"));
  EXPECT_TRUE(endsWithIgnoringCase("5 \u212A", "5 k")) << "case that changes the number of bytes";
  EXPECT_TRUE(endsWithIgnoringCase("500 k", "\u212A"));
  EXPECT_FALSE(endsWithIgnoringCase("ts", "lights"));
  EXPECT_FALSE(endsWithIgnoringCase("lights\0"sv, "lights"));
  EXPECT_FALSE(endsWithIgnoringCase("é", "\xA9")) << "the last byte of a character";
}

TEST(Text, OnlyBlanksAtTheEndsAreTrimmed) {
  EXPECT_EQ(trimmed(" \t\r\n\v\fa b\n"), "a b");
  EXPECT_EQ(trimmed("\u00A0\u0085\u1680\u2003\u2028\u202F\u3000x\u2029\u205F"), "x");
  EXPECT_EQ(trimmed("\u200Bx\uFEFF"), "\u200Bx\uFEFF") << "invisible but no blank";
  EXPECT_EQ(trimmed(" \xC2 \0 "sv), "\xC2 \0"sv);
}

TEST(Text, APrintableLineCannotDriveATerminal) {
  EXPECT_EQ(printableLine("\0\a\x1B[2J\x7F \u0080\u009B\u009F"sv), "???[2J? ???");
  EXPECT_EQ(printableLine("a\nb\r\nc\vd\u0085e"), "a?b??c?d?e");
  EXPECT_EQ(printableLine("\té\u00A0\xFF"), "\té\u00A0\uFFFD");
}

TEST(Text, WholeNumbersStopAtTheEndsOfTheirRange) {
  const std::string digits(1 << 20, '9');
  EXPECT_EQ(lenientInteger("007x8"), 7);
  EXPECT_EQ(lenientInteger(" \t\n\u00A0\u2003-42 lamps"), -42);
  EXPECT_EQ(lenientInteger("+000000000000000000000000000000000005"), 5);
  for (const char* text : {"", "- 5", "+-5", "0x10", "\u0661", "\xFF 5"}) {
    EXPECT_EQ(lenientInteger(text), 0) << text;
  }
  EXPECT_EQ(lenientInteger("-2147483647"), INT32_MIN + 1);
  for (const std::string& text : std::vector<std::string>{"2147483648", "4294967296", "11000000000", digits}) {
    EXPECT_EQ(lenientInteger(text), INT32_MAX) << text.substr(0, 60);
    EXPECT_EQ(lenientInteger("-" + text), INT32_MIN) << text.substr(0, 60);
  }
}

TEST(Text, NumbersHaveTheirShortestText) {
  using Limits = std::numeric_limits<double>;
  EXPECT_EQ(numberText(-0.0), "-0");
  EXPECT_EQ(numberText(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(numberText(Limits::max()), "1.7976931348623157e+308");
  EXPECT_EQ(numberText(-Limits::infinity()), "-inf");
  EXPECT_EQ(numberText(-Limits::quiet_NaN()), "nan");
}

}  // namespace
}  // namespace SharedClasses::platform
