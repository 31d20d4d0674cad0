// A pop-up menu that the user sees as a combo box. For the thread of the user interface.
#pragma once

#include <QComboBox>
#include <QObject>
#include <QSignalBlocker>
#include <QStandardItemModel>
#include <QString>
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "platform/pop_up_menu.h"

namespace toolkit {

// Qt enables no items by itself, so setAutoenablesItems() needs nothing of its own.
class QtPopUpMenu : public SharedClasses::platform::PopUpMenu {
 public:
  // Over `box`, empty and with the model that Qt gave it, which must outlive every call. Its items are changed through
  // the menu alone; what the user chooses becomes the menu's selection. Slots of the program hear of that alone, since
  // the box is silent while the menu changes it; connected after the menu was made, they find its new selection.
  explicit QtPopUpMenu(QComboBox& box) : mBox(box) {
    QObject::connect(&mBox, &QComboBox::currentIndexChanged, &mConnected,
                     [this](int index) { setSelectedIndex(index); });
  }

  void removeAllItems() override {
    PopUpMenu::removeAllItems();
    const QSignalBlocker blocker(mBox);
    mBox.clear();
  }

  void insertItem(SharedClasses::platform::MenuItem item, std::int64_t index) override {
    const std::int64_t place = std::clamp<std::int64_t>(index, 0, std::ssize(items()));
    const QString title = QString::fromStdString(item.title);
    const bool isEnabled = item.isEnabled;
    PopUpMenu::insertItem(std::move(item), place);
    const QSignalBlocker blocker(mBox);
    mBox.insertItem(static_cast<int>(place), title);
    mBox.setCurrentIndex(static_cast<int>(selectedIndex()));  // Qt selects the first item of an empty box
    setItemEnabled(place, isEnabled);
  }

  void setItemEnabled(std::int64_t index, bool isEnabled) override {
    PopUpMenu::setItemEnabled(index, isEnabled);
    const auto* const model = qobject_cast<const QStandardItemModel*>(mBox.model());
    if (model != nullptr && index >= 0 && index < model->rowCount()) {
      model->item(static_cast<int>(index))->setEnabled(isEnabled);
    }
  }

  void selectItem(std::int64_t index) override {
    PopUpMenu::selectItem(index);
    const QSignalBlocker blocker(mBox);
    mBox.setCurrentIndex(static_cast<int>(selectedIndex()));  // both say -1 for none
  }

 private:
  QComboBox& mBox;
  QObject mConnected;  // ends the connection when it goes
};

}  // namespace toolkit
