// The files in which a desktop describes programs and what they open: groups of keys ("[Desktop Entry]",
// "Exec=gedit %U"). Pure: any bytes give a stated answer. Safe on any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SharedClasses::platform {

// The value of `key` in `group`, as it stands in the file, without the blanks around it. Of several the last counts.
// Absent when the file does not hold the key. The view lives as long as `file`.
[[nodiscard]] std::optional<std::string_view> valueInKeyFile(std::string_view file, std::string_view group,
                                                             std::string_view key);

// The parts of a value that is a list parted by semicolons, without empty ones; not more than the first 256. Nothing
// for an absent value. An escaped semicolon ("\;") parts too: neither types nor categories nor file names hold one.
[[nodiscard]] std::vector<std::string_view> partsOfList(std::optional<std::string_view> value);

// What a *.desktop file says of a program.
struct DesktopEntry {
  std::string name;                // Name: what the user sees, untranslated; empty for none
  std::string program;             // a path, or a name to look for: the first word of Exec, or that behind env A=B
  std::string neededProgram;       // TryExec: the entry counts only where this is found; empty for none
  std::vector<std::string> types;  // MimeType: what the program says it opens
  bool isEditor = false;           // it calls itself a text editor or a development environment
  bool needsTerminal = false;
  bool opensItself = false;  // what it is given: no terminal or opener, nor with a word of its own (see below)
};

// Reads a *.desktop file, in one pass. Absent when it is not that of a program, is hidden (which stands for deleted),
// or when Exec does not tell what it starts: it is missing or broken, or names a program that runs others: an
// interpreter, a sandbox or a launcher, env with options, a terminal or an opener that is given a word of its own.
// A word of its own is one that is no option and stands before what is to be opened, or where nothing is to be opened:
// "viewer /usr/lib/start.py %F", "help ghelp:manual", but also the value of an option ("browser --class Name %u").
[[nodiscard]] std::optional<DesktopEntry> parseDesktopEntry(std::string_view file);

}  // namespace SharedClasses::platform
