// The 1-Wire checksums as their polynomials define them, one bit at a time, without a table.
#pragma once

#include <cstdint>
#include <span>

namespace SharedClasses::tests {

// The register behind `bytes`, from `seed` on: `polynomial` is 0x8C for CRC-8, 0xA001 for CRC-16.
inline std::uint32_t bitwiseCRC(std::span<const std::uint8_t> bytes, std::uint32_t polynomial, std::uint32_t seed = 0) {
  for (const std::uint8_t byte : bytes) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      const bool carry = ((seed ^ byte >> bit) & 1U) != 0;
      seed = seed >> 1 ^ (carry ? polynomial : 0);
    }
  }
  return seed;
}

}  // namespace SharedClasses::tests
