#include "protocols/onewire/thermometer_scratch_pad.h"

#include <algorithm>

#include "platform/log.h"
#include "platform/saturating.h"
#include "platform/text.h"
#include "protocols/onewire/crc.h"

namespace SharedClasses {

namespace {

constexpr double kKelvinOfZeroCelsius = 273.15;

// What a device holds before its first conversion.
constexpr std::uint16_t kResetRegister = 0x00AA;  // 85 °C
constexpr std::uint8_t kResetCountRemain = 0x0C;
constexpr std::uint8_t kResetCountPerDegree = 0x10;

std::uint8_t lowByte(std::int32_t number) {
  return static_cast<std::uint8_t>(number);
}

std::uint8_t crcOf(const ThermometerScratchPad::Bytes& bytes) {
  return OneWireUtilities::calc1WireCRC(std::span(bytes).first<ThermometerScratchPad::kCRC>());
}

platform::Value numberOrAbsent(std::optional<double> number) {
  return number ? platform::Value(*number) : platform::Value();
}

// The whole degrees of a temperature register, the half-degree bit dropped.
std::int32_t wholeDegrees(std::uint16_t halves) {
  const std::int32_t degrees = halves >> 1;
  const int high = halves >> 8;
  if (high == 0xFF) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(degrees) | 0xFFFFFF80U);
  }
  if (high != 0x00) {
    platform::log("ThermometerScratchpad got a suspect tempRead: 0x" +
                  platform::hexDigits(static_cast<std::uint64_t>(degrees), 8));
  }
  return degrees & 0x7F;
}

}  // namespace

std::unique_ptr<ThermometerScratchPad> ThermometerScratchPad::scratchPadWithDataAndSetCRC(
    std::span<const std::uint8_t> data, bool setCRC) {
  return data.size() == kSize ? std::make_unique<ThermometerScratchPad>(data, setCRC) : nullptr;
}

std::unique_ptr<ThermometerScratchPad> ThermometerScratchPad::scratchPadWithAttributes(
    const platform::Value::Dictionary& attributes) {
  auto pad = std::make_unique<ThermometerScratchPad>();
  const auto entry = [&attributes](std::string_view key) {
    const auto found = attributes.find(key);
    return found == attributes.end() ? platform::Value() : found->second;
  };
  // First, so that the numbers are read in these units.
  if (const platform::Value units = entry("units"); units.text() != nullptr) {
    pad->setUnits(*units.text());
  }
  pad->setTemperature(entry("temperature").realValue());
  if (const auto limit = entry("lowAlarm").integerValue()) {
    pad->setLowAlarm(platform::saturatingCast<std::int32_t>(*limit));
  }
  if (const auto limit = entry("highAlarm").integerValue()) {
    pad->setHighAlarm(platform::saturatingCast<std::int32_t>(*limit));
  }
  return pad;
}

ThermometerScratchPad::ThermometerScratchPad(std::span<const std::uint8_t> data, bool setCRC) {
  if (data.size() != kSize) {
    return;
  }
  std::ranges::copy(data, ensuredBytes().begin());
  if (setCRC) {
    refreshCRC();
  }
}

void ThermometerScratchPad::setUnits(std::string_view units) {
  if (units == "C" || units == "F" || units == "K") {
    mUnits = units;
  }
}

bool ThermometerScratchPad::isValid() const {
  return mBytes && crcOf(*mBytes) == mBytes->back();
}

std::optional<double> ThermometerScratchPad::temperature() const {
  if (!mBytes) {
    return std::nullopt;
  }
  const Bytes& bytes = *mBytes;
  const int countPerDegree = bytes[kCountPerDegree];
  int countRemain = bytes[kCountRemain];
  if (countRemain >= countPerDegree) {
    platform::log("ThermometerScratchpad got a suspect countRemain: 0x" + platform::hexDigits(bytes[kCountRemain], 2));
    countRemain &= 0x0F;
  }
  return fromCelsius(wholeDegrees(temperatureRegister()) - 0.25 +
                     static_cast<double>(countPerDegree - countRemain) / countPerDegree);
}

