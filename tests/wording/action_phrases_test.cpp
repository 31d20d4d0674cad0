#include "wording/action_phrases.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <stdexcept>
#include <vector>

#include "tests/support/main_bundle.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::Utilities {
namespace {

using platform::Value;
using List = std::vector<Value>;

// A device that answers `name` with whatever it is made of.
class Lamp : public platform::Object {
 public:
  explicit Lamp(
      std::function<Value()> name, std::function<bool()> answers = [] { return true; })
      : mName(std::move(name)), mAnswers(std::move(answers)) {}
  std::string className() const override { return "Lamp"; }
  bool respondsToSelector(std::string_view selector) const override { return selector == "name" && mAnswers(); }
  Value performSelector(std::string_view selector, std::span<const Value>) override {
    return selector == "name" ? mName() : Value();
  }

 private:
  std::function<Value()> mName;
  std::function<bool()> mAnswers;
};

Value lamp(Value name) {
  return std::make_shared<Lamp>([name] { return name; });
}

Value throwing(bool isException) {
  return std::make_shared<Lamp>([isException]() -> Value { isException ? throw std::runtime_error("no") : throw 1; });
}

Value nameless() {
  return std::make_shared<Lamp>([] { return Value(); }, [] { return false; });
}

Value brokenAltogether() {
  return std::make_shared<Lamp>([]() -> Value { throw 1; }, []() -> bool { throw std::runtime_error("no"); });
}

ActionCode codeOf(std::string_view characters) {
  return fourCharCodeFromString(characters);
}

// Tables of a test's own, the main bundle's while it lives.
class Words {
 public:
  explicit Words(const std::string& conjugations, const std::string& others = "") {
    mFolder.write("en.lproj/Conjugations.strings", conjugations);
    mFolder.write("en.lproj/Localizable.strings", others);
    mBundle.emplace(mFolder.path());
  }

 private:
  tests::TemporaryFolder mFolder;
  std::optional<tests::MainBundle> mBundle;
};

// A language in which every word tells where it comes from.
constexpr const char* kConjugations = R"("keyCommonPluralSuffix1" = "Lights";
"keyCommonPluralSuffix2" = "ÉTÉS";
"keyCommonPluralSuffix4" = "unreached";
"keyAnd" = "&"; "keyBy" = "BY"; "keyTo" = "TO";
"keySMArticle" = "un"; "keyPMArticle" = "LES tous"; "keyDefaultArticle" = "default";
"keyOn  ASM" = "Was ON"; "keyOn  APM" = "Were ON"; "keyOn  GSM" = "Turning ON"; "keyOn  GPM" = "Turning ONS";
"keyOn  OSM" = "éteint"; "keyOff ISM" = "Will OFF";
"keyAll+ASM" = "single"; "keyAll+APM" = "lit"; "keyAll-APM" = "unlit"; "keyAOffAPM" = "dead"; "keyAll+GPM" = "lighting";
"keyDim ASM" = "dim"; "keyDim APM" = "dims"; "keyDim GSM" = "dimming"; "keyDmToASM" = "dim";
"keyBritASM" = "up"; "keyBrToASM" = "up"; "keyStatASM" = "is"; "keyExCmASM" = "got";
)";
constexpr const char* kOtherWords = R"("keyAllDevicesLogFormat" = "%2$@: %1$@";
"keyAllLights" = "all lights"; "keyAllUnits" = "ALL units";
"keyStatusOff" = "OFF"; "keyStatusOn" = "ON"; "keyStatusOnDimmed" = "DIMMED";
"keyPlayPast" = "PLAYED"; "keyPlayFuture" = "will PLAY"; "keyOperatePast" = "operated";
)";

TEST(ActionPhrases, PluralIsGuessedFromNumberAndName) {
  const Words words(kConjugations);
  const struct {
    const char* name;
    List devices;
    bool before;
    bool expected;
    char gender;
  } kRows[] = {
      {"nothing clears it", {}, true, false, 'M'},
      {"one is no plural", {lamp("Hall")}, false, false, 'F'},
      {"one does not clear it", {lamp("Hall")}, true, true, 'F'},
      {"suffix", {lamp("porch lights")}, false, true, 'F'},
      {"suffix of a text, other case beyond ASCII", {"Les étés"}, false, true, 'F'},
      {"the first missing suffix ends the search", {"unreached"}, false, false, 'F'},
      {"a name that is not asked for may throw", {throwing(true)}, false, false, 'F'},
      {"neither text nor object", {40}, false, false, 'F'},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    bool plural = row.before;
    char gender = 'F';
    guessPluralAndGender(&plural, &gender, row.devices);
    EXPECT_EQ(plural, row.expected);
    EXPECT_EQ(gender, row.gender);
    guessPluralAndGender(nullptr, nullptr, row.devices);
  }
}

