#include "platform/descriptor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <utility>

#include "platform/text.h"

namespace SharedClasses::platform {

namespace {

constexpr FourCharCode kSignature = fourCharCode("mdsc");
constexpr std::size_t kCodeSize = 4;
constexpr std::size_t kHeaderSize = 8;  // type and length

// The types that hold items, and how they are printed and named.
struct Holder {
  std::string_view name;
  std::string_view opening;
  FourCharCode type;
  char closing;
  bool hasKeywords;
};
constexpr Holder kHolders[] = {
    {"list", "[ ", Descriptor::kList, ']', false},
    {"record", "{ ", Descriptor::kRecord, '}', true},
    {"event", "event{ ", Descriptor::kEvent, '}', true},
    {"object specifier", "obj{ ", Descriptor::kObjectSpecifier, '}', true},
};

// Null for a type that holds data.
const Holder* holderOfType(FourCharCode type) {
  const auto* const holder = std::ranges::find(kHolders, type, &Holder::type);
  return holder == std::end(kHolders) ? nullptr : holder;
}

bool hasKeywords(FourCharCode type) {
  const Holder* const holder = holderOfType(type);
  return holder != nullptr && holder->hasKeywords;
}

// The number that `data` hold in the byte order of the machine; absent when they have another size.
template <typename Number>
std::optional<Number> numberIn(std::span<const std::uint8_t> data) {
  Number number{};
  if (data.size() != sizeof number) {
    return std::nullopt;
  }
  std::memcpy(&number, data.data(), sizeof number);
  return number;
}

template <typename Number>
std::array<std::uint8_t, sizeof(Number)> bytesOf(Number number) {
  std::array<std::uint8_t, sizeof number> bytes{};
  std::memcpy(bytes.data(), &number, sizeof number);
  return bytes;
}

std::optional<std::int64_t> integerIn(const Descriptor& descriptor) {
  switch (descriptor.type()) {
    case Descriptor::kInteger16:
      return numberIn<std::int16_t>(descriptor.data());
    case Descriptor::kInteger32:
      return numberIn<std::int32_t>(descriptor.data());
    case Descriptor::kInteger64:
      return numberIn<std::int64_t>(descriptor.data());
    default:
      return std::nullopt;
  }
}

// The shortest form that reads back as the same number; that of a "sing" as the same float.
std::string realText(FourCharCode type, double real) {
  if (type != Descriptor::kReal32 || std::isnan(real)) {
    return numberText(real);
  }
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), static_cast<float>(real)).ptr;
  return {text.data(), end};
}

std::string_view asText(std::span<const std::uint8_t> data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

std::span<const std::uint8_t> asData(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

void appendBigEndian(std::vector<std::uint8_t>& bytes, std::uint32_t number) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes.push_back(static_cast<std::uint8_t>(number >> shift));
  }
}

void appendHex(std::string& line, std::uint8_t byte) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  line += kDigits[byte >> 4];
  line += kDigits[byte & 0xFU];
}

void appendCode(std::string& line, FourCharCode code) {
  line += '\'';
  for (const int shift : {24, 16, 8, 0}) {
    const auto byte = static_cast<std::uint8_t>(code >> shift);
    if (byte < 0x20 || byte > 0x7E) {
      line += "\\x";
      appendHex(line, byte);
    } else {
      line += byte == '\'' || byte == '\\' ? "\\" : "";
      line += static_cast<char>(byte);
    }
  }
  line += '\'';
}

void appendKeyword(std::string& line, FourCharCode keyword) {
  std::string bare;
  for (const int shift : {24, 16, 8, 0}) {
    bare += static_cast<char>(keyword >> shift & 0xFF);
  }
  const bool isWord = std::ranges::all_of(bare, [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return isASCIILetter(byte) || isASCIIDigit(byte);
  });
  if (isWord) {
    line += bare;
  } else {
    appendCode(line, keyword);
  }
}

