#include <charconv>
#include <optional>
#include <string>

#include "platform/text.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"
#include "wording/formatting.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

// `input` as a number of bytes: decimal digits alone, between blanks.
std::optional<std::uint64_t> bytesOf(std::string_view input) {
  const std::string_view digits = platform::trimmed(input);
  std::uint64_t bytes = 0;
  const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), bytes);
  const bool isWhole = error == std::errc() && rest == digits.data() + digits.size();
  return isWhole ? std::optional(bytes) : std::nullopt;
}

bool describe(std::string_view input, bool asJSON) {
  constexpr std::string_view kFault = "not a number of bytes, 0 to 18446744073709551615";
  const std::optional<std::uint64_t> bytes = bytesOf(input);
  if (!bytes) {
    if (asJSON) {
      printJSON(Value::Dictionary{{"input", input}, {"error", kFault}});
    }
    complain(quoted(input) + ": " + std::string(kFault));
    return false;
  }
  const std::string text = Utilities::abbreviateSize(*bytes);
  if (asJSON) {
    printJSON(Value::Dictionary{{"input", input}, {"text", text}});
  } else {
    printLine(std::to_string(*bytes) + ": " + text);
  }
  return true;
}

ExitCode run(const Arguments& arguments) {
  return forEachInput("size", arguments,
                      [&](std::string_view input) { return describe(input, arguments.wantsJSON()); });
}

}  // namespace

const Command kSizeCommand = {
    .name = "size",
    .summary = "write numbers of bytes as sizes",
    .usage = "[--json] [N…]",
    .help =
        "Prints each number of bytes as the programs show it: cut and never rounded, units of 1000.\n"
        "Below 1000 bytes they show a tenth of the number, without a unit.\n"
        "Without numbers, or for -, reads one a line from standard input.\n"
        "\n"
        "  marlow size 1500000 123456789012\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
