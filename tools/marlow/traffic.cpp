#include "tools/marlow/traffic.h"

#include <algorithm>
#include <charconv>
#include <chrono>

#include "platform/text.h"
#include "protocols/insteon/insteon_commands.h"
#include "protocols/onewire/addresses.h"
#include "protocols/x10/x10_actions.h"
#include "tools/marlow/device_addresses.h"
#include "tools/marlow/output.h"
#include "tools/marlow/thermometers.h"

namespace SharedClasses::marlow {

namespace {

constexpr std::uint32_t kLastX10Function = 15;

std::vector<std::string_view> fieldsOf(std::string_view line) {
  std::vector<std::string_view> fields;
  constexpr std::string_view kBlanks = " \t\r";
  for (std::size_t start = line.find_first_not_of(kBlanks); start != std::string_view::npos;) {
    const std::size_t end = std::min(line.find_first_of(kBlanks, start), line.size());
    fields.push_back(line.substr(start, end - start));
    start = line.find_first_not_of(kBlanks, end);
  }
  return fields;
}

// The whole of `text` as a number in `base`, `text` being digits and nothing else.
std::optional<std::uint32_t> wholeNumber(std::string_view text, int base = 10) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number, base);
  return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

std::optional<std::uint8_t> hexByte(std::string_view text) {
  if (!text.starts_with("0x") || text.size() < 3 || text.size() > 4) {
    return std::nullopt;
  }
  const auto number = wholeNumber(text.substr(2), 16);
  return number ? std::optional(static_cast<std::uint8_t>(*number)) : std::nullopt;
}

// "2026-06-01T18:05:00" and nothing else, a day and a time that exist.
bool isTime(std::string_view text) {
  constexpr std::string_view kShape = "0000-00-00T00:00:00";
  if (text.size() != kShape.size()) {
    return false;
  }
  for (std::size_t i = 0; i < kShape.size(); ++i) {
    const bool isDigit = platform::isASCIIDigit(static_cast<unsigned char>(text[i]));
    if (kShape[i] == '0' ? !isDigit : text[i] != kShape[i]) {
      return false;
    }
  }
  const auto part = [&](std::size_t at, std::size_t length) { return *wholeNumber(text.substr(at, length)); };
  const std::chrono::year_month_day day(std::chrono::year(static_cast<int>(part(0, 4))), std::chrono::month(part(5, 2)),
                                        std::chrono::day(part(8, 2)));
  return day.ok() && part(11, 2) < 24 && part(14, 2) < 60 && part(17, 2) < 60;
}

// Reads the fields of one line in turn. Each step returns false once `error` says what is wrong.
class TrafficReader {
 public:
  TrafficReader(std::vector<std::string_view> fields, std::string& error) : mFields(std::move(fields)), mError(error) {}

  std::optional<TrafficLine> read() {
    if (mFields.size() < 4) {
      return fail("a time, a protocol, an address and a command are needed, such as 2026-06-01T18:05:00 x10 A1 2");
    }
    if (!isTime(mFields[0])) {
      return fail(quoted(mFields[0]) + " is not a time such as 2026-06-01T18:05:00");
    }
    mLine.time = mFields[0];
    if (mFields[1] == "x10") {
      mLine.protocol = Protocol::X10;
      return readX10() && readRest() ? std::optional(std::move(mLine)) : std::nullopt;
    }
    if (mFields[1] == "insteon") {
      mLine.protocol = Protocol::INSTEON;
      return readINSTEON() && readRest() ? std::optional(std::move(mLine)) : std::nullopt;
    }
    if (mFields[1] == "onewire") {
      mLine.protocol = Protocol::OneWire;
      return readOneWire() ? std::optional(std::move(mLine)) : std::nullopt;
    }
    return fail(quoted(mFields[1]) + " is no protocol; the protocols are x10, insteon and onewire");
  }

 private:
  std::nullopt_t fail(std::string message) {
    mError = std::move(message);
    return std::nullopt;
  }
  bool failed(std::string message) {
    mError = std::move(message);
    return false;
  }

  bool readX10() {
    const std::optional<std::string> address = x10Address(mFields[2]);
    if (!address) {
      return failed(quoted(mFields[2]) + " is not an X10 address; write a house letter A to P and a unit 1 to 16");
    }
    const auto function = wholeNumber(mFields[3]);
    if (!function || *function > kLastX10Function) {
      return failed(quoted(mFields[3]) + " is not an X10 function; functions are 0 to 15");
    }
    mLine.action = X10Utilities::x10ActionToActionCode(*function);
    const bool speaksToHouse = actionCodeRow(mLine.action)->wording == ActionWording::AllDevices;
    const bool maySpeakToHouse = speaksToHouse || mLine.action == kHailAction || mLine.action == kHailAcknowledgeAction;
    if (address->size() == 1 && !maySpeakToHouse) {
      return failed("X10 function " + std::string(mFields[3]) + " needs a unit behind the house letter, such as " +
                    *address + "1");
    }
    mLine.address = speaksToHouse ? address->substr(0, 1) : *address;
    return true;
  }

