// The users of this machine and the running program. Safe on any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace SharedClasses::platform {

// The login name of the user whose rights the program has; the number as text for a user without a name.
[[nodiscard]] std::string currentUserName();

// The login name of the user with this number; absent when there is none.
[[nodiscard]] std::optional<std::string> userNameOfID(std::uint32_t userID);

// The words that the running program was started with, its own name first. Empty when the system does not tell.
[[nodiscard]] std::vector<std::string> programArguments();

}  // namespace SharedClasses::platform
