// Which name the home owner gave to which address.
// A file of them is plain (address, blanks, name; "#" begins a comment) or an XML property list (a dictionary of names
// by address). Reading is pure but for the file; safe on any thread.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace SharedClasses::marlow {

class DeviceNames {
 public:
  // Reads what a file holds. Entries that cannot be read are left out; each adds a line to `*faults` that says where
  // and why.
  [[nodiscard]] static DeviceNames parse(std::string_view bytes, std::vector<std::string>* faults);

  // Reads the file at `path`. Absent when it cannot be read at all; `*error` then says why.
  [[nodiscard]] static std::optional<DeviceNames> load(const std::string& path, std::vector<std::string>* faults,
                                                       std::string* error);

  // The name for an address in normal form; null when it has none.
  [[nodiscard]] const std::string* find(std::string_view address) const;

  [[nodiscard]] std::size_t size() const { return mNames.size(); }

 private:
  // Adds a name; returns what is wrong with the entry, empty when nothing is.
  std::string add(std::string_view address, std::string_view name);
  void parsePropertyList(std::string_view bytes, std::vector<std::string>& faults);
  void parsePlain(std::string_view bytes, std::vector<std::string>& faults);

  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view address) const { return std::hash<std::string_view>{}(address); }
  };
  std::unordered_map<std::string, std::string, Hash, std::equal_to<>> mNames;  // by address in normal form
};

}  // namespace SharedClasses::marlow
