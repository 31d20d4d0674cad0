#include "platform/settings_store.h"

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/time.h>

#include <cstdlib>
#include <random>
#include <thread>

#include "platform/files.h"
#include "platform/linux/file_settings_store.h"
#include "platform/property_list.h"
#include "platform/run_loop.h"
#include "tests/support/captured_log.h"
#include "tests/support/fork.h"
#include "tests/support/hand_moved_clock.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::platform {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using Dictionary = Value::Dictionary;

constexpr const char* kOldDocument = "<plist><dict><key>old</key><integer>1</integer></dict></plist>";

struct SettingsStoreTest : testing::Test {
  // A store as another program would have it.
  std::shared_ptr<SettingsStore> open(SystemCalls::Probe probe = nullptr) const {
    return makeFileSettingsStore({.file = file, .clock = &clock, .probe = std::move(probe)});
  }
  // What a program that starts now finds.
  Dictionary saved() const { return open()->all(); }
  static void save(const std::shared_ptr<SettingsStore>& store, std::string_view key, const Value& value) {
    store->set(key, value);
    EXPECT_TRUE(store->synchronize());
  }
  void writeFile(std::string_view text) const { folder.write("marlow/preferences.plist", text); }
  static struct stat statusOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0);
    return status;
  }

  const tests::TemporaryFolder folder{tests::TemporaryFolder::memory()};
  const std::string settings = folder.path() + "/marlow";
  const std::string file = settings + "/preferences.plist";
  tests::HandMovedClock clock;
};

TEST(SettingsPlaces, FollowTheUsersAndTheMachinesConfigurationFolders) {
  // From the XDG Base Directory rules: unset or empty means the default, and paths that are not absolute are ignored.
  for (const std::optional<std::string>& configHome : {std::optional<std::string>(), {""}, {"c"}}) {
    EXPECT_EQ(userSettingsFile(configHome, "/home/u"), "/home/u/.config/marlow/preferences.plist");
    EXPECT_EQ(userSettingsFile(configHome, ""), "");
  }
  EXPECT_EQ(userSettingsFile("/c", "/home/u"), "/c/marlow/preferences.plist");
  EXPECT_EQ(machineSettingsFiles({}), std::vector<std::string>{"/etc/xdg/marlow/preferences.plist"});
  EXPECT_EQ(machineSettingsFiles(""), std::vector<std::string>{"/etc/xdg/marlow/preferences.plist"});
  EXPECT_EQ(machineSettingsFiles("a::/b:c:/d"),
            (std::vector<std::string>{"/b/marlow/preferences.plist", "/d/marlow/preferences.plist"}));
}

TEST_F(SettingsStoreTest, WhatWasSetStandsBeforeTheFileAndThatBeforeTheMachines) {
  writeFile(*propertyListAsXML(Dictionary{{"a", 2}, {"b", 2}}));
  const std::vector<std::string> machineFiles{
      folder.write("near", *propertyListAsXML(Dictionary{{"a", 3}, {"b", 3}, {"c", 3}})), folder.path() + "/missing",
      folder.write("far", *propertyListAsXML(Dictionary{{"c", 4}, {"d", 4}}))};
  const auto store = makeFileSettingsStore({.file = file, .machineFiles = machineFiles, .clock = &clock});
  store->set("a", 1);
  EXPECT_EQ(store->all(), (Dictionary{{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}}));
  store->set("b", {});
  EXPECT_EQ(store->value("b"), Value(3)) << "the machine's shows at once, as it will after the save";
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(saved(), (Dictionary{{"a", 1}}));
}

TEST_F(SettingsStoreTest, AnotherProgramsChangeIsSeenAfterATenthOfASecondAndReadsBeforeAskNobody) {
  int calls = 0;
  const auto store = open([&calls](std::string_view) { return ++calls, 0; });
  save(store, "k", 1);
  // All of the same length and mostly within one tick of the file's clock: by another program, by this one, in place.
  for (int level = 2; level <= 9; ++level) {
    const bool isOwn = level % 3 == 0;
    if (level % 3 == 1) {
      writeFile(*propertyListAsXML(Dictionary{{"k", level}}));
    } else {
      save(isOwn ? store : open(), "k", level);
    }
    calls = 0;
    EXPECT_EQ(store->value("k"), Value(isOwn ? level : level - 1));
    EXPECT_EQ(calls, 0);
    clock.move(100ms);
    EXPECT_EQ(store->value("k"), Value(level));
  }
  fs::remove(file);
  clock.move(100ms);
  EXPECT_TRUE(store->all().empty());
}

