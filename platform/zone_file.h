// The contents of a compiled zone file, as the system's zone compiler writes it (versions 1 to 4).
// Pure; safe on any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/zone_rules.h"

namespace SharedClasses::platform {

struct ZoneFile {
  struct Transition {
    std::int64_t instant = 0;  // seconds since the reference date, leap seconds not counted
    std::uint8_t clock = 0;    // of `clocks`, from then on
  };

  std::vector<ZoneClock> clocks;        // 1 to 256; the first is the one before all transitions
  std::vector<Transition> transitions;  // ascending; those beyond all dates lie at their ends
  std::optional<ZoneRule> rule;         // from the last transition on; without transitions, at all times
};

// What `bytes` hold. Nothing for bytes that are cut short, are longer than a megabyte, or contradict themselves: times
// out of order, clocks or names that are not there, offsets of more than a week, names that are not printable ASCII of
// at most 64 letters. Files that count leap seconds ("right/…") are brought to the system's count, which does not.
// Kept: a rule at the end of the file that nobody understands is passed over, and the last clock stays.
[[nodiscard]] std::optional<ZoneFile> parsedZoneFile(std::string_view bytes);

}  // namespace SharedClasses::platform
