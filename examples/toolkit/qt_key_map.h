// Qt's keyboard as the library's key map, as far as the library asks.
// Made after the QApplication, dropped before it, on its thread.
#pragma once

#include <QGuiApplication>

#include "platform/key_map.h"

namespace toolkit {

class QtKeyMap {
 public:
  QtKeyMap() { SharedClasses::platform::setKeyMapProvider(keysOfQt); }
  QtKeyMap(const QtKeyMap&) = delete;
  QtKeyMap& operator=(const QtKeyMap&) = delete;
  ~QtKeyMap() { SharedClasses::platform::setKeyMapProvider(nullptr); }

 private:
  static SharedClasses::platform::KeyMap keysOfQt() {
    SharedClasses::platform::KeyMap keys{};
    if (QGuiApplication::queryKeyboardModifiers().testFlag(Qt::AltModifier)) {
      keys[58 / 8] |= 1U << 58 % 8;  // the option key
    }
    return keys;
  }
};

}  // namespace toolkit
