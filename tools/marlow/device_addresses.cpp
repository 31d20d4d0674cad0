#include "tools/marlow/device_addresses.h"

#include <algorithm>
#include <array>

#include "platform/text.h"
#include "protocols/insteon/insteon_addresses.h"
#include "protocols/onewire/addresses.h"
#include "protocols/x10/x10_addresses.h"

namespace SharedClasses::marlow {

namespace {

constexpr std::int32_t kUnits = 16;
constexpr std::size_t kCanonicalINSTEONLength = 8;

}  // namespace

std::optional<std::string> x10Address(std::string_view text, std::string* fault) {
  const auto fail = [fault](const char* message) {
    if (fault != nullptr) {
      *fault = message;
    }
    return std::nullopt;
  };
  const std::string_view typed = platform::trimmed(text);
  const char house = X10Utilities::houseOfAddress(typed);
  if (house == 0) {
    return fail("no house letter A to P in front; write a house letter and a unit, such as A1");
  }
  const std::string_view digits = platform::trimmed(typed.substr(1));
  if (!std::ranges::all_of(digits, [](char c) { return platform::isASCIIDigit(static_cast<unsigned char>(c)); })) {
    return fail("more than a unit behind the house letter; write them such as A1");
  }
  if (digits.empty()) {
    return std::string(1, house);
  }
  const std::int32_t unit = platform::lenientInteger(digits);
  if (unit < 1 || unit > kUnits) {
    return fail("the unit is none of 1 to 16");
  }
  return house + std::to_string(unit);
}

std::optional<std::string> insteonAddress(std::string_view text) {
  std::optional<std::string> address = Utilities::normalizedINSTEONAddress(text);
  return address && address->size() == kCanonicalINSTEONLength ? address : std::nullopt;
}

std::optional<std::string> oneWireAddress(std::string_view text) {
  if (OneWireUtilities::validAddress(text)) {
    return OneWireUtilities::normalizedOneWireAddress(text);
  }
  std::array<std::uint8_t, OneWireUtilities::kAddressSize> bytes{};
  if (OneWireUtilities::bytesWithAddress(bytes.data(), text) != OneWireUtilities::kAddressRead) {
    return std::nullopt;
  }
  std::ranges::reverse(bytes);
  std::string turned = OneWireUtilities::addressStringWithBytes(bytes);
  return OneWireUtilities::validAddress(turned) ? std::optional(std::move(turned)) : std::nullopt;
}

}  // namespace SharedClasses::marlow
