#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text.h"
#include "system/miscellany/bytes.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

// `input` as the 32 bits of an address: decimal, signed or unsigned, or hexadecimal behind 0x, between blanks.
std::optional<std::int32_t> addressOf(std::string_view input) {
  std::string_view digits = platform::trimmed(input);
  const bool isHex = digits.starts_with("0x") || digits.starts_with("0X");
  digits.remove_prefix(isHex ? 2 : 0);
  std::int64_t number = 0;
  const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, isHex ? 16 : 10);
  const bool isWhole = error == std::errc() && rest == digits.data() + digits.size() && !(isHex && digits[0] == '-');
  if (!isWhole || number < std::numeric_limits<std::int32_t>::min() ||
      number > std::numeric_limits<std::uint32_t>::max()) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

bool describe(std::string_view input, bool asJSON) {
  constexpr std::string_view kFault = "no address: a number from -2147483648 to 4294967295, or up to 0xffffffff";
  const std::optional<std::int32_t> address = addressOf(input);
  if (!address) {
    if (asJSON) {
      printJSON(Value::Dictionary{{"input", input}, {"error", kFault}});
    }
    complain(quoted(input) + ": " + std::string(kFault));
    return false;
  }
  const std::string text = Utilities::ipAddressFromInt(*address);
  if (asJSON) {
    printJSON(Value::Dictionary{{"input", input}, {"address", text}});
  } else {
    printLine(std::string(platform::trimmed(input)) + ": " + text);
  }
  return true;
}

ExitCode run(const Arguments& arguments) {
  return forEachInput("ip", arguments, [&](std::string_view input) { return describe(input, arguments.wantsJSON()); });
}

}  // namespace

const Command kIPCommand = {
    .name = "ip",
    .summary = "write numbers as Internet addresses",
    .usage = "[--json] [N…]",
    .help =
        "Prints each number, decimal or hexadecimal behind 0x, as the address whose first part is its most "
        "significant\n"
        "byte. A negative number is the address of the same 32 bits.\n"
        "Without numbers, or for -, reads one a line from standard input.\n"
        "\n"
        "  marlow ip 0xC0A80001 -1\n",
    .options = {},
    .wordsThings = false,
    .negativeNumbers = true,
    .run = run,
};

}  // namespace SharedClasses::marlow
