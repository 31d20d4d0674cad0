// Typed, tagged values in which scripting requests and replies travel: a number, a text, a list, a record, a whole
// event, each under a four-character type code.
// A descriptor never changes once it is made, and its items are shared, so it may be read on several threads at once.
// What would be too deep or too large is never made: whatever there is can be printed, written, compared and converted
// in bounded time. No depth of items adds to the stack where descriptors are read, printed, written, compared and
// dropped. Where memory is wanting, std::bad_alloc is thrown, as by the standard containers.
//
//   const std::vector<Descriptor::Keyed> parts = {{fourCharCode("pnam"), Descriptor::text("Hall lamp")},
//                                                 {fourCharCode("Stat"), Descriptor::integer(1)}};
//   const auto lamp = Descriptor::withKeyedItems(Descriptor::kRecord, parts);
//   lamp->description();                                           // { pnam: "Hall lamp", Stat: 1 }
//   const auto received = Descriptor::fromBytes(lamp->toBytes());  // null for bytes that are no descriptor
//   received->itemUnder(fourCharCode("Stat"))->coerceToLong();     // 1; received->item(2) is the same item
//
// The plain value of a descriptor is had from Utilities::NSObjectWithAEDescObj (scripting/descriptors.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/four_char_code.h"

namespace SharedClasses::platform {

class Descriptor;
using DescriptorPointer = std::shared_ptr<const Descriptor>;

// Why bytes were refused.
struct DescriptorError {
  std::string message;     // one line: "the list ends after 3 of its 5 items"
  std::size_t offset = 0;  // of the byte at which the fault lies; where bytes are missing, how many there are
};

class Descriptor {
 public:
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  // A type says what a descriptor holds: items for a list; items under keywords for a record, an event and an object
  // specifier; data for every other type. Data of the known types are
  //   "null"          none
  //   "bool"          1 byte, 0 or other
  //   "shor" "long" "comp"   signed integers of 2, 4 and 8 bytes
  //   "sing" "doub"   floating-point numbers of 4 and 8 bytes
  //   "enum" "type"   a four-character code
  //   "utxt"          UTF-8
  //   "ldt "          seconds since 1904-01-01 00:00:00 in local time, signed, 8 bytes
  //   "cRGB"          red, green, blue, 0 to 65535 each, 2 bytes big-endian
  //   "****"          an XML property list
  // in the byte order of the machine unless said.
  static constexpr FourCharCode kNull = fourCharCode("null");
  static constexpr FourCharCode kBoolean = fourCharCode("bool");
  static constexpr FourCharCode kInteger16 = fourCharCode("shor");
  static constexpr FourCharCode kInteger32 = fourCharCode("long");
  static constexpr FourCharCode kInteger64 = fourCharCode("comp");
  static constexpr FourCharCode kReal32 = fourCharCode("sing");
  static constexpr FourCharCode kReal64 = fourCharCode("doub");
  static constexpr FourCharCode kEnumerated = fourCharCode("enum");
  static constexpr FourCharCode kType = fourCharCode("type");
  static constexpr FourCharCode kText = fourCharCode("utxt");
  static constexpr FourCharCode kLongDateTime = fourCharCode("ldt ");
  static constexpr FourCharCode kColor = fourCharCode("cRGB");
  static constexpr FourCharCode kArchive = fourCharCode("****");
  static constexpr FourCharCode kList = fourCharCode("list");
  static constexpr FourCharCode kRecord = fourCharCode("reco");
  static constexpr FourCharCode kEvent = fourCharCode("aevt");
  static constexpr FourCharCode kObjectSpecifier = fourCharCode("obj ");

  // The parameter of an event on which it acts.
  static constexpr FourCharCode kDirectObject = fourCharCode("----");
  // The code that stands for a missing value.
  static constexpr FourCharCode kMissingValue = fourCharCode("msng");

  // The most lists, records, events and object specifiers that may stand in one another.
  static constexpr std::size_t kMaximumDepth = 512;
  // The most bytes of toBytes(), and the most items in all, those of items included. Items that are shared count as
  // often as they stand. Reading takes about 200 bytes of memory for each item, 53 MB for the most of them, and the
  // data once more; comparing two that hold items takes the bytes of both.
  static constexpr std::size_t kMaximumSize = std::size_t{16} << 20;
  static constexpr std::size_t kMaximumItemCount = std::size_t{1} << 18;
  // The most bytes that description() gives, the closing "…" of a cut one included.
  static constexpr std::size_t kMaximumDescriptionLength = std::size_t{1} << 20;

  // An item under its keyword.
  struct Keyed {
    FourCharCode keyword = 0;
    DescriptorPointer value;
  };

