#include "platform/terminal.h"

#include <unistd.h>

namespace SharedClasses::platform {

bool isTerminal(StandardStream stream) {
  switch (stream) {
    case StandardStream::Input:
      return ::isatty(STDIN_FILENO) == 1;
    case StandardStream::Output:
      return ::isatty(STDOUT_FILENO) == 1;
    case StandardStream::Error:
      return ::isatty(STDERR_FILENO) == 1;
  }
  return false;
}

}  // namespace SharedClasses::platform
