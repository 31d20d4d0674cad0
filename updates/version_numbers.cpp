#include "updates/version_numbers.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <tuple>
#include <type_traits>
#include <utility>

#include "platform/bundle.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/text_format.h"

namespace SharedClasses {

namespace {

static_assert(std::is_standard_layout_v<VersionStruct> && std::is_trivially_copyable_v<VersionStruct>);

constexpr std::string_view kStages = "dab";  // from old to new; a release is newer than any
constexpr std::size_t kMaximumReleaseSize = 65536;

// The text up to the first `end`, which is passed over; all of it where there is none.
std::string_view takeUntil(char end, std::string_view& rest) {
  const std::string_view taken = rest.substr(0, rest.find(end));
  rest.remove_prefix(std::min(taken.size() + 1, rest.size()));
  return taken;
}

int stageRank(char stage) {
  if (stage == 0) {
    return 4;
  }
  const std::size_t place = kStages.find(stage);
  return place == std::string_view::npos ? 0 : static_cast<int>(place) + 1;
}

auto comparisonKey(const VersionStruct& version) {
  return std::tuple(version.major, version.minor, version.bugFix, stageRank(version.stage), version.build);
}

std::optional<std::string> textOfMainBundle(std::string_view key) {
  const platform::Value value = platform::Bundle::main().infoValue(key);
  return value.text() == nullptr ? std::nullopt : std::optional(*value.text());
}

OwnedVersionStruct newVersion() {
  void* const block = std::malloc(sizeof(VersionStruct));
  return OwnedVersionStruct(block == nullptr ? nullptr : new (block) VersionStruct{});
}

// `value`; where a quote of either kind stands in front, what stands up to its like, or to the end where that is
// missing, and in double quotes without the backslashes that protect.
std::string unquoted(std::string_view value) {
  const char quote = value.starts_with('"') || value.starts_with('\'') ? value.front() : '\0';
  if (quote == '\0') {
    return std::string(value);
  }
  std::string result;
  for (std::size_t i = 1; i < value.size() && value[i] != quote; ++i) {
    if (quote == '"' && value[i] == '\\' && i + 1 < value.size() &&
        std::string_view("\"$\\`").find(value[i + 1]) != std::string_view::npos) {
      ++i;
    }
    result += value[i];
  }
  return result;
}

}  // namespace

std::int32_t VersionNumbers::stringToVersion(std::optional<std::string_view> text, VersionStruct* version) {
  if (version == nullptr) {
    return kNoVersionRecord;
  }
  *version = {};
  std::int32_t* const numbers[] = {&version->major, &version->minor, &version->bugFix};
  std::size_t taken = 0;  // how many of them are set, or passed by
  std::string_view rest = text.value_or("");
  for (std::size_t index = 0; !rest.empty(); ++index) {
    const std::string_view component = takeUntil('.', rest);
    const std::size_t letter = component.find_first_of(kStages);
    if (letter != std::string_view::npos) {
      if (letter > 0) {
        (index == 1 ? version->minor : version->bugFix) = platform::lenientInteger(component.substr(0, letter));
      }
      version->stage = component[letter];
      version->build = platform::lenientInteger(component.substr(letter + 1));
      taken = std::size(numbers);
    } else if (!component.empty() && taken < std::size(numbers)) {
      *numbers[taken++] = platform::lenientInteger(component);
    }
  }
  return kSuccess;
}

std::int32_t VersionNumbers::versionToString(const VersionStruct& version, std::string* text) {
  if (text == nullptr) {
    return kNoPlaceForText;
  }
  *text = platform::filledFormat("%d.%d", {version.major, version.minor});
  if (version.bugFix > 0) {
    *text += platform::filledFormat(".%d", {version.bugFix});
  }
  if (version.stage != 0) {
    *text += '.';
    platform::appendUTF8(*text, static_cast<unsigned char>(version.stage));
    *text += std::to_string(version.build);
  }
  return kSuccess;
}

std::int32_t VersionNumbers::compareVersions(const VersionStruct* a, const VersionStruct* b) {
  if (a == nullptr || b == nullptr) {
    return (a != nullptr ? 1 : 0) - (b != nullptr ? 1 : 0);
  }
  const auto keyOfA = comparisonKey(*a);
  const auto keyOfB = comparisonKey(*b);
  return (keyOfA > keyOfB ? 1 : 0) - (keyOfA < keyOfB ? 1 : 0);
}

bool VersionNumbers::weAreTest() {
  VersionStruct version;
  static_cast<void>(stringToVersion(textOfMainBundle("CFBundleVersion"), &version));
  return version.stage != 0;
}

VersionStruct* VersionNumbers::systemVersionStruct(VersionStruct* version) {
  const std::optional<std::string> text = systemVersionString();
  VersionStruct* const result = text && version == nullptr ? newVersion().release() : version;
  return text && stringToVersion(text, result) == kSuccess ? result : nullptr;
}

OwnedVersionStruct VersionNumbers::selfVersionStruct() {
  OwnedVersionStruct version = newVersion();
  static_cast<void>(stringToVersion(textOfMainBundle("CFBundleShortVersionString"), version.get()));
  return version;
}

std::string VersionNumbers::selfVersionString() {
  std::optional<std::string> text = textOfMainBundle("CFBundleShortVersionString");
  return text ? *std::move(text) : textOfMainBundle("CFBundleVersion").value_or("");
}

std::optional<std::string> VersionNumbers::systemVersionString() {
  const std::optional<std::string> release = platform::readFile("/etc/os-release", kMaximumReleaseSize);
  return release ? versionIDOfRelease(*release) : std::nullopt;
}

std::optional<std::string> VersionNumbers::versionIDOfRelease(std::string_view release) {
  constexpr std::string_view kName = "VERSION_ID=";
  std::optional<std::string> version;
  while (!release.empty()) {
    const std::string_view line = platform::trimmed(takeUntil('\n', release));
    if (line.starts_with(kName)) {
      version = platform::repairedUTF8(unquoted(platform::trimmed(line.substr(kName.size()))));
    }
  }
  return version;
}

}  // namespace SharedClasses
