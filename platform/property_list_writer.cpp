#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include "platform/date_text.h"
#include "platform/property_list.h"
#include "platform/property_list_parts.h"
#include "platform/text.h"

namespace SharedClasses::platform {

namespace {

using property_list::excerpt;

constexpr std::string_view kHeading =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kEnding = "</plist>\n";

constexpr std::size_t kDataBytesInALine = 57;  // 76 digits

// Whether a byte of a text stands in a document as it is. Bytes of longer characters are looked at in one.
constexpr auto kIsPlain = [] {
  std::array<bool, 256> isPlain{};
  for (std::size_t byte = 0x20; byte < 0x80; ++byte) {
    isPlain[byte] = true;
  }
  isPlain['\t'] = isPlain['\n'] = true;
  isPlain['<'] = isPlain['>'] = isPlain['&'] = false;
  return isPlain;
}();

// How a document says a character that would be taken for markup or, as a line end, for another; empty for others.
constexpr std::string_view reference(char32_t c) {
  switch (c) {
    case U'<':
      return "&lt;";
    case U'>':
      return "&gt;";
    case U'&':
      return "&amp;";
    case U'\r':
      return "&#13;";
    default:
      return {};
  }
}

// Whether XML 1.0 has a place for it, beyond what kIsPlain and reference() know.
constexpr bool isXMLCharacter(char32_t c) {
  return c >= 0x20 && c != 0xFFFE && c != 0xFFFF;
}

// Writes one document. Containers whose end is still to come wait in mOpen, so that no level adds to the stack.
class Writer {
 public:
  Writer() = default;
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  // To be called once.
  std::optional<std::string> write(const Value& value, std::string* error) {
    mDocument = kHeading;
    put(value);
    while (!mOpen.empty() && mProblem.empty()) {
      putNextPart();
    }
    if (!mProblem.empty()) {
      if (error != nullptr) {
        *error = path() + ' ' + mProblem;
      }
      return std::nullopt;
    }
    mDocument += kEnding;
    return std::move(mDocument);
  }

 private:
  // A container whose end tag has not been written.
  struct Open {
    const Value* container;
    std::size_t index;                        // of a list: the next element
    Value::Dictionary::const_iterator entry;  // of a dictionary: the next entry
  };

  void fail(std::string problem) {
    if (mProblem.empty()) {
      mProblem = std::move(problem);
    }
  }

  // The place of the part that was put last: value["devices"][3].
  [[nodiscard]] std::string path() const {
    constexpr std::size_t kLongest = 200;
    std::string path = "value";
    for (const Open& open : mOpen) {
      if (path.size() >= kLongest) {
        return path + "…";
      }
      path += open.container->list() != nullptr ? '[' + std::to_string(open.index - 1) + ']'
                                                : "[\"" + excerpt(std::prev(open.entry)->first) + "\"]";
    }
    return path;
  }

  // Puts the next element or entry of the innermost container, or its end.
  void putNextPart() {
    Open& open = mOpen.back();
    if (const Value::List* list = open.container->list()) {
      if (open.index == list->size()) {
        close("</array>");
      } else {
        put((*list)[open.index++]);
      }
      return;
    }
    if (open.entry == open.container->dictionary()->end()) {
      close("</dict>");
      return;
    }
    const auto entry = open.entry++;
    if (entry->second.isAbsent()) {
      ++mLeftOut;
      checkSize(0);
    } else if (putKey(entry->first)) {
      put(entry->second);
    }
  }

  bool putKey(std::string_view key) {
    putText("key", key);
    if (!mProblem.empty()) {
      mProblem = "has a key that " + mProblem;
    }
    return mProblem.empty();
  }

  // Puts a simple value whole, and of a container the beginning.
  void put(const Value& value) {
    switch (value.type()) {
      case Value::Type::Absent:
        fail("is absent, which only an entry of a dictionary can be");
        return;
      case Value::Type::Boolean:
        putLine(*value.booleanValue() ? "<true/>" : "<false/>");
        return;
      case Value::Type::Integer:
        putElement("integer", std::to_string(*value.integerValue()));
        return;
      case Value::Type::Real:
        putElement("real", numberText(*value.realValue()));
        return;
      case Value::Type::Date:
        putDate(*value.date());
        return;
      case Value::Type::Text:
        putText("string", *value.text());
        return;
      case Value::Type::Data:
        putData(*value.data());
        return;
      case Value::Type::Color:
        fail("is a color, which no property list holds");
        return;
      case Value::Type::List:
        open(value, "array", value.list()->empty(), {});
        return;
      case Value::Type::Dictionary:
        open(value, "dict", value.dictionary()->empty(), value.dictionary()->begin());
        return;
      case Value::Type::Object:
        fail("is an object, which no property list holds");
        return;
    }
  }

