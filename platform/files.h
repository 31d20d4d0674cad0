// Reading files and folders, and where the running program lies.
// Nothing here blocks on a device or a pipe. Safe on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace SharedClasses::platform {

// The bytes of the regular file at `path`. Absent when it is missing, unreadable, not a regular file or longer than
// `limit` bytes; `*error`, where given, then says which.
[[nodiscard]] std::optional<std::string> readFile(const std::string& path, std::size_t limit,
                                                  std::string* error = nullptr);

// The size in bytes of what `path` leads to, as the system states it: 0 for a pipe and a device. -1 when there is
// nothing.
[[nodiscard]] std::int64_t sizeOfFile(const char* path) noexcept;

// Fills `bytes` from the start of the regular file at `path`. False when it cannot be read or holds less; `bytes` are
// then partly filled.
[[nodiscard]] bool readFileInto(const char* path, std::span<std::uint8_t> bytes) noexcept;

// The path of `name` inside `folder`. Empty, which names nothing, for an empty folder.
[[nodiscard]] std::string pathInFolder(std::string_view folder, std::string_view name);

// The names in the folder at `path`, in the order the file system gives them, without "." and "..".
// Empty when the folder cannot be read.
[[nodiscard]] std::vector<std::string> entriesOfFolder(const std::string& path);

// Whether `path` leads to a folder.
[[nodiscard]] bool isFolder(const std::string& path);

// The full path of the running program's file; empty when the system does not tell.
[[nodiscard]] std::string programPath();

// The environment variable `name`; absent when it is not set, and always in a program that runs with raised rights.
[[nodiscard]] std::optional<std::string> environmentVariable(const char* name);

}  // namespace SharedClasses::platform
