// The system's own log, behind platform/log.h. Safe on any thread. A daemon is never waited for; a terminal whose user has
// stopped it is, as every program that writes to it does.
#pragma once

#include <string_view>

namespace SharedClasses::platform {

// Writes `message` to standard error where that is a terminal, as one printable line; else sends it to the
// system log as one datagram. A message that the system log cannot take at once is dropped.
void writeToSystemLog(std::string_view message) noexcept;

}  // namespace SharedClasses::platform
