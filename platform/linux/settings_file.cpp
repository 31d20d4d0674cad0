#include "platform/linux/settings_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/fsuid.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>
#include <ctime>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/property_list.h"

namespace SharedClasses::platform {

namespace {

using std::chrono::nanoseconds;

constexpr int kMostLinks = 40;  // in a row; as many as the system follows
constexpr int kMostKeptFiles = 100;
constexpr mode_t kFolderMode = 0700;
constexpr mode_t kFileMode = 0600;
constexpr mode_t kGroupRights = 0070;

// As long as a file's last change is not older than this, another may fall into the same tick of the clock that its
// times are taken from. The slowest file systems have ticks of two seconds.
constexpr nanoseconds kYouth = std::chrono::seconds(2);

std::string errorText(int error) {
  return std::generic_category().message(error);
}

nanoseconds spanOf(const timespec& time) {
  return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

FileVersion versionOf(const struct stat& status) {
  return {true, status.st_dev, status.st_ino, status.st_size, spanOf(status.st_mtim), spanOf(status.st_ctim)};
}

bool isYoung(const FileVersion& version) {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
  return spanOf(now) - version.changed < kYouth;
}

// What stands in `path` in front of the last slash; with the slash for the root folder.
std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == path.npos ? "." : path.substr(0, slash == 0 ? 1 : slash);
}

// Whether the error of a lock on a folder says that the file system has locks for files at most.
bool cannotLockFolders(int error) {
  return error == EBADF || error == EINVAL || error == ENOLCK || error == ENOSYS || error == EOPNOTSUPP;
}

// Makes what is in a folder last. Some file systems have nothing to be done for that and say so by an error.
bool syncFolder(int folder, const SystemCalls& calls) {
  return calls("fsync", [folder] { return ::fsync(folder); }) == 0 || errno == EINVAL || errno == ENOTSUP;
}

}  // namespace

bool SettingsFile::refresh(const SystemCalls& calls) {
  const bool wasMissing = mState == State::Missing;
  struct stat status {};
  if (calls("stat", [&] { return ::stat(mPath.c_str(), &status); }) != 0) {
    const bool isMissing = errno == ENOENT || errno == ENOTDIR;
    become(isMissing ? State::Missing : State::Unreadable, isMissing ? "" : errorText(errno));
    return isMissing && !wasMissing;
  }
  if (!S_ISREG(status.st_mode)) {  // opening a device could do things
    become(State::Unreadable, S_ISDIR(status.st_mode) ? "it is a folder" : "it is no plain file");
    return false;
  }
  const bool isKnown = (mState == State::Good || mState == State::Damaged) && versionOf(status) == mVersion;
  if (isKnown && !mMayHideChange) {
    return false;
  }
  return read(calls);
}

bool SettingsFile::read(const SystemCalls& calls) {
  const std::string tooLong = "it has more than " + std::to_string(kMaximumPropertyListSize) + " bytes";
  const auto fail = [this](const std::string& problem) {
    become(State::Unreadable, problem);
    return false;
  };
  const FileDescriptor file(
      calls("open", [this] { return ::open(mPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
  struct stat status {};
  if (!file.isOpen() || calls("fstat", [&] { return ::fstat(file.get(), &status); }) != 0) {
    return fail(errorText(errno));
  }
  if (std::cmp_greater(status.st_size, kMaximumPropertyListSize)) {
    return fail(tooLong);
  }
  std::string document;
  std::size_t used = 0;
  while (used == document.size()) {  // what does not fill the room is the end of a plain file
    document.resize(used + (used == 0 ? static_cast<std::size_t>(status.st_size) + 1 : std::size_t{65536}));
    const ssize_t count =
        calls("read", [&] { return ::read(file.get(), document.data() + used, document.size() - used); });
    if (count < 0) {
      return fail(errorText(errno));
    }
    used += static_cast<std::size_t>(count);
    if (used > kMaximumPropertyListSize) {
      return fail(tooLong);
    }
  }
  document.resize(used);
  // The version from before the reading: what was changed meanwhile then shows as another one.
  mVersion = versionOf(status);
  mMayHideChange = isYoung(mVersion);
  const bool isAnother = (mState != State::Good && mState != State::Damaged) || document != mDocument;
  return isAnother && parse(std::move(document));
}

bool SettingsFile::parse(std::string document) {
  PropertyListError error;
  const std::optional<Value> value = propertyListFromXML(document, &error);
  mDocument = std::move(document);
  const Value::Dictionary* const values = value ? value->dictionary() : nullptr;
  if (values == nullptr) {
    become(State::Damaged, value ? "it holds no <dict>" : error.message + ", line " + std::to_string(error.line));
    return false;
  }
  become(State::Good);
  mValues = *values;
  return true;
}

void SettingsFile::become(State state, std::string problem) {
  mState = state;
  mProblem = std::move(problem);
  if (state == State::Missing) {
    mVersion = {};
    mDocument.clear();
    mValues.clear();
  }
}

void SettingsFile::adopt(const FileVersion& version, std::string document, Value::Dictionary values) {
  become(State::Good);
  mVersion = version;
  mMayHideChange = true;
  mDocument = std::move(document);
  mValues = std::move(values);
}

LockedFolder::~LockedFolder() {
  // Closing is not enough: a child that was forked meanwhile holds a copy of the descriptor.
  for (const FileDescriptor* locked : {&mFolder, &mLockFile}) {
    if (locked->isOpen()) {
      ::flock(locked->get(), LOCK_UN);
    }
  }
}

LockedFolder::Outcome LockedFolder::lock(const std::string& path, std::chrono::steady_clock::time_point deadline,
                                         const SystemCalls& calls) {
  if (!findTarget(path, calls) || !openFolder(calls)) {
    return Outcome::Failed;
  }
  while (true) {
    const int descriptor = mLockFile.isOpen() ? mLockFile.get() : mFolder.get();
    if (calls("flock", [descriptor] { return ::flock(descriptor, LOCK_EX | LOCK_NB); }) == 0) {
      return Outcome::Done;
    }
    if (errno == EWOULDBLOCK) {
      if (std::chrono::steady_clock::now() >= deadline) {
        return Outcome::Busy;
      }
      std::this_thread::sleep_for(kLockStep);
    } else if (mLockFile.isOpen() || !cannotLockFolders(errno) || !openLockFile(calls)) {
      return fail("lock", mFolderPath), Outcome::Failed;
    }
  }
}

// Follows the link that `path` may be, and those that it leads to.
bool LockedFolder::findTarget(std::string path, const SystemCalls& calls) {
  for (int links = 0; links < kMostLinks; ++links) {
    mFolderPath = folderOf(path);
    mName = path.substr(path.rfind('/') + 1);
    std::array<char, PATH_MAX> target{};
    const ssize_t length =
        calls("readlink", [&] { return ::readlink(path.c_str(), target.data(), target.size() - 1); });
    if (length < 0) {
      return errno == EINVAL || errno == ENOENT || fail("look at", path);  // no link, or nothing
    }
    // A link of another user could make us replace what that user could not.
    struct stat status {};
    if (calls("lstat", [&] { return ::lstat(path.c_str(), &status); }) != 0) {
      return fail("look at", path);
    }
    if (status.st_uid != 0 && status.st_uid != static_cast<uid_t>(::setfsuid(static_cast<uid_t>(-1)))) {
      errno = EPERM;
      return fail("follow another user's link", path);
    }
    mIsLinkTarget = true;
    path = target.front() == '/' ? target.data() : pathOf(target.data());
  }
  errno = ELOOP;
  return fail("follow", path);
}

bool LockedFolder::openFolder(const SystemCalls& calls) {
  const auto open = [this, &calls] {
    mFolder = FileDescriptor(
        calls("open", [this] { return ::open(mFolderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    return mFolder.isOpen();
  };
  if (open()) {
    return true;
  }
  // The folder of a link's target may be that of a disk that is not there.
  if (errno != ENOENT || mIsLinkTarget) {
    return fail("open", mFolderPath);
  }
  return makeFolder(calls) && (open() || fail("open", mFolderPath));
}

// Makes all folders on the way that are missing.
bool LockedFolder::makeFolder(const SystemCalls& calls) {
  for (std::size_t end = 1; end != mFolderPath.npos;) {
    end = mFolderPath.find('/', end + 1);
    const std::string path = mFolderPath.substr(0, end);
    if (calls("mkdir", [&path] { return ::mkdir(path.c_str(), kFolderMode); }) != 0) {
      struct stat status {};
      const int error = errno;
      if (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
        continue;
      }
      errno = error;
      return fail("make", path);
    }
    const std::string parentPath = folderOf(path);
    const FileDescriptor parent(
        calls("open", [&] { return ::open(parentPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (parent.isOpen() ? !syncFolder(parent.get(), calls) : errno != EACCES) {
      return fail("sync", parentPath);
    }
  }
  return true;
}

// Folders on network file systems cannot be locked; a file that is open for writing can.
bool LockedFolder::openLockFile(const SystemCalls& calls) {
  constexpr int kFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  const std::string name = '.' + mName + ".lock";
  mLockFile = FileDescriptor(calls("openat", [&] { return ::openat(mFolder.get(), name.c_str(), kFlags, kFileMode); }));
  return mLockFile.isOpen();
}

LockedFolder::Outcome LockedFolder::replace(std::string_view document, const FileVersion& expected, bool keepsOld,
                                            FileVersion* version, const SystemCalls& calls) {
  const auto look = [this, &calls](struct stat& status) {
    return calls("fstatat", [&] { return ::fstatat(mFolder.get(), mName.c_str(), &status, AT_SYMLINK_NOFOLLOW); }) == 0;
  };
  struct stat status {};
  if (look(status)) {
    mOld = status;
  } else if (errno != ENOENT) {
    return fail("look at", pathOf(mName)), Outcome::Failed;
  }
  // Of one name, so that what a killed program has left is gone with the next save.
  const std::string name = '.' + mName + ".new";
  const auto remove = [&] { return calls("unlinkat", [&] { return ::unlinkat(mFolder.get(), name.c_str(), 0); }); };
  if (remove() != 0 && errno != ENOENT) {
    return fail("remove", pathOf(name)), Outcome::Failed;
  }
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
  const FileDescriptor file(calls("openat", [&] { return ::openat(mFolder.get(), name.c_str(), kFlags, kFileMode); }));
  if (!file.isOpen()) {
    return fail("make", pathOf(name)), Outcome::Failed;
  }
  if (!write(file.get(), document, calls) || !takeOverRights(file.get(), calls)) {
    fail("write", pathOf(name));
    remove();
    return Outcome::Failed;
  }
  if ((look(status) ? versionOf(status) : FileVersion{}) != expected) {
    remove();
    return Outcome::Busy;
  }
  if ((keepsOld && !keepOld(calls)) ||
      calls("renameat", [&] { return ::renameat(mFolder.get(), name.c_str(), mFolder.get(), mName.c_str()); }) != 0) {
    fail("replace", pathOf(mName));
    remove();
    return Outcome::Failed;
  }
  // Renaming has changed the file's times. By the descriptor: under the name there may be a newer one already.
  *version = calls("fstat", [&] { return ::fstat(file.get(), &status); }) == 0 ? versionOf(status) : FileVersion{};
  if (!syncFolder(mFolder.get(), calls)) {
    return fail("sync", mFolderPath), Outcome::Unsynced;
  }
  return Outcome::Done;
}

bool LockedFolder::write(int file, std::string_view document, const SystemCalls& calls) {
  while (!document.empty()) {
    const ssize_t count = calls("write", [&] { return ::write(file, document.data(), document.size()); });
    if (count <= 0) {
      return false;
    }
    document.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

// Gives the new file what the old one had, and syncs it.
bool LockedFolder::takeOverRights(int file, const SystemCalls& calls) {
  mode_t mode = kFileMode;
  struct stat status {};
  if (mOld) {
    mode = mOld->st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
    if (calls("fstat", [&] { return ::fstat(file, &status); }) != 0) {
      return false;
    }
    const auto own = [&](uid_t user) {
      return calls("fchown", [&] { return ::fchown(file, user, mOld->st_gid); }) == 0;
    };
    if ((status.st_uid != mOld->st_uid || status.st_gid != mOld->st_gid) && !own(mOld->st_uid)) {
      if (errno != EPERM) {
        return false;
      }
      // Only the administrator may give a file away. What was meant for one group must not fall to another.
      mode = own(static_cast<uid_t>(-1)) ? mode : mode & ~kGroupRights;
    }
  }
  return calls("fchmod", [&] { return ::fchmod(file, mode); }) == 0 &&
         calls("fsync", [&] { return ::fsync(file); }) == 0;
}

// Gives the old file a further name that none has, so that it is still there once its own goes to the new one.
bool LockedFolder::keepOld(const SystemCalls& calls) {
  for (int number = 1; number <= kMostKeptFiles; ++number) {
    const std::string name = mName + ".damaged-" + std::to_string(number);
    const bool isKept =
        calls("linkat", [&] { return ::linkat(mFolder.get(), mName.c_str(), mFolder.get(), name.c_str(), 0); }) == 0 ||
        (errno != EEXIST && calls("renameat2", [&] {
                              return ::renameat2(mFolder.get(), mName.c_str(), mFolder.get(), name.c_str(),
                                                 RENAME_NOREPLACE);
                            }) == 0);
    const int error = errno;
    // A save that failed later on may have kept this very file already.
    struct stat status {};
    const bool isThere = ::fstatat(mFolder.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    if (isKept || (isThere && mOld && status.st_dev == mOld->st_dev && status.st_ino == mOld->st_ino)) {
      mKeptPath = pathOf(name);
      return true;
    }
    errno = error;
    if (error != EEXIST) {
      return false;
    }
  }
  return false;
}

bool LockedFolder::fail(const std::string& what, const std::string& path) {
  mProblem = "could not " + what + " \"" + path + "\": " + errorText(errno);
  return false;
}

std::string LockedFolder::pathOf(const std::string& name) const {
  return mFolderPath.ends_with('/') ? mFolderPath + name : mFolderPath + '/' + name;
}

}  // namespace SharedClasses::platform
