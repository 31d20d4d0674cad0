#include <cstdint>
#include <span>
#include <string>

#include "platform/descriptor.h"
#include "platform/value.h"
#include "scripting/descriptors.h"
#include "tools/marlow/command.h"
#include "tools/marlow/output.h"
#include "tools/marlow/whole_input.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

bool describe(const std::string& name, std::span<const std::uint8_t> bytes, bool asJSON) {
  platform::DescriptorError error;
  const platform::DescriptorPointer descriptor = platform::Descriptor::fromBytes(bytes, &error);
  if (descriptor == nullptr) {
    if (asJSON) {
      printJSON(Value::Dictionary{{"file", name}, {"error", error.message}, {"offset", error.offset}});
    }
    complain(name + ": byte " + std::to_string(error.offset) + ": " + error.message);
    return false;
  }
  const Value value = Utilities::NSObjectWithAEDescObj(descriptor);
  if (asJSON) {
    printJSON(Value::Dictionary{{"file", name}, {"descriptor", descriptor->description()}, {"value", value}});
  } else {
    printLine("descriptor: " + descriptor->description());
    printLine("value:      " + value.description());
  }
  return true;
}

ExitCode run(const Arguments& arguments) {
  return forEachFile("descriptor", arguments, [&](const std::string& name, std::span<const std::uint8_t> bytes) {
    return describe(name, bytes, arguments.wantsJSON());
  });
}

}  // namespace

const Command kDescriptorCommand = {
    .name = "descriptor",
    .summary = "read scripting descriptors",
    .usage = "[--json] [FILE…]",
    .help =
        "Prints the descriptor that each file holds in its byte form (platform/descriptor.h), and the plain value\n"
        "that the programs make of it. Types that have no plain value at all are named on standard error, 100 at\n"
        "most; other parts without one are left out.\n"
        "In JSON, null stands for no value and for a number that is none, and colours are texts: \"rgba(1, 0, 0, "
        "1)\".\n"
        "Without a file, or with -, reads standard input. All of a file is read first; it may have 256 MiB, the\n"
        "descriptor in it 16.\n"
        "\n"
        "  marlow descriptor request.mdsc\n"
        "  printf 'mdscutxt\\0\\0\\0\\4Lamp' | marlow descriptor\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
