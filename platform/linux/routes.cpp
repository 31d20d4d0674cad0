#include "platform/routes.h"

#include <netdb.h>
#include <sys/socket.h>

#include <memory>

#include "platform/linux/file_descriptor.h"

namespace SharedClasses::platform {

bool hasRoute(const std::string& address) {
  addrinfo hints{};
  hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
  hints.ai_socktype = SOCK_DGRAM;
  addrinfo* found = nullptr;
  constexpr const char* kAnyPort = "9";
  if (address.find('\0') != std::string::npos || ::getaddrinfo(address.c_str(), kAnyPort, &hints, &found) != 0) {
    return false;
  }
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);
  const FileDescriptor socket(::socket(found->ai_family, found->ai_socktype | SOCK_CLOEXEC, 0));
  // Joining a datagram socket to an address looks the route up and does no more.
  return socket.isOpen() && ::connect(socket.get(), found->ai_addr, found->ai_addrlen) == 0;
}

}  // namespace SharedClasses::platform
