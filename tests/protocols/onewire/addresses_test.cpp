#include "protocols/onewire/addresses.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/support/bitwise_crc.h"

namespace SharedClasses::OneWireUtilities {

using Bytes = std::array<std::uint8_t, kAddressSize>;

TEST(OneWireAddresses, AnyTextHasANormalFormBytesAFamilyAndAValidity) {
  constexpr Bytes kGood = {0x28, 0xC3, 0xFD, 0xE2, 0x05, 0, 0, 0xE9};
  constexpr Bytes kWrong = {0x28, 0xA1, 0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 0x4D};
  constexpr Bytes kTurned = {0x4D, 0xF6, 0xE5, 0xD4, 0xC3, 0xB2, 0xA1, 0x28};
  constexpr Bytes kShort = {0x05, 0, 0, 0, 0, 0, 0xF2, 0x01};
  const struct {
    std::string_view name;
    std::optional<std::string_view> address, normalized;
    std::optional<Bytes> bytes;  // absent where the text is refused
    std::uint32_t family;
    bool valid;
  } kRows[] = {
      {"absent", std::nullopt, "", std::nullopt, 0, false},
      {"empty", "", "", std::nullopt, 0, false},
      {"good", "e9:00:00:05:e2:fd:c3:28", "e9:00:00:05:e2:fd:c3:28", kGood, 0x28, true},
      {"blanks, upper case, no colons", " E9000005\u00A0E2FDC328\n", "e9:00:00:05:e2:fd:c3:28", kGood, 0x28, true},
      {"wrong CRC", "4df6e5d4c3b2a128", "4d:f6:e5:d4:c3:b2:a1:28", kWrong, 0x28, false},
      {"family first", "28 A1B2C3D4E5F64D", "28:a1:b2:c3:d4:e5:f6:4d", kTurned, 0x4D, false},
      {"fifteen digits have no bytes", "1f2000000000005", "01:f2:00:00:00:00:00:05", std::nullopt, 5, true},
      {"fifteen and a blank have", "1f2000000000005 ", "01:f2:00:00:00:00:00:05", kShort, 5, true},
      {"fourteen and many colons", "::17::000000000005::", std::nullopt, std::nullopt, 0, false},
      {"seventeen", "e9000005e2fdc3280", std::nullopt, std::nullopt, 0, false},
      {"bad first pair", "zz000005e2fdc328", ":00:00:05:e2:fd:c3:28", std::nullopt, 0, false},
      {"bad last pair", "e9000005e2fdc3-1", "e9:00:00:05:e2:fd:c3", std::nullopt, 0, false},
      {"fullwidth digit", "e9000005e2fdc32\uFF18", "e9:00:00:05:e2:fd:c3", std::nullopt, 0, false},
      {"broken UTF-8", "e9000005e2fd\xC3_28", "e9:00:00:05:e2:fd:28", std::nullopt, 0, false},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(normalizedOneWireAddress(row.address), row.normalized);
    std::string compact(row.normalized.value_or("absent"));
    std::erase(compact, ':');
    EXPECT_EQ(compactOneWireAddress(row.address).value_or("absent"), compact);
    Bytes bytes = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(bytesWithAddress(bytes.data(), row.address), row.bytes ? kAddressRead : kAddressNotRead);
    EXPECT_EQ(bytes, row.bytes.value_or(Bytes{}));
    EXPECT_EQ(bytesWithAddress(nullptr, row.address), kAddressNotRead);
    EXPECT_EQ(addressStringWithBytes(bytes), row.bytes ? *row.normalized : "00:00:00:00:00:00:00:00");
    EXPECT_EQ(familyCodeFromAddress(row.address), row.family);
    EXPECT_EQ(validAddress(row.address), row.valid);
  }
}

TEST(OneWireAddresses, EachFaultOfOneBitMakesThemInvalid) {
  Bytes bytes = {0x28, 0x4A, 0x30, 0xE2, 0x05, 0x00, 0x00};
  bytes.back() = static_cast<std::uint8_t>(tests::bitwiseCRC(std::span(bytes).first<7>(), 0x8C));
  EXPECT_TRUE(validAddress(addressStringWithBytes(bytes)));
  for (std::size_t bit = 0; bit < 64; ++bit) {
    Bytes faulty = bytes;
    faulty[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
    EXPECT_FALSE(validAddress(addressStringWithBytes(faulty))) << bit;
  }
}

}  // namespace SharedClasses::OneWireUtilities
