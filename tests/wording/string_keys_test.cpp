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

std::string contentsOf(const fs::path& file) {
  return platform::readFile(file.string(), std::size_t{1} << 24).value_or("unreadable");
}

TEST(StringKeys, EveryKeyWrittenInTheSourcesIsListedAndEachOnce) {
  std::set<std::string> listed;
  for (const StringKey& key : allStringKeys()) {
    EXPECT_TRUE(listed.insert(key.key).second) << key.key;
  }
  std::size_t literals = 0;
  for (const char* folder : {"shared", "protocols", "wording", "updates", "system", "scripting", "tools"}) {
    std::error_code missing;  // leaves nothing to iterate over
    for (const fs::path& file : fs::recursive_directory_iterator(fs::path(SOURCE_FOLDER) / folder, missing)) {
      const std::string source = file.extension() == ".cpp" ? contentsOf(file) : "";
      for (std::size_t at = source.find("\"key"); at != source.npos; at = source.find("\"key", at)) {
        const std::size_t end = std::min(source.find_first_of("\\\" %", ++at), source.size());
        const std::string literal = source.substr(at, end - at);  // some are the beginning of several keys
        const auto next = listed.lower_bound(literal);
        EXPECT_TRUE(next != listed.end() && next->starts_with(literal)) << file << ": " << literal;
        ++literals;
      }
    }
  }
  EXPECT_GT(literals, 20U);
}

TEST(StringKeys, ShippedTablesHoldTheListedKeysAndNoOthersWithTheSlotsThatTheCodeFills) {
  const std::map<std::string, Slots> kSlots = {{"keyAllDevicesLogFormat", {{1, '@'}, {2, '@'}}},
                                               {"keyNoDeviceFoundErrorFormat", {{1, '@'}}},
                                               {"keyThermometerNotMeasuredFormat", {{1, '@'}}},
                                               {"keyThermometerReadingFormat", {{1, '@'}, {2, '@'}}}};
  std::map<std::string, std::set<std::string>> known;  // by table
  for (const StringKey& key : allStringKeys()) {
    known[key.table].insert(key.key);
    known["Common"].insert(key.key);
  }
  std::map<std::string, std::map<std::string, platform::ParsedStrings>> shipped;  // by localization and table
  for (const fs::path& file : fs::recursive_directory_iterator(SOURCE_FOLDER "/resources")) {
    if (file.extension() == ".strings") {
      shipped[file.parent_path().filename()][file.stem()] = platform::parseStrings(contentsOf(file));
    }
  }
  ASSERT_TRUE(shipped.contains("English.lproj"));
  for (const auto& [localization, tables] : shipped) {
    SCOPED_TRACE(localization);
    std::map<std::string, std::set<std::string>> held;
    for (const auto& [table, parsed] : tables) {
      EXPECT_TRUE(parsed.issues.empty()) << table << ": " << parsed.issues.front().message;
      for (const auto& [key, text, line] : parsed.entries) {
        SCOPED_TRACE(key);
        EXPECT_TRUE(held[table].insert(key).second) << "repeated in line " << line;
        EXPECT_TRUE(known[table].contains(key)) << "no code asks for it";
        EXPECT_NE(text, key) << "counts as missing";
        EXPECT_FALSE(text.empty());
        EXPECT_EQ(platform::trimmed(text), text);
        const auto slots = kSlots.find(key);
        EXPECT_TRUE(platform::formatSlots(text) == (slots == kSlots.end() ? Slots() : slots->second));
        EXPECT_TRUE(slots != kSlots.end() || text.find('%') == text.npos) << "printed as it stands";
      }
    }
    for (const StringKey& key : allStringKeys()) {
      EXPECT_TRUE(!key.required || held[key.table].contains(key.key) || held["Common"].contains(key.key)) << key.key;
    }
  }
}

}  // namespace
}  // namespace SharedClasses::Utilities
