// Drawing that several windows share. For the thread of the user interface.
#pragma once

#include "platform/canvas.h"
#include "platform/geometry.h"

namespace SharedClasses::Utilities {

// `drawBox:withX:`
// Draws the outline of `box` in the current colour, with `x` also both of its diagonals, all in one stroke. Any
// numbers: what the canvas cannot draw it passes over.
void drawBoxWithX(platform::Canvas& canvas, const platform::Rectangle& box, bool x);

}  // namespace SharedClasses::Utilities
