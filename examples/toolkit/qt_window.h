// A top-level widget as a window of the desktop. For the thread of the user interface.
// The library's y grows upwards from the lower edge of the primary screen, Qt's downwards from its upper edge.
#pragma once

#include <QEvent>
#include <QGuiApplication>
#include <QObject>
#include <QRect>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/saturating.h"
#include "platform/window.h"

namespace toolkit {

// An object of Qt too, to see the events of its widget.
class QtWindow : public QObject, public SharedClasses::platform::Window {
 public:
  // Over `widget`, which must outlive every call.
  explicit QtWindow(QWidget& widget) : mWidget(widget), mWasSeen(widget.isVisible()) {
    mWidget.installEventFilter(this);
  }

  // The one that it has, hidden or not. From a setFrame() before the window is first seen until then, the frame that
  // was given there, even if Qt would make it larger.
  [[nodiscard]] SharedClasses::platform::Rectangle frame() const override {
    return mIsFrameGiven ? Window::frame() : fromQt(mWidget.frameGeometry());
  }

  // Qt keeps the widget from getting smaller than what it holds. What was given before the window is first seen is set
  // once more then: only now its title bar and border are known.
  void setFrame(const SharedClasses::platform::Rectangle& frame, bool display) override {
    Window::setFrame(frame, display);
    mIsFrameGiven = !mWasSeen;
    const QSize border = mWidget.frameGeometry().size() - mWidget.size();
    mWidget.resize(QSize(toQt(frame.width), toQt(frame.height)) - border);
    mWidget.move(toQt(frame.x), toQt(lowerEdge() - frame.y - frame.height));
    if (display) {
      mWidget.update();
    }
  }

  // What panels leave of each screen.
  [[nodiscard]] static std::vector<SharedClasses::platform::Rectangle> screens() {
    std::vector<SharedClasses::platform::Rectangle> available;
    for (const QScreen* const screen : QGuiApplication::screens()) {
      available.push_back(fromQt(screen->availableGeometry()));
    }
    return available;
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    const bool isPainted = event->type() == QEvent::Paint && watched == &mWidget;
    if (isPainted && !mWasSeen && mWidget.windowHandle() != nullptr && mWidget.windowHandle()->isExposed()) {
      mWasSeen = true;
      QTimer::singleShot(0, this, [this] {  // not while it is painted
        if (mIsFrameGiven) {
          setFrame(Window::frame(), true);
        }
      });
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  static int lowerEdge() {
    const QScreen* const primary = QGuiApplication::primaryScreen();
    return primary == nullptr ? 0 : primary->geometry().y() + primary->geometry().height();
  }

  static SharedClasses::platform::Rectangle fromQt(const QRect& rectangle) {
    return {.x = static_cast<double>(rectangle.x()),
            .y = static_cast<double>(lowerEdge() - rectangle.y() - rectangle.height()),
            .width = static_cast<double>(rectangle.width()),
            .height = static_cast<double>(rectangle.height())};
  }

  // Within what Qt can still add up.
  static int toQt(double points) {
    return std::clamp(SharedClasses::platform::saturatingCast<int>(std::round(points)), -QWIDGETSIZE_MAX,
                      QWIDGETSIZE_MAX);
  }

  QWidget& mWidget;
  bool mWasSeen;
  bool mIsFrameGiven = false;  // and not set yet on the screen
};

}  // namespace toolkit