void appendText(std::string& line, std::string_view text) {
  constexpr std::string_view kEscaped = "\"\\\b\f\n\r\t";
  constexpr std::string_view kLetters = "\"\\bfnrt";
  line += '"';
  for (const char32_t c : CodePoints(text)) {
    const std::size_t place = c < 0x80 ? kEscaped.find(static_cast<char>(c)) : kEscaped.npos;
    if (place != kEscaped.npos) {
      line += '\\';
      line += kLetters[place];
    } else if (c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029) {
      line += "\\u" + hexDigits(c, 4);
    } else {
      appendUTF8(line, c);
    }
  }
  line += '"';
}

// As many of `data` as a description could show and one more, which then makes it too long.
std::span<const std::uint8_t> beginning(std::span<const std::uint8_t> data) {
  return data.first(std::min(data.size(), Descriptor::kMaximumDescriptionLength + 1));
}

// Prints a descriptor of a type that holds data.
void appendData(std::string& line, const Descriptor& descriptor) {
  if (descriptor.type() == Descriptor::kNull && descriptor.data().empty()) {
    line += "null";
  } else if (descriptor.type() == Descriptor::kText) {
    appendText(line, asText(beginning(descriptor.data())));
  } else if (const auto boolean = descriptor.booleanValue()) {
    line += *boolean ? "true" : "false";
  } else if (const auto integer = integerIn(descriptor)) {
    line += std::to_string(*integer);
  } else if (const auto real = descriptor.realValue()) {
    line += realText(descriptor.type(), *real);
  } else if (const auto code = descriptor.codeValue()) {
    appendCode(line, *code);
  } else {
    appendCode(line, descriptor.type());
    line += "($";
    for (const std::uint8_t byte : beginning(descriptor.data())) {
      appendHex(line, byte);
    }
    line += "$)";
  }
}

// Shortens a description that is longer than it may be.
void cut(std::string& line) {
  constexpr std::string_view kEllipsis = "…";
  std::size_t end = Descriptor::kMaximumDescriptionLength - kEllipsis.size();
  while ((static_cast<unsigned char>(line[end]) & 0xC0U) == 0x80U) {
    --end;
  }
  line.resize(end);
  line += kEllipsis;
}

}  // namespace

// Destroys descriptors whose last pointer goes. One that goes while another is being destroyed, as its items do, waits
// in a chain instead of on the stack. Nothing is allocated.
struct Descriptor::Destroyer {
  void operator()(Descriptor* descriptor) const {
    thread_local bool sIsDestroying = false;
    thread_local Descriptor* sWaiting = nullptr;
    descriptor->mNextToDestroy = std::exchange(sWaiting, descriptor);
    if (sIsDestroying) {
      return;
    }
    sIsDestroying = true;
    while (sWaiting != nullptr) {
      Descriptor* const next = std::exchange(sWaiting, sWaiting->mNextToDestroy);
      delete next;
    }
    sIsDestroying = false;
  }
};

DescriptorPointer Descriptor::make(FourCharCode type, std::span<const std::uint8_t> data, std::vector<Keyed> items) {
  constexpr std::size_t kRoom = kMaximumSize - kCodeSize;  // the signature stands in front
  const Holder* const holder = holderOfType(type);
  std::size_t depth = holder != nullptr ? 1 : 0;
  std::size_t size = kHeaderSize + data.size();
  std::size_t itemsInAll = items.size();
  for (const Keyed& item : items) {
    if (item.value == nullptr || size > kRoom) {
      return nullptr;
    }
    size += item.value->mSize + (holder != nullptr && holder->hasKeywords ? kCodeSize : 0);
    depth = std::max(depth, item.value->mDepth + 1);
    itemsInAll += item.value->mItemsInAll;
  }
  if (size > kRoom || itemsInAll > kMaximumItemCount || depth > kMaximumDepth) {
    return nullptr;
  }
  const std::shared_ptr<Descriptor> made(new Descriptor, Destroyer());
  made->mType = type;
  made->mData.assign(data.begin(), data.end());
  made->mItems = std::move(items);
  made->mDepth = depth;
  made->mSize = size;
  made->mItemsInAll = itemsInAll;
  return made;
}

