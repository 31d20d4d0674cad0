#include "platform/value.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <iterator>
#include <unordered_map>
#include <variant>

#include "platform/date_text.h"
#include "platform/saturating.h"
#include "platform/text.h"

namespace SharedClasses::platform {

struct Value::Node {
  std::variant<std::string, Data, Color, List, Dictionary, ObjectPointer> content;
  std::atomic<std::size_t> owners{1};
  Node* nextToDestroy = nullptr;  // used once `owners` is 0

  // Gives up one owner's share; true for the last, who is to destroy the node.
  bool dropOwner() noexcept { return owners.fetch_sub(1, std::memory_order_acq_rel) == 1; }
};

template <class Part>
Value::Value(Type type, Part&& part) : mType(type), mContent{.node = new Node{.content = std::forward<Part>(part)}} {}

Value::Value(const char* text) : Value(text == nullptr ? Value() : Value(std::string(text))) {}

Value::Value(std::string text) : Value(Type::Text, std::move(text)) {}
Value::Value(std::string_view text) : Value(std::string(text)) {}
Value::Value(Data data) : Value(Type::Data, std::move(data)) {}
Value::Value(const Color& color) : Value(Type::Color, color) {}
Value::Value(List list) : Value(Type::List, std::move(list)) {}
Value::Value(Dictionary dictionary) : Value(Type::Dictionary, std::move(dictionary)) {}

Value::Value(ObjectPointer object) : Value(object == nullptr ? Value() : Value(Type::Object, std::move(object))) {}

Value::Value(const Value& other) noexcept : mType(other.mType), mContent(other.mContent) {
  if (holdsNode()) {
    mContent.node->owners.fetch_add(1, std::memory_order_relaxed);
  }
}

// Children are taken out of a node before it goes, and those that nobody else holds wait in a chain through the nodes
// themselves: no level of nesting adds to the stack, and nothing is allocated.
void Value::release(Node* node) noexcept {
  Node* pending = nullptr;
  const auto drop = [&pending](Node* dropped) {
    if (dropped->dropOwner()) {
      dropped->nextToDestroy = std::exchange(pending, dropped);
    }
  };
  const auto dropChild = [&drop](Value& child) {
    if (child.holdsNode()) {
      child.mType = Type::Absent;
      drop(child.mContent.node);
    }
  };
  drop(node);
  while (pending != nullptr) {
    const std::unique_ptr<Node> dead(std::exchange(pending, pending->nextToDestroy));
    if (auto* list = std::get_if<List>(&dead->content)) {
      std::ranges::for_each(*list, dropChild);
    } else if (auto* dictionary = std::get_if<Dictionary>(&dead->content)) {
      std::ranges::for_each(*dictionary, dropChild, &Dictionary::value_type::second);
    }
  }
}

std::optional<bool> Value::booleanValue() const noexcept {
  const std::optional<double> number = realValue();
  return number ? std::optional(*number != 0.0) : std::nullopt;
}

std::optional<std::int64_t> Value::integerValue() const noexcept {
  switch (mType) {
    case Type::Boolean:
      return mContent.boolean ? 1 : 0;
    case Type::Integer:
      return mContent.integer;
    case Type::Real:
      return saturatingCast<std::int64_t>(mContent.real);
    default:
      return std::nullopt;
  }
}

std::optional<double> Value::realValue() const noexcept {
  switch (mType) {
    case Type::Boolean:
      return mContent.boolean ? 1.0 : 0.0;
    case Type::Integer:
      return static_cast<double>(mContent.integer);
    case Type::Real:
      return mContent.real;
    default:
      return std::nullopt;
  }
}

template <class Part>
const Part* Value::part() const noexcept {
  return holdsNode() ? std::get_if<Part>(&mContent.node->content) : nullptr;
}

const std::string* Value::text() const noexcept {
  return part<std::string>();
}

const Value::Data* Value::data() const noexcept {
  return part<Data>();
}

const Color* Value::color() const noexcept {
  return part<Color>();
}

const Value::List* Value::list() const noexcept {
  return part<List>();
}

const Value::Dictionary* Value::dictionary() const noexcept {
  return part<Dictionary>();
}

ObjectPointer Value::object() const noexcept {
  const auto* object = part<ObjectPointer>();
  return object != nullptr ? *object : nullptr;
}

const Value* Value::find(std::string_view key) const {
  const Dictionary* entries = dictionary();
  if (entries == nullptr) {
    return nullptr;
  }
  const auto entry = entries->find(key);
  return entry != entries->end() ? &entry->second : nullptr;
}

namespace {

bool sameNumber(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

bool sameColor(const Color& a, const Color& b) {
  return sameNumber(a.red, b.red) && sameNumber(a.green, b.green) && sameNumber(a.blue, b.blue) &&
         sameNumber(a.alpha, b.alpha);
}

}  // namespace

// One comparison under way. Containers wait in a list instead of on the stack. Two containers that are met are from
// then on taken for equal, and so is all that was taken for equal with either of them: should they differ after all,
// the whole comparison ends. So each container costs a bounded number of openings, however many paths lead to it.
class Value::Comparison {
 public:
  // Whether `a` and `b` agree as far as can be seen without opening containers, which are put aside for open().
  bool agree(const Value& a, const Value& b) {
    if (a.mType != b.mType) {
      return false;
    }
    switch (a.mType) {
      case Type::Absent:
        return true;
      case Type::Boolean:
        return a.mContent.boolean == b.mContent.boolean;
      case Type::Integer:
        return a.mContent.integer == b.mContent.integer;
      case Type::Real:
        return sameNumber(a.mContent.real, b.mContent.real);
      case Type::Date:
        return sameNumber(a.date()->secondsSinceReference, b.date()->secondsSinceReference);
      case Type::Text:
        return *a.text() == *b.text();
      case Type::Data:
        return *a.data() == *b.data();
      case Type::Color:
        return sameColor(*a.color(), *b.color());
      case Type::Object:
        return *a.part<ObjectPointer>() == *b.part<ObjectPointer>();
      case Type::List:
        return a.list()->size() == b.list()->size() && putAside(a.mContent.node, b.mContent.node);
      case Type::Dictionary:
        return a.dictionary()->size() == b.dictionary()->size() && putAside(a.mContent.node, b.mContent.node);
    }
    return false;
  }

