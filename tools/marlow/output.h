// What the tool prints: results on standard output, complaints on standard error.
#pragma once

#include <string>
#include <string_view>

#include "platform/value.h"

namespace SharedClasses::marlow {

// Whether `c` can make a terminal show something else than the text says: control characters, tabs and line ends among
// them, and those that turn the direction of writing.
[[nodiscard]] bool drivesTerminal(char32_t c);

// Prints `line` and a line break on standard output. Characters that drive a terminal, which names, files and servers
// may hold, become "?".
void printLine(std::string_view line);

// Prints `value` as one line of JSON.
void printJSON(const platform::Value& value);

// Prints "marlow: " and `message` on standard error, as printLine does.
void complain(std::string_view message);

// Text from outside as it stands in a complaint: in double quotes, on one line, cut after 60 characters.
[[nodiscard]] std::string quoted(std::string_view text);

// "0x0a": two digits at least.
[[nodiscard]] std::string hexText(std::uint32_t number, std::size_t digits = 2);

// Whether everything printed so far has reached standard output; if not, says so on standard error.
[[nodiscard]] bool outputSucceeded();

}  // namespace SharedClasses::marlow
