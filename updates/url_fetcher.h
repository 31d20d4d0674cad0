// One fetch of a small document over HTTP, with its result.
// For one thread, whose run loop is served while the fetch waits; the fetcher must outlive that. A fetcher is for one
// fetch; starting another drops what the first one left.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/object.h"
#include "updates/safe_url_connection.h"

namespace SharedClasses {

struct URLRequestArguments {
  std::string url;                       // "http://…" or "https://…"
  double withTimeout = 0.0;              // seconds
  platform::ObjectPointer to = nullptr;  // accepted and ignored
  bool asyncWanted = false;
};

class URLFetcher : public URLConnectionDelegate {
 public:
  // Result codes; any other is the code of the failure that a connection reported.
  static constexpr std::int32_t kFinished = 0;   // the content may still be an error page of the server
  static constexpr std::int32_t kNoOutput = -1;  // SafeURLConnection reported a failure
  static constexpr std::int32_t kNoConnection = -73;

  URLFetcher() = default;

  // `startURLRequest:withTimeout:to:asyncWanted:`
  // Fetches the document and returns the result code. SafeURLConnection says what is fetched and what fails; a failure
  // is logged.
  // Kept: the fetch is finished when this returns, asynchronous or not, and takes up to 4 seconds whatever the timeout;
  // the run loop is served meanwhile. The timeout only bounds a wait for the end that comes after it and looks into the
  // run loop at least once; there is none when asynchronous. Where the end never comes, as with callbacks overridden,
  // the result is then kFinished and done() false.
  std::int32_t startURLRequest(const URLRequestArguments& arguments);

  // Whether the fetch has finished, well or badly; false before it.
  [[nodiscard]] bool done() const { return mDone; }
  // kFinished also before the fetch.
  [[nodiscard]] std::int32_t resultCode() const { return mResultCode; }
  // The bytes received; null before the fetch and after a failure that the connection reported. Empty is a success.
  // After kNoConnection it is what had come by then, mostly empty. Valid until the next callback or start, or the
  // fetcher's end.
  [[nodiscard]] const std::vector<std::uint8_t>* contentReturned() const {
    return mReceivedData ? &*mReceivedData : nullptr;
  }
  // The same as a text, a copy; absent also for bytes that are not UTF-8.
  [[nodiscard]] std::optional<std::string> textReturned() const;
  // Kept: always 0; progress is not tracked.
  [[nodiscard]] std::int32_t percentComplete() const { return 0; }
  // Kept: does nothing and returns 0.
  std::int32_t abortRequest() { return 0; }

  // `connection:didReceiveResponse:`
  // Empties the content.
  void connectionDidReceiveResponse(SafeURLConnection& connection, const platform::Object* response) override;
  // `connection:didReceiveData:`
  // Appends to the content; nothing after a failure.
  void connectionDidReceiveData(SafeURLConnection& connection, std::span<const std::uint8_t> data) override;
  // `connection:didFailWithError:`
  // Drops the content, logs the failure in one line, and is done with the error's code.
  // Kept: the code is cut to its low 32 bits, so that a multiple of 2^32 reads as kFinished, without content.
  void connectionDidFailWithError(SafeURLConnection& connection, const URLConnectionError& error) override;
  // `connectionDidFinishLoading:`
  // Is done.
  void connectionDidFinishLoading(SafeURLConnection& connection) override;

 private:
  void waitUntilDone() const;
  void cancelConnection();

  std::string mURLString;
  double mTimeoutSecs = 0.0;
  bool mAsync = false;
  std::unique_ptr<SafeURLConnection> mConnection;  // null where none could be made; while one is, the former
  std::optional<std::vector<std::uint8_t>> mReceivedData;
  bool mDone = false;
  std::int32_t mResultCode = kFinished;
};

}  // namespace SharedClasses
