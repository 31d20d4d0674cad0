#include "platform/library_version.h"

namespace SharedClasses::platform {

std::string_view libraryVersion() {
  return SHAREDCLASSES_VERSION;
}

}  // namespace SharedClasses::platform
