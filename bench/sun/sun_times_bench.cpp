// What a schedule does for every day that it looks ahead. Sunrise and sunset of a day in UTC are to take at most 1.5
// times as long as the almanac's bare arithmetic.
#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "sun/daylight_saving.h"
#include "sun/sun_times.h"

namespace SharedClasses {
namespace {

using platform::CalendarDate;

constexpr double kDegree = std::numbers::pi / 180.0;
constexpr int kDays = 365;

// Not known to the compiler.
volatile double sLatitude = 40.0;
volatile double sLongitude = -75.0;

struct ClockTime {
  int hour;
  int minute;
};

// As it would be written in C, down to hour and minute; an hour of -1 where there is no event. Not inlined: two events
// share no work.
[[gnu::noinline]] ClockTime bareEvent(double latitude, double longitude, int dayOfYear, int wantSunrise) {
  const double t = dayOfYear + ((wantSunrise ? 6.0 : 18.0) - longitude / 15.0) / 24.0;
  const double m = 0.9856 * t - 3.251;
  const double l = m + 1.916 * sin(m * kDegree) + 0.02 * sin(2 * m * kDegree) + 282.565;
  double ra = atan(0.91746 * tan(l * kDegree)) / kDegree;
  if (fabs(360.0 + ra - l) > 90.0) {
    ra += 180.0;
  }
  if (ra > 360.0) {
    ra -= 360.0;
  }
  const double sinDec = 0.39782 * sin(l * kDegree);
  const double cosDec = sqrt(1.0 - sinDec * sinDec);
  const double cosH = (-0.01454 - sinDec * sin(latitude * kDegree)) / (cosDec * cos(latitude * kDegree));
  if (fabs(cosH) > 1.0) {
    return {-1, 0};
  }
  const double h = acos(cosH) / kDegree;
  double ut = ((wantSunrise ? 360.0 - h : h) + ra) / 15.0 - 0.06571 * t - 6.62 - longitude / 15.0;
  while (ut < 0.0) {
    ut += 24.0;
  }
  int hour = static_cast<int>(ut);
  const double fraction = ut - hour;
  int minute = static_cast<int>(fraction * 60.0);
  const int second = static_cast<int>((fraction - minute / 60.0) * 3600.0);
  minute += second >= 30 ? 1 : 0;
  if (minute >= 60) {
    ++hour;
    minute -= 60;
  }
  return {hour, minute};
}

// Noons in UTC, one for each day of the year; the first stands for day 1.
const std::vector<CalendarDate>& noons() {
  static const auto* const sNoons = [] {
    auto* const noons = new std::vector<CalendarDate>;
    for (int day = 1; day <= kDays; ++day) {
      noons->emplace_back(2023, 1, day, 12, 0, 0, platform::TimeZone::utc());
    }
    return noons;
  }();
  return *sNoons;
}

// Runs `operation` for one day after the other.
template <class Operation>
void measure(const char* name, Operation operation) {
  benchmark::RegisterBenchmark(name, [operation](benchmark::State& state) {
    const std::vector<CalendarDate>& days = noons();
    std::size_t day = 0;
    for (auto _ : state) {
      operation(sLatitude, sLongitude, days[day]);
      day = day + 1 == days.size() ? 0 : day + 1;
    }
  });
}

void measureSunTimes(const char* name, bool wantLocalTime) {
  measure(name, [wantLocalTime](double latitude, double longitude, const CalendarDate& noon) {
    std::optional<CalendarDate> sunrise = noon;
    std::optional<CalendarDate> sunset = noon;
    benchmark::DoNotOptimize(Utilities::sunriseFromLatitude(
        {.latitude = latitude, .longitude = longitude, .wantLocalTime = wantLocalTime, .toSunrise = &sunrise}));
    benchmark::DoNotOptimize(Utilities::sunsetFromLatitude(
        {.latitude = latitude, .longitude = longitude, .wantLocalTime = wantLocalTime, .toSunset = &sunset}));
    benchmark::DoNotOptimize(sunrise);
    benchmark::DoNotOptimize(sunset);
  });
}

const bool sRegistered = [] {
  measure("yardstick: bare arithmetic of sunrise and sunset",
          [](double latitude, double longitude, const CalendarDate& noon) {
            benchmark::DoNotOptimize(bareEvent(latitude, longitude, noon.dayOfYear(), 1));
            benchmark::DoNotOptimize(bareEvent(latitude, longitude, noon.dayOfYear(), 0));
          });
  measureSunTimes("sunrise and sunset in UTC", false);
  measureSunTimes("sunrise and sunset in local time", true);
  measure("firstDayOfDaylightSaving",
          [](double, double, const CalendarDate&) { benchmark::DoNotOptimize(Utilities::firstDayOfDaylightSaving()); });
  return true;
}();

}  // namespace
}  // namespace SharedClasses
