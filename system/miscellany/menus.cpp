#include "system/miscellany/menus.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "wording/localized_strings.h"

namespace SharedClasses {

namespace {

constexpr std::string_view kHiddenPrefix = "Bluetooth";

std::string titleOfMissingPort(std::string_view name) {
  return std::string(name.empty() ? Utilities::viewOfString("keyNoPortSelected") : name) +
         (name.empty() ? "" : " (missing)");
}

}  // namespace

void Utilities::makeSerialMenuWithNames(platform::PopUpMenu* menu, std::span<const std::string> names,
                                        std::string_view selected) {
  if (menu == nullptr) {
    return;
  }
  // Made before the menu is emptied: `selected` may be the title of one of its items.
  std::vector<platform::MenuItem> items;
  std::int64_t selectedIndex = platform::PopUpMenu::kNoItem;
  if (std::ranges::find(names, selected) == names.end()) {
    items.push_back({.title = titleOfMissingPort(selected), .isEnabled = false});
    selectedIndex = 0;
  }
  for (const std::string& name : names) {
    if (name.starts_with(kHiddenPrefix)) {
      continue;
    }
    if (selectedIndex == platform::PopUpMenu::kNoItem && name == selected) {
      selectedIndex = std::ssize(items);
    }
    items.push_back({.title = name});
  }
  menu->removeAllItems();
  menu->setAutoenablesItems(false);
  for (platform::MenuItem& item : items) {
    menu->addItem(std::move(item));
  }
  menu->selectItem(selectedIndex);
}

bool SelectableTag::selectItemWithTag(platform::PopUpMenu& menu, std::int64_t tag) {
  const std::int64_t index = menu.indexOfItemWithTag(tag);
  if (index == platform::PopUpMenu::kNoItem) {
    return false;
  }
  menu.selectItem(index);
  return true;
}

}  // namespace SharedClasses
