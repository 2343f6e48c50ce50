// The check boxes and parity options of the Dravo page.

#include "support/dravo_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct FlagCase {
  const char* box;
  int mask;
};

constexpr FlagCase kFlagCases[] = {{"CheckDravo1", 0x0100},
                                   {"CheckDravo2", 0x0200},
                                   {"CheckDravo3", 0x4000},
                                   {"CheckDravo4", 0x0008},
                                   {"CheckDravo5", 0x0004}};

class DravoFlag : public DravoFixture, public testing::WithParamInterface<FlagCase> {
 protected:
  /// Flags without a control, and the parity's kind.
  static constexpr int kOthers = 0xBCF3;

  const char* Box() const { return GetParam().box; }
  int Mask() const { return GetParam().mask; }
  void AwaitAFreeBus() {
    ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  }
};

INSTANTIATE_TEST_SUITE_P(Boxes, DravoFlag, testing::ValuesIn(kFlagCases),
                         [](const auto& given) { return given.param.box; });

TEST_P(DravoFlag, SetsItsBitOnTheModuleAndKeepsTheOthers) {
  Set(kFlags, kOthers);
  StartSession();
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40010", Writing(kFlags, kOthers | Mask())));
  EXPECT_TRUE(Checked(Box()));
  EXPECT_TRUE(TimersRun());
}

TEST_P(DravoFlag, ClearsItsBitOnTheModuleAndKeepsTheOthers) {
  Set(kFlags, 0xFFFF);
  // The delay box is shown by this road only.
  ReadEEPromFlags();
  StartSession();
  ASSERT_TRUE(Checked(Box()));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40010", Writing(kFlags, 0xFFFF & ~Mask())));
  EXPECT_FALSE(Checked(Box()));
}

TEST_P(DravoFlag, ChangesWhatTheModuleHasAtThatMoment) {
  StartSession();
  AwaitAFreeBus();
  Set(kFlags, 0x9022);  // not polled yet
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40010", Writing(kFlags, 0x9022 | Mask())));
}

TEST_P(DravoFlag, FollowsTheBoxThatIsShownWhateverTheRegisterHas) {
  StartSession();
  AwaitAFreeBus();
  Set(kFlags, Mask());
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40010", Writing(kFlags, Mask())));
  EXPECT_TRUE(Checked(Box()));
}

TEST_P(DravoFlag, IsWrittenFromZeroWhenTheReadIsRefused) {
  Set(kFlags, 0x9000);
  StartSession();
  AwaitAFreeBus();
  module.Next(ModuleFault::Exception(2));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40010: exception 2", Writing(kFlags, Mask())));
}

TEST_P(DravoFlag, UpdatesThePolledFlagsWithAGoodWrite) {
  Set(kFlags, kOthers);
  StartSession();
  Click(Box());
  EXPECT_EQ(Polled(kPolledFlags), kOthers | Mask());
  Click(Box());
  EXPECT_EQ(Polled(kPolledFlags), kOthers);
}

TEST_P(DravoFlag, LeavesThePolledFlagsWithAFailedWrite) {
  StartSession();
  AwaitAFreeBus();
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Box());
  EXPECT_EQ(Polled(kPolledFlags), 0);
  EXPECT_TRUE(NothingInFront());
}

TEST_P(DravoFlag, StaysAsClickedThoughTheWriteIsLost) {
  // The repeating decode does not show the flags.
  StartSession();
  AwaitAFreeBus();
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Box());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module[kFlags], 0);
  EXPECT_TRUE(Checked(Box()));
}

TEST_P(DravoFlag, SetsAndClearsWhenClickedTwiceAtOnce) {
  Set(kFlags, 0x1000);
  StartSession();
  const auto first = ClickAndGoOn(Box());
  const auto second = ClickAndGoOn(Box());
  ASSERT_TRUE(RunUntil([&] { return first->Done() && second->Done(); }));
  EXPECT_THAT(Exchanges(),
              ElementsAre("reads 40010", Writing(kFlags, 0x1000 | Mask()), "reads 40010", "writes 40010 = 0x1000"));
  EXPECT_FALSE(Checked(Box()));
  EXPECT_TRUE(TimersRun());
}

TEST_P(DravoFlag, ClickedInTheMiddleOfAPollLosesNothing) {
  StartSession();
  const History message(At("MessageDravo"), "Caption");
  RunIntoAPoll();
  Set(kUserValue, 999);  // too late for this poll
  module.ForgetLog();
  Click(Box());
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40010", Writing(kFlags, Mask())));
  Run(std::chrono::seconds(1));
  EXPECT_TRUE(Checked(Box()));
  EXPECT_THAT(message.Entries(), IsEmpty());
  EXPECT_EQ(Text("InputTechDravo"), "999");
}

