// Real processes: copies of the system's sleep under the names that are looked for.
#include "system/processes/process_detection.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/run_loop.h"
#include "system/processes/simple_task.h"
#include "tests/support/captured_log.h"
#include "tests/support/fork.h"
#include "tests/support/main_bundle.h"
#include "tests/support/named_sleeper.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool.h"

namespace SharedClasses::tests {
namespace {

using platform::PrivilegedExecution;
using std::chrono::milliseconds;

constexpr uid_t kNobody = 65534;

// Answers as it is told to, and notes what it was asked.
struct Authorization : PrivilegedExecution {
  std::function<std::int32_t()> answer;
  std::string asked;

  std::int32_t execute(const std::string& path, const std::vector<std::string>& arguments) override {
    asked = path;
    for (const std::string& argument : arguments) {
      asked += " " + argument;
    }
    return answer();
  }
};

TEST(ProcessName, IsAPatternForTheNamesOfWhatRunsAndClassicIsFoundByTheNameThatListingsCut) {
  using namespace std::string_view_literals;
  const Turn turn;
  const TemporaryFolder folder;
  EXPECT_FALSE(Utilities::isClassicRunning());
  const NamedSleeper sleeper(folder, "Zq7XTension-V\u00E9");
  const NamedSleeper classic(folder, "TruBlueEnvironment");
  // Tools would cut names and not know their letters.
  ::setenv("COLUMNS", "9", 1), ::setenv("LC_ALL", "C", 1);
  const std::tuple<const char*, std::optional<std::string_view>, bool> kRows[] = {
      {"absent", std::nullopt, false},
      {"empty", "", false},
      {"its name", "Zq7XTension-V\u00E9", true},
      {"in another case", "zQ7xtENSION-v\u00C9", true},
      {"any character but e before", "^zq[^e]XTension", true},
      {"bracket that leaves it out", "Zq[^7]XTension", false},
      {"at the start only", "^q7XTension", false},
      {"name of nothing", "Zq8XTension", false},
      {"begins as an option that prints much", "--help", false},
      {"begins as an option", "-vwz", false},
      {"begins as an option but is in the name", "-V\u00E9", true},
      {"broken pattern", "Zq7[", false},
      {"NUL that would leave the pattern for everything", "\0Zq8"sv, false},
  };
  for (const auto& [name, pattern, runs] : kRows) {
    EXPECT_EQ(Utilities::isProcessNameRunning(pattern), runs) << name;
  }
  EXPECT_TRUE(Utilities::isXTensionRunning() && Utilities::isClassicRunning());
  ::unsetenv("COLUMNS"), ::unsetenv("LC_ALL");
}

TEST(ProcessName, WhatCannotBeAskedIsLoggedAndFalse) {
  const CapturedLog log;
  EXPECT_FALSE(Utilities::isProcessNameRunning(std::string(std::size_t{1} << 20, 'x')));
  ASSERT_EQ(log.messages().size(), 1U);
  EXPECT_EQ(log.messages()[0].find("+ [ Utilities isProcessNameRunning ] got an exception: /usr/bin/grep"), 0U);
}

// One test, since agents are found wherever they were started.
TEST(Agents, AreFoundWithTheirUserAndAForeignOneIsMadeToQuit) {
  const TemporaryFolder folder;
  {
    const CapturedLog log;
    const NamedSleeper own(folder, "MarlowAgent");
    const platform::Value::List agents = Utilities::runningAgentsInfo();
    const std::string user = ::getpwuid(::geteuid())->pw_name;
    const int pid = own.process(), uid = static_cast<int>(::geteuid());
    EXPECT_EQ(agents,
              (platform::Value::List{platform::Value::Dictionary{{"pid", pid}, {"uid", uid}, {"username", user}}}));
    EXPECT_FALSE(Utilities::processInfoOfForeignAgent());
    const std::string pidText = std::to_string(pid), uidText = std::to_string(uid);
    EXPECT_EQ(runTool({"agents"}).output, "process " + pidText + " of " + user + " (" + uidText + ")\n");
    EXPECT_EQ(runTool({"agents", "--json"}).output,
              R"({"foreign":false,"pid":)" + pidText + R"(,"uid":)" + uidText + R"(,"username":")" + user + "\"}\n");
    Authorization unasked;
    EXPECT_EQ(Utilities::quitForeignAgent(&unasked), 0);
    EXPECT_EQ(unasked.asked + (log.messages().empty() ? "" : log.messages()[0]), "");
  }
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only the administrator can start an agent of somebody else";
  }
  const auto quitLater = [](NamedSleeper& agent) {
    platform::RunLoop::current().addTimer(milliseconds(200), [&](platform::Timer& timer) {
      timer.invalidate();
      ::kill(agent.process(), SIGINT);
    });
    return 0;
  };
  const struct {
    const char* name;
    std::function<std::int32_t(NamedSleeper&)> answer;  // null: the library's own way
    std::int32_t status;
    int endingSignal;
    std::size_t messages;
  } kRows[] = {
      {"refused", [](NamedSleeper&) { return PrivilegedExecution::kRefused; }, -60031, 0, 1},
      {"throws", [](NamedSleeper&) -> std::int32_t { throw 1; }, -60032, 0, 2},
      {"agent quits after a while", quitLater, 0, SIGINT, 1},
      {"the library's own way", nullptr, 0, SIGTERM, 1},
      {"agent stays", [](NamedSleeper&) { return 0; }, -34, 0, 2},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const CapturedLog log;
    NamedSleeper agent(folder, "MarlowAgent", kNobody);
    Authorization authorization;
    authorization.answer = [&] { return row.answer(agent); };
    const auto reaper = platform::RunLoop::current().addTimer(milliseconds(5), [&](platform::Timer&) { agent.reap(); });
    EXPECT_EQ(Utilities::quitForeignAgent(row.answer ? &authorization : nullptr), row.status);
    reaper->invalidate();
    EXPECT_EQ(agent.endingSignal(), row.endingSignal);
    EXPECT_EQ(authorization.asked, row.answer ? "/bin/kill -TERM " + std::to_string(agent.process()) : "");
    ASSERT_EQ(log.messages().size(), row.messages);
    EXPECT_EQ(log.messages()[0], "The copy of MarlowAgent that is already running is owned by a different user, 65534");
    EXPECT_EQ(log.messages().back().find("The foreign agent failed to quit after 5 seconds."),
              row.status == -34 ? 0 : std::string::npos);
  }
}

