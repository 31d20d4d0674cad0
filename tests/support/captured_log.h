// Keeps what is logged while it lives, and puts the sink in place before back at its end.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/log.h"

namespace SharedClasses::tests {

class CapturedLog {
 public:
  CapturedLog() : mSink(std::make_shared<Sink>()), mPrevious(platform::setLogSink(mSink)) {}
  CapturedLog(const CapturedLog&) = delete;
  CapturedLog& operator=(const CapturedLog&) = delete;
  ~CapturedLog() { platform::setLogSink(mPrevious); }

  [[nodiscard]] const std::vector<std::string>& messages() const { return mSink->messages; }

 private:
  struct Sink : platform::LogSink {
    void write(std::string_view message) override { messages.emplace_back(message); }
    std::vector<std::string> messages;
  };

  std::shared_ptr<Sink> mSink;
  std::shared_ptr<platform::LogSink> mPrevious;
};

}  // namespace SharedClasses::tests
