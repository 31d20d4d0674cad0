// A clock that stands still until a test moves it. It starts an hour after its zero, at 2001-01-01 00:00:00 UTC.
#pragma once

#include "platform/clock.h"

namespace SharedClasses::tests {

class HandMovedClock : public platform::Clock {
 public:
  void move(std::chrono::nanoseconds span) { mPassed += span; }

  [[nodiscard]] std::chrono::nanoseconds steadyTime() const override { return std::chrono::hours(1) + mPassed; }
  [[nodiscard]] platform::Date now() const override { return {std::chrono::duration<double>(mPassed).count()}; }

 private:
  std::chrono::nanoseconds mPassed{0};
};

}  // namespace SharedClasses::tests
