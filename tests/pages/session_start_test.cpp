#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

class SessionStart : public BelkFixture {
 protected:
  /// Presses Start and lets time go by until the module has taken so many requests.
  void StartUntilRequest(int requests) {
    ClickAndGoOn("StartBelk");
    ASSERT_TRUE(RunUntil([&] { return module.Requests() == requests; }));
  }
  std::vector<std::uint8_t> BytesOfWrite(std::size_t number) const { return line.Writes().at(number).bytes; }
};

TEST_F(SessionStart, ReadsTheIdentityAndThenOneBlockOfNineRegisters) {
  Click("StartBelk");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", kBelkPoll));
}

TEST_F(SessionStart, SendsPlainReadsWhateverTheFormatArgument) {
  Click("StartBelk");
  ASSERT_EQ(line.Writes().size(), 2U);
  EXPECT_THAT(BytesOfWrite(0), ElementsAre(1, 3, 0, 0, 0, 1, 0x84, 0x0A));
  EXPECT_THAT(BytesOfWrite(1), ElementsAre(1, 3, 0, 1, 0, 9, 0xD4, 0x0C));
}

TEST_F(SessionStart, SetsUpTheBusFromTheSharedValues) {
  MemoryLine otherLine(scheduler);
  MemoryModule otherModule(scheduler, otherLine, 7);
  otherModule.Line = {19200, bus::Parity::kEven};
  otherModule[kIdentity] = 0x0103;
  ports.Connect(2, otherLine);
  State().PCPort = 2;
  State().PCSettings = "19200,e,8,1";
  State().ModuleAddress = 7;
  Modcom().LinkParamA = 1;
  Modcom().LinkParamB = 1;

  Click("StartBelk");

  EXPECT_TRUE(InSession());
  EXPECT_EQ(Modcom().CommPort(), 2);
  EXPECT_EQ(Modcom().Settings(), "19200,e,8,1");
  EXPECT_EQ(Modcom().LinkParamA(), 3);
  EXPECT_EQ(Modcom().LinkParamB(), 3);
  EXPECT_EQ(Modcom().ModuleAddr(), 7);
  EXPECT_TRUE(otherLine.IsOpen());
  EXPECT_FALSE(line.IsOpen());
  Click("StopBelk");
}

TEST_F(SessionStart, SetsTheBusUpAnewEachTime) {
  StartSession();
  Click("StopBelk");
  module.Line.baud = 38400;
  module.Address = 255;
  State().PCSettings = "38400,n,8,1";
  State().ModuleAddress = 255;
  Click("StartBelk");
  EXPECT_TRUE(InSession());
  EXPECT_EQ(line.Line().baud, 38400);
}

TEST_F(SessionStart, HasOpenedThePortAndSetThePollBeforeTheIdentityIsRead) {
  State().RunKind = 77;
  const std::string firmware = Text("FirmwBelk");
  ClickAndGoOn("StartBelk");
  EXPECT_TRUE(Hourglass());
  EXPECT_TRUE(PortOpen());
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 9);
  // Nothing of what follows the comparison has happened yet.
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_EQ(Text("FirmwBelk"), firmware);
  EXPECT_FALSE(Playing("MediaPlayer1"));
  EXPECT_TRUE(Enabled("StartBelk"));
  EXPECT_TRUE(TimersRest());
}

TEST_F(SessionStart, HasBegunTheSessionWhenTheFirstBlockIsRead) {
  State().RunKind = 77;
  State().ReadStep = 5;
  StartUntilRequest(2);
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_EQ(Text("FirmwBelk"), "Firmware rel: 3");
  EXPECT_TRUE(Playing("MediaPlayer1"));
  // Timers, RunKind, the Start button and the navigation come after the block.
  EXPECT_TRUE(TimersRest());
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_TRUE(Enabled("StartBelk"));
  EXPECT_TRUE(Enabled("MDIForm1.labBelk"));
  EXPECT_TRUE(Hourglass());
}

TEST_F(SessionStart, HasDoneAllWhenItEnds) {
  Click("StartBelk");
  EXPECT_TRUE(TimersRun());
  EXPECT_EQ(State().RunKind, 1);
  EXPECT_FALSE(Enabled("StartBelk"));
  EXPECT_TRUE(Enabled("StopBelk"));
  EXPECT_FALSE(Enabled("MDIForm1.labBelk"));
  EXPECT_FALSE(Enabled("MDIForm1.MenuBelk"));
  EXPECT_EQ(Text("MessageBelk"), "OK");
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
}

