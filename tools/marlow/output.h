// What the tool prints: results on standard output, complaints on standard error.
#pragma once

#include <string>
#include <string_view>

#include "platform/value.h"

namespace SharedClasses::marlow {

// Prints `line` and a line break on standard output. Control characters, which names and files may hold, become "?".
void printLine(std::string_view line);

// Prints `value` as one line of JSON.
void printJSON(const platform::Value& value);

// Prints "marlow: " and `message` on standard error.
void complain(std::string_view message);

// Text from outside as it stands in a complaint: in double quotes, on one line, cut after 60 characters.
[[nodiscard]] std::string quoted(std::string_view text);

// "0x0a": two digits at least.
[[nodiscard]] std::string hexText(std::uint32_t number, std::size_t digits = 2);

// Whether everything printed so far has reached standard output; if not, says so on standard error.
[[nodiscard]] bool outputSucceeded();

}  // namespace SharedClasses::marlow
