// Start, Stop and the firmware gate of the Lumet page.

#include "support/lumet_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;

class LumetSession : public LumetFixture {};

// Start, in the order that is told.

TEST_F(LumetSession, StartReadsIdentitySettingsMeasuresAndTheFirstBlock) {
  Click("StartLumet");
  EXPECT_THAT(module.TakeLog(),
              ElementsAre("reads 40001", "reads 40020", "reads 40019", "reads 40085", "reads 40018", kLumetFirstPoll));
}

TEST_F(LumetSession, StartHasSetThePollBeforeTheIdentityIsRead) {
  State().RunKind = 77;
  ClickAndGoOn("StartLumet");
  EXPECT_TRUE(Hourglass());
  EXPECT_TRUE(PortOpen());
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 9);
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_EQ(Text("FirmwLumet"), "Firmware rel:");
  ExpectFiveRates();
  EXPECT_FALSE(Playing("MediaPlayer1"));
}

TEST_F(LumetSession, StartHasCheckedTheFirmwareBeforeItReadsTheFlags) {
  StartUntilRequest(2);
  ExpectSevenRates();
  EXPECT_FALSE(Checked("CheckLumet2"));
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_TRUE(TimersRest());
}

TEST_F(LumetSession, StartShowsEachSettingBeforeItReadsTheNext) {
  Set(kFlags, 0x0201);
  Set(kFilter, 77);
  Set(kStoredCommunication, 0x0309);
  Set(kMeasureSetup, 0x3723);
  StartUntilRequest(3);
  EXPECT_TRUE(Checked("CheckLumet2"));
  EXPECT_EQ(ListIndex("cbCombIngressi"), 2);
  EXPECT_EQ(Text("FilterLumet"), "1");
  ASSERT_TRUE(RunUntil([this] { return module.Log().back() == "reads 40085"; }));
  EXPECT_EQ(Text("FilterLumet"), "77");
  EXPECT_EQ(Text("AddressLumet"), "1");
  ASSERT_TRUE(RunUntil([this] { return module.Log().back() == "reads 40018"; }));
  EXPECT_EQ(Text("AddressLumet"), "9");
  EXPECT_EQ(Text("BaudLumet"), "38400");
  EXPECT_EQ(ListIndex("cbIngresso(0)"), 0);
  EXPECT_EQ(Text("FirmwLumet"), "Firmware rel:");
  EXPECT_EQ(State().StartComm, state::kFalse);
}

TEST_F(LumetSession, StartHasShownAllSettingsBeforeTheFirstPoll) {
  State().ReadStep = 5;
  State().RunKind = 77;
  Set(kMeasureSetup, 0x3723);
  Set(kStates, 0x0001);
  StartUntilRequest(6);
  EXPECT_EQ(ListIndex("cbIngresso(0)"), 2);
  EXPECT_EQ(ListIndex("cbTipoMisura(0)"), 2);
  EXPECT_EQ(ListIndex("cbIngresso(1)"), 6);
  EXPECT_EQ(ListIndex("cbTipoMisura(1)"), 3);
  EXPECT_EQ(Text("FirmwLumet"), "Firmware rel:  2");
  EXPECT_TRUE(Playing("MediaPlayer1"));
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_EQ(Picture("StatoIN(0)"), 1);
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(Enabled("StartLumet"));
  EXPECT_TRUE(Enabled("MDIForm1.labLumet"));
  EXPECT_TRUE(Hourglass());
}

