#include "wording/formatting.h"

#include <stdexcept>
#include <utility>

#include "platform/clock.h"
#include "platform/gregorian.h"
#include "platform/log.h"
#include "platform/settings_store.h"
#include "platform/text.h"
#include "platform/user_locale.h"
#include "platform/value.h"
#include "wording/localized_strings.h"
#include "wording/time_pattern.h"

namespace SharedClasses {

namespace {

using platform::CalendarDate;
using platform::SettingsStore;
using platform::Value;

CalendarDate currentDate() {
  return CalendarDate(platform::Clock::current().now());
}

// Text number `index` of the list under `key` in the settings, else the text for `stringKey`; empty where neither is
// there.
std::string designation(std::string_view key, std::size_t index, std::string_view stringKey) {
  const Value value = SettingsStore::standard()->value(key);
  const Value::List* const list = value.list();
  const std::string* const text = list != nullptr && index < list->size() ? (*list)[index].text() : nullptr;
  return std::string(text != nullptr && !text->empty() ? *text : Utilities::viewOfString(stringKey));
}

}  // namespace

}  // namespace SharedClasses

namespace SharedClasses::Utilities {

namespace {

struct SizeUnit {
  std::uint64_t above;  // used for sizes above this
  std::uint64_t tenth;  // bytes in a tenth of it
  std::string_view name;
};

constexpr SizeUnit kSizeUnits[] = {
    {999'999'999, 100'000'000, "GB"},
    {999'999, 100'000, "MB"},
    {999, 100, "KB"},
    {0, 1, ""},  // Kept: whole bytes are taken for tenths.
};

constexpr std::size_t kDaysOfWeek = 7;

// The bits in the order of the days shown.
constexpr std::int32_t kDayBits[kDaysOfWeek] = {64, 1, 2, 4, 8, 16, 32};

constexpr char32_t kNoDay = U'-';

// One of the settings that tell the user's time format.
struct FormatSetting {
  std::string_view key;
  std::string_view entry;  // of the dictionary there
  bool isLogged;
};

constexpr FormatSetting kFormatSettings[] = {
    {"AppleICUTimeFormatStrings", "1", false},
    {"com.apple.menuextra.clock", "DateFormat", false},
    {"com.apple.MenuBarClock", "TimeFormatString", false},
    {"com.apple.MenuBarClock", "Use24HourClock", true},
};

constexpr std::string_view kTwelveHourFormat = "h:mm a";

std::string textOf(const Value& value) {
  if (const std::string* const text = value.text()) {
    return *text;
  }
  const std::optional<std::int64_t> number = value.integerValue();
  return number ? std::to_string(*number) : std::string();
}

TimeFormat formatIn(const SettingsStore& store, const FormatSetting& setting) {
  const Value dictionary = store.value(setting.key);
  const Value* const value = dictionary.find(setting.entry);
  return {value != nullptr ? textOf(*value) : std::string(),
          std::string(setting.key) + ", " + std::string(setting.entry)};
}

TimeFormat formatOfLocale() {
  const std::optional<bool> has12Hours = platform::userLocaleHas12HourClock();
  if (!has12Hours) {
    return {};
  }
  return {std::string(*has12Hours ? kTwelveHourFormat : "HH:mm"), "LC_TIME"};
}

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

bool means12Hours(std::string_view format) {
  return format.empty() || contains(format, "a") || contains(format, "%p");
}

bool isUsable(std::string_view format) {
  constexpr std::string_view kDateAndZoneLetters = "dEzMyY";
  return contains(format, "m") && (contains(format, "h:") || contains(format, "K:")) &&
         format.find_first_of(kDateAndZoneLetters) == std::string_view::npos;
}

// The stored format that times can be written with; its pattern is empty where there is none.
TimeFormat usableStoredFormat() {
  constexpr std::string_view kOlderKey = "NSTimeFormatString";
  constexpr std::string_view kSeconds = ":%S";
  const auto store = SettingsStore::standard();
  TimeFormat format = formatIn(*store, kFormatSettings[0]);
  if (format.pattern.empty()) {
    format = {textOf(store->value(kOlderKey)), std::string(kOlderKey)};
  }
  if (const std::size_t at = format.pattern.find(kSeconds); at != std::string::npos) {
    format.pattern.erase(at, kSeconds.size());
  }
  return isUsable(format.pattern) ? format : TimeFormat();
}

// The plain format of the same style, with the same source.
TimeFormat plainFormatLike(TimeFormat preferred) {
  preferred.pattern = means12Hours(preferred.pattern) ? kTwelveHourFormat : "2H:mm";  // Kept: the 2 is a width.
  return preferred;
}

}  // namespace

std::string abbreviateSize(std::uint64_t size) {
  const SizeUnit* unit = kSizeUnits;
  while (size <= unit->above && unit->above != 0) {
    ++unit;
  }
  const std::uint64_t tenths = size / unit->tenth;
  std::string text = std::to_string(tenths / 10);
  if (tenths < 100 && tenths % 10 != 0) {
    text += "." + std::to_string(tenths % 10);
  }
  return text + std::string(unit->name);
}

std::string daysOfWeekAsString(std::int32_t days) {
  constexpr std::int32_t kAllDays = 127;
  const std::string_view letters = (days & kAllDays) != 0 ? viewOfString("keyDaysOfWeek") : std::string_view();
  platform::CodePoints::Iterator letter = platform::CodePoints(letters).begin();
  const platform::CodePoints::Iterator end = platform::CodePoints(letters).end();
  std::string text;
  for (const std::int32_t bit : kDayBits) {
    const bool isChosen = (days & bit) != 0;
    if (isChosen && letter == end) {
      throw std::out_of_range("keyDaysOfWeek has no letter for day " + std::to_string(text.size() + 1));
    }
    text += static_cast<char>(isChosen ? *letter & 0xFF : kNoDay);
    if (letter != end) {
      ++letter;
    }
  }
  return platform::repairedUTF8(text);
}

std::int32_t daysOfWeekFromString(std::optional<std::string_view> text) {
  if (!text || platform::codePointCount(*text) != kDaysOfWeek) {
    return 0;
  }
  std::int32_t days = 0;
  const std::int32_t* bit = kDayBits;
  for (const char32_t character : platform::CodePoints(*text)) {
    days |= character != kNoDay ? *bit : 0;
    ++bit;
  }
  return days;
}

TimeFormat preferredTimeFormat() {
  const auto store = SettingsStore::standard();
  for (const FormatSetting& setting : kFormatSettings) {
    TimeFormat format = formatIn(*store, setting);
    if (!format.pattern.empty()) {
      if (setting.isLogged) {
        platform::log(format.pattern);
      }
      return format;
    }
  }
  return formatOfLocale();
}

bool userPrefers12HourClock() {
  return means12Hours(preferredTimeFormat().pattern);
}

TimeFormat chosenTimeFormat() {
  TimeFormat format = usableStoredFormat();
  return format.pattern.empty() ? plainFormatLike(preferredTimeFormat()) : format;
}

TimeStyle chosenTimeStyle() {
  TimeFormat format = usableStoredFormat();
  TimeFormat preferred = preferredTimeFormat();
  const bool has12HourClock = means12Hours(preferred.pattern);
  return {format.pattern.empty() ? plainFormatLike(std::move(preferred)) : std::move(format), has12HourClock};
}

std::string formattedTimeWithHourAndMinute(std::int32_t hour, std::int32_t minute) {
  return formattedTime(dateWithHourAndMinute(hour, minute));
}

std::string formattedTime(const CalendarDate& date) {
  constexpr std::string_view kHalfDays = "NSAMPMDesignation";
  const std::string morning = designation(kHalfDays, 0, "keyAM");
  const std::string afternoon = designation(kHalfDays, 1, "keyPM");
  return timeWithPattern(chosenTimeFormat().pattern, {.hour = date.hourOfDay(), .minute = date.minuteOfHour()},
                         {morning, afternoon});
}

CalendarDate dateWithHourAndMinute(std::int32_t hour, std::int32_t minute) {
  const CalendarDate now = currentDate();
  return {now.yearOfCommonEra(), now.monthOfYear(), now.dayOfMonth(), hour, minute, 0, now.timeZone()};
}

}  // namespace SharedClasses::Utilities

