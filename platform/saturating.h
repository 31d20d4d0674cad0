// Conversion of numbers from outside to integers of this system, with a stated answer for every input.
// Pure; safe on any thread.
#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <utility>

namespace SharedClasses::platform {

// `number` truncated toward zero; the nearest end of `Integer`'s range when it lies outside; 0 when it is not a number.
template <std::integral Integer>
[[nodiscard]] constexpr Integer saturatingCast(double number) {
  using Limits = std::numeric_limits<Integer>;
  // The upper end is not always a double (2^63 - 1 is not), so the test is against the first integer beyond it.
  constexpr Integer kHalf = Limits::max() / 2 + 1;
  constexpr double kBeyond = static_cast<double>(kHalf) * 2.0;
  if (number >= kBeyond) {
    return Limits::max();
  }
  if (number <= static_cast<double>(Limits::min())) {
    return Limits::min();
  }
  return number == number ? static_cast<Integer>(number) : Integer{0};
}

// `number` brought into the range of `Integer`.
template <std::integral Integer, std::integral From>
[[nodiscard]] constexpr Integer saturatingCast(From number) {
  if (std::cmp_greater(number, std::numeric_limits<Integer>::max())) {
    return std::numeric_limits<Integer>::max();
  }
  if (std::cmp_less(number, std::numeric_limits<Integer>::min())) {
    return std::numeric_limits<Integer>::min();
  }
  return static_cast<Integer>(number);
}

}  // namespace SharedClasses::platform