TEST_F(SessionStart, ShowsTheFirstBlockBeforeItsTimersTick) {
  module[kCounter1] = 1234;
  Click("StartBelk");
  EXPECT_EQ(Text("TotIN(0)"), "1234");
}

TEST_F(SessionStart, NeverEnablesTheTwoTimersThatNothingNeeds) {
  History gears(At("TimerIngranaggi"), "Enabled");
  History control(At("TimerControllo"), "Enabled");
  StartSession();
  Run(std::chrono::seconds(1));
  Click("StopBelk");
  EXPECT_THAT(gears.Entries(), IsEmpty());
  EXPECT_THAT(control.Entries(), IsEmpty());
  EXPECT_FALSE(Enabled("TimerIngranaggi"));
  EXPECT_FALSE(Enabled("TimerControllo"));
}

TEST_F(SessionStart, TakesAnyFirmwareReleaseOfTheModel) {
  for (const int release : {0, 1, 9, 255}) {
    SCOPED_TRACE(release);
    SetRelease(release);
    Click("StartBelk");
    EXPECT_TRUE(InSession());
    EXPECT_EQ(Text("FirmwBelk"), "Firmware rel: " + std::to_string(release));
    Click("StopBelk");
  }
}

TEST_F(SessionStart, PressedTwiceStartsOnce) {
  ClickAndGoOn("StartBelk");
  ClickAndGoOn("StartBelk");
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", kBelkPoll));
  EXPECT_EQ(ports.Attempts(), 1);
  EXPECT_TRUE(NothingInFront());
  EXPECT_FALSE(Hourglass());
}

TEST_F(SessionStart, TakesNoClickInASession) {
  StartSession();
  EXPECT_EQ(RefusalOf("StartBelk"), "StartBelk is disabled");
}

TEST_F(SessionStart, DoesNothingWhileThePortIsOpen) {
  ASSERT_TRUE(Modcom().SetPortOpen(true).Ok());
  Click("StartBelk");
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_TRUE(PortOpen());
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(Hourglass());
}

TEST_F(SessionStart, DoesNothingWhileASearchRuns) {
  State().StartComm = state::kTrue;
  Click("StartBelk");
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(TimersRest());
}

TEST_F(SessionStart, KeepsTheSessionWhenTheFirstBlockFails) {
  StartUntilRequest(1);
  module.Next(ModuleFault::Exception(2));
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(NothingInFront());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageBelk"), "OK");
}

TEST_F(SessionStart, ShowsNothingOfABlockThatItHasLost) {
  State().PollBuffer.fill(state::Word(0x0307));
  StartUntilRequest(1);
  module.Next(ModuleFault::Exception(2));
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_EQ(Text("MessageBelk"), "ERROR! Wrong Comm.");
  EXPECT_EQ(Text("FilterBelk"), "1");
  EXPECT_EQ(Text("AddressBelk"), "1");
  EXPECT_EQ(Text("TotIN(0)"), "0");
}

TEST_F(SessionStart, ShowsNothingAsLongAsEveryPollFails) {
  State().PollBuffer.fill(state::Word(0x0307));
  StartUntilRequest(1);
  for (int poll = 0; poll < 20; ++poll) module.Next(ModuleFault::Exception(2));
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  Run(core::milliseconds(600));
  EXPECT_EQ(Text("MessageBelk"), "ERROR! Wrong Comm.");
  EXPECT_EQ(Text("FilterBelk"), "1");
  EXPECT_EQ(Text("TotIN(0)"), "0");
}

TEST_F(SessionStart, ShowsALostBlockOnceItComes) {
  module[kFilter] = 20;
  module[kCommunication] = 0x0309;
  module[kCounter1] = 42;
  StartUntilRequest(1);
  module.Next(ModuleFault::Exception(2));
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("FilterBelk"), "20");
  EXPECT_EQ(Text("AddressBelk"), "9");
  EXPECT_EQ(Text("BaudBelk"), "38400");
  EXPECT_EQ(Text("TotIN(0)"), "42");
}

TEST_F(SessionStart, ShowsALostBlockWholeOnlyOnce) {
  StartUntilRequest(1);
  module.Next(ModuleFault::Exception(2));
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  Run(std::chrono::seconds(1));
  module[kFilter] = 20;
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("FilterBelk"), "10");
}

// What ends Start with its message box.

