#include "updates/url_fetcher.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "platform/run_loop.h"
#include "tests/support/captured_log.h"
#include "tests/support/http_server.h"

namespace SharedClasses::tests {
namespace {

using platform::RunLoop;
using Bytes = std::span<const std::uint8_t>;
using Connection = SafeURLConnection;
using Lines = std::vector<std::string>;

const std::string kFailureLine = "Connection failed! Error - The operation couldn’t be completed. (/ error -1.) (null)";

// Writes down what it is told; a failure it also takes, unless it is deaf.
struct Recorder : URLFetcher {
  explicit Recorder(bool deaf = false) : isDeaf(deaf) {}
  void connectionDidReceiveResponse(Connection&, const platform::Object* response) override {
    calls.emplace_back(response == nullptr ? "no response" : "response");
  }
  void connectionDidReceiveData(Connection&, Bytes data) override { calls.emplace_back(data.begin(), data.end()); }
  void connectionDidFailWithError(Connection& connection, const URLConnectionError& error) override {
    calls.emplace_back(error.domain + std::to_string(error.code) + platform::Value(error.userInfo).description());
    if (!isDeaf) {
      URLFetcher::connectionDidFailWithError(connection, error);
    }
  }
  void connectionDidFinishLoading(Connection&) override { calls.emplace_back("end"); }

