#include "platform/log.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/captured_log.h"

namespace SharedClasses::platform {
namespace {

using tests::CapturedLog;

// Throws or logs itself whenever it is written to, and counts.
struct TroublesomeSink : LogSink {
  void write(std::string_view message) override {
    ++calls;
    log("from within a sink");
    message == "int" ? throw 1 : throw std::runtime_error("full");
  }
  std::atomic<int> calls = 0;
};

TEST(Log, MessagesReachTheSinkAsTheyAreAndInOrder) {
  const CapturedLog captured;
  const std::vector<std::string> messages = {"%s%n%@ lamp", "", std::string("a\0b", 3), "\xFF",
                                             std::string(1 << 20, 'x')};
  for (const std::string& message : messages) {
    log(message);
  }
  EXPECT_EQ(captured.messages(), messages);
}

TEST(Log, ASinkThatThrowsAndLogsIsCalledOnceAMessage) {
  const CapturedLog captured;
  const auto sink = std::make_shared<TroublesomeSink>();
  const auto before = setLogSink(sink);
  log("int");
  log("exception");
  EXPECT_EQ(setLogSink(before), sink);
  log("to the one before");
  EXPECT_EQ(sink->calls, 2);
  EXPECT_EQ(captured.messages(), std::vector<std::string>{"to the one before"});
}

TEST(Log, ThreadsMayLogWhileTheSinkChanges) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int message = 0; message < 200; ++message) {
        setLogSink(std::make_shared<TroublesomeSink>());
        log("message");
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  setLogSink(nullptr);
}

}  // namespace
}  // namespace SharedClasses::platform
