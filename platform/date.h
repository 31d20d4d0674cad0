// An instant: seconds since 2001-01-01 00:00:00 UTC, the count that preferences and property lists hold.
// A plain value; safe on any thread.
#pragma once

#include <compare>

namespace SharedClasses::platform {

struct Date {
  // Seconds since 2001-01-01 00:00:00 UTC; negative before it.
  double secondsSinceReference = 0.0;

  friend constexpr std::partial_ordering operator<=>(const Date&, const Date&) = default;
};

}  // namespace SharedClasses::platform
