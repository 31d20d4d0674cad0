#include "shared/action_codes.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "protocols/insteon/insteon_commands.h"
#include "protocols/x10/x10_actions.h"
#include "tests/support/captured_log.h"

namespace SharedClasses {
namespace {

using platform::Value;
using namespace std::string_view_literals;

constexpr std::uint8_t kNone = 0;  // neither INSTEON nor the compact numbers use 0
constexpr std::uint8_t kNoX10 = 255;
constexpr auto kConjugated = ActionWording::Conjugated;
constexpr auto kAllDevices = ActionWording::AllDevices;
constexpr auto kPhrase = ActionWording::FixedPhrase;

// The published table of codes, typed from the protocol notes and not from the sources.
struct PublishedCode {
  std::string_view text;
  std::uint32_t value;
  std::uint8_t x10, compact, insteonSent, insteonHeard, insteonHeardFast;
  ActionWording wording = kPhrase;
  std::string_view phraseKey = "keyOperate";
};

constexpr PublishedCode verb(std::string_view text, std::uint32_t value) {
  return {text, value, kNoX10, kNone, kNone, kNone, kNone, kConjugated};
}
constexpr PublishedCode phrase(std::string_view text, std::uint32_t value, std::string_view key) {
  return {text, value, kNoX10, kNone, kNone, kNone, kNone, kPhrase, key};
}

// clang-format off
constexpr PublishedCode kPublished[] = {
    {"AOff", 0x414F6666, 0,      9,     kNone, kNone, kNone, kAllDevices},
    {"All+", 0x416C6C2B, 1,      7,     kNone, kNone, kNone, kAllDevices},
    {"All-", 0x416C6C2D, 6,      8,     kNone, kNone, kNone, kAllDevices},
    {"BrTo", 0x4272546F, kNoX10, 5,     kNone, kNone, kNone, kConjugated},
    {"Brit", 0x42726974, 5,      4,     0x15,  0x15,  kNone, kConjugated},
    {"DbRp", 0x44625270, kNoX10, kNone, 0x49,  kNone, kNone},
    {"Dim ", 0x44696D20, 4,      3,     0x16,  0x16,  kNone, kConjugated},
    {"DmTo", 0x446D546F, kNoX10, 6,     kNone, kNone, kNone, kConjugated},
    {"ExCm", 0x4578436D, 7,      10,    kNone, kNone, kNone, kConjugated},
    {"ExDt", 0x45784474, 12,     15,    kNone, kNone, kNone},
    {"HAck", 0x4841636B, 9,      12,    kNone, kNone, kNone},
    {"Hail", 0x4861696C, 8,      11,    kNone, kNone, kNone},
    {"Off ", 0x4F666620, 3,      2,     0x13,  0x13,  0x14,  kConjugated},
    {"On  ", 0x4F6E2020, 2,      1,     0x11,  0x11,  0x12,  kConjugated},
    {"PDm1", 0x50446D31, 10,     13,    kNone, kNone, kNone},
    {"PDm2", 0x50446D32, 11,     14,    kNone, kNone, kNone},
    {"SetM", 0x5365744D, kNoX10, kNone, 0x03,  kNone, kNone},
    {"SetS", 0x53657453, kNoX10, kNone, 0x01,  kNone, kNone},
    {"Sta+", 0x5374612B, 13,     16,    kNone, kNone, kNone, kConjugated},
    {"Sta-", 0x5374612D, 14,     17,    kNone, kNone, kNone, kConjugated},
    {"Sta?", 0x5374613F, 15,     18,    0x19,  kNone, kNone, kConjugated},
    verb("Bub+", 0x4275622B), verb("Bub-", 0x4275622D), verb("Down", 0x446F776E), verb("LgIn", 0x4C67496E),
    verb("LgOt", 0x4C674F74), verb("Lod-", 0x4C6F642D), verb("Pwr+", 0x5077722B), verb("Pwr-", 0x5077722D),
    verb("Quit", 0x51756974), verb("Slep", 0x536C6570), verb("Stat", 0x53746174), verb("Strt", 0x53747274),
    verb("Usr+", 0x5573722B), verb("Usr-", 0x5573722D), verb("Wait", 0x57616974), verb("Wake", 0x57616B65),
    phrase("Add?", 0x4164643F, "keyUnknownAddressSeen"), phrase("IM->", 0x494D2D3E, "keySendIM"),
    phrase("Log ", 0x4C6F6720, "keyLogText"), phrase("Mail", 0x4D61696C, "keySendEmail"),
    phrase("Net+", 0x4E65742B, "keykNetworkAvail"), phrase("Net-", 0x4E65742D, "keyNetworkLost"),
    phrase("Open", 0x4F70656E, "keyOpen"), phrase("Play", 0x506C6179, "keyPlay"),
    phrase("Rol+", 0x526F6C2B, "keyDeviceNowRespondingToRollCall"),
    phrase("Rol-", 0x526F6C2D, "keyDeviceNotRespondingToRollCall"),
    phrase("Say ", 0x53617920, "keyAnnounce"), phrase("Scpt", 0x53637074, "keyRun"),
};
// clang-format on

TEST(ActionCodes, EveryConversionAgreesWithThePublishedTableInBothDirections) {
  const tests::CapturedLog log;  // takes what is logged of codes that INSTEON does not carry
  EXPECT_EQ(actionCodeTable().size(), std::size(kPublished));
  std::uint32_t byX10[256] = {}, byCompact[256] = {}, byInsteon[256] = {};
  for (const PublishedCode& row : kPublished) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(Utilities::fourCharCodeFromString(row.text), row.value);
    EXPECT_EQ(Utilities::stringFromFourCharCode(row.value), row.text);
    EXPECT_EQ(X10Utilities::actionCodeToX10Action(row.value), row.x10);
    EXPECT_EQ(Utilities::insteonCommandWithActionCode(row.value), row.insteonSent);
    const ActionCodeRow* held = actionCodeRow(row.value);
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(held->wording, row.wording);
    EXPECT_EQ(held->phraseKey, row.phraseKey);
    byX10[row.x10] = byCompact[row.compact] = byInsteon[row.insteonHeard] = byInsteon[row.insteonHeardFast] = row.value;
  }
  byCompact[kNone] = byInsteon[kNone] = 0;
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    EXPECT_EQ(X10Utilities::x10ActionToActionCode(byte), byX10[byte % 16]);
    EXPECT_EQ(X10Utilities::qz1ActionToActionCode(byte), byCompact[byte]);
    EXPECT_EQ(Utilities::actionCodeWithInsteonCommand(byte), byInsteon[byte]);
    EXPECT_EQ(X10Utilities::x10ActionToActionCode(byte | 0xABCDE000), byX10[byte % 16]) << "higher bits do not count";
    EXPECT_EQ(X10Utilities::qz1ActionToActionCode(byte | 0xABCDE000), byCompact[byte]);
    EXPECT_EQ(Utilities::actionCodeWithInsteonCommand(byte | 0xABCDE000), byInsteon[byte]);
  }
}

