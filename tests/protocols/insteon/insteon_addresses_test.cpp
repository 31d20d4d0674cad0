#include "protocols/insteon/insteon_addresses.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace SharedClasses::Utilities {

TEST(INSTEONAddresses, TypedTextsAreNormalizedAndOnlyCanonicalOnesHaveAValue) {
  const std::string manyTabs = std::string(1 << 20, '\t') + "1a2B3c";
  const struct {
    std::string_view name, address;
    std::optional<std::string_view> normalized;
    std::uint32_t value;
  } kRows[] = {
      {"separators of two kinds", "1a:2b-3c", "1A.2B.3C", 0x1A2B3C},
      {"single digits are padded, save the last", "1.2.3", "01.02.3", 0},
      {"separator at the end pads and stays", "12.34.5-", "12.34.05.", 0},
      {"tab between two separators", "12.\t.34.56", std::nullopt, 0},
      {"empty", "", std::nullopt, 0},
      {"separator in front", ".12.34.56", std::nullopt, 0},
      {"blanks", "12 34 56", std::nullopt, 0},
      {"too many digits", "1234567", std::nullopt, 0},
      {"letter beyond F", "1G.2B.3C", std::nullopt, 0},
      {"zero byte inside", std::string_view("12.34\0.56", 9), std::nullopt, 0},
      {"low 8 bits of a wide letter", "\u0141A.2B.3C", std::nullopt, 0},
      {"broken UTF-8", "12.34.5\xFF", std::nullopt, 0},
      {"a megabyte of tabs", manyTabs, "1A.2B.3C", 0x1A2B3C},
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
    ASSERT_EQ(intWithINSTEONAddress(text), value);
  }
  EXPECT_EQ(insteonAddressWithInt(0x1000000), std::nullopt);
}

}  // namespace SharedClasses::Utilities
