// Action codes as a person types them.
#pragma once

#include <string_view>

#include "shared/action_codes.h"

namespace SharedClasses::marlow {

// The code that `text` means: four characters, with blanks added to a shorter text ("On" is "On  "), or "0x" and up to
// eight hex digits. 0 when it is neither.
[[nodiscard]] ActionCode actionCodeFromInput(std::string_view text);

}  // namespace SharedClasses::marlow
