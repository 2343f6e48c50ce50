// The search for a module over real pseudo terminals.

#include "e2e_search/search_bench.h"

namespace tarvo {
namespace {

using namespace test;  // the times of a search
using testing::AllOf;
using testing::Ge;
using testing::HasSubstr;
using testing::Le;
using testing::StartsWith;

class Search : public SearchBench {};

// At the start of the program.

TEST_F(Search, RunsAtTheFirstStartAndReadsWhatItFinds) {
  StartSimulator({"--com1", "belk:line=38400n81,fw=3,40008=77,40009=0x81,40004=4321"});
  const auto start = std::chrono::steady_clock::now();
  OpenConsole();
  AwaitStart();
  EXPECT_LE(Since(start), kMachine);
  ExpectFound(1, "38400,n,8,1");
  EXPECT_EQ(Get("AutoScan"), "1");
  EXPECT_EQ(Get("menuEnableCheckConnection.Value"), "1");
  EXPECT_EQ(Get("FilterBelk.Caption"), "77");
  EXPECT_EQ(Get("TotIN(1).Caption"), "4321");
  EXPECT_EQ(Get("CheckBelk1.Value"), "1");
  EXPECT_EQ(Get("CheckBelk2.Value"), "1");
  EXPECT_EQ(Get("FirmwBelk.Caption"), "FW. Release: 3");
  EXPECT_EQ(Get("PollBuffer(7)"), "129");
  // The user begins the session.
  EXPECT_EQ(Do("click StartBelk"), kNothing);
  EXPECT_EQ(Get("StartComm"), "-1");
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
}

TEST_F(Search, RunsAtTheStartWhenTheSwitchIsOn) {
  StartSimulator({"--com1", "belk:line=9600n81"});
  StoreSwitch("TRUE");
  const auto start = std::chrono::steady_clock::now();
  OpenConsole();
  AwaitStart();
  EXPECT_THAT(Since(start), AllOf(Ge(kSilence), Le(kSilence + kMachine)));
  ExpectFound(1, "9600,n,8,1");
}

TEST_F(Search, DoesNotRunAtTheStartWhenTheSwitchIsOff) {
  StartSimulator({"--com1", "belk:line=38400n81"});
  OpenConsoleWithoutSearch();
  const auto start = std::chrono::steady_clock::now();
  AwaitStart();
  EXPECT_LE(Since(start), kMachine);
  EXPECT_EQ(Get("AutoScan"), "0");
  EXPECT_EQ(Get("menuEnableCheckConnection.Value"), "0");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "");
  EXPECT_EQ(Get("PCSettings"), "9600,n,8,1");
  EXPECT_EQ(Get("NrFinestra"), "-1");
  EXPECT_TRUE(HomeIsShown());
}

TEST_F(Search, AtTheStartIsStoppedByEscape) {
  StartSimulator({"--com1", "belk:addr=2,line=38400n81"});
  OpenConsole();
  std::this_thread::sleep_for(Milliseconds(300));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Do("key Escape"), kSearchInFront);
  EXPECT_LE(Since(start), kMachine) << "Escape does not act at once";
  AwaitStart();
  EXPECT_LE(Since(start), kSilence + kMachine);
  ExpectNothingFound();
}

// Where the module is.

TEST_F(Search, FindsAModuleOnTheSlowestLine) {
  StartSimulator({"--com1", "belk:line=2400n81"});
  OpenConsoleWithoutSearch();
  constexpr Milliseconds kReading{1100};  // of the page's settings at this speed
  EXPECT_THAT(RunSearch(), AllOf(Ge(2 * kSilence), Le(2 * kSilence + kReading + kMachine)));
  ExpectFound(1, "2400,n,8,1");
}

TEST_F(Search, FindsAModuleOnAnyPort) {
  for (const int comPort : {2, 3, 4}) {
    SCOPED_TRACE(comPort);
    StartSimulator({"--com" + std::to_string(comPort), "belk:line=38400n81"});
    OpenConsoleWithoutSearch();
    EXPECT_LE(RunSearch(), kMachine) << "a port that is not there costs time";
    ExpectFound(comPort, "38400,n,8,1");
  }
}

