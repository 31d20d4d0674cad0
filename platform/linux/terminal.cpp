#include "platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace SharedClasses::platform {

namespace {

int descriptorOf(StandardStream stream) {
  switch (stream) {
    case StandardStream::Input:
      return STDIN_FILENO;
    case StandardStream::Output:
      return STDOUT_FILENO;
    case StandardStream::Error:
      return STDERR_FILENO;
  }
  return -1;
}

}  // namespace

bool isTerminal(StandardStream stream) {
  return ::isatty(descriptorOf(stream)) == 1;
}

std::optional<int> terminalWidth(StandardStream stream) {
  winsize size{};
  const bool isKnown = ::ioctl(descriptorOf(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? std::optional<int>(size.ws_col) : std::nullopt;
}

}  // namespace SharedClasses::platform
