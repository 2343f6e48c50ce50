// The Marlo page against a simulated module: outputs, diagnostics and settings, looked up in the module itself.

#include <fstream>
#include <string>
#include <vector>

#include "e2e/page_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kNothing;
using test::kValueDialog;
using test::Life;

const std::string kNotMarlo = BoxJson("ERROR! Module is not Marlo or communication failed", "critical");
const std::string kCommitted = BoxJson("EEProm updated! Now you have to restart the module ", "exclamation");
const std::string kOnlyToZero = "Diagnostic Led can only be set to 0";

constexpr int kOutputs = 40003;
constexpr int kDiagnostics = 40004;
constexpr int kDefaults = 40005;
constexpr int kAddress = 40010;
constexpr int kBaud = 40011;
constexpr int kOptions = 40012;
constexpr int kSafeTime = 40013;
constexpr int kOpenedMask = 40015;
constexpr int kLimits = 40016;

class Marlo : public test::PageBench {
 protected:
  Marlo()
      : PageBench(test::PageNames{
            .model = "Marlo", .menu = "mnuMarlo", .start = "buttStartMarlo", .stop = "buttStopMarlo"}) {}

  void OpenPage(const std::string& module, Life life = Life::kStill) {
    StartSimulator(module, life);
    if (life == Life::kLive) HangGoodLoads();
    OpenConsole();
  }
  std::string Order(const std::string& order) const {
    std::string answer = simulator->Order("com1 " + order);
    EXPECT_TRUE(answer.starts_with("ok ")) << answer;
    return answer;
  }
  void HangGoodLoads() const {
    for (int output = 1; output <= 10; ++output) Order("load " + std::to_string(output) + " good");
    Order("set 40004 0");
  }
  /// What a register of the simulated module holds, also while a session runs; it is no talk on the line.
  int Held(int number) const {
    const std::string answer = Order("get " + std::to_string(number));
    return std::atoi(answer.substr(answer.rfind(' ') + 1).c_str());
  }

  /// Ten controls as a row of signs: "1" where the property has that value, else "-".
  std::string Row(const std::string& array, const std::string& property, const std::string& value,
                  int count = 10) const {
    std::string row;
    for (int i = 0; i < count; ++i) {
      row += Get(array + "(" + std::to_string(i) + ")." + property) == value ? '1' : '-';
    }
    return row;
  }
  std::string OutputsOn() const { return Row("buttOUTMarlo", "Picture", "2"); }
  std::string Red(const std::string& lamps, int count = 10) const { return Row(lamps, "BackColor", "255", count); }

