// The keyboard, and waiting without standing still.
#pragma once

namespace SharedClasses::Utilities {

// Whether the option key (Alt), key code 58 of platform/key_map.h, is down. For the main thread.
[[nodiscard]] bool optionKeyDown();

// Serves the run loop of the calling thread until its clock says that `seconds` are over; one pass at least. Zero,
// less, and what is not a number: one pass that waits for nothing. A wait of more than 10 days ends after 10 days.
// It sleeps between one event and the next.
// Kept: nothing of the caller's goes on meanwhile, and what the loop runs may well ask for a delay itself, which is
// then waited for first.
void delay(double seconds);

}  // namespace SharedClasses::Utilities
