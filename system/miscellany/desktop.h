// What the programs ask of the user's desktop: the path of a program, a page to be opened, a voice.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace SharedClasses::Utilities {

// The full path of the program that the desktop knows under `name`, or that the folders of PATH hold; absent where
// there is none (platform/workspace.h says how it is looked for). Safe on any thread.
[[nodiscard]] std::optional<std::string> findAppWithShortName(std::string_view name);

// Has the desktop open `url`, without waiting for it. Safe on any thread.
// Kept: an error flag, not one of success: false where `url` was handed to the opener, true where there is none or
// `url` is none: no scheme and ":" in front, blanks, control characters or bytes that are not UTF-8 in it, or longer
// than 64 KiB. False does not tell that the opener could be executed, nor that the page exists.
bool openURL(std::string_view url);

// The identifier of the first voice whose attribute "VoiceName" is `name`; absent where there is none. The voices are
// those of platform/voices.h, or, where no program has set them, those that "spd-say -L" lists, whose names are their
// identifiers; that takes until this has ended, at most 4 seconds, in which the run loop of the calling thread is
// served. For the main thread.
[[nodiscard]] std::optional<std::string> voiceIDWithName(std::string_view name);

}  // namespace SharedClasses::Utilities
