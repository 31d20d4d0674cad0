#include "shared/constants.h"

#include <gtest/gtest.h>

namespace SharedClasses {

// Taken before any test can have made the colours.
static const bool sNoColorsAtStart = kBlueColor == nullptr && kMagentaColor == nullptr && kDefaultColors == nullptr;

TEST(InitConstants, ListsThePublishedPaletteAndKeepsEarlierColorsValid) {
  EXPECT_TRUE(sNoColorsAtStart);
  const ColorList* const earlier = initConstants();
  const ColorList* const later = initConstants();
  ASSERT_EQ(later, kDefaultColors);
  EXPECT_EQ(*later, (ColorList{kBlueColor, kGreenColor, kPurpleColor, kMarlowPurpleColor, kRedColor, kMagentaColor}));
  // In 255ths.
  constexpr double kPalette[][3] = {{2, 82, 212}, {44, 161, 11}, {73, 43, 161},
                                    {102, 0, 51}, {196, 30, 58}, {176, 39, 174}};
  for (std::size_t i = 0; i < std::size(kPalette); ++i) {
    const auto& [red, green, blue] = kPalette[i];
    EXPECT_EQ(*(*later)[i], (platform::Color{red / 255, green / 255, blue / 255, 1.0})) << i;
    EXPECT_EQ(*(*earlier)[i], *(*later)[i]);
    EXPECT_NE((*earlier)[i], (*later)[i]);
  }
}

// What a tidy reader would mend, and both programs match on.
TEST(Constants, OdditiesStand) {
  EXPECT_EQ(kNBSPChar, 0x2002) << "the en space, not the no-break space";
  EXPECT_EQ(kAppleScriptSuiteCode, kGUIAppSignature);
  EXPECT_EQ(kPortClassCode, kPortPropertyCode);
  EXPECT_EQ(kSchedSetReqEventCode, kScheduleSetClassCode);
  EXPECT_EQ(kHailAckNotification, "HailAcknowledgement");
  EXPECT_EQ(kRequestCompleteLinkNotification, "RequestAcceptPendingLink");
  EXPECT_EQ(kLinkCompletedNotification, "AcceptedPendingLink");
}

}  // namespace SharedClasses
