// Any value that the programs store, exchange or hand to a script: a number, a text, a date, a list of values.
// What a value holds never changes; a value is only assigned anew. Texts, data, colours, containers and objects stand
// in a node that all copies share, so a copy costs the same whatever is inside.
// Copies may be read, copied and dropped on several threads at once. One and the same Value follows the rule of an int:
// many may read it, or one may assign it. An object inside keeps its own rule (platform/object.h).
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/color.h"
#include "platform/date.h"
#include "platform/object.h"

namespace SharedClasses::platform {

class Value {
 public:
  using Data = std::vector<std::uint8_t>;
  // A list of one list is written `List{Value(inner)}`: of `List{inner}` compilers disagree whether it is a copy.
  using List = std::vector<Value>;
  // In byte order of the keys.
  using Dictionary = std::map<std::string, Value, std::less<>>;

  enum class Type {
    Absent,
    Boolean,
    Integer,
    Real,
    Date,
    Text,
    Data,
    Color,
    List,
    Dictionary,
    Object,
  };

  // The most bytes that description() gives, the closing "…" of a cut one included.
  static constexpr std::size_t kMaximumDescriptionLength = std::size_t{1} << 20;

  // Making. Each is implicit, so that a value can be written where one is taken: `{"level", 40}`.
  Value() noexcept = default;  // absent
  // Only from a true bool, never from a pointer.
  template <std::same_as<bool> Boolean>
  Value(Boolean boolean) noexcept : mType(Type::Boolean), mContent{.boolean = boolean} {}
  // Any integer type; an unsigned number above the signed 64-bit range becomes the largest of it.
  template <std::integral Integer>
  requires(!std::same_as<Integer, bool>) Value(Integer integer)
  noexcept : mType(Type::Integer), mContent{.integer = saturated(integer)} {}
  Value(double real) noexcept : mType(Type::Real), mContent{.real = real} {}
  Value(float real) noexcept : Value(static_cast<double>(real)) {}
  Value(Date date) noexcept : mType(Type::Date), mContent{.date = date} {}
  // Texts are UTF-8 by agreement and kept byte for byte. A null pointer gives an absent value.
  Value(const char* text);
  Value(std::string text);
  Value(std::string_view text);
  Value(Data data);
  Value(const Color& color);
  Value(List list);
  Value(Dictionary dictionary);
  // A null pointer gives an absent value.
  Value(ObjectPointer object);
  template <std::derived_from<Object> Thing>
  Value(std::shared_ptr<Thing> object) : Value(ObjectPointer(std::move(object))) {}

  // Copying shares the content; a moved-from value is absent. Dropping the last copy allocates nothing and needs no
  // more stack for deeply nested values than for flat ones.
  Value(const Value& other) noexcept;
  Value(Value&& other) noexcept : mType(std::exchange(other.mType, Type::Absent)), mContent(other.mContent) {}
  Value& operator=(Value other) noexcept {
    std::swap(mType, other.mType);
    std::swap(mContent, other.mContent);
    return *this;
  }
  ~Value() {
    if (holdsNode()) {
      release(mContent.node);
    }
  }

  [[nodiscard]] Type type() const noexcept { return mType; }
  [[nodiscard]] bool isAbsent() const noexcept { return mType == Type::Absent; }
  // Whether the value is a boolean, an integer or a real: what the three readers of numbers below answer for.
  [[nodiscard]] bool isNumber() const noexcept { return mType >= Type::Boolean && mType <= Type::Real; }

  // Numbers; absent for what is not one, texts with digits in them included.
  [[nodiscard]] std::optional<bool> booleanValue() const noexcept;  // whether it is other than 0; so is a NaN
  // A boolean is 0 or 1; a real is truncated toward zero, brought into the range, and 0 when it is not a number.
  [[nodiscard]] std::optional<std::int64_t> integerValue() const noexcept;
  [[nodiscard]] std::optional<double> realValue() const noexcept;  // integers beyond 2^53 are rounded

  // The content, if the value is of that type; else null. Valid until this value is assigned, moved from or dropped.
  [[nodiscard]] const std::string* text() const noexcept;
  [[nodiscard]] const Data* data() const noexcept;
  [[nodiscard]] const Date* date() const noexcept { return mType == Type::Date ? &mContent.date : nullptr; }
  [[nodiscard]] const Color* color() const noexcept;
  [[nodiscard]] const List* list() const noexcept;
  [[nodiscard]] const Dictionary* dictionary() const noexcept;
  [[nodiscard]] ObjectPointer object() const noexcept;

  // The value that a dictionary holds under `key`; null when it holds none and when this is no dictionary.
  [[nodiscard]] const Value* find(std::string_view key) const;

  // One line for the log: NO, 40, 0.5, ("Hall lamp", 2), {level = 40}, <aa004b46 87>, 2024-03-31T01:00:00Z,
  // rgba(1, 0.5, 0, 1), (null). A text stands as it is, line breaks included; inside a container it is quoted and
  // escaped. An object gives its own description, or its class name or "???" if that throws. Dates lose fractions of
  // a second. Always well-formed UTF-8; cut at kMaximumDescriptionLength.
  [[nodiscard]] std::string description() const;

  // Same type and same content: 1, 1.0 and true are three values. A NaN equals a NaN, so that a copy always equals its
  // original, and 0.0 equals -0.0. Objects are equal when they are one object. Neither depth nor sharing of parts
  // makes it slow or deep: the work grows with the number of nodes and elements, not of paths to them.
  friend bool operator==(const Value& a, const Value& b);

 private:
  struct Node;
  class Comparison;

  // What fits beside the type stands here, the rest in the node.
  union Content {
    bool boolean;
    std::int64_t integer;
    double real;
    Date date;
    Node* node;  // from Type::Text on; never null; owned together with all copies
  };

  template <class Part>
  Value(Type type, Part&& part);

  template <std::integral Integer>
  static constexpr std::int64_t saturated(Integer integer) {
    constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
    if constexpr (std::unsigned_integral<Integer> && sizeof(Integer) == sizeof kLargest) {
      return integer > static_cast<Integer>(kLargest) ? kLargest : static_cast<std::int64_t>(integer);
    } else {
      return static_cast<std::int64_t>(integer);
    }
  }

  [[nodiscard]] bool holdsNode() const noexcept { return mType >= Type::Text; }
  template <class Part>
  [[nodiscard]] const Part* part() const noexcept;
  static void release(Node* node) noexcept;

  Type mType = Type::Absent;
  Content mContent{.integer = 0};
};

}  // namespace SharedClasses::platform
