#include "protocols/onewire/crc.h"

namespace SharedClasses::OneWireUtilities {

namespace {

// What the register holds behind a block and its inverted CRC.
constexpr std::uint32_t kResidue = 0xB001;

}  // namespace

std::int32_t calc1WireCRC16(std::span<const std::uint8_t> bytes) noexcept {
  return calcCRC16OfBytesWithSeed(bytes, 0);
}

std::int32_t calcCRC16OfBytesWithSeed(std::span<const std::uint8_t> bytes, std::uint32_t initial) noexcept {
  std::uint32_t crc = initial;
  for (const std::uint8_t byte : bytes) {
    std::uint32_t mixed = (byte ^ crc) & 0xFFU;
    crc >>= 8;
    if (OneWireCRC16Table[mixed & 0x0FU] != OneWireCRC16Table[mixed >> 4]) {
      crc ^= 0xC001U;
    }
    mixed <<= 6;
    crc ^= mixed;
    mixed <<= 1;
    crc ^= mixed;
  }
  return crc == kResidue ? kBlockChecks : kBlockFails;
}

}  // namespace SharedClasses::OneWireUtilities
