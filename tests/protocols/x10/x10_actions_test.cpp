#include "protocols/x10/x10_actions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>

namespace SharedClasses::X10Utilities {
namespace {

// Percent of brightness after each of the 22 steps of a lamp module.
constexpr int kBrightness[] = {0, 1, 2, 5, 8, 12, 17, 23, 29, 36, 43, 50, 57, 64, 70, 77, 82, 88, 92, 95, 98, 99, 100};

// Slow, and of steps equally near the highest.
int nearestStep(int level) {
  int nearest = 0;
  for (int step = 1; step <= 22; ++step) {
    nearest = std::abs(kBrightness[step] - level) <= std::abs(kBrightness[nearest] - level) ? step : nearest;
  }
  return nearest;
}

int slowDimSteps(int from, int to, int total) {
  if (from == to) {
    return 0;
  }
  if (total == 22) {  // with the two levels that the search at either end misses
    return std::max(1, std::abs((to == 99 ? 22 : nearestStep(to)) - (from == 100 ? 23 : nearestStep(from))));
  }
  const auto stepsUpTo = [total](int level) { return total * std::acos(1 - level / 50.0) / std::acos(-1.0); };
  return static_cast<int>(std::floor(std::fabs(stepsUpTo(to) - stepsUpTo(from)) + 0.5));
}

TEST(DimSteps, AgreeWithASlowModelForEveryPairOfLevelsAndHaveAnAnswerOutside) {
  for (const int total : {22, 1, 2, 10, 16, 21, 23, 100, 255, 0, -16}) {
    for (int from = 0; from <= 100; ++from) {
      for (int to = 0; to <= 100; ++to) {
        ASSERT_EQ(dimStepsFrom(from, to, total), slowDimSteps(from, to, total)) << from << " " << to << " " << total;
      }
    }
  }
  EXPECT_EQ(dimStepsFrom(INT_MIN, INT_MAX, 22), 22) << "beyond the curve";
  EXPECT_EQ(dimStepsFrom(0, 100, INT_MAX), INT_MAX);
  EXPECT_EQ(dimStepsFrom(0, 101, 16), 0) << "above full on the cosine";
}

TEST(PercentFromDimSteps, LevelsStayBetweenOffAndFull) {
  for (int step = -1; step <= 23; ++step) {
    EXPECT_EQ(precentFromDimStepsWithTotalSteps(step, 22), kBrightness[std::clamp(step, 0, 22)]) << step;
  }
  EXPECT_EQ(precentFromDimStepsWithTotalSteps(11, 0), 50) << "no total is 22";
  EXPECT_EQ(precentFromDimStepsWithTotalSteps(1, 3), 25) << "a third of the cosine";
}

// The days are counted here from Monday, 0; X10 gives Sunday bit 0 and Monday bit 1.
TEST(DayMasks, EveryMaskNamesTheSameDaysBothWays) {
  for (int mask = 0; mask < 128; ++mask) {
    const int x10 = x10BitsFromDayOfWeek(mask);
    for (int day = 0; day < 7; ++day) {
      EXPECT_EQ(x10 >> ((day + 1) % 7) & 1, mask >> day & 1) << mask << " " << day;
    }
    EXPECT_EQ(daysOfWeekFromX10Bits(x10), mask);
    EXPECT_EQ(x10BitsFromDayOfWeek(mask | ~0x7F), x10) << "bits above 6 are ignored";
    EXPECT_EQ(daysOfWeekFromX10Bits(x10 | 0x80), mask | 0x40) << "bits above 6 move down like the others";
  }
}

}  // namespace
}  // namespace SharedClasses::X10Utilities
