#include "protocols/x10/x10_actions.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "platform/saturating.h"

namespace SharedClasses::X10Utilities {

namespace {

constexpr double kPi = 3.141592653589793;

// Brightness in percent after 0 to 22 dim steps.
constexpr std::array<std::int32_t, kUsualDimSteps + 1> sPowerCurve = {0,  1,  2,  5,  8,  12, 17, 23, 29, 36, 43, 50,
                                                                      57, 64, 70, 77, 82, 88, 92, 95, 98, 99, 100};

constexpr std::int32_t distance(std::int32_t a, std::int32_t b) {
  return a > b ? a - b : b - a;
}

// The step nearest to `level`; of two equally near the higher. The search ends before `bound` and then answers `bound`.
constexpr std::uint8_t nearestStep(std::int32_t level, std::size_t bound) {
  for (std::size_t i = 1; i < bound; ++i) {
    if (distance(sPowerCurve[i], level) > distance(sPowerCurve[i - 1], level)) {
      return static_cast<std::uint8_t>(i - 1);
    }
  }
  return static_cast<std::uint8_t>(bound);
}

using StepsByLevel = std::array<std::uint8_t, 101>;

constexpr StepsByLevel stepsByLevel(std::size_t bound) {
  StepsByLevel steps{};
  for (std::size_t level = 0; level < steps.size(); ++level) {
    steps[level] = nearestStep(static_cast<std::int32_t>(level), bound);
  }
  return steps;
}

// Kept: the two searches end at different bounds, so that level 100 is step 23 to start from and step 22 to go to, and
// level 99 is step 21 to start from and step 22 to go to.
constexpr StepsByLevel sStepsToStartFrom = stepsByLevel(kUsualDimSteps + 1);
constexpr StepsByLevel sStepsToGoTo = stepsByLevel(kUsualDimSteps);

std::int32_t dimStepsOnPowerCurve(std::int32_t from, std::int32_t to) {
  const auto start = static_cast<std::size_t>(std::clamp(from, 0, 100));
  const auto target = static_cast<std::size_t>(std::clamp(to, 0, 100));
  const std::int32_t steps = std::abs(sStepsToGoTo[target] - sStepsToStartFrom[start]);
  return steps == 0 && start != target ? 1 : steps;
}

// The steps that `level` lies above 0 where the brightness follows a cosine; not a number outside 0 to 100.
double cosineSteps(std::int32_t level, std::int32_t totalSteps) {
  return (totalSteps * std::acos(1 - level / 50.0)) / kPi;
}

// Both directions between X10 functions, compact numbers and codes are read from the one table of codes.
template <std::size_t Size>
std::array<ActionCode, Size> codesByColumn(std::uint8_t ActionCodeRow::*column) {
  std::array<ActionCode, Size> codes{};
  for (const ActionCodeRow& row : actionCodeTable()) {
    if (row.*column != kNotInColumn) {
      codes[row.*column] = row.code;
    }
  }
  return codes;
}

}  // namespace

std::uint8_t actionCodeToX10Action(ActionCode code) {
  const ActionCodeRow* row = actionCodeRow(code);
  return row == nullptr || row->x10Function == kNotInColumn ? kNoX10Function : row->x10Function;
}

ActionCode x10ActionToActionCode(std::uint32_t function) {
  static const auto sCodes = codesByColumn<16>(&ActionCodeRow::x10Function);
  return sCodes[function & 0x0FU];
}

ActionCode qz1ActionToActionCode(std::uint32_t number) {
  static const auto sCodes = codesByColumn<256>(&ActionCodeRow::compactNumber);
  return sCodes[number & 0xFFU];
}

std::int32_t dimStepsFrom(std::int32_t from, std::int32_t to, std::int32_t totalSteps) {
  if (from == to) {
    return 0;
  }
  if (totalSteps == kUsualDimSteps) {
    return dimStepsOnPowerCurve(from, to);
  }
  const double steps = cosineSteps(to, totalSteps) - cosineSteps(from, totalSteps);
  return platform::saturatingCast<std::int32_t>(std::abs(steps) + 0.5);
}

std::int32_t precentFromDimStepsWithTotalSteps(std::int32_t steps, std::int32_t totalSteps) {
  const std::int32_t total = totalSteps <= 0 ? kUsualDimSteps : totalSteps;
  const std::int32_t clamped = std::clamp(steps, 0, total);
  if (total == kUsualDimSteps) {
    return sPowerCurve[static_cast<std::size_t>(clamped)];
  }
  const double fraction = static_cast<double>(clamped) / total;
  return platform::saturatingCast<std::int32_t>(50 * (1 - std::cos(fraction * kPi)) + 0.5);
}

std::int32_t x10BitsFromDayOfWeek(std::int32_t days) {
  return (days & 0x3F) << 1 | (days >> 6 & 1);
}

std::int32_t daysOfWeekFromX10Bits(std::int32_t x10Bits) {
  return x10Bits >> 1 | ((x10Bits & 1) << 6);
}

}  // namespace SharedClasses::X10Utilities
