#include "system/activities/activity.h"

#include <array>
#include <charconv>
#include <utility>

#include "platform/exceptions.h"
#include "platform/log.h"
#include "platform/text.h"
#include "system/activities/activity_manager.h"

namespace SharedClasses {

namespace {

// As "%g" of the C locale writes it.
std::string shortNumber(double number) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, 6).ptr;
  return {text.data(), end};
}

bool isTrue(const platform::Value& answer) {
  return answer.booleanValue().value_or(false);
}

}  // namespace

Activity::Activity(ActivityArguments arguments)
    : mInterval(arguments.init),
      mCallBackObj(arguments.callsItself ? nullptr : std::move(arguments.callBackObject)),
      mCallBackSelector(std::move(arguments.selector)),
      mCallBackAbortSelector(std::move(arguments.abortSelector)),
      mCallBackUserInfo(std::move(arguments.userInfo)),
      mCallsItself(arguments.callsItself) {}

Activity::Activity(ActivityFunctions functions) : mInterval(functions.interval), mFunctions(std::move(functions)) {}

Activity::~Activity() {
  stopTimers();
}

platform::ObjectPointer Activity::callBackObj() {
  return mCallsItself ? weak_from_this().lock() : mCallBackObj;
}

void Activity::setTimer(std::shared_ptr<platform::Timer> timer) {
  std::erase_if(mFormerTimers, [&](const auto& former) { return !former->isValid() || former == timer; });
  if (mTimer != nullptr && mTimer != timer && mTimer->isValid()) {
    mFormerTimers.push_back(std::move(mTimer));
  }
  mTimer = std::move(timer);
}

void Activity::setInterval(double /*interval*/) {
  const std::shared_ptr<Activity> self = weak_from_this().lock();  // the timer may be the last to hold it
  if (mTimer != nullptr) {
    mTimer->invalidate();
  }
  (mManager != nullptr ? *mManager : ActivityManager::sharedActivityManager()).startTimer(*this);
}

bool Activity::makeProgress(const platform::Value& /*ignored*/) {
  const std::shared_ptr<Activity> self = weak_from_this().lock();  // the callback may let go of it
  if (mFunctions.progress) {
    return mFunctions.progress(*this);
  }
  const platform::ObjectPointer object = callBackObj();
  if (object == nullptr) {
    return true;
  }
  const platform::Value arguments[] = {self, callBackUserInfo()};
  const platform::Value answer = object->performSelector(mCallBackSelector, arguments);
  if (answer.isAbsent() && !object->respondsToSelector(mCallBackSelector)) {
    throw UnknownSelector(mCallBackSelector);
  }
  return isTrue(answer);
}

void Activity::abort() {
  if (mIsAborting || mTimer == nullptr || !mTimer->isValid()) {
    return;
  }
  // The list may be the last to hold this activity, and the callback may empty it.
  const std::shared_ptr<Activity> self = weak_from_this().lock();
  mIsAborting = true;
  stopTimers();
  if (const auto thrown = platform::nameOfThrown([this] { tellAbort(); })) {
    platform::log("The abort callback of an activity threw " + *thrown + ".");
  }
  if (mManager != nullptr) {
    mManager->removeActivity(self);
  }
  stopTimers();  // that the callback started
  mIsAborting = false;
}

std::string Activity::description() const {
  std::string timer = "(null)";
  if (mTimer != nullptr) {
    timer = "<Timer 0x" + platform::hexDigits(reinterpret_cast<std::uintptr_t>(mTimer.get()), 1) + ">";
  }
  return className() + " timer: " + timer + " interval " + shortNumber(mInterval);
}

bool Activity::respondsToSelector(std::string_view /*selector*/) const {
  return false;
}

platform::Value Activity::performSelector(std::string_view /*selector*/,
                                          std::span<const platform::Value> /*arguments*/) {
  return {};
}

void Activity::tellAbort() {
  if (mFunctions.abort) {
    mFunctions.abort();
  }
  const platform::ObjectPointer object = callBackObj();
  if (object != nullptr && !mCallBackAbortSelector.empty()) {
    object->performSelector(mCallBackAbortSelector, {});
  }
}

void Activity::stopTimers() {
  for (const auto& timer : std::exchange(mFormerTimers, {})) {
    timer->invalidate();
  }
  if (mTimer != nullptr) {
    mTimer->invalidate();
  }
}

}  // namespace SharedClasses
