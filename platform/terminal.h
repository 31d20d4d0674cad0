// Whether a program talks to a person, and how much that person sees. Safe on any thread.
#pragma once

#include <optional>

namespace SharedClasses::platform {

enum class StandardStream {
  Input,
  Output,
  Error
};

// Whether `stream` of this process is a terminal.
[[nodiscard]] bool isTerminal(StandardStream stream);

// How many characters stand in a line of the terminal that `stream` is; absent where it is none or does not tell.
[[nodiscard]] std::optional<int> terminalWidth(StandardStream stream);

}  // namespace SharedClasses::platform
