#include "wording/localized_strings.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/support/main_bundle.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::Utilities {

TEST(LocalizedStrings, TheTableComesFirstThenCommonThenTheEmptyText) {
  const tests::TemporaryFolder folder;
  folder.write("en.lproj/Localizable.strings",
               R"("keyBoth" = "default"; "keyItself" = "keyItself"; "keyOwn" = "keyOwn"; "keyEmpty" = "";
                  "keyDefault" = "default";)");
  folder.write("en.lproj/Common.strings",
               R"("keyBoth" = "c"; "keyCommon" = "common"; "keyOwn" = "common"; "keyEmpty" = "c";)");
  folder.write("en.lproj/Other.strings", R"("keyBoth" = "other"; "keyOther" = "other";)");
  folder.write("fr.lproj/Localizable.strings", "\"keyFrench\" = \"fr\";");
  const std::tuple<const char*, const char*, const char*, const char*> kRows[] = {
      {"common alone", "keyCommon", "Other", "common"},
      {"both, default", "keyBoth", "", "default"},
      {"both, other", "keyBoth", "Other", "other"},
      {"the default table is no fallback", "keyDefault", "Other", ""},
      {"another table is no fallback", "keyOther", "", ""},
      {"another language is no fallback", "keyFrench", "", ""},
      {"text that is its key", "keyItself", "", ""},
      {"text that is its key, better in common", "keyOwn", "", "common"},
      {"empty text is found", "keyEmpty", "", ""},
  };
  const platform::Bundle bundle(folder.path(), {"en"});
  const platform::Bundle french(folder.path(), {"fr"});
  const tests::MainBundle mainBundle(folder.path());
  EXPECT_EQ(getStringInBundle("keyFrench", &french), "fr");
  EXPECT_EQ(getStringInBundle("keyBoth", &french), "") << "the main bundle is no fallback";
  for (const auto& [name, key, table, expected] : kRows) {
    SCOPED_TRACE(name);
    EXPECT_EQ(getStringFromTable(key, table), expected);
    EXPECT_EQ(getStringFromTable(key, table, &bundle), expected);
    if (std::string_view(table).empty()) {
      EXPECT_EQ(getString(key), expected);
      EXPECT_EQ(getStringInBundle(key, nullptr), expected);
    }
  }
  EXPECT_EQ(getString(std::nullopt), std::nullopt);
  EXPECT_EQ(getStringInBundle(std::nullopt, &bundle), std::nullopt);
}

TEST(LocalizedStrings, OnlyEntriesThatEndInTheSuffixAreLocalizations) {
  const tests::TemporaryFolder folder;
  for (const char* name : {"English.lproj/x", "fr.lproj", "x.LPROJ", ".lproj", "y.lproj.old", "sub/de.lproj"}) {
    folder.write(name, "");
  }
  const std::vector<std::string> names = localizationsInFolder(folder.path());
  EXPECT_EQ(std::set(names.begin(), names.end()), (std::set<std::string>{".lproj", "English.lproj", "fr.lproj"}));
  EXPECT_TRUE(localizationsInFolder(folder.path() + "/fr.lproj").empty());
  EXPECT_TRUE(localizationsInFolder("").empty());
}

TEST(LocalizedStrings, SoundsLieInTheFolderThatTheTranslationNames) {
  const std::tuple<const char*, const char*, const char*, const char*, const char*> kRows[] = {
      {"not translated", "English.lproj/Localizable.strings", "", "English", "/English.lproj/Sounds"},
      {"language", "fr.lproj/Common.strings", "\"keyCurrentLanguage\" = \"ca\";", "fr", "/ca.lproj/Sounds"},
      {"folder", "fr.lproj/Common.strings", "\"keyCurrentLanguage\" = \"ca.lproj\";", "fr", "/ca.lproj/Sounds"},
      {"empty", "fr.lproj/Common.strings", "\"keyCurrentLanguage\" = \"\";", "fr", "/English.lproj/Sounds"},
      {"no localization", "Info.plist", "", "English", "/English.lproj/Sounds"},
  };
  for (const auto& [name, file, strings, localization, sounds] : kRows) {
    SCOPED_TRACE(name);
    const tests::TemporaryFolder folder;
    folder.write(file, strings);
    const tests::MainBundle mainBundle(folder.path(), {"fr"});
    EXPECT_EQ(nameOfLocalization(), localization);
    EXPECT_EQ(pathToAgentSoundFiles(), folder.path() + sounds);
  }
  const tests::MainBundle root("/", {});
  EXPECT_EQ(pathToAgentSoundFiles(), "/English.lproj/Sounds");
}

}  // namespace SharedClasses::Utilities
