#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/clock.h"
#include "platform/date_text.h"
#include "platform/log.h"
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

// As people know it: the library calls the locale "LC_TIME", whichever variable names it.
std::string sourceText(const std::string& source) {
  return source.empty() ? "nothing that is set" : source == "LC_TIME" ? "the locale (LC_ALL, LC_TIME or LANG)" : source;
}

void printFormat(bool asJSON) {
  const auto [format, has12Hours] = Utilities::chosenTimeStyle();
  if (asJSON) {
    printJSON(
        Value::Dictionary{{"format", format.pattern}, {"source", format.source}, {"prefers12HourClock", has12Hours}});
    return;
  }
  printLine("format " + format.pattern + ", from " + sourceText(format.source));
  printLine(std::string("the user prefers a ") + (has12Hours ? "12" : "24") + "-hour clock");
}

// The library logs the bare answer of "Use24HourClock" whenever it asks for that. Here it is told once, with its name.
class ClockLog : public platform::LogSink {
 public:
  // Learns the answer; to be called while this is the sink.
  void learnAnswer() {
    const Utilities::TimeFormat asked = Utilities::preferredTimeFormat();
    mAnswer = asked.source.ends_with(kSetting) ? asked.pattern : std::string();
    std::erase(mEarlier, *mAnswer);
    for (const std::string& message : std::exchange(mEarlier, {})) {
      complain(message);
    }
  }

  void write(std::string_view message) override {
    if (!mAnswer) {
      mEarlier.emplace_back(message);
    } else if (message != *mAnswer) {
      complain(message);
    } else if (!std::exchange(mIsTold, true)) {
      complain("clock: the setting " + std::string(kSetting) + " is " + quoted(message));
    }
  }

 private:
  static constexpr std::string_view kSetting = "com.apple.MenuBarClock, Use24HourClock";

  std::optional<std::string> mAnswer;  // empty where that setting is not asked
  std::vector<std::string> mEarlier;   // what was logged before the answer was known
  bool mIsTold = false;
};

ExitCode printTimes(const Arguments& arguments) {
  const bool asJSON = arguments.wantsJSON();
  if (arguments.has("--format")) {
    printFormat(asJSON);
    if (arguments.operands().empty()) {
      return ExitCode::AllWell;
    }
  }
  complainOfUnknownTZ("clock");
  if (!arguments.operands().empty()) {
    return forEachInput("clock", arguments, [&](std::string_view input) { return describe(input, asJSON); });
  }
  const platform::Date now = platform::Clock::current().now();
  print(asJSON ? platform::dateText(now).value_or("") : "", wordsOf(now), asJSON);
  return ExitCode::AllWell;
}

ExitCode run(const Arguments& arguments) {
  const auto log = std::make_shared<ClockLog>();
  const std::shared_ptr<platform::LogSink> previous = platform::setLogSink(log);
  log->learnAnswer();
  const ExitCode code = printTimes(arguments);
  platform::setLogSink(previous);
  return code;
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
        "DATE is a date such as 2001-12-31T23:59:59Z or a time of today such as 14:05. Standard input is read for -\n"
        "alone, one DATE a line; without DATE it is the present time.\n"
        "  --format  prints which format is used, the setting that it comes from, and the style; then the times given\n"
        "Formats and words come from the settings. NSTimeFormatString is a text, which marlow prefs sets; the others,\n"
        "AppleICUTimeFormatStrings among them, are dictionaries and lists, to be written into the file that marlow\n"
        "prefs path names, and texts in their place are ignored. Words that are not set are in the language of the\n"
        "texts. Without one of those dictionaries LC_ALL, LC_TIME or LANG decide between 12 and 24 hours, and without\n"
        "these it is a 12-hour clock. Where Use24HourClock decides, standard error tells once what it is set to.\n"
        "\n"
        "  marlow clock --format\n"
        "  LC_TIME=de_DE.UTF-8 marlow clock 14:05\n",
    .options = kOptions,
    .wordsThings = true,
    .run = run,
};

}  // namespace SharedClasses::marlow
