#include "platform/property_list.h"

#include <expat.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <concepts>
#include <cstdint>
#include <limits>
#include <locale>
#include <memory>
#include <new>
#include <sstream>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/text.h"

namespace SharedClasses::platform {

namespace {

constexpr std::string_view kXMLBlanks = " \t\r\n";

// What the text of one element says; nothing when it is not what the element is for.
using ContentReader = std::optional<Value> (*)(std::string_view content);

std::optional<Value> readString(std::string_view content) {
  return Value(content);
}

template <bool kMeaning>
std::optional<Value> readBoolean(std::string_view content) {
  return content.find_first_not_of(kXMLBlanks) == content.npos ? std::optional<Value>(kMeaning) : std::nullopt;
}

// Takes the sign off a number; true for a minus.
bool takeSign(std::string_view& number) {
  const bool negative = number.starts_with('-');
  if (negative || number.starts_with('+')) {
    number.remove_prefix(1);
  }
  return negative;
}

std::optional<Value> readInteger(std::string_view content) {
  std::string_view digits = trimmed(content);
  const bool negative = takeSign(digits);
  const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
  digits.remove_prefix(isHexadecimal ? 2 : 0);
  std::uint64_t magnitude = 0;
  const char* const end = digits.data() + digits.size();
  const auto [rest, problem] = std::from_chars(digits.data(), end, magnitude, isHexadecimal ? 16 : 10);
  if (rest != end || problem == std::errc::invalid_argument) {
    return std::nullopt;
  }
  using Limits = std::numeric_limits<std::int64_t>;
  if (problem == std::errc::result_out_of_range || magnitude > static_cast<std::uint64_t>(Limits::max())) {
    return negative ? Limits::min() : Limits::max();
  }
  const auto number = static_cast<std::int64_t>(magnitude);
  return negative ? -number : number;
}

// A number that std::from_chars calls out of range without saying at which end.
double nearestReal(std::string_view digits) {
  std::istringstream stream{std::string(digits)};
  stream.imbue(std::locale::classic());
  double number = 0.0;
  stream >> number;
  return number;
}

std::optional<Value> readReal(std::string_view content) {
  std::string_view digits = trimmed(content);
  const bool negative = takeSign(digits);
  double number = 0.0;
  const char* const end = digits.data() + digits.size();
  const auto [rest, problem] = std::from_chars(digits.data(), end, number);
  if (rest != end || problem == std::errc::invalid_argument || digits.starts_with('-')) {
    return std::nullopt;
  }
  if (problem == std::errc::result_out_of_range) {
    number = nearestReal(digits);
  }
  return negative ? -number : number;
}

std::optional<Value> readDate(std::string_view content) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
  const std::string_view text = trimmed(content);
  const auto fits = [](char c, char form) {
    return form == '0' ? isASCIIDigit(static_cast<unsigned char>(c)) : c == form;
  };
  if (!std::ranges::equal(text, kForm, fits)) {
    return std::nullopt;
  }
  const auto field = [text](std::size_t position, std::size_t length) {
    int number = 0;
    std::from_chars(text.data() + position, text.data() + position + length, number);
    return number;
  };
  using namespace std::chrono;
  const year_month_day date(year(field(0, 4)), month(static_cast<unsigned>(field(5, 2))),
                            day(static_cast<unsigned>(field(8, 2))));
  const hours hour(field(11, 2));
  const minutes minute(field(14, 2));
  const seconds second(field(17, 2));
  if (!date.ok() || hour >= 24h || minute >= 60min || second >= 60s) {
    return std::nullopt;
  }
  const seconds elapsed = sys_days(date) - sys_days(2001y / January / 1) + hour + minute + second;
  return Date{static_cast<double>(elapsed.count())};
}

std::optional<unsigned> base64DigitValue(char c) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::size_t value = kDigits.find(c);
  return value != kDigits.npos ? std::optional(static_cast<unsigned>(value)) : std::nullopt;
}

