// The standard folders of the user whom the programs serve, and of the system. Nothing is made and nothing is looked at
// but the list of users and the environment. Safe on any thread.
#pragma once

#include <string>
#include <string_view>

namespace SharedClasses::Utilities {

// The home folder of marlowUser() (system/processes/process_detection.h), not necessarily that of the calling process,
// as the system's list of users has it: all programs that serve a user agree on it, whatever their HOME. HOME counts
// for the calling process's own user alone, and only where the list does not have them. The empty text where there is
// none.
[[nodiscard]] std::string homeDirectory();

// `pathToDirectory:inDomain:` — the path of a standard folder, whether or not there is one. Names and domains are
// compared byte by byte; all domains but "System" are one.
//
//   folder                  in "System"                                in "User" and any other domain
//   "Home"                  "/"                                        the home folder
//   "Library"               the system's library                       Library in the home folder
//   "Logs"                  Logs in the system's library               Library/Logs in the home folder
//   "Application Support"   Application Support in the same            Library/Application Support in the home folder
//   any other name          "/home", the folder of home folders        the home folder
//
// The system's library holds what comes with the programs: the first absolute folder of XDG_DATA_DIRS, which is
// "/usr/local/share:/usr/share" where it is not set or empty. Programs that are started with another list see another
// one. Empty where the home folder or the system's library would be needed and there is none.
// Kept: "Documents" is the home folder itself, and "/home" for the system: the folder for documents is never used.
// Kept: "Logs" of the system lies in its library, not in "/var/log", and the library of a user is not one of the XDG
// folders.
[[nodiscard]] std::string pathToDirectoryInDomain(std::string_view folder, std::string_view domain);

}  // namespace SharedClasses::Utilities
