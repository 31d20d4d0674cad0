// A resource folder: Info.plist, and one folder of string tables for each language (English.lproj, fr.lproj, …).
// Everything is read on first use and immutable from then on; all calls are safe on any thread.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/string_table.h"
#include "platform/value.h"

namespace SharedClasses::platform {

// The suffix of a folder that holds the texts of one language.
inline constexpr std::string_view kLocalizationSuffix = ".lproj";

// The name of the table that an empty table name stands for.
inline constexpr std::string_view kDefaultTable = "Localizable";

class Bundle {
 public:
  // The bundle in `folder`, with its texts in the first of `languages` that it holds. A folder that is missing or empty
  // makes a bundle without texts.
  explicit Bundle(std::string folder, std::vector<std::string> languages = userLanguages());

  Bundle(const Bundle&) = delete;
  Bundle& operator=(const Bundle&) = delete;
  ~Bundle();

  // The bundle of the running program. Found at the first call: the folder that the environment variable
  // MARLOW_RESOURCES names; else share/<program> beside the program's bin folder; else share/SharedClasses there; else
  // the folder that the library was installed with. Lives until the process ends.
  [[nodiscard]] static const Bundle& main();

  // Makes `bundle` the running program's. Earlier ones stay alive, since other threads may hold texts of theirs.
  static void setMain(std::unique_ptr<const Bundle> bundle);

  [[nodiscard]] const std::string& resourceFolder() const { return mFolder; }

  // The localisations that the bundle holds and the user reads, best first, without the suffix; English, where the
  // bundle holds it, ends the list. Empty for a bundle that holds neither.
  [[nodiscard]] const std::vector<std::string>& preferredLocalizations() const { return mPreferredLocalizations; }

  // The text for `key` in `table` of the first preferred localisation; the empty table name is kDefaultTable. Absent
  // when it is not there. The view lives as long as the bundle. Broken lines, and a bundle without texts, are logged,
  // once, when the tables are first read.
  [[nodiscard]] std::optional<std::string_view> find(std::string_view key, std::string_view table) const;

  // The entry `key` of Info.plist; absent when it is not there.
  [[nodiscard]] Value infoValue(std::string_view key) const;

  // The user's languages, best first, as the environment names them: LANGUAGE, then LC_ALL, LC_MESSAGES and LANG.
  [[nodiscard]] static std::vector<std::string> userLanguages();

 private:
  struct NamedTable {
    std::string name;
    StringTable table;
  };

  [[nodiscard]] const std::vector<NamedTable>& loadedTables() const;
  [[nodiscard]] const Value& loadedInfo() const;

  std::string mFolder;                               // without a final slash
  std::vector<std::string> mPreferredLocalizations;  // names of folders, without the suffix
  mutable std::once_flag mTablesLoaded;
  mutable std::vector<NamedTable> mTables;  // of the first preferred localisation; a handful, so searched in order
  mutable std::once_flag mInfoLoaded;
  mutable Value mInfo;  // a dictionary; absent without a readable Info.plist
};

}  // namespace SharedClasses::platform
