#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct FlagCase {
  const char* box;
  int setMask;
  int clearMask;
};

constexpr FlagCase kFlagCases[] = {{"CheckBelk1", 0x0080, 0xFF7F}, {"CheckBelk2", 0x0001, 0xFFFE},
                                   {"CheckBelk3", 0x0020, 0xFFDF}, {"CheckBelk4", 0x0002, 0xFFFD},
                                   {"CheckBelk5", 0x0004, 0xFFFB}, {"CheckBelk6", 0x0008, 0xFFF7}};

/// A check box of 40009, one case each.
class BelkFlag : public BelkFixture, public testing::WithParamInterface<FlagCase> {
 protected:
  const char* Box() const { return GetParam().box; }
  int SetMask() const { return GetParam().setMask; }
  int ClearMask() const { return GetParam().clearMask; }
};

INSTANTIATE_TEST_SUITE_P(Boxes, BelkFlag, testing::ValuesIn(kFlagCases),
                         [](const auto& given) { return given.param.box; });

TEST_P(BelkFlag, SetsItsBitOnTheModuleAndKeepsTheOthers) {
  module[kFlags] = static_cast<std::uint16_t>(0xAB40);
  StartSession();
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009", Writing(kFlags, 0xAB40 | SetMask())));
  EXPECT_TRUE(Checked(Box()));
}

TEST_P(BelkFlag, ClearsItsBitOnTheModuleAndKeepsTheOthers) {
  module[kFlags] = 0xFFFF;
  StartSession();
  ASSERT_TRUE(Checked(Box()));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009", Writing(kFlags, ClearMask())));
  EXPECT_FALSE(Checked(Box()));
}

TEST_P(BelkFlag, ChangesWhatTheModuleHasAtThatMoment) {
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module[kFlags] = 0x5540;  // not polled yet
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009", Writing(kFlags, 0x5540 | SetMask())));
}

TEST_P(BelkFlag, IsWrittenFromZeroWhenTheReadIsRefused) {
  module[kFlags] = 0xFF00;
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module.Next(ModuleFault::Exception(2));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009: exception 2", Writing(kFlags, SetMask())));
}

TEST_P(BelkFlag, IsClearedFromZeroWhenTheReadIsRefused) {
  module[kFlags] = 0xFFFF;
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module.Next(ModuleFault::Exception(2));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009: exception 2", "writes 40009 = 0x0000"));
}

TEST_P(BelkFlag, IsWrittenFromZeroWhenTheReadMeetsSilence) {
  module[kFlags] = 0xFF00;
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module.Always(ModuleFault::Unheard());
  const auto run = ClickAndGoOn(Box());
  // Three tries of 500 ms and the line's time; then the module hears again.
  Run(core::milliseconds(1450));
  module.Always(ModuleFault::None());
  module.ForgetLog();
  // What the last try asks now is past hearing, so the read still fails.
  ASSERT_TRUE(RunUntil([&] { return run->Done(); }));
  std::vector<std::string> writes = Exchanges();
  std::erase_if(writes, [](const std::string& exchange) { return exchange.starts_with("reads"); });
  EXPECT_THAT(writes, ElementsAre(Writing(kFlags, SetMask())));
}

TEST_P(BelkFlag, UpdatesThePolledFlagsWithAGoodWrite) {
  module[kFlags] = 0xAB00;
  StartSession();
  Click(Box());
  EXPECT_EQ(Polled(kPolledFlags), 0xAB00 | SetMask());
  Click(Box());
  EXPECT_EQ(Polled(kPolledFlags), 0xAB00);
}

TEST_P(BelkFlag, LeavesThePolledFlagsWithAFailedWrite) {
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009", Writing(kFlags, SetMask()) + ": exception 4"));
  EXPECT_EQ(Polled(kPolledFlags), 0);
}

TEST_P(BelkFlag, SpringsBackWhenTheWriteIsLost) {
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  EXPECT_TRUE(NothingInFront());
  RunThroughADecode();
  EXPECT_FALSE(Checked(Box()));
}

TEST_P(BelkFlag, DoesNotSpringBackWhenTheWriteIsGood) {
  StartSession();
  const History shown(At(Box()), "Value");
  for (int click = 0; click < 10; ++click) {
    Click(Box());
    Run(core::milliseconds(230));
  }
  EXPECT_EQ(shown.Entries().size(), 10U);
}

