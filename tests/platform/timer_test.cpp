#include "platform/timer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platform/run_loop.h"
#include "tests/support/captured_log.h"
#include "tests/support/hand_moved_clock.h"

namespace SharedClasses::platform {
namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;
using Spans = std::vector<nanoseconds>;

struct TimerTest : testing::Test {
  std::shared_ptr<Timer> add(nanoseconds interval, nanoseconds first, Timer::Callback callback) {
    return loop.addTimer(interval, std::move(callback), first);
  }
  void moveTo(nanoseconds time) {
    clock.move(start + time - clock.steadyTime());
    while (loop.runOnce(0s)) {
    }
  }
  tests::HandMovedClock clock;
  RunLoop loop{clock};
  const nanoseconds start = clock.steadyTime();
  std::string fired;
};

TEST_F(TimerTest, TicksLieOnTheGridOfTheFirstOneAndAreNeverEarly) {
  const struct {
    const char* name;
    nanoseconds interval, first, takes;
    Spans looks, expected;
  } kRows[] = {
      {"on time", 100ms, 100ms, 0s, {100ms - 1ns, 100ms, 200ms - 1ns, 200ms}, {100ms, 200ms}},
      {"late ticks become one", 100ms, 100ms, 0s, {450ms, 499ms, 500ms}, {100ms, 500ms}},
      {"late by one interval", 100ms, 100ms, 0s, {200ms, 299ms, 300ms}, {100ms, 300ms}},
      {"slow callback", 100ms, 100ms, 250ms, {100ms, 399ms, 400ms, 699ms, 700ms}, {100ms, 400ms, 700ms}},
      {"first in the past", 100ms, -1h, 0s, {0s, 99ms, 100ms}, {0s, 100ms}},
      {"no interval is the shortest", -5s, 5us, 0s, {5us, 104us, 105us}, {5us, 105us}},
      {"endless interval", nanoseconds::max(), 1s, 0s, {1s, 800'000h}, {1s}},
      {"endless both", 900'000h, 900'000h, 0s, {876'582h, 1'753'164h}, {876'582h, 1'753'164h}},
      {"endless first", 1s, nanoseconds::max(), 0s, {800'000h, 876'582h}, {876'582h}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    moveTo(0s);
    Spans ticks;
    const auto timer = add(row.interval, row.first, [&](Timer& ticking) {
      ticks.push_back(ticking.nextFiring() - start);
      clock.move(row.takes);
    });
    std::ranges::for_each(row.looks, [&](nanoseconds look) { moveTo(look); });
    EXPECT_EQ(ticks, row.expected);
    timer->invalidate();
  }
}

TEST_F(TimerTest, CallbacksMayRunTheLoopStopMoveAddAndThrow) {
  const tests::CapturedLog captured;
  std::shared_ptr<Timer> b;
  std::shared_ptr<Timer> c;
  add(10ms, 10ms, [&](Timer& a) {
    fired += 'a';
    b->invalidate();  // due at the same time, but behind in order
    c->setNextFiring(start + 15ms);
    a.setNextFiring(a.nextFiring() + 15ms);
    add(9ms, 0s, [&](Timer& once) {
      once.invalidate();
      once.setNextFiring(start);
      fired += 'n';
      throw std::out_of_range("secret");
    });
  });
  b = add(10ms, 10ms, [&](Timer&) { fired += 'b'; });
  c = add(10ms, 10ms, [&](Timer&) { fired += 'c', throw 5; });
  add(10ms, 10ms, [&](Timer&) { fired += 'd'; });
  for (int time = 0; time < 30; ++time) {
    moveTo(1ms * time);
  }
  EXPECT_EQ(fired, "adncdacn") << "a d n at 10, c at 15, d at 20, a c n at 25";
  const std::string line = "The callback of a timer threw ";
  const std::string n = line + "std::out_of_range; the timer goes on.";
  const std::string five = line + "an object that is no exception; the timer goes on.";
  EXPECT_EQ(captured.messages(), (std::vector{n, five, five, n}));

  fired = "";
  add(1h, 0s, [&](Timer& outer) {
    fired += '(';
    outer.setNextFiring(start);
    moveTo(31ms);
    fired += ')';
    outer.invalidate();
  });
  moveTo(29ms);
  EXPECT_EQ(fired, "(d)") << "the others tick inside of a callback, itself does not";
}

TEST_F(TimerTest, TheNextOneIsThatOfASortedListWhateverIsAddedMovedAndStopped) {
  std::mt19937 random(4);
  std::vector<std::shared_ptr<Timer>> model;  // in the order of adding
  const Timer* last = nullptr;
  for (int step = 0; step < 6'000; ++step) {
    const nanoseconds span = 1ms * (random() % 50);  // often the same
    const auto pick = model.begin() + static_cast<std::ptrdiff_t>(model.empty() ? 0 : random() % model.size());
    const unsigned action = random() % 8;
    if (action < 3 || model.empty()) {
      model.push_back(add(1h, span, [&last](Timer& timer) { last = &timer; }));
    } else if (action < 5) {
      (*pick)->setNextFiring(clock.steadyTime() + span);
    } else if (action < 6) {
      (*pick)->invalidate();
      model.erase(pick);
    } else {
      const Timer* const next = std::ranges::min_element(model, {}, &Timer::nextFiring)->get();
      ASSERT_EQ(*loop.untilNextTimer(), std::max(next->nextFiring() - clock.steadyTime(), nanoseconds(0)));
      clock.move(*loop.untilNextTimer());
      ASSERT_TRUE(loop.runOnce(0s));
      ASSERT_EQ(last, next) << step;
    }
  }
}

TEST(Timer, LetsGoOfWhatItHoldsWhenItIsStoppedAndWhenItsLoopGoes) {
  for (const bool isStopped : {true, false}) {
    auto loop = std::make_unique<RunLoop>();
    const auto held = std::make_shared<int>();
    std::shared_ptr<Timer> other;
    const auto timer = loop->addTimer(
        1h, [held, &other](Timer& own) { own.invalidate(), other->invalidate(); }, 0s);
    other = loop->addTimer(1h, [held, timer](Timer&) {});
    timer->setUserInfo("user info");
    EXPECT_TRUE(!isStopped || loop->runOnce(0s));
    EXPECT_EQ(held.use_count(), isStopped ? 1 : 3);
    loop.reset();
    EXPECT_EQ(held.use_count(), 1);
    timer->setNextFiring(0s);
    timer->setUserInfo("late");
    timer->invalidate();
    EXPECT_TRUE(timer->userInfo().isAbsent() && !timer->isValid() && !other->isValid());
  }
}

}  // namespace
}  // namespace SharedClasses::platform
