// A painter of Qt as a canvas. For the thread of the painter.
#pragma once

#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QPointF>
#include <algorithm>
#include <cmath>

#include "platform/canvas.h"

namespace toolkit {

class QtCanvas : public SharedClasses::platform::Canvas {
 public:
  // Draws with the pen of `painter`, which must outlive every call. y, which grows downwards in Qt, is 0 at the lower
  // edge of what is painted on, `height` points below the painter's origin.
  QtCanvas(QPainter& painter, double height) : mPainter(painter), mHeight(height) {}

  // Kept: with a cosmetic pen, as wide on every scale, a translucent colour is laid on twice where lines cross.
  void stroke(const SharedClasses::platform::Path& path) override {
    const QPen pen = mPainter.pen();
    QPainterPath lines;
    for (const SharedClasses::platform::Polyline& polyline : path) {
      addTo(lines, polyline);
    }
    if (pen.isCosmetic()) {
      mPainter.strokePath(lines, pen);
    } else if (pen.style() != Qt::NoPen) {
      // Filling the outline of the stroke lays a translucent colour on once; strokePath() lays lines on one by one.
      mPainter.fillPath(QPainterPathStroker(pen).createStroke(lines), pen.brush());
    }
  }

 private:
  void addTo(QPainterPath& lines, const SharedClasses::platform::Polyline& polyline) const {
    const auto isFinite = [](const auto& point) { return std::isfinite(point.x) && std::isfinite(point.y); };
    if (polyline.points.size() < 2 || !std::ranges::all_of(polyline.points, isFinite)) {
      return;  // Qt would leave out single points and draw another shape
    }
    lines.moveTo(toQt(polyline.points.front()));
    for (const SharedClasses::platform::Point& point : polyline.points) {
      lines.lineTo(toQt(point));  // Qt passes over the first, which it has already
    }
    if (polyline.isClosed) {
      lines.closeSubpath();
    }
  }

  [[nodiscard]] QPointF toQt(const SharedClasses::platform::Point& point) const { return {point.x, mHeight - point.y}; }

  QPainter& mPainter;
  double mHeight;
};

}  // namespace toolkit
