#include "shared/action_codes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <set>

#include "protocols/insteon/insteon_commands.h"
#include "protocols/x10/x10_actions.h"
#include "tests/support/captured_log.h"

namespace SharedClasses::Utilities {
namespace {

using platform::Value;

// The published numbers and wordings, typed from the protocol notes and not from the sources.
constexpr std::string_view kX10Functions[] = {"AOff", "All+", "On  ", "Off ", "Dim ", "Brit", "All-", "ExCm",
                                              "Hail", "HAck", "PDm1", "PDm2", "ExDt", "Sta+", "Sta-", "Sta?"};
constexpr std::string_view kCompactNumbers[] = {"",     "On  ", "Off ", "Dim ", "Brit", "BrTo", "DmTo",
                                                "All+", "All-", "AOff", "ExCm", "Hail", "HAck", "PDm1",
                                                "PDm2", "ExDt", "Sta+", "Sta-", "Sta?"};
const std::map<std::string_view, int> kInsteonSent = {{"SetS", 0x01}, {"SetM", 0x03}, {"On  ", 0x11}, {"Off ", 0x13},
                                                      {"Brit", 0x15}, {"Dim ", 0x16}, {"Sta?", 0x19}, {"DbRp", 0x49}};
const std::map<unsigned, std::string_view> kInsteonHeard = {{0x11, "On  "}, {0x12, "On  "}, {0x13, "Off "},
                                                            {0x14, "Off "}, {0x15, "Brit"}, {0x16, "Dim "}};
const std::set<std::string_view> kAllDevices = {"AOff", "All+", "All-"};
const std::set<std::string_view> kConjugated = {"BrTo", "Brit", "Bub+", "Bub-", "Dim ", "DmTo", "Down", "ExCm", "LgIn",
                                                "LgOt", "Lod-", "Off ", "On  ", "Pwr+", "Pwr-", "Quit", "Slep", "Sta+",
                                                "Sta-", "Sta?", "Stat", "Strt", "Usr+", "Usr-", "Wait", "Wake"};
// clang-format off
const std::map<std::string_view, std::string_view> kPhrases = {
    {"Add?", "keyUnknownAddressSeen"}, {"DbRp", "keyOperate"}, {"ExDt", "keyOperate"}, {"HAck", "keyOperate"},
    {"Hail", "keyOperate"}, {"IM->", "keySendIM"}, {"Log ", "keyLogText"}, {"Mail", "keySendEmail"},
    {"Net+", "keykNetworkAvail"}, {"Net-", "keyNetworkLost"}, {"Open", "keyOpen"}, {"PDm1", "keyOperate"},
    {"PDm2", "keyOperate"}, {"Play", "keyPlay"}, {"Rol+", "keyDeviceNowRespondingToRollCall"},
    {"Rol-", "keyDeviceNotRespondingToRollCall"}, {"Say ", "keyAnnounce"}, {"Scpt", "keyRun"},
    {"SetM", "keyOperate"}, {"SetS", "keyOperate"}};
// clang-format on

TEST(ActionCodes, EveryCodeHasItsPublishedNumbersAndWording) {
  const tests::CapturedLog log;  // takes what is logged of codes that INSTEON does not carry
  EXPECT_EQ(actionCodeTable().size(), kAllDevices.size() + kConjugated.size() + kPhrases.size());
  for (const ActionCodeRow& row : actionCodeTable()) {
    const std::string text = stringFromFourCharCode(row.code);
    SCOPED_TRACE(text);
    EXPECT_EQ(fourCharCodeFromString(text), row.code);
    EXPECT_EQ(actionCodeRow(row.code), &row);
    const auto function = std::ranges::find(kX10Functions, text) - std::begin(kX10Functions);
    EXPECT_EQ(X10Utilities::actionCodeToX10Action(row.code), function < 16 ? function : 255);
    EXPECT_EQ(insteonCommandWithActionCode(row.code), kInsteonSent.contains(text) ? kInsteonSent.at(text) : 0);
    EXPECT_EQ(row.wording == ActionWording::AllDevices, kAllDevices.contains(text));
    EXPECT_EQ(row.wording == ActionWording::Conjugated, kConjugated.contains(text));
    EXPECT_EQ(row.wording == ActionWording::FixedPhrase, kPhrases.contains(text));
    EXPECT_EQ(row.phraseKey, kPhrases.contains(text) ? kPhrases.at(text) : "keyOperate");
  }
  for (const ActionCode code : {0U, 1U, 0xFFFFFFFFU, 0x4F6E0000U /* On */, 0x6F6E2020U /* on */, 0x57616B66U}) {
    EXPECT_EQ(actionCodeRow(code), nullptr) << code;
    EXPECT_EQ(X10Utilities::actionCodeToX10Action(code), 255) << code;
  }
}

// 255 is among them, with which the table of codes marks an empty place.
TEST(ActionCodes, EveryByteHasItsPublishedCodeAndHigherBitsDoNotCount) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    const ActionCode compact = byte < 19 ? fourCharCodeFromString(kCompactNumbers[byte]) : 0;
    const ActionCode insteon = kInsteonHeard.contains(byte) ? fourCharCodeFromString(kInsteonHeard.at(byte)) : 0;
    for (const unsigned number : {byte, byte | 0xABCDE000U}) {
      EXPECT_EQ(X10Utilities::x10ActionToActionCode(number), fourCharCodeFromString(kX10Functions[byte % 16]));
      EXPECT_EQ(X10Utilities::qz1ActionToActionCode(number), compact);
      EXPECT_EQ(actionCodeWithInsteonCommand(number), insteon);
    }
  }
}

