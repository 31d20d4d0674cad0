#include "platform/bundle.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "platform/files.h"
#include "platform/log.h"
#include "platform/property_list.h"
#include "platform/text.h"
#include "platform/text_format.h"

namespace SharedClasses::platform {

namespace {

constexpr std::size_t kMaximumTableSize = std::size_t{4} << 20;  // bytes
constexpr std::size_t kMaximumInfoSize = std::size_t{1} << 20;   // bytes
constexpr std::size_t kIssuesLogged = 20;  // of one table; a file that is no table at all has thousands
constexpr std::string_view kTableSuffix = ".strings";
constexpr std::string_view kEnglish = "English";

// What two names of one language have in common: "de_AT.UTF-8@euro", "de-AT" and "DE_at" are "de_at"; English is "en".
std::string languageTag(std::string_view name) {
  std::string tag;
  for (const char c : name.substr(0, name.find_first_of(".@"))) {
    tag += c == '-' ? '_' : static_cast<char>(asciiLower(static_cast<unsigned char>(c)));
  }
  return tag == "english" || tag == "c" || tag == "posix" ? "en" : tag;
}

std::string_view baseLanguage(std::string_view tag) {
  return tag.substr(0, tag.find('_'));
}

std::string_view withoutLastPart(std::string_view tag) {
  const std::size_t last = tag.rfind('_');
  return last == std::string_view::npos ? std::string_view() : tag.substr(0, last);
}

std::vector<std::string> heldLocalizations(const std::string& folder) {
  std::vector<std::string> held;
  for (std::string& entry : entriesOfFolder(folder)) {
    if (entry.size() > kLocalizationSuffix.size() && entry.ends_with(kLocalizationSuffix)) {
      entry.resize(entry.size() - kLocalizationSuffix.size());
      held.push_back(std::move(entry));
    }
  }
  std::ranges::sort(held);  // The file system's order is not the same everywhere.
  return held;
}

// The held localisation for `language`: the very one, else the nearest that says less ("zh_Hant", then "zh" for
// "zh_Hant_TW"), else the language of another country ("pt_BR" for "pt"). Null when there is none.
const std::string* bestLocalization(const std::vector<std::string>& held, std::string_view language) {
  const std::string wanted = languageTag(language);
  const auto firstThat = [&held](auto matches) {
    const auto found = std::ranges::find_if(held, matches);
    return found == held.end() ? nullptr : &*found;
  };
  for (std::string_view tag = wanted; !tag.empty(); tag = withoutLastPart(tag)) {
    if (const auto* found = firstThat([&](const std::string& name) { return languageTag(name) == tag; })) {
      return found;
    }
  }
  return firstThat([&](const std::string& name) { return baseLanguage(languageTag(name)) == baseLanguage(wanted); });
}

std::vector<std::string> preferredAmong(const std::vector<std::string>& held, std::vector<std::string> languages) {
  languages.emplace_back(kEnglish);
  std::vector<std::string> preferred;
  for (const std::string& language : languages) {
    const std::string* best = bestLocalization(held, language);
    if (best != nullptr && std::ranges::find(preferred, *best) == preferred.end()) {
      preferred.push_back(*best);
    }
  }
  return preferred;
}

bool holdsResources(const std::string& folder) {
  return isFolder(folder) && std::ranges::any_of(entriesOfFolder(folder), [](const std::string& entry) {
           return entry == "Info.plist" || entry.ends_with(kLocalizationSuffix);
         });
}

std::string mainBundleFolder() {
  if (std::optional<std::string> named = environmentVariable("MARLOW_RESOURCES"); named && !named->empty()) {
    return *std::move(named);
  }
  const std::string program = programPath();
  const std::size_t nameAt = program.rfind('/');
  if (nameAt != std::string::npos) {
    const std::string share = program.substr(0, nameAt) + "/../share";
    for (const std::string& folder : {share + program.substr(nameAt), share + "/SharedClasses"}) {
      if (holdsResources(folder)) {
        return folder;
      }
    }
  }
  return SHAREDCLASSES_RESOURCE_FOLDER;
}

// Complaints are collected and logged when the reading is done: a sink may itself ask for a text.
using Complaints = std::vector<std::string>;

StringTable loadTable(const std::string& path, Complaints& complaints) {
  std::string error;
  const std::optional<std::string> bytes = readFile(path, kMaximumTableSize, &error);
  if (!bytes) {
    complaints.push_back(filledFormat("%@: the string table cannot be read: %@", {path, error}));
    return StringTable({});
  }
  ParsedStrings parsed = parseStrings(*bytes);
  for (std::size_t i = 0; i < std::min(parsed.issues.size(), kIssuesLogged); ++i) {
    complaints.push_back(filledFormat("%@:%d: %@", {path, parsed.issues[i].line, parsed.issues[i].message}));
  }
  if (parsed.issueCount > kIssuesLogged) {
    complaints.push_back(filledFormat("%@: and %d more broken lines", {path, parsed.issueCount - kIssuesLogged}));
  }
  return StringTable(std::move(parsed.entries));
}

void logAll(const Complaints& complaints) {
  for (const std::string& complaint : complaints) {
    log(complaint);
  }
}

struct MainBundle {
  std::atomic<const Bundle*> current = nullptr;
  std::mutex mutex;                                  // guards `owned` and changes of `current`
  std::vector<std::unique_ptr<const Bundle>> owned;  // every main bundle there ever was
};

// Never destroyed: texts of a main bundle are used until the process ends.
MainBundle& mainBundle() {
  static auto* const sMainBundle = new MainBundle;
  return *sMainBundle;
}

}  // namespace

Bundle::Bundle(std::string folder, std::vector<std::string> languages) : mFolder(std::move(folder)) {
  while (mFolder.size() > 1 && mFolder.ends_with('/')) {
    mFolder.pop_back();
  }
  mPreferredLocalizations = preferredAmong(heldLocalizations(mFolder), std::move(languages));
}

Bundle::~Bundle() = default;

const Bundle& Bundle::main() {
  MainBundle& holder = mainBundle();
  if (const Bundle* current = holder.current.load(std::memory_order_acquire)) {
    return *current;
  }
  const std::lock_guard lock(holder.mutex);
  if (holder.current.load(std::memory_order_relaxed) == nullptr) {
    holder.owned.push_back(std::make_unique<const Bundle>(mainBundleFolder()));
    holder.current.store(holder.owned.back().get(), std::memory_order_release);
  }
  return *holder.current.load(std::memory_order_relaxed);
}

void Bundle::setMain(std::unique_ptr<const Bundle> bundle) {
  if (bundle == nullptr) {
    return;
  }
  MainBundle& holder = mainBundle();
  const std::lock_guard lock(holder.mutex);
  holder.owned.push_back(std::move(bundle));
  holder.current.store(holder.owned.back().get(), std::memory_order_release);
}

std::optional<std::string_view> Bundle::find(std::string_view key, std::string_view table) const {
  const std::vector<NamedTable>& tables = loadedTables();
  const std::string_view name = table.empty() ? kDefaultTable : table;
  const auto found = std::ranges::find(tables, name, &NamedTable::name);
  return found == tables.end() ? std::nullopt : found->table.find(key);
}

Value Bundle::infoValue(std::string_view key) const {
  const Value* value = loadedInfo().find(key);
  return value == nullptr ? Value() : *value;
}

std::vector<std::string> Bundle::userLanguages() {
  std::vector<std::string> languages;
  // LANGUAGE lists several, parted by colons; each of the others names one.
  for (const char* variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
    const std::string value = environmentVariable(variable).value_or("");
    for (std::string_view rest = value; !rest.empty();) {
      const std::size_t end = std::min(rest.find(':'), rest.size());
      if (end > 0) {
        languages.emplace_back(rest.substr(0, end));
      }
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    // LC_ALL hides LC_MESSAGES, and either hides LANG; LANGUAGE only comes before them.
    if (!value.empty() && std::string_view(variable) != "LANGUAGE") {
      break;
    }
  }
  return languages;
}

const std::vector<Bundle::NamedTable>& Bundle::loadedTables() const {
  Complaints complaints;
  std::call_once(mTablesLoaded, [&] {
    if (mPreferredLocalizations.empty()) {
      complaints.push_back(
          filledFormat("%@: no texts in a language of the user nor in English; let MARLOW_RESOURCES name a "
                       "folder that holds English.lproj, or the program set its main bundle",
                       {mFolder}));
      return;
    }
    const std::string folder =
        pathInFolder(mFolder, mPreferredLocalizations.front() + std::string(kLocalizationSuffix));
    std::vector<NamedTable> tables;
    for (const std::string& entry : entriesOfFolder(folder)) {
      if (entry.ends_with(kTableSuffix)) {
        std::string name = entry.substr(0, entry.size() - kTableSuffix.size());
        tables.push_back({std::move(name), loadTable(pathInFolder(folder, entry), complaints)});
      }
    }
    mTables = std::move(tables);
  });
  logAll(complaints);
  return mTables;
}

const Value& Bundle::loadedInfo() const {
  Complaints complaints;
  std::call_once(mInfoLoaded, [&] {
    const std::string path = pathInFolder(mFolder, "Info.plist");
    const std::optional<std::string> bytes = readFile(path, kMaximumInfoSize);
    if (!bytes) {
      return;  // A bundle need not have one.
    }
    PropertyListError error;
    if (std::optional<Value> info = propertyListFromXML(*bytes, &error)) {
      mInfo = *std::move(info);
    } else {
      complaints.push_back(filledFormat("%@:%d: %@", {path, error.line, error.message}));
    }
  });
  logAll(complaints);
  return mInfo;
}

}  // namespace SharedClasses::platform
