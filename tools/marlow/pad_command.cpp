#include <algorithm>
#include <charconv>
#include <cmath>

#include "platform/saturating.h"
#include "platform/text.h"
#include "protocols/onewire/crc.h"
#include "protocols/onewire/ds18b20_scratch_pad.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"
#include "tools/marlow/thermometers.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

constexpr OptionSpecification kOptions[] = {{"--kind", true}, {"--units", true}, {"--set", true}};

constexpr std::string_view kSettings[] = {"resolution", "temperature", "lowAlarm", "highAlarm"};

struct Setting {
  std::string_view name;
  double value;
};

struct Request {
  ThermometerKind kind = ThermometerKind::DS18B20;
  std::string units = "F";
  std::vector<Setting> settings;
  bool asJSON = false;
};

// Reads "temperature=21.5,lowAlarm=5". Absent when it cannot be read; `*error` then says why.
std::optional<std::vector<Setting>> settingsOf(std::string_view text, ThermometerKind kind, std::string* error) {
  std::vector<Setting> settings;
  while (!text.empty()) {
    const std::string_view entry = text.substr(0, text.find(','));
    text.remove_prefix(std::min(entry.size() + 1, text.size()));
    const std::size_t equals = std::min(entry.find('='), entry.size());
    const auto* const name = std::ranges::find(kSettings, entry.substr(0, equals));
    if (name == std::end(kSettings)) {
      *error = quoted(entry) + " sets nothing; write resolution=, temperature=, lowAlarm= or highAlarm= and a number";
      return std::nullopt;
    }
    if (*name == kSettings[0] && kind != ThermometerKind::DS18B20) {
      *error = "only a ds18b20 has a resolution";
      return std::nullopt;
    }
    const std::string_view digits = entry.substr(std::min(equals + 1, entry.size()));
    const char* const end = digits.data() + digits.size();
    Setting setting{*name, 0};
    const auto [rest, failure] = std::from_chars(digits.data(), end, setting.value);
    if (failure != std::errc() || rest != end || !std::isfinite(setting.value)) {
      *error = quoted(entry) + " has no number behind the =";
      return std::nullopt;
    }
    if (*name != "temperature" && setting.value != std::trunc(setting.value)) {
      *error = quoted(entry) + " is not a whole number";
      return std::nullopt;
    }
    settings.push_back(setting);
  }
  return settings;
}

// Makes one change. A resolution leaves the old CRC.
void apply(ThermometerScratchPad& pad, const Setting& setting) {
  const auto whole = platform::saturatingCast<std::int32_t>(setting.value);
  if (setting.name == "temperature") {
    pad.setTemperature(setting.value);
  } else if (setting.name == "lowAlarm") {
    pad.setLowAlarm(whole);
  } else if (setting.name == "highAlarm") {
    pad.setHighAlarm(whole);
  } else if (auto* const withResolution = dynamic_cast<DS18B20ScratchPad*>(&pad)) {
    withResolution->setResolution(whole);
  }
}

// The pad that `input` spells, with the changes asked for; null where it spells none.
std::unique_ptr<ThermometerScratchPad> padOf(std::string_view input, const Request& request) {
  const auto data = bytesOfHexText(input);
  auto pad = data ? makePad(request.kind, *data, false) : nullptr;
  if (pad == nullptr) {
    return nullptr;
  }
  pad->setUnits(request.units);
  for (const Setting& setting : request.settings) {
    apply(*pad, setting);
  }
  if (!request.settings.empty()) {
    pad = makePad(request.kind, *pad->bytes(), true);
    pad->setUnits(request.units);
  }
  return pad;
}

