#include "system/miscellany/views.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace SharedClasses::QZAdditions {

namespace {

void moveToEnd(platform::View& view, const platform::View* subview, std::int64_t frontOrBack) {
  std::vector<std::shared_ptr<platform::View>> views = view.subviews();
  const auto found = std::ranges::find(views, subview, [](const auto& pointer) { return pointer.get(); });
  if (found == views.end()) {
    return;
  }
  if (frontOrBack == kToFront) {
    std::rotate(found, found + 1, views.end());
  } else {
    std::rotate(views.begin(), found, found + 1);
  }
  view.setSubviewOrder(std::move(views));
}

}  // namespace

void bringToFront(platform::View& view, const platform::View* subview) {
  moveToEnd(view, subview, kToFront);
}

void sendToBack(platform::View& view, const platform::View* subview) {
  moveToEnd(view, subview, kToBack);
}

std::weak_ordering viewComparator(const platform::View* a, const platform::View* b, const ViewContext* context) {
  if (context == nullptr || context->view == nullptr || (a != context->view && b != context->view)) {
    return std::weak_ordering::equivalent;
  }
  const bool isFirst = a == context->view;  // Kept: of a view and itself, `a` is the one that is moved
  if (context->frontOrBack == kToFront) {
    return isFirst ? std::weak_ordering::greater : std::weak_ordering::less;
  }
  if (context->frontOrBack == kToBack) {
    return isFirst ? std::weak_ordering::less : std::weak_ordering::greater;
  }
  return std::weak_ordering::equivalent;
}

}  // namespace SharedClasses::QZAdditions
