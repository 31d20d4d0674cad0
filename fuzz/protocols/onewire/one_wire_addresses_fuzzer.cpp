// Agrees with a slow model that goes through the text once for each step; an address that is read is written the same
// way.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "platform/text.h"
#include "protocols/onewire/addresses.h"
#include "protocols/onewire/crc.h"

namespace {

namespace platform = SharedClasses::platform;

std::optional<std::string> slowlyNormalized(std::string_view text) {
  std::vector<char32_t> characters;
  for (const char32_t c : platform::CodePoints(text)) {
    characters.push_back(platform::asciiLower(c));
  }
  if (characters.empty()) {
    return "";
  }
  std::erase_if(characters, [](char32_t c) { return platform::isBlank(c) || c == U':'; });
  if (characters.size() == 15) {
    characters.insert(characters.begin(), U'0');
  }
  if (characters.size() != 16) {
    return std::nullopt;
  }
  std::string result;
  for (std::size_t i = 0; i < 16; i += 2) {
    const std::u32string digits = U"0123456789abcdef";
    if (digits.find(characters[i]) != digits.npos && digits.find(characters[i + 1]) != digits.npos) {
      result += i > 0 ? ":" : "";
      result += {static_cast<char>(characters[i]), static_cast<char>(characters[i + 1])};
    }
  }
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace SharedClasses::OneWireUtilities;
  const std::string_view address(reinterpret_cast<const char*>(data), size);
  const auto normalized = normalizedOneWireAddress(address);
  const bool isWhole = normalized && normalized->size() == 23;
  std::array<std::uint8_t, kAddressSize> bytes{};
  bytes.fill(0xAA);
  const bool isRead = bytesWithAddress(bytes.data(), address) == kAddressRead;
  const bool fails = !isRead && std::ranges::count(bytes, 0) != 8;
  const bool isReadNormalized = bytesWithAddress(bytes.data(), normalized) == kAddressRead;
  if (normalized != slowlyNormalized(address) || fails || isReadNormalized != isWhole ||
      isRead != (isWhole && platform::codePointCount(address) >= 16) || familyCodeFromAddress(address) != bytes[0] ||
      (isWhole && addressStringWithBytes(bytes) != normalized) ||
      validAddress(address) != (isWhole && calc1WireCRC(bytes) == 0)) {
    std::abort();
  }
  return 0;
}
