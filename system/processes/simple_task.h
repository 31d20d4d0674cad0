// One external program, run to its end or to a time limit, with a text for its input and texts of what it prints.
// The whole run happens in the constructor. It sleeps while it waits and serves the run loop of the calling thread, so
// that the thread's timers and descriptors go on. A task belongs to the thread that made it.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/child_process.h"

namespace SharedClasses {

struct SimpleTaskArguments {
  std::string launchPath;                                            // full path of the program
  std::optional<std::vector<std::string>> arguments = std::nullopt;  // absent for none
  std::optional<std::string> inputText = std::nullopt;               // absent: the program finds its input at its end
  std::optional<std::string>* outputText = nullptr;                  // null when not wanted
  std::optional<std::string>* errorText = nullptr;                   // null when not wanted
  double maxSecondsToWait = 0.0;  // counted from the launch; 0 and less look once, infinity waits for ever
  std::vector<platform::EnvironmentChange> environmentChanges = {};  // to what the program has from this process
};

class SimpleTask {
 public:
  // `initWithLaunchPath:arguments:inputText:outputText:errorText:maxSecondsToWait:`
  // Runs the program. When it has ended in time, the wanted texts are what it printed, each absent where that is not
  // UTF-8. When it has not, `*outputText` is absent and `*errorText` "Task timed out."; the program is left running,
  // its input is closed, and nothing is read from it; once this object is gone, SIGPIPE ends it if it prints on.
  // Throws platform::LaunchError when it cannot be started; the texts are then as they were.
  // The pipes are read only after the end: a program that prints more than platform::kChildPipeSize runs into the
  // limit. Where it leaves a child of its own behind that holds the pipes, their end is waited for as long as the limit
  // lasts, or until a text has 64 MiB; it is then what was read, without a last character that is not whole.
  explicit SimpleTask(const SimpleTaskArguments& arguments);
  SimpleTask(const SimpleTask&) = delete;
  SimpleTask& operator=(const SimpleTask&) = delete;
  ~SimpleTask() = default;

  // `launchedTaskWithLaunchPath:arguments:inputText:outputText:errorText:maxSecondsToWait:`
  // The same, as an object to keep.
  [[nodiscard]] static std::unique_ptr<SimpleTask> launchedTaskWithLaunchPath(const SimpleTaskArguments& arguments);

  // Sleeps until the program has ended, at most `longest`, without serving the run loop. Whether it has ended.
  bool waitForEnd(std::chrono::nanoseconds longest) { return mActualTaskObj.waitForEnd(longest); }

  [[nodiscard]] bool isRunning() { return mActualTaskObj.isRunning(); }
  // The exit status, or the number of the signal that ended the program; -1 while it runs and when the host has taken
  // its end away.
  [[nodiscard]] std::int32_t terminationStatus() { return mActualTaskObj.terminationStatus(); }

 private:
  platform::ChildProcess mActualTaskObj;
};

}  // namespace SharedClasses
