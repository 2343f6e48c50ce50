// The search for a module on the ports: what it finds, what it does on the way, and how it leaves the program.

#include <ostream>

#include "shell/search_fixture.h"
#include "shell/version.h"

namespace tarvo::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;

using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;

class Search : public SearchFixture {};

// What it finds.

struct FoundLine {
  int baud;
  std::string settings;
  int silences;                ///< lines that are tried in vain before
  core::milliseconds reading;  ///< of a page's settings, at most
};
void PrintTo(const FoundLine& found, std::ostream* out) {
  *out << found.baud;
}

class SearchLine : public SearchFixture, public testing::WithParamInterface<FoundLine> {};

TEST_P(SearchLine, FindsTheModule) {
  PutModule(1, GetParam().baud);
  OpenWithoutSearch();
  RunSearch();
  EXPECT_THAT(Took(), AllOf(Ge(GetParam().silences * kSilence),
                            Le(GetParam().silences * (kSilence + kBytes) + GetParam().reading)));
  ExpectFound(1, GetParam().settings);
}

INSTANTIATE_TEST_SUITE_P(Lines, SearchLine,
                         testing::Values(FoundLine{38400, "38400,n,8,1", 0, core::milliseconds(150)},
                                         FoundLine{9600, "9600,n,8,1", 1, core::milliseconds(400)},
                                         FoundLine{2400, "2400,n,8,1", 2, core::milliseconds(1200)}),
                         [](const auto& given) { return std::to_string(given.param.baud); });

class SearchPort : public SearchFixture, public testing::WithParamInterface<int> {};

TEST_P(SearchPort, FindsTheModuleOnIt) {
  PutModule(GetParam(), 38400);
  OpenWithoutSearch();
  RunSearch();
  ExpectFound(GetParam(), "38400,n,8,1");
}

INSTANTIATE_TEST_SUITE_P(Ports, SearchPort, testing::Values(1, 2, 3, 4),
                         [](const auto& given) { return "COM" + std::to_string(given.param); });

TEST_F(Search, TriesEveryPortOnALineBeforeTheNextLine) {
  MemoryModule& slower = PutModule(1, 9600);
  PutModule(3, 38400);
  OpenWithoutSearch();
  RunSearch();
  ExpectFound(3, "38400,n,8,1");
  EXPECT_THAT(slower.TakeLog(), IsEmpty());
}

TEST_F(Search, TakesTheLowestPortOfALine) {
  PutModule(2, 38400);
  MemoryModule& second = PutModule(3, 38400);
  OpenWithoutSearch();
  RunSearch();
  ExpectFound(2, "38400,n,8,1");
  EXPECT_THAT(second.TakeLog(), IsEmpty());
}

TEST_F(Search, FindsNoModuleOnAnotherSpeed) {
  for (const int baud : {1200, 4800, 19200, 57600}) {
    SCOPED_TRACE(baud);
    MemoryModule& other = PutModule(1, baud);
    if (PageName().empty()) OpenWithoutSearch();
    RunSearch();
    EXPECT_THAT(other.TakeLog(), IsEmpty());
    ExpectNothingFound();
  }
}

TEST_F(Search, FindsNoModuleOnAnotherParity) {
  PutModule(1, 9600).Line.parity = bus::Parity::kEven;
  OpenWithoutSearch();
  RunSearch();
  ExpectNothingFound();
}

TEST_F(Search, FindsNoModuleAtAnotherAddress) {
  PutModule(1, 9600, 0x0103, 2);
  OpenWithoutSearch();
  RunSearch();
  ExpectNothingFound();
}

TEST_F(Search, AsksAddressOneWhateverThePcIsSetTo) {
  PutModule(1, 38400);
  OpenWithoutSearch();
  State().ModuleAddress = 77;
  State().PCPort = 4;
  State().PCSettings = "1200,o,8,1";
  RunSearch();
  ExpectFound(1, "38400,n,8,1");
}

TEST_F(Search, LeavesTheSharedValuesWhenItFindsNothing) {
  PutSilence(1);
  OpenWithoutSearch();
  State().ModuleAddress = 77;
  State().PCPort = 4;
  State().PCSettings = "1200,o,8,1";
  RunSearch();
  EXPECT_EQ(Panel2(), kNothingFound);
  EXPECT_EQ(State().ModuleAddress, 77);
  EXPECT_EQ(State().PCPort, 4);
  EXPECT_EQ(State().PCSettings, "1200,o,8,1");
  ExpectSearchIsOver();
}