DescriptorPointer Descriptor::withData(FourCharCode type, std::span<const std::uint8_t> data) {
  return holderOfType(type) == nullptr ? make(type, data, {}) : nullptr;
}

DescriptorPointer Descriptor::withItems(std::vector<DescriptorPointer> items) {
  std::vector<Keyed> keyed;
  keyed.reserve(items.size());
  for (DescriptorPointer& item : items) {
    keyed.push_back({0, std::move(item)});
  }
  return make(kList, {}, std::move(keyed));
}

DescriptorPointer Descriptor::withKeyedItems(FourCharCode type, std::vector<Keyed> items) {
  return hasKeywords(type) ? make(type, {}, std::move(items)) : nullptr;
}

DescriptorPointer Descriptor::null() {
  return make(kNull, {}, {});
}

DescriptorPointer Descriptor::boolean(bool value) {
  return make(kBoolean, bytesOf<std::uint8_t>(value ? 1 : 0), {});
}

DescriptorPointer Descriptor::integer(std::int32_t value) {
  return make(kInteger32, bytesOf(value), {});
}

DescriptorPointer Descriptor::integer64(std::int64_t value) {
  return make(kInteger64, bytesOf(value), {});
}

DescriptorPointer Descriptor::real(double value) {
  return make(kReal64, bytesOf(value), {});
}

DescriptorPointer Descriptor::enumerated(FourCharCode code) {
  return make(kEnumerated, bytesOf(code), {});
}

DescriptorPointer Descriptor::type(FourCharCode code) {
  return make(kType, bytesOf(code), {});
}

DescriptorPointer Descriptor::text(std::string_view text) {
  return make(kText, asData(repairedUTF8(text)), {});
}

DescriptorPointer Descriptor::localDateTime(std::int64_t secondsSince1904) {
  return make(kLongDateTime, bytesOf(secondsSince1904), {});
}

DescriptorPointer Descriptor::color(std::uint16_t red, std::uint16_t green, std::uint16_t blue) {
  std::vector<std::uint8_t> data;
  for (const std::uint16_t component : {red, green, blue}) {
    data.push_back(static_cast<std::uint8_t>(component >> 8));
    data.push_back(static_cast<std::uint8_t>(component & 0xFF));
  }
  return make(kColor, data, {});
}

DescriptorPointer Descriptor::archive(std::string_view xml) {
  return make(kArchive, asData(xml), {});
}

DescriptorPointer Descriptor::item(std::size_t index) const {
  return index >= 1 && index <= mItems.size() ? mItems[index - 1].value : nullptr;
}

FourCharCode Descriptor::keyword(std::size_t index) const {
  return index >= 1 && index <= mItems.size() ? mItems[index - 1].keyword : 0;
}

DescriptorPointer Descriptor::itemUnder(FourCharCode keyword) const {
  const auto last =
      std::find_if(mItems.rbegin(), mItems.rend(), [&](const Keyed& item) { return item.keyword == keyword; });
  return hasKeywords(mType) && last != mItems.rend() ? last->value : nullptr;
}

std::optional<std::int32_t> Descriptor::coerceToLong() const {
  if (const auto boolean = booleanValue()) {
    return *boolean ? 1 : 0;
  }
  if (const auto integer = integerIn(*this)) {
    return std::in_range<std::int32_t>(*integer) ? std::optional(static_cast<std::int32_t>(*integer)) : std::nullopt;
  }
  const auto real = realValue();
  const bool fits = real && *real >= INT32_MIN && *real <= INT32_MAX && std::trunc(*real) == *real;
  return fits ? std::optional(static_cast<std::int32_t>(*real)) : std::nullopt;
}

std::optional<bool> Descriptor::booleanValue() const {
  const auto byte = numberIn<std::uint8_t>(mData);
  return mType == kBoolean && byte ? std::optional(*byte != 0) : std::nullopt;
}

std::optional<double> Descriptor::realValue() const {
  if (mType == kReal32) {
    return numberIn<float>(mData);
  }
  return mType == kReal64 ? numberIn<double>(mData) : std::nullopt;
}

