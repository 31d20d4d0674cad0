// Where the library reads the time: a steady clock for waits and timers, and the time of day.
// The system's is the usual one; tests move one by hand. Safe on any thread.
#pragma once

#include <algorithm>
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

  // What the library reads "today" and "now" from: the system's own, or the one that was set.
  [[nodiscard]] static const Clock& current();
  // Sets it for the whole program; `clock` must live until another is set. Null for the system's own.
  static void setCurrent(const Clock* clock);
};

// `seconds` as the nearest span of whole nanoseconds: 0 for what is negative or not a number; at most a hundred years,
// which also stands for infinity.
[[nodiscard]] std::chrono::nanoseconds spanOfSeconds(double seconds);

// `time` and `span`, which is not negative, later; at most the last time that can be counted, which is 292 years.
[[nodiscard]] constexpr std::chrono::nanoseconds timeAfter(std::chrono::nanoseconds time,
                                                           std::chrono::nanoseconds span) {
  return std::min(time, std::chrono::nanoseconds::max() - span) + span;
}

}  // namespace SharedClasses::platform
