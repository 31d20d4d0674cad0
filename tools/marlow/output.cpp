#include "tools/marlow/output.h"

#include <iostream>

#include "platform/text.h"
#include "tools/marlow/json.h"

namespace SharedClasses::marlow {

namespace {

constexpr std::size_t kMaximumQuotedLength = 60;  // characters

}  // namespace

void printLine(std::string_view line) {
  std::cout << platform::printableLine(line) << '\n';
}

void printJSON(const platform::Value& value) {
  std::cout << jsonText(value) << '\n';
}

void complain(std::string_view message) {
  std::cout.flush();  // so that a complaint stands behind the lines before it where both go to one terminal
  std::cerr << "marlow: " + platform::printableLine(message) + "\n";
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  std::size_t length = 0;
  for (const char32_t c : platform::CodePoints(text)) {
    if (++length > kMaximumQuotedLength) {
      result += "…";
      break;
    }
    platform::appendUTF8(result, c == U'\t' ? U' ' : c);
  }
  return result + "\"";
}

std::string hexText(std::uint32_t number, std::size_t digits) {
  return "0x" + platform::hexDigits(number, digits);
}

bool outputSucceeded() {
  std::cout.flush();
  if (!std::cout) {
    complain("standard output could not be written; the output is not complete");
    return false;
  }
  return true;
}

}  // namespace SharedClasses::marlow
