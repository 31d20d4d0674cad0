#include "wording/phrase_keys.h"

namespace SharedClasses::Utilities {

char tenseLetter(std::int32_t tense) {
  const bool isNamed = tense >= -1 && tense <= 3;
  return kTenseLetters[isNamed ? static_cast<std::size_t>(tense + 1) : 0];
}

std::string_view tenseWord(std::int32_t tense) {
  if (tense == -1) {
    return "Past";
  }
  return tense == 0 ? "Present" : "Future";
}

std::string conjugationKey(ActionCode code, char tense, char number, char gender) {
  std::string key = "key" + stringFromFourCharCode(code);
  key += {tense, number, gender};
  return key;
}

std::string defaultConjugationKey(ActionCode code) {
  return "key" + stringFromFourCharCode(code) + "Default";
}

std::string fixedPhraseKey(ActionCode code, std::int32_t tense) {
  const ActionCodeRow* row = actionCodeRow(code);
  std::string key(row == nullptr ? ActionCodeRow().phraseKey : row->phraseKey);
  key += tenseWord(tense);
  return key;
}

std::string articleKey(char number, char gender) {
  return std::string("key") + number + gender + "Article";
}

std::string pluralSuffixKey(int number) {
  return "keyCommonPluralSuffix" + std::to_string(number);
}

}  // namespace SharedClasses::Utilities
