#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

#include "platform/clock.h"
#include "platform/machine_location.h"
#include "platform/saturating.h"
#include "platform/terminal.h"
#include "platform/text.h"
#include "shared/preferences.h"
#include "sun/sun_times.h"
#include "tools/marlow/command.h"
#include "tools/marlow/output.h"
#include "tools/marlow/sun_chart.h"
#include "tools/marlow/zone_times.h"

namespace SharedClasses::marlow {

namespace {

using platform::CalendarDate;
using platform::Location;
using platform::Value;

constexpr OptionSpecification kOptions[] = {{"--latitude", true}, {"--longitude", true}, {"--zone", true},
                                            {"--date", true},     {"--year", true},      {"--utc", false}};

constexpr double kLargestLatitude = 90;
constexpr double kLargestLongitude = 180;
constexpr int kMinutesPerDay = 1440;
constexpr double kHoursPerDay = 24;
constexpr double kSecondsPerHour = 3600;
constexpr double kSecondsPerDay = 86400;
constexpr double kDegreesPerHour = 15;
constexpr int kUsualTerminalWidth = 80;

struct Place {
  Location location;
  std::string_view origin;  // who says so
};

// Where, and as which clocks show it.
struct Request {
  Place place;
  bool inUTC = false;
  platform::TimeZonePointer zone;  // UTC, or the local one
};

struct SunDay {
  CalendarDate noon;
  std::optional<CalendarDate> sunrise;
  std::optional<CalendarDate> sunset;
  std::string_view words;      // what the sun does
  std::optional<int> minutes;  // between sunrise and sunset; a whole day or none where there is neither
};

// The number under `option`, between -largest and largest; absent with a complaint.
std::optional<double> degreesOf(const Arguments& arguments, std::string_view option, double largest) {
  const std::string text = arguments.value(option).value_or("");
  double degrees = 0;
  const char* const begin = text.data() + (text.starts_with('+') && !text.starts_with("+-") ? 1 : 0);
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(begin, end, degrees);
  // Written so that what is not a number fails too.
  if (error != std::errc() || rest != end || !(std::abs(degrees) <= largest)) {
    const std::string limit = platform::numberText(largest);
    complain("sun: " + std::string(option) + " " + quoted(text) + " is not a number from -" + limit + " to " + limit);
    return std::nullopt;
  }
  return degrees;
}

std::optional<Place> givenPlace(const Arguments& arguments) {
  if (!arguments.has("--latitude") || !arguments.has("--longitude")) {
    complain("sun: --latitude and --longitude are given together or not at all");
    return std::nullopt;
  }
  const std::optional<double> latitude = degreesOf(arguments, "--latitude", kLargestLatitude);
  const std::optional<double> longitude = degreesOf(arguments, "--longitude", kLargestLongitude);
  if (!latitude || !longitude) {
    return std::nullopt;
  }
  return Place{{.latitude = *latitude, .longitude = *longitude}, "as given"};
}

// The coordinate that the user has told the programs, read without counting as a start of one; 0 where there is
// nothing. Absent with a complaint where it is none.
std::optional<double> preferredDegrees(const std::string& key, double largest) {
  const double degrees = Preferences::valueInStore(*platform::SettingsStore::standard(), key).realValue().value_or(0);
  if (std::abs(degrees) <= largest) {
    return degrees;
  }
  complain("sun: the settings " + key + "Degrees, " + key + "Minutes and " + key + "Seconds make " +
           platform::numberText(degrees) + ", which is beyond " + platform::numberText(largest) +
           "; the place of the preferences is not taken");
  return std::nullopt;
}

std::optional<Place> preferredPlace() {
  const std::optional<double> latitude = preferredDegrees("latitude", kLargestLatitude);
  const std::optional<double> longitude = preferredDegrees("longitude", kLargestLongitude);
  const Location location{.latitude = latitude.value_or(0), .longitude = longitude.value_or(0)};
  const bool isPlace = latitude && longitude && location != Location();
  return isPlace ? std::optional(Place{location, "as the preferences say"}) : std::nullopt;
}

std::optional<Place> placeOfZone(const std::string& name) {
  const std::optional<Location> location = platform::principalPlaceOfZone(name);
  return location ? std::optional(Place{*location, "the zone's principal place"}) : std::nullopt;
}

// To be asked before another zone than the machine's counts as the local one.
std::optional<Place> placeOfMachine() {
  const Location location = platform::machineLocation();
  if (location == Location()) {
    return std::nullopt;
  }
  const std::optional<Place> ofZone = placeOfZone(platform::TimeZone::local()->name());
  return ofZone && ofZone->location == location ? ofZone : Place{location, "as the machine's location says"};
}

std::optional<Place> placeOf(const Arguments& arguments, const std::optional<Place>& ofMachine) {
  if (arguments.has("--latitude") || arguments.has("--longitude")) {
    return givenPlace(arguments);
  }
  const std::optional<std::string> zone = arguments.value("--zone");
  // A zone that was asked for stands for a place; the user's own preferences are about another.
  if (std::optional<Place> place = zone ? placeOfZone(*zone) : std::nullopt) {
    return place;
  }
  if (std::optional<Place> place = preferredPlace()) {
    return place;
  }
  if (!ofMachine) {
    complain("sun: " + (zone ? quoted(*zone) + " has no place of its own, and " : "") +
             "this machine's place is not known; give one with --latitude and --longitude");
  }
  return ofMachine;
}

// `text` as a whole number of decimal digits alone; absent when it is none.
std::optional<int> digitsOf(std::string_view text) {
  if (text.empty() || !std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; })) {
    return std::nullopt;
  }
  return platform::lenientInteger(text);
}

