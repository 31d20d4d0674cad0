// What the user's desktop knows of programs: which one opens what, and where one lies, read from the desktop's own
// lists. Only openAddress() runs anything. Safe on any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace SharedClasses::platform {

// Where the lists of a desktop lie, each the most important one first. Folders with relative paths count as not there.
struct DesktopFolders {
  std::vector<std::string> configFolders;   // that hold mimeapps.list
  std::vector<std::string> dataFolders;     // that hold applications/
  std::vector<std::string> desktops;        // the names of the desktop that runs: "ubuntu", "GNOME"
  std::vector<std::string> programFolders;  // where programs named without a folder are looked for

  // Those of the user whose rights the program has: XDG_CONFIG_HOME and XDG_CONFIG_DIRS, XDG_DATA_HOME and
  // XDG_DATA_DIRS, XDG_CURRENT_DESKTOP, PATH, or what stands in for them where they are not set.
  [[nodiscard]] static DesktopFolders current();
};

// The full path of the program in which the desktop opens scripts to edit them: an existing file that may be executed.
// Empty when the desktop names none. A script here is what is of the type application/x-shellscript, text/x-python or
// text/plain, in this order. Looked for are
// 1. for each type the program that a mimeapps.list names as its default;
// 2. for each type what a mimeapps.list or the program itself associates with it, as long as it calls itself a text
//    editor or a development environment: an interpreter and a word processor are associated with scripts too. One
//    with a window of its own comes before one that needs a terminal.
// Programs that start others (sh, flatpak, terminals and the like; env is looked through) and those that the desktop
// gives a word of its own are passed over: a script handed to them might be executed. Files longer than a mebibyte, and
// entries longer than 64 KiB, count as not there: the entry of that name in a later folder then counts. At most 4096
// entries are read in one look-up.
[[nodiscard]] std::string editorOfScripts(const DesktopFolders& folders = DesktopFolders::current());

// The full path of the program called `name`: an existing file that may be executed. Empty when there is none. Looked
// for are
// 1. an entry of the desktop whose file is called so, with or without ".desktop", in whatever folder of applications/
//    ("kde/kate.desktop" is "kate" and "kde-kate");
// 2. an entry that shows the user this name (Name, untranslated), letter case aside where none matches exactly;
// 3. a program of this name in the program folders.
// A name with a "/" is none, and a name that is not UTF-8 matches exactly or not at all. Entries whose program is not
// there are passed over, and those that hide it: the path would be that of an interpreter, a sandbox or a launcher
// (sh, python, flatpak, snap, env with options). At most 4096 names of all data folders together are looked at, in no
// folder more than 8 below applications/, and no entry that is longer than 64 KiB. Unlike above, an entry that cannot
// be read hides those of its name in later folders.
[[nodiscard]] std::string pathOfProgram(std::string_view name,
                                        const DesktopFolders& folders = DesktopFolders::current());

// Has the desktop open an address by its scheme, with the first opener of the program folders: xdg-open, else gio. It
// runs by itself, in a session of its own with nothing of ours open, and is not waited for. Whether the address was
// handed to it, which takes 10 seconds at most; true does not tell that the opener could be executed, nor what it
// makes of the address. False for what does not begin with a scheme and ":" (so that it is never read as an option or
// a file), holds blanks, control characters or bytes that are not UTF-8, or is longer than 64 KiB. A scheme is a
// letter, then letters, digits, "+", "-" and ".".
[[nodiscard]] bool openAddress(std::string_view address, const DesktopFolders& folders = DesktopFolders::current());

}  // namespace SharedClasses::platform
