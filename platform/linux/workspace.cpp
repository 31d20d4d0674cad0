#include "platform/workspace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "platform/child_process.h"
#include "platform/desktop_entries.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/text_parts.h"
#include "platform/users.h"

namespace SharedClasses::platform {

namespace {

constexpr std::size_t kMaximumFileSize = std::size_t{1} << 20;  // bytes
constexpr std::size_t kMaximumEntrySize = std::size_t{64} << 10;
constexpr std::size_t kMaximumEntries = 4096;    // looked at in one look-up
constexpr std::size_t kMaximumFolders = 256;     // of one variable
constexpr std::size_t kMaximumNameLength = 255;  // bytes; longer ones name no file
constexpr std::size_t kMaximumDepth = 8;         // of a folder of entries below applications/
constexpr std::size_t kMaximumAddressLength = std::size_t{64} << 10;
constexpr std::chrono::seconds kLongestStart{10};
constexpr std::string_view kEntrySuffix = ".desktop";
constexpr std::array<std::string_view, 3> kScriptTypes = {"application/x-shellscript", "text/x-python", "text/plain"};

bool isExecutableFile(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         ::faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

template <typename Names>
bool holds(const Names& names, std::string_view name) {
  return std::ranges::find(names, name) != std::ranges::end(names);
}

std::string variable(const char* name, std::string fallback) {
  std::optional<std::string> value = environmentVariable(name);
  return value && !value->empty() ? *std::move(value) : std::move(fallback);
}

std::vector<std::string> partsOf(std::string_view text) {
  std::vector<std::string> parts;
  while (!text.empty() && parts.size() < kMaximumFolders) {
    if (const std::string_view part = takePart(text, ':'); !part.empty()) {
      parts.emplace_back(part);
    }
  }
  return parts;
}

// The full path of `program`, which is one or is looked for. Empty where there is none.
std::string executable(const std::string& program, const DesktopFolders& folders) {
  if (program.find('\0') != std::string::npos) {
    return {};
  }
  if (program.find('/') != std::string::npos) {
    return program.starts_with('/') && isExecutableFile(program) ? program : std::string();
  }
  for (const std::string& folder : folders.programFolders) {
    std::string path = pathInFolder(folder, program);
    if (folder.starts_with('/') && isExecutableFile(path)) {
      return path;
    }
  }
  return {};
}

// One mimeapps.list.
struct TypeList {
  std::string text;
  bool isOfOneDesktop;         // such a one names defaults only
  std::string programsFolder;  // the folder of entries that it stands in; empty for none

  [[nodiscard]] std::vector<std::string_view> names(std::string_view group, std::string_view type) const {
    return partsOfList(valueInKeyFile(text, group, type));
  }
};

// A program that can be started.
struct Program {
  std::string path;
  DesktopEntry entry;
};

// Absent for a file that is no entry, and where the program is not there.
std::optional<Program> programOfEntry(const std::optional<std::string>& file, const DesktopFolders& folders) {
  std::optional<DesktopEntry> entry = file ? parseDesktopEntry(*file) : std::nullopt;
  if (!entry || (!entry->neededProgram.empty() && executable(entry->neededProgram, folders).empty())) {
    return std::nullopt;
  }
  std::string path = executable(entry->program, folders);
  return path.empty() ? std::nullopt : std::optional<Program>({std::move(path), *std::move(entry)});
}

// All that a desktop says, read when it is asked for, and once.
class Desktop {
 public:
  explicit Desktop(const DesktopFolders& folders) : mFolders(folders) {
    for (const std::string& folder : folders.configFolders) {
      addLists(folder, false);
    }
    for (const std::string& folder : folders.dataFolders) {
      addLists(pathInFolder(folder, "applications"), true);
    }
  }

  // What the first list says that names a program which is there. What a list of higher rank takes away does not count.
  const Program* defaultProgram(std::string_view type) {
    std::vector<std::string_view> removed;
    for (const TypeList& list : mLists) {
      for (const std::string_view name : list.names("Default Applications", type)) {
        if (const Program* program = holds(removed, name) ? nullptr : programNamed(name)) {
          return program;
        }
      }
      addRemoved(list, type, removed);
    }
    return nullptr;
  }

  // The associated programs that are there, the most preferred one first.
  std::vector<const Program*> associatedPrograms(std::string_view type) {
    std::vector<const Program*> programs;
    std::vector<std::string_view> removed;
    for (const TypeList& list : mLists) {
      if (list.isOfOneDesktop) {
        continue;
      }
      for (const std::string_view name : list.names("Added Associations", type)) {
        if (const Program* program = holds(removed, name) ? nullptr : programNamed(name)) {
          programs.push_back(program);
        }
      }
      addRemoved(list, type, removed);
      for (const std::string& name : namesInFolder(list.programsFolder, type)) {
        const Program* program = holds(removed, name) ? nullptr : programNamed(name);
        if (program != nullptr && holds(program->entry.types, type)) {
          programs.push_back(program);
        }
      }
    }
    return programs;
  }

 private:
  void addLists(const std::string& folder, bool holdsPrograms) {
    if (!folder.starts_with('/')) {
      return;
    }
    for (const std::string& desktop : mFolders.desktops) {
      if (desktop.find('/') == std::string::npos) {
        addList(pathInFolder(folder, lowercased(desktop) + "-mimeapps.list"), true, {});
      }
    }
    addList(pathInFolder(folder, "mimeapps.list"), false, holdsPrograms ? folder : std::string());
  }

  void addList(const std::string& path, bool isOfOneDesktop, std::string programsFolder) {
    mLists.push_back({readFile(path, kMaximumFileSize).value_or(""), isOfOneDesktop, std::move(programsFolder)});
  }

  static void addRemoved(const TypeList& list, std::string_view type, std::vector<std::string_view>& removed) {
    if (!list.isOfOneDesktop) {
      const std::vector<std::string_view> names = list.names("Removed Associations", type);
      removed.insert(removed.end(), names.begin(), names.end());
    }
  }

  // The entries in a folder that may be of that type: those that the folder's own list says, else all.
  static std::vector<std::string> namesInFolder(const std::string& folder, std::string_view type) {
    if (folder.empty()) {
      return {};
    }
    if (const std::optional<std::string> cache = readFile(pathInFolder(folder, "mimeinfo.cache"), kMaximumFileSize)) {
      const std::vector<std::string_view> names = partsOfList(valueInKeyFile(*cache, "MIME Cache", type));
      return {names.begin(), names.end()};
    }
    std::vector<std::string> names = entriesOfFolder(folder);
    std::erase_if(names, [](const std::string& name) { return !name.ends_with(kEntrySuffix); });
    std::ranges::sort(names);  // The file system's order is not the same everywhere.
    names.resize(std::min(names.size(), kMaximumEntries));
    return names;
  }

  // Null where there is no such entry, or the program is not there or might execute what it opens.
  const Program* programNamed(std::string_view name) {
    auto known = mPrograms.find(name);
    if (known == mPrograms.end()) {
      if (mPrograms.size() == kMaximumEntries) {
        return nullptr;
      }
      known = mPrograms.emplace(name, programOfEntry(fileOfEntry(name), mFolders)).first;
    }
    return known->second && known->second->entry.opensItself ? &*known->second : nullptr;
  }

  // The first file of that name hides those in later folders. "kde-kate.desktop" may also lie in "kde/kate.desktop".
  [[nodiscard]] std::optional<std::string> fileOfEntry(std::string_view name) const {
    if (!name.ends_with(kEntrySuffix) || name.size() > kMaximumNameLength || name.starts_with('.') ||
        name.find('/') != std::string_view::npos) {
      return std::nullopt;
    }
    for (const std::string& folder : mFolders.dataFolders) {
      if (!folder.starts_with('/')) {
        continue;
      }
      const std::string applications = pathInFolder(folder, "applications");
      std::optional<std::string> file = readFile(pathInFolder(applications, name), kMaximumEntrySize);
      for (std::size_t dash = name.find('-'); !file && dash != std::string_view::npos;
           dash = name.find('-', dash + 1)) {
        const std::string subfolder = pathInFolder(applications, name.substr(0, dash));
        file = readFile(pathInFolder(subfolder, name.substr(dash + 1)), kMaximumEntrySize);
      }
      if (file) {
        return file;
      }
    }
    return std::nullopt;
  }

  const DesktopFolders& mFolders;
  std::vector<TypeList> mLists;  // the most important one first
  std::map<std::string, std::optional<Program>, std::less<>> mPrograms;
};

// The file of an entry.
struct EntryFile {
  std::string identifier;  // "kde-kate.desktop" of kde/kate.desktop
  std::string path;
};

bool isCalled(const EntryFile& file, std::string_view name) {
  std::string fileName(name);
  fileName += name.ends_with(kEntrySuffix) ? "" : kEntrySuffix;
  return file.identifier == fileName || file.path.ends_with("/" + fileName);
}

// A folder of entries, and what identifiers of entries in it begin with.
struct EntryFolder {
  std::string path;
  std::string prefix;
  std::size_t depth = 0;
};

// The entries of one data folder, those in fewer folders first, and by name among them. Takes the names that it looks
// at off `namesLeft`.
std::vector<EntryFile> entriesOfDataFolder(const std::string& dataFolder, std::size_t& namesLeft) {
  std::vector<EntryFile> files;
  std::deque<EntryFolder> folders{{pathInFolder(dataFolder, "applications"), ""}};
  for (; !folders.empty(); folders.pop_front()) {
    const EntryFolder& folder = folders.front();
    std::vector<std::string> names = entriesOfFolder(folder.path);
    std::ranges::sort(names);
    for (const std::string& name : names) {
      if (namesLeft == 0) {
        return files;
      }
      --namesLeft;
      std::string path = pathInFolder(folder.path, name);
      if (name.starts_with('.')) {
        continue;
      }
      if (name.ends_with(kEntrySuffix)) {
        files.push_back({folder.prefix + name, std::move(path)});
      } else if (folder.depth < kMaximumDepth && isFolder(path)) {
        folders.push_back({std::move(path), folder.prefix + name + "-", folder.depth + 1});
      }
    }
  }
  return files;
}

// Those of all data folders; one hides those of the same identifier in later folders.
std::vector<EntryFile> allEntries(const DesktopFolders& folders) {
  std::vector<EntryFile> files;
  std::set<std::string> identifiers;
  std::size_t namesLeft = kMaximumEntries;
  for (const std::string& folder : folders.dataFolders) {
    if (folder.starts_with('/')) {
      for (EntryFile& file : entriesOfDataFolder(folder, namesLeft)) {
        if (identifiers.insert(file.identifier).second) {
          files.push_back(std::move(file));
        }
      }
    }
  }
  return files;
}

// A letter, then letters, digits, '+', '-' and '.', then ':'.
bool beginsWithScheme(std::string_view address) {
  bool isFirst = true;
  for (const char32_t c : CodePoints(address)) {
    if (!isASCIILetter(c) && (isFirst || (!isASCIIDigit(c) && c != U'+' && c != U'-' && c != U'.'))) {
      return c == U':' && !isFirst;
    }
    isFirst = false;
  }
  return false;
}

bool isControl(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c <= 0x9F);
}

bool isAddress(std::string_view text) {
  if (text.size() > kMaximumAddressLength || !isValidUTF8(text) || !beginsWithScheme(text)) {
    return false;
  }
  for (const char32_t c : CodePoints(text)) {
    if (isBlank(c) || isControl(c)) {
      return false;
    }
  }
  return true;
}

// Starts a program that nobody waits for. setsid forks and ends at once, which leaves the program, in a session of its
// own, to the system to be waited for: a child of ours would stay a zombie until we looked, and a host of many threads
// had better not be forked. The program and its arguments are words that the shell hands on and never reads. It prints
// a line once they are on their way: a host that takes the ends of all children away takes exit statuses too.
bool startDetached(const std::string& program, const std::vector<std::string>& arguments) {
  std::vector<std::string> words{"-c", R"(command -p setsid -f "$0" "$@" </dev/null >/dev/null 2>&1 && echo)", program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  try {
    ChildProcess shell("/bin/sh", words);
    shell.waitForEnd(kLongestStart);
    std::string printed;
    static_cast<void>(readFromPipe(shell.output(), &printed));
    return !printed.empty();
  } catch (const LaunchError&) {
    return false;
  }
}

}  // namespace

DesktopFolders DesktopFolders::current() {
  const std::string home = homeFolderOfCurrentUser();
  DesktopFolders folders;
  folders.configFolders = partsOf(variable("XDG_CONFIG_DIRS", "/etc/xdg"));
  folders.configFolders.insert(folders.configFolders.begin(),
                               variable("XDG_CONFIG_HOME", pathInFolder(home, ".config")));
  folders.dataFolders = partsOf(variable("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
  folders.dataFolders.insert(folders.dataFolders.begin(),
                             variable("XDG_DATA_HOME", pathInFolder(home, ".local/share")));
  folders.desktops = partsOf(variable("XDG_CURRENT_DESKTOP", {}));
  folders.programFolders = partsOf(variable("PATH", "/usr/local/bin:/usr/bin:/bin"));
  return folders;
}

std::string editorOfScripts(const DesktopFolders& folders) {
  Desktop desktop(folders);
  for (const std::string_view type : kScriptTypes) {
    if (const Program* program = desktop.defaultProgram(type)) {
      return program->path;
    }
  }
  const Program* inTerminal = nullptr;
  for (const std::string_view type : kScriptTypes) {
    for (const Program* program : desktop.associatedPrograms(type)) {
      if (program->entry.isEditor && !program->entry.needsTerminal) {
        return program->path;
      }
      if (program->entry.isEditor && inTerminal == nullptr) {
        inTerminal = program;
      }
    }
  }
  return inTerminal != nullptr ? inTerminal->path : std::string();
}

std::string pathOfProgram(std::string_view name, const DesktopFolders& folders) {
  if (name.empty() || name.find('/') != std::string_view::npos) {
    return {};
  }
  const std::vector<EntryFile> files = allEntries(folders);
  for (const EntryFile& file : files) {
    if (!isCalled(file, name)) {
      continue;
    }
    if (const auto program = programOfEntry(readFile(file.path, kMaximumEntrySize), folders)) {
      return program->path;
    }
  }
  const bool hasCase = isValidUTF8(name);
  const std::string lowercasedName = lowercased(name);
  std::string similar;
  for (const EntryFile& file : files) {
    const auto program = programOfEntry(readFile(file.path, kMaximumEntrySize), folders);
    if (program && program->entry.name == name) {
      return program->path;
    }
    if (program && similar.empty() && hasCase && isValidUTF8(program->entry.name) &&
        lowercased(program->entry.name) == lowercasedName) {
      similar = program->path;
    }
  }
  return similar.empty() ? executable(std::string(name), folders) : similar;
}

bool openAddress(std::string_view address, const DesktopFolders& folders) {
  if (!isAddress(address)) {
    return false;
  }
  if (const std::string opener = executable("xdg-open", folders); !opener.empty()) {
    return startDetached(opener, {std::string(address)});
  }
  const std::string opener = executable("gio", folders);
  return !opener.empty() && startDetached(opener, {"open", std::string(address)});
}

}  // namespace SharedClasses::platform