  void open(const Value& value, std::string_view name, bool isEmpty, Value::Dictionary::const_iterator firstEntry) {
    if (mOpen.size() == kMaximumPropertyListDepth) {
      fail("is more than " + std::to_string(kMaximumPropertyListDepth) + " levels deep");
      return;
    }
    indent();
    mDocument.append(1, '<').append(name).append(isEmpty ? "/>\n" : ">\n");
    if (checkSize(0) && !isEmpty) {
      mOpen.push_back({&value, 0, firstEntry});
    }
  }

  void close(std::string_view endTag) {
    mOpen.pop_back();
    putLine(endTag);
  }

  void putDate(Date date) {
    if (const auto text = dateText(date)) {
      putElement("date", *text);
    } else {
      fail("is a date outside of the years 0000 to 9999");
    }
  }

  void putData(std::span<const std::uint8_t> data) {
    if (!checkSize(data.size())) {
      return;
    }
    const bool isOneLine = data.size() <= kDataBytesInALine;
    indent();
    mDocument += "<data>";
    while (!data.empty()) {
      const auto line = data.first(std::min(data.size(), kDataBytesInALine));
      startDataLine(isOneLine);
      property_list::appendBase64(mDocument, line);
      data = data.subspan(line.size());
    }
    startDataLine(isOneLine);
    mDocument += "</data>\n";
    checkSize(0);
  }

  void startDataLine(bool isOneLine) {
    if (!isOneLine) {
      mDocument += '\n';
      indent();
    }
  }

  void putText(std::string_view name, std::string_view text) {
    if (!checkSize(text.size())) {
      return;
    }
    indent();
    mDocument.append(1, '<').append(name).append(1, '>');
    appendEscaped(text);
    mDocument.append("</").append(name).append(">\n");
    checkSize(0);
  }

  void appendEscaped(std::string_view text) {
    while (!text.empty()) {
      const auto* const end =
          std::ranges::find_if(text, [](char c) { return !kIsPlain[static_cast<unsigned char>(c)]; });
      const auto length = static_cast<std::size_t>(end - text.begin());
      mDocument += text.substr(0, length);
      text.remove_prefix(length);
      if (!text.empty()) {
        text.remove_prefix(appendSpecial(text));
      }
    }
  }

  // Appends the first character of `text`, which is not plain; its length.
  std::size_t appendSpecial(std::string_view text) {
    const DecodedCharacter next = decodeCharacter(text);
    if (!next.valid) {
      fail("is not well-formed UTF-8");
    } else if (const std::string_view said = reference(next.codePoint); !said.empty()) {
      mDocument += said;
    } else if (isXMLCharacter(next.codePoint)) {
      mDocument += text.substr(0, next.length);
    } else {
      fail("holds the character " + hexDigits(next.codePoint, 4) + " (hexadecimal), which XML cannot carry");
    }
    return next.length;
  }

  // An element with a text that needs no escapes.
  void putElement(std::string_view name, std::string_view content) {
    indent();
    mDocument.append(1, '<').append(name).append(1, '>').append(content).append("</").append(name).append(">\n");
    checkSize(0);
  }

  void putLine(std::string_view line) {
    indent();
    mDocument.append(line).append(1, '\n');
    checkSize(0);
  }

  void indent() { mDocument.append(mOpen.size(), '\t'); }

  // Whether the document may grow by `more` bytes. What is left out counts too, or values whose parts are shared could
  // keep the writer busy without end.
  bool checkSize(std::size_t more) {
    constexpr std::size_t kLargest = kMaximumPropertyListSize - kEnding.size();
    const std::size_t size = mDocument.size() + mLeftOut;
    const bool isFit = size <= kLargest && more <= kLargest - size;
    if (!isFit) {
      fail("makes the document longer than " + std::to_string(kMaximumPropertyListSize) + " bytes");
    }
    return isFit;
  }

  std::string mDocument;
  std::vector<Open> mOpen;   // outermost first
  std::size_t mLeftOut = 0;  // absent entries
  std::string mProblem;      // what is wrong with the part that was put last; empty while nothing is
};

}  // namespace

std::optional<std::string> propertyListAsXML(const Value& value, std::string* error) {
  return Writer().write(value, error);
}

}  // namespace SharedClasses::platform
