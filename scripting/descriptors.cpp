#include "scripting/descriptors.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <new>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/calendar_date.h"
#include "platform/exceptions.h"
#include "platform/gregorian.h"
#include "platform/log.h"
#include "platform/property_list.h"
#include "platform/text_format.h"
#include "shared/action_codes.h"
#include "shared/constants.h"

namespace SharedClasses::Utilities {

namespace {

using platform::Descriptor;
using platform::DescriptorPointer;
using platform::Value;

// The items of records that are converted, and their keys.
constexpr struct {
  platform::FourCharCode keyword;
  std::string_view key;
} kProperties[] = {
    {fourCharCode("pnam"), "name"}, {kAddressPropertyCode, "address"},
    {kNotesPropertyCode, "notes"},  {kLoggingPropertyCode, "logging"},
    {kModelCode, "model"},          {kStatusPropertyCode, "status"},
};

// The key of a record's item; empty for those that are left out.
std::string_view keyFor(platform::FourCharCode keyword) {
  for (const auto& property : kProperties) {
    if (property.keyword == keyword) {
      return property.key;
    }
  }
  return {};
}

template <typename Content>
Value asValue(const std::optional<Content>& content) {
  return content ? Value(*content) : Value();
}

Value codeIn(const Descriptor& descriptor) {
  const auto code = descriptor.codeValue();
  return code == Descriptor::kMissingValue ? Value() : asValue(code);
}

Value dateIn(const Descriptor& descriptor) {
  constexpr std::int64_t kFirstYearOfCount = 1904;
  constexpr std::int64_t kStart =
      platform::daysToMonth<std::int64_t>(kFirstYearOfCount, 1) * platform::kSecondsPerDay;  // on the same clock
  const auto seconds = descriptor.localSeconds();
  if (!seconds || *seconds < platform::kFirstSecond - kStart || *seconds > platform::kLastSecond - kStart) {
    return {};
  }
  const platform::Date date = platform::CalendarDate(kFirstYearOfCount, 1, 1, 0, 0, *seconds).date();
  // Next to the ends of the calendar a local time can be of an instant beyond them.
  const bool isInCalendar =
      date.secondsSinceReference >= platform::kFirstSecond && date.secondsSinceReference <= platform::kLastSecond;
  return isInCalendar ? Value(date) : Value();
}

Value colorIn(const Descriptor& descriptor) {
  const std::span<const std::uint8_t> data = descriptor.data();
  constexpr std::size_t kLength = 6;
  if (data.size() < kLength) {
    return {};
  }
  const auto component = [&](std::size_t index) { return (data[2 * index] * 256 + data[2 * index + 1]) / 65535.0; };
  return platform::Color{component(0), component(1), component(2), 1.0};
}

Value archivedIn(const Descriptor& descriptor) {
  const std::span<const std::uint8_t> data = descriptor.data();
  const std::string document(data.begin(), data.end());
  return platform::propertyListFromXML(document).value_or(Value());
}

// One conversion. Its functions call one another once for each level of a descriptor, so Descriptor::kMaximumDepth
// bounds them. What is shared is converted once for each place where it stands; the bounds of descriptors count it that
// often too.
class Conversion {
 public:
  Value valueOf(const Descriptor& descriptor);

  // For the end of the conversion: logs how many unknown types there were that valueOf() has not logged.
  void logRest() const {
    if (mUnknown > kMostLogged) {
      platform::log(platform::filledFormat("Conversion of AEDesc to obj failed due to unknown types %d times more.",
                                           {mUnknown - kMostLogged}));
    }
  }

 private:
  static constexpr std::int64_t kMostLogged = 100;

  // Absent for null.
  Value valueOfItem(const DescriptorPointer& item) { return item != nullptr ? valueOf(*item) : Value(); }

  Value::List listIn(const Descriptor& descriptor);
  Value::Dictionary pairsIn(const Descriptor& list);
  Value::Dictionary recordIn(const Descriptor& descriptor);
  void logUnknown(platform::FourCharCode type);

