#include "platform/text.h"
#include "protocols/insteon/insteon_addresses.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

constexpr std::size_t kCanonicalLength = 8;  // "1A.2B.3C"

std::string faultOf(std::string_view address, const std::optional<std::string>& normalized) {
  if (normalized) {
    return normalized->size() == kCanonicalLength
               ? ""
               : "reads as " + *normalized +
                     ", which is not three whole groups; write two digits in the last, nothing after it";
  }
  for (const char32_t c : platform::CodePoints(address)) {
    if (!platform::hexDigitValue(c) && std::u32string_view(U".:-\t").find(c) == std::u32string_view::npos) {
      return "only hex digits and the separators . : - make an address, such as 1A.2B.3C";
    }
  }
  return "not three groups of hex digits, such as 1A.2B.3C";
}

bool describe(std::string_view address, bool asJSON) {
  const std::optional<std::string> normalized = Utilities::normalizedINSTEONAddress(address);
  const std::string fault = faultOf(address, normalized);
  if (!fault.empty()) {
    if (asJSON) {
      printJSON(Value::Dictionary{{"input", address}, {"error", fault}});
    }
    complain(quoted(address) + ": " + fault);
    return false;
  }
  const std::uint32_t value = Utilities::intWithINSTEONAddress(address);
  if (asJSON) {
    printJSON(Value::Dictionary{{"input", address},
                                {"address", *normalized},
                                {"groups", Value::List{value >> 16, value >> 8 & 0xFF, value & 0xFF}},
                                {"value", value}});
  } else {
    printLine(*normalized + ": groups " + std::to_string(value >> 16) + ", " + std::to_string(value >> 8 & 0xFF) +
              ", " + std::to_string(value & 0xFF) + ", value " + std::to_string(value) + " (" + hexText(value, 6) +
              ")");
  }
  return true;
}

ExitCode run(const Arguments& arguments) {
  return forEachInput("insteon", arguments,
                      [&](std::string_view address) { return describe(address, arguments.wantsJSON()); });
}

}  // namespace

const Command kInsteonCommand = {
    .name = "insteon",
    .summary = "take INSTEON addresses apart",
    .usage = "[--json] [ADDRESS…]",
    .help =
        "Prints the canonical form and the value of each INSTEON address, or what is wrong with it.\n"
        "An address is three groups of two hex digits, parted by . : - or nothing.\n"
        "Without addresses, or with -, reads one a line from standard input.\n"
        "\n"
        "  marlow insteon 1a:2b:3c 0A0B0C\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
