#include "platform/desktop_entries.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "platform/text.h"
#include "platform/text_parts.h"

namespace SharedClasses::platform {

namespace {

constexpr std::size_t kMaximumParts = 256;
constexpr std::string_view kEntryGroup = "Desktop Entry";

// The values of an entry that count, as they stand in the file; empty for absent ones.
struct EntryValues {
  std::string_view categories, exec, hidden, mimeType, name, terminal, tryExec, type;
};
constexpr std::pair<std::string_view, std::string_view EntryValues::*> kEntryKeys[] = {
    {"Categories", &EntryValues::categories}, {"Exec", &EntryValues::exec}, {"Hidden", &EntryValues::hidden},
    {"MimeType", &EntryValues::mimeType},     {"Name", &EntryValues::name}, {"Terminal", &EntryValues::terminal},
    {"TryExec", &EntryValues::tryExec},       {"Type", &EntryValues::type},
};

// Programs that run what their arguments name, and those that run or show it but are programs of the user's as well:
// terminals and openers. Without the digits of a version at the end; sorted.
// clang-format off
constexpr auto kRunners = std::to_array<std::string_view>({
  "Rscript", "awk", "bash", "busybox", "bwrap", "chrt", "csh", "dart", "dash", "dbus-launch", "dbus-run-session",
  "deno", "distrobox", "doas", "dotnet", "electron", "env", "expect", "firejail", "fish", "flatpak", "gawk", "gjs",
  "gjs-console", "gksu", "gksudo", "gtk-launch", "guile", "ionice", "java", "julia", "kdesu", "kdesudo", "ksh", "lua",
  "luajit", "mawk", "mksh", "mono", "nice", "node", "nodejs", "nohup", "perl", "php", "pkexec", "prime-run", "pypy",
  "python", "qml", "qmlscene", "ruby", "runuser", "setpriv", "setsid", "sh", "snap", "ssh", "stdbuf", "strace", "su",
  "sudo", "systemd-inhibit", "systemd-run", "taskset", "tclsh", "tcsh", "time", "timeout", "toolbox", "unshare", "wine",
  "wine-stable", "wish", "xargs", "xvfb-run", "zsh",
});
constexpr auto kShowers = std::to_array<std::string_view>({
  "alacritty", "cool-retro-term", "deepin-terminal", "exo-open", "foot", "footclient", "gio", "gnome-console",
  "gnome-open", "gnome-terminal", "guake", "gvfs-open", "kde-open", "kfmclient", "kgx", "kioclient", "kitty", "konsole",
  "lxterm", "lxterminal", "mate-open", "mate-terminal", "open", "ptyxis", "qterminal", "rxvt", "screen", "st",
  "terminator", "terminology", "tilda", "tilix", "tmux", "urxvt", "uxterm", "wezterm", "x-terminal-emulator",
  "x-www-browser", "xdg-open", "xfce4-terminal", "xterm", "yakuake",
});
// clang-format on
static_assert(std::ranges::is_sorted(kRunners) && std::ranges::is_sorted(kShowers));

// The text that a value with escapes stands for: \s \n \t \r \\. Others are left for the reader of Exec.
std::string unescaped(std::string_view value) {
  constexpr std::string_view kLetters = "sntr\\";
  constexpr std::string_view kMeanings = " \n\t\r\\";
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const std::size_t known =
        value[i] == '\\' && i + 1 < value.size() ? kLetters.find(value[i + 1]) : std::string_view::npos;
    if (known == std::string_view::npos) {
      text += value[i];
    } else {
      text += kMeanings[known];
      ++i;
    }
  }
  return text;
}

// Takes the first word off the front of a command, with its quotes resolved and without field codes ("%F"; "%%" is a
// percent sign). Absent at the end, and for quotes that are never closed.
std::optional<std::string> takeWord(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(" \t\n"), rest.size()));
  if (rest.empty()) {
    return std::nullopt;
  }
  std::string word;
  bool isQuoted = false;
  for (; !rest.empty(); rest.remove_prefix(1)) {
    const char c = rest[0];
    if (!isQuoted && (c == ' ' || c == '\t' || c == '\n')) {
      return word;
    }
    if (c == '"') {
      isQuoted = !isQuoted;
    } else if ((c == '\\' || c == '%') && rest.size() > 1) {
      rest.remove_prefix(1);
      if (c == '\\' || rest[0] == '%') {
        word += rest[0];
      }
    } else {
      word += c;
    }
  }
  return isQuoted ? std::nullopt : std::optional(word);
}

