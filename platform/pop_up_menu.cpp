#include "platform/pop_up_menu.h"

#include <algorithm>

namespace SharedClasses::platform {

namespace {

template <typename Field, typename Wanted>
std::int64_t indexOfFirst(const std::vector<MenuItem>& items, Field MenuItem::*field, const Wanted& wanted) {
  const auto found = std::ranges::find(items, wanted, field);
  return found == items.end() ? PopUpMenu::kNoItem : found - items.begin();
}

}  // namespace

void PopUpMenu::removeAllItems() {
  mItems.clear();
  mSelectedIndex = kNoItem;
}

void PopUpMenu::insertItem(MenuItem item, std::int64_t index) {
  const std::int64_t place = std::clamp<std::int64_t>(index, 0, std::ssize(mItems));
  mItems.insert(mItems.begin() + place, std::move(item));
  if (mSelectedIndex >= place) {
    ++mSelectedIndex;
  }
}

void PopUpMenu::setItemEnabled(std::int64_t index, bool isEnabled) {
  if (index >= 0 && index < std::ssize(mItems)) {
    mItems[static_cast<std::size_t>(index)].isEnabled = isEnabled;
  }
}

void PopUpMenu::selectItem(std::int64_t index) {
  setSelectedIndex(index);
}

void PopUpMenu::setAutoenablesItems(bool autoenablesItems) {
  mAutoenablesItems = autoenablesItems;
}

std::int64_t PopUpMenu::indexOfItemWithTitle(std::string_view title) const {
  return indexOfFirst(mItems, &MenuItem::title, title);
}

std::int64_t PopUpMenu::indexOfItemWithTag(std::int64_t tag) const {
  return indexOfFirst(mItems, &MenuItem::tag, tag);
}

void PopUpMenu::setSelectedIndex(std::int64_t index) {
  mSelectedIndex = index >= 0 && index < std::ssize(mItems) ? index : kNoItem;
}

}  // namespace SharedClasses::platform
