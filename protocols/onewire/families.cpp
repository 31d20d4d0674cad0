#include "protocols/onewire/families.h"

#include "platform/text.h"
#include "wording/localized_strings.h"

namespace SharedClasses::OneWireUtilities {

std::string familyName(std::uint32_t familyCode) {
  return std::string(Utilities::viewOfString(familyNameKey(familyCode)));
}

std::string familyNameKey(std::uint32_t familyCode) {
  return "key1WireFamilyForCode" + platform::hexDigits(familyCode, 2);
}

}  // namespace SharedClasses::OneWireUtilities
