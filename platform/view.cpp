#include "platform/view.h"

#include <algorithm>
#include <utility>

namespace SharedClasses::platform {

namespace {

std::vector<std::shared_ptr<View>> sorted(std::vector<std::shared_ptr<View>> views) {
  std::ranges::sort(views);
  return views;
}

}  // namespace

// Without recursion: what only its parent holds hands its own subviews over before it ends.
View::~View() {
  std::vector<std::shared_ptr<View>> leaving;
  const auto takeSubviewsOf = [&leaving](View& view) {
    for (std::shared_ptr<View>& subview : view.mSubviews) {
      subview->mParent = nullptr;
      leaving.push_back(std::move(subview));
    }
    view.mSubviews.clear();
  };
  takeSubviewsOf(*this);
  while (!leaving.empty()) {
    const std::shared_ptr<View> view = std::move(leaving.back());
    leaving.pop_back();
    if (view.use_count() == 1) {
      takeSubviewsOf(*view);
    }
  }
}

bool View::addSubview(std::shared_ptr<View> subview) {
  if (subview == nullptr || subview.get() == this || subview->mParent != nullptr) {
    return false;
  }
  if (!subview->mSubviews.empty()) {  // else it holds no view, and not this one
    for (const View* holder = mParent; holder != nullptr; holder = holder->mParent) {
      if (holder == subview.get()) {
        return false;
      }
    }
  }
  mSubviews.push_back(std::move(subview));
  mSubviews.back()->mParent = this;
  return true;
}

std::shared_ptr<View> View::removeSubview(const View* subview) {
  const auto found = std::ranges::find(mSubviews, subview, [](const auto& pointer) { return pointer.get(); });
  if (found == mSubviews.end()) {
    return nullptr;
  }
  std::shared_ptr<View> removed = std::move(*found);
  mSubviews.erase(found);
  removed->mParent = nullptr;
  return removed;
}

bool View::setSubviewOrder(std::vector<std::shared_ptr<View>> ordered) {
  if (sorted(ordered) != sorted(mSubviews)) {
    return false;
  }
  mSubviews = std::move(ordered);
  return true;
}

}  // namespace SharedClasses::platform
