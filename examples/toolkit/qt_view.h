// A view that the user sees as a widget. For the thread of the user interface.
#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>
#include <utility>
#include <vector>

#include "platform/view.h"

namespace toolkit {

// Views and widgets have owners of their own: a view never deletes its widget, and one whose widget is gone shows
// nothing. Adding a view makes its widget a child of the other one, which deletes it in the end, as usual in Qt; a
// widget that something else owns, such as a member of a class, has to go before that.
class QtView : public SharedClasses::platform::View {
 public:
  // Over `widget`, which has no other view.
  explicit QtView(QWidget& widget) : mWidget(&widget) {}

  [[nodiscard]] QWidget* widget() const { return mWidget; }  // null once it is gone

  // The widget of the subview, if it has one, becomes a child of this one's and is shown.
  bool addSubview(std::shared_ptr<View> subview) override {
    QWidget* const added = widgetOf(subview.get());
    if (!View::addSubview(std::move(subview))) {
      return false;
    }
    if (added != nullptr && mWidget != nullptr) {
      added->setParent(mWidget);
      added->show();
      raiseSubviews();  // above other children of the widget
    }
    return true;
  }

  // The widget of the subview is hidden and has no parent then: the program deletes it, or adds it elsewhere.
  std::shared_ptr<View> removeSubview(const View* subview) override {
    std::shared_ptr<View> removed = View::removeSubview(subview);
    if (QWidget* const widget = widgetOf(removed.get()); widget != nullptr) {
      widget->setParent(nullptr);
    }
    return removed;
  }

  bool setSubviewOrder(std::vector<std::shared_ptr<View>> ordered) override {
    if (!View::setSubviewOrder(std::move(ordered))) {
      return false;
    }
    raiseSubviews();
    return true;
  }

 private:
  static QWidget* widgetOf(const View* view) {
    const auto* const shown = dynamic_cast<const QtView*>(view);
    return shown == nullptr ? nullptr : shown->widget();
  }

  void raiseSubviews() {
    for (const std::shared_ptr<View>& subview : subviews()) {
      if (QWidget* const widget = widgetOf(subview.get()); widget != nullptr) {
        widget->raise();
      }
    }
  }

  QPointer<QWidget> mWidget;
};

}  // namespace toolkit
