// Zones beside the C library's, which reads the same files and rules by itself.
#include "platform/time_zone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
#include <map>
#include <sstream>

#include "platform/linux/local_zone.h"
#include "tests/support/fork.h"
#include "tests/support/pinned_zone.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::platform {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
namespace fs = std::filesystem;

constexpr const char* kFolder = "/usr/share/zoneinfo";
constexpr std::int64_t kUnixReference = 978307200;
constexpr std::int64_t kDay = 86400;

// The start of a day, in seconds since 1970.
std::int64_t unixDay(int year, int month = 1, int day = 1) {
  return std::chrono::sys_days(std::chrono::year(year) / month / day).time_since_epoch().count() * kDay;
}

Date dateOf(std::int64_t unixTime) {
  return {static_cast<double>(unixTime - kUnixReference)};
}

std::string bytesOf(const fs::path& file) {
  std::stringstream bytes;
  bytes << std::ifstream(file, std::ios::binary).rdbuf();
  return bytes.str();
}

// The compiled files of this machine, without those that only lead to another.
std::vector<std::string> zoneNames() {
  std::vector<std::string> names;
  for (auto entry = fs::recursive_directory_iterator(kFolder); entry != fs::recursive_directory_iterator(); ++entry) {
    const std::string name = fs::relative(entry->path(), kFolder).string();
    if (name == "posix" || name == "right") {
      entry.disable_recursion_pending();
    } else if (entry->is_regular_file() && !entry->is_symlink() && bytesOf(entry->path()).starts_with("TZif")) {
      names.push_back(name);
    }
  }
  EXPECT_GT(names.size(), 100U) << "the Debian package tzdata is not installed";
  return names;
}

// Seconds ahead of UTC, whether that is daylight saving time, abbreviation.
using Shown = std::tuple<std::int64_t, bool, std::string>;

Shown shownBy(const TimeZone& zone, std::int64_t unixTime) {
  const Date instant = dateOf(unixTime);
  return {zone.secondsFromGMT(instant), zone.isDaylightSavingTime(instant), std::string(zone.abbreviation(instant))};
}

// The wall clocks around the transition at `unixTime`: before it, and in a gap or an overlap, the clock before counts.
void expectWallClocksAround(const TimeZone& zone, std::int64_t unixTime, std::int64_t before, std::int64_t after) {
  const std::int64_t first = unixTime + std::min(before, after);
  const std::int64_t last = unixTime + std::max(before, after);
  for (const std::int64_t wall : {first - 1, first, (first + last) / 2, last - 1, last}) {
    EXPECT_EQ(zone.instantOfWallClock(wall - kUnixReference) + kUnixReference, wall - (wall < last ? before : after));
  }
}

// All transitions, and every tenth day in case one is missing. Runs in a process of its own, whose TZ it sets.
void expectAsCLibrary(const TimeZone& zone) {
  const std::int64_t kEnd = unixDay(2460);  // more than the 400 years of the calendar's cycle
  // Where the data may mark the winter: those ahead of UTC save daylight, in the years given.
  const std::map<std::string, std::pair<int, int>> kMarksDiffer = {{"Europe/Dublin", {1972, 9999}},
                                                                   {"Africa/Casablanca", {2019, 2087}},
                                                                   {"IST-1GMT0,M10.5.0,M3.5.0/1", {1970, 9999}},
                                                                   {"Eire", {1972, 9999}},
                                                                   {"Africa/El_Aaiun", {2019, 2087}},
                                                                   {"Africa/Windhoek", {9999, 9999}}};
  const auto differing = kMarksDiffer.find(zone.name());
  ::setenv("TZ", zone.name().c_str(), 1);
  ::tzset();
  const auto expectSame = [&](std::int64_t time) {
    const Shown shown = shownBy(zone, time);
    tm expected{};
    ::localtime_r(&time, &expected);
    bool isDaylight = expected.tm_isdst > 0;
    if (differing != kMarksDiffer.end()) {
      const auto& [since, until] = differing->second;
      isDaylight = unixDay(since) <= time && time < unixDay(until) ? expected.tm_gmtoff > 0 : std::get<bool>(shown);
    }
    EXPECT_EQ(shown, Shown(expected.tm_gmtoff, isDaylight, expected.tm_zone)) << time;
    return expected.tm_gmtoff;
  };
  for (std::int64_t time = 0; time < kEnd && !testing::Test::HasFailure(); time += 10 * kDay) {
    expectSame(time);
  }
  for (auto next = zone.nextTransition(dateOf(0)); next && *next < dateOf(kEnd) && !testing::Test::HasFailure();) {
    const std::int64_t time = std::llround(next->secondsSinceReference) + kUnixReference;
    EXPECT_NE(shownBy(zone, time - 1), shownBy(zone, time));
    const std::int64_t before = expectSame(time - 1);
    expectWallClocksAround(zone, time, before, expectSame(time));
    next = zone.nextTransition(*next);
  }
}