  // Opens what was put aside, and what that puts aside, until something differs or nothing is left; true for the last.
  bool open() {
    bool same = true;
    while (same && !mUnopened.empty()) {
      const auto [a, b] = mUnopened.back();
      mUnopened.pop_back();
      if (const auto* list = std::get_if<List>(&a->content)) {
        same = std::ranges::equal(*list, std::get<List>(b->content),
                                  [this](const Value& left, const Value& right) { return agree(left, right); });
      } else {
        same = std::ranges::equal(std::get<Dictionary>(a->content), std::get<Dictionary>(b->content),
                                  [this](const auto& left, const auto& right) {
                                    return left.first == right.first && agree(left.second, right.second);
                                  });
      }
    }
    return same;
  }

 private:
  struct Pair {
    const Node* a;
    const Node* b;
  };

  // Always true: the two agree until they are opened.
  bool putAside(const Node* a, const Node* b) {
    if (a != b && !takenForEqual(a, b)) {
      mUnopened.push_back({a, b});
    }
    return true;
  }

  // Whether the two were taken for equal before; they are from now on.
  bool takenForEqual(const Node* a, const Node* b) {
    if (a->owners == 1 && b->owners == 1) {
      return false;  // Only one path leads here; no use in remembering.
    }
    const Node* first = representative(a);
    const Node* second = representative(b);
    if (first != second) {
      mEqualTo.emplace(first, second);
    }
    return first == second;
  }

  // The node that stands for all that was taken for equal with `node`. Shortens the way there as it goes.
  const Node* representative(const Node* node) {
    for (auto step = mEqualTo.find(node); step != mEqualTo.end(); step = mEqualTo.find(node)) {
      node = step->second;
      if (const auto next = mEqualTo.find(node); next != mEqualTo.end()) {
        step->second = next->second;
      }
    }
    return node;
  }

