#include "support/gaven_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class GavenSession : public GavenFixture {};

TEST_F(GavenSession, IsThePageNumbered4) {
  EXPECT_EQ(Page().Name(), "Gaven");
  EXPECT_EQ(State().NrFinestra, 4);
  Click("LabHome");
  EXPECT_EQ(State().NrFinestra, -1);
  Click("MenuGaven");
  EXPECT_EQ(Page().Name(), "Gaven");
  EXPECT_EQ(State().NrFinestra, 4);
  EXPECT_EQ(State().FamilyShown, state::kTrue);
}

TEST_F(GavenSession, NeverEnablesTimerControllo) {
  EXPECT_EQ(Interval("TimerControllo"), 250);
  const History enabled(At("TimerControllo"), "Enabled");
  EXPECT_FALSE(Enabled("TimerControllo"));
  StartSession();
  Click("StopGaven");
  EXPECT_THAT(enabled.Entries(), IsEmpty());
}

TEST_F(GavenSession, HasSetThePollWhenTheSecondBlockIsRead) {
  StartUntilRequest(4);
  EXPECT_EQ(State().PollRegister.Number(), 40013);
  EXPECT_EQ(State().PollCount, 12);
  EXPECT_TRUE(TimersRest());
}

TEST_F(GavenSession, ReadsTheFirstBlockAgainAtTheNextStart) {
  StartSession();
  Click("StopGaven");
  module.ForgetLog();
  Click("StartGaven");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "reads 40002 x11", "reads 40066", "reads 40013 x12"));
}

TEST_F(GavenSession, HasShownTheFirmwareWhenTheFirstBlockIsRead) {
  State().ReadStep = 5;
  State().RunKind = 77;
  StartUntilRequest(2);
  EXPECT_EQ(Text("FirmwGaven"), "Firmware rel: 2");
  EXPECT_THAT(List("BaudGaven"), SizeIs(7));
  EXPECT_TRUE(InSession());
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_TRUE(TimersRest());
}

TEST_F(GavenSession, HasShownTheFirstBlockWhenTheStoredAddressIsRead) {
  Set(kFilter1, 3);
  Set(kStartScale1, 5);
  Set(kStartScale1 + 1, 6);
  StartUntilRequest(3);
  EXPECT_EQ(ListIndex("FilterGaven(0)"), 3);
  EXPECT_EQ(Text(Value(0)), "5");
  EXPECT_EQ(Text(Value(6)), "0");
  EXPECT_TRUE(TimersRest());
}

TEST_F(GavenSession, ClearsItsMessageAtStartUntilTheFirstPollByTimer) {
  StartSession();
  EXPECT_EQ(Text("MessageGaven"), "");
  RunThroughADecode();
  EXPECT_EQ(Text("MessageGaven"), "OK");
  Click("StopGaven");
  StartSession();
  EXPECT_EQ(Text("MessageGaven"), "");
}

TEST_F(GavenSession, TellsNoConnectionLineInTheStatusBar) {
  const std::string before = Text("MDIForm1.StatusBar1(2)");
  StartSession();
  EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), before);
}

TEST_F(GavenSession, IsUndoneByStopWhileTheStoredAddressIsRead) {
  StartUntilRequest(3);
  Click("StopGaven");
  RunUntilIdle();
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(Enabled("StartGaven"));
  EXPECT_TRUE(Enabled("MDIForm1.labGaven"));
  EXPECT_FALSE(Playing("MediaPlayer1"));
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "reads 40002 x11", "reads 40066"));
  StartSession();
}

TEST_F(GavenSession, GoesOnWhenTheBlocksOfStartAreRefused) {
  StartUntilRequest(1);
  for (int i = 0; i < 3; ++i) module.Next(ModuleFault::Exception(2));
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(NothingInFront());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageGaven"), "OK");
}

TEST_F(GavenSession, ShowsTheSecondBlockOnceItComesWhereStartHasLostIt) {
  Set(40012, 1111);
  Set(40013, 2222);
  Set(40015, 4444);
  StartUntilRequest(3);
  module.Next(ModuleFault::Exception(2));
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_EQ(Text("ValueGaven(0)"), "1111");
  EXPECT_EQ(Text("ValueGaven(6)"), "0");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("ValueGaven(6)"), "2222");
  EXPECT_EQ(Text("ValueGaven(14)"), "4444");
}

TEST_F(GavenSession, KeepsTheAddressWhenTheStoredOneIsNotRead) {
  Set(kStoredCommunication, 0x0309);
  StartSession();
  Click("StopGaven");
  StartUntilRequest(2);
  module.Next(ModuleFault::Exception(2));
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_THAT(module.TakeLog(), Contains("reads 40066: exception 2"));
  EXPECT_EQ(Text("AddressGaven"), "9");
  EXPECT_EQ(Text("BaudGaven"), "38400");
}

