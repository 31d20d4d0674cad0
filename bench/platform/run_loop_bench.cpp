// What a tick of one of 10,000 repeating timers costs, and how late a wait ends. Goals: at most 1 microsecond of CPU a
// tick of a thread that is awake (waking one up costs more, whoever does it), less than 1 ms late; a timer that is
// early or has left its grid fails the benchmark.
#include <benchmark/benchmark.h>
#include <poll.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "platform/run_loop.h"

namespace SharedClasses::platform {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

constexpr int kTimers = 10'000;

// Ticks of 10,000 timers of one interval, their phases `apart` from one to the next.
void repeatingTimers(benchmark::State& state, nanoseconds interval, nanoseconds apart) {
  RunLoop loop;
  std::int64_t ticks = 0;
  bool hasFailed = false;
  const nanoseconds start = loop.clock().steadyTime() + milliseconds(50);
  std::vector<std::shared_ptr<Timer>> timers;
  for (int i = 0; i < kTimers; ++i) {
    const nanoseconds first = start + apart * i;
    timers.push_back(loop.addTimer(interval, [&, first](Timer& timer) {
      ++ticks;
      const bool isEarly = loop.clock().steadyTime() < timer.nextFiring();
      hasFailed = hasFailed || isEarly || (timer.nextFiring() - first) % timer.interval() != nanoseconds(0);
    }));
    timers.back()->setNextFiring(first);
  }
  while (loop.clock().steadyTime() < start) {
    loop.runOnce(milliseconds(1));
  }
  for (auto _ : state) {
    const std::int64_t end = ticks + kTimers;
    while (ticks < end) {
      loop.runOnce(std::chrono::seconds(1));
    }
  }
  if (hasFailed) {
    state.SkipWithError("A timer was early or left its grid");
  }
  state.counters["CPU a tick"] = benchmark::Counter(static_cast<double>(state.iterations()) * kTimers,
                                                    benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK_CAPTURE(repeatingTimers, dueTogether, milliseconds(20), nanoseconds(0))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(repeatingTimers, moreThanTheThreadCanServe, milliseconds(1), nanoseconds(100))
    ->Unit(benchmark::kMillisecond);
// The loop sleeps before each tick: what a wake-up of the thread costs comes on top, and is measured by itself below.
BENCHMARK_CAPTURE(repeatingTimers, oneAtATime, milliseconds(500), microseconds(50))->Unit(benchmark::kMillisecond);

// The yardstick of the last one: waking up at the same pace by the system's timer and poll alone.
void bareWakeUps(benchmark::State& state) {
  const int timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
  const itimerspec setting{{0, 50'000}, {0, 50'000}};
  timerfd_settime(timer, 0, &setting, nullptr);
  pollfd ready{timer, POLLIN, 0};
  for (auto _ : state) {
    std::uint64_t passed = 0;
    poll(&ready, 1, -1);
    benchmark::DoNotOptimize(read(timer, &passed, sizeof passed));
  }
  close(timer);
}
BENCHMARK(bareWakeUps)->Unit(benchmark::kMicrosecond);

// 10,000 ticks of one timer, on its grid to the nanosecond unless the machine was too busy for one.
void tenThousandTicks(benchmark::State& state) {
  constexpr nanoseconds kInterval = microseconds(150);
  nanoseconds worst(0);
  for (auto _ : state) {
    RunLoop loop;
    std::vector<nanoseconds> points;
    const auto timer = loop.addTimer(kInterval, [&](Timer& ticking) {
      points.push_back(ticking.nextFiring());
      worst = std::max(worst, loop.clock().steadyTime() - ticking.nextFiring());
      if (loop.clock().steadyTime() < ticking.nextFiring()) {
        state.SkipWithError("The timer was early");
      }
    });
    while (points.size() < 10'000) {
      loop.runOnce(std::chrono::seconds(1));
    }
    if ((points.back() - points.front()) % kInterval != nanoseconds(0)) {
      state.SkipWithError("The timer has drifted");
    }
    state.counters["left out"] = static_cast<double>((points.back() - points.front()) / kInterval) - 9'999;
  }
  state.counters["latest, ms"] = std::chrono::duration<double, std::milli>(worst).count();
}
BENCHMARK(tenThousandTicks)->Iterations(1)->Unit(benchmark::kMillisecond);

// How late a wait of 50 ms ends, the worst of 20.
void waitOf50ms(benchmark::State& state) {
  RunLoop loop;
  nanoseconds worst(0);
  for (auto _ : state) {
    const nanoseconds end = loop.clock().steadyTime() + milliseconds(50);
    loop.runOnce(milliseconds(50));
    const nanoseconds late = loop.clock().steadyTime() - end;
    worst = std::max(worst, late);
    if (late < nanoseconds(0)) {
      state.SkipWithError("The wait ended early");
    }
  }
  state.counters["latest, ms"] = std::chrono::duration<double, std::milli>(worst).count();
}
BENCHMARK(waitOf50ms)->Iterations(20)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace SharedClasses::platform
