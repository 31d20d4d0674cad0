#include "platform/text.h"
#include "shared/action_codes.h"
#include "tools/marlow/action_input.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"
#include "wording/action_phrases.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

// A cell of the table: empty where the code has no place in the column.
Value cell(std::uint8_t number) {
  return number == kNotInColumn ? Value() : Value(number);
}

// How the log words a code: by conjugation, or by a phrase under this key.
std::string wordingText(const ActionCodeRow& row) {
  switch (row.wording) {
    case ActionWording::Conjugated:
      return "conjugated";
    case ActionWording::AllDevices:
      return "conjugated, all devices";
    case ActionWording::FixedPhrase:
      break;
  }
  return std::string(row.phraseKey);
}

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text + "  ";
}

void printHeading() {
  printLine("code  value       X10  compact  INSTEON sent  heard       wording                            in the past");
}

void print(const ActionCodeRow& row, bool asJSON) {
  const std::string code = Utilities::stringFromFourCharCode(row.code);
  const std::string phrase = Utilities::verbStringForActionCode({.actionCode = row.code});
  if (asJSON) {
    Value::List heard;
    for (const std::uint8_t byte : {row.insteonHeard, row.insteonHeardFast}) {
      if (byte != kNotInColumn) {
        heard.emplace_back(byte);
      }
    }
    printJSON(
        Value::Dictionary{{"code", code},
                          {"value", row.code},
                          {"x10Function", cell(row.x10Function)},
                          {"compactNumber", cell(row.compactNumber)},
                          {"insteonCommand", cell(row.insteonCommand)},
                          {"insteonHeard", std::move(heard)},
                          {"conjugated", row.wording != ActionWording::FixedPhrase},
                          {"allDevices", row.wording == ActionWording::AllDevices},
                          {"phraseKey", row.wording == ActionWording::FixedPhrase ? Value(row.phraseKey) : Value()},
                          {"phrase", phrase}});
    return;
  }
  const auto decimal = [](std::uint8_t number) { return number == kNotInColumn ? "-" : std::to_string(number); };
  const auto hex = [](std::uint8_t number) { return number == kNotInColumn ? std::string("-") : hexText(number); };
  const std::string heard =
      hex(row.insteonHeard) + (row.insteonHeardFast == kNotInColumn ? "" : " " + hex(row.insteonHeardFast));
  printLine(padded(code, 4) + padded(hexText(row.code, 8), 10) + padded(decimal(row.x10Function), 3) +
            padded(decimal(row.compactNumber), 7) + padded(hex(row.insteonCommand), 12) + padded(heard, 10) +
            padded(wordingText(row), 33) + phrase);
}

// Prints the row of the code that `input` names, below the heading if it is the first.
bool describe(std::string_view input, bool asJSON, bool& headingPrinted) {
  const ActionCodeRow* row = actionCodeRow(actionCodeFromInput(input));
  if (row == nullptr) {
    const std::string fault = "not an action code; marlow action lists them all";
    if (asJSON) {
      printJSON(Value::Dictionary{{"input", input}, {"error", fault}});
    }
    complain(quoted(input) + ": " + fault);
    return false;
  }
  if (!asJSON && !headingPrinted) {
    printHeading();
    headingPrinted = true;
  }
  print(*row, asJSON);
  return true;
}

ExitCode run(const Arguments& arguments) {
  const bool asJSON = arguments.wantsJSON();
  if (!arguments.operands().empty()) {
    bool headingPrinted = false;
    return forEachInput("action", arguments,
                        [&](std::string_view input) { return describe(input, asJSON, headingPrinted); });
  }
  if (!asJSON) {
    printHeading();
  }
  for (const ActionCodeRow& row : actionCodeTable()) {
    print(row, asJSON);
  }
  return ExitCode::AllWell;
}

}  // namespace

const Command kActionCommand = {
    .name = "action",
    .summary = "look action codes up, or list them all",
    .usage = "[--json] [CODE…]",
    .help =
        "Prints where each action code takes part: X10 function, compact number, INSTEON command, wording.\n"
        "A code is its four characters (blanks at the end may be left out) or its value, such as 0x4F6E2020.\n"
        "Without codes prints the whole table; with - reads one a line from standard input.\n"
        "\n"
        "  marlow action On \"Dim \" 0x5374613F\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
