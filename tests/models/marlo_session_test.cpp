// Start, polls and Stop of the Marlo page.

#include "support/marlo_fixture.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::SizeIs;

class MarloSession : public MarloFixture {};

// Start, in the order that is told.

TEST_F(MarloSession, StartReadsIdentityReleaseAndOneBlock) {
  Click("buttStartMarlo");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "reads 40023", kMarloPoll));
}

TEST_F(MarloSession, StartHasSetThePollBeforeTheIdentityIsRead) {
  State().RunKind = 77;
  StartUntilRequest(1);
  EXPECT_TRUE(Hourglass());
  EXPECT_TRUE(PortOpen());
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 8);
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_EQ(Panel2(), "");
}

TEST_F(MarloSession, StartHasTheLinkParametersOfAnyPage) {
  StartSession();
  EXPECT_EQ(Modcom().LinkParamA, 3);
  EXPECT_EQ(Modcom().LinkParamB, 3);
}

TEST_F(MarloSession, StartHasToldTheReleaseBeforeTheFirstPoll) {
  Set(kFirmware, 21);
  State().ReadStep = 5;
  StartUntilRequest(3);
  EXPECT_EQ(Text("labFW"), "Firmware rel: 21");
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(Hourglass());
}

TEST_F(MarloSession, StartShowsWhatItHasPolledAtOnce) {
  Set(kOutputs, 0x0155);
  Set(kDamage, 0x0001);
  Set(kDefaults, 0x0002);
  Set(40006, 0x0004);
  Set(40007, 0x0008);
  Set(40008, 0x0010);
  Set(kSupply, 231);
  Set(kStatus, 0x0042);
  Click("buttStartMarlo");
  EXPECT_EQ(OutputsShown(), 0x0155);
  EXPECT_EQ(RedLamps("shDamage"), 0x0001);
  EXPECT_EQ(RedLamps("shDefault"), 0x0002);
  EXPECT_EQ(RedLamps("shOpen"), 0x0004);
  EXPECT_EQ(RedLamps("shShorted"), 0x0008);
  EXPECT_EQ(RedLamps("shHot"), 0x0010);
  EXPECT_EQ(Text("txtVoltage"), "23.1");
  EXPECT_EQ(RedLamps("shStatus", kStatusLamps), 0x12);
}

TEST_F(MarloSession, StartHasDoneAllWhenItEnds) {
  Click("buttStartMarlo");
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
  EXPECT_EQ(State().RunKind, 2);
  EXPECT_TRUE(Playing("MediaPlayer1"));
  EXPECT_FALSE(Enabled("buttStartMarlo"));
  EXPECT_FALSE(Enabled("MDIForm1.labMarlo"));
  EXPECT_FALSE(Enabled("MDIForm1.mnuMarlo"));
  EXPECT_EQ(Panel2(), "Connected to Marlo , COM1,9600,n,8,1  Module Address:1");
  EXPECT_EQ(Text("MessageMarlo"), "OK");
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
}

TEST_F(MarloSession, StartLeavesTheSettingsToTheUser) {
  StartSession();
  for (const char* name : {"cbBaudMarlo", "labAddressMarlo", "labSafetimeMarlo", "CheckResetTimeout", "CheckFailLed",
                           "ComboFailLed", "txtValTreshold", "txtDelay", "buttWEEPMarlo", "checkParity"}) {
    EXPECT_TRUE(Enabled(name)) << name;
  }
  for (int i = 0; i < kCount; ++i) EXPECT_TRUE(Enabled(Member("checkMask", i))) << i;
}

TEST_F(MarloSession, StartEnablesTheParityOptionsOnlyWithParity) {
  for (const int word : {0x0102, 0x0100, 0x0101}) {
    Set(kAddress, word);
    Reenter();
    StartSession();
    EXPECT_EQ(Enabled("OptionEven"), word != 0x0100) << word;
    EXPECT_EQ(Enabled("OptionOdd"), word != 0x0100) << word;
    Click("buttStopMarlo");
  }
}

