#include "platform/string_table.h"

#include <algorithm>
#include <utility>

#include "platform/text.h"

namespace SharedClasses::platform {

namespace {

// A file that is no table at all has as many issues as lines.
constexpr std::size_t kMaximumIssues = 1000;

// Reads one file. Each step reports what is wrong where it stands and returns false; the loop in `parse` then goes on
// with the next line.
class StringsParser {
 public:
  explicit StringsParser(std::string_view bytes) : mRest(bytes) {}

  ParsedStrings parse() {
    if (mRest.starts_with("\xFF\xFE") || mRest.starts_with("\xFE\xFF")) {
      report("the file is UTF-16; save it as UTF-8");
      return std::move(mParsed);
    }
    if (mRest.starts_with("\xEF\xBB\xBF")) {
      mRest.remove_prefix(3);
    }
    while (skipToEntry()) {
      if (!readEntry()) {
        mRest.remove_prefix(std::min(mRest.find('\n'), mRest.size()));
      }
    }
    return std::move(mParsed);
  }

 private:
  void report(std::string message) {
    ++mParsed.issueCount;
    if (mParsed.issues.size() < kMaximumIssues) {
      mParsed.issues.push_back({mLine, std::move(message)});
    }
  }

  // Passes over blanks, line breaks and comments. False at the end of the file.
  bool skipToEntry() {
    while (!mRest.empty()) {
      if (mRest[0] == '\n') {
        ++mLine;
        mRest.remove_prefix(1);
      } else if (mRest.starts_with("/*")) {
        skipBlockComment();
      } else if (mRest.starts_with("//")) {
        mRest.remove_prefix(std::min(mRest.find('\n'), mRest.size()));
      } else if (!skipBlank()) {
        return true;
      }
    }
    return false;
  }

  void skipBlockComment() {
    const std::size_t end = mRest.find("*/", 2);
    if (end == std::string_view::npos) {
      report("a /* comment is never closed; close it with */");
    }
    const std::string_view comment = mRest.substr(0, end);
    for (const char c : comment) {
      mLine += c == '\n' ? 1 : 0;
    }
    mRest.remove_prefix(std::min(comment.size() + 2, mRest.size()));
  }

  bool skipBlank() {
    const DecodedCharacter next = decodeCharacter(mRest);
    if (next.length == 0 || next.codePoint == U'\n' || !isBlank(next.codePoint)) {
      return false;
    }
    mRest.remove_prefix(next.length);
    return true;
  }

  bool readEntry() {
    StringEntry entry{{}, {}, mLine};
    if (!readQuoted(entry.key, "a key") || !readMark('=', "after the key") || !readQuoted(entry.text, "a text") ||
        !readMark(';', "after the text")) {
      return false;
    }
    mParsed.entries.push_back(std::move(entry));
    return true;
  }

  bool readMark(char mark, std::string_view where) {
    while (skipBlank()) {
    }
    if (!mRest.starts_with(mark)) {
      report("'" + std::string(1, mark) + "' is missing " + std::string(where) + "; write \"key\" = \"text\";");
      return false;
    }
    mRest.remove_prefix(1);
    return true;
  }

  bool readQuoted(std::string& text, std::string_view what) {
    while (skipBlank()) {
    }
    if (!mRest.starts_with('"')) {
      report(std::string(what) + " in double quotes is missing; write \"key\" = \"text\";");
      return false;
    }
    mRest.remove_prefix(1);
    while (!mRest.empty() && mRest[0] != '\n' && !mRest.starts_with("\r\n")) {
      if (mRest[0] == '"') {
        mRest.remove_prefix(1);
        return true;
      }
      if (mRest[0] == '\\') {
        if (!readEscape(text)) {
          return false;
        }
        continue;
      }
      const DecodedCharacter next = decodeCharacter(mRest);
      if (!next.valid) {
        report(std::string(what) + " holds bytes that are not UTF-8; save the file as UTF-8");
        return false;
      }
      if (next.codePoint < 0x20 && next.codePoint != U'\t') {
        report(std::string(what) + " holds a control character; remove it or write it as an escape");
        return false;
      }
      text += mRest.substr(0, next.length);
      mRest.remove_prefix(next.length);
    }
    report(std::string(what) + " is not closed on its line; end it with a double quote, write \\n for a line break");
    return false;
  }

  bool readEscape(std::string& text) {
    constexpr std::string_view kLetters = "\"\\nrt";
    constexpr std::string_view kMeanings = "\"\\\n\r\t";
    const char letter = mRest.size() > 1 ? mRest[1] : '\0';
    if (const std::size_t known = kLetters.find(letter); known != std::string_view::npos) {
      text += kMeanings[known];
      mRest.remove_prefix(2);
      return true;
    }
    if (letter != 'U' && letter != 'u') {
      report("unknown escape after '\\'; the escapes are \\\" \\\\ \\n \\r \\t and \\U with four hex digits");
      return false;
    }
    return readHexEscape(text);
  }

  // \Uxxxx; two of them in a row may spell one character beyond U+FFFF.
  bool readHexEscape(std::string& text) {
    std::optional<char32_t> unit = readHexUnit();
    if (unit && *unit >= 0xD800 && *unit <= 0xDBFF) {
      const std::optional<char32_t> low = readHexUnit();
      const bool isPair = low && *low >= 0xDC00 && *low <= 0xDFFF;
      unit = isPair ? std::optional<char32_t>(0x10000 + ((*unit - 0xD800) << 10) + (*low - 0xDC00)) : std::nullopt;
    } else if (unit && *unit >= 0xDC00 && *unit <= 0xDFFF) {
      unit.reset();
    }
    if (!unit || *unit == 0) {
      report("\\U must be followed by the four hex digits of a character");
      return false;
    }
    appendUTF8(text, *unit);
    return true;
  }

  std::optional<char32_t> readHexUnit() {
    if (!mRest.starts_with("\\U") && !mRest.starts_with("\\u")) {
      return std::nullopt;
    }
    mRest.remove_prefix(2);
    char32_t unit = 0;
    for (int i = 0; i < 4; ++i) {
      const auto digit = mRest.empty() ? std::nullopt : hexDigitValue(static_cast<unsigned char>(mRest[0]));
      if (!digit) {
        return std::nullopt;
      }
      unit = unit << 4 | *digit;
      mRest.remove_prefix(1);
    }
    return unit;
  }

  std::string_view mRest;
  std::size_t mLine = 1;
  ParsedStrings mParsed;
};

}  // namespace

ParsedStrings parseStrings(std::string_view bytes) {
  return StringsParser(bytes).parse();
}

StringTable::StringTable(std::vector<StringEntry> entries) {
  mTexts.reserve(entries.size());
  for (StringEntry& entry : entries) {
    mTexts.insert_or_assign(std::move(entry.key), std::move(entry.text));
  }
}

std::optional<std::string_view> StringTable::find(std::string_view key) const {
  const auto found = mTexts.find(key);
  if (found == mTexts.end()) {
    return std::nullopt;
  }
  return found->second;
}

}  // namespace SharedClasses::platform
