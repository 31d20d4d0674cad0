#include "platform/zone_table.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>
#include <utility>

#include "platform/gregorian.h"

namespace SharedClasses::platform {

namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLongestSeason = 366 * kSecondsPerDay;
constexpr std::int64_t kMostStretches = 512;
constexpr std::int64_t kYearOfRuleAlone = 2001;  // where the table of a zone that is a rule and nothing else begins

using Period = ZoneTable::Period;

// The periods of one zone as its data have them. No two neighbours have the same clock.
class Periods {
 public:
  explicit Periods(std::size_t firstClock) : mPeriods{{kLowest, firstClock}} {}

  // From `start` on, which is not before any earlier one, clocks show `clock`.
  void append(std::int64_t start, std::size_t clock) {
    if (mPeriods.size() > 1 && mPeriods.back().start == start) {
      mPeriods.pop_back();
    }
    if (mPeriods.back().clock != clock) {
      mPeriods.push_back({start, clock});
    }
  }

  [[nodiscard]] const std::vector<Period>& all() const { return mPeriods; }

 private:
  std::vector<Period> mPeriods;
};

template <typename Item>
std::size_t indexIn(std::vector<Item>& list, const Item& item) {
  const auto found = std::ranges::find(list, item);
  const auto index = static_cast<std::size_t>(found - list.begin());
  if (found == list.end()) {
    list.push_back(item);
  }
  return index;
}

std::int64_t yearOfInstant(std::int64_t instant) {
  const std::int64_t inRange = std::clamp(instant, kFirstSecond, kLastSecond);
  return dayOf(floorDivided(inRange, kSecondsPerDay)).year;
}

// Appends what `rule` says from `since` on, for the years `firstYear` to `lastYear`.
void appendRule(Periods& periods, const ZoneRule& rule, std::size_t standard, std::size_t daylight, std::int64_t since,
                std::int64_t firstYear, std::int64_t lastYear) {
  std::size_t clock = standard;
  bool hasBegun = false;
  const auto change = [&](std::int64_t instant, std::size_t newClock) {
    if (instant > since && !hasBegun) {
      periods.append(since, clock);
      hasBegun = true;
    }
    clock = newClock;
    if (hasBegun) {
      periods.append(instant, clock);
    }
  };
  for (std::int64_t year = firstYear; year <= lastYear; ++year) {
    const std::int64_t begin = rule.beginInYear(year);
    const std::int64_t endThisYear = rule.endInYear(year);
    // In the south it lasts into the next year. Where it begins anew before it has ended, it never ends.
    const std::int64_t end = endThisYear >= begin ? endThisYear : rule.endInYear(year + 1);
    if (begin < end) {
      change(begin, daylight);
    }
    if (begin < end && end < rule.beginInYear(year + 1)) {
      change(end, standard);
    }
  }
  if (!hasBegun) {
    periods.append(since, clock);
  }
}

// Whether each period is daylight saving time: clocks are ahead. The data's mark alone does not tell, since it may
// stand for a winter that is behind.
std::vector<bool> daylightSavingPeriods(std::span<const Period> periods, std::span<const ZoneClock> clocks) {
  const auto clockOf = [&](std::size_t period) -> const ZoneClock& { return clocks[periods[period].clock]; };
  const auto anyNeighbour = [&](std::size_t period, const auto& test) {
    return (period > 0 && test(period - 1)) || (period + 1 < periods.size() && test(period + 1));
  };
  std::vector<bool> isBehind(periods.size());
  for (std::size_t i = 0; i < periods.size(); ++i) {
    const auto isUnmarked = [&](std::size_t other) { return !clockOf(other).isFlagged; };
    const auto isUnmarkedAndNotAhead = [&](std::size_t other) {
      return isUnmarked(other) && clockOf(other).secondsFromGMT <= clockOf(i).secondsFromGMT;
    };
    isBehind[i] = clockOf(i).isFlagged && anyNeighbour(i, isUnmarked) && !anyNeighbour(i, isUnmarkedAndNotAhead);
  }
  std::vector<bool> result(periods.size());
  for (std::size_t i = 0; i < periods.size(); ++i) {
    const bool isSeason = i > 0 && i + 1 < periods.size() && periods[i + 1].start - periods[i].start < kLongestSeason;
    const auto isBehindIt = [&](std::size_t other) { return isBehind[other]; };
    result[i] = clockOf(i).isFlagged ? !isBehind[i] : isSeason && anyNeighbour(i, isBehindIt);
  }
  return result;
}

std::int64_t bounded(std::int64_t time) {
  return std::clamp(time, kFirstSecond - kSecondsPerWeek, kLastSecond + kSecondsPerWeek);
}

}  // namespace

AscendingNumbers::AscendingNumbers(std::vector<std::int64_t> numbers) : mNumbers(std::move(numbers)) {
  if (mNumbers.size() < 2) {
    return;
  }
  const std::int64_t range = mNumbers.back() - mNumbers[1];
  while ((range >> mStretchBits) >= kMostStretches) {
    ++mStretchBits;
  }
  for (std::int64_t stretch = 0; stretch <= (range >> mStretchBits) + 1; ++stretch) {
    const std::int64_t start = mNumbers[1] + (stretch << mStretchBits);
    mPlaces.push_back(static_cast<std::uint32_t>(lastNotAbove(start, 0, mNumbers.size())));
  }
}