TEST_F(Search, TriesTheNextPortBeforeTheNextLine) {
  StartSimulator({"--com1", "belk:line=9600n81", "--com2", "belk:line=38400n81"});
  OpenConsoleWithoutSearch();
  EXPECT_THAT(RunSearch(), AllOf(Ge(kSilence), Le(kSilence + kMachine)));
  ExpectFound(2, "38400,n,8,1");
}

TEST_F(Search, FindsNeitherAnotherAddressNorAnotherSpeedAndChangesNothing) {
  StartSimulator({"--com2", "belk:addr=2,line=38400n81", "--com2", "belk:addr=1,line=19200n81"});
  OpenConsoleWithoutSearch();
  Do("click LabPCSetup");
  Do("click SetCOM2");
  Do("choose PCBaudRate 1200");
  Do("click Option4");
  Do("click PCAddress");
  Do("type Text1 33");
  EXPECT_EQ(Do("click OK"), kNothing);
  Do("click labBelk");
  EXPECT_THAT(RunSearch(), AllOf(Ge(3 * kSilence), Le(3 * kSilence + kMachine)));
  ExpectNothingFound();
  EXPECT_EQ(Get("PCPort"), "2");
  EXPECT_EQ(Get("PCSettings"), "1200,e,8,1");
  EXPECT_EQ(Get("ModuleAddress"), "33");
  EXPECT_EQ(Get("NrFinestra"), "-1");
  EXPECT_TRUE(HomeIsShown());
}

// What it is.

TEST_F(Search, TellsAnUnknownModule) {
  StartSimulator({"--com1", "belk:line=38400n81"});
  EXPECT_THAT(simulator->Order("com1 set 40001 0x3301"), StartsWith("ok "));
  OpenConsoleWithoutSearch();
  Do("click labBelk");
  EXPECT_LE(RunSearch("mnuCheckconnection"), kMachine);
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Module Unknown");
  EXPECT_EQ(Get("NrFinestra"), "-1");
  EXPECT_TRUE(HomeIsShown());
  ExpectSearchIsOver();
}

TEST_F(Search, FindsTheModuleAgainAfterItHasChanged) {
  StartSimulator({"--com1", "belk:line=38400n81,fw=1,40008=11"});
  OpenConsoleWithoutSearch();
  RunSearch();
  ExpectFound(1, "38400,n,8,1");
  EXPECT_EQ(Get("FilterBelk.Caption"), "11");
  EXPECT_EQ(Get("FirmwBelk.Caption"), "FW. Release: 1");
  simulator->Order("com1 set 40008 22");
  RunSearch("mnuCheckconnection");
  ExpectFound(1, "38400,n,8,1");
  EXPECT_EQ(Get("FilterBelk.Caption"), "22");
}

// Ports that are no good.

TEST_F(Search, SkipsAPortInUseSilentlyAndAtOnce) {
  StartSimulator({"--com1", "belk"});
  OpenConsoleWithoutSearch();
  Do("click labBelk");
  Do("click StartBelk");
  ASSERT_EQ(Get("StartComm"), "-1");
  const std::unique_ptr<ConsoleProcess> holder = std::move(console);
  OpenConsoleWithoutSearch();
  EXPECT_LE(RunSearch(), kMachine);
  ExpectNothingFound();
  holder->Do("wait 200ms");
  EXPECT_EQ(holder->Get("MessageBelk.Caption"), "OK");
  EXPECT_EQ(holder->Get("StartComm"), "-1");
}

TEST_F(Search, CostsNothingWithoutAPort) {
  OpenConsoleWithoutSearch();
  EXPECT_LE(RunSearch(), kMachine);
  ExpectNothingFound();
}

TEST_F(Search, GoesOnWithoutAPortThatVanishes) {
  StartSimulator({"--com1", "belk:addr=2,line=38400n81", "--com2", "belk:line=38400n81"});
  OpenConsoleWithoutSearch();
  EXPECT_EQ(Do("click buttCheckDevice"), kSearchInFront);
  Do("wait 300ms");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_THAT(simulator->Order("com1 unplug"), StartsWith("ok "));
  EXPECT_TRUE(console->Try("idle within 30s", kPatience).Ok());
  EXPECT_LE(Since(start), kMachine);
  ExpectFound(2, "38400,n,8,1");
}

