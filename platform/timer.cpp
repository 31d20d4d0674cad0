#include "platform/timer.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/exceptions.h"
#include "platform/log.h"
#include "platform/timer_heap.h"

namespace SharedClasses::platform {

Timer::Timer(TimerHeap& heap, std::chrono::nanoseconds interval, Callback callback)
    : mHeap(&heap),
      mInterval(std::clamp(interval, kShortestTimerInterval, kLongestTimerInterval)),
      mCallback(std::move(callback)) {}

void Timer::invalidate() {
  TimerHeap* const heap = std::exchange(mHeap, nullptr);
  if (heap == nullptr) {
    return;
  }
  // The heap and the contents may be the last to hold this timer.
  const std::shared_ptr<Timer> self = shared_from_this();
  if (mPlace != kNowhere) {
    heap->remove(mPlace);
  }
  letGoOfContents();
}

void Timer::letGoOfContents() {
  // What is let go of may ask this timer: by then it holds nothing more.
  const Value userInfo = std::exchange(mUserInfo, Value());
  const Callback callback = mIsFiring ? nullptr : std::exchange(mCallback, nullptr);
}

void Timer::setUserInfo(Value userInfo) {
  if (mHeap != nullptr) {
    std::swap(mUserInfo, userInfo);
  }
}

void Timer::setNextFiring(std::chrono::nanoseconds deadline) {
  if (mHeap == nullptr) {
    return;
  }
  deadline = std::clamp(deadline, std::chrono::nanoseconds(0), 2 * kLongestTimerInterval);
  if (mIsFiring) {
    mDeadline = deadline;
    mWasMoved = true;
    return;
  }
  std::shared_ptr<Timer> self = mHeap->remove(mPlace);
  mDeadline = deadline;
  mHeap->insert(std::move(self));
}

TimerHeap::~TimerHeap() {
  const std::vector<Entry> timers = std::exchange(mTimers, {});
  for (const Entry& timer : timers) {
    timer->mHeap = nullptr;
    timer->mPlace = Timer::kNowhere;
  }
  // Not before all are invalid: what a callback holds may ask other timers.
  for (const Entry& timer : timers) {
    timer->letGoOfContents();
  }
}

std::shared_ptr<Timer> TimerHeap::add(std::chrono::nanoseconds firstFiring, std::chrono::nanoseconds interval,
                                      Timer::Callback callback) {
  auto timer = std::make_shared<Timer>(*this, interval, std::move(callback));
  timer->mDeadline = firstFiring;
  timer->mOrder = mAdded++;
  insert(timer);
  return timer;
}

bool TimerHeap::fireIfDue() {
  if (mTimers.empty() || mTimers.front()->mDeadline > mClock.steadyTime()) {
    return false;
  }
  Entry timer = remove(0);
  timer->mIsFiring = true;
  timer->mWasMoved = false;
  if (const auto thrown = nameOfThrown([&] { timer->mCallback(*timer); })) {
    log("The callback of a timer threw " + *thrown + "; the timer goes on.");
  }
  timer->mIsFiring = false;
  if (!timer->isValid()) {
    timer->letGoOfContents();
    return true;
  }
  if (!timer->mWasMoved) {
    // The first point of the grid that is still to come.
    const auto now = std::max(mClock.steadyTime(), timer->mDeadline);
    timer->mDeadline = timeAfter(now, timer->mInterval - (now - timer->mDeadline) % timer->mInterval);
  }
  insert(std::move(timer));
  return true;
}

bool TimerHeap::isBefore(const Timer& a, const Timer& b) {
  return std::tie(a.mDeadline, a.mOrder) < std::tie(b.mDeadline, b.mOrder);
}

void TimerHeap::insert(Entry timer) {
  const Timer* const inserted = timer.get();
  mTimers.emplace_back();
  moveUp(mTimers.size() - 1, std::move(timer));
  if (next() == inserted) {
    mFrontChanged();
  }
}

TimerHeap::Entry TimerHeap::remove(std::size_t place) {
  Entry removed = std::exchange(mTimers[place], nullptr);
  removed->mPlace = Timer::kNowhere;
  Entry last = std::move(mTimers.back());
  mTimers.pop_back();
  if (place == mTimers.size()) {
    return removed;
  }
  // The last one may belong above the gap or below it.
  if (place > 0 && isBefore(*last, *mTimers[(place - 1) / 2])) {
    moveUp(place, std::move(last));
  } else {
    moveDown(place, std::move(last));
  }
  return removed;
}

void TimerHeap::put(std::size_t place, Entry timer) {
  timer->mPlace = place;
  mTimers[place] = std::move(timer);
}

void TimerHeap::moveUp(std::size_t gap, Entry timer) {
  while (gap > 0 && isBefore(*timer, *mTimers[(gap - 1) / 2])) {
    put(gap, std::move(mTimers[(gap - 1) / 2]));
    gap = (gap - 1) / 2;
  }
  put(gap, std::move(timer));
}

void TimerHeap::moveDown(std::size_t gap, Entry timer) {
  for (std::size_t child = 2 * gap + 1; child < mTimers.size(); child = 2 * gap + 1) {
    if (child + 1 < mTimers.size() && isBefore(*mTimers[child + 1], *mTimers[child])) {
      ++child;
    }
    if (!isBefore(*mTimers[child], *timer)) {
      break;
    }
    put(gap, std::move(mTimers[child]));
    gap = child;
  }
  put(gap, std::move(timer));
}

}  // namespace SharedClasses::platform
