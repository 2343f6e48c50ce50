// What the Hollin page shows beside what it has alike with its sisters.

#include "support/hollin_fixture.h"

namespace tarvo::test {
namespace {

class HollinView : public HollinFixture {};

TEST_F(HollinView, ShowsAtStartInputsThatAreNotSelectedToo) {
  Set(kFlags, 0x0100);
  Set(kRaw1 + 3, 1234);
  StartSession();
  EXPECT_EQ(Text(Value(12)), "1234");
}

TEST_F(HollinView, GoesOnShowingInputsThatAreNotSelected) {
  Set(kFlags, 0x0100);
  StartSession();
  Set(kRaw1 + 3, 1234);
  RunThroughADecode();
  EXPECT_EQ(Text(Value(12)), "1234");
}

TEST_F(HollinView, HasEachElementInOneArrayOnly) {
  for (int i = 0; i < kElements; ++i) {
    EXPECT_EQ(FindControl(Member("ValueGaven", i)) != nullptr, IsScaled(i)) << i;
    EXPECT_EQ(FindControl(Member("ValueHollin", i)) != nullptr, !IsScaled(i)) << i;
  }
}

TEST_F(HollinView, HasItsTimerWithoutATask) {
  EXPECT_EQ(Interval("TimerControllo"), 250);
  EXPECT_FALSE(Enabled("TimerControllo"));
  StartSession();
  EXPECT_FALSE(Enabled("TimerControllo"));
}

TEST_F(HollinView, NamesItsToolTips) {
  EXPECT_EQ(ToolTip("CheckHollin(0)"), "40003.1 - Speed Up Acquisition");
  EXPECT_EQ(ToolTip("OptionHollin1"), "Scaled Input");
  EXPECT_EQ(ToolTip("OptionHollin2"), "Real Input");
  EXPECT_EQ(ToolTip("CheckHollinBitOrder"), "Reversed Bit Order");
}

}  // namespace
}  // namespace tarvo::test