TEST_F(SettingsStoreTest, WhatNoFileCanHoldCountsAsAbsentIsLoggedAndHindersNothing) {
  Value deep = Value::List{};
  for (std::size_t level = 1; level < kMaximumPropertyListDepth; ++level) {
    deep = Value::List{deep};
  }
  const std::tuple<const char*, std::string, Value> kRows[] = {
      {"a color", "k", Color{1, 0, 0, 1}},
      {"too deep, but only within the file", "k", deep},
      {"a control character in the key", std::string("k\0", 2), {}},
  };
  for (const auto& [name, key, value] : kRows) {
    SCOPED_TRACE(name);
    const tests::CapturedLog captured;
    const auto store = open();
    store->set(key, 1);
    store->set(key, value);
    save(store, "date", Date{1.75});
    EXPECT_EQ(store->all(), (Dictionary{{"date", Date{1.0}}})) << "files hold whole seconds";
    EXPECT_EQ(saved(), store->all());
    EXPECT_FALSE(captured.messages().empty());
  }
}

TEST_F(SettingsStoreTest, NoProcessOrThreadLosesWhatItOrAnotherHasSetAndTheEndsOfThreadsAndStoresSave) {
  const auto setKeys = [](SettingsStore& store, int who) {
    bool isRight = true;
    for (int i = 0; i < 200; ++i) {
      const std::string key = std::to_string(1000 * who + i);
      store.set(key, i);
      isRight = store.value(key) == Value(i) && (i % 10 != who || store.synchronize()) && isRight;
    }
    return isRight;
  };
  for (const int processes : {2, 8}) {
    fs::remove_all(settings);
    std::vector<pid_t> children;
    for (int who = 0; who < processes; ++who) {
      children.push_back(tests::startInFork([&] { return setKeys(*open(), who) ? 0 : 1; }));
    }
    const auto store = open();
    std::vector<std::jthread> threads;
    for (int who = processes; who < processes + 3; ++who) {
      threads.emplace_back([&, who] { EXPECT_TRUE(setKeys(*store, who)); });
    }
    threads.clear();
    for (const pid_t child : children) {
      EXPECT_EQ(tests::statusOfChild(child), 0);
    }
    EXPECT_EQ(saved().size(), static_cast<std::size_t>(processes + 3) * 200);
  }
}

TEST_F(SettingsStoreTest, AnyFailingCallOfASaveIsReportedAndLosesNothing) {
  for (const std::string before : {"", kOldDocument, "<dict>"}) {  // no file, a good one, a damaged one
    for (const int error : {EIO, ENOSPC, EACCES}) {
      for (const int failures : {1, 1000}) {  // in a row: once nothing works any more, the disk is left as by a kill
        bool hasFailed = true;
        for (int first = 1; hasFailed && !HasFailure(); ++first) {
          fs::remove_all(settings);
          if (!before.empty()) {
            writeFile(before);
          }
          const tests::CapturedLog captured;
          int calls = 0;
          int last = first + failures - 1;
          std::string_view failed;
          bool isReplaced = false;
          const auto store = open([&](std::string_view call) {
            isReplaced = isReplaced || call == "renameat";
            failed = ++calls == first ? call : failed;
            return calls >= first && calls <= last ? error : 0;
          });
          store->set("a", 1);
          store->set("b", 1);
          const bool isSaved = store->synchronize();
          hasFailed = calls >= first;
          SCOPED_TRACE(testing::Message() << before << ": " << failures << " x " << error << " from call " << first);
          const Dictionary found = saved();
          EXPECT_TRUE(isSaved ? found.contains("b") && failed != "fsync" : !captured.messages().empty());
          EXPECT_EQ(found.count("a"), found.count("b"));
          EXPECT_EQ(found.contains("old"), before == kOldDocument);
          save(open(), "c", 1);
          EXPECT_EQ(entriesOfFolder(settings).size(), before == "<dict>" ? 2U : 1U);
          last = 0;  // from here on all works
          isReplaced = false;
          EXPECT_TRUE(store->synchronize());
          EXPECT_TRUE(failed != "fsync" || isReplaced) << "what was not synced has to be written again";
          EXPECT_EQ(saved().size(), before == kOldDocument ? 4U : 3U);
        }
      }
    }
  }
}

