// The sentences of the log: an article, the devices, the verb, and for dimming a preposition and a percentage.
// "The hall lamp and porch lights were dimmed by 40%." Every word comes from the string tables of the main bundle.
// Stateless; safe on any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "platform/value.h"
#include "shared/action_codes.h"

namespace SharedClasses::Utilities {

// What a sentence is about: each element a text, or an object that answers `name` (text). A text of one character is a
// house letter and stands for all units of that house. Anything else, and an object without a name or that throws,
// reads "???".
using Devices = std::span<const platform::Value>;

// When it happens. Any other number is worded like kPast by conjugated codes and like kFuture by fixed phrases.
inline constexpr std::int32_t kPastTense = -1;        // "The hall lamp was turned on."
inline constexpr std::int32_t kPresentTense = 0;      // "The hall lamp turns on."
inline constexpr std::int32_t kProgressiveTense = 1;  // "Turning on the hall lamp."
inline constexpr std::int32_t kFutureTense = 2;       // "The hall lamp will turn on."
inline constexpr std::int32_t kImperativeTense = 3;   // "Turn on the hall lamp."

// The word before an amount.
inline constexpr std::int32_t kNoPreposition = 0;         // worded like kToPreposition where a percentage follows
inline constexpr std::int32_t kByPreposition = 1;         // "dimmed by 40%"
inline constexpr std::int32_t kToPreposition = 2;         // "dimmed to 40%"
inline constexpr std::int32_t kAutomaticPreposition = 3;  // by for "Dim " and "Brit", to for "DmTo" and "BrTo"

// `guessPlural:andGender:withDevices:`
// Whether the devices read as a plural, and their grammatical gender. Either place may be null.
// Without devices: false and 'M'. With devices `*gender` is left as it is, and `*plural` is only ever set, never
// cleared: it becomes true for two or more, and for a name that ends, case aside, in one of the table's plural suffixes
// ("lights").
void guessPluralAndGender(bool* plural, char* gender, Devices devices);

struct VerbStringArguments {
  ActionCode actionCode = kNoAction;
  std::int32_t usingTense = kPastTense;
  Devices withDevices = {};                                    // number the verb
  const platform::Value::Dictionary* andParameters = nullptr;  // not used; may be null
};

// `verbStringForActionCode:usingTense:withDevices:andParameters:`
// The verb phrase for an action: of a conjugated code the form for tense, number and gender, else any form of that
// tense, else the code's default, else the code itself in single quotes; of any other code the fixed phrase for the
// tense, empty when the table has none.
[[nodiscard]] std::string verbStringForActionCode(const VerbStringArguments& arguments);

struct LogStringArguments {
  Devices devices = {};
  ActionCode actionCode = kNoAction;
  std::int32_t usingTense = kPastTense;
  std::int32_t preposition = kAutomaticPreposition;
  // Percent for "Dim ", "Brit", "DmTo" and "BrTo", which have no tail without it; level for "Stat", where absent is 0.
  // Numbers beyond 32 bits count as the nearest 32-bit one, what is not a number as 0.
  std::optional<double> amount = std::nullopt;
  // Null for none. Only the entry "extendedBytes", a display text, is read, and only for "ExCm".
  const platform::Value::Dictionary* andParameters = nullptr;
};

// `logStringForDevices:actionCode:usingTense:preposition:amount:andParameters:`
// The finished sentence, ending in ".". Devices stand in the order given, each once: texts are the same by content,
// objects by identity. Words that the tables lack are left out where they would stand. Names that are not UTF-8 are
// repaired.
// Kept: in the progressive and the imperative tense a blank follows the verb even without devices: "Turning on ."
[[nodiscard]] std::string logStringForDevices(const LogStringArguments& arguments);

}  // namespace SharedClasses::Utilities
