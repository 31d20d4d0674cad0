// Real children. What would change this process for other tests is done in a fork of it.
#include "platform/child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include "platform/files.h"
#include "system/processes/simple_task.h"
#include "tests/support/fork.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::tests {
namespace {

using namespace std::string_literals;
using platform::ChildProcess;
using platform::LaunchError;
using std::chrono::nanoseconds;

// What a shell prints; absent when it did not end in time.
std::optional<std::string> outputOf(const std::string& script, std::int32_t* status = nullptr,
                                    std::optional<std::string> input = std::nullopt) {
  std::optional<std::string> output;
  SimpleTask task({.launchPath = "/bin/sh",
                   .arguments = std::vector<std::string>{"-c", script},
                   .inputText = std::move(input),
                   .outputText = &output,
                   .maxSecondsToWait = 30});
  if (status != nullptr) {
    *status = task.terminationStatus();
  }
  return output;
}

// What is pending, blocked, ignored and handled.
std::string signalsOfThisProcess() {
  std::ifstream file("/proc/self/status");
  const std::string status{std::istreambuf_iterator<char>(file), {}};
  return status.substr(status.find("SigPnd:"), status.find("CapInh:") - status.find("SigPnd:"));
}

void waitForEveryChild(int) {
  while (::waitpid(-1, nullptr, WNOHANG) > 0) {
  }
}

TEST(ChildProcess, WhatCannotBeStartedIsALaunchErrorWithItsReason) {
  TemporaryFolder folder;
  const std::string text = folder.write("text", "echo this is no program\n");
  ::chmod(text.c_str(), 0755);
  const std::tuple<const char*, std::string, int, std::vector<std::string>> rows[] = {
      {"missing", folder.path() + "/missing", ENOENT, {}},
      {"no path", "", ENOENT, {}},
      {"a folder", folder.path(), EACCES, {}},
      {"not executable", folder.write("plain", "#!/bin/sh\n"), EACCES, {}},
      {"behind a file", text + "/x", ENOTDIR, {}},
      {"text without #!", text, ENOEXEC, {}},
      {"NUL in the path of what is there", "/bin/true\0x"s, ENOENT, {}},
      {"NUL in an argument", "/bin/true", EINVAL, {"a", "b\0c"s}},
      {"arguments beyond what the system takes", "/bin/true", E2BIG, {std::string(std::size_t{1} << 24, 'x')}},
  };
  for (const auto& [name, path, reason, arguments] : rows) {
    SCOPED_TRACE(name);
    try {
      ChildProcess child(path, arguments);
      ADD_FAILURE() << "started";
    } catch (const LaunchError& error) {
      EXPECT_EQ(error.path(), path);
      EXPECT_EQ(error.reason(), ::strerror(reason));
    }
  }
}

TEST(ChildProcess, StartsWithNothingOfItsHost) {
  EXPECT_EQ(statusInFork([] {
              ::open("/dev/null", O_RDONLY);  // would be inherited
              sigset_t all;
              sigfillset(&all);
              ::sigprocmask(SIG_BLOCK, &all, nullptr);
              for (const int number : {SIGPIPE, SIGCHLD, SIGHUP, SIGRTMAX}) {
                ::signal(number, SIG_IGN);
              }
              // The listing itself has the fourth. The C library may ignore its own two signals, 32 and 33.
              const bool noDescriptor = outputOf("exec ls /proc/self/fd") == "0\n1\n2\n3\n";
              const bool noSignal = outputOf("grep -E 'Sig(Blk|Ign)' /proc/self/status | tr 18 00") ==
                                    "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n";
              return noDescriptor && noSignal ? 0 : 1;
            }),
            0);
}

TEST(ChildProcess, HasItsHostsEnvironmentWithTheChangesAskedFor) {
  ::setenv("ZQ_A", "1", 1), ::setenv("ZQ_B", "2", 1), ::setenv("ZQ_C", "3", 1);
  ChildProcess child("/bin/sh", {"-c", "env | grep ^ZQ | sort"}, {{"ZQ_B", "x=y"}, {"ZQ_C", {}}, {"ZQ_", ""}});
  EXPECT_TRUE(child.waitForEnd(std::chrono::seconds(30)));
  std::string output;
  EXPECT_EQ(platform::readFromPipe(child.output(), &output), platform::PipeEnd::Ended);
  EXPECT_EQ(output, "ZQ_=\nZQ_A=1\nZQ_B=x=y\n");
  EXPECT_EQ(::getenv("ZQ_B") + std::string(::getenv("ZQ_C")), "23") << "the host's own";
  EXPECT_THROW(ChildProcess("/bin/true", {}, {{"ZQ", "a\0b"s}}), LaunchError);
}

TEST(ChildProcess, WorksInAnyHostAndLeavesItAsItWas) {
  // What is done before, and whether that may lose the status.
  const std::tuple<const char*, void (*)(), bool> rows[] = {
      {"plain", [] {}, false},
      {"standard descriptors closed", [] { ::close(0), ::close(1), ::close(2); }, false},
      {"standard input closed", [] { ::close(0); }, false},
      {"SIGCHLD ignored", [] { ::signal(SIGCHLD, SIG_IGN); }, true},
      {"handler that waits for every child", [] { ::signal(SIGCHLD, waitForEveryChild); }, true},
      {"SIGPIPE ignored", [] { ::signal(SIGPIPE, SIG_IGN); }, false},
  };
  for (const auto& [name, prepare, mayLose] : rows) {
    EXPECT_EQ(
        statusInFork([prepare = prepare, mayLose = mayLose] {
          prepare();
          const std::string before = signalsOfThisProcess();
          std::int32_t status = 0;
          const bool works = outputOf("cat; exit 3", &status, "x") == "x" &&
                             outputOf("exec <&-; printf y", nullptr, std::string(3 << 20, 'z')) == "y";
          return !works ? 1 : status != 3 && !(mayLose && status == -1) ? 2 : signalsOfThisProcess() != before ? 3 : 0;
        }),
        0)
        << name;
  }
}

TEST(ChildProcess, LeavesTheHostsOwnChildToTheHost) {
  const pid_t own = startInFork([] { return 7; });
  siginfo_t ended{};
  ::waitid(P_PID, static_cast<id_t>(own), &ended, WEXITED | WNOWAIT);
  EXPECT_EQ(outputOf("printf x"), "x");
  EXPECT_EQ(statusOfChild(own), 7);
}

TEST(ChildProcess, RunsInARowLeaveNeitherZombieNorDescriptor) {
  EXPECT_EQ(outputOf("printf x"), "x");  // what a first run keeps for good, and the zombies of others
  const std::size_t before = platform::entriesOfFolder("/proc/self/fd").size();
  for (int i = 0; i < 1'000; ++i) {
    SimpleTask task({.launchPath = "/bin/true", .maxSecondsToWait = 30});
    ASSERT_EQ(task.terminationStatus(), 0);
    ASSERT_THROW(ChildProcess("/nonexistent", {}), LaunchError);
  }
  EXPECT_EQ(platform::entriesOfFolder("/proc/self/fd").size(), before);
  EXPECT_EQ(lastChild(), -1);
}

TEST(ChildProcess, OneLetGoOfRunsOnAndIsReapedWhenTheNextOneStarts) {
  const pid_t abandoned = ChildProcess("/bin/sleep", {"300"}).processID();
  siginfo_t end{};
  ASSERT_EQ(::kill(abandoned, SIGKILL), 0);
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(abandoned), &end, WEXITED | WNOWAIT), 0);
  EXPECT_EQ(end.si_code, CLD_KILLED) << "it had ended before";
  EXPECT_EQ(outputOf("printf x"), "x");
  EXPECT_EQ(::waitpid(abandoned, nullptr, 0), -1) << "it was still there to be waited for";
}

