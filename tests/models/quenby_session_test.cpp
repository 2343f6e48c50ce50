// Session and reset of the Quenby page, what a poll shows, and what the search does with the page.

#include "support/quenby_fixture.h"

namespace tarvo::test {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kReset[] = "Module is Resetted!";
constexpr char kResetAndStopped[] = "Module is Resetted! Comunication Stopped";

/// What Start reads beside its polls.
std::vector<std::string> ReadsOfStart(const std::vector<std::string>& settingsReads) {
  std::vector<std::string> reads = {"reads 40001", "reads 40010"};
  reads.insert(reads.end(), settingsReads.begin(), settingsReads.end());
  return reads;
}

class QuenbySession : public QuenbyFixture {};

// Start.

TEST_F(QuenbySession, ReadsIdentityFirmwareAndAllSettings) {
  Click("buttStart");
  EXPECT_THAT(Exchanges(), ElementsAreArray(ReadsOfStart(SettingsReads())));
}

TEST_F(QuenbySession, OnlyReadsThoughItsListsChange) {
  Set(kFlags, kAllFlags);
  Click("buttStart");
  EXPECT_THAT(Exchanges(), ElementsAreArray(ReadsOfStart(SettingsReads())));
  EXPECT_EQ(FlagsShown(), kAllFlags);
}

TEST_F(QuenbySession, DoesNotPollBeforeTheSettingsAreRead) {
  Click("buttStart");
  const std::vector<std::string> expected = ReadsOfStart(SettingsReads());
  const std::vector<std::string> log = module.TakeLog();
  ASSERT_GE(log.size(), expected.size());
  EXPECT_THAT(std::vector(log.begin(), log.begin() + static_cast<std::ptrdiff_t>(expected.size())),
              ElementsAreArray(expected));
}

TEST_F(QuenbySession, ShowsTheFirmwareAsARelease) {
  Set(kFirmware, 12);
  StartUntilRequest(3);
  EXPECT_EQ(Text("labFW"), "Firmware rel: 12");
}

TEST_F(QuenbySession, ShowsTheFirmwareOnceMoreWithTheSettings) {
  Set(kFirmware, 12);
  const History shown(At("labFW"), "Caption");
  StartSession();
  EXPECT_THAT(shown.Values<std::string>(), ElementsAre("Firmware rel: 12", "FW vers. : 12"));
}

TEST_F(QuenbySession, HasReadTheSettingsWhenItsTimersStart) {
  const History reading(At("TimerLetturaSeriale"), "Enabled");
  const History decoding(At("TimerGestioneLetture"), "Enabled");
  StartUntilRequest(11);
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(Enabled("MDIForm1.LabHome"));
  ASSERT_TRUE(RunUntil([this] { return !Hourglass(); }));
  EXPECT_TRUE(TimersRun());
  EXPECT_THAT(reading.Values<bool>(), ElementsAre(true));
  EXPECT_THAT(decoding.Values<bool>(), ElementsAre(true));
}

TEST_F(QuenbySession, HasDoneAllWhenStartEnds) {
  State().RunKind = 77;
  State().ReadStep = 5;
  Click("buttStart");
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_EQ(State().PollRegister.Number(), 40004);
  EXPECT_EQ(State().PollCount, 4);
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_TRUE(PortOpen());
  EXPECT_FALSE(Enabled("buttStart"));
  EXPECT_TRUE(Enabled("buttStop"));
  for (const char* name :
       {"LabQuenby", "mnuQuenby", "LabHome", "LabPCSetup", "buttCheckDevice", "cbSelectDevice", "mnuCheckconnection"}) {
    EXPECT_FALSE(Enabled(std::string("MDIForm1.") + name)) << name;
  }
  EXPECT_TRUE(Playing("MediaPlayer1"));
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
}

TEST_F(QuenbySession, TellsNoConnectionLineInTheStatusBar) {
  const std::string before = Panel2();
  StartSession();
  EXPECT_EQ(Panel2(), before);
}

TEST_F(QuenbySession, ShowsItsModuleWhenStartEnds) {
  Set(kFlags, 0x0A48);
  Set(kStatus, 0x0002);
  Set(kSafeTime, 99);
  Set(kCommunication, 0x0411);
  SetOutputs(1, 20, 300);
  StartSession();
  EXPECT_EQ(FlagsShown(), 0x0A48);
  EXPECT_FALSE(Checked("CheckError(0)"));
  EXPECT_TRUE(Checked("CheckError(1)"));
  EXPECT_EQ(Text("labTimeout"), "99");
  EXPECT_EQ(Text("labAddress"), "17");
  EXPECT_EQ(Text("cbBaud"), "57600");
  EXPECT_THAT(OutputTexts(), ElementsAre("1", "20", "300"));
}

TEST_F(QuenbySession, LeavesTheDefaultsAtStart) {
  EnterDefault(1, "4321");
  Set(kDefault1 + 1, 77);
  SetOutputs(1, 20, 300);
  StartSession();
  RunThroughADecode();
  EXPECT_THAT(DefaultTexts(), ElementsAre("0", "4321", "0"));
}

TEST_F(QuenbySession, PollsFourRegistersEvery50Milliseconds) {
  StartSession();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), AllOf(SizeIs(20), Each(std::string(kQuenbyPoll))));
  EXPECT_EQ(Message(), "OK");
}

