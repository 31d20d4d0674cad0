#include "platform/window.h"

namespace SharedClasses::platform {

void Window::setFrame(const Rectangle& frame, bool /*display*/) {
  mFrame = frame;
}

}  // namespace SharedClasses::platform
