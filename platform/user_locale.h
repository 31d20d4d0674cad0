// How the user's locale tells the time: the one that LC_ALL, else LC_TIME, else LANG names; the first that is not empty
// counts. Asked anew at every call, without a change to the locale that the process runs in. Safe on any thread,
// as long as none changes the environment meanwhile.
#pragma once

#include <optional>
#include <string>

namespace SharedClasses::platform {

// Whether clocks there count to 12. Absent where no locale is named, and for "C" and "POSIX", which are nobody's.
[[nodiscard]] std::optional<bool> userLocaleHas12HourClock();

// The same for the locale `name`, "de_DE.UTF-8" or "en". One that is not installed is judged by its territory, one
// without a territory by its language, both without regard to the variant behind "@"; what is not known counts to 24.
[[nodiscard]] std::optional<bool> localeHas12HourClock(const std::string& name);

}  // namespace SharedClasses::platform
