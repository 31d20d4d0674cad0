// Daylight saving time in the local time zone: whether it is observed, by how much it moves the clock, and when in the
// present year. "Now" is what platform::Clock::current() says. Safe on any thread.
#pragma once

#include <cstdint>

#include "platform/calendar_date.h"
#include "platform/date.h"
#include "platform/time_zone.h"

namespace SharedClasses::Utilities {

// Whether clocks here are ahead of standard time in the northern summer (at noon, UTC-5, on 4 July 2011).
// Kept: a zone that observes daylight saving in the southern summer alone answers false.
[[nodiscard]] bool localsUseDaylightSaving();

// Seconds that noon of 1 July 2011 was further ahead of UTC than noon of 1 January 2011: 3600 in a usual northern zone,
// 0 without daylight saving, negative in the south.
// Kept: the year is fixed; later changes of a zone's law do not show.
[[nodiscard]] std::int32_t localDaylightSavingDelta();

// The same for a caller that has asked for the local zone, which is not null.
[[nodiscard]] std::int32_t localDaylightSavingDelta(const platform::TimeZonePointer& local);

// The first day of the present year, 1 to 365, whose noon lies in daylight saving time; 0 when none does.
// Kept: day 366 is never looked at.
[[nodiscard]] std::int32_t firstDayOfDaylightSaving();

// The last day, from the first one on without a gap, whose noon lies in daylight saving time; 0 when none does.
// Kept: also 0 when it lasts through day 365.
[[nodiscard]] std::int32_t lastDayOfDaylightSaving();

// Now, as it is.
// Kept: the name promises standard time; nothing is converted.
[[nodiscard]] platform::Date standardTime();

// The local zone.
// Kept: in daylight saving time it is taken from the first of January, which carries the very same zone; it is not a
// fixed offset.
[[nodiscard]] platform::TimeZonePointer localStandardTimeZone();

}  // namespace SharedClasses::Utilities
