// Sunrise and sunset to the minute: the almanac's method with the official zenith of 90° 50' and coefficients of this
// system's own. Latitudes are in degrees north, longitudes in degrees east; south and west are negative.
// Safe on any thread; localSunrise and localSunset as far as the preferences are (shared/preferences.h).
#pragma once

#include <cstdint>
#include <optional>

#include "platform/calendar_date.h"

namespace SharedClasses::Utilities {

// What the operations below answer.
inline constexpr std::int32_t kSunTimeFound = 0;
inline constexpr std::int32_t kNoSunset = 0x10;   // the sun does not cross the horizon that day
inline constexpr std::int32_t kNoSunrise = 0x20;  // likewise
inline constexpr std::int32_t kNoDayGiven = -50;  // the place of the day is null; nothing else has happened

// The day is what the date in toSunTime shows in its own time zone; it is filled in with now where it is empty. The
// result replaces it: the same year, month and day, with the time of the event.
// Give days at noon: whether a day counts as daylight saving time is judged at noon, and what a caller finds out for
// adjustForDST at midnight differs from it on the days when the clock changes.
struct SuntimeArguments {
  double latitude = 0.0;
  double longitude = 0.0;
  bool wantSunrise = false;  // else sunset
  // True: in the local time zone, of the event that happens on that local day. False: in UTC, a time of day alone: far
  // east or west the event may happen on the UTC day before or after the one that the result shows.
  bool wantLocalTime = false;
  // For local time: whether the clock is to be ahead of standard time. Where it is otherwise on that day, the result
  // has a fixed offset, localDaylightSavingDelta() further on or back.
  // Kept: where that delta is negative, in the south, it moves the wrong way.
  bool adjustForDST = false;
  void* sunBuff = nullptr;  // not used
  std::optional<platform::CalendarDate>* toSunTime = nullptr;
};

// `suntimeFromLatitude:longitude:wantSunrise:wantLocalTime:adjustForDST:sunBuff:toSunTime:`
// kSunTimeFound, or kNoSunrise or kNoSunset, as asked; the date is then 0:00 of that day in the time zone that the
// event would have had, the first time of that day where the clock is put forward at midnight. Nothing is logged.
// Coordinates are not checked: those out of range go through the same equations, whose answer, some time of that day or
// no event, means nothing then. Where they are infinite or not a number, there is no event.
[[nodiscard]] std::int32_t suntimeFromLatitude(const SuntimeArguments& arguments);

// As SuntimeArguments, for one of the two events.
struct SunriseArguments {
  double latitude = 0.0;
  double longitude = 0.0;
  bool wantLocalTime = false;
  bool adjustForDST = false;
  void* sunBuff = nullptr;
  std::optional<platform::CalendarDate>* toSunrise = nullptr;
};

// `sunriseFromLatitude:longitude:wantLocalTime:adjustForDST:sunBuff:toSunrise:`
[[nodiscard]] std::int32_t sunriseFromLatitude(const SunriseArguments& arguments);

// As SuntimeArguments, for one of the two events.
struct SunsetArguments {
  double latitude = 0.0;
  double longitude = 0.0;
  bool wantLocalTime = false;
  bool adjustForDST = false;
  void* sunBuff = nullptr;
  std::optional<platform::CalendarDate>* toSunset = nullptr;
};

// `sunsetFromLatitude:longitude:wantLocalTime:adjustForDST:sunBuff:toSunset:`
[[nodiscard]] std::int32_t sunsetFromLatitude(const SunsetArguments& arguments);

// The event of that day in local time, adjusted to whether the local zone has daylight saving time at that date.
// The place is that of the preferences "latitude" and "longitude" in the GUI and the agent; in any other program, and
// where both are 0, guessBestLatitudeAndLogitude's. Answers as suntimeFromLatitude does.
[[nodiscard]] std::int32_t localSunrise(std::optional<platform::CalendarDate>* toSunrise);
[[nodiscard]] std::int32_t localSunset(std::optional<platform::CalendarDate>* toSunset);

// Logs a table of the present year at guessBestLatitudeAndLogitude, whatever the preferences say: a heading, then for
// each day its number, sunrise, sunset, and the whole date of the sunset
// ("  1\t 7:22\t\t16:45\t2023-01-01 16:45:00 -0500"); 0:00 where there is no event.
// Kept: always 366 rows; the last one of a common year is the next New Year's Day.
void printSunTable();

}  // namespace SharedClasses::Utilities