TEST_F(Search, TakesAnIdentityOfZeroForNoModule) {
  PutModule(1, 38400, 0x0000);
  PutModule(2, 38400);
  OpenWithoutSearch();
  RunSearch();
  ExpectFound(2, "38400,n,8,1");
}

TEST_F(Search, TakesARefusalForNoModule) {
  PutModule(1, 38400).Always(ModuleFault::Exception(2));
  PutModule(2, 38400);
  OpenWithoutSearch();
  RunSearch();
  ExpectFound(2, "38400,n,8,1");
}

TEST_F(Search, AsksOnlyOnceOnALine) {
  MemoryModule& spoiled = PutModule(1, 38400);
  spoiled.Next(ModuleFault::WrongCrc());
  OpenWithoutSearch();
  RunSearch();
  EXPECT_THAT(Asked(spoiled), ElementsAre("reads 40001: wrong CRC"));
  ExpectNothingFound();
}

// What it costs.

TEST_F(Search, CostsTwoSecondsForASilentPortOnEachLine) {
  PutSilence(1);
  OpenWithoutSearch();
  RunSearch();
  EXPECT_THAT(Took(), AllOf(Ge(3 * kSilence), Le(3 * (kSilence + kBytes))));
  PutSilence(3);
  RunSearch();
  EXPECT_THAT(Took(), AllOf(Ge(6 * kSilence), Le(6 * (kSilence + kBytes))));
}

TEST_F(Search, CostsNothingForPortsThatDoNotOpen) {
  for (const int comPort : {1, 2, 3, 4}) PutModule(comPort, 38400);
  ports.Disconnect(1);
  ports.SetFault(2, core::kPortAlreadyOpen);
  ports.SetFault(3, core::kPermissionDenied);
  ports.SetFault(4, core::kDeviceUnavailable);
  OpenWithoutSearch();
  RunSearch();
  EXPECT_THAT(Took(), Le(core::milliseconds(100)));
  ExpectNothingFound();
}

TEST_F(Search, SkipsAPortInUseAndFindsTheModuleBehindTheNext) {
  PutModule(1, 38400);
  PutModule(2, 38400);
  ports.SetFault(1, core::kPortAlreadyOpen);
  OpenWithoutSearch();
  RunSearch();
  ExpectFound(2, "38400,n,8,1");
}

TEST_F(Search, TakesAnAnswerThatComesWithinTwoSeconds) {
  PutModule(1, 38400).Next(ModuleFault::Late(core::milliseconds(1900)));
  OpenWithoutSearch();
  RunSearch();
  ExpectFound(1, "38400,n,8,1");
}

TEST_F(Search, NeverTakesALateAnswerForThatOfTheNextLine) {
  MemoryModule& late = PutModule(1, 38400);
  late.Next(ModuleFault::Late(core::milliseconds(2500)));
  OpenWithoutSearch();
  RunSearch();
  EXPECT_THAT(Asked(late), ElementsAre("reads 40001: late 2500 ms"));
  ExpectNothingFound();
}

// A find.

TEST_F(Search, ReadsTheFoundModulesSettingsWithoutASession) {
  MemoryModule& belk = PutModule(1, 38400);
  belk[kFilter] = 123;
  belk[kFlags] = 0x00C1;
  belk[40004] = 4321;
  OpenWithoutSearch();
  RunSearch();
  const std::vector<std::string> asked = Asked(belk);
  ASSERT_GE(asked.size(), 2U);
  EXPECT_EQ(asked[0], "reads 40001");
  EXPECT_EQ(asked[1], "reads 40001");
  EXPECT_THAT(std::vector(asked.begin() + 2, asked.end()),
              testing::UnorderedElementsAre("reads 40002", "reads 40003", "reads 40004", "reads 40005", "reads 40006",
                                            "reads 40007", "reads 40008", "reads 40009"));
  EXPECT_EQ(Text("FilterBelk"), "123");
  EXPECT_EQ(Text("TotIN(1)"), "4321");
  EXPECT_TRUE(Checked("CheckBelk1"));
  EXPECT_TRUE(Checked("CheckBelk2"));
  EXPECT_EQ(Text("FirmwBelk"), "FW. Release: 3");
  EXPECT_THAT(List("BaudBelk"), testing::SizeIs(7));
  EXPECT_EQ(State().PollBuffer.at(7).Unsigned(), 0x00C1);
  EXPECT_FALSE(Enabled("TimerLetturaSeriale"));
  EXPECT_TRUE(Enabled("StartBelk"));
  ExpectSearchIsOver();
}

