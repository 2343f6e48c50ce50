// Start and Stop of the Ferrun page, and its firmware gates.

#include "support/ferrun_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class FerrunSession : public FerrunFixture {};

// Start, in the order that is told.

TEST_F(FerrunSession, StartReadsIdentityBothBlocksAndWhatOnlyTheImageHolds) {
  Click("StartFerrun");
  EXPECT_THAT(module.TakeLog(),
              ElementsAre("reads 40001", kFerrunFirstBlock, "reads 40073", kFerrunPoll, "reads 40083"));
}

TEST_F(FerrunSession, StartHasSetTheFirstPollBeforeTheIdentityIsRead) {
  State().RunKind = 77;
  StartUntilRequest(1);
  EXPECT_TRUE(Hourglass());
  EXPECT_TRUE(PortOpen());
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 10);
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_EQ(Panel2(), "");
  EXPECT_THAT(List("comboBaudFerrun"), SizeIs(5));
}

TEST_F(FerrunSession, StartHasToldLineAndFirmwareBeforeTheFirstBlock) {
  State().ReadStep = 5;
  StartUntilRequest(2);
  EXPECT_EQ(Panel2(), "Connected to Ferrun, COM1,9600,n,8,1  Module Address:1");
  EXPECT_THAT(List("comboBaudFerrun"), SizeIs(7));
  EXPECT_EQ(Text("FirmwFerrun"), "Firmware rel: 3");
  EXPECT_TRUE(Playing("MediaPlayer1"));
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_TRUE(TimersRest());
}

TEST_F(FerrunSession, StartHasPaintedTheFirstBlockBeforeItReadsTheStoredAddress) {
  Set(kInput, 0x0203);
  Set(kMeasureFull, 4321);
  Set(kSafeTime, 123);
  Set(kFlags, 0x0100);
  Set(kStoredCommunication, 0x0309);
  StartUntilRequest(3);
  EXPECT_EQ(ListIndex("comboInputTypeFerrun"), 1);
  EXPECT_EQ(ListIndex("comboInputFilterFerrun"), 3);
  EXPECT_EQ(Text(Value(0)), "4321");
  EXPECT_EQ(Text("labSafetimeFerrun"), "123");
  EXPECT_TRUE(Checked("CheckSquareRoot"));
  EXPECT_EQ(Text("labAddressFerrun"), "1");
}

TEST_F(FerrunSession, StartHasPaintedTheSecondBlockBeforeItReadsTheStoredOutput) {
  Set(kSetpoint, 4000);
  Set(kOutput, 1500);
  Set(kMeasured, 2500);
  Set(kStoredCommunication, 0x0309);
  Set(kStoredOutput, 99);
  State().RunKind = 77;
  StartUntilRequest(5);
  EXPECT_EQ(Text("labAddressFerrun"), "9");
  EXPECT_EQ(State().PollRegister.Number(), 40011);
  EXPECT_EQ(State().PollCount, 12);
  EXPECT_EQ(Text(Value(6)), "4000");
  EXPECT_EQ(Text("OutputFerrun"), "1500");
  EXPECT_EQ(Text("InputScaledFerrun"), "2500");
  EXPECT_EQ(Text(Value(13)), "0");
  EXPECT_TRUE(TimersRest());
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_TRUE(Hourglass());
}

TEST_F(FerrunSession, StartHasDoneAllWhenItEnds) {
  Set(kStoredOutput, 99);
  Click("StartFerrun");
  EXPECT_TRUE(TimersRun());
  EXPECT_EQ(State().RunKind, 4);
  EXPECT_EQ(State().PollRegister.Number(), 40011);
  EXPECT_EQ(State().PollCount, 12);
  EXPECT_EQ(Text(Value(13)), "99");
  EXPECT_FALSE(Enabled("StartFerrun"));
  EXPECT_FALSE(Enabled("MDIForm1.labFerrun"));
  EXPECT_FALSE(Enabled("MDIForm1.MenuFerrun"));
  EXPECT_EQ(Text("MessageFerrun"), "OK");
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
}

TEST_F(FerrunSession, StartTellsTheLineOfItsOwnBus) {
  MemoryLine otherLine(scheduler);
  MemoryModule otherModule(scheduler, otherLine, 77);
  otherModule.Line = {19200, bus::Parity::kEven};
  MakeFerrun(otherModule);
  ports.Connect(3, otherLine);
  State().PCPort = 3;
  State().PCSettings = "19200,e,8,1";
  State().ModuleAddress = 77;
  Click("StartFerrun");
  ASSERT_TRUE(InSession());
  EXPECT_EQ(Panel2(), "Connected to Ferrun, COM3,19200,e,8,1  Module Address:77");
  Click("StopFerrun");
}

TEST_F(FerrunSession, StartRefusesAnotherModule) {
  for (const int identity : {0x0303, 0x0503, 0x8403, 0x0304, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    module.ForgetLog();
    Click("StartFerrun");
    EXPECT_THAT(BoxInFront(), IsBox(kNotAFerrun, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(Enabled("StartFerrun"));
    EXPECT_TRUE(Enabled("MDIForm1.labFerrun"));
    EXPECT_EQ(Panel2(), "");
  }
  SetRelease(3);
  StartSession();
}

TEST_F(FerrunSession, StartRefusesASilentModuleAndKeepsTheView) {
  Edit("labSafetimeFerrun", "77");
  module.Always(ModuleFault::Unheard());
  Click("StartFerrun");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAFerrun, view::Icon::kCritical));
  AnswerOk();
  EXPECT_EQ(Text("labSafetimeFerrun"), "77");
  module.Always(ModuleFault::None());
  StartSession();
}

TEST_F(FerrunSession, PollsTheSecondBlockOnly) {
  StartSession();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), testing::AllOf(SizeIs(20), testing::Each(std::string(kFerrunPoll))));
}

