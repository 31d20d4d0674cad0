// Property lists: values as XML, the form in which preferences and the facts about a bundle are kept in files.
// Nothing in a document is ever fetched or run. Pure and stateless; safe on any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace SharedClasses::platform {

// The most bytes that a document may have.
inline constexpr std::size_t kMaximumPropertyListSize = std::size_t{16} << 20;

// The most arrays and dictionaries that may stand in one another.
inline constexpr std::size_t kMaximumPropertyListDepth = 512;

// Why a document was refused.
struct PropertyListError {
  std::string message;   // one line of UTF-8 that names the element: "<integer> holds \"1x\", which is no integer"
  std::size_t line = 0;  // of the document, from 1
};

// The value that `document` holds: XML in UTF-8, in which an optional <plist> holds one of
//   <dict>     <key>s and values in turn; of a key that stands there twice, the last value counts
//   <array>    values
//   <string>   text, as it stands
//   <integer>  decimal or 0x hexadecimal, with an optional sign; the nearest end of the 64-bit range beyond it
//   <real>     what std::from_chars reads, "nan" and "-inf" included, and a leading +; the nearest finite number when
//              beyond the range
//   <true/>, <false/>
//   <date>     YYYY-MM-DDTHH:MM:SSZ, a day and time that exist
//   <data>     base64 with its padding; blanks count for nothing
// Blanks (spaces, tabs, line ends) around numbers and dates, comments and processing instructions are passed over.
// Gives nothing for anything else, and then fills in `error` (null when not wanted; left alone on success): unknown
// elements, attributes other than one `version` of <plist>, which holds no entities, text where none belongs, a key
// without a value, another encoding than UTF-8 or its part US-ASCII, a DOCTYPE that is not plist's or declares anything
// itself, texts with other entities than XML's own five, a document that is too large or too deep, and whatever is not
// well-formed XML. Logs nothing.
[[nodiscard]] std::optional<Value> propertyListFromXML(std::string_view document, PropertyListError* error = nullptr);

// The document that holds `value`: a file that a person can read and mend, with one element a line, tabs for the
// levels, keys in byte order and a line end at the end. propertyListFromXML reads it back as an equal value, save that
//   dates lose what they have beyond whole seconds: they become the whole second before;
//   entries of a dictionary that are absent are left out.
// Reals have the shortest form that reads back as the same number and stay reals; 0.0 and -0.0 stay apart; NaN and the
// infinities are written as such. Texts and keys keep each character, blanks at their ends and CR included.
// Gives nothing for what no document can hold, so that nothing is lost unseen, and then fills in `error` (null when not
// wanted; left alone on success) with one line of UTF-8 that names the place: `value["lamps"][3] is a color, which …`.
// That is so for
//   objects and colours; absent values, alone and in lists;
//   dates outside of the years 0000 to 9999, and those that are no number;
//   texts and keys that are not well-formed UTF-8 or hold a character that XML has no place for: control characters
//   other than tab, LF and CR, U+FFFE and U+FFFF;
//   more than kMaximumPropertyListDepth levels, and documents above kMaximumPropertyListSize, for which each entry that
//   was left out counts as a byte.
// What is written, propertyListFromXML never refuses. Nesting takes no stack, and parts that values share are bounded
// by the size of the document. Logs nothing.
[[nodiscard]] std::optional<std::string> propertyListAsXML(const Value& value, std::string* error = nullptr);

}  // namespace SharedClasses::platform