class SessionStartRefused : public SessionStart {
 protected:
  /// Answers the box and looks at what the failed Start leaves behind.
  void ExpectTakenDown() {
    EXPECT_THAT(BoxInFront(), IsBox(kNotABelk, view::Icon::kCritical));
    AnswerOk();
    EXPECT_TRUE(NothingInFront());
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(line.IsOpen());
    EXPECT_EQ(State().StartComm, state::kFalse);
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(Enabled("TimerIngranaggi"));
    EXPECT_TRUE(Enabled("StartBelk"));
    EXPECT_TRUE(Enabled("MDIForm1.labBelk"));
    EXPECT_TRUE(Enabled("MDIForm1.MenuBelk"));
    EXPECT_FALSE(Playing("MediaPlayer1"));
    EXPECT_FALSE(Hourglass());
    module.ForgetLog();
    Run(std::chrono::seconds(2));
    EXPECT_THAT(module.TakeLog(), IsEmpty());
  }
  void ExpectStartWorks() {
    Click("StartBelk");
    EXPECT_TRUE(InSession());
    EXPECT_EQ(Text("MessageBelk"), "OK");
    EXPECT_TRUE(NothingInFront());
  }
};

TEST_F(SessionStartRefused, ByAModuleOfAnotherModel) {
  module[kIdentity] = 0x0203;
  Click("StartBelk");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  ExpectTakenDown();
  module[kIdentity] = 0x0103;
  ExpectStartWorks();
}

TEST_F(SessionStartRefused, DisablesEveryTimerThatWasLeftOn) {
  module[kIdentity] = 0x0203;
  for (const char* timer : {"TimerGestioneLetture", "TimerLetturaSeriale", "TimerIngranaggi"}) {
    dynamic_cast<view::Timer&>(At(timer)).Enabled = true;
  }
  Click("StartBelk");
  ExpectTakenDown();
}

TEST_F(SessionStartRefused, ByAnIdentityWithTheTopBitSet) {
  module[kIdentity] = 0x8103;
  Click("StartBelk");
  ExpectTakenDown();
}

TEST_F(SessionStartRefused, KeepsThePortUntilTheBoxIsAnswered) {
  module[kIdentity] = 0x0203;
  Click("StartBelk");
  ASSERT_NE(BoxInFront(), nullptr);
  EXPECT_TRUE(PortOpen());
  EXPECT_TRUE(Hourglass());
}

TEST_F(SessionStartRefused, LeavesTheViewOfTheModuleAsItWas) {
  const std::string firmware = Text("FirmwBelk");
  const std::vector<std::string> rates = List("BaudBelk");
  module[kIdentity] = 0x0203;
  module[kCounter1] = 99;
  Click("StartBelk");
  AnswerOk();
  EXPECT_EQ(Text("FirmwBelk"), firmware);
  EXPECT_EQ(List("BaudBelk"), rates);
  EXPECT_EQ(Text("TotIN(0)"), "0");
}

struct NoAnswer {
  const char* name;
  ModuleFault fault;
};

class SessionStartWithoutAnAnswer : public SessionStartRefused, public testing::WithParamInterface<NoAnswer> {};

TEST_P(SessionStartWithoutAnAnswer, IsRefusedAndWorksLater) {
  module.Always(GetParam().fault);
  Click("StartBelk");
  ExpectTakenDown();
  module.Always(ModuleFault::None());
  ExpectStartWorks();
}

INSTANTIATE_TEST_SUITE_P(Faults, SessionStartWithoutAnAnswer,
                         testing::Values(NoAnswer{"Silence", ModuleFault::Silent()},
                                         NoAnswer{"WrongCrc", ModuleFault::WrongCrc()},
                                         NoAnswer{"TornReply", ModuleFault::Torn(4)},
                                         NoAnswer{"AnotherAddress", ModuleFault::Foreign(9)},
                                         NoAnswer{"Exception", ModuleFault::Exception(2)}),
                         [](const auto& given) { return given.param.name; });

TEST_F(SessionStartRefused, ByAModuleAtAnotherSpeed) {
  module.Line.baud = 38400;
  Click("StartBelk");
  ExpectTakenDown();
}

TEST_F(SessionStartRefused, ByAPortThatIsNotThere) {
  ports.Disconnect(1);
  Click("StartBelk");
  ExpectTakenDown();
  ports.Connect(1, line);
  ExpectStartWorks();
}