std::size_t AscendingNumbers::lastNotAbove(std::int64_t number) const {
  if (mPlaces.empty() || number < mNumbers[1]) {
    return 0;
  }
  const auto stretch = static_cast<std::size_t>((number - mNumbers[1]) >> mStretchBits);
  if (stretch + 1 >= mPlaces.size()) {
    return mNumbers.size() - 1;
  }
  return lastNotAbove(number, mPlaces[stretch], mPlaces[stretch + 1] - mPlaces[stretch] + 1);
}

// One of `count` places from `first` on. There is no branch for the processor to guess wrong half of the time.
std::size_t AscendingNumbers::lastNotAbove(std::int64_t number, std::size_t first, std::size_t count) const {
  const std::int64_t* found = mNumbers.data() + first;
  while (count > 1) {
    const std::size_t half = count / 2;
    found += found[half] <= number ? half : 0;
    count -= half;
  }
  return static_cast<std::size_t>(found - mNumbers.data());
}

ZoneTable::ZoneTable(const ZoneFile& file) {
  std::vector<ZoneClock> clocks;
  std::vector<std::size_t> clockOfFile;  // the compiler writes one clock twice where only its marks differ
  for (const ZoneClock& clock : file.clocks) {
    clockOfFile.push_back(indexIn(clocks, clock));
  }
  Periods periods(clockOfFile.front());
  for (const ZoneFile::Transition& transition : file.transitions) {
    periods.append(transition.instant, clockOfFile[transition.clock]);
  }
  if (file.rule) {
    const std::size_t standard = indexIn(clocks, file.rule->standard);
    const std::int64_t yearStart = daysToMonth(kYearOfRuleAlone, 1) * kSecondsPerDay;
    const std::int64_t since = file.transitions.empty() ? yearStart : file.transitions.back().instant;
    if (file.transitions.empty()) {
      periods = Periods(standard);
    }
    if (file.rule->daylight) {
      const std::int64_t year = yearOfInstant(since);
      const std::size_t daylight = indexIn(clocks, *file.rule->daylight);
      // Two years more at either end, so that times near the new year and the neighbours of a season are all there.
      appendRule(periods, *file.rule, standard, daylight, since, year - 2, year + kYearsPerCycle + 4);
      mCycleStart = daysToMonth(year + 2, 1) * kSecondsPerDay;
      mRepeatsBackwards = file.transitions.empty();
    } else {
      periods.append(since, standard);
    }
  }
  fill(periods.all(), clocks);
}

void ZoneTable::fill(std::span<const Period> periods, std::span<const ZoneClock> clocks) {
  const std::vector<bool> isDaylightSaving = daylightSavingPeriods(periods, clocks);
  std::vector<std::int64_t> starts;
  std::vector<std::int64_t> wallStarts;
  std::vector<std::optional<std::size_t>> known(clocks.size() * 2);  // with and without daylight saving
  for (std::size_t i = 0; i < periods.size(); ++i) {
    const ZoneClock& clock = clocks[periods[i].clock];
    auto& index = known[periods[i].clock * 2 + (isDaylightSaving[i] ? 1 : 0)];
    if (!index) {
      index = indexIn(mClocks, Clock{clock.secondsFromGMT, isDaylightSaving[i], clock.abbreviation});
    }
    if (starts.empty()) {
      wallStarts.push_back(kLowest);
    } else if (mClockOfPeriod.back() == *index) {
      continue;
    } else {
      // Before it, the earlier clock shows the time first or, in a gap, is the one to go by.
      const std::int32_t furtherAhead = std::max(mClocks[mClockOfPeriod.back()].secondsFromGMT, clock.secondsFromGMT);
      wallStarts.push_back(std::max(wallStarts.back(), periods[i].start + furtherAhead));
    }
    starts.push_back(periods[i].start);
    mClockOfPeriod.push_back(static_cast<std::uint16_t>(*index));
  }
  mStarts = AscendingNumbers(std::move(starts));
  mWallStarts = AscendingNumbers(std::move(wallStarts));
}

std::int64_t ZoneTable::shiftIntoTable(std::int64_t time) const {
  if (!mCycleStart) {
    return 0;
  }
  const std::int64_t sinceStart = time - *mCycleStart;
  const bool isBeyond = sinceStart >= kSecondsPerCycle || (sinceStart < 0 && mRepeatsBackwards);
  return isBeyond ? -floorDivided(sinceStart, kSecondsPerCycle) * kSecondsPerCycle : 0;
}

const ZoneTable::Clock& ZoneTable::clockAt(std::int64_t instant) const {
  const std::int64_t time = bounded(instant);
  return mClocks[mClockOfPeriod[mStarts.lastNotAbove(time + shiftIntoTable(time))]];
}

std::optional<std::int64_t> ZoneTable::nextTransition(std::int64_t instant) const {
  const std::int64_t time = bounded(instant);
  const std::int64_t shift = shiftIntoTable(time);
  const std::size_t next = mStarts.lastNotAbove(time + shift) + 1;
  return next < mStarts.size() ? std::optional(mStarts[next] - shift) : std::nullopt;
}

ZoneTable::Moment ZoneTable::momentOfWallClock(std::int64_t wallClock) const {
  const std::int64_t time = bounded(wallClock);
  const std::int64_t shift = shiftIntoTable(time);
  const std::size_t period = mWallStarts.lastNotAbove(time + shift);
  const std::int32_t secondsFromGMT = mClocks[mClockOfPeriod[period]].secondsFromGMT;
  const std::int64_t instant = time - secondsFromGMT;
  const bool isInGap = period + 1 < mStarts.size() && instant + shift >= mStarts[period + 1];
  return {instant, isInGap ? clockAt(instant).secondsFromGMT : secondsFromGMT};
}

}  // namespace SharedClasses::platform
