#include "tools/marlow/zone_times.h"

#include <cstdlib>

#include "platform/files.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

bool useLocalZone(const std::string& name) {
  return platform::TimeZone::named(name) != nullptr && ::setenv("TZ", name.c_str(), 1) == 0;
}

std::string noSuchZoneText(const std::string& name) {
  return "there is no time zone " + quoted(name) + "; a name is such as Europe/Berlin";
}

void complainOfUnknownTZ(std::string_view command) {
  const std::string tz = platform::environmentVariable("TZ").value_or("");
  const bool saysUTC = tz.empty() || tz == "UTC" || tz == ":UTC";
  if (!saysUTC && platform::TimeZone::local() == platform::TimeZone::utc()) {
    complain(std::string(command) + ": TZ is " + quoted(tz) + ", which is no time zone; taking UTC");
  }
}

// A description is day, clock with seconds and offset, parted by blanks.
std::string dayText(const platform::CalendarDate& date) {
  const std::string text = date.description();
  return text.substr(0, text.find(' '));
}

std::string clockText(const platform::CalendarDate& date) {
  const std::string text = date.description();
  return text.substr(text.find(' ') + 1, std::string_view("00:00").size());
}

std::string offsetText(const platform::CalendarDate& date) {
  const std::string text = date.description();
  return text.substr(text.rfind(' ') + 1);
}

}  // namespace SharedClasses::marlow
