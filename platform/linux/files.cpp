#include "platform/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

namespace SharedClasses::platform {

namespace {

class Descriptor {
 public:
  explicit Descriptor(int descriptor) : mDescriptor(descriptor) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (mDescriptor >= 0) {
      ::close(mDescriptor);
    }
  }
  [[nodiscard]] int get() const { return mDescriptor; }

 private:
  int mDescriptor;
};

// A path with a NUL inside would be cut by the system and name another file.
bool isUsablePath(const std::string& path) {
  return !path.empty() && path.find('\0') == std::string::npos;
}

std::string systemError() {
  return std::generic_category().message(errno);
}

}  // namespace

std::optional<std::string> readFile(const std::string& path, std::size_t limit, std::string* error) {
  const auto fail = [error](std::string message) {
    if (error != nullptr) {
      *error = std::move(message);
    }
    return std::nullopt;
  };
  if (!isUsablePath(path)) {
    return fail("not a usable path");
  }
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat status {};
  if (file.get() < 0 || ::fstat(file.get(), &status) != 0) {
    return fail(systemError());
  }
  if (!S_ISREG(status.st_mode)) {
    return fail("not a regular file");
  }
  // The size is a hint: the file may grow or shrink while it is read, and files of /proc state none.
  std::string bytes;
  const std::string tooLong = "longer than " + std::to_string(limit) + " bytes";
  if (std::cmp_greater(status.st_size, limit)) {
    return fail(tooLong);
  }
  std::size_t used = 0;
  for (;;) {
    bytes.resize(used + (used == 0 ? static_cast<std::size_t>(status.st_size) + 1 : std::size_t{65536}));
    const ssize_t count = ::read(file.get(), bytes.data() + used, bytes.size() - used);
    if (count < 0) {
      if (errno == EINTR) {
        continue;
      }
      return fail(systemError());
    }
    used += static_cast<std::size_t>(count);
    if (used > limit) {
      return fail(tooLong);
    }
    if (count == 0) {
      bytes.resize(used);
      return bytes;
    }
  }
}

std::string pathInFolder(std::string_view folder, std::string_view name) {
  if (folder.empty()) {
    return {};
  }
  std::string path(folder);
  if (!path.ends_with('/')) {
    path += '/';
  }
  return path.append(name);
}

std::vector<std::string> entriesOfFolder(const std::string& path) {
  std::vector<std::string> names;
  if (!isUsablePath(path)) {
    return names;
  }
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.c_str()), ::closedir);
  if (folder == nullptr) {
    return names;
  }
  while (const dirent* entry = ::readdir(folder.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      names.emplace_back(name);
    }
  }
  return names;
}

bool isFolder(const std::string& path) {
  struct stat status {};
  return isUsablePath(path) && ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string programPath() {
  std::string path(PATH_MAX, '\0');
  const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
  path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
  return path;
}

std::optional<std::string> environmentVariable(const char* name) {
  const char* value = ::secure_getenv(name);
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

}  // namespace SharedClasses::platform
