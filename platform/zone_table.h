// All changes of a zone's clocks in one ascending table: those that its data list, and those of its yearly rule for 400
// years, after which leap years and weekdays repeat. Every answer is one binary search. Immutable; safe on any thread.
// Instants are seconds since the reference date, wall clocks seconds since 2001-01-01 00:00:00 of their own; both are
// brought into the years of all dates, give or take a week.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/zone_file.h"
#include "platform/zone_rules.h"

namespace SharedClasses::platform {

// Ascending numbers to search. Their range is divided into equal stretches, and for each it is known where in it a
// search begins, which spares most of the steps.
class AscendingNumbers {
 public:
  AscendingNumbers() = default;

  // The first of `numbers` is the lowest integer.
  explicit AscendingNumbers(std::vector<std::int64_t> numbers);

  [[nodiscard]] std::size_t size() const { return mNumbers.size(); }
  [[nodiscard]] std::int64_t operator[](std::size_t place) const { return mNumbers[place]; }

  // The place of the last one that is not above `number`.
  [[nodiscard]] std::size_t lastNotAbove(std::int64_t number) const;

 private:
  [[nodiscard]] std::size_t lastNotAbove(std::int64_t number, std::size_t first, std::size_t count) const;

  std::vector<std::int64_t> mNumbers;
  std::vector<std::uint32_t> mPlaces;  // of the last number that is not above the start of each stretch
  int mStretchBits = 0;                // a stretch is 2 to the power of this long, the first begins at mNumbers[1]
};

class ZoneTable {
 public:
  struct Clock {
    std::int32_t secondsFromGMT = 0;
    bool isDaylightSavingTime = false;  // ahead of the standard time around it, whatever the data's mark
    std::string abbreviation;

    friend bool operator==(const Clock&, const Clock&) = default;
  };

  // A stretch of time in which clocks stay the same; `clock` is the place in a list.
  struct Period {
    std::int64_t start;
    std::size_t clock;
  };

  explicit ZoneTable(const ZoneFile& file);

  // What clocks show at `instant`. Lives as long as the table.
  [[nodiscard]] const Clock& clockAt(std::int64_t instant) const;

  // The first instant after `instant` at which the clock changes; absent when there is none.
  [[nodiscard]] std::optional<std::int64_t> nextTransition(std::int64_t instant) const;

  struct Moment {
    std::int64_t instant;
    std::int32_t secondsFromGMT;  // at that instant
  };

  // When clocks show `wallClock`: the first of two instants; by the clock before the gap when there is none.
  // Kept: where clocks jump ahead and soon back by more, as no real ones do, a time in the gap counts as skipped
  // although they show it later.
  [[nodiscard]] Moment momentOfWallClock(std::int64_t wallClock) const;

 private:
  void fill(std::span<const Period> periods, std::span<const ZoneClock> clocks);

  // By how much `time` must move to lie where the table has it: whole cycles of 400 years.
  [[nodiscard]] std::int64_t shiftIntoTable(std::int64_t time) const;

  // Parallel, one entry for each period of one clock, ascending; the first period has no start, and stands there with
  // the lowest number.
  AscendingNumbers mStarts;
  AscendingNumbers mWallStarts;  // the first wall clock that is not resolved by an earlier period
  std::vector<std::uint16_t> mClockOfPeriod;

  std::vector<Clock> mClocks;
  std::optional<std::int64_t> mCycleStart;  // from here on everything repeats every 400 years
  bool mRepeatsBackwards = false;           // before it too
};

}  // namespace SharedClasses::platform
