// The flags of the Lumet page, 40020: what a click does in a session and out of one.

#include <array>

#include "support/lumet_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct FlagCase {
  const char* box;
  int setMask;
  int clearMask;
};

constexpr std::array kFlagCases = {FlagCase{"CheckLumet2", 1, 0xFFFE}, FlagCase{"CheckLumet4", 2, 0xFFFD},
                                   FlagCase{"CheckLumet5", 4, 0xFFFB}, FlagCase{"CheckLumet6", 8, 65527}};

/// A check box of 40020, one case each.
class LumetFlag : public LumetFixture, public testing::WithParamInterface<FlagCase> {
 protected:
  const char* Box() const { return GetParam().box; }
  int SetMask() const { return GetParam().setMask; }
  int ClearMask() const { return GetParam().clearMask; }
};

INSTANTIATE_TEST_SUITE_P(Boxes, LumetFlag, testing::ValuesIn(kFlagCases),
                         [](const auto& given) { return given.param.box; });

TEST_P(LumetFlag, SetsItsBitOnTheModuleAndKeepsTheOthers) {
  Set(kFlags, 0xAB60);
  StartSession();
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40020", Writing(kFlags, 0xAB60 | SetMask())));
  EXPECT_TRUE(Checked(Box()));
  EXPECT_TRUE(TimersRun());
}

TEST_P(LumetFlag, ClearsItsBitOnTheModuleAndKeepsTheOthers) {
  Set(kFlags, 0xFFFF);
  StartSession();
  ASSERT_TRUE(Checked(Box()));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40020", Writing(kFlags, ClearMask())));
  EXPECT_FALSE(Checked(Box()));
  EXPECT_TRUE(TimersRun());
}

TEST_P(LumetFlag, ChangesWhatTheModuleHasAtThatMoment) {
  StartSession();
  Set(kFlags, 0x5520);
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40020", Writing(kFlags, 0x5520 | SetMask())));
}

TEST_P(LumetFlag, FollowsTheBoxWhateverTheRegisterHas) {
  StartSession();
  Set(kFlags, SetMask());
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40020", Writing(kFlags, SetMask())));
  EXPECT_TRUE(Checked(Box()));
  Set(kFlags, 0);
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40020", Writing(kFlags, 0)));
  EXPECT_FALSE(Checked(Box()));
}

TEST_P(LumetFlag, IsWrittenFromZeroWhenTheReadIsRefused) {
  Set(kFlags, 0xFF00);
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(2));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40020: exception 2", Writing(kFlags, SetMask())));
}

TEST_P(LumetFlag, HoldsThePollUntilItIsWritten) {
  StartSession();
  RunIntoAPoll();
  module.ForgetLog();
  const auto click = ClickAndGoOn(Box());
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(Checked(Box()));
  ASSERT_TRUE(RunUntil([&] { return click->Done(); }));
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40020", Writing(kFlags, SetMask())));
  EXPECT_TRUE(TimersRun());
}

TEST_P(LumetFlag, StaysAsClickedWhenTheWriteIsLost) {
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Box());
  Run(std::chrono::seconds(1));
  EXPECT_TRUE(Checked(Box())) << "no poll reads the flags";
  EXPECT_EQ(module[kFlags], 0);
  EXPECT_TRUE(NothingInFront());
}

TEST_P(LumetFlag, OfTwoQuickClicksBothReachTheModule) {
  StartSession();
  RunIntoAPoll();
  ClickAndGoOn(Box());
  ClickAndGoOn(Box());
  ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle(); }));
  EXPECT_FALSE(Checked(Box()));
  EXPECT_EQ(module[kFlags], 0);
  EXPECT_TRUE(TimersRun());
}

TEST_P(LumetFlag, WithoutASessionChangesTheBoxAlone) {
  for (std::size_t i = 0; i < 20; ++i) SetPolled(i, 0x4000 + static_cast<int>(i));
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  for (std::size_t i = 0; i < 20; ++i) EXPECT_EQ(Polled(i), 0x4000 + static_cast<int>(i)) << i;
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_TRUE(TimersRest());
}

TEST_P(LumetFlag, WithoutASessionLeavesTheModuleOfTheLastOne) {
  Set(kFlags, 0xFFFF);
  Visit();
  module.ForgetLog();
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module[kFlags], 0xFFFF);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