  std::int64_t mUnknown = 0;  // parts of unknown types so far
};

Value::List Conversion::listIn(const Descriptor& descriptor) {
  Value::List list;
  for (std::size_t index = 1; index <= descriptor.itemCount(); ++index) {
    if (Value value = valueOfItem(descriptor.item(index)); !value.isAbsent()) {
      list.push_back(std::move(value));
    }
  }
  return list;
}

// Keys and values in turn.
Value::Dictionary Conversion::pairsIn(const Descriptor& list) {
  Value::Dictionary dictionary;
  for (std::size_t index = 1; index <= list.itemCount(); index += 2) {
    const Value key = valueOfItem(list.item(index));
    Value value = valueOfItem(list.item(index + 1));
    if (key.text() != nullptr && !value.isAbsent()) {
      dictionary.insert_or_assign(*key.text(), std::move(value));
    }
  }
  return dictionary;
}

Value::Dictionary Conversion::recordIn(const Descriptor& descriptor) {
  if (descriptor.itemCount() == 1) {
    return pairsIn(*descriptor.item(1));  // Kept: its keyword counts for nothing.
  }
  Value::Dictionary dictionary;
  for (std::size_t index = 1; index <= descriptor.itemCount(); ++index) {
    const std::string_view key = keyFor(descriptor.keyword(index));
    if (key.empty()) {
      continue;
    }
    if (Value value = valueOfItem(descriptor.item(index)); !value.isAbsent()) {
      dictionary.insert_or_assign(std::string(key), std::move(value));
    }
  }
  return dictionary;
}

void Conversion::logUnknown(platform::FourCharCode type) {
  if (++mUnknown <= kMostLogged) {
    platform::log(platform::filledFormat("Conversion of AEDesc to obj failed due to unknown type %@.",
                                         {stringFromFourCharCode(type)}));
  }
}

Value Conversion::valueOf(const Descriptor& descriptor) {
  switch (descriptor.type()) {
    case Descriptor::kNull:
    case Descriptor::kObjectSpecifier:
      return {};
    case Descriptor::kBoolean:
      return asValue(descriptor.booleanValue());
    case Descriptor::kInteger32:
    case Descriptor::kInteger64:
      return asValue(descriptor.coerceToLong());
    case Descriptor::kReal32:
    case Descriptor::kReal64:
      return asValue(descriptor.realValue());
    case Descriptor::kEnumerated:
    case Descriptor::kType:
      return codeIn(descriptor);
    case Descriptor::kText:
      return asValue(descriptor.stringValue());
    case Descriptor::kLongDateTime:
      return dateIn(descriptor);
    case Descriptor::kColor:
      return colorIn(descriptor);
    case Descriptor::kArchive:
      return archivedIn(descriptor);
    case Descriptor::kList:
      return listIn(descriptor);
    case Descriptor::kRecord:
      return recordIn(descriptor);
    case Descriptor::kEvent:
      return valueOfItem(descriptor.itemUnder(Descriptor::kDirectObject));
    default:
      logUnknown(descriptor.type());
      return {};
  }
}

// The class of a part that no property list holds.
std::string classOf(const Value& value) {
  switch (value.type()) {
    case Value::Type::Color:
      return "Color";
    case Value::Type::List:
      return "List";
    case Value::Type::Dictionary:
      return "Dictionary";
    default: {
      std::string name;
      const platform::ObjectPointer object = value.object();
      const auto thrown = platform::nameOfThrown([&] { name = object != nullptr ? object->className() : ""; });
      return thrown ? "???" : name;
    }
  }
}

// One walk through a value, container after container. For each container that is found writable it is remembered how
// many levels it has, so that one to which many paths lead is walked through once.
class WritableCheck {
 public:
  bool isWritable(const Value& value) {
    bool isFine = enter(value);
    while (isFine && !mOpen.empty()) {
      isFine = checkNextPart();
    }
    return isFine;
  }

 private:
  // A container of which some parts have been looked at.
  struct Open {
    const Value* container;
    std::size_t index;                        // of a list: the next element
    Value::Dictionary::const_iterator entry;  // of a dictionary: the next entry
    std::size_t height;                       // levels found so far, its own included
  };

  // Whether `value` is writable as far as can be seen without its parts; a container is opened if need be.
  bool enter(const Value& value) {
    switch (value.type()) {
      case Value::Type::Absent:
        return false;
      case Value::Type::List:
        return open(value, value.list(), {});
      case Value::Type::Dictionary:
        return open(value, value.dictionary(), value.dictionary()->begin());
      case Value::Type::Color:
      case Value::Type::Object:
        return refuse(value);
      default:
        return true;
    }
  }

  bool open(const Value& container, const void* identity, Value::Dictionary::const_iterator firstEntry) {
    if (mOpen.size() == platform::kMaximumPropertyListDepth) {
      return refuse(container);
    }
    const auto known = mHeights.find(identity);
    // One that was fine elsewhere but reaches too deep from here is walked through again, straight to the part to
    // refuse.
    if (known != mHeights.end() && mOpen.size() + known->second <= platform::kMaximumPropertyListDepth) {
      growTo(known->second + 1);
    } else {
      mOpen.push_back({&container, 0, firstEntry, 1});
    }
    return true;
  }

  bool checkNextPart() {
    Open& open = mOpen.back();
    if (const Value::List* list = open.container->list()) {
      return open.index < list->size() ? enter((*list)[open.index++]) : close(list);
    }
    const Value::Dictionary* dictionary = open.container->dictionary();
    if (open.entry == dictionary->end()) {
      return close(dictionary);
    }
    const Value& value = open.entry++->second;
    return value.isAbsent() || enter(value);
  }

  bool close(const void* identity) {
    const std::size_t height = mOpen.back().height;
    mHeights.emplace(identity, height);
    mOpen.pop_back();
    growTo(height + 1);
    return true;
  }

  // The innermost open container has this many levels at least.
  void growTo(std::size_t height) {
    if (!mOpen.empty() && mOpen.back().height < height) {
      mOpen.back().height = height;
    }
  }

  static bool refuse(const Value& part) {
    platform::log(platform::filledFormat("Unwritable class: %@: %@", {classOf(part), part.description()}));
    return false;
  }

  std::vector<Open> mOpen;  // outermost first
  std::unordered_map<const void*, std::size_t> mHeights;
};

}  // namespace

Value NSObjectWithAEDesc(const Descriptor* descriptor) {
  if (descriptor == nullptr) {
    return {};
  }
  Conversion conversion;
  Value value = conversion.valueOf(*descriptor);
  conversion.logRest();
  return value;
}

Value NSObjectWithAEDescObj(const DescriptorPointer& descriptor) {
  return NSObjectWithAEDesc(descriptor.get());
}

std::optional<std::string> DebugAEDescription(const Descriptor* descriptor) {
  try {
    if (descriptor == nullptr) {
      return "AEDesc is a null pointer.";
    }
    return descriptor->type() == Descriptor::kNull ? "AEDesc descriptor type is a null type."
                                                   : descriptor->description();
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
}

void DebugLogAEDesc(const Descriptor* descriptor) {
  try {
    platform::log("AEDesc: " + DebugAEDescription(descriptor).value_or("(null)"));
  } catch (const std::exception& exception) {
    platform::log(exception.what());
  }
}

bool dictionaryObjectIsWritable(const Value& value) {
  return WritableCheck().isWritable(value);
}

}  // namespace SharedClasses::Utilities
