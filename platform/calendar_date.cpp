#include "platform/calendar_date.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "platform/gregorian.h"
#include "platform/zone_rules.h"

namespace SharedClasses::platform {

namespace {

__extension__ using WideInteger = __int128;  // holds the sum of any fields

constexpr std::int64_t kMostDays = (kLastYear - kFirstYear + 1) * 366;

constexpr auto kFirstInstant = static_cast<double>(kFirstSecond);
constexpr auto kLastInstant = static_cast<double>(kLastSecond);

// `instant` without its fraction of a second, toward the past; it lies within the years of all dates.
std::int64_t wholeSeconds(double instant) {
  const auto truncated = static_cast<std::int64_t>(instant);
  return truncated - (static_cast<double>(truncated) > instant ? 1 : 0);
}

TimeZonePointer zoneOrLocal(TimeZonePointer timeZone) {
  return timeZone != nullptr ? std::move(timeZone) : TimeZone::local();
}

struct Fields {
  std::int64_t year, month, day, hour, minute, second;
};

// The seconds from 2001-01-01 00:00:00 to what `fields` show on one and the same clock, within the years of all dates.
template <typename Integer>
std::int64_t wallClockOf(const Fields& fields) {
  const Integer months = Integer{fields.month} - 1;
  const Integer year = fields.year + floorDivided(months, Integer{12});
  const auto month = static_cast<int>(months - floorDivided(months, Integer{12}) * 12) + 1;
  const Integer days = daysToMonth(year, month) + fields.day - 1;
  const Integer wallClock =
      days * kSecondsPerDay + Integer{fields.hour} * 3600 + Integer{fields.minute} * 60 + fields.second;
  return static_cast<std::int64_t>(std::clamp<Integer>(wallClock, kFirstSecond, kLastSecond));
}

std::int64_t wallClockOf(const Fields& fields) {
  constexpr std::int64_t kLarge = 10'000'000'000;  // a sum of smaller ones fits in 64 bits
  const std::array all = {fields.year, fields.month, fields.day, fields.hour, fields.minute, fields.second};
  const bool isUsual = std::ranges::all_of(all, [](std::int64_t field) { return field > -kLarge && field < kLarge; });
  return isUsual ? wallClockOf<std::int64_t>(fields) : wallClockOf<WideInteger>(fields);
}

}  // namespace

CalendarDate::CalendarDate(Date instant, TimeZonePointer timeZone) : mTimeZone(zoneOrLocal(std::move(timeZone))) {
  const double seconds = instant.secondsSinceReference;
  // Not a number is neither below nor above anything.
  const double inRange = std::clamp(seconds == seconds ? seconds : 0.0, kFirstInstant, kLastInstant);
  const std::int64_t whole = wholeSeconds(inRange);
  show(mTimeZone->momentOfInstant(whole), inRange - static_cast<double>(whole));
}

CalendarDate::CalendarDate(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t hour,
                           std::int64_t minute, std::int64_t second, TimeZonePointer timeZone)
    : mTimeZone(zoneOrLocal(std::move(timeZone))) {
  show(mTimeZone->momentOfWallClock(wallClockOf({year, month, day, hour, minute, second})), 0.0);
}

void CalendarDate::show(const TimeZone::Moment& moment, double fraction) {
  const std::int64_t wallClock = std::clamp(moment.instant + moment.secondsFromGMT, kFirstSecond, kLastSecond);
  const std::int64_t days = floorDivided(wallClock, kSecondsPerDay);
  const auto secondOfDay = static_cast<std::int32_t>(wallClock - days * kSecondsPerDay);
  const Day day = dayOf(days);
  const auto whole = static_cast<double>(wallClock - moment.secondsFromGMT);
  // A sum that is rounded up to the next second would show other fields.
  mInstant.secondsSinceReference =
      whole + fraction < whole + 1.0 ? whole + fraction : std::nextafter(whole + 1.0, whole);
  mSecondsFromGMT = moment.secondsFromGMT;
  mYear = day.year;
  mDayOfYear = static_cast<std::int16_t>(day.dayOfYear);
  mMonth = static_cast<std::int8_t>(day.month);
  mDay = static_cast<std::int8_t>(day.day);
  mDayOfWeek = static_cast<std::int8_t>(weekdayOf(days));
  mHour = static_cast<std::int8_t>(secondOfDay / 3600);
  mMinute = static_cast<std::int8_t>(secondOfDay / 60 % 60);
  mSecond = static_cast<std::int8_t>(secondOfDay % 60);
}

CalendarDate CalendarDate::inTimeZone(TimeZonePointer timeZone) const {
  return CalendarDate(mInstant, std::move(timeZone));
}

CalendarDate CalendarDate::addingDays(std::int64_t days) const {
  if (days == 0) {
    return *this;  // also where the time of day is the second of two
  }
  const std::int64_t whole = wholeSeconds(mInstant.secondsSinceReference);
  const std::int64_t moved = whole + mSecondsFromGMT + std::clamp(days, -kMostDays, kMostDays) * kSecondsPerDay;
  CalendarDate result(*this);
  result.show(mTimeZone->momentOfWallClock(std::clamp(moved, kFirstSecond, kLastSecond)),
              mInstant.secondsSinceReference - static_cast<double>(whole));
  return result;
}

void CalendarDate::setTimeOfDay(std::int64_t hour, std::int64_t minute, std::int64_t second,
                                const TimeZonePointer& timeZone) {
  if (timeZone == nullptr || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
    *this = CalendarDate(mYear, mMonth, mDay, hour, minute, second, timeZone);
    return;
  }
  const std::int64_t shown = wholeSeconds(mInstant.secondsSinceReference) + mSecondsFromGMT;
  const std::int64_t midnight = shown - ((mHour * 60 + mMinute) * 60 + mSecond);
  const std::int64_t wallClock = midnight + (hour * 60 + minute) * 60 + second;
  const TimeZone::Moment moment = timeZone->momentOfWallClock(wallClock);
  if (mTimeZone != timeZone) {
    mTimeZone = timeZone;
  }
  if (moment.instant + moment.secondsFromGMT != wallClock) {
    show(moment, 0.0);  // a time that does not exist
    return;
  }
  mInstant.secondsSinceReference = static_cast<double>(moment.instant);
  mSecondsFromGMT = moment.secondsFromGMT;
  mHour = static_cast<std::int8_t>(hour);
  mMinute = static_cast<std::int8_t>(minute);
  mSecond = static_cast<std::int8_t>(second);
}

std::string CalendarDate::description() const {
  char text[64];
  static_cast<void>(std::snprintf(text, sizeof text, "%s%04d-%02d-%02d %02d:%02d:%02d ", mYear < 0 ? "-" : "",
                                  std::abs(mYear), mMonth, mDay, mHour, mMinute, mSecond));
  return text + offsetText(mSecondsFromGMT);
}

bool isLeapYear(std::int64_t year) {
  return hasLeapDay(year);
}

int daysInMonth(std::int64_t year, std::int64_t month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) {
    return 0;
  }
  return kDays[month - 1] + (month == 2 && isLeapYear(year) ? 1 : 0);
}

}  // namespace SharedClasses::platform
