// Every key that the library asks the string tables for: what a translation has to hold.
// Stateless; safe on any thread.
#pragma once

#include <string>
#include <vector>

namespace SharedClasses::Utilities {

struct StringKey {
  std::string table;  // as its file is named: "Localizable" for the default table
  std::string key;
  // False for a key that a language may do without: feminine forms, names of less usual 1-Wire families.
  bool required;
};

// All keys that the library can form, each once.
[[nodiscard]] std::vector<StringKey> allStringKeys();

}  // namespace SharedClasses::Utilities
