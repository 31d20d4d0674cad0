// A file of settings on disk: reading it when it has changed, and putting a new one in its place.
// The file is one XML property list, a dictionary. It is never written to: a new one is written beside it and takes
// over its name, so that whoever opens it finds the old or the new, whole.
// Not for several threads at a time.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/file_descriptor.h"
#include "platform/value.h"

namespace SharedClasses::platform {

inline constexpr std::chrono::milliseconds kLockStep{1};  // between two looks at a lock that another holds

// The calls to the system that could fail, all made through here. A test may look at each in front of it.
class SystemCalls {
 public:
  // Given the name of the call: 0 lets it be made, all else is the error number that it fails with instead.
  using Probe = std::function<int(std::string_view call)>;

  explicit SystemCalls(Probe probe = nullptr) : mProbe(std::move(probe)) {}

  // What `call` gives; -1 with errno when it fails. Signals do not interrupt it.
  template <class Call>
  auto operator()(std::string_view name, Call call) const -> decltype(call()) {
    if (const int error = mProbe ? mProbe(name) : 0; error != 0) {
      errno = error;
      return -1;
    }
    auto result = call();
    while (result < 0 && errno == EINTR) {
      result = call();
    }
    return result;
  }

 private:
  Probe mProbe;
};

// Which version of a file it is. Two that the system gives the same of all this are one version, save that a file can
// be changed twice within one tick of the clock that its times are taken from.
struct FileVersion {
  bool exists = false;
  dev_t device = 0;
  ino_t number = 0;
  off_t size = 0;
  std::chrono::nanoseconds contentChanged{0};  // of the system's time of day
  std::chrono::nanoseconds changed{0};

  friend bool operator==(const FileVersion&, const FileVersion&) = default;
};

class SettingsFile {
 public:
  enum class State {
    Missing,
    Good,
    Damaged,     // not a property list, or not of a dictionary
    Unreadable,  // there may be a good one: it must not be replaced
  };

  explicit SettingsFile(std::string path) : mPath(std::move(path)) {}

  // Reads the file if it is another version than that read last. True when values() are others than before.
  bool refresh(const SystemCalls& calls);

  // As after a refresh: the file of this version is known to hold `document`, which says `values`.
  void adopt(const FileVersion& version, std::string document, Value::Dictionary values);

  [[nodiscard]] const std::string& path() const { return mPath; }
  [[nodiscard]] State state() const { return mState; }
  [[nodiscard]] const FileVersion& version() const { return mVersion; }
  // What the file holds; of a damaged or unreadable one what it held when it was last good.
  [[nodiscard]] const Value::Dictionary& values() const { return mValues; }
  // Why it is damaged or unreadable; else empty.
  [[nodiscard]] const std::string& problem() const { return mProblem; }

 private:
  bool read(const SystemCalls& calls);
  bool parse(std::string document);
  void become(State state, std::string problem = {});

  std::string mPath;
  State mState = State::Missing;
  FileVersion mVersion;         // that was read
  bool mMayHideChange = false;  // the version was so young that it may have been changed without another one showing
  std::string mDocument;        // that was read; empty unless good or damaged
  Value::Dictionary mValues;
  std::string mProblem;
};

// The folder of a settings file, locked for all who lock it before they write. The lock ends with this, or with the
// process, and is not inherited by children.
class LockedFolder {
 public:
  enum class Outcome {
    Done,
    Busy,      // another program holds the lock, or has replaced the file without taking it: try again
    Unsynced,  // the new file is there, but a power cut may bring the old one back
    Failed,
  };

  LockedFolder() = default;
  LockedFolder(const LockedFolder&) = delete;
  LockedFolder& operator=(const LockedFolder&) = delete;
  ~LockedFolder();

  // Locks the folder of `path`, of the file that it leads to if it is a link; makes the folder if it is missing. Waits
  // for others until `deadline`. To be called once.
  Outcome lock(const std::string& path, std::chrono::steady_clock::time_point deadline, const SystemCalls& calls);

  // Puts a file of `document` in the place of the one of the version `expected`, with its rights and owners; Busy when
  // that is no longer there. `*version` becomes the new one's. Where `keepsOld`, the old one stays under a further
  // name.
  Outcome replace(std::string_view document, const FileVersion& expected, bool keepsOld, FileVersion* version,
                  const SystemCalls& calls);

  // What went wrong, with path and reason; empty after Done and Busy.
  [[nodiscard]] const std::string& problem() const { return mProblem; }
  // Where replace() has kept the old file; empty when it has not.
  [[nodiscard]] const std::string& keptPath() const { return mKeptPath; }

 private:
  bool findTarget(std::string path, const SystemCalls& calls);
  bool openFolder(const SystemCalls& calls);
  bool makeFolder(const SystemCalls& calls);
  bool openLockFile(const SystemCalls& calls);
  bool write(int file, std::string_view document, const SystemCalls& calls);
  bool takeOverRights(int file, const SystemCalls& calls);
  bool keepOld(const SystemCalls& calls);
  bool fail(const std::string& what, const std::string& path);  // because of errno
  [[nodiscard]] std::string pathOf(const std::string& name) const;

  std::string mFolderPath;
  std::string mName;           // of the file in the folder; no link
  bool mIsLinkTarget = false;  // a link led there
  FileDescriptor mFolder;
  FileDescriptor mLockFile;         // where the system locks no folders
  std::optional<struct stat> mOld;  // the file that is replaced; absent when there was none
  std::string mProblem;
  std::string mKeptPath;
};

}  // namespace SharedClasses::platform
