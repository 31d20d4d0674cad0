#include "platform/bundle.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <thread>

#include "platform/files.h"
#include "platform/log.h"
#include "tests/support/main_bundle.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::platform {
namespace {

using tests::TemporaryFolder;
using Names = std::vector<std::string>;

// Sets LANGUAGE, LC_ALL, LC_MESSAGES and LANG, or unsets them where null. Puts none back: no other test reads them.
void setLanguages(const std::array<const char*, 4>& values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    const char* name = std::array{"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}[i];
    values[i] == nullptr ? unsetenv(name) : setenv(name, values[i], 1);
  }
}

TEST(Bundle, TheUsersLanguagesAreThoseOfTheEnvironment) {
  setLanguages({nullptr, "it", "fr", "de"});
  EXPECT_EQ(Bundle::userLanguages(), (Names{"it"})) << "LC_ALL hides the two behind it";
  setLanguages({"", "", "fr", "de"});
  EXPECT_EQ(Bundle::userLanguages(), (Names{"fr"})) << "empty counts as not set";
  setLanguages({"::pt_BR::pt:", nullptr, nullptr, "de_AT.UTF-8"});
  EXPECT_EQ(Bundle::userLanguages(), (Names{"pt_BR", "pt", "de_AT.UTF-8"})) << "LANGUAGE comes before";
}

TEST(Bundle, TheBestHeldLocalizationIsChosen) {
  const std::tuple<const char*, Names, Names, Names> kRows[] = {
      {"without its country", {"de", "de_CH", "English"}, {"de_AT"}, {"de", "English"}},
      {"with a variant", {"de", "de-AT", "English"}, {"DE_AT@euro"}, {"de-AT", "English"}},
      {"script without its country", {"zh", "zh-Hans", "zh-Hant"}, {"zh_Hant_TW"}, {"zh-Hant"}},
      {"in the user's order, each once", {"de", "fr", "English"}, {"fr_CA", "xx", "de", "fr"}, {"fr", "de", "English"}},
      {"the C locale speaks English of a country", {"de", "en_GB"}, {"C.UTF-8", "de"}, {"en_GB", "de"}},
      {"names that say nothing", {"de", "English"}, {"", ".UTF-8", "@", "_", "-", "dex", "d"}, {"English"}},
  };
  for (const auto& [name, held, languages, expected] : kRows) {
    SCOPED_TRACE(name);
    const TemporaryFolder folder;
    for (const std::string& each : held) {
      folder.write(each + ".lproj/Localizable.strings", "\"name\" = \"" + each + "\";");
    }
    folder.write(".lproj/x", "");
    const Bundle bundle(folder.path() + "//", languages);
    EXPECT_EQ(bundle.resourceFolder(), folder.path());
    EXPECT_EQ(bundle.preferredLocalizations(), expected);
    EXPECT_EQ(bundle.find("name", ""), expected[0]);
  }
}

TEST(Bundle, TheEnvironmentChoosesTheLanguageOfANewBundle) {
  const TemporaryFolder folder;
  folder.write("English.lproj/Localizable.strings", "\"off\" = \"off\"; \"on\" = \"on\";");
  folder.write("de.lproj/Localizable.strings", "\"off\" = \"aus\";");
  folder.write("de.lproj/Own.strings", "\"off\" = \"abgeschaltet\";");
  folder.write("Info.plist", "<plist><dict><key>Count</key><integer>7</integer></dict></plist>");
  setLanguages({"ja:de_AT", nullptr, nullptr, "fr_FR.UTF-8"});
  const Bundle bundle(folder.path());
  EXPECT_EQ(bundle.find("off", ""), "aus");
  EXPECT_EQ(bundle.find("off", "Own"), "abgeschaltet");
  EXPECT_EQ(bundle.find("on", ""), std::nullopt) << "no text of another language";
  EXPECT_EQ(bundle.infoValue("Count"), Value(7));
}

TEST(Bundle, AFolderWithoutTextsMakesABundleWithoutTexts) {
  for (const std::string& path : Names{"/none", "/dev/null", "", std::string(1, '\0')}) {
    const Bundle bundle(path, {"en"});
    EXPECT_EQ(bundle.find("keyOn", ""), std::nullopt);
    EXPECT_TRUE(bundle.infoValue("CFBundleVersion").isAbsent());
  }
  EXPECT_EQ(pathInFolder("", "Info.plist"), "") << "not that of the root folder";
  EXPECT_EQ(pathInFolder(Bundle("//", {}).resourceFolder(), "Info.plist"), "/Info.plist");
}

// Keeps what is logged, and reads a text of the bundle that logs, as a sink that translates does.
struct AskingSink : LogSink {
  void write(std::string_view message) override {
    EXPECT_EQ(bundle->find("a", ""), "1");
    const std::lock_guard lock(mutex);
    messages.emplace_back(message);
  }
  const Bundle* bundle = nullptr;
  std::mutex mutex;
  Names messages;
};

TEST(Bundle, BrokenFilesAreLoggedOnceAndTheRestServesAllThreadsAndTheSink) {
  const TemporaryFolder folder;
  const std::string noise =
      folder.write("en.lproj/Noise.strings", "a\nb\nc\nd\ne\nf\ng\nh\ni\nj\nk\nl\nm\nn\no\np\nq\nr\ns\nt\nu\nv");
  const std::string table = folder.write("en.lproj/Localizable.strings", "\"a\" = \"1\";\n\"b\" = 2;\n\"c\" = \"3\";");
  const std::string huge = folder.write("en.lproj/Huge.strings", std::string((std::size_t{4} << 20) + 1, '\n'));
  const std::string info = folder.write("Info.plist", "<plist><dict>\n<key>");
  const std::string pipe = folder.path() + "/en.lproj/Pipe.strings";
  const std::string loop = folder.path() + "/en.lproj/Loop.strings";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  ASSERT_EQ(symlink(loop.c_str(), loop.c_str()), 0);
  const Bundle bundle(folder.path(), {"en"});
  const auto sink = std::make_shared<AskingSink>();
  sink->bundle = &bundle;
  const auto before = setLogSink(sink);
  const auto read = [&bundle] {
    EXPECT_EQ(bundle.find("c", ""), "3");
    EXPECT_TRUE(bundle.infoValue("a").isAbsent());
  };
  std::thread other(read);
  read();
  other.join();
  setLogSink(before);
  EXPECT_EQ(sink->messages.size(), 26U) << "20 of the noise, how many more, and one each of the others";
  for (const std::string& start :
       {noise + ": and 2 more", table + ":2: ", huge + ": ", pipe + ": ", loop + ": ", info + ":2: "}) {
    const auto begins = [&start](const std::string& line) { return line.starts_with(start); };
    EXPECT_EQ(std::ranges::count_if(sink->messages, begins), 1) << start;
  }
}

TEST(Bundle, TextsOfAnEarlierMainBundleStayReadable) {
  const TemporaryFolder folder;
  folder.write("one/en.lproj/Localizable.strings", "\"a\" = \"the text of the first\";");
  folder.write("two/en.lproj/Localizable.strings", "\"a\" = \"the text of the second\";");
  const tests::MainBundle one(folder.path() + "/one");
  const std::string_view early = *Bundle::main().find("a", "");
  std::thread reader([early] {
    for (int i = 0; i < 1000; ++i) {
      const std::string text(Bundle::main().find("a", "").value_or(""));
      ASSERT_TRUE(text == early || text == "the text of the second") << text;
    }
  });
  const tests::MainBundle two(folder.path() + "/two");
  reader.join();
  Bundle::setMain(nullptr);
  EXPECT_EQ(Bundle::main().find("a", ""), "the text of the second");
  EXPECT_EQ(early, "the text of the first");
}

// The child process starts this test anew, before any main bundle was asked for.
TEST(BundleDeathTest, TheMainBundleIsTheFolderThatTheEnvironmentNames) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto answer = [] {
    setenv("MARLOW_RESOURCES", SOURCE_FOLDER "/resources/", 1);
    _exit(Bundle::main().resourceFolder() == SOURCE_FOLDER "/resources" ? 0 : 1);
  };
  EXPECT_EXIT(answer(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace SharedClasses::platform
