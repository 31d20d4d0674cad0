// Change-over days are those that governments have published; 2011 is the year whose offsets the delta is about.
#include "sun/daylight_saving.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/clock.h"
#include "tests/support/hand_moved_clock.h"
#include "tests/support/pinned_zone.h"

namespace SharedClasses::tests {
namespace {

using namespace std::chrono_literals;

class DaylightSaving : public testing::Test {
 protected:
  ~DaylightSaving() override { platform::Clock::setCurrent(nullptr); }

  void moveTo(std::chrono::sys_time<std::chrono::hours> time) {
    platform::Clock::setCurrent(&mClock.emplace());
    mClock->move(time - std::chrono::sys_days(2001y / 1 / 1));  // where it stands before
  }

 private:
  std::optional<HandMovedClock> mClock;
};

TEST_F(DaylightSaving, LastsAsThePublishedChangeOverDaysSay) {
  const struct {
    const char* name;
    const char* zone;
    std::chrono::year year;
    bool uses;
    std::int32_t delta, first, last;
  } kRows[] = {
      {"10 March to 3 November", "America/New_York", 2024y, true, 3600, 70, 307},
      {"the winter is the exception in the data", "Europe/Dublin", 2024y, true, 3600, 91, 300},
      {"half an hour until 7 April, and again from 6 October", "Australia/Lord_Howe", 2024y, false, -1800, 1, 97},
      {"none", "Asia/Kolkata", 2024y, false, 0, 0, 0},
      {"given up since 2011's summer", "Europe/Moscow", 2024y, false, 3600, 0, 0},
      {"30 December into the next year", "America/Argentina/Buenos_Aires", 2007y, false, 0, 364, 0},
      {"all year", "AAA3BBB,0/0,J365/25", 2023y, true, 0, 1, 0},
      {"on day 366 alone", "AAA3BBB,365/0,J365/25", 2024y, false, 0, 0, 0},
      {"on day 365 of a leap year alone", "AAA3BBB,364/0,364/24", 2024y, false, 0, 365, 0},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const PinnedZone zone(row.zone);
    moveTo(std::chrono::sys_days(row.year / 7 / 1));
    EXPECT_EQ(Utilities::localsUseDaylightSaving(), row.uses);
    EXPECT_EQ(Utilities::localDaylightSavingDelta(), row.delta);
    EXPECT_EQ(Utilities::firstDayOfDaylightSaving(), row.first);
    EXPECT_EQ(Utilities::lastDayOfDaylightSaving(), row.last);
  }
}

TEST_F(DaylightSaving, IsOfTheYearThatTheLocalCalendarShows) {
  moveTo(std::chrono::sys_days(2023y / 12 / 31) + 22h);
  const PinnedZone berlin("Europe/Berlin");
  EXPECT_EQ(Utilities::firstDayOfDaylightSaving(), 85) << "26 March 2023";
  moveTo(std::chrono::sys_days(2023y / 12 / 31) + 23h);
  EXPECT_EQ(Utilities::firstDayOfDaylightSaving(), 91) << "31 March 2024";
}

TEST_F(DaylightSaving, LeavesStandardTimeWhatTheClockAndThePinnedZoneShow) {
  const PinnedZone newYork("America/New_York");
  for (const auto month : {1, 7}) {
    moveTo(std::chrono::sys_days(2024y / month / 1));
    EXPECT_EQ(Utilities::standardTime(), platform::Clock::current().now());
    EXPECT_EQ(Utilities::localStandardTimeZone()->secondsFromGMT(Utilities::standardTime()),
              (month == 1 ? -5 : -4) * 3600);
  }
}

}  // namespace
}  // namespace SharedClasses::tests