TEST_F(LumetSession, StartHasDoneAllWhenItEnds) {
  Set(kStates, 0x0201);
  Set(kCounter1 + 3, 1234);
  Set(kTotal9, 99);
  Set(kOverflows, 0x03FF);
  Click("StartLumet");
  EXPECT_EQ(Picture("StatoIN(0)"), 2);
  EXPECT_EQ(Picture("StatoIN(9)"), 2);
  EXPECT_EQ(Text("TotIN(3)"), "1234");
  EXPECT_EQ(Text("TotIN(8)"), "0") << "of the second step";
  EXPECT_EQ(BackColor("OverFlowIN(0)"), 64) << "of the second step";
  EXPECT_EQ(State().PollRegister.Number(), 40011);
  EXPECT_EQ(State().PollCount, 9);
  EXPECT_TRUE(TimersRun());
  EXPECT_FALSE(Enabled("TimerIngranaggi"));
  EXPECT_FALSE(Enabled("TimerControllo"));
  EXPECT_EQ(State().RunKind, 1);
  EXPECT_FALSE(Enabled("StartLumet"));
  EXPECT_TRUE(Enabled("StopLumet"));
  for (const char* name :
       {"labLumet", "mnuLumet", "LabHome", "LabPCSetup", "buttCheckDevice", "cbSelectDevice", "mnuCheckconnection"}) {
    EXPECT_FALSE(Enabled(std::string("MDIForm1.") + name)) << name;
  }
  EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), "Connected to Lumet , COM1,9600,n,8,1  Module Address:1");
  EXPECT_EQ(Text("MessageLumet"), "OK");
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
}

TEST_F(LumetSession, StartTellsTheLineOfItsOwnBusInPanel2) {
  MemoryLine otherLine(scheduler);
  MemoryModule otherModule(scheduler, otherLine, 77);
  otherModule.Line = {19200, bus::Parity::kEven};
  otherModule[kIdentity] = 0x0A02;
  ports.Connect(3, otherLine);
  State().PCPort = 3;
  State().PCSettings = "19200,e,8,1";
  State().ModuleAddress = 77;
  Click("StartLumet");
  ASSERT_TRUE(InSession());
  EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), "Connected to Lumet , COM3,19200,e,8,1  Module Address:77");
  Click("StopLumet");
}

TEST_F(LumetSession, StartShowsTheReleaseWithItsLeadingBlank) {
  for (const int release : {0, 2, 12, 255}) {
    SetRelease(release);
    StartSession();
    EXPECT_EQ(Text("FirmwLumet"), "Firmware rel:  " + std::to_string(release));
    Click("StopLumet");
  }
}

