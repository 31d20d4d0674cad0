// A time zone: what clocks there are ahead of UTC, since when and until when. Immutable once made, so that one zone may
// be asked from any thread; every function here is safe on any thread. Nothing calls the C library's conversions, which
// share state, and nothing changes the environment.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/date.h"

namespace SharedClasses::platform {

class TimeZone;
using TimeZonePointer = std::shared_ptr<const TimeZone>;

class TimeZone {
 public:
  // The zone of this machine, never null: what the environment variable TZ says in one of its usual forms (see `named`;
  // a leading colon and the path of a compiled file count too), else /etc/localtime, else UTC. A change of either is
  // noticed within a second by a running program. Zones already handed out stay what they are.
  [[nodiscard]] static TimeZonePointer local();

  [[nodiscard]] static const TimeZonePointer& utc();

  // Clocks `seconds` ahead of UTC all year; brought into a range of a week either way. Named "GMT+05:30" and the like,
  // with the seconds where there are any; "GMT" without an offset. Such a name is not for `named`, which reads it as a
  // rule: the numbers of rules count westward.
  [[nodiscard]] static TimeZonePointer fixedOffset(std::int64_t seconds);

  // "Europe/Berlin", "UTC", or a rule such as "EST5EDT,M3.2.0,M11.1.0" or "<+0330>-3:30". Null when there is no such
  // zone; names that would leave the folder of zones ("../x", "/etc/x") are none.
  [[nodiscard]] static TimeZonePointer named(std::string_view name);

  // The zone that a rule such as those above describes, whatever files there are; null when it is none.
  [[nodiscard]] static TimeZonePointer fromRule(std::string_view rule);

  // The zone that the bytes of a compiled zone file describe; null when they describe none. `name` is what name()
  // gives.
  [[nodiscard]] static TimeZonePointer fromCompiledFile(std::string_view bytes, std::string name);

  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;
  ~TimeZone();

  // "Europe/Berlin"; for the local zone the name of what /etc/localtime leads to, "localtime" when that does not tell.
  [[nodiscard]] const std::string& name() const;

  // Seconds that clocks show ahead of UTC at that instant. A date that is not a number counts as the reference date,
  // here and below.
  [[nodiscard]] std::int32_t secondsFromGMT(Date instant) const;

  // Whether clocks are then ahead of the standard time of the season around: also where the data mark the winter as the
  // exception (Dublin; Casablanca in Ramadan).
  [[nodiscard]] bool isDaylightSavingTime(Date instant) const;

  // "CET", "CEST"; the offset as "+0530" where the zone has no letters for it. Lives as long as the zone.
  [[nodiscard]] std::string_view abbreviation(Date instant) const;

  // The first instant after `instant` at which offset, daylight saving or abbreviation change; absent when nothing
  // changes any more, or not before the year 10000.
  [[nodiscard]] std::optional<Date> nextTransition(Date instant) const;

  // The instant, in whole seconds since the reference date, at which clocks show `wallClock` seconds since 2001-01-01
  // 00:00:00 of their own. A time that occurs twice is the first; one that does not exist moves forward by the gap.
  [[nodiscard]] std::int64_t instantOfWallClock(std::int64_t wallClock) const;

 private:
  friend class CalendarDate;  // which asks in whole seconds, and for instant and offset at once

  struct Data;
  struct Moment {
    std::int64_t instant;         // in whole seconds since the reference date
    std::int32_t secondsFromGMT;  // at that instant
  };
  explicit TimeZone(std::unique_ptr<const Data> data);

  [[nodiscard]] Moment momentOfInstant(std::int64_t instant) const;
  [[nodiscard]] Moment momentOfWallClock(std::int64_t wallClock) const;

  std::unique_ptr<const Data> mData;
};

}  // namespace SharedClasses::platform