TEST_F(FerrunSession, FillsTwelveElementsWithTheSecondBlock) {
  for (std::size_t i = 12; i < 20; ++i) SetPolled(i, 0x7777);
  for (int i = 0; i < 12; ++i) Set(kFlags + i, 0x4000 + i);
  StartSession();
  for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(Polled(i), 0x4000 + static_cast<int>(i)) << i;
  for (std::size_t i = 12; i < 20; ++i) EXPECT_EQ(Polled(i), 0x7777) << i;
}

TEST_F(FerrunSession, ShowsAFailedPollUntilTheNextGoodOne) {
  StartSession();
  module.Always(ModuleFault::Unheard());
  Run(std::chrono::seconds(3));
  EXPECT_EQ(Text("MessageFerrun"), kPollFailed);
  module.Always(ModuleFault::None());
  Run(std::chrono::seconds(3));
  EXPECT_EQ(Text("MessageFerrun"), "OK");
  EXPECT_TRUE(InSession());
}

TEST_F(FerrunSession, StopTakesDownWhatStartHasSetUp) {
  StartSession();
  Click("StopFerrun");
  EXPECT_FALSE(InSession());
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(Enabled("StartFerrun"));
  EXPECT_TRUE(Enabled("MDIForm1.labFerrun"));
  EXPECT_FALSE(Playing("MediaPlayer1"));
  module.ForgetLog();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(FerrunSession, StartsAgainWithTheFirstBlock) {
  StartSession();
  Click("StopFerrun");
  module.ForgetLog();
  Click("StartFerrun");
  EXPECT_THAT(module.TakeLog(),
              ElementsAre("reads 40001", kFerrunFirstBlock, "reads 40073", kFerrunPoll, "reads 40083"));
}

TEST_F(FerrunSession, DoesNotClose) {
  StartSession();
  ClosePage();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_TRUE(InSession());
}

// Firmware.

class FerrunFirmware : public FerrunFixture {
 protected:
  /// A session on a module of that release, ended again.
  void Visit(int release) {
    SetRelease(release);
    StartSession();
    Click("StopFerrun");
  }
};

TEST_F(FerrunFirmware, HasSevenRatesFromRelease3On) {
  for (const int release : {3, 4, 255}) {
    SCOPED_TRACE(release);
    Visit(2);
    Visit(release);
    EXPECT_THAT(List("comboBaudFerrun"), ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("comboBaudFerrun"), ElementsAre(6, 7, 0, 1, 2, 3, 4));
    EXPECT_EQ(Text("FirmwFerrun"), "Firmware rel: " + std::to_string(release));
  }
}

TEST_F(FerrunFirmware, HasFiveRatesBelowRelease3) {
  for (const int release : {1, 2}) {
    SCOPED_TRACE(release);
    Visit(3);
    Visit(release);
    EXPECT_THAT(List("comboBaudFerrun"), ElementsAre("4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("comboBaudFerrun"), ElementsAre(0, 1, 2, 3, 4));
  }
}

TEST_F(FerrunFirmware, KeepsTheSelectedCodeWhenTheListGrowsAndThePositionWhenItShrinks) {
  Set(kStoredCommunication, 0x0501);  // a code that no list has
  Visit(2);
  Choose("comboBaudFerrun", 3);
  Visit(3);
  EXPECT_EQ(Text("comboBaudFerrun"), "38400");
  Choose("comboBaudFerrun", 1);
  Visit(2);
  EXPECT_EQ(ListIndex("comboBaudFerrun"), 1);
}

TEST_F(FerrunFirmware, EnablesDelayAndParityFromRelease2On) {
  for (const int release : {2, 3, 255}) {
    Visit(1);
    Visit(release);
    EXPECT_TRUE(Enabled("CheckDelay")) << release;
    EXPECT_TRUE(Enabled("checkParity")) << release;
  }
}

TEST_F(FerrunFirmware, DisablesDelayAndParityOnRelease1AndTellsSo) {
  Visit(3);
  EXPECT_EQ(Panel1(), "");
  SetRelease(1);
  StartSession();
  RunThroughADecode();
  EXPECT_FALSE(Enabled("CheckDelay"));
  EXPECT_FALSE(Enabled("checkParity"));
  EXPECT_EQ(Panel1(), "FW Version = 1, Delay 12ms and Parity checkboxes  are disabled");
  for (const FerrunFlag& flag : kFerrunFlags) {
    if (flag.mask <= 0x0008) continue;
    EXPECT_TRUE(Enabled(flag.box)) << flag.box;
  }
}

TEST_F(FerrunFirmware, LetsTheParityBitDecideAboutTheOptions) {
  Set(kFlags, 0x0008);
  SetRelease(1);
  StartSession();
  EXPECT_TRUE(Enabled("OptionEven"));
  EXPECT_TRUE(Enabled("OptionOdd"));
  Click("StopFerrun");
  Set(kFlags, 0);
  SetRelease(3);
  StartSession();
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
}

}  // namespace
}  // namespace tarvo::test
