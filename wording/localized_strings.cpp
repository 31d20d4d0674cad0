#include "wording/localized_strings.h"

#include "platform/files.h"

namespace SharedClasses::Utilities {

namespace {

constexpr std::string_view kCommonTable = "Common";
constexpr std::string_view kEnglish = "English";

const platform::Bundle& bundleOrMain(const platform::Bundle* bundle) {
  return bundle != nullptr ? *bundle : platform::Bundle::main();
}

}  // namespace

std::string_view viewOfString(std::string_view key, std::string_view table, const platform::Bundle* bundle) {
  const platform::Bundle& source = bundleOrMain(bundle);
  for (const std::string_view searched : {table, kCommonTable}) {
    // Kept: a text that equals its key counts as missing.
    if (const auto text = source.find(key, searched); text && *text != key) {
      return *text;
    }
  }
  return {};
}

std::optional<std::string> getStringFromTable(std::optional<std::string_view> key, std::string_view table,
                                              const platform::Bundle* bundle) {
  if (!key) {
    return std::nullopt;
  }
  return std::string(viewOfString(*key, table, bundle));
}

std::optional<std::string> getString(std::optional<std::string_view> key) {
  return getStringFromTable(key, "");
}

std::optional<std::string> getStringInBundle(std::optional<std::string_view> key, const platform::Bundle* bundle) {
  return getStringFromTable(key, "", bundle);
}

std::vector<std::string> localizationsInFolder(const std::string& path) {
  std::vector<std::string> names = platform::entriesOfFolder(path);
  std::erase_if(names, [](const std::string& name) { return !name.ends_with(platform::kLocalizationSuffix); });
  return names;
}

std::string nameOfLocalization() {
  const std::vector<std::string>& preferred = platform::Bundle::main().preferredLocalizations();
  return preferred.empty() ? std::string(kEnglish) : preferred.front();
}

std::string pathToAgentSoundFiles() {
  const platform::Bundle& bundle = platform::Bundle::main();
  std::string folder(viewOfString("keyCurrentLanguage", {}, &bundle));
  if (folder.empty()) {
    folder = kEnglish;
  }
  if (!folder.ends_with(platform::kLocalizationSuffix)) {
    folder += platform::kLocalizationSuffix;
  }
  return platform::pathInFolder(bundle.resourceFolder(), folder + "/Sounds");
}

}  // namespace SharedClasses::Utilities
