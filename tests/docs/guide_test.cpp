// The examples of docs/guide.md, run: each must stand in the guide, followed by a comment that begins with its result.
#include <gtest/gtest.h>

#include <fstream>

#include "platform/descriptor.h"
#include "platform/text.h"
#include "protocols/insteon/insteon_addresses.h"
#include "protocols/insteon/insteon_commands.h"
#include "protocols/onewire/addresses.h"
#include "protocols/onewire/ds18b20_scratch_pad.h"
#include "protocols/x10/x10_actions.h"
#include "protocols/x10/x10_addresses.h"
#include "scripting/descriptors.h"
#include "scripting/device_proxy.h"
#include "sun/sun_times.h"
#include "system/miscellany/bytes.h"
#include "system/miscellany/desktop.h"
#include "system/miscellany/folders.h"
#include "system/miscellany/string_additions.h"
#include "tests/support/main_bundle.h"
#include "wording/action_phrases.h"
#include "wording/localized_strings.h"

namespace SharedClasses {
namespace {

std::string asText(const std::optional<std::string>& text) {
  return "\"" + text.value_or("(absent)") + "\"";
}
std::string asCode(ActionCode code) {
  return asText(Utilities::stringFromFourCharCode(code));
}
std::string asNumber(std::optional<std::int64_t> number) {
  return std::to_string(number.value_or(-1));
}
std::string asAddress(std::uint32_t address) {
  return "0x1A2B3C" + std::string(address == 0x1A2B3C ? "" : " is wrong");
}
std::string asCharacter(char character) {
  return std::string("'") + character + "'";
}

std::string asTruth(bool truth) {
  return truth ? "true" : "false";
}
std::string asIs(const std::string& line) {
  return line;
}
std::string asReading(std::optional<double> reading) {
  return platform::numberText(reading.value_or(0));
}

TEST(Guide, ExamplesGiveWhatTheirCommentsSay) {
  tests::useShippedTexts();
  std::ifstream file(SOURCE_FOLDER "/docs/guide.md");
  const std::string guide{std::istreambuf_iterator<char>(file), {}};
  const platform::Value devices[] = {"hall lamp", "porch lights"};
  const platform::Value house[] = {"B"};
  const std::uint8_t bytes[] = {0x91, 0x01, 0x4B, 0x46, 0x7F, 0xFF, 0x0C, 0x10, 0x00};
  const auto pad = DS18B20ScratchPad::scratchPadWithDataAndSetCRC(bytes, true);
  pad->setUnits("C");
  std::optional<platform::CalendarDate> day;
  day.emplace(2026, 7, 4, 12, 0, 0, platform::TimeZone::named("America/New_York"));
  using platform::Descriptor, platform::fourCharCode;
  const std::vector<Descriptor::Keyed> parts = {{fourCharCode("pnam"), Descriptor::text("Hall lamp")},
                                                {fourCharCode("Stat"), Descriptor::integer(1)}};
  const auto lamp = Descriptor::withKeyedItems(Descriptor::kRecord, parts);
  const auto received = Descriptor::fromBytes(lamp->toBytes());
  const auto proxy = DeviceProxy::initWithDictionary({{"subClass", "Dimmer"}, {"classCode", 2}});
  proxy->setDevice(nullptr);
  struct Example {
    std::string code;
    std::string result;
  };
#define EXAMPLE(shown, ...) \
  { #__VA_ARGS__ ";", shown(__VA_ARGS__) }
  const Example examples[] = {
      EXAMPLE(asText,
              Utilities::logStringForDevices({.devices = devices, .actionCode = fourCharCode("Dim "), .amount = 40})),
      EXAMPLE(asText, Utilities::logStringForDevices({.devices = house, .actionCode = fourCharCode("All+")})),
      EXAMPLE(asCode, X10Utilities::x10ActionToActionCode(2)),
      EXAMPLE(asCharacter, X10Utilities::asciiFromHouseCode(0x60)),
      EXAMPLE(asNumber, X10Utilities::unitCodeToID(0x6)),
      EXAMPLE(asNumber, X10Utilities::dimStepsFrom(0, 100, 22)),
      EXAMPLE(asText, X10Utilities::normalizedX10Address(" b 2 ")),
      EXAMPLE(asAddress, Utilities::intWithINSTEONAddress("1a:2b:3c")),
      EXAMPLE(asCode, Utilities::actionCodeWithInsteonCommand(0x12)),
      EXAMPLE(asTruth, OneWireUtilities::validAddress("e9000005e2fdc328")),
      EXAMPLE(asNumber, OneWireUtilities::familyCodeFromAddress("e9000005e2fdc328")),
      EXAMPLE(asReading, pad->temperature()),
      EXAMPLE(asTruth, pad->looksLikePowerOnReset()),
      EXAMPLE(asText, Utilities::getString("keyAllLights")),
      EXAMPLE(asText, Utilities::getString("keyNobodyHasThis")),
      EXAMPLE(asText, Utilities::getStringFromTable("keyAnd", "Conjugations")),
      EXAMPLE(asNumber, Utilities::sunriseFromLatitude({.latitude = 40, .longitude = -75, .toSunrise = &day})),
      EXAMPLE(asText, day->description()),
      EXAMPLE(asIs, lamp->description()),
      EXAMPLE(asNumber, received->itemUnder(fourCharCode("Stat"))->coerceToLong()),
      EXAMPLE(asIs, Utilities::NSObjectWithAEDescObj(received).description()),
      EXAMPLE(asText, Utilities::DebugAEDescription(nullptr)),
      EXAMPLE(asText, proxy->className()),
      EXAMPLE(asText, proxy->description()),
      EXAMPLE(asTruth, proxy->isKindOfClass("Dimmer")),
      EXAMPLE(asText, Utilities::ipAddressFromInt(-1)),
      EXAMPLE(asText, QZAdditions::stringByReplacingOccurrencesOfString("a--b---c", "--", "-")),
      EXAMPLE(asText, QZAdditions::firstCharacterCapitalized("hall lamp")),
      EXAMPLE(asText, Utilities::pathToDirectoryInDomain("Home", "System")),
      EXAMPLE(asTruth, Utilities::openURL("no page")),
  };
#undef EXAMPLE
  for (const Example& example : examples) {
    SCOPED_TRACE(example.code);
    const std::size_t at = guide.find(example.code);
    ASSERT_NE(at, std::string::npos) << "the guide has no such line";
    const std::string_view comment = platform::trimmed(std::string_view(guide).substr(at + example.code.size()));
    EXPECT_TRUE(comment.starts_with("// " + example.result)) << example.result << "\nis not\n" << comment.substr(0, 80);
  }
}

}  // namespace
}  // namespace SharedClasses
