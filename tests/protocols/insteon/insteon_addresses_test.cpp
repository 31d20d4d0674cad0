#include "protocols/insteon/insteon_addresses.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <random>

namespace SharedClasses::Utilities {
namespace {

using namespace std::string_view_literals;

TEST(INSTEONAddresses, TypedTextsAreNormalizedAndOnlyCanonicalOnesHaveAValue) {
  constexpr auto kAbsent = std::nullopt;
  constexpr std::size_t kMegabyte = std::size_t{1} << 20;
  const std::string manyTabs = std::string(kMegabyte, '\t') + "1A2B3C";
  const std::string manyDigits(kMegabyte, 'F');
  std::string noise;
  for (std::mt19937 random(13); noise.size() < kMegabyte;) {
    noise += static_cast<char>(random());
  }
  const struct {
    std::string_view name, address;
    std::optional<std::string_view> normalized;
    std::uint32_t value;
  } kRows[] = {
      {"canonical", "1A.2B.3C", "1A.2B.3C", 0x1A2B3C},
      {"colons", "1a:2b:3c", "1A.2B.3C", 0x1A2B3C},
      {"no separators", "1a2b3c", "1A.2B.3C", 0x1A2B3C},
      {"single digits are padded, save the last", "1.2.3", "01.02.3", 0},
      {"last digit alone", "12.34.5", "12.34.5", 0},
      {"separator at the end stays", "12.34.56.", "12.34.56.", 0},
      {"separator at the end pads", "12.34.5-", "12.34.05.", 0},
      {"tab parts nothing", "12\t34\t56", "12.34.56", 0x123456},
      {"tab between two separators", "12.\t.34.56", kAbsent, 0},
      {"empty", "", kAbsent, 0},
      {"separator in front", ".12.34.56", kAbsent, 0},
      {"two separators in a row", "12..34.56", kAbsent, 0},
      {"blanks", "12 34 56", kAbsent, 0},
      {"two groups", "1234", kAbsent, 0},
      {"too many digits", "1234567", kAbsent, 0},
      {"four groups", "1.2.3.4", kAbsent, 0},
      {"letter beyond F", "1G.2B.3C", kAbsent, 0},
      {"zero byte inside", "12.34\0.56"sv, kAbsent, 0},
      {"digits that are not ASCII", "１２.34.56", kAbsent, 0},
      {"low 8 bits of a wide letter", "\u0141A.2B.3C", kAbsent, 0},
      {"broken UTF-8", "12.34.5\xFF", kAbsent, 0},
      {"a megabyte of tabs", manyTabs, "1A.2B.3C", 0x1A2B3C},
      {"a megabyte of digits", manyDigits, kAbsent, 0},
      {"a megabyte of noise", noise, kAbsent, 0},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(normalizedINSTEONAddress(row.address), row.normalized);
    EXPECT_EQ(intWithINSTEONAddress(row.address), row.value);
  }
}

// The expected text is the C library's.
TEST(INSTEONAddresses, ValuesOfTheWholeRangeComeBackFromTheirText) {
  for (std::uint32_t value = 0; value <= 0xFFFFFF; value += value < 0xFFFF00 ? 251 : 1) {
    char text[16];
    std::snprintf(text, sizeof text, "%02X.%02X.%02X", value >> 16, value >> 8 & 0xFF, value & 0xFF);
    ASSERT_EQ(insteonAddressWithInt(value), text);
    ASSERT_EQ(normalizedINSTEONAddress(text), text);
    ASSERT_EQ(intWithINSTEONAddress(text), value);
  }
  for (const std::uint32_t value : {0x1000000U, 0x1A2B3C4DU, 0x80000000U, std::numeric_limits<std::uint32_t>::max()}) {
    EXPECT_EQ(insteonAddressWithInt(value), std::nullopt) << value;
  }
}

}  // namespace
}  // namespace SharedClasses::Utilities
