// Session of the page of Nerith and Pellor: its Start, and what enables its settings.

#include "support/nerith_fixture.h"

namespace tarvo::test {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

/// What Start reads beside its polls when the page was read before.
std::vector<std::string> ReadsOfStart() {
  return {"reads 40001", "reads 40001", "reads 40035"};
}

class NerithSession : public NerithFixture {};

// Start.

TEST_F(NerithSession, ReadsTheIdentityTwiceAndTheAddressOnce) {
  Click("StartNerith");
  EXPECT_THAT(Exchanges(), ElementsAreArray(ReadsOfStart()));
}

TEST_F(NerithSession, ReadsAllSettingsOfAPageThatWasNotRead) {
  State().pageReadDone = state::kFalse;
  Set(kSystem, 0x2A);
  Click("StartNerith");
  std::vector<std::string> expected = {"reads 40001"};
  const std::vector<std::string> settings = SettingsReads();
  expected.insert(expected.end(), settings.begin(), settings.end());
  EXPECT_THAT(Exchanges(), ElementsAreArray(expected));
  EXPECT_EQ(ListIndex("cbUnits"), 2);
  ExpectSessionGoesOn();
}

TEST_F(NerithSession, KeepsSettingsThatWereChangedInTheViewBeforeIt) {
  Choose("cbUnits", 3);
  Choose(Dump(0), 6);
  Click("checkParity");
  StartSession();
  RunThroughADecode();
  EXPECT_EQ(ListIndex("cbUnits"), 3);
  EXPECT_EQ(ListIndex(Dump(0)), 6);
  EXPECT_TRUE(Checked("checkParity"));
}

TEST_F(NerithSession, HasBegunWhenThePageReadsItsModule) {
  StartUntilRequest(2);
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_EQ(Text("labFWVers"), "Firmware rel:  18");
  EXPECT_TRUE(TimersRest());
}

TEST_F(NerithSession, ShowsTheFirmwareInDecimal) {
  for (const int firmware : {0, 7, 99, 255}) {
    SetKind(kNerith, firmware);
    StartSession();
    EXPECT_EQ(Text("labFWVers"), "Firmware rel:  " + std::to_string(firmware));
    Click("StopOswin");
  }
}

TEST_F(NerithSession, TellsModelAndLineInTheStatusBar) {
  for (const NerithKind& kind : {kPellor, kNerith}) {
    SetKind(kind, kNew);
    StartSession();
    EXPECT_EQ(Panel2(), std::string("Connected to  ") + kind.name + " , COM1,9600,n,8,1  Module Address:1");
    Click("StopOswin");
  }
}

TEST_F(NerithSession, HasDoneAllWhenStartEnds) {
  State().PollRegister = state::Register(40077);
  State().PollCount = 1;
  State().ReadStep = 5;
  Click("StartNerith");
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 5);
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_TRUE(PortOpen());
  EXPECT_TRUE(TimersRun());
  EXPECT_FALSE(Enabled("StartNerith"));
  EXPECT_TRUE(Enabled("StopOswin"));
  for (const char* name : {"labNerith", "menuNerith", "LabHome", "LabPCSetup", "buttCheckDevice", "cbSelectDevice",
                           "mnuCheckconnection", "Command1"}) {
    EXPECT_FALSE(Enabled(std::string("MDIForm1.") + name)) << name;
  }
  EXPECT_TRUE(Playing("MediaPlayer1"));
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(State().NrFinestra, 9);
}

TEST_F(NerithSession, PollsFiveRegistersEveryHalfSecond) {
  EXPECT_EQ(Interval("TimerLetturaSeriale"), 500);
  EXPECT_EQ(Interval("TimerGestioneLetture"), 200);
  StartSession();
  Run(std::chrono::seconds(10));
  EXPECT_THAT(module.TakeLog(), AllOf(SizeIs(20), Each(std::string(kNerithPoll))));
  EXPECT_EQ(Message(), "OK");
}

TEST_F(NerithSession, PollsFiveRegistersOfAThreeChannelModuleToo) {
  SetKind(kPellor, kNew);
  StartSession();
  ExpectSessionGoesOn();
}

