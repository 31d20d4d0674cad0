// The nine bytes of a DS18B20 thermometer: a temperature in sixteenths of a degree Celsius and a resolution of 9 to 12
// bits. Units, alarm limits and validity are those of ThermometerScratchPad.
// A pad follows the rule of an int: many threads may read it, or one may change it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/value.h"
#include "protocols/onewire/thermometer_scratch_pad.h"

namespace SharedClasses {

class DS18B20ScratchPad : public ThermometerScratchPad {
 public:
  // `scratchPadWithData:andSetCRC:`
  // Null unless there are exactly nine bytes.
  [[nodiscard]] static std::unique_ptr<DS18B20ScratchPad> scratchPadWithDataAndSetCRC(
      std::span<const std::uint8_t> data, bool setCRC);
  // The attributes of ThermometerScratchPad, and "precision", the resolution in bits, 9 where it is absent. Null where
  // none of them made bytes.
  // Kept: the temperature is written as ThermometerScratchPad writes it, in half degrees, and the resolution goes in
  // without a new CRC, so that the pad reads another temperature and may be invalid. Write the temperature once more,
  // with setTemperature() of this pad, before the bytes are sent to a device.
  [[nodiscard]] static std::unique_ptr<DS18B20ScratchPad> scratchPadWithAttributes(
      const platform::Value::Dictionary& attributes);

  using ThermometerScratchPad::ThermometerScratchPad;

  // In bits: 9 to 12. Only two bits of the configuration byte count. 9 without bytes.
  [[nodiscard]] std::int32_t resolution() const;
  // Any other number than 10, 11 and 12 selects 9.
  // Kept: the CRC is not refreshed. Set the resolution before the temperature or an alarm, whose setters do that.
  void setResolution(std::int32_t bits);

  // Bits below the resolution read as 0. Nothing is logged.
  // Kept: a register of 0x0800 counts as negative, though no device reports it: -3968 °C.
  [[nodiscard]] std::optional<double> temperature() const override;
  // Truncates to sixteenths, whatever the resolution.
  std::int32_t setTemperature(std::optional<double> temperature) override;

  [[nodiscard]] bool looksLikePowerOnReset() const override;
  [[nodiscard]] platform::Value::Dictionary attributes() const override;  // with "precision"
  [[nodiscard]] std::string description() const override;                 // with a fifth line
};

}  // namespace SharedClasses
