// Any line is read or refused with a reason; a line that is read holds an address and a known action or a scratch pad.
#include <cstdlib>

#include "tools/marlow/traffic.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace SharedClasses;
  std::string error;
  const auto line = marlow::parseTrafficLine({reinterpret_cast<const char*>(bytes), size}, &error);
  if (!line && error.empty()) {
    std::abort();
  }
  const bool isReading = line && line->protocol == marlow::Protocol::OneWire;
  if (line &&
      (line->address.empty() || (isReading ? line->bytes.size() != 9 : actionCodeRow(line->action) == nullptr))) {
    std::abort();
  }
  return 0;
}
