#include "system/miscellany/folders.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include "platform/users.h"
#include "system/processes/simple_task.h"

namespace SharedClasses {
namespace {

using Utilities::pathToDirectoryInDomain;

// What the program prints that serves `user`, with HOME as given.
std::string printedFor(const char* user, const char* home) {
  ::setenv("HOME", home, 1);
  std::optional<std::string> printed;
  const SimpleTask task({.launchPath = PROGRAM_FOLDER "/marlow_home",
                         .arguments = std::vector<std::string>{"-user", user},
                         .outputText = &printed,
                         .maxSecondsToWait = 30});
  return printed.value_or("nothing");
}

// The C library's own look-ups are the reference.
TEST(Folders, TheHomeFolderIsThatOfTheUserWhomTheProgramServes) {
  const std::string ownFolder = ::getpwuid(::geteuid())->pw_dir;
  const std::string other = ::getpwnam("daemon")->pw_dir;
  EXPECT_EQ(printedFor("daemon", "/pinned"), other + " " + other + "/Library\n");
  EXPECT_EQ(printedFor("", "/pinned"), ownFolder + " " + ownFolder + "/Library\n")
      << "as others who serve the user see it";
  EXPECT_EQ(printedFor("nobody-of-that-name", "/pinned"), " \n") << "not the library of the root folder";
}

TEST(Folders, StandardFoldersOfUserAndSystem) {
  const std::string home = ::getpwuid(::geteuid())->pw_dir;
  ::setenv("XDG_DATA_DIRS", "relative::/shared:/more", 1);
  EXPECT_EQ(pathToDirectoryInDomain("library", "User"), home);
  EXPECT_EQ(pathToDirectoryInDomain("Library", "User"), home + "/Library");
  EXPECT_EQ(pathToDirectoryInDomain("Logs", "system"), home + "/Library/Logs");
  EXPECT_EQ(pathToDirectoryInDomain("Library", "System"), "/shared");
  EXPECT_EQ(pathToDirectoryInDomain("Application Support", "System"), "/shared/Application Support");
  EXPECT_EQ(pathToDirectoryInDomain("Documents", "System"), "/home");
  EXPECT_EQ(pathToDirectoryInDomain("Home", "System"), "/");
  ::setenv("XDG_DATA_DIRS", "relative", 1);
  EXPECT_EQ(pathToDirectoryInDomain("Logs", "System"), "");
  ::setenv("XDG_DATA_DIRS", "", 1);
  EXPECT_EQ(pathToDirectoryInDomain("Library", "System"), "/usr/local/share");
  ::unsetenv("XDG_DATA_DIRS");
}

TEST(Users, AreFoundByTheirWholeNameAlone) {
  const platform::User user = platform::userNamed("daemon").value_or(platform::User{});
  EXPECT_EQ(user.userID, ::getpwnam("daemon")->pw_uid);
  EXPECT_EQ(user.groupID, ::getpwnam("daemon")->pw_gid);
  for (const std::string& name : {std::string(), std::string("daemon\0x", 8), std::string(1 << 22, 'x')}) {
    EXPECT_FALSE(platform::userNamed(name)) << name.size();
  }
}

}  // namespace
}  // namespace SharedClasses
