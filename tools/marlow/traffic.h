// Recorded traffic: one heard command or one read thermometer a line.
//   2026-06-01T18:05:00 x10 A1 2
//   2026-06-01T18:05:04 x10 A1 4 40%
//   2026-06-01T18:06:30 x10 B 1
//   2026-06-01T18:07:12 x10 A4 7 0x31 0x64
//   2026-06-01T18:09:55 insteon 1A.2B.3C 0x11
//   2026-06-01T18:10:00 onewire e9000005e2fdc328 50054b467fff0c101c
// Fields are parted by blanks. X10 functions are 0 to 15, INSTEON commands and data bytes "0x" and two hex digits at
// most. Reading is pure; safe on any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shared/action_codes.h"

namespace SharedClasses::marlow {

enum class Protocol {
  X10,
  INSTEON,
  OneWire
};

struct TrafficLine {
  std::string time;  // as it stands in the line, "2026-06-01T18:05:00": local time of the house
  Protocol protocol = Protocol::X10;
  std::string address;            // as device_addresses.h has it; a house letter alone for a command to the whole house
  ActionCode action = kNoAction;  // none for a thermometer
  std::optional<double> percent;  // 0 to 100
  std::vector<std::uint8_t> bytes;  // of an extended command; the scratch pad of a thermometer, its CRC right
};

// Reads one line. Absent when it cannot be read; `*error` then says what is wrong and what would be right.
[[nodiscard]] std::optional<TrafficLine> parseTrafficLine(std::string_view line, std::string* error);

// Whether a line carries nothing: blank, or a comment that begins with "#".
[[nodiscard]] bool isTrafficComment(std::string_view line);

}  // namespace SharedClasses::marlow