TEST_F(Search, EndsWhenItsOnlyPortVanishes) {
  StartSimulator({"--com1", "belk:addr=2,line=38400n81"});
  OpenConsoleWithoutSearch();
  EXPECT_EQ(Do("click buttCheckDevice"), kSearchInFront);
  Do("wait 300ms");
  const auto start = std::chrono::steady_clock::now();
  simulator->Kill();
  EXPECT_TRUE(console->Try("idle within 30s", kPatience).Ok());
  EXPECT_LE(Since(start), kMachine);
  ExpectNothingFound();
}

// While it runs.

TEST_F(Search, StandsInFrontShowsItsWayAndStopsAtEscape) {
  StartSimulator({"--com1", "belk:addr=2,line=38400n81"});
  OpenConsoleWithoutSearch();
  Do("click labBelk");
  EXPECT_EQ(Do("click buttCheckDevice"), kSearchInFront);
  for (const std::string name : {"labBelk", "LabHome", "MenuBelk", "MenuPCSetup", "buttCheckDevice",
                                 "mnuCheckconnection", "ExitMNU", "frmAbout", "CheckEnableCheckConnection"}) {
    const ConsoleReply reply = console->Try("click MDIForm1." + name);
    EXPECT_FALSE(reply.Ok()) << name;
    EXPECT_EQ(reply.Modal(), kSearchInFront);
  }
  EXPECT_FALSE(console->Try("choose MDIForm1.cbSelectDevice 1").Ok());
  EXPECT_FALSE(console->Try("quit").Ok());
  EXPECT_EQ(Get("MousePointer"), "hourglass");
  EXPECT_EQ(Get("StartComm"), "-1");
  EXPECT_EQ(Get("MDIForm1.StatusBar1(1).Text"), "Check if a device is on line...");
  EXPECT_THAT(Get("frmKeyb.Caption"), StartsWith("Tarvo  "));
  EXPECT_THAT(Get("Label1.Caption"), HasSubstr("ESC"));
  EXPECT_THAT(Get("Label2.Caption"), AllOf(HasSubstr("COM1"), HasSubstr("38400")));

  // The window lives: time goes by for it as for the user.
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Do("wait 100ms"), kSearchInFront);
  EXPECT_THAT(Since(start), AllOf(Ge(Milliseconds(100)), Le(Milliseconds(500))));

  EXPECT_EQ(Do("until Label2.Caption contains 9600 within 4s"), kSearchInFront);
  const auto escape = std::chrono::steady_clock::now();
  EXPECT_EQ(Do("key Escape"), kSearchInFront);
  EXPECT_EQ(Get("EscPressed"), "1");
  EXPECT_TRUE(console->Try("idle within 30s", kPatience).Ok());
  EXPECT_LE(Since(escape), kSilence + kMachine);
  ExpectNothingFound();
}

TEST_F(Search, IsStoppedByAnEscapeThatWasPressedBefore) {
  StartSimulator({"--com1", "belk:line=38400n81"});
  OpenConsoleWithoutSearch();
  EXPECT_EQ(Do("key Escape"), kNothing);
  EXPECT_EQ(Get("EscPressed"), "1");
  EXPECT_LE(RunSearch(), kMachine);
  ExpectNothingFound();
  RunSearch();
  ExpectFound(1, "38400,n,8,1");
}

TEST_F(Search, IsEndedWithTheProgramByTheEndOfInput) {
  StartSimulator({"--com1", "belk:addr=2,line=38400n81"});
  StoreSwitch("TRUE");
  OpenConsole();
  std::this_thread::sleep_for(Milliseconds(300));
  const auto start = std::chrono::steady_clock::now();
  console->Process().EndInput();
  EXPECT_EQ(console->Process().WaitWithin(), 0);
  EXPECT_LE(Since(start), kMachine);
}

}  // namespace
}  // namespace tarvo