TEST(FourCharCodes, ShortTextsAreNotPaddedAndHighCharactersSpill) {
  EXPECT_EQ(stringFromFourCharCode(0x41004243), "A") << "a zero byte ends the text";
  EXPECT_EQ(stringFromFourCharCode(0xC3A92020), "é  ");
  EXPECT_EQ(stringFromFourCharCode(0x414243C3), "") << "bytes that are no text give none";
  const std::tuple<std::string_view, std::string_view, std::uint32_t> kRows[] = {
      {"empty", "", 0},
      {"two characters", "On", 0x4F6E0000},
      {"more than four", "On  and off", 0x4F6E2020},
      {"zero bytes count", std::string_view("A\0BC", 4), 0x41004243},
      {"spill from the last", "abc\u00E9", 0xFFFFFFE9},
      {"low 8 bits of a wide character", "\u0141bcd", 0x41626364},
      {"beyond the 16-bit characters", "\U0001F441bcd", 0x41626364},
      {"broken UTF-8 reads as U+FFFD", "\xFF", 0xFD000000},
  };
  for (const auto& [name, text, code] : kRows) {
    SCOPED_TRACE(name);
    EXPECT_EQ(fourCharCodeFromString(text), code);
    EXPECT_EQ(fourCharCodeFromString(std::string(text)), code);
  }
  EXPECT_EQ(fourCharCodeFromString(static_cast<const char*>(nullptr)), 0U);
}

// Throws where it would have to answer with an absent value.
struct Thing : platform::Object {
  Thing(Value name, Value code) : mName(std::move(name)), mCode(std::move(code)) {}
  std::string className() const override { return *(mName.isAbsent() ? throw 1 : mName.text()); }
  bool respondsToSelector(std::string_view) const override { throw 1; }
  Value performSelector(std::string_view selector, std::span<const Value>) override {
    return mCode.isAbsent() || selector != "actionCode" ? throw 1 : mCode;
  }
  Value mName, mCode;
};

TEST(FourCharCodes, ValuesOfEveryKindHaveAnAnswer) {
  const auto thing = [](Value name, Value code) { return std::make_shared<Thing>(std::move(name), std::move(code)); };
  constexpr std::uint32_t kDim = 0x44696D20;
  const std::tuple<const char*, Value, std::uint32_t, std::uint32_t> kRows[] = {
      {"absent", {}, 0, 0},
      {"text", "Dim ", kDim, kDim},
      {"number above 32 bits", 0x144696D20, kDim, kDim},
      {"number that spells no text", 0x80000000, 0, 0x80000000},
      {"real", 1147759904.75, kDim, kDim},
      {"not a number", std::numeric_limits<double>::quiet_NaN(), 0, 0},
      {"action", thing("DimAction", kDim), 0, kDim},
      {"Action inside the name", thing("ActionList", kDim), 0, 0},
      {"action that throws", thing("DimAction", {}), 0, 0},
      {"object that throws for its class", thing({}, kDim), 0, 0},
  };
  for (const auto& [name, value, fromString, fromObject] : kRows) {
    SCOPED_TRACE(name);
    EXPECT_EQ(fourCharCodeFromString(value), fromString);
    EXPECT_EQ(fourCharCodeFromObject(value), fromObject);
  }
}

}  // namespace
}  // namespace SharedClasses::Utilities
