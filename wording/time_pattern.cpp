#include "wording/time_pattern.h"

#include <algorithm>
#include <utility>

#include "platform/text.h"

namespace SharedClasses {

namespace {

bool startsWithLetter(std::string_view text) {
  return !text.empty() && platform::isASCIILetter(static_cast<unsigned char>(text[0]));
}

bool startsWithDigit(std::string_view text) {
  return !text.empty() && platform::isASCIIDigit(static_cast<unsigned char>(text[0]));
}

// Writes the pattern's fields and texts one after another; each takes what it read off the front of `mRest`.
class PatternWriter {
 public:
  PatternWriter(std::string_view pattern, const TimeOfDay& time, const HalfDayWords& words)
      : mRest(pattern),
        mTime{std::clamp(time.hour, 0, 23), std::clamp(time.minute, 0, 59), std::clamp(time.second, 0, 59),
              std::clamp(time.millisecond, 0, 999)},
        mWords(words) {}

  std::string write() {
    while (!mRest.empty()) {
      if (startsWithLetter(mRest)) {
        writeField(0);
      } else if (startsWithDigit(mRest) && startsWithLetter(mRest.substr(1))) {
        const auto width = static_cast<std::size_t>(mRest[0] - '0');
        mRest.remove_prefix(1);
        writeField(width);
      } else if (mRest[0] == '\'') {
        writeQuoted();
      } else {
        writeCharacter();
      }
    }
    return std::move(mText);
  }

 private:
  void writeField(std::size_t width) {
    const char letter = mRest[0];
    const std::size_t run = std::min(mRest.find_first_not_of(letter), mRest.size());
    mRest.remove_prefix(run);
    if (mText.size() <= kMaximumTimeTextLength) {
      appendField(letter, std::max(width, run));
    }
  }

  void appendField(char letter, std::size_t width) {
    switch (letter) {
      case 'h':
        return appendNumber((mTime.hour + 11) % 12 + 1, width);
      case 'K':
        return appendNumber(mTime.hour % 12, width);
      case 'H':
        return appendNumber(mTime.hour, width);
      case 'k':
        return appendNumber((mTime.hour + 23) % 24 + 1, width);
      case 'm':
        return appendNumber(mTime.minute, width);
      case 's':
        return appendNumber(mTime.second, width);
      case 'S':
        return appendFraction(width);
      case 'a':
        mText += platform::repairedUTF8(mTime.hour < 12 ? mWords.morning : mWords.afternoon);
        return;
      default:
        return;
    }
  }

  void appendNumber(int number, std::size_t width) {
    const std::string digits = std::to_string(number);
    mText.append(width - std::min(width, digits.size()), '0');
    mText += digits;
  }

  void appendFraction(std::size_t width) {
    std::string digits = std::to_string(1000 + mTime.millisecond).substr(1);
    digits.resize(width, '0');
    mText += digits;
  }

  // From an apostrophe to the one that ends it.
  void writeQuoted() {
    mRest.remove_prefix(1);
    if (mRest.starts_with('\'')) {
      return writeCharacter();
    }
    while (!mRest.empty()) {
      if (mRest[0] == '\'') {
        mRest.remove_prefix(1);
        if (!mRest.starts_with('\'')) {
          return;
        }
      }
      writeCharacter();
    }
  }

  void writeCharacter() {
    const platform::DecodedCharacter character = platform::decodeCharacter(mRest);
    platform::appendUTF8(mText, character.codePoint);
    mRest.remove_prefix(character.length);
  }

  std::string_view mRest;  // of the pattern
  const TimeOfDay mTime;
  const HalfDayWords& mWords;
  std::string mText;
};

}  // namespace

std::string timeWithPattern(std::string_view pattern, const TimeOfDay& time, const HalfDayWords& words) {
  return PatternWriter(pattern, time, words).write();
}

}  // namespace SharedClasses
