#include <algorithm>

#include "support/gaven_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct FlagCase {
  const char* name;
  const char* box;
  int setMask;
  int clearMask;
};

constexpr FlagCase kFlagCases[] = {{"SpeedUp", "CheckGaven(0)", 2, 0xFFFD},
                                   {"Delay", "CheckGaven(1)", 4, 0xFFFB},
                                   {"Parity", "CheckGaven(2)", 8, 0xFFF7}};

/// A check box of 40003, one case each.
class GavenFlag : public GavenFixture, public testing::WithParamInterface<FlagCase> {
 protected:
  const char* Box() const { return GetParam().box; }
};

INSTANTIATE_TEST_SUITE_P(Boxes, GavenFlag, testing::ValuesIn(kFlagCases),
                         [](const auto& given) { return given.param.name; });

TEST_P(GavenFlag, SetsItsBitOnTheModuleAndKeepsTheOthers) {
  Set(kFlags, 0xABE1);
  StartSession();
  ASSERT_FALSE(Checked(Box()));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", Writing(kFlags, 0xABE1 | GetParam().setMask)));
  EXPECT_TRUE(Checked(Box()));
}

TEST_P(GavenFlag, ClearsItsBitOnTheModuleAndKeepsTheOthers) {
  Set(kFlags, 0xFFFF);
  StartSession();
  ASSERT_TRUE(Checked(Box()));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", Writing(kFlags, GetParam().clearMask)));
  EXPECT_FALSE(Checked(Box()));
}

TEST_P(GavenFlag, FollowsTheBoxThatIsShownWhateverTheRegisterHas) {
  StartSession();
  Set(kFlags, 0xFFFF);
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0xFFFF"));
  EXPECT_TRUE(Checked(Box()));
}

TEST_P(GavenFlag, IsWrittenFromZeroWhenTheReadIsRefused) {
  Set(kFlags, 0xFF01);
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module.Next(ModuleFault::Exception(2));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003: exception 2", Writing(kFlags, GetParam().setMask)));
}

TEST_P(GavenFlag, HoldsTheTimersForItsExchanges) {
  StartSession();
  RunIntoAPoll();
  module.ForgetLog();
  const auto run = ClickAndGoOn(Box());
  EXPECT_TRUE(Checked(Box()));
  while (!run->Done()) {
    ASSERT_TRUE(TimersRest());
    Run(core::milliseconds(1));
  }
  EXPECT_TRUE(TimersRun());
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40003", Writing(kFlags, GetParam().setMask)));
}

TEST_P(GavenFlag, StaysAsClickedThoughTheWriteIsLost) {
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Box());
  Run(std::chrono::seconds(1));
  EXPECT_TRUE(Checked(Box())) << "no repeating paint shows the flags";
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text("MessageGaven"), "OK");
}

TEST_P(GavenFlag, LeavesThePolledBlockAlone) {
  for (int i = 0; i < 12; ++i) Set(40013 + i, 0x1000 + i);
  StartSession();
  RunThroughADecode();
  Click(Box());
  for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(Polled(i), 0x1000 + static_cast<int>(i));
}

TEST_P(GavenFlag, TogglesOnThePageOnlyWithoutASession) {
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(std::ranges::all_of(State().PollBuffer, [](state::Word word) { return word == state::Word(0); }));
}

class GavenFlags : public GavenFixture {};

TEST_F(GavenFlags, OfThreeQuickClicksAllReachTheModule) {
  Set(kFlags, 0x0001);
  StartSession();
  RunIntoAPoll();
  for (const FlagCase& flag : kFlagCases) ClickAndGoOn(flag.box);
  RunUntilIdle();
  EXPECT_EQ(module[kFlags], 0x000F);
  EXPECT_TRUE(TimersRun());
}

TEST_F(GavenFlags, ParityBoxEnablesTheOptionsWithTheClick) {
  for (const bool session : {false, true}) {
    SCOPED_TRACE(session);
    if (session) StartSession();
    EXPECT_EQ(RefusalOf("OptionGaven1"), "OptionGaven1 is disabled");
    EXPECT_EQ(RefusalOf("OptionGaven2"), "OptionGaven2 is disabled");
    Click("CheckGaven(2)");
    EXPECT_TRUE(Enabled("OptionGaven1"));
    EXPECT_TRUE(Enabled("OptionGaven2"));
    Click("CheckGaven(2)");
    EXPECT_FALSE(Enabled("OptionGaven1"));
    EXPECT_FALSE(Enabled("OptionGaven2"));
  }
}

TEST_F(GavenFlags, OtherBoxesLeaveTheOptionsAlone) {
  Click("CheckGaven(0)");
  Click("CheckGaven(1)");
  EXPECT_FALSE(Enabled("OptionGaven1"));
  EXPECT_FALSE(Enabled("OptionGaven2"));
}

TEST_F(GavenFlags, ParityOffLeavesItsKind) {
  Set(kFlags, 0x0018);
  StartSession();
  Click("CheckGaven(2)");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0x0010"));
  EXPECT_TRUE(Checked("OptionGaven2"));
}

TEST_F(GavenFlags, OddSetsBit4) {
  Set(kFlags, 0xAB09);
  StartSession();
  Click("OptionGaven2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0xAB19"));
  EXPECT_TRUE(Checked("OptionGaven2"));
  EXPECT_FALSE(Checked("OptionGaven1"));
}

TEST_F(GavenFlags, EvenClearsBit4) {
  Set(kFlags, 0xFFFF);
  StartSession();
  Click("OptionGaven1");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0xFFEF"));
  EXPECT_TRUE(Checked("OptionGaven1"));
  EXPECT_FALSE(Checked("OptionGaven2"));
}

TEST_F(GavenFlags, AnOptionClickedAgainWritesAgain) {
  Set(kFlags, 0x0008);
  StartSession();
  Click("OptionGaven1");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0x0008"));
}

TEST_F(GavenFlags, OptionsAreWrittenFromZeroWhenTheReadIsRefused) {
  Set(kFlags, 0x0008);
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module.Next(ModuleFault::Exception(1));
  Click("OptionGaven2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003: exception 1", "writes 40003 = 0x0010"));
}

TEST_F(GavenFlags, OptionsChangeThePageOnlyWithoutASession) {
  Click("CheckGaven(2)");
  Click("OptionGaven2");
  EXPECT_TRUE(Checked("OptionGaven2"));
  Click("OptionGaven1");
  EXPECT_TRUE(Checked("OptionGaven1"));
  EXPECT_FALSE(Checked("OptionGaven2"));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

}  // namespace
}  // namespace tarvo::test
