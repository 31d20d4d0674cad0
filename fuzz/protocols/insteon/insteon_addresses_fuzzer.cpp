// Agrees with a slow model that cuts the whole text into groups, then into pairs; a canonical form has a value that
// writes the same form.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "protocols/insteon/insteon_addresses.h"

namespace {

std::optional<std::string> slowlyNormalized(std::string text) {
  std::erase(text, '\t');
  for (char& c : text) {
    c = c == ':' || c == '-' ? '.' : c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  if (text.starts_with('.') || text.find("..") != std::string::npos ||
      text.find_first_not_of(".0123456789ABCDEF") != std::string::npos) {
    return std::nullopt;
  }
  // Parts every run of digits into pairs, then pads what stands alone before a period.
  for (std::size_t run = 0, i = 0; i < text.size(); ++i) {
    run = text[i] == '.' ? 0 : run + 1;
    if (run == 3) {
      text.insert(i, 1, '.');
      run = 0;
    }
  }
  std::size_t groups = 0;
  for (std::size_t start = 0; start < text.size(); ++groups) {
    const std::size_t end = text.find('.', start);
    if (end == start + 1) {
      text.insert(start, 1, '0');
    }
    start = end == std::string::npos ? text.size() : start + 3;
  }
  return groups == 3 ? std::optional(text) : std::nullopt;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace SharedClasses::Utilities;
  const std::string_view address(reinterpret_cast<const char*>(bytes), size);
  const auto normalized = normalizedINSTEONAddress(address);
  const bool isCanonical = normalized && normalized->size() == 8;
  const std::uint32_t value = intWithINSTEONAddress(address);
  if (normalized != slowlyNormalized(std::string(address)) ||
      (isCanonical ? insteonAddressWithInt(value) != normalized : value != 0)) {
    std::abort();
  }
  return 0;
}
