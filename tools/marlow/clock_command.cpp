#include <optional>
#include <string>

#include "platform/clock.h"
#include "platform/date_text.h"
#include "platform/text.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"
#include "tools/marlow/zone_times.h"
#include "wording/formatting.h"

namespace SharedClasses::marlow {

namespace {

using platform::CalendarDate;
using platform::Value;

constexpr OptionSpecification kOptions[] = {{"--format", false}};

// What the command prints of one time.
struct Words {
  std::string time;
  std::string day;  // empty for a day without a word of its own, and for a time of day alone
};

std::optional<std::int32_t> numberBelow(std::string_view digits, std::int32_t end) {
  const bool isNumber = !digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos;
  const std::int32_t number = platform::lenientInteger(digits);
  return isNumber && number < end ? std::optional(number) : std::nullopt;
}

Words wordsOf(platform::Date instant) {
  const CalendarDate date(instant);
  return {Utilities::formattedTime(date), NaturalLanguage::relativeDay(date).value_or("")};
}

// Absent for what is neither a date nor a time of day.
std::optional<Words> wordsOf(std::string_view input) {
  const std::string_view text = platform::trimmed(input);
  if (const std::optional<platform::Date> date = platform::dateFromText(text)) {
    return wordsOf(*date);
  }
  const std::size_t colon = text.find(':');
  if (colon > 2 || text.size() != colon + 3) {
    return std::nullopt;
  }
  const std::optional<std::int32_t> hour = numberBelow(text.substr(0, colon), 24);
  const std::optional<std::int32_t> minute = numberBelow(text.substr(colon + 1), 60);
  return hour && minute ? std::optional<Words>({Utilities::formattedTimeWithHourAndMinute(*hour, *minute), ""})
                        : std::nullopt;
}

void print(std::string_view input, const Words& words, bool asJSON) {
  if (asJSON) {
    printJSON(Value::Dictionary{{"input", input}, {"time", words.time}, {"day", words.day}});
  } else {
    printLine((input.empty() ? "" : std::string(input) + ": ") + words.time +
              (words.day.empty() ? "" : ", " + words.day));
  }
}

bool describe(std::string_view input, bool asJSON) {
  constexpr std::string_view kFault = "neither a date such as 2001-12-31T23:59:59Z nor a time such as 14:05";
  if (const std::optional<Words> words = wordsOf(input)) {
    print(input, *words, asJSON);
    return true;
  }
  if (asJSON) {
    printJSON(Value::Dictionary{{"input", input}, {"error", kFault}});
  }
  complain(quoted(input) + ": " + std::string(kFault));
  return false;
}

// The style of the user who has `chosen`. The older setting says nothing of it; any other chosen format was made or taken
// by the one that tells the style, so that nothing is asked, or logged, a second time.
bool prefers12Hours(const Utilities::TimeFormat& chosen) {
  if (chosen.source == "NSTimeFormatString") {
    return Utilities::userPrefers12HourClock();
  }
  return chosen.pattern.find('a') != std::string::npos || chosen.pattern.find("%p") != std::string::npos;
}

void printFormat(bool asJSON) {
  const Utilities::TimeFormat format = Utilities::chosenTimeFormat();
  const bool has12Hours = prefers12Hours(format);
  if (asJSON) {
    printJSON(
        Value::Dictionary{{"format", format.pattern}, {"source", format.source}, {"prefers12HourClock", has12Hours}});
    return;
  }
  printLine("format " + format.pattern + ", from " + (format.source.empty() ? "nothing that is set" : format.source));
  printLine(std::string("the user prefers a ") + (has12Hours ? "12" : "24") + "-hour clock");
}

ExitCode run(const Arguments& arguments) {
  const bool asJSON = arguments.wantsJSON();
  complainOfUnknownTZ("clock");
  if (arguments.has("--format")) {
    printFormat(asJSON);
  }
  if (!arguments.operands().empty()) {
    return forEachInput("clock", arguments, [&](std::string_view input) { return describe(input, asJSON); });
  }
  if (!arguments.has("--format")) {
    const platform::Date now = platform::Clock::current().now();
    print(asJSON ? platform::dateText(now).value_or("") : "", wordsOf(now), asJSON);
  }
  return ExitCode::AllWell;
}

}  // namespace

const Command kClockCommand = {
    .name = "clock",
    .summary = "write times as the user's clock shows them",
    .usage = "[--json] [--format] [DATE…]",
    .help =
        "Prints the present time, or each one given, in the user's 12- or 24-hour style and in the local time zone, "
        "with\n"
        "the word for today, tomorrow or yesterday.\n"
        "DATE is a date such as 2001-12-31T23:59:59Z or a time of today such as 14:05; for -, one a line is read from\n"
        "standard input.\n"
        "  --format  prints which format is used, the setting that it comes from, and the style; then the times given\n"
        "The formats and words come from the settings: AppleICUTimeFormatStrings and others, dictionaries and lists,\n"
        "which marlow prefs shows and does not set. They are kept in the file that marlow prefs path names. Without\n"
        "any, LC_ALL, LC_TIME or LANG decide, and without these it is a 12-hour clock.\n"
        "\n"
        "  marlow clock --format\n"
        "  LC_TIME=de_DE.UTF-8 marlow clock 14:05\n",
    .options = kOptions,
    .wordsThings = true,
    .run = run,
};

}  // namespace SharedClasses::marlow