TEST_P(BelkFlag, ShowsTheClickAtOnceWhileTheBusIsBusy) {
  StartSession();
  RunIntoAPoll();
  const auto run = ClickAndGoOn(Box());
  EXPECT_TRUE(Checked(Box()));
  EXPECT_FALSE(run->Done());
}

TEST_P(BelkFlag, ClickedInTheMiddleOfAPollLosesNothing) {
  module[kFlags] = 0x0100;
  StartSession();
  const History message(At("MessageBelk"), "Caption");
  const History shown(At(Box()), "Value");
  RunIntoAPoll();
  module[kCounter1] = 999;  // too late for this poll
  module.ForgetLog();
  const auto run = ClickAndGoOn(Box());
  ASSERT_TRUE(RunUntil([&] { return run->Done(); }));
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40009", Writing(kFlags, 0x0100 | SetMask())));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module[kFlags], 0x0100 | SetMask());
  EXPECT_TRUE(Checked(Box()));
  EXPECT_EQ(shown.Entries().size(), 1U);
  EXPECT_THAT(message.Entries(), IsEmpty());
  EXPECT_EQ(Text("TotIN(0)"), "999");
}

TEST_P(BelkFlag, TakesInThePollThatWasUnderWay) {
  StartSession();
  module.BeforeRead = [this](int, int) { module[kCounter1] = 77; };
  RunIntoAPoll();
  module.BeforeRead = nullptr;
  Click(Box());
  EXPECT_EQ(Polled(kPolledCounter1), 77);
}

TEST_P(BelkFlag, SetsAndClearsWhenClickedTwiceAtOnce) {
  module[kFlags] = 0x0100;
  StartSession();
  const auto first = ClickAndGoOn(Box());
  const auto second = ClickAndGoOn(Box());
  ASSERT_TRUE(RunUntil([&] { return first->Done() && second->Done(); }));
  EXPECT_THAT(Exchanges(),
              ElementsAre("reads 40009", Writing(kFlags, 0x0100 | SetMask()), "reads 40009", "writes 40009 = 0x0100"));
  EXPECT_FALSE(Checked(Box()));
}

TEST_P(BelkFlag, OfflineChangesOnlyThePolledFlags) {
  for (int i = 0; i < 20; ++i)
    State().PollBuffer[static_cast<std::size_t>(i)] = state::Word(static_cast<unsigned>(0x4000 + i));
  State().PollBuffer[kPolledFlags] = state::Word(0xAB40);
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  EXPECT_EQ(Polled(kPolledFlags), 0xAB40 | SetMask());
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  EXPECT_EQ(Polled(kPolledFlags), 0xAB40);

  for (int i = 0; i < 20; ++i) {
    if (i == static_cast<int>(kPolledFlags)) continue;
    EXPECT_EQ(Polled(static_cast<std::size_t>(i)), 0x4000 + i);
  }
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_TRUE(TimersRest());
}

TEST_P(BelkFlag, OfflineClearsItsBitInTheFlagsOfTheLastSession) {
  module[kFlags] = 0xFFFF;
  StartSession();
  Click("StopBelk");
  module.ForgetLog();
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  EXPECT_EQ(Polled(kPolledFlags), ClearMask());
  EXPECT_EQ(module[kFlags], 0xFFFF);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_P(BelkFlag, FollowsTheBoxThatIsShownWhateverTheRegisterHas) {
  // The module's bit was set from elsewhere after the last decode: a click on the clear box still sets it.
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module[kFlags] = static_cast<std::uint16_t>(SetMask());
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009", Writing(kFlags, SetMask())));
  EXPECT_TRUE(Checked(Box()));
}

class BelkFlags : public BelkFixture {};

TEST_F(BelkFlags, OfTwoQuickClicksBothReachTheModule) {
  StartSession();
  const auto first = ClickAndGoOn("CheckBelk1");
  const auto second = ClickAndGoOn("CheckBelk2");
  ASSERT_TRUE(RunUntil([&] { return first->Done() && second->Done(); }));
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009", "writes 40009 = 0x0080", "reads 40009", "writes 40009 = 0x0081"));
  Run(std::chrono::seconds(1));
  EXPECT_TRUE(Checked("CheckBelk1"));
  EXPECT_TRUE(Checked("CheckBelk2"));
}

TEST_F(BelkFlags, OfSixQuickClicksInTheMiddleOfAPollAllReachTheModule) {
  StartSession();
  RunIntoAPoll();
  for (const FlagCase& flag : kFlagCases) ClickAndGoOn(flag.box);
  ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle(); }));
  EXPECT_EQ(module[kFlags], 0x00AF);
  EXPECT_TRUE(TimersRun());
  Run(std::chrono::seconds(1));
  for (const FlagCase& flag : kFlagCases) EXPECT_TRUE(Checked(flag.box)) << flag.box;
}

