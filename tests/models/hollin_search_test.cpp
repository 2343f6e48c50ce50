// What the search makes the Hollin page read.

#include "support/hollin_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAreArray;

/// What the page reads of its module when no session runs, in this order.
const std::vector<std::string>& SingleReads() {
  static const std::vector<std::string> reads = {
      "reads 40001", "reads 40004", "reads 40005", "reads 40006", "reads 40007", "reads 40008", "reads 40009",
      "reads 40010", "reads 40011", "reads 40012", "reads 40013", "reads 40014", "reads 40015", "reads 40003"};
  return reads;
}

class HollinReadEEPromFlags : public HollinFixture {};

TEST_F(HollinReadEEPromFlags, ReadsOneRegisterAtATimeAndNoStoredAddress) {
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SingleReads()));
}

TEST_F(HollinReadEEPromFlags, ShowsTheFlags) {
  Set(kFlags, 0x7A02);
  ReadEEPromFlags();
  const std::array boxes = {true, false, true, false, true, true};
  for (int i = 0; i < kBoxes; ++i) EXPECT_EQ(Checked(Box(i)), boxes.at(static_cast<std::size_t>(i))) << i;
  EXPECT_TRUE(Checked("OptionHollin2"));
  EXPECT_FALSE(Checked("OptionHollin1"));
  EXPECT_TRUE(Checked("CheckHollinBitOrder"));
}

TEST_F(HollinReadEEPromFlags, KeepsTheFlagsThatAreNotRead) {
  Set(kFlags, 0x3102);
  ReadEEPromFlags();
  module.Next(ModuleFault::None());
  for (std::size_t i = 1; i < SingleReads().size(); ++i) module.Next(ModuleFault::Exception(2));
  ReadEEPromFlags();
  for (const char* on : {"CheckHollin(0)", "CheckHollin(1)", "CheckHollin(5)", "OptionHollin2"}) {
    EXPECT_TRUE(Checked(on)) << on;
  }
}

class HollinSearch : public HollinFixture {
 protected:
  /// From another page, as after the program's start.
  void Search() {
    Click("LabHome");
    module.ForgetLog();
    ClickAndGoOn("buttCheckDevice");
    ASSERT_TRUE(RunUntil([this] { return State().SearchRunning == state::kFalse; }));
    RunUntilIdle();
  }
};

TEST_F(HollinSearch, OpensThePageOfTheModuleThatItFinds) {
  Search();
  EXPECT_EQ(Page().Name(), "Hollin");
  EXPECT_EQ(State().NrFinestra, 8);
  EXPECT_EQ(State().FamilyShown, state::kFalse);
  EXPECT_EQ(Panel(2), "Connected to Hollin, COM1,9600,n,8,1  Module Address:1");
  ExpectOffline();
}

TEST_F(HollinSearch, TellsTheLineThatItHasFound) {
  module.Line.baud = 38400;
  Search();
  EXPECT_EQ(Panel(1), "com port fixed, baud rate fixed : 38400,n,8,1");
}

TEST_F(HollinSearch, LetsThePageReadItsModule) {
  Set(kFilter1 + 2, 3);
  Set(kFullScale1, -42);
  Search();
  const std::vector<std::string> log = module.TakeLog();
  ASSERT_GT(log.size(), SingleReads().size());
  EXPECT_THAT(std::vector(log.end() - static_cast<std::ptrdiff_t>(SingleReads().size()), log.end()),
              ElementsAreArray(SingleReads()));
  EXPECT_EQ(ListIndex(Filter(2)), 3);
  EXPECT_EQ(Text(Value(1)), "-42");
}

}  // namespace
}  // namespace tarvo::test
