#include "support/cobin_fixture.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

class CobinSession : public CobinFixture {
 protected:
  void ExpectButtons(bool enabled) const {
    for (int i = 0; i < kOutputCount; ++i) {
      EXPECT_EQ(Enabled(Out(i)), enabled) << Out(i);
      EXPECT_EQ(Enabled(Safe(i)), enabled) << Safe(i);
    }
  }
};

// Start, in the order that is told.

TEST_F(CobinSession, StartReadsIdentityBlockAndStoredCommunication) {
  Click("StartCobin");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", kCobinPoll, "reads 40070"));
}

TEST_F(CobinSession, StartHasSetThePollBeforeTheIdentityIsRead) {
  State().RunKind = 77;
  ClickAndGoOn("StartCobin");
  EXPECT_TRUE(Hourglass());
  EXPECT_TRUE(PortOpen());
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 5);
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_EQ(Text("FirmwCobin"), "Firmware rel:");
  EXPECT_THAT(List("BaudCobin"), SizeIs(5));
  EXPECT_FALSE(Playing("MediaPlayer1"));
  ExpectButtons(false);
}

TEST_F(CobinSession, StartHasCheckedTheFirmwareBeforeTheFirstBlock) {
  State().ReadStep = 5;
  StartUntilRequest(2);
  EXPECT_THAT(List("BaudCobin"), SizeIs(7));
  EXPECT_TRUE(Playing("MediaPlayer1"));
  EXPECT_EQ(Text("FirmwCobin"), "Firmware rel:  3");
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_TRUE(TimersRest());
  ExpectButtons(false);
}

TEST_F(CobinSession, StartHasPaintedTheBlockBeforeItReadsTheStoredCommunication) {
  Set(kOutputs, 0x01);
  Set(kSafeStates, 0x02);
  Set(kSafeTime, 123);
  Set(kFlags, 0x0080);
  Set(kStoredCommunication, 0x0309);
  State().RunKind = 77;
  StartUntilRequest(3);
  EXPECT_EQ(Picture(Out(0)), 2);
  EXPECT_EQ(Picture(Safe(1)), 2);
  EXPECT_EQ(Text("SafetimeCobin"), "123");
  EXPECT_TRUE(Checked("CheckCobin1"));
  EXPECT_EQ(Text("AddressCobin"), "1");
  EXPECT_TRUE(TimersRest());
  EXPECT_EQ(State().RunKind, 77);
  ExpectButtons(false);
  EXPECT_TRUE(Enabled("StartCobin"));
  EXPECT_TRUE(Enabled("MDIForm1.labCobin"));
  EXPECT_TRUE(Hourglass());
}

TEST_F(CobinSession, StartHasDoneAllWhenItEnds) {
  Click("StartCobin");
  EXPECT_TRUE(TimersRun());
  EXPECT_EQ(State().RunKind, 2);
  ExpectButtons(true);
  EXPECT_FALSE(Enabled("StartCobin"));
  EXPECT_TRUE(Enabled("StopCobin"));
  EXPECT_FALSE(Enabled("MDIForm1.labCobin"));
  EXPECT_FALSE(Enabled("MDIForm1.MenuCobin"));
  EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), "Connected to Cobin , COM1,9600,n,8,1  Module Address:1");
  EXPECT_EQ(Text("MessageCobin"), "OK");
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
}

TEST_F(CobinSession, StartTellsTheLineOfItsOwnBusInPanel2) {
  MemoryLine otherLine(scheduler);
  MemoryModule otherModule(scheduler, otherLine, 77);
  otherModule.Line = {19200, bus::Parity::kEven};
  otherModule[kIdentity] = 0x0203;
  ports.Connect(3, otherLine);
  State().PCPort = 3;
  State().PCSettings = "19200,e,8,1";
  State().ModuleAddress = 77;
  Click("StartCobin");
  ASSERT_TRUE(InSession());
  EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), "Connected to Cobin , COM3,19200,e,8,1  Module Address:77");
  Click("StopCobin");
}

