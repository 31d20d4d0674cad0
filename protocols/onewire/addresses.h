// 1-Wire addresses: the text that a user types, its normal form, its eight bytes.
// The bytes stand in bus order: the family code, six bytes of serial number, the CRC-8 of these seven. Texts show them
// the other way round, the CRC first: "e9:00:00:05:e2:fd:c3:28".
// Every operation takes texts with blanks, with and without colons and in either case. Characters are code points.
// Pure; safe on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace SharedClasses::OneWireUtilities {

inline constexpr std::size_t kAddressSize = 8;  // bytes

// Eight groups of two lower-case hex digits with colons between them. Fifteen digits take a zero in front. The empty
// text for empty or absent text; absent unless fifteen or sixteen characters are left without blanks and colons.
// Kept: a pair with a character that is no hex digit is dropped without a word, and the colon before the next one is
// not, so that a bad first pair leaves a text that begins with ":". Such a text has fewer than eight groups; the
// operations below refuse it.
[[nodiscard]] std::optional<std::string> normalizedOneWireAddress(std::optional<std::string_view> address);

// The normal form without its colons.
[[nodiscard]] std::optional<std::string> compactOneWireAddress(std::optional<std::string_view> address);

inline constexpr std::int32_t kAddressRead = 0;
inline constexpr std::int32_t kAddressNotRead = -1;

// `bytes:withAddress:`
// Writes the address in bus order to the eight bytes at `bytes`: kAddressRead; else kAddressNotRead with all of them 0,
// also for a null pointer, which stays untouched. The CRC is not looked at.
// Kept: a text of fewer than sixteen characters, blanks counted, is refused, fifteen digits among them.
std::int32_t bytesWithAddress(std::uint8_t* bytes, std::optional<std::string_view> address);

// The normal form of eight bytes in bus order.
[[nodiscard]] std::string addressStringWithBytes(std::span<const std::uint8_t, kAddressSize> bytes);

// The last group; 0 for a text that is no address. The CRC is not looked at.
[[nodiscard]] std::uint32_t familyCodeFromAddress(std::optional<std::string_view> address);

// Whether `address` is one and its CRC is right. The family may be any.
[[nodiscard]] bool validAddress(std::optional<std::string_view> address);

}  // namespace SharedClasses::OneWireUtilities
