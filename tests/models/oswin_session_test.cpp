// Session and reset button of the Oswin page.

#include "support/oswin_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class OswinSession : public OswinFixture {};

// Start.

TEST_F(OswinSession, ReadsTheIdentityTwiceAndTheAddressWord) {
  Click("StartOswin");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001", "reads 40001", "reads 40035"));
}

TEST_F(OswinSession, HasBegunWhenItsSettingsAreRead) {
  StartUntilRequest(2);
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(Hourglass());
}

TEST_F(OswinSession, ShowsTheFirmwareBeforeItsSettingsAreRead) {
  StartUntilRequest(2);
  EXPECT_EQ(Text("labFWVers"), "Firmware rel: 5");
}

TEST_F(OswinSession, ShowsTheFirmwareWithOneBlank) {
  const std::pair<int, const char*> rows[] = {
      {0, "Firmware rel: 0"}, {5, "Firmware rel: 5"}, {18, "Firmware rel: 18"}, {255, "Firmware rel: 255"}};
  for (const auto& [release, text] : rows) {
    Set(kIdentity, 0x1600 | release);
    StartSession();
    EXPECT_EQ(Text("labFWVers"), text);
    Click("StopNerith");
  }
}

TEST_F(OswinSession, HasDoneAllWhenStartEnds) {
  State().RunKind = 77;
  State().ReadStep = 5;
  Click("StartOswin");
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_EQ(State().NrFinestra, 12);
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 5);
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_TRUE(PortOpen());
  EXPECT_TRUE(TimersRun());
  EXPECT_FALSE(Enabled("TimerIngranaggi"));
  EXPECT_FALSE(Enabled("StartOswin"));
  EXPECT_TRUE(Enabled("StopNerith"));
  for (const char* name :
       {"labOswin", "menuOswin", "LabHome", "LabPCSetup", "buttCheckDevice", "cbSelectDevice", "mnuCheckconnection"}) {
    EXPECT_FALSE(Enabled(std::string("MDIForm1.") + name)) << name;
  }
  EXPECT_TRUE(Playing("MediaPlayer1"));
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
}

TEST_F(OswinSession, LeavesItsSettingsToTheUser) {
  StartSession();
  for (int i = 0; i < kChannels; ++i) {
    for (const std::string& name : {Filter(i), Units(i), SensorType(i), Rejection(i), Comp(i)}) {
      EXPECT_TRUE(Enabled(name)) << name;
    }
  }
  for (const char* name : {"cbBaudRate", "labModuleAddress", "checkParity", "WEEPGaven", "ResetGaven"}) {
    EXPECT_TRUE(Enabled(name)) << name;
  }
}

TEST_F(OswinSession, TellsTheConnectionInTheStatusBar) {
  State().PCSettings = "19200,e,8,1";
  module.Line = *bus::LineSettings::Parse("19200,e,8,1");
  StartSession();
  EXPECT_EQ(Panel2(), "Connected to  Oswin , COM1,19200,e,8,1  Module Address:1");
}

TEST_F(OswinSession, ShowsNothingAnewOfSettingsThatThePageHasRead) {
  Edit("labModuleAddress", "99");
  Choose("cbBaudRate", 6);
  Choose(SensorType(0), 2);
  Choose(Units(3), 1);
  Click(Comp(1));
  SetFour(kChannel1, {0x08, 0x08, 0x08, 0x08});
  Set(kAddress, 0x2202);
  StartSession();
  EXPECT_EQ(Text("labModuleAddress"), "99");
  EXPECT_EQ(Text("cbBaudRate"), "57600");
  EXPECT_FALSE(Checked("checkParity"));
  EXPECT_THAT(ChannelsShown(), ElementsAre(0x80, 0x10, 0x00, 0x20));
}

TEST_F(OswinSession, ReadsAllSettingsOfAPageThatHasNotReadThem) {
  State().pageReadDone = state::kFalse;
  SetFour(kChannel1, {0x41, 0x82, 0xC3, 0x38});
  std::vector<std::string> expected = {"reads 40001"};
  expected.insert(expected.end(), SettingsReads().begin(), SettingsReads().end());
  Click("StartOswin");
  EXPECT_THAT(Exchanges(), ElementsAreArray(expected));
  EXPECT_THAT(ChannelsShown(), ElementsAre(0x41, 0x82, 0xC3, 0x38));
  ExpectSessionGoesOn();
}