TEST_F(SettingsStoreTest, AKillAtAnyTimeLeavesTheOldFileOrTheNew) {
  const char* const kills = std::getenv("MARLOW_TEST_KILLS");
  std::minstd_rand random;  // as it starts out: the same in each run
  std::int64_t reached = 0;
  for (int kill = kills != nullptr ? std::atoi(kills) : 60; kill > 0 && !HasFailure(); --kill) {
    const itimerval lifetime{{}, {0, 1 + static_cast<suseconds_t>(random() % 3000)}};
    const int status = tests::statusInFork([&]() -> int {
      const auto store = open();
      ::setitimer(ITIMER_REAL, &lifetime, nullptr);  // its signal, which nothing catches, kills the process
      for (std::int64_t level = reached + 1; true; ++level) {
        store->set("a", level);
        store->set("b", level);
        store->synchronize();
      }
    });
    EXPECT_EQ(status, 128 + SIGALRM);
    const auto after = open();
    EXPECT_EQ(after->value("a"), after->value("b"));
    EXPECT_GE(after->value("a").integerValue().value_or(0), reached);
    reached = after->value("a").integerValue().value_or(0);
    save(after, "c", kill);
    EXPECT_EQ(entriesOfFolder(settings).size(), 1U);
  }
  EXPECT_GT(reached, 0);
}

// Let go of after the library's exit handlers have run, which are younger.
std::shared_ptr<void> sVeryEnd;

