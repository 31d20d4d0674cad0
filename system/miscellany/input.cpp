#include "system/miscellany/input.h"

#include <algorithm>
#include <chrono>

#include "platform/clock.h"
#include "platform/key_map.h"
#include "platform/run_loop.h"

namespace SharedClasses::Utilities {

namespace {

using std::chrono::nanoseconds;

constexpr unsigned kOptionKeyCode = 58;
constexpr nanoseconds kLongestDelay = std::chrono::days(10);

}  // namespace

bool optionKeyDown() {
  return (platform::currentKeyMap().at(kOptionKeyCode / 8) >> kOptionKeyCode % 8 & 1U) != 0;
}

void delay(double seconds) {
  platform::RunLoop& loop = platform::RunLoop::current();
  nanoseconds left = std::min(platform::spanOfSeconds(seconds), kLongestDelay);
  const nanoseconds end = platform::timeAfter(loop.clock().steadyTime(), left);
  do {
    loop.runOnce(left);
    left = end - loop.clock().steadyTime();
  } while (left > nanoseconds(0));
}

}  // namespace SharedClasses::Utilities