  // Making. Each gives null where the result would be too deep or too large, and where an item is null; `withData` also
  // for a type that holds items, `withKeyedItems` for one that holds none under keywords. `withData` does not look at
  // the data: what does not fit its type has no number and no value.
  [[nodiscard]] static DescriptorPointer withData(FourCharCode type, std::span<const std::uint8_t> data);
  [[nodiscard]] static DescriptorPointer withItems(std::vector<DescriptorPointer> items);  // a list
  [[nodiscard]] static DescriptorPointer withKeyedItems(FourCharCode type, std::vector<Keyed> items);
  [[nodiscard]] static DescriptorPointer null();
  [[nodiscard]] static DescriptorPointer boolean(bool value);
  [[nodiscard]] static DescriptorPointer integer(std::int32_t value);
  [[nodiscard]] static DescriptorPointer integer64(std::int64_t value);
  [[nodiscard]] static DescriptorPointer real(double value);
  [[nodiscard]] static DescriptorPointer enumerated(FourCharCode code);
  [[nodiscard]] static DescriptorPointer type(FourCharCode code);
  [[nodiscard]] static DescriptorPointer text(std::string_view text);  // malformed pieces become U+FFFD
  [[nodiscard]] static DescriptorPointer localDateTime(std::int64_t secondsSince1904);
  [[nodiscard]] static DescriptorPointer color(std::uint16_t red, std::uint16_t green, std::uint16_t blue);
  [[nodiscard]] static DescriptorPointer archive(std::string_view xml);  // a property list, which is not looked at

  [[nodiscard]] FourCharCode type() const { return mType; }

  // Empty for a type that holds items.
  [[nodiscard]] std::span<const std::uint8_t> data() const { return mData; }

  // How many items it holds; 0 for a type that holds data.
  [[nodiscard]] std::size_t itemCount() const { return mItems.size(); }
  // The item at `index`, from 1; null where there is none.
  [[nodiscard]] DescriptorPointer item(std::size_t index) const;
  // The keyword of that item; 0 for a list's, and where there is none.
  [[nodiscard]] FourCharCode keyword(std::size_t index) const;
  // The last item under `keyword`; null where there is none.
  [[nodiscard]] DescriptorPointer itemUnder(FourCharCode keyword) const;

  // Its number as a signed 32-bit integer: that of integers, booleans, and reals that are whole. Absent beyond the
  // range, for other types and for data of the wrong size: nothing is cut.
  [[nodiscard]] std::optional<std::int32_t> coerceToLong() const;

  // Its content, by its type alone; absent for every other type and for data of the wrong size.
  [[nodiscard]] std::optional<bool> booleanValue() const;          // "bool"
  [[nodiscard]] std::optional<double> realValue() const;           // "sing", "doub"
  [[nodiscard]] std::optional<FourCharCode> codeValue() const;     // "enum", "type"
  [[nodiscard]] std::optional<std::int64_t> localSeconds() const;  // "ldt ": since 1904-01-01 00:00:00

  // Its text; absent for other types than "utxt". Malformed pieces become U+FFFD.
  [[nodiscard]] std::optional<std::string> stringValue() const;

  // One line for people: null, true, 40, -0.5, "Hall lamp", 'On  ', 'alis'($0a0bff$), [ 1, "two" ],
  // { name: "Lamp", '----': 3 }, event{ … }, obj{ … }; empty ones are [ ] and { }. Keywords of letters and digits stand
  // bare, others in quotes; a code has a backslash in front of a quote and a backslash, and bytes that are no printable
  // ASCII show as '\x0aabc'. Reals have the shortest form that reads back as the same number of their size: 3, 0.1, -0,
  // nan, -inf. In texts, quotes, backslashes, control characters and line ends are escaped as in JSON; characters that
  // turn the direction of writing stand as they are. Dates, colours and property lists, "null" with data, and known
  // types whose data have the wrong size, show their data as unknown types do. Always well-formed UTF-8; cut at
  // kMaximumDescriptionLength.
  [[nodiscard]] std::string description() const;

  // The byte form, in which programs exchange descriptors and keep them in files: the four bytes "mdsc", then for each
  // descriptor
  //   4 bytes  the type
  //   4 bytes  how many bytes of data follow, or how many items
  //            the data, or the items; in front of each keyed item, 4 bytes for its keyword
  // all of them big-endian, save what is inside the data. The form does not say how long it is: whatever carries it
  // must keep its length. Both sides must have one byte order, or numbers are read as others without complaint.
  [[nodiscard]] std::vector<std::uint8_t> toBytes() const;
  // Reads the byte form. Null for anything else, bytes behind the end included, and for what is too deep or too large;
  // `error` (null when not wanted; left alone on success) then says why.
  [[nodiscard]] static DescriptorPointer fromBytes(std::span<const std::uint8_t> bytes,
                                                   DescriptorError* error = nullptr);

  // Same type, same data, same items under the same keywords in the same order. Of two pointers, compare *a == *b:
  // a == b asks whether they are one descriptor.
  friend bool operator==(const Descriptor& a, const Descriptor& b);

 private:
  class Reader;
  struct Destroyer;

  Descriptor() = default;
  static DescriptorPointer make(FourCharCode type, std::span<const std::uint8_t> data, std::vector<Keyed> items);

  // Goes through the descriptor and all that it holds in the order of the byte form, without recursion, until `enter`
  // returns false.
  template <typename Enter, typename Leave>
  void walk(Enter enter, Leave leave) const;

  FourCharCode mType = kNull;
  std::vector<std::uint8_t> mData;
  std::vector<Keyed> mItems;             // of a list with keyword 0
  std::size_t mDepth = 0;                // of lists, records, events and specifiers in one another; 0 for data
  std::size_t mSize = 0;                 // of the byte form, without its first four bytes
  std::size_t mItemsInAll = 0;           // those of its items included
  Descriptor* mNextToDestroy = nullptr;  // set while it waits for its destruction
};

}  // namespace SharedClasses::platform
