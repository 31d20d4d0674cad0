#include "wording/string_keys.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "platform/files.h"
#include "platform/string_table.h"
#include "platform/text.h"
#include "platform/text_format.h"

namespace SharedClasses::Utilities {
namespace {

namespace fs = std::filesystem;
using Slots = std::vector<platform::FormatSlot>;

bool isLetterOrDigit(char c) {
  const auto character = static_cast<unsigned char>(c);
  return platform::isASCIILetter(character) || platform::isASCIIDigit(character);
}

// The tables of the shipped localizations, by name of the localization and of the table.
std::map<std::string, std::map<std::string, platform::ParsedStrings>> shippedTables() {
  std::map<std::string, std::map<std::string, platform::ParsedStrings>> tables;
  for (const auto& entry : fs::recursive_directory_iterator(SOURCE_FOLDER "/resources")) {
    if (entry.path().extension() == ".strings") {
      tables[entry.path().parent_path().filename().string()][entry.path().stem().string()] = platform::parseStrings(
          platform::readFile(entry.path().string(), std::size_t{1} << 24).value_or("unreadable"));
    }
  }
  return tables;
}

TEST(StringKeys, EachKeyIsListedOnce) {
  std::set<std::string> keys;
  for (const StringKey& key : allStringKeys()) {
    EXPECT_TRUE(keys.insert(key.key).second) << key.key;
  }
}

TEST(StringKeys, EveryKeyWrittenInTheSourcesIsListed) {
  constexpr std::string_view kQuotedKey = "\"key";
  std::set<std::string, std::less<>> listed;
  for (const StringKey& key : allStringKeys()) {
    listed.insert(key.key);
  }
  std::size_t literals = 0;
  for (const char* folder : {"shared", "protocols", "wording", "updates", "system", "scripting", "core"}) {
    std::error_code ignored;  // of a folder that is not there
    for (const auto& file : fs::recursive_directory_iterator(fs::path(SOURCE_FOLDER) / folder, ignored)) {
      if (file.path().extension() != ".cpp") {
        continue;
      }
      const std::string source = platform::readFile(file.path().string(), std::size_t{1} << 24).value_or("");
      for (std::size_t at = source.find(kQuotedKey); at != source.npos; at = source.find(kQuotedKey, at + 1)) {
        const auto rest = std::string_view(source).substr(at + 1);
        const auto literal =
            rest.substr(0, static_cast<std::size_t>(std::ranges::find_if_not(rest, isLetterOrDigit) - rest.begin()));
        // "key" alone and words such as "keyword" are no keys; some literals are the beginning of several.
        if (literal.size() > 3 &&
            (literal[3] == 'k' || platform::lowercased(literal.substr(3, 1)) != literal.substr(3, 1))) {
          const auto next = listed.lower_bound(literal);
          EXPECT_TRUE(next != listed.end() && next->starts_with(literal)) << file.path() << ": " << literal;
          ++literals;
        }
      }
    }
  }
  EXPECT_GT(literals, 20U);
}

TEST(StringKeys, ShippedTablesHoldTheListedKeysAndNoOthers) {
  std::map<std::string, std::set<std::string>> known;  // by table
  for (const StringKey& key : allStringKeys()) {
    known[key.table].insert(key.key);
    known["Common"].insert(key.key);
  }
  const auto shipped = shippedTables();
  ASSERT_TRUE(shipped.contains("English.lproj"));
  for (const auto& [localization, tables] : shipped) {
    SCOPED_TRACE(localization);
    std::map<std::string, std::set<std::string>> held;
    for (const auto& [table, parsed] : tables) {
      SCOPED_TRACE(table);
      for (const platform::StringTableIssue& issue : parsed.issues) {
        ADD_FAILURE() << "line " << issue.line << ": " << issue.message;
      }
      for (const platform::StringEntry& entry : parsed.entries) {
        SCOPED_TRACE(entry.key);
        EXPECT_TRUE(held[table].insert(entry.key).second) << "repeated in line " << entry.line;
        EXPECT_TRUE(known[table].contains(entry.key)) << "no code asks for it";
        EXPECT_NE(entry.text, entry.key) << "counts as missing";
        EXPECT_FALSE(entry.text.empty());
        EXPECT_EQ(platform::trimmed(entry.text), entry.text);
      }
    }
    for (const StringKey& key : allStringKeys()) {
      EXPECT_TRUE(!key.required || held[key.table].contains(key.key) || held["Common"].contains(key.key)) << key.key;
    }
  }
}

TEST(StringKeys, ShippedTextsHaveTheSlotsThatTheCodeFills) {
  const std::map<std::string, Slots> kSlots = {{"keyAllDevicesLogFormat", {{1, '@'}, {2, '@'}}},
                                               {"keyNoDeviceFoundErrorFormat", {{1, '@'}}}};
  for (const auto& [localization, tables] : shippedTables()) {
    for (const auto& [table, parsed] : tables) {
      for (const platform::StringEntry& entry : parsed.entries) {
        const auto slots = kSlots.find(entry.key);
        const bool isFormat = slots != kSlots.end();
        EXPECT_TRUE(platform::formatSlots(entry.text) == (isFormat ? slots->second : Slots())) << entry.key;
        // A text that is no format is printed as it stands.
        EXPECT_TRUE(isFormat || entry.text.find('%') == std::string::npos) << entry.key;
      }
    }
  }
}

}  // namespace
}  // namespace SharedClasses::Utilities
