// Which keys are down. A program sets where that comes from, at its start: only the desktop's toolkit can know. For the
// main thread.
#pragma once

#include <array>
#include <cstdint>
#include <functional>

namespace SharedClasses::platform {

// A bit for each of 128 key codes: that of code c is bit c % 8 of byte c / 8. The codes are this library's own, neither
// the kernel's nor X's; it asks for one alone: 58, the option key (Alt).
using KeyMap = std::array<std::uint8_t, 16>;

using KeyMapProvider = std::function<KeyMap()>;

// Sets what reads the keyboard; an empty function for none, which is the start.
void setKeyMapProvider(KeyMapProvider provider);

// The keys that are down now. None where no program has set a provider, where it throws, which is logged, and for one
// that asks for them itself, which is logged once. It may set another.
[[nodiscard]] KeyMap currentKeyMap();

}  // namespace SharedClasses::platform