TEST_F(Search, ShowsThePageAndChecksTheVersionBeforeItReadsTheSettings) {
  MemoryModule& belk = PutModule(1, 38400, 0x0101);
  OpenWithoutSearch();
  std::string seen;
  belk.BeforeRead = [&](int first, int /*count*/) {
    if (first == 40002) seen = PageName() + ", " + Text("Belk.FirmwBelk");
  };
  RunSearch();
  EXPECT_EQ(seen, "Belk, FW. Release: 1");
}

TEST_F(Search, ClosesItsOwnPortBeforeThePageReads) {
  MemoryModule& belk = PutModule(1, 38400);
  OpenWithoutSearch();
  bool own = true;
  bool page = false;
  belk.BeforeRead = [&](int first, int /*count*/) {
    if (first != 40002) return;
    own = Get<bool>("MDIForm1.ModCom1", "PortOpen");
    page = Get<bool>("Belk.ModCom1", "PortOpen");
  };
  RunSearch();
  EXPECT_FALSE(own);
  EXPECT_TRUE(page);
}

TEST_F(Search, LeavesASessionToTheUser) {
  PutModule(2, 38400);
  OpenWithoutSearch();
  RunSearch();
  EXPECT_FALSE(InSession());
  Click("Belk.StartBelk");
  EXPECT_TRUE(InSession());
  EXPECT_EQ(Text("MessageBelk"), "OK");
}

TEST_F(Search, ShowsTheFamilyOfTheFoundModule) {
  PutModule(1, 38400);
  OpenWithoutSearch();
  Choose("MDIForm1.cbSelectDevice", 1);
  ASSERT_EQ(State().FamilyShown, state::kFalse);
  RunSearch();
  EXPECT_EQ(State().FamilyShown, state::kTrue);
  EXPECT_TRUE(Visible("MDIForm1.labBelk"));
  EXPECT_EQ(ListIndex("MDIForm1.cbSelectDevice"), 0);
}

TEST_F(Search, IsShownByPcSetupAfterwards) {
  PutModule(2, 2400);
  OpenWithoutSearch();
  RunSearch();
  Click("MDIForm1.LabPCSetup");
  EXPECT_EQ(Text("PCBaudRate"), "2400");
  EXPECT_TRUE(Checked("SetCOM2"));
  EXPECT_EQ(State().PCSettings, "2400,n,8,1");
}

TEST_F(Search, SetsTheAddressThatACommitGoesBy) {
  MemoryModule& belk = PutModule(1, 38400);
  OpenWithoutSearch();
  Click("MDIForm1.LabPCSetup");
  Click("PCAddress");
  AnswerChangeValue("9");
  RunSearch();
  EXPECT_EQ(Text("PCsetup.PCAddress"), "1");
  belk.ForgetLog();
  Click("Belk.WEEPBelk");
  AnswerOk();
  EXPECT_THAT(Asked(belk),
              ElementsAre("reads 40001", "writes 40072 = 0x000A", "writes 40073 = 0x0000", "writes 40074 = 0x0101"));
}

// An identity that no row has.

class SearchUnknown : public SearchFixture, public testing::WithParamInterface<int> {};

TEST_P(SearchUnknown, IsTold) {
  PutModule(2, 38400, GetParam());
  OpenWithoutSearch();
  Click("MDIForm1.labBelk");
  RunSearch();
  EXPECT_EQ(Panel2(), "Module Unknown");
  EXPECT_EQ(PageName(), "Home");
  EXPECT_EQ(State().NrFinestra, -1);
  // The values of the line are copied before the model is looked up.
  EXPECT_EQ(State().PCPort, 2);
  EXPECT_EQ(State().PCSettings, "38400,n,8,1");
  EXPECT_EQ(State().ModuleAddress, 1);
  ExpectSearchIsOver();
}

INSTANTIATE_TEST_SUITE_P(Identities, SearchUnknown,
                         testing::Values(0x3301, 0x0501, 0x0E01, 0x1601, 0x0001, 0x8103, 0xFFFF),
                         [](const auto& given) { return "Number" + std::to_string(given.param); });

TEST_F(Search, EndsAtAnUnknownModule) {
  PutModule(1, 38400, 0x3301);
  MemoryModule& belk = PutModule(2, 38400);
  OpenWithoutSearch();
  RunSearch();
  EXPECT_EQ(Panel2(), "Module Unknown");
  EXPECT_THAT(belk.TakeLog(), IsEmpty());
}

