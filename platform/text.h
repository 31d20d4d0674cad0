// Text as code points: UTF-8 that survives any bytes, case and blanks by code point, lenient numbers.
// Nothing here depends on the process locale. Pure; safe on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace SharedClasses::platform {

// Stands for bytes that are not UTF-8.
inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// One step through UTF-8.
struct DecodedCharacter {
  char32_t codePoint;  // kReplacementCharacter for bytes that are not UTF-8
  std::size_t length;  // bytes consumed; at least 1 unless the input was empty
  bool valid;          // false for bytes that are not UTF-8
};

// The first code point of `text`. Bytes that are not UTF-8 (stray, cut, overlong, surrogate, above U+10FFFF) are taken
// as one replacement character for each longest piece that could have begun a character. Empty input gives {0, 0,
// false}.
[[nodiscard]] DecodedCharacter decodeCharacter(std::string_view text);

// The code points of a text, for range-based loops: `for (char32_t c : CodePoints(text))`.
class CodePoints {
 public:
  class Iterator {
   public:
    explicit Iterator(std::string_view rest) : mRest(rest), mCurrent(decodeCharacter(rest)) {}
    [[nodiscard]] char32_t operator*() const { return mCurrent.codePoint; }
    Iterator& operator++() {
      mRest.remove_prefix(mCurrent.length);
      mCurrent = decodeCharacter(mRest);
      return *this;
    }
    // The text from the current code point on.
    [[nodiscard]] std::string_view rest() const { return mRest; }
    [[nodiscard]] friend bool operator==(const Iterator& a, const Iterator& b) {
      return a.mRest.size() == b.mRest.size();
    }

   private:
    std::string_view mRest;
    DecodedCharacter mCurrent;
  };

  explicit CodePoints(std::string_view text) : mText(text) {}
  [[nodiscard]] Iterator begin() const { return Iterator(mText); }
  [[nodiscard]] Iterator end() const { return Iterator(mText.substr(mText.size())); }

 private:
  std::string_view mText;
};

// Appends the UTF-8 form of `codePoint`; that of the replacement character for surrogates and numbers above U+10FFFF.
void appendUTF8(std::string& text, char32_t codePoint);

// Whether every byte of `text` is part of well-formed UTF-8.
[[nodiscard]] bool isValidUTF8(std::string_view text);

// `text` with every malformed piece replaced by U+FFFD; the same bytes when it was well formed.
[[nodiscard]] std::string repairedUTF8(std::string_view text);

// `text` on one line that cannot drive a terminal: control characters but tabs, line breaks among them, become "?",
// malformed pieces U+FFFD.
[[nodiscard]] std::string printableLine(std::string_view text);

// Number of code points; a malformed piece counts as one.
[[nodiscard]] std::size_t codePointCount(std::string_view text);

// Whether `codePoint` is white space or a line break, the Unicode ones included (no-break spaces too).
[[nodiscard]] bool isBlank(char32_t codePoint);

// ASCII alone, whatever the locale: addresses and codes are read with these.
[[nodiscard]] constexpr bool isASCIILetter(char32_t c) {
  return (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z');
}
[[nodiscard]] constexpr bool isASCIIDigit(char32_t c) {
  return c >= U'0' && c <= U'9';
}
[[nodiscard]] constexpr char32_t asciiUpper(char32_t c) {
  return c >= U'a' && c <= U'z' ? c - 0x20 : c;
}
[[nodiscard]] constexpr char32_t asciiLower(char32_t c) {
  return c >= U'A' && c <= U'Z' ? c + 0x20 : c;
}

// The value of a hexadecimal digit of either case, 0 to 15; absent for any other character.
[[nodiscard]] constexpr std::optional<unsigned> hexDigitValue(char32_t c) {
  if (isASCIIDigit(c)) {
    return static_cast<unsigned>(c - U'0');
  }
  const char32_t lower = asciiLower(c);
  if (lower >= U'a' && lower <= U'f') {
    return static_cast<unsigned>(lower - U'a') + 10;
  }
  return std::nullopt;
}

// Words for people: simple case mapping, one code point to one ('ß' stays). Malformed pieces become U+FFFD.
[[nodiscard]] std::string lowercased(std::string_view text);

// The first letter of each word in upper case, the rest in lower case; words are what blanks part.
[[nodiscard]] std::string wordsCapitalized(std::string_view text);

// Whether `text` ends with `suffix`, case aside.
[[nodiscard]] bool endsWithIgnoringCase(std::string_view text, std::string_view suffix);

// `text` without the blanks at its two ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

// Reads a whole number from the start of `text`: blanks, a sign, decimal digits; what follows is ignored.
// 0 when there are no digits; the nearest end of the 32-bit range when the number lies beyond it.
[[nodiscard]] std::int32_t lenientInteger(std::string_view text);

// As lenientInteger, in the 64-bit range.
[[nodiscard]] std::int64_t lenientInteger64(std::string_view text);

// `number` in lower-case hex digits, with zeros in front up to `minimumDigits` of them: (10, 2) gives "0a".
[[nodiscard]] std::string hexDigits(std::uint64_t number, std::size_t minimumDigits);

// The shortest decimal form that reads back as `number`: "85", "25.0625", "1e+300", "nan", "-inf".
[[nodiscard]] std::string numberText(double number);

}  // namespace SharedClasses::platform
