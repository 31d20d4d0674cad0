#include "platform/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cwctype>
#include <iterator>
#include <limits>

#include "platform/saturating.h"

namespace SharedClasses::platform {

namespace {

// The C library's own Unicode tables, reached without touching the process locale. Null where the C library has no
// C.UTF-8; case then falls back to ASCII. Never freed: texts may be worded until the process ends.
locale_t unicodeLocale() {
  static const locale_t sLocale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return sLocale;
}

char32_t toLower(char32_t c) {
  if (c < 0x80 || unicodeLocale() == nullptr) {
    return asciiLower(c);
  }
  return static_cast<char32_t>(towlower_l(static_cast<wint_t>(c), unicodeLocale()));
}

char32_t toUpper(char32_t c) {
  if (c < 0x80 || unicodeLocale() == nullptr) {
    return asciiUpper(c);
  }
  return static_cast<char32_t>(towupper_l(static_cast<wint_t>(c), unicodeLocale()));
}

bool isASCII(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// How a lead byte begins a character: the number of bytes, and the range of the second byte, which rules out overlong
// forms, surrogates and numbers above U+10FFFF.
struct LeadByte {
  std::size_t length;
  unsigned char secondLow;
  unsigned char secondHigh;
};

LeadByte classify(unsigned char lead) {
  if (lead >= 0xC2 && lead <= 0xDF) {
    return {2, 0x80, 0xBF};
  }
  if (lead >= 0xE0 && lead <= 0xEF) {
    const unsigned char low = lead == 0xE0 ? 0xA0 : 0x80;
    const unsigned char high = lead == 0xED ? 0x9F : 0xBF;
    return {3, low, high};
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    const unsigned char low = lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char high = lead == 0xF4 ? 0x8F : 0xBF;
    return {4, low, high};
  }
  return {0, 0, 0};
}

}  // namespace

DecodedCharacter decodeCharacter(std::string_view text) {
  if (text.empty()) {
    return {0, 0, false};
  }
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) {
    return {lead, 1, true};
  }
  const LeadByte kind = classify(lead);
  if (kind.length == 0) {
    return {kReplacementCharacter, 1, false};
  }
  char32_t codePoint = lead & (0x7FU >> kind.length);
  for (std::size_t i = 1; i < kind.length; ++i) {
    const unsigned char low = i == 1 ? kind.secondLow : 0x80;
    const unsigned char high = i == 1 ? kind.secondHigh : 0xBF;
    const unsigned char next = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
    if (next < low || next > high) {
      return {kReplacementCharacter, i, false};
    }
    codePoint = codePoint << 6 | (next & 0x3FU);
  }
  return {codePoint, kind.length, true};
}

void appendUTF8(std::string& text, char32_t codePoint) {
  if (codePoint < 0x80) {
    text += static_cast<char>(codePoint);
    return;
  }
  if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) {
    codePoint = kReplacementCharacter;
  }
  const auto continuation = [codePoint](unsigned shift) {
    return static_cast<char>(0x80U | (codePoint >> shift & 0x3FU));
  };
  if (codePoint < 0x800) {
    text += static_cast<char>(0xC0U | codePoint >> 6);
  } else if (codePoint < 0x10000) {
    text += static_cast<char>(0xE0U | codePoint >> 12);
    text += continuation(6);
  } else {
    text += static_cast<char>(0xF0U | codePoint >> 18);
    text += continuation(12);
    text += continuation(6);
  }
  text += continuation(0);
}

bool isValidUTF8(std::string_view text) {
  while (!text.empty()) {
    const DecodedCharacter next = decodeCharacter(text);
    if (!next.valid) {
      return false;
    }
    text.remove_prefix(next.length);
  }
  return true;
}

std::string repairedUTF8(std::string_view text) {
  std::string repaired;
  repaired.reserve(text.size());
  for (const char32_t c : CodePoints(text)) {
    appendUTF8(repaired, c);
  }
  return repaired;
}

std::string printableLine(std::string_view text) {
  std::string line;
  line.reserve(text.size() + 1);
  for (const char32_t c : CodePoints(text)) {
    const bool isControl = (c < 0x20 && c != U'\t') || (c >= 0x7F && c < 0xA0);
    appendUTF8(line, isControl ? U'?' : c);
  }
  return line;
}

