// Where on Earth this machine stands. Safe on any thread.
#pragma once

#include <optional>
#include <string_view>

namespace SharedClasses::platform {

// In degrees: latitude -90 to 90, positive north; longitude -180 to 180, positive east.
struct Location {
  double latitude = 0.0;
  double longitude = 0.0;

  friend bool operator==(const Location&, const Location&) = default;
};

// Where the program says that the machine is; absent takes that back. Coordinates outside of their ranges, and such as
// are no numbers, are refused: false, and nothing changes.
bool setMachineLocation(std::optional<Location> location);

// What the program has set; else what /etc/geolocation says; else the principal place of the local time zone, as the
// system's tables of zones (zone1970.tab, then zone.tab) give it, or of the zone that it is another name of; else 0, 0.
// What is broken counts as not there. Reads a small file at each call, and the tables when the zone has changed.
[[nodiscard]] Location machineLocation();

// What the tables alone say of a zone, such as "Europe/Berlin"; absent for one without a place, such as "UTC". Reads
// them at each call.
[[nodiscard]] std::optional<Location> principalPlaceOfZone(std::string_view zone);

}  // namespace SharedClasses::platform
