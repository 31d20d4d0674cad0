#include "sun/daylight_saving.h"

#include "platform/clock.h"

namespace SharedClasses::Utilities {

namespace {

using platform::CalendarDate;
using platform::TimeZone;

constexpr std::int32_t kLastProbedDay = 365;

// Whether days of the present year are in daylight saving time at noon, where the clock has changed already.
class NoonsOfThisYear {
 public:
  NoonsOfThisYear()
      : mFirst(CalendarDate(platform::Clock::current().now()).yearOfCommonEra(), 1, 1, 12, 0, 0, TimeZone::local()) {}

  [[nodiscard]] bool isDaylightSavingTime(std::int32_t dayOfYear) const {
    return mFirst.addingDays(dayOfYear - 1).isDaylightSavingTime();
  }
  // The first day from `dayOfYear` on that is in daylight saving time, or is not, as asked; 0 when none is.
  [[nodiscard]] std::int32_t firstDay(std::int32_t dayOfYear, bool daylightSaving) const {
    for (; dayOfYear <= kLastProbedDay; ++dayOfYear) {
      if (isDaylightSavingTime(dayOfYear) == daylightSaving) {
        return dayOfYear;
      }
    }
    return 0;
  }

 private:
  CalendarDate mFirst;
};

}  // namespace

bool localsUseDaylightSaving() {
  const CalendarDate summerDay(2011, 7, 4, 12, 0, 0, TimeZone::fixedOffset(-5 * std::int64_t{3600}));
  return TimeZone::local()->isDaylightSavingTime(summerDay.date());
}

std::int32_t localDaylightSavingDelta() {
  return localDaylightSavingDelta(TimeZone::local());
}

std::int32_t localDaylightSavingDelta(const platform::TimeZonePointer& local) {
  return CalendarDate(2011, 7, 1, 12, 0, 0, local).secondsFromGMT() -
         CalendarDate(2011, 1, 1, 12, 0, 0, local).secondsFromGMT();
}

std::int32_t firstDayOfDaylightSaving() {
  return NoonsOfThisYear().firstDay(1, true);
}

std::int32_t lastDayOfDaylightSaving() {
  const NoonsOfThisYear noons;
  const std::int32_t first = noons.firstDay(1, true);
  const std::int32_t afterLast = first == 0 ? 0 : noons.firstDay(first, false);
  return afterLast == 0 ? 0 : afterLast - 1;
}

platform::Date standardTime() {
  return platform::Clock::current().now();
}

platform::TimeZonePointer localStandardTimeZone() {
  return TimeZone::local();
}

}  // namespace SharedClasses::Utilities