std::size_t codePointCount(std::string_view text) {
  const CodePoints points(text);
  std::size_t count = 0;
  for (auto point = points.begin(); point != points.end(); ++point) {
    ++count;
  }
  return count;
}

bool isBlank(char32_t c) {
  if (c < 0x80) {
    return c == U' ' || (c >= 0x09 && c <= 0x0D);
  }
  return c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 ||
         c == 0x202F || c == 0x205F || c == 0x3000;
}

std::string lowercased(std::string_view text) {
  std::string lowered;
  lowered.reserve(text.size());
  for (const char32_t c : CodePoints(text)) {
    appendUTF8(lowered, toLower(c));
  }
  return lowered;
}

std::string wordsCapitalized(std::string_view text) {
  std::string capitalized;
  capitalized.reserve(text.size());
  bool atWordStart = true;
  for (const char32_t c : CodePoints(text)) {
    appendUTF8(capitalized, atWordStart ? toUpper(c) : toLower(c));
    atWordStart = isBlank(c);
  }
  return capitalized;
}

bool endsWithIgnoringCase(std::string_view text, std::string_view suffix) {
  // Where both ends are ASCII, bytes are characters and nothing before them need be read: most names of devices.
  const std::string_view end = text.substr(text.size() - std::min(text.size(), suffix.size()));
  if (end.size() == suffix.size() && isASCII(end) && isASCII(suffix)) {
    const auto lower = [](char c) { return asciiLower(static_cast<unsigned char>(c)); };
    return std::ranges::equal(end, suffix, {}, lower, lower);
  }
  const std::size_t textLength = codePointCount(text);
  const std::size_t suffixLength = codePointCount(suffix);
  if (suffixLength > textLength) {
    return false;
  }
  const CodePoints textPoints(text);
  const CodePoints suffixPoints(suffix);
  auto tail = textPoints.begin();
  for (std::size_t i = suffixLength; i < textLength; ++i) {
    ++tail;
  }
  for (auto wanted = suffixPoints.begin(); wanted != suffixPoints.end(); ++wanted, ++tail) {
    if (toLower(*tail) != toLower(*wanted)) {
      return false;
    }
  }
  return true;
}

std::string_view trimmed(std::string_view text) {
  const CodePoints points(text);
  auto point = points.begin();
  while (point != points.end() && isBlank(*point)) {
    ++point;
  }
  const std::string_view rest = point.rest();
  std::size_t kept = 0;
  for (; point != points.end(); ++point) {
    if (!isBlank(*point)) {
      kept = rest.size() - point.rest().size() + decodeCharacter(point.rest()).length;
    }
  }
  return rest.substr(0, kept);
}

std::int32_t lenientInteger(std::string_view text) {
  return saturatingCast<std::int32_t>(lenientInteger64(text));
}

std::int64_t lenientInteger64(std::string_view text) {
  const CodePoints points(text);
  auto point = points.begin();
  while (point != points.end() && isBlank(*point)) {
    ++point;
  }
  std::string_view digits = point.rest();
  const bool negative = digits.starts_with('-');
  if (negative || digits.starts_with('+')) {
    digits.remove_prefix(1);
  }
  using Limits = std::numeric_limits<std::int64_t>;
  std::int64_t number = 0;  // its negative, which reaches one further
  for (const char c : digits) {
    if (c < '0' || c > '9') {
      break;
    }
    const int digit = c - '0';
    if (number < (Limits::min() + digit) / 10) {
      return negative ? Limits::min() : Limits::max();
    }
    number = number * 10 - digit;
  }
  return negative ? number : -std::max(number, -Limits::max());
}

std::string hexDigits(std::uint64_t number, std::size_t minimumDigits) {
  std::array<char, 16> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
  const std::string_view text(digits.data(), end);
  return std::string(minimumDigits - std::min(minimumDigits, text.size()), '0').append(text);
}

std::string numberText(double number) {
  if (std::isnan(number)) {
    return "nan";  // without the sign that some computations leave on it
  }
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return {text.data(), end};
}

}  // namespace SharedClasses::platform
