// Repairing any bytes gives valid UTF-8 of as many characters, and repairing it again nothing new; case keeps it valid.
#include <cstdint>
#include <cstdlib>

#include "platform/text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace SharedClasses::platform;
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const std::string repaired = repairedUTF8(text);
  const std::string_view core = trimmed(text);
  if (!isValidUTF8(repaired) || repairedUTF8(repaired) != repaired || isValidUTF8(text) != (repaired == text) ||
      codePointCount(repaired) != codePointCount(text) || !isValidUTF8(lowercased(text)) ||
      !isValidUTF8(wordsCapitalized(text)) || lowercased(lowercased(text)) != lowercased(text) ||
      trimmed(core) != core || !endsWithIgnoringCase(text, lowercased(text))) {
    std::abort();
  }
  return 0;
}
