#include "protocols/insteon/insteon_addresses.h"

#include "platform/text.h"

namespace SharedClasses::Utilities {

namespace {

constexpr int kGroups = 3;
constexpr std::size_t kCanonicalLength = 8;  // "1A.2B.3C"
constexpr std::string_view kUpperHexDigits = "0123456789ABCDEF";

}  // namespace

std::optional<std::string> normalizedINSTEONAddress(std::string_view address) {
  // Three groups of two digits and a final period: short enough that the text holds them without allocating.
  std::string normalized;
  int groups = 0;
  int digitsInGroup = 0;
  for (const char c : address) {
    if (c == '\t') {
      continue;  // Kept: accepted, but no separator.
    }
    if (c == '.' || c == ':' || c == '-') {
      if (digitsInGroup == 0) {
        return std::nullopt;
      }
      if (digitsInGroup == 1) {
        normalized.insert(normalized.size() - 1, 1, '0');
      }
      normalized += '.';
      digitsInGroup = 0;
      continue;
    }
    const auto digit = platform::hexDigitValue(static_cast<unsigned char>(c));
    if (!digit) {
      return std::nullopt;
    }
    if (digitsInGroup == 2) {
      normalized += '.';
      digitsInGroup = 0;
    }
    // Stopping at a fourth group also bounds the number of digits to six.
    if (digitsInGroup == 0 && ++groups > kGroups) {
      return std::nullopt;
    }
    normalized += kUpperHexDigits[*digit];
    ++digitsInGroup;
  }
  if (groups != kGroups) {
    return std::nullopt;
  }
  return normalized;
}

std::uint32_t intWithINSTEONAddress(std::string_view address) {
  const std::optional<std::string> normalized = normalizedINSTEONAddress(address);
  if (!normalized || normalized->size() != kCanonicalLength) {
    return 0;
  }
  std::uint32_t value = 0;
  for (const char c : *normalized) {
    if (const auto digit = platform::hexDigitValue(static_cast<unsigned char>(c))) {
      value = value << 4 | *digit;
    }
  }
  return value;
}

std::optional<std::string> insteonAddressWithInt(std::uint32_t value) {
  if (value > 0xFFFFFF) {
    return std::nullopt;
  }
  std::string address;
  for (int shift = 20; shift >= 0; shift -= 4) {
    address += kUpperHexDigits[value >> shift & 0xFU];
    if (shift == 16 || shift == 8) {
      address += '.';
    }
  }
  return address;
}

}  // namespace SharedClasses::Utilities
