// Spans of time as the system's calls take them.
#pragma once

#include <chrono>
#include <ctime>

namespace SharedClasses::platform {

[[nodiscard]] inline timespec timespecOf(std::chrono::nanoseconds span) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(span);
  return {static_cast<time_t>(seconds.count()), static_cast<long>((span - seconds).count())};
}

}  // namespace SharedClasses::platform
