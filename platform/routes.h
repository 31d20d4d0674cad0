// What the machine's routing table says. Safe on any thread.
#pragma once

#include <string>

namespace SharedClasses::platform {

// Whether the machine would send a packet of this program to the numeric `address` ("192.0.2.1", "fe80::1%eth0", and
// what inet_aton takes: "127.1"), be it one of its own. Nothing is sent, no name is looked up, and it does not wait.
// False for what is no address, and where there is no socket to ask with.
[[nodiscard]] bool hasRoute(const std::string& address);

}  // namespace SharedClasses::platform