TEST_F(OswinSession, PollsEvery500Milliseconds) {
  StartSession();
  ExpectSessionGoesOn();
  ExpectSessionGoesOn();
}

TEST_F(OswinSession, PollsSeldomerOnASlowLine) {
  State().PCSettings = "1200,n,8,1";
  module.Line.baud = 1200;
  Click("StartOswin");
  ASSERT_TRUE(InSession());
  RunToAPollsEnd();
  const History message(At("labMessage"), "Caption");
  std::vector<std::string> expected;
  for (int poll = 0; poll < 2; ++poll) expected.insert(expected.end(), PollReads().begin(), PollReads().end());
  Run(core::milliseconds(2000));
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(expected));
  EXPECT_EQ(Message(), "OK");
  EXPECT_THAT(message.Values<std::string>(), IsEmpty());
}

TEST_F(OswinSession, IsRefusedToAModuleOfAnotherModel) {
  for (const int identity : {0x0805, 0x0905, 0x1505, 0x1705, 0x9605, 0x0016, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    module.ForgetLog();
    const std::string firmware = Text("labFWVers");
    Click("StartOswin");
    EXPECT_THAT(BoxInFront(), IsBox(kNotAnOswin, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_FALSE(Playing("MediaPlayer1"));
    EXPECT_EQ(Text("labFWVers"), firmware);
    ExpectOffline();
  }
  Set(kIdentity, 0x16FF);
  StartSession();
}

TEST_F(OswinSession, IsRefusedWithoutAPort) {
  State().PCPort = 2;
  Click("StartOswin");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAnOswin, view::Icon::kCritical));
  AnswerOk();
  ExpectOffline();
}

TEST_F(OswinSession, GoesOnThoughTheSecondIdentityIsNotRead) {
  RefuseAfter(1);
  Click("StartOswin");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001", "reads 40001: exception 4"));
  EXPECT_EQ(Panel2(), kThisIsNoOswin);
  EXPECT_EQ(Text("labFWVers"), "Firmware rel: 5");
  ExpectSessionGoesOn();
}

TEST_F(OswinSession, BeginsWithMeasuresOfZero) {
  SetFour(kMeasure1, {11, 22, 33, 44});
  StartSession();
  RunThroughAPoll();
  Click("StopNerith");
  const History measure(At(Measure(0)), "Caption");
  StartUntilRequest(3);
  EXPECT_THAT(measure.Values<std::string>(), ElementsAre("0"));
  RunUntilIdle();
}

// Stop and leaving.

TEST_F(OswinSession, HasNoUseForStopWithoutASession) {
  Click("StopNerith");
  EXPECT_EQ(ports.Attempts(), 0);
  ExpectOffline();
}

TEST_F(OswinSession, StartsAgainAfterStop) {
  for (int i = 0; i < 3; ++i) {
    StartSession();
    ExpectSessionGoesOn();
    Click("StopNerith");
  }
  ExpectOffline();
}

TEST_F(OswinSession, WaitsAtStopForTheReadUnderWay) {
  for (std::size_t read = 0; read < PollReads().size(); ++read) {
    SCOPED_TRACE(PollReads().at(read));
    StartSession();
    RunToAPollsEnd();
    ASSERT_TRUE(RunUntil([&] { return module.Log().size() == read + 1; }));
    ClickAndGoOn("StopNerith");
    RunUntilIdle();
    ExpectOffline();
  }
}

// The reset button, of a module that has no reset.

TEST_F(OswinSession, TellsHowToRestartAnyModule) {
  Set(kIdentity, 0x0805);
  Click("ResetGaven");
  EXPECT_THAT(BoxInFront(), IsBox(kSwitchOffAndOn, view::Icon::kInformation));
  AnswerOk();
  ExpectOffline();
}

}  // namespace
}  // namespace tarvo::test
