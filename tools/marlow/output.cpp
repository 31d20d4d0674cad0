#include "tools/marlow/output.h"

#include <iostream>

#include "platform/text.h"
#include "tools/marlow/json.h"

namespace SharedClasses::marlow {

namespace {

constexpr std::size_t kMaximumQuotedLength = 60;  // characters

std::string printable(std::string_view text) {
  std::string line;
  for (const char32_t c : platform::CodePoints(text)) {
    platform::appendUTF8(line, drivesTerminal(c) ? U'?' : c);
  }
  return line;
}

}  // namespace

bool drivesTerminal(char32_t c) {
  const bool isControl = c < 0x20 || (c >= 0x7F && c < 0xA0);
  const bool turns =
      c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
  return isControl || turns || c == 0x2028 || c == 0x2029;
}

void printLine(std::string_view line) {
  std::cout << printable(line) << '\n';
}

void printJSON(const platform::Value& value) {
  std::cout << jsonText(value) << '\n';
}

void complain(std::string_view message) {
  std::cout.flush();  // so that a complaint stands behind the lines before it where both go to one terminal
  std::cerr << "marlow: " + printable(message) + "\n";
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
