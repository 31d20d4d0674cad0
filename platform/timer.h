// A timer of a run loop: it calls back again and again, on a grid that starts at its first firing.
// A timer is never early and does not drift; firings that its thread was too busy for are left out; it is never called
// while its callback still runs. Everything here belongs to the thread of its loop.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/value.h"

namespace SharedClasses::platform {

class TimerHeap;

// An interval outside of these two counts as the nearer one.
inline constexpr std::chrono::nanoseconds kShortestTimerInterval = std::chrono::microseconds(100);
inline constexpr std::chrono::nanoseconds kLongestTimerInterval = std::chrono::years(100);

class Timer : public std::enable_shared_from_this<Timer> {
 public:
  using Callback = std::function<void(Timer&)>;

  // For the loop: programs call RunLoop::addTimer.
  Timer(TimerHeap& heap, std::chrono::nanoseconds interval, Callback callback);
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;
  ~Timer() = default;

  // False once it was invalidated or its loop is gone.
  [[nodiscard]] bool isValid() const { return mHeap != nullptr; }
  // Stops it for good; its loop lets go of it, and it of its callback and user info (of a callback that runs, once that
  // has returned). May be called again, and from any callback.
  void invalidate();

  [[nodiscard]] std::chrono::nanoseconds interval() const { return mInterval; }
  // Whatever the timer is about; absent unless set, and once invalid. Setting it is ignored then.
  [[nodiscard]] const Value& userInfo() const { return mUserInfo; }
  void setUserInfo(Value userInfo);

  // On the steady clock of the loop; while the callback runs, the firing that it was called for.
  [[nodiscard]] std::chrono::nanoseconds nextFiring() const { return mDeadline; }
  // Moves the grid: the next firing is at `deadline`, later ones follow at the interval. A deadline that has passed is
  // due at once; one before 0 or after 200 years counts as those. Ignored once invalid.
  void setNextFiring(std::chrono::nanoseconds deadline);

 private:
  friend class TimerHeap;

  void letGoOfContents();

  static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

  TimerHeap* mHeap;  // that schedules it; null once invalid
  std::chrono::nanoseconds mInterval;
  Callback mCallback;
  Value mUserInfo;
  std::chrono::nanoseconds mDeadline{0};
  std::uint64_t mOrder = 0;  // of two that are due at the same time the one that was added first fires first
  std::size_t mPlace = kNowhere;
  bool mIsFiring = false;  // its callback runs; it is out of the heap until that returns
  bool mWasMoved = false;  // its callback set the next firing
};

}  // namespace SharedClasses::platform