TEST_F(BelkFlags, HoldTheTimersUntilTheLastHandlerHasEnded) {
  StartSession();
  const History reading(At("TimerLetturaSeriale"), "Enabled");
  const History decoding(At("TimerGestioneLetture"), "Enabled");
  const auto first = ClickAndGoOn("CheckBelk1");
  EXPECT_TRUE(TimersRest());
  const auto second = ClickAndGoOn("CheckBelk2");
  while (!first->Done() || !second->Done()) {
    ASSERT_TRUE(TimersRest());
    Run(core::milliseconds(1));
  }
  EXPECT_TRUE(TimersRun());
  EXPECT_THAT(reading.Values<bool>(), ElementsAre(false, true));
  EXPECT_THAT(decoding.Values<bool>(), ElementsAre(false, true));
}

TEST_F(BelkFlags, LetNoPollInBetweenReadAndWrite) {
  StartSession();
  RunUntil([this] { return !Modcom().CommBusy(); });
  module.ForgetLog();
  module.Next(ModuleFault::Late(core::milliseconds(300)));
  module.Next(ModuleFault::Late(core::milliseconds(300)));
  Click("CheckBelk2");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40009: late 300 ms", "writes 40009 = 0x0001: late 300 ms"));
}

TEST_F(BelkFlags, LetThePollingGoOnAfterwards) {
  StartSession();
  Click("CheckBelk2");
  module.ForgetLog();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), testing::SizeIs(20));
  EXPECT_EQ(Text("MessageBelk"), "OK");
}

TEST_F(BelkFlags, FastCounterShowsItsLabelWithTheClick) {
  for (const bool session : {false, true}) {
    SCOPED_TRACE(session);
    if (session) StartSession();
    const bool before = Checked("CheckBelk1");
    ASSERT_EQ(Visible("LabelFASTBelk"), before);
    Click("CheckBelk1");
    EXPECT_EQ(Visible("LabelFASTBelk"), !before);
    Click("CheckBelk1");
    EXPECT_EQ(Visible("LabelFASTBelk"), before);
  }
}

TEST_F(BelkFlags, OtherBoxesLeaveTheFastLabelAlone) {
  for (const FlagCase& flag : kFlagCases) {
    if (flag.setMask == 0x0080) continue;
    Click(flag.box);
    EXPECT_FALSE(Visible("LabelFASTBelk")) << flag.box;
  }
}

// Parity.

TEST_F(BelkFlags, ParityBoxEnablesTheOptionsWithTheClick) {
  for (const bool session : {false, true}) {
    SCOPED_TRACE(session);
    if (session) StartSession();
    EXPECT_EQ(RefusalOf("OptionBelk2"), "OptionBelk2 is disabled");
    Click("CheckBelk6");
    EXPECT_TRUE(Enabled("OptionBelk1"));
    EXPECT_TRUE(Enabled("OptionBelk2"));
    Click("CheckBelk6");
    EXPECT_FALSE(Enabled("OptionBelk1"));
    EXPECT_FALSE(Enabled("OptionBelk2"));
  }
}

TEST_F(BelkFlags, ParityOffLeavesItsKindInBit4) {
  module[kFlags] = 0x0018;
  StartSession();
  Click("CheckBelk6");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009", "writes 40009 = 0x0010"));
  RunThroughADecode();
  EXPECT_TRUE(Checked("OptionBelk2"));
  Click("CheckBelk6");
  EXPECT_EQ(module[kFlags], 0x0018);
  EXPECT_TRUE(Checked("OptionBelk2"));
}

