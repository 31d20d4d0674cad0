#include "protocols/onewire/addresses.h"

#include <algorithm>
#include <array>

#include "platform/text.h"
#include "protocols/onewire/crc.h"

namespace SharedClasses::OneWireUtilities {

namespace {

constexpr std::size_t kDigits = 2 * kAddressSize;
constexpr unsigned kNoDigit = 16;

// The values of an address's sixteen characters as they stand in the text, kNoDigit for what is no hex digit.
using Digits = std::array<unsigned, kDigits>;
using Bytes = std::array<std::uint8_t, kAddressSize>;

struct Characters {
  Digits digits{};
  std::size_t count = 0;  // of all characters of the text, blanks and colons among them
};

// Absent unless fifteen or sixteen characters are left without blanks and colons.
std::optional<Characters> charactersOf(std::string_view address) {
  Characters characters;
  Digits& digits = characters.digits;
  std::size_t count = 0;
  for (; !address.empty(); ++characters.count) {
    // Nearly every text is ASCII, which needs no decoding.
    const auto byte = static_cast<unsigned char>(address.front());
    const auto [c, length, valid] =
        byte < 0x80 ? platform::DecodedCharacter{byte, 1, true} : platform::decodeCharacter(address);
    address.remove_prefix(length);
    const std::optional<unsigned> digit = platform::hexDigitValue(c);
    if (!digit && (c == U':' || platform::isBlank(c))) {
      continue;
    }
    if (count == kDigits) {
      return std::nullopt;
    }
    digits[count++] = digit.value_or(kNoDigit);
  }
  if (count == kDigits - 1) {
    std::rotate(digits.begin(), digits.end() - 1, digits.end());  // The unused last place is the zero in front.
  } else if (count < kDigits) {
    return std::nullopt;
  }
  return characters;
}

bool isPair(const Digits& digits, std::size_t i) {
  return digits[i] != kNoDigit && digits[i + 1] != kNoDigit;
}

char digitCharacter(unsigned value) {
  return "0123456789abcdef"[value];
}

std::string textOf(const Digits& digits) {
  std::string text;
  text.reserve(kDigits + kAddressSize - 1);
  for (std::size_t i = 0; i < kDigits; i += 2) {
    if (isPair(digits, i)) {
      if (i > 0) {
        text += ':';
      }
      text += digitCharacter(digits[i]);
      text += digitCharacter(digits[i + 1]);
    }
  }
  return text;
}

// Absent where a pair is bad.
std::optional<Bytes> bytesOf(const Digits& digits) {
  Bytes bytes{};
  for (std::size_t i = 0; i < kDigits; i += 2) {
    if (!isPair(digits, i)) {
      return std::nullopt;
    }
    bytes[kAddressSize - 1 - i / 2] = static_cast<std::uint8_t>(digits[i] << 4 | digits[i + 1]);
  }
  return bytes;
}

std::optional<Bytes> bytesOf(std::optional<std::string_view> address) {
  const auto characters = charactersOf(address.value_or(""));
  return characters ? bytesOf(characters->digits) : std::nullopt;
}

}  // namespace

std::optional<std::string> normalizedOneWireAddress(std::optional<std::string_view> address) {
  if (!address || address->empty()) {
    return "";
  }
  const auto characters = charactersOf(*address);
  return characters ? std::optional(textOf(characters->digits)) : std::nullopt;
}

std::optional<std::string> compactOneWireAddress(std::optional<std::string_view> address) {
  std::optional<std::string> text = normalizedOneWireAddress(address);
  if (text) {
    std::erase(*text, ':');
  }
  return text;
}

std::int32_t bytesWithAddress(std::uint8_t* bytes, std::optional<std::string_view> address) {
  if (bytes == nullptr) {
    return kAddressNotRead;
  }
  const auto characters = charactersOf(address.value_or(""));
  const bool isLongEnough = characters && characters->count >= kDigits;
  const std::optional<Bytes> read = isLongEnough ? bytesOf(characters->digits) : std::nullopt;
  std::ranges::copy(read.value_or(Bytes{}), bytes);
  return read ? kAddressRead : kAddressNotRead;
}

std::string addressStringWithBytes(std::span<const std::uint8_t, kAddressSize> bytes) {
  Digits digits{};
  for (std::size_t i = 0; i < kAddressSize; ++i) {
    const unsigned byte = bytes[kAddressSize - 1 - i];
    digits[2 * i] = byte >> 4;
    digits[2 * i + 1] = byte & 0x0FU;
  }
  return textOf(digits);
}

std::uint32_t familyCodeFromAddress(std::optional<std::string_view> address) {
  const std::optional<Bytes> bytes = bytesOf(address);
  return bytes ? bytes->front() : 0;
}

bool validAddress(std::optional<std::string_view> address) {
  const std::optional<Bytes> bytes = bytesOf(address);
  return bytes && calc1WireCRC(std::span(*bytes).first<kAddressSize - 1>()) == bytes->back();
}

}  // namespace SharedClasses::OneWireUtilities
