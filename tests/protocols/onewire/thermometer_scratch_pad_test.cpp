#include "protocols/onewire/thermometer_scratch_pad.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/bitwise_crc.h"
#include "tests/support/captured_log.h"

namespace SharedClasses {

using Pad = ThermometerScratchPad;
using Bytes = Pad::Bytes;
using Log = std::vector<std::string>;

constexpr Bytes kResetState = {0xAA, 0x00, 0x4B, 0x46, 0xFF, 0xFF, 0x0C, 0x10, 0x87};

static std::unique_ptr<Pad> padOf(const Bytes& bytes, std::string_view units = "C") {
  auto pad = Pad::scratchPadWithDataAndSetCRC(bytes, true);
  pad->setUnits(units);
  return pad;
}

static Bytes bytesOf(int temperature, int remain, int perDegree) {
  const auto byte = [](int number) { return static_cast<std::uint8_t>(number); };
  return {byte(temperature), byte(temperature >> 8), 0, 0, 0, 0, byte(remain), byte(perDegree)};
}

TEST(ThermometerScratchPad, EveryRegisterReadsAsASlowModelSays) {
  using Counts = std::array<int, 3>;  // left, per degree, and what is made of those left
  constexpr Counts kCounts[] = {{0, 16, 0}, {12, 16, 12}, {16, 16, 0}, {0x13, 16, 3}, {0xFF, 255, 15}, {200, 201, 200}};
  for (int index = 0; index < 0x10000; ++index) {
    const auto& [remain, perDegree, used] = kCounts[static_cast<std::size_t>(index) % std::size(kCounts)];
    const bool below = index / 256 == 0xFF;
    const tests::CapturedLog log;
    ASSERT_EQ(padOf(bytesOf(index, remain, perDegree))->temperature(),
              index % 256 / 2 - (below ? 128 : 0) - 0.25 + (perDegree - used) * 1.0 / perDegree);
    ASSERT_EQ(log.messages().size(), (remain != used) + (index > 0xFF && !below)) << index;
  }
}

TEST(ThermometerScratchPad, ReadsInItsUnitsAndLogsWhatNoDeviceLeavesBehind) {
  const std::string remain = "ThermometerScratchpad got a suspect countRemain: 0x";
  const std::string read = "ThermometerScratchpad got a suspect tempRead: 0x";
  const std::tuple<const char*, Bytes, const char*, double, Log> kRows[] = {
      {"after power-on, Fahrenheit", kResetState, "F", 185, {}},
      {"after power-on, Kelvin", kResetState, "K", 358.15, {}},
      {"high byte", bytesOf(0x01AA, 0x0C, 0x10), "C", 85, {read + "000000d5"}},
      {"both", bytesOf(0xFEAA, 0x13, 0x10), "C", 85.5625, {remain + "13", read + "00007f55"}},
      {"shorted line", {}, "C", std::nan(""), {remain + "00"}},
      {"no count per degree", bytesOf(0, 0x0C, 0), "F", -HUGE_VAL, {remain + "0c"}},
  };
  for (const auto& [name, bytes, units, temperature, messages] : kRows) {
    SCOPED_TRACE(name);
    const tests::CapturedLog log;
    const auto attributes = padOf(bytes, units)->attributes();
    EXPECT_EQ(log.messages(), messages) << "once for both entries";
    EXPECT_EQ(attributes.at("temperature"), temperature);
    EXPECT_EQ(attributes.at("status"), temperature);
  }
}

TEST(ThermometerScratchPad, WritesHalfDegreesAndCountsThatItReadsOtherwise) {
  for (int n = -32 * 140; n <= 32 * 140; ++n) {  // 32nds of a degree: halves, and counts that are 16ths of a half
    const auto pad = padOf(bytesOf(0x1234, 0x56, 16));
    ASSERT_EQ(pad->setTemperature(n / 32.0), 0);
    ASSERT_EQ(pad->bytes(), padOf(bytesOf(n / 16, n % 16, 16))->bytes()) << n;
  }
  using Row = std::tuple<const char*, double, int, int, double>;
  for (const auto& [units, written, halves, remain, read] :
       {Row("C", 25, 0x0032, 0, 25.75), Row("C", 21.3, 0x002A, 9, 21.1875), Row("C", -5.5, 0xFFF5, 0, -5.25),
        Row("F", 77, 0x0032, 0, 78.35), Row("K", 273.15, 0, 0, 273.9), Row("C", std::nan(""), 0, 0, 0.75),
        Row("C", 1e300, 0xFFFF, 255, -1.1875)}) {
    SCOPED_TRACE(units + std::to_string(written));
    const tests::CapturedLog log;
    const auto pad = padOf(bytesOf(0x1234, 0x56, 16), units);
    EXPECT_EQ(pad->setTemperature(written), 0);
    EXPECT_EQ(pad->setTemperature(std::nullopt), -72);
    EXPECT_EQ(pad->bytes(), padOf(bytesOf(halves, remain, 16))->bytes());
    EXPECT_DOUBLE_EQ(*pad->temperature(), read);
  }
}

TEST(ThermometerScratchPad, EveryAlarmIsReadAndWrittenInEveryUnit) {
  for (int limit = -1000; limit <= 1000; ++limit) {
    const int fahrenheit = (10 * (limit - 32) + 9) / 18;
    for (const auto& [units, celsius] :
         {std::pair('C', limit), {'F', fahrenheit}, {'K', (100 * limit - 27315) / 100}}) {
      const auto pad = padOf(kResetState, std::string(1, units));
      ASSERT_EQ(pad->setHighAlarm(limit) + pad->setLowAlarm(limit), 0);
      const auto byte = static_cast<std::uint8_t>(celsius);
      ASSERT_EQ(pad->bytes(), padOf({0xAA, 0, byte, byte, 0xFF, 0xFF, 0x0C, 0x10})->bytes()) << limit << units;
      const int stored = static_cast<std::int8_t>(byte);
      ASSERT_EQ(pad->lowAlarm(), units == 'F' ? (18 * stored + 325) / 10 : units == 'K' ? stored + 273 : stored);
      ASSERT_EQ(pad->highAlarm(), pad->lowAlarm());
    }
  }
}

TEST(ThermometerScratchPad, EachFaultOfOneBitIsSeenAndReadAllTheSame) {
  EXPECT_TRUE(Pad(kResetState, false).isValid());
  for (std::size_t bit = 0; bit < 72; ++bit) {
    SCOPED_TRACE(bit);
    Bytes faulty = kResetState;
    faulty[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
    const tests::CapturedLog log;
    const Pad pad(faulty, false);
    EXPECT_FALSE(pad.isValid());
    EXPECT_EQ(pad.temperature(), padOf(faulty, "F")->temperature());
    EXPECT_EQ(padOf(faulty)->bytes()->back(), tests::bitwiseCRC(std::span(faulty).first<8>(), 0x8C));
    EXPECT_EQ(pad.looksLikePowerOnReset(), (bit >= 16 && bit < 48) || bit >= 64);
  }
}

TEST(ThermometerScratchPad, TakesNineBytesOrNoneAndMakesThemAtTheFirstSetter) {
  const std::uint8_t ten[10] = {};
  EXPECT_EQ(Pad::scratchPadWithDataAndSetCRC(std::span(ten).first(8), true), nullptr);
  EXPECT_EQ(Pad::scratchPadWithDataAndSetCRC(ten, true), nullptr);
  Pad pad(ten, true);
  pad.setUnits("c");
  EXPECT_EQ(pad.setTemperature(std::nullopt), -72);
  EXPECT_FALSE(pad.bytes() || pad.isValid() || pad.temperature() || pad.looksLikePowerOnReset());
  EXPECT_EQ(pad.attributes(), (platform::Value::Dictionary{{"units", "F"}, {"lowAlarm", 0}, {"highAlarm", 0}}));
  EXPECT_EQ(pad.description(), "Bytes: (null)\nTemperature: (null)\nLow alarm: 0\nHigh alarm: 0");
  pad.setLowAlarm(50);
  EXPECT_EQ(pad.bytes(), padOf({0, 0, 0, 10})->bytes());
}

TEST(ThermometerScratchPad, AttributesGoThroughTheSettersUnitsFirst) {
  const auto pad = Pad::scratchPadWithAttributes(
      {{"units", "C"}, {"temperature", 21.5}, {"lowAlarm", -5}, {"highAlarm", 30.9}, {"status", 99}});
  EXPECT_EQ(pad->bytes(), padOf({0x2B, 0, 30, 0xFB})->bytes());
  const auto foreign = Pad::scratchPadWithAttributes({{"units", 7}, {"temperature", "21.5"}, {"lowAlarm", "5"}});
  EXPECT_FALSE(foreign->bytes()) << "values of another type are not present";
}

}  // namespace SharedClasses
