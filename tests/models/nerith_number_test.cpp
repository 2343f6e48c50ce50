// The page of Nerith and Pellor calls itself by Oswin's number whenever it is activated; only a click on its label ends
// with its own one. What goes by the number then goes to the other page.

#include "support/nerith_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kOwn = 9;
constexpr int kOswins = 12;

class NerithNumber : public NerithFixture {
 protected:
  /// A session whose address was edited.
  void StartAndEdit() {
    Set(kValue1, 77);
    StartSession();
    RunThroughADecode();
    EditAddress("33");
    RunUntilTheBusIsFree();
    module.ForgetLog();
  }
};

TEST_F(NerithNumber, IsItsOwnAfterItsLabelAndItsMenuItem) {
  for (const char* road : {"MDIForm1.labNerith", "MDIForm1.menuNerith"}) {
    Click("MDIForm1.LabHome");
    ASSERT_EQ(State().NrFinestra, -1);
    Click(road);
    EXPECT_EQ(State().NrFinestra, kOwn) << road;
  }
}

TEST_F(NerithNumber, IsOswinsAfterEachDialog) {
  struct Row {
    const char* opener;
    const char* end;
  };
  for (const Row& row : {Row{"labModuleAddress", "ChangeValue.Cancel"}, Row{"MDIForm1.frmAbout", "About.cmdOK"}}) {
    Enter();
    ASSERT_EQ(State().NrFinestra, kOwn);
    Click(row.opener);
    EXPECT_EQ(State().NrFinestra, kOwn);
    Click(row.end);
    EXPECT_EQ(State().NrFinestra, kOswins) << row.opener;
  }
}

TEST_F(NerithNumber, IsOswinsAfterAnEditedAddress) {
  EditAddress("33");
  EXPECT_EQ(Text("labModuleAddress"), "33");
  EXPECT_EQ(State().NrFinestra, kOswins);
}

TEST_F(NerithNumber, StaysItsOwnOverAMessageBox) {
  Click("ResetGaven");
  AnswerOk();
  EXPECT_EQ(State().NrFinestra, kOwn);
}

TEST_F(NerithNumber, ComesWithoutAnotherReading) {
  EditAddress("33");
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_EQ(Text("labModuleAddress"), "33");
}

TEST_F(NerithNumber, ComesBackByTheLabel) {
  EditAddress("33");
  Enter();
  EXPECT_EQ(State().NrFinestra, kOwn);
  StartSession();
  ExpectSessionGoesOn();
}

TEST_F(NerithNumber, OfOswinTakesThePollAway) {
  StartAndEdit();
  Set(kValue1, 88);
  Set(kStatus, 0x01);
  Run(std::chrono::seconds(5));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_EQ(Text(Value(0)), "77");
  EXPECT_FALSE(Visible(Failed(0)));
  EXPECT_EQ(Message(), "OK") << "the outcome is told on the other page";
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(PortOpen());
}

TEST_F(NerithNumber, OfOswinTellsTheFailedPollOnOswinsPage) {
  StartAndEdit();
  Run(std::chrono::seconds(2));
  EXPECT_EQ(Text("frmOswin.labMessage"), kPollFailed);
}

TEST_F(NerithNumber, OfOswinGivesOswinsStartBackAtStop) {
  StartAndEdit();
  Click("StopOswin");
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(Playing("MediaPlayer1"));
  EXPECT_FALSE(Enabled("StartNerith"));
  EXPECT_TRUE(Enabled("MDIForm1.labNerith"));
}

TEST_F(NerithNumber, OfOswinStillCommitsThroughItsOwnBus) {
  StartAndEdit();
  Click("WEEPGaven");
  EXPECT_TRUE(NothingInFront());
  EXPECT_THAT(module.TakeLog(), Contains("writes 40035 = 0x0421"));
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(PortOpen());
}

// A session that begins with Oswin's number.

class NerithStartedByOswinsNumber : public NerithFixture {
 protected:
  NerithStartedByOswinsNumber() {
    EditAddress("33");
    Click("StartNerith");
  }
};

TEST_F(NerithStartedByOswinsNumber, IsASessionWithoutAPoll) {
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(PortOpen());
  EXPECT_TRUE(TimersRun());
  Set(kValue1, 77);
  Run(std::chrono::seconds(3));
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "reads 40001", "reads 40035"));
  EXPECT_EQ(Text(Value(0)), "0");
}

TEST_F(NerithStartedByOswinsNumber, DisablesOswinsStart) {
  EXPECT_TRUE(Enabled("StartNerith"));
  EXPECT_FALSE(Enabled("frmOswin.StartOswin"));
  Click("StopOswin");
  EXPECT_TRUE(Enabled("frmOswin.StartOswin"));
}

TEST_F(NerithStartedByOswinsNumber, TakesNoSecondStartThoughItsButtonIsEnabled) {
  module.ForgetLog();
  Click("StartNerith");
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(NothingInFront());
}

TEST_F(NerithStartedByOswinsNumber, CanBeEndedAndBegunAgain) {
  Click("StopOswin");
  ExpectOffline();
  Enter();
  StartSession();
  ExpectSessionGoesOn();
}

// The left-over button.

class NerithCommand1 : public NerithModule {};

TEST_F(NerithCommand1, ShowsThePageAndLeavesOswinsNumber) {
  Click("MDIForm1.Command1");
  EXPECT_EQ(Page().Name(), "frmNerith");
  EXPECT_EQ(State().NrFinestra, kOswins);
  EXPECT_EQ(State().pageReadDone, state::kTrue);
  EXPECT_THAT(module.TakeLog(), testing::ElementsAreArray(SettingsReads()));
}

TEST_F(NerithCommand1, IsAButtonWithItsOwnName) {
  EXPECT_EQ(Text("MDIForm1.Command1"), "Command1");
}

TEST_F(NerithCommand1, IsOffInASession) {
  OpenPage();
  StartSession();
  EXPECT_EQ(RefusalOf("MDIForm1.Command1"), "Command1 is disabled");
  Click("StopOswin");
  EXPECT_TRUE(Enabled("MDIForm1.Command1"));
}

}  // namespace
}  // namespace tarvo::test