  void Edit(const std::string& control, const std::string& text) const {
    EXPECT_EQ(Do("click " + control), kValueDialog);
    EXPECT_EQ(EnterValue(text), kNothing);
  }
  /// A button whose box must be `box`.
  void ClickThrough(const std::string& button, const std::string& box) const {
    EXPECT_EQ(Do("click " + button), box);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  void Restart() const {
    Order("restart");
    Do("wait 450ms");
  }
  void ExpectPortClosed() const {
    EXPECT_EQ(Get("ModCom1.PortOpen"), "false");
    EXPECT_FALSE(console->Process().HasOpen(Device()));
  }
};

TEST_F(Marlo, ReadsItsModuleWhenThePageIsShown) {
  OpenPage(
      "marlo:fw=17,addr=1,40002=0x4A,40003=0x0201,40004=0x0003,40005=0x000C,40006=0x0030,40007=0x00C0,40008=0x0300,"
      "40009=236,40012=0x0301,40013=321,40015=0x0155,40016=0x07B9");
  EXPECT_EQ(Get("labFW.Caption"), "Firmware rel: 17");
  EXPECT_EQ(OutputsOn(), "1--------1");
  EXPECT_EQ(Red("shDamage"), "11--------");
  EXPECT_EQ(Red("shDefault"), "--11------");
  EXPECT_EQ(Red("shOpen"), "----11----");
  EXPECT_EQ(Red("shShorted"), "------11--");
  EXPECT_EQ(Red("shHot"), "--------11");
  EXPECT_EQ(Red("shOpenedMask"), "1-1-1-1-1-");
  EXPECT_EQ(Red("shStatus", 5), "-1-11");
  EXPECT_EQ(Get("labSafetimeMarlo.Caption"), "321");
  EXPECT_EQ(Get("labAddressMarlo.Caption"), "1");
  EXPECT_EQ(Get("cbBaudMarlo.Text"), "9600");
  EXPECT_EQ(Get("checkParity.Value"), "0");
  EXPECT_EQ(Get("CheckResetTimeout.Value"), "1");
  EXPECT_EQ(Get("CheckFailLed.Value"), "0");
  EXPECT_EQ(Get("ComboFailLed.Text"), "double flash");
  EXPECT_EQ(Get("txtValTreshold.Text"), "18");
  EXPECT_EQ(Get("txtDelay.Text"), "7");
  EXPECT_EQ(Get("NrFinestra"), "10");
  ExpectOffline();
  ExpectPortClosed();
}

TEST_F(Marlo, TogglesOutputsWithoutASession) {
  OpenPage("marlo:40003=0x0002,40009=236");
  EXPECT_EQ(Do("click buttOUTMarlo(0)"), kNothing);
  EXPECT_EQ(Held(kOutputs), 0x0003);
  EXPECT_EQ(OutputsOn(), "11--------");
  // The module has changed meanwhile: all of it is read anew.
  Order("set 40009 199");
  EXPECT_EQ(Do("click buttOUTMarlo(1)"), kNothing);
  EXPECT_EQ(Held(kOutputs), 0x0001);
  EXPECT_EQ(OutputsOn(), "1---------");
  ExpectOffline();
  ExpectPortClosed();
}

TEST_F(Marlo, TogglesEachOutputWhilePollingGoesOn) {
  OpenPage("marlo:40003=0x02AA");
  StartSession();
  int outputs = 0x02AA;
  for (int i = 0; i < 10; ++i) {
    const std::string button = "buttOUTMarlo(" + std::to_string(i) + ")";
    EXPECT_EQ(Do("click " + button), kNothing);
    outputs ^= 1 << i;
    EXPECT_EQ(Held(kOutputs), outputs);
    Until(button + ".Picture = " + ((outputs >> i & 1) != 0 ? "2" : "1"));
  }
  EXPECT_EQ(OutputsOn(), "1-1-1-1-1-");
  EXPECT_EQ(Get("MessageMarlo.Caption"), "OK");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Marlo , COM1,9600,n,8,1  Module Address:1");
  EXPECT_EQ(Get("RunKind"), "2");
  StopSession();
  ExpectOffline();
}

TEST_F(Marlo, LosesNoneOfManyTogglesAtOnce) {
  OpenPage("marlo:40003=0x02AA");
  StartSession();
  for (int i = 0; i < 10; ++i) Do("nowait click buttOUTMarlo(" + std::to_string(i) + ")");
  Do("idle within 4s");
  EXPECT_EQ(Held(kOutputs), 0x0155);
  LetPoll();
  EXPECT_EQ(OutputsOn(), "1-1-1-1-1-");
}

TEST_F(Marlo, ShowsWhatItsLoadsDoWhileTheSessionRuns) {
  OpenPage("marlo:40003=0x03FF,40013=0,40016=0x0264", Life::kLive);
  StartSession();
  Order("load 3 open");
  Until("shOpen(2).BackColor = 255");
  EXPECT_EQ(Red("shStatus", 5), "-1-1-");
  Order("load 5 short");
  Until("shShorted(4).BackColor = 255");
  Order("load 10 hot");
  Until("shHot(9).BackColor = 255");
  LetPoll();
  EXPECT_EQ(Red("shDamage"), "--1-1----1");
  EXPECT_EQ(Red("shStatus", 5), "1111-");
  // Off, an output has neither short circuit nor heat.
  EXPECT_EQ(Do("click buttOUTMarlo(4)"), kNothing);
  Until("shShorted(4).BackColor = 65280");
  Order("load 3 good");
  Order("load 10 good");
  Until("shHot(9).BackColor = 65280");
  LetPoll();
  EXPECT_EQ(Red("shDamage"), "--1-1----1");
  EXPECT_EQ(Red("shStatus", 5), "---1-");
  Order("set 40009 95");
  Until("shStatus(4).BackColor = 255");
}

TEST_F(Marlo, ClearsLatchedDiagnosticsOneByOne) {
  OpenPage("marlo:40003=0x0000,40013=0", Life::kLive);
  Order("load 1 open");
  Order("load 2 open");
  Do("wait 50ms");
  Order("load 2 good");
  // A toggle there and back reads the page anew.
  EXPECT_EQ(Do("click buttOUTMarlo(9)"), kNothing);
  EXPECT_EQ(Red("shDamage"), "11--------");
  EXPECT_EQ(Do("click shDamage(1)"), kNothing);
  EXPECT_EQ(Held(kDiagnostics), 0x0001);
  EXPECT_EQ(Red("shDamage"), "1---------");
  EXPECT_EQ(Get("StatusBar1(1).Text"), kOnlyToZero);
  // What is still wrong comes again.
  EXPECT_EQ(Do("click shDamage(0)"), kNothing);
  Do("wait 50ms");
  EXPECT_EQ(Held(kDiagnostics), 0x0001);
  ExpectPortClosed();
}

TEST_F(Marlo, StoresDefaultsThatTheOutputsTakeAtARestart) {
  OpenPage("marlo:40003=0x0001,40005=0x0006");
  EXPECT_EQ(Do("click shDefault(1)"), kNothing);
  EXPECT_EQ(Do("click shDefault(9)"), kNothing);
  EXPECT_EQ(Held(kDefaults), 0x0204);
  EXPECT_EQ(Red("shDefault"), "--1------1");
  EXPECT_EQ(Held(kOutputs), 0x0001);
  Restart();
  StartSession();
  LetPoll();
  EXPECT_EQ(OutputsOn(), "--1------1");
  EXPECT_EQ(Red("shDefault"), "--1------1");
}

TEST_F(Marlo, LooksForOpenOutputsByTheMask) {
  OpenPage("marlo:40013=0,40015=0x03FF", Life::kLive);
  Order("load 4 open");
  EXPECT_EQ(Do("click shOpenedMask(3)"), kNothing);
  EXPECT_EQ(Held(kOpenedMask), 0x03F7);
  EXPECT_EQ(Red("shOpenedMask"), "111-111111");
  StartSession();
  LetPoll();
  EXPECT_EQ(Red("shOpen"), "----------");
  StopSession();
  EXPECT_EQ(Do("click shOpenedMask(3)"), kNothing);
  StartSession();
  Until("shOpen(3).BackColor = 255");
}

TEST_F(Marlo, OnlyBeepsForALampInASession) {
  OpenPage("marlo:40004=3,40005=5");
  StartSession();
  for (const char* lamp : {"shDamage(0)", "shDefault(1)", "shOpenedMask(2)"}) {
    EXPECT_EQ(Do("click " + std::string(lamp)), kNothing);
  }
  EXPECT_EQ(Get("Beeps"), "3");
  EXPECT_EQ(Held(kDiagnostics), 3);
  EXPECT_EQ(Held(kDefaults), 5);
  EXPECT_EQ(Held(kOpenedMask), 0x03FF);
}

TEST_F(Marlo, StoresItsSettings) {
  OpenPage("marlo:40011=0x000A");
  Edit("labSafetimeMarlo", "600");
  EXPECT_EQ(Do("click CheckResetTimeout"), kNothing);
  EXPECT_EQ(Do("click CheckFailLed"), kNothing);
  EXPECT_EQ(Do("choose ComboFailLed \"fast blink\""), kNothing);
  EXPECT_EQ(Do("type txtValTreshold \"2.5\""), kNothing);
  EXPECT_EQ(Do("key txtValTreshold Enter"), kNothing);
  EXPECT_EQ(Get("txtValTreshold.Text"), "2,5");
  EXPECT_EQ(Do("type txtDelay 40"), kNothing);
  EXPECT_EQ(Do("leave txtDelay"), kNothing);
  EXPECT_EQ(Held(kBaud), 0x010A);
  ClickThrough("buttWEEPMarlo", kCommitted);
  EXPECT_EQ(Held(kSafeTime), 600);
  EXPECT_EQ(Held(kOptions), 0x0203);
  EXPECT_EQ(Held(kLimits), 40 << 8 | 20);
  EXPECT_EQ(Held(kBaud), 0x0100);
  EXPECT_EQ(Held(kAddress), 0x0100);
  ExpectOffline();
  ExpectPortClosed();
}

TEST_F(Marlo, LeavesTheLimitsOutWhenTheyAreNoNumbers) {
  OpenPage("marlo:40016=0x05B4");
  EXPECT_EQ(Do("type txtDelay five"), kNothing);
  EXPECT_EQ(Do("leave txtDelay"), BoxJson("Delay is not numeric !", "exclamation"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  EXPECT_EQ(Do("click buttWEEPMarlo"), BoxJson("Val Treshold or Delay fields are  not numeric !", "exclamation"));
  EXPECT_EQ(Do("answer OK"), kCommitted);
  EXPECT_EQ(Do("answer OK"), kNothing);
  EXPECT_EQ(Held(kLimits), 0x05B4);
  ExpectOffline();
}

TEST_F(Marlo, TakesAddressSpeedAndParityAtItsRestart) {
  OpenPage("marlo");
  Edit("labAddressMarlo", "9");
  EXPECT_EQ(Do("choose cbBaudMarlo 38400"), kNothing);
  EXPECT_EQ(Do("click checkParity"), kNothing);
  EXPECT_EQ(Do("click OptionOdd"), kNothing);
  ClickThrough("buttWEEPMarlo", kCommitted);
  EXPECT_EQ(Held(kAddress), 0x0902);
  EXPECT_EQ(Held(kBaud), 0x0300);
  // Until then it goes by what it had.
  StartSession();
  StopSession();
  Restart();
  ClickThrough("buttStartMarlo", kNotMarlo);
  Do("click LabPCSetup");
  Do("choose PCBaudRate 38400");
  Do("click Option5");
  Edit("PCAddress", "9");
  EXPECT_EQ(Do("click labMarlo"), kNothing);
  EXPECT_EQ(Get("labAddressMarlo.Caption"), "9");
  EXPECT_EQ(Get("cbBaudMarlo.Text"), "38400");
  EXPECT_EQ(Get("OptionOdd.Value"), "true");
  StartSession();
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Marlo , COM1,38400,o,8,1  Module Address:9");
}

TEST_F(Marlo, RestsAfterACommitInASessionUntilStop) {
  OpenPage("marlo:40013=5");
  StartSession();
  Edit("labSafetimeMarlo", "77");
  EXPECT_EQ(Get("StartComm"), "-1");
  ClickThrough("buttWEEPMarlo", kCommitted);
  EXPECT_EQ(Held(kSafeTime), 77);
  EXPECT_EQ(Get("StartComm"), "-1");
  EXPECT_EQ(Get("TimerLetturaSeriale.Enabled"), "false");
  ExpectPortClosed();
  EXPECT_EQ(Do("click buttOUTMarlo(0)"), kNothing);
  Until("MessageMarlo.Caption = \"ERROR! Wrong Comm.\"");
  EXPECT_EQ(Held(kOutputs), 0);
  StopSession();
  ExpectOffline();
  StartSession();
}

TEST_F(Marlo, FallsIntoItsDefaultsWhenNobodyTalksToIt) {
  OpenPage("marlo:40003=0x03FF,40005=0x0155,40012=0,40013=15,40016=0", Life::kLive);
  StartSession();
  Do("wait 2s");
  EXPECT_EQ(OutputsOn(), "1111111111");
  StopSession();
  EXPECT_EQ(Held(kOutputs), 0x03FF);
  Do("wait 1700ms");
  EXPECT_EQ(Held(kOutputs), 0x0155);
  StartSession();
  LetPoll();
  EXPECT_EQ(OutputsOn(), "1-1-1-1-1-");
}

TEST_F(Marlo, RefusesAnotherModel) {
  OpenPage("belk");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "This module is not a Marlo");
  for (const char* button : {"buttStartMarlo", "buttWEEPMarlo"}) {
    ClickThrough(button, kNotMarlo);
    ExpectOffline();
  }
  StartSimulator("marlo:40013=88");
  StartSession();
  EXPECT_EQ(Get("labSafetimeMarlo.Caption"), "88");
}

TEST_F(Marlo, GoesOnWhenTheLineComesBack) {
  OpenPage("marlo");
  StartSession();
  Order("silence");
  Until("MessageMarlo.Caption = \"ERROR! Wrong Comm.\"", "5s");
  Order("clear");
  Until("MessageMarlo.Caption = OK", "5s");
  EXPECT_EQ(Get("StartComm"), "-1");
}

TEST_F(Marlo, IsFoundByTheSearchAndRead) {
  StartSimulator("marlo:line=38400n81,fw=4,40003=0x0011,40013=77");
  std::ofstream(folder / "own-settings") << "AUTOSCAN=FALSE\n";
  std::vector<std::string> arguments = {"--settings", folder / "own-settings", "--com1", Device()};
  for (int port = 2; port <= 4; ++port) {
    const std::string name = "com" + std::to_string(port);
    arguments.insert(arguments.end(), {"--" + name, folder / ("no-" + name)});
  }
  console = std::make_unique<test::ConsoleProcess>(arguments);
  Do("nowait click buttCheckDevice");
  Do("idle within 4s");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Marlo, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Get("NrFinestra"), "10");
  EXPECT_EQ(OutputsOn(), "1---1-----");
  EXPECT_EQ(Get("labSafetimeMarlo.Caption"), "77");
  EXPECT_EQ(Get("cbBaudMarlo.Text"), "38400");
  EXPECT_EQ(Get("labFW.Caption"), "Firmware rel: 4");
  StartSession();
}

}  // namespace
}  // namespace tarvo
