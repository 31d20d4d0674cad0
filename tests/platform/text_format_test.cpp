#include "platform/text_format.h"

#include <gtest/gtest.h>

#include <limits>

namespace SharedClasses::platform {
namespace {

using namespace std::string_view_literals;
using Slots = std::vector<FormatSlot>;

TEST(TextFormat, SlotsAreFilledOnceAndEverythingElseStands) {
  const struct {
    const char* name;
    std::string_view format;
    std::string_view expected;  // with the arguments "hall %@", 40 and "%2$d%%"
  } kRows[] = {
      {"in order", "%@ to %d: %@", "hall %@ to 40: %2$d%%"},
      {"by number, as a translation turns them", "%3$@, %2$d, %1$@", "%2$d%%, 40, hall %@"},
      {"one argument twice", "%2$d%2$@", "4040"},
      {"either letter takes either kind", "%d %@", "hall %@ 40"},
      {"numbered ones do not count as ones in order", "%2$d %@ %d", "40 hall %@ 40"},
      {"percent signs", "100%% %%@ %%%% %%%2$d", "100% %@ %% %40"},
      {"too few arguments", "%4$@|%@%@%@%@|%99$@", "|hall %@40%2$d%%|"},
      {"C formats are no slots", "%s %i %5.2f %ld %n %x", "%s %i %5.2f %ld %n %x"},
      {"sign alone", "%", "%"},
      {"number alone", "%1", "%1"},
      {"number and mark alone", "%1$", "%1$"},
      {"argument 0", "%0$@", "%0$@"},
      {"endless number", "%99999999999$@", "%99999999999$@"},
      {"number beyond 64 bits", "%18446744073709551617$@", "%18446744073709551617$@"},
      {"zero bytes", "%\0@%1\0$@"sv, "%\0@%1\0$@"sv},
      {"empty", "", ""},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(filledFormat(row.format, {"hall %@", 40, std::string("%2$d%%")}), row.expected);
  }
}

TEST(TextFormat, WholeNumbersOfEveryTypeArePrintedInFull) {
  EXPECT_EQ(filledFormat("%d %d", {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}),
            "-9223372036854775808 9223372036854775807");
  EXPECT_EQ(filledFormat("%d %d", {std::uint8_t{200}, std::int16_t{-7}}), "200 -7");
  EXPECT_EQ(filledFormat("%d", {std::numeric_limits<std::uint64_t>::max()}).front(), '9') << "never negative";
}

TEST(TextFormat, AHostileFormatDoesNotFillTheMemory) {
  std::string format;
  for (int i = 0; i < 10000; ++i) {
    format += "%1$@";
  }
  const std::string argument(100000, 'x');
  const std::size_t length = filledFormat(format, {argument}).size();
  EXPECT_GE(length, kMaximumFilledLength);
  EXPECT_LE(length, kMaximumFilledLength + argument.size());
  EXPECT_EQ(filledFormat("%" + std::string(1 << 20, '0'), {}).size(), (1U << 20) + 1);
}

TEST(TextFormat, FormatsTakeTheSameArgumentsWhenTheirSlotsAreEqual) {
  const struct {
    const char* name;
    const char* format;
    Slots expected;
  } kRows[] = {
      {"none", "100%% %s", {}},
      {"in order", "%@ %d", {{1, '@'}, {2, 'd'}}},
      {"turned", "%2$d %1$@", {{1, '@'}, {2, 'd'}}},
      {"odd tails", "%@ %1$ %100$d %", {{1, '@'}}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_TRUE(formatSlots(row.format) == row.expected);
  }
}

}  // namespace
}  // namespace SharedClasses::platform
