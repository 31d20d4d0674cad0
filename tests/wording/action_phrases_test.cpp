#include "wording/action_phrases.h"

#include <gtest/gtest.h>

#include "tests/support/main_bundle.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::Utilities {
namespace {

using platform::Value;
using List = std::vector<Value>;

// A device that answers `name`, and throws where it has no answer.
struct Lamp : platform::Object {
  Lamp(std::optional<Value> itsName, std::optional<bool> itAnswers) : name(std::move(itsName)), answers(itAnswers) {}
  std::string className() const override { return "Lamp"; }
  bool respondsToSelector(std::string_view selector) const override { return selector == "name" && answers.value(); }
  Value performSelector(std::string_view, std::span<const Value>) override { return name ? *name : throw 1; }
  std::optional<Value> name;
  std::optional<bool> answers;
};

Value lamp(std::optional<Value> name, std::optional<bool> answers = true) {
  return std::make_shared<Lamp>(std::move(name), answers);
}

// Tables of a test's own, the main bundle's while it lives.
struct Words {
  explicit Words(std::string_view conjugations, std::string_view others = "") {
    folder.write("en.lproj/Conjugations.strings", conjugations);
    folder.write("en.lproj/Localizable.strings", others);
    bundle.emplace(folder.path());
  }
  tests::TemporaryFolder folder;
  std::optional<tests::MainBundle> bundle;
};

// A language in which every word tells where it comes from.
constexpr std::string_view kConjugations = R"("keyCommonPluralSuffix1" = "Lights"; "keyCommonPluralSuffix2" = "ÉTÉS";
"keyCommonPluralSuffix4" = "unreached"; "keySMArticle" = "un"; "keyPMArticle" = "LES tous"; "keyAnd" = "&";
"keyBy" = "BY"; "keyTo" = "TO"; "keyDim ASM" = "dim"; "keyDim APM" = "dims"; "keyDmToASM" = "dim"; "keyStatASM" = "is";
"keyOn  ASM" = "Was ON"; "keyOn  APM" = "Were ON"; "keyOn  GSM" = "Turning ON"; "keyOn  GPM" = "Turning ONS";
"keyOn  OSM" = "éteint"; "keyExCmASM" = "got"; "keyAll+ASM" = "single"; "keyAll+APM" = "lit"; "keyAll+GPM" = "lighting";
"keyAOffAPM" = "dead";)";
constexpr std::string_view kOtherWords = R"("keyAllDevicesLogFormat" = "%2$@: %1$@"; "keyAllLights" = "all lights";
"keyAllUnits" = "ALL units"; "keyStatusOff" = "OFF"; "keyStatusOn" = "ON"; "keyStatusOnDimmed" = "DIMMED";)";

TEST(ActionPhrases, PluralIsGuessedFromNumberAndName) {
  const Words words(kConjugations);
  const auto guess = [](bool plural, const List& devices) {
    char gender = 'F';
    guessPluralAndGender(nullptr, nullptr, devices);
    guessPluralAndGender(&plural, &gender, devices);
    EXPECT_EQ(gender, devices.empty() ? 'M' : 'F');
    return plural;
  };
  EXPECT_FALSE(guess(true, {})) << "nothing clears it";
  EXPECT_TRUE(guess(true, {lamp("Hall")})) << "one does not clear it";
  EXPECT_TRUE(guess(false, {lamp("porch lights")}));
  EXPECT_TRUE(guess(false, {"Les étés"})) << "other case beyond ASCII";
  EXPECT_FALSE(guess(false, {"unreached"})) << "the first missing suffix ends the search";
  EXPECT_FALSE(guess(false, {lamp(std::nullopt)})) << "throws";
}

TEST(ActionPhrases, AMissingFormFallsBackInAFixedOrder) {
  const auto expectOrder = [](const List& devices, const std::vector<std::string>& worstFirst) {
    std::string table = R"("keyOn  ASM" = "past"; "keyOn  RS" = "cut"; "keyOff RSM" = "off"; "keyOn  RSN" = "neuter";)";
    for (const std::string& form : worstFirst) {
      table += "\"keyOn  " + form + "\" = \"" + form + "\";\n";
      const Words words(table);
      EXPECT_EQ(verbStringForActionCode({fourCharCode("On  "), kPresentTense, devices}), form) << devices.size();
    }
  };
  expectOrder({"Hall"}, {"'On  '", "Default", "RPM", "RPF", "RSF", "RSM"});
  expectOrder({"Hall", "Den"}, {"'On  '", "Default", "RPF", "RSM", "RSF", "RPM"});
}