std::optional<FourCharCode> Descriptor::codeValue() const {
  return mType == kEnumerated || mType == kType ? numberIn<FourCharCode>(mData) : std::nullopt;
}

std::optional<std::int64_t> Descriptor::localSeconds() const {
  return mType == kLongDateTime ? numberIn<std::int64_t>(mData) : std::nullopt;
}

std::optional<std::string> Descriptor::stringValue() const {
  return mType == kText ? std::optional(repairedUTF8(asText(mData))) : std::nullopt;
}

// Calls enter(descriptor, its holder or null, its place in that from 1) and, behind what it holds, leave(descriptor).
// Ends where enter returns false.
template <typename Enter, typename Leave>
void Descriptor::walk(Enter enter, Leave leave) const {
  struct Level {
    const Descriptor* holder;
    std::size_t entered;
  };
  std::vector<Level> levels{{this, 0}};
  bool goesOn = enter(*this, nullptr, 0);
  while (goesOn && !levels.empty()) {
    const Descriptor& holder = *levels.back().holder;
    if (levels.back().entered == holder.mItems.size()) {
      leave(holder);
      levels.pop_back();
      continue;
    }
    const std::size_t place = ++levels.back().entered;
    const Descriptor& item = *holder.mItems[place - 1].value;
    goesOn = enter(item, &holder, place);
    levels.push_back({&item, 0});
  }
}

std::string Descriptor::description() const {
  std::string line;
  const auto enter = [&line](const Descriptor& descriptor, const Descriptor* holder, std::size_t place) {
    line += place > 1 ? ", " : "";
    if (holder != nullptr && hasKeywords(holder->mType)) {
      appendKeyword(line, holder->keyword(place));
      line += ": ";
    }
    if (const Holder* const kind = holderOfType(descriptor.mType)) {
      line += kind->opening;
    } else {
      appendData(line, descriptor);
    }
    return line.size() <= kMaximumDescriptionLength;
  };
  const auto leave = [&line](const Descriptor& descriptor) {
    if (const Holder* const kind = holderOfType(descriptor.mType)) {
      line += descriptor.mItems.empty() ? "" : " ";
      line += kind->closing;
    }
  };
  walk(enter, leave);
  if (line.size() > kMaximumDescriptionLength) {
    cut(line);
  }
  return line;
}

std::vector<std::uint8_t> Descriptor::toBytes() const {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(kCodeSize + mSize);
  appendBigEndian(bytes, kSignature);
  const auto enter = [&bytes](const Descriptor& descriptor, const Descriptor* holder, std::size_t place) {
    if (holder != nullptr && hasKeywords(holder->mType)) {
      appendBigEndian(bytes, holder->keyword(place));
    }
    appendBigEndian(bytes, descriptor.mType);
    appendBigEndian(bytes, static_cast<std::uint32_t>(descriptor.mData.size() + descriptor.mItems.size()));
    bytes.insert(bytes.end(), descriptor.mData.begin(), descriptor.mData.end());
    return true;
  };
  walk(enter, [](const Descriptor&) {});
  return bytes;
}

bool operator==(const Descriptor& a, const Descriptor& b) {
  // Each descriptor has one byte form, which is bounded also where items are shared many times over.
  return &a == &b || (a.mType == b.mType && a.mSize == b.mSize && a.mData == b.mData &&
                      (a.mItems.empty() || a.toBytes() == b.toBytes()));
}

// One reading of the byte form. Those whose items are still to come wait in a list instead of on the stack. Counts are
// never believed: room is made as items arrive.
class Descriptor::Reader {
 public:
  explicit Reader(std::span<const std::uint8_t> bytes) : mBytes(bytes) {}

  DescriptorPointer read() {
    if (mBytes.size() > kMaximumSize) {
      return refuse("more than the " + std::to_string(kMaximumSize) + " bytes that a descriptor may have",
                    kMaximumSize);
    }
    if (mBytes.size() < kCodeSize || nextNumber() != kSignature) {
      return refuse("the bytes do not begin with \"mdsc\"", 0);
    }
    do {
      if (!readOne()) {
        return nullptr;
      }
      closeFullHolders();
    } while (!mOpen.empty());
    if (remaining() > 0) {
      return refuse("the bytes go on for " + std::to_string(remaining()) + " bytes behind the descriptor", mPosition);
    }
    return mFinished.front().value;
  }

