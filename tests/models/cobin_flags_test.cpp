#include <array>

#include "support/cobin_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct FlagCase {
  const char* box;
  int setMask;
  int clearMask;
};

constexpr std::array kFlagCases = {FlagCase{"CheckCobin1", 128, 65407}, FlagCase{"CheckCobin2", 1, 65534},
                                   FlagCase{"CheckCobin3", 64, 65471}, FlagCase{"CheckCobin4", 4, 0xFFFB},
                                   FlagCase{"CheckCobin5", 8, 65527}};

/// A check box of 40005, one case each.
class CobinFlag : public CobinFixture, public testing::WithParamInterface<FlagCase> {
 protected:
  const char* Box() const { return GetParam().box; }
  int SetMask() const { return GetParam().setMask; }
  int ClearMask() const { return GetParam().clearMask; }
};

INSTANTIATE_TEST_SUITE_P(Boxes, CobinFlag, testing::ValuesIn(kFlagCases),
                         [](const auto& given) { return given.param.box; });

TEST_P(CobinFlag, SetsItsBitOnTheModuleAndKeepsTheOthers) {
  Set(kFlags, 0xAB22);
  StartSession();
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40005", Writing(kFlags, 0xAB22 | SetMask())));
  EXPECT_TRUE(Checked(Box()));
  EXPECT_TRUE(TimersRun());
}

TEST_P(CobinFlag, ClearsItsBitOnTheModuleAndKeepsTheOthers) {
  Set(kFlags, 0xFFFF);
  StartSession();
  ASSERT_TRUE(Checked(Box()));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40005", Writing(kFlags, ClearMask())));
  EXPECT_FALSE(Checked(Box()));
}

TEST_P(CobinFlag, ChangesWhatTheModuleHasAtThatMoment) {
  StartSession();
  RunUntilTheBusIsFree();
  Set(kFlags, 0x5520);  // not polled yet
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40005", Writing(kFlags, 0x5520 | SetMask())));
}

TEST_P(CobinFlag, FollowsTheBoxThatIsShownWhateverTheRegisterHas) {
  StartSession();
  RunUntilTheBusIsFree();
  Set(kFlags, SetMask());  // set from elsewhere after the last decode
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40005", Writing(kFlags, SetMask())));
  EXPECT_TRUE(Checked(Box()));
}

TEST_P(CobinFlag, IsWrittenFromZeroWhenTheReadIsRefused) {
  Set(kFlags, 0xFF00);
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(2));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40005: exception 2", Writing(kFlags, SetMask())));
}

TEST_P(CobinFlag, UpdatesThePolledFlagsWithAGoodWrite) {
  Set(kFlags, 0xAB00);
  StartSession();
  Click(Box());
  EXPECT_EQ(Polled(kPolledFlags), 0xAB00 | SetMask());
  Click(Box());
  EXPECT_EQ(Polled(kPolledFlags), 0xAB00);
}

TEST_P(CobinFlag, SpringsBackWhenTheWriteIsLost) {
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  EXPECT_EQ(Polled(kPolledFlags), 0);
  RunThroughADecode();
  EXPECT_FALSE(Checked(Box()));
}

TEST_P(CobinFlag, LeavesSafeStatesAndOutputsAlone) {
  Set(kOutputs, 0x0A);
  Set(kSafeStates, 0x15);
  StartSession();
  Click(Box());
  Click(Box());
  EXPECT_EQ(module[kOutputs], 0x0A);
  EXPECT_EQ(module[kSafeStates], 0x15);
}

TEST_P(CobinFlag, WithoutASessionChangesTheWorkingCopyAlone) {
  for (std::size_t i = 0; i < 20; ++i) SetPolled(i, 0x4000 + static_cast<int>(i));
  SetPolled(kPolledFlags, 0xAB22);
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  EXPECT_EQ(Polled(kPolledFlags), 0xAB22 | SetMask());
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  EXPECT_EQ(Polled(kPolledFlags), 0xAB22);
  for (std::size_t i = 0; i < 20; ++i) {
    if (i == kPolledFlags) continue;
    EXPECT_EQ(Polled(i), 0x4000 + static_cast<int>(i));
  }
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_TRUE(TimersRest());
}