std::optional<Value> readData(std::string_view content) {
  Value::Data data;
  data.reserve(content.size() / 4 * 3);
  std::size_t digits = 0;
  std::size_t padding = 0;
  unsigned bits = 0;  // the digits so far; older ones run out at the top
  for (const char c : content) {
    if (kXMLBlanks.find(c) != kXMLBlanks.npos) {
      continue;
    }
    if (c == '=') {
      ++padding;
      continue;
    }
    const std::optional<unsigned> digit = base64DigitValue(c);
    if (!digit || padding > 0) {
      return std::nullopt;
    }
    bits = bits << 6 | *digit;
    ++digits;
    if (digits % 4 != 1) {
      data.push_back(static_cast<std::uint8_t>(bits >> (4 - digits % 4) % 4 * 2));
    }
  }
  if (padding > 2 || (digits + padding) % 4 != 0) {
    return std::nullopt;
  }
  return data;
}

enum class Role {
  Root,
  Container,
  Key,
  Simple,
};

struct Element {
  std::string_view name;
  Role role;
  ContentReader read;          // null unless simple
  std::string_view complaint;  // what is said of a content that `read` does not take
};

constexpr std::string_view kDictionaryElement = "dict";

constexpr std::array kElements{
    Element{"plist", Role::Root, nullptr, ""},
    Element{kDictionaryElement, Role::Container, nullptr, ""},
    Element{"array", Role::Container, nullptr, ""},
    Element{"key", Role::Key, nullptr, ""},
    Element{"string", Role::Simple, readString, ""},
    Element{"integer", Role::Simple, readInteger, "which is no integer"},
    Element{"real", Role::Simple, readReal, "which is no number"},
    Element{"true", Role::Simple, readBoolean<true>, "but has to be empty"},
    Element{"false", Role::Simple, readBoolean<false>, "but has to be empty"},
    Element{"date", Role::Simple, readDate, "which is no date of the form 2001-12-31T23:59:59Z"},
    Element{"data", Role::Simple, readData, "which is no base64"},
};

// The first characters of `text` in one line, for messages.
std::string excerpt(std::string_view text) {
  constexpr std::size_t kLongest = 60;
  std::string shown;
  for (const char32_t c : CodePoints(text)) {
    if (shown.size() >= kLongest) {
      return shown + "…";
    }
    appendUTF8(shown, isBlank(c) ? U' ' : c);
  }
  return shown;
}

std::string tag(std::string_view name) {
  return '<' + excerpt(name) + '>';
}

// Reads one document: expat calls back for each of its pieces, and what is still open waits in mOpen.
class Reader {
 public:
  Reader() = default;
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  // To be called once.
  std::optional<Value> read(std::string_view document, PropertyListError* error) {
    if (!mParser) {
      fail("there is no memory left", 1);
    } else if (canBeParsed(document)) {
      parse(document);
    }
    if (mError && error != nullptr) {
      *error = std::move(*mError);
    }
    return mError ? std::nullopt : std::move(mRoot);
  }

 private:
  // An array or dictionary whose end has not come.
  struct Container {
    const Element* element;
    Value::List list;
    Value::Dictionary dictionary;
    std::optional<std::string> key;  // of a dictionary: the key that has no value yet

    [[nodiscard]] bool isDictionary() const { return element->name == kDictionaryElement; }
  };

  struct FreeParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  // Refuses what expat would take but the format does not; no UTF-16 text and no NUL gets past.
  bool canBeParsed(std::string_view document) {
    if (document.size() > kMaximumPropertyListSize) {
      fail("the document has more than " + std::to_string(kMaximumPropertyListSize) + " bytes", 1);
      return false;
    }
    if (document.starts_with("\xFE\xFF") || document.starts_with("\xFF\xFE")) {
      fail("the document is in UTF-16; only UTF-8 is read", 1);
      return false;
    }
    std::size_t line = 1;
    for (std::string_view rest = document; !rest.empty();) {
      const DecodedCharacter next = decodeCharacter(rest);
      if (!next.valid || next.codePoint == 0) {
        fail(next.valid ? "the document has a NUL byte" : "the document is not well-formed UTF-8", line);
        return false;
      }
      line += next.codePoint == U'\n' ? 1 : 0;
      rest.remove_prefix(next.length);
    }
    return true;
  }