TEST(ActionPhrases, VerbsAreFoundByCodeAndTense) {
  const Words words(
      R"("keyOn  ASM" = "A"; "keyOn  RSM" = "R"; "keyOn  GSM" = "G"; "keyOn  ISM" = "I"; "keyOn  OSM" = "O";
"keyOff RSM" = "keyOff RSM"; "keyOff RSF" = ""; "keyOff RPM" = "rpm"; "keyWakeDefault" = "keyWakeDefault";
"keyAll+RSM" = "single"; "keyAll+RPM" = "many"; "keyPlayPast" = "wrong table"; "keyPlayRSM" = "wrong route";)",
      R"("keyPlayPast" = "past"; "keyPlayPresent" = "present"; "keyPlayFuture" = "FUTURE";
"keykNetworkAvailPast" = "there"; "keyOperatePast" = "operated"; "keyOn  ASM" = "wrong table";)");
  // The verbs from tense -2 upward.
  const std::pair<const char*, std::vector<const char*>> kRows[] = {
      {"On  ", {"A", "A", "R", "G", "I", "O", "A"}},
      {"Play", {"FUTURE", "past", "present", "FUTURE", "FUTURE", "FUTURE", "FUTURE"}},
      {"Off ", {"'Off '", "'Off '", "rpm"}},
      {"Wake", {"'Wake'", "'Wake'", "'Wake'"}},
      {"All+", {"'All+'", "'All+'", "many"}},
      {"Net+", {"", "there"}},
      {"on  ", {"", "operated"}},
  };
  for (const auto& [code, verbs] : kRows) {
    for (std::int32_t tense = -2; const char* expected : verbs) {
      EXPECT_EQ(verbStringForActionCode({fourCharCodeFromString(code), tense++}), expected) << code;
    }
  }
}

struct Sentence {
  const char* name;
  List devices;
  const char* code;
  std::int32_t tense;
  std::string expected;
  std::optional<double> amount = std::nullopt;
  std::int32_t preposition = kAutomaticPreposition;
  std::optional<Value::Dictionary> parameters = std::nullopt;
};

void expectSentences(const std::vector<Sentence>& sentences) {
  for (const Sentence& row : sentences) {
    SCOPED_TRACE(row.name);
    const Value::Dictionary* parameters = row.parameters ? &*row.parameters : nullptr;
    const ActionCode code = fourCharCodeFromString(row.code);
    EXPECT_EQ(logStringForDevices({row.devices, code, row.tense, row.preposition, row.amount, parameters}),
              row.expected);
  }
}

TEST(ActionPhrases, DevicesAreNamedOnceEachAndTheArticleFollowsTheOrderOfWords) {
  const Words words(kConjugations, kOtherWords);
  const Value hall = lamp("Hall");
  expectSentences({
      {"one object twice", {hall, hall}, "On  ", -1, "Un Hall was on."},
      {"two objects of one name", {hall, lamp("Hall")}, "On  ", -1, "Les Tous Hall & Hall were on."},
      {"one text twice", {"Hall", "Den", "Hall"}, "On  ", -1, "Les Tous Hall & Den were on."},
      {"does not answer", {lamp("no", false)}, "On  ", -1, "Un ??? was on."},
      {"throws", {lamp(std::nullopt), hall}, "On  ", -1, "Les Tous ??? & Hall were on."},
      {"throws whatever it is asked", {lamp(std::nullopt, std::nullopt)}, "On  ", -1, "Un ??? was on."},
      {"names that are a number and a list", {lamp(40), lamp(List{1})}, "On  ", -1, "Les Tous 40 & (1) were on."},
      {"neither text nor object", {Value(), 40}, "On  ", -1, "Les Tous ??? & ??? were on."},
      {"names that are not UTF-8", {lamp("H\xE9ll"), "D\xC3"}, "On  ", -1, "Les Tous H\uFFFDll & D\uFFFD were on."},
      {"verb first, text", {"Hall"}, "On  ", 1, "Turning ON Hall."},
      {"verb first, some object", {"Den", lamp("Hall")}, "On  ", 1, "Turning ONS les tous Den & Hall."},
      {"verb first, a name that throws gives no article", {lamp(std::nullopt)}, "On  ", 1, "Turning ON ???."},
      {"in an order an absent name gives one", {lamp(Value())}, "On  ", 3, "éteint un ???."},
      {"phrase that is missing", {lamp("Ding")}, "Net+", -1, "Un Ding ."},
      {"verb first, no device keeps the blank", {}, "On  ", 1, "Turning ON ."},
      {"all units off", {"b"}, "AOff", -1, "B: ALL units dead."},
      {"house, verb first", {"B"}, "All+", 1, "Lighting B: all lights."},
      {"object named like a house", {lamp("B")}, "All+", 1, "Lighting B."},
      {"one character of several bytes", {"é"}, "All+", -1, "é: all lights lit."},
      {"house letter with another code", {"B"}, "On  ", -1, "Un B was on."},
  });
}

