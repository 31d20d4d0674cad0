#include "sun/sun_times.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "platform/clock.h"
#include "platform/machine_location.h"
#include "shared/preferences.h"
#include "tests/support/captured_log.h"
#include "tests/support/hand_moved_clock.h"
#include "tests/support/main_bundle.h"
#include "tests/support/memory_store.h"
#include "tests/support/pinned_zone.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::tests {
namespace {

using platform::CalendarDate;
using platform::TimeZone;
using OptionalDate = std::optional<CalendarDate>;

struct Event {
  double latitude;
  double longitude;
  bool sunrise;
};

// Minutes from 0:00 UTC of that day to the event: the low-accuracy equations of Meeus, Astronomical Algorithms (2nd
// edition), chapters 15, 25 and 28, with the sun's centre 90.833 degrees from the zenith.
double minutesByMeeus(const Event& event, const CalendarDate& day) {
  constexpr double kDegree = 3.14159265358979323846 / 180;
  constexpr double kObliquity = 23.4393 * kDegree;
  const double latitude = event.latitude * kDegree;
  const CalendarDate midnight(day.yearOfCommonEra(), 1, day.dayOfYear(), 0, 0, 0, TimeZone::utc());
  const double daysSince2000 = midnight.date().secondsSinceReference / 86400 + 365.5;  // from noon of 1 January 2000
  double minutes = (event.sunrise ? 360 : 1080) - 4 * event.longitude;
  for (int step = 0; step < 3; ++step) {
    const double century = (daysSince2000 + minutes / 1440) / 36525;
    const double mean = (280.46646 + 36000.76983 * century) * kDegree;
    const double anomaly = (357.52911 + 35999.05029 * century) * kDegree;
    const double sun = mean + (1.914602 * std::sin(anomaly) + 0.019993 * std::sin(2 * anomaly)) * kDegree;
    const double declination = std::asin(std::sin(kObliquity) * std::sin(sun));
    const double ascension = std::atan2(std::cos(kObliquity) * std::sin(sun), std::cos(sun));
    const double equationOfTime = std::remainder(mean - ascension, 360 * kDegree);
    const double hourAngle = std::acos((std::cos(90.833 * kDegree) - std::sin(latitude) * std::sin(declination)) /
                                       (std::cos(latitude) * std::cos(declination)));
    minutes = 720 - 4 * event.longitude + 4 * ((event.sunrise ? -hourAngle : hourAngle) - equationOfTime) / kDegree;
  }
  return minutes;
}

// How far the time of day of `shown` is from the one of the event, in minutes.
double minutesOff(const CalendarDate& shown, const Event& event) {
  const double utcMinutes = shown.hourOfDay() * 60 + shown.minuteOfHour() - shown.secondsFromGMT() / 60;
  return std::abs(std::remainder(utcMinutes - minutesByMeeus(event, shown), 1440));
}

std::int32_t suntime(const Event& event, bool local, bool adjustForDST, OptionalDate* date) {
  return Utilities::suntimeFromLatitude(
      {event.latitude, event.longitude, event.sunrise, local, adjustForDST, nullptr, date});
}

// The names are the exact times, computed apart in Python from the almanac's steps and this system's coefficients.
TEST(SunTime, IsTheNearestMinuteOfTheAskedDayInUTC) {
  const struct {
    const char* name;
    Event event;
    int dayOfYear;  // of 2023
    const char* shown;
  } kRows[] = {
      {"0:32:15.7 on the next day", {40, -75, false}, 185, "2023-07-04 00:32:00 +0000"},
      {"8:05:50.5", {51.5, 0, true}, 1, "2023-01-01 08:06:00 +0000"},
      {"9:35:30.4", {40, -74.82, true}, 185, "2023-07-04 09:36:00 +0000"},
      {"9:35:29.4", {40, -74.816, true}, 185, "2023-07-04 09:35:00 +0000"},
      {"8:59:33.8 on the next day", {-66, -142, false}, 1, "2023-01-01 09:00:00 +0000"},
      {"23:59:51.9", {40, -66.9, false}, 185, "2023-07-04 00:00:00 +0000"},
      {"23:59:28.0", {40, -66.8, false}, 185, "2023-07-04 23:59:00 +0000"},
      {"9:36:13.6, three times around the globe", {40, -75 - 1080, true}, 182, "2023-07-01 09:36:00 +0000"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    OptionalDate date(std::in_place, 2023, 1, row.dayOfYear, 12, 0, 0);
    EXPECT_EQ(suntime(row.event, false, true, &date), 0);
    EXPECT_EQ(date->description(), row.shown);
  }
}

TEST(SunTime, AgreesWithThePublishedEquationsInCitiesAndFromTwelveHoursWestToFourteenEastOnEachDayOfAYear) {
  std::stringstream places;
  places << "Pacific/Honolulu 21.31 -157.86 America/Denver 39.74 -104.99 America/New_York 40.71 -74.01 "
            "America/St_Johns 47.56 -52.71 America/Lima -12.05 -77.04 America/Santiago -33.45 -70.67 "
            "Europe/Lisbon 38.72 -9.14 Europe/Dublin 53.35 -6.26 Europe/Madrid 42.88 -8.54 Europe/Oslo 59.91 10.75 "
            "Africa/Casablanca 33.57 -7.59 Africa/Lagos 6.45 3.4 Asia/Kolkata 28.61 77.21 Asia/Urumqi 43.83 87.62 "
            "Asia/Shanghai 39.47 75.99 Asia/Tokyo 35.68 139.69 Australia/Lord_Howe -31.55 159.08 "
            "Pacific/Chatham -43.95 -176.56 Pacific/Apia -13.83 -171.77 Pacific/Kiritimati 1.87 -157.4";
  for (int hours = -12; hours <= 14; ++hours) {
    places << " GMT" << -hours << ' ' << hours % 3 * 28 << ' ' << std::remainder(hours * 15 + hours % 4 * 2.5, 360);
  }
  Event event{};
  for (std::string name; places >> name >> event.latitude >> event.longitude;) {
    const PinnedZone zone(name);
    for (int row = 0; row < 4 * 366; ++row) {
      event.sunrise = row % 2 == 0;
      const bool local = row % 4 < 2;
      const CalendarDate noon(2024, 1, row / 4 + 1, 12, 0, 0);
      OptionalDate date = noon;
      ASSERT_EQ(suntime(event, local, noon.isDaylightSavingTime(), &date), 0);
      ASSERT_EQ(date->description().substr(0, 10), noon.description().substr(0, 10)) << name;
      ASSERT_EQ(date->secondsFromGMT(), local ? CalendarDate(date->date()).secondsFromGMT() : 0) << name;
      ASSERT_LT(minutesOff(*date, event), local ? 2.0 : 1.5) << name << date->description();
    }
  }
}

TEST(SunTime, IsMovedToTheAskedSeasonOfTheClock) {
  const Event sunset{40, -75, false};
  const Event inSydney{-33.9, 151.2, true};
  const struct {
    const char* name;
    const char* zone;
    Event event;
    int month, day;  // of 2024
    bool adjustForDST;
    double hoursFromGMT;
  } kRows[] = {
      {"winter's clock in summer", "America/New_York", sunset, 7, 4, false, -5},
      {"summer's clock in winter", "America/New_York", sunset, 1, 15, true, -4},
      {"first day of winter", "America/New_York", sunset, 11, 3, false, -5},
      {"first day of summer, next day in UTC", "America/Anchorage", {61.2, -149.9, false}, 3, 10, true, -8},
      {"last day of southern winter, day before in UTC", "Australia/Sydney", inSydney, 10, 5, false, 10},
      {"southern summer's clock moves the wrong way", "Australia/Sydney", inSydney, 1, 15, false, 12},
      {"no such clock", "Asia/Kolkata", {22.6, 88.4, true}, 7, 4, true, 5.5},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const PinnedZone zone(row.zone);
    OptionalDate date(std::in_place, 2024, row.month, row.day, 12, 0, 0);
    EXPECT_EQ(suntime(row.event, true, row.adjustForDST, &date), 0);
    EXPECT_EQ(date->secondsFromGMT(), row.hoursFromGMT * 3600);
    EXPECT_EQ(date->monthOfYear() * 100 + date->dayOfMonth(), row.month * 100 + row.day);
    EXPECT_LT(minutesOff(*date, row.event), 2.0) << date->description();
  }
}

TEST(SunTime, HasAStatusAndTheDayAtMidnightWhereThereIsNoEvent) {
  const struct {
    const char* name;
    double latitude, longitude;
    int dayOfYear;
  } kRows[] = {
      {"midnight sun", 70, 20, 172}, {"polar night", 70, 20, 355}, {"north pole", 90, 0, 172},
      {"no latitude", NAN, 0, 80},   {"no longitude", 0, NAN, 80}, {"endless longitude", 0, INFINITY, 80},
  };
  const PinnedZone zone("Europe/Oslo");
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const CalendarDate noon(2023, 1, row.dayOfYear, 12, 0, 0);
    const std::string midnight = noon.description().substr(0, 10) + " 00:00:00 ";
    for (const bool sunrise : {false, true}) {
      const auto shown = [&](bool local, bool adjustForDST) {
        OptionalDate date = noon;
        EXPECT_EQ(suntime({row.latitude, row.longitude, sunrise}, local, adjustForDST, &date), sunrise ? 0x20 : 0x10);
        return date->description();
      };
      EXPECT_EQ(shown(false, true), midnight + "+0000");
      EXPECT_EQ(shown(true, true), midnight + "+0200");
      EXPECT_EQ(shown(true, false), midnight + "+0100");
    }
  }
}

TEST(SunTime, OfALongitudeBeyondReasonStaysOnTheDay) {
  for (const double longitude : {1e5, -1e5, 1e18, -1e18, 1e308, -1e308}) {
    OptionalDate date(std::in_place, 2023, 12, 31, 12, 0, 0);
    EXPECT_EQ(suntime({0, longitude, true}, true, false, &date), 0);
    EXPECT_EQ(date->description().substr(0, 10), "2023-12-31") << longitude;
  }
}

TEST(SunTime, IsOfTheDayInTheDatesOwnZoneAndOfNowWithoutADate) {
  const PinnedZone zone("America/New_York");
  OptionalDate date(std::in_place, 2023, 7, 5, 5, 0, 0, TimeZone::fixedOffset(9 * 3600));  // still the 4th in UTC
  EXPECT_EQ(suntime({40, -75, false}, true, true, &date), 0);
  EXPECT_EQ(date->description(), "2023-07-05 20:32:00 -0400");

  const HandMovedClock newYearInUTC;
  platform::Clock::setCurrent(&newYearInUTC);
  const auto sunriseInUTC = [](OptionalDate* day) { return suntime({40, -75, true}, false, false, day); };
  std::int32_t (*const operations[])(OptionalDate*) = {sunriseInUTC, Utilities::localSunrise, Utilities::localSunset};
  for (const auto operation : operations) {
    OptionalDate empty;
    EXPECT_EQ(operation(&empty), 0);
    EXPECT_EQ(empty->description().substr(0, 10), "2000-12-31");
    EXPECT_EQ(operation(nullptr), -50);
  }
  platform::Clock::setCurrent(nullptr);
}

TEST(LocalSunTime, IsThatOfThePreferencesInTheProgramsThatHaveThem) {
  const platform::Value::Dictionary nowhere = {{"runCount", 5}};
  const platform::Value::Dictionary inTheWest = {
      {"runCount", 5}, {"latitudeDegrees", 40}, {"latitudeNS", "N"}, {"longitudeDegrees", 75}, {"longitudeWE", "W"}};
  const struct {
    const char* signature;
    const platform::Value::Dictionary& settings;
    bool west;
  } kRows[] = {
      {"QZV2", inTheWest, true}, {"QZ2d", inTheWest, true}, {"none", inTheWest, false}, {"QZ2d", nowhere, false}};
  const PinnedZone zone("America/New_York");
  TemporaryFolder folder;
  platform::setMachineLocation(platform::Location{51.5, 0});
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.signature);
    folder.write("Info.plist", std::string("<plist><dict><key>CFBundleSignature</key><string>") + row.signature +
                                   "</string></dict></plist>");
    const MainBundle bundle(folder.path());
    const StandardStore store(row.settings);
    const Preferences preferences;
    for (const int choice : {0, 1, 2, 3}) {
      const Event event{row.west ? 40 : 51.5, row.west ? -75.0 : 0.0, choice < 2};
      OptionalDate date(std::in_place, 2024, choice % 2 == 0 ? 1 : 7, 4, 12, 0, 0);
      EXPECT_EQ(event.sunrise ? Utilities::localSunrise(&date) : Utilities::localSunset(&date), 0);
      EXPECT_LT(minutesOff(*date, event), 2.0);
      EXPECT_EQ(date->secondsFromGMT(), (choice % 2 == 0 ? -5 : -4) * 3600);
    }
  }
  platform::setMachineLocation(std::nullopt);
}