  Lines calls;
  bool isDeaf;
};

TEST(URLFetcher, WhateverTheServerSendsIsTheContentWithoutAnyTimeToWaitAndNothingAbortsIt) {
  const std::tuple<const char*, std::string, std::string> rows[] = {
      {"NUL inside", httpAnswer(std::string("a\0b", 3)), std::string("a\0b", 3)},
      {"body that breaks off", "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\nhalf", "half"},
      {"no answer", "", ""},
  };
  for (const auto& [name, answer, text] : rows) {
    SCOPED_TRACE(name);
    const HTTPServer server(answer);
    URLFetcher fetcher;
    EXPECT_EQ(fetcher.contentReturned(), nullptr);
    RunLoop::current().call([&] { EXPECT_EQ(fetcher.abortRequest() + fetcher.percentComplete(), 0); });
    EXPECT_EQ(fetcher.startURLRequest({.url = server.url(), .withTimeout = 0}), 0);
    EXPECT_EQ(fetcher.abortRequest() + fetcher.percentComplete(), 0);
    EXPECT_TRUE(fetcher.done());
    EXPECT_NE(fetcher.contentReturned(), nullptr);
    EXPECT_EQ(fetcher.textReturned(), text);
  }
}

TEST(URLFetcher, WhatDoesNotComeWithinFourSecondsIsAFailureAndTheToolRunsOnUntilItWritesOut) {
  struct {
    const char* name;
    HTTPServer server;
    bool writesOut;
    pid_t fetch = -1;
  } rows[] = {
      {"silence", HTTPServer(HTTPServer::staySilent), false},
      {"endless body", HTTPServer(HTTPServer::flood), true},
      {"more than the pipe holds", HTTPServer(httpAnswer(std::string((1 << 20) + 1, 'x'))), true},
  };
  for (auto& row : rows) {  // all at once: each takes its four seconds
    row.fetch = startInFork([&row] {
      const CapturedLog log;
      Recorder fetcher;
      EXPECT_EQ(fetcher.startURLRequest({.url = row.server.url(), .withTimeout = 30}), -1);
      EXPECT_EQ(fetcher.calls, Lines{"/-1{errorString = \"Task timed out.\"}"});
      EXPECT_EQ(fetcher.contentReturned(), nullptr);
      EXPECT_EQ(log.messages(), (Lines{"curl is running beyond the dedline.", kFailureLine}));
      siginfo_t end{};  // stays as it is while the tool runs
      EXPECT_EQ(
          ::waitid(P_PID, static_cast<id_t>(lastChild()), &end, WEXITED | WNOWAIT | (row.writesOut ? 0 : WNOHANG)), 0);
      EXPECT_EQ(end.si_pid != 0, row.writesOut);
      return HasFailure() ? 1 : 0;
    });
  }
  for (const auto& row : rows) {
    EXPECT_EQ(statusOfChild(row.fetch), 0) << row.name;
  }
}

TEST(SafeURLConnection, AsksForTheAddressAsItStandsAndTellsItsDelegateTheOutcomeInOrder) {
  const HTTPServer server([](const HTTPServer::Connection& connection) {
    connection.send(httpAnswer(connection.requestLine.starts_with("GET /broken ") ? "\xFF" : connection.requestLine));
  });
  const Lines refused = {"/-1{errorString = \"\"}"};
  const std::tuple<const char*, std::string, Lines> rows[] = {
      {"document", server.url("/v?b=2.2b3&x=%20"), {"no response", "GET /v?b=2.2b3&x=%20 HTTP/1.1", "end"}},
      {"option", "--version", refused},
      {"other scheme", "file:///etc/hostname", refused},
      {"capitals", "HTTP" + server.url().substr(4), refused},
      {"blank in front", " " + server.url(), refused},
      {"NUL, with which nothing can be launched", server.url() + std::string("\0", 1), refused},
  };
  const CapturedLog log;
  Recorder recorder;
  for (const auto& [name, url, calls] : rows) {
    recorder.calls.clear();
    EXPECT_NE(Connection::initWithRequest({.url = url}, recorder), nullptr);
    EXPECT_EQ(recorder.calls, calls) << name;
  }
  EXPECT_EQ(recorder.startURLRequest({.url = server.url("/broken")}), -1);
  EXPECT_NE(recorder.calls.back().find("Total"), std::string::npos) << "curl's progress meter";
}

TEST(URLFetcher, ACallbackThatThrowsLeavesNoConnectionAndTheContentSoFar) {
  struct Thrower : URLFetcher {
    void connectionDidFailWithError(Connection&, const URLConnectionError&) override { throw std::runtime_error(""); }
  } fetcher;
  const CapturedLog log;
  EXPECT_EQ(fetcher.startURLRequest({.url = ""}), -73);
  EXPECT_TRUE(fetcher.done());
  EXPECT_EQ(fetcher.textReturned(), "");
  EXPECT_EQ(log.messages(), Lines{"A connection could not be made: std::runtime_error."});
}

TEST(URLFetcher, AFailureDropsTheContentAndKeepsTheLow32BitsOfItsCode) {
  const CapturedLog log;
  Recorder fetcher(true);
  const auto connection = Connection::initWithRequest({}, fetcher);
  fetcher.startURLRequest({.url = "", .asyncWanted = true});
  EXPECT_NE(fetcher.contentReturned(), nullptr);
  const platform::Value::Dictionary info = {{std::string(kFailingURLStringKey), "http://h/%@"}};
  fetcher.isDeaf = false;
  fetcher.connectionDidFailWithError(*connection, {.domain = "net", .code = (1LL << 32) + 7, .userInfo = info});
  fetcher.URLFetcher::connectionDidReceiveData(*connection, std::vector<std::uint8_t>{'x'});
  EXPECT_EQ(fetcher.resultCode(), 7);
  EXPECT_EQ(fetcher.contentReturned(), nullptr);
  EXPECT_EQ(log.messages().back(),
            "Connection failed! Error - The operation couldn’t be completed. (net error 4294967303.) http://h/%@");
}

TEST(URLFetcher, TheWaitServesTheRunLoopOnceAndLongerOnlyUntilTheEndOrTheDeadline) {
  const std::tuple<const char*, double, bool, bool, int> rows[] = {
      {"no number", NAN, false, false, 1},  {"time left", 30, false, false, 1},
      {"asynchronous", 30, true, false, 0}, {"until the end", 30, false, true, 2},
      {"without end", -1, false, true, 1},  {"asynchronous without end", 30, true, true, 0}};
  for (const auto& [name, timeout, async, isDeaf, servings] : rows) {
    SCOPED_TRACE(name);
    const CapturedLog log;
    RunLoop& loop = RunLoop::current();
    Recorder fetcher(isDeaf);  // where it is, somebody else has to tell it the end
    const auto connection = Connection::initWithRequest({}, fetcher);
    int served = 0;
    loop.call([&] { ++served; });
    loop.call([&] {
      ++served;
      fetcher.URLFetcher::connectionDidFinishLoading(*connection);
    });
    EXPECT_EQ(fetcher.startURLRequest({.url = "", .withTimeout = timeout, .asyncWanted = async}), isDeaf ? 0 : -1);
    EXPECT_EQ(served, servings);
    EXPECT_EQ(fetcher.done(), !isDeaf || served == 2);
    while (loop.runOnce(std::chrono::nanoseconds(0))) {
    }
  }
}

}  // namespace
}  // namespace SharedClasses::tests
