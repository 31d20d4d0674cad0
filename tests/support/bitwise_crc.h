// The 1-Wire checksums as their polynomials define them, one bit at a time, without a table.
#pragma once

#include <cstdint>
#include <span>

namespace SharedClasses::tests {

// The register behind `bytes`, from `crc` on: `polynomial` is 0x8C for CRC-8, 0xA001 for CRC-16.
inline std::uint32_t bitwiseCRC(std::span<const std::uint8_t> bytes, std::uint32_t polynomial, std::uint32_t crc = 0) {
  for (const std::uint8_t byte : bytes) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      const bool carry = ((crc ^ byte >> bit) & 1U) != 0;
      crc = crc >> 1 ^ (carry ? polynomial : 0);
    }
  }
  return crc;
}

}  // namespace SharedClasses::tests
