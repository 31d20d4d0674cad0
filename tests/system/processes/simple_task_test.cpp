#include "system/processes/simple_task.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <cmath>

#include "platform/run_loop.h"
#include "tests/support/fork.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::tests {
namespace {

using Text = std::optional<std::string>;
using std::chrono::seconds;

constexpr std::size_t kMore = std::size_t{3} << 20;  // bytes that no pipe holds

struct ShellRun {
  Text output = "as it was";
  Text error = "as it was";
  SimpleTask task;

  explicit ShellRun(const std::string& script, double limit = 30, const Text& input = std::nullopt)
      : task({.launchPath = "/bin/sh",
              .arguments = std::vector<std::string>{"-c", script},
              .inputText = input,
              .outputText = &output,
              .errorText = &error,
              .maxSecondsToWait = limit}) {}
};

TEST(SimpleTask, ProgramsThatEndInTimeGiveWhatTheyPrinted) {
  const std::string full(std::size_t{1} << 20, '\0');  // what the pipes are set to hold
  const struct {
    const char* name;
    const char* script;
    Text input;
    Text output;
    Text error;
    std::int32_t status;
    double limit = 30;
  } kRows[] = {
      {"prints an error", "printf e >&2; exit 5", {}, "", "e", 5},
      {"finds no input", "cat", {}, "", "", 0},
      {"reads its input", "cat", "h\xC3\xA9\n", "h\xC3\xA9\n", "", 0},
      {"reads more than a pipe holds", "wc -c", std::string(kMore, 'x'), "3145728\n", "", 0},
      {"closes its input early", "exec <&-; printf x", std::string(kMore, 'x'), "x", "", 0},
      {"ends without reading", "exit 2", std::string(kMore, 'x'), "", "", 2},
      {"killed", "kill -KILL $$", {}, "", "", SIGKILL},
      {"ends although asked to", "trap '' TERM; kill -TERM $$; printf x; exit 4", {}, "x", "", 4},
      {"output that is no UTF-8", "printf 'a\\377'; printf e >&2", {}, std::nullopt, "e", 0},
      {"error that is no UTF-8", "printf x; printf '\\300\\200' >&2", {}, "x", std::nullopt, 0},
      {"grandchild that prints later", "(read x; sleep 0.05; printf y; printf f >&2) & printf x", {}, "xy", "f", 0},
      {"grandchild that fills the other pipe", "(head -c 2M /dev/zero >&2; printf y) &", {}, "y", full + full, 0},
      {"just fills both pipes", "head -c 1M /dev/zero; head -c 1M /dev/zero >&2", {}, full, full, 0},
      {"infinite limit", "sleep 0.05; printf x", {}, "x", "", 0, INFINITY},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    ShellRun run(row.script, row.limit, row.input);
    EXPECT_TRUE(run.output == row.output) << run.output.value_or("absent").substr(0, 100);
    EXPECT_TRUE(run.error == row.error) << run.error.value_or("absent").substr(0, 100);
    EXPECT_FALSE(run.task.isRunning());
    EXPECT_EQ(run.task.terminationStatus(), row.status);
  }
}

TEST(SimpleTask, ProgramsThatRunOverTheLimitAreLeftRunning) {
  const struct {
    const char* name;
    double limit;
    const char* script = "exec sleep 300";
    Text input = {};
  } kRows[] = {
      {"sleeps and closes its outputs", 0.1, "exec sleep 300 >&- 2>&-"},
      {"prints one byte more than the pipe holds", 0.3, "head -c 1048577 /dev/zero; exec sleep 300"},
      {"never reads its input", 0.1, "exec sleep 300", std::string(kMore, 'x')},
      {"ignores SIGTERM", 0.3, "trap '' TERM; exec sleep 300"},
      {"stops", 0.1, "kill -STOP $$"},
      {"limit 0", 0},
      {"negative limit", -1},
      {"limit that is no number", NAN},
      {"negative infinity", -INFINITY},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    ShellRun run(row.script, row.limit, row.input);
    const pid_t child = lastChild();
    EXPECT_EQ(run.output, std::nullopt);
    EXPECT_EQ(run.error, "Task timed out.");
    EXPECT_TRUE(run.task.isRunning());
    EXPECT_EQ(run.task.terminationStatus(), -1);
    ASSERT_GT(child, 0);
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    EXPECT_TRUE(run.task.waitForEnd(seconds(30)));
    EXPECT_EQ(run.task.terminationStatus(), SIGKILL);
  }
}

TEST(SimpleTask, InputThatCameTooLateIsClosedSoThatItsReaderEnds) {
  ShellRun run("exec cat >/dev/null", 0, std::string(kMore, 'x'));
  EXPECT_EQ(run.error, "Task timed out.");
  EXPECT_TRUE(run.task.waitForEnd(seconds(30)));
}

TEST(SimpleTask, AGrandchildThatKeepsThePipesIsWaitedForOnlyAsLongAsTheLimitLasts) {
  ShellRun sleeper("sleep 300 & printf \"$!\\342\\202\"", 0.3);  // ends within a character
  ASSERT_TRUE(sleeper.output && sleeper.error == "");
  EXPECT_EQ(::kill(std::stoi(*sleeper.output), SIGKILL), 0) << "it is gone or not the number: " << *sleeper.output;
  ShellRun flooder("yes & exit 6", 0.3);
  EXPECT_EQ(flooder.output.value_or("").substr(0, 4), "y\ny\n");
  EXPECT_EQ(flooder.task.terminationStatus(), 6);
}

TEST(SimpleTask, TheRunLoopOfTheThreadGoesOn) {
  TemporaryFolder folder;
  const std::string fifo = folder.path() + "/fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  std::unique_ptr<SimpleTask> inner;
  const auto timer = platform::RunLoop::current().addTimer(std::chrono::milliseconds(1), [&](platform::Timer& self) {
    self.invalidate();
    inner = SimpleTask::launchedTaskWithLaunchPath({.launchPath = "/bin/true", .maxSecondsToWait = 30});
    std::ofstream(fifo) << "go on\n";
  });
  EXPECT_EQ(ShellRun("read -r line <" + fifo + "; printf \"$line\"").output, "go on");
  EXPECT_TRUE(inner != nullptr && inner->terminationStatus() == 0);
}

TEST(SimpleTask, TextsStayAsTheyWereWhenNothingIsLaunched) {
  Text text = "as it was";
  EXPECT_THROW(SimpleTask({.launchPath = "/nonexistent", .outputText = &text, .errorText = &text}),
               platform::LaunchError);
  EXPECT_EQ(text, "as it was");
}

}  // namespace
}  // namespace SharedClasses::tests
