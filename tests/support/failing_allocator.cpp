#include "tests/support/failing_allocator.h"

#include <cstddef>
#include <new>

namespace SharedClasses::tests {
thread_local int gUntilFailure = 0;
thread_local long gLiveArrays = 0;
}  // namespace SharedClasses::tests

using namespace SharedClasses::tests;

// Over the forms for single objects, so that whoever stands in for those counts arrays too.
void* operator new[](std::size_t size) {
  void* const memory = ::operator new(size);
  ++gLiveArrays;
  return memory;
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  if (gUntilFailure > 0 && --gUntilFailure == 0) {
    return nullptr;
  }
  void* const memory = ::operator new(size, std::nothrow);
  gLiveArrays += memory != nullptr ? 1 : 0;
  return memory;
}
void operator delete[](void* memory) noexcept {
  gLiveArrays -= memory != nullptr ? 1 : 0;
  ::operator delete(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  ::operator delete[](memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  ::operator delete[](memory);
}
