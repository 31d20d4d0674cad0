#include "updates/safe_url_connection.h"

#include <optional>
#include <string_view>
#include <vector>

#include "platform/exceptions.h"
#include "platform/log.h"
#include "platform/text_format.h"
#include "system/processes/simple_task.h"

namespace SharedClasses {

namespace {

constexpr const char* kToolPath = "/usr/bin/curl";
constexpr double kToolLimit = 4.0;  // seconds
constexpr const char* kErrorDomain = "/";
constexpr std::int64_t kNoOutput = -1;

using Text = std::optional<std::string>;

struct ToolOutput {
  Text output;
  Text error;
};

// Neither text where the tool could not be launched.
ToolOutput outputOfTool(const std::string& url) {
  ToolOutput texts;
  // What it throws is dropped: the delegate learns of it as of any other failure.
  static_cast<void>(platform::nameOfThrown([&] {
    SimpleTask task({.launchPath = kToolPath,
                     .arguments = std::vector<std::string>{url},
                     .inputText = "",
                     .outputText = &texts.output,
                     .errorText = &texts.error,
                     .maxSecondsToWait = kToolLimit,
                     // It reads the letters of a host's name by the locale.
                     .environmentChanges = {{"LC_ALL", "C.UTF-8"}}});
    if (task.isRunning()) {
      platform::log("curl is running beyond the dedline.");
    }
  }));
  return texts;
}

}  // namespace

std::string URLConnectionError::localizedDescription() const {
  return platform::filledFormat("The operation couldn’t be completed. (%@ error %d.)", {domain, code});
}

std::unique_ptr<SafeURLConnection> SafeURLConnection::initWithRequest(const URLRequest& request,
                                                                      URLConnectionDelegate& delegate) {
  std::unique_ptr<SafeURLConnection> connection;
  const auto thrown = platform::nameOfThrown([&] {
    connection.reset(new SafeURLConnection);
    connection->fetch(request.url, delegate);
  });
  if (thrown) {
    platform::log("A connection could not be made: " + *thrown + ".");
    return nullptr;
  }
  return connection;
}

bool SafeURLConnection::isWebAddress(std::string_view url) {
  return url.starts_with("http://") || url.starts_with("https://");
}

void SafeURLConnection::fetch(const std::string& url, URLConnectionDelegate& delegate) {
  const ToolOutput texts = isWebAddress(url) ? outputOfTool(url) : ToolOutput();
  if (!texts.output) {
    delegate.connectionDidFailWithError(
        *this, {.domain = kErrorDomain, .code = kNoOutput, .userInfo = {{"errorString", texts.error.value_or("")}}});
    return;
  }
  const std::vector<std::uint8_t> bytes(texts.output->begin(), texts.output->end());
  delegate.connectionDidReceiveResponse(*this, nullptr);
  delegate.connectionDidReceiveData(*this, bytes);
  delegate.connectionDidFinishLoading(*this);
}

}  // namespace SharedClasses
