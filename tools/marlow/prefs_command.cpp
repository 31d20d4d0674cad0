#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "platform/property_list.h"
#include "platform/text.h"
#include "platform/users.h"
#include "shared/preferences.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"
#include "tools/marlow/thermometers.h"

namespace SharedClasses::marlow {

namespace {

using platform::SettingsStore;
using platform::Value;
using Type = Value::Type;

constexpr OptionSpecification kOptions[] = {{"--type", true}, {"--user", true}};

// What a person typed as a value; absent when it does not fit.
using Reader = std::optional<Value> (*)(std::string_view input);

std::optional<Value> readBoolean(std::string_view input) {
  const std::optional<bool> boolean = Preferences::booleanOf(Value(input));
  return boolean ? std::optional<Value>(*boolean) : std::nullopt;
}

// As the settings file holds it between the tags of `element`.
std::optional<Value> readElement(const std::string& element, std::string_view input) {
  if (input.find_first_of("<&") != input.npos) {
    return std::nullopt;
  }
  return platform::propertyListFromXML("<" + element + ">" + std::string(input) + "</" + element + ">");
}

// As in the settings file too, but what lies beyond the range is refused: a person can be told.
std::optional<Value> readInteger(std::string_view input) {
  std::string digits(platform::trimmed(input));
  const bool isNegative = digits.starts_with('-');
  digits.erase(0, isNegative || digits.starts_with('+') ? 1 : 0);
  const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
  digits.erase(0, isHexadecimal ? 2 : 0);
  if (digits.starts_with('-')) {
    return std::nullopt;
  }
  digits.insert(0, isNegative ? "-" : "");
  std::int64_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [rest, error] = std::from_chars(digits.data(), end, number, isHexadecimal ? 16 : 10);
  return error == std::errc() && rest == end ? std::optional<Value>(number) : std::nullopt;
}

std::optional<Value> readReal(std::string_view input) {
  const std::optional<Value> number = readElement("real", input);
  return number && std::isfinite(*number->realValue()) ? number : std::nullopt;
}

std::optional<Value> readDate(std::string_view input) {
  return readElement("date", input);
}

std::optional<Value> readText(std::string_view input) {
  return platform::isValidUTF8(input) ? std::optional<Value>(input) : std::nullopt;
}

std::optional<Value> readData(std::string_view input) {
  auto bytes = bytesOfHexText(input);
  return bytes ? std::optional<Value>(*std::move(bytes)) : std::nullopt;
}

struct TypeRow {
  Type type;
  std::string_view name;
  Reader read;                 // null for what cannot be typed
  std::string_view complaint;  // what is said of an input that does not fit
};

constexpr TypeRow kTypes[] = {
    {Type::Boolean, "boolean", readBoolean, "is neither yes nor no"},
    {Type::Integer, "integer", readInteger, "is no integer of 64 bits"},
    {Type::Real, "real", readReal, "is no number"},
    {Type::Text, "string", readText, "is not UTF-8"},
    {Type::Date, "date", readDate, "is no date of the form 2001-12-31T23:59:59Z"},
    {Type::Data, "data", readData, "are no bytes in hex, such as 0a1bff"},
    {Type::List, "list", nullptr, ""},
    {Type::Dictionary, "dictionary", nullptr, ""},
};

// Null for a type that no settings file holds.
const TypeRow* rowOfType(Type type) {
  const auto* const found = std::ranges::find(kTypes, type, &TypeRow::type);
  return found != std::end(kTypes) ? found : nullptr;
}

std::string nameOfType(Type type) {
  const TypeRow* const row = rowOfType(type);
  return row != nullptr ? std::string(row->name) : "object";
}

using Keys = std::span<const std::string>;

// What every verb works on.
struct Request {
  Keys operands;  // those behind the verb
  const Arguments& arguments;
  std::shared_ptr<SettingsStore> store;

