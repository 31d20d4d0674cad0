// Addresses as a person or a recording writes them, in the one form by which the tool knows a device.
// Stricter than the library, which mends what it can: here a slip is a fault. Pure; safe on any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace SharedClasses::marlow {

// "A1" from "a 01"; "B" for a whole house. Absent for anything but a house letter A to P and a unit 1 to 16 or none;
// `*fault`, where given, then says what is wrong.
[[nodiscard]] std::optional<std::string> x10Address(std::string_view text, std::string* fault = nullptr);

// "1A.2B.3C" from three whole groups; absent for anything else.
[[nodiscard]] std::optional<std::string> insteonAddress(std::string_view text);

// The normal form of a 1-Wire address, "e9:00:00:05:e2:fd:c3:28". Some programs write the bytes the other way round,
// the family first; they are read so where only that makes the CRC right. Absent where neither does.
[[nodiscard]] std::optional<std::string> oneWireAddress(std::string_view text);

}  // namespace SharedClasses::marlow
