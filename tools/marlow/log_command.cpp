#include <charconv>
#include <memory>

#include "tools/marlow/action_input.h"
#include "tools/marlow/command.h"
#include "tools/marlow/device_addresses.h"
#include "tools/marlow/named_device.h"
#include "tools/marlow/output.h"
#include "wording/action_phrases.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

struct Choice {
  std::string_view name;
  std::int32_t number;
};

constexpr Choice kTenses[] = {{"past", Utilities::kPastTense},
                              {"present", Utilities::kPresentTense},
                              {"progressive", Utilities::kProgressiveTense},
                              {"future", Utilities::kFutureTense},
                              {"imperative", Utilities::kImperativeTense}};
constexpr Choice kPrepositions[] = {{"none", Utilities::kNoPreposition},
                                    {"by", Utilities::kByPreposition},
                                    {"to", Utilities::kToPreposition},
                                    {"automatic", Utilities::kAutomaticPreposition}};

constexpr OptionSpecification kOptions[] = {{"--action", true}, {"--tense", true}, {"--preposition", true},
                                            {"--amount", true}, {"--house", true}, {"--bytes", true}};

// The number that the option names, `otherwise` when it is not given. Absent, with a complaint, for any other word.
std::optional<std::int32_t> chosen(const Arguments& arguments, std::string_view option, std::span<const Choice> choices,
                                   std::int32_t otherwise) {
  const std::optional<std::string> word = arguments.value(option);
  if (!word) {
    return otherwise;
  }
  std::string names;
  for (const Choice& choice : choices) {
    if (choice.name == *word) {
      return choice.number;
    }
    names += (names.empty() ? "" : ", ") + std::string(choice.name);
  }
  complain("log: " + std::string(option) + " " + quoted(*word) + " is none of " + names);
  return std::nullopt;
}

// The number of --amount. False, with a complaint, when it is not one.
bool readAmount(const Arguments& arguments, std::optional<double>& amount) {
  const std::optional<std::string> text = arguments.value("--amount");
  if (!text) {
    return true;
  }
  double number = 0;
  const char* const end = text->data() + text->size() - (text->ends_with('%') ? 1 : 0);
  const auto [rest, error] = std::from_chars(text->data(), end, number);
  // Written so that what is not a number fails too.
  if (error != std::errc() || rest != end || !(number >= 0 && number <= 100)) {
    complain("log: --amount " + quoted(*text) + " is not a number from 0 to 100");
    return false;
  }
  amount = number;
  return true;
}

ExitCode run(const Arguments& arguments) {
  const std::string typed = arguments.value("--action").value_or("");
  const ActionCode code = actionCodeFromInput(typed);
  const ActionCodeRow* const row = actionCodeRow(code);
  if (row == nullptr) {
    complain(typed.empty() ? "log: --action CODE is missing; marlow action lists the codes"
                           : "log: --action " + quoted(typed) + " is not an action code; marlow action lists them");
    return ExitCode::CannotRun;
  }
  const auto tense = chosen(arguments, "--tense", kTenses, Utilities::kPastTense);
  const auto preposition = chosen(arguments, "--preposition", kPrepositions, Utilities::kAutomaticPreposition);
  std::optional<double> amount;
  if (!tense || !preposition || !readAmount(arguments, amount)) {
    return ExitCode::CannotRun;
  }
  Value::List devices;
  for (const std::string& name : arguments.operands()) {
    devices.emplace_back(std::make_shared<NamedDevice>(name));
  }
  if (const auto house = arguments.value("--house")) {
    const std::optional<std::string> letter = x10Address(*house);
    if (!letter || letter->size() != 1) {
      complain("log: --house " + quoted(*house) + " is not a letter A to P");
      return ExitCode::CannotRun;
    }
    if (row->wording != ActionWording::AllDevices) {
      complain("log: --house goes with the actions AOff, All+ and All- alone");
      return ExitCode::CannotRun;
    }
    devices.emplace_back(*letter);
  }
  Value::Dictionary parameters;
  if (auto bytes = arguments.value("--bytes")) {
    parameters.insert_or_assign("extendedBytes", Value(*std::move(bytes)));
  }
  const std::string sentence = Utilities::logStringForDevices({.devices = devices,
                                                               .actionCode = code,
                                                               .usingTense = *tense,
                                                               .preposition = *preposition,
                                                               .amount = amount,
                                                               .andParameters = &parameters});
  if (arguments.wantsJSON()) {
    printJSON(Value::Dictionary{{"action", Utilities::stringFromFourCharCode(code)}, {"sentence", sentence}});
  } else {
    printLine(sentence);
  }
  return ExitCode::AllWell;
}

}  // namespace

const Command kLogCommand = {
    .name = "log",
    .summary = "word one sentence of the log",
    .usage =
        "--action CODE [--tense TENSE] [--amount N] [--preposition WORD] [--house LETTER] [--bytes TEXT] [--json] "
        "[DEVICE…]",
    .help =
        "Prints the sentence for an action on the devices named, in the language of the user.\n"
        "  --action CODE       what happens, such as On or \"Dim \"; marlow action lists the codes\n"
        "  --tense TENSE       past (as it is without), present, progressive, future, imperative\n"
        "  --amount N          percent for Dim, Brit, DmTo, BrTo; level 0 to 100 for Stat\n"
        "  --preposition WORD  by, to, none (which reads as to), automatic (as it is without)\n"
        "  --house LETTER      all units of a house A to P; for AOff, All+ and All-\n"
        "  --bytes TEXT        the data of an extended command\n"
        "\n"
        "  marlow log --action Dim --amount 40 \"hall lamp\" \"porch lights\"\n"
        "  marlow log --action All+ --tense imperative --house B\n",
    .options = kOptions,
    .wordsThings = true,
    .run = run,
};

}  // namespace SharedClasses::marlow