TEST(ActionPhrases, WordsThatTheTablesLackAreLeftOut) {
  const Words words(R"("keyOn  ASM" = "was on"; "keyOn  APM" = "were on"; "keyDim ASM" = "dim"; "keyAll+APM" = "lit";
"keyDefaultArticle" = "default";)");
  expectSentences({
      {"no article", {lamp("hall")}, "On  ", -1, "Hall was on."},
      {"accented letter first", {lamp("éclair")}, "On  ", -1, "éclair was on."},
      {"no joining word", {"hall", "den"}, "On  ", -1, "Hall  den were on."},
      {"no format for a house", {"B"}, "All+", -1, "Lit."},
      {"no preposition", {}, "Dim ", -1, "Dim  40%.", 40},
      {"neither verb nor status", {}, "Stat", -1, "'stat'.", 40},
  });
}

TEST(ActionPhrases, TheTailFollowsTheCode) {
  const Words words(kConjugations, kOtherWords);
  expectSentences({
      {"by all the same", {}, "DmTo", -1, "Dim BY 40%.", 40, 1},
      {"no amount", {}, "Dim ", -1, "Dim."},
      {"negative, truncated toward zero", {}, "Dim ", -1, "Dim BY -39%.", -39.5},
      {"status 100", {}, "Stat", -1, "Is ON.", 100},
      {"status below 1", {}, "Stat", -1, "Is OFF.", 0.9},
      {"status between", {}, "Stat", -1, "Is DIMMED.", 0x1p32},
      {"status unknown", {}, "Stat", -1, "Is OFF."},
      {"no tail", {}, "On  ", -1, "Was on.", 40, 1, {{{"extendedBytes", "0x31"}}}},
      {"bytes that are not UTF-8", {}, "ExCm", -1, "Got: 0x31 \uFFFD.", {}, 3, {{{"extendedBytes", "0x31 \xFF"}}}},
      {"absent bytes", {}, "ExCm", -1, "Got.", {}, 3, {{{"extendedBytes", Value()}}}},
  });
}

TEST(ActionPhrases, ShippedEnglishReadsWell) {
  tests::useShippedTexts();
  const Value hall = lamp("hall lamp");
  const Value porch = lamp("Porch Lights");
  expectSentences({
      {"switched on", {hall}, "On  ", -1, "The hall lamp was turned on."},
      {"three lamps", {hall, "den", porch}, "On  ", -1, "The hall lamp, den and Porch Lights were turned on."},
      {"switch, two", {hall, porch}, "Off ", 0, "The hall lamp and Porch Lights turn off."},
      {"will switch", {porch}, "Off ", 2, "The Porch Lights will turn off."},
      {"dimmed", {hall}, "Dim ", -1, "The hall lamp was dimmed by 40%.", 40},
      {"dimmed to a level", {porch}, "DmTo", -1, "The Porch Lights were dimmed to 25%.", 25},
      {"brightened", {porch}, "Brit", -1, "The Porch Lights were brightened by 13%.", 12.5},
      {"brighten", {hall}, "BrTo", 3, "Brighten the hall lamp to 100%.", 100},
      {"two houses", {"A", "B"}, "AOff", -1, "All units in house A and all units in house B were turned off."},
      {"status asked, order", {porch}, "Sta?", 3, "Ask for the status of the Porch Lights."},
      {"waited", {}, "Wait", -1, "Waited."},
      {"will send", {}, "Mail", 2, "Will send the email."},
      {"caused by a sensor", {lamp("motion sensor")}, "IM->", -1, "The motion sensor sent an instant message."},
      {"address unknown", {"A12"}, "Add?", -1, "The A12 address was seen, but no device uses it."},
      {"action without words", {lamp("thermostat")}, "SetM", -1, "The thermostat received a command."},
  });
}

}  // namespace
}  // namespace SharedClasses::Utilities
