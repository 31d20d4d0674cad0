#include "wording/formatting.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <sstream>
#include <stdexcept>
#include <tuple>

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
namespace {

using platform::CalendarDate;
using platform::Value;

// Noon of a summer's day in Berlin, nobody's locale, the shipped texts.
class Formatting : public testing::Test {
 protected:
  void SetUp() override {
    platform::Clock::setCurrent(&mClock);
    setNow({2001, 6, 21, 12, 0, 0, mBerlin});
    setLocale("");
    tests::useShippedTexts();
  }
  void TearDown() override {
    setLocale("");
    platform::Clock::setCurrent(nullptr);
  }

  static void setLocale(const char* all, const char* time = "", const char* language = "") {
    ::setenv("LC_ALL", all, 1), ::setenv("LC_TIME", time, 1), ::setenv("LANG", language, 1);
  }
  void setNow(const CalendarDate& now) {
    mClock.move(platform::spanOfSeconds(now.date().secondsSinceReference) -
                platform::spanOfSeconds(mClock.now().secondsSinceReference));
  }

  const tests::PinnedZone mZone{"Europe/Berlin"};
  const platform::TimeZonePointer mBerlin = platform::TimeZone::named("Europe/Berlin");
  tests::HandMovedClock mClock;
};

TEST(AbbreviateSize, IsCutNeverRoundedAndShowsTenthsBelowAThousand) {
  std::istringstream rows(
      "0 0  5 0.5  10 1  999 99  1000 1KB  1050 1KB  1500 1.5KB  9999 9.9KB  10000 10KB  10999 10KB  999999 999KB "
      "1000000 1MB  999999999 999MB  1000000000 1GB  18446744073709551615 18446744073GB");
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
  folder.write("en.lproj/Common.strings", "\"keyDaysOfWeek\" = \"ABĂé\";");
  const tests::MainBundle bundle(folder.path());
  EXPECT_EQ(daysOfWeekAsString(64 + 1 + 2), "AB\x02----");
  EXPECT_EQ(daysOfWeekAsString(4), "---\uFFFD---");
  EXPECT_THROW(static_cast<void>(daysOfWeekAsString(8)), std::out_of_range);
}

TEST(TimeWithPattern, AgreesWithTheCLibraryAndAllButLettersIsItself) {
  for (std::tm time{}; time.tm_hour < 24; time.tm_hour += ++time.tm_min / 60, time.tm_min %= 60) {
    char expected[64];
    ASSERT_NE(std::strftime(expected, sizeof expected, "%I:%M %p|%H:%M:%S|%k", &time), 0U);
    EXPECT_EQ(timeWithPattern("hh:mm a|2H:2m:ss|", {.hour = time.tm_hour, .minute = time.tm_min}, {"AM", "PM"}) +
                  (time.tm_hour < 10 ? " " : "") + timeWithPattern("H", {.hour = time.tm_hour}, {}),
              expected);
  }
  constexpr TimeOfDay kMidnight;
  constexpr TimeOfDay kAfternoon{.hour = 14, .minute = 5, .second = 9, .millisecond = 78};
  const std::tuple<const char*, TimeOfDay, std::string, std::string> rows[] = {
      {"midnight", kMidnight, "h K H k a", "12 0 0 24 am"},
      {"afternoon and widths", kAfternoon, "h K k 3H 0m 1m 12m mmm 2mmm 9aa", "2 2 14 014 5 5 105 005 005 pm"},
      {"fraction", kAfternoon, "s.S SS SSS SSSSS 2S", "9.0 07 078 07800 07"},
      {"other letters and digits", kAfternoon, "yyyy-MM-dd'T'H%2x! 7 12:H4", "--T14%! 7 12:144"},
      {"quotes", kAfternoon, "H 'o''clock' ''m'' 'hm", "14 o'clock '5' hm"},
      {"other scripts and a lone quote", kAfternoon, "a h點m分\xE9\xBB'", "pm 2點5分\uFFFD"},
  };
  for (const auto& [name, time, pattern, text] : rows) {
    EXPECT_EQ(timeWithPattern(pattern, time, {"am", "pm"}), text) << name;
  }
  std::string many;
  for (int i = 0; i < 10000; ++i) {
    many += "a:";
  }
  EXPECT_LT(timeWithPattern(many, kMidnight, {std::string(1000, 'x'), ""}).size(), std::size_t{100000});
}

TEST_F(Formatting, TheFirstSettingThatAnswersDecidesTheLocaleComesLastAndTheMenuBarsFlagIsLogged) {
  using Settings = std::array<const char*, 4>;  // short, menu, bar, older; null for what is not set
  const std::string fromShort = "AppleICUTimeFormatStrings, 1", fromMenu = "com.apple.menuextra.clock, DateFormat";
  const std::string fromBar = "com.apple.MenuBarClock, TimeFormatString", fromOlder = "NSTimeFormatString";
  // Format, source and 14:05 come last.
  const std::tuple<const char*, const char*, Settings, bool, std::string, std::string, std::string> rows[] = {
      {"nothing at all", "", {}, true, "h:mm a", "", "2:05 PM"},
      {"American", "en_US.UTF-8", {}, true, "h:mm a", "LC_TIME", "2:05 PM"},
      {"12 hours", "de_DE", {"K:mm 'h' a", "HH:mm"}, true, "K:mm 'h' a", fromShort, "2:05 h PM"},
      {"no minutes", "de_DE", {"h: a"}, true, "h:mm a", fromShort, "2:05 PM"},
      {"no colon", "de_DE", {"h.mm a"}, true, "h:mm a", fromShort, "2:05 PM"},
      {"a year", "de_DE", {"h:mm a Y"}, true, "h:mm a", fromShort, "2:05 PM"},
      {"empty", "en_US", {"", "EEE HH:mm", "%p"}, false, "2H:mm", fromMenu, "14:05"},
      {"menu bar", "de_DE", {nullptr, nullptr, "%I:%M %p"}, true, "h:mm a", fromBar, "2:05 PM"},
      {"older", "de_DE", {"", "", "", "h:mm:%S:%S"}, false, "h:mm:%S", fromOlder, "2:05:%0"},
      {"older behind newer", "de_DE", {"h:mm a", "", "", "K:mm"}, true, "h:mm a", fromShort, "2:05 PM"},
      {"older, unusable", "de_DE", {"", "", "", "HH:mm:%S"}, false, "2H:mm", "LC_TIME", "14:05"},
  };
  for (const auto& [name, locale, settings, has12Hours, format, source, time] : rows) {
    SCOPED_TRACE(name);
    const tests::StandardStore store({{"AppleICUTimeFormatStrings", Value::Dictionary{{"1", settings[0]}}},
                                      {"com.apple.menuextra.clock", Value::Dictionary{{"DateFormat", settings[1]}}},
                                      {"com.apple.MenuBarClock", Value::Dictionary{{"TimeFormatString", settings[2]}}},
                                      {"NSTimeFormatString", settings[3]}});
    setLocale(locale);
    EXPECT_EQ(userPrefers12HourClock(), has12Hours);
    EXPECT_EQ(chosenTimeFormat().pattern, format);
    EXPECT_EQ(chosenTimeFormat().source, source);
    EXPECT_EQ(formattedTimeWithHourAndMinute(14, 5), time);
  }
  setLocale("");
  tests::StandardStore words({{"AppleICUTimeFormatStrings", "HH:mm"}, {"NSAMPMDesignation", Value::List{"v", "n"}}});
  EXPECT_EQ(formattedTimeWithHourAndMinute(14, 5), "2:05 n") << "a text where a dictionary is asked for says nothing";
  for (const Value& value : {Value(true), Value(0)}) {
    const tests::StandardStore store({{"com.apple.MenuBarClock", Value::Dictionary{{"Use24HourClock", value}}}});
    const tests::CapturedLog log;
    EXPECT_FALSE(userPrefers12HourClock());
    EXPECT_EQ(log.messages(), std::vector<std::string>{value == Value(0) ? "0" : "1"});
  }
}

TEST_F(Formatting, LocalesThatAreNotInstalledAreToldByTheirTerritoryOrLanguage) {
  setLocale("", "ar_EG", "de_DE");
  EXPECT_EQ(platform::userLocaleHas12HourClock(), true);
  setLocale("", "", "de_DE");
  EXPECT_EQ(platform::userLocaleHas12HourClock(), false);
  // As the C library's locales have it, whether installed or not.
  const std::pair<const char*, std::optional<bool>> rows[] = {
      {"en", true},         {"en_GB", false},         {"fr_CA.UTF-8", false}, {"sq_MK", true},
      {"ar_EG.utf8", true}, {"C.utf8", std::nullopt}, {"@", std::nullopt},    {"a/../b", false}};
  for (const auto& [name, has12Hours] : rows) {
    EXPECT_EQ(platform::localeHas12HourClock(name), has12Hours) << name;
  }
}

TEST_F(Formatting, TimesOfTodayAreCarriedOnAndMovedOutOfTheGap) {
  setNow(CalendarDate(2001, 3, 25, 23, 0, 0, mBerlin));  // 2:00 became 3:00
  const tests::StandardStore store;
  EXPECT_EQ(dateWithHourAndMinute(14, 5).description(), "2001-03-25 14:05:00 +0200");
  EXPECT_EQ(dateWithHourAndMinute(24, -1).description(), "2001-03-25 23:59:00 +0200");
  EXPECT_EQ(formattedTimeWithHourAndMinute(2, 30), "3:30 AM");
  EXPECT_EQ(dateWithHourAndMinute(INT32_MAX, INT32_MIN).timeZone()->name(), "Europe/Berlin");
}

TEST_F(Formatting, RelativeDaysAreDaysOfTheCalendarNotSpansOf24Hours) {
  const auto at = [this](int month, int day, int hour, int minute) {
    return CalendarDate(2001, month, day, hour, minute, 0, mBerlin);
  };
  const std::tuple<const char*, CalendarDate, CalendarDate, const char*> rows[] = {
      {"a minute ago", at(6, 21, 0, 0), at(6, 20, 23, 59), "Yesterday"},
      {"almost two days on", at(6, 21, 0, 0), at(6, 22, 23, 59), "Tomorrow"},
      {"from a day of 23 hours", at(3, 25, 0, 30), at(3, 26, 0, 15), "Tomorrow"},
      {"over the year", at(12, 31, 9, 0), at(13, 1, 9, 0), "Tomorrow"},
      {"two days", at(6, 21, 23, 59), at(6, 23, 0, 0), ""},
      {"a year", at(6, 21, 9, 0), at(18, 21, 9, 0), ""},
  };
  const tests::StandardStore store;
  for (const auto& [name, now, date, word] : rows) {
    setNow(now);
    EXPECT_EQ(NaturalLanguage::relativeDay(date), word) << name;
    EXPECT_EQ(NaturalLanguage::relativeDay(date.date()), word) << name;
  }
  setNow(at(6, 21, 20, 0));
  const CalendarDate sameInstant = dateWithHourAndMinute(20, 0).inTimeZone(platform::TimeZone::fixedOffset(12 * 3600));
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
      {{"days", "--", "0x42", "-MTWTF-"}, "", "S-T----: mask 66 (0x42)\n-MTWTF-: mask 31 (0x1f)\n", 0},
      {{"days"}, "128\n127", "SMTWTFS: mask 127 (0x7f)\n", 1},
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

}  // namespace
}  // namespace SharedClasses::Utilities