TEST_F(CobinSession, StartShowsTheReleaseWithItsLeadingBlank) {
  for (const int release : {0, 2, 12, 255}) {
    SetRelease(release);
    StartSession();
    EXPECT_EQ(Text("FirmwCobin"), "Firmware rel:  " + std::to_string(release));
    Click("StopCobin");
  }
}

TEST_F(CobinSession, StartRefusesAnotherModule) {
  for (const int identity : {0x0103, 0x0303, 0x8203, 0x0302, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    module.ForgetLog();
    Click("StartCobin");
    EXPECT_THAT(BoxInFront(), IsBox(kNotACobin, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(Playing("MediaPlayer1"));
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(Enabled("StartCobin"));
    EXPECT_TRUE(Enabled("MDIForm1.labCobin"));
    EXPECT_EQ(Text("FirmwCobin"), "Firmware rel:");
    EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), "");
    ExpectButtons(false);
  }
  Set(kIdentity, 0x0203);
  StartSession();
}

TEST_F(CobinSession, StartRefusesASilentModule) {
  module.Always(ModuleFault::Unheard());
  Click("StartCobin");
  EXPECT_THAT(BoxInFront(), IsBox(kNotACobin, view::Icon::kCritical));
  AnswerOk();
  EXPECT_FALSE(PortOpen());
}

// While it runs.

TEST_F(CobinSession, PollsItsFiveRegistersAndNothingElse) {
  StartSession();
  Run(std::chrono::seconds(1));
  const std::vector<std::string> log = module.TakeLog();
  EXPECT_THAT(log, SizeIs(20));
  EXPECT_THAT(log, Each(std::string(kCobinPoll)));
}

TEST_F(CobinSession, KeepsItsPageOpen) {
  StartSession();
  ClosePage();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(Page().Name(), "Cobin");
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
}

// Stop.

TEST_F(CobinSession, StopTakesAllDownAndTurnsTheButtonsOff) {
  StartSession();
  Click("StopCobin");
  EXPECT_FALSE(InSession());
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(Enabled("StartCobin"));
  EXPECT_TRUE(Enabled("MDIForm1.labCobin"));
  EXPECT_FALSE(Playing("MediaPlayer1"));
  ExpectButtons(false);
}

TEST_F(CobinSession, StopLeavesWhatWasShown) {
  Set(kOutputs, 0x11);
  StartSession();
  Click("StopCobin");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Picture(Out(0)), 2);
  EXPECT_EQ(Picture(Out(4)), 2);
  EXPECT_EQ(Text("FirmwCobin"), "Firmware rel:  3");
}

TEST_F(CobinSession, CanBeStartedAgain) {
  for (int i = 0; i < 3; ++i) {
    StartSession();
    ExpectButtons(true);
    RunThroughADecode();
    EXPECT_EQ(Text("MessageCobin"), "OK");
    Click("StopCobin");
  }
}

// The firmware's release.

class CobinFirmware : public CobinSession {
 protected:
  static constexpr char kNote[] = "FW version :1, Delay 12ms and Parity checkboxes   are disabled";

  /// A session on a module of that release, ended again.
  void Visit(int release) {
    SetRelease(release);
    StartSession();
    Click("StopCobin");
  }
  /// A rate code that no list has, so that a visit's first block leaves the selection.
  void LetTheModuleTellNoRate() { Set(kStoredCommunication, 0x0501); }

