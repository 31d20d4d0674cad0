#include "platform/text_format.h"

#include <algorithm>
#include <optional>
#include <tuple>

namespace SharedClasses::platform {

namespace {

// Argument numbers beyond this are no slots; no text of this system has nearly so many.
constexpr std::size_t kMaximumArgumentNumber = 99;

// A piece of a format: literal text, or a slot.
struct FormatPiece {
  std::string_view literal;
  std::optional<FormatSlot> slot;
};

// Cuts a format into its pieces, one call a piece.
class FormatScanner {
 public:
  explicit FormatScanner(std::string_view format) : mRest(format) {}

  [[nodiscard]] bool atEnd() const { return mRest.empty(); }

  FormatPiece next() {
    if (mRest[0] != '%') {
      return {take(std::min(mRest.find('%'), mRest.size())), std::nullopt};
    }
    if (mRest.starts_with("%%")) {
      mRest.remove_prefix(1);
      return {take(1), std::nullopt};
    }
    std::size_t position = 1;
    std::size_t number = 0;
    while (position < mRest.size() && mRest[position] >= '0' && mRest[position] <= '9' &&
           number <= kMaximumArgumentNumber) {
      number = number * 10 + static_cast<std::size_t>(mRest[position] - '0');
      ++position;
    }
    const bool numbered = position > 1;
    if (numbered) {
      if (number == 0 || number > kMaximumArgumentNumber || !mRest.substr(position).starts_with('$')) {
        return {take(1), std::nullopt};
      }
      ++position;
    }
    const char letter = position < mRest.size() ? mRest[position] : '\0';
    if (letter != '@' && letter != 'd') {
      return {take(1), std::nullopt};
    }
    mRest.remove_prefix(position + 1);
    return {{}, FormatSlot{numbered ? number : ++mInOrder, letter}};
  }

 private:
  std::string_view take(std::size_t length) {
    const std::string_view taken = mRest.substr(0, length);
    mRest.remove_prefix(length);
    return taken;
  }

  std::string_view mRest;
  std::size_t mInOrder = 0;  // slots without a number so far
};

}  // namespace

void FormatArgument::appendTo(std::string& result) const {
  if (mIsNumber) {
    result += std::to_string(mNumber);
  } else {
    result += mText;
  }
}

std::string filledFormat(std::string_view format, std::initializer_list<FormatArgument> arguments) {
  std::string result;
  for (FormatScanner scanner(format); !scanner.atEnd();) {
    const FormatPiece piece = scanner.next();
    result += piece.literal;
    if (piece.slot && piece.slot->argument <= arguments.size() && result.size() < kMaximumFilledLength) {
      arguments.begin()[piece.slot->argument - 1].appendTo(result);
    }
  }
  return result;
}

std::vector<FormatSlot> formatSlots(std::string_view format) {
  std::vector<FormatSlot> slots;
  for (FormatScanner scanner(format); !scanner.atEnd();) {
    if (const FormatPiece piece = scanner.next(); piece.slot) {
      slots.push_back(*piece.slot);
    }
  }
  std::ranges::sort(slots, {}, [](const FormatSlot& slot) { return std::tie(slot.argument, slot.letter); });
  return slots;
}

}  // namespace SharedClasses::platform