TEST_F(LumetSession, StartRefusesAnotherModule) {
  for (const int identity : {0x0902, 0x0B02, 0x8A02, 0x020A, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    module.ForgetLog();
    Click("StartLumet");
    EXPECT_THAT(BoxInFront(), IsBox(kNotALumet, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_EQ(Text("FirmwLumet"), "Firmware rel:");
    EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), "");
    EXPECT_FALSE(Playing("MediaPlayer1"));
    ExpectFiveRates();
    ExpectOffline();
  }
  SetRelease(2);
  StartSession();
}

TEST_F(LumetSession, StartRefusesASilentModule) {
  module.Always(ModuleFault::Unheard());
  Click("StartLumet");
  EXPECT_THAT(BoxInFront(), IsBox(kNotALumet, view::Icon::kCritical));
  AnswerOk();
  ExpectOffline();
}

TEST_F(LumetSession, StartGoesOnWhenItsReadsAreRefused) {
  StartUntilRequest(1);
  for (int i = 0; i < 3; ++i) module.Next(ModuleFault::Exception(2));  // flags, measures, first block
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(NothingInFront());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageLumet"), "OK");
}

TEST_F(LumetSession, StartIsUndoneByAStopDuringItsFirstPoll) {
  StartUntilRequest(6);
  Click("StopLumet");
  RunUntilIdle();
  EXPECT_FALSE(Playing("MediaPlayer1"));
  ExpectOffline();
  StartSession();
}

TEST_F(LumetSession, StopDoesNothingBeforeTheSessionStands) {
  StartUntilRequest(3);
  Click("StopLumet");
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(PortOpen());
}

// While it runs.

TEST_F(LumetSession, LeavesAllThatCanBeSetEnabled) {
  Set(kFlags, 0x0008);
  for (const bool session : {true, false}) {
    if (session) {
      StartSession();
    } else {
      Click("StopLumet");
    }
    for (const char* name :
         {"FilterLumet", "AddressLumet", "BaudLumet", "WEEPLumet", "ResetLumet", "cbCombIngressi", "cbIngresso(0)",
          "cbIngresso(1)", "cbTipoMisura(0)", "cbTipoMisura(1)", "CheckLumet2", "CheckLumet3", "CheckLumet4",
          "CheckLumet5", "CheckLumet6", "OptionLumet1", "OptionLumet2"}) {
      EXPECT_TRUE(Enabled(name)) << name << ' ' << session;
    }
  }
}

TEST_F(LumetSession, ShowsItsFastLabelAllTheTime) {
  EXPECT_TRUE(Visible("LabelFASTLumet"));
  Set(kFlags, 0x0080);
  StartSession();
  RunThroughBothSteps();
  EXPECT_TRUE(Visible("LabelFASTLumet"));
  Set(kFlags, 0);
  Click("StopLumet");
  StartSession();
  EXPECT_TRUE(Visible("LabelFASTLumet"));
}

TEST_F(LumetSession, KeepsItsPageOpen) {
  StartSession();
  ClosePage();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(Page().Name(), "frmLumet");
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
}

// Stop.

TEST_F(LumetSession, StopTakesAllDownAndClearsFirmwareAndMessage) {
  StartSession();
  RunThroughBothSteps();
  Click("StopLumet");
  EXPECT_FALSE(Playing("MediaPlayer1"));
  EXPECT_EQ(Text("FirmwLumet"), "Firmware rel: ");
  EXPECT_EQ(Text("MessageLumet"), "");
  ExpectOffline();
}

TEST_F(LumetSession, StopClearsTheMessageOfAPollThatWasUnderWay) {
  StartSession();
  RunIntoAPoll();
  Click("StopLumet");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageLumet"), "");
  EXPECT_EQ(Text("FirmwLumet"), "Firmware rel: ");
}

TEST_F(LumetSession, StopLeavesWhatWasShown) {
  Set(kStates, 0x0011);
  Set(kCounter1, 4321);
  Set(kTotal9, 77);
  Set(kOverflows, 0x0200);
  StartSession();
  RunThroughBothSteps();
  Click("StopLumet");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Picture("StatoIN(4)"), 2);
  EXPECT_EQ(Text("TotIN(0)"), "4321");
  EXPECT_EQ(Text("TotIN(8)"), "77");
  EXPECT_EQ(BackColor("OverFlowIN(9)"), 255);
}

TEST_F(LumetSession, BeginsWithTheFirstStepWhereverTheLastOneEnded) {
  for (const int after : {20, 210, 300, 410, 500}) {
    SCOPED_TRACE(after);
    Set(kCounter1, after);
    module.ForgetLog();
    Click("StartLumet");
    EXPECT_EQ(module.Log().back(), kLumetFirstPoll);
    EXPECT_EQ(Text("TotIN(0)"), std::to_string(after));
    EXPECT_EQ(State().PollRegister.Number(), 40011);
    Run(core::milliseconds(after));
    Click("StopLumet");
  }
}

// The firmware's release.

class LumetFirmware : public LumetFixture {
 protected:
  /// A rate code that no list has, so that a visit leaves the selection.
  void LetTheModuleTellNoRate() { Set(kStoredCommunication, 0x0501); }
};

TEST_F(LumetFirmware, HasSevenRatesFrom2OnAndNoNote) {
  for (const int release : {2, 3, 255}) {
    SCOPED_TRACE(release);
    Visit(release);
    ExpectSevenRates();
    EXPECT_EQ(Text("MDIForm1.StatusBar1(1)"), "");
  }
}

TEST_F(LumetFirmware, HasFiveRatesBelow2AndTheNote) {
  for (const int release : {0, 1}) {
    SCOPED_TRACE(release);
    Visit(2);
    Visit(release);
    ExpectFiveRates();
    EXPECT_EQ(Text("MDIForm1.StatusBar1(1)"), kLumetOldFirmware);
  }
}

