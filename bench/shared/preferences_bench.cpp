// What it costs to ask for a preference, in a real store with a full table: a read is to take less than 150 ns.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "shared/constants.h"
#include "shared/preferences.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses {
namespace {

// Preferences as after the first start of a program, in a folder of their own.
Preferences& filledPreferences() {
  static const tests::TemporaryFolder sHome;
  static Preferences& sPreferences = [&]() -> Preferences& {
    ::setenv("XDG_CONFIG_HOME", sHome.path().c_str(), 1);
    return Preferences::sharedPreferences();
  }();
  return sPreferences;
}

void BM_GetBoolean(benchmark::State& state) {
  const Preferences& preferences = filledPreferences();
  for (auto _ : state) {
    benchmark::DoNotOptimize(preferences.get(kPrefKeyLogTimestamps));
  }
}
BENCHMARK(BM_GetBoolean);

void BM_GetText(benchmark::State& state) {
  const Preferences& preferences = filledPreferences();
  for (auto _ : state) {
    benchmark::DoNotOptimize(preferences.get("temperatureUnits"));
  }
}
BENCHMARK(BM_GetText);

void BM_GetAbsent(benchmark::State& state) {
  const Preferences& preferences = filledPreferences();
  for (auto _ : state) {
    benchmark::DoNotOptimize(preferences.get(kPrefKeyGrowlWanted));
  }
}
BENCHMARK(BM_GetAbsent);

// Four reads and their sum.
void BM_GetLatitude(benchmark::State& state) {
  const Preferences& preferences = filledPreferences();
  for (auto _ : state) {
    benchmark::DoNotOptimize(preferences.get("latitude"));
  }
}
BENCHMARK(BM_GetLatitude);

void BM_Set(benchmark::State& state) {
  Preferences& preferences = filledPreferences();
  for (std::int64_t tolerance = 0; auto _ : state) {
    preferences.setForKey(++tolerance, kPrefKeySunTolerance);
  }
}
BENCHMARK(BM_Set);

}  // namespace
}  // namespace SharedClasses
