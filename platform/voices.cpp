#include "platform/voices.h"

#include <utility>

#include "platform/provider.h"

namespace SharedClasses::platform {

namespace {

// Never destroyed: what it holds is the program's, whose parts may be gone by then.
Provider<std::vector<Voice>>& provider() {
  static auto* const sProvider = new Provider<std::vector<Voice>>("voices");
  return *sProvider;
}

}  // namespace

void setVoiceProvider(VoiceProvider newProvider) {
  provider().set(std::move(newProvider));
}

std::optional<std::vector<Voice>> currentVoices() {
  return provider().ask();
}

}  // namespace SharedClasses::platform