class LumetFlags : public LumetFixture {};

TEST_F(LumetFlags, OfFourQuickClicksInTheMiddleOfAPollAllReachTheModule) {
  Set(kFlags, 0x0100);
  StartSession();
  RunIntoAPoll();
  for (const FlagCase& flag : kFlagCases) ClickAndGoOn(flag.box);
  ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle(); }));
  EXPECT_EQ(module[kFlags], 0x010F);
  for (const FlagCase& flag : kFlagCases) EXPECT_TRUE(Checked(flag.box)) << flag.box;
  EXPECT_TRUE(TimersRun());
}

TEST_F(LumetFlags, AutoresetBoxNeverTouchesARegister) {
  for (const bool session : {false, true}) {
    if (session) StartSession();
    Click("CheckLumet3");
    EXPECT_TRUE(Checked("CheckLumet3"));
    Run(std::chrono::seconds(1));
    EXPECT_TRUE(Checked("CheckLumet3"));
    Click("CheckLumet3");
    EXPECT_FALSE(Checked("CheckLumet3"));
    EXPECT_THAT(Exchanges(), IsEmpty());
  }
  EXPECT_EQ(module[kFlags], 0);
}

// Parity.

TEST_F(LumetFlags, ParityBoxEnablesTheOptionsWithTheClick) {
  for (const bool session : {false, true}) {
    SCOPED_TRACE(session);
    if (session) StartSession();
    EXPECT_EQ(RefusalOf("OptionLumet1"), "OptionLumet1 is disabled");
    EXPECT_EQ(RefusalOf("OptionLumet2"), "OptionLumet2 is disabled");
    Click("CheckLumet6");
    EXPECT_TRUE(Enabled("OptionLumet1"));
    EXPECT_TRUE(Enabled("OptionLumet2"));
    Click("CheckLumet6");
    EXPECT_FALSE(Enabled("OptionLumet1"));
    EXPECT_FALSE(Enabled("OptionLumet2"));
  }
}

TEST_F(LumetFlags, ParityOffLeavesItsKindInBit4) {
  Set(kFlags, 0x0018);
  StartSession();
  Click("CheckLumet6");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40020", "writes 40020 = 0x0010"));
  EXPECT_TRUE(Checked("OptionLumet2"));
}

TEST_F(LumetFlags, OddSetsBit4) {
  Set(kFlags, 0xAB08);
  StartSession();
  Click("OptionLumet2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40020", "writes 40020 = 0xAB18"));
  EXPECT_TRUE(Checked("OptionLumet2"));
  EXPECT_FALSE(Checked("OptionLumet1"));
  EXPECT_TRUE(TimersRun());
}

TEST_F(LumetFlags, EvenClearsBit4) {
  Set(kFlags, 0xFFFF);
  StartSession();
  Click("OptionLumet1");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40020", "writes 40020 = 0xFFEF"));
  EXPECT_TRUE(Checked("OptionLumet1"));
  EXPECT_FALSE(Checked("OptionLumet2"));
}

TEST_F(LumetFlags, AnOptionThatIsSelectedAlreadyIsWrittenAgain) {
  Set(kFlags, 0x0018);
  StartSession();
  Click("OptionLumet2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40020", "writes 40020 = 0x0018"));
}

TEST_F(LumetFlags, AnOptionIsWrittenFromZeroWhenTheReadIsRefused) {
  Set(kFlags, 0xFF18);
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(2));
  Click("OptionLumet1");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40020: exception 2", "writes 40020 = 0x0000"));
}

TEST_F(LumetFlags, OptionsWithoutASessionChangeTheViewAlone) {
  Click("CheckLumet6");
  Click("OptionLumet2");
  EXPECT_TRUE(Checked("OptionLumet2"));
  Click("OptionLumet1");
  EXPECT_TRUE(Checked("OptionLumet1"));
  EXPECT_FALSE(Checked("OptionLumet2"));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(LumetFlags, ClicksAtTheEndOfASessionLeaveItEnded) {
  StartSession();
  RunIntoAPoll();
  ClickAndGoOn("CheckLumet2");
  Click("StopLumet");
  ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle(); }));
  ExpectOffline();
}

}  // namespace
}  // namespace tarvo::test
