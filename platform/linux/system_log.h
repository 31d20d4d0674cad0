// The system's own log, behind platform/log.h. Safe on any thread. A daemon is never waited for; a terminal whose user
// has stopped it is, as every program that writes to it does.
#pragma once

#include <string>
#include <string_view>

namespace SharedClasses::platform {

// Writes `message` to standard error where that is a terminal, else sends it to the system log in several datagrams.
// What is beyond the first MiB is left out. A datagram that cannot be taken at once is dropped, and so is what follows
// it.
void writeToSystemLog(std::string_view message) noexcept;

// What a terminal shows of `message`: each of its lines as a printable one, with a line feed.
[[nodiscard]] std::string linesForTerminal(std::string_view message);

// Takes what is the next datagram's off the front of `message`: at most 8192 bytes, which end behind a line feed where
// there is one, else between characters.
[[nodiscard]] std::string_view takeDatagram(std::string_view& message);

}  // namespace SharedClasses::platform
