#include <array>

#include "platform/text.h"
#include "protocols/onewire/addresses.h"
#include "protocols/onewire/crc.h"
#include "protocols/onewire/families.h"
#include "tools/marlow/command.h"
#include "tools/marlow/device_addresses.h"
#include "tools/marlow/input_lines.h"
#include "tools/marlow/output.h"

namespace SharedClasses::marlow {

namespace {

using platform::Value;

// What is wrong with an address; empty where nothing is. `normalized` is its normal form, `crc` what its CRC should be.
std::string faultOf(std::string_view address, const std::optional<std::string>& normalized,
                    std::optional<std::uint8_t> crc) {
  if (!crc) {
    return "not sixteen hex digits, such as e9:00:00:05:e2:fd:c3:28";
  }
  if (OneWireUtilities::validAddress(address)) {
    return {};
  }
  const std::optional<std::string> turned = oneWireAddress(address);
  return "the CRC is " + normalized->substr(0, 2) + " but should be " + platform::hexDigits(*crc, 2) +
         (turned ? "; family first? That would be " + *turned : "");
}

bool describe(std::string_view address, bool asJSON) {
  const std::optional<std::string> normalized = OneWireUtilities::normalizedOneWireAddress(address);
  std::array<std::uint8_t, OneWireUtilities::kAddressSize> bytes{};
  std::optional<std::uint8_t> crc;
  if (OneWireUtilities::bytesWithAddress(bytes.data(), normalized) == OneWireUtilities::kAddressRead) {
    crc = OneWireUtilities::calc1WireCRC(std::span(bytes).first<OneWireUtilities::kAddressSize - 1>());
  }
  const std::string fault = faultOf(address, normalized, crc);
  if (!fault.empty()) {
    complain(quoted(address) + ": " + fault);
  }
  const std::string name = OneWireUtilities::familyName(bytes.front());
  if (asJSON) {
    Value::Dictionary fields{{"input", address}};
    if (crc) {
      fields.insert({{"address", *normalized},
                     {"compact", *OneWireUtilities::compactOneWireAddress(address)},
                     {"family", bytes.front()},
                     {"familyName", name},
                     {"crc", bytes.back()},
                     {"rightCRC", *crc}});
    }
    if (!fault.empty()) {
      fields.insert_or_assign("error", Value(fault));
    }
    printJSON(std::move(fields));
  } else if (crc) {
    printLine(*normalized + ": compact " + *OneWireUtilities::compactOneWireAddress(address) + ", family " +
              hexText(bytes.front()) + " " + (name.empty() ? "(unknown)" : name) + ", CRC " +
              (fault.empty() ? "right" : "wrong"));
  }
  return fault.empty();
}

ExitCode run(const Arguments& arguments) {
  return forEachInput("onewire", arguments,
                      [&](std::string_view address) { return describe(address, arguments.wantsJSON()); });
}

}  // namespace

const Command kOneWireCommand = {
    .name = "onewire",
    .summary = "take 1-Wire addresses apart",
    .usage = "[--json] [ADDRESS…]",
    .help =
        "Prints the normal and the compact form of each 1-Wire address, its family, and whether its CRC is right.\n"
        "An address is sixteen hex digits with or without colons, the CRC first and the family last.\n"
        "Without addresses, or with -, reads one a line from standard input.\n"
        "\n"
        "  marlow onewire e9000005e2fdc328\n",
    .options = {},
    .wordsThings = false,
    .run = run,
};

}  // namespace SharedClasses::marlow
