#include "platform/machine_location.h"

#include <mutex>
#include <string>

#include "platform/location_sources.h"
#include "platform/time_zone.h"

namespace SharedClasses::platform {

namespace {

constexpr const char* kZoneFolder = "/usr/share/zoneinfo";

struct StatedLocation {
  std::mutex mutex;
  std::optional<Location> location;
};

// Never destroyed, nor are the sources: a program may ask until it ends.
StatedLocation& statedLocation() {
  static auto* const sStated = new StatedLocation;
  return *sStated;
}

LocationSources& systemSources() {
  static auto* const sSources = new LocationSources("/etc/geolocation", kZoneFolder);
  return *sSources;
}

}  // namespace

bool setMachineLocation(std::optional<Location> location) {
  if (location && !isOnEarth(*location)) {
    return false;
  }
  StatedLocation& stated = statedLocation();
  const std::lock_guard lock(stated.mutex);
  stated.location = location;
  return true;
}

Location machineLocation() {
  {
    StatedLocation& stated = statedLocation();
    const std::lock_guard lock(stated.mutex);
    if (stated.location) {
      return *stated.location;
    }
  }
  return systemSources().location(TimeZone::local()->name());
}

std::optional<Location> principalPlaceOfZone(std::string_view zone) {
  LocationSources tables("", kZoneFolder);
  const Location place = tables.location(std::string(zone));
  return place != Location() ? std::optional(place) : std::nullopt;
}

}  // namespace SharedClasses::platform
