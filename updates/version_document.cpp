#include "updates/version_document.h"

#include <optional>
#include <string>

#include "platform/property_list.h"

namespace SharedClasses {

namespace {

using platform::Value;

constexpr std::string_view kVersionKey = "version";

// The entry under `key`, with its `type`; empty when there is none.
Value::Dictionary entryOf(const Value& document, std::string_view key, std::string_view type) {
  const Value* const entry = document.find(key);
  if (entry == nullptr || entry->dictionary() == nullptr) {
    return {};
  }
  Value::Dictionary result = *entry->dictionary();
  result.insert_or_assign("type", type);
  return result;
}

bool isPlaceholder(const Value::Dictionary& entry, std::string_view key) {
  const auto found = entry.find(key);
  const std::string* const text = found == entry.end() ? nullptr : found->second.text();
  return text != nullptr && text->find("placeholder") != std::string::npos;
}

void clearPlaceholder(Value::Dictionary& entry, const std::string& key) {
  if (isPlaceholder(entry, key)) {
    entry.insert_or_assign(key, "");
  }
}

VersionStruct versionOf(const Value::Dictionary& entry) {
  const auto found = entry.find(kVersionKey);
  const std::string* const text = found == entry.end() ? nullptr : found->second.text();
  VersionStruct version;
  static_cast<void>(VersionNumbers::stringToVersion(
      text == nullptr ? std::nullopt : std::optional<std::string_view>(*text), &version));
  return version;
}

}  // namespace

VersionDocument versionDocumentFromText(std::string_view text) {
  if (text.size() > kMaximumVersionDocumentSize) {
    return {};
  }
  const Value root = platform::propertyListFromXML(text).value_or(Value());
  VersionDocument document{entryOf(root, "release", "Latest"), entryOf(root, "update", "Free Update"),
                           entryOf(root, "test", "Test")};
  clearPlaceholder(document.release, "cost");
  clearPlaceholder(document.test, "description");
  clearPlaceholder(document.test, "url");
  if (isPlaceholder(document.test, kVersionKey)) {
    document.test.insert_or_assign("", kVersionKey);
  }
  return document;
}

NewerVersions newerVersionsOf(const VersionDocument& document, const VersionStruct& own) {
  const VersionStruct release = versionOf(document.release);
  const VersionStruct update = versionOf(document.update);
  const VersionStruct test = versionOf(document.test);
  NewerVersions newer;
  const auto compare = [&newer](const VersionStruct& a, const VersionStruct& b) {
    newer.lastComparison = VersionNumbers::compareVersions(&a, &b);
    return newer.lastComparison;
  };
  const auto add = [&newer](const Value::Dictionary& entry) {
    if (!entry.empty()) {
      newer.entries.emplace_back(entry);
    }
  };
  if (compare(update, own) > 0) {
    add(document.update);
  }
  if (compare(release, own) > 0 && compare(release, update) != 0) {
    add(document.release);
  }
  if (compare(test, own) > 0 && compare(test, release) > 0 && compare(test, update) > 0) {
    add(document.test);
  }
  return newer;
}

}  // namespace SharedClasses
