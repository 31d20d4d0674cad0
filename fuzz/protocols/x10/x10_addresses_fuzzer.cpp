// Any text has a house from A to P or none and a unit up to 16, and its normal form is its own normal form.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "protocols/x10/x10_addresses.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace SharedClasses::X10Utilities;
  const std::string_view address(reinterpret_cast<const char*>(bytes), size);
  const char house = houseOfAddress(address);
  const auto normalized = normalizedX10Address(address);
  if ((house != 0 && (house < 'A' || house > 'P')) || unitOfAddress(address) > 16 ||
      (normalized && (normalized->size() > 3 || normalizedX10Address(*normalized) != normalized))) {
    std::abort();
  }
  return 0;
}