// On the way.

TEST_F(Search, LocksTheProgramWhileItRuns) {
  PutSilence(1);
  OpenWithoutSearch();
  Click("MDIForm1.labBelk");
  State().pageReadDone = -1;
  BeginSearch();
  Run(core::milliseconds(500));
  EXPECT_TRUE(Searching());
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_EQ(State().pageReadDone, 0);
  EXPECT_TRUE(Hourglass());
  EXPECT_EQ(WindowInFront(), "frmKeyb");
  EXPECT_EQ(Panel1(), kScanning);
  for (const char* name : {"MDIForm1.LabHome", "MDIForm1.LabPCSetup", "MDIForm1.labBelk", "MDIForm1.MenuBelk",
                           "MDIForm1.buttCheckDevice", "MDIForm1.mnuCheckconnection", "MDIForm1.cbSelectDevice"}) {
    EXPECT_FALSE(Enabled(name)) << name;
  }
  for (const char* name :
       {"MDIForm1.ExitMNU", "MDIForm1.frmAbout", "MDIForm1.MenuHome", "MDIForm1.MenuPCSetup",
        "MDIForm1.menuEnableCheckConnection", "MDIForm1.CheckEnableCheckConnection", "Belk.StartBelk"}) {
    EXPECT_NE(RefusalOf(name), "") << name;
  }
  EndSearch();
  ExpectNothingFound();
}

TEST_F(Search, LeavesADevicePageForHome) {
  PutSilence(1);
  OpenWithoutSearch();
  Click("MDIForm1.labBelk");
  BeginSearch();
  EXPECT_EQ(PageName(), "Home");
  EXPECT_EQ(State().NrFinestra, -1);
  EXPECT_EQ(WindowInFront(), "frmKeyb");
  EndSearch();
  EXPECT_EQ(PageName(), "Home");
  EXPECT_EQ(State().NrFinestra, -1);
}

TEST_F(Search, StaysOnAPageThatIsNoDevice) {
  OpenWithoutSearch();
  Click("MDIForm1.LabPCSetup");
  RunSearch();
  EXPECT_EQ(PageName(), "PCsetup");
  ExpectNothingFound();
}

TEST_F(Search, SetsItsBusUpForASearch) {
  PutSilence(1);
  OpenWithoutSearch();
  BeginSearch();
  EXPECT_EQ(Get<std::string>("MDIForm1.ModCom1", "Settings"), "38400,n,8,1");
  EXPECT_EQ(Number("MDIForm1.ModCom1", "LinkParamA"), 3);
  EXPECT_EQ(Number("MDIForm1.ModCom1", "LinkParamB"), 1);
  EXPECT_EQ(Number("MDIForm1.ModCom1", "ModuleAddr"), 1);
  EXPECT_EQ(Number("MDIForm1.ModCom1", "ReplyTimeout"), 2000);
  EXPECT_EQ(Number("MDIForm1.ModCom1", "ReplyMode"), 1);
  EXPECT_EQ(Number("MDIForm1.ModCom1", "CommPort"), 1);
  EndSearch();
}

TEST_F(Search, SendsPlainReadsOnEachLineInTurn) {
  MemoryLine& silent = PutSilence(1);
  OpenWithoutSearch();
  std::vector<int> speeds;
  silent.OnWrite = [&](std::span<const std::uint8_t> bytes) {
    EXPECT_THAT(bytes.subspan(0, 4), ElementsAre(1, 3, 0, 0));
    speeds.push_back(silent.Line().baud);
  };
  RunSearch();
  EXPECT_THAT(speeds, ElementsAre(38400, 9600, 2400));
}

TEST_F(Search, ShowsWhichPortAndLineItTries) {
  PutSilence(1);
  PutSilence(3);
  OpenWithoutSearch();
  BeginSearch();
  Run(core::milliseconds(100));
  EXPECT_EQ(program.FindWindow("frmKeyb")->Caption, "Tarvo  " + std::string(shell::Version()));
  EXPECT_THAT(Text("frmKeyb.Label1"), HasSubstr("ESC"));
  EXPECT_THAT(Text("frmKeyb.Label2"), AllOf(HasSubstr("COM1"), HasSubstr("38400")));
  Run(kSilence);
  EXPECT_THAT(Text("frmKeyb.Label2"), AllOf(HasSubstr("COM3"), HasSubstr("38400")));
  Run(kSilence);
  EXPECT_THAT(Text("frmKeyb.Label2"), AllOf(HasSubstr("COM1"), HasSubstr("9600")));
  EndSearch();
}

