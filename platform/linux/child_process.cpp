#include "platform/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/clock.h"
#include "platform/linux/file_descriptor.h"
#include "platform/linux/time_spans.h"

// The C library forgets to say that these are C.
extern "C" {
#include <sys/pidfd.h>
}

namespace SharedClasses::platform {

namespace {

constexpr std::int32_t kNoStatus = -1;
constexpr int kFirstFreeDescriptor = 3;
constexpr std::chrono::nanoseconds kUnwatchedStep = std::chrono::milliseconds(5);
constexpr std::chrono::nanoseconds kNoWait{0};
constexpr std::chrono::nanoseconds kLongestWait = std::chrono::years(100);

std::string textOf(int error) {
  return std::generic_category().message(error);
}

// A child of ours, by a descriptor where the system had one to give: a number may be used anew once somebody has reaped
// the child that had it.
struct Child {
  pid_t processID = 0;
  FileDescriptor descriptor;

  // Absent while it runs; then its status, or kNoStatus where somebody else has taken its end.
  [[nodiscard]] std::optional<std::int32_t> reap() const {
    const idtype_t kind = descriptor.isOpen() ? P_PIDFD : P_PID;
    const int number = descriptor.isOpen() ? descriptor.get() : processID;
    siginfo_t end{};
    int result = 0;
    do {
      result = ::waitid(kind, static_cast<id_t>(number), &end, WEXITED | WNOHANG);
    } while (result != 0 && errno == EINTR);
    if (result == 0 && end.si_pid == 0) {
      return std::nullopt;
    }
    return result == 0 ? end.si_status : kNoStatus;
  }
};

// Children that were let go of while they ran. Reaped when the next one comes or goes: no thread waits for them.
class Abandoned {
 public:
  static void add(Child child) {
    const std::lock_guard lock(mutex());
    children().push_back(std::move(child));
  }

  static void reap() {
    const std::lock_guard lock(mutex());
    std::erase_if(children(), [](const Child& child) { return child.reap().has_value(); });
  }

