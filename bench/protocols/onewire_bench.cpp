// What an agent does for every 1-Wire device it meets. The CRC runs beside a bare loop over a table; an address is to
// be read in less than 150 nanoseconds.
#include <benchmark/benchmark.h>

#include <array>

#include "protocols/onewire/addresses.h"
#include "protocols/onewire/crc.h"
#include "protocols/onewire/ds18b20_scratch_pad.h"

namespace SharedClasses {
namespace {

constexpr std::array<std::uint8_t, OneWireUtilities::kAddressSize> kROM = {0x28, 0xC3, 0xFD, 0xE2, 0x05, 0, 0, 0xE9};
constexpr ThermometerScratchPad::Bytes kPad = {0x91, 0x01, 0x4B, 0x46, 0x7F, 0xFF, 0x0C, 0x10, 0x70};

// Keeps the compiler from computing the result of a constant argument once and for all.
template <class Argument>
Argument hidden(Argument argument) {
  const Argument* volatile place = &argument;
  return *place;
}

template <class Operation>
void measure(const char* name, Operation operation) {
  benchmark::RegisterBenchmark(name, [operation](benchmark::State& state) {
    for (auto _ : state) {
      benchmark::DoNotOptimize(operation());
    }
  });
}

const bool sRegistered = [] {
  measure("yardstick: CRC-8 of 8 bytes by a bare loop", [] {
    const auto bytes = hidden(kROM);
    std::uint8_t crc = 0;
    for (const std::uint8_t byte : bytes) {
      crc = OneWireUtilities::OneWireCRC8Table[crc ^ byte];
    }
    return crc;
  });
  measure("calc1WireCRC of 8 bytes", [] { return OneWireUtilities::calc1WireCRC(hidden(kROM)); });
  measure("calc1WireCRC16 of 8 bytes", [] { return OneWireUtilities::calc1WireCRC16(hidden(kROM)); });
  measure("bytesWithAddress", [] {
    std::array<std::uint8_t, OneWireUtilities::kAddressSize> bytes{};
    OneWireUtilities::bytesWithAddress(bytes.data(), hidden("e9:00:00:05:e2:fd:c3:28"));
    return bytes;
  });
  measure("validAddress", [] { return OneWireUtilities::validAddress(hidden("e9:00:00:05:e2:fd:c3:28")); });
  measure("addressStringWithBytes", [] { return OneWireUtilities::addressStringWithBytes(hidden(kROM)); });
  measure("temperature of a DS18B20",
          [pad = std::make_shared<DS18B20ScratchPad>(kPad, false)] { return hidden(pad.get())->temperature(); });
  measure("temperature of a DS18S20", [pad = std::make_shared<ThermometerScratchPad>(
                                           ThermometerScratchPad::Bytes{0xAA, 0, 0x4B, 0x46, 0xFF, 0xFF, 0x0C, 0x10},
                                           true)] { return hidden(pad.get())->temperature(); });
  return true;
}();

}  // namespace
}  // namespace SharedClasses