std::optional<int> yearOf(std::string_view text) {
  return text.size() == 4 ? digitsOf(text) : std::nullopt;
}

// Noon of a day such as "2026-06-21"; absent with a complaint.
std::optional<CalendarDate> noonOf(const std::string& text, const platform::TimeZonePointer& zone) {
  const std::string_view view = text;
  const bool hasShape = view.size() == 10 && view[4] == '-' && view[7] == '-';
  const std::optional<int> year = hasShape ? yearOf(view.substr(0, 4)) : std::nullopt;
  const std::optional<int> month = hasShape ? digitsOf(view.substr(5, 2)) : std::nullopt;
  const std::optional<int> day = hasShape ? digitsOf(view.substr(8)) : std::nullopt;
  if (!year || !month || !day) {
    complain("sun: --date " + quoted(text) + " is not a day such as 2026-06-21");
    return std::nullopt;
  }
  // A zone that moved over the date line has left a day out.
  const CalendarDate noon(*year, *month, *day, 12, 0, 0, zone);
  if (noon.monthOfYear() != *month || noon.dayOfMonth() != *day) {
    complain("sun: there is no " + text + " in " + zone->name());
    return std::nullopt;
  }
  return noon;
}

// When the sun is highest on the day of `noon`: hours of its clock, 0 to 24, to a quarter of an hour.
double solarNoon(const CalendarDate& noon, double longitude, bool inUTC) {
  const double ahead = inUTC ? 0 : noon.secondsFromGMT() / kSecondsPerHour;
  // Beyond the date line calendars are a day on or back.
  return 12 + std::remainder(ahead - longitude / kDegreesPerHour, kHoursPerDay);
}

