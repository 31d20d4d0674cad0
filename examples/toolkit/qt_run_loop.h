// Qt's events drive the run loop of their thread; while the library waits, the run loop lets Qt's events go on.
// Made after the QApplication, dropped before it, on its thread.
#pragma once

#include <QCoreApplication>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <memory>

#include "platform/run_loop.h"

namespace toolkit {

class QtRunLoop {
 public:
  QtRunLoop() {
    const auto serve = [this] { mRunLoop.runOnce(std::chrono::seconds(0)); };
    if (mRunLoop.descriptor() >= 0) {
      mNotifier = std::make_unique<QSocketNotifier>(mRunLoop.descriptor(), QSocketNotifier::Read);
      QObject::connect(mNotifier.get(), &QSocketNotifier::activated, serve);
    } else {  // the system had none left: the run loop is asked every few milliseconds
      QObject::connect(&mTimer, &QTimer::timeout, serve);
      mTimer.start(std::chrono::milliseconds(5));
    }
    mRunLoop.setPump(serveQt);
  }
  QtRunLoop(const QtRunLoop&) = delete;
  QtRunLoop& operator=(const QtRunLoop&) = delete;
  ~QtRunLoop() { mRunLoop.setPump(nullptr); }

 private:
  // Ends when anything was served, the run loop's descriptor included, or after `longest`, which is a day at most.
  static void serveQt(std::chrono::nanoseconds longest) {
    QTimer end;
    end.setTimerType(Qt::PreciseTimer);
    end.start(std::chrono::ceil<std::chrono::milliseconds>(longest));
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }

  SharedClasses::platform::RunLoop& mRunLoop = SharedClasses::platform::RunLoop::current();
  std::unique_ptr<QSocketNotifier> mNotifier;  // null without a descriptor
  QTimer mTimer;                               // runs only then
};

}  // namespace toolkit