 private:
  // Never destroyed: children are let go of until the process ends.
  static std::mutex& mutex() {
    static auto* const sMutex = new std::mutex;
    return *sMutex;
  }
  static std::vector<Child>& children() {
    static auto* const sChildren = new std::vector<Child>;
    return *sChildren;
  }
};

struct Pipe {
  FileDescriptor readEnd;
  FileDescriptor writeEnd;
};

// `descriptor` by a number that is no standard stream's: a host may have closed its own.
FileDescriptor awayFromStandardStreams(FileDescriptor descriptor) {
  if (!descriptor.isOpen() || descriptor.get() >= kFirstFreeDescriptor) {
    return descriptor;
  }
  return FileDescriptor(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, kFirstFreeDescriptor));
}

Pipe makePipe(const std::string& path) {
  std::array<int, 2> ends{-1, -1};
  const int result = ::pipe2(ends.data(), O_CLOEXEC);
  const int error = errno;
  Pipe pipe{awayFromStandardStreams(FileDescriptor(ends[0])), awayFromStandardStreams(FileDescriptor(ends[1]))};
  if (result != 0 || !pipe.readEnd.isOpen() || !pipe.writeEnd.isOpen()) {
    throw LaunchError(path, textOf(result != 0 ? error : errno));
  }
  ::fcntl(pipe.writeEnd.get(), F_SETPIPE_SZ, kChildPipeSize);  // the system's own size where it does not allow this one
  return pipe;
}

void setNonBlocking(const FileDescriptor& descriptor) {
  ::fcntl(descriptor.get(), F_SETFL, ::fcntl(descriptor.get(), F_GETFL) | O_NONBLOCK);
}

// What posix_spawn is told to do in the child.
class SpawnSetup {
 public:
  SpawnSetup(const FileDescriptor& input, const FileDescriptor& output, const FileDescriptor& error) {
    ::posix_spawn_file_actions_init(&mActions);
    ::posix_spawnattr_init(&mAttributes);
    note(::posix_spawn_file_actions_adddup2(&mActions, input.get(), STDIN_FILENO));
    note(::posix_spawn_file_actions_adddup2(&mActions, output.get(), STDOUT_FILENO));
    note(::posix_spawn_file_actions_adddup2(&mActions, error.get(), STDERR_FILENO));
    note(::posix_spawn_file_actions_addclosefrom_np(&mActions, kFirstFreeDescriptor));
    sigset_t signals;
    sigemptyset(&signals);
    note(::posix_spawnattr_setsigmask(&mAttributes, &signals));
    sigfillset(&signals);
    note(::posix_spawnattr_setsigdefault(&mAttributes, &signals));
    note(::posix_spawnattr_setflags(&mAttributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
  }
  SpawnSetup(const SpawnSetup&) = delete;
  SpawnSetup& operator=(const SpawnSetup&) = delete;
  ~SpawnSetup() {
    ::posix_spawn_file_actions_destroy(&mActions);
    ::posix_spawnattr_destroy(&mAttributes);
  }

  // The error of the first step that failed; 0 when none did.
  [[nodiscard]] int spawn(pid_t* child, const char* path, char* const* words, char* const* environment) const {
    return mError != 0 ? mError : ::posix_spawn(child, path, &mActions, &mAttributes, words, environment);
  }

 private:
  void note(int error) { mError = mError != 0 ? mError : error; }

  posix_spawn_file_actions_t mActions{};
  posix_spawnattr_t mAttributes{};
  int mError = 0;
};

bool holdsNUL(const std::string& text) {
  return text.find('\0') != std::string::npos;
}

// `texts` as the system takes them, with a null behind the last.
std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (const std::string& text : texts) {
    pointers.push_back(const_cast<char*>(text.c_str()));
  }
  pointers.push_back(nullptr);
  return pointers;
}

// This process's environment with `changes` to it, one "NAME=value" each.
std::vector<std::string> environmentWith(const std::vector<EnvironmentChange>& changes) {
  std::vector<std::string> variables;
  for (char* const* variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
    const std::string_view name = std::string_view(*variable).substr(0, std::string_view(*variable).find('='));
    if (std::ranges::find(changes, name, &EnvironmentChange::name) == changes.end()) {
      variables.emplace_back(*variable);
    }
  }
  for (const EnvironmentChange& change : changes) {
    if (change.value) {
      variables.push_back(change.name + "=" + *change.value);
    }
  }
  return variables;
}

// SIGPIPE kept from the calling thread while this lives.
class PipeSignalScope {
 public:
  PipeSignalScope() {
    sigemptyset(&mPipeSignal);
    sigaddset(&mPipeSignal, SIGPIPE);
    sigset_t pending;
    ::sigpending(&pending);
    mWasPending = sigismember(&pending, SIGPIPE) == 1;
    ::pthread_sigmask(SIG_BLOCK, &mPipeSignal, &mBefore);
  }
  PipeSignalScope(const PipeSignalScope&) = delete;
  PipeSignalScope& operator=(const PipeSignalScope&) = delete;
  ~PipeSignalScope() { ::pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }

  // Takes away the one that a write has raised, unless one was pending before.
  void takeRaised() const {
    const timespec now{};
    while (!mWasPending && ::sigtimedwait(&mPipeSignal, nullptr, &now) < 0 && errno == EINTR) {
    }
  }

 private:
  sigset_t mPipeSignal{};
  sigset_t mBefore{};
  bool mWasPending = false;
};

}  // namespace

LaunchError::LaunchError(std::string path, std::string reason)
    : std::runtime_error(path + " could not be started: " + reason),
      mPath(std::move(path)),
      mReason(std::move(reason)) {}

class ChildProcess::System {
 public:
  System(const std::string& path, const std::vector<std::string>& arguments,
         const std::vector<EnvironmentChange>& changes) {
    Abandoned::reap();
    if (holdsNUL(path)) {
      throw LaunchError(path, textOf(ENOENT));  // The system would start another program.
    }
    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const std::vector<std::string> environment = environmentWith(changes);
    if (std::ranges::any_of(words, holdsNUL) || std::ranges::any_of(environment, holdsNUL)) {
      throw LaunchError(path, textOf(EINVAL));  // The program would be told something else.
    }
    Pipe inputPipe = makePipe(path);
    Pipe outputPipe = makePipe(path);
    Pipe errorPipe = makePipe(path);
    const SpawnSetup setup(inputPipe.readEnd, outputPipe.writeEnd, errorPipe.writeEnd);
    if (const int error =
            setup.spawn(&mChild.processID, path.c_str(), pointersTo(words).data(), pointersTo(environment).data());
        error != 0) {
      throw LaunchError(path, textOf(error));
    }
    mChild.descriptor = awayFromStandardStreams(FileDescriptor(::pidfd_open(mChild.processID, 0)));
    mInput = std::move(inputPipe.writeEnd);
    mOutput = std::move(outputPipe.readEnd);
    mError = std::move(errorPipe.readEnd);
    for (const FileDescriptor* end : {&mInput, &mOutput, &mError}) {
      setNonBlocking(*end);
    }
  }
  System(const System&) = delete;
  System& operator=(const System&) = delete;
  ~System() {
    if (isRunning()) {
      Abandoned::add(std::move(mChild));
    }
    Abandoned::reap();
  }

