// Taking a text apart at a separator, piece by piece. Pure; safe on any thread.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace SharedClasses::platform {

// Takes what stands in front of the next `separator`, and the separator with it, off the front of `rest`; all of it
// when there is none. For a loop that ends once `rest` is empty.
inline std::string_view takePart(std::string_view& rest, char separator) {
  const std::size_t end = std::min(rest.find(separator), rest.size());
  const std::string_view part = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return part;
}

}  // namespace SharedClasses::platform
