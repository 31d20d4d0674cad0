#include "system/miscellany/windows.h"

#include <gtest/gtest.h>

#include <cmath>

#include "system/miscellany/drawing.h"
#include "tests/support/captured_log.h"

namespace SharedClasses::Utilities {
namespace {

using platform::Path;
using platform::Rectangle;
using platform::Window;

struct DrawnWindow : Window {
  using Window::Window;
  void setFrame(const Rectangle& frame, bool display) override {
    Window::setFrame(frame, display);
    EXPECT_TRUE(display);
  }
};

TEST(WindowFrame, GetsTheSizeThatItLacks) {
  const tests::CapturedLog captured;
  const Rectangle kRows[][2] = {
      {{5, 6, 0, 50}, {5, 6, 200, 50}},
      {{5, 6, 50, -0.0}, {5, 6, 50, 200}},
      {{1, 2, -3, 0}, {1, 2, -3, 200}},
      {{1, 2, 1e-9, 4}, {1, 2, 1e-9, 4}},
  };
  for (const auto& [frame, expected] : kRows) {
    DrawnWindow window(frame);
    ensureWindowFrameIsOK(&window);
    EXPECT_EQ(window.frame(), expected);
  }
  ensureWindowFrameIsOK(nullptr);
  EXPECT_EQ(captured.messages(), std::vector<std::string>(3, "Fixed a window frame."));
}

TEST(WindowOnScreen, ComesBackOntoTheNearestScreenWhereTooLittleOfItIsSeen) {
  using Screens = std::vector<Rectangle>;
  const Screens one = {{0, 0, 1000, 800}};
  const Screens two = {{-1000, -200, 1000, 800}, {0, 0, 1000, 800}};
  const Screens tiny = {{0, 0, 100, 100}, {110, 110, 10, 10}};
  const Screens none = {{}, {0, 0, 9, -9}, {NAN, 0, 9, 9}, {0, 0, 9, INFINITY}, {1.7e308, 0, 1.7e308, 9}};
  const std::tuple<const char*, const Screens&, Rectangle, Rectangle> kRows[] = {
      {"just enough at the left and the bottom", one, {-280, -180, 300, 200}, {-280, -180, 300, 200}},
      {"just enough at the right and the top", one, {980, 780, 300, 200}, {980, 780, 300, 200}},
      {"a point too little at the left", one, {-281, 10, 300, 200}, {0, 10, 300, 200}},
      {"a point too little at the right", one, {981, 10, 300, 200}, {700, 10, 300, 200}},
      {"a point too little at the bottom", one, {10, -181, 300, 200}, {10, 0, 300, 200}},
      {"a point too little at the top", one, {10, 781, 300, 200}, {10, 600, 300, 200}},
      {"too large but seen", one, {-500, -500, 5000, 5000}, {-500, -500, 5000, 5000}},
      {"too large and away", one, {5000, -9000, 2000, 300}, {0, 0, 1000, 300}},
      {"beyond all numbers", one, {1.7e308, -1.7e308, 1.7e308, 9}, {0, 0, 1000, 9}},
      {"thin, half seen, at fractions", one, {-100, 237.3, 300, 18.2}, {-100, 237.3, 300, 18.2}},
      {"small, not seen as a whole", one, {995, 5, 10, 10}, {990, 5, 10, 10}},
      {"below nothing", one, {1020, 3, -50, 40}, {1000, 3, -50, 40}},
      {"parted between two", two, {-15, 300, 30, 100}, {-15, 300, 30, 100}},
      {"parted, above the lower one", two, {-15, 590, 30, 100}, {0, 590, 30, 100}},
      {"above the left one", two, {-700, 750, 300, 200}, {-700, 400, 300, 200}},
      {"left of the left one", two, {-5000, -900, 300, 200}, {-1000, -200, 300, 200}},
      {"all of a tiny screen", tiny, {105, 105, 100, 20}, {105, 105, 100, 20}},
      {"no screen of some size", none, {5000, 0, 300, 200}, {5000, 0, 300, 200}},
      {"endless", one, {0, 5000, 300, INFINITY}, {0, 5000, 300, INFINITY}},
  };
  for (const auto& [name, screens, frame, expected] : kRows) {
    SCOPED_TRACE(name);
    DrawnWindow window(frame);
    EXPECT_EQ(ensureWindowIsOnScreen(&window, screens), frame != expected);
    EXPECT_EQ(window.frame(), expected);
    EXPECT_FALSE(ensureWindowIsOnScreen(&window, screens)) << "is there now";
  }
  Window noNumber({NAN, 5000, 300, 200});
  EXPECT_FALSE(ensureWindowIsOnScreen(&noNumber, one) || ensureWindowIsOnScreen(nullptr, one));
}

struct RecordingCanvas : platform::Canvas {
  void stroke(const Path& path) override { strokes.push_back(path); }
  std::vector<Path> strokes;
};

TEST(BoxWithX, IsOneStrokeWithBothDiagonals) {
  RecordingCanvas canvas;
  drawBoxWithX(canvas, {1, 2, 10, 20}, true);
  drawBoxWithX(canvas, {1, 2, 10, 20}, false);
  const platform::Polyline outline{{{1, 2}, {11, 2}, {11, 22}, {1, 22}}, true};
  EXPECT_EQ(canvas.strokes, (std::vector<Path>{{outline, {{{1, 22}, {11, 2}}}, {{{1, 2}, {11, 22}}}}, {outline}}));
}

}  // namespace
}  // namespace SharedClasses::Utilities