TEST_F(Search, IsStartedByTheMenuToo) {
  PutModule(1, 38400);
  OpenWithoutSearch();
  RunSearch("MDIForm1.mnuCheckconnection");
  ExpectFound(1, "38400,n,8,1");
}

TEST_F(Search, LoadsThePageOfRtdInputsWhoseSettingsItLocks) {
  ASSERT_FALSE(program.FindWindow("frmNerith")->Loaded());
  Click("buttCheckDevice");
  EXPECT_TRUE(program.FindWindow("frmNerith")->Loaded());
  EXPECT_EQ(ListIndex("frmNerith.cbBaudRate"), 1);
  EXPECT_FALSE(Enabled("frmNerith.cbBaudRate"));
}

TEST_F(Search, CanBeRepeated) {
  MemoryModule& belk = PutModule(1, 38400);
  OpenWithoutSearch();
  RunSearch();
  ExpectFound(1, "38400,n,8,1");
  belk[kFilter] = 99;
  RunSearch();
  ExpectFound(1, "38400,n,8,1");
  EXPECT_EQ(Text("FilterBelk"), "99");
  ports.Disconnect(1);
  RunSearch();
  EXPECT_EQ(Panel2(), kNothingFound);
  EXPECT_EQ(PageName(), "Home");
}

TEST_F(Search, DoesNotBeginInASession) {
  PutModule(1, 9600);
  OpenWithoutSearch();
  StartSession();
  for (const char* name : {"MDIForm1.buttCheckDevice", "MDIForm1.mnuCheckconnection"}) {
    EXPECT_NE(RefusalOf(name), "") << name;
  }
  EXPECT_TRUE(InSession());
  EXPECT_FALSE(Searching());
}

TEST_F(Search, EndsAtOnceWhenStartCommSaysThatTheLineIsTaken) {
  PutModule(1, 38400);
  OpenWithoutSearch();
  State().StartComm = state::kTrue;
  const int attempts = ports.Attempts();
  Click(kButton);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), attempts);
  EXPECT_TRUE(NothingInFront());
  EXPECT_FALSE(Hourglass());
  EXPECT_EQ(State().StartComm, state::kTrue);
}

TEST_F(Search, TakesNoGestureWhileAHandlerHoldsTheHourglass) {
  PutModule(1, 9600);
  OpenWithoutSearch();
  Click("MDIForm1.labBelk");
  const auto start = ClickAndGoOn("Belk.StartBelk");
  ASSERT_TRUE(Hourglass());
  for (const char* name : {"MDIForm1.buttCheckDevice", "MDIForm1.mnuCheckconnection"}) {
    EXPECT_NE(RefusalOf(name), "") << name;
  }
  ASSERT_TRUE(RunUntil([&] { return start->Done(); }));
  EXPECT_TRUE(InSession());
}

// ESC.

TEST_F(Search, StopsAtEscapeBeforeItTriesTheNextPort) {
  PutSilence(1);
  MemoryModule& belk = PutModule(2, 38400);
  OpenWithoutSearch();
  const core::TimePoint began = scheduler.Now();
  BeginSearch();
  Run(core::milliseconds(300));
  PressKey(view::Key::kEscape);
  EXPECT_EQ(State().EscPressed, 1);
  EndSearch();
  EXPECT_LE(scheduler.Now() - began, kSilence + kBytes);
  EXPECT_THAT(belk.TakeLog(), IsEmpty());
  ExpectNothingFound();
}

TEST_F(Search, StopsAtAnEscapeThatWasPressedOnAPageBefore) {
  MemoryModule& belk = PutModule(1, 38400);
  OpenWithoutSearch();
  PressKey(view::Key::kEscape);
  ASSERT_EQ(State().EscPressed, 1);
  RunSearch();
  EXPECT_THAT(belk.TakeLog(), IsEmpty());
  EXPECT_THAT(Took(), Le(core::milliseconds(100)));
  ExpectNothingFound();
  RunSearch();
  ExpectFound(1, "38400,n,8,1");
}

TEST_F(Search, TakesTheModuleThatAnswersTheReadThatEscapeFinds) {
  MemoryModule& belk = PutModule(1, 38400);
  belk.Next(ModuleFault::Late(core::milliseconds(1000)));
  OpenWithoutSearch();
  BeginSearch();
  Run(core::milliseconds(300));
  PressKey(view::Key::kEscape);
  EndSearch();
  ExpectFound(1, "38400,n,8,1");
}

