#include "tools/marlow/json.h"

#include <cmath>
#include <string_view>

#include "platform/text.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

// Deeper values are printed as null; nothing that the tool prints comes near it.
constexpr int kMaximumDepth = 512;

void appendText(std::string& json, std::string_view text) {
  json += '"';
  for (const char32_t c : platform::CodePoints(text)) {
    if (c == U'"' || c == U'\\') {
      json += '\\';
      json += static_cast<char>(c);
    } else if (drivesTerminal(c)) {
      json += "\\u" + platform::hexDigits(c, 4);
    } else {
      platform::appendUTF8(json, c);
    }
  }
  json += '"';
}

void appendValue(std::string& json, const Value& value, int depth);

template <class Elements, class Append>
void appendElements(std::string& json, std::string_view marks, const Elements& elements, Append append) {
  json += marks[0];
  for (bool first = true; const auto& element : elements) {
    if (!first) {
      json += ',';
    }
    first = false;
    append(element);
  }
  json += marks[1];
}

void appendValue(std::string& json, const Value& value, int depth) {
  if (depth > kMaximumDepth) {
    json += "null";
    return;
  }
  switch (value.type()) {
    case Value::Type::Absent:
      json += "null";
      break;
    case Value::Type::Boolean:
      json += *value.booleanValue() ? "true" : "false";
      break;
    case Value::Type::Integer:
      json += std::to_string(*value.integerValue());
      break;
    case Value::Type::Real:
      json += std::isfinite(*value.realValue()) ? platform::numberText(*value.realValue()) : "null";
      break;
    case Value::Type::Data:
      appendElements(json, "[]", *value.data(), [&](std::uint8_t byte) { json += std::to_string(byte); });
      break;
    case Value::Type::List:
      appendElements(json, "[]", *value.list(), [&](const Value& element) { appendValue(json, element, depth + 1); });
      break;
    case Value::Type::Dictionary:
      appendElements(json, "{}", *value.dictionary(), [&](const auto& entry) {
        appendText(json, entry.first);
        json += ':';
        appendValue(json, entry.second, depth + 1);
      });
      break;
    case Value::Type::Text:
    case Value::Type::Date:
    case Value::Type::Color:
    case Value::Type::Object:
      appendText(json, value.description());
      break;
  }
}

}  // namespace

std::string jsonText(const Value& value) {
  std::string json;
  appendValue(json, value, 0);
  return json;
}

}  // namespace SharedClasses::marlow
