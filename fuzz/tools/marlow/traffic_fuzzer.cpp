// Any line is read or refused with a reason; a line that is read holds an address in its normal form and a known action.
#include <cstdlib>

#include "tools/marlow/traffic.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace SharedClasses;
  std::string error;
  const auto line = marlow::parseTrafficLine({reinterpret_cast<const char*>(bytes), size}, &error);
  if (!line && error.empty()) {
    std::abort();
  }
  if (line && (line->address.empty() || actionCodeRow(line->action) == nullptr)) {
    std::abort();
  }
  return 0;
}
