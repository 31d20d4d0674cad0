#include "system/miscellany/string_additions.h"

#include <gtest/gtest.h>

namespace SharedClasses::QZAdditions {
namespace {

using std::string_literals::operator""s;

// Every text of 'a' and 'b' up to `length`, the empty one first.
std::vector<std::string> textsUpTo(std::size_t length) {
  std::vector<std::string> texts{""};
  for (std::size_t i = 0; texts[i].size() < length; ++i) {
    texts.push_back(texts[i] + "a");
    texts.push_back(texts[i] + "b");
  }
  return texts;
}

std::string literallyReplaced(const std::string& text, const std::string& target, const std::string& with,
                              const ReplacingLimits& limits) {
  std::string result = text;
  std::size_t work = 0;
  for (std::size_t at; !target.empty() && (at = result.find(target)) != result.npos;) {
    result.replace(at, target.size(), with);
    work += with.size();
    if (work > limits.work || (with.size() > target.size() && result.size() > limits.length)) {
      return text;
    }
  }
  return result;
}

// Few results come near the wide limits; the narrow ones are met exactly by many.
TEST(StringAdditions, ReplacingEqualsSearchingFromTheStartEachTimeWithinTheLimits) {
  for (const auto& limits : {ReplacingLimits{.length = 40, .work = 100}, ReplacingLimits{.length = 5, .work = 6}}) {
    for (const std::string& text : textsUpTo(7)) {
      for (const std::string& target : textsUpTo(4)) {
        for (const std::string& with : textsUpTo(3)) {
          ASSERT_EQ(stringByReplacingOccurrencesOfString(text, target, with, limits),
                    literallyReplaced(text, target, with, limits))
              << "'" << text << "' '" << target << "' '" << with << "'";
        }
      }
    }
  }
}

TEST(StringAdditions, ReplacingEndsWhateverThePair) {
  const std::string many(1 << 20, 'a');
  const std::tuple<const char*, std::string, std::string, std::string, std::string, ReplacingLimits> rows[] = {
      {"a replacement that holds the target", "xabx", "ab", "(ab)", "xabx", {}},
      {"twice as long for each letter", many + "b", "ab", "bba", many + "b", {.length = 1 << 22}},
      {"millions of pairs to sort", many + "b" + many + "b", "ab", "ba", many + "b" + many + "b", {.work = 1 << 20}},
      {"nested to the middle of a long text", many + std::string(1 << 20, 'b'), "ab", "", "", {}},
      {"a long target that begins at each byte", many + many + "b", many + "b", "c", many + "c", {}},
      {"bytes that are no text, and NUL", "\xFF\0\xC2"s, "\xFF\0"s, "\xFE", "\xFE\xC2", {}},
  };
  for (const auto& [name, text, target, replacement, expected, limits] : rows) {
    EXPECT_TRUE(stringByReplacingOccurrencesOfString(text, target, replacement, limits) == expected) << name;
  }
}

TEST(StringAdditions, CapitalsAndRemovedCharacters) {
  EXPECT_EQ(firstCharacterCapitalized("") + firstCharacterCapitalized("zONE"), "ZONE");
  EXPECT_EQ(firstCharacterCapitalized("éa"), "éa");
  EXPECT_EQ(stringByRemovingCharactersInSet("naïve 😀\n", U"😀vïé"), "nae \n");
  EXPECT_EQ(stringByRemovingCharactersInSet("ab\xC3", U""), "ab\uFFFD");
  EXPECT_EQ(stringByRemovingCharactersInSet("\xC3\xA9\xC3", U"\uFFFD\xC3"), "é") << "members are characters, not bytes";
}

TEST(StringAdditions, LinesEndAtEveryTerminatorAndTheTextAtItsEnd) {
  const std::string text = "a\n\rb\r\n\r\nc\u0085dé\u2028\u2029e\v\xE2\x80\xC2\n";
  const TextRange end{text.size(), 0};
  const std::vector<TextRange> lines{{0, 1}, {2, 0}, {3, 1}, {6, 0}, {8, 1}, {11, 3}, {17, 0}, {20, 5}, end, end};
  for (std::size_t line = 0; line < lines.size(); ++line) {
    EXPECT_EQ(rangeForLine(text, static_cast<std::uint32_t>(line)), lines[line]) << line;
  }
  EXPECT_EQ(rangeForLine(text, 0xFFFFFFFF), end);
  EXPECT_EQ(rangeForLine("a\nbc", 1), (TextRange{2, 2})) << "a last line without a terminator";
}

}  // namespace
}  // namespace SharedClasses::QZAdditions
