// The library's own way to run a program with the administrator's rights: as we are, where that is enough, else through
// pkexec, which asks the user.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/privileged_execution.h"

namespace SharedClasses {

class Administrator : public platform::PrivilegedExecution {
 public:
  // Serves the thread's run loop while it waits; the user has two minutes to answer.
  [[nodiscard]] std::int32_t execute(const std::string& path, const std::vector<std::string>& arguments) override;
};

}  // namespace SharedClasses
