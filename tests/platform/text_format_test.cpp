#include "platform/text_format.h"

#include <gtest/gtest.h>

namespace SharedClasses::platform {
namespace {

TEST(TextFormat, SlotsAreFilledOnceAndEverythingElseStands) {
  // The format, the result with the arguments "hall %@", 40 and "%2$d%%"; the slots in order of argument
  const std::tuple<const char*, std::string_view, std::string_view, std::vector<FormatSlot>> kRows[] = {
      {"in order", "%@ to %d: %@", "hall %@ to 40: %2$d%%", {{1, '@'}, {2, 'd'}, {3, '@'}}},
      {"by number, as a translation turns them", "%2$d, %1$@", "40, hall %@", {{1, '@'}, {2, 'd'}}},
      {"one argument as either kind", "%2$d%2$@", "4040", {{2, '@'}, {2, 'd'}}},
      {"numbered ones do not count as ones in order", "%2$d %@", "40 hall %@", {{1, '@'}, {2, 'd'}}},
      {"percent signs", "100%% %%@ %%%2$d", "100% %@ %40", {{2, 'd'}}},
      {"too few arguments", "%4$@|%99$@", "|", {{4, '@'}, {99, '@'}}},
      {"C formats are no slots", "%s %i %5.2f %ld %n", "%s %i %5.2f %ld %n", {}},
      {"cut and odd ones",
       "%1$ %0$@ %100$d %18446744073709551617$@ %",
       "%1$ %0$@ %100$d %18446744073709551617$@ %",
       {}},
      {"zero bytes", {"%\0@%1\0$@", 9}, {"%\0@%1\0$@", 9}, {}},
  };
  for (const auto& [name, format, expected, slots] : kRows) {
    SCOPED_TRACE(name);
    EXPECT_EQ(filledFormat(format, {"hall %@", 40, std::string("%2$d%%")}), expected);
    EXPECT_TRUE(formatSlots(format) == slots);
  }
}

TEST(TextFormat, WholeNumbersStopAtTheEndsOf64SignedBits) {
  EXPECT_EQ(filledFormat("%d", {INT64_MIN}), "-9223372036854775808");
  EXPECT_EQ(filledFormat("%d", {UINT64_MAX}), "9223372036854775807");
  EXPECT_EQ(filledFormat("%d %d", {std::uint8_t{200}, std::int16_t{-7}}), "200 -7");
}

TEST(TextFormat, AHostileFormatDoesNotFillTheMemory) {
  const std::string argument(kMaximumFilledLength - 1, 'x');
  EXPECT_EQ(filledFormat("%1$@%1$@%1$@%1$@", {argument}).size(), 2 * argument.size());
}

}  // namespace
}  // namespace SharedClasses::platform
