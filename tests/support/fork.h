// A part of a test in a process of its own, which may do to itself what would harm the others.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>

namespace SharedClasses::tests {

constexpr unsigned kForkPatience = 60;  // seconds, then SIGALRM ends the process

inline pid_t startInFork(const std::function<int()>& body) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::alarm(kForkPatience);
    ::_exit(body());
  }
  return child;
}

// The exit status of an ended child of this process, or 128 and the number of the signal that ended it.
inline int statusOfChild(pid_t child) {
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

inline int statusInFork(const std::function<int()>& body) {
  return statusOfChild(startInFork(body));
}

// The last child that this thread started and that nobody has waited for; -1 for none.
inline pid_t lastChild() {
  std::ifstream children("/proc/thread-self/children");
  pid_t last = -1;
  for (pid_t child = 0; children >> child;) {
    last = child;
  }
  return last;
}

}  // namespace SharedClasses::tests
