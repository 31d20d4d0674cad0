#include "platform/location_sources.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "platform/files.h"
#include "platform/text.h"
#include "platform/text_parts.h"

namespace SharedClasses::platform {

namespace {

constexpr std::size_t kMaximumGeolocationSize = std::size_t{64} << 10;  // bytes
constexpr std::size_t kMaximumTableSize = std::size_t{4} << 20;         // bytes

// Absent unless all of `text` is one finite number.
std::optional<double> wholeNumber(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  double number = 0.0;
  const char* const end = text.data() + text.size();
  const auto [rest, problem] = std::from_chars(text.data(), end, number);
  const bool isWhole = problem == std::errc() && rest == end && std::isfinite(number);
  return isWhole ? std::optional(number) : std::nullopt;
}

// Degrees of "+5230" or "-0740023": a sign, `degreeDigits` digits, two of minutes, and two or none of seconds.
std::optional<double> degreesOf(std::string_view text, std::size_t degreeDigits) {
  const std::string_view digits = text.substr(std::min<std::size_t>(1, text.size()));
  const bool isDigits = std::ranges::all_of(digits, [](char c) { return isASCIIDigit(static_cast<unsigned char>(c)); });
  const bool hasSeconds = digits.size() == degreeDigits + 4;
  if (!isDigits || (!hasSeconds && digits.size() != degreeDigits + 2)) {
    return std::nullopt;
  }
  const int degrees = lenientInteger(digits.substr(0, degreeDigits));
  const int minutes = lenientInteger(digits.substr(degreeDigits, 2));
  const int seconds = hasSeconds ? lenientInteger(digits.substr(degreeDigits + 2)) : 0;
  if (minutes >= 60 || seconds >= 60) {
    return std::nullopt;
  }
  const double magnitude = (degrees * 3600 + minutes * 60 + seconds) / 3600.0;
  return text.front() == '-' ? -magnitude : magnitude;
}

std::optional<Location> locationOfCoordinates(std::string_view coordinates) {
  constexpr std::string_view kSigns = "+-";
  const std::size_t second = coordinates.find_first_of(kSigns, 1);
  if (second == std::string_view::npos || kSigns.find(coordinates.front()) == std::string_view::npos) {
    return std::nullopt;
  }
  const std::optional<double> latitude = degreesOf(coordinates.substr(0, second), 2);
  const std::optional<double> longitude = degreesOf(coordinates.substr(second), 3);
  const Location location{latitude.value_or(NAN), longitude.value_or(NAN)};
  return isOnEarth(location) ? std::optional(location) : std::nullopt;
}

}  // namespace

bool isOnEarth(const Location& location) {
  return std::abs(location.latitude) <= 90.0 && std::abs(location.longitude) <= 180.0;
}

std::optional<Location> locationInGeolocation(std::string_view text) {
  std::array<double, 4> numbers{};
  for (std::size_t count = 0; count < numbers.size();) {
    if (text.empty()) {
      return std::nullopt;
    }
    std::string_view line = takePart(text, '\n');
    line = trimmed(line.substr(0, line.find('#')));
    if (line.empty()) {
      continue;
    }
    const std::optional<double> number = wholeNumber(line);
    if (!number) {
      return std::nullopt;
    }
    numbers[count++] = *number;
  }
  const Location location{numbers[0], numbers[1]};
  return isOnEarth(location) ? std::optional(location) : std::nullopt;
}

std::optional<Location> placeOfZone(std::string_view table, std::string_view zone) {
  while (!table.empty()) {
    std::string_view line = takePart(table, '\n');
    if (line.starts_with('#')) {
      continue;
    }
    takePart(line, '\t');
    const std::string_view coordinates = takePart(line, '\t');
    if (trimmed(takePart(line, '\t')) == zone) {
      return locationOfCoordinates(coordinates);
    }
  }
  return std::nullopt;
}

std::string_view targetOfZoneLink(std::string_view source, std::string_view zone) {
  while (!source.empty()) {
    std::string_view line = takePart(source, '\n');
    if (!line.starts_with("L ")) {
      continue;
    }
    takePart(line, ' ');
    const std::string_view target = takePart(line, ' ');
    if (trimmed(line) == zone) {
      return target;
    }
  }
  return {};
}

LocationSources::LocationSources(std::string geolocationFile, std::string zoneFolder)
    : mGeolocationFile(std::move(geolocationFile)), mZoneFolder(std::move(zoneFolder)) {}

Location LocationSources::location(const std::string& zone) {
  // Four numbers are read as quickly as it is asked whether the file has changed, and no change is missed.
  if (const std::optional<std::string> text = readFile(mGeolocationFile, kMaximumGeolocationSize)) {
    if (const std::optional<Location> location = locationInGeolocation(*text)) {
      return *location;
    }
  }
  const std::lock_guard lock(mMutex);
  if (mLastZone != zone) {
    mLastPlace = placeOf(zone);
    mLastZone = zone;
  }
  return mLastPlace;
}

std::optional<Location> LocationSources::placeInTables(std::string_view zone) const {
  if (zone.empty()) {
    return std::nullopt;
  }
  for (const char* table : {"zone1970.tab", "zone.tab"}) {
    const std::string text = readFile(pathInFolder(mZoneFolder, table), kMaximumTableSize).value_or("");
    if (const std::optional<Location> place = placeOfZone(text, zone)) {
      return place;
    }
  }
  return std::nullopt;
}

Location LocationSources::placeOf(std::string_view zone) const {
  if (zone.starts_with("posix/") || zone.starts_with("right/")) {
    zone.remove_prefix(zone.find('/') + 1);  // folders of the same zones, without and with leap seconds
  }
  if (const std::optional<Location> place = placeInTables(zone)) {
    return *place;
  }
  const std::string source = readFile(pathInFolder(mZoneFolder, "tzdata.zi"), kMaximumTableSize).value_or("");
  return placeInTables(targetOfZoneLink(source, zone)).value_or(Location{});
}

}  // namespace SharedClasses::platform
