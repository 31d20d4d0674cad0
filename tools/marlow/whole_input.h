// A file or standard input read whole, bytes as they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "tools/marlow/command.h"

namespace SharedClasses::marlow {

// The most bytes that are read; a longer input is complained about and counts as bad.
inline constexpr std::size_t kMaximumInputSize = std::size_t{256} << 20;

using UseOfFile = std::function<bool(const std::string& name, std::span<const std::uint8_t> bytes)>;

// Calls `use` with the name and the bytes of the file that each operand names, or of standard input for "-" and where
// there is no operand; its name is "standard input", and "-" with --json. `use` says whether they were good.
// A file that cannot be read, or not with the memory that there is, where `use` too may throw std::bad_alloc, is
// complained about, and the code is then CannotRun; so it is for a second "-", and where there is no operand and
// standard input is a terminal. With --json such a file is also printed, with its "error", as is one that is too long.
[[nodiscard]] ExitCode forEachFile(std::string_view command, const Arguments& arguments, const UseOfFile& use);

}  // namespace SharedClasses::marlow
