// The timers of one run loop, the next to fire in front. Adding, moving, removing and firing one take a time that grows
// with the logarithm of their number. Everything here belongs to the thread of the loop.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/clock.h"
#include "platform/timer.h"

namespace SharedClasses::platform {

class TimerHeap {
 public:
  // `frontChanged` is called when a timer has become the next to fire.
  TimerHeap(const Clock& clock, std::function<void()> frontChanged)
      : mClock(clock), mFrontChanged(std::move(frontChanged)) {}
  TimerHeap(const TimerHeap&) = delete;
  TimerHeap& operator=(const TimerHeap&) = delete;
  ~TimerHeap();  // invalidates all; not from a timer's callback

  std::shared_ptr<Timer> add(std::chrono::nanoseconds firstFiring, std::chrono::nanoseconds interval,
                             Timer::Callback callback);

  // The next to fire; null where there is none.
  [[nodiscard]] const Timer* next() const { return mTimers.empty() ? nullptr : mTimers.front().get(); }

  // Calls the next timer if it is due. What its callback throws is logged, and the timer goes on. False if none is due.
  bool fireIfDue();

 private:
  friend class Timer;

  using Entry = std::shared_ptr<Timer>;
  static bool isBefore(const Timer& a, const Timer& b);
  void insert(Entry timer);
  Entry remove(std::size_t place);
  void put(std::size_t place, Entry timer);
  void moveUp(std::size_t gap, Entry timer);  // puts it into the gap or above
  void moveDown(std::size_t gap, Entry timer);

  const Clock& mClock;
  std::function<void()> mFrontChanged;
  std::vector<Entry> mTimers;  // a binary heap
  std::uint64_t mAdded = 0;
};

}  // namespace SharedClasses::platform
