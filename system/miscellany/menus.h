// What the windows of the programs do with pop-up menus. For the thread of the user interface.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/pop_up_menu.h"

namespace SharedClasses::Utilities {

// `makeSerialMenu:withNames:selecting:`
// Fills `menu` with the names of serial ports, save those that begin with "Bluetooth", and selects the first one called
// `selected`. Where `names` does not hold that, the first item tells so, disabled and selected: "ttyUSB0 (missing)", or
// "No port selected", in the user's language, where `selected` is empty. The menu stops enabling items by itself.
// Nothing for null. It must not be called again for `menu` before it returns, not by what the menu runs meanwhile.
// Kept: a Bluetooth port that `names` holds is hidden but not missing: nothing is selected.
// Kept: "(missing)" is the same in every language.
void makeSerialMenuWithNames(platform::PopUpMenu* menu, std::span<const std::string> names, std::string_view selected);

}  // namespace SharedClasses::Utilities

namespace SharedClasses::SelectableTag {

// Selects the first item with that tag. False, and the selection as it was, where there is none.
bool selectItemWithTag(platform::PopUpMenu& menu, std::int64_t tag);

}  // namespace SharedClasses::SelectableTag
