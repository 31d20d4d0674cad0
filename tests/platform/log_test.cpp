#include "platform/log.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "platform/linux/system_log.h"
#include "tests/support/captured_log.h"

namespace SharedClasses::platform {
namespace {

// Logs and throws whenever it is written to.
struct TroublesomeSink : LogSink {
  void write(std::string_view message) override {
    log("from within a sink");
    message == "int" ? throw 1 : throw std::runtime_error("full");
  }
};

TEST(Log, MessagesReachTheSinkAsTheyAreWhateverTheOneBeforeDid) {
  const tests::CapturedLog captured;
  const auto before = setLogSink(std::make_shared<TroublesomeSink>());
  log("int");
  log("exception");
  setLogSink(before);
  const std::vector<std::string> messages = {"%s%n%@ lamp", "", std::string("a\0b\xFF", 4)};
  for (const std::string& message : messages) {
    log(message);
  }
  EXPECT_EQ(captured.messages(), messages);
}

TEST(Log, ThreadsMayLogWhileTheSinkChanges) {
  const auto logOften = [] {
    for (int message = 0; message < 200; ++message) {
      setLogSink(std::make_shared<TroublesomeSink>());
      log("message");
    }
  };
  std::thread other(logOften);
  logOften();
  other.join();
  setLogSink(nullptr);
}

TEST(Log, ALongMessageIsSentByWholeLinesElseByWholeCharactersAndKeepsItsLinesOnATerminal) {
  const std::string message = std::string(50, '\n') + std::string(8190, 'b') + "\U0001F4A1" + std::string(9000, 'c');
  std::string_view rest = message;
  for (const std::size_t length : {50U, 8190U, 8192U, 812U, 0U}) {
    EXPECT_EQ(takeDatagram(rest).size(), length);
  }
  EXPECT_EQ(linesForTerminal("185\t 5:36\n\n\x1B[2J\r\n"), "185\t 5:36\n\n?[2J?\n");
}

}  // namespace
}  // namespace SharedClasses::platform
