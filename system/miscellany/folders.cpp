#include "system/miscellany/folders.h"

#include <optional>

#include "platform/files.h"
#include "platform/users.h"
#include "system/processes/process_detection.h"

namespace SharedClasses::Utilities {

namespace {

constexpr std::string_view kSystemRoot = "/";
constexpr std::string_view kSystemLibrary = "/usr/share";
constexpr std::string_view kSystemUsers = "/home";

bool isKeptInLibrary(std::string_view folder) {
  return folder == "Logs" || folder == "Application Support";
}

std::string pathInSystem(std::string_view folder) {
  if (folder == "Home") {
    return std::string(kSystemRoot);
  }
  if (isKeptInLibrary(folder)) {
    return platform::pathInFolder(kSystemLibrary, folder);
  }
  // Kept: "Documents" is a folder of the users like every other name.
  return std::string(folder == "Library" ? kSystemLibrary : kSystemUsers);
}

}  // namespace

std::string homeDirectory() {
  const std::string user = marlowUser();
  if (user == platform::currentUserName()) {
    return platform::homeFolderOfCurrentUser();
  }
  const std::optional<platform::User> found = platform::userNamed(user);
  return found ? found->homeFolder : std::string();
}

std::string pathToDirectoryInDomain(std::string_view folder, std::string_view domain) {
  if (domain == "System") {
    return pathInSystem(folder);
  }
  std::string home = homeDirectory();
  if (folder != "Library" && !isKeptInLibrary(folder)) {
    return home;
  }
  std::string library = platform::pathInFolder(home, "Library");
  return isKeptInLibrary(folder) ? platform::pathInFolder(library, folder) : library;
}

}  // namespace SharedClasses::Utilities