TEST_F(QuenbySession, IsRefusedToAModuleOfAnotherModel) {
  for (const int identity : {0x0D00, 0x0E00, 0x1000, 0x8F00, 0x000F, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    module.ForgetLog();
    Click("buttStart");
    EXPECT_THAT(BoxInFront(), IsBox(kNotAQuenby, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_FALSE(Playing("MediaPlayer1"));
    EXPECT_EQ(Text("labFW"), "FW vers. : 3");
    ExpectOffline();
  }
  Set(kIdentity, 0x0F12);
  StartSession();
}

TEST_F(QuenbySession, IsRefusedWithoutAPortAsCommitAndResetAre) {
  ports.Disconnect(1);
  for (const char* button : {"buttStart", "buttWriteEEPROM", "buttReset"}) {
    Click(button);
    EXPECT_THAT(BoxInFront(), IsBox(kNotAQuenby, view::Icon::kCritical)) << button;
    AnswerOk();
    ExpectOffline();
  }
}

TEST_F(QuenbySession, GoesOnWithoutTheSettingsOfAModuleThatItNoLongerKnows) {
  Set(kSafeTime, 99);
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click("buttStart");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001", "reads 40010", "reads 40001: exception 4"));
  EXPECT_EQ(Panel2(), kThisIsNoQuenby);
  EXPECT_EQ(Text("labTimeout"), "50");
  EXPECT_EQ(Text("labFW"), "Firmware rel: 3");
  EXPECT_FALSE(Enabled("buttStart"));
  ExpectSessionGoesOn();
}

// What a poll shows.

TEST_F(QuenbySession, ShowsThePolledOutputs) {
  StartSession();
  for (int shift = 0; shift < 3; ++shift) {
    SetOutputs(1000 + shift, 2000 + shift, 10000 - shift);
    RunThroughADecode();
    EXPECT_THAT(OutputTexts(),
                ElementsAre(std::to_string(1000 + shift), std::to_string(2000 + shift), std::to_string(10000 - shift)));
  }
}

TEST_F(QuenbySession, ShowsFlagsThatAnotherHandHasChanged) {
  Set(kFlags, 0x0808);
  StartSession();
  Set(kFlags, 0x0744);
  RunThroughADecode();
  EXPECT_EQ(FlagsShown(), 0x0744);
  EXPECT_FALSE(Enabled("OptionOdd"));
}

TEST_F(QuenbySession, WritesNothingThoughThePolledFlagsChangeTheLists) {
  StartSession();
  for (const int flags : {kAllFlags, 0, 0xFFFF, 0x0500}) {
    Set(kFlags, flags);
    Run(std::chrono::seconds(1));
    EXPECT_EQ(FlagsShown(), flags & kAllFlags);
  }
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_F(QuenbySession, OverwritesFlagsThatWereChangedInTheViewBeforeIt) {
  Click("CheckDelay12ms");
  Choose("cbFullScale(0)", 1);
  ASSERT_EQ(FlagsShown(), 0x0804);
  StartSession();
  EXPECT_EQ(FlagsShown(), 0);
}

TEST_F(QuenbySession, LeavesWhatIsNotPolledAsStartShowedIt) {
  StartSession();
  Set(kCommunication, 0x0322);
  Set(kSafeTime, 99);
  Set(kStatus, 0x0003);
  Set(kFirmware, 9);
  Run(std::chrono::seconds(2));
  EXPECT_EQ(Text("labAddress"), "1");
  EXPECT_EQ(Text("cbBaud"), "9600");
  EXPECT_EQ(Text("labTimeout"), "50");
  EXPECT_EQ(Text("labFW"), "FW vers. : 3");
  EXPECT_FALSE(Checked("CheckError(0)"));
  EXPECT_FALSE(Checked("CheckError(1)"));
}

TEST_F(QuenbySession, TellsAFailedPollAndKeepsWhatItShowed) {
  Set(kFlags, 0x0104);
  SetOutputs(1, 20, 300);
  StartSession();
  RunThroughADecode();
  module.Always(ModuleFault::Exception(4));
  Set(kFlags, 0);
  SetOutputs(0, 0, 0);
  RunThroughADecode();
  EXPECT_EQ(Message(), kPollFailed);
  EXPECT_EQ(FlagsShown(), 0x0104);
  EXPECT_THAT(OutputTexts(), ElementsAre("1", "20", "300"));
  EXPECT_TRUE(NothingInFront());
  EXPECT_TRUE(InSession());
  module.Always(ModuleFault::None());
  RunThroughADecode();
  EXPECT_EQ(Message(), "OK");
  EXPECT_EQ(FlagsShown(), 0);
}

// Reset.

TEST_F(QuenbySession, ResetWritesOneToTheStatusAndEndsIt) {
  StartSession();
  Click("buttReset");
  EXPECT_THAT(BoxInFront(), IsBox(kResetAndStopped, view::Icon::kInformation));
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40008 = 0x0001"));
  ExpectOffline();
}

TEST_F(QuenbySession, ResetWithoutOneChecksTheModelFirst) {
  Click("buttReset");
  EXPECT_THAT(BoxInFront(), IsBox(kReset, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "writes 40008 = 0x0001"));
  ExpectOffline();
}

TEST_F(QuenbySession, ResetGoesToTheAddressOnPcSetup) {
  module.Address = 9;
  SetPcAddress("9");
  Click("buttReset");
  EXPECT_THAT(BoxInFront(), IsBox(kReset, view::Icon::kInformation));
  AnswerOk();
  ExpectOffline();
}

TEST_F(QuenbySession, ResetIsRefusedByAModuleOfAnotherModel) {
  Set(kIdentity, 0x0D00);
  Click("buttReset");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAQuenby, view::Icon::kCritical));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  ExpectOffline();
}

TEST_F(QuenbySession, ResetIsRefusedByASilentModule) {
  module.Always(ModuleFault::Unheard());
  Click("buttReset");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAQuenby, view::Icon::kCritical));
  AnswerOk();
  module.Always(ModuleFault::None());
  ExpectOffline();
}

