#include "shared/action_codes.h"

#include <algorithm>
#include <array>
#include <functional>

#include "platform/text.h"

namespace SharedClasses {

namespace {

constexpr auto kConjugated = ActionWording::Conjugated;
constexpr auto kAllDevices = ActionWording::AllDevices;
constexpr std::uint8_t kNone = kNotInColumn;

// A code that only the log knows.
constexpr ActionCodeRow conjugated(ActionCode code) {
  return {.code = code, .wording = kConjugated};
}
constexpr ActionCodeRow phrase(ActionCode code, std::string_view key) {
  return {.code = code, .phraseKey = key};
}

// clang-format off
constexpr ActionCodeRow kTable[] = {
    //                      X10    compact INSTEON sent, heard, heard fast
    {fourCharCode("AOff"),  0,     9,      kNone, kNone, kNone, kAllDevices},
    phrase(fourCharCode("Add?"), "keyUnknownAddressSeen"),
    {fourCharCode("All+"),  1,     7,      kNone, kNone, kNone, kAllDevices},
    {fourCharCode("All-"),  6,     8,      kNone, kNone, kNone, kAllDevices},
    {fourCharCode("BrTo"),  kNone, 5,      kNone, kNone, kNone, kConjugated},
    {fourCharCode("Brit"),  5,     4,      0x15,  0x15,  kNone, kConjugated},
    conjugated(fourCharCode("Bub+")),
    conjugated(fourCharCode("Bub-")),
    {fourCharCode("DbRp"),  kNone, kNone,  0x49},
    {fourCharCode("Dim "),  4,     3,      0x16,  0x16,  kNone, kConjugated},
    {fourCharCode("DmTo"),  kNone, 6,      kNone, kNone, kNone, kConjugated},
    conjugated(fourCharCode("Down")),
    {fourCharCode("ExCm"),  7,     10,     kNone, kNone, kNone, kConjugated},
    {fourCharCode("ExDt"),  12,    15},
    {fourCharCode("HAck"),  9,     12},
    {fourCharCode("Hail"),  8,     11},
    phrase(fourCharCode("IM->"), "keySendIM"),
    conjugated(fourCharCode("LgIn")),
    conjugated(fourCharCode("LgOt")),
    conjugated(fourCharCode("Lod-")),
    phrase(fourCharCode("Log "), "keyLogText"),
    phrase(fourCharCode("Mail"), "keySendEmail"),
    phrase(fourCharCode("Net+"), "keykNetworkAvail"),  // Kept: the doubled k, since the string tables are keyed by it.
    phrase(fourCharCode("Net-"), "keyNetworkLost"),
    {fourCharCode("Off "),  3,     2,      0x13,  0x13,  0x14,  kConjugated},
    {fourCharCode("On  "),  2,     1,      0x11,  0x11,  0x12,  kConjugated},
    phrase(fourCharCode("Open"), "keyOpen"),
    {fourCharCode("PDm1"),  10,    13},
    {fourCharCode("PDm2"),  11,    14},
    phrase(fourCharCode("Play"), "keyPlay"),
    conjugated(fourCharCode("Pwr+")),
    conjugated(fourCharCode("Pwr-")),
    conjugated(fourCharCode("Quit")),
    phrase(fourCharCode("Rol+"), "keyDeviceNowRespondingToRollCall"),
    phrase(fourCharCode("Rol-"), "keyDeviceNotRespondingToRollCall"),
    phrase(fourCharCode("Say "), "keyAnnounce"),
    phrase(fourCharCode("Scpt"), "keyRun"),
    {fourCharCode("SetM"),  kNone, kNone,  0x03},
    {fourCharCode("SetS"),  kNone, kNone,  0x01},
    conjugated(fourCharCode("Slep")),
    {fourCharCode("Sta+"),  13,    16,     kNone, kNone, kNone, kConjugated},
    {fourCharCode("Sta-"),  14,    17,     kNone, kNone, kNone, kConjugated},
    {fourCharCode("Sta?"),  15,    18,     0x19,  kNone, kNone, kConjugated},
    conjugated(fourCharCode("Stat")),
    conjugated(fourCharCode("Strt")),
    conjugated(fourCharCode("Usr+")),
    conjugated(fourCharCode("Usr-")),
    conjugated(fourCharCode("Wait")),
    conjugated(fourCharCode("Wake")),
};
// clang-format on

static_assert(std::ranges::is_sorted(kTable, std::less{}, &ActionCodeRow::code));

}  // namespace

std::span<const ActionCodeRow> actionCodeTable() {
  return kTable;
}

const ActionCodeRow* actionCodeRow(ActionCode code) {
  const auto* row = std::ranges::lower_bound(kTable, code, std::less{}, &ActionCodeRow::code);
  return row != std::end(kTable) && row->code == code ? row : nullptr;
}

namespace Utilities {

std::string stringFromFourCharCode(platform::FourCharCode code) {
  std::string text;
  for (const unsigned shift : {24U, 16U, 8U, 0U}) {
    const auto character = static_cast<char>(code >> shift & 0xFFU);
    if (character == '\0') {
      break;
    }
    text += character;
  }
  return platform::isValidUTF8(text) ? text : std::string();
}

platform::FourCharCode fourCharCodeFromString(std::string_view text) {
  platform::FourCharCode code = 0;
  unsigned shift = 24;
  for (const char32_t character : platform::CodePoints(text)) {
    // Kept: the sign of the byte spills into every higher bit.
    const auto signedByte = static_cast<std::int8_t>(character & 0xFFU);
    code |= static_cast<std::uint32_t>(std::int32_t{signedByte}) << shift;
    if (shift == 0) {
      break;
    }
    shift -= 8;
  }
  return code;
}

platform::FourCharCode fourCharCodeFromString(const std::string& text) {
  return fourCharCodeFromString(std::string_view(text));
}

platform::FourCharCode fourCharCodeFromString(const char* text) {
  return text == nullptr ? 0 : fourCharCodeFromString(std::string_view(text));
}

platform::FourCharCode fourCharCodeFromString(const platform::Value& value) {
  if (const std::string* text = value.text()) {
    return fourCharCodeFromString(*text);
  }
  if (const auto number = value.integerValue()) {
    return fourCharCodeFromString(stringFromFourCharCode(static_cast<std::uint32_t>(*number)));
  }
  return 0;
}

platform::FourCharCode fourCharCodeFromObject(const platform::Value& value) {
  if (const std::string* text = value.text()) {
    return fourCharCodeFromString(*text);
  }
  platform::Value number = value;
  if (const platform::ObjectPointer object = value.object()) {
    try {
      number = object->className().ends_with("Action") ? object->performSelector("actionCode", {}) : nullptr;
    } catch (...) {
      return 0;
    }
  }
  return static_cast<std::uint32_t>(number.integerValue().value_or(0));
}

}  // namespace Utilities

}  // namespace SharedClasses
