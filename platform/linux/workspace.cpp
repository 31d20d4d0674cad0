#include "platform/workspace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/desktop_entries.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/text_parts.h"
#include "platform/users.h"

namespace SharedClasses::platform {

namespace {

constexpr std::size_t kMaximumFileSize = std::size_t{1} << 20;  // bytes
constexpr std::size_t kMaximumEntries = 4096;                   // looked at in a folder that keeps no list of its types
constexpr std::size_t kMaximumFolders = 256;                    // of one variable
constexpr std::size_t kMaximumNameLength = 255;                 // bytes; longer ones name no file
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

  // Null where there is no such entry, or the program is not there.
  const Program* programNamed(std::string_view name) {
    auto known = mPrograms.find(name);
    if (known == mPrograms.end()) {
      known = mPrograms.emplace(name, readProgram(name)).first;
    }
    return known->second ? &*known->second : nullptr;
  }

  [[nodiscard]] std::optional<Program> readProgram(std::string_view name) const {
    const std::optional<std::string> file = fileOfEntry(name);
    std::optional<DesktopEntry> entry = file ? parseDesktopEntry(*file) : std::nullopt;
    if (!entry || (!entry->neededProgram.empty() && pathOfProgram(entry->neededProgram).empty())) {
      return std::nullopt;
    }
    std::string path = pathOfProgram(entry->program);
    return path.empty() ? std::nullopt : std::optional<Program>({std::move(path), *std::move(entry)});
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
      std::optional<std::string> file = readFile(pathInFolder(applications, name), kMaximumFileSize);
      for (std::size_t dash = name.find('-'); !file && dash != std::string_view::npos;
           dash = name.find('-', dash + 1)) {
        const std::string subfolder = pathInFolder(applications, name.substr(0, dash));
        file = readFile(pathInFolder(subfolder, name.substr(dash + 1)), kMaximumFileSize);
      }
      if (file) {
        return file;
      }
    }
    return std::nullopt;
  }

  // Empty where there is none.
  [[nodiscard]] std::string pathOfProgram(const std::string& program) const {
    if (program.find('\0') != std::string::npos) {
      return {};
    }
    if (program.find('/') != std::string::npos) {
      return program.starts_with('/') && isExecutableFile(program) ? program : std::string();
    }
    for (const std::string& folder : mFolders.programFolders) {
      std::string path = pathInFolder(folder, program);
      if (folder.starts_with('/') && isExecutableFile(path)) {
        return path;
      }
    }
    return {};
  }

  const DesktopFolders& mFolders;
  std::vector<TypeList> mLists;  // the most important one first
  std::map<std::string, std::optional<Program>, std::less<>> mPrograms;
};

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

}  // namespace SharedClasses::platform
