// Any bytes are either refused with a reason, or give a value that equals its copy and can be printed. What was read is
// written and read again to an equal value, unless the document would grow too large by its tabs and line ends.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/property_list.h"

namespace {

using namespace SharedClasses::platform;

bool survivesRewriting(const Value& value) {
  std::string error;
  const auto document = propertyListAsXML(value, &error);
  if (!document) {
    return error.find("makes the document longer") != error.npos;
  }
  const auto again = propertyListFromXML(*document);
  return again && *again == value && propertyListAsXML(*again) == document;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  PropertyListError error;
  const auto value = propertyListFromXML({reinterpret_cast<const char*>(bytes), size}, &error);
  const bool isRefused = !error.message.empty() && error.line > 0;
  const Value copy = value ? *value : Value();
  if (value ? copy != *value || copy.description().empty() != (copy.text() && copy.text()->empty()) : !isRefused) {
    std::abort();
  }
  if (value && !survivesRewriting(*value)) {
    std::abort();
  }
  return 0;
}
