// The year's day lengths as a picture of text. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace SharedClasses::marlow {

// Bars for the days of `year` that fit in lines of `width` characters, with as few days a column as they allow, five at
// least, and two hours a row; hours at the left and months below; 13 lines, none where the width is below 40. `hours`
// holds one length for each day of the calendar, 0 to 24, from 1 January on; absent where it is not known. With
// `blocks` a bar ends on a quarter of an hour, in characters that need a UTF-8 terminal; without it the lines are
// ASCII.
[[nodiscard]] std::vector<std::string> dayLengthChart(std::int64_t year, std::span<const std::optional<double>> hours,
                                                      std::size_t width, bool blocks);

// Whether the environment says that the terminal shows UTF-8.
[[nodiscard]] bool terminalShowsUTF8();

}  // namespace SharedClasses::marlow
