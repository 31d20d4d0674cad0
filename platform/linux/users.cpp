#include "platform/users.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>

#include "platform/files.h"

namespace SharedClasses::platform {

namespace {

constexpr std::size_t kMaximumRecordSize = std::size_t{1} << 20;     // bytes, of one user
constexpr std::size_t kMaximumArgumentsSize = std::size_t{8} << 20;  // bytes; more than the system lets a program have

std::string textOf(const char* text) {
  return text == nullptr ? std::string() : text;
}

// The user whom `lookUp` finds, with room for the texts of the record that grows until they fit.
template <typename LookUp>
std::optional<User> userFoundBy(const LookUp& lookUp) {
  passwd record{};
  passwd* found = nullptr;
  for (std::vector<char> texts(1024); texts.size() <= kMaximumRecordSize; texts.resize(texts.size() * 2)) {
    const int error = lookUp(record, texts, found);
    if (error == ERANGE || error == EINTR) {
      continue;
    }
    if (found == nullptr) {
      return std::nullopt;
    }
    return User{found->pw_uid, found->pw_gid, textOf(found->pw_name), textOf(found->pw_dir)};
  }
  return std::nullopt;
}

}  // namespace

std::string currentUserName() {
  const uid_t user = ::geteuid();
  return userNameOfID(user).value_or(std::to_string(user));
}

std::optional<std::string> userNameOfID(std::uint32_t userID) {
  const std::optional<User> user = userFoundBy([userID](passwd& record, std::vector<char>& texts, passwd*& found) {
    return ::getpwuid_r(userID, &record, texts.data(), texts.size(), &found);
  });
  return user ? std::optional(user->loginName) : std::nullopt;
}

std::optional<User> userNamed(const std::string& loginName) {
  // The system would look for the part in front of a NUL, and ends the program at names of megabytes.
  if (loginName.empty() || loginName.size() > LOGIN_NAME_MAX || loginName.find('\0') != std::string::npos) {
    return std::nullopt;
  }
  return userFoundBy([&loginName](passwd& record, std::vector<char>& texts, passwd*& found) {
    return ::getpwnam_r(loginName.c_str(), &record, texts.data(), texts.size(), &found);
  });
}

std::string homeFolderOfCurrentUser() {
  if (std::optional<std::string> home = environmentVariable("HOME"); home && home->starts_with('/')) {
    return *std::move(home);
  }
  const std::optional<User> user = userFoundBy([](passwd& record, std::vector<char>& texts, passwd*& found) {
    return ::getpwuid_r(::geteuid(), &record, texts.data(), texts.size(), &found);
  });
  return user ? user->homeFolder : std::string();
}

std::vector<std::string> programArguments() {
  std::vector<std::string> words;
  const std::string line = readFile("/proc/self/cmdline", kMaximumArgumentsSize).value_or("");
  for (std::size_t start = 0; start < line.size();) {
    const std::size_t end = std::min(line.find('\0', start), line.size());
    words.push_back(line.substr(start, end - start));
    start = end + 1;
  }
  return words;
}

}  // namespace SharedClasses::platform
