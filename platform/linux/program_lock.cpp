#include "platform/program_lock.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/files.h"
#include "platform/linux/descriptor.h"
#include "platform/log.h"
#include "platform/text.h"

namespace SharedClasses::platform {

namespace {

constexpr const char* kSystemFolder = "/run/lock";  // where programs of other users see a lock

// Names may hold any bytes; files are named by their hex.
std::string fileName(const std::string& name) {
  std::string file = "SharedClasses-";
  for (const char c : name) {
    file += hexDigits(static_cast<unsigned char>(c), 2);
  }
  return file + ".lock";
}

std::vector<std::string> lockFiles(const std::string& name) {
  std::vector<std::string> files;
  if (const auto runtimeFolder = environmentVariable("XDG_RUNTIME_DIR"); runtimeFolder && !runtimeFolder->empty()) {
    files.push_back(pathInFolder(*runtimeFolder, fileName(name)));
  }
  files.push_back(pathInFolder(kSystemFolder, fileName(name)));
  return files;
}

struct flock wholeFile(short kind) {
  struct flock lock {};
  lock.l_type = kind;
  lock.l_whence = SEEK_SET;
  return lock;
}

// Every holder takes a shared lock, for which a file that another user made need only be readable. Such a file is opened
// without O_CREAT: in a folder that everybody may write the system refuses that for files of others.
Descriptor takeLock(const std::string& file) {
  constexpr mode_t kMode = 0644;
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  Descriptor descriptor(::open(file.c_str(), kFlags));
  if (!descriptor.isOpen()) {
    descriptor = Descriptor(::open(file.c_str(), kFlags | O_CREAT, kMode));
    ::fchmod(descriptor.get(), kMode);  // whatever our mask: others could not tell whether an unreadable file is locked
  }
  struct flock lock = wholeFile(F_RDLCK);
  if (descriptor.isOpen() && ::fcntl(descriptor.get(), F_OFD_SETLK, &lock) != 0) {
    descriptor.reset();
  }
  return descriptor;
}

bool isLocked(const std::string& file) {
  const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  if (!descriptor.isOpen()) {
    return errno != ENOENT;
  }
  struct flock lock = wholeFile(F_WRLCK);
  return ::fcntl(descriptor.get(), F_OFD_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
}

// Never destroyed: the locks end with the process.
struct HeldLocks {
  std::mutex mutex;
  std::map<std::string, std::vector<Descriptor>> byName;
};
HeldLocks& heldLocks() {
  static auto* const sHeld = new HeldLocks;
  return *sHeld;
}

}  // namespace

bool holdProgramLock(const std::string& name) {
  const std::lock_guard guard(heldLocks().mutex);
  std::vector<Descriptor>& held = heldLocks().byName[name];
  if (!held.empty()) {
    return true;
  }
  for (const std::string& file : lockFiles(name)) {
    if (Descriptor descriptor = takeLock(file); descriptor.isOpen()) {
      held.push_back(std::move(descriptor));
    }
  }
  if (held.empty()) {
    log("No lock could be taken for the program \"" + name + "\": others will not see that it runs.");
  }
  return !held.empty();
}

bool isProgramLockHeld(const std::string& name) {
  for (const std::string& file : lockFiles(name)) {
    if (isLocked(file)) {
      return true;
    }
  }
  return false;
}

}  // namespace SharedClasses::platform
