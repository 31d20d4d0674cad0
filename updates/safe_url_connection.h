// One document fetched over HTTP by the system's curl, and told to a delegate as a connection would tell it.
// The whole fetch happens while the connection is made. It sleeps while it waits and serves the run loop of the calling
// thread; everything here belongs to that thread.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/object.h"
#include "platform/value.h"

namespace SharedClasses {

inline constexpr std::int32_t kReloadIgnoringLocalCache = 1;

struct URLRequest {
  std::string url;
  std::int32_t cachePolicy = kReloadIgnoringLocalCache;
  double timeout = 60.0;  // seconds
};

// Under this key of `userInfo` stands the address that a connection failed at, a text, where the connection tells it.
inline constexpr std::string_view kFailingURLStringKey = "NSURLErrorFailingURLStringErrorKey";

// Why a connection failed.
struct URLConnectionError {
  std::string domain;
  std::int64_t code = 0;
  platform::Value::Dictionary userInfo = {};

  // One sentence for the log, of the domain and the code.
  [[nodiscard]] std::string localizedDescription() const;
};

class SafeURLConnection;

// Whoever wants to know how a connection goes. Called on the connection's thread.
class URLConnectionDelegate {
 public:
  URLConnectionDelegate() = default;
  URLConnectionDelegate(const URLConnectionDelegate&) = delete;
  URLConnectionDelegate& operator=(const URLConnectionDelegate&) = delete;
  virtual ~URLConnectionDelegate() = default;

  // `connection:didReceiveResponse:`
  // An answer begins; what came before is void. `response` may be null.
  virtual void connectionDidReceiveResponse(SafeURLConnection& connection, const platform::Object* response) = 0;
  // `connection:didReceiveData:`
  // The next bytes, valid during the call.
  virtual void connectionDidReceiveData(SafeURLConnection& connection, std::span<const std::uint8_t> data) = 0;
  // `connection:didFailWithError:`
  // The last call of a connection that failed.
  virtual void connectionDidFailWithError(SafeURLConnection& connection, const URLConnectionError& error) = 0;
  // `connectionDidFinishLoading:`
  // The last call of one that did not.
  virtual void connectionDidFinishLoading(SafeURLConnection& connection) = 0;
};

class SafeURLConnection {
 public:
  // `initWithRequest:delegate:`
  // Fetches the document at `request.url`, which must be a web address, and tells `delegate` before it returns: a null
  // response, all bytes at once, and the end; or that it failed. Both must live until then, though the run loop is
  // served. Null, after a line in the log, when there is no memory or a callback throws, which ends the calls.
  //
  // A plain GET: redirects are not followed, and the body counts whatever the server's status. How curl ended is not
  // looked at: a server that cannot be reached gives an empty document, one that breaks off what came so far. The
  // environment's proxies and the user's .curlrc hold; in the address, curl reads [1-3] and {a,b} as several addresses.
  //
  // It fails where there is no text, with the domain "/", the code -1 and a text under "errorString":
  // - the document is not UTF-8: all that curl printed to its error output, mostly its progress meter; "" where that is
  //   not UTF-8 either;
  // - it does not end within 4 seconds, or is longer than the pipe holds that curl prints to, platform::kChildPipeSize
  //   where the system grants that: "Task timed out.", and one more line in the log;
  // - the address is no web address, or curl cannot be launched: it is missing, or the address has a NUL or is too long
  //   for an argument: "".
  //
  // Kept: cache policy and time limit of `request` play no part.
  // Kept: a curl that runs over the 4 seconds is left running. It ends when it next writes out, which it does by some
  // kilobytes, or when the server lets go of it: a silent server keeps one for each fetch, for as long as it pleases.
  // An address with [1-9999] goes on through all of its requests while their answers are empty.
  [[nodiscard]] static std::unique_ptr<SafeURLConnection> initWithRequest(const URLRequest& request,
                                                                          URLConnectionDelegate& delegate);
  SafeURLConnection(const SafeURLConnection&) = delete;
  SafeURLConnection& operator=(const SafeURLConnection&) = delete;
  ~SafeURLConnection() = default;

  // Whether `url` begins with "http://" or "https://", in lower case: to curl, that is never an option or a file.
  [[nodiscard]] static bool isWebAddress(std::string_view url);

  // Does nothing: there is never anything left to cancel.
  void cancel() {}

 private:
  SafeURLConnection() = default;
  void fetch(const std::string& url, URLConnectionDelegate& delegate);

  [[maybe_unused]] bool mDone = false;  // Kept: nothing sets it.
};

}  // namespace SharedClasses
