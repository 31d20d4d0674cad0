// A time of day as a pattern of letters writes it: "h:mm a", "HH:mm". Independent of every locale. Pure; safe on any
// thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace SharedClasses {

struct TimeOfDay {
  int hour = 0;         // 0 to 23
  int minute = 0;       // 0 to 59
  int second = 0;       // 0 to 59
  int millisecond = 0;  // 0 to 999
};

// What stands for the halves of the day in the place of the letter a.
struct HalfDayWords {
  std::string_view morning;
  std::string_view afternoon;
};

// Fields that begin beyond this many bytes of the result print nothing, so that a pattern that repeats a long word
// cannot ask for endless memory.
inline constexpr std::size_t kMaximumTimeTextLength = std::size_t{1} << 16;

// `time` as `pattern` writes it; well-formed UTF-8 whatever is given. A number out of its range counts as the nearest
// end of it.
//   h  hour 1 to 12        K  hour 0 to 11        a  word for the half of the day
//   H  hour 0 to 23        k  hour 1 to 24        m  minute        s  second        S  first digits of its fraction
// A letter repeated is one field with at least that many digits, zeros in front; of S as many as there are letters,
// zeros behind. A digit directly before a letter is the least number of digits as well: "2H" is "HH". Other letters of
// the ASCII alphabet print nothing, with such a digit. Text between apostrophes is itself, to the end where the second
// is missing; two in a row are one apostrophe. Every other character is itself; bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string timeWithPattern(std::string_view pattern, const TimeOfDay& time, const HalfDayWords& words);

}  // namespace SharedClasses
