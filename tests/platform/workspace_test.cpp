#include "platform/workspace.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "platform/desktop_entries.h"
#include "tests/support/fork.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::platform {
namespace {

using namespace std::string_literals;
using Names = std::vector<std::string>;
using Files = std::vector<std::pair<std::string, std::string>>;

TEST(Workspace, AnEntryNamesTheProgramThatItStarts) {
  // Last the program, empty where there is no entry.
  const std::tuple<const char*, std::string, std::string> kRows[] = {
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
      {"env with options", "Exec=/usr/bin/env --split-string=sh gedit", ""},
      {"quotes that are never closed", "Exec=\"gedit %U", ""},
      {"nothing but field codes", "Exec=%f %U", ""},
      {"deleted", "Exec=gedit\nHidden=true", ""},
      {"a NUL", "Exec=ge" + std::string(1, '\0') + "dit", ""},
      {"ends within an escape", "Exec=gedit\\", "gedit\\"},
  };
  for (const auto& [name, lines, program] : kRows) {
    SCOPED_TRACE(name);
    const std::optional<DesktopEntry> entry = parseDesktopEntry("[Desktop Entry]\nType=Application\n" + lines);
    EXPECT_EQ(entry && entry->opensItself ? entry->program : "", program);
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

// What `find` finds on a desktop with the programs writer, kate, vim, geany and python, none of which is the default.
std::string programFoundBy(const std::function<std::string(const DesktopFolders&)>& find, const Files& moreFiles) {
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
    text == kPipe ? folder.makePipe(name) : folder.write(name, text);
  }
  for (const char* program : {"bin/python", "bin/writer", "bin/vim", "bin/kate", "bin/geany", "bin/konsole"}) {
    folder.writeProgram(program);
  }
  const std::filesystem::path workingFolder = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());  // where relative paths would lead to something
  const std::string path = find({.configFolders = {in("home"), in("etc"), "relative"},
                                 .dataFolders = {in("own"), in("none"), in("sys")},
                                 .desktops = {"Ubuntu", "GNOME"},
                                 .programFolders = {"bin", in("none"), in("bin")}});
  std::filesystem::current_path(workingFolder);
  return path.starts_with(in("bin/")) ? path.substr(in("bin/").size()) : path;
}

std::string editorWith(const Files& files) {
  return programFoundBy(editorOfScripts, files);
}

TEST(Workspace, ScriptsAreEditedInWhatTheDesktopNamesElseInAnAssociatedEditor) {
  // Last the program, empty for none.
  const std::tuple<const char*, Files, std::string> kRows[] = {
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
  for (const auto& [name, files, program] : kRows) {
    EXPECT_EQ(editorWith(files), program) << name;
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

TEST(Workspace, AProgramIsFoundByTheFileOfItsEntryThenByTheNameOnShowThenInTheFolders) {
  const Files kFiles = {{"own/applications/k/kate.desktop", entry("kate", "", "Name=Second")},
                        {kSystemKate, entry("writer", "", "Name=k-kate")},
                        {"sys/applications/vim.desktop", entry("geany", "")},
                        {"sys/applications/w1.desktop", entry("writer", "", "Name=Text Editor\nName[de]=Editor")},
                        {"sys/applications/w2.desktop", entry("vim", "", "Name=text editor")},
                        {"sys/applications/w3.desktop", entry("gone", "", "Name=TEXT EDITOR")},
                        {"own/applications/dropped.desktop", "[Desktop Entry]\nHidden=true"},
                        {"sys/applications/dropped.desktop", entry("vim", "", "Name=Dropped")},
                        {"sys/applications/python.desktop", entry("python", "", "Name=Python")},
                        {"sys/applications/s1.desktop", entry("konsole", "", "Name=Terminal")},
                        {"sys/applications/s2.desktop", entry("konsole -e vim", "", "Name=In a Terminal")},
                        {"sys/applications/s3.desktop", entry("kate --class K", "", "Name=\xFE")},
                        {"sys/applications/s4.desktop", entry("vim " + std::string(65536, ' '), "", "Name=Long")},
                        {"sys/applications/1/2/3/4/5/6/7/8/deep.desktop", entry("vim", "")},
                        {"sys/applications/1/2/3/4/5/6/7/8/9/deeper.desktop", entry("vim", "")}};
  const std::pair<std::string, Names> kRows[] = {
      {"kate", {"kate", "kate.desktop", "k-kate", "Second", "\xFE"}},
      {"konsole", {"Terminal"}},
      {"geany", {"vim"}},
      {"writer", {"Text Editor", "TEXT EDITOR"}},
      {"vim", {"text editor", "deep"}},
      {"python", {"python"}},
      {"",
       {"", "Editor", "dropped", "Python", "deeper", "unusable", "/bin/ls", "../bin/vim", "vim\0"s, "In a Terminal",
        "\xFF", "Long"}},
  };
  for (const auto& [program, names] : kRows) {
    for (const std::string& name : names) {
      const auto find = [&name](const DesktopFolders& folders) { return pathOfProgram(name, folders); };
      EXPECT_EQ(programFoundBy(find, kFiles), program) << name;
    }
  }
}

// A folder with openers that run `script`.
struct Openers {
  explicit Openers(const Names& names, const std::string& script = "") {
    for (const std::string& name : names) {
      folder.writeProgram(name, script);
    }
  }
  [[nodiscard]] bool open(const std::string& address) const {
    return openAddress(address, {{}, {}, {}, {"relative", folder.path()}});
  }
  tests::TemporaryFolder folder;
};

TEST(Workspace, AddressesBeginWithASchemeAndHoldNothingThatCouldPartThem) {
  const Openers openers({"xdg-open"});
  for (const std::string& address : {"x:" + std::string(65534, 'y'), "http://\xC3\xA9"s, "aZ9+-.:"s}) {
    EXPECT_TRUE(openers.open(address)) << address;
  }
  for (const std::string& address :
       {"x:" + std::string(65535, 'y'), ""s, ":x"s, "3x:y"s, "-x:y"s, "/etc/passwd"s, "example.com"s, "\xC3\xA9:x"s,
        "x:a b"s, "x:\xE2\x80\xA8"s, "x:\n"s, "x:\0"s, "x:\xC2\x9B"s, "x:\xFF"s}) {
    EXPECT_FALSE(openers.open(address)) << address;
  }
  EXPECT_FALSE(Openers({"other"}).open("x:y"));
}

// Each tells through a pipe how it was started.
TEST(Workspace, AnOpenerRunsByItselfAndGetsTheAddressAsItIs) {
  const std::string kAddress = "x:$(id)`id`;'\"*?&|>y\\";
  const tests::TemporaryFolder folder;
  const std::string pipe = folder.makePipe("pipe");
  const std::string script =
      "exec >" + pipe + "\nprintf '<%s>' \"${0##*/}\" \"$@\"; cd /proc/$$/fd; readlink 0 2; ls 99\n" +
      "read -r id name state parent group session rest <../stat\n[ $session = $$ ] || echo $session" +
      "\n[ $parent != " + std::to_string(::getpid()) + " ] || echo $parent";
  ASSERT_EQ(::dup2(STDIN_FILENO, 99), 99);
  const pid_t child = tests::lastChild();
  for (const Names& names : {Names{"gio", "xdg-open"}, Names{"gio"}}) {
    const Openers openers(names, script);
    ASSERT_TRUE(openers.open(kAddress));
    EXPECT_EQ(tests::lastChild(), child) << "left as a child of ours";
    std::ifstream told(pipe);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(told), {}),
              (names.size() > 1 ? "<xdg-open><" : "<gio><open><") + kAddress + ">/dev/null\n/dev/null\n");
  }
  ::close(99);
}

TEST(Workspace, ThatAnOpenerWasStartedIsToldEvenWhereTheHostTakesTheEndsOfChildrenAway) {
  const auto open = [] { return ::signal(SIGCHLD, SIG_IGN) != SIG_ERR && Openers({"xdg-open"}).open("x:y"); };
  EXPECT_EQ(tests::statusInFork(open), 1);
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
