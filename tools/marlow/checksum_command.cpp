#include <new>
#include <string>

#include "core/buffer.h"
#include "system/miscellany/bytes.h"
#include "tools/marlow/command.h"
#include "tools/marlow/output.h"
#include "tools/marlow/whole_input.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

void describe(const std::string& name, std::span<const std::uint8_t> bytes, bool asJSON) {
  const Buffer buffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
  if (static_cast<std::size_t>(buffer.length()) != bytes.size()) {
    throw std::bad_alloc();
  }
  const std::uint8_t sum = Utilities::checkSum(&buffer);
  const std::uint16_t sum16 = Utilities::checkSum16Bit(&buffer);
  if (asJSON) {
    printJSON(Value::Dictionary{{"file", name}, {"bytes", bytes.size()}, {"checkSum", sum}, {"checkSum16Bit", sum16}});
  } else {
    printLine(hexText(sum, 2) + ' ' + hexText(sum16, 4) + "  " + name);
  }
}

ExitCode run(const Arguments& arguments) {
  return forEachFile("checksum", arguments, [&](const std::string& name, std::span<const std::uint8_t> bytes) {
    describe(name, bytes, arguments.wantsJSON());
    return true;
  });
}

}  // namespace

const Command kChecksumCommand = {
    .name = "checksum",
    .summary = "sum the bytes of files as controllers do",
    .usage = "[--json] [FILE…]",
    .help =
        "Prints for each file the sum of its bytes modulo 256, the two's complement of their sum modulo 65536, and "
        "its\n"
        "name. The second one added to the sum of the bytes gives 0.\n"
        "Without a file, or with -, reads standard input. All of a file is read first; it may have 256 MiB.\n"
        "\n"
        "  marlow checksum firmware.bin\n"
        "  printf '\\377\\002' | marlow checksum\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
