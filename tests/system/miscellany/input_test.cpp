#include "system/miscellany/input.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <thread>

#include "platform/key_map.h"
#include "platform/run_loop.h"
#include "tests/support/captured_log.h"
#include "tests/support/hand_moved_clock.h"

namespace SharedClasses::Utilities {
namespace {

TEST(OptionKey, IsBitTwoOfByteSevenAlone) {
  const tests::CapturedLog captured;
  EXPECT_FALSE(optionKeyDown()) << "no provider";
  platform::KeyMap keys{};
  platform::setKeyMapProvider([&keys] { return keys; });
  keys[7] = 0x04;
  EXPECT_TRUE(optionKeyDown());
  keys.fill(0xFF);
  keys[7] -= 0x04;
  EXPECT_FALSE(optionKeyDown());
  platform::setKeyMapProvider([text = std::string(99, 'x')]() -> platform::KeyMap {
    platform::setKeyMapProvider(nullptr);  // while it runs
    throw std::out_of_range(text);
  });
  EXPECT_FALSE(optionKeyDown());
  EXPECT_EQ(captured.messages(), std::vector<std::string>{"The provider of the key map threw std::out_of_range."});
}

TEST(Delay, SleepsUntilTheTimeIsOverAndServesWhatComes) {
  const struct {
    const char* name;
    double hours, inner;  // of the delay, and of those that what it serves asks for
    int sleeps, served;   // of an hour each; of three calls that wait
  } kRows[] = {
      {"nothing", 0, 0, 0, 1},
      {"less than nothing", -5, 0, 0, 1},
      {"no number", NAN, 0, 0, 1},
      {"ends with a sleep", 2, 0, 2, 3},
      {"ends within a sleep", 2.5, 0, 3, 3},
      {"endless, which is ten days", INFINITY, 0, 240, 3},
      {"longer ones within it, waited for first", 3, 5, 5, 3},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    int sleeps = 0, served = 0;
    tests::HandMovedClock clock;
    platform::Clock::setCurrent(&clock);
    std::thread thread([&] {  // a new thread has a new loop, on the clock of now
      platform::RunLoop& loop = platform::RunLoop::current();
      loop.setPump([&](std::chrono::nanoseconds /*longest*/) {
        ++sleeps;
        clock.move(std::chrono::hours(1));
        loop.wakeUp();
      });
      for (int i = 0; i < 3; ++i) {
        loop.call([&] { ++served, row.inner > 0 ? delay(row.inner * 3600) : void(); });
      }
      delay(row.hours * 3600);
    });
    thread.join();
    platform::Clock::setCurrent(nullptr);
    EXPECT_EQ(sleeps, row.sleeps);
    EXPECT_EQ(served, row.served);
  }
}

}  // namespace
}  // namespace SharedClasses::Utilities
