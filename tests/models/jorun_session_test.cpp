#include "support/jorun_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class JorunSession : public JorunFixture {};

TEST_F(JorunSession, IsThePageNumbered5) {
  EXPECT_EQ(Page().Name(), "Jorun");
  EXPECT_EQ(State().NrFinestra, 5);
  Click("LabHome");
  EXPECT_EQ(State().NrFinestra, -1);
  Click("menuJorun");
  EXPECT_EQ(Page().Name(), "Jorun");
  EXPECT_EQ(State().NrFinestra, 5);
  EXPECT_EQ(State().FamilyShown, state::kTrue);
}

TEST_F(JorunSession, ReadsTheVersionOnceOnly) {
  StartSession();
  Click("StopJorun");
  module.ForgetLog();
  Click("StartJorun");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001", "reads 40002 x10", "reads 40066"));
}

TEST_F(JorunSession, HasLockedTheSettingsWhenTheFirstBlockIsRead) {
  State().ReadStep = 5;
  State().RunKind = 77;
  StartUntilRequest(3);
  EXPECT_EQ(Text("FirmwJorun"), "Firmware rel: 3");
  ExpectSevenRates();
  EXPECT_TRUE(InSession());
  ExpectSettingsEnabled(false);
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_TRUE(TimersRest());
}

TEST_F(JorunSession, LeavesTheSettingsWhileTheModuleIsStillChecked) {
  StartUntilRequest(2);
  EXPECT_FALSE(InSession());
  ExpectSettingsEnabled(true);
}

TEST_F(JorunSession, HasShownTheFirstBlockWhenTheStoredAddressIsRead) {
  Set(kType1, 3);
  Set(kFilter1 + 3, 4);
  StartUntilRequest(4);
  EXPECT_EQ(ListIndex("cbInputTypeJorun(0)"), 3);
  EXPECT_EQ(ListIndex("cbFilterJorun(3)"), 4);
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_TRUE(TimersRest());
}

TEST_F(JorunSession, TellsNoConnectionLineInTheStatusBar) {
  const std::string before = Text("MDIForm1.StatusBar1(2)");
  StartSession();
  EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), before);
}

TEST_F(JorunSession, GivesTheSettingsBackBeforeStopWaitsForTheBus) {
  StartSession();
  RunIntoAPoll();
  const auto stop = ClickAndGoOn("StopJorun");
  EXPECT_FALSE(InSession());
  EXPECT_TRUE(PortOpen());
  ExpectSettingsEnabled(true);
  ASSERT_TRUE(RunUntil([&] { return stop->Done(); }));
  EXPECT_FALSE(PortOpen());
}

TEST_F(JorunSession, IsUndoneByStopWhileTheStoredAddressIsRead) {
  StartUntilRequest(4);
  Click("StopJorun");
  RunUntilIdle();
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(Enabled("StartJorun"));
  EXPECT_TRUE(Enabled("MDIForm1.labJorun"));
  ExpectSettingsEnabled(true);
  StartSession();
}

// Settings that are locked.

class JorunLock : public JorunFixture {
 protected:
  void ExpectKindsEnabled(bool enabled) const {
    EXPECT_EQ(Enabled("OptionEven"), enabled);
    EXPECT_EQ(Enabled("OptionOdd"), enabled);
  }
};

TEST_F(JorunLock, LastsAsLongAsTheSession) {
  ExpectSettingsEnabled(true);
  StartSession();
  ExpectSettingsEnabled(false);
  Run(std::chrono::seconds(2));
  ExpectSettingsEnabled(false);
  Click("StopJorun");
  ExpectSettingsEnabled(true);
}

TEST_F(JorunLock, RefusesEveryGesture) {
  StartSession();
  for (const std::string& name : Settings()) EXPECT_NE(RefusalOf(name), "") << name;
  EXPECT_NE(RefusalOf("OptionEven"), "");
  EXPECT_NE(RefusalOf("OptionOdd"), "");
  EXPECT_FALSE(program.GetScreen().Choose(At("cbInputTypeJorun(0)"), 1).taken);
  Run(std::chrono::seconds(1));
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_F(JorunLock, HoldsTheKindsOfParityWhateverTheModuleTells) {
  for (const int flags : {0x00, 0x08, 0x18}) {
    Set(kFlags, flags);
    StartSession();
    ExpectKindsEnabled(false);
    Run(std::chrono::seconds(1));
    ExpectKindsEnabled(false);
    Click("StopJorun");
  }
}

TEST_F(JorunLock, GivesTheKindsOfParityBackOnlyWithParity) {
  Set(kFlags, 0x08);
  StartSession();
  Click("StopJorun");
  ExpectKindsEnabled(true);
  Set(kFlags, 0x10);
  StartSession();
  Click("StopJorun");
  ExpectKindsEnabled(false);
}

// What the firmware release has.

class JorunFirmware : public JorunFixture {
 protected:
  void StartAndStop() {
    StartSession();
    Click("StopJorun");
  }
};

TEST_F(JorunFirmware, BeginsWithFiveRates) {
  ExpectFiveRates();
  EXPECT_EQ(ListIndex("cbBaudJorun"), 1);
}

TEST_F(JorunFirmware, IsShownByTheLowByte) {
  for (const int release : {0, 2, 12, 255}) {
    SetRelease(release);
    StartAndStop();
    EXPECT_EQ(Text("FirmwJorun"), "Firmware rel: " + std::to_string(release));
  }
}

TEST_F(JorunFirmware, HasFiveRatesAtRelease2) {
  SetRelease(2);
  StartAndStop();
  ExpectFiveRates();
}

TEST_F(JorunFirmware, HasSevenRatesAtRelease3) {
  StartAndStop();
  ExpectSevenRates();
}

TEST_F(JorunFirmware, HasSevenRatesAtTheLastRelease) {
  SetRelease(255);
  StartAndStop();
  ExpectSevenRates();
}

TEST_F(JorunFirmware, IsCheckedOnceBySessions) {
  StartAndStop();
  SetRelease(2);
  StartAndStop();
  ExpectSevenRates();
  EXPECT_EQ(Text("FirmwJorun"), "Firmware rel: 2");
}

TEST_F(JorunFirmware, IsNotCheckedAnewAfterADialogOverThePage) {
  SetRelease(2);
  StartAndStop();
  Click("labAddressJorun");
  AnswerChangeValue("7");
  SetRelease(3);
  module.ForgetLog();
  Click("StartJorun");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001", "reads 40002 x10", "reads 40066"));
  ExpectFiveRates();
}

TEST_F(JorunFirmware, LeavesASlowRateUnselectedBelowRelease3) {
  SetRelease(2);
  for (const int code : {6, 7}) {
    Set(kStoredCommunication, code << 8 | 5);
    StartAndStop();
    EXPECT_EQ(Text("cbBaudJorun"), "9600");
    EXPECT_EQ(Text("labAddressJorun"), "5");
  }
}

TEST_F(JorunFirmware, ChangesNothingButTheRates) {
  SetRelease(0);
  StartAndStop();
  ExpectSettingsEnabled(true);
}

}  // namespace
}  // namespace tarvo::test
