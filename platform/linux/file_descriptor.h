// A descriptor that is closed when its owner goes.
#pragma once

#include <unistd.h>

#include <utility>

namespace SharedClasses::platform {

class FileDescriptor {
 public:
  FileDescriptor() noexcept = default;
  explicit FileDescriptor(int number) noexcept : mNumber(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : mNumber(std::exchange(other.mNumber, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(mNumber, other.mNumber);
    return *this;
  }
  ~FileDescriptor() { reset(); }

  [[nodiscard]] int get() const noexcept { return mNumber; }  // -1 for none
  [[nodiscard]] bool isOpen() const noexcept { return mNumber >= 0; }
  void reset() noexcept {
    if (mNumber >= 0) {
      ::close(std::exchange(mNumber, -1));
    }
  }

 private:
  int mNumber = -1;
};

}  // namespace SharedClasses::platform