TEST_F(LumetFirmware, LeavesTheNoteOfAnOlderModuleForTheNextOne) {
  Visit(1);
  Visit(2);
  EXPECT_EQ(Text("MDIForm1.StatusBar1(1)"), kLumetOldFirmware);
}

TEST_F(LumetFirmware, KeepsItsRatesWhenTheReleaseIsTheSame) {
  for (int i = 0; i < 3; ++i) Visit(2);
  ExpectSevenRates();
  for (int i = 0; i < 3; ++i) Visit(1);
  ExpectFiveRates();
}

TEST_F(LumetFirmware, KeepsTheSelectedCodeWhenTheListGrows) {
  LetTheModuleTellNoRate();
  for (int position = 0; position < 5; ++position) {
    SCOPED_TRACE(position);
    Visit(1);
    Choose("BaudLumet", position);
    Visit(2);
    EXPECT_EQ(ListIndex("BaudLumet"), position + 2);
  }
}

TEST_F(LumetFirmware, KeepsTheSelectedPositionWhenTheListShrinks) {
  LetTheModuleTellNoRate();
  for (int position = 0; position < 5; ++position) {
    SCOPED_TRACE(position);
    Visit(2);
    Choose("BaudLumet", position);
    Visit(1);
    EXPECT_EQ(ListIndex("BaudLumet"), position);
  }
}

TEST_F(LumetFirmware, SelectsNothingBeyondItsListWhenTheListShrinks) {
  LetTheModuleTellNoRate();
  for (int position = 5; position < 7; ++position) {
    SCOPED_TRACE(position);
    Visit(2);
    Choose("BaudLumet", position);
    Visit(1);
    ExpectFiveRates();
    EXPECT_LT(ListIndex("BaudLumet"), 5);
  }
}

TEST_F(LumetFirmware, Below2DisablesFourBoxes) {
  for (const int release : {0, 1}) {
    SCOPED_TRACE(release);
    Visit(2);
    SetRelease(release);
    StartSession();
    RunThroughBothSteps();
    for (const char* name : {"CheckLumet3", "CheckLumet4", "CheckLumet5", "CheckLumet6"}) {
      EXPECT_FALSE(Enabled(name)) << name;
    }
    EXPECT_TRUE(Enabled("CheckLumet2"));
    Click("StopLumet");
  }
}

TEST_F(LumetFirmware, From2OnEnablesThemAgain) {
  for (const int release : {2, 255}) {
    SCOPED_TRACE(release);
    Visit(1);
    Visit(release);
    for (const char* name : {"CheckLumet3", "CheckLumet4", "CheckLumet5", "CheckLumet6"}) {
      EXPECT_TRUE(Enabled(name)) << name;
    }
  }
}

TEST_F(LumetFirmware, LetsTheParityBitHaveTheLastWordOnTheOptions) {
  for (const int release : {1, 2}) {
    SCOPED_TRACE(release);
    Set(kFlags, 0x0008);
    Visit(release);
    EXPECT_TRUE(Enabled("OptionLumet1"));
    EXPECT_TRUE(Enabled("OptionLumet2"));
    Set(kFlags, 0);
    Visit(release);
    EXPECT_FALSE(Enabled("OptionLumet1"));
    EXPECT_FALSE(Enabled("OptionLumet2"));
  }
}

TEST_F(LumetFirmware, HasTheLastWordOnTheOddOptionAloneWhenTheFlagsAreNotRead) {
  Set(kFlags, 0x0008);
  Visit(2);
  SetRelease(1);
  StartUntilRequest(1);
  module.Next(ModuleFault::Exception(4));
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_TRUE(Enabled("OptionLumet1"));
  EXPECT_FALSE(Enabled("OptionLumet2"));
}

TEST_F(LumetFirmware, IsNotCheckedForAModuleOfAnotherModel) {
  Set(kIdentity, 0x0201);
  Click("StartLumet");
  AnswerOk();
  ExpectFiveRates();
  EXPECT_TRUE(Enabled("CheckLumet6"));
  EXPECT_EQ(Text("MDIForm1.StatusBar1(1)"), "");
}

}  // namespace
}  // namespace tarvo::test
