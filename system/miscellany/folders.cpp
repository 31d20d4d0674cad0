#include "system/miscellany/folders.h"

#include <optional>

#include "platform/files.h"
#include "platform/text_parts.h"
#include "platform/users.h"
#include "system/processes/process_detection.h"

namespace SharedClasses::Utilities {

namespace {

constexpr std::string_view kSystemRoot = "/";
constexpr std::string_view kSystemLibraries = "/usr/local/share:/usr/share";
constexpr std::string_view kSystemUsers = "/home";

bool isKeptInLibrary(std::string_view folder) {
  return folder == "Logs" || folder == "Application Support";
}

std::string systemLibrary() {
  const std::string set = platform::environmentVariable("XDG_DATA_DIRS").value_or("");
  for (std::string_view rest = set.empty() ? kSystemLibraries : set; !rest.empty();) {
    if (const std::string_view folder = platform::takePart(rest, ':'); folder.starts_with('/')) {
      return std::string(folder);
    }
  }
  return {};
}

std::string pathInSystem(std::string_view folder) {
  if (folder == "Home") {
    return std::string(kSystemRoot);
  }
  if (isKeptInLibrary(folder)) {
    return platform::pathInFolder(systemLibrary(), folder);
  }
  // Kept: "Documents" is a folder of the users like every other name.
  return folder == "Library" ? systemLibrary() : std::string(kSystemUsers);
}

}  // namespace

std::string homeDirectory() {
  const std::string user = marlowUser();
  if (const std::optional<platform::User> found = platform::userNamed(user)) {
    return found->homeFolder;
  }
  return user == platform::currentUserName() ? platform::homeFolderOfCurrentUser() : std::string();
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
