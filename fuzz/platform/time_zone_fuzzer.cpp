// Any bytes, as a compiled file and as a rule, are refused or give a zone that is the same between its transitions and
// another at each, and whose dates agree with it.
#include <cstdint>
#include <cstdlib>
#include <tuple>

#include "platform/calendar_date.h"

namespace {

using namespace SharedClasses::platform;

auto shownBy(const TimeZone& zone, double instant) {
  const Date date{instant};
  return std::tuple(zone.secondsFromGMT(date), zone.isDaylightSavingTime(date), zone.abbreviation(date));
}

void require(bool isRight) {
  if (!isRight) {
    std::abort();
  }
}

void check(const TimeZonePointer& zone) {
  if (zone == nullptr) {
    return;
  }
  auto at = Date{-3.7e11};
  for (int count = 0; count < 2000; ++count) {
    const auto next = zone->nextTransition(at);
    const double end = next ? next->secondsSinceReference : at.secondsSinceReference + 1e9;
    require(end > at.secondsSinceReference);
    require(shownBy(*zone, at.secondsSinceReference) == shownBy(*zone, end - 1));
    require(!next || shownBy(*zone, end - 1) != shownBy(*zone, end));
    for (const double instant : {end - 1, end}) {
      const CalendarDate date({instant}, zone);
      const CalendarDate same(date.yearOfCommonEra(), date.monthOfYear(), date.dayOfMonth(), date.hourOfDay(),
                              date.minuteOfHour(), date.secondOfMinute(), zone);
      const std::int64_t wallClock =
          static_cast<std::int64_t>(date.date().secondsSinceReference) + date.secondsFromGMT();
      require(same.date().secondsSinceReference == static_cast<double>(zone->instantOfWallClock(wallClock)));
      require(same.secondsFromGMT() == zone->secondsFromGMT(same.date()));
    }
    if (!next) {
      break;
    }
    at = *next;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  check(TimeZone::fromCompiledFile(text, "fuzz"));
  check(TimeZone::fromRule(text));
  return 0;
}
