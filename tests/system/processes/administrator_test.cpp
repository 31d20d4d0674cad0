#include "system/processes/administrator.h"

#include <gtest/gtest.h>
#include <signal.h>

#include "tests/support/temporary_folder.h"

namespace SharedClasses::tests {
namespace {

TEST(Administrator, AsksTheUserOnlyWhereTheProgramCannotHaveDoneItsWork) {
  const struct {
    const char* name;
    const char* program;
    const char* pkexec;  // empty where there is none
    std::int32_t status;
    const char* shell = "/bin/sh";
    void (*atItsEnd)(int) = SIG_DFL;
  } kRows[] = {
      {"does its work", "exit 0", "exit 126", 0},
      {"may not, the user agrees", "exit 1", "exit 0", 0},
      {"is killed, the user agrees, it fails", "kill -KILL $$", "exit 1", 0},
      {"may not, the user dismisses the question", "exit 1", "exit 126", -60031},
      {"may not, nor may the user", "exit 1", "exit 127", -60032},
      {"may not, nobody can be asked", "exit 1", "", -60032},
      {"cannot be started, the user agrees", "", "exit 0", 0, "/nonexistent"},
      {"was waited for by the host", "exit 1", "exit 126", 0, "/bin/sh", SIG_IGN},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const TemporaryFolder folder;
    const std::string check = "#!/bin/sh\ntest \"$1 $2\" = '" + std::string(row.shell) + " -c' || exit 127\n";
    const std::string pkexec = folder.write("pkexec", check + row.pkexec);
    std::filesystem::permissions(pkexec, std::filesystem::perms(*row.pkexec != '\0' ? 0755 : 0));
    ::signal(SIGCHLD, row.atItsEnd);
    EXPECT_EQ(Administrator(pkexec).execute(row.shell, {"-c", row.program}), row.status);
    ::signal(SIGCHLD, SIG_DFL);
  }
}

}  // namespace
}  // namespace SharedClasses::tests
