#include "system/processes/administrator.h"

#include <optional>

#include "system/processes/simple_task.h"

namespace SharedClasses {

namespace {

constexpr double kProgramLimit = 5.0;  // seconds
constexpr double kUserLimit = 120.0;   // seconds

// What pkexec ends with where the user said no; its other failures all share one number.
constexpr std::int32_t kPkexecRefused = 126;

// The exit status; absent where the program could not be started or did not end in time.
std::optional<std::int32_t> statusOf(const std::string& path, const std::vector<std::string>& arguments, double limit) {
  try {
    SimpleTask task({.launchPath = path, .arguments = arguments, .maxSecondsToWait = limit});
    return task.isRunning() ? std::nullopt : std::optional(task.terminationStatus());
  } catch (const platform::LaunchError&) {
    return std::nullopt;
  }
}

}  // namespace

std::int32_t Administrator::execute(const std::string& path, const std::vector<std::string>& arguments) {
  if (statusOf(path, arguments, kProgramLimit) == 0) {
    return kDone;
  }
  std::vector<std::string> words{path};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const std::optional<std::int32_t> status = statusOf("/usr/bin/pkexec", words, kUserLimit);
  if (status == 0) {
    return kDone;
  }
  return status == kPkexecRefused ? kRefused : kNotPossible;
}

}  // namespace SharedClasses
