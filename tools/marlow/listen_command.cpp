#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <memory>
#include <system_error>

#include "platform/files.h"
#include "platform/terminal.h"
#include "platform/text_format.h"
#include "protocols/onewire/addresses.h"
#include "shared/constants.h"
#include "shared/preferences.h"
#include "tools/marlow/command.h"
#include "tools/marlow/device_names.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/named_device.h"
#include "tools/marlow/output.h"
#include "tools/marlow/thermometers.h"
#include "tools/marlow/traffic.h"
#include "wording/action_phrases.h"
#include "wording/localized_strings.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

constexpr OptionSpecification kOptions[] = {{"--devices", true}, {"--units", true}};

// What the lines of one run have in common.
struct Listening {
  DeviceNames names;
  std::string units;  // of temperatures
  bool showsTimes = true;
  bool asJSON = false;
};

std::string kindOf(Protocol protocol) {
  switch (protocol) {
    case Protocol::X10:
      return "X10 device ";
    case Protocol::INSTEON:
      return "INSTEON device ";
    case Protocol::OneWire:
      break;
  }
  return "1-Wire thermometer ";
}

std::string nameOf(Protocol protocol) {
  switch (protocol) {
    case Protocol::X10:
      return "x10";
    case Protocol::INSTEON:
      return "insteon";
    case Protocol::OneWire:
      break;
  }
  return "onewire";
}

// What a thermometer line says, read once: a suspect reading is logged once.
struct Reading {
  double temperature = 0;  // in the units asked for
  bool powerOnReset = false;
};

Reading readingOf(const TrafficLine& line, const std::string& units) {
  const std::uint32_t family = OneWireUtilities::familyCodeFromAddress(line.address);
  const auto pad = makePad(thermometerKindOfFamily(family).value_or(ThermometerKind::DS18B20), line.bytes, false);
  pad->setUnits(units);
  return {pad->temperature().value_or(0), pad->looksLikePowerOnReset()};
}

std::string readingSentence(const TrafficLine& line, const Reading& reading, const Listening& listening) {
  const std::string* const name = listening.names.find(line.address);
  const std::string device = name != nullptr ? *name : kindOf(line.protocol) + line.address;
  if (reading.powerOnReset) {
    return platform::filledFormat(Utilities::viewOfString("keyThermometerNotMeasuredFormat"), {device});
  }
  return platform::filledFormat(Utilities::viewOfString("keyThermometerReadingFormat"),
                                {device, temperatureText(reading.temperature, listening.units)});
}

bool isHouseLetter(const TrafficLine& line) {
  return line.protocol == Protocol::X10 && line.address.size() == 1;
}

// What the sentence about `line` is about: a house letter for what the whole house heard, else a thing with a name.
Value deviceOf(const TrafficLine& line, const DeviceNames& names) {
  if (isHouseLetter(line)) {
    const bool wholeHouse = actionCodeRow(line.action)->wording == ActionWording::AllDevices;
    return wholeHouse ? Value(line.address) : Value(std::make_shared<NamedDevice>("X10 house " + line.address));
  }
  if (const std::string* name = names.find(line.address)) {
    return std::make_shared<NamedDevice>(*name);
  }
  return std::make_shared<NamedDevice>(kindOf(line.protocol) + line.address);
}

std::string bytesText(const std::vector<std::uint8_t>& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += (text.empty() ? "" : " ") + hexText(byte).substr(2);
  }
  return text;
}

std::string sentenceFor(const TrafficLine& line, const Listening& listening) {
  const Value device = deviceOf(line, listening.names);
  Value::Dictionary parameters;
  if (!line.bytes.empty()) {
    parameters.insert_or_assign("extendedBytes", Value(bytesText(line.bytes)));
  }
  return Utilities::logStringForDevices(
      {.devices = {&device, 1}, .actionCode = line.action, .amount = line.percent, .andParameters = &parameters});
}

void print(const TrafficLine& line, const Listening& listening) {
  const bool isReading = line.protocol == Protocol::OneWire;
  const Reading reading = isReading ? readingOf(line, listening.units) : Reading();
  const std::string sentence = isReading ? readingSentence(line, reading, listening) : sentenceFor(line, listening);
  if (!listening.asJSON) {
    const std::string time = line.time.substr(0, 10) + " " + line.time.substr(11) + "  ";
    printLine((listening.showsTimes ? time : "") + sentence);
    return;
  }
  Value::Dictionary fields{
      {"time", line.time}, {"protocol", nameOf(line.protocol)}, {"address", line.address}, {"sentence", sentence}};
  if (isReading) {
    fields.insert(
        {{"temperature", reading.temperature}, {"units", listening.units}, {"powerOnReset", reading.powerOnReset}});
  } else {
    fields.insert_or_assign("action", Value(Utilities::stringFromFourCharCode(line.action)));
  }
  if (const std::string* name = listening.names.find(line.address)) {
    fields.insert_or_assign("device", Value(*name));
  }
  if (line.percent) {
    fields.insert_or_assign("percent", Value(*line.percent));
  }
  if (!line.bytes.empty()) {
    fields.insert_or_assign("bytes", Value::List(line.bytes.begin(), line.bytes.end()));
  }
  printJSON(std::move(fields));
}

