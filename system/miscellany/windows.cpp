#include "system/miscellany/windows.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <vector>

#include "platform/log.h"

namespace SharedClasses::Utilities {

namespace {

using platform::Rectangle;

constexpr double kRepairedSize = 200.0;
constexpr std::size_t kMostScreens = 64;
constexpr double kLeastDistance = 1e-6;  // in points: sums of fractions are off by less

bool isFinite(const Rectangle& frame) {
  return std::isfinite(frame.x) && std::isfinite(frame.y) && std::isfinite(frame.width) && std::isfinite(frame.height);
}

bool isUsable(const Rectangle& screen) {
  return isFinite(screen) && screen.width > 0.0 && screen.height > 0.0 && std::isfinite(screen.x + screen.width) &&
         std::isfinite(screen.y + screen.height);
}

// A window or a screen in one direction.
struct Extent {
  double start;
  double length;

  [[nodiscard]] double end() const { return start + length; }
};

Extent horizontal(const Rectangle& frame) {
  return {frame.x, std::max(frame.width, 0.0)};
}

Extent vertical(const Rectangle& frame) {
  return {frame.y, std::max(frame.height, 0.0)};
}

// How far `window` has to move until enough of it lies on `screen`; 0 where it does.
double distanceInOneDirection(Extent window, Extent screen) {
  const double overlap = std::min(window.end(), screen.end()) - std::max(window.start, screen.start);
  const double missing = std::min({kVisiblePart, window.length, screen.length}) - overlap;
  return missing < kLeastDistance ? 0.0 : missing;
}

double distance(const Rectangle& frame, const Rectangle& screen) {
  return std::hypot(distanceInOneDirection(horizontal(frame), horizontal(screen)),
                    distanceInOneDirection(vertical(frame), vertical(screen)));
}

// The edges of the screens part a window into cells; the middle of each, in one direction.
std::vector<double> middlesOfCells(Extent window, std::span<const Rectangle> screens,
                                   Extent (*inOneDirection)(const Rectangle&)) {
  std::vector<double> edges = {window.start, window.end()};
  for (const Rectangle& screen : screens) {
    const Extent extent = inOneDirection(screen);
    edges.push_back(std::clamp(extent.start, window.start, window.end()));
    edges.push_back(std::clamp(extent.end(), window.start, window.end()));
  }
  std::ranges::sort(edges);
  std::vector<double> middles;
  for (std::size_t i = 1; i < edges.size(); ++i) {
    if (edges[i] - edges[i - 1] >= kLeastDistance) {
      middles.push_back(std::midpoint(edges[i - 1], edges[i]));
    }
  }
  return middles;
}

bool contains(Extent screen, double place) {
  return screen.start <= place && place <= screen.end();
}

// Whether `screens` together show all of a window; false for one without width or height.
bool isSeenAsAWhole(const Rectangle& frame, std::span<const Rectangle> screens) {
  bool isSeen = false;
  for (const double x : middlesOfCells(horizontal(frame), screens, horizontal)) {
    for (const double y : middlesOfCells(vertical(frame), screens, vertical)) {
      isSeen = std::ranges::any_of(screens, [x, y](const Rectangle& screen) {
        return contains(horizontal(screen), x) && contains(vertical(screen), y);
      });
      if (!isSeen) {
        return false;
      }
    }
  }
  return isSeen;
}

double nearestStart(Extent window, Extent screen) {
  const double last = screen.end() - std::min(window.length, screen.length);
  return std::max(std::min(window.start, last), screen.start);
}

Rectangle broughtOnto(const Rectangle& screen, const Rectangle& frame) {
  return {.x = nearestStart(horizontal(frame), horizontal(screen)),
          .y = nearestStart(vertical(frame), vertical(screen)),
          .width = std::min(frame.width, screen.width),
          .height = std::min(frame.height, screen.height)};
}

}  // namespace

void ensureWindowFrameIsOK(platform::Window* window) {
  if (window == nullptr) {
    return;
  }
  Rectangle frame = window->frame();
  if (frame.width > 0.0 && frame.height > 0.0) {
    return;
  }
  platform::log("Fixed a window frame.");
  // Kept: what is below 0, and what is no number, stays as it is.
  for (double* const size : {&frame.width, &frame.height}) {
    if (*size == 0.0) {
      *size = kRepairedSize;
    }
  }
  window->setFrame(frame, true);
}

bool ensureWindowIsOnScreen(platform::Window* window, std::span<const Rectangle> screens) {
  if (window == nullptr) {
    return false;
  }
  const Rectangle frame = window->frame();
  if (!isFinite(frame)) {
    return false;
  }
  std::vector<Rectangle> usable;
  std::ranges::copy_if(screens.first(std::min(screens.size(), kMostScreens)), std::back_inserter(usable), isUsable);
  const auto nearest =
      std::ranges::min_element(usable, {}, [&frame](const Rectangle& screen) { return distance(frame, screen); });
  if (nearest == usable.end() || distance(frame, *nearest) == 0.0 || isSeenAsAWhole(frame, usable)) {
    return false;
  }
  window->setFrame(broughtOnto(*nearest, frame), true);
  return true;
}

}  // namespace SharedClasses::Utilities
