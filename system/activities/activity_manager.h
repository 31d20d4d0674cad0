// The one registry of running activities: it starts their timers, turns ticks into progress, and takes out what is
// done, failed or aborted. Callbacks may add, abort, remove and destroy anything.
// Everything here belongs to the thread whose run loop ticks.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/timer.h"
#include "system/activities/activity.h"

namespace SharedClasses {

class ActivityManager {
 public:
  // The manager that was made last, or, where that is gone, the library's own, made at first need and never destroyed.
  [[nodiscard]] static ActivityManager& sharedActivityManager();

  // `init`
  // An empty list. From now on this is the shared manager.
  ActivityManager();
  ActivityManager(const ActivityManager&) = delete;
  ActivityManager& operator=(const ActivityManager&) = delete;
  ~ActivityManager();  // stops the timers, tells nobody

  // Starts the activity on the calling thread's run loop. Null is ignored.
  // Kept: one that is listed already is listed once more and gets a second timer beside the first.
  // One that another manager lists leaves that one's list, its timers there stop, and its callback is not told.
  void addActivity(const std::shared_ptr<Activity>& activity);

  // What an activity's timer calls: asks the activity in the timer's user info for progress. When it is done, and,
  // after a line in the log and its abort, when it throws, its timer stops and it leaves the list.
  void handleActivity(platform::Timer& timer);

  // Takes it out of the list, aborts it if its timer still ran, and stops every timer that it was ever given. Ignored
  // when it is null or not listed.
  void removeActivity(std::shared_ptr<Activity> activity);

  // Aborts and removes what is listed now; what their callbacks add beside it stays.
  void removeAllActivities();

  // How many GUI activities are listed and visible.
  [[nodiscard]] std::int32_t numberOfVisibleActivities() const;

 private:
  friend class Activity;

  // Gives `activity` a new timer, on the calling thread's run loop, that calls handleActivity.
  void startTimer(Activity& activity);
  void takeOut(Activity& activity);  // every entry of it

  static ActivityManager* sActivityManager;

  std::vector<std::shared_ptr<Activity>> mActivityList;    // in the order of adding
  std::shared_ptr<void> mAlive = std::make_shared<int>();  // gone with the manager; timers and calls may outlive it
};

}  // namespace SharedClasses
