#include "wording/formatting.h"

#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <stdexcept>

#include "platform/user_locale.h"
#include "tests/support/captured_log.h"
#include "tests/support/hand_moved_clock.h"
#include "tests/support/main_bundle.h"
#include "tests/support/memory_store.h"
#include "tests/support/pinned_zone.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool.h"
#include "wording/time_pattern.h"

namespace SharedClasses::Utilities {

using platform::CalendarDate;
using platform::Value;

// A winter's night in Berlin, nobody's locale, the shipped texts.
class Formatting : public testing::Test {
 protected:
  Formatting() {
    platform::Clock::setCurrent(&mClock);
    setLocale({"", "", ""});
    tests::useShippedTexts();
  }
  ~Formatting() override { setLocale({"", "", ""}), platform::Clock::setCurrent(nullptr); }

  static void setLocale(const std::array<const char*, 3>& names) {
    ::setenv("LC_ALL", names[0], 1), ::setenv("LC_TIME", names[1], 1), ::setenv("LANG", names[2], 1);
  }
  using MonthDayHourMinute = std::array<int, 4>;
  CalendarDate setNow(const MonthDayHourMinute& at) {
    const CalendarDate now(2001, at[0], at[1], at[2], at[3], 0, platform::TimeZone::named("Europe/Berlin"));
    mClock.move(platform::spanOfSeconds(now.date().secondsSinceReference) - mClock.steadyTime() +
                std::chrono::hours(1));
    return now;
  }

