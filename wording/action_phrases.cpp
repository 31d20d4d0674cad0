#include "wording/action_phrases.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/saturating.h"
#include "platform/text.h"
#include "platform/text_format.h"
#include "shared/constants.h"
#include "wording/localized_strings.h"
#include "wording/phrase_keys.h"

namespace SharedClasses::Utilities {

namespace {

constexpr std::string_view kUnnamed = "???";

std::string_view conjugation(std::string_view key) {
  return viewOfString(key, kConjugationsTable);
}

bool namesWholeHouse(ActionCode code) {
  const ActionCodeRow* row = actionCodeRow(code);
  return row != nullptr && row->wording == ActionWording::AllDevices;
}

bool isConjugated(ActionCode code) {
  const ActionCodeRow* row = actionCodeRow(code);
  return row != nullptr && row->wording != ActionWording::FixedPhrase;
}

// What an object says when it is asked for its name.
struct NameAnswer {
  bool given = false;               // false when it threw
  std::optional<std::string> name;  // absent also where the answer was absent
};

NameAnswer askName(platform::Object& object) {
  try {
    const platform::Value name = object.performSelector("name", {});
    return {true, name.isAbsent() ? std::nullopt : std::optional(platform::repairedUTF8(name.description()))};
  } catch (...) {
    return {};
  }
}

bool answersName(const platform::Object& object) {
  try {
    return object.respondsToSelector("name");
  } catch (...) {
    return false;
  }
}

// Each device once, in the order in which it is first seen.
std::vector<platform::Value> withoutDuplicates(Devices devices) {
  std::unordered_set<std::string_view> texts;
  std::unordered_set<const platform::Object*> objects;
  std::vector<platform::Value> kept;
  kept.reserve(devices.size());
  for (const platform::Value& device : devices) {
    const std::string* text = device.text();
    const platform::ObjectPointer object = device.object();
    if ((text == nullptr || texts.insert(*text).second) && (object == nullptr || objects.insert(object.get()).second)) {
      kept.push_back(device);
    }
  }
  return kept;
}

bool looksPlural(std::string_view name) {
  for (int i = 1; i <= kPluralSuffixes; ++i) {
    const std::string_view suffix = conjugation(pluralSuffixKey(i));
    if (suffix.empty()) {
      return false;
    }
    if (platform::endsWithIgnoringCase(name, suffix)) {
      return true;
    }
  }
  return false;
}

// What a house letter stands for in a sentence about `code`: "all lights in house B"; the letter itself for a code that
// does not name a whole house.
std::string nameOfHouse(std::string_view letter, ActionCode code) {
  if (!namesWholeHouse(code)) {
    return std::string(letter);
  }
  const std::string_view units = viewOfString(code == kAllUnitsOffAction ? "keyAllUnits" : "keyAllLights");
  return platform::filledFormat(viewOfString("keyAllDevicesLogFormat"), {units, letter});
}

// The devices as a sentence names them, and what the rest of the sentence has to know of them.
struct DeviceList {
  std::string names;
  char number = kSingularLetter;
  bool someNamedThemselves = false;
};

DeviceList listOfDevices(Devices devices, ActionCode code) {
  DeviceList list;
  bool plural = kSingularNoun;
  guessPluralAndGender(&plural, nullptr, devices);
  if (plural) {
    list.number = kPluralLetter;
  }
  for (std::size_t i = 0; i < devices.size(); ++i) {
    std::optional<std::string> name;
    if (const platform::ObjectPointer object = devices[i].object(); object != nullptr && answersName(*object)) {
      NameAnswer answer = askName(*object);
      name = std::move(answer.name);
      list.someNamedThemselves |= answer.given;
    }
    if (const std::string* text = devices[i].text()) {
      name = platform::repairedUTF8(*text);
      if (platform::codePointCount(*name) == 1) {
        list.number = namesWholeHouse(code) ? kPluralLetter : list.number;
        name = nameOfHouse(*name, code);
      }
    }
    if (i > 0 && i + 1 == devices.size()) {
      list.names += " ";
      list.names += conjugation("keyAnd");
      list.names += " ";
    } else if (i > 0) {
      list.names += ", ";
    }
    list.names += name ? std::string_view(*name) : kUnnamed;
  }
  return list;
}

std::string articleFor(Devices devices, ActionCode code, char number) {
  if (devices.empty()) {
    return {};
  }
  // Kept: the texts are compared with their keys. A missing text reads as empty, never as its key, so that a missing
  // article gives none, and no table can lead to "keyDefaultArticle" or "The".
  std::string key = articleKey(number, kMasculineLetter);
  std::string_view article = conjugation(key);
  if (article == key) {
    key = "keyDefaultArticle";
    article = conjugation(key);
  }
  if (article == key) {
    article = "The";
  } else if (namesWholeHouse(code)) {
    article = {};
  }
  return platform::wordsCapitalized(article);
}

// Devices and verb in the order that the tense asks for.
std::string clauseOf(const DeviceList& list, std::string_view article, std::string_view verb, std::int32_t tense) {
  std::string clause;
  if (tense == kProgressiveTense || tense == kImperativeTense) {
    clause = verb;
    // Kept: in this order the article needs a device that named itself; in the other any device will do.
    if (!article.empty() && list.someNamedThemselves) {
      clause += " " + platform::lowercased(article);
    }
    // Kept: the blank is there without names too: "Turn on .".
    return clause + " " + list.names;
  }
  if (!article.empty()) {
    clause = std::string(article) + " ";
  }
  clause += list.names;
  if (!clause.empty()) {
    clause += " ";
  }
  return clause + platform::lowercased(verb);
}

std::int32_t resolvedPreposition(std::int32_t preposition, ActionCode code) {
  if (preposition != kAutomaticPreposition) {
    return preposition;
  }
  if (code == kDimAction || code == kBrightenAction) {
    return kByPreposition;
  }
  return code == kDimToAction || code == kBrightenToAction ? kToPreposition : kNoPreposition;
}

std::string statusTail(std::optional<double> amount) {
  const auto level = platform::saturatingCast<std::int32_t>(amount.value_or(0));
  std::string_view key = "keyStatusOnDimmed";
  if (level == 0) {
    key = "keyStatusOff";
  } else if (level == 100) {
    key = "keyStatusOn";
  }
  const std::string_view word = viewOfString(key);
  return word.empty() ? std::string() : " " + std::string(word);
}

std::string extendedBytesTail(const platform::Value::Dictionary* parameters) {
  if (parameters == nullptr) {
    return {};
  }
  const auto bytes = parameters->find("extendedBytes");
  const bool given = bytes != parameters->end() && !bytes->second.isAbsent();
  return given ? ": " + platform::repairedUTF8(bytes->second.description()) : std::string();
}

std::string amountTail(std::optional<double> amount, std::int32_t preposition) {
  if (!amount) {
    return {};
  }
  const std::string_view word = conjugation(preposition == kByPreposition ? "keyBy" : "keyTo");
  const auto percent = platform::saturatingCast<std::int32_t>(*amount + 0.5);
  return platform::filledFormat(" %@ %d%%", {word, percent});
}

// What follows the verb.
std::string tailOf(const LogStringArguments& arguments) {
  switch (arguments.actionCode) {
    case kStatusAction:
      return statusTail(arguments.amount);
    case kExtendedCodeAction:
      return extendedBytesTail(arguments.andParameters);
    case kDimAction:
    case kBrightenAction:
    case kDimToAction:
    case kBrightenToAction:
      return amountTail(arguments.amount, resolvedPreposition(arguments.preposition, arguments.actionCode));
    default:
      return {};
  }
}

}  // namespace

void guessPluralAndGender(bool* plural, char* gender, Devices devices) {
  if (devices.empty()) {
    if (plural != nullptr) {
      *plural = kSingularNoun;
    }
    if (gender != nullptr) {
      *gender = kMasculineLetter;
    }
    return;
  }
  if (plural == nullptr) {
    return;
  }
  if (devices.size() > 1) {
    *plural = kPluralNoun;
  }
  for (const platform::Value& device : devices) {
    if (*plural == kPluralNoun) {
      return;
    }
    if (const std::string* text = device.text()) {
      *plural = looksPlural(*text);
    } else {
      const platform::ObjectPointer object = device.object();
      const std::optional<std::string> name = object == nullptr ? std::nullopt : askName(*object).name;
      *plural = looksPlural(name ? std::string_view(*name) : kUnnamed);
    }
  }
}

std::string verbStringForActionCode(const VerbStringArguments& arguments) {
  const ActionCode code = arguments.actionCode;
  if (!isConjugated(code)) {
    return std::string(viewOfString(fixedPhraseKey(code, arguments.usingTense)));
  }
  bool plural = kSingularNoun;
  if (namesWholeHouse(code)) {
    plural = kPluralNoun;
  } else {
    guessPluralAndGender(&plural, nullptr, arguments.withDevices);
  }
  struct Form {
    char number;
    char gender;
  };
  const Form forms[] = {{plural ? kPluralLetter : kSingularLetter, kMasculineLetter},
                        {kSingularLetter, kFeminineLetter},
                        {kSingularLetter, kMasculineLetter},
                        {kPluralLetter, kFeminineLetter},
                        {kPluralLetter, kMasculineLetter}};
  const char tense = tenseLetter(arguments.usingTense);
  for (const Form& form : forms) {
    const std::string_view verb = conjugation(conjugationKey(code, tense, form.number, form.gender));
    if (!verb.empty()) {
      return std::string(verb);
    }
  }
  const std::string_view verb = conjugation(defaultConjugationKey(code));
  return verb.empty() ? "'" + stringFromFourCharCode(code) + "'" : std::string(verb);
}

std::string logStringForDevices(const LogStringArguments& arguments) {
  const ActionCode code = arguments.actionCode;
  const std::vector<platform::Value> devices = withoutDuplicates(arguments.devices);
  const DeviceList list = listOfDevices(devices, code);
  const std::string verb = verbStringForActionCode({.actionCode = code,
                                                    .usingTense = arguments.usingTense,
                                                    .withDevices = devices,
                                                    .andParameters = arguments.andParameters});
  const std::string article = articleFor(devices, code, list.number);
  std::string sentence = clauseOf(list, article, verb, arguments.usingTense) + tailOf(arguments) + ".";
  // Only the 26 plain letters: the first byte of a longer character must not be touched.
  if (sentence[0] >= 'a' && sentence[0] <= 'z') {
    sentence[0] = static_cast<char>(sentence[0] - 'a' + 'A');
  }
  return sentence;
}

}  // namespace SharedClasses::Utilities
