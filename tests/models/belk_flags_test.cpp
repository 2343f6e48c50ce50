#include "support/belk_fixture.h"
#include "support/flag_boxes.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BelkFlag : public BelkFixture, public testing::WithParamInterface<FlagBox> {
 protected:
  const char* Box() const { return GetParam().box; }
  int Mask() const { return GetParam().mask; }
};

INSTANTIATE_TEST_SUITE_P(Boxes, BelkFlag, testing::ValuesIn(kBelkFlags),
                         [](const auto& given) { return given.param.box; });

TEST_P(BelkFlag, IsWrittenFromZeroWhenTheReadMeetsSilence) {
  module[kFlags] = 0xFF00;
  StartSession();
  RunUntilTheBusIsFree();
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
  EXPECT_THAT(writes, ElementsAre(Writing(kFlags, Mask())));
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
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40009", Writing(kFlags, 0x0100 | Mask())));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module[kFlags], 0x0100 | Mask());
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
  for (const FlagBox& flag : kBelkFlags) {
    if (flag.mask == 0x0080) continue;
    Click(flag.box);
    EXPECT_FALSE(Visible("LabelFASTBelk")) << flag.box;
  }
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
  RunUntilTheBusIsFree();
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
