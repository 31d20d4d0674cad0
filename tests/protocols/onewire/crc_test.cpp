#include "protocols/onewire/crc.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/bitwise_crc.h"

namespace SharedClasses::OneWireUtilities {

using Block = std::vector<std::uint8_t>;
using tests::bitwiseCRC;

static const Block sCheckInput = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};  // of all published check values

TEST(CRC8, GivesThePublishedCheckValueAndAgreesWithThePolynomialFromEverySeed) {
  EXPECT_EQ(calc1WireCRC(sCheckInput), 0xA1) << "CRC-8/MAXIM";
  EXPECT_EQ(calcCRC8OfBytesWithSeed({}, -255), 1) << "of the initial value the low 8 bits count, also without bytes";
  Block block;
  for (std::uint32_t initial = 0; initial < 256; ++initial) {
    block.push_back(static_cast<std::uint8_t>(initial * 37));
    EXPECT_EQ(OneWireCRC8Table[initial], bitwiseCRC(Block{0}, 0x8C, initial));
    EXPECT_EQ(calcCRC8OfBytesWithSeed(block, static_cast<std::int32_t>(initial - 256)),
              bitwiseCRC(block, 0x8C, initial));
  }
}

TEST(CRC16, ABlockChecksBehindItsInvertedCRCFromEverySeedAndNotWithAFlippedBit) {
  Block block = sCheckInput;
  block.insert(block.end(), {0xC2, 0x44});  // CRC-16/MAXIM is 0x44C2, inverted already
  EXPECT_EQ(calc1WireCRC16(block), 0);
  for (std::size_t bit = 0; bit < 8 * block.size(); ++bit) {
    Block faulty = block;
    faulty[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
    EXPECT_EQ(calc1WireCRC16(faulty), -1) << bit;
  }
  EXPECT_EQ(calc1WireCRC16({}), -1);
  EXPECT_EQ(calcCRC16OfBytesWithSeed({}, 0x1B001), -1) << "no mask to 16 bits";
  for (std::uint32_t initial = 1; initial < 0x80000000; initial += initial / 7 + 1) {
    block.assign(2 + initial % 5, static_cast<std::uint8_t>(initial));  // two bytes shift out what stands above 16 bits
    const std::uint32_t crc = ~bitwiseCRC(block, 0xA001, initial);
    block.insert(block.end(), {static_cast<std::uint8_t>(crc), static_cast<std::uint8_t>(crc >> 8)});
    EXPECT_EQ(calcCRC16OfBytesWithSeed(block, initial), 0) << initial;
  }
}

}  // namespace SharedClasses::OneWireUtilities