TEST(ActionPhrases, AMissingFormFallsBackInAFixedOrder) {
  const struct {
    const char* name;
    bool plural;
    const char* forms;  // that the table holds, each telling its own name
    const char* expected;
  } kRows[] = {
      {"one, all there", false, "SM SF PM PF", "SM"},
      {"one, feminine", false, "SF PM PF", "SF"},
      {"one, plural feminine", false, "PM PF", "PF"},
      {"one, plural", false, "PM", "PM"},
      {"one, nothing", false, "", "'On  '"},
      {"several, all there", true, "SM SF PM PF", "PM"},
      {"several, feminine", true, "SM SF PF", "SF"},
      {"several, singular", true, "SM PF", "SM"},
      {"several, plural feminine", true, "PF", "PF"},
      {"several, default", true, "Default", "Default"},
      {"other tense is no form", false, "A", "'On  '"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    std::string table = R"("keyOn  ASM" = "past"; "keyOn  RS" = "cut"; "keyOff RSM" = "off"; "keyOn  RSN" = "neuter";)";
    for (std::string_view rest = row.forms; !rest.empty();) {
      const std::string form(rest.substr(0, rest.find(' ')));
      rest.remove_prefix(std::min(form.size() + 1, rest.size()));
      table += "\"keyOn  " + std::string(form == "Default" ? "" : "R") + form + "\" = \"" + form + "\";\n";
    }
    const Words words(table);
    const List devices(row.plural ? 2 : 1, Value("Hall"));
    EXPECT_EQ(verbStringForActionCode({codeOf("On  "), kPresentTense, devices}), row.expected);
  }
}

TEST(ActionPhrases, VerbsAreFoundByCodeAndTense) {
  const Words words(
      R"("keyOn  ASM" = "A"; "keyOn  RSM" = "R"; "keyOn  GSM" = "G"; "keyOn  ISM" = "I"; "keyOn  OSM" = "O";
"keyOff RSM" = "keyOff RSM"; "keyOff RSF" = ""; "keyOff RPM" = "rpm"; "keyWakeDefault" = "keyWakeDefault";
"keyAll+RSM" = "single"; "keyAll+RPM" = "many"; "keyPlayPast" = "wrong table"; "keyPlayRSM" = "wrong route";)",
      R"("keyPlayPast" = "past"; "keyPlayPresent" = "present"; "keyPlayFuture" = "FUTURE";
"keykNetworkAvailPast" = "there"; "keyOperatePast" = "operated"; "keyOn  ASM" = "wrong table";)");
  constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
  const struct {
    const char* code;
    std::int32_t tense;
    const char* expected;
  } kRows[] = {
      {"On  ", -1, "A"},        {"On  ", 0, "R"},         {"On  ", 1, "G"},       {"On  ", 2, "I"},
      {"On  ", 3, "O"},         {"On  ", 4, "A"},         {"On  ", 5, "A"},       {"On  ", -2, "A"},
      {"On  ", kHighest, "A"},  {"On  ", kLowest, "A"},   {"Off ", 0, "rpm"},     {"Off ", -1, "'Off '"},
      {"Wake", 0, "'Wake'"},    {"All+", 0, "many"},      {"Play", -1, "past"},   {"Play", 0, "present"},
      {"Play", 1, "FUTURE"},    {"Play", 5, "FUTURE"},    {"Play", -2, "FUTURE"}, {"Play", kLowest, "FUTURE"},
      {"Net+", -1, "there"},    {"Net+", 0, ""},          {"Net-", -1, ""},       {"Hail", -1, "operated"},
      {"on  ", -1, "operated"}, {"zzzz", -1, "operated"}, {"", -1, "operated"},   {"\xFF\xFF", -1, "operated"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(verbStringForActionCode({codeOf(row.code), row.tense}), row.expected) << row.code << " " << row.tense;
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
};

void expectSentences(std::span<const Sentence> sentences) {
  for (const Sentence& row : sentences) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(logStringForDevices({.devices = row.devices,
                                   .actionCode = codeOf(row.code),
                                   .usingTense = row.tense,
                                   .preposition = row.preposition,
                                   .amount = row.amount}),
              row.expected);
  }
}

TEST(ActionPhrases, DevicesAreJoinedOnceEachInTheirOrder) {
  const Words words(kConjugations, kOtherWords);
  const Value hall = lamp("Hall");
  const Sentence kSentences[] = {
      {"none, subject first", {}, "On  ", -1, "Was on."},
      {"none, verb first", {}, "On  ", 1, "Turning ON ."},
      {"two", {hall, "Den"}, "On  ", -1, "Les Tous Hall & Den were on."},
      {"three", {lamp("C"), "Attic", lamp("Bar")}, "On  ", -1, "Les Tous C, Attic & Bar were on."},
      {"plural name", {lamp("Porch lights")}, "On  ", -1, "Les Tous Porch lights were on."},
      {"two", {hall, "Den"}, "On  ", -1, "Les Tous Hall & Den were on."},
      {"one object twice", {hall, hall}, "On  ", -1, "Un Hall was on."},
      {"two objects of one name", {hall, lamp("Hall")}, "On  ", -1, "Les Tous Hall & Hall were on."},
      {"one text twice", {"Hall", "Den", "Hall"}, "On  ", -1, "Les Tous Hall & Den were on."},
      {"no name", {nameless()}, "On  ", -1, "Un ??? was on."},
      {"absent name", {lamp(Value())}, "On  ", -1, "Un ??? was on."},
      {"throws an exception", {throwing(true)}, "On  ", -1, "Un ??? was on."},
      {"throws an int", {throwing(false), hall}, "On  ", -1, "Les Tous ??? & Hall were on."},
      {"throws whatever it is asked", {brokenAltogether()}, "On  ", -1, "Un ??? was on."},
      {"names that are a number and a list", {lamp(40), lamp(List{1})}, "On  ", -1, "Les Tous 40 & (1) were on."},
      {"neither text nor object", {Value(), 40}, "On  ", -1, "Les Tous ??? & ??? were on."},
      {"names that are not UTF-8", {lamp("H\xE9ll"), "D\xC3"}, "On  ", -1, "Les Tous H\uFFFDll & D\uFFFD were on."},
      {"names with slots", {lamp("%@"), "100%d%%"}, "On  ", -1, "Les Tous %@ & 100%d%% were on."},
  };
  expectSentences(kSentences);
}

TEST(ActionPhrases, ArticleAndCaseFollowTheOrderOfWords) {
  const Words words(kConjugations, kOtherWords);
  const Sentence kSentences[] = {
      {"verb first, object", {lamp("Hall")}, "On  ", 1, "Turning ON un Hall."},
      {"verb first, text", {"Hall"}, "On  ", 1, "Turning ON Hall."},
      {"verb first, some object", {"Den", lamp("Hall")}, "On  ", 1, "Turning ONS les tous Den & Hall."},
      {"verb first, throws", {throwing(true)}, "On  ", 1, "Turning ON ???."},
      {"verb first, fixed phrase", {"Ding"}, "Play", 3, "Will PLAY Ding."},
      {"phrase that is missing", {lamp("Ding")}, "Net+", -1, "Un Ding ."},
      {"code in quotes", {lamp("Mac")}, "Wake", -1, "Un Mac 'wake'."},
      {"code in quotes, verb first", {}, "Wake", 3, "'Wake' ."},
      {"accented letter first", {}, "On  ", 3, "éteint ."},
  };
  expectSentences(kSentences);
}

TEST(ActionPhrases, AHouseLetterStandsForAllUnitsOfCodesThatNameAWholeHouse) {
  const Words words(kConjugations, kOtherWords);
  const Sentence kSentences[] = {
      {"all lights on", {"B"}, "All+", -1, "B: all lights lit."},
      {"no device", {}, "All+", -1, "Lit."},
      {"two houses", {"B", "C"}, "All+", -1, "B: all lights & C: all lights lit."},
      {"all lights off", {"b"}, "All-", -1, "B: all lights unlit."},
      {"all units off", {"B"}, "AOff", -1, "B: ALL units dead."},
      {"verb first", {"B"}, "All+", 1, "Lighting B: all lights."},
      {"longer text", {"B1"}, "All+", -1, "B1 lit."},
      {"object, verb first", {lamp("B")}, "All+", 1, "Lighting B."},
      {"one character of several bytes", {"é"}, "All+", -1, "é: all lights lit."},
      {"other code", {"B"}, "On  ", -1, "Un B was on."},
  };
  expectSentences(kSentences);
}

TEST(ActionPhrases, WordsThatTheTablesLackAreLeftOut) {
  const Words words(R"("keyOn  ASM" = "was on"; "keyOn  APM" = "were on"; "keyDim ASM" = "dim"; "keyAll+APM" = "lit";
"keyDefaultArticle" = "default";)");
  const Sentence kSentences[] = {
      {"no article", {lamp("hall")}, "On  ", -1, "Hall was on."},
      {"digit first", {lamp("9 lamps")}, "On  ", -1, "9 lamps was on."},
      {"accented letter first", {lamp("éclair")}, "On  ", -1, "éclair was on."},
      {"empty name", {lamp("")}, "On  ", -1, "Was on."},
      {"no joining word", {"hall", "den"}, "On  ", -1, "Hall  den were on."},
      {"no format for a house", {"B"}, "All+", -1, "Lit."},
      {"no suffixes", {"Porch lights"}, "On  ", -1, "Porch lights was on."},
      {"no verb", {}, "Off ", -1, "'off '."},
  };
  expectSentences(kSentences);
  EXPECT_EQ(logStringForDevices({.actionCode = codeOf("Dim "), .amount = 40}), "Dim  40%.");
  EXPECT_EQ(logStringForDevices({.actionCode = codeOf("Stat"), .amount = 40}), "'stat'.");
}

TEST(ActionPhrases, TheTailFollowsTheCode) {
  const Words words(kConjugations, kOtherWords);
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  const Sentence kSentences[] = {
      {"by itself", {}, "Dim ", -1, "Dim BY 40%.", 39.5},
      {"brighter", {}, "Brit", -1, "Up BY 40%.", 40},
      {"to a level", {}, "DmTo", -1, "Dim TO 40%.", 40},
      {"none", {}, "Dim ", -1, "Dim TO 40%.", 40, 0},
      {"by", {}, "DmTo", -1, "Dim BY 40%.", 40, 1},
      {"unknown", {}, "Dim ", -1, "Dim TO 40%.", 40, -7},
      {"no amount", {}, "Dim ", -1, "Dim."},
      {"negative, truncated toward zero", {}, "Dim ", -1, "Dim BY -39%.", -39.5},
      {"negative, below a half", {}, "Dim ", -1, "Dim BY 0%.", -0.9},
      {"not a number", {}, "Dim ", -1, "Dim BY 0%.", kNaN},
      {"infinite", {}, "Dim ", -1, "Dim BY 2147483647%.", kInfinity},
      {"huge and negative", {}, "Dim ", -1, "Dim BY -2147483648%.", -1e300},
      {"status 100", {}, "Stat", -1, "Is ON.", 100},
      {"status between", {}, "Stat", -1, "Is DIMMED.", 55},
      {"status 0", {}, "Stat", -1, "Is OFF.", 0},
      {"status below 1", {}, "Stat", -1, "Is OFF.", 0.9},
      {"status beyond 32 bits", {}, "Stat", -1, "Is DIMMED.", 0x1p32},
      {"status not a number", {}, "Stat", -1, "Is OFF.", -kNaN},
      {"status unknown", {}, "Stat", -1, "Is OFF."},
      {"other code", {}, "On  ", -1, "Was on.", 40, 1},
      {"behind the devices", {"Hall", "Den"}, "Dim ", -1, "Les Tous Hall & Den dims BY 5%.", 5},
  };
  expectSentences(kSentences);
}

TEST(ActionPhrases, ExtendedBytesFollowAnExtendedCommandAlone) {
  const Words words(kConjugations, kOtherWords);
  const struct {
    const char* name;
    Value::Dictionary parameters;
    const char* code;
    const char* expected;
  } kRows[] = {
      {"bytes", {{"extendedBytes", "0x31 0x64"}}, "ExCm", "Got: 0x31 0x64."},
      {"bytes that are not UTF-8", {{"extendedBytes", "\xFF"}}, "ExCm", "Got: \uFFFD."},
      {"empty", {{"extendedBytes", ""}}, "ExCm", "Got: ."},
      {"absent", {{"extendedBytes", Value()}}, "ExCm", "Got."},
      {"other code", {{"extendedBytes", "0x31"}}, "On  ", "Was on."},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(logStringForDevices({.actionCode = codeOf(row.code), .andParameters = &row.parameters}), row.expected);
  }
  EXPECT_EQ(logStringForDevices({.actionCode = codeOf("ExCm")}), "Got.");
}

TEST(ActionPhrases, ShippedEnglishReadsWell) {
  tests::useShippedTexts();
  const Value hall = lamp("hall lamp");
  const Value den = lamp("reading lamp");
  const Value porch = lamp("Porch Lights");
  const Sentence kSentences[] = {
      {"switched on", {hall}, "On  ", -1, "The hall lamp was turned on."},
      {"three lamps", {hall, den, porch}, "On  ", -1, "The hall lamp, reading lamp and Porch Lights were turned on."},
      {"switched off, plural name", {porch}, "Off ", -1, "The Porch Lights were turned off."},
      {"switch, two", {hall, den}, "Off ", 0, "The hall lamp and reading lamp turn off."},
      {"switching", {hall}, "On  ", 1, "Turning on the hall lamp."},
      {"will switch", {porch}, "Off ", 2, "The Porch Lights will turn off."},
      {"order", {hall, porch}, "Off ", 3, "Turn off the hall lamp and Porch Lights."},
      {"dimmed", {hall}, "Dim ", -1, "The hall lamp was dimmed by 40%.", 40},
      {"dimmed, level unknown", {hall}, "Dim ", -1, "The hall lamp was dimmed."},
      {"dimmed to a level", {hall, den}, "DmTo", -1, "The hall lamp and reading lamp were dimmed to 25%.", 25},
      {"brightened", {porch}, "Brit", -1, "The Porch Lights were brightened by 13%.", 12.5},
      {"brighten", {hall}, "BrTo", 3, "Brighten the hall lamp to 100%.", 100},
      {"house lit", {"B"}, "All+", -1, "All lights in house B were turned on."},
      {"two houses", {"A", "B"}, "AOff", -1, "All units in house A and all units in house B were turned off."},
      {"house, order", {"P"}, "AOff", 3, "Turn off all units in house P."},
      {"status asked, order", {porch}, "Sta?", 3, "Ask for the status of the Porch Lights."},
      {"answered on", {hall}, "Sta+", -1, "The hall lamp reported that it is on."},
      {"answered off, two", {hall, den}, "Sta-", -1, "The hall lamp and reading lamp reported that they are off."},
      {"level off", {hall}, "Stat", -1, "The hall lamp reported that it is off.", 0},
      {"level on", {porch}, "Stat", 0, "The Porch Lights are on.", 100},
      {"level between", {hall}, "Stat", -1, "The hall lamp reported that it is dimmed.", 30},
      {"bulb failed", {hall}, "Bub-", -1, "The hall lamp reported a failed bulb."},
      {"bulb works again", {porch}, "Bub+", -1, "The Porch Lights reported working bulbs."},
      {"nothing connected", {hall}, "Lod-", 0, "The hall lamp reports a missing load."},
      {"extended command", {lamp("blinds")}, "ExCm", -1, "The blinds received an extended command."},
      {"computer woke", {}, "Wake", -1, "Woke up."},
      {"computer slept", {lamp("computer")}, "Slep", -1, "The computer went to sleep."},
      {"waited", {}, "Wait", -1, "Waited."},
      {"announced", {}, "Say ", -1, "Made an announcement."},
      {"will send", {}, "Mail", 2, "Will send the email."},
      {"caused by a sensor", {lamp("motion sensor")}, "IM->", -1, "The motion sensor sent an instant message."},
      {"network came", {}, "Net+", -1, "The network became available."},
      {"network went", {}, "Net-", -1, "The network connection was lost."},
      {"roll call answered", {hall}, "Rol+", -1, "The hall lamp started answering the roll call."},
      {"roll call unanswered", {hall}, "Rol-", 0, "The hall lamp cannot be reached by the roll call."},
      {"address unknown", {"A12"}, "Add?", -1, "The A12 address was seen, but no device uses it."},
      {"action without words", {lamp("thermostat")}, "SetM", -1, "The thermostat operated."},
  };
  expectSentences(kSentences);
}

}  // namespace
}  // namespace SharedClasses::Utilities
