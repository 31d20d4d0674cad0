#include "protocols/x10/x10_actions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace SharedClasses::X10Utilities {
namespace {

constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

// Percent of brightness after each of the 22 steps of a lamp module.
constexpr int kBrightness[] = {0, 1, 2, 5, 8, 12, 17, 23, 29, 36, 43, 50, 57, 64, 70, 77, 82, 88, 92, 95, 98, 99, 100};

// A slow walk up the curve for as long as the next step is no farther from the level. `lastTried` is the last step that is
// looked at; a walk that is not turned back by then ends one beyond it.
int stepReached(int level, int lastTried) {
  int step = 0;
  while (step < lastTried && std::abs(kBrightness[step + 1] - level) <= std::abs(kBrightness[step] - level)) {
    ++step;
  }
  return step == lastTried ? lastTried + 1 : step;
}

int slowDimSteps(int from, int to, int total) {
  constexpr double kPi = 3.141592653589793;
  if (from == to) {
    return 0;
  }
  if (total == 22) {
    return std::max(1, std::abs(stepReached(to, 21) - stepReached(from, 22)));
  }
  const double start = total * std::acos(1 - from / 50.0) / kPi;
  const double end = total * std::acos(1 - to / 50.0) / kPi;
  return static_cast<int>(std::floor(std::fabs(end - start) + 0.5));
}

TEST(DimSteps, AgreeWithASlowModelForEveryPairOfLevels) {
  for (const int total : {22, 1, 2, 10, 16, 21, 23, 100, 255, 0, -16}) {
    for (int from = 0; from <= 100; ++from) {
      for (int to = 0; to <= 100; ++to) {
        ASSERT_EQ(dimStepsFrom(from, to, total), slowDimSteps(from, to, total)) << from << " " << to << " " << total;
      }
    }
  }
}

TEST(DimSteps, LevelsAndTotalsFarOutsideHaveAnAnswer) {
  const struct {
    const char* name;
    std::int32_t from, to, total, steps;
  } kRows[] = {
      {"down the curve is one step more", 100, 0, 22, 23},
      {"nearly full is the same step to go to as full", 0, 99, 22, 22},
      {"one percent within a step", 50, 51, 22, 1},
      {"halfway between two steps counts as the higher", 0, 10, 22, 5},
      {"two levels above full start at 23 and end at 22", 150, 200, 22, 1},
      {"all the way up", kSmallest, kLargest, 22, 22},
      {"all the way down", kLargest, kSmallest, 22, 23},
      {"half the cosine", 0, 50, 16, 8},
      {"endless steps", 0, 100, kLargest, kLargest},
      {"above full on the cosine", 0, 101, 16, 0},
      {"far outside on the cosine", kSmallest, kLargest, 16, 0},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(dimStepsFrom(row.from, row.to, row.total), row.steps);
  }
}

TEST(PercentFromDimSteps, LevelsStayBetweenOffAndFull) {
  const struct {
    const char* name;
    std::int32_t steps, total, percent;
  } kRows[] = {
      {"no total is 22", 11, 0, 50},           {"below off", -1, 22, 0},
      {"half the cosine", 5, 10, 50},          {"third of the cosine", 1, 3, 25},
      {"below every total", kSmallest, 16, 0}, {"smallest total", 1, kSmallest, 1},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(precentFromDimStepsWithTotalSteps(row.steps, row.total), row.percent);
  }
  for (int step = 0; step <= 22; ++step) {
    EXPECT_EQ(precentFromDimStepsWithTotalSteps(step, 22), kBrightness[step]) << step;
  }
}

// The days are counted here from Monday, 0; X10 gives Sunday bit 0 and Monday bit 1.
TEST(DayMasks, EveryMaskNamesTheSameDaysBothWays) {
  for (int mask = 0; mask < 128; ++mask) {
    SCOPED_TRACE(mask);
    const int x10 = x10BitsFromDayOfWeek(mask);
    EXPECT_EQ(x10 >> 7, 0);
    for (int day = 0; day < 7; ++day) {
      EXPECT_EQ(x10 >> ((day + 1) % 7) & 1, mask >> day & 1) << day;
    }
    EXPECT_EQ(daysOfWeekFromX10Bits(x10), mask);
    EXPECT_EQ(x10BitsFromDayOfWeek(mask | ~0x7F), x10) << "bits above 6 are ignored";
  }
}

TEST(DayMasks, X10BitsAbove6MoveDownLikeTheOthers) {
  EXPECT_EQ(daysOfWeekFromX10Bits(0x80), 0x40);
  EXPECT_EQ(daysOfWeekFromX10Bits(-1), -1);
  EXPECT_EQ(daysOfWeekFromX10Bits(kSmallest), kSmallest / 2);
}

}  // namespace
}  // namespace SharedClasses::X10Utilities
