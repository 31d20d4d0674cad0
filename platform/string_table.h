// Tables of texts for people: `"key" = "text";`, one entry to a line, UTF-8, with /* */ and // comments.
// Escapes inside quotes: \" \\ \n \r \t, and \U or \u followed by four hex digits. Parsing is pure; a table is
// immutable once made. Safe on any thread.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace SharedClasses::platform {

struct StringEntry {
  std::string key;
  std::string text;
  std::size_t line;  // from 1
};

// What is wrong with a line, and what to do about it.
struct StringTableIssue {
  std::size_t line;  // from 1
  std::string message;
};

struct ParsedStrings {
  std::vector<StringEntry> entries;      // in the order of the file, repeated keys included
  std::vector<StringTableIssue> issues;  // in the order of the file; the first thousand
  std::size_t issueCount = 0;            // of all
};

// Reads a table. Never fails: a line that cannot be read becomes an issue and the next line is read afresh.
[[nodiscard]] ParsedStrings parseStrings(std::string_view bytes);

class StringTable {
 public:
  // Of entries with one key the last counts.
  explicit StringTable(std::vector<StringEntry> entries);

  // The text for `key`; absent when the table does not hold it. The view lives as long as the table.
  [[nodiscard]] std::optional<std::string_view> find(std::string_view key) const;

  [[nodiscard]] std::size_t size() const { return mTexts.size(); }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const { return std::hash<std::string_view>{}(key); }
  };
  std::unordered_map<std::string, std::string, Hash, std::equal_to<>> mTexts;
};

}  // namespace SharedClasses::platform
