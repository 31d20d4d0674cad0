#include "platform/text.h"
#include "protocols/x10/x10_addresses.h"
#include "tools/marlow/command.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

// What is wrong with `address`; empty when it names a unit or a whole house.
std::string faultOf(std::string_view address, const std::optional<std::string>& normalized) {
  if (!normalized) {
    return "more than three characters or a period; write a house letter and a unit, such as A1";
  }
  if (X10Utilities::houseOfAddress(*normalized) == 0) {
    return "no house letter A to P in front; write a house letter and a unit, such as A1";
  }
  if (normalized->size() > 1 && X10Utilities::unitOfAddress(*normalized) == 0) {
    return "the unit is none of 1 to 16";
  }
  // Normalising drops characters that no address has; a dropped one is a slip of the person who typed it.
  std::size_t typed = 0;
  for (const char32_t c : platform::CodePoints(address)) {
    typed += platform::isBlank(c) ? 0U : 1U;
  }
  return typed == normalized->size() ? "" : "characters that no address has; did you mean " + *normalized + "?";
}

bool describe(std::string_view address, bool asJSON) {
  const std::optional<std::string> normalized = X10Utilities::normalizedX10Address(address);
  const std::string fault = faultOf(address, normalized);
  if (!fault.empty()) {
    if (asJSON) {
      printJSON(Value::Dictionary{{"input", address}, {"error", fault}});
    }
    complain(quoted(address) + ": " + fault);
    return false;
  }
  const char house = X10Utilities::houseOfAddress(*normalized);
  const std::uint8_t unit = X10Utilities::unitOfAddress(*normalized);
  const std::uint8_t houseCode = X10Utilities::houseCodeFromASCII(house);
  const std::uint8_t unitCode = X10Utilities::unitIDToCode(unit);
  if (asJSON) {
    Value::Dictionary fields{
        {"input", address}, {"address", *normalized}, {"house", std::string(1, house)}, {"houseCode", houseCode}};
    if (unit != 0) {
      fields.insert({{"unit", unit}, {"unitCode", unitCode}, {"unitBitMap", 1U << unitCode}});
    }
    printJSON(std::move(fields));
    return true;
  }
  std::string line = *normalized + ": house " + house + " (code byte " + hexText(houseCode) + ")";
  line += unit == 0 ? std::string(", all units")
                    : ", unit " + std::to_string(unit) + " (code " + hexText(unitCode, 1) + ", bit map " +
                          hexText(1U << unitCode, 4) + ")";
  printLine(line);
  return true;
}

ExitCode run(const Arguments& arguments) {
  ExitCode code = ExitCode::AllWell;
  const bool hadInput = forEachInput(arguments, [&](std::string_view address) {
    if (!describe(address, arguments.wantsJSON())) {
      code = ExitCode::BadInput;
    }
  });
  if (!hadInput) {
    complain("x10: no address given; see marlow x10 --help");
    return ExitCode::CannotRun;
  }
  return code;
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
    .run = run,
};

}  // namespace SharedClasses::marlow
