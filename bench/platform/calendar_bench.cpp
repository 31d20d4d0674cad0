// An instant shown as calendar and clock of Berlin, and back, beside the C library's localtime_r and mktime with the
// same instants in the same run. Goal: no slower. Instants lie in the years that the zone's file lists, or in those of
// its rule.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <ctime>
#include <random>
#include <vector>

#include "platform/calendar_date.h"

namespace SharedClasses::platform {
namespace {

constexpr std::int64_t kUnixTimeOfReference = 978307200;

struct Instants {
  Instants(int firstYear, int lastYear) {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    std::mt19937_64 random(1);
    std::uniform_int_distribution<std::int64_t> times((firstYear - 1970) * 31556952LL, (lastYear - 1970) * 31556952LL);
    for (int i = 0; i < 4096; ++i) {
      unixTimes.push_back(times(random));
      localtime_r(&unixTimes.back(), &fields.emplace_back());
      fields.back().tm_isdst = -1;
    }
  }
  std::vector<time_t> unixTimes;
  std::vector<tm> fields;
  std::size_t next = 0;
  std::size_t step() { return next = (next + 1) % unixTimes.size(); }
};

void fieldsOfInstant(benchmark::State& state, int firstYear, int lastYear, bool isZoneGiven) {
  Instants instants(firstYear, lastYear);
  const TimeZonePointer zone = isZoneGiven ? TimeZone::named("Europe/Berlin") : nullptr;
  for (auto _ : state) {
    const CalendarDate date({static_cast<double>(instants.unixTimes[instants.step()] - kUnixTimeOfReference)}, zone);
    benchmark::DoNotOptimize(date.dayOfMonth());
  }
}

// localtime looks at TZ each time, as the local zone here does; localtime_r does not.
void fieldsOfInstantByCLibrary(benchmark::State& state, int firstYear, int lastYear, bool isZoneGiven) {
  Instants instants(firstYear, lastYear);
  for (auto _ : state) {
    const time_t& time = instants.unixTimes[instants.step()];
    tm fields;
    benchmark::DoNotOptimize(isZoneGiven ? localtime_r(&time, &fields) : localtime(&time));
  }
}

void instantOfFields(benchmark::State& state, int firstYear, int lastYear, bool isZoneGiven) {
  Instants instants(firstYear, lastYear);
  const TimeZonePointer zone = isZoneGiven ? TimeZone::named("Europe/Berlin") : nullptr;
  for (auto _ : state) {
    const tm& fields = instants.fields[instants.step()];
    const CalendarDate date(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min,
                            fields.tm_sec, zone);
    benchmark::DoNotOptimize(date.date());
  }
}

void instantOfFieldsByCLibrary(benchmark::State& state, int firstYear, int lastYear) {
  Instants instants(firstYear, lastYear);
  for (auto _ : state) {
    tm fields = instants.fields[instants.step()];
    benchmark::DoNotOptimize(mktime(&fields));
  }
}

BENCHMARK_CAPTURE(fieldsOfInstant, listed, 1970, 2037, true);
BENCHMARK_CAPTURE(fieldsOfInstant, listedLocalZone, 1970, 2037, false);
BENCHMARK_CAPTURE(fieldsOfInstantByCLibrary, listed, 1970, 2037, true);
BENCHMARK_CAPTURE(fieldsOfInstantByCLibrary, listedLocalZone, 1970, 2037, false);
BENCHMARK_CAPTURE(fieldsOfInstant, ofRule, 2038, 2600, true);
BENCHMARK_CAPTURE(fieldsOfInstantByCLibrary, ofRule, 2038, 2600, true);
BENCHMARK_CAPTURE(instantOfFields, listed, 1970, 2037, true);
BENCHMARK_CAPTURE(instantOfFields, listedLocalZone, 1970, 2037, false);
BENCHMARK_CAPTURE(instantOfFieldsByCLibrary, listed, 1970, 2037);
BENCHMARK_CAPTURE(instantOfFields, ofRule, 2038, 2600, true);
BENCHMARK_CAPTURE(instantOfFieldsByCLibrary, ofRule, 2038, 2600);

}  // namespace
}  // namespace SharedClasses::platform
