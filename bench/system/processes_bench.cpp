// A run of /bin/true with captured output, beside a bare posix_spawn with pipes and a wait in the same run: to be at
// most
// 1.15 times that, however much memory the program has. And what a wait costs.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "platform/run_loop.h"
#include "system/processes/simple_task.h"

namespace SharedClasses {
namespace {

using Seconds = std::chrono::duration<double>;

void require(bool condition, const char* what) {
  if (!condition) {
    std::fprintf(stderr, "processes_bench: %s failed\n", what);
    std::exit(1);
  }
}

void runBare() {
  std::array<std::array<int, 2>, 3> pipes{};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (std::size_t i = 0; i < pipes.size(); ++i) {
    require(pipe2(pipes[i].data(), O_CLOEXEC) == 0, "pipe2");
    posix_spawn_file_actions_adddup2(&actions, pipes[i][i == 0 ? 0 : 1], static_cast<int>(i));
  }
  pid_t child = 0;
  char name[] = "/bin/true";
  char* words[] = {name, nullptr};
  require(posix_spawn(&child, name, &actions, nullptr, words, environ) == 0, "posix_spawn");
  posix_spawn_file_actions_destroy(&actions);
  for (const int end : {pipes[0][0], pipes[0][1], pipes[1][1], pipes[2][1]}) {
    close(end);
  }
  int status = 0;
  require(waitpid(child, &status, 0) == child && status == 0, "waitpid");
  std::array<char, 4096> bytes{};
  for (const int end : {pipes[1][0], pipes[2][0]}) {
    require(read(end, bytes.data(), bytes.size()) == 0, "read");
    close(end);
  }
}

void runTask() {
  std::optional<std::string> output;
  std::optional<std::string> error;
  SimpleTask task({.launchPath = "/bin/true", .outputText = &output, .errorText = &error, .maxSecondsToWait = 10});
  require(output == "" && error == "" && task.terminationStatus() == 0, "the task");
}

Seconds timeOf(void (*run)()) {
  const auto start = std::chrono::steady_clock::now();
  run();
  return std::chrono::steady_clock::now() - start;
}

// The argument is what the program holds in memory, in MiB. One of each kind by turns; the ratio is that of the
// medians.
void BM_RunOfTrueBesideABareSpawn(benchmark::State& state) {
  std::vector<char> memory(static_cast<std::size_t>(state.range(0)) << 20, 'x');  // touched
  benchmark::DoNotOptimize(memory.data());
  std::vector<Seconds> bare;
  std::vector<Seconds> task;
  runTask();
  for (auto _ : state) {
    bare.push_back(timeOf(runBare));
    task.push_back(timeOf(runTask));
    state.SetIterationTime(task.back().count());
  }
  const auto median = [](std::vector<Seconds>& times) {
    std::ranges::nth_element(times, times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2));
    return times[times.size() / 2].count();
  };
  state.counters["bare_us"] = median(bare) * 1e6;
  state.counters["task_us"] = median(task) * 1e6;
  state.counters["ratio"] = median(task) / median(bare);
}
BENCHMARK(BM_RunOfTrueBesideABareSpawn)->Arg(0)->Arg(512)->UseManualTime()->Iterations(1500);

// The processor's time while a child is waited for that takes 2 seconds; to be less than 3 ms.
void BM_ProcessorTimeOfAWait(benchmark::State& state) {
  const auto processorTime = [] {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  };
  for (auto _ : state) {
    const double before = processorTime();
    SimpleTask task({.launchPath = "/bin/sleep", .arguments = std::vector<std::string>{"2"}, .maxSecondsToWait = 10});
    state.counters["cpu_ms"] = processorTime() - before;
    require(task.terminationStatus() == 0, "the sleep");
  }
}
BENCHMARK(BM_ProcessorTimeOfAWait)->Iterations(1)->UseRealTime();

// How late a run at most is that a limit of 50 ms ends, from its launch on; to be less than 1 ms in each of 20. The
// launch is over when the run loop is served first, which is some microseconds after the time of the limit has begun.
void BM_LatenessOfALimit(benchmark::State& state) {
  constexpr Seconds kLimit(0.05);
  double worst = 0;
  for (auto _ : state) {
    std::chrono::steady_clock::time_point launched;
    platform::RunLoop::current().call([&launched] { launched = std::chrono::steady_clock::now(); });
    const SimpleTask task(
        {.launchPath = "/bin/sleep", .arguments = std::vector<std::string>{"1"}, .maxSecondsToWait = kLimit.count()});
    worst = std::max(worst, Seconds(std::chrono::steady_clock::now() - launched - kLimit).count());
  }
  state.counters["worst_late_ms"] = worst * 1e3;
}
BENCHMARK(BM_LatenessOfALimit)->Iterations(20)->UseRealTime();

}  // namespace
}  // namespace SharedClasses
