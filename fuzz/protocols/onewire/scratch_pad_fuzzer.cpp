// Any nine bytes and any script of setters: every setter but that of the resolution leaves a valid pad, that of the
// units leaves the bytes, and a pad made of the same bytes reads the same.
#include <cstdlib>
#include <cstring>

#include "platform/log.h"
#include "protocols/onewire/ds18b20_scratch_pad.h"

namespace {

using SharedClasses::DS18B20ScratchPad;
using SharedClasses::ThermometerScratchPad;

struct Nowhere : SharedClasses::platform::LogSink {
  void write(std::string_view /*message*/) override {}
};

void check(bool holds) {
  if (!holds) {
    std::abort();
  }
}

// The next bytes of the input as a number; zeros stand for those that are missing.
template <class Number>
Number next(std::span<const std::uint8_t>& input) {
  Number number{};
  const std::size_t size = std::min(sizeof number, input.size());
  if (size > 0) {
    std::memcpy(&number, input.data(), size);
  }
  input = input.subspan(size);
  return number;
}

template <class Pad>
void run(std::span<const std::uint8_t> input) {
  const bool hasBytes = next<std::uint8_t>(input) % 2 != 0 && input.size() >= Pad::kSize;
  Pad pad(input.first(hasBytes ? Pad::kSize : 0), false);
  input = input.subspan(hasBytes ? Pad::kSize : 0);
  while (!input.empty()) {
    const auto before = pad.bytes();
    const auto step = next<std::uint8_t>(input) % 5;
    if (step == 0) {
      pad.setUnits(std::string(1, next<char>(input)));
      check(pad.bytes() == before);
    } else if (step == 1) {
      check(pad.setTemperature(next<double>(input)) == 0 && pad.isValid());
    } else if (step == 2) {
      check(pad.setLowAlarm(next<std::int32_t>(input)) == 0 && pad.isValid());
    } else if (step == 3) {
      check(pad.setHighAlarm(next<std::int32_t>(input)) == 0 && pad.isValid());
    } else if constexpr (std::is_same_v<Pad, DS18B20ScratchPad>) {
      pad.setResolution(next<std::int32_t>(input));
      check(pad.resolution() >= 9 && pad.resolution() <= 12);
    }
    Pad copy(pad.bytes().value_or(typename Pad::Bytes{}), false);
    copy.setUnits(pad.units());
    check(!pad.bytes() || (copy.attributes() == pad.attributes() && copy.description() == pad.description()));
    const auto made = Pad::scratchPadWithAttributes(pad.attributes());
    check(made != nullptr && made->units() == pad.units());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  [[maybe_unused]] static const auto sPrevious =
      SharedClasses::platform::setLogSink(std::make_shared<Nowhere>());  // suspect readings are expected here
  const std::span input(bytes, size);
  run<ThermometerScratchPad>(input);
  run<DS18B20ScratchPad>(input);
  return 0;
}
