// Action codes: the 32-bit code that names every action the system performs or reports, such as "On  " or "Dim ".
// One table says where each code takes part; the X10, INSTEON and wording conversions all read it.
// Codes are compared as whole integers: blanks count, case counts. Pure; safe on any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/four_char_code.h"
#include "platform/value.h"

namespace SharedClasses {

// Four characters, the first in the most significant byte; 0 means no action.
using ActionCode = platform::FourCharCode;

using platform::fourCharCode;

inline constexpr ActionCode kNoAction = 0;

// The codes that some code treats in a way of their own.
inline constexpr ActionCode kAllUnitsOffAction = fourCharCode("AOff");
inline constexpr ActionCode kDimAction = fourCharCode("Dim ");
inline constexpr ActionCode kBrightenAction = fourCharCode("Brit");
inline constexpr ActionCode kDimToAction = fourCharCode("DmTo");
inline constexpr ActionCode kBrightenToAction = fourCharCode("BrTo");
inline constexpr ActionCode kExtendedCodeAction = fourCharCode("ExCm");
inline constexpr ActionCode kExtendedDataAction = fourCharCode("ExDt");
inline constexpr ActionCode kStatusAction = fourCharCode("Stat");
inline constexpr ActionCode kHailAction = fourCharCode("Hail");
inline constexpr ActionCode kHailAcknowledgeAction = fourCharCode("HAck");

// A column of the table in which a code has no place.
inline constexpr std::uint8_t kNotInColumn = 0xFF;

// How the log words a code.
enum class ActionWording : std::uint8_t {
  Conjugated,   // by the "Conjugations" table, under a key formed from the code's own characters
  AllDevices,   // the same, always in the plural: the code names a whole house
  FixedPhrase,  // by the code's own phrase key, with a word for the tense behind it
};

// One row of the table.
struct ActionCodeRow {
  ActionCode code;
  std::uint8_t x10Function = kNotInColumn;       // 0 to 15
  std::uint8_t compactNumber = kNotInColumn;     // 1 to 18
  std::uint8_t insteonCommand = kNotInColumn;    // the command byte that is sent
  std::uint8_t insteonHeard = kNotInColumn;      // a command byte that reads back as the code
  std::uint8_t insteonHeardFast = kNotInColumn;  // a second one
  ActionWording wording = ActionWording::FixedPhrase;
  std::string_view phraseKey = "keyOperate";  // of a fixed phrase, without the tense
};

// Every action code, in ascending order.
[[nodiscard]] std::span<const ActionCodeRow> actionCodeTable();

// The row of `code`; null for a code that is not in the table.
[[nodiscard]] const ActionCodeRow* actionCodeRow(ActionCode code);

namespace Utilities {

// The four characters of `code`, blanks kept. A zero byte ends the text, so 0 gives the empty text; so does a code
// whose bytes are not UTF-8.
[[nodiscard]] std::string stringFromFourCharCode(platform::FourCharCode code);

// The code that the first four characters of `text` spell. An empty or absent (null) text gives 0.
// Kept: a shorter text is not padded with blanks ("On" gives 0x4F6E0000, which is not "On  ").
// Kept: each character counts with its low 8 bits as a signed byte, so that one of 0x80 or above sets every higher bit.
[[nodiscard]] platform::FourCharCode fourCharCodeFromString(std::string_view text);
[[nodiscard]] platform::FourCharCode fourCharCodeFromString(const std::string& text);
[[nodiscard]] platform::FourCharCode fourCharCodeFromString(const char* text);

// The same for a text or a number; a number is first turned into its code's text. Anything else gives 0.
[[nodiscard]] platform::FourCharCode fourCharCodeFromString(const platform::Value& value);

// The code that `value` stands for: of a text, what it spells; of a number, the low 32 bits of its integer value; of an
// object whose class name ends in "Action", its `actionCode`. Anything else gives 0, also an object that throws.
[[nodiscard]] platform::FourCharCode fourCharCodeFromObject(const platform::Value& value);

}  // namespace Utilities

}  // namespace SharedClasses