  [[nodiscard]] bool wantsJSON() const { return arguments.wantsJSON(); }
};

Value::Dictionary fieldsOf(std::string_view key, const Value& value) {
  return {{"key", key}, {"type", nameOfType(value.type())}, {"value", value}};
}

// One line of the list.
void printSetting(std::string_view key, const Value& value, bool asJSON) {
  constexpr std::size_t kKeyColumn = 34;   // wide enough for every key that has a default
  constexpr std::size_t kTypeColumn = 10;  // and for every type
  if (asJSON) {
    printJSON(fieldsOf(key, value));
    return;
  }
  std::string line(key);
  line.resize(std::max(line.size(), kKeyColumn), ' ');
  std::string type = nameOfType(value.type());
  type.resize(kTypeColumn, ' ');
  printLine(line + "  " + type + "  " + value.description());
}

void complainOfKey(std::string_view key, std::string_view fault, bool asJSON) {
  if (asJSON) {
    printJSON(Value::Dictionary{{"key", key}, {"error", fault}});
  }
  complain(quoted(key) + ": " + std::string(fault));
}

// Calls `use` with each key of the request, or with each line of standard input where it has none.
ExitCode forEachKey(const Request& request, const std::function<bool(std::string_view)>& use) {
  std::vector<std::string_view> words{"--"};
  words.insert(words.end(), request.operands.begin(), request.operands.end());
  std::string error;
  return forEachInput("prefs", *Arguments::parse(words, {}, &error), use);
}

bool isComputed(std::string_view key) {
  return key == "latitude" || key == "longitude";
}

// The keys that `key`, one of the two above, is computed from.
std::array<std::string, 4> partsOf(std::string_view key) {
  const std::string name(key);
  return {name + "Degrees", name + "Minutes", name + "Seconds", name + (key == "latitude" ? "NS" : "WE")};
}

ExitCode list(const Request& request) {
  const Value::Dictionary settings = request.store->all();
  for (const std::string_view key : Preferences::defaultKeys()) {
    if (const auto found = settings.find(key); found != settings.end()) {
      printSetting(key, found->second, request.wantsJSON());
    }
  }
  for (const auto& [key, value] : settings) {
    if (!Preferences::typeOfDefault(key)) {
      printSetting(key, value, request.wantsJSON());
    }
  }
  if (!request.store->isReadable()) {
    return ExitCode::CannotRun;  // The store has said why.
  }
  if (settings.empty() && !request.wantsJSON()) {
    complain("prefs: nothing is set; the GUI and the agent write the defaults when one of them first starts");
  }
  return ExitCode::AllWell;
}

Value valueOf(const SettingsStore& store, std::string_view key) {
  Value value = Preferences::valueInStore(store, key);
  if (!isComputed(key)) {
    return value;
  }
  const bool isSet = std::ranges::any_of(partsOf(key), [&](const auto& part) { return !store.value(part).isAbsent(); });
  return isSet ? Value(value.realValue().value_or(0) + 0.0) : Value();  // -0 + 0 is 0
}

ExitCode get(const Request& request) {
  const ExitCode code = forEachKey(request, [&request](std::string_view key) {
    const Value value = valueOf(*request.store, key);
    if (value.isAbsent()) {
      const Value usual = Preferences::defaultValue(key);
      complainOfKey(key, "not set" + (usual.isAbsent() ? "" : "; the default is " + quoted(usual.description())),
                    request.wantsJSON());
    } else if (request.wantsJSON()) {
      printJSON(fieldsOf(key, value));
    } else {
      printLine(value.description());
    }
    return !value.isAbsent();
  });
  return request.store->isReadable() ? code : ExitCode::CannotRun;
}

// The type that `key` is to be of: the one asked for, else that of its default, else that of what it holds, else a
// text.
Type typeFor(std::string_view key, const TypeRow* wanted, const Value& present) {
  if (wanted != nullptr) {
    return wanted->type;
  }
  return Preferences::typeOfDefault(key).value_or(present.isAbsent() ? Type::Text : present.type());
}

// Why `key` cannot be set; empty where it can.
std::string faultOfKey(std::string_view key) {
  if (key.empty() || !platform::isValidUTF8(key)) {
    return "not a key";
  }
  if (isComputed(key)) {
    const auto [degrees, minutes, seconds, side] = partsOf(key);
    return "computed from " + degrees + ", " + minutes + ", " + seconds + " and " + side + "; set those";
  }
  return {};
}

ExitCode set(const Request& request) {
  const std::string& key = request.operands[0];
  const std::string& input = request.operands[1];
  const auto refuse = [&](const std::string& fault) {
    complainOfKey(key, fault, request.wantsJSON());
    return ExitCode::BadInput;
  };
  const TypeRow* wanted = nullptr;
  if (const auto name = request.arguments.value("--type")) {
    wanted = std::ranges::find(kTypes, std::string_view(*name), &TypeRow::name);
    if (wanted == std::end(kTypes) || wanted->read == nullptr) {
      complain("prefs: --type is boolean, integer, real, string, date or data");
      return ExitCode::CannotRun;
    }
  }
  if (const std::string fault = faultOfKey(key); !fault.empty()) {
    return refuse(fault);
  }
  const TypeRow* const type = rowOfType(typeFor(key, wanted, request.store->value(key)));
  if (type == nullptr || type->read == nullptr) {
    return refuse("now a " + nameOfType(request.store->value(key).type()) + "; say with --type what it is to be");
  }
  const std::optional<Value> value = type->read(input);
  if (!value) {
    return refuse(quoted(input) + " " + std::string(type->complaint));
  }
  // Asked first: the store would take the key out.
  if (std::string reason; !platform::propertyListAsXML(Value::Dictionary{{key, *value}}, &reason)) {
    return refuse("no settings file can hold this: " + reason);
  }
  request.store->set(key, *value);
  if (!request.store->synchronize()) {
    return ExitCode::CannotRun;  // The store has said why, here and below.
  }
  printSetting(key, *value, request.wantsJSON());
  return ExitCode::AllWell;
}

ExitCode unset(const Request& request) {
  const ExitCode code = forEachKey(request, [&request](std::string_view key) {
    SettingsStore& store = *request.store;
    const Value before = store.value(key);
    store.set(key, {});
    // What is set for all users of the machine shows through, and is not this user's to take out.
    const Value after = store.value(key);
    const std::string rest =
        after.isAbsent() ? "" : "; for all users of this machine it is " + quoted(after.description());
    if (after == before) {
      complainOfKey(key, "not set" + rest, request.wantsJSON());
    } else if (request.wantsJSON()) {
      printJSON(Value::Dictionary{{"key", key}, {"unset", true}});
    } else {
      printLine(std::string(key) + " is no longer set" + rest);
    }
    return after != before;
  });
  return request.store->synchronize() ? code : ExitCode::CannotRun;
}

ExitCode reset(const Request& request) {
  const Value::Dictionary before = request.store->all();
  for (const std::string_view key : Preferences::defaultKeys()) {
    request.store->set(key, Preferences::defaultValue(key));
  }
  if (!request.store->synchronize()) {
    return ExitCode::CannotRun;
  }
  const Value::Dictionary after = request.store->all();
  const auto valueIn = [](const Value::Dictionary& settings, std::string_view key) {
    const auto found = settings.find(key);
    return found != settings.end() ? found->second : Value();
  };
  Value::List changed;
  for (const std::string_view key : Preferences::defaultKeys()) {
    if (valueIn(before, key) != valueIn(after, key)) {
      changed.emplace_back(key);
    }
  }
  if (request.wantsJSON()) {
    printJSON(Value::Dictionary{{"changed", changed}, {"path", request.store->path()}});
  } else {
    printLine(std::to_string(Preferences::defaultKeys().size()) + " settings are as on a first start; " +
              std::to_string(changed.size()) + " of them were not before");
  }
  return ExitCode::AllWell;
}

ExitCode path(const Request& request) {
  const std::string path = request.store->path();
  if (path.empty()) {
    complain("prefs: these settings are kept in no file");
    return ExitCode::CannotRun;
  }
  if (request.wantsJSON()) {
    printJSON(Value::Dictionary{{"path", path}});
  } else {
    printLine(path);
  }
  return ExitCode::AllWell;
}

struct Verb {
  std::string_view name;
  std::optional<std::size_t> operands;  // how many there have to be; absent for any number
  ExitCode (*run)(const Request& request);
};

constexpr Verb kVerbs[] = {{"list", 0, list},   {"get", std::nullopt, get},
                           {"set", 2, set},     {"unset", std::nullopt, unset},
                           {"reset", 0, reset}, {"path", 0, path}};

// The store of the user that --user names, else of the one whose rights the tool has: the user whom the agent serves is
// told by words among which the operands stand. Null with a complaint.
std::shared_ptr<SettingsStore> storeFor(const Arguments& arguments) {
  const std::string own = platform::currentUserName();
  const std::string name = arguments.value("--user").value_or(own);
  if (name == own) {
    return SettingsStore::standard();
  }
  if (!platform::userNamed(name)) {
    complain("prefs: there is no user " + quoted(name));
    return nullptr;
  }
  if (own != "root") {
    complain("prefs: only root may use the settings of another user");
    return nullptr;
  }
  return SettingsStore::ofUser(name);
}

ExitCode run(const Arguments& arguments) {
  const Keys operands = arguments.operands();
  const std::string_view name = operands.empty() ? "" : std::string_view(operands.front());
  const auto* const verb = std::ranges::find(kVerbs, name, &Verb::name);
  const Keys rest = operands.subspan(std::min<std::size_t>(operands.size(), 1));
  if (verb == std::end(kVerbs) || rest.size() != verb->operands.value_or(rest.size())) {
    complain(
        "prefs: write marlow prefs list, get KEY…, set KEY VALUE, unset KEY…, reset or path; see marlow prefs --help");
    return ExitCode::CannotRun;
  }
  if (arguments.has("--type") && verb->run != set) {
    complain("prefs: --type goes with set");
    return ExitCode::CannotRun;
  }
  if (arguments.has("--user") && verb->run == reset) {
    complain("prefs: some defaults depend on the user; let that user reset, as by sudo -u NAME marlow prefs reset");
    return ExitCode::CannotRun;
  }
  const std::shared_ptr<SettingsStore> store = storeFor(arguments);
  return store != nullptr ? verb->run({rest, arguments, store}) : ExitCode::CannotRun;
}

}  // namespace

const Command kPrefsCommand = {
    .name = "prefs",
    .summary = "show and change the settings that the programs share",
    .usage = "list|get|set|unset|reset|path [--user NAME] [--type TYPE] [--json] [KEY… [VALUE]]",
    .help =
        "  list           prints each setting that has a value: key, type, value; the exit code is 2 when the file "
        "cannot\n"
        "                 be read\n"
        "  get KEY…       prints the values of keys, given here or one a line on standard input; the exit code is 1\n"
        "                 when any has none. latitude and longitude are computed from their degrees and minutes.\n"
        "                 Control characters, line breaks among them, print as ?; with --json values are exact\n"
        "  set KEY VALUE  gives a key a value and prints it as list does\n"
        "  unset KEY…     takes keys out; the exit code is 1 when any was not set\n"
        "  reset          gives every setting its default, the count of starts and the location of this machine among\n"
        "                 them, without asking; what the programs have no default for stays\n"
        "  path           prints the path of the file that holds the settings\n"
        "A value is read as the type of the key's default, else as the type of the value that it has, else as a "
        "string,\n"
        "unless --type says boolean (yes or no), integer, real, string, date (2001-12-31T23:59:59Z) or data (hex). A "
        "value\n"
        "that begins with - stands behind --. Programs that run see a change without a restart.\n"
        "The settings are those of the user who runs this tool, or, for root, of the user that --user names.\n"
        "This tool is no program start: it counts none, and only set, unset and reset write.\n"
        "\n"
        "  marlow prefs list\n"
        "  marlow prefs get latitude longitude\n"
        "  marlow prefs set temperatureUnits C\n"
        "  marlow prefs set --type integer -- offset -5\n",
    .options = kOptions,
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