TEST_F(QuenbySession, ResetHoldsBothButtonsWhileItsBoxIsOpen) {
  for (const bool session : {false, true}) {
    SCOPED_TRACE(session);
    if (session) StartSession();
    Click("buttReset");
    ASSERT_NE(BoxInFront(), nullptr);
    EXPECT_FALSE(Enabled("buttWriteEEPROM"));
    EXPECT_FALSE(Enabled("buttReset"));
    AnswerOk();
    ExpectOffline();
  }
}

// The search.

class QuenbySearch : public QuenbyModule {
 protected:
  /// From its button up to its end.
  void Search() {
    Click("MDIForm1.buttCheckDevice");
    ASSERT_TRUE(RunUntil([this] { return State().SearchRunning == state::kFalse && program.GetScreen().Idle(); }));
  }
  /// What went over the line but for the short reads by which the bus proves that answers are in step.
  std::vector<std::string> Asked() {
    std::vector<std::string> log = module.TakeLog();
    std::erase_if(log, [](const std::string& exchange) { return exchange.starts_with("reads 40001 x"); });
    return log;
  }
};

TEST_F(QuenbySearch, FindsReadsAndShowsTheModule) {
  module.Line.baud = 38400;
  Set(kCommunication, 0x0301);
  Set(kFlags, 0x0900);
  SetOutputs(1, 20, 300);
  Search();
  EXPECT_EQ(Panel2(), "Connected to Quenby, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Page().Name(), "frmQuenby");
  EXPECT_EQ(State().NrFinestra, 11);
  EXPECT_EQ(State().PCSettings, "38400,n,8,1");
  EXPECT_EQ(FlagsShown(), 0x0900);
  EXPECT_THAT(OutputTexts(), ElementsAre("1", "20", "300"));
  EXPECT_EQ(Text("cbBaud"), "38400");
  EXPECT_EQ(Text("labFW"), "FW vers. : 3");
  EXPECT_EQ(State().pageEntered, state::kTrue);
  ExpectOffline();
}

TEST_F(QuenbySearch, LetsThePageReadItsModuleOnceMoreThanEnteringIt) {
  std::vector<std::string> expected = {"reads 40001"};  // the search itself
  for (int i = 0; i < 2; ++i) expected.insert(expected.end(), SettingsReads().begin(), SettingsReads().end());
  Search();
  EXPECT_THAT(Asked(), ElementsAreArray(expected));
}

TEST_F(QuenbySearch, ReadsAPageOnceThatWasEnteredBefore) {
  OpenPage();
  module.ForgetLog();
  std::vector<std::string> expected = {"reads 40001"};
  expected.insert(expected.end(), SettingsReads().begin(), SettingsReads().end());
  Search();
  EXPECT_THAT(Asked(), ElementsAreArray(expected));
}

TEST_F(QuenbySearch, LeavesASessionToTheUser) {
  Search();
  Click("buttStart");
  ExpectSessionGoesOn();
}

}  // namespace
}  // namespace tarvo::test
