// Four-character codes: 32-bit codes whose bytes, from the most significant down, spell four characters.
// Pure; safe on any thread.
#pragma once

#include <cstdint>

namespace SharedClasses::platform {

using FourCharCode = std::uint32_t;

// The code that `characters` spells: fourCharCode("On  ") is 0x4F6E2020. Blanks are part of a code.
[[nodiscard]] consteval FourCharCode fourCharCode(const char (&characters)[5]) {
  FourCharCode code = 0;
  for (int i = 0; i < 4; ++i) {
    code = code << 8 | static_cast<unsigned char>(characters[i]);
  }
  return code;
}

}  // namespace SharedClasses::platform
