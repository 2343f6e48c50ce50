#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

using testing::SizeIs;

class WindowRules : public BelkFixture {
 protected:
  void ExpectSessionGoesOn() {
    EXPECT_TRUE(InSession());
    EXPECT_TRUE(TimersRun());
    EXPECT_TRUE(PortOpen());
    module.ForgetLog();
    Run(std::chrono::seconds(1));
    EXPECT_THAT(module.TakeLog(), SizeIs(20));
    EXPECT_EQ(Text("MessageBelk"), "OK");
  }
};

TEST_F(WindowRules, ShowAPageWithoutTouchingItsPort) {
  EXPECT_EQ(Page().Name(), "Belk");
  EXPECT_EQ(State().NrFinestra, 0);
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_TRUE(NothingInFront());
  EXPECT_FALSE(Hourglass());
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(WindowRules, CreatesTheTimersDisabledWithTheirIntervals) {
  const std::pair<const char*, int> intervals[] = {
      {"TimerLetturaSeriale", 50}, {"TimerGestioneLetture", 200}, {"TimerIngranaggi", 200}, {"TimerControllo", 250}};
  for (const auto& [name, interval] : intervals) {
    EXPECT_EQ(Interval(name), interval) << name;
    EXPECT_FALSE(Enabled(name)) << name;
  }
}

TEST_F(WindowRules, NamesStartAndStopInTheirToolTips) {
  EXPECT_EQ(ToolTip("StartBelk"), "Start Communication");
  EXPECT_EQ(ToolTip("StopBelk"), "Stop Communication");
}

TEST_F(WindowRules, SelectsTheSecondRateAtLoad) {
  EXPECT_EQ(ListIndex("BaudBelk"), 1);
  EXPECT_EQ(Text("BaudBelk"), "9600");
}

// Closing.

TEST_F(WindowRules, APageDoesNotCloseInASession) {
  StartSession();
  ClosePage();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(Page().Name(), "Belk");
  ExpectSessionGoesOn();
}

TEST_F(WindowRules, APageClosesOutOfASession) {
  ClosePage();
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(program.GetScreen().Page(), nullptr);
  EXPECT_FALSE(program.Ended());
}

TEST_F(WindowRules, ThePollingGoesOnBehindTheRefusal) {
  StartSession();
  ClosePage();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), SizeIs(20));
}

TEST_F(WindowRules, TheMainWindowDoesNotCloseInASession) {
  StartSession();
  Close();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_FALSE(program.Ended());
  ExpectSessionGoesOn();
}

TEST_F(WindowRules, TheMainWindowClosesOutOfASession) {
  StartSession();
  Click("StopBelk");
  Close();
  EXPECT_TRUE(NothingInFront());
  EXPECT_TRUE(program.Ended());
}

TEST_F(WindowRules, ExitIsRefusedInASessionWithoutAnIcon) {
  StartSession();
  Click("MDIForm1.ExitMNU");
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kNone));
  AnswerOk();
  EXPECT_FALSE(program.Ended());
  ExpectSessionGoesOn();
}

TEST_F(WindowRules, ExitEndsTheProgramOutOfASession) {
  Click("MDIForm1.ExitMNU");
  EXPECT_TRUE(NothingInFront());
  EXPECT_TRUE(program.Ended());
}

TEST_F(WindowRules, NothingClosesWhileStartHoldsTheHourglass) {
  const auto start = ClickAndGoOn("StartBelk");
  ASSERT_TRUE(Hourglass());
  ASSERT_EQ(State().StartComm, state::kFalse);
  Close();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_FALSE(program.Ended());
  ASSERT_TRUE(RunUntil([&] { return start->Done(); }));
  EXPECT_TRUE(InSession());
}

TEST_F(WindowRules, ExitDoesNotEndTheProgramWhileStartHoldsTheHourglass) {
  const auto start = ClickAndGoOn("StartBelk");
  Click("MDIForm1.ExitMNU");
  EXPECT_FALSE(program.Ended());
  ASSERT_NE(BoxInFront(), nullptr);
  EXPECT_EQ(BoxInFront()->text, kMustStopFirst);
  AnswerOk();
  ASSERT_TRUE(RunUntil([&] { return start->Done(); }));
  EXPECT_TRUE(InSession());
}

TEST_F(WindowRules, APageIsNotClosedWhileStartHoldsTheHourglass) {
  const auto start = ClickAndGoOn("StartBelk");
  ClosePage();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  ASSERT_TRUE(RunUntil([&] { return start->Done(); }));
  EXPECT_TRUE(InSession());
}

TEST_F(WindowRules, AStartWhosePageIsLeftInItsFirstPollUndoesItself) {
  const auto start = ClickAndGoOn("StartBelk");
  ASSERT_TRUE(RunUntil([&] { return InSession(); }));
  program.FindWindow("Belk")->Deactivate();
  ASSERT_TRUE(RunUntil([&] { return start->Done(); }));
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(line.IsOpen());
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(Enabled("StartBelk"));
}

TEST_F(WindowRules, LeavingAPageClosesItsPort) {
  bus::ModCom& modcom = Modcom();
  ASSERT_TRUE(modcom.SetPortOpen(true).Ok());
  ClosePage();
  EXPECT_EQ(program.GetScreen().Page(), nullptr);
  EXPECT_FALSE(modcom.PortOpen());
  EXPECT_FALSE(line.IsOpen());
}

