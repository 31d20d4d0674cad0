// Scripting descriptors turned into the plain values that the programs store, and described for debugging.
// The conversions are pure but for the log and the local time zone, by which dates are read; safe on any thread that
// has 512 KiB of stack left: a descriptor of Descriptor::kMaximumDepth levels takes up to 192 KiB of it, or 288 KiB in
// a build that is not optimised.
#pragma once

#include <optional>
#include <string>

#include "platform/descriptor.h"
#include "platform/value.h"

namespace SharedClasses::Utilities {

// The plain value of a descriptor that somebody else owns; absent for null. As NSObjectWithAEDescObj().
[[nodiscard]] platform::Value NSObjectWithAEDesc(const platform::Descriptor* descriptor);

// The plain value of a descriptor:
//
//   "null", "obj "   absent
//   "bool"           a boolean
//   "long", "comp"   an integer of 32 bits; absent beyond it
//   "sing", "doub"   a real
//   "enum", "type"   the code, an unsigned number; absent for "msng", the missing value
//   "utxt"           a text
//   "ldt "           a date: the local time at its moment; absent where that time or its instant lies beyond the
//                    calendar. A time that a change of clocks leaves out or repeats is read as
//                    platform::CalendarDate does
//   "cRGB"           a colour, opaque; absent for less than six bytes
//   "****"           what the property list in it holds; absent where it holds none
//   "list"           a list, without the items that have no value
//   "reco"           a dictionary of the items under "pnam", "Addr", "Note", "Logn", "Modl" and "Stat", as "name",
//                    "address", "notes", "logging", "model" and "status"; other items and those without a value are
//                    left out
//   "aevt"           the value of its direct object
//
// Absent for null and for data of the wrong size; also for any other type, which is logged. A conversion logs the first
// 100 of these, then in one line how many more there were; a code that is no text is logged without its name. Of
// several items under one keyword, as of several pairs with one key, the last that has a value counts.
// Kept: "shor" is such another type too, though it coerces to long.
// Kept: a record of exactly one item is never read by its keyword. The items of that item, of whatever kind it is,
// count as keys and values in turn, so that one with a single ordinary property gives an empty dictionary. Pairs whose
// key is no text, or that lack a value, are passed over.
[[nodiscard]] platform::Value NSObjectWithAEDescObj(const platform::DescriptorPointer& descriptor);

// The descriptor in words: "AEDesc is a null pointer." for null, "AEDesc descriptor type is a null type." for "null",
// else its description. Absent where that cannot be had, for want of memory.
[[nodiscard]] std::optional<std::string> DebugAEDescription(const platform::Descriptor* descriptor);

// Logs DebugAEDescription() behind "AEDesc: "; should that throw, what it says instead.
void DebugLogAEDesc(const platform::Descriptor* descriptor);

// Whether a property list can hold `value` (platform/property_list.h): data, dates, numbers and texts, and lists and
// dictionaries of nothing else, at most 512 in one another. The first part that none can hold is logged with its class,
// a list or dictionary that stands too deep among them. An absent value cannot be held, which is not logged; under a
// key it is no entry at all, as the writer leaves it out. Takes time for each part once, however many places share it.
// Kept: keys are not looked at, nor what a text or date holds. The writer still refuses a text or key that is not
// well-formed UTF-8 or has characters that XML has no place for, a date that is no number or outside of the years 0000
// to 9999, and a document that is too large, and says which.
[[nodiscard]] bool dictionaryObjectIsWritable(const platform::Value& value);

}  // namespace SharedClasses::Utilities
