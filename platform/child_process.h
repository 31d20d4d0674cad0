// One program run as a child, its three standard streams joined to pipes of ours.
// The child inherits nothing but its standard streams, starts with no signal blocked or ignored, and is waited for by
// this alone: the host's other children, its signal dispositions and its descriptors are left as they are.
// A child process belongs to one thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace SharedClasses::platform {

// A program that could not be started.
class LaunchError : public std::runtime_error {
 public:
  LaunchError(std::string path, std::string reason);

  [[nodiscard]] const std::string& path() const { return mPath; }
  [[nodiscard]] const std::string& reason() const { return mReason; }  // "No such file or directory"

 private:
  std::string mPath;
  std::string mReason;
};

// A variable of the environment that a child has otherwise than its host.
struct EnvironmentChange {
  std::string name;
  std::optional<std::string> value;  // absent: the child has no such variable
};

// How many bytes a pipe to or from a child holds, where the system allows it: what a child may print before anybody
// reads.
inline constexpr int kChildPipeSize = 1 << 20;

class ChildProcess {
 public:
  // Starts the program at `path` with `arguments` behind its own name, in this process's environment with `changes` to
  // it. Throws LaunchError when that fails, for want of the file, of rights, of memory or of descriptors, and for a NUL
  // in any text, which the system would cut there; a text without "#!" is not run by a shell.
  ChildProcess(const std::string& path, const std::vector<std::string>& arguments,
               const std::vector<EnvironmentChange>& changes = {});
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  // Closes our ends of the pipes. A child that still runs is left running, but SIGPIPE ends it if it prints on; it is
  // reaped when a later one is started or let go of.
  ~ChildProcess();

  [[nodiscard]] std::int32_t processID() const;

  // Whether it has not ended yet. Also false when the host has taken the child's end away from us.
  [[nodiscard]] bool isRunning();

  // Sleeps until it has ended, at most `longest`. Whether it has.
  bool waitForEnd(std::chrono::nanoseconds longest);

  // The exit status, or the number of the signal that ended it; -1 while it runs and when the host has taken it away.
  [[nodiscard]] std::int32_t terminationStatus();

  // Readable once the child has ended, for a run loop; -1 where the system had none to give.
  [[nodiscard]] int endDescriptor() const;

  // Our ends of the pipes, none of which blocks; -1 once closed.
  [[nodiscard]] int input() const;
  [[nodiscard]] int output() const;
  [[nodiscard]] int error() const;
  void closeInput();

 private:
  class System;
  std::unique_ptr<System> mSystem;
};

// Writes what a pipe takes of `bytes`, from `written` on, at most kChildPipeSize bytes, and moves `written`. False when
// nobody will read the rest. Never waits, and raises no SIGPIPE.
[[nodiscard]] bool writeToPipe(int descriptor, const std::string& bytes, std::size_t* written);

enum class PipeEnd {
  Open,   // nothing more for now
  Ended,  // or broken
};

// Appends to `bytes` what a pipe holds, at most kChildPipeSize bytes. Never waits.
[[nodiscard]] PipeEnd readFromPipe(int descriptor, std::string* bytes);

}  // namespace SharedClasses::platform
