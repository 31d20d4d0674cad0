#include "platform/log.h"

#include <mutex>
#include <utility>

#include "platform/linux/system_log.h"

namespace SharedClasses::platform {

namespace {

struct SinkHolder {
  std::mutex mutex;
  std::shared_ptr<LogSink> sink;
};

// Never destroyed: other threads may log until the process ends.
SinkHolder& sinkHolder() {
  static auto* const sHolder = new SinkHolder;
  return *sHolder;
}

thread_local bool sInsideSink = false;

}  // namespace

void log(std::string_view message) noexcept {
  std::shared_ptr<LogSink> sink;
  if (!sInsideSink) {
    const std::lock_guard lock(sinkHolder().mutex);
    sink = sinkHolder().sink;
  }
  if (sink == nullptr) {
    writeToSystemLog(message);
    return;
  }
  sInsideSink = true;
  try {
    sink->write(message);
  } catch (...) {  // A sink's failure has nowhere to be reported.
  }
  sInsideSink = false;
}

std::shared_ptr<LogSink> setLogSink(std::shared_ptr<LogSink> sink) {
  const std::lock_guard lock(sinkHolder().mutex);
  return std::exchange(sinkHolder().sink, std::move(sink));
}

}  // namespace SharedClasses::platform
