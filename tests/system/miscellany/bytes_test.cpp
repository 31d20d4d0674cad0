#include "system/miscellany/bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

#include "tests/support/captured_log.h"

namespace SharedClasses::Utilities {
namespace {

TEST(Bytes, AddressesReadUnsignedAndMostSignificantFirst) {
  EXPECT_EQ(ipAddressFromInt(-1), "255.255.255.255");
  EXPECT_EQ(ipAddressFromInt(static_cast<std::int32_t>(0xC0A80001)), "192.168.0.1");
}

TEST(Bytes, ChecksumsTellEmptyFromAbsentAndWrap) {
  const Buffer two(std::array<std::uint8_t, 2>{0xFF, 0x02}.data(), 2);
  const Buffer many(std::vector<std::uint8_t>(258, 0xFF).data(), 258);
  const Buffer empty;
  const auto sums = [](const Buffer* buffer) { return std::pair<int, int>(checkSum(buffer), checkSum16Bit(buffer)); };
  EXPECT_EQ(sums(&two), std::pair(1, 65536 - 257));
  EXPECT_EQ(sums(&many), std::pair(258 * 255 % 256, 2 * 65536 - 258 * 255)) << "beyond 16 bits";
  EXPECT_EQ(sums(&empty), std::pair(0, 0));
  EXPECT_EQ(sums(nullptr), std::pair(255, 65535));
}

TEST(Bytes, DumpsHoldTenBytesARowLedByHexadecimalOffsets) {
  std::vector<std::uint8_t> bytes(11, 0x0F);
  bytes[10] = 0xA0;
  const std::string dump = "\t0000: 0x0f 0x0f 0x0f 0x0f 0x0f 0x0f 0x0f 0x0f 0x0f 0x0f \n\t000a: 0xa0 ";
  EXPECT_EQ(logBytesToString(bytes), dump);
  EXPECT_EQ(logBytesToString(std::span(bytes).first(10)), dump.substr(0, dump.find('\n'))) << "no row without bytes";
  EXPECT_EQ(logBytesToString({static_cast<const std::uint8_t*>(nullptr), 5}), "");
  EXPECT_TRUE(logBytesToString(std::vector<std::uint8_t>(65541)).ends_with("\n\t10004: 0x00 ")) << "five digits";
  const tests::CapturedLog log;
  logBytes(bytes);
  EXPECT_EQ(log.messages(), std::vector<std::string>{"\n" + dump + "\n\n"});
}

}  // namespace
}  // namespace SharedClasses::Utilities
