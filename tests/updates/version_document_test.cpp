#include "updates/version_document.h"

#include <gtest/gtest.h>

namespace SharedClasses {
namespace {

using platform::Value;

// Nothing for an empty text.
std::string entry(const std::string& name, const std::string& key, const std::string& text) {
  return text.empty() ? "" : "<key>" + name + "</key><dict><key>" + key + "</key><string>" + text + "</string></dict>";
}

std::string versions(const std::string& update, const std::string& release, const std::string& test) {
  return "<dict>" + entry("update", "version", update) + entry("release", "version", release) +
         entry("test", "version", test) + "</dict>";
}

// `innermost` in as many dictionaries.
std::string nested(int levels, const std::string& innermost) {
  std::string begins, ends;
  for (; levels > 0; --levels) {
    begins += "<dict><key>a</key>";
    ends += "</dict>";
  }
  return begins + innermost + ends;
}

TEST(VersionDocument, WhatIsNewerIsListedInItsOrderAndTheLastComparisonIsTold) {
  const std::string offer = versions("3.0", "", "");
  const std::string full = offer + std::string((256 << 10) - offer.size(), ' ');
  const std::string more = "<key>more</key>" + nested(510, "<true/>") + "</dict></dict>";
  const struct {
    const char* name;
    std::string text;
    std::string listed;  // types, and the last comparison
    const char* own = "2.0";
  } kRows[] = {
      {"all three", versions("2.0.1", "2.1", "2.2b1"), "Free Update Latest Test 1"},
      {"release is the update", versions("2.1", "2.1.0", ""), "Free Update -1"},
      {"release older than the update", versions("2.1", "2.0.5", ""), "Free Update Latest -1"},
      {"beta of the release", versions("", "2.1", "2.1b2"), "Latest -1"},
      {"beta of the update", versions("2.1", "", "2.1b2"), "Free Update -1"},
      {"test is the release", versions("2.2", "2.1", "2.1"), "Free Update Latest 0"},
      {"test alone", versions("", "", "2.1b2"), "Test 1"},
      {"own beta", versions("", "2.0", ""), "Latest -1", "2.0b4"},
      {"all equal", versions("2.0", "2.0", "2.0"), "0"},
      {"test is a placeholder", versions("", "", "placeholder"), "-1"},
      {"no entries, older than all", versions("", "", ""), "0", "0.0b1"},
      {"empty entry, which has its type", "<dict><key>update</key><dict/></dict>", "Free Update 0", "0.0b1"},
      {"entry that is no dictionary", "<dict><key>update</key><string>3.0</string></dict>", "0", "0.0b1"},
      {"version that is no text", "<dict><key>update</key><dict><key>version</key><real>3</real></dict></dict>", "-1"},
      {"as long as may be", full, "Free Update -1"},
      {"a byte more", full + " ", "-1"},
      {"no XML", "3.0", "-1"},
      {"broken off", offer.substr(0, offer.size() - 1), "-1"},
      {"in a list", "<array>" + offer + "</array>", "-1"},
      {"entities", "<!DOCTYPE plist [<!ENTITY a SYSTEM \"/etc/passwd\"><!ENTITY b \"&a;&a;\">]>" + offer, "-1"},
      {"huge attribute", "<plist version='" + std::string(250'000, 'x') + "'>" + offer + "</plist>", "Free Update -1"},
      {"deep entry", offer.substr(0, offer.find("</dict>")) + more, "Free Update -1"},
      {"within 256 KiB of dictionaries", nested(10'000, offer), "-1"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    VersionStruct own;
    EXPECT_EQ(VersionNumbers::stringToVersion(row.own, &own), 0);
    const NewerVersions newer = newerVersionsOf(versionDocumentFromText(row.text), own);
    std::string listed;
    for (const Value& one : newer.entries) {
      listed += *one.find("type")->text() + ' ';
    }
    EXPECT_EQ(listed + std::to_string(newer.lastComparison), row.listed);
  }
}

TEST(VersionDocument, WhatIsNotOnOfferIsClearedAndTheRestHandedOn) {
  // The entry, its key and text, and what is kept.
  const std::tuple<std::string, const char*, const char*, Value::Dictionary> kRows[] = {
      {"release", "cost", "a placeholder.", {{"type", "Latest"}, {"cost", ""}}},
      {"release", "cost", "Placeholder", {{"type", "Latest"}, {"cost", "Placeholder"}}},
      {"release", "url", "placeholder", {{"type", "Latest"}, {"url", "placeholder"}}},
      {"release", "version", "placeholder", {{"type", "Latest"}, {"version", "placeholder"}}},
      {"update", "cost", "placeholder", {{"type", "Free Update"}, {"cost", "placeholder"}}},
      {"update", "type", "Costly", {{"type", "Free Update"}}},
      {"test", "description", "placeholder", {{"type", "Test"}, {"description", ""}}},
      {"test", "url", "http://placeholder/", {{"type", "Test"}, {"url", ""}}},
      {"test", "version", "placeholder", {{"type", "Test"}, {"version", "placeholder"}, {"", "version"}}},
  };
  for (const auto& [type, key, text, kept] : kRows) {
    SCOPED_TRACE(type + ' ' + key + ' ' + text);
    const VersionDocument document = versionDocumentFromText("<dict>" + entry(type, key, text) + "</dict>");
    const Value::Dictionary* const entries[] = {&document.release, &document.update, &document.test};
    for (const Value::Dictionary* const each : entries) {
      EXPECT_EQ(*each, each == entries[std::string_view("rut").find(type[0])] ? kept : Value::Dictionary());
    }
  }
}

}  // namespace
}  // namespace SharedClasses
