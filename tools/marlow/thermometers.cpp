#include "tools/marlow/thermometers.h"

#include <algorithm>
#include <cmath>

#include "platform/text.h"
#include "protocols/onewire/ds18b20_scratch_pad.h"

namespace SharedClasses::marlow {

std::optional<ThermometerKind> thermometerKindOfName(std::string_view name) {
  if (name == "ds18s20") {
    return ThermometerKind::DS18S20;
  }
  return name == "ds18b20" ? std::optional(ThermometerKind::DS18B20) : std::nullopt;
}

std::optional<ThermometerKind> thermometerKindOfFamily(std::uint32_t familyCode) {
  if (familyCode == 0x10) {
    return ThermometerKind::DS18S20;
  }
  // DS1822, DS18B20, DS1825 and DS28EA00 hold their readings alike.
  constexpr std::uint32_t kLikeDS18B20[] = {0x22, 0x28, 0x3B, 0x42};
  const bool known = std::ranges::find(kLikeDS18B20, familyCode) != std::end(kLikeDS18B20);
  return known ? std::optional(ThermometerKind::DS18B20) : std::nullopt;
}

std::unique_ptr<ThermometerScratchPad> makePad(ThermometerKind kind, std::span<const std::uint8_t> data, bool setCRC) {
  if (kind == ThermometerKind::DS18S20) {
    return ThermometerScratchPad::scratchPadWithDataAndSetCRC(data, setCRC);
  }
  return DS18B20ScratchPad::scratchPadWithDataAndSetCRC(data, setCRC);
}

std::optional<std::vector<std::uint8_t>> bytesOfHexText(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  bool lowDigitNext = false;
  for (const char32_t c : platform::CodePoints(text)) {
    const std::optional<unsigned> digit = platform::hexDigitValue(c);
    if (!digit && (lowDigitNext || !(platform::isBlank(c) || c == U':' || c == U'<' || c == U'>'))) {
      return std::nullopt;
    }
    if (digit && lowDigitNext) {
      bytes.back() = static_cast<std::uint8_t>(unsigned{bytes.back()} << 4 | *digit);
    } else if (digit) {
      bytes.push_back(static_cast<std::uint8_t>(*digit));
    }
    lowDigitNext = digit && !lowDigitNext;
  }
  return lowDigitNext ? std::nullopt : std::optional(std::move(bytes));
}

std::string hexTextOfBytes(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += platform::hexDigits(byte, 2);
  }
  return text;
}

bool isTemperatureUnit(std::string_view units) {
  return units == "C" || units == "F" || units == "K";
}

std::string temperatureText(double temperature, std::string_view units) {
  if (!std::isfinite(temperature)) {
    return "no temperature";
  }
  const double shown = std::round(temperature * 100) / 100 + 0.0;  // 0.0 takes the sign off a zero
  return platform::numberText(shown) + (units == "K" ? " " : " °") + std::string(units);
}

}  // namespace SharedClasses::marlow
