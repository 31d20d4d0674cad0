#include "platform/clock.h"

#include <algorithm>
#include <atomic>
#include <cmath>

#include "platform/saturating.h"

namespace SharedClasses::platform {

namespace {

constexpr std::chrono::nanoseconds kLongestSpan = std::chrono::years(100);
constexpr double kUnixTimeOfReference = 978307200.0;  // 2001-01-01 00:00:00 UTC

std::atomic<const Clock*> sCurrent = nullptr;  // null for the system's own

class SystemClock : public Clock {
 public:
  [[nodiscard]] std::chrono::nanoseconds steadyTime() const override {
    return std::chrono::steady_clock::now().time_since_epoch();
  }
  [[nodiscard]] Date now() const override {
    const std::chrono::duration<double> sinceUnixTime = std::chrono::system_clock::now().time_since_epoch();
    return {sinceUnixTime.count() - kUnixTimeOfReference};
  }
};

}  // namespace

const Clock& Clock::system() {
  static const auto* const sClock = new SystemClock;  // never destroyed: threads may ask until the process ends
  return *sClock;
}

const Clock& Clock::current() {
  const Clock* const clock = sCurrent;
  return clock != nullptr ? *clock : system();
}

void Clock::setCurrent(const Clock* clock) {
  sCurrent = clock;
}

std::chrono::nanoseconds spanOfSeconds(double seconds) {
  const auto count = saturatingCast<std::int64_t>(std::round(seconds * 1e9));
  return std::clamp(std::chrono::nanoseconds(count), std::chrono::nanoseconds(0), kLongestSpan);
}

}  // namespace SharedClasses::platform
