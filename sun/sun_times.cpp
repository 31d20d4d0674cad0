#include "sun/sun_times.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

#include "platform/clock.h"
#include "platform/log.h"
#include "shared/preferences.h"
#include "sun/daylight_saving.h"
#include "sun/machine_location.h"
#include "system/processes/process_detection.h"

namespace SharedClasses::Utilities {

namespace {

using platform::CalendarDate;
using platform::TimeZone;
using platform::TimeZonePointer;
using OptionalDate = std::optional<CalendarDate>;

// Kept: pi ends after eleven digits here, and coefficients below differ from the usual ones.
constexpr double kRadiansPerDegree = 0.017453292519944444;
constexpr double kDegreesPerRadian = 57.29577951307855;
constexpr double kCosineOfZenith = -0.014543897651686781;
constexpr double kDegreesPerHour = 15.0;
constexpr double kHoursPerDay = 24.0;
constexpr int kRowsOfTable = 366;

double sine(double degrees) {
  return std::sin(degrees * kRadiansPerDegree);
}

double cosine(double degrees) {
  return std::cos(degrees * kRadiansPerDegree);
}

// Right ascension of the sun, in hours, from its true longitude in degrees.
double rightAscension(double trueLongitude) {
  double ascension = std::atan(0.91746 * std::tan(trueLongitude * kRadiansPerDegree)) * kDegreesPerRadian;
  if (std::abs(360.0 + ascension - trueLongitude) > 90.0) {
    ascension += 180.0;
  }
  if (ascension > 360.0) {
    ascension -= 360.0;
  }
  if (trueLongitude > 630.0) {
    ascension += 180.0;
  }
  return ascension / kDegreesPerHour;
}

// Whole days are added to hours before 0:00, and taken from what lies beyond the second day, which takes coordinates
// out of range. No digit is lost by the remainder.
double hoursWithinTwoDays(double hours) {
  while (hours < 0.0 && hours > -2.0 * kHoursPerDay) {
    hours += kHoursPerDay;
  }
  if (hours >= 0.0 && hours < 2.0 * kHoursPerDay) {
    return hours;
  }
  const double rest = std::fmod(hours, kHoursPerDay);
  return rest < 0.0 || hours > 0.0 ? rest + kHoursPerDay : 0.0;
}

// A time of day in UTC. Kept: the hour may be 24, which is 0:00 to 0:59 of the next day.
struct EventTime {
  int hour;
  int minute;
};

EventTime roundedToMinute(double hours) {
  int hour = static_cast<int>(hours);
  const double fraction = hours - hour;
  int minute = static_cast<int>(fraction * 60.0);
  int second = static_cast<int>((fraction - minute / 60.0) * 3600.0);
  if (second >= 60) {
    ++minute;
    second -= 60;
  }
  if (second >= 30) {
    ++minute;
  }
  if (minute >= 60) {
    ++hour;
    minute -= 60;
  }
  if (hour > 24) {
    hour -= 24;
  }
  return {hour, minute};
}

// When the sun crosses the horizon on a day of the year, in UTC; absent where it does not, and where a number is none.
std::optional<EventTime> eventTime(double latitude, double longitude, int dayOfYear, bool wantSunrise) {
  const double longitudeHour = longitude / kDegreesPerHour;
  const double approximateTime = dayOfYear + ((wantSunrise ? 6.0 : 18.0) - longitudeHour) / kHoursPerDay;
  const double anomaly = 0.9856 * approximateTime - 3.251;
  // Kept: not reduced to a full circle; the rules of rightAscension stand on it.
  const double trueLongitude = anomaly + 1.916 * sine(anomaly) + 0.02 * sine(2.0 * anomaly) + 282.565;
  const double sineOfDeclination = 0.39782 * sine(trueLongitude);
  const double cosineOfDeclination = std::sqrt(1.0 - sineOfDeclination * sineOfDeclination);
  const double cosineOfHourAngle =
      (kCosineOfZenith - sineOfDeclination * sine(latitude)) / (cosineOfDeclination * cosine(latitude));
  if (!(std::abs(cosineOfHourAngle) <= 1.0)) {  // also when it is not a number
    return std::nullopt;
  }
  double hourAngle = std::acos(cosineOfHourAngle) * kDegreesPerRadian;
  if (wantSunrise) {
    hourAngle = 360.0 - hourAngle;
  }
  const double localMeanTime =
      hourAngle / kDegreesPerHour + rightAscension(trueLongitude) - 0.06571 * approximateTime - 6.62;
  return roundedToMinute(hoursWithinTwoDays(localMeanTime - longitudeHour));
}

// The event as clocks in the local zone show it, on the local day of that date; 0:00 when there is none.
CalendarDate localEvent(const CalendarDate& day, std::optional<EventTime> event, bool adjustForDST,
                        const TimeZonePointer& local) {
  const std::int32_t year = day.yearOfCommonEra();
  const int month = day.monthOfYear();
  const CalendarDate noon(year, month, day.dayOfMonth(), 12, 0, 0, local);
  CalendarDate result = noon;
  if (event) {
    const auto shiftedBy = [&](int days) {
      return CalendarDate(year, month, day.dayOfMonth() + days, event->hour, event->minute, 0, TimeZone::utc())
          .inTimeZone(local);
    };
    result = shiftedBy(0);
    const auto shown = std::pair(result.yearOfCommonEra(), result.dayOfYear());
    const auto asked = std::pair(year, day.dayOfYear());
    // By year and day: an event of 31 December that is shown on 1 January moves back.
    if (shown != asked) {
      result = shiftedBy(shown < asked ? 1 : -1);
    }
  }
  if (adjustForDST != noon.isDaylightSavingTime()) {
    const std::int32_t delta = localDaylightSavingDelta(local);
    if (delta != 0) {
      result = result.inTimeZone(TimeZone::fixedOffset(result.secondsFromGMT() + (adjustForDST ? delta : -delta)));
    }
  }
  CalendarDate shown = day;
  shown.setTimeOfDay(event ? result.hourOfDay() : 0, event ? result.minuteOfHour() : 0,
                     event ? result.secondOfMinute() : 0, result.timeZone());
  return shown;
}

// The general operation for one of the two events; the others hand on to it.
struct Request {
  double latitude;
  double longitude;
  TimeZonePointer local;  // asked for once, so that an answer is of one zone; null where UTC is wanted
  bool adjustForDST;
};

std::int32_t sunTime(bool wantSunrise, const Request& request, OptionalDate* toSunTime) {
  if (toSunTime == nullptr) {
    return kNoDayGiven;
  }
  OptionalDate& day = *toSunTime;
  if (!day) {
    day.emplace(platform::Clock::current().now(), request.local);
  }
  const std::optional<EventTime> event = eventTime(request.latitude, request.longitude, day->dayOfYear(), wantSunrise);
  if (request.local != nullptr) {
    day = localEvent(*day, event, request.adjustForDST, request.local);
  } else {
    const EventTime time = event.value_or(EventTime{0, 0});
    day->setTimeOfDay(time.hour % 24, time.minute, 0, TimeZone::utc());
  }
  if (event) {
    return kSunTimeFound;
  }
  return wantSunrise ? kNoSunrise : kNoSunset;
}

std::int32_t localSunTime(bool wantSunrise, OptionalDate* toSunTime) {
  if (toSunTime == nullptr) {
    return kNoDayGiven;
  }
  double latitude = 0.0;
  double longitude = 0.0;
  if (appIsGUI() || appIsAgent()) {
    Preferences& preferences = Preferences::sharedPreferences();
    latitude = preferences.get("latitude").realValue().value_or(0.0);
    longitude = preferences.get("longitude").realValue().value_or(0.0);
  }
  if (latitude == 0.0 && longitude == 0.0) {
    guessBestLatitudeAndLogitude(&latitude, &longitude);
  }
  const TimeZonePointer local = TimeZone::local();
  if (!*toSunTime) {
    toSunTime->emplace(platform::Clock::current().now(), local);
  }
  const bool isDST = local->isDaylightSavingTime((*toSunTime)->date());
  return sunTime(wantSunrise, {latitude, longitude, local, isDST}, toSunTime);
}

// What a caller says of one of the events, whichever of the public structures it comes in.
template <typename Arguments>
Request requestOf(const Arguments& arguments) {
  return {arguments.latitude, arguments.longitude, arguments.wantLocalTime ? TimeZone::local() : nullptr,
          arguments.adjustForDST};
}

}  // namespace

std::int32_t suntimeFromLatitude(const SuntimeArguments& arguments) {
  return sunTime(arguments.wantSunrise, requestOf(arguments), arguments.toSunTime);
}

std::int32_t sunriseFromLatitude(const SunriseArguments& arguments) {
  return sunTime(true, requestOf(arguments), arguments.toSunrise);
}

std::int32_t sunsetFromLatitude(const SunsetArguments& arguments) {
  return sunTime(false, requestOf(arguments), arguments.toSunset);
}

std::int32_t localSunrise(OptionalDate* toSunrise) {
  return localSunTime(true, toSunrise);
}

std::int32_t localSunset(OptionalDate* toSunset) {
  return localSunTime(false, toSunset);
}

void printSunTable() {
  const TimeZonePointer zone = localStandardTimeZone();
  const std::int32_t year = CalendarDate(platform::Clock::current().now(), zone).yearOfCommonEra();
  OptionalDate sunrise(std::in_place, year, 1, 1, 12, 0, 0, zone);
  OptionalDate sunset = sunrise;
  double latitude = 0.0;
  double longitude = 0.0;
  guessBestLatitudeAndLogitude(&latitude, &longitude);
  std::string table = "\nDay\tSunrise\t\tSunset\n";
  for (int day = 1; day <= kRowsOfTable; ++day) {
    static_cast<void>(sunriseFromLatitude({.latitude = latitude,
                                           .longitude = longitude,
                                           .wantLocalTime = true,
                                           .adjustForDST = sunrise->isDaylightSavingTime(),
                                           .toSunrise = &sunrise}));
    static_cast<void>(sunsetFromLatitude({.latitude = latitude,
                                          .longitude = longitude,
                                          .wantLocalTime = true,
                                          .adjustForDST = sunset->isDaylightSavingTime(),
                                          .toSunset = &sunset}));
    std::array<char, 64> times{};
    static_cast<void>(std::snprintf(times.data(), times.size(), "%3d\t%2d:%02d\t\t%2d:%02d\t", day,
                                    sunrise->hourOfDay(), sunrise->minuteOfHour(), sunset->hourOfDay(),
                                    sunset->minuteOfHour()));
    table += times.data() + sunset->description() + '\n';
    sunrise = sunrise->addingDays(1);
    sunset = sunset->addingDays(1);
  }
  platform::log(table);
}

}  // namespace SharedClasses::Utilities
