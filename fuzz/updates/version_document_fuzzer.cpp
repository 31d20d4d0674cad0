// The first line is the own version, the rest a document. What is read and what is newer agree with a slow model of the
// rules; at most three entries are listed, each newer, with its "type" and in order; texts are well-formed UTF-8; a
// document that is a byte too long is none.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/property_list.h"
#include "platform/text.h"
#include "updates/version_document.h"

namespace {

using namespace SharedClasses;
using platform::Value;
using Dictionary = Value::Dictionary;

const std::string_view kKeys[] = {"update", "release", "test"};  // as they are listed
const std::string_view kTypes[] = {"Free Update", "Latest", "Test"};

void require(bool isSo) {
  if (!isSo) {
    std::abort();
  }
}

std::string textUnder(const Dictionary& entry, const char* key) {
  const auto found = entry.find(key);
  return found != entry.end() && found->second.text() != nullptr ? *found->second.text() : "";
}

// Grows from older to newer versions.
std::array<int, 5> rankOf(const std::string& text) {
  VersionStruct version;
  static_cast<void>(VersionNumbers::stringToVersion(text, &version));
  const int stage = version.stage == 0 ? 3 : version.stage == 'b' ? 2 : version.stage == 'a' ? 1 : 0;
  return {version.major, version.minor, version.bugFix, stage, version.build};
}

std::array<Dictionary, 3> slowlyRead(std::string_view document) {
  std::array<Dictionary, 3> entries;
  const auto root = platform::propertyListFromXML(document);
  for (std::size_t i = 0; root && root->dictionary() != nullptr && i < entries.size(); ++i) {
    for (const auto& [key, value] : *root->dictionary()) {
      if (key == kKeys[i] && value.dictionary() != nullptr) {
        entries[i] = *value.dictionary();
        entries[i]["type"] = kTypes[i];
      }
    }
  }
  const std::tuple<std::size_t, const char*, const char*, const char*> kPlaceholders[] = {
      {1, "cost", "cost", ""},
      {2, "description", "description", ""},
      {2, "url", "url", ""},
      {2, "version", "", "version"}};
  for (const auto& [i, key, written, text] : kPlaceholders) {
    if (textUnder(entries[i], key).find("placeholder") != std::string::npos) {
      entries[i][written] = text;
    }
  }
  return entries;
}

NewerVersions slowlyCompared(const std::array<Dictionary, 3>& entries, const std::string& own) {
  const auto s = rankOf(own), u = rankOf(textUnder(entries[0], "version")),
             r = rankOf(textUnder(entries[1], "version")), t = rankOf(textUnder(entries[2], "version"));
  const bool isListed[] = {u > s, r > s && r != u, t > std::max({s, r, u})};
  NewerVersions newer;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (isListed[i] && !entries[i].empty()) {
      newer.entries.emplace_back(entries[i]);
    }
  }
  // The test build is always compared: with the first of the three that it does not exceed, or with the last.
  const auto& last = t <= s ? s : t <= r ? r : u;
  newer.lastComparison = t > last ? 1 : t < last ? -1 : 0;
  return newer;
}

void requireListable(const Value::List& entries, const std::string& own) {
  require(entries.size() <= 3);
  const std::string_view* place = std::begin(kTypes);
  for (const Value& entry : entries) {
    require(entry.dictionary() != nullptr);
    require(rankOf(textUnder(*entry.dictionary(), "version")) > rankOf(own));
    place = std::find(place, std::end(kTypes), textUnder(*entry.dictionary(), "type"));
    require(place++ != std::end(kTypes));
  }
}

void requireWellFormed(const Dictionary& entry) {
  std::vector<Value> open{entry};
  while (!open.empty()) {
    const Value value = open.back();
    open.pop_back();
    require(value.text() == nullptr || platform::isValidUTF8(*value.text()));
    if (value.list() != nullptr) {
      open.insert(open.end(), value.list()->begin(), value.list()->end());
    } else if (value.dictionary() != nullptr) {
      for (const auto& [key, inner] : *value.dictionary()) {
        require(platform::isValidUTF8(key));
        open.push_back(inner);
      }
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(bytes), size);
  const std::string own = input.substr(0, input.find('\n'));
  std::string text = input.substr(std::min(own.size() + 1, size));
  const VersionDocument document = versionDocumentFromText(text);
  const std::array<Dictionary, 3> entries = slowlyRead(text.size() > kMaximumVersionDocumentSize ? "" : text);
  require(document.update == entries[0] && document.release == entries[1] && document.test == entries[2]);
  VersionStruct ownVersion;
  static_cast<void>(VersionNumbers::stringToVersion(own, &ownVersion));
  const NewerVersions newer = newerVersionsOf(document, ownVersion);
  const NewerVersions expected = slowlyCompared(entries, own);
  require(newer.entries == expected.entries && newer.lastComparison == expected.lastComparison);
  requireListable(newer.entries, own);
  std::for_each(entries.begin(), entries.end(), requireWellFormed);
  text.resize(std::max(text.size(), kMaximumVersionDocumentSize + 1), ' ');
  const VersionDocument none = versionDocumentFromText(text);
  require(none.release.empty() && none.update.empty() && none.test.empty());
  return 0;
}
