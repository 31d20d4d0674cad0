#include "system/miscellany/views.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace SharedClasses::QZAdditions {
namespace {

using platform::View;
using Views = std::vector<std::shared_ptr<View>>;

TEST(ViewComparator, PutsOnlyTheViewOfTheContextFirstOrLast) {
  const View moved, other, third;
  // The two views, and what it answers for the two directions.
  const std::tuple<const char*, const View*, const View*, char, char> kRows[] = {
      {"first", &moved, &other, '>', '<'},  {"second", &other, &moved, '<', '>'},
      {"itself", &moved, &moved, '>', '<'}, {"others", &other, &third, '=', '='},
      {"none", nullptr, &moved, '<', '>'},  {"both none", nullptr, nullptr, '=', '='},
  };
  for (const auto& [name, a, b, front, back] : kRows) {
    SCOPED_TRACE(name);
    const auto answerFor = [a = a, b = b](const ViewContext& context) {
      const std::weak_ordering order = viewComparator(a, b, &context);
      return order < 0 ? '<' : order > 0 ? '>' : '=';
    };
    EXPECT_EQ(answerFor({&moved, 1}), front);
    EXPECT_EQ(answerFor({&moved, -1}), back);
    for (const ViewContext& wrong : {ViewContext{&moved, 0}, {&moved, 2}, {&moved, {}}, {nullptr, 1}, {nullptr, -1}}) {
      EXPECT_EQ(answerFor(wrong), '=');
    }
    EXPECT_EQ(viewComparator(a, b, nullptr), std::weak_ordering::equivalent);
  }
}

TEST(ViewOrder, PutsOneViewLastOrFirstAndKeepsThatOfTheOthers) {
  View view;
  for (std::size_t count = 1; count <= 5; ++count) {
    view.addSubview(std::make_shared<View>());
    for (std::size_t i = 0; i < 2 * count; ++i) {
      const std::shared_ptr<View> moved = view.subviews()[i / 2];
      Views expected = view.subviews();
      std::stable_partition(expected.begin(), expected.end(), [&](auto& v) { return (v == moved) == (i % 2 == 0); });
      i % 2 == 0 ? sendToBack(view, moved.get()) : bringToFront(view, moved.get());
      EXPECT_EQ(view.subviews(), expected) << i << " of " << count;
    }
  }
}

TEST(View, RefusesWhatWouldHoldAViewTwiceOrInItself) {
  const auto view = std::make_shared<View>(), a = std::make_shared<View>(), b = std::make_shared<View>();
  EXPECT_TRUE(view->addSubview(a) && a->addSubview(b));
  for (const auto& subview : {view, a, b, std::shared_ptr<View>()}) {
    EXPECT_FALSE(view->addSubview(subview) || a->addSubview(subview) || b->addSubview(subview));
  }
  EXPECT_TRUE(view->addSubview(a->removeSubview(b.get())));
  for (const Views& wrong : {Views{}, {b}, {b, b}, {b, nullptr}, {b, a, b}}) {
    EXPECT_FALSE(view->setSubviewOrder(wrong));
  }
  bringToFront(*view, nullptr), sendToBack(*view, view.get()), a->removeSubview(b.get());
  EXPECT_EQ(view->subviews(), (Views{a, b}));
}

TEST(View, EndsAtAnyDepthButForWhatIsHeldElsewhere) {
  const auto kept = std::make_shared<View>();
  kept->addSubview(std::make_shared<View>());
  std::shared_ptr<View> top = kept;
  for (int i = 0; i < 300'000; ++i) {
    const auto held = std::exchange(top, std::make_shared<View>());
    top->addSubview(held);
  }
  top.reset();
  EXPECT_TRUE(kept->parent() == nullptr && kept->subviews().at(0)->parent() == kept.get());
}

}  // namespace
}  // namespace SharedClasses::QZAdditions
