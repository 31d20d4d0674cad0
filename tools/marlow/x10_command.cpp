#include "protocols/x10/x10_addresses.h"
#include "tools/marlow/command.h"
#include "tools/marlow/device_addresses.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

bool describe(std::string_view input, bool asJSON) {
  std::string fault;
  const std::optional<std::string> address = x10Address(input, &fault);
  if (!address) {
    if (asJSON) {
      printJSON(Value::Dictionary{{"input", input}, {"error", fault}});
    }
    complain(quoted(input) + ": " + fault);
    return false;
  }
  const char house = X10Utilities::houseOfAddress(*address);
  const std::uint8_t unit = X10Utilities::unitOfAddress(*address);
  const std::uint8_t houseCode = X10Utilities::houseCodeFromASCII(house);
  const std::uint8_t unitCode = X10Utilities::unitIDToCode(unit);
  if (asJSON) {
    Value::Dictionary fields{
        {"input", input}, {"address", *address}, {"house", std::string(1, house)}, {"houseCode", houseCode}};
    if (unit != 0) {
      fields.insert({{"unit", unit}, {"unitCode", unitCode}, {"unitBitMap", 1U << unitCode}});
    }
    printJSON(std::move(fields));
    return true;
  }
  std::string line = *address + ": house " + house + " (code byte " + hexText(houseCode) + ")";
  line += unit == 0 ? std::string(", all units")
                    : ", unit " + std::to_string(unit) + " (code " + hexText(unitCode, 1) + ", bit map " +
                          hexText(1U << unitCode, 4) + ")";
  printLine(line);
  return true;
}

ExitCode run(const Arguments& arguments) {
  return forEachInput("x10", arguments, [&](std::string_view input) { return describe(input, arguments.wantsJSON()); });
}

}  // namespace

const Command kX10Command = {
    .name = "x10",
    .summary = "take X10 addresses apart",
    .usage = "[--json] [ADDRESS…]",
    .help =
        "Prints the normal form, house, unit and wire codes of each X10 address, or what is wrong with it.\n"
        "An address is a house letter A to P and a unit 1 to 16; a letter alone is a whole house.\n"
        "Without addresses, or with -, reads one a line from standard input.\n"
        "\n"
        "  marlow x10 A1 \" p 16\" C\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
