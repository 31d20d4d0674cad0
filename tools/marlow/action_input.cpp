#include "tools/marlow/action_input.h"

#include "platform/text.h"

namespace SharedClasses::marlow {

namespace {

constexpr std::size_t kCodeLength = 4;

}  // namespace

ActionCode actionCodeFromInput(std::string_view text) {
  if (text.starts_with("0x") && text.size() > 2 && text.size() <= 10) {
    ActionCode code = 0;
    for (const char c : text.substr(2)) {
      const auto digit = platform::hexDigitValue(static_cast<unsigned char>(c));
      if (!digit) {
        return kNoAction;
      }
      code = code << 4 | *digit;
    }
    return code;
  }
  if (text.empty() || text.size() > kCodeLength) {
    return kNoAction;
  }
  std::string code(text);
  code.resize(kCodeLength, ' ');
  return Utilities::fourCharCodeFromString(code);
}

}  // namespace SharedClasses::marlow
