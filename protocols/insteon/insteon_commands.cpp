#include "protocols/insteon/insteon_commands.h"

#include <array>

#include "platform/log.h"
#include "platform/text_format.h"

namespace SharedClasses::Utilities {

namespace {

std::array<ActionCode, 256> codesByHeardCommand() {
  std::array<ActionCode, 256> codes{};
  for (const ActionCodeRow& row : actionCodeTable()) {
    for (const std::uint8_t heard : {row.insteonHeard, row.insteonHeardFast}) {
      if (heard != kNotInColumn) {
        codes[heard] = row.code;
      }
    }
  }
  return codes;
}

}  // namespace

std::uint8_t insteonCommandWithActionCode(ActionCode code) {
  const ActionCodeRow* row = actionCodeRow(code);
  if (row == nullptr || row->insteonCommand == kNotInColumn) {
    platform::log(
        platform::filledFormat("[ Utilities insteonCommandWithActionCode: given an unsupported actionCode: %d",
                               {static_cast<std::int32_t>(code)}));
    return 0;
  }
  return row->insteonCommand;
}

ActionCode actionCodeWithInsteonCommand(std::uint32_t command) {
  static const auto sCodes = codesByHeardCommand();
  return sCodes[command & 0xFFU];
}

}  // namespace SharedClasses::Utilities
