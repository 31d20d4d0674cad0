// The voices in which the machine can speak. A program sets where they come from, at its start. For the main thread.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"

namespace SharedClasses::platform {

struct Voice {
  std::string identifier;        // by which the speech engine knows it
  Value::Dictionary attributes;  // "VoiceName" is the name for the user
};

using VoiceProvider = std::function<std::vector<Voice>()>;

// Sets what gives the voices, the preferred one first; an empty function for none, which is the start.
void setVoiceProvider(VoiceProvider provider);

// The voices of now; absent where no program has set a provider. Empty where it throws, which is logged, and for one
// that asks for them itself, which is logged once. It may set another.
[[nodiscard]] std::optional<std::vector<Voice>> currentVoices();

}  // namespace SharedClasses::platform