std::string_view nameOfProgram(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

bool isAmong(std::span<const std::string_view> programs, std::string_view program) {
  const std::string_view name = nameOfProgram(program);
  return std::ranges::binary_search(programs, name.substr(0, name.find_last_not_of("0123456789.-") + 1));
}

// Whether a word that is no option stands before the first field code, such as the script that an interpreter runs.
bool hasFixedArgument(std::string_view arguments) {
  std::optional<std::string> word;
  do {
    word = takeWord(arguments);
  } while (word && word->starts_with('-'));
  return word && !word->empty();  // Nothing else is left of a field code.
}

// Takes the program that a command starts off its front. Absent where that is not told.
std::optional<std::string> takeProgram(std::string_view& command) {
  std::optional<std::string> word = takeWord(command);
  if (word && nameOfProgram(*word) == "env") {
    do {
      word = takeWord(command);
    } while (word && !word->starts_with('-') && word->find('=') != std::string::npos);
  }
  const bool isTold = word && !word->empty() && !word->starts_with('-') && word->find('\0') == std::string::npos &&
                      !isAmong(kRunners, *word);
  return isTold ? word : std::nullopt;
}

// Calls `use` with each key and value of `group`, without the blanks around them.
template <typename Use>
void forEachKey(std::string_view file, std::string_view group, const Use& use) {
  for (bool isInGroup = false; !file.empty();) {
    const std::string_view line = trimmed(takePart(file, '\n'));
    if (line.starts_with('[') && line.ends_with(']')) {
      isInGroup = line.substr(1, line.size() - 2) == group;
    } else if (const std::size_t equals = line.find('='); isInGroup && equals != std::string_view::npos) {
      use(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }
  }
}

}  // namespace

std::optional<std::string_view> valueInKeyFile(std::string_view file, std::string_view group, std::string_view key) {
  std::optional<std::string_view> value;
  forEachKey(file, group, [&](std::string_view keyInFile, std::string_view valueInFile) {
    if (keyInFile == key) {
      value = valueInFile;
    }
  });
  return value;
}

std::vector<std::string_view> partsOfList(std::optional<std::string_view> value) {
  std::vector<std::string_view> parts;
  for (std::string_view rest = value.value_or(""); !rest.empty() && parts.size() < kMaximumParts;) {
    if (const std::string_view part = trimmed(takePart(rest, ';')); !part.empty()) {
      parts.push_back(part);
    }
  }
  return parts;
}

std::optional<DesktopEntry> parseDesktopEntry(std::string_view file) {
  EntryValues values;
  forEachKey(file, kEntryGroup, [&values](std::string_view key, std::string_view value) {
    for (const auto& [name, place] : kEntryKeys) {
      if (key == name) {
        values.*place = value;
      }
    }
  });
  if (values.type != "Application" || values.hidden == "true") {
    return std::nullopt;
  }
  const std::string command = unescaped(values.exec);
  std::string_view arguments = command;
  std::optional<std::string> program = takeProgram(arguments);
  const bool isShower = program && isAmong(kShowers, *program);
  const bool hasOwnWord = hasFixedArgument(arguments);
  if (!program || (isShower && hasOwnWord)) {
    return std::nullopt;
  }
  DesktopEntry entry;
  entry.program = *std::move(program);
  entry.opensItself = !isShower && !hasOwnWord;
  entry.name = unescaped(values.name);
  entry.neededProgram = unescaped(values.tryExec);
  for (const std::string_view type : partsOfList(values.mimeType)) {
    entry.types.emplace_back(type);
  }
  entry.isEditor = std::ranges::any_of(partsOfList(values.categories), [](std::string_view category) {
    return category == "TextEditor" || category == "IDE";
  });
  entry.needsTerminal = values.terminal == "true";
  return entry;
}

}  // namespace SharedClasses::platform
