// The order in which views lie upon one another. For the thread of the user interface.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>

#include "platform/view.h"

namespace SharedClasses::QZAdditions {

inline constexpr std::int64_t kToFront = 1;
inline constexpr std::int64_t kToBack = -1;

// Which view goes where.
struct ViewContext {
  const platform::View* view = nullptr;     // null where it is missing
  std::optional<std::int64_t> frontOrBack;  // kToFront or kToBack; absent where it is missing
};

// Draws `subview` on top of the other subviews of `view`, or behind them; the others keep their order. Nothing where it
// is none of them.
void bringToFront(platform::View& view, const platform::View* subview);
void sendToBack(platform::View& view, const platform::View* subview);

// `less` where `a` comes before `b`, behind it on the screen. Only the view of the context is moved: it comes last for
// kToFront and first for kToBack; all else is equivalent, also where the context or a part of it is missing, or says
// anything else.
// Kept: this is no strict order: the view of the context, compared with itself, comes before or after itself. A sort
// that relies on such an order must not use it; bringToFront() and sendToBack() do not.
[[nodiscard]] std::weak_ordering viewComparator(const platform::View* a, const platform::View* b,
                                                const ViewContext* context);

}  // namespace SharedClasses::QZAdditions
