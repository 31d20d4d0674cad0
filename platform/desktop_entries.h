// The files in which a desktop describes programs and what they open: groups of keys ("[Desktop Entry]", "Exec=gedit %U").
// Pure: any bytes give a stated answer. Safe on any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SharedClasses::platform {

// The value of `key` in `group`, as it stands in the file, without the blanks around it. Of several the last counts. Absent
// when the file does not hold the key. The view lives as long as `file`.
[[nodiscard]] std::optional<std::string_view> valueInKeyFile(std::string_view file, std::string_view group,
                                                             std::string_view key);

// The parts of a value that is a list parted by semicolons, without empty ones; not more than the first 256. Nothing for an
// absent value.
[[nodiscard]] std::vector<std::string_view> partsOfList(std::optional<std::string_view> value);

// What a *.desktop file says of a program.
struct DesktopEntry {
  std::string program;             // the first word of Exec: a path, or a name to look for
  std::string neededProgram;       // TryExec: the entry counts only where this is found; empty for none
  std::vector<std::string> types;  // MimeType: what the program says it opens
  bool isEditor = false;           // it calls itself a text editor or a development environment
  bool needsTerminal = false;
};

// Reads a *.desktop file. Absent when it is not that of a program, is hidden (which stands for deleted), or when what Exec
// starts is not told: it is missing or broken, a program whose purpose is to run or show others (an interpreter, a launcher,
// a terminal), or given a word of its own, no option, before what it is to open ("viewer /usr/lib/start.py %F").
[[nodiscard]] std::optional<DesktopEntry> parseDesktopEntry(std::string_view file);

}  // namespace SharedClasses::platform
