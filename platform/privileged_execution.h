// How a program is run with the rights of the administrator. A host brings its own way; the library ships one that asks
// through pkexec.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace SharedClasses::platform {

class PrivilegedExecution {
 public:
  static constexpr std::int32_t kDone = 0;
  static constexpr std::int32_t kRefused = -60031;      // the user or the system said no
  static constexpr std::int32_t kNotPossible = -60032;  // nobody could be asked

  PrivilegedExecution() = default;
  PrivilegedExecution(const PrivilegedExecution&) = delete;
  PrivilegedExecution& operator=(const PrivilegedExecution&) = delete;
  virtual ~PrivilegedExecution() = default;

  // Runs the program at `path` and waits for its end, for a bounded time: kDone, or a status that tells the user why not.
  [[nodiscard]] virtual std::int32_t execute(const std::string& path, const std::vector<std::string>& arguments) = 0;
};

}  // namespace SharedClasses::platform
