#include <algorithm>
#include <iostream>
#include <string>

#include "system/miscellany/bytes.h"
#include "tools/marlow/command.h"
#include "tools/marlow/output.h"
#include "tools/marlow/whole_input.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

void printRows(std::span<const std::uint8_t> bytes) {
  std::string row;
  for (std::size_t offset = 0; offset < bytes.size() && std::cout; offset += Utilities::kBytesInDumpRow) {
    row.clear();
    Utilities::appendDumpRow(row, bytes, offset);
    std::cout << row << '\n';  // a tab in front, no byte of the input as it is
  }
}

// One row at least, so that a file without bytes is told too.
void printRowsAsJSON(const std::string& name, std::span<const std::uint8_t> bytes) {
  std::size_t offset = 0;
  do {
    const auto row = bytes.subspan(offset, std::min(Utilities::kBytesInDumpRow, bytes.size() - offset));
    printJSON(Value::Dictionary{{"file", name}, {"offset", offset}, {"bytes", Value::Data(row.begin(), row.end())}});
    offset += row.size();
  } while (offset < bytes.size() && std::cout);
}

ExitCode run(const Arguments& arguments) {
  return forEachFile("dump", arguments, [&](const std::string& name, std::span<const std::uint8_t> bytes) {
    if (arguments.wantsJSON()) {
      printRowsAsJSON(name, bytes);
      return true;
    }
    if (arguments.operands().size() > 1) {
      printLine(name + ':');
    }
    printRows(bytes);
    return true;
  });
}

}  // namespace

const Command kDumpCommand = {
    .name = "dump",
    .summary = "print the bytes of files in hex, as the log shows them",
    .usage = "[--json] [FILE…]",
    .help =
        "Prints rows of ten bytes, each led by the offset of its first byte in hexadecimal: 0000, 000a, 0014.\n"
        "Without a file, or with -, reads standard input. All of a file is read first; it may have 256 MiB.\n"
        "\n"
        "  marlow dump firmware.bin\n"
        "  printf 'a line' | marlow dump --json\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
