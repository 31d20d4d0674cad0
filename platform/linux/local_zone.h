// Zones from the files of this machine, and which of them is the local one.
#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/time_zone.h"

namespace SharedClasses::platform {

// The zone of the compiled file at `path`; null when there is none. A file is read again only once it has changed.
// Without a
// `name`, it is called after its place in a folder "zoneinfo", its own or that of what it leads to; "localtime" when
// there is no such place. Safe on any thread.
[[nodiscard]] TimeZonePointer timeZoneOfFile(const std::string& path, std::string_view name = {});

// Follows the local zone. Safe on any thread.
class LocalZone {
 public:
  // `file` is what counts where TZ is not set.
  explicit LocalZone(std::string file) : mFile(std::move(file)) {}

  // `tz` is the value of TZ, null when it is not set; `now` only grows. What the files say is looked up when `tz` is
  // another one than before, or 0.9 seconds after the last time.
  [[nodiscard]] TimeZonePointer zone(const char* tz, std::chrono::nanoseconds now);

 private:
  [[nodiscard]] TimeZonePointer lookUp(const char* tz) const;

  const std::string mFile;
  std::mutex mMutex;  // guards what follows
  std::optional<std::string> mTZ;
  std::chrono::nanoseconds mLookedUp{};
  TimeZonePointer mZone;  // null before the first look
};

}  // namespace SharedClasses::platform
