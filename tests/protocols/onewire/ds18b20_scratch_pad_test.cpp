#include "protocols/onewire/ds18b20_scratch_pad.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/captured_log.h"

namespace SharedClasses {

using Pad = DS18B20ScratchPad;
using Bytes = Pad::Bytes;

static std::unique_ptr<Pad> padOf(int temperature, int configuration, const char* units = "C") {
  const auto byte = [](int number) { return static_cast<std::uint8_t>(number); };
  const Bytes bytes = {byte(temperature), byte(temperature >> 8), 0x4B, 0x46, byte(configuration), 0xFF, 0x0C, 0x10};
  auto pad = Pad::scratchPadWithDataAndSetCRC(bytes, true);
  pad->setUnits(units);
  return pad;
}

TEST(DS18B20ScratchPad, EveryRegisterReadsAsASlowModelSaysAtEveryResolutionAndIsWrittenBack) {
  const tests::CapturedLog log;
  for (int index = 0; index < 0x10000; ++index) {
    const int sixteenths = index < 0x0800 ? index : index - 0x10000;
    for (int bits = 9; bits <= 12; ++bits) {
      const double step = std::pow(2, 12 - bits);
      ASSERT_EQ(padOf(index, 32 * bits - 257)->temperature(), std::floor(sixteenths / step) * step / 16) << index;
    }
    const auto pad = padOf(0, 0x7F);
    ASSERT_EQ(pad->setTemperature(sixteenths / 16.0), 0);
    ASSERT_EQ(pad->bytes(), padOf(index, 0x7F)->bytes()) << index;
  }
  EXPECT_TRUE(log.messages().empty()) << "nothing is suspect here";
}

TEST(DS18B20ScratchPad, ReadsAndWritesAsTheDataSheetShowsAndSaturates) {
  using Row = std::tuple<const char*, double, int, double, double>;
  for (const auto& [units, written, sixteenths, read, readWith9Bits] :
       {Row("C", 85, 0x0550, 85, 85), Row("C", -55, 0xFC90, -55, -55), Row("C", 25.0625, 0x0191, 25.0625, 25),
        Row("C", -10.125, 0xFF5E, -10.125, -10.5), Row("C", -3968, 0x0800, -3968, -3968), Row("F", 77, 0x0190, 77, 77),
        Row("K", 298.15, 0x0190, 298.15, 298.15), Row("C", -0.99, 0xFFF1, -0.9375, -1), Row("C", std::nan(""), 0, 0, 0),
        Row("C", 1e300, 0xFFFF, -0.0625, -0.5)}) {
    SCOPED_TRACE(units + std::to_string(written));
    const auto pad = padOf(0x1234, 0x7F, units);
    EXPECT_EQ(pad->setTemperature(written), 0);
    EXPECT_EQ(pad->setTemperature(std::nullopt), -72);
    EXPECT_EQ(pad->bytes(), padOf(sixteenths, 0x7F)->bytes());
    EXPECT_DOUBLE_EQ(*pad->temperature(), read);
    EXPECT_DOUBLE_EQ(*padOf(sixteenths, 0x1F, units)->temperature(), readWith9Bits);
  }
}

TEST(DS18B20ScratchPad, AResolutionIsTwoBitsAndLeavesTheOldCRC) {
  for (int configuration = 0; configuration < 256; ++configuration) {
    EXPECT_EQ(padOf(0, configuration)->resolution(), 9 + configuration / 32 % 4);
  }
  using Row = std::pair<int, int>;
  for (const auto& [bits, configuration] : {Row(10, 0x3F), Row(11, 0x5F), Row(12, 0x7F), Row(8, 0x1F), Row(13, 0x1F)}) {
    const auto pad = padOf(0, 0);
    pad->setResolution(bits);
    EXPECT_FALSE(pad->isValid()) << bits;
    pad->setHighAlarm(75);
    EXPECT_EQ(pad->bytes(), padOf(0, configuration)->bytes()) << bits;
  }
  Pad pad;
  pad.setResolution(11);
  EXPECT_EQ(pad.bytes(), (Bytes{0, 0, 0, 0, 0x5F}));
}

TEST(DS18B20ScratchPad, AttributesAreWrittenByTheBaseAndTheResolutionComesLast) {
  const auto pad = Pad::scratchPadWithAttributes({{"units", "C"}, {"temperature", 25}, {"precision", 12}});
  Bytes expected = *ThermometerScratchPad::scratchPadWithAttributes({{"units", "C"}, {"temperature", 25}})->bytes();
  expected[4] = 0x7F;
  EXPECT_EQ(pad->bytes(), expected) << "with the CRC over the old configuration";
  EXPECT_EQ(pad->temperature(), 3.125) << "50 half degrees read as 50 sixteenths";
  EXPECT_EQ((*Pad::scratchPadWithAttributes({{"lowAlarm", 50}})->bytes())[4], 0x1F);
  EXPECT_EQ(Pad::scratchPadWithAttributes({{"units", "C"}, {"precision", 12}}), nullptr) << "none of them makes bytes";
}

TEST(DS18B20ScratchPad, ThroughItsBaseItReadsAsItself) {
  const std::unique_ptr<ThermometerScratchPad> pad = padOf(0x0550, 0x7F);
  EXPECT_TRUE(pad->looksLikePowerOnReset());
  EXPECT_FALSE(padOf(0x00AA, 0x7F)->looksLikePowerOnReset()) << "85 °C of the other kind";
  EXPECT_EQ(platform::Value(pad->attributes()).description(),
            "{highAlarm = 75, lowAlarm = 70, precision = 12, status = 85, temperature = 85, units = \"C\"}");
  EXPECT_EQ(pad->description(),
            "Bytes: <50054b46 7fff0c10 1c>\nTemperature: 85\nLow alarm: 70\nHigh alarm: 75\nResolution: 12");
}

}  // namespace SharedClasses
