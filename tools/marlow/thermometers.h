// 1-Wire thermometers as the tool's commands see them: which family is of which kind, readings as texts.
// Pure; safe on any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "protocols/onewire/thermometer_scratch_pad.h"

namespace SharedClasses::marlow {

enum class ThermometerKind {
  DS18S20,
  DS18B20
};

// "ds18s20" or "ds18b20"; absent for any other name.
[[nodiscard]] std::optional<ThermometerKind> thermometerKindOfName(std::string_view name);

// Absent for a family that is no thermometer of the two kinds.
[[nodiscard]] std::optional<ThermometerKind> thermometerKindOfFamily(std::uint32_t familyCode);

// Null unless `data` are nine bytes.
[[nodiscard]] std::unique_ptr<ThermometerScratchPad> makePad(ThermometerKind kind, std::span<const std::uint8_t> data,
                                                             bool setCRC);

// Pairs of hex digits with blanks, colons and the brackets of a printed block ("<aa004b46 87>") between them. Absent
// for anything else.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> bytesOfHexText(std::string_view text);

// "aa004b46ffff0c1087"
[[nodiscard]] std::string hexTextOfBytes(std::span<const std::uint8_t> bytes);

// "C", "F" and "K".
[[nodiscard]] bool isTemperatureUnit(std::string_view units);

// "21.5 °C", "294.65 K": at most two decimals. "no temperature" for what is not finite.
[[nodiscard]] std::string temperatureText(double temperature, std::string_view units);

}  // namespace SharedClasses::marlow