  void parse(std::string_view document) {
    XML_SetUserData(mParser.get(), this);
    XML_SetXmlDeclHandler(mParser.get(), [](void* reader, const char*, const char* encoding, int) {
      guarded(reader, [encoding](Reader& self) { self.xmlDeclaration(encoding); });
    });
    XML_SetStartDoctypeDeclHandler(
        mParser.get(), [](void* reader, const char* name, const char*, const char*, int hasDeclarations) {
          guarded(reader, [=](Reader& self) { self.documentType(name, hasDeclarations != 0); });
        });
    XML_SetSkippedEntityHandler(mParser.get(), [](void* reader, const char* name, int) {
      guarded(reader, [name](Reader& self) { self.fail("unknown entity &" + excerpt(name) + ';'); });
    });
    XML_SetElementHandler(
        mParser.get(),
        [](void* reader, const char* name, const char** attributes) {
          guarded(reader, [=](Reader& self) { self.startElement(name, attributes); });
        },
        [](void* reader, const char*) { guarded(reader, [](Reader& self) { self.endElement(); }); });
    XML_SetCharacterDataHandler(mParser.get(), [](void* reader, const char* text, int length) {
      guarded(reader, [=](Reader& self) { self.text({text, static_cast<std::size_t>(length)}); });
    });
    const XML_Status status =
        XML_Parse(mParser.get(), document.data(), static_cast<int>(document.size()), /*isFinal=*/1);
    if (status != XML_STATUS_OK && !mError) {
      malformed(XML_GetErrorCode(mParser.get()));
    }
  }

  // Runs `step` unless the document is refused already: expat may still call after it was stopped. Nothing may be
  // thrown through expat's own frames.
  template <std::invocable<Reader&> Step>
  static void guarded(void* reader, Step step) noexcept {
    auto& self = *static_cast<Reader*>(reader);
    if (self.mError) {
      return;
    }
    try {
      step(self);
    } catch (const std::bad_alloc&) {
      self.fail("no memory");  // Short enough to need none.
    }
  }

  void fail(std::string message, std::size_t line) { mError = PropertyListError{std::move(message), line}; }

  void fail(std::string message) {
    fail(std::move(message), XML_GetCurrentLineNumber(mParser.get()));
    XML_StopParser(mParser.get(), XML_FALSE);
  }

  void malformed(XML_Error problem) {
    const Element* innermost = mSimple != nullptr ? mSimple : !mOpen.empty() ? mOpen.back().element : nullptr;
    const std::string place = innermost != nullptr ? " inside " + tag(innermost->name) : "";
    const bool isCutShort = problem == XML_ERROR_NO_ELEMENTS || problem == XML_ERROR_UNCLOSED_TOKEN;
    fail(isCutShort ? "the document ends too early" + place : std::string(XML_ErrorString(problem)) + place + " (XML)");
  }

  void xmlDeclaration(const char* encoding) {
    if (encoding == nullptr) {
      return;  // UTF-8
    }
    const std::string name = lowercased(encoding);
    if (name != "utf-8" && name != "us-ascii") {
      fail("the document is in " + excerpt(encoding) + "; only UTF-8 is read");
    }
  }

  void documentType(std::string_view name, bool hasDeclarations) {
    if (name != "plist") {
      fail("the document type is " + excerpt(name) + ", not plist");
    } else if (hasDeclarations) {
      fail("the document type declares entities or elements of its own");
    }
  }

  void startElement(std::string_view name, const char** attributes) {
    const auto* const element = std::ranges::find(kElements, name, &Element::name);
    if (element == kElements.end()) {
      fail("unknown element " + tag(name));
    } else if (mSimple != nullptr) {
      fail(tag(name) + " inside " + tag(mSimple->name));
    } else if (element->role == Role::Root) {
      startRoot();
    } else if (*attributes != nullptr) {
      fail(tag(name) + " has an attribute " + excerpt(*attributes));
    } else if (element->role == Role::Key) {
      startKey(*element);
    } else if (mayStandHere(*element)) {
      startValue(*element);
    }
  }

