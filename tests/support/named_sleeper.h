// A program that only sleeps, under a name and as a user of choice, and turns for tests of what others look for.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/support/fork.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::tests {

// Killed at the end, unless it has been reaped before.
class NamedSleeper {
 public:
  NamedSleeper(const TemporaryFolder& folder, const std::string& name, uid_t user = ::geteuid()) {
    const std::string path = folder.path() + "/" + name;
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::copy_file("/bin/sleep", path, std::filesystem::copy_options::overwrite_existing);
    mProcess = ::fork();
    if (mProcess == 0) {
      ::alarm(kForkPatience);
      if (::setuid(user) == 0) {
        ::execl(path.c_str(), path.c_str(), "300", nullptr);
      }
      ::_exit(1);
    }
    // It has its name once it runs what it is to run.
    for (std::string now; now != path && ::waitpid(mProcess, nullptr, WNOHANG) == 0;) {
      std::error_code ignored;
      now = std::filesystem::read_symlink("/proc/" + std::to_string(mProcess) + "/exe", ignored);
    }
  }
  NamedSleeper(const NamedSleeper&) = delete;
  NamedSleeper& operator=(const NamedSleeper&) = delete;
  ~NamedSleeper() {
    if (!mHasEnded) {
      ::kill(mProcess, SIGKILL);
      static_cast<void>(statusOfChild(mProcess));
    }
  }

  [[nodiscard]] pid_t process() const { return mProcess; }
  // Waits for it, where it has ended, as whoever started it would: a zombie is still listed.
  void reap() { mHasEnded = mHasEnded || ::waitpid(mProcess, &mStatus, WNOHANG) == mProcess; }
  [[nodiscard]] int endingSignal() const { return mHasEnded && WIFSIGNALED(mStatus) ? WTERMSIG(mStatus) : 0; }

 private:
  pid_t mProcess = 0;
  int mStatus = 0;
  bool mHasEnded = false;
};

// Waits until no other test on this machine has its turn, and has it while it lives.
class Turn {
 public:
  Turn() : mFolder(::open(std::filesystem::temp_directory_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    ::flock(mFolder, LOCK_EX);
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() { ::close(mFolder); }

 private:
  int mFolder;
};

}  // namespace SharedClasses::tests
