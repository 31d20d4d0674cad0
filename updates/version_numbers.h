// Version numbers: a text such as "2.1" or "2.2b3" as a plain record, back to text, compared; and the versions of the
// running program and of the operating system. Stateless; safe on any thread.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace SharedClasses {

// Plain memory: it may be copied byte by byte and lie in a block of std::malloc. A cleared record is all zero.
struct VersionStruct {
  std::int32_t major = 0;
  std::int32_t minor = 0;
  std::int32_t bugFix = 0;
  char stage = 0;          // 0 for a release; else 'd' (development), 'a' (alpha) or 'b' (beta)
  std::int32_t build = 0;  // what stands behind the stage letter; 0 when there is nothing

  friend bool operator==(const VersionStruct&, const VersionStruct&) = default;
};

// Owns a record that is a block of std::malloc. release() hands the block to code that frees it with std::free.
struct VersionStructDeleter {
  void operator()(VersionStruct* version) const noexcept { std::free(version); }
};
using OwnedVersionStruct = std::unique_ptr<VersionStruct, VersionStructDeleter>;

// A base: a class that keeps versions derives from it and may give its instances operations of the same names.
class VersionNumbers {
 public:
  static constexpr std::int32_t kSuccess = 0;
  static constexpr std::int32_t kNoVersionRecord = -72;
  static constexpr std::int32_t kNoPlaceForText = -1;

  // `stringToVersion:to:`
  // Clears `*version` and fills it from `text`: kSuccess for any text, the absent and the empty one (all zero)
  // included; kNoVersionRecord, and nothing else, for a null `version`.
  // Periods part components, and empty ones are passed over. The first three numbers are `major`, `minor` and `bugFix`;
  // further ones are ignored. A number is read leniently (platform::lenientInteger): blanks, a sign, digits; 0 without
  // digits; the nearest end of the range beyond it.
  // A component with one of the letters "a", "b" and "d" (lower case, the first of them counts, in words too) sets
  // `stage` and, from what stands behind the letter, `build`; plain numbers behind it are ignored, a later such
  // component overwrites both. What stands before the letter is a number too, unless it is empty, which sets none.
  // Kept: that number becomes `minor` in the second component, empty ones counted here, and `bugFix` in any other:
  // "5b1" has the bug fix 5 and the major number 0, and "1..2b3" has the bug fix 2.
  // Kept: any other letter ends a number and is no stage: "1.2f3" is 1.2.
  [[nodiscard]] static std::int32_t stringToVersion(std::optional<std::string_view> text, VersionStruct* version);

  // `versionToString:to:`
  // Writes "1.2", "1.2.3", "1.2.b3" or "1.2.3.b4" to `*text`: kSuccess; kNoPlaceForText for a null `text`. The stage,
  // one code point below 256, has a period of its own; stringToVersion() reads this form and "1.2b3" as the same
  // record, but one with a stage other than the three letters does not come back.
  // Kept: a bug fix below 1 is not printed, so a negative one does not come back.
  [[nodiscard]] static std::int32_t versionToString(const VersionStruct& version, std::string* text);

  // `compareVersions:to:`
  // 1 when `a` is newer, -1 when it is older, 0 when they are equal or both null; a null one is older than any other.
  // The numbers count first, then the stage (a release is newer than a beta, that than an alpha, that than a
  // development build, and that than any other letter; those are equal), then the build.
  [[nodiscard]] static std::int32_t compareVersions(const VersionStruct* a, const VersionStruct* b);

  // Whether the running program is no release: "CFBundleVersion" of the main bundle (platform/bundle.h) has a stage
  // letter. No without that entry.
  [[nodiscard]] static bool weAreTest();

  // Fills `*version` from systemVersionString() and gives `version`. For a null `version`, gives a new block of
  // std::malloc, which the caller frees with std::free. Null, with `*version` as it was, where the system states no
  // version or memory has run out.
  [[nodiscard]] static VersionStruct* systemVersionStruct(VersionStruct* version);

  // The same in a record that is owned.
  [[nodiscard]] static OwnedVersionStruct systemVersionStruct() {
    return OwnedVersionStruct(systemVersionStruct(nullptr));
  }

  // What "CFBundleShortVersionString" of the main bundle says, all zero without that entry; null when memory has run
  // out.
  // Kept: not what selfVersionString() says where the bundle has only "CFBundleVersion".
  [[nodiscard]] static OwnedVersionStruct selfVersionStruct();

  // "CFBundleShortVersionString" of the main bundle; else its "CFBundleVersion"; else the empty text. An entry that is
  // no text counts as absent, here and above.
  [[nodiscard]] static std::string selfVersionString();

  // The version that the operating system states in /etc/os-release, which is read at each call; absent where that is
  // no regular file of at most 65,536 bytes that can be read, or states none.
  [[nodiscard]] static std::optional<std::string> systemVersionString();

  // The value of VERSION_ID in `release`, lines of assignments as in /etc/os-release, without blanks around it; of
  // several the last; absent when there is none. An empty one is empty. Always well-formed UTF-8.
  // Where the value begins with a quote of either kind, it is what stands up to the next of that kind, or to the end of
  // the line where that is missing; what follows is dropped. In double quotes a backslash goes from before a double
  // quote, a "$", a "`" and another backslash. No other rule of a shell is followed.
  [[nodiscard]] static std::optional<std::string> versionIDOfRelease(std::string_view release);

 protected:
  VersionNumbers() = default;
  VersionNumbers(const VersionNumbers&) = default;
  VersionNumbers& operator=(const VersionNumbers&) = default;
  ~VersionNumbers() = default;
};

}  // namespace SharedClasses
