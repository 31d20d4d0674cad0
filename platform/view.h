// A part of a window that may hold further views. This class holds them in memory; a toolkit derives from it and
// overrides what changes them. An override calls the operation of this class once, hands on what it returns, and shows
// the change only where there was one. It changes no views itself, nor may a destructor of a derived class, which may
// find its subviews gone already. What an override throws passes through the library to the program that called it;
// what was changed by then stays changed. For the thread of the user interface.
#pragma once

#include <memory>
#include <vector>

namespace SharedClasses::platform {

class View {
 public:
  View() = default;
  View(const View&) = delete;
  View& operator=(const View&) = delete;
  // Leaves its subviews without a parent; those that nobody else holds end with it, however deep they are nested.
  virtual ~View();

  // The last one is drawn on top. References into it hold until the next change.
  [[nodiscard]] const std::vector<std::shared_ptr<View>>& subviews() const { return mSubviews; }
  // The view that holds this one; null where none does.
  [[nodiscard]] View* parent() const { return mParent; }

  // Adds `subview` on top of the others. False, and nothing, for a null one, for one that has a parent, and for this
  // view and those that hold it. `b.addSubview(a.removeSubview(view))` moves one.
  virtual bool addSubview(std::shared_ptr<View> subview);

  // Takes `subview` out and returns it; null where it is none of them.
  virtual std::shared_ptr<View> removeSubview(const View* subview);

  // Draws the subviews in the order of `ordered`, the last one on top. False, and nothing, unless it holds the same
  // views.
  virtual bool setSubviewOrder(std::vector<std::shared_ptr<View>> ordered);

 private:
  std::vector<std::shared_ptr<View>> mSubviews;  // each has this one as its parent
  View* mParent = nullptr;                       // holds this one; it takes itself out before it ends
};

}  // namespace SharedClasses::platform
