// A small HTTP server on loopback, in a process of its own: it answers one connection after another until it is
// stopped.
#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "tests/support/fork.h"

namespace SharedClasses::tests {

// A whole answer. `status`: "200 OK"; `headers`: more of them, each with its line break.
inline std::string httpAnswer(std::string_view body, std::string_view status = "200 OK",
                              std::string_view headers = "") {
  return "HTTP/1.1 " + std::string(status) + "\r\nConnection: close\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\n" + std::string(headers) + "\r\n" + std::string(body);
}

// Lives until the object or the thread that made it ends. From the first one on, curl uses no proxy and reads no
// .curlrc of whoever runs the tests.
class HTTPServer {
 public:
  // One client's connection, whose request has been read.
  struct Connection {
    int socket;
    std::string requestLine;  // "GET / HTTP/1.1"

    // False once the client has gone.
    bool send(std::string_view bytes) const {
      return ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
    }
    // Whether the client goes within `milliseconds`; -1 waits for ever.
    [[nodiscard]] bool clientGoes(int milliseconds) const {
      pollfd client{.fd = socket, .events = POLLIN, .revents = 0};
      return ::poll(&client, 1, milliseconds) > 0;
    }
  };
  // Runs in the server's process; the connection is closed after it.
  using Answer = std::function<void(const Connection&)>;

  explicit HTTPServer(Answer answer) {
    ::setenv("CURL_HOME", SOURCE_FOLDER "/tests/support", 1);  // has a .curlrc, without which curl goes on to HOME
    ::setenv("no_proxy", "*", 1);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(listener, reinterpret_cast<sockaddr*>(&address), length) == 0 && ::listen(listener, 8) == 0 &&
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
      mPort = ntohs(address.sin_port);
      mProcess = startInFork([&] { return serve(listener, answer); });
    }
    if (mProcess < 0) {
      ADD_FAILURE() << "no server: " << std::strerror(errno);
    }
    ::close(listener);
  }
  explicit HTTPServer(std::string answer)
      : HTTPServer([answer = std::move(answer)](const Connection& c) { c.send(answer); }) {}
  HTTPServer(const HTTPServer&) = delete;
  HTTPServer& operator=(const HTTPServer&) = delete;
  ~HTTPServer() {
    if (mProcess > 0) {
      ::kill(mProcess, SIGKILL);
      static_cast<void>(statusOfChild(mProcess));
    }
  }

  // Never says a word.
  static void staySilent(const Connection& connection) { static_cast<void>(connection.clientGoes(-1)); }
  // One byte every tenth of a second, without end.
  static void drip(const Connection& connection) {
    connection.send("HTTP/1.1 200 OK\r\n\r\n");
    while (!connection.clientGoes(100) && connection.send("x")) {
    }
  }
  // Bytes without end, as fast as they are taken.
  static void flood(const Connection& connection) {
    connection.send("HTTP/1.1 200 OK\r\n\r\n");
    while (connection.send(std::string(std::size_t{1} << 16, 'x'))) {
    }
  }

  [[nodiscard]] std::string url(const std::string& path = "/") const {
    return "http://127.0.0.1:" + std::to_string(mPort) + path;
  }

 private:
  // Returns only where it can take no connection.
  static int serve(int listener, const Answer& answer) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::alarm(0);  // tests may take longer than that
    while (true) {
      Connection connection{.socket = ::accept(listener, nullptr, nullptr), .requestLine = {}};
      if (connection.socket < 0) {
        return 1;
      }
      std::string request;
      for (char byte = 0; !request.ends_with("\r\n\r\n") && ::recv(connection.socket, &byte, 1, 0) == 1;) {
        request += byte;
      }
      if (request.ends_with("\r\n\r\n")) {
        connection.requestLine = request.substr(0, request.find("\r\n"));
        answer(connection);
      }
      ::close(connection.socket);
    }
  }

  std::uint16_t mPort = 0;
  pid_t mProcess = -1;
};

}  // namespace SharedClasses::tests
