#include "tools/marlow/whole_input.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <new>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "platform/terminal.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

// A failure: what is said of it, and what it makes of the whole run.
struct Failure {
  std::string text;
  ExitCode code;
};

Failure unreadable(int error) {
  return {"the file cannot be read: " + std::generic_category().message(error), ExitCode::CannotRun};
}

std::optional<Failure> readWhole(std::istream& stream, std::vector<std::uint8_t>& bytes) {
  constexpr std::size_t kChunk = std::size_t{1} << 16;
  std::streambuf* const buffer = stream.rdbuf();
  try {
    for (std::size_t length = 0;;) {
      bytes.resize(length + kChunk);
      length += static_cast<std::size_t>(buffer->sgetn(reinterpret_cast<char*>(bytes.data()) + length, kChunk));
      if (length > kMaximumInputSize) {
        return Failure{"longer than " + std::to_string(kMaximumInputSize >> 20) + " MiB", ExitCode::BadInput};
      }
      if (length < bytes.size()) {
        bytes.resize(length);
        return std::nullopt;
      }
    }
  } catch (const std::ios_base::failure& failure) {
    return unreadable(failure.code().value());
  }
}

std::optional<Failure> readFile(const std::string& path, std::vector<std::uint8_t>& bytes) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    return unreadable(errno);
  }
  return platform::isFolder(path) ? unreadable(EISDIR) : readWhole(file, bytes);
}

// Reads what `path` names and hands it to `use`. Absent where all went well.
std::optional<Failure> useFile(const std::string& path, const std::string& name, const UseOfFile& use) {
  try {
    std::vector<std::uint8_t> bytes;
    std::optional<Failure> failure = path == "-" ? readWhole(std::cin, bytes) : readFile(path, bytes);
    if (!failure && !use(name, bytes)) {
      failure = Failure{{}, ExitCode::BadInput};
    }
    return failure;
  } catch (const std::bad_alloc&) {
    return Failure{"too little memory", ExitCode::CannotRun};
  }
}

}  // namespace

ExitCode forEachFile(std::string_view command, const Arguments& arguments, const UseOfFile& use) {
  std::vector<std::string> paths = arguments.operands();
  if (paths.empty()) {
    if (platform::isTerminal(platform::StandardStream::Input)) {
      complain(std::string(command) + ": nothing to read; see marlow " + std::string(command) + " --help");
      return ExitCode::CannotRun;
    }
    paths.emplace_back("-");
  }
  ExitCode code = ExitCode::AllWell;
  bool isInputRead = false;
  for (const std::string& path : paths) {
    const std::string name = path == "-" && !arguments.wantsJSON() ? "standard input" : path;
    const bool isReadAlready = path == "-" && std::exchange(isInputRead, true);
    const std::optional<Failure> failure =
        isReadAlready ? Failure{"has been read already", ExitCode::CannotRun} : useFile(path, name, use);
    if (!failure) {
      continue;
    }
    code = std::max(code, failure->code);
    if (!failure->text.empty()) {  // else `use` said it
      if (arguments.wantsJSON()) {
        printJSON(platform::Value::Dictionary{{"file", name}, {"error", failure->text}});
      }
      complain(name + ": " + failure->text);
    }
  }
  return code;
}

}  // namespace SharedClasses::marlow
