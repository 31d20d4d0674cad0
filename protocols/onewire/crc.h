// The two checksums of the 1-Wire bus: CRC-8 over addresses and scratch pads, CRC-16 over longer blocks.
// Pure; safe on any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace SharedClasses::OneWireUtilities {

// CRC-8 with the polynomial x^8 + x^5 + x^4 + 1, low bit first (0x8C), of each single byte.
inline constexpr std::array<std::uint8_t, 256> OneWireCRC8Table = [] {
  std::array<std::uint8_t, 256> table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte) {
    auto crc = static_cast<unsigned>(byte);
    for (int bit = 0; bit < 8; ++bit) {
      crc = (crc & 1U) != 0 ? crc >> 1 ^ 0x8CU : crc >> 1;
    }
    table[byte] = static_cast<std::uint8_t>(crc);
  }
  return table;
}();

// 1 for a nibble with an odd number of set bits.
inline constexpr std::array<std::int32_t, 16> OneWireCRC16Table = {0, 1, 1, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 1, 1, 0};

// `calcCRC8OfBytes:withSeed:`
// CRC-8, 0 to 255, from the low 8 bits of `initial` on.
[[nodiscard]] constexpr std::int32_t calcCRC8OfBytesWithSeed(std::span<const std::uint8_t> bytes,
                                                             std::int32_t initial) noexcept {
  auto crc = static_cast<std::uint8_t>(initial);
  for (const std::uint8_t byte : bytes) {
    crc = OneWireCRC8Table[crc ^ byte];
  }
  return crc;
}

// CRC-8 from 0. Over a block that ends in its own CRC it is 0.
[[nodiscard]] constexpr std::uint8_t calc1WireCRC(std::span<const std::uint8_t> bytes) noexcept {
  return static_cast<std::uint8_t>(calcCRC8OfBytesWithSeed(bytes, 0));
}

inline constexpr std::int32_t kBlockChecks = 0;
inline constexpr std::int32_t kBlockFails = -1;

// Whether a block ends in the inverted CRC-16 of what stands before it, low byte first, as devices send it:
// kBlockChecks or kBlockFails. The polynomial is x^16 + x^15 + x^2 + 1, low bit first (0xA001), from 0. The empty block
// fails.
[[nodiscard]] std::int32_t calc1WireCRC16(std::span<const std::uint8_t> bytes) noexcept;

// `calcCRC16OfBytes:withSeed:`
// The same from `initial` on.
// Kept: bits of `initial` above the low 16 are not masked off; they are shifted in byte by byte.
[[nodiscard]] std::int32_t calcCRC16OfBytesWithSeed(std::span<const std::uint8_t> bytes,
                                                    std::uint32_t initial) noexcept;

}  // namespace SharedClasses::OneWireUtilities