TEST_F(SessionStartRefused, ByAPortThatAnotherProgramHolds) {
  for (const char* fault : {core::kPermissionDenied, core::kPortAlreadyOpen, core::kDeviceUnavailable}) {
    SCOPED_TRACE(fault);
    ports.SetFault(1, fault);
    Click("StartBelk");
    ExpectTakenDown();
  }
  ports.SetFault(1, "");
  ExpectStartWorks();
}

TEST_F(SessionStartRefused, ByLineSettingsThatMeanNothing) {
  State().PCSettings = "fast";
  Click("StartBelk");
  ExpectTakenDown();
}

TEST_F(SessionStartRefused, WhenThePortVanishesBeforeTheIdentityIsRead) {
  ClickAndGoOn("StartBelk");
  line.Lose();
  ASSERT_TRUE(RunUntil([this] { return !NothingInFront(); }));
  ExpectTakenDown();
}

// What may end Start from outside.

TEST_F(SessionStart, IsNotHinderedByStopWhileTheIdentityIsRead) {
  const auto start = ClickAndGoOn("StartBelk");
  Click("StopBelk");
  ASSERT_TRUE(RunUntil([&] { return start->Done(); }));
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
}

TEST_F(SessionStart, UndoesAllWhenStopComesDuringTheFirstBlock) {
  const auto start = ClickAndGoOn("StartBelk");
  ASSERT_TRUE(RunUntil([this] { return module.Requests() == 2; }));
  Click("StopBelk");
  ASSERT_TRUE(RunUntil([&] { return start->Done(); }));

  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(Enabled("StartBelk"));
  EXPECT_TRUE(Enabled("MDIForm1.labBelk"));
  EXPECT_FALSE(Playing("MediaPlayer1"));
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", kBelkPoll));
  Run(std::chrono::seconds(2));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  Click("StartBelk");
  EXPECT_TRUE(InSession());
}

TEST_F(SessionStart, KeepsTheTimersHeldForAFlagThatIsClickedDuringTheFirstBlock) {
  History reading(At("TimerLetturaSeriale"), "Enabled");
  History decoding(At("TimerGestioneLetture"), "Enabled");
  const auto start = ClickAndGoOn("StartBelk");
  ASSERT_TRUE(RunUntil([this] { return module.Requests() == 2; }));
  const auto flag = ClickAndGoOn("CheckBelk1");
  ASSERT_TRUE(RunUntil([&] { return start->Done() || flag->Done(); }));
  EXPECT_TRUE(TimersRest());
  ASSERT_TRUE(RunUntil([&] { return start->Done() && flag->Done(); }));
  Run(core::milliseconds(10));
  EXPECT_TRUE(TimersRun());
  EXPECT_THAT(reading.Values<bool>(), ElementsAre(true));
  EXPECT_THAT(decoding.Values<bool>(), ElementsAre(true));
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", kBelkPoll, "reads 40009", "writes 40009 = 0x0080"));
}

// The clip.

TEST_F(SessionStart, PlaysTheClipOfTheProgramsFolderInALoop) {
  EXPECT_FALSE(Playing("MediaPlayer1"));
  StartSession();
  const auto file = Get<std::string>("MediaPlayer1", "FileName");
  EXPECT_THAT(file, StartsWith("/programs/tarvo"));
  EXPECT_THAT(file, EndsWith("Gears.avi"));
  EXPECT_TRUE(Get<bool>("MediaPlayer1", "Loop"));
  EXPECT_TRUE(Playing("MediaPlayer1"));
}

TEST_F(SessionStart, HasTheClipReadyFromTheBeginning) {
  EXPECT_THAT(Get<std::string>("MediaPlayer1", "FileName"), EndsWith("Gears.avi"));
  EXPECT_TRUE(Get<bool>("MediaPlayer1", "Loop"));
  EXPECT_FALSE(Playing("MediaPlayer1"));
}

TEST_F(SessionStart, StartsTheClipAgainWhenItEndsInASession) {
  StartSession();
  auto& clip = dynamic_cast<view::Clip&>(At("MediaPlayer1"));
  clip.Playing = false;
  clip.OnEnd();
  EXPECT_TRUE(Playing("MediaPlayer1"));
}

TEST_F(SessionStart, LeavesAnEndedClipAloneOutOfASession) {
  auto& clip = dynamic_cast<view::Clip&>(At("MediaPlayer1"));
  clip.OnEnd();
  EXPECT_FALSE(Playing("MediaPlayer1"));
}

}  // namespace
}  // namespace tarvo::test
