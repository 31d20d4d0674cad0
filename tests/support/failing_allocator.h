// Lets one allocation of `new (std::nothrow) T[]` fail, to show what an operation leaves behind when memory runs out.
// The test program's own array forms of operator new stand behind it; they behave as usual while nothing is to fail.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace SharedClasses::tests {

extern thread_local int gUntilFailure;  // allocations of this thread, the one that fails included; 0: none fails
extern thread_local long gLiveArrays;   // that this thread has made and not released

// A row of a table of changes to values of one class.
template <typename Value>
struct Change {
  const char* name;
  Value before;
  void (*change)(Value& value);
  std::string after;                                        // as the function given to expectChange() shows it
  std::optional<std::string> withoutMemory = std::nullopt;  // where any of the allocations fails; nothing: as before
};

// Makes the change to copies of what was before, with its first allocation failing, with its second, and so on; last
// with none. Expects the stated outcome and that no array is left over.
template <typename Value, typename Shown>
void expectChange(const Change<Value>& row, Shown shown) {
  SCOPED_TRACE(row.name);
  const std::string withoutMemory = row.withoutMemory.value_or(std::string(shown(row.before)));
  bool failed = true;
  for (int ordinal = 1; failed; ++ordinal) {
    SCOPED_TRACE("allocation " + std::to_string(ordinal));
    const long arrays = gLiveArrays;
    {
      Value value;
      value = row.before;
      gUntilFailure = ordinal;
      row.change(value);
      failed = gUntilFailure == 0;
      gUntilFailure = 0;
      EXPECT_EQ(shown(value), failed ? withoutMemory : row.after);
    }
    EXPECT_EQ(gLiveArrays, arrays);
  }
}

}  // namespace SharedClasses::tests