TEST_F(Search, IsNotStoppedByEnter) {
  PutModule(1, 9600);
  OpenWithoutSearch();
  BeginSearch();
  Run(core::milliseconds(300));
  EXPECT_EQ(WindowInFront(), "frmKeyb");
  PressKey(view::Key::kEnter);
  EXPECT_EQ(State().EscPressed, 0);
  EndSearch();
  ExpectFound(1, "9600,n,8,1");
}

// Faults.

TEST_F(Search, TellsAFaultAndEnds) {
  PutModule(1, 38400);
  MemoryModule& second = PutModule(2, 38400);
  OpenWithoutSearch();
  // The port list and the test open it, then the bus does.
  int openings = 0;
  ports.BeforeOpen = [&](int comPort) {
    if (comPort == 1 && ++openings == 3) ports.SetFault(1, core::kDeviceUnavailable);
  };
  RunSearch();
  EXPECT_THAT(BoxInFront(), IsBox("Device unavailable", view::Icon::kExclamation));
  AnswerOk();
  EndSearch();
  EXPECT_THAT(second.TakeLog(), IsEmpty());
  ExpectSearchIsOver();
  ports.BeforeOpen = nullptr;
  ports.SetFault(1, {});
  RunSearch();
  ExpectFound(1, "38400,n,8,1");
}

TEST_F(Search, GoesOnWithoutAPortThatVanishesWhileItIsAsked) {
  MemoryLine& vanishing = PutSilence(1);
  PutModule(2, 9600);
  OpenWithoutSearch();
  BeginSearch();
  Run(core::milliseconds(500));
  vanishing.Lose();
  Run(core::milliseconds(50));
  EXPECT_TRUE(Searching());
  EXPECT_THAT(Text("frmKeyb.Label2"), HasSubstr("COM2"));
  EndSearch();
  ExpectFound(2, "9600,n,8,1");
}

TEST_F(Search, GoesOnWhenThePageCannotReadTheFoundModule) {
  MemoryModule& belk = PutModule(1, 38400);
  OpenWithoutSearch();
  belk.BeforeRead = [&](int, int) { belk.Always(ModuleFault::Unheard()); };
  RunSearch();
  ExpectFound(1, "38400,n,8,1");
}

// At the start of the program.

TEST_F(Search, RunsAtTheFirstStartOfTheProgram) {
  PutModule(1, 38400);
  OpenProgram();
  EXPECT_TRUE(program.Starting());
  ASSERT_TRUE(RunUntil([this] { return !program.Starting(); }));
  ExpectFound(1, "38400,n,8,1");
  EXPECT_EQ(Number("MDIForm1.menuEnableCheckConnection", "Value"), 1);
}

TEST_F(Search, RunsAtTheStartWhenTheStoredSwitchIsOn) {
  values.Keep("AUTOSCAN", "TRUE");
  PutSilence(1);
  OpenProgram();
  Run(core::milliseconds(100));
  EXPECT_TRUE(program.Starting());
  EXPECT_TRUE(Searching());
  EXPECT_EQ(WindowInFront(), "frmKeyb");
  EXPECT_EQ(PageName(), "Home");
  EXPECT_EQ(Number("MDIForm1.menuEnableCheckConnection", "Value"), 1);
  ASSERT_TRUE(RunUntil([this] { return !program.Starting(); }));
  ExpectNothingFound();
}

TEST_F(Search, AtTheStartIsStoppedByEscapeToo) {
  PutSilence(1);
  OpenProgram();
  Run(core::milliseconds(100));
  PressKey(view::Key::kEscape);
  ASSERT_TRUE(RunUntil([this] { return !program.Starting(); }, kSilence + kBytes));
  ExpectNothingFound();
}

TEST_F(Search, DoesNotRunAtTheStartWhenTheStoredSwitchIsOff) {
  for (const int comPort : {1, 2}) PutModule(comPort, 38400);
  OpenWithoutSearch();
  EXPECT_FALSE(program.Starting());
  EXPECT_FALSE(Searching());
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(PageName(), "Home");
  EXPECT_EQ(Panel2(), "");
  EXPECT_EQ(Number("MDIForm1.menuEnableCheckConnection", "Value"), 0);
}

}  // namespace
}  // namespace tarvo::test
