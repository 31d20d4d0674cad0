#include "updates/url_fetcher.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <tuple>

#include "platform/run_loop.h"
#include "tests/support/captured_log.h"
#include "tests/support/http_server.h"

namespace SharedClasses::tests {
namespace {

using Lines = std::vector<std::string>;

const std::string kFailureLine = "Connection failed! Error - The operation couldn’t be completed. (/ error -1.) (null)";

// Writes down what it is told.
struct Recorder : URLConnectionDelegate {
  void connectionDidReceiveResponse(SafeURLConnection&, const platform::Object* response) override {
    calls.emplace_back(response == nullptr ? "no response" : "response");
  }
  void connectionDidReceiveData(SafeURLConnection&, std::span<const std::uint8_t> data) override {
    calls.emplace_back("data " + std::string(data.begin(), data.end()));
  }
  void connectionDidFailWithError(SafeURLConnection&, const URLConnectionError& error) override {
    calls.emplace_back(error.domain + std::to_string(error.code) + platform::Value(error.userInfo).description());
  }
  void connectionDidFinishLoading(SafeURLConnection&) override { calls.emplace_back("end"); }

  Lines calls;
};

TEST(URLFetcher, WhateverTheServerAnswersIsTheContentAndBadBytesAreAFailure) {
  const std::tuple<const char*, std::string, std::optional<std::string>> rows[] = {
      {"page of an error", httpAnswer("not here\n", "404 Not Found"), "not here\n"},
      {"redirect", httpAnswer("elsewhere", "302 Found", "Location: /\r\n"), "elsewhere"},
      {"NUL inside", httpAnswer(std::string("a\0b", 3)), std::string("a\0b", 3)},
      {"body that breaks off", "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\nhalf", "half"},
      {"no answer", "", ""},
      {"broken UTF-8", httpAnswer("a\xFF"), std::nullopt},
  };
  for (const auto& [name, answer, text] : rows) {
    SCOPED_TRACE(name);
    const CapturedLog log;
    const HTTPServer server(answer);
    URLFetcher fetcher;
    EXPECT_EQ(fetcher.startURLRequest({.url = server.url(), .withTimeout = 0, .asyncWanted = true}), text ? 0 : -1);
    EXPECT_EQ(fetcher.textReturned(), text);
    EXPECT_EQ(log.messages(), text ? Lines{} : Lines{kFailureLine});
  }
}

TEST(URLFetcher, WhatDoesNotComeWithinFourSecondsIsAFailureAndTheToolIsLeftRunning) {
  struct Row {
    const char* name;
    HTTPServer server;
    bool writesOut;  // the tool ends then
    pid_t fetch = -1;
  };
  Row rows[] = {
      {"silence", HTTPServer(HTTPServer::staySilent), false},
      {"drip", HTTPServer(HTTPServer::drip), false},
      {"endless body", HTTPServer(HTTPServer::flood), true},
      {"more than the pipe holds", HTTPServer(httpAnswer(std::string((1 << 20) + 1, 'x'))), true},
  };
  for (Row& row : rows) {  // all at once: each takes its four seconds
    row.fetch = startInFork([&row] {
      const CapturedLog log;
      URLFetcher fetcher;
      EXPECT_EQ(fetcher.startURLRequest({.url = row.server.url(), .withTimeout = 30}), -1);
      EXPECT_EQ(fetcher.contentReturned(), nullptr);
      EXPECT_EQ(log.messages(), (Lines{"curl is running beyond the dedline.", kFailureLine}));
      siginfo_t end{};  // stays as it is while the tool runs
      const bool isKnown = ::waitid(P_PID, static_cast<id_t>(lastChild()), &end, WEXITED | WNOHANG | WNOWAIT) == 0;
      EXPECT_TRUE(row.writesOut || (isKnown && end.si_pid == 0)) << "an ended tool";
      return HasFailure() ? 1 : 0;
    });
  }
  for (const Row& row : rows) {
    EXPECT_EQ(statusOfChild(row.fetch), 0) << row.name;
  }
}

TEST(SafeURLConnection, AsksForTheAddressAsItStandsAndTellsItsDelegateTheOutcomeInOrder) {
  const HTTPServer server([](const HTTPServer::Connection& connection) {
    static_cast<void>(connection.send(httpAnswer(connection.requestLine)));
  });
  const Lines refused = {"/-1{errorString = \"\"}"};
  const std::tuple<const char*, std::string, Lines> rows[] = {
      {"document", server.url("/v?b=2.2b3&x=%20"), {"no response", "data GET /v?b=2.2b3&x=%20 HTTP/1.1", "end"}},
      {"option", "--version", refused},
      {"other scheme", "file:///etc/hostname", refused},
      {"capitals", "HTTP" + server.url().substr(4), refused},
      {"blank in front", " " + server.url(), refused},
      {"NUL, with which nothing can be launched", server.url() + std::string("\0", 1), refused},
  };
  for (const auto& [name, url, calls] : rows) {
    SCOPED_TRACE(name);
    Recorder recorder;
    EXPECT_NE(SafeURLConnection::initWithRequest({.url = url}, recorder), nullptr);
    EXPECT_EQ(recorder.calls, calls);
  }
}

TEST(URLFetcher, ACallbackThatThrowsLeavesNoConnection) {
  struct Thrower : URLFetcher {
    void connectionDidFailWithError(SafeURLConnection&, const URLConnectionError&) override {
      throw std::runtime_error("");
    }
  } fetcher;
  const CapturedLog log;
  EXPECT_EQ(fetcher.startURLRequest({.url = ""}), -73);
  EXPECT_TRUE(fetcher.done());
  EXPECT_EQ(log.messages(), Lines{"A connection could not be made: std::runtime_error."});
}

TEST(URLFetcher, AFailureDropsTheContentAndKeepsTheLow32BitsOfItsCode) {
  Recorder nobody;
  const auto connection = SafeURLConnection::initWithRequest({}, nobody);
  const CapturedLog log;
  URLFetcher fetcher;
  fetcher.startURLRequest({.url = "", .asyncWanted = true});
  fetcher.connectionDidReceiveData(*connection, std::vector<std::uint8_t>{'x'});
  const platform::Value::Dictionary info = {{std::string(kFailingURLStringKey), "http://h/%@"}};
  fetcher.connectionDidFailWithError(*connection, {.domain = "net", .code = (1LL << 32) + 7, .userInfo = info});
  EXPECT_EQ(fetcher.resultCode(), 7);
  EXPECT_EQ(fetcher.contentReturned(), nullptr);
  EXPECT_EQ(log.messages().back(),
            "Connection failed! Error - The operation couldn’t be completed. (net error 4294967303.) http://h/%@");
}

TEST(URLFetcher, TheWaitServesTheRunLoopOnceAndLongerOnlyUntilTheEndOrTheDeadline) {
  struct Deaf : URLFetcher {  // to its connection: somebody else has to tell it the end
    void connectionDidFailWithError(SafeURLConnection&, const URLConnectionError&) override {}
  };
  const std::tuple<const char*, double, bool, bool, int> rows[] = {
      {"no number", NAN, false, false, 1},  {"time left", 30, false, false, 1},
      {"asynchronous", 30, true, false, 0}, {"until the end", 30, false, true, 2},
      {"without end", -1, false, true, 1},  {"asynchronous without end", 30, true, true, 0}};
  for (const auto& [name, timeout, async, isDeaf, servings] : rows) {
    SCOPED_TRACE(name);
    const CapturedLog log;
    platform::RunLoop& loop = platform::RunLoop::current();
    const auto fetcher = isDeaf ? std::make_unique<Deaf>() : std::make_unique<URLFetcher>();
    Recorder nobody;
    const auto connection = SafeURLConnection::initWithRequest({}, nobody);
    int served = 0;
    loop.call([&] { ++served; });
    loop.call([&] {
      ++served;
      fetcher->connectionDidFinishLoading(*connection);
    });
    EXPECT_EQ(fetcher->startURLRequest({.url = "", .withTimeout = timeout, .asyncWanted = async}), isDeaf ? 0 : -1);
    EXPECT_EQ(served, servings);
    EXPECT_EQ(fetcher->done(), !isDeaf || served == 2);
    while (loop.runOnce(std::chrono::nanoseconds(0))) {
    }
  }
}

}  // namespace
}  // namespace SharedClasses::tests
