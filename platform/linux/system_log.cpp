#include "platform/linux/system_log.h"

#include <sys/socket.h>
#include <sys/syslog.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/linux/file_descriptor.h"
#include "platform/text.h"
#include "platform/text_parts.h"

namespace SharedClasses::platform {

namespace {

constexpr std::size_t kMaximumMessage = std::size_t{1} << 20;

// Longest part handed to the system log; journals and syslog daemons take at least this much in one datagram.
constexpr std::size_t kMaximumPart = 8192;

// Takes at most `limit` bytes off the front of `rest`: whole lines, else whole characters.
std::string_view takeWithin(std::size_t limit, std::string_view& rest) {
  std::size_t length = std::min(rest.size(), limit);
  if (length < rest.size()) {
    if (const std::size_t lineFeed = rest.rfind('\n', limit - 1); lineFeed != rest.npos) {
      length = lineFeed + 1;
    } else {
      for (int step = 0; step < 3 && (rest[length] & 0xC0) == 0x80; ++step) {  // UTF-8's continuation bytes
        --length;
      }
    }
  }
  const std::string_view part = rest.substr(0, length);
  rest.remove_prefix(length);
  return part;
}

void writeToTerminal(std::string_view message) {
  // One call a message keeps those of several threads apart; only a signal leaves something over.
  const std::string lines = linesForTerminal(message);
  for (std::string_view rest = lines; !rest.empty();) {
    const ssize_t written = ::write(STDERR_FILENO, rest.data(), rest.size());
    if (written > 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (written == 0 || errno != EINTR) {
      return;
    }
  }
}

// The C library's syslog() waits without a limit for a stopped daemon; this does not.
void sendToDaemon(std::string_view message) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strcpy(address.sun_path, "/dev/log");
  const FileDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    return;
  }
  const std::string heading = "<" + std::to_string(LOG_USER | LOG_NOTICE) + ">" + program_invocation_short_name + "[" +
                              std::to_string(::getpid()) + "]: ";
  bool isTaken = false;
  do {
    const std::string datagram = heading + std::string(takeDatagram(message));
    isTaken = ::send(socket.get(), datagram.data(), datagram.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
  } while (isTaken && !message.empty());
}

}  // namespace

std::string linesForTerminal(std::string_view message) {
  std::string lines;
  do {
    lines += printableLine(takePart(message, '\n')) + '\n';
  } while (!message.empty());
  return lines;
}

std::string_view takeDatagram(std::string_view& message) {
  return takeWithin(kMaximumPart, message);
}

void writeToSystemLog(std::string_view message) noexcept {
  const int callersError = errno;
  try {
    const std::string_view bounded = takeWithin(kMaximumMessage, message);
    if (::isatty(STDERR_FILENO) == 1) {
      writeToTerminal(bounded);
    } else {
      sendToDaemon(bounded);
    }
  } catch (...) {  // Out of memory: there is nobody to tell.
  }
  errno = callersError;
}

}  // namespace SharedClasses::platform
