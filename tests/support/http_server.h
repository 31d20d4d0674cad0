// A small HTTP server on loopback, in a process of its own: it answers one connection after another until it is stopped.
#pragma once

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>

#include <cstdint>
#include <cstdlib>
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

class HTTPServer {
 public:
  // One client's connection, whose request has been read.
  struct Connection {
    int socket;
    std::string requestLine;  // "GET / HTTP/1.1"

    // False once the client has gone.
    [[nodiscard]] bool send(std::string_view bytes) const {
      while (!bytes.empty()) {
        const ssize_t count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) {
          return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
      }
      return true;
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
    ::close(listener);
  }
  explicit HTTPServer(std::string answer)
      : HTTPServer([answer = std::move(answer)](const Connection& c) { static_cast<void>(c.send(answer)); }) {}
  HTTPServer(const HTTPServer&) = delete;
  HTTPServer& operator=(const HTTPServer&) = delete;
  ~HTTPServer() { stop(); }

  // Never says a word.
  static void staySilent(const Connection& connection) { static_cast<void>(connection.clientGoes(-1)); }
  // One byte every tenth of a second, without end.
  static void drip(const Connection& connection) {
    bool goesOn = connection.send("HTTP/1.1 200 OK\r\n\r\n");
    while (goesOn && !connection.clientGoes(100)) {
      goesOn = connection.send("x");
    }
  }
  // Bytes without end, as fast as they are taken.
  static void flood(const Connection& connection) {
    bool goesOn = connection.send("HTTP/1.1 200 OK\r\n\r\n");
    while (goesOn) {
      goesOn = connection.send(std::string(std::size_t{1} << 16, 'x'));
    }
  }

  [[nodiscard]] std::string url(const std::string& path = "/") const {
    return "http://127.0.0.1:" + std::to_string(mPort) + path;
  }

  // Nobody answers at the address any more, and open connections break.
  void stop() {
    if (mProcess > 0) {
      ::kill(mProcess, SIGKILL);
      static_cast<void>(statusOfChild(std::exchange(mProcess, -1)));
    }
  }

 private:
  [[noreturn]] static int serve(int listener, const Answer& answer) {
    while (true) {
      Connection connection{.socket = ::accept(listener, nullptr, nullptr), .requestLine = {}};
      std::string request;
      for (char byte = 0; !request.ends_with("\r\n\r\n") && ::recv(connection.socket, &byte, 1, 0) == 1;) {
        request += byte;
      }
      connection.requestLine = request.substr(0, request.find("\r\n"));
      answer(connection);
      ::close(connection.socket);
    }
  }

  std::uint16_t mPort = 0;
  pid_t mProcess = -1;
};

}  // namespace SharedClasses::tests
