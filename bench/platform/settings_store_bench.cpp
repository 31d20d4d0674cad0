// What reading a setting costs, and what a save costs over the bare steps that any safe replacement of a file takes.
// Goals: a read under 150 ns and, but once in 90 ms, without a call to the system; a save at most 1.3 times the bare
// steps.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <string>

#include "platform/linux/file_settings_store.h"
#include "platform/property_list.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::platform {
namespace {

using std::chrono::steady_clock;

// As many settings as the programs have, with names and values of their kind.
void fill(SettingsStore& store) {
  for (int i = 0; i < 66; ++i) {
    store.set("preferenceOfSomeLength" + std::to_string(i), i % 3 == 0   ? Value(i)
                                                            : i % 3 == 1 ? Value(true)
                                                                         : Value("text"));
  }
}

void reads(benchmark::State& state, const char* key) {
  const tests::TemporaryFolder folder;
  std::int64_t calls = 0;
  const auto store = makeFileSettingsStore(
      {.file = folder.path() + "/preferences.plist", .probe = [&calls](std::string_view) { return ++calls, 0; }});
  fill(*store);
  store->synchronize();
  calls = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(store->value(key));
  }
  state.counters["system calls a read"] =
      benchmark::Counter(static_cast<double>(calls), benchmark::Counter::kAvgIterations);
}
BENCHMARK_CAPTURE(reads, aNumber, "preferenceOfSomeLength33");
BENCHMARK_CAPTURE(reads, aText, "preferenceOfSomeLength65");
BENCHMARK_CAPTURE(reads, whatIsAbsent, "preferenceOfNobody");

// The bare steps, for a document of the same length in the same folder.
bool replaceBarely(const std::string& folder, const std::string& document) {
  const std::string temporary = folder + "/temporary";
  const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const bool isWritten = ::write(file, document.data(), document.size()) == static_cast<ssize_t>(document.size()) &&
                         ::fsync(file) == 0 && ::rename(temporary.c_str(), (folder + "/bare").c_str()) == 0;
  ::close(file);
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const bool isSynced = ::fsync(descriptor) == 0;
  ::close(descriptor);
  return isWritten && isSynced;
}

// Both in turn, so that what else the disk has to do hits both.
void saves(benchmark::State& state) {
  const tests::TemporaryFolder folder;
  const auto store = makeFileSettingsStore({.file = folder.path() + "/preferences.plist"});
  fill(*store);
  store->synchronize();
  const std::string document = *propertyListAsXML(store->all());
  steady_clock::duration ours{0};
  steady_clock::duration bare{0};
  int level = 0;
  for (auto _ : state) {
    const auto start = steady_clock::now();
    store->set("preferenceOfSomeLength33", ++level);
    if (!store->synchronize()) {
      state.SkipWithError("A save has failed");
    }
    const auto middle = steady_clock::now();
    if (!replaceBarely(folder.path(), document)) {
      state.SkipWithError("A bare replacement has failed");
    }
    ours += middle - start;
    bare += steady_clock::now() - middle;
  }
  state.counters["of the bare steps"] = static_cast<double>(ours.count()) / static_cast<double>(bare.count());
}
BENCHMARK(saves)->UseRealTime()->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace SharedClasses::platform
