// What one draws on: a toolkit's painter behind one operation. What an override of it throws passes through the library
// to the program that called it. For the thread of the user interface.
#pragma once

#include <vector>

#include "platform/geometry.h"

namespace SharedClasses::platform {

// Lines one after the other, each along its points; a closed one returns to its first point. One of fewer than two
// points, or with a coordinate that is not finite, draws nothing.
struct Polyline {
  std::vector<Point> points;
  bool isClosed = false;

  friend bool operator==(const Polyline&, const Polyline&) = default;
};
using Path = std::vector<Polyline>;

class Canvas {
 public:
  Canvas() = default;
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  virtual ~Canvas() = default;

  // Draws along `path` in the current colour and line width, as one stroke: where lines cross, a translucent colour is
  // not laid on twice.
  virtual void stroke(const Path& path) = 0;
};

}  // namespace SharedClasses::platform
