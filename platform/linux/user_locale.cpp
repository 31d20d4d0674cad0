#include "platform/user_locale.h"

#include <langinfo.h>
#include <locale.h>  // NOLINT(modernize-deprecated-headers): only this one promises newlocale and locale_t

#include <algorithm>
#include <iterator>
#include <string_view>

#include "platform/files.h"

namespace SharedClasses::platform {

namespace {

// Where the locales of the C library write the time with "%I" or "%r".
constexpr std::string_view kTerritories[] = {
    "AE", "AL", "AM", "BD", "BH", "CA", "CY", "DJ", "DZ", "EG", "ER", "ET", "FJ", "GR", "HK", "IN", "IQ", "JO", "KE",
    "KW", "LB", "LY", "MM", "MY", "OM", "PH", "QA", "SD", "SO", "SS", "SY", "TN", "TO", "TZ", "US", "VU", "WS", "YE"};

// Those that tell the time otherwise than the rest of their territory.
constexpr std::string_view kExceptions[] = {
    "ak_GH",  "ber_DZ", "bho_NP", "bo_IN", "es_US",  "fr_CA",  "gd_GB", "ha_NG",  "ig_NG", "kab_DZ", "mai_NP",
    "quz_PE", "shn_MM", "so_KE",  "sq_MK", "the_NP", "tpi_PG", "tr_CY", "unm_US", "yi_US", "yo_NG",  "yue_HK",
};

// Of languages without a territory, those that mostly count to 12.
constexpr std::string_view kLanguages[] = {"am", "ar", "bn", "el", "en", "fil", "gu", "hi", "hy", "kn", "ml", "mr",
                                           "ms", "my", "om", "or", "sd", "so",  "sq", "sw", "ta", "te", "ti", "to"};

template <typename Names>
bool contains(const Names& names, std::string_view name) {
  return std::ranges::find(names, name) != std::end(names);
}

// Whether `format`, as strftime takes it, has an hour of 1 to 12. "%p" alone does not tell: some write it behind "%H".
bool has12Hours(std::string_view format) {
  constexpr std::string_view kFlags = "-_0^#EO123456789";
  for (std::size_t at = format.find('%'); at < format.size(); at = format.find('%', at)) {
    at = std::min(format.find_first_not_of(kFlags, at + 1), format.size());
    if (at < format.size() && std::string_view("Ilr").find(format[at]) != std::string_view::npos) {
      return true;
    }
    ++at;
  }
  return false;
}

// As is known of the locale "de_DE", without character set and variant.
bool usuallyHas12Hours(std::string_view name) {
  const std::size_t underscore = name.find('_');
  return underscore == std::string_view::npos
             ? contains(kLanguages, name)
             : contains(kTerritories, name.substr(underscore + 1)) != contains(kExceptions, name);
}

}  // namespace

std::optional<bool> localeHas12HourClock(const std::string& name) {
  const std::string_view place = std::string_view(name).substr(0, name.find_first_of(".@"));
  if (place.empty() || place == "C" || place == "POSIX") {
    return std::nullopt;
  }
  const locale_t locale = ::newlocale(LC_TIME_MASK, name.c_str(), nullptr);
  if (locale == nullptr) {
    return usuallyHas12Hours(place);
  }
  const bool answer = has12Hours(::nl_langinfo_l(T_FMT, locale));
  ::freelocale(locale);
  return answer;
}

std::optional<bool> userLocaleHas12HourClock() {
  for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
    if (const auto name = environmentVariable(variable); name && !name->empty()) {
      return localeHas12HourClock(*name);
    }
  }
  return std::nullopt;
}

}  // namespace SharedClasses::platform
