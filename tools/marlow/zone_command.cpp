#include <vector>

#include "platform/clock.h"
#include "sun/daylight_saving.h"
#include "tools/marlow/command.h"
#include "tools/marlow/output.h"
#include "tools/marlow/zone_times.h"

namespace SharedClasses::marlow {

namespace {

using platform::CalendarDate;
using platform::Value;

// What the library says of the local zone.
struct ZoneFacts {
  CalendarDate now;
  bool usesDaylightSaving = Utilities::localsUseDaylightSaving();
  std::int32_t delta = Utilities::localDaylightSavingDelta();
  std::int32_t firstDay = Utilities::firstDayOfDaylightSaving();
  std::int32_t lastDay = Utilities::lastDayOfDaylightSaving();
  std::optional<CalendarDate> nextTransition{};
};

ZoneFacts factsOfLocalZone() {
  const platform::Date now = platform::Clock::current().now();
  ZoneFacts facts{.now = CalendarDate(now)};
  if (const auto next = facts.now.timeZone()->nextTransition(now)) {
    facts.nextTransition = CalendarDate(*next, facts.now.timeZone());
  }
  return facts;
}

std::string abbreviation(const CalendarDate& date) {
  return std::string(date.timeZone()->abbreviation(date.date()));
}

// A day of the present year by its number.
std::string dayOfYearText(const ZoneFacts& facts, std::int32_t day) {
  return dayText(CalendarDate(facts.now.yearOfCommonEra(), 1, day, 12, 0, 0, facts.now.timeZone()));
}

// "2026-06-21 12:00 CEST, +0200"
std::string momentText(const CalendarDate& date) {
  return dayText(date) + " " + clockText(date) + " " + abbreviation(date) + ", " + offsetText(date);
}

std::string periodText(const ZoneFacts& facts) {
  if (facts.firstDay == 0) {
    return "none this year";
  }
  return "from day " + std::to_string(facts.firstDay) + ", " + dayOfYearText(facts, facts.firstDay) +
         (facts.lastDay == 0
              ? " through the end of the year"
              : ", to day " + std::to_string(facts.lastDay) + ", " + dayOfYearText(facts, facts.lastDay));
}

void print(const std::string& name, const ZoneFacts& facts) {
  printLine(name + ": " + momentText(facts.now) +
            (facts.now.isDaylightSavingTime() ? ", daylight saving time" : ", standard time"));
  printLine(std::string("  locals use daylight saving: ") + (facts.usesDaylightSaving ? "yes" : "no") + "; delta " +
            std::to_string(facts.delta) + " s");
  printLine("  daylight saving time: " + periodText(facts));
  printLine("  next transition: " + (facts.nextTransition ? momentText(*facts.nextTransition) : std::string("none")));
}

void printAsJSON(const std::string& name, const ZoneFacts& facts) {
  Value::Dictionary fields{{"zone", name},
                           {"now", facts.now.date()},
                           {"day", dayText(facts.now)},
                           {"time", clockText(facts.now)},
                           {"abbreviation", abbreviation(facts.now)},
                           {"secondsFromGMT", facts.now.secondsFromGMT()},
                           {"isDaylightSavingTime", facts.now.isDaylightSavingTime()},
                           {"localsUseDaylightSaving", facts.usesDaylightSaving},
                           {"localDaylightSavingDelta", facts.delta},
                           {"firstDayOfDaylightSaving", facts.firstDay},
                           {"lastDayOfDaylightSaving", facts.lastDay}};
  if (facts.firstDay != 0) {
    fields.insert({"firstDate", dayOfYearText(facts, facts.firstDay)});
  }
  if (facts.lastDay != 0) {
    fields.insert({"lastDate", dayOfYearText(facts, facts.lastDay)});
  }
  if (facts.nextTransition) {
    fields.insert({"nextTransition", facts.nextTransition->date()});
  }
  printJSON(std::move(fields));
}

void describeLocalZone(const std::string& name, bool asJSON) {
  const ZoneFacts facts = factsOfLocalZone();
  if (asJSON) {
    printAsJSON(name, facts);
  } else {
    print(name, facts);
  }
}

ExitCode run(const Arguments& arguments) {
  if (arguments.operands().empty()) {
    complainOfUnknownTZ("zone");
    describeLocalZone(platform::TimeZone::local()->name(), arguments.wantsJSON());
  }
  ExitCode code = ExitCode::AllWell;
  for (const std::string& name : arguments.operands()) {
    if (useLocalZone(name)) {
      describeLocalZone(name, arguments.wantsJSON());
      continue;
    }
    code = ExitCode::BadInput;
    const std::string fault = noSuchZoneText(name);
    complain("zone: " + fault);
    if (arguments.wantsJSON()) {
      printJSON(Value::Dictionary{{"zone", name}, {"error", fault}});
    }
  }
  return code;
}

}  // namespace

const Command kZoneCommand = {
    .name = "zone",
    .summary = "tell the facts of time zones",
    .usage = "[--json] [NAME…]",
    .help =
        "Prints for each zone, or for the local one, the time there and its offset, whether daylight saving time is "
        "on,\n"
        "what the library says of daylight saving, and when the clocks change next.\n"
        "A name is one of the system's, such as Europe/Berlin, or a rule such as EST5EDT,M3.2.0,M11.1.0.\n"
        "Rules count westward: UTC+2 is two hours behind UTC, UTC-2 two hours ahead.\n"
        "Whether locals use daylight saving is asked of a northern summer: in the south the answer is no, the delta "
        "is\n"
        "negative and daylight saving time begins on day 1. The last day is missing where it lasts through day 365.\n"
        "\n"
        "  marlow zone\n"
        "  marlow zone Europe/Berlin Australia/Sydney\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
