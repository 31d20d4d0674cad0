// The conversions that an agent makes for every command on the wire; each is to take less than 100 nanoseconds.
#include <benchmark/benchmark.h>

#include "protocols/insteon/insteon_addresses.h"
#include "protocols/insteon/insteon_commands.h"
#include "protocols/x10/x10_actions.h"
#include "protocols/x10/x10_addresses.h"

namespace SharedClasses {
namespace {

// Keeps the compiler from computing the result of a constant argument once and for all.
template <class Argument>
Argument hidden(Argument argument) {
  const Argument* volatile place = &argument;
  return *place;
}

template <class Conversion>
void measure(const char* name, Conversion conversion) {
  benchmark::RegisterBenchmark(name, [conversion](benchmark::State& state) {
    for (auto _ : state) {
      benchmark::DoNotOptimize(conversion());
    }
  });
}

const bool sRegistered = [] {
  constexpr ActionCode kDim = fourCharCode("Dim ");
  measure("houseOfAddress", [] { return X10Utilities::houseOfAddress(hidden("p16")); });
  measure("unitOfAddress", [] { return X10Utilities::unitOfAddress(hidden("p16")); });
  measure("normalizedX10Address", [] { return X10Utilities::normalizedX10Address(hidden("p16")); });
  measure("intWithINSTEONAddress", [] { return Utilities::intWithINSTEONAddress(hidden("1a:2b:3c")); });
  measure("normalizedINSTEONAddress", [] { return Utilities::normalizedINSTEONAddress(hidden("1a:2b:3c")); });
  measure("insteonAddressWithInt", [] { return Utilities::insteonAddressWithInt(hidden(0x1A2B3CU)); });
  measure("insteonCommandWithActionCode", [=] { return Utilities::insteonCommandWithActionCode(hidden(kDim)); });
  measure("actionCodeWithInsteonCommand", [] { return Utilities::actionCodeWithInsteonCommand(hidden(0x11U)); });
  measure("actionCodeToX10Action", [=] { return X10Utilities::actionCodeToX10Action(hidden(kDim)); });
  measure("x10ActionToActionCode", [] { return X10Utilities::x10ActionToActionCode(hidden(4U)); });
  measure("dimStepsFrom/22", [] { return X10Utilities::dimStepsFrom(hidden(80), hidden(25), hidden(22)); });
  measure("dimStepsFrom/16", [] { return X10Utilities::dimStepsFrom(hidden(80), hidden(25), hidden(16)); });
  measure("fourCharCodeFromString", [] { return Utilities::fourCharCodeFromString(hidden("Dim ")); });
  measure("stringFromFourCharCode", [=] { return Utilities::stringFromFourCharCode(hidden(kDim)); });
  return true;
}();

}  // namespace
}  // namespace SharedClasses
