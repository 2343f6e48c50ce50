// The check boxes, scale lists and parity options of the Quenby page.

#include <algorithm>

#include "support/quenby_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// A flag that is a box or a list: a list shows a set bit by its second entry.
struct FlagCase {
  const char* label;
  const char* control;
  int mask;
  bool list;
};

constexpr FlagCase kFlagCases[] = {
    {"Delay", "CheckDelay12ms", 0x0004, false},         {"Parity", "checkParity", 0x0008, false},
    {"ResetOnWrite", "CheckResetTimer", 0x0040, false}, {"DefaultOutputs", "CheckDefaultOutputs", 0x0080, false},
    {"StartScale1", "cbStartScale(0)", 0x0100, true},   {"StartScale2", "cbStartScale(1)", 0x0200, true},
    {"StartScale3", "cbStartScale(2)", 0x0400, true},   {"FullScale1", "cbFullScale(0)", 0x0800, true}};

class QuenbyFlag : public QuenbyFixture, public testing::WithParamInterface<FlagCase> {
 protected:
  const char* Control() const { return GetParam().control; }
  int Mask() const { return GetParam().mask; }

  bool Shown() const { return GetParam().list ? ListIndex(Control()) == 1 : Checked(Control()); }
  /// The user's hand, to its end: makes the control show the other of its two states.
  void Toggle() {
    if (GetParam().list) {
      Choose(Control(), Shown() ? 0 : 1);
    } else {
      Click(Control());
    }
  }
  /// The same, going on when time does.
  void ToggleAndGoOn() {
    view::Screen& screen = program.GetScreen();
    view::Control& control = At(Control());
    const view::GestureResult result =
        GetParam().list ? screen.Choose(control, Shown() ? 0 : 1) : screen.Click(control);
    EXPECT_TRUE(result.taken) << result.refusal;
  }
  /// Lets a session's time go by until nothing of the user's gestures is under way.
  void RunUntilQuiet() {
    scheduler.RunReady();
    ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle() && TimersRun(); }));
  }
};

INSTANTIATE_TEST_SUITE_P(Controls, QuenbyFlag, testing::ValuesIn(kFlagCases),
                         [](const auto& given) { return given.param.label; });

TEST_P(QuenbyFlag, SetsItsBitOnTheModuleAndKeepsTheOthers) {
  const int others = 0xFFFF & ~Mask();
  Set(kFlags, others);
  StartSession();
  ASSERT_FALSE(Shown());
  Toggle();
  RunUntilQuiet();
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40004", Writing(kFlags, 0xFFFF)));
  EXPECT_TRUE(Shown());
}

TEST_P(QuenbyFlag, ClearsItsBitOnTheModuleAndKeepsTheOthers) {
  Set(kFlags, 0xFFFF);
  StartSession();
  ASSERT_TRUE(Shown());
  Toggle();
  RunUntilQuiet();
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40004", Writing(kFlags, 0xFFFF & ~Mask())));
  EXPECT_FALSE(Shown());
}

TEST_P(QuenbyFlag, ChangesWhatTheModuleHasAtThatMoment) {
  StartSession();
  RunUntilTheBusIsFree();
  Set(kFlags, 0xF022);  // not polled yet
  Toggle();
  RunUntilQuiet();
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40004", Writing(kFlags, 0xF022 | Mask())));
}

TEST_P(QuenbyFlag, FollowsWhatIsShownWhateverTheRegisterHas) {
  StartSession();
  RunUntilTheBusIsFree();
  Set(kFlags, Mask());  // not polled yet
  Toggle();
  RunUntilQuiet();
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40004", Writing(kFlags, Mask())));
  EXPECT_TRUE(Shown());
}

TEST_P(QuenbyFlag, IsWrittenFromZeroWhenTheReadIsRefused) {
  Set(kFlags, 0xF000);
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(2));
  Toggle();
  RunUntilQuiet();
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40004: exception 2", Writing(kFlags, Mask())));
}

TEST_P(QuenbyFlag, UpdatesThePolledFlagsWithAGoodWrite) {
  Set(kFlags, 0xF010);
  StartSession();
  RunThroughADecode();
  for (const int expected : {0xF010 | Mask(), 0xF010}) {
    RunUntilTheBusIsFree();
    ToggleAndGoOn();
    ASSERT_TRUE(RunUntil([&] { return module[kFlags] == expected; }));
    ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
    EXPECT_EQ(Polled(kPolledFlags), expected) << "before any poll could have brought it";
    RunUntilQuiet();
  }
}

TEST_P(QuenbyFlag, NeverShowsTheOldStateAfterAGoodWrite) {
  StartSession();
  RunThroughADecode();
  for (int step = 0; step < 20; ++step) {
    const History shown(At(Control()), GetParam().list ? "ListIndex" : "Value");
    Toggle();
    Run(core::milliseconds(450 + 13 * step));
    EXPECT_THAT(shown.Entries(), testing::SizeIs(1)) << step;
  }
}

TEST_P(QuenbyFlag, SpringsBackWhenTheWriteIsLost) {
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Toggle();
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module[kFlags], 0);
  EXPECT_FALSE(Shown());
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Message(), "OK");
}

TEST_P(QuenbyFlag, HoldsTheTimersForItsExchanges) {
  StartSession();
  RunIntoAPoll();
  module.ForgetLog();
  ToggleAndGoOn();
  scheduler.RunReady();
  EXPECT_TRUE(Shown());
  EXPECT_TRUE(TimersRest());
  ASSERT_TRUE(RunUntil([this] { return !TimersRest(); }));
  EXPECT_TRUE(TimersRun());
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40004", Writing(kFlags, Mask())));
}

