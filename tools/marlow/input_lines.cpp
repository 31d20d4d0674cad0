#include "tools/marlow/input_lines.h"

#include <iostream>

#include "platform/terminal.h"
#include "platform/text.h"

namespace SharedClasses::marlow {

bool InputLines::next() {
  mLine.clear();
  mIsTooLong = false;
  std::streambuf* const buffer = mStream.rdbuf();
  for (int byte = buffer->sbumpc();; byte = buffer->sbumpc()) {
    if (byte == std::istream::traits_type::eof()) {
      if (mLine.empty()) {
        return false;
      }
      break;  // The last line may lack its line break.
    }
    if (byte == '\n') {
      break;
    }
    if (mLine.size() == kMaximumLineLength) {
      mIsTooLong = true;
      continue;
    }
    mLine += static_cast<char>(byte);
  }
  if (mLine.ends_with('\r')) {
    mLine.pop_back();
  }
  ++mNumber;
  return true;
}

bool forEachInput(const Arguments& arguments, const std::function<void(std::string_view)>& use) {
  const std::vector<std::string>& operands = arguments.operands();
  const bool readsInput = operands.empty() || (operands.size() == 1 && operands[0] == "-");
  if (!readsInput) {
    for (const std::string& operand : operands) {
      use(operand);
    }
    return true;
  }
  if (operands.empty() && platform::isTerminal(platform::StandardStream::Input)) {
    return false;
  }
  for (InputLines lines(std::cin); lines.next();) {
    if (!platform::trimmed(lines.line()).empty()) {
      use(lines.line());
    }
  }
  return true;
}

}  // namespace SharedClasses::marlow
