#include "platform/run_loop.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <thread>

#include "tests/support/captured_log.h"
#include "tests/support/hand_moved_clock.h"

namespace SharedClasses::platform {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

TEST(RunLoop, WatchesSeeWhatTheirDescriptorIsReadyFor) {
  const tests::CapturedLog captured;
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC), 0);
  RunLoop loop;
  std::string seen;
  std::unique_ptr<Watch> second;
  const auto first = loop.watch(ends[0], Readiness::Readable, [&] {
    char byte = 0;
    seen += read(ends[0], &byte, 1) == 1 ? "r" : "e";
    EXPECT_FALSE(loop.runOnce(0s) && seen.back() == 'e') << "entered again";
  });
  second = loop.watch(ends[0], Readiness::Readable, [&] { seen += "2", second.reset(), throw 5; });
  std::unique_ptr<Watch> writable = loop.watch(ends[1], Readiness::Writable, [&] {
    EXPECT_EQ(write(ends[1], "ab", 2), 2);
    writable.reset();
  });
  while (loop.runOnce(0s)) {
  }
  EXPECT_TRUE(seen == "r2r" || seen == "2rr") << seen;
  EXPECT_EQ(captured.messages().size(), 1U);
  close(ends[1]);
  EXPECT_TRUE(loop.runOnce(1h));
  EXPECT_EQ(seen.back(), 'e');
  close(ends[0]);
  const int file = open(__FILE__, O_RDONLY | O_CLOEXEC);
  EXPECT_EQ(loop.watch(file, Readiness::Readable, [] {}), nullptr);
  close(file);
}

TEST(RunLoop, ServesOneThingAtATimeAndStarvesNone) {
  const tests::HandMovedClock clock;
  std::array<int, 4> served{};
  std::unique_ptr<Watch> outliving;
  {
    RunLoop loop(clock);
    loop.addTimer(
        1s, [&](Timer& own) { ++served[0], own.setNextFiring(0s); }, 0s);
    const std::function<void()> callAgain = [&] { ++served[1], loop.call(callAgain); };
    loop.call(callAgain);
    RunLoop busy;
    busy.call([] {});
    const auto watch = loop.watch(busy.descriptor(), Readiness::Readable, [&] { ++served[2]; });
    outliving = loop.watch(busy.descriptor(), Readiness::Readable, [&] { ++served[3]; });
    for (int i = 1; i <= 800; ++i) {
      ASSERT_TRUE(loop.runOnce(0s));
      ASSERT_EQ(served[0] + served[1] + served[2] + served[3], i);
    }
  }
  EXPECT_GE(*std::ranges::min_element(served), 90);
}

TEST(RunLoop, CallsKeepTheOrderOfTheirThreadAndWakeUpsEndAWait) {
  RunLoop loop;
  std::array<int, 4> next{};
  std::vector<std::jthread> threads;
  for (int& count : next) {
    threads.emplace_back([&loop, &count] {
      for (int i = 0; i < 500; ++i) {
        loop.call([&count, i] { EXPECT_EQ(count++, i); });
      }
    });
  }
  for (int served = 0; served < 2'000; ++served) {
    ASSERT_TRUE(loop.runOnce(1h));
  }
  EXPECT_EQ(next, (std::array{500, 500, 500, 500}));
  loop.wakeUp();
  EXPECT_FALSE(loop.runOnce(1h)) << "the wait that was not yet under way";
  threads.emplace_back([&loop] { loop.wakeUp(); });
  EXPECT_FALSE(loop.runOnce(1h));
}

TEST(RunLoop, CallsThatWaitInOneAnotherComeToAnEnd) {
  RunLoop loop;
  int waiting = 0, mostWaiting = 0, served = 0;
  for (int i = 0; i < 20'000; ++i) {
    loop.call([&] {
      mostWaiting = std::max(mostWaiting, ++waiting);
      loop.runOnce(0ns);
      --waiting;
      ++served;
    });
  }
  while (loop.runOnce(0ns)) {
  }
  EXPECT_EQ(served, 20'000);
  EXPECT_EQ(mostWaiting, 100);
}

TEST(RunLoop, ItsDescriptorIsReadableWhenSomethingIsDue) {
  const std::pair<const char*, void (*)(RunLoop & loop, Timer & timer)> kRows[] = {
      {"a timer comes due", [](RunLoop& loop, Timer&) { loop.addTimer(3ms, [](Timer&) {}); }},
      {"one is moved to the past", [](RunLoop&, Timer& timer) { timer.setNextFiring(nanoseconds::min()); }},
      {"a call", [](RunLoop& loop, Timer&) { loop.call([] {}); }},
  };
  for (const auto& [name, makeDue] : kRows) {
    SCOPED_TRACE(name);
    RunLoop loop;
    const auto timer = loop.addTimer(1h, [](Timer& own) { own.invalidate(); });
    pollfd ready{loop.descriptor(), POLLIN, 0};
    EXPECT_FALSE(loop.runOnce(0s));
    EXPECT_EQ(poll(&ready, 1, 0), 0);
    makeDue(loop, *timer);
    do {
      ASSERT_EQ(poll(&ready, 1, 60'000), 1);
    } while (!loop.runOnce(0s));
  }
}

// With descriptors, and where the system has none to give.
TEST(RunLoop, ThePumpRunsInsteadOfSleeping) {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  for (const rlim_t descriptors : {limit.rlim_cur, rlim_t{0}}) {
    const tests::CapturedLog captured;
    const rlimit few{descriptors, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &few);
    RunLoop loop;
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(loop.descriptor() < 0, descriptors == 0);
    std::string seen;
    loop.setPump([&](nanoseconds) {
      seen += 'p';
      loop.setPump([&](nanoseconds) { seen += 't', throw 1; });
      loop.call([&] { seen += 'c'; });
      EXPECT_TRUE(loop.runOnce(0s));
    });
    EXPECT_TRUE(loop.runOnce(1h)) << "what a runOnce inside of the pump serves ends the wait around it";
    EXPECT_FALSE(loop.runOnce(7ms));
    loop.setPump([&](nanoseconds) { loop.wakeUp(), loop.runOnce(0s); });
    EXPECT_FALSE(loop.runOnce(1h)) << "what a runOnce inside of the pump takes is no more than a wake-up";
    loop.setPump([&](nanoseconds) { loop.setPump(nullptr); });
    loop.addTimer(3ms, [&](Timer&) { seen += 'f'; });
    EXPECT_TRUE(loop.runOnce(1h));
    EXPECT_EQ(seen, "pctf");
    EXPECT_EQ(captured.messages().size(), 1U) << "a pump that threw is not called again";
  }
}

}  // namespace SharedClasses::platform
