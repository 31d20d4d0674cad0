#include "tools/marlow/input_lines.h"

#include <algorithm>
#include <iostream>

#include "platform/terminal.h"
#include "platform/text.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

ExitCode codeOf(bool isGood) {
  return isGood ? ExitCode::AllWell : ExitCode::BadInput;
}

// Ends also where nobody reads any more.
ExitCode useStandardInput(const std::function<bool(std::string_view)>& use) {
  bool allGood = true;
  InputLines lines(std::cin);
  for (; std::cout && lines.next(); std::cout.flush()) {
    if (lines.isTooLong()) {
      complain("standard input:" + std::to_string(lines.number()) + ": " + lineTooLongText());
      allGood = false;
    } else if (!platform::trimmed(lines.line()).empty()) {
      allGood = use(lines.line()) && allGood;
    }
  }
  return lines.failed() ? ExitCode::CannotRun : codeOf(allGood);
}

}  // namespace

std::string lineTooLongText() {
  return "the line is longer than " + std::to_string(kMaximumLineLength) + " bytes";
}

bool InputLines::next() {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (!readLine()) {
    return false;
  }
  if (++mNumber == 1 && mLine.starts_with(kByteOrderMark)) {
    mLine.erase(0, kByteOrderMark.size());
  }
  if (mLine.ends_with('\r')) {
    mLine.pop_back();
  }
  return true;
}

bool InputLines::readLine() {
  mLine.clear();
  mIsTooLong = false;
  std::streambuf* const buffer = mStream.rdbuf();
  try {
    for (int byte = buffer->sbumpc(); byte != '\n'; byte = buffer->sbumpc()) {
      if (byte == std::istream::traits_type::eof()) {
        return !mLine.empty();  // The last line may lack its line break.
      }
      if (mLine.size() == kMaximumLineLength) {
        mIsTooLong = true;
      } else {
        mLine += static_cast<char>(byte);
      }
    }
  } catch (const std::ios_base::failure& failure) {
    complain("the input cannot be read: " + failure.code().message());
    mHasFailed = true;
    return false;
  }
  return true;
}

ExitCode forEachInput(std::string_view command, const Arguments& arguments,
                      const std::function<bool(std::string_view)>& use) {
  const std::vector<std::string>& operands = arguments.operands();
  if (operands.empty() && platform::isTerminal(platform::StandardStream::Input)) {
    complain(std::string(command) + ": nothing to read; see marlow " + std::string(command) + " --help");
    return ExitCode::CannotRun;
  }
  ExitCode code = operands.empty() ? useStandardInput(use) : ExitCode::AllWell;
  for (const std::string& operand : operands) {
    code = std::max(code, operand == "-" ? useStandardInput(use) : codeOf(use(operand)));
  }
  return code;
}

}  // namespace SharedClasses::marlow
