#include "protocols/x10/x10_addresses.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace SharedClasses::X10Utilities {
namespace {

using platform::Value;
using namespace std::string_view_literals;

// By 4-bit code, as X10 publishes them.
constexpr std::string_view kHousesByCode = "MECKOGAINFDLPHBJ";
constexpr int kUnitsByCode[16] = {13, 5, 3, 11, 15, 7, 1, 9, 14, 6, 4, 12, 16, 8, 2, 10};

TEST(X10Addresses, AnyTextHasAHouseAUnitAndANormalForm) {
  constexpr auto kAbsent = std::nullopt;
  constexpr std::size_t kMegabyte = std::size_t{1} << 20;
  const std::string manyZeros = "A" + std::string(kMegabyte, '0') + "5";
  std::string noise = "B2";
  for (std::mt19937 random(11); noise.size() < kMegabyte;) {
    noise += static_cast<char>(random());
  }
  const std::string manyBlanks = std::string(kMegabyte, ' ') + "a1";
  const struct {
    std::string_view name, address;
    char house;
    int unit;
    std::optional<std::string_view> normalized;
  } kRows[] = {
      {"empty", "", 0, 0, ""},
      {"last of all", "p16", 'P', 16, "P16"},
      {"letter beyond P", "q1", 0, 1, "1"},
      {"no letter", "16", 0, 0, "16"},
      {"unit 17", "A17", 'A', 0, "A17"},
      {"unit counts modulo 256", "A257", 'A', 1, kAbsent},
      {"negative unit counts modulo 256", "A-255", 'A', 1, kAbsent},
      {"beyond 32 bits", "A4294967297", 'A', 0, kAbsent},
      {"far below 32 bits", "A-99999999999999999999", 'A', 0, kAbsent},
      {"digits before the letter", "12B5", 0, 5, kAbsent},
      {"blanks around", " b 2 ", 0, 2, "B2"},
      {"other blanks", "C\u00A0\n3", 'C', 3, "C3"},
      {"hyphen is dropped", "a-1", 'A', 0, "A1"},
      {"hyphen counts for the length", "a-10", 'A', 0, kAbsent},
      {"period", "A.2", 'A', 0, kAbsent},
      {"low 8 bits of a wide letter", "\u01415", 'A', 5, "5"},
      {"zero byte first", "\0A5"sv, 0, 5, "A5"},
      {"zero byte inside", "A\0005"sv, 'A', 0, "A5"},
      {"broken UTF-8 before", "\xC3\x42\x32", 0, 2, "B2"},
      {"broken UTF-8 behind", "B2\xFF", 'B', 2, "B2"},
      {"a megabyte of zeros", manyZeros, 'A', 5, kAbsent},
      {"a megabyte of noise", noise, 'B', 2, kAbsent},
      {"a megabyte of blanks", manyBlanks, 0, 1, "A1"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(houseOfAddress(row.address), row.house);
    EXPECT_EQ(unitOfAddress(row.address), row.unit);
    EXPECT_EQ(normalizedX10Address(row.address), row.normalized);
  }
}

TEST(X10Houses, EveryByteReadsAsAHouseAndForeignOnesAsA) {
  for (int byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    const auto code = static_cast<std::uint8_t>(byte);
    EXPECT_EQ(asciiFromHouseCode(code), byte % 16 != 0 ? 'A' : kHousesByCode[code / 16U]);
    const bool isLower = byte >= 'a' && byte <= 'z';
    const auto found = kHousesByCode.find(static_cast<char>(isLower ? byte - 'a' + 'A' : byte));
    EXPECT_EQ(houseCodeFromASCII(static_cast<char>(byte)), found == std::string_view::npos ? 0x60 : found * 16);
  }
}

TEST(X10Units, CodesGoBothWaysAndForeignOnesGiveUnit1) {
  for (int code = 0; code < 16; ++code) {
    EXPECT_EQ(unitIDToCode(kUnitsByCode[code]), code);
  }
  for (int code = -600; code <= 600; ++code) {
    const int low = code & 0xFF;
    EXPECT_EQ(unitCodeToID(code), low < 16 ? kUnitsByCode[low] : 1) << code;
  }
  EXPECT_EQ(unitCodeToID(std::numeric_limits<int>::min()), 13);
  EXPECT_EQ(unitCodeToID(std::numeric_limits<int>::max()), 1);
}

TEST(UnitBitMap, ElementsOfEveryKindHaveABitOrNone) {
  constexpr auto kLargest = std::numeric_limits<std::int64_t>::max();
  constexpr auto kSmallest = std::numeric_limits<std::int64_t>::min();
  const struct {
    const char* name;
    Value::List units;
    int map;
  } kRows[] = {
      {"first and last", {"A1", "A16"}, 0x1040},
      {"house does not count", {"A1", "P1", "A1"}, 0x0040},
      {"reals and booleans are numbers", {16.9, true}, 0x1040},
      {"unreadable texts set the bit of unit 13", {"", "7", "A17"}, 0x0001},
      {"foreign values set the bit of unit 13", {Value(), Value::List{1}, Value::Data{1}}, 0x0001},
      {"not a number is 0", {std::numeric_limits<double>::quiet_NaN()}, 0x0001},
      {"numbers out of range set nothing", {17, -1, 32, 257, kLargest, kSmallest, 1e300, -1e300}, 0},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(unitBitMapWithUnitIDs(row.units), row.map);
  }
}

TEST(UnitBitMap, EveryMapComesBackAndListsItsUnitsInTheOrderOfTheirCodes) {
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
}

TEST(UnitBitMap, AHouseIsWrittenBeforeTheUnitAsItIs) {
  EXPECT_EQ(unitIDsWithUnitBitMapAndHouse(0x0041, "A"), (Value::List{"A13", "A1"}));
  EXPECT_EQ(unitIDsWithUnitBitMapAndHouse(0x0001, "%@%d"), (Value::List{"%@%d13"}));
}

}  // namespace
}  // namespace SharedClasses::X10Utilities
