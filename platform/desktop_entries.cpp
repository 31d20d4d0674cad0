#include "platform/desktop_entries.h"

#include <algorithm>
#include <array>

#include "platform/text.h"
#include "platform/text_parts.h"

namespace SharedClasses::platform {

namespace {

constexpr std::size_t kMaximumParts = 256;
constexpr std::string_view kEntryGroup = "Desktop Entry";

// Programs that run or show what their arguments name: interpreters, launchers and terminals, without the digits of a
// version at the end. Sorted.
// clang-format off
constexpr auto kStarters = std::to_array<std::string_view>({
  "Rscript", "alacritty", "awk", "bash", "busybox", "bwrap", "chrt", "cool-retro-term", "csh", "dart", "dash",
  "dbus-launch", "dbus-run-session", "deepin-terminal", "deno", "distrobox", "doas", "dotnet", "electron", "env",
  "exo-open", "expect", "firejail", "fish", "flatpak", "foot", "footclient", "gawk", "gio", "gjs", "gjs-console",
  "gksu", "gksudo", "gnome-console", "gnome-open", "gnome-terminal", "gtk-launch", "guake", "guile", "gvfs-open",
  "ionice", "java", "julia", "kde-open", "kdesu", "kdesudo", "kfmclient", "kgx", "kioclient", "kitty", "konsole",
  "ksh", "lua", "luajit", "lxterm", "lxterminal", "mate-open", "mate-terminal", "mawk", "mksh", "mono", "nice",
  "node", "nodejs", "nohup", "open", "perl", "php", "pkexec", "prime-run", "ptyxis", "pypy", "python", "qml",
  "qmlscene", "qterminal", "ruby", "runuser", "rxvt", "screen", "setpriv", "setsid", "sh", "snap", "ssh", "st",
  "stdbuf", "strace", "su", "sudo", "systemd-inhibit", "systemd-run", "taskset", "tclsh", "tcsh", "terminator",
  "terminology", "tilda", "tilix", "time", "timeout", "tmux", "toolbox", "unshare", "urxvt", "uxterm", "wezterm",
  "wine", "wine-stable", "wish", "x-terminal-emulator", "x-www-browser", "xargs", "xdg-open", "xfce4-terminal",
  "xterm", "xvfb-run", "yakuake", "zsh",
});
// clang-format on
static_assert(std::ranges::is_sorted(kStarters));

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

bool isStarter(std::string_view program) {
  const std::string_view name = nameOfProgram(program);
  return std::ranges::binary_search(kStarters, name.substr(0, name.find_last_not_of("0123456789.-") + 1));
}

// Whether a word that is no option stands before the first field code, such as the script that an interpreter runs.
bool hasFixedArgument(std::string_view arguments) {
  std::optional<std::string> word;
  do {
    word = takeWord(arguments);
  } while (word && word->starts_with('-'));
  return word && !word->empty();  // Nothing else is left of a field code.
}

// What a command starts; empty where that is not told.
std::string programOfCommand(std::string_view command) {
  std::optional<std::string> word = takeWord(command);
  if (word && nameOfProgram(*word) == "env") {
    do {
      word = takeWord(command);
    } while (word && word->find('=') != std::string::npos);
  }
  const bool isTold = word && !word->starts_with('-') && word->find('\0') == std::string::npos && !isStarter(*word) &&
                      !hasFixedArgument(command);
  return isTold ? *word : std::string();
}

}  // namespace

std::optional<std::string_view> valueInKeyFile(std::string_view file, std::string_view group, std::string_view key) {
  std::optional<std::string_view> value;
  for (bool isInGroup = false; !file.empty();) {
    const std::string_view line = trimmed(takePart(file, '\n'));
    if (line.starts_with('[') && line.ends_with(']')) {
      isInGroup = line.substr(1, line.size() - 2) == group;
    } else if (const std::size_t equals = line.find('='); isInGroup && equals != std::string_view::npos) {
      if (trimmed(line.substr(0, equals)) == key) {
        value = trimmed(line.substr(equals + 1));
      }
    }
  }
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
  const auto value = [file](std::string_view key) { return valueInKeyFile(file, kEntryGroup, key); };
  if (value("Type") != "Application" || value("Hidden") == "true") {
    return std::nullopt;
  }
  DesktopEntry entry;
  entry.program = programOfCommand(unescaped(value("Exec").value_or("")));
  if (entry.program.empty()) {
    return std::nullopt;
  }
  entry.neededProgram = unescaped(value("TryExec").value_or(""));
  for (const std::string_view type : partsOfList(value("MimeType"))) {
    entry.types.emplace_back(type);
  }
  entry.isEditor = std::ranges::any_of(partsOfList(value("Categories")), [](std::string_view category) {
    return category == "TextEditor" || category == "IDE";
  });
  entry.needsTerminal = value("Terminal") == "true";
  return entry;
}

}  // namespace SharedClasses::platform
