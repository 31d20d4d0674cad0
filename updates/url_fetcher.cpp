#include "updates/url_fetcher.h"

#include <chrono>
#include <utility>

#include "platform/clock.h"
#include "platform/log.h"
#include "platform/run_loop.h"
#include "platform/text.h"
#include "platform/text_format.h"

namespace SharedClasses {

using std::chrono::nanoseconds;

std::int32_t URLFetcher::startURLRequest(const URLRequestArguments& arguments) {
  mAsync = arguments.asyncWanted;
  mDone = false;
  mResultCode = kFinished;
  mURLString = arguments.url;
  mTimeoutSecs = arguments.withTimeout;
  mReceivedData.emplace();
  mConnection = SafeURLConnection::initWithRequest(
      {.url = mURLString, .cachePolicy = kReloadIgnoringLocalCache, .timeout = mTimeoutSecs}, *this);
  if (mConnection == nullptr) {
    mResultCode = kNoConnection;
    mDone = true;
  }
  if (!mAsync) {
    waitUntilDone();
    cancelConnection();
  }
  return mResultCode;
}

std::optional<std::string> URLFetcher::textReturned() const {
  if (!mReceivedData) {
    return std::nullopt;
  }
  std::string text(mReceivedData->begin(), mReceivedData->end());
  return platform::isValidUTF8(text) ? std::optional(std::move(text)) : std::nullopt;
}

void URLFetcher::connectionDidReceiveResponse(SafeURLConnection& /*connection*/, const platform::Object* /*response*/) {
  if (mReceivedData) {
    mReceivedData->clear();
  }
}

void URLFetcher::connectionDidReceiveData(SafeURLConnection& /*connection*/, std::span<const std::uint8_t> data) {
  if (mReceivedData) {
    mReceivedData->insert(mReceivedData->end(), data.begin(), data.end());
  }
}

void URLFetcher::connectionDidFailWithError(SafeURLConnection& /*connection*/, const URLConnectionError& error) {
  cancelConnection();
  mReceivedData.reset();
  const auto found = error.userInfo.find(kFailingURLStringKey);
  const platform::Value failingURL = found == error.userInfo.end() ? platform::Value() : found->second;
  platform::log(platform::filledFormat("Connection failed! Error - %@ %@",
                                       {error.localizedDescription(), failingURL.description()}));
  mResultCode = static_cast<std::int32_t>(error.code);
  mDone = true;
}

void URLFetcher::connectionDidFinishLoading(SafeURLConnection& /*connection*/) {
  cancelConnection();
  mDone = true;
}

// No wake-up comes first: the loop of the thread that calls is awake, and the first pass would find nothing but that.
void URLFetcher::waitUntilDone() const {
  const platform::Clock& clock = platform::Clock::system();
  const nanoseconds deadline = platform::timeAfter(clock.steadyTime(), platform::spanOfSeconds(mTimeoutSecs));
  nanoseconds left{0};  // the first pass only looks
  do {
    platform::RunLoop::current().runOnce(left);
    left = deadline - clock.steadyTime();
  } while (!mDone && left >= nanoseconds(0));
}

void URLFetcher::cancelConnection() {
  if (mConnection != nullptr) {
    mConnection->cancel();
  }
}

}  // namespace SharedClasses
