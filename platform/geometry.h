// Places and sizes in points, y growing upwards: the lower left corner of a rectangle is its origin. For windows and
// screens they count from the lower left corner of the primary screen, on a canvas from that of what is drawn on.
// Plain values; safe on any thread.
#pragma once

namespace SharedClasses::platform {

struct Point {
  double x = 0.0;
  double y = 0.0;

  friend constexpr bool operator==(const Point&, const Point&) = default;
};

struct Rectangle {
  double x = 0.0;
  double y = 0.0;
  double width = 0.0;
  double height = 0.0;

  friend constexpr bool operator==(const Rectangle&, const Rectangle&) = default;
};

}  // namespace SharedClasses::platform