// The event of the daylight around the day's solar noon, which may be on the day before or after; absent where it does
// not take place.
std::optional<CalendarDate> eventOf(const CalendarDate& noon, const Location& location, bool wantSunrise, bool inUTC) {
  std::optional<CalendarDate> date = noon;
  // The clock as it stands at the day's noon, which is what the library takes for the day: nothing is left to adjust.
  const bool asOnClocks = noon.isDaylightSavingTime();
  const std::int32_t status = wantSunrise ? Utilities::sunriseFromLatitude({.latitude = location.latitude,
                                                                            .longitude = location.longitude,
                                                                            .wantLocalTime = !inUTC,
                                                                            .adjustForDST = asOnClocks,
                                                                            .toSunrise = &date})
                                          : Utilities::sunsetFromLatitude({.latitude = location.latitude,
                                                                           .longitude = location.longitude,
                                                                           .wantLocalTime = !inUTC,
                                                                           .adjustForDST = asOnClocks,
                                                                           .toSunset = &date});
  if (status != Utilities::kSunTimeFound) {
    return std::nullopt;
  }
  // The library tells a time of day; sunrise is the one in the half day before solar noon, sunset the one after it.
  const double middle = solarNoon(noon, location.longitude, inUTC) + (wantSunrise ? -6 : 6);
  const double days = std::round((middle - date->hourOfDay() - date->minuteOfHour() / 60.0) / kHoursPerDay);
  return CalendarDate({date->date().secondsSinceReference + days * kSecondsPerDay}, date->timeZone());
}

int minutesBetween(const CalendarDate& sunrise, const CalendarDate& sunset) {
  const double seconds = sunset.date().secondsSinceReference - sunrise.date().secondsSinceReference;
  return platform::saturatingCast<int>(std::clamp(seconds, 0.0, kSecondsPerDay) / 60);
}

std::optional<int> dayLength(const CalendarDate& noon, const Location& location) {
  const std::optional<CalendarDate> sunrise = eventOf(noon, location, true, true);
  const std::optional<CalendarDate> sunset = eventOf(noon, location, false, true);
  return sunrise && sunset ? std::optional(minutesBetween(*sunrise, *sunset)) : std::nullopt;
}

// Whether the sun stays up on a day on which it neither rises nor sets. Told from the days nearer to the equator, where
// it does both and days are longer than half a day exactly when it stays up here. Not from the nearest: a day that
// lasts almost a day and one that lasts almost none look alike on a clock.
bool staysUp(const CalendarDate& noon, const Location& location) {
  constexpr double kFirstStep = 0.1;   // degrees
  constexpr double kLargestStep = 25;  // more than from the poles to where the sun rises all year
  const auto lengthNearer = [&](double step) {
    const double latitude = std::copysign(std::abs(location.latitude) - step, location.latitude);
    return dayLength(noon, {.latitude = latitude, .longitude = location.longitude});
  };
  double step = kFirstStep;
  while (step < kLargestStep && !lengthNearer(step)) {
    step *= 2;
  }
  return lengthNearer(2 * step).value_or(0) > kMinutesPerDay / 2;
}

SunDay sunDay(const CalendarDate& noon, const Request& request) {
  const Location& location = request.place.location;
  SunDay day{.noon = noon,
             .sunrise = eventOf(noon, location, true, request.inUTC),
             .sunset = eventOf(noon, location, false, request.inUTC),
             .words = "rises and sets",
             .minutes = std::nullopt};
  if (day.sunrise && day.sunset) {
    day.minutes = minutesBetween(*day.sunrise, *day.sunset);
  } else if (day.sunrise || day.sunset) {
    day.words = day.sunrise ? "rises and does not set" : "sets and does not rise";
  } else {
    const bool up = staysUp(noon, location);
    day.words = up ? "does not set" : "does not rise";
    day.minutes = up ? kMinutesPerDay : 0;
  }
  return day;
}

std::string durationText(int minutes) {
  const std::string hours = std::to_string(minutes / 60);
  const std::string rest = std::to_string(minutes % 60);
  return std::string(2 - std::min<std::size_t>(2, hours.size()), '0') + hours + (rest.size() < 2 ? ":0" : ":") + rest;
}

// "52.5° N"; to four decimals, some ten metres.
std::string degreesText(double degrees, std::string_view positive, std::string_view negative) {
  return platform::numberText(std::round(std::abs(degrees) * 1e4) / 1e4) + "° " +
         std::string(degrees < 0 ? negative : positive);
}

