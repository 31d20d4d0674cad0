#include "protocols/insteon/insteon_commands.h"

#include <gtest/gtest.h>

#include "tests/support/captured_log.h"

namespace SharedClasses::Utilities {

TEST(InsteonCommands, AnUnsupportedCodeIsLoggedOnceAsASignedNumberAndAnUnknownByteIsNot) {
  const std::string words = "[ Utilities insteonCommandWithActionCode: given an unsupported actionCode: ";
  for (const ActionCode code : {0x00000000U, 0x414F6666U /* AOff */, 0x80000000U, 0xFFFFFFFFU}) {
    const tests::CapturedLog log;
    EXPECT_EQ(insteonCommandWithActionCode(code), 0);
    EXPECT_EQ(actionCodeWithInsteonCommand(0x02), 0U);
    EXPECT_EQ(log.messages(), std::vector{words + std::to_string(static_cast<std::int32_t>(code))});
  }
}

}  // namespace SharedClasses::Utilities
