// The library's own way to run a program with the administrator's rights: as we are, where that is enough, else through
// pkexec, which asks the user.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/privileged_execution.h"

namespace SharedClasses {

class Administrator : public platform::PrivilegedExecution {
 public:
  explicit Administrator(std::string pkexec = "/usr/bin/pkexec") : mPkexec(std::move(pkexec)) {}

  // pkexec is asked where the program could not be started as we are or ended with another status than 0. Serves the
  // thread's run loop while it waits; the user has two minutes to answer.
  [[nodiscard]] std::int32_t execute(const std::string& path, const std::vector<std::string>& arguments) override;

 private:
  std::string mPkexec;  // its path
};

}  // namespace SharedClasses
