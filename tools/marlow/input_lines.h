// Lines of a stream, one at a time and each as soon as it is there, and the inputs of a command.
#pragma once

#include <cstddef>
#include <functional>
#include <istream>
#include <string>
#include <string_view>

#include "tools/marlow/command.h"

namespace SharedClasses::marlow {

// Longer lines are cut here and counted as too long; the rest of such a line is passed over.
inline constexpr std::size_t kMaximumLineLength = 65536;  // bytes

// What is said of a line that is too long.
[[nodiscard]] std::string lineTooLongText();

class InputLines {
 public:
  // `stream` must outlive this.
  explicit InputLines(std::istream& stream) : mStream(stream) {}

  // Reads the next line, without its line break and, in front of the first, a byte-order mark. False at the end of the
  // stream, and, with a complaint, where the stream cannot be read; what was read of that line is lost.
  bool next();

  // Whether next() ended since the stream cannot be read.
  [[nodiscard]] bool failed() const { return mHasFailed; }

  [[nodiscard]] std::string_view line() const { return mLine; }
  [[nodiscard]] std::size_t number() const { return mNumber; }  // of the line, from 1
  [[nodiscard]] bool isTooLong() const { return mIsTooLong; }

 private:
  bool readLine();

  std::istream& mStream;
  std::string mLine;
  std::size_t mNumber = 0;
  bool mIsTooLong = false;
  bool mHasFailed = false;
};

// Calls `use` with each operand; for "-", or where there is none, with each line of standard input that is not blank,
// and lets what it printed out before the next line. `use` says whether the input was good. Complains and gives
// CannotRun where there is no operand and standard input is a terminal, and where standard input cannot be read; then
// the other operands are used nevertheless.
[[nodiscard]] ExitCode forEachInput(std::string_view command, const Arguments& arguments,
                                    const std::function<bool(std::string_view)>& use);

}  // namespace SharedClasses::marlow
