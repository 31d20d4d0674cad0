#include "system/activities/activity_manager.h"

#include <algorithm>
#include <utility>

#include "platform/exceptions.h"
#include "platform/log.h"
#include "platform/run_loop.h"
#include "system/activities/gui_activity.h"

namespace SharedClasses {

ActivityManager* ActivityManager::sActivityManager = nullptr;

ActivityManager& ActivityManager::sharedActivityManager() {
  if (sActivityManager == nullptr) {
    static auto* const sOwn = new ActivityManager;
    sActivityManager = sOwn;
  }
  return *sActivityManager;
}

ActivityManager::ActivityManager() {
  sActivityManager = this;
}

ActivityManager::~ActivityManager() {
  if (sActivityManager == this) {
    sActivityManager = nullptr;
  }
  for (const auto& activity : std::exchange(mActivityList, {})) {
    activity->mManager = nullptr;
    activity->stopTimers();
  }
}

void ActivityManager::addActivity(const std::shared_ptr<Activity>& activity) {
  if (activity == nullptr) {
    return;
  }
  if (activity->mManager != nullptr && activity->mManager != this) {
    activity->mManager->takeOut(*activity);
    activity->stopTimers();
  }
  startTimer(*activity);
  activity->mManager = this;
  mActivityList.push_back(activity);
}

void ActivityManager::handleActivity(platform::Timer& timer) {
  const std::shared_ptr<platform::Timer> held = timer.weak_from_this().lock();  // the activity lets go of it at its end
  const auto activity = std::dynamic_pointer_cast<Activity>(timer.userInfo().object());
  if (activity == nullptr) {
    timer.invalidate();
    return;
  }
  bool isDone = false;
  if (const auto thrown = platform::nameOfThrown([&] { isDone = activity->makeProgress(); })) {
    platform::log("Terminating activity due to an exception. (" + *thrown + ")");
    activity->abort();
    isDone = true;
  }
  if (!isDone) {
    return;
  }
  timer.invalidate();
  activity->stopTimers();
  // Not this manager's own call: the callback may have destroyed it.
  if (ActivityManager* const manager = activity->mManager) {
    manager->removeActivity(activity);
  }
}

// The activity comes by value since the caller's own pointer may go with the entry.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void ActivityManager::removeActivity(std::shared_ptr<Activity> activity) {
  if (activity == nullptr || activity->mManager != this) {
    return;
  }
  takeOut(*activity);
  // Its abort comes back here and finds it no longer listed, or listed anew by the abort callback, which does not
  // count.
  activity->abort();
  activity->stopTimers();
  activity->setTimer(nullptr);
}

void ActivityManager::removeAllActivities() {
  const std::weak_ptr<void> alive = mAlive;
  const auto listed = mActivityList;
  for (const auto& activity : listed) {
    // A callback may have removed the next ones, or destroyed the manager.
    if (!alive.expired() && activity->mManager == this) {
      activity->abort();
    }
    if (!alive.expired()) {
      removeActivity(activity);
    }
  }
}

std::int32_t ActivityManager::numberOfVisibleActivities() const {
  return static_cast<std::int32_t>(std::ranges::count_if(mActivityList, [](const auto& activity) {
    const auto* const shown = dynamic_cast<const GUIActivity*>(activity.get());
    return shown != nullptr && shown->isVisible();
  }));
}

void ActivityManager::startTimer(Activity& activity) {
  const auto tick = [this, alive = std::weak_ptr<void>(mAlive)](platform::Timer& ticking) {
    if (alive.expired()) {
      ticking.invalidate();
    } else {
      handleActivity(ticking);
    }
  };
  auto timer = platform::RunLoop::current().addTimer(platform::spanOfSeconds(activity.interval()), tick);
  timer->setUserInfo(activity.weak_from_this().lock());
  activity.setTimer(std::move(timer));
}

void ActivityManager::takeOut(Activity& activity) {
  std::erase_if(mActivityList, [&](const auto& listed) { return listed.get() == &activity; });
  activity.mManager = nullptr;
}

}  // namespace SharedClasses
