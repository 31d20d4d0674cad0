#include "system/miscellany/string_additions.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/text.h"

namespace SharedClasses::QZAdditions {

namespace {

// Code points that can be asked for one at a time.
class CharacterSet {
 public:
  explicit CharacterSet(std::u32string_view members) {
    for (const char32_t member : members) {
      if (member < mASCII.size()) {
        mASCII[member] = true;
      } else {
        mOthers.push_back(member);
      }
    }
    std::ranges::sort(mOthers);
  }

  [[nodiscard]] bool holds(char32_t c) const {
    return c < mASCII.size() ? mASCII[c] : std::ranges::binary_search(mOthers, c);
  }

 private:
  std::array<bool, 0x80> mASCII{};
  std::vector<char32_t> mOthers;  // in order
};

// Looks for a text that is not empty, byte by byte and never going back: Knuth, Morris and Pratt.
class Search {
 public:
  explicit Search(std::string_view target) : mTarget(target), mBorders(target.size()) {
    std::size_t border = 0;
    for (std::size_t i = 1; i < target.size(); ++i) {
      border = longerBy(target[i], border);
      mBorders[i] = border;
    }
  }

  // Goes through `text` up to the end of the first occurrence, or of the text; gives the bytes gone through. `matched`
  // is how many bytes of the target end there, all of them where it was found; on entry, those right before `text`.
  std::size_t advance(std::string_view text, std::size_t& matched) const {
    std::size_t i = 0;
    while (i < text.size() && matched < mTarget.size()) {
      if (matched == 0 && text[i] != mTarget[0]) {
        const void* const start = std::memchr(text.data() + i, mTarget[0], text.size() - i);
        if (start == nullptr) {
          return text.size();
        }
        i = static_cast<std::size_t>(static_cast<const char*>(start) - text.data());
      }
      matched = longerBy(text[i], matched);
      ++i;
    }
    return i;
  }

  [[nodiscard]] bool isIn(std::string_view text) const {
    std::size_t matched = 0;
    advance(text, matched);
    return matched == mTarget.size();
  }

 private:
  // How much of the target ends in `next`, `matched` bytes of it before that, fewer than all.
  [[nodiscard]] std::size_t longerBy(char next, std::size_t matched) const {
    while (matched > 0 && mTarget[matched] != next) {
      matched = mBorders[matched - 1];
    }
    return mTarget[matched] == next ? matched + 1 : 0;
  }

  std::string_view mTarget;
  std::vector<std::size_t> mBorders;  // at i: how much of the target ends its first i + 1 bytes, but not all of those
};

// A text with a gap, which parts what holds no occurrence (in front) from what is still to be gone through (behind).
class GapText {
 public:
  explicit GapText(std::string_view text) : mBytes(text) {}

  [[nodiscard]] std::string_view front() const { return std::string_view(mBytes).substr(0, mFrontEnd); }
  [[nodiscard]] std::string_view behind() const { return std::string_view(mBytes).substr(mBehindStart); }
  [[nodiscard]] std::size_t length() const { return mFrontEnd + (mBytes.size() - mBehindStart); }

  // Moves the first `count` bytes from behind the gap to the front.
  void moveToFront(std::size_t count) {
    if (mFrontEnd != mBehindStart) {
      std::memmove(mBytes.data() + mFrontEnd, mBytes.data() + mBehindStart, count);
    }
    mFrontEnd += count;
    mBehindStart += count;
  }

  void dropFromFront(std::size_t count) { mFrontEnd -= count; }

  void putBehind(std::string_view bytes) {
    if (mBehindStart - mFrontEnd < bytes.size()) {
      const std::size_t more = bytes.size() + mBytes.size() / 2;
      mBytes.insert(mBehindStart, more, '\0');
      mBehindStart += more;
    }
    mBehindStart -= bytes.size();
    bytes.copy(mBytes.data() + mBehindStart, bytes.size());
  }

 private:
  std::string mBytes;
  std::size_t mFrontEnd = 0;
  std::size_t mBehindStart = 0;
};

// Absent where one of the limits, or an endless replacement, stands against it. `target` is not empty.
std::optional<std::string> replaced(std::string_view text, std::string_view target, std::string_view replacement,
                                    const ReplacingLimits& limits) {
  const Search search(target);
  if (search.isIn(replacement)) {
    return std::nullopt;
  }
  // As the front holds no occurrence, the next to end is the first to start, and a search from the start could only
  // come to where this one stands.
  GapText result(text);
  std::size_t matched = 0;
  std::size_t work = 0;
  for (;;) {
    result.moveToFront(search.advance(result.behind(), matched));
    if (matched < target.size()) {
      return std::string(result.front());
    }
    result.dropFromFront(target.size());
    const bool isTooLong = replacement.size() > target.size() &&
                           (result.length() > limits.length || replacement.size() > limits.length - result.length());
    if (isTooLong || replacement.size() > limits.work - work) {
      return std::nullopt;
    }
    work += replacement.size();
    result.putBehind(replacement);
    // What is matched now is found anew in as many bytes as can matter, fewer than have just been dropped.
    const std::string_view front = result.front();
    matched = 0;
    search.advance(front.substr(front.size() - std::min(front.size(), target.size() - 1)), matched);
  }
}

// What ends a line at the start of `text`, in bytes; 0 where nothing does.
std::size_t terminatorLength(std::string_view text) {
  switch (static_cast<unsigned char>(text[0])) {
    case '\n':
      return 1;
    case '\r':
      return text.starts_with("\r\n") ? 2 : 1;
    case 0xC2:
      return text.starts_with("\u0085") ? 2 : 0;
    case 0xE2:
      return text.starts_with("\u2028") || text.starts_with("\u2029") ? 3 : 0;
    default:
      return 0;
  }
}

}  // namespace

std::string firstCharacterCapitalized(std::string_view text) {
  std::string result(text);
  if (!result.empty() && result[0] >= 'a' && result[0] <= 'z') {
    result[0] = static_cast<char>(result[0] - 'a' + 'A');
  }
  return result;
}

std::optional<std::string> stringByRemovingCharactersInSet(std::string_view text, std::u32string_view set) {
  try {
    const CharacterSet removed(set);
    std::string kept;
    kept.reserve(text.size());
    for (const char32_t c : platform::CodePoints(text)) {
      if (!removed.holds(c)) {
        platform::appendUTF8(kept, c);
      }
    }
    return kept;
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  } catch (const std::length_error&) {
    return std::nullopt;
  }
}

std::string stringByReplacingOccurrencesOfString(std::string_view text, std::string_view target,
                                                 std::string_view replacement, const ReplacingLimits& limits) {
  if (!target.empty() && target.size() <= text.size()) {
    try {
      if (std::optional<std::string> result = replaced(text, target, replacement, limits)) {
        return *std::move(result);
      }
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    }
  }
  return std::string(text);
}

TextRange rangeForLine(std::string_view text, std::uint32_t line) {
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t terminator = terminatorLength(text.substr(i));
    if (terminator == 0) {
      ++i;
      continue;
    }
    if (line == 0) {
      return {start, i - start};
    }
    --line;
    i += terminator;
    start = i;
  }
  return line == 0 ? TextRange{start, text.size() - start} : TextRange{text.size(), 0};
}

}  // namespace SharedClasses::QZAdditions
