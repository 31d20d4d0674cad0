// What the user's desktop does with files: which program opens what, read from the desktop's own lists. Nothing is run.
// Safe on any thread.
#pragma once

#include <string>
#include <vector>

namespace SharedClasses::platform {

// Where the lists of a desktop lie, each the most important one first. Folders with relative paths count as not there.
struct DesktopFolders {
  std::vector<std::string> configFolders;   // that hold mimeapps.list
  std::vector<std::string> dataFolders;     // that hold applications/
  std::vector<std::string> desktops;        // the names of the desktop that runs: "ubuntu", "GNOME"
  std::vector<std::string> programFolders;  // where programs named without a folder are looked for

  // Those of the user whose rights the program has: XDG_CONFIG_HOME and XDG_CONFIG_DIRS, XDG_DATA_HOME and XDG_DATA_DIRS,
  // XDG_CURRENT_DESKTOP, PATH, or what stands in for them where they are not set.
  [[nodiscard]] static DesktopFolders current();
};

// The full path of the program in which the desktop opens scripts to edit them: an existing file that may be executed.
// Empty when the desktop names none. A script here is what is of the type application/x-shellscript, text/x-python or
// text/plain, in this order. Looked for are
// 1. for each type the program that a mimeapps.list names as its default;
// 2. for each type what a mimeapps.list or the program itself associates with it, as long as it calls itself a text editor
//    or a development environment: an interpreter and a word processor are associated with scripts too. One with a window
//    of its own comes before one that needs a terminal.
// Programs that only start others (sh, flatpak and the like; env is looked through) are passed over, as the path tells
// nothing of what they would start: a script handed to them might be executed. At most a mebibyte of each file is read.
[[nodiscard]] std::string editorOfScripts(const DesktopFolders& folders = DesktopFolders::current());

}  // namespace SharedClasses::platform
