// X10 addresses: a house letter A to P and a unit number 1 to 16, their 4-bit codes on the wire, and maps of units.
// Letters, case and digits are ASCII whatever the locale. Stateless; safe on any thread; only what returns a text or a
// list allocates.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace SharedClasses {

// The 4-bit unit code of unit n at position n - 1.
extern const std::array<std::uint8_t, 16> gUnitCodes;

namespace X10Utilities {

// The house letter, 'A' to 'P', with which `address` begins; 0 when it begins with anything else or is empty.
// Kept: the first character counts with its low 8 bits, so that U+0141 reads as 'A'.
[[nodiscard]] char houseOfAddress(std::string_view address);

// The unit number, 1 to 16, behind the first letter of `address`; 0 when there is none.
// Kept: what stands before the first letter is passed over ("12B5" is unit 5), and the number counts modulo 256 before
// its range is looked at ("A257" and "A-255" are unit 1).
[[nodiscard]] std::uint8_t unitOfAddress(std::string_view address);

// The house letter of `houseCode`, a byte with the 4-bit code in its high half.
// Kept: a byte whose low half is not 0 gives 'A'.
[[nodiscard]] char asciiFromHouseCode(std::uint8_t houseCode);

// The byte that carries the 4-bit code of house `letter`, of either case, in its high half.
// Kept: any other character gives the code of house A.
[[nodiscard]] std::uint8_t houseCodeFromASCII(char letter);

// `address` without blanks, in upper case, with nothing but A to P and digits in it. An empty address gives the empty
// text. Absent when more than three characters that are no blanks stand in it, or a period.
// Kept: the shape is not looked at ("16A" stays, "Q1" gives "1"), and characters that are dropped count for the length
// ("a-10" is absent).
[[nodiscard]] std::optional<std::string> normalizedX10Address(std::string_view address);

// The 4-bit code of `unit`, 1 to 16.
// Kept: unit 0 gives 0xC0, whose low five bits name bit 0 of a unit map. Other numbers name no unit and give 0xFF.
[[nodiscard]] std::uint8_t unitIDToCode(std::int64_t unit);

// The unit number of `code`, which counts modulo 256.
// Kept: a code above 15 gives unit 1.
[[nodiscard]] std::uint8_t unitCodeToID(int code);

// The map of `units`, each an address or a number: bit n stands for the unit whose *code* is n.
// Kept: an address without a unit, and a value that is neither text nor number, set bit 0, the bit of unit 13. Numbers
// outside 0 to 16 set nothing.
[[nodiscard]] std::uint16_t unitBitMapWithUnitIDs(std::span<const platform::Value> units);

// `unitIDsWithUnitBitMap:andHouse:`
// The units of `map` in the order of their codes (13, 5, 3, 11, 15, 7, 1, 9, 14, 6, 4, 12, 16, 8, 2, 10): numbers, or
// with a `house`, texts of the house and the number ("A13").
[[nodiscard]] platform::Value::List unitIDsWithUnitBitMapAndHouse(std::uint16_t map,
                                                                  std::optional<std::string_view> house);

}  // namespace X10Utilities

}  // namespace SharedClasses
