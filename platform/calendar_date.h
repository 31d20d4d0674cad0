// A date as a calendar and a clock of one time zone show it. Proleptic Gregorian, with a year 0. A plain value: an
// instant and a zone; the fields follow from them. Instants are brought into the years -9999 to 99999.
// Safe on any thread.
#pragma once

#include <cstdint>
#include <string>

#include "platform/date.h"
#include "platform/time_zone.h"

namespace SharedClasses::platform {

class CalendarDate {
 public:
  // What calendar and clock show at `instant`. A null zone counts as the local one, here and below. An instant that is
  // not a number counts as the reference date.
  explicit CalendarDate(Date instant, TimeZonePointer timeZone = nullptr);

  // The instant at which calendar and clock show these fields. Fields may lie outside of their usual ranges, without
  // bound: the month is carried into the year, the rest is added on the wall clock, then the zone is asked once. A time
  // that does not exist moves forward by the gap; one that occurs twice is the first.
  CalendarDate(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t hour, std::int64_t minute,
               std::int64_t second, TimeZonePointer timeZone = nullptr);

  [[nodiscard]] Date date() const { return mInstant; }
  [[nodiscard]] const TimeZonePointer& timeZone() const { return mTimeZone; }  // never null

  [[nodiscard]] std::int32_t yearOfCommonEra() const { return mYear; }
  [[nodiscard]] int monthOfYear() const { return mMonth; }    // 1 to 12
  [[nodiscard]] int dayOfMonth() const { return mDay; }       // 1 to 31
  [[nodiscard]] int dayOfYear() const { return mDayOfYear; }  // 1 to 366
  [[nodiscard]] int dayOfWeek() const { return mDayOfWeek; }  // 0 Sunday to 6 Saturday
  [[nodiscard]] int hourOfDay() const { return mHour; }
  [[nodiscard]] int minuteOfHour() const { return mMinute; }
  [[nodiscard]] int secondOfMinute() const { return mSecond; }
  [[nodiscard]] std::int32_t secondsFromGMT() const { return mSecondsFromGMT; }
  [[nodiscard]] bool isDaylightSavingTime() const { return mTimeZone->isDaylightSavingTime(mInstant); }

  // The same instant, as another zone shows it.
  [[nodiscard]] CalendarDate inTimeZone(TimeZonePointer timeZone) const;

  // The same time of day on another day; a time that does not exist there moves forward by the gap.
  [[nodiscard]] CalendarDate addingDays(std::int64_t days) const;

  // Moves to a time of the same year, month and day as `timeZone` shows them; the fields may lie outside of their usual
  // ranges, as above.
  void setTimeOfDay(std::int64_t hour, std::int64_t minute, std::int64_t second, const TimeZonePointer& timeZone);

  // "2024-03-31 03:00:00 +0200"; years below 0 or above 9999 with their sign or all their digits.
  [[nodiscard]] std::string description() const;

 private:
  // Sets all but the zone. `fraction` of a second, 0 to below 1, comes on top.
  void show(const TimeZone::Moment& moment, double fraction);

  Date mInstant;
  TimeZonePointer mTimeZone;
  std::int32_t mYear = 0;
  std::int16_t mDayOfYear = 0;
  std::int8_t mMonth = 0, mDay = 0, mDayOfWeek = 0, mHour = 0, mMinute = 0, mSecond = 0;
  std::int32_t mSecondsFromGMT = 0;
};

// Whether `year` has 366 days.
[[nodiscard]] bool isLeapYear(std::int64_t year);

// The number of a month's days; 0 for a month outside of 1 to 12.
[[nodiscard]] int daysInMonth(std::int64_t year, std::int64_t month);

}  // namespace SharedClasses::platform
