// A colour as both programs store and exchange it: red, green, blue and alpha, each 0.0 to 1.0.
// A plain value; safe on any thread.
#pragma once

namespace SharedClasses::platform {

struct Color {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
  double alpha = 1.0;

  friend constexpr bool operator==(const Color&, const Color&) = default;
};

}  // namespace SharedClasses::platform
