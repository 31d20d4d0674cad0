#include "platform/date_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "platform/text.h"

namespace SharedClasses::platform {

namespace {

constexpr std::chrono::sys_days kReferenceDay = std::chrono::year(2001) / std::chrono::January / 1;

}  // namespace

std::optional<std::string> dateText(Date date) {
  using namespace std::chrono;
  constexpr double kBegin = seconds(sys_days(0y / January / 1) - kReferenceDay).count();
  constexpr double kEnd = seconds(sys_days(10000y / January / 1) - kReferenceDay).count();
  const double elapsed = date.secondsSinceReference;
  if (!(elapsed >= kBegin && elapsed < kEnd)) {
    return std::nullopt;
  }
  const sys_seconds instant = kReferenceDay + seconds(static_cast<std::int64_t>(std::floor(elapsed)));
  const sys_days midnight = floor<days>(instant);
  const year_month_day day(midnight);
  const hh_mm_ss time(instant - midnight);
  std::array<char, 80> text{};
  const int length = std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", int{day.year()},
                                   unsigned{day.month()}, unsigned{day.day()}, static_cast<int>(time.hours().count()),
                                   static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
  return std::string(text.data(), static_cast<std::size_t>(length));
}

std::optional<Date> dateFromText(std::string_view text) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
  const auto fits = [](char c, char form) {
    return form == '0' ? isASCIIDigit(static_cast<unsigned char>(c)) : c == form;
  };
  if (!std::ranges::equal(text, kForm, fits)) {
    return std::nullopt;
  }
  const auto field = [text](std::size_t position, std::size_t length) {
    int number = 0;
    std::from_chars(text.data() + position, text.data() + position + length, number);
    return number;
  };
  using namespace std::chrono;
  const year_month_day date(year(field(0, 4)), month(static_cast<unsigned>(field(5, 2))),
                            day(static_cast<unsigned>(field(8, 2))));
  const hours hour(field(11, 2));
  const minutes minute(field(14, 2));
  const seconds second(field(17, 2));
  if (!date.ok() || hour >= 24h || minute >= 60min || second >= 60s) {
    return std::nullopt;
  }
  const seconds elapsed = sys_days(date) - kReferenceDay + hour + minute + second;
  return Date{static_cast<double>(elapsed.count())};
}

}  // namespace SharedClasses::platform
