// Whether the network can be used at all, asked before a fetch is tried.
#pragma once

namespace SharedClasses::Utilities {

// Whether the machine has a route to the maker's host: the one in the address under "keyLatestVersionURL" of the main
// bundle. Nothing is sent to that host, so it need not be up. Its name is looked up by the system's getent in a process
// of its own, which is ended after 3 seconds, while the run loop of the calling thread is served: this takes at most 4
// seconds, and what callbacks take that run meanwhile.
// False when that is no web address (SafeURLConnection::isWebAddress) or names no host, when the name has no address or
// is not found in those 3 seconds, when no address has a route, and when the tools are missing. Proxies are not looked
// at. Logs nothing; belongs to the calling thread.
[[nodiscard]] bool hasNetworkConnection();

}  // namespace SharedClasses::Utilities
