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

// A user of this machine, as the system's list of users has it.
struct User {
  std::uint32_t userID = 0;
  std::uint32_t groupID = 0;
  std::string loginName;
  std::string homeFolder;
};

// The user with that login name; absent when there is none.
[[nodiscard]] std::optional<User> userNamed(const std::string& loginName);

// The home folder of the user whose rights the program has: HOME where it is set to an absolute path, else what the
// list of users says; empty when neither does.
[[nodiscard]] std::string homeFolderOfCurrentUser();

// The words that the running program was started with, its own name first. Empty when the system does not tell.
[[nodiscard]] std::vector<std::string> programArguments();

}  // namespace SharedClasses::platform
