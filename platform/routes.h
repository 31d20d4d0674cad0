// What the machine's routing table says. Safe on any thread.
#pragma once

#include <string>

namespace SharedClasses::platform {

// Whether a packet to the numeric `address` ("192.0.2.1", "fe80::1%eth0") would find a way out of this machine. Nothing is
// sent, no name is looked up, and it does not wait. False for what is no address, and where there is no socket to ask with.
[[nodiscard]] bool hasRoute(const std::string& address);

}  // namespace SharedClasses::platform
