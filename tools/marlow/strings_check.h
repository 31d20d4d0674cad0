// The check of a translation: does it hold what the library asks for, and nothing else?
// Reads files; safe on any thread.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace SharedClasses::marlow {

struct StringsFault {
  std::string file;
  std::size_t line;  // from 1
  std::string message;
};

struct StringsReport {
  std::vector<StringsFault> faults;  // by file, then by line
  std::size_t localizations = 0;     // folders checked
  std::size_t texts = 0;             // entries read
};

// Checks the localisation folder `folder`, or every one in it: lines that cannot be read, keys that are missing, keys
// that nothing forms, keys given twice, and slots other than those of the English text. English is the folder beside
// the one checked, else that of the main bundle. A folder without localisations gives a report of none.
[[nodiscard]] StringsReport checkStrings(const std::string& folder);

}  // namespace SharedClasses::marlow
