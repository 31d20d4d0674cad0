#include "platform/property_list_parts.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/text.h"

namespace SharedClasses::platform::property_list {

namespace {

constexpr std::string_view kBase64Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// What a byte of base64 is: the value of a digit, or one of these.
enum : std::uint8_t {
  kBlank = 64,
  kPadding,
  kForeign,
};

constexpr auto kBase64Meanings = [] {
  std::array<std::uint8_t, 256> meanings{};
  meanings.fill(kForeign);
  for (std::size_t value = 0; value < kBase64Digits.size(); ++value) {
    meanings[static_cast<unsigned char>(kBase64Digits[value])] = static_cast<std::uint8_t>(value);
  }
  for (const char blank : kXMLBlanks) {
    meanings[static_cast<unsigned char>(blank)] = kBlank;
  }
  meanings['='] = kPadding;
  return meanings;
}();

unsigned base64Meaning(char c) {
  return kBase64Meanings[static_cast<unsigned char>(c)];
}

// Appends what the first four characters stand for; false, and nothing appended, when they are not four digits.
bool appendQuartet(Value::Data& data, std::string_view text) {
  if (text.size() < 4) {
    return false;
  }
  unsigned bits = 0;
  unsigned anyMeaning = 0;
  for (const char c : text.substr(0, 4)) {
    const unsigned meaning = base64Meaning(c);
    bits = bits << 6 | meaning;
    anyMeaning |= meaning;
  }
  if (anyMeaning >= kBlank) {
    return false;
  }
  const auto byteAt = [bits](unsigned shift) { return static_cast<std::uint8_t>(bits >> shift); };
  data.insert(data.end(), {byteAt(16), byteAt(8), byteAt(0)});
  return true;
}

}  // namespace

void appendBase64(std::string& text, std::span<const std::uint8_t> data) {
  const auto appendDigit = [&text](unsigned bits, unsigned shift) { text += kBase64Digits[bits >> shift & 0x3FU]; };
  for (; data.size() >= 3; data = data.subspan(3)) {
    const unsigned bits = unsigned{data[0]} << 16 | unsigned{data[1]} << 8 | data[2];
    for (const unsigned shift : {18U, 12U, 6U, 0U}) {
      appendDigit(bits, shift);
    }
  }
  if (!data.empty()) {
    const bool isOne = data.size() == 1;
    const unsigned bits = unsigned{data[0]} << 16 | (isOne ? 0U : unsigned{data[1]} << 8);
    appendDigit(bits, 18);
    appendDigit(bits, 12);
    if (isOne) {
      text += "==";
    } else {
      appendDigit(bits, 6);
      text += '=';
    }
  }
}

std::optional<Value::Data> dataFromBase64(std::string_view text) {
  Value::Data data;
  data.reserve(text.size() / 4 * 3);
  unsigned digits = 0;  // of the last quartet, which has not ended
  unsigned padding = 0;
  unsigned bits = 0;  // the digits so far; older ones run out at the top
  while (!text.empty()) {
    if (digits == 0 && padding == 0 && appendQuartet(data, text)) {
      text.remove_prefix(4);
      continue;
    }
    const unsigned meaning = base64Meaning(text.front());
    text.remove_prefix(1);
    if (meaning == kPadding) {
      ++padding;
    } else if (meaning < kBlank && padding == 0) {
      bits = bits << 6 | meaning;
      digits = (digits + 1) % 4;
      if (digits != 1) {
        data.push_back(static_cast<std::uint8_t>(bits >> (4 - digits) % 4 * 2));
      }
    } else if (meaning != kBlank) {
      return std::nullopt;
    }
  }
  if (padding > 2 || (digits + padding) % 4 != 0) {
    return std::nullopt;
  }
  return data;
}

std::string excerpt(std::string_view text) {
  constexpr std::size_t kLongest = 60;
  std::string shown;
  for (const char32_t c : CodePoints(text)) {
    if (shown.size() >= kLongest) {
      return shown + "…";
    }
    const bool isControl = c < 0x20 || (c >= 0x7F && c < 0xA0);
    appendUTF8(shown, isBlank(c) ? U' ' : isControl ? U'?' : c);
  }
  return shown;
}

}  // namespace SharedClasses::platform::property_list
