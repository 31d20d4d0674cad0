// What stands inside the elements of a property list, both ways: base64; and how messages quote it.
// For property_list_reader.cpp and property_list_writer.cpp. Pure and stateless; safe on any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/value.h"

namespace SharedClasses::platform::property_list {

inline constexpr std::string_view kXMLBlanks = " \t\r\n";

// Appends base64 with its padding, in one line.
void appendBase64(std::string& text, std::span<const std::uint8_t> data);

// The bytes that base64 stands for; XML's blanks count for nothing. Nothing for other characters, wrong padding, and
// digits after it.
[[nodiscard]] std::optional<Value::Data> dataFromBase64(std::string_view text);

// The first characters of `text`, well-formed and in one line that cannot drive a terminal.
[[nodiscard]] std::string excerpt(std::string_view text);

}  // namespace SharedClasses::platform::property_list
