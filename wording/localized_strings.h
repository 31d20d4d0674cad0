// Every text that a person reads, fetched by key from the string tables of a resource bundle.
// The one way to such a text; no sentence or word stands in the code. Stateless; safe on any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/bundle.h"

namespace SharedClasses::Utilities {

// The text for `key` in `table`, else in the table "Common", of `bundle`.
// An absent key gives an absent text; a key that neither table holds gives the empty text, never the key.
// `table`: "" is the default table. `bundle`: null is the main bundle of the running program.
// Kept: a text that is the same as its key counts as missing and gives the empty text. An empty text counts as found.
// There is no fallback to another language.
[[nodiscard]] std::optional<std::string> getString(std::optional<std::string_view> key);

// `getString:fromTable:` and `getString:fromTable:inBundle:`
[[nodiscard]] std::optional<std::string> getStringFromTable(std::optional<std::string_view> key, std::string_view table,
                                                            const platform::Bundle* bundle = nullptr);

// `getString:inBundle:`
[[nodiscard]] std::optional<std::string> getStringInBundle(std::optional<std::string_view> key,
                                                           const platform::Bundle* bundle);

// The same lookup without a copy. The view lives as long as `bundle`; for the main bundle, until the process ends.
[[nodiscard]] std::string_view viewOfString(std::string_view key, std::string_view table = {},
                                            const platform::Bundle* bundle = nullptr);

// The names of the localisation folders in the folder `path`, in the order of the file system, with their ".lproj".
// The suffix counts in lower case only. Empty when the folder cannot be read.
[[nodiscard]] std::vector<std::string> localizationsInFolder(const std::string& path);

// The user's preferred localisation of the main bundle as its folder is named, without ".lproj"; "English" when the
// bundle has none.
[[nodiscard]] std::string nameOfLocalization();

// The main bundle's folder of spoken sounds in the user's language: the resource folder, then the folder that
// "keyCurrentLanguage" names (English.lproj when it names none), then "Sounds". The folder need not exist.
[[nodiscard]] std::string pathToAgentSoundFiles();

}  // namespace SharedClasses::Utilities
