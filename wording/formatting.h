// Short texts of numbers as the user's system shows them: sizes, days of the week, times on a 12- or 24-hour clock, and
// the words for today, tomorrow and yesterday.
// Nothing is cached: settings, clock and local zone are asked at every call. No child process is started. Safe on any
// thread, as long as none changes the environment meanwhile: LC_ALL, LC_TIME, LANG and TZ are read at every call.
//
// Settings are those of the standard store (platform/settings_store.h): the user's, behind them the machine's. All keys
// lie side by side there. What a system keeps in a domain of its own is a dictionary under the domain's name:
//   "AppleICUTimeFormatStrings"   dictionary: "1" is the short time format, such as "h:mm a"
//   "com.apple.menuextra.clock"   dictionary: "DateFormat", the format of the clock in the menu bar
//   "com.apple.MenuBarClock"      dictionary: "TimeFormatString", a format; "Use24HourClock", a number or a text
//   "NSTimeFormatString"          a time format as text
//   "NSAMPMDesignation"           list of texts: the words for the halves of the day, morning first
//   "NSThisDayDesignations", "NSNextDayDesignations", "NSPriorDayDesignations"   lists of texts, the first counts
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/calendar_date.h"
#include "platform/date.h"

namespace SharedClasses::Utilities {

// `abbreviateSize:`
// `size` in bytes with a decimal unit, cut and never rounded; one decimal below ten units, where it is not 0: "1.5KB",
// "12MB", "123GB".
// Kept: below 1000 bytes there is no unit and a tenth of the number: 500 gives "50", 5 gives "0.5".
[[nodiscard]] std::string abbreviateSize(std::uint64_t size);

// `daysOfWeekAsString:`
// Seven characters: the letter of each day of `days` from the text "keyDaysOfWeek", "-" for the others. Bit 6 is the
// first day shown, bits 0 to 5 are the second to the seventh; other bits count for nothing. The text is asked for only
// where a day is chosen.
// Throws std::out_of_range when "keyDaysOfWeek" has no letter for one of the days.
// Kept: of a letter only the low byte is taken, so that letters have to be ASCII. With others the text may show wrong
// letters, U+FFFD for malformed pieces or "-" for a chosen day, hold a zero byte, and be shorter than seven.
[[nodiscard]] std::string daysOfWeekAsString(std::int32_t days);

// `daysOfWeekFromString:`
// The days that `text` shows, in the bits of above: each character but "-" marks its day, whatever the language. 0 for
// an absent text and one that is not of seven characters.
[[nodiscard]] std::int32_t daysOfWeekFromString(std::optional<std::string_view> text);

// A time format and where it is from.
struct TimeFormat {
  std::string pattern;
  // The key of the setting, with ", " and the entry where it is a dictionary; "LC_TIME" for the user's locale,
  // whichever variable names it; empty where nobody says anything.
  std::string source;
};

// The user's time format, by which 12 and 24 hours are told apart. The first that is neither absent nor empty of: entry
// "1" of "AppleICUTimeFormatStrings"; "DateFormat" of "com.apple.menuextra.clock"; "TimeFormatString" and
// "Use24HourClock" of "com.apple.MenuBarClock"; the user's locale (platform/user_locale.h) with "h:mm a" or "HH:mm".
// Empty when none answers.
// Numbers count as the digits that Value::integerValue() gives: of their whole part, brought into the range; true and
// false as 1 and 0. What is neither text nor number counts as absent. An answer of "Use24HourClock" is logged.
// Kept: "NSTimeFormatString" is not asked, though times may be written with it; where it alone is set, the locale
// answers.
[[nodiscard]] TimeFormat preferredTimeFormat();

// Whether the user's time format has an "a" anywhere, or "%p". True where there is none. Logs as preferredTimeFormat().
// Kept: "Use24HourClock" is read the same way, so that 1 and 0 both mean 24 hours; and a quoted word with an "a" makes
// any format one of 12 hours.
[[nodiscard]] bool userPrefers12HourClock();

// The format that times are written with: entry "1" of "AppleICUTimeFormatStrings", else "NSTimeFormatString", without
// its first ":%S", if it has a minute ("m"), a 12-hour hour ("h:" or "K:") and nothing of a date or a zone (d, E, z, M,
// y, Y); else "h:mm a" or "2H:mm" as userPrefers12HourClock() says, with the source that it asked. Logs where it asks.
// Kept: no 24-hour format is used as it stands; all end up as "2H:mm". The 2 is a width and is not printed.
// Kept: one with "h:" needs no "a", so that "h:mm" prints 2:05 and 14:05 alike; a second ":%S" stays and prints ":%0".
[[nodiscard]] TimeFormat chosenTimeFormat();

// How the user reads times: both answers from one look at the settings, so that what is logged is logged once.
struct TimeStyle {
  TimeFormat format;    // chosenTimeFormat()
  bool has12HourClock;  // userPrefers12HourClock()
};
[[nodiscard]] TimeStyle chosenTimeStyle();

// `formattedTimeWithHour:andMinute:`
// The time of dateWithHourAndMinute() in the chosen format (wording/time_pattern.h says what its letters mean): "2:05
// PM", "14:05". The words for the halves of the day are those of the settings, else "keyAM" and "keyPM". The formatter
// is the library's own, so that no version of the operating system needs the older way with "%H" and "%p". Logs as
// chosenTimeFormat().
// Kept: where neither the settings nor the texts have a word, its place is empty and the blank stays: 02:05 and 14:05
// both give "2:05 ".
[[nodiscard]] std::string formattedTimeWithHourAndMinute(std::int32_t hour, std::int32_t minute);

// The same for the time of day that `date` shows.
[[nodiscard]] std::string formattedTime(const platform::CalendarDate& date);

// `dateWithHour:andMinute:`
// Today at that time of the local zone. Numbers out of their range are carried on; a time that today does not have
// moves forward (platform/calendar_date.h).
[[nodiscard]] platform::CalendarDate dateWithHourAndMinute(std::int32_t hour, std::int32_t minute);

}  // namespace SharedClasses::Utilities

// What is added to dates.
namespace SharedClasses::NaturalLanguage {

// The word for the day of `date`, as the calendar of its own zone counts days, if that is today, tomorrow or yesterday
// of the local zone; the empty text for any other day. The first of the designations that the settings hold, else
// "keyToday", "keyTomorrow" or "keyYesterday"; each word with a capital letter and the rest of it in lower case. Absent
// when neither has one.
[[nodiscard]] std::optional<std::string> relativeDay(const platform::CalendarDate& date);

// The same for an instant, in the local zone.
[[nodiscard]] std::optional<std::string> relativeDay(platform::Date date);

}  // namespace SharedClasses::NaturalLanguage