TEST_P(QuenbyFlag, InTheMiddleOfAPollLosesNothing) {
  StartSession();
  RunThroughADecode();
  const History message(At("frmQuenby.Message"), "Caption");
  RunIntoAPoll();
  Toggle();
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module[kFlags], Mask());
  EXPECT_TRUE(Shown());
  EXPECT_THAT(message.Entries(), IsEmpty());
}

TEST_P(QuenbyFlag, SetsAndClearsWhenToggledTwiceAtOnce) {
  Set(kFlags, 0x1000);
  StartSession();
  RunUntilTheBusIsFree();
  ToggleAndGoOn();
  ToggleAndGoOn();
  RunUntilQuiet();
  EXPECT_THAT(Exchanges(),
              ElementsAre("reads 40004", Writing(kFlags, 0x1000 | Mask()), "reads 40004", Writing(kFlags, 0x1000)));
  RunThroughADecode();
  EXPECT_FALSE(Shown());
}

TEST_P(QuenbyFlag, ChangesTheViewAloneWithoutASession) {
  for (state::Word& word : State().PollBuffer) word = state::Word(0x8001);
  Toggle();
  EXPECT_EQ(FlagsShown(), Mask());
  Toggle();
  EXPECT_EQ(FlagsShown(), 0);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(std::ranges::all_of(State().PollBuffer, [](state::Word word) { return word == state::Word(0x8001); }));
}

TEST_P(QuenbyFlag, IsCommittedByItsBit) {
  Toggle();
  Click("buttWriteEEPROM");
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), Contains(Writing(kStoredFlags, Mask())));
}

TEST_P(QuenbyFlag, TouchesNoEEPROMByItself) {
  StartSession();
  Toggle();
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module[kStoredFlags], 0);
}

class QuenbyFlags : public QuenbyFixture {};

TEST_F(QuenbyFlags, OfManyQuickGesturesAllReachTheModule) {
  StartSession();
  RunIntoAPoll();
  for (const Flag& box : kBoxes) ClickAndGoOn(box.name);
  for (const Flag& list : kLists) EXPECT_TRUE(program.GetScreen().Choose(At(list.name), 1).taken) << list.name;
  ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle() && TimersRun(); }));
  EXPECT_EQ(module[kFlags], kAllFlags & ~0x0010);
  RunThroughADecode();
  EXPECT_EQ(FlagsShown(), kAllFlags & ~0x0010);
}

TEST_F(QuenbyFlags, ParityBoxEnablesTheOptionsWithTheClick) {
  for (const bool session : {false, true}) {
    SCOPED_TRACE(session);
    if (session) StartSession();
    EXPECT_EQ(RefusalOf("OptionEven"), "OptionEven is disabled");
    EXPECT_EQ(RefusalOf("OptionOdd"), "OptionOdd is disabled");
    Click("checkParity");
    EXPECT_TRUE(Enabled("OptionEven"));
    EXPECT_TRUE(Enabled("OptionOdd"));
    Click("checkParity");
    EXPECT_FALSE(Enabled("OptionEven"));
    EXPECT_FALSE(Enabled("OptionOdd"));
  }
}

TEST_F(QuenbyFlags, OtherBoxesLeaveTheOptionsAlone) {
  for (const char* box : {"CheckDelay12ms", "CheckResetTimer", "CheckDefaultOutputs"}) Click(box);
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
}

TEST_F(QuenbyFlags, ParityOffLeavesItsKind) {
  Set(kFlags, 0x0018);
  StartSession();
  Click("checkParity");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40004", "writes 40004 = 0x0010"));
  EXPECT_TRUE(Checked("OptionOdd"));
}

TEST_F(QuenbyFlags, OddSetsBit4) {
  Set(kFlags, 0xABC8);
  StartSession();
  Click("OptionOdd");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40004", "writes 40004 = 0xABD8"));
  EXPECT_TRUE(Checked("OptionOdd"));
  EXPECT_FALSE(Checked("OptionEven"));
  EXPECT_EQ(Polled(kPolledFlags), 0xABD8);
}

TEST_F(QuenbyFlags, EvenClearsBit4) {
  Set(kFlags, 0xFFFF);
  StartSession();
  Click("OptionEven");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40004", "writes 40004 = 0xFFEF"));
  EXPECT_TRUE(Checked("OptionEven"));
  EXPECT_FALSE(Checked("OptionOdd"));
  EXPECT_EQ(Polled(kPolledFlags), 0xFFEF);
}

TEST_F(QuenbyFlags, AnOptionThatIsSelectedAlreadyIsWrittenToo) {
  Set(kFlags, 0x0008);
  StartSession();
  Click("OptionEven");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40004", "writes 40004 = 0x0008"));
}

TEST_F(QuenbyFlags, OptionsAreWrittenFromZeroWhenTheReadIsRefused) {
  Set(kFlags, 0x0008);
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(1));
  Click("OptionOdd");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40004: exception 1", "writes 40004 = 0x0010"));
}

TEST_F(QuenbyFlags, OptionsChangeTheViewAloneWithoutASession) {
  Click("checkParity");
  Click("OptionOdd");
  EXPECT_EQ(FlagsShown(), 0x0018);
  Click("OptionEven");
  EXPECT_EQ(FlagsShown(), 0x0008);
  EXPECT_TRUE(Checked("OptionEven"));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

}  // namespace
}  // namespace tarvo::test
