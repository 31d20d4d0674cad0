#include "tests/support/failing_allocator.h"

#include <cstddef>
#include <new>

static thread_local int sUntilFailure = 0;  // allocations, the one that fails included; 0: none fails any more
static thread_local long sLiveArrays = 0;

// Over the forms for single objects, so that whoever stands in for those counts arrays too.
void* operator new[](std::size_t size) {
  void* const memory = ::operator new(size);
  ++sLiveArrays;
  return memory;
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  if (sUntilFailure > 0 && --sUntilFailure == 0) {
    return nullptr;
  }
  void* const memory = ::operator new(size, std::nothrow);
  sLiveArrays += memory != nullptr ? 1 : 0;
  return memory;
}
void operator delete[](void* memory) noexcept {
  sLiveArrays -= memory != nullptr ? 1 : 0;
  ::operator delete(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  ::operator delete[](memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  ::operator delete[](memory);
}

namespace SharedClasses::tests {

FailingAllocation::FailingAllocation(int ordinal) {
  sUntilFailure = ordinal;
}

FailingAllocation::~FailingAllocation() {
  sUntilFailure = 0;
}

bool FailingAllocation::hasFailed() const {
  return sUntilFailure == 0;
}

long liveArrays() {
  return sLiveArrays;
}

}  // namespace SharedClasses::tests
