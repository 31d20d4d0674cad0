// Whether a program talks to a person. Safe on any thread.
#pragma once

namespace SharedClasses::platform {

enum class StandardStream {
  Input,
  Output,
  Error
};

// Whether `stream` of this process is a terminal.
[[nodiscard]] bool isTerminal(StandardStream stream);

}  // namespace SharedClasses::platform