namespace SharedClasses::NaturalLanguage {

namespace {

struct RelativeDay {
  std::int64_t daysFromToday;
  std::string_view designations;  // key of the settings
  std::string_view stringKey;
};

constexpr RelativeDay kRelativeDays[] = {
    {0, "NSThisDayDesignations", "keyToday"},
    {1, "NSNextDayDesignations", "keyTomorrow"},
    {-1, "NSPriorDayDesignations", "keyYesterday"},
};

// Counts the calendar's days, so that one of 23 or 25 hours is one day as well.
std::int64_t dayNumber(const CalendarDate& date) {
  return platform::daysToMonth(std::int64_t{date.yearOfCommonEra()}, date.monthOfYear()) + date.dayOfMonth();
}

}  // namespace

std::optional<std::string> relativeDay(const CalendarDate& date) {
  const std::int64_t daysFromToday = dayNumber(date) - dayNumber(currentDate());
  for (const RelativeDay& row : kRelativeDays) {
    if (row.daysFromToday == daysFromToday) {
      const std::string word = designation(row.designations, 0, row.stringKey);
      return word.empty() ? std::nullopt : std::optional(platform::wordsCapitalized(word));
    }
  }
  return "";
}

std::optional<std::string> relativeDay(platform::Date date) {
  return relativeDay(CalendarDate(date));
}

}  // namespace SharedClasses::NaturalLanguage
