#include "platform/bundle.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <thread>

#include "tests/support/captured_log.h"
#include "tests/support/main_bundle.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::platform {
namespace {

using tests::CapturedLog;
using tests::TemporaryFolder;
using Names = std::vector<std::string>;

// Sets the variables that name the user's languages and unsets the others of them; puts all back at its end.
class LanguageEnvironment {
 public:
  using Variables = std::map<std::string, std::string>;

  explicit LanguageEnvironment(const Variables& variables) {
    for (const char* name : kNames) {
      if (const char* value = getenv(name)) {
        mBefore[name] = value;
      }
    }
    set(variables);
  }
  LanguageEnvironment(const LanguageEnvironment&) = delete;
  LanguageEnvironment& operator=(const LanguageEnvironment&) = delete;
  ~LanguageEnvironment() { set(mBefore); }

 private:
  static constexpr const char* kNames[] = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};

  static void set(const Variables& variables) {
    for (const char* name : kNames) {
      const auto wanted = variables.find(name);
      wanted == variables.end() ? unsetenv(name) : setenv(name, wanted->second.c_str(), 1);
    }
  }

  Variables mBefore;
};

TEST(Bundle, TheUsersLanguagesAreThoseOfTheEnvironment) {
  const struct {
    const char* name;
    LanguageEnvironment::Variables variables;
    Names expected;
  } kRows[] = {
      {"LANG alone", {{"LANG", "de_AT.UTF-8"}}, {"de_AT.UTF-8"}},
      {"LC_MESSAGES hides LANG", {{"LC_MESSAGES", "fr"}, {"LANG", "de"}}, {"fr"}},
      {"LC_ALL hides both", {{"LC_ALL", "it"}, {"LC_MESSAGES", "fr"}, {"LANG", "de"}}, {"it"}},
      {"empty counts as not set", {{"LANGUAGE", ""}, {"LC_ALL", ""}, {"LC_MESSAGES", ""}, {"LANG", "de"}}, {"de"}},
      {"LANGUAGE comes before", {{"LANGUAGE", "pt_BR:pt"}, {"LANG", "de"}}, {"pt_BR", "pt", "de"}},
      {"stray colons", {{"LANGUAGE", "::sv::nb:"}, {"LC_ALL", "de"}}, {"sv", "nb", "de"}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const LanguageEnvironment environment(row.variables);
    EXPECT_EQ(Bundle::userLanguages(), row.expected);
  }
}

TEST(Bundle, TheBestHeldLocalizationIsChosen) {
  const struct {
    const char* name;
    Names held;
    Names languages;
    Names expected;
  } kRows[] = {
      {"the very one", {"de", "de_AT", "English"}, {"de_AT"}, {"de_AT", "English"}},
      {"without its country", {"de", "de_CH", "English"}, {"de_AT"}, {"de", "English"}},
      {"of another country", {"pt_BR", "English"}, {"pt"}, {"pt_BR", "English"}},
      {"with encoding and variant", {"de-AT", "English"}, {"de_AT.UTF-8@euro"}, {"de-AT", "English"}},
      {"in other case", {"zh-hant", "English"}, {"zh_Hant"}, {"zh-hant", "English"}},
      {"script without its country", {"zh-Hans", "zh-Hant", "English"}, {"zh_Hant_TW"}, {"zh-Hant", "English"}},
      {"neither", {"de"}, {"fr"}, {}},
      {"in the user's order, each once", {"de", "fr", "English"}, {"fr_CA", "xx", "de", "fr"}, {"fr", "de", "English"}},
      {"nothing that the user reads", {"de", "English", "fr"}, {"ja", "ko"}, {"English"}},
      {"English by its code", {"English", "de"}, {"en_GB", "de"}, {"English", "de"}},
      {"English of a country", {"de", "en_GB"}, {}, {"en_GB"}},
      {"the C locale speaks English", {"English", "de"}, {"C.UTF-8", "de"}, {"English", "de"}},
      {"longer name, other language", {"de", "English"}, {"dex", "d"}, {"English"}},
      {"names that say nothing", {"de", "English"}, {"", ".UTF-8", "@", "_", "-"}, {"English"}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const TemporaryFolder folder;
    for (const std::string& name : row.held) {
      folder.write(name + ".lproj/Localizable.strings", "\"name\" = \"" + name + "\";");
    }
    folder.write("de.LPROJ/x", "");
    folder.write(".lproj/x", "");
    folder.write("Info.plist", "");
    const Bundle bundle(folder.path() + "//", row.languages);
    EXPECT_EQ(bundle.resourceFolder(), folder.path());
    EXPECT_EQ(bundle.preferredLocalizations(), row.expected);
    EXPECT_EQ(bundle.find("name", "").value_or(""), row.expected.empty() ? "" : row.expected[0]);
  }
}

TEST(Bundle, TheEnvironmentChoosesTheLanguageOfANewBundle) {
  const TemporaryFolder folder;
  folder.write("English.lproj/Localizable.strings", "\"off\" = \"off\"; \"on\" = \"on\";");
  folder.write("de.lproj/Localizable.strings", "\"off\" = \"aus\";");
  folder.write("de.lproj/Own.strings", "\"off\" = \"abgeschaltet\";");
  folder.write("Info.plist", "<plist><dict><key>Count</key><integer>7</integer></dict></plist>");
  const LanguageEnvironment environment({{"LANGUAGE", "ja:de_AT"}, {"LANG", "fr_FR.UTF-8"}});
  const Bundle bundle(folder.path());
  EXPECT_EQ(bundle.find("off", ""), "aus");
  EXPECT_EQ(bundle.find("off", kDefaultTable), "aus");
  EXPECT_EQ(bundle.find("off", "Own"), "abgeschaltet");
  EXPECT_EQ(bundle.find("off", "own"), std::nullopt);
  EXPECT_EQ(bundle.find("off", "../English.lproj/Localizable"), std::nullopt);
  EXPECT_EQ(bundle.find("on", ""), std::nullopt) << "no text of another language";
  EXPECT_EQ(bundle.infoValue("Count"), Value(7));
}

TEST(Bundle, AFolderWithoutTextsMakesABundleWithoutTexts) {
  const TemporaryFolder folder;
  const std::string file = folder.write("file", "x");
  for (const std::string& path :
       {folder.path(), folder.path() + "/none", file, std::string(), std::string("a\0b", 3)}) {
    const Bundle bundle(path, {"en"});
    EXPECT_TRUE(bundle.preferredLocalizations().empty());
    EXPECT_EQ(bundle.find("keyOn", ""), std::nullopt);
    EXPECT_TRUE(bundle.infoValue("CFBundleVersion").isAbsent());
  }
}

TEST(Bundle, BrokenFilesAreLoggedOnceAndTheRestServesAllThreads) {
  const TemporaryFolder folder;
  const std::string table = folder.write("en.lproj/Localizable.strings", "\"a\" = \"1\";\n\"b\" = 2;\n\"c\" = \"3\";");
  std::string noise;
  for (int i = 0; i < 5000; ++i) {
    noise += "noise\n";
  }
  folder.write("en.lproj/Noise.strings", noise + "\"a\" = \"n\";");
  folder.write("en.lproj/Huge.strings", std::string((std::size_t{4} << 20) + 1, '\n'));
  folder.write("en.lproj/Folder.strings/x", "");
  const std::string info = folder.write("Info.plist", "<plist><dict>\n<key>");
  const CapturedLog log;
  const Bundle bundle(folder.path(), {"en"});
  EXPECT_TRUE(log.messages().empty());
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&bundle] {
      EXPECT_EQ(bundle.find("a", ""), "1");
      EXPECT_EQ(bundle.find("c", ""), "3");
      EXPECT_EQ(bundle.find("a", "Noise"), "n");
      EXPECT_TRUE(bundle.infoValue("a").isAbsent());
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_LT(log.messages().size(), 50U);  // some of the noise, and one each of the others
  for (const std::string& start :
       {table + ":2: ", folder.path() + "/en.lproj/Noise.strings: and ",
        info + ":2: ", folder.path() + "/en.lproj/Huge.strings: ", folder.path() + "/en.lproj/Folder.strings: "}) {
    EXPECT_EQ(std::ranges::count_if(log.messages(), [&](const std::string& line) { return line.starts_with(start); }),
              1)
        << start;
  }
}

// A sink that translates what it writes reads texts while the tables are being read.
TEST(Bundle, ASinkMayAskTheBundleThatLogs) {
  struct Sink : LogSink {
    void write(std::string_view) override { text = bundle->find("a", "").value_or(""); }
    const Bundle* bundle = nullptr;
    std::string text;
  };
  const TemporaryFolder folder;
  folder.write("en.lproj/Localizable.strings", "\"a\" = \"1\";\nbroken");
  const Bundle bundle(folder.path(), {"en"});
  const auto sink = std::make_shared<Sink>();
  sink->bundle = &bundle;
  const auto before = setLogSink(sink);
  EXPECT_EQ(bundle.find("a", ""), "1");
  setLogSink(before);
  EXPECT_EQ(sink->text, "1");
}

TEST(Bundle, TextsOfAnEarlierMainBundleStayReadable) {
  const TemporaryFolder folder;
  folder.write("one/en.lproj/Localizable.strings", "\"a\" = \"the text of the first\";");
  folder.write("two/en.lproj/Localizable.strings", "\"a\" = \"the text of the second\";");
  const auto languages = Names{"en"};
  Bundle::setMain(std::make_unique<const Bundle>(folder.path() + "/one", languages));
  const std::string_view early = *Bundle::main().find("a", "");
  std::thread reader([early] {
    for (int i = 0; i < 1000; ++i) {
      const std::string text(Bundle::main().find("a", "").value_or(""));
      ASSERT_TRUE(text == early || text == "the text of the second") << text;
    }
  });
  Bundle::setMain(std::make_unique<const Bundle>(folder.path() + "/two", languages));
  reader.join();
  Bundle::setMain(nullptr);
  EXPECT_EQ(Bundle::main().find("a", ""), "the text of the second");
  EXPECT_EQ(early, "the text of the first");
  tests::useShippedTexts();
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
