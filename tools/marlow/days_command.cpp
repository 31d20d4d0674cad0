#include <charconv>
#include <optional>
#include <stdexcept>
#include <string>

#include "platform/text.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"
#include "wording/formatting.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

constexpr std::size_t kDaysOfWeek = 7;
constexpr std::int32_t kLargestMask = 127;

// Whether `text` is a number too short for the text of a week.
bool isShortNumber(std::string_view text) {
  return !text.empty() && text.size() < kDaysOfWeek && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// The mask that `input` is or shows; absent when it is neither.
std::optional<std::int32_t> maskOf(std::string_view input) {
  const std::string_view text = platform::trimmed(input);
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  const std::string_view digits = text.substr(isHexadecimal ? 2 : 0);
  // Blanks can mark days, so that a text is counted with those around it; around a number they only line up columns.
  if (!isHexadecimal && !isShortNumber(text) && platform::codePointCount(input) == kDaysOfWeek) {
    return Utilities::daysOfWeekFromString(input);
  }
  std::uint32_t mask = 0;
  const auto [rest, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), mask, isHexadecimal ? 16 : 10);
  const bool isMask = error == std::errc() && rest == digits.data() + digits.size() && mask <= kLargestMask;
  return isMask ? std::optional(static_cast<std::int32_t>(mask)) : std::nullopt;
}

bool refuse(std::string_view input, const std::string& fault, bool asJSON) {
  if (asJSON) {
    printJSON(Value::Dictionary{{"input", input}, {"error", fault}});
  }
  complain(quoted(input) + ": " + fault);
  return false;
}

bool describe(std::string_view input, bool asJSON) {
  const std::optional<std::int32_t> mask = maskOf(input);
  if (!mask) {
    return refuse(input, "neither a text of seven characters nor a mask, 0 to 127", asJSON);
  }
  std::string text;
  try {
    text = Utilities::daysOfWeekAsString(*mask);
  } catch (const std::out_of_range& missing) {
    return refuse(input, missing.what(), asJSON);
  }
  if (asJSON) {
    printJSON(Value::Dictionary{{"input", input}, {"mask", *mask}, {"text", text}});
  } else {
    printLine(text + ": mask " + std::to_string(*mask) + " (" + hexText(static_cast<std::uint32_t>(*mask)) + ")");
  }
  return true;
}

ExitCode run(const Arguments& arguments) {
  return forEachInput("days", arguments,
                      [&](std::string_view input) { return describe(input, arguments.wantsJSON()); });
}

}  // namespace

const Command kDaysCommand = {
    .name = "days",
    .summary = "translate between masks and texts of weekdays",
    .usage = "[--json] [TEXT|MASK…]",
    .help =
        "Prints days of the week both ways: the text in the user's language, and the mask.\n"
        "TEXT has seven characters, \"-\" for each day that is not chosen; any other character, also a blank, marks\n"
        "its day. Texts that begin with \"-\" stand behind --.\n"
        "MASK is 0 to 127: 64 is the day shown first, 1, 2, 4, 8, 16 and 32 are those behind it. Fewer than seven\n"
        "digits are a mask, whatever blanks stand around them, and what begins with 0x is one in hex. Seven digits\n"
        "are a text.\n"
        "Without any, or for -, reads one a line from standard input and passes over blank lines.\n"
        "\n"
        "  marlow days 62 0x41 S-T----\n"
        "  marlow days -- -MTWTF-\n",
    .options = {},
    .wordsThings = true,
    .run = run,
};

}  // namespace SharedClasses::marlow
