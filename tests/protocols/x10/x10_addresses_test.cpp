#include "protocols/x10/x10_addresses.h"

#include <gtest/gtest.h>

#include <cctype>
#include <limits>

namespace SharedClasses::X10Utilities {

using platform::Value;

// By 4-bit code, as X10 publishes them.
constexpr std::string_view kHousesByCode = "MECKOGAINFDLPHBJ";
constexpr int kUnitsByCode[16] = {13, 5, 3, 11, 15, 7, 1, 9, 14, 6, 4, 12, 16, 8, 2, 10};

TEST(X10Addresses, AnyTextHasAHouseAUnitAndANormalForm) {
  const struct {
    std::string_view name, address;
    char house;
    int unit;
    std::optional<std::string_view> normalized;
  } kRows[] = {
      {"empty", "", 0, 0, ""},
      {"last of all", "p16", 'P', 16, "P16"},
      {"letter beyond P", "q1", 0, 1, "1"},
      {"unit 17", "A17", 'A', 0, "A17"},
      {"unit counts modulo 256", "A257", 'A', 1, std::nullopt},
      {"negative unit counts modulo 256", "A-255", 'A', 1, std::nullopt},
      {"beyond 32 bits", "A4294967297", 'A', 0, std::nullopt},
      {"digits before the letter", "12B5", 0, 5, std::nullopt},
      {"blanks around and within", " c\u00A0\n3", 0, 3, "C3"},
      {"hyphen is dropped", "a-1", 'A', 0, "A1"},
      {"hyphen counts for the length", "a-10", 'A', 0, std::nullopt},
      {"period", "A.2", 'A', 0, std::nullopt},
      {"low 8 bits of a wide letter", "\u01415", 'A', 5, "5"},
      {"zero byte inside", std::string_view("A\0005", 3), 'A', 0, "A5"},
      {"broken UTF-8", "\xC3\x42\x32", 0, 2, "B2"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(houseOfAddress(row.address), row.house);
    EXPECT_EQ(unitOfAddress(row.address), row.unit);
    EXPECT_EQ(normalizedX10Address(row.address), row.normalized);
  }
}

TEST(X10Codes, EveryByteReadsAsAHouseAndAUnitAndForeignOnesAsA1) {
  for (int byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    const auto code = static_cast<std::uint8_t>(byte);
    EXPECT_EQ(asciiFromHouseCode(code), byte % 16 == 0 ? kHousesByCode[code / 16U] : 'A');
    const auto found = kHousesByCode.find(static_cast<char>(std::toupper(byte)));
    EXPECT_EQ(houseCodeFromASCII(static_cast<char>(byte)), found == std::string_view::npos ? 0x60 : found * 16);
    EXPECT_EQ(unitCodeToID(byte), byte < 16 ? kUnitsByCode[byte] : 1);
    EXPECT_EQ(unitCodeToID(byte - 0x10000), unitCodeToID(byte)) << "counts modulo 256";
    EXPECT_EQ(unitIDToCode(kUnitsByCode[byte % 16]), byte % 16);
  }
}

TEST(UnitBitMap, ElementsOfEveryKindHaveABitOrNoneAndEveryMapComesBackInTheOrderOfCodes) {
  const auto mapOf = [](const Value::List& units) { return unitBitMapWithUnitIDs(units); };
  EXPECT_EQ(mapOf({"A1", "P1", "A16"}), 0x1040) << "house does not count";
  EXPECT_EQ(mapOf({16.9, true}), 0x1040) << "reals and booleans are numbers";
  EXPECT_EQ(mapOf({"", "7", "A17"}), 0x0001) << "unreadable texts set the bit of unit 13";
  EXPECT_EQ(mapOf({Value(), Value::List{1}, Value::Data{1}}), 0x0001) << "and so do foreign values";
  EXPECT_EQ(mapOf({std::numeric_limits<double>::quiet_NaN()}), 0x0001) << "not a number is 0";
  EXPECT_EQ(mapOf({17, -1, 32, 257, std::numeric_limits<std::int64_t>::min(), 1e300, -1e300}), 0) << "out of range";
  for (unsigned map = 0; map <= 0xFFFF; ++map) {
    Value::List expected;
    for (unsigned code = 0; code < 16; ++code) {
      if ((map & 1U << code) != 0) {
        expected.emplace_back(kUnitsByCode[code]);
      }
    }
    const Value::List units = unitIDsWithUnitBitMapAndHouse(static_cast<std::uint16_t>(map), std::nullopt);
    ASSERT_EQ(units, expected) << map;
    ASSERT_EQ(unitBitMapWithUnitIDs(units), map);
    ASSERT_EQ(unitBitMapWithUnitIDs(unitIDsWithUnitBitMapAndHouse(static_cast<std::uint16_t>(map), "P")), map);
  }
  EXPECT_EQ(unitIDsWithUnitBitMapAndHouse(0x0041, "%@%d"), (Value::List{"%@%d13", "%@%d1"}));
}

}  // namespace SharedClasses::X10Utilities
