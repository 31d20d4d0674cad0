// JSON on one line, as `--json` prints it.
#pragma once

#include <string>

#include "platform/value.h"

namespace SharedClasses::marlow {

// `value` as JSON: dictionaries as objects with their keys in order, absent values and numbers that JSON has not as
// null, data as an array of bytes, dates, colours and objects as texts. Text that is not UTF-8 is repaired.
[[nodiscard]] std::string jsonText(const platform::Value& value);

}  // namespace SharedClasses::marlow
