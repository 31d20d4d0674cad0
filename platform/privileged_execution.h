// How a program is run with the rights of the administrator. A host brings its own way; the library ships one that asks
// through pkexec.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace SharedClasses::platform {

class PrivilegedExecution {
 public:
  static constexpr std::int32_t kDone = 0;              // the program ran, whatever it ended with
  static constexpr std::int32_t kRefused = -60031;      // the user said no
  static constexpr std::int32_t kNotPossible = -60032;  // nobody could be asked, or nobody answered

  PrivilegedExecution() = default;
  PrivilegedExecution(const PrivilegedExecution&) = delete;
  PrivilegedExecution& operator=(const PrivilegedExecution&) = delete;
  virtual ~PrivilegedExecution() = default;

  // Runs the program at `path` and waits for its end, for a bounded time: kDone once it was started, or a status that
  // tells the user why it was not. Whether it did what it was to do is for the caller to see.
  [[nodiscard]] virtual std::int32_t execute(const std::string& path, const std::vector<std::string>& arguments) = 0;
};

}  // namespace SharedClasses::platform