TEST(MarlowUser, IsNamedByTheProgramsArguments) {
  const passwd* const self = ::getpwuid(::geteuid());
  const std::string own = std::string(self->pw_name) + " " + std::to_string(self->pw_uid) + "\n";
  const std::tuple<const char*, std::vector<std::string>, std::string> kRows[] = {
      {"no arguments", {}, own},
      {"a user", {"-x", "-user", "nobody"}, "nobody 65534\n"},
      {"nobody behind it", {"-user"}, own},
      {"empty", {"-user", ""}, own},
      {"unknown user", {"-user", "no such user"}, "no such user 0\n"},
      {"one that is an option of id", {"-user", "--version"}, "--version 0\n"},
  };
  for (const auto& [name, arguments, expected] : kRows) {
    std::optional<std::string> printed;
    const SimpleTask task({.launchPath = PROGRAM_FOLDER "/marlow_user",
                           .arguments = arguments,
                           .outputText = &printed,
                           .maxSecondsToWait = 30});
    EXPECT_EQ(printed, expected) << name;
  }
}

TEST(Signature, RunsAsLongAsTheProcessThatStatedItWhateverItDoes) {
  constexpr platform::FourCharCode kSignature = 0x5A7E7374;
  TemporaryFolder folder;
  ::setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
  const auto runs = [] { return Utilities::isProcessRunning(kSignature); };
  EXPECT_FALSE(runs());
  const pid_t program = startInFork([] {
    ::umask(077);
    Utilities::stateSignature(kSignature);
    ::raise(SIGSTOP);
    return 0;
  });
  ::waitpid(program, nullptr, WUNTRACED);
  EXPECT_TRUE(runs()) << "stopped";
  // Whoever may not see the user's own folder, though the environment names it, sees the system's.
  const auto runsForAnother = [&] { return statusInFork([&] { return ::setuid(kNobody) != 0 ? 2 : runs(); }); };
  const bool mayAsk = ::geteuid() == 0;
  EXPECT_EQ(mayAsk ? runsForAnother() : 1, 1);
  ::kill(program, SIGKILL);
  EXPECT_EQ(statusOfChild(program), 128 + SIGKILL);
  EXPECT_FALSE(runs());
  EXPECT_EQ(mayAsk ? runsForAnother() : 0, 0);
  ::unsetenv("XDG_RUNTIME_DIR");
  std::filesystem::remove("/run/lock/SharedClasses-5a7e7374.lock");
}

TEST(Signature, OfTheMainBundleTellsTheAgentFromTheGUI) {
  TemporaryFolder folder;
  for (const std::string signature : {"QZ2d", "QZV2", "none"}) {
    folder.write("Info.plist",
                 "<plist><dict><key>CFBundleSignature</key><string>" + signature + "</string></dict></plist>");
    const MainBundle bundle(folder.path());
    EXPECT_EQ(Utilities::appSignature(), signature);
    EXPECT_EQ(Utilities::appIsAgent(), signature == "QZ2d");
    EXPECT_EQ(Utilities::appIsGUI(), signature == "QZV2");
  }
}

}  // namespace
}  // namespace SharedClasses::tests
