#include "tools/marlow/strings_check.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>

#include "platform/bundle.h"
#include "platform/files.h"
#include "platform/string_table.h"
#include "platform/text_format.h"
#include "tools/marlow/output.h"
#include "wording/localized_strings.h"
#include "wording/string_keys.h"

namespace SharedClasses::marlow {

namespace {

constexpr std::size_t kMaximumTableSize = std::size_t{4} << 20;  // bytes
constexpr std::string_view kTableSuffix = ".strings";
constexpr std::string_view kCommonTable = "Common";

// One string table of a localisation, as it was read.
struct TableFile {
  std::string path;
  platform::ParsedStrings parsed;
  std::map<std::string_view, const platform::StringEntry*>
      byKey;  // the last entry of each key, as the library takes it
};

// The tables of one localisation, by name.
class Localization {
 public:
  Localization(const std::string& folder, std::vector<StringsFault>* faults) : mFolder(folder) {
    for (const std::string& entry : platform::entriesOfFolder(folder)) {
      if (entry.ends_with(kTableSuffix)) {
        read(entry, faults);
      }
    }
  }
  Localization(const Localization&) = delete;
  Localization& operator=(const Localization&) = delete;

  [[nodiscard]] const std::map<std::string, TableFile>& tables() const { return mTables; }

  // The entry that the library finds for `key` in `table`: there, else in the common table.
  [[nodiscard]] const platform::StringEntry* find(const std::string& table, std::string_view key,
                                                  std::string* path = nullptr) const {
    for (const std::string& searched : {table, std::string(kCommonTable)}) {
      const auto file = mTables.find(searched);
      if (file == mTables.end()) {
        continue;
      }
      if (const auto entry = file->second.byKey.find(key); entry != file->second.byKey.end()) {
        if (path != nullptr) {
          *path = file->second.path;
        }
        return entry->second;
      }
    }
    return nullptr;
  }

  [[nodiscard]] std::string folderName() const { return mFolder.substr(mFolder.rfind('/') + 1); }

  [[nodiscard]] std::string pathOfTable(const std::string& table) const {
    return mFolder + "/" + table + std::string(kTableSuffix);
  }

 private:
  void read(const std::string& name, std::vector<StringsFault>* faults) {
    TableFile& file = mTables[name.substr(0, name.size() - kTableSuffix.size())];
    file.path = mFolder + "/" + name;
    std::string error;
    const std::optional<std::string> bytes = platform::readFile(file.path, kMaximumTableSize, &error);
    if (!bytes) {
      if (faults != nullptr) {
        faults->push_back({file.path, 1, "the table cannot be read: " + error});
      }
      return;
    }
    file.parsed = platform::parseStrings(*bytes);
    for (const platform::StringEntry& entry : file.parsed.entries) {
      file.byKey.insert_or_assign(entry.key, &entry);
    }
  }

  std::string mFolder;
  std::map<std::string, TableFile> mTables;
};

// What the library can ask for.
struct KnownKeys {
  std::set<std::string, std::less<>> tables;
  std::set<std::pair<std::string, std::string>> keys;  // table and key
  std::set<std::string, std::less<>> keysOfAnyTable;
  std::set<std::string, std::less<>> required;
  std::vector<Utilities::StringKey> all = Utilities::allStringKeys();

  KnownKeys() {
    tables.emplace(kCommonTable);
    for (const Utilities::StringKey& key : all) {
      tables.insert(key.table);
      keys.emplace(key.table, key.key);
      keysOfAnyTable.insert(key.key);
      if (key.required) {
        required.insert(key.key);
      }
    }
  }

  [[nodiscard]] bool forms(const std::string& table, const std::string& key) const {
    return table == kCommonTable ? keysOfAnyTable.contains(key) : keys.contains({table, key});
  }
};

std::string slotsText(std::string_view text) {
  std::string slots;
  for (const platform::FormatSlot& slot : platform::formatSlots(text)) {
    slots += (slots.empty() ? "%" : " %") + std::to_string(slot.argument) + "$" + slot.letter;
  }
  return slots.empty() ? "no slots" : "the slots " + slots;
}

class Checker {
 public:
  Checker(const Localization& checked, const Localization* english, std::vector<StringsFault>& faults)
      : mChecked(checked), mEnglish(english), mFaults(faults) {}

  void check() {
    for (const auto& [name, file] : mChecked.tables()) {
      for (const platform::StringTableIssue& issue : file.parsed.issues) {
        mFaults.push_back({file.path, issue.line, issue.message});
      }
      if (!mKnown.tables.contains(name)) {
        mFaults.push_back({file.path, 1, "no text of this table is ever asked for; remove the file"});
        continue;
      }
      checkEntries(name, file);
    }
    checkOwnName();
    for (const Utilities::StringKey& key : mKnown.all) {
      if (key.required && mChecked.find(key.table, key.key) == nullptr) {
        reportMissing(key);
      }
    }
  }

