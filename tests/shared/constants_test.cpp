#include "shared/constants.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace SharedClasses {
namespace {

// Taken before any test can have made the colours.
const bool sNoColorsAtStart = kBlueColor == nullptr && kMagentaColor == nullptr && kDefaultColors == nullptr;

TEST(InitConstants, NamesEachColorAndListsThemInOrder) {
  EXPECT_TRUE(sNoColorsAtStart);
  const ColorList* const list = initConstants();
  ASSERT_EQ(list, kDefaultColors);
  EXPECT_EQ(*list, (ColorList{kBlueColor, kGreenColor, kPurpleColor, kMarlowPurpleColor, kRedColor, kMagentaColor}));
  // The published palette in 255ths.
  constexpr double kPalette[][3] = {{2, 82, 212}, {44, 161, 11}, {73, 43, 161},
                                    {102, 0, 51}, {196, 30, 58}, {176, 39, 174}};
  for (std::size_t i = 0; i < list->size(); ++i) {
    SCOPED_TRACE(i);
    const auto& [red, green, blue, alpha] = *(*list)[i];
    EXPECT_DOUBLE_EQ(red * 255, kPalette[i][0]);
    EXPECT_DOUBLE_EQ(green * 255, kPalette[i][1]);
    EXPECT_DOUBLE_EQ(blue * 255, kPalette[i][2]);
    EXPECT_EQ(alpha, 1.0);
  }
}

TEST(InitConstants, KeepsEarlierColorsValidAfterASecondCall) {
  const ColorList* const earlier = initConstants();
  const ColorList* const later = initConstants();
  EXPECT_NE(later, earlier);
  EXPECT_EQ(kRedColor, (*later)[4]);
  const auto areTwins = [](const platform::Color* a, const platform::Color* b) { return a != b && *a == *b; };
  EXPECT_TRUE(std::ranges::equal(*earlier, *later, areTwins));
}

TEST(Constants, CodesArePackedFromTheMostSignificantByteDown) {
  EXPECT_EQ(kLogTextEventCode, 0x4C6F6720U);
  EXPECT_EQ(kIndexOfIDPropertyCode, 0x49442020U);
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

}  // namespace
}  // namespace SharedClasses
