#include "system/activities/activity_manager.h"

#include <gtest/gtest.h>

#include <map>
#include <thread>

#include "platform/run_loop.h"
#include "system/activities/gui_activity.h"
#include "tests/support/captured_log.h"
#include "tests/support/hand_moved_clock.h"

namespace SharedClasses {
namespace {

// A manager with two visible activities that write down their calls; the first does the steps in them that a row names.
struct World {
  World(const char* progress, const char* abort) : one(add(0, progress, abort)), other(add(1, "", "")) {}

  std::shared_ptr<Activity> add(std::size_t number, const char* progress, const char* abort) {
    const ActivityFunctions functions{3600, [=, this](Activity&) { return perform(number, 'p', progress); },
                                      [=, this] { perform(number, 'a', abort); }};
    const auto activity = std::make_shared<GUIActivity>(functions, GUIActivityArguments{.withDisplayString = "Work"});
    manager->addActivity(activity);
    return activity;
  }
  bool perform(std::size_t number, char call, std::string_view steps) {
    calls[number] += call;
    const std::map<char, std::function<void()>> kSteps = {
        {'+', [this] { manager->addActivity(one); }},
        {'-', [this] { manager->removeActivity(one); }},
        {'~', [this] { manager->removeActivity(std::move(one)); }},
        {'x', [this] { one->abort(); }},
        {'i', [this] { one->setInterval(1); }},
        {'s', [this] { one->timer()->invalidate(); }},
        {'t', [this] { one->setTimer(platform::RunLoop::current().addTimer(std::chrono::hours(9), nullptr)); }},
        {'3', [this] { add(1, "", ""); }},
        {'N', [this] { newer.emplace(); }},
        {'h', [this] { manager->handleActivity(*one->timer()); }},
        {'m', [this] { ActivityManager().addActivity(one); }},
        {'A', [this] { manager->removeAllActivities(); }},
        {'D', [this] { manager.reset(); }},
        {'!', [] { throw std::out_of_range("no matter"); }},
        {'?', [] { throw 1; }},
    };
    for (const char step : steps.substr(0, steps.find('.'))) {
      kSteps.at(step)();
    }
    return steps.ends_with('.') && calls[number].size() == 4;  // done the fourth time
  }
  static void tickFiveTimes(tests::HandMovedClock& clock) {
    for (int tick = 0; tick < 5; ++tick) {
      clock.move(std::chrono::hours(1) - std::chrono::nanoseconds(1));
      EXPECT_FALSE(platform::RunLoop::current().runOnce({})) << "early";
      clock.move(std::chrono::nanoseconds(1));
      while (platform::RunLoop::current().runOnce({})) {
      }
    }
  }
  std::optional<ActivityManager> manager{std::in_place}, newer;
  std::string calls[3];  // 'p'rogress and 'a'bort of both, and from 'o'utside
  std::shared_ptr<Activity> one, other;
};

TEST(ActivityManager, CallbacksMayDoAnythingAndEachEndIsToldOnce) {
  const std::string thrown = "Terminating activity due to an exception. (std::out_of_range)";
  const std::string abortThrown = "The abort callback of an activity threw an object that is no exception.";
  const struct {
    const char* outside;  // done before five ticks
    const char* progress;
    const char* abort;
    const char* shown;  // calls of both, and how many are listed
    const char* name;
    std::vector<std::string> logged = {};
  } kRows[] = {
      {"", ".", "", "pppp|ppppp|1", "done the fourth time"},
      {"", "!", "?", "pa|ppppp|1", "both throw", {thrown, abortThrown}},
      {"h", "x!", "", "pa|ppppp|1", "aborts itself and throws, not held by the loop", {thrown}},
      {"", "~", "", "pa|ppppp|1", "removes itself and lets go"},
      {"", "-+", "", "papapapapa|ppppp|2", "removes and adds itself"},
      {"", "D!", "", "p||gone", "destroys the manager and throws", {thrown}},
      {"", "!", "D", "pa||gone", "abort destroys the manager after an exception", {thrown}},
      {"A", "", "+", "a|a|0", "all removed, abort adds itself"},
      {"A", "", "3", "a|appppp|1", "all removed, abort adds a third"},
      {"A", "", "A~", "a|a|0", "all removed, abort removes all and lets go"},
      {"A", "", "D", "a||gone", "all removed, abort destroys the manager"},
      {"sx", "", "", "|ppppp|2", "stopped, then aborted"},
      {"-i-", ".", "", "appp|ppppp|1", "removed, restarted, removed"},
      {"xix", "", "i", "aa|ppppp|1", "aborted, restarted, aborted, each time restarted by abort"},
      {"i+", "", "", "pppppppppp|ppppp|3", "listed twice"},
      {"i+", ".", "", "pppp|ppppp|1", "listed twice, done"},
      {"i+x", "", "", "a|ppppp|1", "listed twice, aborted"},
      {"i+-", "", "", "a|ppppp|1", "listed twice, removed"},
      {"tt-", "", "", "a|ppppp|1", "given two timers of others, removed"},
      {"Nix", "", "", "a|ppppp|1", "aborted while a newer manager is shared"},
      {"m", "", "", "|ppppp|1", "listed elsewhere, which ends"},
  };
  tests::HandMovedClock clock;
  platform::Clock::setCurrent(&clock);
  std::thread([&] {  // whose run loop goes by that clock
    for (const auto& row : kRows) {
      SCOPED_TRACE(row.name);
      const tests::CapturedLog log;
      {
        World world(row.progress, row.abort);
        world.perform(2, 'o', row.outside);
        World::tickFiveTimes(clock);
        const std::string listed = world.manager ? std::to_string(world.manager->numberOfVisibleActivities()) : "gone";
        EXPECT_EQ(world.calls[0] + "|" + world.calls[1] + "|" + listed, row.shown);
      }
      EXPECT_EQ(log.messages(), row.logged);
      EXPECT_EQ(platform::RunLoop::current().untilNextTimer(), std::nullopt) << "a timer is left";
    }
  })
      .join();
  platform::Clock::setCurrent(nullptr);
}

TEST(ActivityManager, TheNewestIsShared) {
  const ActivityManager& own = ActivityManager::sharedActivityManager();
  {
    const ActivityManager older, newer;
    EXPECT_EQ(&ActivityManager::sharedActivityManager(), &newer);
  }
  EXPECT_EQ(&ActivityManager::sharedActivityManager(), &own);
}

}  // namespace
}  // namespace SharedClasses
