// Where the library reads the time: a steady clock for waits and timers, and the time of day.
// The system's is the usual one; tests move one by hand. Safe on any thread.
#pragma once

#include <chrono>

#include "platform/date.h"

namespace SharedClasses::platform {

class Clock {
 public:
  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  virtual ~Clock() = default;

  // A count that only grows, whatever is done to the time of day, and that stands still while the machine sleeps.
  [[nodiscard]] virtual std::chrono::nanoseconds steadyTime() const = 0;

  [[nodiscard]] virtual Date now() const = 0;

  // The system's own; lives until the process ends.
  [[nodiscard]] static const Clock& system();
};

// `seconds` as the nearest span of whole nanoseconds: 0 for what is negative or not a number; at most a hundred years, which
// also stands for infinity.
[[nodiscard]] std::chrono::nanoseconds spanOfSeconds(double seconds);

}  // namespace SharedClasses::platform
