#include "platform/key_map.h"

#include <utility>

#include "platform/provider.h"

namespace SharedClasses::platform {

namespace {

// Never destroyed: what it holds is the program's, whose parts may be gone by then.
Provider<KeyMap>& provider() {
  static auto* const sProvider = new Provider<KeyMap>("key map");
  return *sProvider;
}

}  // namespace

void setKeyMapProvider(KeyMapProvider newProvider) {
  provider().set(std::move(newProvider));
}

KeyMap currentKeyMap() {
  return provider().ask().value_or(KeyMap{});
}

}  // namespace SharedClasses::platform