  bool isRunning() {
    if (!mStatus) {
      mStatus = mChild.reap();
    }
    return !mStatus;
  }

  Child mChild;
  std::optional<std::int32_t> mStatus;  // absent until it was seen to have ended
  FileDescriptor mInput;
  FileDescriptor mOutput;
  FileDescriptor mError;
};

ChildProcess::ChildProcess(const std::string& path, const std::vector<std::string>& arguments,
                           const std::vector<EnvironmentChange>& changes)
    : mSystem(std::make_unique<System>(path, arguments, changes)) {}

ChildProcess::~ChildProcess() = default;

std::int32_t ChildProcess::processID() const {
  return mSystem->mChild.processID;
}

bool ChildProcess::isRunning() {
  return mSystem->isRunning();
}

bool ChildProcess::waitForEnd(std::chrono::nanoseconds longest) {
  const auto end = Clock::system().steadyTime() + std::clamp(longest, kNoWait, kLongestWait);
  // Without a descriptor for its end it is looked at now and then, and also where that is ready before the end is ours,
  // as that of a child which is traced.
  int watched = endDescriptor();
  while (isRunning()) {
    const std::chrono::nanoseconds left = end - Clock::system().steadyTime();
    if (left <= std::chrono::nanoseconds(0)) {
      return false;
    }
    pollfd ended{watched, POLLIN, 0};
    const timespec span = timespecOf(watched < 0 ? std::min(left, kUnwatchedStep) : left);
    if (::ppoll(&ended, 1, &span, nullptr) > 0) {
      watched = -1;
    }
  }
  return true;
}

std::int32_t ChildProcess::terminationStatus() {
  return mSystem->isRunning() ? kNoStatus : mSystem->mStatus.value_or(kNoStatus);
}

int ChildProcess::endDescriptor() const {
  return mSystem->mChild.descriptor.get();
}

int ChildProcess::input() const {
  return mSystem->mInput.get();
}

int ChildProcess::output() const {
  return mSystem->mOutput.get();
}

int ChildProcess::error() const {
  return mSystem->mError.get();
}

void ChildProcess::closeInput() {
  mSystem->mInput.reset();
}

bool writeToPipe(int descriptor, const std::string& bytes, std::size_t* written) {
  if (*written >= bytes.size()) {
    return true;
  }
  const PipeSignalScope scope;
  // Bounded: somebody may read as fast as we write.
  for (const std::size_t end = std::min(bytes.size(), *written + kChildPipeSize); *written < end;) {
    const ssize_t count = ::write(descriptor, bytes.data() + *written, end - *written);
    if (count >= 0) {
      *written += static_cast<std::size_t>(count);
    } else if (errno == EPIPE) {
      scope.takeRaised();
      return false;
    } else if (errno != EINTR) {
      return errno == EAGAIN;
    }
  }
  return true;
}

PipeEnd readFromPipe(int descriptor, std::string* bytes) {
  std::array<char, 65536> piece;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the system
  // Bounded: somebody may write as fast as we read.
  for (const std::size_t enough = bytes->size() + kChildPipeSize; bytes->size() < enough;) {
    const ssize_t count = ::read(descriptor, piece.data(), std::min(piece.size(), enough - bytes->size()));
    if (count > 0) {
      bytes->append(piece.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return count < 0 && errno == EAGAIN ? PipeEnd::Open : PipeEnd::Ended;
    }
  }
  return PipeEnd::Open;
}

}  // namespace SharedClasses::platform
