// A finished sentence of the log; one with two devices is to take less than 3 microseconds.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>

#include "tests/support/main_bundle.h"
#include "wording/action_phrases.h"

namespace SharedClasses {
namespace {

void wordSentences(benchmark::State& state, const platform::Value::List& devices, ActionCode code,
                   std::optional<double> amount, std::string_view expected) {
  tests::useShippedTexts();
  const Utilities::LogStringArguments arguments{.devices = devices, .actionCode = code, .amount = amount};
  if (Utilities::logStringForDevices(arguments) != expected) {
    std::fprintf(stderr, "action_phrases_bench: not what was to be worded: %.*s\n", static_cast<int>(expected.size()),
                 expected.data());
    std::exit(1);
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(Utilities::logStringForDevices(arguments));
  }
}

void BM_SentenceOfOneDevice(benchmark::State& state) {
  wordSentences(state, {"hall lamp"}, fourCharCode("On  "), std::nullopt, "The hall lamp was turned on.");
}
BENCHMARK(BM_SentenceOfOneDevice);

// One device alone is looked at for a plural ending.
void BM_SentenceOfOneLongName(benchmark::State& state) {
  wordSentences(state, {"reading lamp by the big living room window"}, fourCharCode("On  "), std::nullopt,
                "The reading lamp by the big living room window was turned on.");
}
BENCHMARK(BM_SentenceOfOneLongName);

void BM_SentenceOfTwoDevices(benchmark::State& state) {
  wordSentences(state, {"hall lamp", "porch lights"}, fourCharCode("Dim "), 40,
                "The hall lamp and porch lights were dimmed by 40%.");
}
BENCHMARK(BM_SentenceOfTwoDevices);

class Device : public platform::Object {
 public:
  explicit Device(const char* name) : mName(name) {}
  std::string className() const override { return "Device"; }
  bool respondsToSelector(std::string_view selector) const override { return selector == "name"; }
  platform::Value performSelector(std::string_view, std::span<const platform::Value>) override { return mName; }

 private:
  platform::Value mName;
};

void BM_SentenceOfTwoDeviceObjects(benchmark::State& state) {
  wordSentences(state, {std::make_shared<Device>("hall lamp"), std::make_shared<Device>("porch lights")},
                fourCharCode("Dim "), 40, "The hall lamp and porch lights were dimmed by 40%.");
}
BENCHMARK(BM_SentenceOfTwoDeviceObjects);

}  // namespace
}  // namespace SharedClasses
