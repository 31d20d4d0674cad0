// Any bytes are either refused with a reason, or give a value that equals its copy and can be printed.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/property_list.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace SharedClasses::platform;
  PropertyListError error;
  const auto value = propertyListFromXML({reinterpret_cast<const char*>(bytes), size}, &error);
  const bool isRefused = !error.message.empty() && error.line > 0;
  const Value copy = value ? *value : Value();
  if (value ? copy != *value || copy.description().empty() != (copy.text() && copy.text()->empty()) : !isRefused) {
    std::abort();
  }
  return 0;
}
