#include "platform/zone_rules.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "platform/gregorian.h"
#include "platform/text.h"

namespace SharedClasses::platform {

namespace {

constexpr std::string_view kUsualChanges = ",M3.2.0,M11.1.0";
constexpr int kMostHoursOfOffset = 24;
constexpr int kMostHoursOfTime = 167;
constexpr std::int32_t kUsualTime = 2 * 3600;
constexpr std::size_t kShortestName = 3;

bool isLetter(char c) {
  return isASCIILetter(static_cast<unsigned char>(c));
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Reads one piece after another. Once a piece does not fit, everything after it fails too.
class RuleReader {
 public:
  explicit RuleReader(std::string_view text) : mRest(text) {}

  [[nodiscard]] bool hasFailed() const { return mHasFailed; }
  [[nodiscard]] bool isAtEnd() const { return mRest.empty(); }
  [[nodiscard]] bool isAt(char c) const { return !mRest.empty() && mRest.front() == c; }

  bool take(char c) {
    const bool isThere = isAt(c);
    mRest.remove_prefix(isThere ? 1 : 0);
    return isThere;
  }

  void expect(char c) { require(take(c)); }

  std::string name() {
    const bool isQuoted = take('<');
    const auto belongs = [isQuoted](char c) {
      return isLetter(c) || (isQuoted && (isDigit(c) || c == '+' || c == '-'));
    };
    const auto end = std::ranges::find_if_not(mRest, belongs);
    std::string result(mRest.begin(), end);
    mRest.remove_prefix(result.size());
    require(result.size() >= kShortestName);
    if (isQuoted) {
      expect('>');
    }
    return result;
  }

  int number(int lowest, int highest) {
    int result = 0;
    std::size_t digits = 0;
    for (; digits < mRest.size() && isDigit(mRest[digits]) && result <= highest; ++digits) {
      result = result * 10 + (mRest[digits] - '0');
    }
    mRest.remove_prefix(digits);
    require(digits > 0 && result >= lowest && result <= highest);
    return result;
  }

  // "[+-]hours[:minutes[:seconds]]", in seconds.
  std::int32_t time(int mostHours) {
    const bool isNegative = take('-');
    if (!isNegative) {
      take('+');
    }
    std::int32_t result = number(0, mostHours) * 3600;
    if (take(':')) {
      result += number(0, 59) * 60;
      if (take(':')) {
        result += number(0, 59);
      }
    }
    return isNegative ? -result : result;
  }

  // ",begin,end"
  void changes(ZoneRule& rule) {
    expect(',');
    rule.begin = yearlyTime();
    expect(',');
    rule.end = yearlyTime();
  }

 private:
  YearlyTime yearlyTime() {
    YearlyTime result;
    if (take('M')) {
      result.kind = YearlyTime::Kind::WeekdayOfMonth;
      result.month = number(1, 12);
      expect('.');
      result.week = number(1, 5);
      expect('.');
      result.day = number(0, 6);
    } else if (take('J')) {
      result.kind = YearlyTime::Kind::DayWithoutLeapDay;
      result.day = number(1, 365);
    } else {
      result.day = number(0, 365);
    }
    result.secondOfDay = take('/') ? time(kMostHoursOfTime) : kUsualTime;
    return result;
  }

  void require(bool isRight) {
    if (!isRight) {
      mHasFailed = true;
      mRest = {};
    }
  }

  std::string_view mRest;
  bool mHasFailed = false;
};

}  // namespace

std::int64_t YearlyTime::wallClockInYear(std::int64_t year) const {
  std::int64_t days = 0;
  switch (kind) {
    case Kind::DayWithoutLeapDay:
      days = daysToMonth(year, 1) + day - 1 + (day > 59 && hasLeapDay(year) ? 1 : 0);
      break;
    case Kind::Day:
      days = daysToMonth(year, 1) + day;
      break;
    case Kind::WeekdayOfMonth: {
      const std::int64_t first = daysToMonth(year, month);
      const std::int64_t next = month == 12 ? daysToMonth(year + 1, 1) : daysToMonth(year, month + 1);
      days = first + (day - weekdayOf(first) + 7) % 7 + std::int64_t{week - 1} * 7;
      days -= days >= next ? 7 : 0;
      break;
    }
  }
  return days * kSecondsPerDay + secondOfDay;
}

std::int64_t ZoneRule::beginInYear(std::int64_t year) const {
  return begin.wallClockInYear(year) - standard.secondsFromGMT;
}

std::int64_t ZoneRule::endInYear(std::int64_t year) const {
  return end.wallClockInYear(year) - (daylight ? *daylight : standard).secondsFromGMT;
}

std::optional<ZoneRule> parsedZoneRule(std::string_view text) {
  RuleReader reader(text);
  ZoneRule rule;
  rule.standard.abbreviation = reader.name();
  rule.standard.secondsFromGMT = -reader.time(kMostHoursOfOffset);
  if (!reader.isAtEnd()) {
    rule.daylight = ZoneClock{rule.standard.secondsFromGMT + 3600, true, reader.name()};
    if (!reader.isAtEnd() && !reader.isAt(',')) {
      rule.daylight->secondsFromGMT = -reader.time(kMostHoursOfOffset);
    }
    if (reader.isAtEnd()) {
      RuleReader usualChanges(kUsualChanges);
      usualChanges.changes(rule);
    } else {
      reader.changes(rule);
    }
  }
  if (reader.hasFailed() || !reader.isAtEnd()) {
    return std::nullopt;
  }
  return rule;
}

std::string offsetText(std::int32_t secondsFromGMT, std::string_view separator) {
  const int seconds = std::abs(secondsFromGMT);
  const int length = static_cast<int>(separator.size());
  char text[64];
  static_cast<void>(std::snprintf(text, sizeof text, "%c%02d%.*s%02d", secondsFromGMT < 0 ? '-' : '+', seconds / 3600,
                                  length, separator.data(), seconds / 60 % 60));
  std::string result = text;
  if (seconds % 60 != 0) {
    static_cast<void>(std::snprintf(text, sizeof text, "%.*s%02d", length, separator.data(), seconds % 60));
    result += text;
  }
  return result;
}

}  // namespace SharedClasses::platform