  std::vector<Pair> mUnopened;
  std::unordered_map<const Node*, const Node*> mEqualTo;  // each toward its representative, which is in no key
};

bool operator==(const Value& a, const Value& b) {
  Value::Comparison comparison;
  return comparison.agree(a, b) && comparison.open();
}

namespace {

std::string dataText(const Value::Data& data) {
  const std::size_t shown = std::min(data.size(), Value::kMaximumDescriptionLength);
  std::string text = "<";
  for (std::size_t i = 0; i < shown; ++i) {
    if (i > 0 && i % 4 == 0) {
      text += ' ';
    }
    text += hexDigits(data[i], 2);
  }
  return text + '>';
}

// What lies beyond the years of date texts, and what is no number, as seconds.
std::string textOfDate(Date date) {
  const std::optional<std::string> text = dateText(date);
  return text ? *text : numberText(date.secondsSinceReference) + " s from 2001-01-01T00:00:00Z";
}

std::string colorText(const Color& color) {
  return "rgba(" + numberText(color.red) + ", " + numberText(color.green) + ", " + numberText(color.blue) + ", " +
         numberText(color.alpha) + ')';
}

std::string objectText(const Object& object) {
  try {
    return object.description();
  } catch (...) {
  }
  try {
    return object.className();
  } catch (...) {
    return "???";
  }
}

std::string quoted(std::string_view text) {
  std::string escaped = "\"";
  for (const char32_t c : CodePoints(text)) {
    if (c == U'\n') {
      escaped += "\\n";
    } else if (c < 0x20 || c == 0x7F) {
      escaped += "\\x" + hexDigits(c, 2);
    } else {
      if (c == U'"' || c == U'\\') {
        escaped += '\\';
      }
      appendUTF8(escaped, c);
    }
  }
  return escaped + '"';
}

// Prints values and stops soon after the bound, so that neither depth nor shared parts make it endless.
class Printer {
 public:
  std::string print(const Value& value) {
    if (const std::string* text = value.text()) {
      mText = repairedUTF8(beginning(*text));
    } else {
      begin(value);
    }
    while (!mOpen.empty() && !isFull()) {
      printNextPart();
    }
    if (isFull()) {
      cut();
    }
    return std::move(mText);
  }

 private:
  // A container whose brackets are open.
  struct Open {
    const Value* container;
    std::size_t index;                        // of a list: the next element
    Value::Dictionary::const_iterator entry;  // of a dictionary: the next entry
  };

  static constexpr std::string_view kEllipsis = "…";

  [[nodiscard]] bool isFull() const { return mText.size() > Value::kMaximumDescriptionLength; }

  // As much of `text` as could be printed and one byte more, which then makes the whole too long.
  static std::string_view beginning(std::string_view text) {
    return text.substr(0, Value::kMaximumDescriptionLength + 1);
  }

  void cut() {
    std::size_t end = Value::kMaximumDescriptionLength - kEllipsis.size();
    while ((static_cast<unsigned char>(mText[end]) & 0xC0U) == 0x80U) {
      --end;
    }
    mText.resize(end);
    mText += kEllipsis;
  }

  // Prints a simple value whole, and of a container the opening bracket.
  void begin(const Value& value) {
    switch (value.type()) {
      case Value::Type::Absent:
        mText += "(null)";
        return;
      case Value::Type::Boolean:
        mText += *value.booleanValue() ? "YES" : "NO";
        return;
      case Value::Type::Integer:
        mText += std::to_string(*value.integerValue());
        return;
      case Value::Type::Real:
        mText += numberText(*value.realValue());
        return;
      case Value::Type::Date:
        mText += textOfDate(*value.date());
        return;
      case Value::Type::Text:
        mText += quoted(beginning(*value.text()));
        return;
      case Value::Type::Data:
        mText += dataText(*value.data());
        return;
      case Value::Type::Color:
        mText += colorText(*value.color());
        return;
      case Value::Type::Object:
        mText += repairedUTF8(beginning(objectText(*value.object())));
        return;
      case Value::Type::List:
        mText += '(';
        mOpen.push_back({&value, 0, {}});
        return;
      case Value::Type::Dictionary:
        mText += '{';
        mOpen.push_back({&value, 0, value.dictionary()->begin()});
        return;
    }
  }

  // Prints the next element or entry of the innermost container, or its closing bracket.
  void printNextPart() {
    Open& open = mOpen.back();
    if (const Value::List* list = open.container->list()) {
      if (open.index == list->size()) {
        close(')');
        return;
      }
      separate(open.index > 0);
      begin((*list)[open.index++]);
    } else {
      const Value::Dictionary& dictionary = *open.container->dictionary();
      if (open.entry == dictionary.end()) {
        close('}');
        return;
      }
      separate(open.entry != dictionary.begin());
      const auto entry = open.entry++;
      printKey(beginning(entry->first));
      mText += " = ";
      begin(entry->second);
    }
  }

  void separate(bool hasPredecessor) {
    if (hasPredecessor) {
      mText += ", ";
    }
  }

  void close(char bracket) {
    mText += bracket;
    mOpen.pop_back();
  }

  // Bare where it cannot be mistaken for anything else.
  void printKey(std::string_view key) {
    const bool isPlain = !key.empty() && std::ranges::all_of(key, [](char byte) {
      const auto c = static_cast<unsigned char>(byte);
      return isASCIILetter(c) || isASCIIDigit(c) || c == '_' || c == '-' || c == '.';
    });
    mText += isPlain ? std::string(key) : quoted(key);
  }

  std::string mText;
  std::vector<Open> mOpen;  // outermost first
};

}  // namespace

std::string Value::description() const {
  return Printer().print(*this);
}

}  // namespace SharedClasses::platform
