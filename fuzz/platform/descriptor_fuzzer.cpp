// Any bytes are either refused with a reason and a place, or give a descriptor that is written as the same bytes,
// prints on one line, and answers as slow models do; lists that share it grow to the bound and no further. Its plain
// value is that of its items.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/descriptor.h"
#include "platform/log.h"
#include "platform/text.h"
#include "platform/value.h"
#include "scripting/descriptors.h"

namespace {

using namespace SharedClasses::platform;

class Silence : public LogSink {
 public:
  void write(std::string_view /*message*/) override {}
};
const bool kIsSilent = (setLogSink(std::make_shared<Silence>()), true);

void check(bool isRight) {
  if (!isRight) {
    std::abort();
  }
}

// Its number with 64 bits of precision, which hold every number there is; not a number where it has none.
long double slowNumber(const Descriptor& descriptor) {
  const auto read = [&descriptor](auto number) -> long double {
    if (descriptor.data().size() != sizeof number) {
      return NAN;
    }
    std::memcpy(&number, descriptor.data().data(), sizeof number);
    return static_cast<long double>(number);
  };
  switch (descriptor.type()) {
    case Descriptor::kBoolean:
      return descriptor.data().size() == 1 ? static_cast<long double>(descriptor.data()[0] > 0) : NAN;
    case Descriptor::kInteger16:
      return read(std::int16_t{});
    case Descriptor::kInteger32:
      return read(std::int32_t{});
    case Descriptor::kInteger64:
      return read(std::int64_t{});
    case Descriptor::kReal32:
      return read(float{});
    case Descriptor::kReal64:
      return read(double{});
    default:
      return NAN;
  }
}

void checkNumber(const Descriptor& descriptor) {
  const long double number = slowNumber(descriptor);
  const bool isLong = std::floor(number) == number && std::abs(number + 0.5L) < 2147483648.0L;
  const auto found = descriptor.coerceToLong();
  check(found.has_value() == isLong && (!isLong || static_cast<long double>(*found) == number));
}

void checkText(const Descriptor& descriptor) {
  const std::string bytes(descriptor.data().begin(), descriptor.data().end());
  const auto text = descriptor.stringValue();
  check(text.has_value() == (descriptor.type() == Descriptor::kText));
  check(!text || (isValidUTF8(*text) && (isValidUTF8(bytes) ? *text == bytes : text->find("\uFFFD") != text->npos)));
}

// Finds each item by its keyword, and none under a keyword that no item has. Only the first items are tried.
void checkKeywords(const Descriptor& descriptor) {
  for (std::size_t tried = 0; tried <= descriptor.itemCount() && tried < 8; ++tried) {
    const FourCharCode keyword = descriptor.keyword(tried);
    DescriptorPointer last;
    for (std::size_t i = 1; i <= descriptor.itemCount(); ++i) {
      if (descriptor.keyword(i) == keyword && descriptor.type() != Descriptor::kList) {
        last = descriptor.item(i);
      }
    }
    check(descriptor.itemUnder(keyword) == last);
  }
  check(descriptor.item(0) == nullptr && descriptor.item(descriptor.itemCount() + 1) == nullptr);
}

void checkLine(const std::string& line) {
  check(isValidUTF8(line) && !line.empty());
  for (const char32_t c : CodePoints(line)) {
    check(c >= 0x20 && (c < 0x7F || c >= 0xA0) && c != 0x2028 && c != 0x2029);
  }
}

// Each list holds the one before twice, so that its byte form grows by its own header and as much again, and its items
// by two and as many again.
void checkSharing(DescriptorPointer shared, std::size_t size, std::size_t items) {
  constexpr std::size_t kSmall = 1 << 12;
  for (std::size_t depth = 0; shared != nullptr && depth <= Descriptor::kMaximumDepth; ++depth) {
    if (size < kSmall) {
      const auto bytes = shared->toBytes();
      check(bytes.size() == size && *shared == *Descriptor::fromBytes(bytes));
    }
    shared = Descriptor::withItems({shared, shared});
    size = 4 + 8 + 2 * (size - 4);
    items = 2 + 2 * items;
    check(shared == nullptr || (size <= Descriptor::kMaximumSize && items <= Descriptor::kMaximumItemCount));
  }
  check(shared == nullptr);
}

// A list has the values of its items, save the absent ones; an event that of its direct object; a list in a record is
// read as pairs.
void checkValue(const Descriptor& descriptor) {
  const auto valueOf = [](const DescriptorPointer& item) {
    return SharedClasses::Utilities::NSObjectWithAEDescObj(item);
  };
  const Value value = SharedClasses::Utilities::NSObjectWithAEDesc(&descriptor);
  if (descriptor.type() == Descriptor::kList) {
    Value::List items;
    for (std::size_t i = 1; i <= descriptor.itemCount(); ++i) {
      if (const Value item = valueOf(descriptor.item(i)); !item.isAbsent()) {
        items.push_back(item);
      }
    }
    check(value == Value(items));
    const auto record = Descriptor::withKeyedItems(
        Descriptor::kRecord, {{fourCharCode("pnam"), Descriptor::fromBytes(descriptor.toBytes())}});
    check(record == nullptr || valueOf(record).dictionary()->size() <= descriptor.itemCount() / 2);
  } else if (descriptor.type() == Descriptor::kEvent) {
    check(value == valueOf(descriptor.itemUnder(Descriptor::kDirectObject)));
  } else if (descriptor.type() == Descriptor::kRecord) {
    check(value.dictionary() != nullptr);
  }
  check(isValidUTF8(value.description()));
}

// Gives how many items there are in all.
std::size_t checkAllOf(const DescriptorPointer& root) {
  std::size_t items = 0;
  std::vector<DescriptorPointer> waiting{root};
  while (!waiting.empty()) {
    const DescriptorPointer descriptor = waiting.back();
    waiting.pop_back();
    checkNumber(*descriptor);
    checkText(*descriptor);
    checkKeywords(*descriptor);
    checkValue(*descriptor);
    for (std::size_t i = 1; i <= descriptor->itemCount(); ++i) {
      waiting.push_back(descriptor->item(i));
    }
    items += descriptor->itemCount();
  }
  return items;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  DescriptorError error;
  const auto descriptor = Descriptor::fromBytes({bytes, size}, &error);
  if (descriptor == nullptr) {
    checkLine(error.message);
    check(error.offset <= size);
    return 0;
  }
  const auto written = descriptor->toBytes();
  check(written == std::vector(bytes, bytes + size));
  check(*Descriptor::fromBytes(written) == *descriptor);
  checkLine(descriptor->description());
  checkSharing(descriptor, size, checkAllOf(descriptor));
  return 0;
}
