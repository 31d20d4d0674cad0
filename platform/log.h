// The library's log: one call, one message.
// Messages go to the system log, or to standard error where that is a terminal, until a program sets a sink of its own.
// Safe on any thread.
#pragma once

#include <memory>
#include <string_view>

namespace SharedClasses::platform {

// Where messages go. `write` is called on the thread that logs, without a lock held; what it throws is dropped, and
// what it logs itself goes to the system's log, so that a sink cannot call itself without end.
class LogSink {
 public:
  LogSink() = default;
  LogSink(const LogSink&) = delete;
  LogSink& operator=(const LogSink&) = delete;
  virtual ~LogSink() = default;

  virtual void write(std::string_view message) = 0;
};

// Writes `message`. It is never read as a format, so it may hold texts from outside. The system's log cuts it after a
// mebibyte; a sink gets it whole.
void log(std::string_view message) noexcept;

// Sends later messages to `sink`; a null one means the system's log again. Returns the sink in place before, so that
// it can be put back; null for the system's log.
std::shared_ptr<LogSink> setLogSink(std::shared_ptr<LogSink> sink);

}  // namespace SharedClasses::platform
