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

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text + "  ";
}

void printHeading() {
  printLine("code  value       X10  compact  INSTEON sent  heard       wording");
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
    printJSON(Value::Dictionary{{"code", code},
                                {"value", row.code},
                                {"x10Function", cell(row.x10Function)},
                                {"compactNumber", cell(row.compactNumber)},
                                {"insteonCommand", cell(row.insteonCommand)},
                                {"insteonHeard", std::move(heard)},
                                {"conjugated", row.wording != ActionWording::FixedPhrase},
                                {"allDevices", row.wording == ActionWording::AllDevices},
                                {"phrase", phrase}});
    return;
  }
  const auto decimal = [](std::uint8_t number) { return number == kNotInColumn ? "-" : std::to_string(number); };
  const auto hex = [](std::uint8_t number) { return number == kNotInColumn ? std::string("-") : hexText(number); };
  const std::string heard =
      hex(row.insteonHeard) + (row.insteonHeardFast == kNotInColumn ? "" : " " + hex(row.insteonHeardFast));
  printLine(padded(code, 4) + padded(hexText(row.code, 8), 10) + padded(decimal(row.x10Function), 3) +
            padded(decimal(row.compactNumber), 7) + padded(hex(row.insteonCommand), 12) + padded(heard, 10) + phrase);
}

ExitCode run(const Arguments& arguments) {
  const bool asJSON = arguments.wantsJSON();
  if (!asJSON) {
    printHeading();
  }
  if (arguments.operands().empty()) {
    for (const ActionCodeRow& row : actionCodeTable()) {
      print(row, asJSON);
    }
    return ExitCode::AllWell;
  }
  ExitCode code = ExitCode::AllWell;
  forEachInput(arguments, [&](std::string_view text) {
    if (const ActionCodeRow* row = actionCodeRow(actionCodeFromInput(text))) {
      print(*row, asJSON);
      return;
    }
    const std::string fault = "not an action code; marlow action lists them all";
    if (asJSON) {
      printJSON(Value::Dictionary{{"input", text}, {"error", fault}});
    }
    complain(quoted(text) + ": " + fault);
    code = ExitCode::BadInput;
  });
  return code;
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
    .run = run,
};

}  // namespace SharedClasses::marlow
