#include "platform/linux/system_log.h"

#include <sys/socket.h>
#include <sys/syslog.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "platform/text.h"

namespace SharedClasses::platform {

namespace {

// Longest message handed to the system log; journals and syslog daemons take at least this much in one datagram.
constexpr std::size_t kMaximumSystemMessage = 8192;

void writeToTerminal(std::string_view message) {
  std::string line = printableLine(message);
  line += '\n';
  // One call a message keeps lines of several threads whole; a terminal that takes less has lost the rest.
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

// The C library's syslog() waits without a limit for a stopped daemon; this does not.
void sendToDaemon(std::string_view message) {
  const int descriptor = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (descriptor < 0) {
    return;
  }
  std::string datagram = "<" + std::to_string(LOG_USER | LOG_NOTICE) + ">";
  datagram += program_invocation_short_name;
  datagram += "[" + std::to_string(::getpid()) + "]: ";
  datagram += message.substr(0, kMaximumSystemMessage);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strcpy(address.sun_path, "/dev/log");
  ::sendto(descriptor, datagram.data(), datagram.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
           reinterpret_cast<const sockaddr*>(&address), sizeof address);
  ::close(descriptor);
}

}  // namespace

void writeToSystemLog(std::string_view message) noexcept {
  const int callersError = errno;
  try {
    if (::isatty(STDERR_FILENO) == 1) {
      writeToTerminal(message);
    } else {
      sendToDaemon(message);
    }
  } catch (...) {  // Out of memory: there is nobody to tell.
  }
  errno = callersError;
}

}  // namespace SharedClasses::platform
