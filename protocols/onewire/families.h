// What kind of device a 1-Wire family code stands for, in the user's language. Safe on any thread.
#pragma once

#include <cstdint>
#include <string>

namespace SharedClasses::OneWireUtilities {

// The name of a family, such as "Thermometer (DS18B20)" for 0x28; empty for one that the tables do not know.
[[nodiscard]] std::string familyName(std::uint32_t familyCode);

// The key of that name in the default table: "key1WireFamilyForCode28".
[[nodiscard]] std::string familyNameKey(std::uint32_t familyCode);

}  // namespace SharedClasses::OneWireUtilities