  [[nodiscard]] const DescriptorError& error() const { return mError; }

 private:
  struct OpenHolder {
    const Holder* kind;
    FourCharCode keyword;  // its own, in what holds it
    std::size_t count;
    std::size_t firstItem;  // in mFinished
  };

  [[nodiscard]] std::size_t remaining() const { return mBytes.size() - mPosition; }

  std::uint32_t nextNumber() {
    std::uint32_t number = 0;
    for (const std::uint8_t byte : mBytes.subspan(mPosition, kCodeSize)) {
      number = number << 8 | byte;
    }
    mPosition += kCodeSize;
    return number;
  }

  // Reads data, or opens what holds items.
  bool readOne() {
    const bool isKeyed = !mOpen.empty() && mOpen.back().kind->hasKeywords;
    if (remaining() < kHeaderSize + (isKeyed ? kCodeSize : 0)) {
      refuse(cutMessage(), mBytes.size());
      return false;
    }
    if (mRead++ > kMaximumItemCount) {
      refuse("more than the " + std::to_string(kMaximumItemCount) + " items that a descriptor may have", mPosition);
      return false;
    }
    const FourCharCode keyword = isKeyed ? nextNumber() : 0;
    const std::size_t start = mPosition;
    const FourCharCode type = nextNumber();
    const std::size_t count = nextNumber();
    if (const Holder* const kind = holderOfType(type)) {
      if (mOpen.size() == kMaximumDepth) {
        refuse("more than " + std::to_string(kMaximumDepth) +
                   " lists, records, events and object specifiers stand in one another",
               start);
        return false;
      }
      mOpen.push_back({kind, keyword, count, mFinished.size()});
      return true;
    }
    if (count > remaining()) {
      std::string message = "the data of ";
      appendCode(message, type);
      message += " end after " + std::to_string(remaining()) + " of their " + std::to_string(count) + " bytes";
      refuse(std::move(message), mBytes.size());
      return false;
    }
    mFinished.push_back({keyword, make(type, mBytes.subspan(mPosition, count), {})});
    mPosition += count;
    return true;
  }

  void closeFullHolders() {
    while (!mOpen.empty() && mFinished.size() - mOpen.back().firstItem == mOpen.back().count) {
      const OpenHolder holder = mOpen.back();
      mOpen.pop_back();
      const auto first = mFinished.begin() + static_cast<std::ptrdiff_t>(holder.firstItem);
      std::vector<Keyed> items(std::make_move_iterator(first), std::make_move_iterator(mFinished.end()));
      mFinished.erase(first, mFinished.end());
      mFinished.push_back({holder.keyword, make(holder.kind->type, {}, std::move(items))});
    }
  }

  [[nodiscard]] std::string cutMessage() const {
    if (mOpen.empty()) {
      return "the bytes end before the type and the length of the descriptor";
    }
    const OpenHolder& holder = mOpen.back();
    return "the " + std::string(holder.kind->name) + " ends after " +
           std::to_string(mFinished.size() - holder.firstItem) + " of its " + std::to_string(holder.count) + " items";
  }

  std::nullptr_t refuse(std::string message, std::size_t offset) {
    mError = {std::move(message), offset};
    return nullptr;
  }

  std::span<const std::uint8_t> mBytes;
  std::size_t mPosition = 0;
  std::size_t mRead = 0;  // items begun, and the one that holds them all
  std::vector<OpenHolder> mOpen;
  std::vector<Keyed> mFinished;  // those whose holder is still open; at the end the one descriptor
  DescriptorError mError;
};

DescriptorPointer Descriptor::fromBytes(std::span<const std::uint8_t> bytes, DescriptorError* error) {
  Reader reader(bytes);
  DescriptorPointer descriptor = reader.read();
  if (descriptor == nullptr && error != nullptr) {
    *error = reader.error();
  }
  return descriptor;
}

}  // namespace SharedClasses::platform
