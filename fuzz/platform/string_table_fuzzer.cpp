// What is read from any bytes, written back with escapes, reads as the same entries without an issue.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "platform/string_table.h"

namespace {

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    char escape[8] = {c};
    if (c == '"' || c == '\\') {
      std::snprintf(escape, sizeof escape, "\\%c", c);
    } else if (c >= 0 && c < ' ') {
      std::snprintf(escape, sizeof escape, "\\U%04X", c);
    }
    result += escape;
  }
  return result + "\"";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace SharedClasses::platform;
  const ParsedStrings first = parseStrings({reinterpret_cast<const char*>(bytes), size});
  std::string written;
  for (const StringEntry& entry : first.entries) {
    written += quoted(entry.key) + "=" + quoted(entry.text) + ";\n";
  }
  const ParsedStrings second = parseStrings(written);
  const auto isSame = [](const StringEntry& a, const StringEntry& b) { return a.key == b.key && a.text == b.text; };
  if (!second.issues.empty() || !std::ranges::equal(first.entries, second.entries, isSame)) {
    std::abort();
  }
  return 0;
}
