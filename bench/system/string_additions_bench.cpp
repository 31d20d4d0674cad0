// The additions to texts on a text of 1 MB: replacing its 100,000 occurrences is to take well under a second, whichever
// way the length goes, and so is giving up on a pair that has no end in sight.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>

#include "system/miscellany/string_additions.h"

namespace SharedClasses::QZAdditions {
namespace {

constexpr int kOccurrences = 100'000;

std::string repeated(std::string_view piece, int times) {
  std::string text;
  for (; times > 0; --times) {
    text += piece;
  }
  return text;
}

void require(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "string_additions_bench: %s is wrong\n", what);
    std::exit(1);
  }
}

void runReplacing(benchmark::State& state, const std::string& text, std::string_view target,
                  std::string_view replacement, const std::string& expected) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(stringByReplacingOccurrencesOfString(text, target, replacement));
  }
  require(stringByReplacingOccurrencesOfString(text, target, replacement) == expected, "the result");
}

void BM_ReplacingByShorter(benchmark::State& state) {
  runReplacing(state, repeated("a lamp is ", kOccurrences), "lamp", "fan", repeated("a fan is ", kOccurrences));
}
BENCHMARK(BM_ReplacingByShorter)->Unit(benchmark::kMillisecond);

void BM_ReplacingByLonger(benchmark::State& state) {
  runReplacing(state, repeated("a lamp is ", kOccurrences), "lamp", "chandelier",
               repeated("a chandelier is ", kOccurrences));
}
BENCHMARK(BM_ReplacingByLonger)->Unit(benchmark::kMillisecond);

void BM_Deleting(benchmark::State& state) {
  runReplacing(state, repeated("a lamp is ", kOccurrences), "lamp", "", repeated("a  is ", kOccurrences));
}
BENCHMARK(BM_Deleting)->Unit(benchmark::kMillisecond);

// Each deletion makes the next occurrence, as far apart as can be.
void BM_DeletingNested(benchmark::State& state) {
  runReplacing(state, repeated("switch", kOccurrences) + repeated("over", kOccurrences), "switchover", "", "");
}
BENCHMARK(BM_DeletingNested)->Unit(benchmark::kMillisecond);

// Gone through up to the limits of work and of length.
void BM_GivingUpOnSorting(benchmark::State& state) {
  const std::string text = repeated("a", kOccurrences) + repeated("b", kOccurrences);
  runReplacing(state, text, "ab", "ba", text);
}
BENCHMARK(BM_GivingUpOnSorting)->Unit(benchmark::kMillisecond);

void BM_GivingUpOnGrowth(benchmark::State& state) {
  const std::string text = repeated("a", 40) + "b";
  runReplacing(state, text, "ab", "bba", text);
}
BENCHMARK(BM_GivingUpOnGrowth)->Unit(benchmark::kMillisecond);

void BM_RemovingCharacters(benchmark::State& state) {
  const std::string text = repeated("a lamp is ", kOccurrences);
  for (auto _ : state) {
    benchmark::DoNotOptimize(stringByRemovingCharactersInSet(text, U" aé"));
  }
  require(stringByRemovingCharactersInSet(text, U" aé") == repeated("lmpis", kOccurrences), "the rest");
}
BENCHMARK(BM_RemovingCharacters)->Unit(benchmark::kMillisecond);

void BM_LastLine(benchmark::State& state) {
  const std::string text = repeated("a lamp is\n", kOccurrences) + "off";
  for (auto _ : state) {
    benchmark::DoNotOptimize(rangeForLine(text, kOccurrences));
  }
  require(rangeForLine(text, kOccurrences) == TextRange{text.size() - 3, 3}, "the last line");
}
BENCHMARK(BM_LastLine)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace SharedClasses::QZAdditions