TEST(TimeZone, EveryZoneOfTheMachineAndEveryRuleShowsWhatTheCLibraryShows) {
  std::istringstream rules(
      "EST5 XYZ-12:34:56 <+0330>-3:30 EST5EDT4,M3.2.0,M11.1.0/3:30:15 ABC-1DEF,J59/0,J300 ABC-1DEF,J60,J61 "
      "ABC3DEF,58,300/25:30:15 ABC3DEF,59/+4,60 <-02>2<-01>,M3.5.0/-1,M10.5.0/0 AAA4BBB,M10.2.0/0,M3.3.0/0 "
      "LHS-10:30LHD-11,M10.1.0,M4.1.0 AAA4BBB,M3.2.6/167,M11.1.0/-167 IST-1GMT0,M10.5.0,M3.5.0/1");
  const int status = tests::statusInFork([&] {
    std::vector<std::string> names = zoneNames();
    names.insert(names.end(), std::istream_iterator<std::string>(rules), {});
    for (const std::string& name : names) {
      SCOPED_TRACE(name);
      expectAsCLibrary(*TimeZone::named(name));
    }
    return testing::Test::HasFailure() ? 1 : 0;
  });
  EXPECT_EQ(status, 0);
}

TEST(TimeZone, DaylightSavingMeansAheadWhateverTheMark) {
  const std::tuple<const char*, const char*, std::int64_t, bool> kRows[] = {
      {"Dublin, standard time all the year", "Europe/Dublin", unixDay(1969, 7, 15), false},
      {"Dublin, the winter that ended it", "Europe/Dublin", unixDay(1972, 1, 15), false},
      {"Dublin after many cycles", "Europe/Dublin", unixDay(20'000, 7, 15), true},
      {"rule alone, summer long ago", "IST-1GMT0,M10.5.0,M3.5.0/1", unixDay(1000, 7, 15), true},
      {"Casablanca, between the old marks and the new", "Africa/Casablanca", unixDay(2018, 12, 15), true},
      {"Prague, winter behind winter time", "Europe/Prague", unixDay(1947, 1, 15), false},
      {"always, by a rule that ends when it begins", "EST5EDT,0/0,J365/25", unixDay(2024, 1), true},
      {"no dates given, second Sunday of March", "ABC5DEF", unixDay(2024, 3, 10) + 7 * 3600, true},
      {"no dates given, first Sunday of November", "ABC5DEF", unixDay(2024, 11, 3) + 6 * 3600, false},
      {"never, by a rule that begins when it ends", "EST5EDT,59/1,59/2", unixDay(2024, 3), false},
  };
  for (const auto& [name, zone, time, expected] : kRows) {
    EXPECT_EQ(TimeZone::named(zone)->isDaylightSavingTime(dateOf(time)), expected) << name;
  }
}

TEST(TimeZone, NothingChangesInFixedZonesAndAtTheEndsOfTime) {
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(TimeZone::fixedOffset(3600)->nextTransition({0}), std::nullopt);
  EXPECT_EQ(TimeZone::fromRule("EST5EDT,0/0,J365/25")->nextTransition({0}), std::nullopt);
  const TimeZonePointer berlin = TimeZone::named("Europe/Berlin");
  EXPECT_EQ(berlin->nextTransition(dateOf(unixDay(9999, 7))), dateOf(unixDay(9999, 10, 31) + 3600));
  EXPECT_EQ(berlin->nextTransition(dateOf(unixDay(9999, 12))), std::nullopt);
  EXPECT_EQ(berlin->nextTransition({-INFINITY}), dateOf(-2422054408));  // 1893-04-01 in mean time, as zdump has it
  EXPECT_EQ(berlin->abbreviation({INFINITY}), "CET");
  EXPECT_EQ(berlin->abbreviation({NAN}), "CET");
  EXPECT_LT(berlin->instantOfWallClock(-kMost - 1), -370'000'000'000);
  EXPECT_GT(berlin->instantOfWallClock(kMost), 3'000'000'000'000);
  EXPECT_EQ(TimeZone::fixedOffset(kMost)->name(), "GMT+168:00");
  EXPECT_EQ(TimeZone::fixedOffset(-kMost - 1)->secondsFromGMT({0}), -604800);
  EXPECT_EQ(TimeZone::fixedOffset(-12645)->abbreviation({0}), "-033045");
}

TEST(TimeZone, TextsThatAreNoZones) {
  std::istringstream texts(
      "Nowhere/City ../zoneinfo/UTC Europe/../UTC /usr/share/zoneinfo/UTC Europe UTC/ Europe//Berlin ./UTC zone.tab "
      "AB5 <AB>5 <ABC5 ABC25 ABC5:60 ABC5:0:60 ABC5DE ABC5DEF, ABC5DEF,J0,J1 ABC5DEF,J366,J1 ABC5DEF,366,1 ABC5; "
      "ABC5DEF,M0.1.0,1 ABC5DEF,M13.1.0,1 ABC5DEF,M1.0.0,1 ABC5DEF,M1.6.0,1 ABC5DEF,M1.1.7,1 ABC5DEF,M1.1,1 "
      "ABC5DEF,1/168,2 ABC5DEF,1/,2 ABC5DEF,1 ABC5DEF,1,2,3 ABC5DEF99999999999999999999,1,2");
  std::string text;
  do {
    EXPECT_EQ(TimeZone::named(text), nullptr) << text;
  } while (texts >> text);
}

std::string number(std::int64_t value, std::size_t width) {
  std::string bytes;
  while (width-- > 0) {
    bytes += static_cast<char>(value >> (8 * width));
  }
  return bytes;
}

// One hour ahead until `start`, two until 1000 seconds into July 1972, one again; with the first of all leap seconds.
std::string compiledBlock(std::int64_t start, std::size_t width) {
  std::string bytes = "TZif2" + std::string(15, '\0');
  for (const int count : {0, 0, 1, 2, 2, 8}) {
    bytes += number(count, 4);
  }
  bytes += number(start, width) + number(78796801 + 1000, width) + "\1\0"s;
  bytes += number(3600, 4) + "\0\0"s + number(7200, 4) + "\1\4"s + "ABC\0DEF\0"s;
  return bytes + number(78796800, width) + number(1, 4);
}

std::string compiledFile() {
  return compiledBlock(-5, 4) + compiledBlock(0, 8) + "\nABC-1\n";
}

TEST(TimeZone, LeapSecondsOfAFileDoNotShowAndFilesThatContradictThemselvesAreRefused) {
  // Where in the good file other bytes stand, and whether it still makes a zone.
  const std::tuple<const char*, std::size_t, std::string, bool> kRows[] = {
      {"version 1", 4, "\0"s, true},
      {"first time at the end of the numbers", 126, "\x80"s, true},
      {"last time at the end of the numbers", 134, "\x7F"s, true},
      {"no name", 155, "\7", true},
      {"a rule that nobody understands", 181, ";", true},
      {"no magic", 3, "F", false},
      {"marks of standard time for some clocks alone", 109, "\1", false},
      {"more times than bytes", 114, "\xFF\xFF\xFF\xFF", false},
      {"no clocks", 121, "\0"s, false},
      {"more clocks than a byte counts", 120, "\1", false},
      {"a time twice", 126, number(78796801 + 1000, 8), false},
      {"a clock that is not there", 142, "\2", false},
      {"more than a week behind", 144, "\x80", false},
      {"mark of 2", 148, "\2", false},
      {"name without an end", 163, "X", false},
      {"name that would drive a terminal", 157, "\x1B", false},
      {"leap seconds that swap times", 172, number(0x7FFFFFFF, 4), false},
      {"no line before the rule", 176, "X", false},
  };
  for (const auto& [name, place, bytes, isZone] : kRows) {
    SCOPED_TRACE(name);
    const auto zone = TimeZone::fromCompiledFile(compiledFile().replace(place, bytes.size(), bytes), "Test");
    ASSERT_EQ(zone != nullptr, isZone);
    EXPECT_EQ(isZone ? zone->secondsFromGMT(dateOf(1)) : 7200, 7200);
  }
  for (std::size_t length = 0; length < compiledFile().size(); ++length) {
    EXPECT_EQ(TimeZone::fromCompiledFile(compiledFile().substr(0, length), "Test"), nullptr) << length;
  }
  EXPECT_EQ(TimeZone::fromCompiledFile(compiledFile() + std::string(1 << 20, ' '), "Test"), nullptr);
  const TimeZonePointer good = TimeZone::fromCompiledFile(compiledFile(), "Test");
  EXPECT_EQ(good->nextTransition(dateOf(-1)), dateOf(0));
  EXPECT_EQ(good->nextTransition(dateOf(0)), dateOf(78796800 + 1000));
}

TEST(TimeZone, TheLocalZoneIsWhatTZSays) {
  const std::pair<const char*, const char*> kRows[] = {
      {"Europe/Berlin", "Europe/Berlin"},
      {":Asia/Tokyo", "Asia/Tokyo"},
      {":/usr/share/zoneinfo/Asia/Tokyo", "Asia/Tokyo"},
      {"<+0330>-3:30", "<+0330>-3:30"},
      {"", "UTC"},
      {"../../../etc/localtime", "UTC"},
      {"/nowhere", "UTC"},
  };
  for (const auto& [tz, name] : kRows) {
    const tests::PinnedZone pinned(tz);
    EXPECT_EQ(TimeZone::local()->name(), name) << tz;
    EXPECT_EQ(TimeZone::local(), TimeZone::local()) << tz;
  }
  EXPECT_EQ(timeZoneOfFile(kFolder + "/Asia/Tokyo"s, "Other")->name(), "Other");
}

TEST(TimeZone, AChangedFileOfTheLocalZoneIsNoticedWithinASecond) {
  const tests::TemporaryFolder folder;
  folder.write("zoneinfo/Europe/Berlin", bytesOf(kFolder + "/Europe/Berlin"s));
  const std::string path = folder.path() + "/localtime";
  LocalZone local(path);
  auto now = 5s;
  const auto zoneAfter = [&](std::chrono::seconds passed) { return local.zone(nullptr, now += passed); };
  EXPECT_EQ(zoneAfter(0s)->name(), "UTC");
  fs::create_symlink("zoneinfo/Europe/Berlin", path);
  EXPECT_EQ(zoneAfter(0s)->name(), "UTC");
  EXPECT_EQ(zoneAfter(1s)->name(), "Europe/Berlin");
  const TimeZonePointer unchanged = zoneAfter(0s);
  EXPECT_EQ(zoneAfter(1s), unchanged);
  folder.write("zoneinfo/Europe/Berlin", compiledFile());
  EXPECT_EQ(zoneAfter(1s)->abbreviation({0}), "ABC");
  EXPECT_EQ(local.zone("Asia/Tokyo", now)->name(), "Asia/Tokyo");
  fs::remove(path);
  folder.write("localtime", compiledFile());
  EXPECT_EQ(zoneAfter(0s)->name(), "localtime");
  folder.write("localtime", "TZif");
  EXPECT_EQ(zoneAfter(1s)->name(), "UTC");
}

}  // namespace
}  // namespace SharedClasses::platform
