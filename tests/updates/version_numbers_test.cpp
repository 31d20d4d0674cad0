#include "updates/version_numbers.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <random>
#include <span>
#include <sstream>
#include <tuple>
#include <vector>

#include "tests/support/main_bundle.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses {
namespace {

constexpr VersionStruct kDirty{9, 9, 9, 'x', 9};
constexpr std::int32_t kMost = 2147483647, kLeast = -kMost - 1;

VersionStruct parsed(std::optional<std::string_view> text) {
  VersionStruct version = kDirty;
  EXPECT_EQ(VersionNumbers::stringToVersion(text, &version), 0);
  return version;
}

std::string printed(const VersionStruct& version) {
  std::string text = "dirty";
  EXPECT_EQ(VersionNumbers::versionToString(version, &text), 0);
  return text;
}

TEST(VersionNumbers, BothFormsReadAsTheSameRecord) {
  const std::tuple<std::string_view, std::optional<std::string_view>, VersionStruct, std::string_view> rows[] = {
      {"absent", std::nullopt, {}, "0.0"},
      {"a fourth number is ignored", "1.2.3.4", {1, 2, 3, 0, 0}, "1.2.3"},
      {"empty components take no field", ".1..2.", {1, 2, 0, 0, 0}, "1.2"},
      {"empty components count for the place", "1..2b3", {1, 0, 2, 'b', 3}, "1.0.2.b3"},
      {"other letters and capitals, the first of two", "1f3.2B3.4b5a6", {1, 2, 4, 'b', 5}, "1.2.4.b5"},
      {"a letter alone keeps the numbers", "1.2.3.d", {1, 2, 3, 'd', 0}, "1.2.3.d0"},
      {"a blank is a number", "1.2.3. b4", {1, 2, 0, 'b', 4}, "1.2.b4"},
      {"a later stage overwrites", "1.2b3.4d5", {1, 2, 4, 'd', 5}, "1.2.4.d5"},
      {"numbers behind a stage are ignored", "1b2.3.4", {0, 0, 1, 'b', 2}, "0.0.1.b2"},
      {"blanks and signs", " +1.\u00A0-2.x", {1, -2, 0, 0, 0}, "1.-2"},
      {"beyond the range", "9.-9999999999.1a9999999999", {9, kLeast, 1, 'a', kMost}, "9.-2147483648.1.a2147483647"},
      {"zero byte and broken UTF-8", std::string_view("1\0.2\xFF.3\xC3", 8), {1, 2, 3, 0, 0}, "1.2.3"},
  };
  for (const auto& [name, text, version, newText] : rows) {
    SCOPED_TRACE(name);
    EXPECT_EQ(parsed(text), version) << printed(parsed(text));
    EXPECT_EQ(printed(version), newText);
    EXPECT_EQ(parsed(newText), version) << printed(parsed(newText));
  }
  EXPECT_EQ(printed({1, 2, 0, '\xE9', 3}), "1.2.\u00E93");  // well formed whatever the stage is
  EXPECT_EQ(printed(parsed("1.2.-3")), "1.2");
  EXPECT_EQ(VersionNumbers::stringToVersion("1.2", nullptr), -72);
  EXPECT_EQ(VersionNumbers::versionToString({}, nullptr), -1);
}

// At every step what follows says the opposite; the ends of the range are where a difference would overflow.
TEST(VersionNumbers, EachIsNewerThanAllBeforeIt) {
  std::vector<VersionStruct> versions;
  std::istringstream texts(
      "-2147483648.2147483647 -1.9d1 -1.9 1.-2147483648.2147483647 1.0.5 1.1b9 1.1 1.2147483647.-2147483648 "
      "2.0.-2147483648.b9 2.0d12 2.0a-2147483648 2.0a2147483647 2.0b7 2.0b10 2.0 2.0.1b1 2.0.2147483647b-9 10.4.9 "
      "10.4.11 2147483647.-2147483648d0");
  for (std::string text; texts >> text;) {
    versions.push_back(parsed(text));
  }
  versions.insert(versions.begin() + 9, {2, 0, 0, 'z', 99});  // an unknown stage is older than "2.0d12"
  const auto compare = VersionNumbers::compareVersions;
  for (const VersionStruct& a : versions) {
    for (const VersionStruct& b : versions) {
      EXPECT_EQ(compare(&a, &b), (&a > &b ? 1 : 0) - (&a < &b ? 1 : 0)) << printed(a) << " and " << printed(b);
    }
  }
  EXPECT_EQ(compare(nullptr, nullptr), 0);
  EXPECT_EQ(compare(nullptr, &versions[0]), -1);
  EXPECT_EQ(compare(&versions[0], nullptr), 1);
}

// Few values each, so that ties are met at every step; the ends of the range, where a difference would overflow.
TEST(VersionNumbers, ComparisonIsATotalOrder) {
  std::mt19937 random(7);
  const std::int32_t kNumbers[] = {-2147483647 - 1, -1, 0, 1, 2147483647};
  const auto number = [&] { return kNumbers[random() % std::size(kNumbers)]; };
  std::vector<VersionStruct> versions(2000);
  for (VersionStruct& version : versions) {
    version = {number(), number(), number(), "\0dabx"[random() % 5], number()};
  }
  const auto compare = VersionNumbers::compareVersions;
  for (const VersionStruct& a : versions) {
    for (const VersionStruct& b : versions) {
      const std::int32_t order = compare(&a, &b);
      ASSERT_TRUE(order == -compare(&b, &a) && (order == 0) == (a == b));  // no two of the letters have one rank
    }
  }
  const std::span<const VersionStruct> sample(versions.data(), 150);
  for (const VersionStruct& a : sample) {
    for (const VersionStruct& b : sample) {
      for (const VersionStruct& c : sample) {
        ASSERT_FALSE(compare(&a, &b) <= 0 && compare(&b, &c) <= 0 && compare(&a, &c) > 0);
      }
    }
  }
}

TEST(VersionNumbers, TheProgramsVersionIsThatOfItsBundle) {
  const std::string full = "<key>CFBundleVersion</key>", brief = "<key>CFBundleShortVersionString</key>";
  const std::tuple<const char*, std::string, bool, std::string_view, VersionStruct> rows[] = {
      {"both", full + "<string>2.2b3</string>" + brief + "<string>2.1</string>", true, "2.1", {2, 1, 0, 0, 0}},
      {"the short one alone", brief + "<string>2.1a4</string>", false, "2.1a4", {2, 1, 0, 'a', 4}},
      {"the other alone fills no record", full + "<string>2.2</string>", false, "2.2", {}},
      {"a number is no text", full + "<real>2.5</real>", false, "", {}},
  };
  for (const auto& [name, entries, isTest, text, record] : rows) {
    SCOPED_TRACE(name);
    const tests::TemporaryFolder folder;
    folder.write("Info.plist", "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
    const tests::MainBundle bundle(folder.path());
    EXPECT_EQ(VersionNumbers::weAreTest(), isTest);
    EXPECT_EQ(VersionNumbers::selfVersionString(), text);
    EXPECT_EQ(*VersionNumbers::selfVersionStruct(), record);
  }
}

TEST(VersionNumbers, TheReleaseFileIsReadAsAShellReadsIt) {
  const std::tuple<const char*, std::string_view, std::optional<std::string_view>> rows[] = {
      {"carriage returns", "ID=debian\r\nVERSION_ID='12'\r\nVERSION=\"12 (bookworm)\"\n", "12"},
      {"protected characters", R"(VERSION_ID="1\"\$\\\n")", R"(1"$\\n)"},
      {"a quote that does not close", "VERSION_ID=\"12\nID=x\n", "12"},
      {"the last of several", "VERSION_ID=1\nVERSION_ID=2\n", "2"},
      {"empty is not absent", "VERSION_ID=\n", ""},
      {"names that only look alike", "#VERSION_ID=1\nMY_VERSION_ID=2\nVERSION_ID_LIKE=3\n", std::nullopt},
      {"broken UTF-8, no line break", "VERSION_ID=1\xFF", "1\uFFFD"},
  };
  for (const auto& [name, release, version] : rows) {
    EXPECT_EQ(VersionNumbers::versionIDOfRelease(release), version) << name;
  }
}

// The shell reads the same file; it marks a version with a point in front.
TEST(VersionNumbers, TheSystemsVersionIsThatOfItsReleaseFile) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> shell(
      ::popen("unset VERSION_ID; . /etc/os-release 2>&-; printf %s \"${VERSION_ID+.$VERSION_ID}\"", "r"), ::pclose);
  std::array<char, 256> bytes{};
  const std::string marked(bytes.data(), std::fread(bytes.data(), 1, bytes.size(), shell.get()));
  VersionStruct given = kDirty;
  EXPECT_EQ(VersionNumbers::systemVersionStruct(&given), marked.empty() ? nullptr : &given);
  EXPECT_EQ(given, marked.empty() ? kDirty : parsed(marked.substr(1)));
  const auto owned = VersionNumbers::systemVersionStruct();
  EXPECT_EQ(owned ? *owned : kDirty, given);
}

}  // namespace
}  // namespace SharedClasses
