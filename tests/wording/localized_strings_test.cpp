#include "wording/localized_strings.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/main_bundle.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::Utilities {
namespace {

using tests::MainBundle;
using tests::TemporaryFolder;

TEST(LocalizedStrings, TheTableComesFirstThenCommonThenTheEmptyText) {
  const TemporaryFolder folder;
  folder.write("en.lproj/Localizable.strings",
               R"("keyBoth" = "default"; "keyDefault" = "default"; "keyItself" = "keyItself"; "keyOwn" = "keyOwn";
                  "keyEmpty" = ""; "" = "text of the empty key";)");
  folder.write("en.lproj/Common.strings", R"("keyBoth" = "common"; "keyCommon" = "common"; "keyOwn" = "common";
                                             "keySelf" = "keySelf"; "keyEmpty" = "common";)");
  folder.write("en.lproj/Other.strings", R"("keyBoth" = "other"; "keyOther" = "other";)");
  folder.write("fr.lproj/Localizable.strings", "\"keyFrench\" = \"fr\";");
  const struct {
    const char* name;
    const char* key;
    const char* table;
    const char* expected;
  } kRows[] = {
      {"default table", "keyDefault", "", "default"},
      {"common alone", "keyCommon", "", "common"},
      {"common from another table", "keyCommon", "Other", "common"},
      {"both, default", "keyBoth", "", "default"},
      {"both, other", "keyBoth", "Other", "other"},
      {"the default table is no fallback", "keyDefault", "Other", ""},
      {"another table is no fallback", "keyOther", "", ""},
      {"another language is no fallback", "keyFrench", "", ""},
      {"neither", "keyNone", "", ""},
      {"text that is its key", "keyItself", "", ""},
      {"text that is its key, better in common", "keyOwn", "", "common"},
      {"text that is its key in common", "keySelf", "", ""},
      {"empty text is found", "keyEmpty", "", ""},
      {"empty key", "", "", "text of the empty key"},
  };
  const platform::Bundle bundle(folder.path(), {"en"});
  const platform::Bundle french(folder.path(), {"fr"});
  const MainBundle mainBundle(folder.path());
  EXPECT_EQ(getStringInBundle("keyFrench", &french), "fr");
  EXPECT_EQ(getStringInBundle("keyDefault", &french), "") << "the main bundle is no fallback";
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(getStringFromTable(row.key, row.table), row.expected);
    EXPECT_EQ(getStringFromTable(row.key, row.table, &bundle), row.expected);
    EXPECT_EQ(viewOfString(row.key, row.table), row.expected);
    if (std::string_view(row.table).empty()) {
      EXPECT_EQ(getString(row.key), row.expected);
      EXPECT_EQ(getStringInBundle(row.key, &bundle), row.expected);
      EXPECT_EQ(getStringInBundle(row.key, nullptr), row.expected);
    }
  }
}

TEST(LocalizedStrings, AnAbsentKeyGivesAnAbsentText) {
  const platform::Bundle bundle("/nonexistent", {"en"});
  EXPECT_EQ(getString(std::nullopt), std::nullopt);
  EXPECT_EQ(getStringFromTable(std::nullopt, "Other"), std::nullopt);
  EXPECT_EQ(getStringInBundle(std::nullopt, &bundle), std::nullopt);
  EXPECT_EQ(getStringInBundle("keyOn", &bundle), "");
}

TEST(LocalizedStrings, OnlyEntriesThatEndInTheSuffixAreLocalizations) {
  const TemporaryFolder folder;
  for (const char* name : {"English.lproj/x", "fr.lproj", "Info.plist", "x.LPROJ", ".lproj", "y.lproj.old", "lproj"}) {
    folder.write(name, "");
  }
  folder.write("sub/de.lproj", "");
  std::vector<std::string> names = localizationsInFolder(folder.path());
  std::ranges::sort(names);
  EXPECT_EQ(names, (std::vector<std::string>{".lproj", "English.lproj", "fr.lproj"}));
  EXPECT_TRUE(localizationsInFolder(folder.path() + "/none").empty());
  EXPECT_TRUE(localizationsInFolder(folder.path() + "/fr.lproj").empty());
  EXPECT_TRUE(localizationsInFolder("").empty());
}

TEST(LocalizedStrings, SoundsLieInTheFolderThatTheTranslationNames) {
  const struct {
    const char* name;
    const char* file;
    const char* strings;
    const char* localization;
    const char* sounds;
  } kRows[] = {
      {"not translated", "English.lproj/Localizable.strings", "", "English", "/English.lproj/Sounds"},
      {"a language", "fr.lproj/Localizable.strings", "\"keyCurrentLanguage\" = \"fr\";", "fr", "/fr.lproj/Sounds"},
      {"a folder", "fr.lproj/Localizable.strings", "\"keyCurrentLanguage\" = \"fr.lproj\";", "fr", "/fr.lproj/Sounds"},
      {"other than its folder", "fr.lproj/Common.strings", "\"keyCurrentLanguage\" = \"ca\";", "fr",
       "/ca.lproj/Sounds"},
      {"empty", "fr.lproj/Common.strings", "\"keyCurrentLanguage\" = \"\";", "fr", "/English.lproj/Sounds"},
      {"no localization", "Info.plist", "", "English", "/English.lproj/Sounds"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    const TemporaryFolder folder;
    folder.write(row.file, row.strings);
    const MainBundle mainBundle(folder.path(), {"fr"});
    EXPECT_EQ(nameOfLocalization(), row.localization);
    EXPECT_EQ(pathToAgentSoundFiles(), folder.path() + row.sounds);
  }
  const MainBundle root("/", {});
  EXPECT_EQ(pathToAgentSoundFiles(), "/English.lproj/Sounds");
}

}  // namespace
}  // namespace SharedClasses::Utilities