TEST(SunTable, HasARowForEachDayAndOneMoreInACommonYear) {
  const PinnedZone zone("America/New_York");
  HandMovedClock clock;
  clock.move(std::chrono::hours(24) * (22 * 365 + 5 + 180));  // June 2023
  platform::Clock::setCurrent(&clock);
  platform::setMachineLocation(platform::Location{40, -75});
  const CapturedLog log;
  Utilities::printSunTable();
  platform::setMachineLocation(std::nullopt);
  platform::Clock::setCurrent(nullptr);
  std::istringstream table(log.messages().at(0));
  std::string line;
  std::getline(std::getline(table, line), line);
  EXPECT_EQ(line, "Day\tSunrise\t\tSunset");
  for (int day = 1; day <= 366; ++day) {
    const std::string noon = CalendarDate(2023, 1, day, 12, 0, 0).description();
    ASSERT_TRUE(std::getline(table, line));
    EXPECT_NE(line.find(noon.substr(0, 10)), std::string::npos) << line;
    EXPECT_TRUE(line.ends_with(noon.substr(19))) << line;
    EXPECT_TRUE(day != 185 || line == "185\t 5:36\t\t20:32\t2023-07-04 20:32:00 -0400") << line;
  }
  EXPECT_FALSE(std::getline(table, line));
}

}  // namespace
}  // namespace SharedClasses::tests
