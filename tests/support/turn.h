// One test at a time, of all that are running on this machine, where tests start programs that others look for.
#pragma once

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>

namespace SharedClasses::tests {

// Waits until no other test has its turn, and has it while it lives.
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
