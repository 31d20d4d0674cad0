// The standard folders of the user whom the programs serve, and of the system. Nothing is made and nothing is looked at but
// the list of users. Safe on any thread.
#pragma once

#include <string>
#include <string_view>

namespace SharedClasses::Utilities {

// The home folder of marlowUser() (system/processes/process_detection.h), not necessarily that of the calling process; the
// empty text for a user who has none. Where it is the calling process's own user, HOME counts first.
[[nodiscard]] std::string homeDirectory();

// `pathToDirectory:inDomain:` — the path of a standard folder, whether or not there is one. Names and domains are compared
// byte by byte; all domains but "System" are one.
//
//   folder                  in "System"                         in "User" and any other domain
//   "Home"                  "/"                                 the home folder
//   "Library"               "/usr/share"                        Library in the home folder
//   "Logs"                  "/usr/share/Logs"                   Library/Logs in the home folder
//   "Application Support"   "/usr/share/Application Support"    Library/Application Support in the home folder
//   any other name          "/home"                             the home folder
//
// "/usr/share" holds what comes with the system and is the same for all its users; "/home" is the folder of home folders.
// Empty where the home folder would be needed and there is none.
// Kept: "Documents" is the home folder itself, and "/home" for the system: the folder for documents is never used.
// Kept: "Logs" of the system lies in its library, not in "/var/log", and the library of a user is not one of the XDG folders.
[[nodiscard]] std::string pathToDirectoryInDomain(std::string_view folder, std::string_view domain);

}  // namespace SharedClasses::Utilities