void print(std::string_view input, const ThermometerScratchPad& pad, std::string_view fault, bool asJSON) {
  const auto* const withResolution = dynamic_cast<const DS18B20ScratchPad*>(&pad);
  const std::string bytes = hexTextOfBytes(*pad.bytes());
  if (asJSON) {
    Value::Dictionary fields = pad.attributes();
    fields.erase("status");
    fields.insert({{"input", input},
                   {"bytes", bytes},
                   {"kind", withResolution != nullptr ? "ds18b20" : "ds18s20"},
                   {"valid", pad.isValid()},
                   {"powerOnReset", pad.looksLikePowerOnReset()}});
    if (!fault.empty()) {
      fields.insert_or_assign("error", Value(fault));
    }
    printJSON(std::move(fields));
    return;
  }
  const std::string resolution =
      withResolution == nullptr ? "" : ", " + std::to_string(withResolution->resolution()) + " bits";
  printLine(bytes + ": " + temperatureText(pad.temperature().value_or(0), pad.units()) + ", alarms below " +
            temperatureText(pad.lowAlarm(), pad.units()) + " and above " +
            temperatureText(pad.highAlarm(), pad.units()) + resolution + ", CRC " +
            (pad.isValid() ? "right" : "wrong") +
            (pad.looksLikePowerOnReset() ? "; the value after power-on, nothing measured yet" : ""));
}

bool describe(std::string_view input, const Request& request) {
  const auto pad = padOf(input, request);
  std::string fault;
  if (pad == nullptr) {
    fault = "not the nine bytes of a scratch pad in hex, such as 50054b467fff0c101c";
  } else if (!pad->isValid()) {
    const ThermometerScratchPad::Bytes bytes = *pad->bytes();
    const auto crc = OneWireUtilities::calc1WireCRC(std::span(bytes).first<ThermometerScratchPad::kCRC>());
    fault = "the CRC, the last byte, should be " + platform::hexDigits(crc, 2);
  }
  if (pad != nullptr) {
    print(input, *pad, fault, request.asJSON);
  } else if (request.asJSON) {
    printJSON(Value::Dictionary{{"input", input}, {"error", fault}});
  }
  if (!fault.empty()) {
    complain(quoted(input) + ": " + fault);
  }
  return fault.empty();
}

// Absent where an option is wrong, which it has then complained about.
std::optional<Request> requestOf(const Arguments& arguments) {
  Request request;
  request.asJSON = arguments.wantsJSON();
  const std::optional<ThermometerKind> kind = thermometerKindOfName(arguments.value("--kind").value_or("ds18b20"));
  if (!kind) {
    complain("pad: --kind is ds18s20 or ds18b20");
    return std::nullopt;
  }
  request.kind = *kind;
  request.units = arguments.value("--units").value_or(request.units);
  if (!isTemperatureUnit(request.units)) {
    complain("pad: --units is C, F or K");
    return std::nullopt;
  }
  std::string error;
  const std::string settings = arguments.value("--set").value_or("");
  const auto read = settingsOf(settings, request.kind, &error);
  if (!read) {
    complain("pad: --set: " + error);
    return std::nullopt;
  }
  request.settings = *read;
  return request;
}

ExitCode run(const Arguments& arguments) {
  const std::optional<Request> request = requestOf(arguments);
  if (!request) {
    return ExitCode::CannotRun;
  }
  return forEachInput("pad", arguments, [&](std::string_view input) { return describe(input, *request); });
}

}  // namespace

const Command kPadCommand = {
    .name = "pad",
    .summary = "read and write the scratch pads of 1-Wire thermometers",
    .usage = "[--kind ds18s20|ds18b20] [--units C|F|K] [--set NAME=NUMBER,…] [--json] [HEX…]",
    .help =
        "Prints what the nine bytes of each scratch pad mean: temperature, alarm limits, resolution, whether the CRC\n"
        "is right and whether they are the bytes of a thermometer that has not measured since power-on.\n"
        "Without bytes, or with -, reads one pad a line from standard input.\n"
        "  --kind KIND       ds18b20 unless given\n"
        "  --units UNITS     of what is printed and set; F unless given\n"
        "  --set NAME=NUMBER changes the bytes and refreshes the CRC first; names are temperature, lowAlarm, "
        "highAlarm\n"
        "                    and resolution (9 to 12 bits, ds18b20 alone); several are parted by commas\n"
        "\n"
        "  marlow pad --units C 50054b467fff0c101c\n"
        "  marlow pad --units C --set temperature=21.5,resolution=12 50054b467fff0c101c\n",
    .options = kOptions,
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
