#include "protocols/onewire/ds18b20_scratch_pad.h"

#include "platform/saturating.h"

namespace SharedClasses {

namespace {

constexpr std::int32_t kLowestResolution = 9;  // bits
constexpr std::int32_t kHighestResolution = 12;
constexpr std::uint16_t kResetRegister = 0x0550;  // 85 °C

// What configuration bytes of all resolutions have in common; the resolution above the lowest stands in bits 5 and 6.
constexpr std::uint8_t kConfigurationBase = 0x1F;
constexpr unsigned kResolutionShift = 5;
constexpr unsigned kResolutionMask = 0x03;

}  // namespace

std::unique_ptr<DS18B20ScratchPad> DS18B20ScratchPad::scratchPadWithDataAndSetCRC(std::span<const std::uint8_t> data,
                                                                                  bool setCRC) {
  return data.size() == kSize ? std::make_unique<DS18B20ScratchPad>(data, setCRC) : nullptr;
}

std::unique_ptr<DS18B20ScratchPad> DS18B20ScratchPad::scratchPadWithAttributes(
    const platform::Value::Dictionary& attributes) {
  const auto base = ThermometerScratchPad::scratchPadWithAttributes(attributes);
  if (!base->bytes()) {
    return nullptr;
  }
  auto pad = scratchPadWithDataAndSetCRC(*base->bytes(), false);
  pad->setUnits(base->units());
  const auto precision = attributes.find("precision");
  const auto bits = precision == attributes.end() ? std::nullopt : precision->second.integerValue();
  pad->setResolution(platform::saturatingCast<std::int32_t>(bits.value_or(kLowestResolution)));
  return pad;
}

std::int32_t DS18B20ScratchPad::resolution() const {
  const unsigned configuration = bytes() ? (*bytes())[kConfiguration] : 0;
  return kLowestResolution + static_cast<std::int32_t>(configuration >> kResolutionShift & kResolutionMask);
}

void DS18B20ScratchPad::setResolution(std::int32_t bits) {
  const std::int32_t known = bits >= kLowestResolution && bits <= kHighestResolution ? bits : kLowestResolution;
  ensuredBytes()[kConfiguration] =
      static_cast<std::uint8_t>(kConfigurationBase | (known - kLowestResolution) << kResolutionShift);
}

std::optional<double> DS18B20ScratchPad::temperature() const {
  if (!bytes()) {
    return std::nullopt;
  }
  std::uint32_t sixteenths = temperatureRegister();
  if ((sixteenths & 0xFFFFF800U) != 0) {
    sixteenths |= 0xFFFF0000U;
  }
  sixteenths &= ~0U << (kHighestResolution - resolution());
  return fromCelsius(static_cast<std::int32_t>(sixteenths) / 16.0);
}

std::int32_t DS18B20ScratchPad::setTemperature(std::optional<double> temperature) {
  if (!temperature) {
    return kNoNumber;
  }
  const auto sixteenths = platform::saturatingCast<std::int32_t>(16 * toCelsius(*temperature));
  Bytes& bytes = ensuredBytes();
  bytes[kTemperatureLow] = static_cast<std::uint8_t>(sixteenths);
  bytes[kTemperatureHigh] = static_cast<std::uint8_t>(sixteenths >> 8);
  refreshCRC();
  return kDone;
}

bool DS18B20ScratchPad::looksLikePowerOnReset() const {
  return holdsResetState(kResetRegister);
}

platform::Value::Dictionary DS18B20ScratchPad::attributes() const {
  platform::Value::Dictionary attributes = ThermometerScratchPad::attributes();
  attributes.emplace("precision", resolution());
  return attributes;
}

std::string DS18B20ScratchPad::description() const {
  return ThermometerScratchPad::description() + "\nResolution: " + std::to_string(resolution());
}

}  // namespace SharedClasses