std::string placeText(const Request& request) {
  const Location& location = request.place.location;
  return degreesText(location.latitude, "N", "S") + ", " + degreesText(location.longitude, "E", "W") + " (" +
         std::string(request.place.origin) + "), times of " + request.zone->name();
}

// How an event on another day than that of `noon` is marked: in a table by a sign, in a sentence by words.
struct DayMark {
  std::string_view sign = " ";
  std::string_view words;
};

DayMark dayMark(const CalendarDate& event, const CalendarDate& noon) {
  const std::string day = dayText(noon);
  const std::string eventDay = dayText(event);
  if (eventDay == day) {
    return {};
  }
  return eventDay < day ? DayMark{"-", " (the day before)"} : DayMark{"+", " (after midnight)"};
}

// Six characters.
std::string cellText(const std::optional<CalendarDate>& event, const CalendarDate& noon) {
  return event ? clockText(*event) + std::string(dayMark(*event, noon).sign) : "--:-- ";
}

std::string sentencePart(const CalendarDate& event, const CalendarDate& noon) {
  return clockText(event) + std::string(dayMark(event, noon).words);
}

void printRow(const SunDay& day) {
  const bool isUsual = day.sunrise && day.sunset;
  printLine(dayText(day.noon) + "    " + cellText(day.sunrise, day.noon) + "  " + cellText(day.sunset, day.noon) +
            "  " + (day.minutes ? durationText(*day.minutes) : "--:--") +
            (isUsual ? "" : "  the sun " + std::string(day.words)));
}

void printAsJSON(const SunDay& day, const Request& request) {
  Value::Dictionary fields{{"date", dayText(day.noon)},
                           {"latitude", request.place.location.latitude},
                           {"longitude", request.place.location.longitude},
                           {"zone", request.zone->name()},
                           {"sun", day.words}};
  if (day.sunrise) {
    fields.insert({{"sunrise", clockText(*day.sunrise)}, {"sunriseInstant", day.sunrise->date()}});
  }
  if (day.sunset) {
    fields.insert({{"sunset", clockText(*day.sunset)}, {"sunsetInstant", day.sunset->date()}});
  }
  if (day.minutes) {
    fields.insert({"dayLengthMinutes", *day.minutes});
  }
  printJSON(std::move(fields));
}

void describe(const CalendarDate& noon, const Request& request, bool asJSON) {
  const SunDay day = sunDay(noon, request);
  if (asJSON) {
    printAsJSON(day, request);
    return;
  }
  std::string line = dayText(noon) + " at " + placeText(request) + ":";
  if (!day.sunrise || !day.sunset) {
    line += " the sun " + std::string(day.words);
  }
  line += day.sunrise ? (day.sunset ? " sunrise " : ", sunrise ") + sentencePart(*day.sunrise, noon) : "";
  line += day.sunset ? ", sunset " + sentencePart(*day.sunset, noon) : "";
  line += day.sunrise && day.sunset ? ", day length " + durationText(*day.minutes) : "";
  printLine(line);
}

void printChart(int year, const std::vector<std::optional<double>>& hours) {
  const int width = platform::terminalWidth(platform::StandardStream::Output).value_or(kUsualTerminalWidth);
  const std::vector<std::string> lines =
      dayLengthChart(year, hours, static_cast<std::size_t>(width), terminalShowsUTF8());
  if (!lines.empty()) {
    printLine("");
  }
  for (const std::string& line : lines) {
    printLine(line);
  }
}

