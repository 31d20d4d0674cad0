#include <expat.h>

#include <algorithm>
#include <array>
#include <charconv>
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

#include "platform/date_text.h"
#include "platform/property_list.h"
#include "platform/property_list_parts.h"
#include "platform/text.h"

namespace SharedClasses::platform {

namespace {

using property_list::excerpt;

// Asked of texts that come from expat, which lets no other control character through.
constexpr bool isXMLBlank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}

std::string_view withoutBlanksAround(std::string_view text) {
  while (!text.empty() && isXMLBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && isXMLBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

// What the text of one element says, which may be moved from; nothing when it is not what the element is for, and then
// it is as it was.
using ContentReader = std::optional<Value> (*)(std::string& content);

std::optional<Value> readString(std::string& content) {
  return Value(std::move(content));
}

template <bool kMeaning>
std::optional<Value> readBoolean(std::string& content) {
  return std::ranges::all_of(content, isXMLBlank) ? std::optional<Value>(kMeaning) : std::nullopt;
}

// Takes the sign off a number; true for a minus.
bool takeSign(std::string_view& number) {
  const bool negative = number.starts_with('-');
  if (negative || number.starts_with('+')) {
    number.remove_prefix(1);
  }
  return negative;
}

std::optional<Value> readInteger(std::string& content) {
  std::string_view digits = withoutBlanksAround(content);
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

std::optional<Value> readReal(std::string& content) {
  std::string_view digits = withoutBlanksAround(content);
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

// As a value, if there is one.
template <class Part>
std::optional<Value> asValue(std::optional<Part> part) {
  return part ? std::optional<Value>(std::move(*part)) : std::nullopt;
}

std::optional<Value> readDate(std::string& content) {
  return asValue(dateFromText(withoutBlanksAround(content)));
}

std::optional<Value> readData(std::string& content) {
  return asValue(property_list::dataFromBase64(content));
}

enum class Role {
  Root,
  Array,
  Dictionary,
  Key,
  Simple,
};

// A name of at most eight bytes as one number, which is quicker to find; 0, which is no element's, for longer ones.
constexpr std::uint64_t nameCode(const char* name) {
  std::uint64_t code = 0;
  for (std::size_t length = 0; name[length] != 0; ++length) {
    if (length == sizeof code) {
      return 0;
    }
    code = code << 8 | static_cast<unsigned char>(name[length]);
  }
  return code;
}

struct Element {
  const char* name;
  Role role;
  ContentReader read;          // null unless simple
  std::string_view complaint;  // what is said of a content that `read` does not take
  std::uint64_t code = nameCode(name);
};

// The frequent ones first.
constexpr std::array kElements{
    Element{"key", Role::Key, nullptr, ""},
    Element{"string", Role::Simple, readString, ""},
    Element{"integer", Role::Simple, readInteger, "which is no integer"},
    Element{"real", Role::Simple, readReal, "which is no number"},
    Element{"true", Role::Simple, readBoolean<true>, "but has to be empty"},
    Element{"false", Role::Simple, readBoolean<false>, "but has to be empty"},
    Element{"dict", Role::Dictionary, nullptr, ""},
    Element{"array", Role::Array, nullptr, ""},
    Element{"date", Role::Simple, readDate, "which is no date of the form 2001-12-31T23:59:59Z"},
    Element{"data", Role::Simple, readData, "which is no base64"},
    Element{"plist", Role::Root, nullptr, ""},
};

// Most of a document is ASCII, which is passed over in blocks of this many bytes.
constexpr std::size_t kBlockSize = 32;

// Whether `text` begins with a whole block of ASCII and has no NUL in it.
bool isASCIIBlock(std::string_view text) {
  if (text.size() < kBlockSize) {
    return false;
  }
  // Without a branch and in bytes, so that compilers take many at once.
  std::uint8_t foreign = 0;
  for (const char c : text.substr(0, kBlockSize)) {
    foreign = static_cast<std::uint8_t>(foreign | (static_cast<signed char>(c) <= 0 ? 1U : 0U));
  }
  return foreign == 0;
}

// Where the first bytes stand that are not UTF-8, or the first NUL; npos when there is neither.
std::size_t firstForeignByte(std::string_view text) {
  std::size_t position = 0;
  while (position < text.size()) {
    if (isASCIIBlock(text.substr(position))) {
      position += kBlockSize;
      continue;
    }
    const DecodedCharacter next = decodeCharacter(text.substr(position));
    if (!next.valid || next.codePoint == 0) {
      return position;
    }
    position += next.length;
  }
  return text.npos;
}

// The line, from 1, that `position` is in.
std::size_t lineAt(std::string_view document, std::size_t position) {
  return 1 + static_cast<std::size_t>(std::ranges::count(document.substr(0, position), '\n'));
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

    [[nodiscard]] bool isDictionary() const { return element->role == Role::Dictionary; }
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
    if (const std::size_t problem = firstForeignByte(document); problem != document.npos) {
      fail(document[problem] == 0 ? "the document has a NUL byte" : "the document is not well-formed UTF-8",
           lineAt(document, problem));
      return false;
    }
    return true;
  }

  void parse(std::string_view document) {
    mDocument = document;
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

  void startElement(const char* name, const char** attributes) {
    const auto* const element = std::ranges::find(kElements, nameCode(name), &Element::code);
    if (element == kElements.end()) {
      fail("unknown element " + tag(name));
    } else if (mSimple != nullptr) {
      fail(tag(name) + " inside " + tag(mSimple->name));
    } else if (element->role == Role::Root) {
      startRoot(attributes);
    } else if (*attributes != nullptr) {
      fail(tag(name) + " has an attribute " + excerpt(*attributes));
    } else if (element->role == Role::Key) {
      startKey(*element);
    } else if (mayStandHere(*element)) {
      startValue(*element);
    }
  }

  void startRoot(const char** attributes) {
    if (std::exchange(mHasBegun, true)) {
      fail("<plist> inside another element");
    } else if (*attributes == nullptr) {
      return;
    } else if (attributes[0] != std::string_view("version") || attributes[2] != nullptr) {
      fail("<plist> has other attributes than a version");
    } else if (currentTag().find('&') != std::string_view::npos) {
      fail("<plist> has an entity in its version");  // Unknown ones expat leaves out of attributes without a word.
    }
  }

  // The bytes of the document that are being called back for.
  [[nodiscard]] std::string_view currentTag() const {
    return mDocument.substr(static_cast<std::size_t>(XML_GetCurrentByteIndex(mParser.get())),
                            static_cast<std::size_t>(XML_GetCurrentByteCount(mParser.get())));
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
    if (element.role == Role::Simple) {
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
    } else if (!std::ranges::all_of(text, isXMLBlank)) {
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
      // In byte order, as documents are written, each key goes to the end.
      container.dictionary.insert_or_assign(container.dictionary.end(), std::move(*container.key), std::move(value));
      container.key.reset();
    } else {
      container.list.push_back(std::move(value));
    }
  }

  void failForKey(std::string_view key) { fail("<key> \"" + excerpt(key) + "\" without a value in <dict>"); }

  // Told UTF-8, so that no other encoding is ever converted.
  std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser> mParser{XML_ParserCreate("UTF-8")};
  std::string_view mDocument;
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
