// What the Kelmar page shows beside what it has alike with its sisters.

#include "support/kelmar_fixture.h"

namespace tarvo::test {
namespace {

class KelmarView : public KelmarFixture {};

TEST_F(KelmarView, ShowsInputsThatAreNotSelectedToo) {
  Set(kFlags, 0x0100);
  Set(kValue1 + 3, 4321);
  StartSession();
  RunThroughADecode();
  EXPECT_EQ(Text(Value(3)), "4321");
}

TEST_F(KelmarView, HasNoTimerWithoutATask) {
  EXPECT_EQ(FindControl("TimerControllo"), nullptr);
}

TEST_F(KelmarView, NamesRegisterAndBitInItsToolTips) {
  const std::pair<const char*, const char*> tips[] = {{"CheckKelmar(0)", "40003.2-Speed Up Acquisition"},
                                                      {"CheckKelmar(1)", "40003.8-Channel 1"},
                                                      {"CheckKelmar(2)", "40003.9-Channel #2"},
                                                      {"CheckKelmar(3)", "40003.10-Channel #3"},
                                                      {"CheckKelmar(4)", "40003.11- Channel #4"},
                                                      {"CheckKelmar(5)", "40003.12-Status"},
                                                      {"OptionKelmar2", "40003.13-Real Input"},
                                                      {"OptionKelmar1", "40003.13-Scaled Input"},
                                                      {"CheckKelmarBitOrder", "40003.14-Reversed Bit Order"}};
  for (const auto& [name, tip] : tips) EXPECT_EQ(ToolTip(name), tip) << name;
}

}  // namespace
}  // namespace tarvo::test