TEST(ChildProcess, WaitForEndTakesAnySpan) {
  ChildProcess child("/bin/cat", {});
  EXPECT_FALSE(child.waitForEnd(nanoseconds::min()));
  EXPECT_EQ(child.terminationStatus(), -1);
  child.closeInput();
  EXPECT_TRUE(child.waitForEnd(nanoseconds::max()));
  EXPECT_EQ(child.terminationStatus(), 0);
}

// With every number of descriptors that is too few, and a few that are enough.
TEST(ChildProcess, WithoutDescriptorsThrowsOrWorksButNeverHangs) {
  // The undefined-behaviour sanitizer needs a pipe for each type that it meets for the first time.
  std::thread([] {
    EXPECT_EQ(outputOf("cat", nullptr, "x"), "x");
    try {
      EXPECT_EQ(outputOf("x\0"s), std::nullopt) << "started";
    } catch (const LaunchError& error) {
      EXPECT_EQ(error.reason(), ::strerror(EINVAL));
    }
  }).join();
  for (const bool loopFirst : {false, true}) {
    for (int spare = 0; spare < 16; ++spare) {
      SCOPED_TRACE(spare);
      EXPECT_EQ(statusInFork([=] {
                  if (loopFirst) {
                    outputOf("printf x");  // makes the thread's run loop
                  }
                  const int next = ::dup(0);
                  const rlimit limit{static_cast<rlim_t>(next + spare), static_cast<rlim_t>(next + spare)};
                  ::close(next);
                  ::setrlimit(RLIMIT_NOFILE, &limit);
                  try {
                    return outputOf("wc -c", nullptr, std::string(3 << 20, 'x')) == "3145728\n" ? 0 : 1;
                  } catch (const LaunchError& error) {
                    return error.reason() == ::strerror(EMFILE) && spare < 12 ? 0 : 2;
                  }
                }),
                0);
    }
  }
}

}  // namespace
}  // namespace SharedClasses::tests
