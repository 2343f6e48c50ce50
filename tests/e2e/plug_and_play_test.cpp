// The page of the raw exchange, which only the console's command opens, against the simulator.

#include <map>
#include <memory>
#include <string>

#include "e2e/shell_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kMustStop;
using test::kNothing;
using testing::AllOf;
using testing::HasSubstr;

class PlugAndPlayPage : public test::ShellBench {
 protected:
  void Open() {
    EXPECT_EQ(Do("open frmPlugAndPlay"), kNothing);
    EXPECT_EQ(Get("MSComm1.PortOpen"), "true");
    EXPECT_EQ(Get("TimerRefresh.Enabled"), "true");
  }
  void OpenOn(const std::string& module) {
    StartSimulator(module);
    OpenConsole();
    Open();
  }
  /// The page takes a second for each of its parameters.
  void UntilParameter(int index, const std::string& value) const {
    Until("Parameter(" + std::to_string(index) + ").Caption = " + value);
  }
  std::string Parameter(int index) const { return Get("Parameter(" + std::to_string(index) + ").Caption"); }

  void ExpectClosed() const {
    EXPECT_EQ(Get("frmPlugAndPlay.MSComm1.PortOpen"), "false");
    EXPECT_EQ(Get("frmPlugAndPlay.TimerRefresh.Enabled"), "false");
  }
  /// The page refuses to be left, and its session goes on.
  void ExpectRefused() {
    EXPECT_EQ(Do("open frmPlugAndPlay"), BoxJson(kMustStop, "exclamation"));
    EXPECT_EQ(Do("answer OK"), kNothing);
    ExpectClosed();
  }
};

TEST_F(PlugAndPlayPage, ShowsTheRegistersOfTheModuleOneAfterTheOther) {
  OpenOn("belk:fw=3,40002=0x0105,40003=5,40004=60000,40005=32768");
  const std::string last = Parameter(19);
  UntilParameter(0, "259");
  UntilParameter(2, "5");
  UntilParameter(3, "60000");
  UntilParameter(4, "32768");
  EXPECT_EQ(Parameter(19), last);
  const int status = Number("Parameter(1).Caption");
  EXPECT_EQ(Do("click labBelk"), kNothing);
  EXPECT_EQ(Registers(1, 5), (std::map<int, int>{{1, 259}, {2, status}, {3, 5}, {4, 60000}, {5, 32768}}));
}

TEST_F(PlugAndPlayPage, ShowsTheRegistersOfTheModuleOfThePcSetup) {
  StartSimulator("belk:addr=9,line=38400e81,fw=1");
  OpenConsole();
  SetPcLine("38400", "Option4", "9");
  Open();
  UntilParameter(0, "257");
}

TEST_F(PlugAndPlayPage, StandsInPlaceOfThePageThatWasThere) {
  OpenOn("belk");
  EXPECT_EQ(Get("NrFinestra"), "-1");
  EXPECT_FALSE(console->Try("click StartBelk").Ok());
  EXPECT_EQ(console->Try("open frmPlugAndPlay").Error(), "frmPlugAndPlay is on the screen");
}

TEST_F(PlugAndPlayPage, IsNotOpenedDuringASession) {
  OpenSession("belk");
  ExpectRefused();
  LetPoll();
  EXPECT_EQ(Get("StartComm"), "-1");
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
}

TEST_F(PlugAndPlayPage, IsNotOpenedWhileASessionStarts) {
  StartSimulator("belk");
  OpenConsole();
  simulator->Freeze();
  Do("nowait click StartBelk");
  ExpectRefused();
  simulator->Thaw();
  Do("idle within 3s");
  EXPECT_EQ(Get("StartComm"), "-1");
}

TEST_F(PlugAndPlayPage, IsOpenedAfterASession) {
  OpenSession("belk:fw=3");
  StopSession();
  Open();
  UntilParameter(0, "259");
}

TEST_F(PlugAndPlayPage, FreesItsPortWhenItIsLeft) {
  OpenOn("belk:fw=3,40008=33");
  UntilParameter(0, "259");
  EXPECT_EQ(Do("click labBelk"), kNothing);
  ExpectClosed();
  EXPECT_EQ(Register(8), 33);
  StartSession();
}

TEST_F(PlugAndPlayPage, TellsAPortThatAnotherProgramHolds) {
  OpenSession("belk");
  const std::unique_ptr<test::ConsoleProcess> other = OpenProgram(Device());
  EXPECT_THAT(other->Do("open frmPlugAndPlay"),
              AllOf(HasSubstr(R"("window":"MsgBox")"), HasSubstr("is held by tarvo-console")));
  EXPECT_EQ(other->Do("answer OK"), kNothing);
  EXPECT_EQ(other->Get("MSComm1.PortOpen"), "false");
  EXPECT_EQ(other->Get("TimerRefresh.Enabled"), "false");
  LetPoll();
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
}

TEST_F(PlugAndPlayPage, SaysNothingWhenTheModuleVanishes) {
  OpenOn("belk:fw=3");
  UntilParameter(0, "259");
  simulator->Kill();
  EXPECT_EQ(Do("wait 2500ms"), kNothing);
  EXPECT_EQ(Parameter(0), "259");
}

TEST_F(PlugAndPlayPage, LetsTheProgramEnd) {
  OpenOn("belk");
  SendAndEnd("quit");
}

}  // namespace
}  // namespace tarvo
