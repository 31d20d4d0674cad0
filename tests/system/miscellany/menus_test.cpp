#include "system/miscellany/menus.h"

#include <gtest/gtest.h>

#include "tests/support/main_bundle.h"

namespace SharedClasses {
namespace {

using platform::PopUpMenu;

// What a toolkit is told since the menu was emptied: "|" and the title, "-" before that of a disabled one.
struct RecordingMenu : PopUpMenu {
  void removeAllItems() override { PopUpMenu::removeAllItems(), calls.clear(); }
  void setAutoenablesItems(bool does) override { calls += does ? "" : "own"; }
  void insertItem(platform::MenuItem item, std::int64_t index) override {
    calls += (item.isEnabled ? "|" : "|-") + item.title;
    PopUpMenu::insertItem(std::move(item), index);
  }
  void selectItem(std::int64_t index) override { calls += " > " + std::to_string(index); }
  std::string calls;
};

TEST(SerialMenu, ShowsThePortsAndWhichOneIsSelectedOrMissing) {
  tests::useShippedTexts();
  const std::tuple<std::vector<std::string>, std::string, std::string> kRows[] = {
      {{"A", "Bluetooth-Modem"}, "X", "own|-X (missing)|A > 0"},
      {{"A", "B", "B"}, "B", "own|A|B|B > 1"},
      {{"A", "Bluetooth-Modem", "Bluetooth"}, "Bluetooth-Modem", "own|A > -1"},
      {{"bluetooth", "My Bluetooth", "a"}, "A", "own|-A (missing)|bluetooth|My Bluetooth|a > 0"},
      {{"A"}, "Bluetooth", "own|-Bluetooth (missing)|A > 0"},
      {{"A"}, "", "own|-No port selected|A > 0"},
      {{"A", ""}, "", "own|A| > 1"},
  };
  for (const auto& [names, selected, expected] : kRows) {
    SCOPED_TRACE(expected);
    RecordingMenu menu;
    menu.addItem({.title = selected});
    Utilities::makeSerialMenuWithNames(&menu, names, menu.items()[0].title);  // which goes with the item
    EXPECT_EQ(menu.calls, expected);
  }
  Utilities::makeSerialMenuWithNames(nullptr, {}, "A");
}

TEST(PopUpMenu, TheSelectionFollowsItsItemAndTagsThatAreNoneLeaveIt) {
  PopUpMenu menu;
  menu.insertItem({.title = "b", .tag = 7}, 9);
  EXPECT_TRUE(SelectableTag::selectItemWithTag(menu, 7));
  menu.insertItem({.title = "a", .tag = PopUpMenu::kNoItem}, -9);
  menu.insertItem({.title = "c", .tag = 7}, 2);
  for (const std::int64_t index : {2, 3, -1}) {
    menu.setItemEnabled(index, false);
  }
  EXPECT_FALSE(SelectableTag::selectItemWithTag(menu, 0));
  EXPECT_EQ(menu.items(), (std::vector<platform::MenuItem>{{"a", -1}, {"b", 7}, {"c", 7, false}}));
  EXPECT_EQ(menu.selectedIndex(), 1);
  EXPECT_TRUE(SelectableTag::selectItemWithTag(menu, PopUpMenu::kNoItem) && menu.selectedIndex() == 0);
  menu.selectItem(3);
  EXPECT_EQ(menu.selectedIndex(), PopUpMenu::kNoItem);
}

}  // namespace
}  // namespace SharedClasses
