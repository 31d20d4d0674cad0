// Makes a zone, "Europe/Berlin" or a rule such as "<+03>-3", the local one through TZ, and puts TZ back at its end.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace SharedClasses::tests {

class PinnedZone {
 public:
  explicit PinnedZone(const std::string& name) {
    if (const char* previous = std::getenv("TZ")) {
      mPrevious = previous;
    }
    ::setenv("TZ", name.c_str(), 1);
  }
  PinnedZone(const PinnedZone&) = delete;
  PinnedZone& operator=(const PinnedZone&) = delete;
  ~PinnedZone() {
    if (mPrevious) {
      ::setenv("TZ", mPrevious->c_str(), 1);
    } else {
      ::unsetenv("TZ");
    }
  }

 private:
  std::optional<std::string> mPrevious;
};

}  // namespace SharedClasses::tests
