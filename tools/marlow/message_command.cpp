#include <charconv>
#include <optional>
#include <string>

#include "platform/text.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"
#include "wording/localized_strings.h"
#include "wording/result_messages.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;
using Utilities::ResultMessageRow;
using Utilities::Rival;

constexpr OptionSpecification kOptions[] = {{"--list", false}};

// The whole of `text` as a number. Absent when it is none or one that `Integer` does not hold.
template <typename Integer>
std::optional<Integer> wholeNumber(std::string_view text, int base) {
  Integer number = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return fault == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

// A decimal number, or "0x" and the hex digits of its 32 bits.
std::optional<std::int32_t> resultFromInput(std::string_view text) {
  text = platform::trimmed(text);
  if (!text.starts_with("0x") && !text.starts_with("0X")) {
    return wholeNumber<std::int32_t>(text, 10);
  }
  const auto bits = wholeNumber<std::uint32_t>(text.substr(2), 16);
  return bits ? std::optional(static_cast<std::int32_t>(*bits)) : std::nullopt;
}

bool describe(std::string_view input, bool asJSON) {
  const std::optional<std::int32_t> result = resultFromInput(input);
  if (!result) {
    const std::string fault = "not a result code: a whole number of 32 bits, such as 35, -94 or 0xE00002C5";
    if (asJSON) {
      printJSON(Value::Dictionary{{"input", input}, {"error", fault}});
    }
    complain(quoted(input) + ": " + fault);
    return false;
  }
  const std::string text = Utilities::stringForResult(*result);
  if (asJSON) {
    printJSON(Value::Dictionary{{"input", input}, {"code", *result}, {"text", text}});
  } else {
    printLine(std::to_string(*result) + ": " + text);
  }
  return true;
}

std::string_view nameOf(Rival rival) {
  switch (rival) {
    case Rival::Nobody:
      break;
    case Rival::Indigo:
      return "Indigo";
    case Rival::XTension:
      return "XTension";
    case Rival::Classic:
      return "Classic";
  }
  return {};
}

void list(const ResultMessageRow& row, bool asJSON) {
  const std::string text =
      row.key.empty() ? Utilities::stringForResult(row.result) : std::string(Utilities::viewOfString(row.key));
  const std::string_view rival = nameOf(row.rival);
  if (asJSON) {
    Value::Dictionary fields{{"code", row.result}, {"text", text}};
    if (!row.key.empty()) {
      fields.insert({"key", row.key});
    }
    if (!rival.empty()) {
      fields.insert({"while", rival});
    }
    printJSON(std::move(fields));
    return;
  }
  const std::string condition = rival.empty() ? "" : " while " + std::string(rival) + " runs";
  printLine(std::to_string(row.result) + condition + ": " + text);
}

ExitCode run(const Arguments& arguments) {
  if (!arguments.has("--list")) {
    return forEachInput("message", arguments,
                        [&](std::string_view input) { return describe(input, arguments.wantsJSON()); });
  }
  if (!arguments.operands().empty()) {
    complain("message: --list lists all codes; leave out " + quoted(arguments.operands()[0]));
    return ExitCode::CannotRun;
  }
  for (const ResultMessageRow& row : Utilities::resultMessageTable()) {
    list(row, arguments.wantsJSON());
  }
  return ExitCode::AllWell;
}

}  // namespace

const Command kMessageCommand = {
    .name = "message",
    .summary = "say what result codes mean",
    .usage = "[--json] [--list | CODE…]",
    .help =
        "Prints for each result code the message that the user sees; a code without one reads \"Error\" and its\n"
        "number.\n"
        "A code is a decimal number, or 0x and the hex digits of its 32 bits.\n"
        "The message for 126, -97 and 0xE00002C5 may blame a program that runs now: Classic, or for 0xE00002C5 also\n"
        "Indigo or XTension. It goes by the names of the processes alone, not by who holds the controller.\n"
        "A message that the language lacks is empty.\n"
        "Without codes, or for -, reads one a line from standard input.\n"
        "  --list  prints every code that has a message, with all the messages it can have\n"
        "\n"
        "  marlow message 35 0xE00002C5\n"
        "  marlow message -94\n",
    .options = kOptions,
    .wordsThings = true,
    .negativeNumbers = true,
    .run = run,
};

}  // namespace SharedClasses::marlow