// Words every line of `stream` as it comes, each at once: a stream may grow.
ExitCode listen(std::istream& stream, const std::string& source, const Listening& listening) {
  ExitCode code = ExitCode::AllWell;
  InputLines lines(stream);
  while (lines.next()) {
    if (isTrafficComment(lines.line())) {
      continue;
    }
    std::string error = lineTooLongText();
    std::optional<TrafficLine> parsed;
    if (!lines.isTooLong()) {
      parsed = parseTrafficLine(lines.line(), &error);
    }
    if (parsed) {
      print(*parsed, listening);
    } else {
      if (listening.asJSON) {
        printJSON(Value::Dictionary{{"line", lines.number()}, {"error", error}});
      }
      complain(source + ":" + std::to_string(lines.number()) + ": " + error);
      code = ExitCode::BadInput;
    }
    std::cout.flush();
    if (!std::cout) {
      break;  // Nobody reads any more.
    }
  }
  return lines.failed() ? ExitCode::CannotRun : code;
}

// The units that the user prefers; the usual ones where the settings hold none. To look is no program start, so the
// shared preferences are left alone.
std::string preferredUnits(const platform::SettingsStore& settings) {
  constexpr std::string_view kKey = "temperatureUnits";
  std::string usual = Preferences::defaultValue(kKey).description();
  const Value stored = settings.value(kKey);
  std::string units = stored.isAbsent() ? usual : stored.description();
  if (isTemperatureUnit(units)) {
    return units;
  }
  complain("listen: the setting temperatureUnits is " + quoted(units) + ", none of C, F and K; taking " + usual);
  return usual;
}

ExitCode run(const Arguments& arguments) {
  if (arguments.operands().size() > 1) {
    complain("listen: one file at a time; see marlow listen --help");
    return ExitCode::CannotRun;
  }
  ExitCode code = ExitCode::AllWell;
  Listening listening;
  listening.asJSON = arguments.wantsJSON();
  const std::shared_ptr<platform::SettingsStore> settings = platform::SettingsStore::standard();
  listening.showsTimes = Preferences::booleanOf(settings->value(kPrefKeyLogTimestamps)).value_or(true);
  const std::optional<std::string> units = arguments.value("--units");
  listening.units = units ? *units : preferredUnits(*settings);
  if (!isTemperatureUnit(listening.units)) {
    complain("listen: --units is C, F or K");
    return ExitCode::CannotRun;
  }
  if (const auto path = arguments.value("--devices")) {
    std::vector<std::string> faults;
    std::string error;
    std::optional<DeviceNames> loaded = DeviceNames::load(*path, &faults, &error);
    if (!loaded) {
      complain(*path + ": " + error);
      return ExitCode::CannotRun;
    }
    for (const std::string& fault : faults) {
      complain(*path + ":" + fault);
      code = ExitCode::BadInput;
    }
    listening.names = *std::move(loaded);
  }
  const std::string source = arguments.operands().empty() ? "-" : arguments.operands().front();
  if (source == "-") {
    if (arguments.operands().empty() && platform::isTerminal(platform::StandardStream::Input)) {
      complain("listen: type traffic lines, end with Ctrl-D; see marlow listen --help");
    }
    return std::max(code, listen(std::cin, "standard input", listening));
  }
  std::ifstream file(source, std::ios::binary);
  if (!file || platform::isFolder(source)) {
    const int reason = file ? EISDIR : errno;
    complain(source + ": the file cannot be read: " + std::generic_category().message(reason));
    return ExitCode::CannotRun;
  }
  return std::max(code, listen(file, source, listening));
}

}  // namespace

const Command kListenCommand = {
    .name = "listen",
    .summary = "turn recorded traffic into the log that a home owner reads",
    .usage = "[--devices FILE] [--units C|F|K] [--json] [FILE]",
    .help =
        "Reads one heard command or read thermometer a line from FILE or standard input and prints for each at once a\n"
        "dated sentence:\n"
        "  2026-06-01T18:05:00 x10 A1 2               X10 address, function 0 to 15\n"
        "  2026-06-01T18:05:04 x10 A1 4 40%           dim (4) and brighten (5) with a percentage\n"
        "  2026-06-01T18:06:30 x10 B 1                a whole house: functions 0, 1, 6\n"
        "  2026-06-01T18:07:12 x10 A4 7 0x31 0x64     extended commands (7, 12) with their bytes\n"
        "  2026-06-01T18:09:55 insteon 1A.2B.3C 0x11  INSTEON address, command byte\n"
        "  2026-06-01T18:10:00 onewire e9000005e2fdc328 50054b467fff0c101c  1-Wire address, scratch pad\n"
        "Blank lines and lines that begin with # are passed over. A bad line is reported with its number on standard\n"
        "error; the rest is read, and the exit code is 1.\n"
        "  --devices FILE  names of addresses: lines such as \"A1 hall lamp\", or an XML property list, a dictionary\n"
        "                  of names by address\n"
        "  --units UNITS   of temperatures; those of the setting temperatureUnits unless given\n"
        "Sentences stand without their times where the setting logTimestamps is no (marlow prefs set logTimestamps "
        "no).\n"
        "\n"
        "  marlow listen --devices examples/devices.txt examples/recorded_day.txt\n"
        "  tail -f traffic.txt | marlow listen\n",
    .options = kOptions,
    .wordsThings = true,
    .run = run,
};

}  // namespace SharedClasses::marlow
