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

// A regular file that is open for reading; nothing else is opened, and opening never waits.
class RegularFile {
 public:
  explicit RegularFile(const char* path) noexcept
      : mDescriptor(::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
    if (mDescriptor < 0 || ::fstat(mDescriptor, &mStatus) != 0) {
      mError = errno;
    } else if (!S_ISREG(mStatus.st_mode)) {
      mError = S_ISDIR(mStatus.st_mode) ? EISDIR : kNotRegular;
    }
  }
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;
  ~RegularFile() {
    if (mDescriptor >= 0) {
      ::close(mDescriptor);
    }
  }

  [[nodiscard]] bool isOpen() const noexcept { return mError == 0; }
  [[nodiscard]] std::string errorText() const {
    return mError == kNotRegular ? "not a regular file" : std::generic_category().message(mError);
  }
  [[nodiscard]] off_t size() const noexcept { return mStatus.st_size; }

  // As read(2), but signals do not interrupt it.
  ssize_t read(void* bytes, std::size_t count) const noexcept {
    ssize_t result = 0;
    do {
      result = ::read(mDescriptor, bytes, count);
    } while (result < 0 && errno == EINTR);
    return result;
  }

 private:
  static constexpr int kNotRegular = -1;

  int mDescriptor;
  struct stat mStatus {};
  int mError = 0;  // of errno, or kNotRegular
};

// A path with a NUL inside would be cut by the system and name another file.
bool isUsablePath(const std::string& path) {
  return !path.empty() && path.find('\0') == std::string::npos;
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
  const RegularFile file(path.c_str());
  if (!file.isOpen()) {
    return fail(file.errorText());
  }
  const std::string tooLong = "longer than " + std::to_string(limit) + " bytes";
  if (std::cmp_greater(file.size(), limit)) {
    return fail(tooLong);
  }
  // The size is a hint: the file may grow or shrink while it is read, and files of /proc state none.
  std::string bytes;
  std::size_t used = 0;
  for (;;) {
    bytes.resize(used + (used == 0 ? static_cast<std::size_t>(file.size()) + 1 : std::size_t{65536}));
    const ssize_t count = file.read(bytes.data() + used, bytes.size() - used);
    if (count < 0) {
      return fail(std::generic_category().message(errno));
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

std::int64_t sizeOfFile(const char* path) noexcept {
  struct stat status {};
  return ::stat(path, &status) == 0 ? status.st_size : -1;
}

bool readFileInto(const char* path, std::span<std::uint8_t> bytes) noexcept {
  const RegularFile file(path);
  if (!file.isOpen()) {
    return false;
  }
  while (!bytes.empty()) {
    const ssize_t count = file.read(bytes.data(), bytes.size());
    if (count <= 0) {
      return false;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
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