TEST_P(DravoFlag, OfflineChangesOnlyThePolledFlags) {
  for (int i = 0; i < 20; ++i) {
    State().PollBuffer[static_cast<std::size_t>(i)] = state::Word(static_cast<unsigned>(0x8000 + i));
  }
  State().PollBuffer[kPolledFlags] = state::Word(static_cast<unsigned>(kOthers));
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  EXPECT_EQ(Polled(kPolledFlags), kOthers | Mask());
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  EXPECT_EQ(Polled(kPolledFlags), kOthers);
  for (int i = 0; i < 20; ++i) {
    if (i != static_cast<int>(kPolledFlags)) {
      EXPECT_EQ(Polled(static_cast<std::size_t>(i)), 0x8000 + i);
    }
  }
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_TRUE(TimersRest());
}

TEST_P(DravoFlag, IsTheOnlyBoxThatItsClickChanges) {
  Click(Box());
  for (const FlagCase& flag : kFlagCases) EXPECT_EQ(Checked(flag.box), std::string(flag.box) == Box()) << flag.box;
}

TEST_P(DravoFlag, IsCommittedFromTheViewByItsMask) {
  Click(Box());
  Click("WEEPDravo");
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), testing::Contains(Writing(40074, Mask())));
}

class DravoFlags : public DravoFixture {};

TEST_F(DravoFlags, OfFiveQuickClicksInTheMiddleOfAPollAllReachTheModule) {
  StartSession();
  RunIntoAPoll();
  for (const FlagCase& flag : kFlagCases) ClickAndGoOn(flag.box);
  ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle(); }));
  EXPECT_EQ(module[kFlags], 0x430C);
  EXPECT_TRUE(TimersRun());
}

TEST_F(DravoFlags, HoldTheTimersWhileTheyChange) {
  StartSession();
  const auto click = ClickAndGoOn("CheckDravo3");
  while (!click->Done()) {
    ASSERT_TRUE(TimersRest());
    Run(core::milliseconds(1));
  }
  EXPECT_TRUE(TimersRun());
}

// Parity.

TEST_F(DravoFlags, ParityBoxEnablesTheOptionsWithTheClick) {
  for (const bool session : {false, true}) {
    SCOPED_TRACE(session);
    if (session) StartSession();
    EXPECT_EQ(RefusalOf("OptionDravo2"), "OptionDravo2 is disabled");
    Click("CheckDravo4");
    EXPECT_TRUE(Enabled("OptionDravo1"));
    EXPECT_TRUE(Enabled("OptionDravo2"));
    Click("CheckDravo4");
    EXPECT_FALSE(Enabled("OptionDravo1"));
    EXPECT_FALSE(Enabled("OptionDravo2"));
  }
}

TEST_F(DravoFlags, OddSetsBit4) {
  Set(kFlags, 0xAB08);
  StartSession();
  Click("OptionDravo2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40010", "writes 40010 = 0xAB18"));
  EXPECT_TRUE(Checked("OptionDravo2"));
  EXPECT_FALSE(Checked("OptionDravo1"));
  EXPECT_EQ(Polled(kPolledFlags), 0xAB18);
}

TEST_F(DravoFlags, EvenClearsBit4) {
  Set(kFlags, 0xFFFF);
  StartSession();
  Click("OptionDravo1");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40010", "writes 40010 = 0xFFEF"));
  EXPECT_TRUE(Checked("OptionDravo1"));
  EXPECT_FALSE(Checked("OptionDravo2"));
  EXPECT_EQ(Polled(kPolledFlags), 0xFFEF);
}

TEST_F(DravoFlags, AnOptionThatIsSelectedAlreadyIsWrittenToo) {
  Set(kFlags, 0x0018);
  StartSession();
  Click("OptionDravo2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40010", "writes 40010 = 0x0018"));
}

TEST_F(DravoFlags, OptionsOfflineChangeOnlyThePolledFlags) {
  Click("CheckDravo4");
  State().PollBuffer[kPolledFlags] = state::Word(0xAB08);
  Click("OptionDravo2");
  EXPECT_EQ(Polled(kPolledFlags), 0xAB18);
  Click("OptionDravo1");
  EXPECT_EQ(Polled(kPolledFlags), 0xAB08);
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(DravoFlags, ParityOffLeavesItsKind) {
  Set(kFlags, 0x0018);
  StartSession();
  Click("CheckDravo4");
  EXPECT_EQ(module[kFlags], 0x0010);
  EXPECT_TRUE(Checked("OptionDravo2"));
}

}  // namespace
}  // namespace tarvo::test
