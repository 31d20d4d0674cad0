// A piece of background work, driven by a repeating timer: each tick asks the work's owner to make progress, until it
// says that it is done or the activity is aborted. ActivityManager starts activities and keeps them; GUIActivity adds
// what a display shows. Everything here belongs to the thread whose run loop ticks.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/object.h"
#include "platform/timer.h"
#include "platform/value.h"

namespace SharedClasses {

class Activity;
class ActivityManager;

struct ActivityArguments {
  double init = 0.0;                                 // seconds between two ticks
  platform::ObjectPointer callBackObject = nullptr;  // null: the activity is done at its first tick
  std::string selector = {};                      // called with the activity and the user info; other than 0 means done
  std::string abortSelector = {};                 // called without arguments when the activity is aborted; may be empty
  std::weak_ptr<platform::Object> userInfo = {};  // not kept alive
  // Calls go to the activity itself, which a subclass answers; `callBackObject` is not looked at.
  bool callsItself = false;
};

// The same for callers that would rather pass functions.
struct ActivityFunctions {
  double interval = 0.0;                    // seconds between two ticks
  std::function<bool(Activity&)> progress;  // true when the work is done; empty: done at the first tick
  std::function<void()> abort = {};         // may be empty
};

// A callback object was to make progress and does not know the selector for it.
class UnknownSelector : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

class Activity : public platform::Object, public std::enable_shared_from_this<Activity> {
 public:
  // `init:callBackObject:selector:abortSelector:userInfo:`
  // Has no timer yet: ActivityManager::addActivity starts it. Make it with std::make_shared.
  explicit Activity(ActivityArguments arguments);
  explicit Activity(ActivityFunctions functions);
  ~Activity() override;  // stops its timer

  [[nodiscard]] platform::ObjectPointer callBackObj();  // null for none and for functions
  [[nodiscard]] const std::string& callBackSelector() const { return mCallBackSelector; }
  [[nodiscard]] platform::ObjectPointer callBackUserInfo() const { return mCallBackUserInfo.lock(); }
  [[nodiscard]] double interval() const { return mInterval; }  // seconds
  [[nodiscard]] const std::shared_ptr<platform::Timer>& timer() const { return mTimer; }

  // The old timer is not stopped before the activity's end.
  void setTimer(std::shared_ptr<platform::Timer> timer);

  // Stops the timer and starts a new one on the calling thread's run loop.
  // Kept: `interval` is not taken over; the new timer ticks at the interval that the activity was made with.
  void setInterval(double interval);

  // Asks for progress: true when the work is done. The argument is not looked at. Lets through what the callback
  // throws, and throws UnknownSelector where the callback object does not know the selector; the manager then ends the
  // activity.
  [[nodiscard]] bool makeProgress(const platform::Value& ignored = {});

  // Stops the timer, tells the callback, and has the activity taken out of its manager's list. Does nothing where the
  // timer has stopped or never was, and within its own abort callback. What the callback throws is logged.
  void abort();

  [[nodiscard]] std::string className() const override { return "Activity"; }
  // "Activity timer: <Timer 0x…> interval 0.5"
  [[nodiscard]] std::string description() const override;
  // A subclass that calls itself answers its selectors here.
  [[nodiscard]] bool respondsToSelector(std::string_view selector) const override;
  platform::Value performSelector(std::string_view selector, std::span<const platform::Value> arguments) override;

 private:
  friend class ActivityManager;

  void tellAbort();
  void stopTimers();

  std::shared_ptr<platform::Timer> mTimer;  // null before it is added and after it has left the list
  std::vector<std::shared_ptr<platform::Timer>> mFormerTimers;  // mTimer's forerunners that may still run
  double mInterval;                                             // seconds
  platform::ObjectPointer mCallBackObj;                         // null when the activity calls itself or functions
  std::string mCallBackSelector;
  std::string mCallBackAbortSelector;  // may be empty
  std::weak_ptr<platform::Object> mCallBackUserInfo;
  bool mCallsItself = false;
  bool mIsAborting = false;
  ActivityFunctions mFunctions;         // empty unless made of functions
  ActivityManager* mManager = nullptr;  // the one that lists it; null while none does
};

}  // namespace SharedClasses