  void ExpectFiveRates() {
    EXPECT_THAT(List("BaudCobin"), ElementsAre("4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("BaudCobin"), ElementsAre(0, 1, 2, 3, 4));
  }
  void ExpectSevenRates() {
    EXPECT_THAT(List("BaudCobin"), ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("BaudCobin"), ElementsAre(6, 7, 0, 1, 2, 3, 4));
  }
};

TEST_F(CobinFirmware, BeginsWithFiveRates) {
  ExpectFiveRates();
}

TEST_F(CobinFirmware, HasSevenRatesAbove2AndNoNote) {
  for (const int release : {3, 4, 255}) {
    SCOPED_TRACE(release);
    Visit(release);
    ExpectSevenRates();
    EXPECT_EQ(Text("MDIForm1.StatusBar1(1)"), "");
  }
}

TEST_F(CobinFirmware, HasFiveRatesUpTo2AndTheNote) {
  for (const int release : {0, 1, 2}) {
    SCOPED_TRACE(release);
    Visit(3);
    Visit(release);
    ExpectFiveRates();
    EXPECT_EQ(Text("MDIForm1.StatusBar1(1)"), kNote);
  }
}

TEST_F(CobinFirmware, LeavesTheNoteOfAnOlderModuleForTheNextOne) {
  Visit(2);
  Visit(3);
  EXPECT_EQ(Text("MDIForm1.StatusBar1(1)"), kNote);
}

TEST_F(CobinFirmware, KeepsItsRatesWhenTheReleaseIsTheSame) {
  for (int i = 0; i < 3; ++i) Visit(3);
  ExpectSevenRates();
  for (int i = 0; i < 3; ++i) Visit(2);
  ExpectFiveRates();
}

TEST_F(CobinFirmware, KeepsTheSelectedCodeWhenTheListGrows) {
  LetTheModuleTellNoRate();
  for (int position = 0; position < 5; ++position) {
    SCOPED_TRACE(position);
    Visit(2);
    Choose("BaudCobin", position);
    Visit(3);
    EXPECT_EQ(ListIndex("BaudCobin"), position + 2);
  }
}

TEST_F(CobinFirmware, KeepsTheSelectedPositionWhenTheListShrinks) {
  LetTheModuleTellNoRate();
  for (int position = 0; position < 5; ++position) {
    SCOPED_TRACE(position);
    Visit(3);
    Choose("BaudCobin", position);
    Visit(2);
    EXPECT_EQ(ListIndex("BaudCobin"), position);
  }
}

TEST_F(CobinFirmware, SelectsNothingBeyondItsListWhenTheListShrinks) {
  LetTheModuleTellNoRate();
  for (int position = 5; position < 7; ++position) {
    SCOPED_TRACE(position);
    Visit(3);
    Choose("BaudCobin", position);
    Visit(2);
    ExpectFiveRates();
    EXPECT_LT(ListIndex("BaudCobin"), 5);
  }
}

TEST_F(CobinFirmware, UpTo2DisablesDelayAndParity) {
  for (const int release : {0, 1, 2}) {
    SCOPED_TRACE(release);
    Visit(3);
    SetRelease(release);
    StartSession();
    RunThroughADecode();
    for (const char* name : {"CheckCobin4", "CheckCobin5", "OptionCobin1", "OptionCobin2"}) {
      EXPECT_FALSE(Enabled(name)) << name;
    }
    for (const char* name : {"CheckCobin1", "CheckCobin2", "CheckCobin3"}) EXPECT_TRUE(Enabled(name)) << name;
    Click("StopCobin");
  }
}

TEST_F(CobinFirmware, Above2EnablesDelayAndParityAgain) {
  Set(kFlags, 0x0008);
  for (const int release : {3, 255}) {
    SCOPED_TRACE(release);
    Visit(1);
    SetRelease(release);
    StartSession();
    for (const char* name : {"CheckCobin4", "CheckCobin5", "OptionCobin1", "OptionCobin2"}) {
      EXPECT_TRUE(Enabled(name)) << name;
    }
    Click("StopCobin");
  }
}

TEST_F(CobinFirmware, LetsTheParityBitHaveTheLastWordOnTheOptions) {
  Set(kFlags, 0x0008);
  SetRelease(1);
  StartSession();
  EXPECT_TRUE(Enabled("OptionCobin1"));
  EXPECT_TRUE(Enabled("OptionCobin2"));
  EXPECT_FALSE(Enabled("CheckCobin5"));
  Click("StopCobin");
  Set(kFlags, 0);
  SetRelease(3);
  StartSession();
  EXPECT_FALSE(Enabled("OptionCobin1"));
  EXPECT_FALSE(Enabled("OptionCobin2"));
}

}  // namespace
}  // namespace tarvo::test
