// The flags of the Ferrun page, 40011: a click writes its bit at once in a session and is only shown without one.

#include "support/ferrun_fixture.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class FerrunFlagBox : public FerrunFixture, public testing::WithParamInterface<FerrunFlag> {
 protected:
  const char* Box() const { return GetParam().box; }
  int Mask() const { return GetParam().mask; }
};

INSTANTIATE_TEST_SUITE_P(Boxes, FerrunFlagBox, testing::ValuesIn(kFerrunFlags),
                         [](const auto& given) { return given.param.box; });

TEST_P(FerrunFlagBox, SetsItsBitOnTheModuleAndKeepsTheOthers) {
  for (const int others : {0, 0xFFFF & ~Mask()}) {
    if (InSession()) Click("StopFerrun");
    Set(kFlags, others);
    StartSession();
    Click(Box());
    EXPECT_THAT(Exchanges(), ElementsAre("reads 40011", Writing(kFlags, others | Mask())));
    EXPECT_TRUE(Checked(Box()));
    EXPECT_TRUE(TimersRun());
  }
}

TEST_P(FerrunFlagBox, ClearsItsBitOnTheModuleAndKeepsTheOthers) {
  for (const int others : {0, 0xFFFF & ~Mask()}) {
    if (InSession()) Click("StopFerrun");
    Set(kFlags, others | Mask());
    StartSession();
    Click(Box());
    EXPECT_THAT(Exchanges(), ElementsAre("reads 40011", Writing(kFlags, others)));
    EXPECT_FALSE(Checked(Box()));
  }
}

TEST_P(FerrunFlagBox, ChangesWhatTheModuleHasAtThatMoment) {
  StartSession();
  RunUntilTheBusIsFree();
  Set(kFlags, 0x00E3);  // not polled yet
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40011", Writing(kFlags, 0x00E3 | Mask())));
}

TEST_P(FerrunFlagBox, IsWrittenFromZeroWhenTheReadIsRefused) {
  Set(kFlags, 0x00E3);
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(2));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40011: exception 2", Writing(kFlags, Mask())));
}

TEST_P(FerrunFlagBox, UpdatesThePolledFlagsWithAGoodWriteAndDoesNotSpringBack) {
  StartSession();
  const History shown(At(Box()), "Value");
  RunIntoAPoll();
  Click(Box());
  EXPECT_EQ(Polled(kPolledFlags), Mask());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(shown.Entries().size(), 1U);
  EXPECT_TRUE(Checked(Box()));
}

TEST_P(FerrunFlagBox, SpringsBackWhenTheWriteIsLost) {
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Box());
  EXPECT_TRUE(NothingInFront());
  RunThroughADecode();
  EXPECT_FALSE(Checked(Box()));
}

TEST_P(FerrunFlagBox, IsOnlyTheViewWithoutASession) {
  for (std::size_t i = 0; i < 20; ++i) SetPolled(i, 0x4000 + static_cast<int>(i));
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  Run(std::chrono::seconds(1));
  for (std::size_t i = 0; i < 20; ++i) EXPECT_EQ(Polled(i), 0x4000 + static_cast<int>(i)) << i;
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_TRUE(TimersRest());
}

class FerrunFlags : public FerrunFixture {};

TEST_F(FerrunFlags, OfQuickClicksAllReachTheModule) {
  StartSession();
  RunIntoAPoll();
  int all = 0;
  for (const FerrunFlag& flag : kFerrunFlags) {
    ClickAndGoOn(flag.box);
    all |= flag.mask;
  }
  RunUntilIdle();
  EXPECT_EQ(module[kFlags], all);
  EXPECT_TRUE(TimersRun());
}

TEST_F(FerrunFlags, LetNoPollInBetweenReadAndWrite) {
  StartSession();
  RunUntilTheBusIsFree();
  module.ForgetLog();
  module.Next(ModuleFault::Late(core::milliseconds(300)));
  module.Next(ModuleFault::Late(core::milliseconds(300)));
  Click("CheckInv");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40011: late 300 ms", "writes 40011 = 0x0800: late 300 ms"));
}

TEST_F(FerrunFlags, LetThePollingOfTheSecondBlockGoOn) {
  StartSession();
  Click("CheckInv");
  module.ForgetLog();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), Each(std::string(kFerrunPoll)));
  EXPECT_EQ(Text("MessageFerrun"), "OK");
}

TEST_F(FerrunFlags, AutoDisablesTheOutputWithTheClick) {
  for (const bool session : {false, true}) {
    SCOPED_TRACE(session);
    if (session) StartSession();
    Click("CheckAuto");
    EXPECT_EQ(RefusalOf("OutputFerrun"), "OutputFerrun is disabled");
    EXPECT_TRUE(NothingInFront());
    Click("CheckAuto");
    EXPECT_TRUE(Enabled("OutputFerrun"));
  }
}

// Parity.

TEST_F(FerrunFlags, ParityBoxEnablesTheOptionsWithTheClick) {
  for (const bool session : {false, true}) {
    SCOPED_TRACE(session);
    if (session) StartSession();
    EXPECT_EQ(RefusalOf("OptionOdd"), "OptionOdd is disabled");
    Click("checkParity");
    EXPECT_TRUE(Enabled("OptionEven"));
    EXPECT_TRUE(Enabled("OptionOdd"));
    Click("checkParity");
    EXPECT_FALSE(Enabled("OptionEven"));
    EXPECT_FALSE(Enabled("OptionOdd"));
  }
}

TEST_F(FerrunFlags, OddSetsBit4AndEvenClearsIt) {
  Set(kFlags, 0xFFEF);
  StartSession();
  Click("OptionOdd");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40011", "writes 40011 = 0xFFFF"));
  EXPECT_TRUE(Checked("OptionOdd"));
  EXPECT_FALSE(Checked("OptionEven"));
  EXPECT_EQ(Polled(kPolledFlags), 0xFFFF);
  Click("OptionEven");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40011", "writes 40011 = 0xFFEF"));
  EXPECT_TRUE(Checked("OptionEven"));
  RunThroughADecode();
  EXPECT_TRUE(Checked("OptionEven"));
}

TEST_F(FerrunFlags, AnOptionThatIsSelectedAlreadyIsWrittenToo) {
  Set(kFlags, 0x0018);
  StartSession();
  Click("OptionOdd");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40011", "writes 40011 = 0x0018"));
}

TEST_F(FerrunFlags, OptionsAreOnlyTheViewWithoutASession) {
  SetPolled(kPolledFlags, 0x4321);
  Click("checkParity");
  Click("OptionOdd");
  EXPECT_TRUE(Checked("OptionOdd"));
  Click("OptionEven");
  EXPECT_TRUE(Checked("OptionEven"));
  EXPECT_EQ(Polled(kPolledFlags), 0x4321);
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(FerrunFlags, ParityOffLeavesItsKindInBit4) {
  Set(kFlags, 0x0018);
  StartSession();
  Click("checkParity");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40011", "writes 40011 = 0x0010"));
  RunThroughADecode();
  EXPECT_TRUE(Checked("OptionOdd"));
}

TEST_F(FerrunFlags, DoNotChangeTheLineBeforeAReset) {
  StartSession();
  Click("checkParity");
  Click("CheckDelay");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(line.Line(), bus::LineSettings{});
  EXPECT_EQ(State().PCSettings, "9600,n,8,1");
  EXPECT_EQ(Text("MessageFerrun"), "OK");
}

}  // namespace
}  // namespace tarvo::test
