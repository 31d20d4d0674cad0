// An argument is printed as it is, whatever slots it spells; a format whose percent signs are doubled is its own
// result.
#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "platform/text_format.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace SharedClasses::platform;
  const std::string_view format(reinterpret_cast<const char*>(bytes), size);
  std::string doubled;
  for (const char c : format) {
    doubled.append(c == '%' ? 2 : 1, c);
  }
  // Each argument is four bytes long, so every filled slot adds four.
  const std::string marked = filledFormat(format, {"\1\2\3\4", "%1$@", -777});
  const std::string spelled = filledFormat(format, {"%1$@", "\1\2\3\4", -777});
  const auto filled = [](const FormatSlot& slot) { return slot.argument <= 3; };
  const auto slots = static_cast<std::size_t>(std::ranges::count_if(formatSlots(format), filled));
  if (filledFormat(doubled, {"never seen"}) != format || !formatSlots(doubled).empty() ||
      marked.size() != spelled.size() || marked.size() != filledFormat(format, {}).size() + 4 * slots) {
    std::abort();
  }
  return 0;
}