TEST_F(WindowRules, DeactivateDisablesTheControlTimerAndClosesThePort) {
  ASSERT_TRUE(Modcom().SetPortOpen(true).Ok());
  dynamic_cast<view::Timer&>(At("TimerControllo")).Enabled = true;
  Page().Deactivate();
  EXPECT_FALSE(Enabled("TimerControllo"));
  EXPECT_FALSE(PortOpen());
}

TEST_F(WindowRules, UnloadClosesThePort) {
  ASSERT_TRUE(Modcom().SetPortOpen(true).Ok());
  Page().Unload();
  EXPECT_FALSE(PortOpen());
}

TEST_F(WindowRules, TheEndOfTheProgramClosesThePort) {
  auto ownLine = std::make_unique<MemoryLine>(scheduler);
  MemoryModule ownModule(scheduler, *ownLine);
  ownModule[kIdentity] = 0x0103;
  ports.Connect(1, *ownLine);
  {
    shell::Program other{shell::Services{scheduler, ports, values, help, files, "."}};
    other.Start();
    scheduler.RunReady();
    other.GetScreen().Click(*other.FindWindow("MDIForm1")->Find("labBelk"));
    other.GetScreen().Click(*other.FindWindow("Belk")->Find("StartBelk"));
    Run(std::chrono::seconds(1));
    ASSERT_EQ(other.State().StartComm, state::kTrue);
    ASSERT_TRUE(ownLine->IsOpen());
  }
  EXPECT_FALSE(ownLine->IsOpen());
}

// Keys.

TEST_F(WindowRules, EscapeSetsEscPressedAndDoesNothingElse) {
  StartSession();
  EXPECT_EQ(State().EscPressed, 0);
  PressKey(view::Key::kEscape);
  EXPECT_EQ(State().EscPressed, 1);
  EXPECT_TRUE(NothingInFront());
  ExpectSessionGoesOn();
}

TEST_F(WindowRules, EscapeIsSeenByThePageBeforeItsControls) {
  PressKey("CheckBelk1", view::Key::kEscape);
  EXPECT_EQ(State().EscPressed, 1);
  EXPECT_FALSE(Checked("CheckBelk1"));
  EXPECT_EQ(Page().Name(), "Belk");
}

TEST_F(WindowRules, NoOtherKeySetsEscPressed) {
  PressKey(view::Key::kEnter);
  EXPECT_EQ(State().EscPressed, 0);
}

// Navigation.

TEST_F(WindowRules, ThePageListReactsOutOfASession) {
  Click("MDIForm1.labBelk");
  EXPECT_EQ(State().NrFinestra, 0);
  Click("MDIForm1.MenuBelk");
  EXPECT_EQ(State().NrFinestra, 0);
  EXPECT_EQ(Page().Name(), "Belk");
}

TEST_F(WindowRules, AClickInThePageListSelectsTheFamilyOfItsLabel) {
  State().FamilyShown = state::kFalse;
  Click("MDIForm1.labBelk");
  EXPECT_EQ(State().FamilyShown, state::kTrue);
}

TEST_F(WindowRules, ThePageListBringsAClosedPageBack) {
  ClosePage();
  Click("MDIForm1.labBelk");
  ASSERT_NE(program.GetScreen().Page(), nullptr);
  EXPECT_EQ(Page().Name(), "Belk");
  EXPECT_EQ(State().NrFinestra, 0);
  StartSession();
}

TEST_F(WindowRules, ThePageListTakesNoClickInASession) {
  StartSession();
  EXPECT_EQ(RefusalOf("MDIForm1.labBelk"), "labBelk is disabled");
  EXPECT_EQ(RefusalOf("MDIForm1.MenuBelk"), "MenuBelk is disabled");
  Click("StopBelk");
  EXPECT_EQ(RefusalOf("MDIForm1.labBelk"), "");
  EXPECT_EQ(RefusalOf("MDIForm1.MenuBelk"), "");
}

TEST_F(WindowRules, ThePageListTakesNoClickWhileStartHoldsTheHourglass) {
  const auto start = ClickAndGoOn("StartBelk");
  ASSERT_TRUE(Hourglass());
  EXPECT_NE(RefusalOf("MDIForm1.labBelk"), "");
  EXPECT_NE(RefusalOf("MDIForm1.MenuBelk"), "");
  ASSERT_TRUE(RunUntil([&] { return start->Done(); }));
  EXPECT_TRUE(InSession());
}

TEST_F(WindowRules, ThePageListReactsAgainAfterAFailedStart) {
  module[kIdentity] = 0;
  Click("StartBelk");
  AnswerOk();
  EXPECT_EQ(RefusalOf("MDIForm1.labBelk"), "");
}

TEST_F(WindowRules, StopBringsTheSameFamilyBack) {
  StartSession();
  Click("StopBelk");
  EXPECT_EQ(State().FamilyShown, state::kTrue);
  EXPECT_TRUE(Visible("MDIForm1.labBelk"));
}

// Activate.

TEST_F(WindowRules, TheReturnFromADialogLeavesTheSessionRunning) {
  StartSession();
  for (const char* dialog : {"FilterBelk", "AddressBelk", "TotIN(0)"}) {
    SCOPED_TRACE(dialog);
    Click(dialog);
    ASSERT_EQ(WindowInFront(), "ChangeValue");
    Click("ChangeValue.Cancel");
    ExpectSessionGoesOn();
  }
}

TEST_F(WindowRules, AnActivateInASessionLeavesItRunning) {
  StartSession();
  Page().Spawn(Page().Activate());
  Run(core::milliseconds(50));
  ExpectSessionGoesOn();
}

}  // namespace
}  // namespace tarvo::test
