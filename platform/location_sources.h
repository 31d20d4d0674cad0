// Where the system's files say that this machine is. The two readers are pure; any bytes give a stated answer.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/machine_location.h"

namespace SharedClasses::platform {

// Whether both coordinates are numbers within their ranges.
[[nodiscard]] bool isOnEarth(const Location& location);

// Reads the form of /etc/geolocation: latitude, longitude, altitude and accuracy in metres, one number to a line; "#"
// starts a comment, lines that hold nothing else do not count, nor what follows the four. Absent when a number is
// missing, is none, or is no place on Earth.
[[nodiscard]] std::optional<Location> locationInGeolocation(std::string_view text);

// The principal place of `zone`, as its line in a table of zones (zone1970.tab, zone.tab) gives it: columns parted by
// tabs, the second "+5230+01322" or "+404251-0740023" for degrees, minutes and seconds, the third the zone's name.
// Absent when the table has no such line, or a broken one.
[[nodiscard]] std::optional<Location> placeOfZone(std::string_view table, std::string_view zone);

// The zone that `zone` is another name of, as the compact source of the zones (tzdata.zi) has it in lines such as
// "L America/New_York US/Eastern"; empty when it is not there.
[[nodiscard]] std::string_view targetOfZoneLink(std::string_view source, std::string_view zone);

// The system's files. What they say of a zone is read once for as long as the same zone is asked for; the geolocation
// file is read anew each time. Safe on any thread.
class LocationSources {
 public:
  // `zoneFolder` is the one with zone1970.tab, zone.tab and tzdata.zi in it; none of the files has to be there.
  LocationSources(std::string geolocationFile, std::string zoneFolder);
  LocationSources(const LocationSources&) = delete;
  LocationSources& operator=(const LocationSources&) = delete;

  // What the geolocation file says; else the principal place of `zone`, or of the zone that it is another name of; else
  // 0, 0, as for "UTC".
  [[nodiscard]] Location location(const std::string& zone);

 private:
  [[nodiscard]] std::optional<Location> placeInTables(std::string_view zone) const;
  [[nodiscard]] Location placeOf(std::string_view zone) const;

  const std::string mGeolocationFile;
  const std::string mZoneFolder;
  std::mutex mMutex;  // guards what follows
  std::optional<std::string> mLastZone;
  Location mLastPlace;  // of mLastZone
};

}  // namespace SharedClasses::platform
