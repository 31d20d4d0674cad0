#include <gtest/gtest.h>

#include "system/activities/activity_manager.h"
#include "system/activities/gui_activity.h"

namespace SharedClasses {
namespace {

// Writes down what it is asked, by others or by itself.
struct Owner : GUIActivity {
  using GUIActivity::GUIActivity;
  platform::Value performSelector(std::string_view selector, std::span<const platform::Value> arguments) override {
    asked += std::string(selector) + " ";
    for (const platform::Value& argument : arguments) {
      asked += argument.isAbsent() ? "none " : argument.object()->className() + " ";
    }
    return answer;
  }
  std::string asked;
  platform::Value answer;
};

TEST(Activity, KeepsItsCallbackObjectButNeitherItselfNorTheUserInfo) {
  ActivityManager manager;
  auto owner = std::make_shared<Owner>(GUIActivityArguments{.activity = {.selector = "own", .callsItself = true}});
  auto activity = std::make_shared<Activity>(ActivityArguments{3600, owner, "step::", "stop", owner});
  EXPECT_THROW(static_cast<void>(activity->makeProgress()), UnknownSelector) << "answers nothing, responds to nothing";
  for (const auto& [answer, isDone] : {std::pair<platform::Value, bool>(-0.5, true), {1LL << 32, true}, {0, false}}) {
    owner->asked.clear();
    owner->answer = answer;
    EXPECT_EQ(activity->makeProgress(40), isDone);
  }
  activity->abort();  // has no timer
  manager.addActivity(activity);
  manager.addActivity(owner);  // has no abort selector
  manager.addActivity(nullptr);
  EXPECT_EQ(manager.numberOfVisibleActivities(), 0);
  manager.removeAllActivities();
  EXPECT_FALSE(owner->makeProgress());
  EXPECT_EQ(owner->asked, "step:: Activity GUIActivity stop own GUIActivity none ");
  const std::weak_ptr<Owner> living = std::exchange(owner, nullptr);
  EXPECT_FALSE(living.expired());
  activity = std::make_shared<Activity>(ActivityArguments{.userInfo = living});
  EXPECT_EQ(activity->callBackUserInfo(), nullptr);
}

TEST(Activity, RestartsAtItsOldIntervalAndWithoutACallbackEndsAtTheFirstTick) {
  ActivityManager manager;
  auto activity = std::make_shared<Activity>(ActivityArguments{.init = 2.5, .abortSelector = "stop"});
  EXPECT_EQ(activity->description(), "Activity timer: (null) interval 2.5");
  manager.addActivity(activity);
  const auto first = activity->timer();
  activity->setInterval(5.0);
  platform::Timer& timer = *activity->timer();
  EXPECT_EQ(timer.interval(), std::chrono::milliseconds(2500));
  EXPECT_EQ(activity->description(), "Activity timer: <Timer " + testing::PrintToString(&timer) + "> interval 2.5");
  const std::weak_ptr<Activity> living = std::exchange(activity, nullptr);
  EXPECT_FALSE(living.expired() || first->isValid());
  manager.handleActivity(timer);
  EXPECT_TRUE(living.expired());
}

TEST(GUIActivity, IsVisibleWithATitleAndKeepsProgressWithinAHundred) {
  GUIActivity untitled({});
  const GUIActivity emptyTitle({.withDisplayString = ""});
  EXPECT_FALSE(untitled.isVisible() || emptyTitle.isVisible());
  EXPECT_EQ(untitled.displayTitle(), "");
  for (const auto& [set, shown] : {std::pair(-1, 0), {100, 100}, {101, 100}}) {
    untitled.setProgress(set);
    EXPECT_EQ(untitled.progress(), shown);
  }
}

}  // namespace
}  // namespace SharedClasses