TEST_F(SettingsStoreTest, EndsOfProgramsSaveButNotThoseOfAForkedChild) {
  for (const std::string end : {"exit", "very end", "child"}) {
    fs::remove_all(settings);
    const int status = tests::statusInFork([&]() -> int {
      const auto store = open();
      if (end == "very end") {
        sVeryEnd = std::shared_ptr<void>(nullptr, [store](void*) { store->set("a", 1); });
        std::exit(0);
      }
      store->set("a", 1);
      if (end == "child") {
        ::_exit(tests::statusInFork([]() -> int { std::exit(0); }));
      }
      std::exit(0);
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(saved().count("a"), end == "child" ? 0U : 1U) << end;
  }
}

TEST_F(SettingsStoreTest, AFileThatMayHoldSettingsIsNeverOverwrittenAndDamagedOnesAreAllKept) {
  // The call that fails, how the file is made, and what is behind its name afterwards.
  const std::tuple<const char*, std::string_view, std::function<void()>, std::string> kRows[] = {
      {"no rights", "open", [this] { writeFile(kOldDocument); }, ""},
      {"a broken disk", "read", [this] { writeFile(kOldDocument); }, ""},
      {"too long", "", [this] { writeFile(std::string(kMaximumPropertyListSize + 1, ' ')); }, ""},
      {"a pipe", "", [this] { ::mkfifo(file.c_str(), 0600); }, ""},
      {"links in a circle", "", [this] { fs::create_symlink(file, file); }, ""},
      {"an empty file", "", [this] { writeFile(""); }, ".damaged-1"},
      {"no dictionary, and no second names for files", "linkat", [this] { writeFile("<array/>"); }, ".damaged-2"},
  };
  for (const auto& [name, failingCall, make, keptAs] : kRows) {
    SCOPED_TRACE(name);
    const tests::CapturedLog captured;
    std::string_view failing;
    const auto store = open([&failing](std::string_view call) { return call == failing ? EPERM : 0; });
    fs::remove(file);
    save(store, "a", 1);
    fs::remove(file);
    make();
    failing = failingCall;
    const ino_t made = statusOf(file).st_ino;
    clock.move(1s);
    store->set("b", 1);
    EXPECT_EQ(store->synchronize(), !keptAs.empty());
    EXPECT_EQ(store->synchronize(), !keptAs.empty());
    EXPECT_EQ(store->all(), (Dictionary{{"a", 1}, {"b", 1}})) << "what was read before stays";
    EXPECT_EQ(statusOf(file + keptAs).st_ino, made);
    EXPECT_EQ(captured.messages().size(), 2U) << "one for the reading, one for the saving";
  }
  EXPECT_EQ(saved(), (Dictionary{{"a", 1}, {"b", 1}}));
}

TEST_F(SettingsStoreTest, ReplacingKeepsLinkRightsAndAllThatANewerVersionHasSaved) {
  Dictionary values{{"x", Value::Data{1, 2}}, {"y", Dictionary{{"z", Value::List{true, 1.0, 1}}}}};
  const std::string target = folder.write("target", *propertyListAsXML(values));
  fs::permissions(target, fs::perms(0640));
  fs::create_directories(settings);
  fs::create_symlink("../target", file);
  const ino_t before = statusOf(target).st_ino;
  const auto store = open();
  save(store, "x", values.at("x"));
  save(store, "none", {});
  EXPECT_EQ(statusOf(target).st_ino, before) << "written without need";
  save(store, "a", 1);
  values.emplace("a", 1);
  EXPECT_EQ(saved(), values);
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_EQ(statusOf(target).st_mode, S_IFREG | 0640U);
  fs::remove_all(settings);
  save(store, "b", 1);
  EXPECT_EQ(statusOf(file).st_mode, S_IFREG | 0600U);
  EXPECT_EQ(statusOf(settings).st_mode, S_IFDIR | 0700U);
}

TEST_F(SettingsStoreTest, ALockThatIsNotGivenBackHoldsUpNeitherReadsNorTheLogAndTheLoopSavesInTheEnd) {
  struct Sink : LogSink {
    void write(std::string_view) override { reads += store->value("a") == Value(1) ? 1 : 0; }
    std::shared_ptr<SettingsStore> store;
    int reads = 0;
  };
  const auto sink = std::make_shared<Sink>();
  sink->store = open([&sink](std::string_view call) {
    // Would wait for itself if a save kept reads out.
    return call == "flock" && sink->store->value("a") != Value(1) ? EIO : 0;
  });
  const auto previous = setLogSink(sink);
  fs::create_directories(settings);
  const int held = ::open(settings.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);
  sink->store->set("a", 1);
  EXPECT_FALSE(sink->store->synchronize());
  EXPECT_EQ(sink->reads, 1);
  setLogSink(previous);
  EXPECT_TRUE(RunLoop::current().runOnce(0s));
  ::close(held);
  while (saved().empty() && RunLoop::current().runOnce(10s)) {
  }
  EXPECT_EQ(saved(), sink->store->all());
}

TEST_F(SettingsStoreTest, WhatHappensInTheMiddleOfASaveIsNotLost) {
  writeFile("<dict/>");
  pid_t child = -1;
  std::shared_ptr<SettingsStore> store;
  store = open([&](std::string_view call) {
    if (call == "fsync" && child < 0) {
      child = tests::startInFork(::pause);  // must not keep the lock
      fs::rename(folder.write("edited", kOldDocument), file);
    } else if (call == "renameat") {
      store->set("late", 1);
    }
    return 0;
  });
  save(store, "a", 1);
  EXPECT_EQ(saved(), (Dictionary{{"a", 1}, {"old", 1}}));
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(saved().size(), 3U);
  ::kill(child, SIGKILL);
}

TEST_F(SettingsStoreTest, AnotherUsersStoreHasTheRightsOfThatUserAndNoMoreAndThatOfNoUserIsInMemory) {
  const auto ofNobody = SettingsStore::ofUser("no such user");
  ofNobody->set("a", 1);
  EXPECT_FALSE(ofNobody->synchronize());
  EXPECT_EQ(ofNobody->value("a"), Value(1));
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only the administrator may act for others";
  }
  const User user{.userID = 65534, .groupID = 65534, .loginName = "nobody", .homeFolder = folder.path()};
  const int groups = ::getgroups(0, nullptr);
  ASSERT_EQ(::chown(folder.path().c_str(), user.userID, user.groupID), 0);
  const auto store = makeFileSettingsStore({.file = file, .user = user, .clock = &clock});
  save(store, "a", 1);
  EXPECT_EQ(statusOf(file).st_uid, user.userID);
  EXPECT_EQ(statusOf(file).st_gid, user.groupID);
  // The user leads the stores to a file of the administrator, whose own follows no other user's link.
  const tests::TemporaryFolder ofAdministrator;
  const std::string secret = ofAdministrator.write("secret", kOldDocument);
  fs::remove(file);
  fs::create_symlink(secret, file);
  ASSERT_EQ(::lchown(file.c_str(), user.userID, user.groupID), 0);
  clock.move(1s);
  EXPECT_TRUE(store->value("old").isAbsent());
  for (const auto& each : {store, open()}) {
    const tests::CapturedLog captured;
    each->set("a", 2);
    EXPECT_FALSE(each->synchronize());
    EXPECT_EQ(readFile(secret, 1000), kOldDocument) << "changed, or not to be read with the rights that are left";
  }
  EXPECT_EQ(::getgroups(0, nullptr), groups);
}

}  // namespace
}  // namespace SharedClasses::platform