TEST_P(CobinFlag, WithoutASessionClearsItsBitInTheFlagsOfTheLastSession) {
  Set(kFlags, 0xFFFF);
  StartSession();
  Click("StopCobin");
  module.ForgetLog();
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  EXPECT_EQ(Polled(kPolledFlags), ClearMask());
  EXPECT_EQ(module[kFlags], 0xFFFF);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

class CobinFlags : public CobinFixture {};

TEST_F(CobinFlags, OfFiveQuickClicksInTheMiddleOfAPollAllReachTheModule) {
  Set(kFlags, 0x0100);
  StartSession();
  RunIntoAPoll();
  for (const FlagCase& flag : kFlagCases) ClickAndGoOn(flag.box);
  ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle(); }));
  EXPECT_EQ(module[kFlags], 0x01CD);
  Run(std::chrono::seconds(1));
  for (const FlagCase& flag : kFlagCases) EXPECT_TRUE(Checked(flag.box)) << flag.box;
}

TEST_F(CobinFlags, SafeStateBoxClearsNeitherThePatternNorTheHighByte) {
  Set(kSafeStates, 0x15);
  Set(kFlags, 0xAB80);
  StartSession();
  Click("CheckCobin1");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40005", "writes 40005 = 0xAB00"));
  EXPECT_EQ(module[kSafeStates], 0x15);
}

// Parity.

TEST_F(CobinFlags, ParityBoxEnablesTheOptionsWithTheClick) {
  for (const bool session : {false, true}) {
    SCOPED_TRACE(session);
    if (session) StartSession();
    EXPECT_EQ(RefusalOf("OptionCobin2"), "OptionCobin2 is disabled");
    Click("CheckCobin5");
    EXPECT_TRUE(Enabled("OptionCobin1"));
    EXPECT_TRUE(Enabled("OptionCobin2"));
    Click("CheckCobin5");
    EXPECT_FALSE(Enabled("OptionCobin1"));
    EXPECT_FALSE(Enabled("OptionCobin2"));
  }
}

TEST_F(CobinFlags, ParityOffLeavesItsKindInBit4) {
  Set(kFlags, 0x0018);
  StartSession();
  Click("CheckCobin5");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40005", "writes 40005 = 0x0010"));
  RunThroughADecode();
  EXPECT_TRUE(Checked("OptionCobin2"));
}

TEST_F(CobinFlags, OddSetsBit4) {
  Set(kFlags, 0xAB08);
  StartSession();
  Click("OptionCobin2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40005", "writes 40005 = 0xAB18"));
  EXPECT_EQ(Polled(kPolledFlags), 0xAB18);
  EXPECT_TRUE(Checked("OptionCobin2"));
  EXPECT_FALSE(Checked("OptionCobin1"));
}

TEST_F(CobinFlags, EvenClearsBit4) {
  Set(kFlags, 0xFFFF);
  StartSession();
  Click("OptionCobin1");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40005", "writes 40005 = 0xFFEF"));
  EXPECT_TRUE(Checked("OptionCobin1"));
  EXPECT_FALSE(Checked("OptionCobin2"));
}

TEST_F(CobinFlags, AnOptionThatIsSelectedAlreadyIsWrittenAgain) {
  Set(kFlags, 0x0018);
  StartSession();
  Click("OptionCobin2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40005", "writes 40005 = 0x0018"));
}

TEST_F(CobinFlags, OptionsDoNotSpringBack) {
  Set(kFlags, 0x0008);
  StartSession();
  const History odd(At("OptionCobin2"), "Value");
  RunIntoAPoll();
  Click("OptionCobin2");
  Run(std::chrono::seconds(1));
  EXPECT_THAT(odd.Values<bool>(), ElementsAre(true));
}

TEST_F(CobinFlags, OptionsWithoutASessionChangeTheWorkingCopyAlone) {
  SetPolled(kPolledFlags, 0xAB00);
  Click("CheckCobin5");
  Click("OptionCobin2");
  EXPECT_EQ(Polled(kPolledFlags), 0xAB18);
  EXPECT_TRUE(Checked("OptionCobin2"));
  Click("OptionCobin1");
  EXPECT_EQ(Polled(kPolledFlags), 0xAB08);
  EXPECT_TRUE(Checked("OptionCobin1"));
  EXPECT_EQ(ports.Attempts(), 0);
}

}  // namespace
}  // namespace tarvo::test