void describeYear(int year, const Request& request, bool asJSON) {
  if (!asJSON) {
    printLine("The year " + std::to_string(year) + " at " + placeText(request));
    printLine("Day           Sunrise Sunset  Length");
  }
  std::vector<std::optional<double>> hours;
  const int days = platform::isLeapYear(year) ? 366 : 365;
  for (int number = 1; number <= days; ++number) {
    const CalendarDate noon(year, 1, number, 12, 0, 0, request.zone);
    if (noon.dayOfYear() != number) {
      hours.emplace_back();  // a day that the zone left out
      continue;
    }
    const SunDay day = sunDay(noon, request);
    hours.push_back(day.minutes ? std::optional(*day.minutes / 60.0) : std::nullopt);
    if (asJSON) {
      printAsJSON(day, request);
    } else {
      printRow(day);
    }
  }
  if (!asJSON && platform::isTerminal(platform::StandardStream::Output)) {
    printChart(year, hours);
  }
}

// What is wrong with the options together; empty where nothing is.
std::string_view faultOf(const Arguments& arguments) {
  if (!arguments.operands().empty()) {
    return "what is wanted is said by options alone; see marlow sun --help";
  }
  if (arguments.has("--zone") && arguments.has("--utc")) {
    return "--zone and --utc exclude each other";
  }
  if (arguments.has("--date") && arguments.has("--year")) {
    return "--date and --year exclude each other";
  }
  return {};
}

ExitCode run(const Arguments& arguments) {
  if (const std::string_view fault = faultOf(arguments); !fault.empty()) {
    complain("sun: " + std::string(fault));
    return ExitCode::CannotRun;
  }
  const std::optional<Place> ofMachine = placeOfMachine();
  if (const auto name = arguments.value("--zone"); name && !useLocalZone(*name)) {
    complain("sun: " + noSuchZoneText(*name));
    return ExitCode::CannotRun;
  }
  const bool inUTC = arguments.has("--utc");
  if (!inUTC) {
    complainOfUnknownTZ("sun");
  }
  const auto zone = inUTC ? platform::TimeZone::utc() : platform::TimeZone::local();
  if (const auto text = arguments.value("--year")) {
    const std::optional<int> year = yearOf(*text);
    if (!year) {
      complain("sun: --year " + quoted(*text) + " is not a year of four digits");
      return ExitCode::CannotRun;
    }
    const std::optional<Place> place = placeOf(arguments, ofMachine);
    if (place) {
      describeYear(*year, {*place, inUTC, zone}, arguments.wantsJSON());
    }
    return place ? ExitCode::AllWell : ExitCode::CannotRun;
  }
  const CalendarDate now(platform::Clock::current().now(), zone);
  const std::optional<CalendarDate> noon = noonOf(arguments.value("--date").value_or(dayText(now)), zone);
  const std::optional<Place> place = noon ? placeOf(arguments, ofMachine) : std::nullopt;
  if (place) {
    describe(*noon, {*place, inUTC, zone}, arguments.wantsJSON());
  }
  return place ? ExitCode::AllWell : ExitCode::CannotRun;
}

}  // namespace

const Command kSunCommand = {
    .name = "sun",
    .summary = "tell sunrise and sunset of a day or a year",
    .usage = "[--latitude DEG --longitude DEG] [--zone NAME] [--date DAY | --year YEAR] [--utc] [--json]",
    .help =
        "Prints sunrise, sunset and the length of the day, today or on another day, or a table for a year; on a "
        "terminal\n"
        "with a picture of the year below.\n"
        "  --latitude, --longitude  the place in degrees, positive north and east; without them the place is that of "
        "a\n"
        "                           zone that is asked for, else that of the preferences, else that of the machine\n"
        "  --zone NAME              times of another zone, such as Europe/Berlin\n"
        "  --date DAY               such as 2026-06-21\n"
        "  --year YEAR              four digits\n"
        "  --utc                    times in UTC\n"
        "A sunrise on the day before and a sunset after midnight are marked so, in a table by - and +; with --json\n"
        "sunriseInstant and sunsetInstant tell.\n"
        "A length of 24 or 0 hours is that of a day on which the sun does not set, or does not rise.\n"
        "\n"
        "  marlow sun --latitude 52.52 --longitude 13.4 --zone Europe/Berlin --date 2026-06-21\n"
        "  marlow sun --year 2026 --json\n",
    .options = kOptions,
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
