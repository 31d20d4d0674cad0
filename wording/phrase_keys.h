// The keys under which the words of log sentences stand in the string tables.
// Shared by the phrase builder and by the list of keys that translators are checked against. Pure; safe on any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "shared/action_codes.h"

namespace SharedClasses::Utilities {

// The table of verbs, articles and joining words; what is not in it is in the default table.
inline constexpr std::string_view kConjugationsTable = "Conjugations";

inline constexpr std::string_view kTenseLetters = "ARGIO";  // of the tenses -1 to 3
inline constexpr char kSingularLetter = 'S';
inline constexpr char kPluralLetter = 'P';
inline constexpr char kMasculineLetter = 'M';
inline constexpr char kFeminineLetter = 'F';

// Plural suffixes are numbered from 1; the first that is missing ends them.
inline constexpr int kPluralSuffixes = 4;

// "A" for every tense that is none of -1 to 3.
[[nodiscard]] char tenseLetter(std::int32_t tense);

// "Past" for -1, "Present" for 0, "Future" for every other tense.
[[nodiscard]] std::string_view tenseWord(std::int32_t tense);

// "keyOn  ASM": the code's characters, then the letters of tense, number and gender.
[[nodiscard]] std::string conjugationKey(ActionCode code, char tense, char number, char gender);

// "keyOn  Default"
[[nodiscard]] std::string defaultConjugationKey(ActionCode code);

// "keyPlayPast": the fixed phrase of a code that is not conjugated. Codes that are not in the table share "keyOperate".
[[nodiscard]] std::string fixedPhraseKey(ActionCode code, std::int32_t tense);

// "keySMArticle"
[[nodiscard]] std::string articleKey(char number, char gender);

// "keyCommonPluralSuffix1"
[[nodiscard]] std::string pluralSuffixKey(int number);

}  // namespace SharedClasses::Utilities