  bool readINSTEON() {
    const std::optional<std::string> address = insteonAddress(mFields[2]);
    if (!address) {
      return failed(quoted(mFields[2]) +
                    " is not an INSTEON address; write three groups of two hex digits, such as 1A.2B.3C");
    }
    const auto command = hexByte(mFields[3]);
    if (!command) {
      return failed(quoted(mFields[3]) + " is not a command byte; write it in hex, such as 0x11");
    }
    mLine.address = *address;
    mLine.action = Utilities::actionCodeWithInsteonCommand(*command);
    if (mLine.action == kNoAction) {
      return failed("INSTEON command " + std::string(mFields[3]) +
                    " carries no action that is known; 0x11 to 0x16 switch and dim");
    }
    return true;
  }

  bool readOneWire() {
    const std::optional<std::string> address = oneWireAddress(mFields[2]);
    if (!address) {
      return failed(quoted(mFields[2]) +
                    " is not a 1-Wire address with a right CRC; marlow onewire says what is wrong");
    }
    mLine.address = *address;
    const std::uint32_t family = OneWireUtilities::familyCodeFromAddress(*address);
    const std::optional<ThermometerKind> kind = thermometerKindOfFamily(family);
    if (!kind) {
      return failed("family " + hexText(family) + " of " + quoted(mFields[2]) + " is no thermometer that is known");
    }
    const auto bytes = bytesOfHexText(mFields[3]);
    const auto pad = bytes ? makePad(*kind, *bytes, false) : nullptr;
    if (pad == nullptr) {
      return failed(quoted(mFields[3]) +
                    " is not a scratch pad; write its nine bytes in hex, such as 50054b467fff0c101c");
    }
    if (!pad->isValid()) {
      return failed("the CRC of the scratch pad " + quoted(mFields[3]) +
                    " is wrong; marlow pad says what it should be");
    }
    if (std::ranges::all_of(*bytes, [](std::uint8_t byte) { return byte == 0; })) {
      return failed("the scratch pad holds nothing but zeros, as a bus with a short circuit reads");
    }
    if (*kind == ThermometerKind::DS18S20 && (*bytes)[ThermometerScratchPad::kCountPerDegree] == 0) {
      return failed("the scratch pad " + quoted(mFields[3]) + " has a count per degree of 0; nothing was read");
    }
    if (mFields.size() > 4) {
      return failed(quoted(mFields[4]) + " is more than a scratch pad takes");
    }
    mLine.bytes = *bytes;
    return true;
  }

  // A percentage, or the bytes of an extended command.
  bool readRest() {
    const bool takesBytes = mLine.action == kExtendedCodeAction || mLine.action == kExtendedDataAction;
    const bool takesPercent = mLine.action == kDimAction || mLine.action == kBrightenAction;
    for (std::size_t i = 4; i < mFields.size(); ++i) {
      const std::string_view field = mFields[i];
      if (takesBytes) {
        const auto byte = hexByte(field);
        if (!byte) {
          return failed(quoted(field) + " is not a data byte; write it in hex, such as 0x31");
        }
        mLine.bytes.push_back(*byte);
      } else if (takesPercent && i == 4) {
        if (!readPercent(field)) {
          return failed(quoted(field) + " is not a percentage from 0% to 100%");
        }
      } else {
        return failed(quoted(field) + " is more than this command takes");
      }
    }
    return true;
  }

  bool readPercent(std::string_view field) {
    if (!field.ends_with('%')) {
      return false;
    }
    field.remove_suffix(1);
    double percent = -1;
    const char* const end = field.data() + field.size();
    const auto [rest, error] = std::from_chars(field.data(), end, percent);
    // Written so that what is not a number fails too.
    if (error != std::errc() || rest != end || !(percent >= 0 && percent <= 100)) {
      return false;
    }
    mLine.percent = percent;
    return true;
  }

  std::vector<std::string_view> mFields;
  std::string& mError;
  TrafficLine mLine;
};

}  // namespace

std::optional<TrafficLine> parseTrafficLine(std::string_view line, std::string* error) {
  std::string message;
  std::optional<TrafficLine> parsed = TrafficReader(fieldsOf(line), message).read();
  if (!parsed && error != nullptr) {
    *error = std::move(message);
  }
  return parsed;
}

bool isTrafficComment(std::string_view line) {
  const std::string_view text = platform::trimmed(line);
  return text.empty() || text.starts_with('#');
}

}  // namespace SharedClasses::marlow
