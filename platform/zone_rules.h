// The clocks of a time zone, and the rule by which they change every year, as texts like "CET-1CEST,M3.5.0,M10.5.0/3"
// put it. Pure; safe on any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace SharedClasses::platform {

inline constexpr std::int32_t kSecondsPerWeek = 604800;

// What clocks show during a part of the year, as the zone's data put it.
struct ZoneClock {
  std::int32_t secondsFromGMT = 0;  // a week at most, either way
  bool isFlagged = false;           // the data's mark of daylight saving time; in Dublin it stands for the winter
  std::string abbreviation;

  friend bool operator==(const ZoneClock&, const ZoneClock&) = default;
};

// A time of a wall clock that comes once a year.
struct YearlyTime {
  enum class Kind {
    DayWithoutLeapDay,  // "J60": day 1 to 365, 29 February not counted
    Day,                // "59": day 0 to 365
    WeekdayOfMonth,     // "M3.5.0": weekday 0 (Sunday) to 6 of week 1 to 5 (the last) of month 1 to 12
  };
  Kind kind = Kind::Day;
  int day = 0;  // a weekday for WeekdayOfMonth
  int month = 0;
  int week = 0;
  std::int32_t secondOfDay = 0;  // up to a week before or after the day's midnight

  // In seconds since 2001-01-01 00:00:00 of the wall clock. `year` lies in the years of all dates or a few beyond.
  [[nodiscard]] std::int64_t wallClockInYear(std::int64_t year) const;
};

struct ZoneRule {
  ZoneClock standard;
  std::optional<ZoneClock> daylight;
  YearlyTime begin;  // of `daylight`, on the standard clock
  YearlyTime end;    // of `daylight`, on its own clock

  // The instants, in seconds since the reference date.
  [[nodiscard]] std::int64_t beginInYear(std::int64_t year) const;
  [[nodiscard]] std::int64_t endInYear(std::int64_t year) const;
};

// The rule that `text` puts: "std offset [dst [offset] [,begin[/time],end[/time]]]", with names of three letters or
// more or in angle brackets, offsets westward up to 24 hours, times up to 167 hours either way. Daylight saving time
// without an offset is one hour ahead; without a rule it lasts from the second Sunday of March to the first of
// November, as the C library has it for present years. Nothing for any other text.
[[nodiscard]] std::optional<ZoneRule> parsedZoneRule(std::string_view text);

// "+0530", "-033000" where there are seconds; `separator` stands between the numbers.
[[nodiscard]] std::string offsetText(std::int32_t secondsFromGMT, std::string_view separator = "");

}  // namespace SharedClasses::platform
