// INSTEON device addresses: the text a user types, its canonical form, its 24-bit value.
// Stateless; safe on any thread; allocates only where the result is a text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace SharedClasses::Utilities {

// Brings `address` to groups of two upper-case hex digits joined by periods ("1A.2B.3C"). Period, colon and hyphen part
// groups; a run of digits is cut into pairs. Absent for an empty address, for one that does not hold three groups, for
// two separators in a row or one in front, and for any character but these and hex digits, a blank included.
// Kept: a tab is passed over and parts nothing ("12\t34" reads as "1234").
// Kept: the last group is not padded ("1.2.3" gives "01.02.3") and a final separator stays ("12.34.56."); the value of
// such an address reads as 0.
[[nodiscard]] std::optional<std::string> normalizedINSTEONAddress(std::string_view address);

// The value of `address`: the first group in bits 23 to 16, the last in bits 7 to 0. 0 when its normal form is not the
// canonical one of eight characters; so 0 stands for 00.00.00 and for failure.
[[nodiscard]] std::uint32_t intWithINSTEONAddress(std::string_view address);

// The canonical text of an address value; absent when any of bits 31 to 24 is set.
[[nodiscard]] std::optional<std::string> insteonAddressWithInt(std::uint32_t value);

}  // namespace SharedClasses::Utilities
