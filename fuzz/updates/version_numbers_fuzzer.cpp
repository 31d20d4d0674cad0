// Agrees with a slow model that copies every component; both printed forms read back as the same record, save a
// negative bug fix. A release file of the same bytes gives well-formed text.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>

#include "platform/text.h"
#include "updates/version_numbers.h"

namespace {

using SharedClasses::VersionNumbers;
using SharedClasses::VersionStruct;
using SharedClasses::platform::lenientInteger;

VersionStruct slowlyParsed(const std::string& text) {
  VersionStruct version;
  std::istringstream components(text);
  int index = 0;
  int field = 0;
  for (std::string component; std::getline(components, component, '.'); ++index) {
    const std::size_t letter = component.find_first_of("abd");
    const std::string before = component.substr(0, letter);
    if (letter != std::string::npos) {
      version.stage = component[letter];
      version.build = lenientInteger(component.substr(letter + 1));
      field = before.empty() ? 3 : index == 1 ? 1 : 2;
    }
    if (!before.empty()) {
      std::int32_t ignored = 0;
      (field == 0   ? version.major
       : field == 1 ? version.minor
       : field == 2 ? version.bugFix
                    : ignored) = lenientInteger(before);
      ++field;
    }
    field = letter != std::string::npos ? 4 : std::min(field, 4);
  }
  return version;
}

VersionStruct parsed(std::string_view text) {
  VersionStruct version;
  static_cast<void>(VersionNumbers::stringToVersion(text, &version));
  return version;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  VersionStruct version = parsed(text);
  if (version != slowlyParsed(text)) {
    std::abort();
  }
  std::string printed;
  static_cast<void>(VersionNumbers::versionToString(version, &printed));
  version.bugFix = std::max(version.bugFix, 0);
  std::string shortForm = printed;
  if (version.stage != 0) {
    shortForm.erase(shortForm.rfind('.'), 1);
  }
  const auto released = VersionNumbers::versionIDOfRelease(text);
  if (parsed(printed) != version || parsed(shortForm) != version ||
      (released && !SharedClasses::platform::isValidUTF8(*released))) {
    std::abort();
  }
  return 0;
}
