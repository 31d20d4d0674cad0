#include "wording/string_keys.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "platform/bundle.h"
#include "protocols/onewire/families.h"
#include "shared/action_codes.h"
#include "wording/phrase_keys.h"

namespace SharedClasses::Utilities {

namespace {

constexpr std::string_view kConjugationsKeys[] = {"keyAnd", "keyBy", "keyTo", "keyDefaultArticle"};

constexpr std::string_view kDefaultTableKeys[] = {
    // Log sentences
    "keyAllDevicesLogFormat",
    "keyAllLights",
    "keyAllUnits",
    "keyStatusOff",
    "keyStatusOn",
    "keyStatusOnDimmed",
    "keyThermometerNotMeasuredFormat",
    "keyThermometerReadingFormat",
    // Words for times and days
    "keyAM",
    "keyPM",
    "keyToday",
    "keyTomorrow",
    "keyYesterday",
    // Texts of the programs
    "keyCurrentLanguage",
    "keyDaysOfWeek",
    "keyLatestVersionURL",
    "keyNoPortSelected",
    // Messages of result codes
    "keyActionNotSupportedByDeviceError",
    "keyAppExcludedError",
    "keyAppleEventTimedOutError",
    "keyAuthorizationProblemError",
    "keyBadHouseCodeError",
    "keyCommPortFailedError",
    "keyCommPortInvalidSettingsError",
    "keyCommPortNotFoundError",
    "keyCommPortUnavailableError",
    "keyControllerBusyError",
    "keyControllerConfusedError",
    "keyControllerNotConnectedError",
    "keyControllerNotRespondingError",
    "keyDeniedByClassicError",
    "keyDeviceAddressError",
    "keyDeviceNotRespondingError",
    "keyExclusiveAccessError",
    "keyIndigoUsingControllerError",
    "keyInvalidCommandError",
    "keyInvalidScheduleError",
    "keyNoDeviceFoundErrorFormat",
    "keyNoDeviceSpecifiedError",
    "keyParamError",
    "keyPlugInFailedToStartError",
    "keyScheduleExceedsControllerMemoryError",
    "keyXTensionUsingControllerError",
};

// Families of 1-Wire devices that a home is likely to hold.
constexpr std::array<unsigned, 12> kUsualFamilies = {0x01, 0x05, 0x10, 0x12, 0x1D, 0x20,
                                                     0x22, 0x26, 0x28, 0x29, 0x3A, 0x42};
constexpr unsigned kFamilies = 256;

class KeyList {
 public:
  void add(std::string_view table, std::string key, bool required = true) {
    mKeys.push_back({std::string(table), std::move(key), required});
  }

  void addConjugations(ActionCode code) {
    for (const char tense : kTenseLetters) {
      for (const char number : {kSingularLetter, kPluralLetter}) {
        add(kConjugationsTable, conjugationKey(code, tense, number, kMasculineLetter));
        add(kConjugationsTable, conjugationKey(code, tense, number, kFeminineLetter), false);
      }
    }
    add(kConjugationsTable, defaultConjugationKey(code));
  }

  void addFixedPhrase(ActionCode code) {
    for (const std::int32_t tense : {-1, 0, 1}) {
      std::string key = fixedPhraseKey(code, tense);
      if (mPhrases.insert(key).second) {  // Several codes share "keyOperate".
        add(platform::kDefaultTable, std::move(key));
      }
    }
  }

  std::vector<StringKey> take() { return std::move(mKeys); }

 private:
  std::vector<StringKey> mKeys;
  std::set<std::string> mPhrases;
};

}  // namespace

std::vector<StringKey> allStringKeys() {
  KeyList keys;
  for (const ActionCodeRow& row : actionCodeTable()) {
    if (row.wording == ActionWording::FixedPhrase) {
      keys.addFixedPhrase(row.code);
    } else {
      keys.addConjugations(row.code);
    }
  }
  for (const std::string_view key : kConjugationsKeys) {
    keys.add(kConjugationsTable, std::string(key));
  }
  for (const char number : {kSingularLetter, kPluralLetter}) {
    keys.add(kConjugationsTable, articleKey(number, kMasculineLetter));
  }
  for (int i = 1; i <= kPluralSuffixes; ++i) {
    // A language may have fewer; the first missing one ends the search.
    keys.add(kConjugationsTable, pluralSuffixKey(i), i == 1);
  }
  for (const std::string_view key : kDefaultTableKeys) {
    keys.add(platform::kDefaultTable, std::string(key));
  }
  for (unsigned family = 0; family < kFamilies; ++family) {
    const bool usual = std::ranges::find(kUsualFamilies, family) != kUsualFamilies.end();
    keys.add(platform::kDefaultTable, OneWireUtilities::familyNameKey(family), usual);
  }
  return keys.take();
}

}  // namespace SharedClasses::Utilities
