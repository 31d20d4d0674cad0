// The version-information document: which versions of the product are offered, and which of them are newer.
// Pure and stateless; safe on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/value.h"
#include "updates/version_numbers.h"

namespace SharedClasses {

// The most bytes that a document may have; a longer one counts as no document.
inline constexpr std::size_t kMaximumVersionDocumentSize = std::size_t{256} << 10;

// The entries of a document, dictionaries of texts as a rule; empty where the document has none.
struct VersionDocument {
  platform::Value::Dictionary release;  // the latest full release
  platform::Value::Dictionary update;   // the latest free update for the version that asked
  platform::Value::Dictionary test;     // the latest test build
};

// Reads an XML property list, a dictionary of the entries "release", "update" and "test"; all of them are empty for any
// other text. An entry that is no dictionary counts as missing. Each entry receives its "type" for display. Of what the
// server marks as not on offer, by the word "placeholder", the cost of the release, and the description and the address
// of the test build become empty texts.
// Kept: a test build whose version is a placeholder keeps it and gets the text "version" under the empty key. Plain
// "placeholder" reads as 0.0.a0, older than whatever is released; a number in front, as in "2.placeholder", counts.
[[nodiscard]] VersionDocument versionDocumentFromText(std::string_view text);

// Entries that are newer than a version.
struct NewerVersions {
  platform::Value::List entries;
  std::int32_t lastComparison = 0;  // of those that were made, as VersionNumbers::compareVersions gives it
};

// The entries of `document` newer than `own`: the update, then the release where it is another version than the update,
// then the test build where it is newer than both. An entry without a text as its "version" counts as 0.0: even an
// empty one of the document, which has its type, is listed for an own 0.0b1. One that the document lacks is never
// listed, but counts as 0.0 where others are compared with it.
[[nodiscard]] NewerVersions newerVersionsOf(const VersionDocument& document, const VersionStruct& own);

}  // namespace SharedClasses
