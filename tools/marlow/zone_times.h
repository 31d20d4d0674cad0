// The time zone that the tool works in, and how it prints dates: one form, 24 hours, whatever the locale.
#pragma once

#include <string>
#include <string_view>

#include "platform/calendar_date.h"

namespace SharedClasses::marlow {

// Makes `name` the local zone of this process, by its environment variable TZ. False, and nothing changes, where there
// is no such zone. To be called while the process has one thread, as every command of the tool does.
[[nodiscard]] bool useLocalZone(const std::string& name);

// What is said of `name` where there is no such zone.
[[nodiscard]] std::string noSuchZoneText(const std::string& name);

// Where TZ is set to what is no zone, complains in the name of `command` that times are those of UTC.
void complainOfUnknownTZ(std::string_view command);

// "2026-06-21"
[[nodiscard]] std::string dayText(const platform::CalendarDate& date);

// "04:43"
[[nodiscard]] std::string clockText(const platform::CalendarDate& date);

// "+0200"
[[nodiscard]] std::string offsetText(const platform::CalendarDate& date);

}  // namespace SharedClasses::marlow
