#include "platform/users.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/files.h"

namespace SharedClasses::platform {

namespace {

constexpr std::size_t kMaximumRecordSize = std::size_t{1} << 20;     // bytes, of one user
constexpr std::size_t kMaximumArgumentsSize = std::size_t{8} << 20;  // bytes; more than the system lets a program have

}  // namespace

std::string currentUserName() {
  const uid_t user = ::geteuid();
  return userNameOfID(user).value_or(std::to_string(user));
}

std::optional<std::string> userNameOfID(std::uint32_t userID) {
  passwd record{};
  passwd* found = nullptr;
  for (std::vector<char> texts(1024); texts.size() <= kMaximumRecordSize; texts.resize(texts.size() * 2)) {
    const int error = ::getpwuid_r(userID, &record, texts.data(), texts.size(), &found);
    if (error == ERANGE || error == EINTR) {
      continue;
    }
    return found == nullptr ? std::nullopt : std::optional<std::string>(found->pw_name);
  }
  return std::nullopt;
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
