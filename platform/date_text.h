// Dates as texts for machines and logs. Pure and stateless; safe on any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/date.h"

namespace SharedClasses::platform {

// "2024-03-31T01:00:00Z", the whole second that `date` is in. Nothing outside of the years 0000 to 9999 and for what is
// not a number.
[[nodiscard]] std::optional<std::string> dateText(Date date);

// The date that `text` is, in the form above and with nothing around it; nothing unless day and time exist.
[[nodiscard]] std::optional<Date> dateFromText(std::string_view text);

}  // namespace SharedClasses::platform
