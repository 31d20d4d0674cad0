// Conversions whose result is a number allocate nothing, so that an agent may call them for every byte on the wire.
// Counted by a stand-in for the global operator new, which the sanitizers need for themselves.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>

#include "protocols/insteon/insteon_addresses.h"
#include "protocols/insteon/insteon_commands.h"
#include "protocols/x10/x10_actions.h"
#include "protocols/x10/x10_addresses.h"

#if defined(__has_feature)
#define HAS_FEATURE(feature) __has_feature(feature)
#else
#define HAS_FEATURE(feature) 0
#endif

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !HAS_FEATURE(address_sanitizer) && \
    !HAS_FEATURE(thread_sanitizer) && !HAS_FEATURE(memory_sanitizer)

namespace {
thread_local std::size_t sAllocations = 0;  // of this thread since it began
}  // namespace

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
namespace {

TEST(Conversions, ThoseThatGiveANumberAllocateNothing) {
  const platform::Value code("Dim ");
  const platform::Value::List units = {"A1", "a text that is far too long to be a unit of X10", 16, platform::Value()};
  const struct {
    const char* name;
    std::function<std::uint64_t()> call;
  } kRows[] = {
      {"house", [] { return static_cast<std::uint64_t>(X10Utilities::houseOfAddress("p16")); }},
      {"unit", [] { return X10Utilities::unitOfAddress("a long text before the unit P16"); }},
      {"bit map", [&] { return X10Utilities::unitBitMapWithUnitIDs(units); }},
      {"X10 function", [] { return X10Utilities::actionCodeToX10Action(fourCharCode("On  ")); }},
      {"code of an X10 function", [] { return X10Utilities::x10ActionToActionCode(2); }},
      {"INSTEON address", [] { return Utilities::intWithINSTEONAddress("1A.2B.3C"); }},
      {"broken INSTEON address", [] { return Utilities::intWithINSTEONAddress("1.2.3.4.5.6.7.8.9.A.B.C.D.E.F"); }},
      {"INSTEON command", [] { return Utilities::insteonCommandWithActionCode(fourCharCode("On  ")); }},
      {"code of an INSTEON command", [] { return Utilities::actionCodeWithInsteonCommand(0x11); }},
      {"code of a text", [] { return Utilities::fourCharCodeFromString("a text of any length whatever"); }},
      {"code of a value", [&] { return Utilities::fourCharCodeFromObject(code); }},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const std::size_t before = sAllocations;
    const std::uint64_t result = row.call();
    EXPECT_EQ(sAllocations, before) << "for " << result;
  }
}

}  // namespace
}  // namespace SharedClasses

#endif
