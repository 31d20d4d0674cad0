// The run loop of a thread: timers, descriptors and calls from other threads, one at a time.
// A program may let it run by itself (runOnce in a loop), or let a toolkit's loop drive it: descriptor() becomes
// readable whenever something is due, a timer included, and runOnce(0) then serves it. docs/run_loop.md shows both.
// All callbacks run on the loop's thread. What they throw is logged and dropped; they may add, move and stop anything,
// themselves included, and may call runOnce again: a callback that still runs is not called a second time inside.
// Everything here belongs to the loop's thread but wakeUp() and call(), which any thread may use as long as the loop
// lives; current() goes with its thread. A loop serves the process that made it: a fork must not use it.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "platform/clock.h"
#include "platform/timer.h"

namespace SharedClasses::platform {

// What a descriptor is waited for.
enum class Readiness {
  Readable,  // or ended, or broken: reading gives the answer
  Writable,
};

// A descriptor in a loop. Dropping it takes the descriptor out; that must happen before the descriptor is closed.
class Watch {
 public:
  Watch() = default;
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  virtual ~Watch() = default;
};

class RunLoop {
 public:
  // Takes timers by `clock`, which must outlive the loop. With another clock than the system's the loop still waits in
  // real time, and a wait does not end when that clock is moved.
  explicit RunLoop(const Clock& clock = Clock::system());
  RunLoop(const RunLoop&) = delete;
  RunLoop& operator=(const RunLoop&) = delete;
  ~RunLoop();  // timers become invalid; not from one of its callbacks

  // The calling thread's, made at its first use, with Clock::current() of then, and gone with the thread. What the
  // thread destroys after it gets another, which is never destroyed.
  [[nodiscard]] static RunLoop& current();

  // A timer that fires first after `firstAfter`, or after one interval, and then at every interval. The loop holds it
  // until it is invalidated.
  std::shared_ptr<Timer> addTimer(std::chrono::nanoseconds interval, Timer::Callback callback,
                                  std::optional<std::chrono::nanoseconds> firstAfter = std::nullopt);

  // Calls back whenever `descriptor` is ready, as long as the watch lives. Null for a descriptor that cannot be waited
  // for, such as that of a plain file, and where the system has no more of them.
  [[nodiscard]] std::unique_ptr<Watch> watch(int descriptor, Readiness readiness, std::function<void()> callback);

  // Runs `function` on the loop's thread, in the order of the calls. From any thread.
  void call(std::function<void()> function);

  // Ends the wait of the present runOnce, or of the next one; several at a time count as one. From any thread.
  void wakeUp();

  // Waits until something is due, at most `longest`, and serves one thing: one timer, one descriptor or one call. A
  // negative or zero span looks once. True when something was served, be it by a runOnce inside of the pump; false when
  // the time was over or a wake-up ended the wait. Sleeps while it waits.
  // Timers have every other turn, so that neither they nor the rest can keep the other waiting.
  // Beyond a hundred in one another, as when each of many calls waits for something itself, a runOnce serves nothing:
  // it sleeps, at most 10 ms, and is false. What waits in such a call is then served by nobody until it gives up.
  bool runOnce(std::chrono::nanoseconds longest);

  // For the loop of a toolkit: readable whenever runOnce(0) has something to serve. -1 where the system had none to
  // give; the loop then still works, but looks for descriptors and calls only every few milliseconds.
  [[nodiscard]] int descriptor() const;

  // How long until the next timer is due, 0 when one is; absent without timers.
  [[nodiscard]] std::optional<std::chrono::nanoseconds> untilNextTimer() const;

  // Lets a host serve its own sources while the library waits in runOnce: `pump` is called instead of sleeping. It must
  // return once descriptor() is readable or the span given to it is over, and may return earlier. Null for none. What
  // it throws is logged, and it is not called again.
  void setPump(std::function<void(std::chrono::nanoseconds)> pump);

  [[nodiscard]] const Clock& clock() const;

 private:
  class System;
  std::shared_ptr<System> mSystem;  // shared with nobody but, weakly, with watches that outlive the loop
};

}  // namespace SharedClasses::platform