  const tests::PinnedZone mZone{"Europe/Berlin"};
  tests::HandMovedClock mClock;
};

TEST(AbbreviateSize, IsCutNeverRoundedAndShowsTenthsBelowAThousand) {
  std::istringstream rows(
      "0 0  5 0.5  10 1  999 99  1000 1KB  1050 1KB  1500 1.5KB  9999 9.9KB  10999 10KB  999999 999KB  1000000 1MB "
      "999999999 999MB  1000000000 1GB  18446744073709551615 18446744073GB");
  std::string text;
  for (std::uint64_t size = 0; rows >> size >> text;) {
    EXPECT_EQ(abbreviateSize(size), text) << size;
  }
  EXPECT_EQ(text, "18446744073GB");
}

TEST_F(Formatting, MasksAndTextsOfDaysAreTheSameSevenBitsAndMissingLettersARangeError) {
  // No two days are in the same ones of the first three.
  const std::pair<std::int32_t, const char*> rows[] = {
      {106, "S-T-T-S"}, {51, "-MT--FS"}, {60, "---WTFS"}, {~127, "-------"}, {-1, "SMTWTFS"}};
  for (const auto& [mask, text] : rows) {
    EXPECT_EQ(daysOfWeekAsString(mask), text);
    EXPECT_EQ(daysOfWeekFromString(text), mask & 127) << text;
  }
  EXPECT_EQ(daysOfWeekFromString(std::nullopt), 0);
  EXPECT_EQ(daysOfWeekFromString("xxxxxx") + daysOfWeekFromString("xxxxxxxx"), 0) << "six and eight";
  EXPECT_EQ(daysOfWeekFromString("-–é-\xFF- "), 2 + 1 + 8 + 32) << "characters, not bytes; only the hyphen is none";
  const tests::TemporaryFolder folder;
  folder.write("en.lproj/Common.strings", "\"keyDaysOfWeek\" = \"Ã©Ă\";");
  const tests::MainBundle bundle(folder.path());
  EXPECT_EQ(daysOfWeekAsString(64 + 1 + 2), "é\x02----") << "the low bytes C3, A9 and 02";
  EXPECT_EQ(daysOfWeekAsString(64), "\uFFFD------");
  EXPECT_THROW(static_cast<void>(daysOfWeekAsString(4)), std::out_of_range);
}

TEST(TimeWithPattern, PrintsFieldsOfLettersAndAllElseAsItIs) {
  constexpr TimeOfDay kAfternoon{.hour = 14, .minute = 5, .second = 9, .millisecond = 78};
  const std::tuple<const char*, TimeOfDay, std::string, std::string> rows[] = {
      {"midnight", {}, "h K H k a", "12 0 0 24 am"},
      {"forenoon", {11, 59}, "hh:mm a H k", "11:59 am 11 11"},
      {"noon", {12}, "h K k a", "12 0 12 pm"},
      {"beyond the ranges", {INT32_MAX, -1, 60, 1000}, "H:m:s.SSS", "23:0:59.999"},
      {"afternoon and widths", kAfternoon, "h K k 3H 0m 1m 12m mmm 2mmm 9aa", "2 2 14 014 5 5 105 005 005 pm"},
      {"seconds and fraction", kAfternoon, "ss s.S SS SSS SSSSS 2S", "09 9.0 07 078 07800 07"},
      {"other letters and digits", kAfternoon, "yyyy-MM-dd'T'H%2x! 7 12:H4", "--T14%! 7 12:144"},
      {"quotes", kAfternoon, "H 'o''clock' ''m'' 'hm", "14 o'clock '5' hm"},
      {"other scripts and a lone quote", kAfternoon, "a h點m分\xE9\xBB'", "pm 2點5分\uFFFD"},
  };
  for (const auto& [name, time, pattern, text] : rows) {
    EXPECT_EQ(timeWithPattern(pattern, time, {"am", "pm"}), text) << name;
  }
  EXPECT_EQ(timeWithPattern("a", {}, {"\xFFv", ""}), "\uFFFDv");
  EXPECT_EQ(timeWithPattern("a2a-ah", {}, {std::string(65536, 'x'), ""}).size(), 2 * 65536 + std::size_t{1});
}

TEST_F(Formatting, TheFirstSettingThatAnswersDecidesTheLocaleComesLastAndTheMenuBarsFlagIsLogged) {
  // Locale, outcome and settings: short format, format of the menu bar, of the older bar, its flag, older format.
  std::vector<std::tuple<const char*, std::string, std::vector<Value>>> rows{
      {"", "h:mm a from , 2:05 PM, 12", {}},
      {"en_US", "h:mm a from LC_TIME, 2:05 PM, 12", {}},
      {"de_DE", "K:mm 'h' a from AppleICUTimeFormatStrings, 1, 2:05 h PM, 12", {"K:mm 'h' a", "HH:mm", "", "", "h:mm"}},
      {"en_US", "2H:mm from com.apple.menuextra.clock, DateFormat, 14:05, 24", {"", "EEE HH:mm", "%p"}},
      {"de_DE", "h:mm a from com.apple.MenuBarClock, TimeFormatString, 2:05 PM, 12", {{}, {}, "%I:%M %p", 1}},
      {"", "2H:mm from com.apple.MenuBarClock, Use24HourClock, 14:05, 24, logged 1", {{}, {}, {}, true}},
      {"", "2H:mm from com.apple.MenuBarClock, Use24HourClock, 14:05, 24, logged 0", {{}, {}, {}, 0}},
      {"de_DE", "h:mm.:%S from NSTimeFormatString, 2:05.:%0, 24", {"", "", "", "", "h:mm:%S.:%S"}},
      {"de_DE", "2H:mm from LC_TIME, 14:05, 24", {"", "", "", "", "HH:mm:%S"}},
  };
  for (const char* unusable : {"h:", "h.mm", "h:mm d", "h:mm E", "h:mm z", "h:mm M", "h:mm y", "h:mm Y"}) {
    rows.emplace_back("", "2H:mm from AppleICUTimeFormatStrings, 1, 14:05, 24", std::vector<Value>{unusable});
  }
  for (auto& [locale, expected, set] : rows) {
    set.resize(5);
    const Value::Dictionary brief{{"1", set[0]}}, menu{{"DateFormat", set[1]}};
    const Value::Dictionary bar{{"TimeFormatString", set[2]}, {"Use24HourClock", set[3]}};
    const tests::StandardStore store({{"AppleICUTimeFormatStrings", brief},
                                      {"com.apple.menuextra.clock", menu},
                                      {"com.apple.MenuBarClock", bar},
                                      {"NSTimeFormatString", set[4]}});
    setLocale({locale, "", ""});
    const TimeFormat format = chosenTimeFormat();
    std::string found = format.pattern + " from " + format.source + ", " + formattedTimeWithHourAndMinute(14, 5);
    const tests::CapturedLog log;
    found += userPrefers12HourClock() ? ", 12" : ", 24";
    for (const std::string& message : log.messages()) {
      found += ", logged " + message;
    }
    EXPECT_EQ(found, expected) << locale;
  }
}

TEST_F(Formatting, LocalesThatAreNotInstalledAreToldByTheirTerritoryOrLanguage) {
  // As the C library's locales have it, whether installed or not.
  const std::pair<std::array<const char*, 3>, std::optional<bool>> rows[] = {
      {{"en", "de_DE", "de_DE"}, true},   {{"", "ar_EG.utf8", "de_DE"}, true}, {{"", "", "fr_CA.UTF-8"}, false},
      {{"en_GB", "", ""}, false},         {{"sq_MK", "", ""}, true},           {{"a/../b", "", ""}, false},
      {{"C.utf8", "", ""}, std::nullopt}, {{"@", "", ""}, std::nullopt},
  };
  for (const auto& [names, has12Hours] : rows) {
    setLocale(names);
    EXPECT_EQ(platform::userLocaleHas12HourClock(), has12Hours) << testing::PrintToString(names);
  }
}

TEST_F(Formatting, TimesOfTodayAreCarriedOnAndMovedOutOfTheGap) {
  setNow({3, 25, 23, 0});  // 2:00 became 3:00
  // A text in the place of a dictionary and an empty word say nothing.
  tests::StandardStore store({{"AppleICUTimeFormatStrings", "HH:mm"}, {"NSAMPMDesignation", Value::List{"", "n"}}});
  EXPECT_EQ(dateWithHourAndMinute(14, 5).description(), "2001-03-25 14:05:00 +0200");
  EXPECT_EQ(dateWithHourAndMinute(24, -1).description(), "2001-03-25 23:59:00 +0200");
  EXPECT_EQ(formattedTimeWithHourAndMinute(2, 30) + formattedTimeWithHourAndMinute(14, 5), "3:30 AM2:05 n");
  EXPECT_EQ(dateWithHourAndMinute(INT32_MAX, INT32_MIN).timeZone()->name(), "Europe/Berlin");
}

TEST_F(Formatting, RelativeDaysAreDaysOfTheCalendarNotSpansOf24Hours) {
  // The present and another time; the thirteenth month is the next year's first.
  const std::tuple<MonthDayHourMinute, MonthDayHourMinute, const char*> rows[] = {
      {{6, 21, 0, 0}, {6, 21, 23, 59}, "Today"},    {{6, 21, 0, 0}, {6, 20, 23, 59}, "Yesterday"},
      {{3, 25, 0, 30}, {3, 26, 0, 15}, "Tomorrow"}, {{12, 31, 9, 0}, {13, 1, 9, 0}, "Tomorrow"},
      {{6, 21, 23, 59}, {6, 23, 0, 0}, ""},         {{6, 21, 9, 0}, {18, 21, 9, 0}, ""},
  };
  const tests::StandardStore store;
  for (const auto& [now, other, word] : rows) {
    const CalendarDate date = setNow(other);
    setNow(now);
    EXPECT_EQ(NaturalLanguage::relativeDay(date), word) << date.description();
    EXPECT_EQ(NaturalLanguage::relativeDay(date.date()), word) << date.description();
  }
  const CalendarDate sameInstant = setNow({6, 21, 20, 0}).inTimeZone(platform::TimeZone::fixedOffset(12 * 3600));
  EXPECT_EQ(NaturalLanguage::relativeDay(sameInstant), "Tomorrow") << "a date's day is that of its own zone";
  store->settings = {{"NSThisDayDesignations", Value::List{"dnes večer", "x"}}, {"NSNextDayDesignations", "x"}};
  EXPECT_EQ(NaturalLanguage::relativeDay(mClock.now()), "Dnes Večer");
  EXPECT_EQ(NaturalLanguage::relativeDay(sameInstant), "Tomorrow") << "no list";
  const tests::MainBundle none("/nonexistent");
  EXPECT_EQ(NaturalLanguage::relativeDay(sameInstant), std::nullopt);
}

TEST(WordingCommands, TakeOperandsOrLinesAndNameWhatIsBad) {
  const std::tuple<std::vector<std::string>, const char*, const char*, int> rows[] = {
      {{"size"}, "1000\n\n18446744073709551616\n", "1000: 1KB\n", 1},
      {{"days"}, "0x42\n128\n-MTWTF-", "S-T----: mask 66 (0x42)\n-MTWTF-: mask 31 (0x1f)\n", 1},
      {{"days"}, "     65\n", "SM-----: mask 65 (0x41)\n", 0},
      {{"clock", "--json", "14:05"}, "", "{\"day\":\"\",\"input\":\"14:05\",\"time\":\"2:05 PM\"}\n", 0},
      {{"clock", "-"}, "24:00\n14:5\n-1:00\n00:00\n", "00:00: 12:00 AM\n", 1},
      {{"clock", "--format"}, "", "format h:mm a, from nothing that is set\nthe user prefers a 12-hour clock\n", 0},
  };
  for (const auto& [arguments, input, output, exitCode] : rows) {
    SCOPED_TRACE(arguments.front() + " " + arguments.back());
    const tests::ToolResult result = tests::runTool(arguments, input);
    EXPECT_EQ(result.output, output);
    EXPECT_EQ(result.exitCode, exitCode);
  }
}

}  // namespace SharedClasses::Utilities
