// A menu that shows its selected item and lets the user choose another one. This class holds the items in memory; a
// toolkit derives from it and overrides what changes them. A menu is only ever refilled: single items stay.
// An override gets the arguments of the caller, any of them, and calls the operation of this class once; items() and
// selectedIndex() then tell what to show. Nothing in it may come back to the program, which might change the menu
// meanwhile: a toolkit that tells of every change has to be silenced. What an override throws passes through the
// library to the program that called it; what was changed by then stays changed. For the thread of the user interface.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace SharedClasses::platform {

struct MenuItem {
  std::string title;  // UTF-8
  std::int64_t tag = 0;
  bool isEnabled = true;

  friend bool operator==(const MenuItem&, const MenuItem&) = default;
};

class PopUpMenu {
 public:
  static constexpr std::int64_t kNoItem = -1;

  PopUpMenu() = default;
  PopUpMenu(const PopUpMenu&) = delete;
  PopUpMenu& operator=(const PopUpMenu&) = delete;
  virtual ~PopUpMenu() = default;

  // Removes all items; then nothing is selected.
  virtual void removeAllItems();
  // Inserts `item` before the one at `index`, or at the nearest end for any other number; the selection stays on the
  // item that it was on.
  virtual void insertItem(MenuItem item, std::int64_t index);
  // Enables or disables the item at `index`; nothing where there is none.
  virtual void setItemEnabled(std::int64_t index, bool isEnabled);
  // Selects the item at `index`, enabled or not; nothing is selected where there is none.
  virtual void selectItem(std::int64_t index);
  // Whether the toolkit decides by itself which items are enabled, whatever MenuItem::isEnabled says; it does at the
  // start.
  virtual void setAutoenablesItems(bool autoenablesItems);

  void addItem(MenuItem item) { insertItem(std::move(item), static_cast<std::int64_t>(mItems.size())); }

  // References into it hold until the next change.
  [[nodiscard]] const std::vector<MenuItem>& items() const { return mItems; }
  [[nodiscard]] std::int64_t selectedIndex() const { return mSelectedIndex; }  // kNoItem for none
  [[nodiscard]] bool autoenablesItems() const { return mAutoenablesItems; }

  // The first such item; kNoItem where there is none.
  [[nodiscard]] std::int64_t indexOfItemWithTitle(std::string_view title) const;
  [[nodiscard]] std::int64_t indexOfItemWithTag(std::int64_t tag) const;

 protected:
  // Notes that the user has chosen the item at `index`, none where there is none. Unlike selectItem(), it is not
  // overridden: the toolkit shows that choice already.
  void setSelectedIndex(std::int64_t index);

 private:
  std::vector<MenuItem> mItems;
  std::int64_t mSelectedIndex = kNoItem;
  bool mAutoenablesItems = true;
};

}  // namespace SharedClasses::platform