std::int32_t ThermometerScratchPad::setTemperature(std::optional<double> temperature) {
  if (!temperature) {
    return kNoNumber;
  }
  Bytes& bytes = ensuredBytes();
  const double halves = 2 * toCelsius(*temperature);
  const auto whole = platform::saturatingCast<std::int32_t>(halves);
  bytes[kTemperatureLow] = lowByte(whole);
  bytes[kTemperatureHigh] = lowByte(whole >> 8);
  // Kept: the register counts as an unsigned number here, so that below zero the difference is some 65,536 half degrees
  // and the count the low byte of their product.
  const double counts = (halves - temperatureRegister()) * bytes[kCountPerDegree];
  bytes[kCountRemain] = lowByte(platform::saturatingCast<std::int32_t>(counts));
  refreshCRC();
  return kDone;
}

std::int32_t ThermometerScratchPad::lowAlarm() const {
  return alarm(kLowAlarm);
}

std::int32_t ThermometerScratchPad::setLowAlarm(std::int32_t limit) {
  return setAlarm(kLowAlarm, limit);
}

std::int32_t ThermometerScratchPad::highAlarm() const {
  return alarm(kHighAlarm);
}

std::int32_t ThermometerScratchPad::setHighAlarm(std::int32_t limit) {
  return setAlarm(kHighAlarm, limit);
}

bool ThermometerScratchPad::looksLikePowerOnReset() const {
  return holdsResetState(kResetRegister);
}

platform::Value::Dictionary ThermometerScratchPad::attributes() const {
  platform::Value::Dictionary attributes = {{"units", mUnits}, {"lowAlarm", lowAlarm()}, {"highAlarm", highAlarm()}};
  // Read once: a suspect reading is logged once.
  if (const platform::Value reading = numberOrAbsent(temperature()); !reading.isAbsent()) {
    attributes.emplace("temperature", reading);
    attributes.emplace("status", reading);
  }
  return attributes;
}

std::string ThermometerScratchPad::description() const {
  const platform::Value block = mBytes ? platform::Value::Data(mBytes->begin(), mBytes->end()) : platform::Value();
  return "Bytes: " + block.description() + "\nTemperature: " + numberOrAbsent(temperature()).description() +
         "\nLow alarm: " + std::to_string(lowAlarm()) + "\nHigh alarm: " + std::to_string(highAlarm());
}

double ThermometerScratchPad::fromCelsius(double celsius) const {
  if (mUnits == "F") {
    return 9 * celsius / 5 + 32;
  }
  return mUnits == "K" ? celsius + kKelvinOfZeroCelsius : celsius;
}

double ThermometerScratchPad::toCelsius(double temperature) const {
  if (mUnits == "F") {
    return (temperature - 32) * 5 / 9;
  }
  return mUnits == "K" ? temperature - kKelvinOfZeroCelsius : temperature;
}

std::uint16_t ThermometerScratchPad::temperatureRegister() const {
  return mBytes ? static_cast<std::uint16_t>((*mBytes)[kTemperatureHigh] << 8 | (*mBytes)[kTemperatureLow])
                : std::uint16_t{0};
}

bool ThermometerScratchPad::holdsResetState(std::uint16_t reset) const {
  return mBytes && temperatureRegister() == reset && (*mBytes)[kCountRemain] == kResetCountRemain &&
         (*mBytes)[kCountPerDegree] == kResetCountPerDegree;
}

ThermometerScratchPad::Bytes& ThermometerScratchPad::ensuredBytes() {
  return mBytes ? *mBytes : mBytes.emplace();
}

void ThermometerScratchPad::refreshCRC() {
  Bytes& bytes = ensuredBytes();
  bytes[kCRC] = crcOf(bytes);
}

std::int32_t ThermometerScratchPad::alarm(std::size_t index) const {
  if (!mBytes) {
    return 0;
  }
  const double limit = fromCelsius(static_cast<std::int8_t>((*mBytes)[index]));
  return platform::saturatingCast<std::int32_t>(mUnits == "F" ? limit + 0.5 : limit);
}

std::int32_t ThermometerScratchPad::setAlarm(std::size_t index, std::int32_t limit) {
  const double celsius = toCelsius(limit);
  ensuredBytes()[index] = lowByte(platform::saturatingCast<std::int32_t>(mUnits == "F" ? celsius + 0.5 : celsius));
  refreshCRC();
  return kDone;
}

}  // namespace SharedClasses