  void startRoot() {
    if (std::exchange(mHasBegun, true)) {
      fail("<plist> inside another element");
    }
  }

  void startKey(const Element& element) {
    if (mOpen.empty() || !mOpen.back().isDictionary()) {
      fail("<key> outside <dict>");
    } else if (mOpen.back().key) {
      failForKey(*mOpen.back().key);
    } else {
      startContent(element);
    }
  }

  // Whether a value may begin now; else the document is refused.
  bool mayStandHere(const Element& element) {
    mHasBegun = true;
    if (mOpen.empty() && mRoot) {
      fail("<plist> has a second value, " + tag(element.name));
      return false;
    }
    if (!mOpen.empty() && mOpen.back().isDictionary() && !mOpen.back().key) {
      fail(tag(element.name) + " without a <key> in <dict>");
      return false;
    }
    return true;
  }

  void startValue(const Element& element) {
    if (element.role != Role::Container) {
      startContent(element);
    } else if (mOpen.size() == kMaximumPropertyListDepth) {
      fail(tag(element.name) + " is more than " + std::to_string(kMaximumPropertyListDepth) + " levels deep");
    } else {
      mOpen.push_back({.element = &element, .list = {}, .dictionary = {}, .key = {}});
    }
  }

  void startContent(const Element& element) {
    mSimple = &element;
    mContent.clear();
  }

  void text(std::string_view text) {
    if (mSimple != nullptr) {
      mContent += text;
    } else if (text.find_first_not_of(kXMLBlanks) != text.npos) {
      fail("text \"" + excerpt(text) + "\" outside <string> and its like");
    }
  }

  // Which element it is that ends, expat has checked.
  void endElement() {
    if (mSimple != nullptr) {
      endContent(*std::exchange(mSimple, nullptr));
    } else if (!mOpen.empty()) {
      endContainer();
    } else if (!mRoot) {
      fail("<plist> has no value");
    }
  }

  void endContent(const Element& element) {
    if (element.role == Role::Key) {
      mOpen.back().key = std::move(mContent);
      return;
    }
    std::optional<Value> value = element.read(mContent);
    if (!value) {
      fail(tag(element.name) + " holds \"" + excerpt(mContent) + "\", " + std::string(element.complaint));
      return;
    }
    put(std::move(*value));
  }

  void endContainer() {
    Container& container = mOpen.back();
    if (container.key) {
      failForKey(*container.key);
      return;
    }
    Value value = container.isDictionary() ? Value(std::move(container.dictionary)) : Value(std::move(container.list));
    mOpen.pop_back();
    put(std::move(value));
  }

  // Gives a finished value its place.
  void put(Value value) {
    if (mOpen.empty()) {
      mRoot = std::move(value);
    } else if (Container& container = mOpen.back(); container.isDictionary()) {
      container.dictionary.insert_or_assign(std::move(*container.key), std::move(value));
      container.key.reset();
    } else {
      container.list.push_back(std::move(value));
    }
  }

  void failForKey(std::string_view key) { fail("<key> \"" + excerpt(key) + "\" without a value in <dict>"); }

  // Told UTF-8, so that no other encoding is ever converted.
  std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser> mParser{XML_ParserCreate("UTF-8")};
  std::optional<PropertyListError> mError;  // set once the document is refused
  bool mHasBegun = false;                   // whether any element came
  std::vector<Container> mOpen;             // outermost first
  const Element* mSimple = nullptr;         // the open element that holds text, the innermost of all
  std::string mContent;                     // its text so far
  std::optional<Value> mRoot;
};

}  // namespace

std::optional<Value> propertyListFromXML(std::string_view document, PropertyListError* error) {
  return Reader().read(document, error);
}

}  // namespace SharedClasses::platform
