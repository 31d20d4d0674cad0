// Windows that a stored frame has made unusable, brought back. For the thread of the user interface.
#pragma once

#include <span>

#include "platform/window.h"

namespace SharedClasses::Utilities {

// Gives a window without width or height, which the user could never find, 200 points for it, draws it, and logs
// "Fixed a window frame." Nothing for null, and for a window of some width and height.
// Kept: a negative width or height, and one that is no number, is logged and set as it is.
void ensureWindowFrameIsOK(platform::Window* window);

// The least part of a window, in points each way, that one screen has to show. All of a window, or of a screen, that is
// smaller.
// Kept: any part will do; the title bar may lie above the screen, out of the user's reach.
inline constexpr double kVisiblePart = 20.0;

// Brings a window of which none of `screens` shows kVisiblePart, nor all of them together the whole, back onto the
// nearest of them, the first of several: moved no farther than it must be to lie there as a whole, made smaller only
// where it is larger than that screen, and drawn. Whether it had to; less than a millionth of a point is no reason.
// `screens` are in the coordinates of frame(): of each, what panels leave over, where the desktop tells; the first 64
// count. Nothing for null, without screens of some size, and for a frame that is not finite.
// Kept: a width or height below 0 counts as 0, and is set as it is.
bool ensureWindowIsOnScreen(platform::Window* window, std::span<const platform::Rectangle> screens);

}  // namespace SharedClasses::Utilities
