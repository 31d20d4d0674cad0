#include "system/miscellany/drawing.h"

namespace SharedClasses::Utilities {

void drawBoxWithX(platform::Canvas& canvas, const platform::Rectangle& box, bool x) {
  const platform::Point lowerLeft{box.x, box.y};
  const platform::Point lowerRight{box.x + box.width, box.y};
  const platform::Point upperLeft{box.x, box.y + box.height};
  const platform::Point upperRight{box.x + box.width, box.y + box.height};
  platform::Path path{{.points = {lowerLeft, lowerRight, upperRight, upperLeft}, .isClosed = true}};
  if (x) {
    path.push_back({.points = {upperLeft, lowerRight}});
    path.push_back({.points = {lowerLeft, upperRight}});
  }
  canvas.stroke(path);
}

}  // namespace SharedClasses::Utilities
