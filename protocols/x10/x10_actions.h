// X10 functions, dim steps along a lamp's brightness curve, and the day masks of X10 timers.
// Pure arithmetic: allocates nothing; safe on any thread.
#pragma once

#include <array>
#include <cstdint>

#include "shared/action_codes.h"

namespace SharedClasses::X10Utilities {

// What actionCodeToX10Action answers for a code that has no X10 function.
inline constexpr std::uint8_t kNoX10Function = 255;

// Dim steps of a full sweep, unless a controller says otherwise.
inline constexpr std::int32_t kUsualDimSteps = 22;

// The X10 function of `code`, 0 to 15; kNoX10Function when it has none.
[[nodiscard]] std::uint8_t actionCodeToX10Action(ActionCode code);

// The action code of X10 function `function`, of which only the low 4 bits count; never 0.
[[nodiscard]] ActionCode x10ActionToActionCode(std::uint32_t function);

// The action code of a compact action number, of which only the low 8 bits count; 0 for 0 and for numbers above 18.
[[nodiscard]] ActionCode qz1ActionToActionCode(std::uint32_t number);

// `dimStepsFrom:to:withTotalSteps:`
// The number of dim or bright steps, never negative, from level `from` to level `to` (percent) on a controller that
// sweeps in `totalSteps` steps. With 22 steps the lamp's brightness curve is followed and levels are clamped to 0 to
// 100; with any other total a cosine stands for the curve, and a level outside 0 to 100 gives 0.
// Kept: from 100 to 0 are 23 steps, from 0 to 100 are 22. A change of level takes at least one step on the curve.
[[nodiscard]] std::int32_t dimStepsFrom(std::int32_t from, std::int32_t to, std::int32_t totalSteps);

// `precentFromDimSteps:withTotalSteps:`
// The level in percent after `steps` of `totalSteps` dim steps, clamped to 0 to 100. A total of 0 or less counts as 22.
// Kept: the spelling of the name, which both programs use.
[[nodiscard]] std::int32_t precentFromDimStepsWithTotalSteps(std::int32_t steps, std::int32_t totalSteps);

// The X10 timer's day mask (bit 0 Sunday, bit 1 Monday, …, bit 6 Saturday) of the system's (bit 0 Monday, …, bit 6
// Sunday). Bits above 6 are ignored.
[[nodiscard]] std::int32_t x10BitsFromDayOfWeek(std::int32_t days);

// The system's day mask of the X10 timer's.
// Kept: bits above 6 move down one place like the others, so that X10 bit 7 also gives Sunday.
[[nodiscard]] std::int32_t daysOfWeekFromX10Bits(std::int32_t x10Bits);

}  // namespace SharedClasses::X10Utilities
