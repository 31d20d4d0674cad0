// Replacing, removing and finding a line give what slow, literal models of them give, whatever the bytes.
#include <cstdint>
#include <cstdlib>

#include "platform/text.h"
#include "system/miscellany/string_additions.h"

namespace {

using namespace SharedClasses::QZAdditions;
using SharedClasses::platform::CodePoints;

// Small, so that the model is quick and the limits are met often.
constexpr ReplacingLimits kLimits{.length = 400, .work = 2000};

std::string literallyReplaced(const std::string& text, const std::string& target, const std::string& replacement) {
  std::string result = text;
  std::size_t work = 0;
  for (std::size_t at; !target.empty() && (at = result.find(target)) != result.npos;) {
    result.replace(at, target.size(), replacement);
    work += replacement.size();
    const bool isTooLong = replacement.size() > target.size() && result.size() > kLimits.length;
    if (replacement.find(target) != replacement.npos || isTooLong || work > kLimits.work) {
      return text;
    }
  }
  return result;
}

std::string literallyRemoved(std::string_view text, const std::u32string& set) {
  std::string result;
  for (const char32_t c : CodePoints(text)) {
    if (set.find(c) == set.npos) {
      SharedClasses::platform::appendUTF8(result, c);
    }
  }
  return result;
}

TextRange literallyWalked(std::string_view text, std::uint32_t line) {
  TextRange range{0, 0};
  const CodePoints points(text);
  for (auto point = points.begin(); point != points.end();) {
    const char32_t c = *point;
    const std::size_t at = text.size() - point.rest().size();
    ++point;
    if (c != U'\n' && c != U'\r' && c != 0x85 && c != 0x2028 && c != 0x2029) {
      continue;
    }
    if (line == 0) {
      return {range.location, at - range.location};
    }
    if (c == U'\r' && point != points.end() && *point == U'\n') {
      ++point;
    }
    --line;
    range.location = text.size() - point.rest().size();
  }
  return line > 0 ? TextRange{text.size(), 0} : TextRange{range.location, text.size() - range.location};
}

}  // namespace

// Two digits, the lengths of target and replacement; the line's number; target, replacement and text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size < 3) {
    return 0;
  }
  const std::string rest(reinterpret_cast<const char*>(bytes) + 3, size - 3);
  const std::string target = rest.substr(0, bytes[0] & 0xFU);
  const std::string replacement = rest.substr(target.size(), bytes[1] & 0xFU);
  const std::string text = rest.substr(target.size() + replacement.size());
  const std::uint32_t line = bytes[2] & 0xFU;
  const CodePoints members(target);
  std::u32string set;
  for (const char32_t c : members) {
    set.insert(set.begin(), c);
  }
  if (stringByReplacingOccurrencesOfString(text, target, replacement, kLimits) !=
          literallyReplaced(text, target, replacement) ||
      stringByRemovingCharactersInSet(text, set) != literallyRemoved(text, set) ||
      rangeForLine(text, line) != literallyWalked(text, line)) {
    std::abort();
  }
  return 0;
}
