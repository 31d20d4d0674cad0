// Dates beside the calendar of the standard library and, for the clock, beside what the law of the place says.
#include "platform/calendar_date.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

namespace SharedClasses::platform {
namespace {

constexpr double kReferenceOf1970 = -978307200.0;
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

struct Fields {
  std::int64_t year, month, day, hour = 0, minute = 0, second = 0;
  [[nodiscard]] CalendarDate in(TimeZonePointer zone) const {
    return {year, month, day, hour, minute, second, std::move(zone)};
  }
};

TEST(CalendarDate, FieldsAreThoseOfTheStandardLibrarysCalendar) {
  using std::chrono::sys_days;
  const sys_days last = std::chrono::year(32767) / 12 / 31;
  for (sys_days day = std::chrono::year(-9999) / 1 / 1; day <= last; day += std::chrono::days(17)) {
    const std::chrono::year_month_day expected = day;
    const CalendarDate date({static_cast<double>(day.time_since_epoch().count()) * 86400 + kReferenceOf1970 + 86399.5},
                            TimeZone::utc());
    ASSERT_EQ(date.yearOfCommonEra(), int{expected.year()});
    ASSERT_EQ(date.monthOfYear(), static_cast<int>(unsigned{expected.month()}));
    ASSERT_EQ(date.dayOfMonth(), static_cast<int>(unsigned{expected.day()}));
    ASSERT_EQ(date.dayOfWeek(), static_cast<int>(std::chrono::weekday(day).c_encoding()));
    ASSERT_EQ(date.dayOfYear(), (day - sys_days(expected.year() / 1 / 1)).count() + 1);
    ASSERT_EQ(date.hourOfDay() * 10000 + date.minuteOfHour() * 100 + date.secondOfMinute(), 235959);
    const Fields same = {date.yearOfCommonEra(), 1, date.dayOfYear(), 23, 59, 59};
    ASSERT_EQ(same.in(TimeZone::utc()).date().secondsSinceReference + 0.5, date.date().secondsSinceReference);
    ASSERT_EQ(isLeapYear(date.yearOfCommonEra()), expected.year().is_leap());
    ASSERT_EQ(daysInMonth(date.yearOfCommonEra(), date.monthOfYear()),
              static_cast<int>(unsigned{(expected.year() / expected.month() / std::chrono::last).day()}));
  }
}

TEST(CalendarDate, FieldsBeyondTheirRangesAreCarriedSkippedTimesMoveForwardAndOfTwoTheFirstCounts) {
  const std::tuple<const char*, const char*, Fields, const char*> kRows[] = {
      {"month 0", "UTC", {2024, 0, 31}, "2023-12-31 00:00:00 +0000"},
      {"month 14 of a year before a leap year", "UTC", {2023, 14, 30}, "2024-03-01 00:00:00 +0000"},
      {"day 0 of March", "UTC", {2100, 3, 0}, "2100-02-28 00:00:00 +0000"},
      {"second -1", "UTC", {2024, 3, 1, 0, 0, -1}, "2024-02-29 23:59:59 +0000"},
      {"year 0", "UTC", {0, 2, 29}, "0000-02-29 00:00:00 +0000"},
      {"year -44", "UTC", {-44, 3, 15}, "-0044-03-15 00:00:00 +0000"},
      {"huge, cancelling", "UTC", {2024, 1, 106751991167301, 0, 0, -9223372036854720000}, "2024-01-01 00:00:00 +0000"},
      {"all of them huge", "UTC", {kMost, kMost, kMost, kMost, kMost, kMost}, "99999-12-31 23:59:59 +0000"},
      {"all of them deep", "UTC", {kLeast, kLeast, kLeast, kLeast, kLeast, kLeast}, "-9999-01-01 00:00:00 +0000"},
      {"Apia, the day that never was", "Pacific/Apia", {2011, 12, 30, 12}, "2011-12-31 12:00:00 +1400"},
      {"Lord Howe, skipped half hour", "Australia/Lord_Howe", {2024, 10, 6, 2, 10}, "2024-10-06 02:40:00 +1100"},
      {"Lord Howe, half hour twice", "Australia/Lord_Howe", {2024, 4, 7, 1, 45}, "2024-04-07 01:45:00 +1100"},
      {"Dublin, carried into a gap", "Europe/Dublin", {2024, 3, 30, 25, 30}, "2024-03-31 02:30:00 +0100"},
      {"Dublin, twice", "Europe/Dublin", {2024, 10, 27, 1, 30}, "2024-10-27 01:30:00 +0100"},
      {"same calendar 75,600 years later", "Europe/Berlin", {77624, 3, 31, 2, 30}, "77624-03-31 03:30:00 +0200"},
      {"mean time with its seconds", "Europe/Berlin", {1800, 1, 1}, "1800-01-01 00:00:00 +005328"},
  };
  for (const auto& [name, zone, fields, expected] : kRows) {
    EXPECT_EQ(fields.in(TimeZone::named(zone)).description(), expected) << name;
  }
}

TEST(CalendarDate, InstantsBeyondAllDatesAreBroughtIn) {
  for (const std::int64_t offset : {-604800, 0, 3600}) {
    const TimeZonePointer zone = TimeZone::fixedOffset(offset);
    EXPECT_EQ(CalendarDate({INFINITY}, zone).yearOfCommonEra(), 99999);
    EXPECT_EQ(CalendarDate({-INFINITY}, zone).yearOfCommonEra(), -9999);
    EXPECT_EQ(Fields({kMost, 1, 1}).in(zone).addingDays(kMost).yearOfCommonEra(), 99999);
    EXPECT_EQ(CalendarDate({0}, zone).addingDays(kLeast).yearOfCommonEra(), -9999);
    EXPECT_EQ(CalendarDate({NAN}, zone).date(), Date{0});
  }
}

TEST(CalendarDate, AddedDaysKeepTheClockAndTheFractionAndSetTimesTheDay) {
  const TimeZonePointer berlin = TimeZone::named("Europe/Berlin");
  const CalendarDate before = Fields({2024, 3, 30, 2, 30}).in(berlin);
  EXPECT_EQ(before.addingDays(2).description(), "2024-04-01 02:30:00 +0200");
  EXPECT_EQ(before.addingDays(-30).description(), "2024-02-29 02:30:00 +0100");
  const CalendarDate secondOfTwo(
      {Fields({2024, 10, 27, 1, 30}).in(TimeZone::utc()).date().secondsSinceReference + 0.25}, berlin);
  EXPECT_EQ(secondOfTwo.addingDays(0).description(), "2024-10-27 02:30:00 +0100");
  EXPECT_EQ(secondOfTwo.addingDays(1).date().secondsSinceReference, secondOfTwo.date().secondsSinceReference + 86400);
  EXPECT_EQ(secondOfTwo.inTimeZone(TimeZone::named("Asia/Kolkata")).description(), "2024-10-27 07:00:00 +0530");
  const CalendarDate almostNextSecond = CalendarDate({-370000.00000000006}, berlin).addingDays(400);
  EXPECT_EQ(almostNextSecond.inTimeZone(berlin).description(), almostNextSecond.description());
  CalendarDate set = Fields({2024, 3, 31, 23}).in(TimeZone::named("Pacific/Chatham"));
  set.setTimeOfDay(2, 30, 0, berlin);
  EXPECT_EQ(set.description(), "2024-03-31 03:30:00 +0200");
  set.setTimeOfDay(24, 0, -1, TimeZone::utc());
  EXPECT_EQ(set.description(), "2024-03-31 23:59:59 +0000");
}

}  // namespace
}  // namespace SharedClasses::platform