// What the firmware release has.

class GavenFirmware : public GavenFixture {
 protected:
  /// A session on a module of that release, ended again.
  void Visit(int release) {
    SetRelease(release);
    StartSession();
    Click("StopGaven");
  }
  /// Leaves the page and comes back.
  void LeaveAndReturn() {
    Click("LabHome");
    Click("labGaven");
  }
  void ExpectFiveRates() {
    EXPECT_THAT(List("BaudGaven"), ElementsAre("4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("BaudGaven"), ElementsAre(0, 1, 2, 3, 4));
  }
  void ExpectSevenRates() {
    EXPECT_THAT(List("BaudGaven"), ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("BaudGaven"), ElementsAre(6, 7, 0, 1, 2, 3, 4));
  }
};

TEST_F(GavenFirmware, BeginsWithFiveRates) {
  ExpectFiveRates();
  EXPECT_EQ(ListIndex("BaudGaven"), 1);
}

TEST_F(GavenFirmware, IsShownByTheLowByte) {
  for (const int release : {0, 1, 12, 255}) {
    Visit(release);
    EXPECT_EQ(Text("FirmwGaven"), "Firmware rel: " + std::to_string(release));
  }
}

TEST_F(GavenFirmware, HasSevenRatesFromRelease2On) {
  for (const int release : {2, 3, 255}) {
    SCOPED_TRACE(release);
    Visit(release);
    ExpectSevenRates();
    LeaveAndReturn();
    Visit(1);
    LeaveAndReturn();
  }
}

TEST_F(GavenFirmware, HasFiveRatesBelowRelease2) {
  for (const int release : {0, 1}) {
    SCOPED_TRACE(release);
    Visit(release);
    ExpectFiveRates();
    LeaveAndReturn();
    Visit(2);
    LeaveAndReturn();
    Visit(release);
    ExpectFiveRates();
    LeaveAndReturn();
  }
}

TEST_F(GavenFirmware, IsCheckedOnceWhileThePageIsNotLeft) {
  Visit(2);
  Visit(1);
  ExpectSevenRates();
  EXPECT_EQ(Text("FirmwGaven"), "Firmware rel: 1");
  LeaveAndReturn();
  ExpectSevenRates();
  Visit(1);
  ExpectFiveRates();
  Visit(2);
  ExpectFiveRates();
}

TEST_F(GavenFirmware, IsNotCheckedAnewAfterADialogOverThePage) {
  Visit(2);
  Click("AddressGaven");
  AnswerChangeValue("7");
  Visit(1);
  ExpectSevenRates();
}

TEST_F(GavenFirmware, IsNotCheckedForAModuleOfAnotherModel) {
  Set(kIdentity, 0x0202);
  Click("StartGaven");
  AnswerOk();
  ExpectFiveRates();
  EXPECT_EQ(Text("FirmwGaven"), "Firmware rel:");
}

TEST_F(GavenFirmware, ChangesNothingButTheRates) {
  SetRelease(0);
  Set(kFlags, 0x0008);
  StartSession();
  for (const char* name : {"CheckGaven(0)", "CheckGaven(1)", "CheckGaven(2)", "OptionGaven1", "OptionGaven2",
                           "BaudGaven", "FilterGaven(0)", "FilterGaven(3)"}) {
    EXPECT_TRUE(Enabled(name)) << name;
  }
}

TEST_F(GavenFirmware, LeavesASlowRateUnselectedBelowRelease2) {
  for (const int code : {6, 7}) {
    Set(kStoredCommunication, code << 8 | 5);
    Visit(1);
    EXPECT_EQ(Text("BaudGaven"), "9600");
    EXPECT_EQ(Text("AddressGaven"), "5");
  }
}

TEST_F(GavenFirmware, KeepsTheSelectedCodeWhenTheListGrows) {
  Set(kStoredCommunication, 0x0501);  // a rate that no list has
  for (int position = 0; position < 5; ++position) {
    SCOPED_TRACE(position);
    Visit(1);
    Choose("BaudGaven", position);
    LeaveAndReturn();
    Visit(2);
    EXPECT_EQ(ListIndex("BaudGaven"), position + 2);
    LeaveAndReturn();
  }
}

TEST_F(GavenFirmware, KeepsTheSelectedPositionWhenTheListShrinks) {
  Set(kStoredCommunication, 0x0501);
  for (int position = 0; position < 5; ++position) {
    SCOPED_TRACE(position);
    Visit(2);
    Choose("BaudGaven", position);
    LeaveAndReturn();
    Visit(1);
    EXPECT_EQ(ListIndex("BaudGaven"), position);
    LeaveAndReturn();
  }
}

}  // namespace
}  // namespace tarvo::test