TEST_F(NerithSession, IsRefusedToAModuleOfAnotherModel) {
  for (const int identity : {0x0A12, 0x0712, 0x1612, 0x0012, 0x8812, 0x8912, 0x1208, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    module.ForgetLog();
    Click("StartNerith");
    EXPECT_THAT(BoxInFront(), IsBox(kNotANerith, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_FALSE(Playing("MediaPlayer1"));
    ExpectOffline();
  }
  SetKind(kPellor, kOld);
  StartSession();
}

TEST_F(NerithSession, GoesOnThoughItsPageNoLongerKnowsTheModule) {
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click("StartNerith");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001", "reads 40001: exception 4"));
  EXPECT_EQ(Panel2(), kThisIsNoNerith);
  EXPECT_FALSE(Enabled("StartNerith"));
  ExpectSessionGoesOn();
}

// Enabling.

class NerithEnabling : public NerithModule, public testing::WithParamInterface<NerithKind> {
 protected:
  /// Enters the page after a search, which has turned all settings off.
  void Search(int firmware) {
    SetKind(GetParam(), firmware);
    Click("MDIForm1.buttCheckDevice");
    ASSERT_TRUE(RunUntil([this] { return State().SearchRunning == state::kFalse && program.GetScreen().Idle(); }));
    ASSERT_EQ(Page().Name(), "frmNerith");
  }
};

INSTANTIATE_TEST_SUITE_P(, NerithEnabling, testing::Values(kNerith, kPellor),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(NerithEnabling, IsTakenAwayByASearchButForTheFourthChannel) {
  Search(kNew);
  for (const char* name : {"cbBaudRate", "labModuleAddress", "checkParity"}) EXPECT_FALSE(Enabled(name)) << name;
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(Enabled(Sensor(i))) << i;
    EXPECT_FALSE(Enabled(Dump(i))) << i;
  }
  for (const std::string& name : ChannelControls(3)) EXPECT_EQ(Enabled(name), GetParam().channels == 4) << name;
}

TEST_P(NerithEnabling, ComesBackWithStart) {
  for (const int firmware : {kOld, kNew}) {
    Search(firmware);
    StartSession();
    for (const char* name : {"cbBaudRate", "labModuleAddress", "checkParity"}) EXPECT_TRUE(Enabled(name)) << name;
    for (int i = 0; i < 3; ++i) {
      EXPECT_TRUE(Enabled(Sensor(i))) << i;
      EXPECT_TRUE(Enabled(Dump(i))) << i;
    }
    EXPECT_EQ(Enabled(Sensor(3)), GetParam().channels == 4);
    EXPECT_EQ(Enabled(Dump(3)), GetParam().channels == 4);
    Click("StopOswin");
  }
}

TEST_P(NerithEnabling, CoversTheOtherChannelControlsOnNewFirmware) {
  // The second search finds a page that knows the firmware already.
  Search(kNew);
  Search(kNew);
  for (int i = 0; i < 3; ++i) {
    for (const std::string& name : ChannelControls(i)) EXPECT_FALSE(Enabled(name)) << name;
  }
  StartSession();
  for (int i = 0; i < kMostChannels; ++i) {
    for (const std::string& name : ChannelControls(i)) EXPECT_EQ(Enabled(name), i < GetParam().channels) << name;
  }
}

TEST_P(NerithEnabling, LeavesTheBurnOutOnOldFirmware) {
  Search(kOld);
  Search(kOld);
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(Enabled(Sensor(i))) << i;
    EXPECT_TRUE(Enabled(Burned(i))) << i;
  }
}

TEST_P(NerithEnabling, LeavesUnitsDigitsAndCoefficients) {
  Search(kNew);
  for (const char* name : {"cbUnits", "cbDecimalNumbers", "chkDINCoefficients"}) EXPECT_TRUE(Enabled(name)) << name;
}

TEST_P(NerithEnabling, StaysAfterStop) {
  Search(kNew);
  StartSession();
  Click("StopOswin");
  EXPECT_TRUE(Enabled("cbBaudRate"));
  EXPECT_TRUE(Enabled(Sensor(0)));
  EXPECT_EQ(Enabled(Sensor(3)), GetParam().channels == 4);
}

// No setting goes to the module by itself.

TEST_F(NerithSession, WritesNothingThoughEverySettingIsChanged) {
  StartSession();
  for (int i = 0; i < kMostChannels; ++i) {
    Choose(Sensor(i), 1);
    Choose(Dump(i), 7);
    Choose(Range(i), 2);
    Click(Conv(i));
    Click(Burned(i));
  }
  Choose("cbUnits", 3);
  Choose("cbDecimalNumbers", 2);
  Choose("cbBaudRate", 6);
  Click("chkDINCoefficients");
  Click("checkParity");
  Click("OptionOdd");
  EXPECT_THAT(Exchanges(), IsEmpty());
  ExpectSessionGoesOn();
}

TEST_F(NerithSession, LeavesChangedSettingsToTheUser) {
  StartSession();
  Choose(Sensor(1), 1);
  Choose("cbUnits", 3);
  Click(Conv(2));
  Set(kSystem, 0x2A);
  SetChannel(1, 0x0404, 0x5000);
  Run(std::chrono::seconds(3));
  EXPECT_EQ(ListIndex(Sensor(1)), 1);
  EXPECT_EQ(ListIndex("cbUnits"), 3);
  EXPECT_EQ(ListIndex(Range(1)), 0);
  EXPECT_FALSE(Checked(Conv(2)));
}

}  // namespace
}  // namespace tarvo::test
