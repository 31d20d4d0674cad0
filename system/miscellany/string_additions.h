// Additions to texts. Texts are UTF-8; pieces that are not come out as U+FFFD where a text is taken apart into
// characters, and pass unchanged elsewhere. Pure; safe on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace SharedClasses::QZAdditions {

// `text` with its first character in upper case, where that is one of a to z; else `text`, whatever the process locale.
// Kept: other letters stay as they are, "é" too.
[[nodiscard]] std::string firstCharacterCapitalized(std::string_view text);

// `text` without the characters that `set` holds, in any order. Absent where memory runs out.
[[nodiscard]] std::optional<std::string> stringByRemovingCharactersInSet(std::string_view text,
                                                                         std::u32string_view set);

// Where stringByReplacingOccurrencesOfString() gives up, in bytes.
inline constexpr std::size_t kMaximumReplacedLength = std::size_t{64} << 20;
inline constexpr std::size_t kMaximumReplacedWork = std::size_t{256} << 20;
struct ReplacingLimits {
  std::size_t length = kMaximumReplacedLength;  // of the text, at any time after it has grown
  std::size_t work = kMaximumReplacedWork;      // of all replacements together
};

// `stringByReplacingOccurrencesOfString:withString:`
// `text` with the first occurrence of `target` replaced, and again, searching from the start each time, until it holds
// none: ("aabb", "ab", "") gives "". Takes time linear in the lengths of `text` and of all replacements together.
// Gives `text` unchanged where that has no end or none in sight: where `replacement` holds `target`, where the text
// would grow beyond `limits.length`, where more than `limits.work` would be put in, as with ("…", "ab", "ba"), which
// sorts the letters of a text one pair at a time, and where memory runs out. An empty target is never found.
[[nodiscard]] std::string stringByReplacingOccurrencesOfString(std::string_view text, std::string_view target,
                                                               std::string_view replacement,
                                                               const ReplacingLimits& limits = {});

// A part of a text, in bytes.
struct TextRange {
  static constexpr std::size_t kNotFound = std::numeric_limits<std::size_t>::max();

  std::size_t location = kNotFound;
  std::size_t length = 0;

  friend constexpr bool operator==(const TextRange&, const TextRange&) = default;
};

// Line `line` of `text`, from 0, without its terminator: LF, CR, CR LF, NEL (U+0085), LS (U+2028) or PS (U+2029). Stops
// looking at the end of the text, whatever the number.
// Kept: a number past the last line gives the empty range at the end of the text, never kNotFound; so does the line
// behind a terminator that ends the text.
[[nodiscard]] TextRange rangeForLine(std::string_view text, std::uint32_t line);

}  // namespace SharedClasses::QZAdditions
