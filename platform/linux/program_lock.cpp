#include "platform/program_lock.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "platform/files.h"
#include "platform/linux/file_descriptor.h"
#include "platform/log.h"
#include "platform/text.h"

namespace SharedClasses::platform {

namespace {

constexpr const char* kSystemFolder = "/run/lock";  // where programs of other users see a lock
constexpr int kOpenFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
constexpr int kAttempts = 5;
constexpr std::chrono::milliseconds kAttemptStep{1};

// Names may hold any bytes; files are named by their hex.
std::string fileName(const std::string& name) {
  std::string file = "SharedClasses-";
  for (const char c : name) {
    file += hexDigits(static_cast<unsigned char>(c), 2);
  }
  return file + ".lock";
}

// The environment may still name the folder of the user who was before us.
bool isOwnFolder(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

struct LockFile {
  std::string path;
  mode_t mode;
};

std::vector<LockFile> lockFiles(const std::string& name) {
  std::vector<LockFile> files;
  if (const auto runtimeFolder = environmentVariable("XDG_RUNTIME_DIR"); runtimeFolder && isOwnFolder(*runtimeFolder)) {
    // What is sticky there is left alone by those who clean up.
    files.push_back({pathInFolder(*runtimeFolder, fileName(name)), 01644});
  }
  files.push_back({pathInFolder(kSystemFolder, fileName(name)), 0644});
  return files;
}

struct flock wholeFile(short kind) {
  struct flock lock {};
  lock.l_type = kind;
  lock.l_whence = SEEK_SET;
  return lock;
}

FileDescriptor openForReading(const std::string& path) {
  return FileDescriptor(::open(path.c_str(), kOpenFlags));
}

// Every holder takes a shared lock, for which a file that another user made need only be readable. Such a file is
// opened without O_CREAT: in a folder that everybody may write the system refuses that for files of others.
FileDescriptor openOrMake(const LockFile& file) {
  if (FileDescriptor existing = openForReading(file.path); existing.isOpen()) {
    return existing;
  }
  if (FileDescriptor made(::open(file.path.c_str(), kOpenFlags | O_CREAT, file.mode)); made.isOpen()) {
    ::fchmod(made.get(), file.mode);  // whatever our mask: others could not tell whether an unreadable file is locked
    return made;
  }
  // Another user's program may just have made it, and not yet have given it its mode.
  for (int attempt = 0; errno == EACCES && attempt < kAttempts; ++attempt) {
    std::this_thread::sleep_for(kAttemptStep);
    if (FileDescriptor others = openForReading(file.path); others.isOpen()) {
      return others;
    }
  }
  return {};
}

FileDescriptor takeLock(const LockFile& file) {
  FileDescriptor descriptor = openOrMake(file);
  struct flock lock = wholeFile(F_RDLCK);
  if (descriptor.isOpen() && ::fcntl(descriptor.get(), F_OFD_SETLK, &lock) != 0) {
    descriptor.reset();
  }
  return descriptor;
}

bool isLocked(const LockFile& file) {
  const FileDescriptor descriptor = openForReading(file.path);
  if (!descriptor.isOpen()) {
    return errno != ENOENT;
  }
  struct flock lock = wholeFile(F_WRLCK);
  return ::fcntl(descriptor.get(), F_OFD_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
}

// Never destroyed: the locks end with the process.
struct HeldLocks {
  std::mutex mutex;
  std::map<std::string, std::vector<FileDescriptor>> byName;
};
HeldLocks& heldLocks() {
  static auto* const sHeld = new HeldLocks;
  return *sHeld;
}

}  // namespace

bool holdProgramLock(const std::string& name) {
  const std::lock_guard guard(heldLocks().mutex);
  std::vector<FileDescriptor>& held = heldLocks().byName[name];
  if (!held.empty()) {
    return true;
  }
  std::string refused;
  for (const LockFile& file : lockFiles(name)) {
    if (FileDescriptor descriptor = takeLock(file); descriptor.isOpen()) {
      held.push_back(std::move(descriptor));
    } else {
      refused = file.path;
    }
  }
  if (held.empty()) {
    log("No lock could be taken for the program \"" + name + "\": others will not see that it runs.");
  } else if (!refused.empty()) {
    log("The lock " + refused + " could not be taken for the program \"" + name +
        "\": some will not see that it runs.");
  }
  return !held.empty();
}

bool isProgramLockHeld(const std::string& name) {
  for (const LockFile& file : lockFiles(name)) {
    if (isLocked(file)) {
      return true;
    }
  }
  return false;
}

}  // namespace SharedClasses::platform