 private:
  void checkEntries(const std::string& table, const TableFile& file) {
    std::map<std::string_view, std::size_t> firstLines;
    for (const platform::StringEntry& entry : file.parsed.entries) {
      const auto [first, isNew] = firstLines.try_emplace(entry.key, entry.line);
      if (!isNew) {
        mFaults.push_back({file.path, entry.line,
                           quoted(entry.key) + " is given again; line " + std::to_string(first->second) +
                               " gave it before, and the last one counts"});
      }
      if (!mKnown.forms(table, entry.key)) {
        mFaults.push_back(
            {file.path, entry.line, quoted(entry.key) + " is never asked for in this table; check its spelling"});
      }
      checkSlots(table, file, entry);
    }
    for (const auto& [key, entry] : file.byKey) {
      checkText(file, *entry);
    }
  }

  // The library takes a text that equals its key for a missing one, and leaves an empty one out of its sentence.
  void checkText(const TableFile& file, const platform::StringEntry& entry) {
    if (entry.text == entry.key) {
      mFaults.push_back({file.path, entry.line, quoted(entry.key) + " has its own key for a text; write a text"});
    } else if (entry.text.empty() && mKnown.required.contains(entry.key)) {
      mFaults.push_back({file.path, entry.line, quoted(entry.key) + " is empty; write a text"});
    }
  }

  // "keyCurrentLanguage" names the folder in which the sounds of the language are looked for.
  void checkOwnName() {
    std::string path;
    const platform::StringEntry* entry =
        mChecked.find(std::string(platform::kDefaultTable), "keyCurrentLanguage", &path);
    if (entry == nullptr) {
      return;  // reported as missing
    }
    std::string folder = entry->text;
    if (!folder.ends_with(platform::kLocalizationSuffix)) {
      folder += platform::kLocalizationSuffix;
    }
    if (folder != mChecked.folderName()) {
      mFaults.push_back(
          {path, entry->line,
           quoted(entry->key) + " is " + quoted(entry->text) + " but the folder is " + quoted(mChecked.folderName())});
    }
  }

  void checkSlots(const std::string& table, const TableFile& file, const platform::StringEntry& entry) {
    const platform::StringEntry* original = mEnglish == nullptr ? nullptr : mEnglish->find(table, entry.key);
    if (original != nullptr && platform::formatSlots(original->text) != platform::formatSlots(entry.text)) {
      mFaults.push_back({file.path, entry.line,
                         quoted(entry.key) + " has " + slotsText(entry.text) + ", the English text has " +
                             slotsText(original->text)});
    }
  }

  void reportMissing(const Utilities::StringKey& key) {
    std::string message = quoted(key.key) + " is missing";
    std::string englishPath;
    if (const auto* original = mEnglish == nullptr ? nullptr : mEnglish->find(key.table, key.key, &englishPath)) {
      message += "; in English it is " + quoted(original->text) + " (" + englishPath + ":" +
                 std::to_string(original->line) + ")";
    }
    mFaults.push_back({mChecked.pathOfTable(key.table), 1, std::move(message)});
  }

  const Localization& mChecked;
  const Localization* mEnglish;  // null when there is none or it is the one that is checked
  std::vector<StringsFault>& mFaults;
  KnownKeys mKnown;
};

std::string parentOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) {
    return ".";
  }
  return slash == 0 ? "/" : path.substr(0, slash);
}

// The English localisation folder to compare with; absent when there is none.
std::optional<std::string> englishFolder(const std::string& bundleFolder) {
  for (const std::string& folder : {bundleFolder, platform::Bundle::main().resourceFolder()}) {
    for (const std::string_view name : {"/English.lproj", "/en.lproj"}) {
      if (platform::isFolder(folder + std::string(name))) {
        return folder + std::string(name);
      }
    }
  }
  return std::nullopt;
}

}  // namespace

StringsReport checkStrings(const std::string& folder) {
  std::string root = folder;
  while (root.size() > 1 && root.ends_with('/')) {
    root.pop_back();
  }
  std::vector<std::string> checkedFolders;
  if (root.ends_with(platform::kLocalizationSuffix)) {
    if (platform::isFolder(root)) {
      checkedFolders.push_back(root);
    }
    root = parentOf(root);
  } else {
    for (const std::string& name : Utilities::localizationsInFolder(root)) {
      checkedFolders.push_back(root + "/" + name);
    }
  }
  StringsReport report;
  const std::optional<std::string> englishPath = englishFolder(root);
  std::optional<Localization> english;
  if (englishPath) {
    english.emplace(*englishPath, nullptr);
  } else if (!checkedFolders.empty()) {
    report.faults.push_back({root, 1, "no English texts to compare the slots with; put English.lproj here"});
  }
  for (const std::string& checkedFolder : checkedFolders) {
    const Localization checked(checkedFolder, &report.faults);
    const bool isEnglish = englishPath == checkedFolder;
    Checker(checked, english && !isEnglish ? &*english : nullptr, report.faults).check();
    ++report.localizations;
    for (const auto& [name, file] : checked.tables()) {
      report.texts += file.parsed.entries.size();
    }
  }
  std::ranges::stable_sort(report.faults, {},
                           [](const StringsFault& fault) { return std::tie(fault.file, fault.line); });
  return report;
}

}  // namespace SharedClasses::marlow
