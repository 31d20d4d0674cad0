// The version of this library. Safe on any thread.
#pragma once

#include <string_view>

namespace SharedClasses::platform {

// Three numbers joined by periods, such as "0.1.0".
[[nodiscard]] std::string_view libraryVersion();

}  // namespace SharedClasses::platform
