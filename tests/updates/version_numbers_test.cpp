#include "updates/version_numbers.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <random>
#include <sstream>

#include "tests/support/main_bundle.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses {
namespace {

constexpr VersionStruct kDirty{9, 9, 9, 'x', 9};
constexpr auto kCompare = VersionNumbers::compareVersions;

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
  const std::tuple<const char*, std::optional<std::string_view>, VersionStruct, const char*> rows[] = {
      {"absent", std::nullopt, {}, "0.0"},
      {"a fourth number, empty components take no field", ".1..2.3.4.", {1, 2, 3, 0, 0}, "1.2.3"},
      {"empty components count for the place", "1..2b3", {1, 0, 2, 'b', 3}, "1.0.2.b3"},
      {"other letters and capitals, the first of two", "1f3.2B3.4b5a6", {1, 2, 4, 'b', 5}, "1.2.4.b5"},
      {"a letter alone keeps the numbers", "1.2.3.d", {1, 2, 3, 'd', 0}, "1.2.3.d0"},
      {"a blank is a number", "1.2.3. b4", {1, 2, 0, 'b', 4}, "1.2.b4"},
      {"a later stage overwrites, numbers between do not", "1.2b3.7.4d5", {1, 2, 4, 'd', 5}, "1.2.4.d5"},
      {"the bug fix before a stage in front", "1b2.3.4", {0, 0, 1, 'b', 2}, "0.0.1.b2"},
      {"blanks and signs", " +1.\u00A0-2.x", {1, -2, 0, 0, 0}, "1.-2"},
      {"saturated", "9.-9999999999.1a9999999999", {9, INT32_MIN, 1, 'a', INT32_MAX}, "9.-2147483648.1.a2147483647"},
      {"zero byte and broken UTF-8", std::string_view("1\0.2\xFF.3\xC3", 8), {1, 2, 3, 0, 0}, "1.2.3"},
  };
  for (const auto& [name, text, version, newText] : rows) {
    SCOPED_TRACE(name);
    EXPECT_EQ(parsed(text), version) << printed(parsed(text));
    EXPECT_EQ(printed(version), newText);
    EXPECT_EQ(parsed(newText), version) << printed(parsed(newText));
  }
  EXPECT_EQ(printed({1, 2, -3, '\xE9', 3}), "1.2.\u00E93");  // well formed whatever the stage is
  EXPECT_EQ(VersionNumbers::stringToVersion("1.2", nullptr), -72);
  EXPECT_EQ(VersionNumbers::versionToString({}, nullptr), -1);
}

TEST(VersionNumbers, ComparisonIsATotalOrder) {
  // Each is newer than the one before. At every step what follows says the opposite; the ends of the range are where a
  // difference would overflow.
  std::istringstream texts(
      "-2147483648.2147483647 -1.9d1 -1.9 1.-2147483648.2147483647 1.0.5 1.1b9 1.1 1.2147483647.-2147483648 "
      "2.0.-2147483648.b9 2.0d12 2.0a-2147483648 2.0a2147483647 2.0b7 2.0b10 2.0 2.0.1b1 2.0.2147483647b-9 10.4.9 "
      "10.4.11 2147483647.-2147483648d0");
  std::vector<VersionStruct> versions;
  for (std::string text; texts >> text;) {
    versions.push_back(parsed(text));
  }
  versions.insert(versions.begin() + 9, {2, 0, 0, 'z', 99});  // an unknown stage is older than "2.0d12"
  for (std::size_t i = 1; i < versions.size(); ++i) {
    EXPECT_EQ(kCompare(&versions[i], &versions[i - 1]), 1) << printed(versions[i]);
  }
  // Few values each, so that ties are met at every step.
  std::mt19937 random(7);
  const auto number = [&random] { return std::array{INT32_MIN, -1, 0, 1, INT32_MAX}[random() % 5]; };
  for (int i = 0; i < 2000; ++i) {
    versions.push_back({number(), number(), number(), "\0dabx"[random() % 5], number()});
  }
  for (const VersionStruct& a : versions) {
    for (const VersionStruct& b : versions) {
      const std::int32_t order = kCompare(&a, &b);
      ASSERT_TRUE(order == -kCompare(&b, &a) && (order == 0) == (a == b));  // no two of the letters have one rank
    }
  }
  versions.resize(150);
  for (const VersionStruct& a : versions) {
    for (const VersionStruct& b : versions) {
      for (const VersionStruct& c : versions) {
        ASSERT_FALSE(kCompare(&a, &b) <= 0 && kCompare(&b, &c) <= 0 && kCompare(&a, &c) > 0);
      }
    }
  }
  EXPECT_EQ(kCompare(nullptr, nullptr), 0);
  EXPECT_EQ(kCompare(nullptr, &versions[0]), -1);
  EXPECT_EQ(kCompare(&versions[0], nullptr), 1);
}

TEST(VersionNumbers, TheProgramsVersionIsThatOfItsBundle) {
  const std::string full = "<key>CFBundleVersion</key>", brief = "<key>CFBundleShortVersionString</key>";
  const std::tuple<std::string, bool, std::string_view, VersionStruct> rows[] = {
      {full + "<string>2.2b3</string>" + brief + "<string>2.1</string>", true, "2.1", {2, 1, 0, 0, 0}},
      {brief + "<string>2.1a4</string>", false, "2.1a4", {2, 1, 0, 'a', 4}},
      {full + "<string>2.2</string>" + brief + "<real>2.5</real>", false, "2.2", {}},
      {full + "<real>2.5</real>", false, "", {}}};
  for (const auto& [entries, isTest, text, record] : rows) {
    SCOPED_TRACE(entries);
    const tests::TemporaryFolder folder;
    folder.write("Info.plist", "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
    const tests::MainBundle bundle(folder.path());
    EXPECT_EQ(VersionNumbers::weAreTest(), isTest);
    EXPECT_EQ(VersionNumbers::selfVersionString(), text);
    EXPECT_EQ(*VersionNumbers::selfVersionStruct(), record);
  }
}

TEST(VersionNumbers, TheReleaseFileStatesItWithOrWithoutQuotes) {
  const std::tuple<const char*, std::string_view, std::optional<std::string_view>> rows[] = {
      {"blanks, carriage returns", "ID=x\r\n\tVERSION_ID= '1\\$2'\r\nVERSION=\"12 (bookworm)\"\n", "1\\$2"},
      {"protected characters", R"(VERSION_ID="1\"\$\\\n")", R"(1"$\\n)"},
      {"a quote that does not close, the last of several", "VERSION_ID=1\nVERSION_ID=\"2\nID=x\n", "2"},
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
  std::string marked(256, '\0');
  marked.resize(std::fread(marked.data(), 1, marked.size(), shell.get()));
  VersionStruct given = kDirty;
  EXPECT_EQ(VersionNumbers::systemVersionStruct(&given), marked.empty() ? nullptr : &given);
  EXPECT_EQ(given, marked.empty() ? kDirty : parsed(marked.substr(1)));
  const auto owned = VersionNumbers::systemVersionStruct();
  EXPECT_EQ(owned ? *owned : kDirty, given);
}

}  // namespace
}  // namespace SharedClasses
