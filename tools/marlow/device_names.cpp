#include "tools/marlow/device_names.h"

#include "platform/files.h"
#include "platform/property_list.h"
#include "platform/text.h"
#include "tools/marlow/device_addresses.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

constexpr std::size_t kMaximumFileSize = std::size_t{16} << 20;  // bytes

// The normal form of the address of an X10 unit, an INSTEON or a 1-Wire device; absent for anything else.
std::optional<std::string> normalizedAddress(std::string_view address) {
  std::optional<std::string> x10 = x10Address(address);
  if (x10 && x10->size() > 1) {
    return x10;
  }
  std::optional<std::string> insteon = insteonAddress(address);
  return insteon ? insteon : oneWireAddress(address);
}

}  // namespace

DeviceNames DeviceNames::parse(std::string_view bytes, std::vector<std::string>* faults) {
  DeviceNames names;
  std::vector<std::string> found;
  const std::string_view text = bytes.substr(bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0);
  if (platform::trimmed(text).starts_with("<")) {
    names.parsePropertyList(text, found);
  } else {
    names.parsePlain(text, found);
  }
  if (faults != nullptr) {
    *faults = std::move(found);
  }
  return names;
}

std::optional<DeviceNames> DeviceNames::load(const std::string& path, std::vector<std::string>* faults,
                                             std::string* error) {
  const std::optional<std::string> bytes = platform::readFile(path, kMaximumFileSize, error);
  if (!bytes) {
    return std::nullopt;
  }
  return parse(*bytes, faults);
}

const std::string* DeviceNames::find(std::string_view address) const {
  const auto found = mNames.find(address);
  return found == mNames.end() ? nullptr : &found->second;
}

std::string DeviceNames::add(std::string_view address, std::string_view name) {
  std::optional<std::string> normalized = normalizedAddress(address);
  if (!normalized) {
    return quoted(address) + " is not the address of a device; write one such as A1, 1A.2B.3C or e9000005e2fdc328";
  }
  if (platform::trimmed(name).empty()) {
    return *normalized + " has no name behind it";
  }
  if (!platform::isValidUTF8(name)) {
    return "the name of " + *normalized + " is not UTF-8; save the file as UTF-8";
  }
  if (const auto [entry, isNew] = mNames.try_emplace(*std::move(normalized), name); !isNew) {
    return entry->first + " has the name " + quoted(entry->second) + " already";
  }
  return {};
}

void DeviceNames::parsePropertyList(std::string_view bytes, std::vector<std::string>& faults) {
  platform::PropertyListError error;
  const std::optional<platform::Value> list = platform::propertyListFromXML(bytes, &error);
  if (!list) {
    faults.push_back(std::to_string(error.line) + ": " + error.message);
    return;
  }
  if (list->dictionary() == nullptr) {
    faults.emplace_back("1: the property list is not a dictionary of names by address");
    return;
  }
  for (const auto& [address, name] : *list->dictionary()) {
    const std::string fault =
        name.text() == nullptr ? "the name of " + quoted(address) + " is not a text" : add(address, *name.text());
    if (!fault.empty()) {
      faults.push_back(" " + fault);
    }
  }
}

void DeviceNames::parsePlain(std::string_view bytes, std::vector<std::string>& faults) {
  for (std::size_t number = 1; !bytes.empty(); ++number) {
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    const std::string_view line = platform::trimmed(bytes.substr(0, end));
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
    if (line.empty() || line.starts_with('#')) {
      continue;
    }
    const std::size_t addressEnd = std::min(line.find_first_of(" \t"), line.size());
    const std::string fault = add(line.substr(0, addressEnd), platform::trimmed(line.substr(addressEnd)));
    if (!fault.empty()) {
      faults.push_back(std::to_string(number) + ": " + fault);
    }
  }
}

}  // namespace SharedClasses::marlow