TEST(ActionCodes, WhatIsNotWhollyACodeHasNoRow) {
  for (const ActionCode code : {0U, 1U, 0xFFFFFFFFU, 0x4F6E0000U /* On */, 0x6F6E2020U /* on */, 0x57616B66U}) {
    EXPECT_EQ(actionCodeRow(code), nullptr) << code;
    EXPECT_EQ(X10Utilities::actionCodeToX10Action(code), 255) << code;
  }
}

TEST(StringFromFourCharCode, AZeroByteEndsTheTextAndBytesThatAreNoTextGiveNone) {
  EXPECT_EQ(Utilities::stringFromFourCharCode(0), "");
  EXPECT_EQ(Utilities::stringFromFourCharCode(0x00414243), "");
  EXPECT_EQ(Utilities::stringFromFourCharCode(0x41004243), "A");
  EXPECT_EQ(Utilities::stringFromFourCharCode(0xC3A92020), "é  ");
  EXPECT_EQ(Utilities::stringFromFourCharCode(0x414243C3), "");
}

TEST(FourCharCodeFromString, ShortTextsAreNotPaddedAndHighCharactersSpill) {
  std::string noise;
  for (std::mt19937 random(7); noise.size() < std::size_t{1} << 20;) {
    noise += static_cast<char>(random());
  }
  const struct {
    std::string_view name, text;
    std::uint32_t code;
  } kRows[] = {
      {"empty", "", 0},
      {"two characters", "On", 0x4F6E0000},
      {"more than four", "On  and off", 0x4F6E2020},
      {"zero bytes count", "A\0BC"sv, 0x41004243},
      {"spill from the second", "a\u00E9", 0xFFE90000},
      {"spill from the last", "abc\u00E9", 0xFFFFFFE9},
      {"low 8 bits of a wide character", "\u0141bcd", 0x41626364},
      {"beyond the 16-bit characters", "\U0001F441bcd", 0x41626364},
      {"broken UTF-8 reads as U+FFFD", "\xFF", 0xFD000000},
      {"a megabyte of noise", noise, Utilities::fourCharCodeFromString(std::string_view(noise).substr(0, 16))},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(Utilities::fourCharCodeFromString(row.text), row.code);
  }
  EXPECT_EQ(Utilities::fourCharCodeFromString(static_cast<const char*>(nullptr)), 0U);
}

// Throws where it would have to answer with an absent value.
class Thing : public platform::Object {
 public:
  Thing(Value name, Value code) : mName(std::move(name)), mCode(std::move(code)) {}
  std::string className() const override { return *(mName.isAbsent() ? throw 1 : mName.text()); }
  bool respondsToSelector(std::string_view) const override { throw 1; }
  Value performSelector(std::string_view selector, std::span<const Value>) override {
    return mCode.isAbsent() || selector != "actionCode" ? throw 1 : mCode;
  }

 private:
  Value mName, mCode;
};

TEST(FourCharCodes, ValuesOfEveryKindHaveAnAnswer) {
  const auto thing = [](Value name, Value code) { return std::make_shared<Thing>(std::move(name), std::move(code)); };
  constexpr std::uint32_t kDim = 0x44696D20;
  const struct {
    const char* name;
    Value value;
    std::uint32_t fromString, fromObject;
  } kRows[] = {
      {"absent", {}, 0, 0},
      {"text", "Dim ", kDim, kDim},
      {"number", kDim, kDim, kDim},
      {"number above 32 bits", 0x144696D20, kDim, kDim},
      {"number that spells no text", 0x80000000, 0, 0x80000000},
      {"negative number", -1, 0, 0xFFFFFFFF},
      {"real", 1147759904.75, kDim, kDim},
      {"not a number", std::numeric_limits<double>::quiet_NaN(), 0, 0},
      {"action", thing("DimAction", kDim), 0, kDim},
      {"Action inside the name", thing("ActionList", kDim), 0, 0},
      {"action in lower case", thing("dimaction", kDim), 0, 0},
      {"action that throws", thing("DimAction", {}), 0, 0},
      {"object that throws for its class", thing({}, kDim), 0, 0},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(Utilities::fourCharCodeFromString(row.value), row.fromString);
    EXPECT_EQ(Utilities::fourCharCodeFromObject(row.value), row.fromObject);
  }
}

}  // namespace
}  // namespace SharedClasses