TEST_F(MarloSession, StartTellsTheLineOfItsOwnBus) {
  MemoryLine otherLine(scheduler);
  MemoryModule other(scheduler, otherLine, 77);
  other.Line = {19200, bus::Parity::kEven};
  other[kIdentity] = 0x0D00;
  ports.Connect(3, otherLine);
  State().PCPort = 3;
  State().PCSettings = "19200,e,8,1";
  State().ModuleAddress = 77;
  Click("buttStartMarlo");
  ASSERT_TRUE(InSession());
  EXPECT_EQ(Panel2(), "Connected to Marlo , COM3,19200,e,8,1  Module Address:77");
  Click("buttStopMarlo");
}

TEST_F(MarloSession, StartKeepsTheReleaseWhenItsReadFails) {
  Set(kFirmware, 21);
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click("buttStartMarlo");
  EXPECT_TRUE(InSession());
  EXPECT_EQ(Text("labFW"), "Firmware rel: 17");
}

TEST_F(MarloSession, StartRefusesAnotherModule) {
  for (const int identity : {0x0C07, 0x0E07, 0x8D07, 0x070D, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    Click("buttStartMarlo");
    EXPECT_THAT(BoxInFront(), IsBox(kNotAMarlo, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_EQ(Panel2(), "");
    ExpectOffline();
  }
  Set(kIdentity, 0x0D00);
  StartSession();
}

TEST_F(MarloSession, StartRefusesASilentModule) {
  module.Always(ModuleFault::Unheard());
  Click("buttStartMarlo");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAMarlo, view::Icon::kCritical));
  AnswerOk();
  module.Always(ModuleFault::None());
  ExpectOffline();
  StartSession();
}

TEST_F(MarloSession, StartRefusesAPortThatDoesNotOpen) {
  ports.SetFault(1, core::kPermissionDenied);
  Click("buttStartMarlo");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAMarlo, view::Icon::kCritical));
  AnswerOk();
  ExpectOffline();
}

// A page that has not read its module yet.

TEST_F(MarloSession, StartReadsAllWhenTheEntryWasInVain) {
  Set(kSafeTime, 99);
  EnterInVain();
  Click("buttStartMarlo");
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(Reading({"reads 40001", "reads 40023"}, {kMarloPoll})));
  EXPECT_TRUE(InSession());
  EXPECT_EQ(Text("labSafetimeMarlo"), "99");
}

TEST_F(MarloSession, PollsAlsoAfterAnEntryInVain) {
  EnterInVain();
  StartSession();
  EXPECT_TRUE(PortOpen());
  EXPECT_FALSE(Enabled("buttStartMarlo"));
  EXPECT_EQ(Text("MessageMarlo"), "OK");
  Set(kOutputs, 0x0003);
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), testing::AllOf(SizeIs(20), Each(std::string(kMarloPoll))));
  EXPECT_EQ(OutputsShown(), 0x0003);
  EXPECT_EQ(Text("MessageMarlo"), "OK");
  EXPECT_FALSE(Hourglass());
  Click("buttStopMarlo");
  ExpectOffline();
}

TEST_F(MarloSession, StartReadsAllOnlyOnce) {
  EnterInVain();
  StartSession();
  Click("buttStopMarlo");
  module.ForgetLog();
  Click("buttStartMarlo");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "reads 40023", kMarloPoll));
}

TEST_F(MarloSession, StartReadsNothingThatAToggleHasRead) {
  EnterInVain();
  Click(Out(0));
  module.ForgetLog();
  Click("buttStartMarlo");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "reads 40023", kMarloPoll));
}

// Polls.

TEST_F(MarloSession, PollsEightRegistersTwentyTimesASecond) {
  StartSession();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), testing::AllOf(SizeIs(20), Each(std::string(kMarloPoll))));
}

TEST_F(MarloSession, FillsEightElements) {
  for (std::size_t i = 8; i < 20; ++i) State().PollBuffer.at(i) = state::Word(0x7777);
  for (int i = 0; i < 8; ++i) Set(kStatus + i, 0x4000 + i);
  StartSession();
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(Polled(i), 0x4000 + static_cast<int>(i)) << i;
  for (std::size_t i = 8; i < 20; ++i) EXPECT_EQ(Polled(i), 0x7777) << i;
}

