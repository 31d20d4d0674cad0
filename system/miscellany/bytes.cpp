#include "system/miscellany/bytes.h"

#include <algorithm>
#include <numeric>

#include "platform/log.h"
#include "platform/text.h"

namespace SharedClasses::Utilities {

namespace {

// Modulo 2^32, which both checksums divide.
std::uint32_t sumOfBytes(const Buffer& buffer) {
  const std::uint8_t* const bytes = buffer.getDataPtr();
  return std::accumulate(bytes, bytes + buffer.length(), std::uint32_t{0});
}

}  // namespace

std::string ipAddressFromInt(std::int32_t address) {
  const auto bits = static_cast<std::uint32_t>(address);
  const auto part = [bits](unsigned shift) { return std::to_string(bits >> shift & 0xFFU); };
  return part(24) + "." + part(16) + "." + part(8) + "." + part(0);
}

std::uint8_t checkSum(const Buffer* buffer) {
  return static_cast<std::uint8_t>(buffer == nullptr ? 0xFF : sumOfBytes(*buffer));
}

std::uint16_t checkSum16Bit(const Buffer* buffer) {
  return static_cast<std::uint16_t>(buffer == nullptr ? 0xFFFF : 0 - sumOfBytes(*buffer));
}

std::string logBytesToString(std::span<const std::uint8_t> bytes) {
  std::string dump;
  if (bytes.data() == nullptr) {
    return dump;
  }
  dump.reserve(bytes.size() * 6 + bytes.size() / 8 + 16);  // enough for offsets of eight digits
  for (std::size_t offset = 0; offset < bytes.size(); offset += kBytesInDumpRow) {
    dump.append(offset == 0 ? "" : "\n");
    appendDumpRow(dump, bytes, offset);
  }
  return dump;
}

void appendDumpRow(std::string& dump, std::span<const std::uint8_t> bytes, std::size_t offset) {
  constexpr const char* kDigits = "0123456789abcdef";
  if (bytes.data() == nullptr || offset >= bytes.size()) {
    return;
  }
  dump.append("\t").append(platform::hexDigits(offset, 4)).append(": ");
  for (const std::uint8_t byte : bytes.subspan(offset, std::min(kBytesInDumpRow, bytes.size() - offset))) {
    const char text[] = {'0', 'x', kDigits[byte >> 4], kDigits[byte & 0xF], ' '};
    dump.append(text, sizeof text);
  }
}

void logBytes(std::span<const std::uint8_t> bytes) {
  platform::log("\n" + logBytesToString(bytes) + "\n\n");
}

}  // namespace SharedClasses::Utilities
