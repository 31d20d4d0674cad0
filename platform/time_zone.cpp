#include "platform/time_zone.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/gregorian.h"
#include "platform/saturating.h"
#include "platform/zone_file.h"
#include "platform/zone_rules.h"
#include "platform/zone_table.h"

namespace SharedClasses::platform {

namespace {

constexpr std::int64_t kYearWithoutTransitions = 10000;

std::int64_t wholeSeconds(Date instant) {
  return saturatingCast<std::int64_t>(std::floor(instant.secondsSinceReference));
}

ZoneFile fileOfClock(std::int32_t secondsFromGMT, std::string abbreviation) {
  ZoneFile file;
  file.clocks.push_back({secondsFromGMT, false, std::move(abbreviation)});
  return file;
}

}  // namespace

struct TimeZone::Data {
  Data(std::string zoneName, const ZoneFile& file) : name(std::move(zoneName)), table(file) {}

  std::string name;
  ZoneTable table;
};

TimeZone::TimeZone(std::unique_ptr<const Data> data) : mData(std::move(data)) {}

TimeZone::~TimeZone() = default;

const TimeZonePointer& TimeZone::utc() {
  // Never destroyed: dates may be made until the process ends.
  static const auto& sZone =
      *new TimeZonePointer(new TimeZone(std::make_unique<const Data>("UTC", fileOfClock(0, "UTC"))));
  return sZone;
}

TimeZonePointer TimeZone::fixedOffset(std::int64_t seconds) {
  const auto offset =
      static_cast<std::int32_t>(std::clamp<std::int64_t>(seconds, -kSecondsPerWeek, std::int64_t{kSecondsPerWeek}));
  const std::string name = offset == 0 ? "GMT" : "GMT" + offsetText(offset, ":");
  const ZoneFile file = fileOfClock(offset, offset == 0 ? "GMT" : offsetText(offset));
  return TimeZonePointer(new TimeZone(std::make_unique<const Data>(name, file)));
}

TimeZonePointer TimeZone::fromRule(std::string_view rule) {
  ZoneFile file;
  file.rule = parsedZoneRule(rule);
  if (!file.rule) {
    return nullptr;
  }
  file.clocks.push_back(file.rule->standard);
  return TimeZonePointer(new TimeZone(std::make_unique<const Data>(std::string(rule), file)));
}

TimeZonePointer TimeZone::fromCompiledFile(std::string_view bytes, std::string name) {
  const auto file = parsedZoneFile(bytes);
  return file ? TimeZonePointer(new TimeZone(std::make_unique<const Data>(std::move(name), *file))) : nullptr;
}

const std::string& TimeZone::name() const {
  return mData->name;
}

std::int32_t TimeZone::secondsFromGMT(Date instant) const {
  return mData->table.clockAt(wholeSeconds(instant)).secondsFromGMT;
}

bool TimeZone::isDaylightSavingTime(Date instant) const {
  return mData->table.clockAt(wholeSeconds(instant)).isDaylightSavingTime;
}

std::string_view TimeZone::abbreviation(Date instant) const {
  return mData->table.clockAt(wholeSeconds(instant)).abbreviation;
}

std::optional<Date> TimeZone::nextTransition(Date instant) const {
  constexpr std::int64_t kEnd = daysToMonth(kYearWithoutTransitions, 1) * kSecondsPerDay;
  const auto next = mData->table.nextTransition(wholeSeconds(instant));
  return next && *next < kEnd ? std::optional(Date{static_cast<double>(*next)}) : std::nullopt;
}

std::int64_t TimeZone::instantOfWallClock(std::int64_t wallClock) const {
  return momentOfWallClock(wallClock).instant;
}

TimeZone::Moment TimeZone::momentOfInstant(std::int64_t instant) const {
  return {instant, mData->table.clockAt(instant).secondsFromGMT};
}

TimeZone::Moment TimeZone::momentOfWallClock(std::int64_t wallClock) const {
  const ZoneTable::Moment moment = mData->table.momentOfWallClock(wallClock);
  return {moment.instant, moment.secondsFromGMT};
}

}  // namespace SharedClasses::platform