TEST_F(MarloSession, ShowsEachOutputAndLampByItsBit) {
  StartSession();
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    const int word = 1 << bit;
    for (int reg = kOutputs; reg <= 40008; ++reg) Set(reg, word);
    RunThroughADecode();
    EXPECT_EQ(OutputsShown(), word & 0x03FF);
    for (const MarloRow& row : kMarloRows) {
      if (row.source == kOpenedMask) continue;
      EXPECT_EQ(RedLamps(row.lamps), word & 0x03FF) << row.lamps;
    }
  }
}

TEST_F(MarloSession, ShowsEachStatusLampByItsBit) {
  StartSession();
  const std::pair<int, int> rows[] = {{0x01, 0x01}, {0x02, 0x02}, {0x04, 0x04},   {0x08, 0x08},  {0x10, 0},
                                      {0x20, 0},    {0x40, 0x10}, {0xFFB0, 0x00}, {0xFFFF, 0x1F}};
  for (const auto& [word, lamps] : rows) {
    Set(kStatus, word);
    RunThroughADecode();
    EXPECT_EQ(RedLamps("shStatus", kStatusLamps), lamps) << word;
  }
}

TEST_F(MarloSession, ShowsTheSupplyInVolts) {
  StartSession();
  for (const auto& [tenths, volts] : {std::pair{238, "23.8"}, std::pair{240, "24"}, std::pair{9, "0.9"}}) {
    Set(kSupply, tenths);
    RunThroughADecode();
    EXPECT_EQ(Text("txtVoltage"), volts);
  }
}

TEST_F(MarloSession, LeavesAloneWhatIsNotPolled) {
  StartSession();
  for (const int number : {kAddress, kBaud, kOptions, kSafeTime, kOpenedMask, kLimits, kFirmware}) Set(number, 0x0202);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("labAddressMarlo"), "1");
  EXPECT_FALSE(Checked("checkParity"));
  EXPECT_EQ(Text("cbBaudMarlo"), "9600");
  EXPECT_EQ(ListIndex("ComboFailLed"), 0);
  EXPECT_EQ(Text("labSafetimeMarlo"), "0");
  EXPECT_EQ(RedLamps("shOpenedMask"), 0x03FF);
  EXPECT_EQ(Text("txtValTreshold"), "18");
  EXPECT_EQ(Text("labFW"), "Firmware rel: 17");
}

TEST_F(MarloSession, ShowsAFailedPollUntilTheNextGoodOne) {
  Set(kOutputs, 0x0021);
  StartSession();
  module.Always(ModuleFault::Unheard());
  Run(std::chrono::seconds(3));
  EXPECT_EQ(Text("MessageMarlo"), kPollFailed);
  EXPECT_EQ(OutputsShown(), 0x0021);
  EXPECT_TRUE(NothingInFront());
  module.Always(ModuleFault::None());
  Run(std::chrono::seconds(3));
  EXPECT_EQ(Text("MessageMarlo"), "OK");
  EXPECT_TRUE(InSession());
}

TEST_F(MarloSession, LivesOnWhenADialogCloses) {
  StartSession();
  Edit("labAddressMarlo", "9");
  Click("labSafetimeMarlo");
  Click("ChangeValue.Cancel");
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(PortOpen());
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), Each(std::string(kMarloPoll)));
  EXPECT_TRUE(TimersRun());
  EXPECT_EQ(Text("MessageMarlo"), "OK");
}

// The end.

TEST_F(MarloSession, StopTakesDownWhatStartHasSetUp) {
  StartSession();
  Click("buttStopMarlo");
  EXPECT_FALSE(Playing("MediaPlayer1"));
  ExpectOffline();
}

TEST_F(MarloSession, StopKeepsWhatIsShown) {
  Set(kOutputs, 0x0021);
  StartSession();
  Edit("labSafetimeMarlo", "55");
  Click("buttStopMarlo");
  EXPECT_EQ(OutputsShown(), 0x0021);
  EXPECT_EQ(Text("labSafetimeMarlo"), "55");
}

TEST_F(MarloSession, StopLetsAPollEndFirst) {
  StartSession();
  RunIntoAPoll();
  Click("buttStopMarlo");
  EXPECT_EQ(Text("MessageMarlo"), "OK");
  ExpectOffline();
}

TEST_F(MarloSession, DoesNotCloseInASession) {
  StartSession();
  ClosePage();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_TRUE(InSession());
  EXPECT_EQ(Page().Name(), "frmMarlo");
}

}  // namespace
}  // namespace tarvo::test
