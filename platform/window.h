// A window of the desktop. This class holds its frame in memory; a toolkit derives from it and overrides frame() and
// setFrame(). Those of this class only keep the frame: an override may call them, or never. What it throws passes
// through the library to the program that called it. For the thread of the user interface.
#pragma once

#include "platform/geometry.h"

namespace SharedClasses::platform {

class Window {
 public:
  Window() = default;
  explicit Window(const Rectangle& frame) : mFrame(frame) {}
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  virtual ~Window() = default;

  // Where it lies among the screens, its title bar included.
  [[nodiscard]] virtual Rectangle frame() const { return mFrame; }

  // Moves and sizes it, and, where `display`, draws what it shows anew. Any numbers may come, sizes below 0 and what is
  // no number included; frame() may differ afterwards, as the toolkit and the desktop allow.
  virtual void setFrame(const Rectangle& frame, bool display);

 private:
  Rectangle mFrame;
};

}  // namespace SharedClasses::platform