TEST_F(BelkFlags, OddSetsBit4) {
  module[kFlags] = 0xAB08;
  StartSession();
  Click("OptionBelk2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009", "writes 40009 = 0xAB18"));
  EXPECT_TRUE(Checked("OptionBelk2"));
  EXPECT_FALSE(Checked("OptionBelk1"));
  EXPECT_EQ(Polled(kPolledFlags), 0xAB18);
}

TEST_F(BelkFlags, EvenClearsBit4) {
  module[kFlags] = 0xFFFF;
  StartSession();
  Click("OptionBelk1");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009", "writes 40009 = 0xFFEF"));
  EXPECT_TRUE(Checked("OptionBelk1"));
  EXPECT_FALSE(Checked("OptionBelk2"));
  EXPECT_EQ(Polled(kPolledFlags), 0xFFEF);
}

TEST_F(BelkFlags, AnOptionThatIsSelectedAlreadyIsWrittenToo) {
  module[kFlags] = 0x0018;
  StartSession();
  Click("OptionBelk2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009", "writes 40009 = 0x0018"));
}

TEST_F(BelkFlags, OptionsAreWrittenFromZeroWhenTheReadIsRefused) {
  module[kFlags] = 0xFFFF;
  StartSession();
  RunUntil([this] { return !Modcom().CommBusy(); });
  module.Next(ModuleFault::Exception(1));
  Click("OptionBelk2");
  RunUntil([this] { return !Modcom().CommBusy(); });
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009: exception 1", "writes 40009 = 0x0010"));
}

TEST_F(BelkFlags, OptionsOfflineChangeOnlyThePolledFlags) {
  State().PollBuffer[kPolledFlags] = state::Word(0xAB00);
  Click("CheckBelk6");
  Click("OptionBelk2");
  EXPECT_EQ(Polled(kPolledFlags), 0xAB18);
  EXPECT_TRUE(Checked("OptionBelk2"));
  Click("OptionBelk1");
  EXPECT_EQ(Polled(kPolledFlags), 0xAB08);
  EXPECT_TRUE(Checked("OptionBelk1"));
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(BelkFlags, OptionsDoNotSpringBack) {
  module[kFlags] = 0x0008;
  StartSession();
  const History odd(At("OptionBelk2"), "Value");
  RunIntoAPoll();
  Click("OptionBelk2");
  Run(std::chrono::seconds(1));
  EXPECT_THAT(odd.Values<bool>(), ElementsAre(true));
}

// Overflow marks.

class BelkOverflow : public BelkFixture, public testing::WithParamInterface<int> {
 protected:
  std::string Mark() const { return Member("OverFlowIN", GetParam()); }
  int Mask() const {
    constexpr int kMasks[] = {0xFEFF, 0xFDFF, 0xFBFF, 0xF7FF, 0xEFFF};
    return kMasks[GetParam()];
  }
};

INSTANTIATE_TEST_SUITE_P(Inputs, BelkOverflow, testing::Range(0, 5));

TEST_P(BelkOverflow, IsClearedOnTheModuleByAClick) {
  module[kStatus] = 0xFFFF;
  StartSession();
  Click(Mark());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40002", Writing(kStatus, Mask())));
  EXPECT_EQ(Polled(kPolledStatus), Mask());
  RunThroughADecode();
  for (int i = 0; i < kInputs; ++i) EXPECT_EQ(BackColor(Member("OverFlowIN", i)), i == GetParam() ? 64 : 255) << i;
}

TEST_P(BelkOverflow, IsNeverSetByAClick) {
  module[kStatus] = 0x0015;
  StartSession();
  Click(Mark());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40002", "writes 40002 = 0x0015"));
}

TEST_P(BelkOverflow, IsWrittenAsZeroWhenTheReadIsRefused) {
  module[kStatus] = 0xFFFF;
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module.Next(ModuleFault::Exception(2));
  Click(Mark());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40002: exception 2", "writes 40002 = 0x0000"));
}

TEST_P(BelkOverflow, StaysOffTheLineWithoutASession) {
  Click(Mark());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

}  // namespace
}  // namespace tarvo::test
