// Conversions whose result is a number allocate nothing, so that an agent may call them for every byte on the wire.
// Counted by a stand-in for the global operator new, which the sanitizers need for themselves.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "protocols/insteon/insteon_addresses.h"
#include "protocols/insteon/insteon_commands.h"
#include "protocols/x10/x10_actions.h"
#include "protocols/x10/x10_addresses.h"

#ifndef __has_feature
#define __has_feature(feature) 0
#endif
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !__has_feature(address_sanitizer)

static thread_local std::size_t sAllocations = 0;  // of this thread since it began

void* operator new(std::size_t size) {
  ++sAllocations;
  void* const memory = std::malloc(size == 0 ? 1 : size);
  return memory != nullptr ? memory : throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace SharedClasses {

TEST(Conversions, ThoseThatGiveANumberAllocateNothing) {
  const platform::Value::List units = {"A1", "a text that is far too long to be a unit of X10", 16, platform::Value()};
  const auto expectNone = [before = sAllocations](std::uint64_t result, const char* conversion) {
    EXPECT_EQ(sAllocations, before) << "up to " << conversion << ", which gave " << result;
  };
  expectNone(X10Utilities::unitOfAddress("a long text before the unit P16"), "unit");
  expectNone(X10Utilities::unitBitMapWithUnitIDs(units), "bit map");
  expectNone(X10Utilities::x10ActionToActionCode(2) + X10Utilities::actionCodeToX10Action(0), "X10 function");
  expectNone(Utilities::intWithINSTEONAddress("1.2.3.4.5.6.7.8.9.A.B.C.D.E.F"), "INSTEON address");
  expectNone(Utilities::insteonCommandWithActionCode(fourCharCode("On  ")), "INSTEON command");
  expectNone(Utilities::fourCharCodeFromObject(units[1]), "code of a value");
}

}  // namespace SharedClasses

#endif
