// The nine bytes that a 1-Wire thermometer of the DS18S20 kind holds: a temperature in half degrees Celsius, refined by
// two count bytes, and two alarm limits. Bytes hold Celsius; every reader converts to the pad's units, every writer
// from them. A pad follows the rule of an int: many threads may read it, or one may change it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace SharedClasses {

class ThermometerScratchPad {
 public:
  static constexpr std::size_t kSize = 9;
  using Bytes = std::array<std::uint8_t, kSize>;

  // Where each byte stands.
  static constexpr std::size_t kTemperatureLow = 0;
  static constexpr std::size_t kTemperatureHigh = 1;
  static constexpr std::size_t kHighAlarm = 2;
  static constexpr std::size_t kLowAlarm = 3;
  static constexpr std::size_t kConfiguration = 4;  // used by DS18B20ScratchPad
  static constexpr std::size_t kCountRemain = 6;
  static constexpr std::size_t kCountPerDegree = 7;
  static constexpr std::size_t kCRC = 8;

  // What the setters answer.
  static constexpr std::int32_t kDone = 0;
  static constexpr std::int32_t kNoNumber = -72;

  // `scratchPadWithData:andSetCRC:`
  // A pad with a copy of `data` and, where `setCRC` says so, a fresh CRC. Null unless there are exactly nine bytes.
  [[nodiscard]] static std::unique_ptr<ThermometerScratchPad> scratchPadWithDataAndSetCRC(
      std::span<const std::uint8_t> data, bool setCRC);
  // A pad to be sent to a device: "units" (a text), then "temperature", "lowAlarm" and "highAlarm" (numbers) go through
  // the setters, each where it is present. What is of another type counts as not present.
  [[nodiscard]] static std::unique_ptr<ThermometerScratchPad> scratchPadWithAttributes(
      const platform::Value::Dictionary& attributes);

  // Without bytes, in Fahrenheit. The first setter of a temperature, an alarm or a resolution makes nine zero bytes.
  ThermometerScratchPad() = default;
  // `initWithData:andSetCRC:`
  // Without bytes where `data` are not nine.
  ThermometerScratchPad(std::span<const std::uint8_t> data, bool setCRC);

  ThermometerScratchPad(const ThermometerScratchPad&) = delete;
  ThermometerScratchPad& operator=(const ThermometerScratchPad&) = delete;
  virtual ~ThermometerScratchPad() = default;

  // "C", "F" or "K".
  [[nodiscard]] std::string_view units() const { return mUnits; }
  void setUnits(std::string_view units);  // ignored unless it is one of the three, in upper case

  // Whether the last byte is the CRC of the others. Nothing else asks: readers compute from what the bytes hold.
  [[nodiscard]] bool isValid() const;

  // In the pad's units; absent without bytes. Not finite where the count per degree is 0. Logs a count that a device
  // cannot leave behind and a high byte other than 0x00 and 0xFF, and reads on without the bits that are wrong.
  [[nodiscard]] virtual std::optional<double> temperature() const;
  // kNoNumber for an absent number, which changes nothing. Numbers beyond the register count as the nearest 32-bit
  // count of half degrees, of which the low 16 bits are kept; what is not a number counts as 0.
  // Kept: reading is not the inverse of writing. Written are half degrees and counts of a half; read are whole degrees,
  // the counts of a whole and a quarter less: 25 °C with 16 counts per degree reads back as 25.75.
  virtual std::int32_t setTemperature(std::optional<double> temperature);

  // Whole degrees in the pad's units; 0 without bytes. Bytes hold -128 to 127 °C; of a limit beyond that the low 8 bits
  // are kept.
  // Kept: Fahrenheit is rounded by adding a half and truncating toward zero, Kelvin is only truncated.
  [[nodiscard]] std::int32_t lowAlarm() const;
  std::int32_t setLowAlarm(std::int32_t limit);
  [[nodiscard]] std::int32_t highAlarm() const;
  std::int32_t setHighAlarm(std::int32_t limit);

  // Whether the bytes are those that the device holds before its first conversion: 85 °C with the counts that go with
  // it. Such a reading is a measurement that did not take place. The readers do not look at this.
  [[nodiscard]] virtual bool looksLikePowerOnReset() const;

  // "units", "temperature", "status" (the same number), "lowAlarm", "highAlarm". What is absent is left out.
  [[nodiscard]] virtual platform::Value::Dictionary attributes() const;

  // A copy; absent where the pad has none.
  [[nodiscard]] std::optional<Bytes> bytes() const { return mBytes; }

  // Four lines for the log, the last without a line break.
  [[nodiscard]] virtual std::string description() const;

 protected:
  [[nodiscard]] double fromCelsius(double celsius) const;
  [[nodiscard]] double toCelsius(double temperature) const;

  // The temperature bytes as one number; 0 without bytes.
  [[nodiscard]] std::uint16_t temperatureRegister() const;
  // Whether the temperature register is `reset` and the counts beside it are those of a device after power-on.
  [[nodiscard]] bool holdsResetState(std::uint16_t reset) const;

  // The pad's bytes; nine zero bytes from now on where it had none.
  Bytes& ensuredBytes();
  void refreshCRC();

 private:
  [[nodiscard]] std::int32_t alarm(std::size_t index) const;
  std::int32_t setAlarm(std::size_t index, std::int32_t limit);

  std::optional<Bytes> mBytes;
  std::string mUnits = "F";
};

}  // namespace SharedClasses
