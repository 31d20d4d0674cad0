// Days and years of the proleptic Gregorian calendar, counted from 2001-01-01. Pure; safe on any thread.
#pragma once

#include <cstdint>

namespace SharedClasses::platform {

inline constexpr std::int64_t kSecondsPerDay = 86400;
inline constexpr std::int64_t kUnixTimeOfReference = 978307200;  // 2001-01-01 00:00:00 UTC

// After which leap years and weekdays repeat.
inline constexpr std::int64_t kYearsPerCycle = 400;
inline constexpr std::int64_t kDaysPerCycle = 146097;
inline constexpr std::int64_t kSecondsPerCycle = kDaysPerCycle * kSecondsPerDay;

// The years of all dates.
inline constexpr std::int64_t kFirstYear = -9999;
inline constexpr std::int64_t kLastYear = 99999;

// `divisor` is above 0.
template <typename Integer>
[[nodiscard]] constexpr Integer floorDivided(Integer number, Integer divisor) {
  return number / divisor - (number % divisor < 0 ? 1 : 0);
}

template <typename Integer>
[[nodiscard]] constexpr bool hasLeapDay(Integer year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

// The days from 2001-01-01 to the first of `month` (1 to 12). The work is done in `Integer`, which must hold 366 *
// `year`.
template <typename Integer>
[[nodiscard]] constexpr Integer daysToMonth(Integer year, int month) {
  // Years that begin in March have their leap day at the end.
  const Integer marchYear = year - (month <= 2 ? 1 : 0);
  const Integer cycle = floorDivided(marchYear, Integer{400});
  const Integer yearOfCycle = marchYear - cycle * 400;
  const int dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5;
  constexpr int kDaysToReference = 730791;  // from 0000-03-01
  return cycle * kDaysPerCycle + yearOfCycle * 365 + yearOfCycle / 4 - yearOfCycle / 100 + dayOfYear - kDaysToReference;
}

struct Day {
  std::int32_t year;
  int month;      // 1 to 12
  int day;        // 1 to 31
  int dayOfYear;  // 1 to 366
};

// The day that is `days` after 2001-01-01; within the years of all dates.
[[nodiscard]] constexpr Day dayOf(std::int64_t days) {
  constexpr std::uint32_t kCyclesBefore = 30;  // keeps everything above 0
  const auto sinceMarch = static_cast<std::uint32_t>(days + 730791 + kCyclesBefore * kDaysPerCycle);
  const std::uint32_t cycle = sinceMarch / 146097;
  const std::uint32_t dayOfCycle = sinceMarch % 146097;
  const std::uint32_t yearOfCycle = (dayOfCycle - dayOfCycle / 1460 + dayOfCycle / 36524 - dayOfCycle / 146096) / 365;
  const std::uint32_t dayOfMarchYear = dayOfCycle - (365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100);
  const std::uint32_t marchMonth = (5 * dayOfMarchYear + 2) / 153;
  const bool isNextYear = marchMonth >= 10;  // January and February
  const auto marchYear =
      static_cast<std::int32_t>(cycle * 400 + yearOfCycle) - static_cast<std::int32_t>(kCyclesBefore * 400);
  Day day{};
  day.year = marchYear + (isNextYear ? 1 : 0);
  day.month = static_cast<int>(isNextYear ? marchMonth - 9 : marchMonth + 3);
  day.day = static_cast<int>(dayOfMarchYear - (153 * marchMonth + 2) / 5) + 1;
  day.dayOfYear = static_cast<int>(dayOfMarchYear) + (isNextYear ? -305 : 60 + (hasLeapDay(day.year) ? 1 : 0));
  return day;
}

// 0 Sunday to 6 Saturday; 2001-01-01 was a Monday.
[[nodiscard]] constexpr int weekdayOf(std::int64_t days) {
  return static_cast<int>(days + 1 - floorDivided<std::int64_t>(days + 1, 7) * 7);
}

// The seconds from 2001-01-01 00:00:00 to the first and the last of all dates.
inline constexpr std::int64_t kFirstSecond = daysToMonth<std::int64_t>(kFirstYear, 1) * kSecondsPerDay;
inline constexpr std::int64_t kLastSecond = daysToMonth<std::int64_t>(kLastYear + 1, 1) * kSecondsPerDay - 1;

}  // namespace SharedClasses::platform
