// INSTEON command bytes and the action codes that they carry. Stateless; safe on any thread; allocates nothing but a
// log line.
#pragma once

#include <cstdint>

#include "shared/action_codes.h"

namespace SharedClasses::Utilities {

// The command byte that is sent for `code`; 0 for a code that INSTEON does not carry, which is logged.
[[nodiscard]] std::uint8_t insteonCommandWithActionCode(ActionCode code);

// The action code that a heard command byte reads back as; only the low 8 bits of `command` count. 0, silently, for any
// other byte.
// Kept: 0x01, 0x03, 0x19 and 0x49 are only sent, 0x12 and 0x14 (fast on and off) only read.
[[nodiscard]] ActionCode actionCodeWithInsteonCommand(std::uint32_t command);

}  // namespace SharedClasses::Utilities
