#include "platform/workspace.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <utility>

#include "platform/desktop_entries.h"
#include "tests/support/fork.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::platform {
namespace {

using Names = std::vector<std::string>;
using Files = std::vector<std::pair<std::string, std::string>>;

TEST(Workspace, AnEntryNamesTheProgramThatItStarts) {
  const struct {
    const char* name;
    std::string lines;
    std::string program;  // empty: no entry
  } kRows[] = {
      {"with field codes", "Exec=gedit %U", "gedit"},
      {"blanks around the equals sign, CRLF", "Exec =  gedit\r", "gedit"},
      {"quoted, with escapes of both levels", R"(Exec="/opt/my \\"best\\" \\$ed/x" %f)", R"(/opt/my "best" $ed/x)"},
      {"a percent sign", "Exec=a%%b%fc", "a%bc"},
      {"behind env, a word behind the file", "Exec=env A=b C=%d /snap/bin/code --wait %F c", "/snap/bin/code"},
      {"the last, no comment, of no language and no other group",
       "Exec=e\nExec=a\n#Exec=b\nExec[de]=c\n[Desktop Action new]\nExec=d", "a"},
      {"a shell, which would execute the script", "Exec=/bin/sh -c \"exec emacs \\\"$@\\\"\" sh %F", ""},
      {"an interpreter of a version, behind env", "Exec=env A=b /usr/bin/python3.11 %F", ""},
      {"a word of its own before the file", "Exec=unknown -x /usr/lib/idle.py %F", ""},
      {"env with options", "Exec=/usr/bin/env -i gedit", ""},
      {"quotes that are never closed", "Exec=\"gedit %U", ""},
      {"nothing but field codes", "Exec=%f %U", ""},
      {"deleted", "Exec=gedit\nHidden=true", ""},
      {"a NUL", "Exec=ge" + std::string(1, '\0') + "dit", ""},
      {"ends within an escape", "Exec=gedit\\", "gedit\\"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const std::optional<DesktopEntry> entry = parseDesktopEntry("[Desktop Entry]\nType=Application\n" + row.lines);
    EXPECT_EQ(entry ? entry->program : "", row.program);
  }
}

const std::string kPipe = "a pipe that nobody writes";
const std::string kPlainIs = "[Default Applications]\ntext/plain=";
const std::string kPlainIsNot = "[Removed Associations]\ntext/plain=";
const std::string kWriter = "b-writer.desktop;";
const std::string kVim = "c-vim.desktop;";
const std::string kHomeList = "home/mimeapps.list";
const std::string kSystemList = "sys/applications/mimeapps.list";
const std::string kSystemCache = "sys/applications/mimeinfo.cache";
const std::string kSystemKate = "sys/applications/kate.desktop";
const std::string kOwnKate = "own/applications/kate.desktop";

std::string entry(const std::string& program, const std::string& types, const std::string& more = "Categories=IDE") {
  return "[Desktop Entry]\nType=Application\nExec=" + program + " %F\nMimeType=" + types + "\n" + more + "\n";
}

// On a desktop with the programs writer, kate, vim, geany and python, of which nothing is the default.
std::string editorWith(const Files& moreFiles) {
  const tests::TemporaryFolder folder;
  const auto in = [&](const char* name) { return folder.path() + "/" + name; };
  Files files = {
      {"sys/applications/a-python.desktop", entry("python", "text/x-python;", "Categories=Development;")},
      {"sys/applications/b-writer.desktop", entry("writer", "text/plain;", "Categories=Office;WordProcessor;")},
      {"sys/applications/c-vim.desktop", entry("vim", "text/plain;text/x-python;", "Categories=IDE;\nTerminal=true")},
      {kSystemKate, entry("kate", "text/x-c;text/plain", "Categories=Utility;TextEditor;")},
      {"sys/applications/sub/geany.desktop", entry("geany", "text/x-c")},
      {"bin/unusable", ""},
  };
  files.insert(files.end(), moreFiles.begin(), moreFiles.end());
  for (const auto& [name, text] : files) {
    const std::string path = folder.write(name, text);
    EXPECT_TRUE(text != kPipe || (std::filesystem::remove(path) && ::mkfifo(path.c_str(), 0600) == 0));
  }
  for (const char* program : {"bin/python", "bin/writer", "bin/vim", "bin/kate", "bin/geany"}) {
    std::filesystem::permissions(folder.write(program, ""), std::filesystem::perms::owner_all);
  }
  const std::filesystem::path workingFolder = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());  // where relative paths would lead to something
  const std::string path = editorOfScripts({.configFolders = {in("home"), in("etc"), "relative"},
                                            .dataFolders = {in("own"), in("none"), in("sys")},
                                            .desktops = {"Ubuntu", "GNOME"},
                                            .programFolders = {"bin", in("none"), in("bin")}});
  std::filesystem::current_path(workingFolder);
  return path.starts_with(in("bin/")) ? path.substr(in("bin/").size()) : path;
}

TEST(Workspace, ScriptsAreEditedInWhatTheDesktopNamesElseInAnAssociatedEditor) {
  const struct {
    const char* name;
    Files files;
    std::string program;  // empty: none
  } kRows[] = {
      {"no default: not the interpreter, not the word processor, not in a terminal", {}, "kate"},
      {"a terminal rather than nothing", {{kHomeList, kPlainIsNot + "kate.desktop"}}, "vim"},
      {"nothing", {{kHomeList, kPlainIsNot + "kate.desktop;" + kVim + "\ntext/x-python=" + kVim}}, ""},
      {"scripts before text", {{kHomeList, kPlainIs + kWriter + "\napplication/x-shellscript=" + kVim}}, "vim"},
      {"not there", {{kHomeList, kPlainIs + "gone.desktop;/;../x.desktop;" + kWriter}}, "writer"},
      {"removed by the user", {{kHomeList, kPlainIsNot + kWriter}, {kSystemList, kPlainIs + kWriter + kVim}}, "vim"},
      {"added, in a folder", {{kHomeList, "[Added Associations]\ntext/plain=sub-geany.desktop"}}, "geany"},
      {"the user's entry hides the machine's", {{kOwnKate, entry("geany", "text/plain")}}, "geany"},
      {"the user's entry opens other things", {{kOwnKate, entry("geany", "text/x-c")}}, "vim"},
      {"the user deleted the entry", {{kOwnKate, "[Desktop Entry]\nHidden=true"}}, "vim"},
      {"a stale cache", {{kSystemCache, "[MIME Cache]\ntext/plain=" + kWriter + "sub-geany.desktop;" + kVim}}, "vim"},
      {"TryExec is not there", {{kSystemKate, entry("kate", "text/plain", "Categories=IDE\nTryExec=gone")}}, "vim"},
      {"not executable", {{kSystemKate, entry("unusable", "text/plain")}}, "vim"},
      {"a path that is not whole", {{kSystemKate, entry("bin/kate", "text/plain")}}, "vim"},
      {"a whole path", {{kSystemKate, entry("/bin/ls", "text/plain")}}, "/bin/ls"},
      {"pipes for files", {{kHomeList, kPipe}, {kOwnKate, kPipe}, {kSystemCache, kPipe}}, "kate"},
      {"a list beyond the limit", {{kHomeList, std::string(1 << 20, '\n') + kPlainIs + kVim}}, "kate"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(editorWith(row.files), row.program);
  }
}

TEST(Workspace, ListsOfTheUserStandBeforeTheMachinesAndThoseOfTheFirstDesktopBeforeOthers) {
  Files files;
  for (const std::string list :
       {"sys/applications/mimeapps.list", "own/applications/mimeapps.list", "own/applications/ubuntu-mimeapps.list",
        "etc/mimeapps.list", "etc/ubuntu-mimeapps.list", "home/mimeapps.list", "home/gnome-mimeapps.list",
        "home/ubuntu-mimeapps.list"}) {  // the weakest first
    const bool isEven = files.size() % 2 == 0;
    files.emplace_back(list, kPlainIs + (isEven ? kWriter : kVim));
    EXPECT_EQ(editorWith(files), isEven ? "writer" : "vim") << list;
  }
}

TEST(Workspace, TheFoldersAreTheUsersBeforeTheMachines) {
  EXPECT_EQ(tests::statusInFork([] {
              std::string variables[] = {"HOME=/h",        "XDG_CONFIG_DIRS=/b::/c:",          "XDG_DATA_HOME=/d",
                                         "XDG_DATA_DIRS=", "XDG_CURRENT_DESKTOP=ubuntu:GNOME", "PATH=/g"};
              ::clearenv();
              for (std::string& variable : variables) {
                ::putenv(variable.data());
              }
              const DesktopFolders folders = DesktopFolders::current();
              return folders.configFolders == Names{"/h/.config", "/b", "/c"} &&
                     folders.dataFolders == Names{"/d", "/usr/local/share", "/usr/share"} &&
                     folders.desktops == Names{"ubuntu", "GNOME"} && folders.programFolders == Names{"/g"};
            }),
            1);
}

}  // namespace
}  // namespace SharedClasses::platform
