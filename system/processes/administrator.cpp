#include "system/processes/administrator.h"

#include "system/processes/simple_task.h"

namespace SharedClasses {

namespace {

constexpr double kProgramLimit = 5.0;  // seconds
constexpr double kUserLimit = 120.0;   // seconds

// What pkexec ends with where the program was not run; any other status is the program's.
constexpr std::int32_t kQuestionDismissed = 126;
constexpr std::int32_t kNotAuthorized = 127;

struct Run {
  enum {
    NotStarted,
    Unfinished,  // when its time was over
    Ended
  } outcome;
  std::int32_t status = 0;  // -1 where the host has taken it away
};

Run runOf(const std::string& path, const std::vector<std::string>& arguments, double limit) {
  try {
    SimpleTask task({.launchPath = path, .arguments = arguments, .maxSecondsToWait = limit});
    return task.isRunning() ? Run{Run::Unfinished} : Run{Run::Ended, task.terminationStatus()};
  } catch (const platform::LaunchError&) {
    return {Run::NotStarted};
  }
}

}  // namespace

std::int32_t Administrator::execute(const std::string& path, const std::vector<std::string>& arguments) {
  // The user is not asked where the program may have done its work.
  const Run plain = runOf(path, arguments, kProgramLimit);
  if (plain.outcome != Run::NotStarted && plain.status <= 0) {
    return kDone;
  }
  std::vector<std::string> words{path};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const Run asked = runOf(mPkexec, words, kUserLimit);
  if (asked.outcome != Run::Ended || asked.status == kNotAuthorized) {
    return kNotPossible;
  }
  return asked.status == kQuestionDismissed ? kRefused : kDone;
}

}  // namespace SharedClasses
