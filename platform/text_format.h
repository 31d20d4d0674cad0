// Texts with slots, as translators write them, filled without the C library's formatter.
// A slot is "%@" or "%d", taken in order, or "%1$@" / "%2$d", taken by number from 1; "%%" is a percent sign. Anything
// else after a percent sign is no slot and stands as it is. Pure; safe on any thread.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "platform/saturating.h"

namespace SharedClasses::platform {

// What fills a slot: a text or a whole number; one beyond 64 signed bits counts as the nearest that is not. Either kind
// of slot takes either kind of argument.
class FormatArgument {
 public:
  template <std::convertible_to<std::string_view> Text>
  FormatArgument(const Text& text) : mText(text) {}
  template <std::integral Integer>
  FormatArgument(Integer number) : mNumber(saturatingCast<std::int64_t>(number)), mIsNumber(true) {}

  void appendTo(std::string& result) const;

 private:
  std::string_view mText;  // borrowed: lives as long as the call that it is an argument of
  std::int64_t mNumber = 0;
  bool mIsNumber = false;
};

// Slots that begin beyond this many bytes of the result stay empty, so that a format which repeats one long argument a
// thousand times cannot ask for endless memory. The format's own text and the last argument filled are never cut.
inline constexpr std::size_t kMaximumFilledLength = std::size_t{1} << 20;

// `format` with its slots filled. One pass: what an argument holds is never read as a slot, so a device called "%@" is
// printed as it is called. A slot without an argument is left empty; arguments without a slot are not printed.
[[nodiscard]] std::string filledFormat(std::string_view format, std::initializer_list<FormatArgument> arguments);

// A slot of a format: the argument it takes, counted from 1, and its letter, '@' or 'd'.
struct FormatSlot {
  std::size_t argument;
  char letter;

  friend bool operator==(const FormatSlot&, const FormatSlot&) = default;
};

// The slots of `format` in order of argument: two formats take the same arguments when these are equal.
[[nodiscard]] std::vector<FormatSlot> formatSlots(std::string_view format);

}  // namespace SharedClasses::platform
