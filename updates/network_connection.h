// Whether the network can be used at all, asked before a fetch is tried.
#pragma once

namespace SharedClasses::Utilities {

// Whether the machine has a route to the maker's host: the one in the address under "keyLatestVersionURL" of the main
// bundle. Nothing is sent to that host, so it need not be up. Its name is looked up by the system's getent in a process of
// its own, at most 4 seconds, while the run loop of the calling thread is served; that process is gone soon after.
// False when there is no such address, when the name has no address or is not found in time, when no address has a route,
// and when the tools are missing. A host that only a proxy reaches counts as not connected.
// Logs nothing; belongs to the calling thread.
[[nodiscard]] bool hasNetworkConnection();

}  // namespace SharedClasses::Utilities
