// The Quenby page against a simulated module: what is shown of it, what the user sets at once and what he stores, and
// the search.

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "e2e/page_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kNothing;
using test::kValueDialog;
using test::kWrongComm;
using test::Life;
using testing::ElementsAre;

const std::string kNotQuenby = BoxJson("ERROR! Module is not Quenby or communication failed", "critical");
const std::string kUpdated = BoxJson("EEProm updated! Now you have to restart the module ", "exclamation");
const std::string kReset = BoxJson("Module is Resetted!", "information");
const std::string kResetAndStopped = BoxJson("Module is Resetted! Comunication Stopped", "information");
const std::string kNewValueDialog = R"({"window":"dlgSetNewValue"})";

class QuenbyPage : public test::PageBench {
 protected:
  QuenbyPage()
      : PageBench({.model = "Quenby",
                   .label = "LabQuenby",
                   .menu = "mnuQuenby",
                   .start = "buttStart",
                   .stop = "buttStop",
                   .message = "Message"}) {}

  /// What a register of the simulated module holds, also while a session runs; it is no talk on the line.
  int Held(int number) const {
    const std::string answer = simulator->Order("com1 get " + std::to_string(number));
    EXPECT_TRUE(answer.starts_with("ok ")) << answer;
    return std::atoi(answer.substr(answer.rfind(' ') + 1).c_str());
  }
  std::vector<int> HeldAll(int first, int last) const {
    std::vector<int> values;
    values.reserve(static_cast<std::size_t>(last - first) + 1);
    for (int number = first; number <= last; ++number) values.push_back(Held(number));
    return values;
  }

  std::string Output(int output) const { return Get("txtValRam(" + std::to_string(output) + ").Caption"); }
  /// Gives an output a new value; gives what stands in front then.
  std::string SetOutput(int output, const std::string& text) const {
    EXPECT_EQ(Do("click txtValRam(" + std::to_string(output) + ')'), kNewValueDialog);
    EXPECT_EQ(Do("type txtValRam \"" + text + '"'), kNewValueDialog);
    return Do("click OK");
  }
  void SetDefault(int output, const std::string& text) const {
    const std::string name = "txtVal(" + std::to_string(output) + ')';
    EXPECT_EQ(Do("type " + name + " \"" + text + '"'), kNothing);
    EXPECT_EQ(Do("key " + name + " Enter"), kNothing);
  }
  void Edit(const std::string& label, const std::string& text) const {
    EXPECT_EQ(Do("click " + label), kValueDialog);
    EXPECT_EQ(EnterValue(text), kNothing);
    EXPECT_EQ(Get(label + ".Caption"), text);
  }
  /// A button whose box must be `box`.
  void ClickThrough(const std::string& button, const std::string& box) const {
    EXPECT_EQ(Do("click " + button), box);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  /// Until a module that was reset listens again.
  void AwaitRestart() const { Do("wait 450ms"); }
};

TEST_F(QuenbyPage, ReadsItsModuleWhenItIsEntered) {
  StartSimulator("quenby:fw=7,40003=123,40004=0x0A44,40005=1,40006=5000,40007=10000,40008=2");
  OpenConsole();
  EXPECT_EQ(Get("labFW.Caption"), "FW vers. : 7");
  EXPECT_EQ(Get("labTimeout.Caption"), "123");
  EXPECT_EQ(Get("labAddress.Caption"), "1");
  EXPECT_EQ(Get("cbBaud.Text"), "9600");
  EXPECT_EQ(Get("CheckDelay12ms.Value"), "1");
  EXPECT_EQ(Get("CheckResetTimer.Value"), "1");
  EXPECT_EQ(Get("CheckDefaultOutputs.Value"), "0");
  EXPECT_EQ(Get("cbStartScale(0).ListIndex"), "0");
  EXPECT_EQ(Get("cbStartScale(1).Text"), "set start scale to 4mA");
  EXPECT_EQ(Get("cbFullScale(0).Text"), "set full scale to 20mA (10V)");
  EXPECT_EQ(Get("CheckError(0).Value"), "0");
  EXPECT_EQ(Get("CheckError(1).Value"), "1");
  EXPECT_EQ(Output(0), "1");
  EXPECT_EQ(Output(1), "5000");
  EXPECT_EQ(Output(2), "10000");
  EXPECT_EQ(Get("pageEntered"), "-1");
  ExpectOffline();
}

TEST_F(QuenbyPage, TellsAnotherModuleWhenItIsEntered) {
  StartSimulator("belk");
  OpenConsole();
  EXPECT_EQ(Get("StatusBar1(2).Text"), "This module is not a Quenby");
  EXPECT_EQ(Get("pageEntered"), "-1");
  ExpectOffline();
}

TEST_F(QuenbyPage, SetsEachOutputAtOnceInASession) {
  OpenSession("quenby");
  EXPECT_EQ(SetOutput(0, "1"), kNothing);
  EXPECT_EQ(SetOutput(1, "5000"), kNothing);
  EXPECT_EQ(SetOutput(2, "10000"), kNothing);
  EXPECT_THAT(HeldAll(40005, 40007), ElementsAre(1, 5000, 10000));
  EXPECT_THAT(HeldAll(40069, 40071), ElementsAre(0, 0, 0));
  LetPoll();
  EXPECT_EQ(Output(1), "5000");
  EXPECT_EQ(Get("Message.Caption"), "OK");
  EXPECT_EQ(Get("StartComm"), "-1");
}

TEST_F(QuenbyPage, SetsAnOutputWithoutASession) {
  StartSimulator("quenby");
  OpenConsole();
  EXPECT_EQ(SetOutput(1, "777"), kNothing);
  EXPECT_EQ(Held(40006), 777);
  EXPECT_EQ(Output(1), "777");
  ExpectOffline();
}

TEST_F(QuenbyPage, HoldsANewValueToWhatTheModuleTakes) {
  OpenSession("quenby");
  EXPECT_EQ(SetOutput(0, "10001"), kNothing);
  EXPECT_EQ(Held(40005), 10000);
  EXPECT_EQ(Get("Beeps"), "1");
  EXPECT_EQ(SetOutput(0, "-1"), kNothing);
  EXPECT_EQ(Held(40005), 0);
  EXPECT_EQ(Get("Beeps"), "2");
  EXPECT_EQ(SetOutput(0, "abc"), BoxJson("Value is not numeric !", "exclamation"));
  EXPECT_EQ(Do("answer OK"), kNewValueDialog);
  EXPECT_EQ(Do("click Cancel"), kNothing);
  EXPECT_EQ(Held(40005), 0);
}

TEST_F(QuenbyPage, TellsARefusedNewValue) {
  StartSimulator("quenby");
  OpenConsole();
  EXPECT_EQ(simulator->Order("com1 exception"), "ok com1 exception");
  EXPECT_EQ(SetOutput(2, "5"), kNothing);
  EXPECT_EQ(Get("StatusBar1(1).Text"), "unable to write 40007");
  EXPECT_EQ(Held(40007), 0);
  ExpectOffline();
}

TEST_F(QuenbyPage, ShowsOutputsFlagsAndNoMoreOfALivingModule) {
  OpenSession("quenby", Life::kLive);
  EXPECT_EQ(Get("CheckDefaultOutputs.Value"), "1");
  EXPECT_EQ(simulator->Order("com1 set 40007 4321"), "ok com1 set 40007 4321");
  EXPECT_EQ(simulator->Order("com1 set 40004 0x0104"), "ok com1 set 40004 0x0104");
  EXPECT_EQ(simulator->Order("com1 set 40008 1"), "ok com1 set 40008 1");
  Until("txtValRam(2).Caption = 4321");
  Until("cbStartScale(0).ListIndex = 1");
  EXPECT_EQ(Get("CheckDelay12ms.Value"), "1");
  EXPECT_EQ(Get("CheckDefaultOutputs.Value"), "0");
  EXPECT_EQ(Get("CheckError(0).Value"), "0") << "the status is read with the settings only";
  StopSession();
  StartSession();
  EXPECT_EQ(Get("CheckError(0).Value"), "1");
}

TEST_F(QuenbyPage, SeesItsOutputsFallBackToTheirDefaultsWhenOnlyWritesCount) {
  OpenSession("quenby:40003=10,40004=0x00C0,40069=300", Life::kLive);
  EXPECT_EQ(SetOutput(0, "9000"), kNothing);
  EXPECT_EQ(Held(40005), 9000);
  Until("txtValRam(0).Caption = 300");
}

TEST_F(QuenbyPage, ChangesEachFlagInTheModule) {
  struct Flag {
    const char* gesture;
    int mask;
  };
  constexpr std::array kFlags = {Flag{"click CheckDelay12ms", 0x0004},      Flag{"click checkParity", 0x0008},
                                 Flag{"click OptionOdd", 0x0010},           Flag{"click CheckResetTimer", 0x0040},
                                 Flag{"click CheckDefaultOutputs", 0x0080}, Flag{"choose cbStartScale(0) 1", 0x0100},
                                 Flag{"choose cbStartScale(1) 1", 0x0200},  Flag{"choose cbStartScale(2) 1", 0x0400},
                                 Flag{"choose cbFullScale(0) 1", 0x0800}};
  OpenSession("quenby:40004=0xA000");
  int flags = 0xA000;
  for (const Flag& flag : kFlags) {
    EXPECT_EQ(Do(flag.gesture), kNothing);
    LetPoll();
    flags |= flag.mask;
    EXPECT_EQ(Held(40004), flags) << flag.gesture;
  }
  EXPECT_EQ(Held(40068), 0xA000);
  EXPECT_EQ(Do("choose cbStartScale(1) 0"), kNothing);
  EXPECT_EQ(Do("click OptionEven"), kNothing);
  EXPECT_EQ(Do("click CheckResetTimer"), kNothing);
  LetPoll();
  EXPECT_EQ(Held(40004), flags & ~0x0250);
  EXPECT_EQ(Get("Message.Caption"), "OK");
}

TEST_F(QuenbyPage, StoresASessionsSettingsForAfterTheReset) {
  OpenSession("quenby:40005=5000");
  Edit("labTimeout", "77");
  Edit("labAddress", "1");
  SetDefault(0, "100");
  SetDefault(1, "200");
  SetDefault(2, "10000");
  EXPECT_EQ(Do("choose cbFullScale(0) 1"), kNothing);
  EXPECT_EQ(SetOutput(2, "5"), kNothing);
  LetPoll();
  ClickThrough("buttWriteEEPROM", kUpdated);
  EXPECT_THAT(HeldAll(40066, 40071), ElementsAre(0x0101, 77, 0x0800, 100, 200, 10000));
  EXPECT_THAT(HeldAll(40005, 40007), ElementsAre(5000, 0, 5));
  EXPECT_EQ(Get("StartComm"), "-1");
  ClickThrough("buttReset", kResetAndStopped);
  ExpectOffline();
  AwaitRestart();
  StartSession();
  EXPECT_EQ(Get("labTimeout.Caption"), "77");
  EXPECT_EQ(Get("cbFullScale(0).ListIndex"), "1");
  EXPECT_EQ(Output(0), "100");
  EXPECT_EQ(Output(1), "200");
  EXPECT_EQ(Output(2), "10000");
}

TEST_F(QuenbyPage, StoresSettingsWithoutASession) {
  StartSimulator("quenby");
  OpenConsole();
  EXPECT_EQ(Do("click CheckDefaultOutputs"), kNothing);
  SetDefault(1, "4000");
  EXPECT_EQ(Held(40004), 0);
  ClickThrough("buttWriteEEPROM", kUpdated);
  ExpectOffline();
  ClickThrough("buttReset", kReset);
  ExpectOffline();
  AwaitRestart();
  EXPECT_EQ(Held(40004), 0x0080);
  EXPECT_EQ(Held(40006), 4000);
}

TEST_F(QuenbyPage, ForgetsAtTheResetWhatWasNotStored) {
  OpenSession("quenby:40005=500");
  EXPECT_EQ(Do("click CheckDelay12ms"), kNothing);
  EXPECT_EQ(SetOutput(0, "700"), kNothing);
  ClickThrough("buttReset", kResetAndStopped);
  AwaitRestart();
  StartSession();
  EXPECT_EQ(Get("CheckDelay12ms.Value"), "0");
  EXPECT_EQ(Output(0), "500");
}

TEST_F(QuenbyPage, MovesTheModuleToAnotherAddressAndLine) {
  OpenSession("quenby");
  Edit("labAddress", "200");
  EXPECT_EQ(Do("choose cbBaud 38400"), kNothing);
  EXPECT_EQ(Do("click checkParity"), kNothing);
  ClickThrough("buttWriteEEPROM", kUpdated);
  ClickThrough("buttReset", kResetAndStopped);
  AwaitRestart();
  ClickThrough("buttStart", kNotQuenby);
  ExpectOffline();
  const test::Polled polled = test::RunMbpoll(Device(), "-a 200 -b 38400 -P even -r 2 -c 3");
  EXPECT_EQ(polled.registers, (std::map<int, int>{{2, 0x03C8}, {3, 50}, {4, 0x08}})) << polled.errors;
}

TEST_F(QuenbyPage, RefusesAModuleOfAnotherModel) {
  StartSimulator("gaven");
  OpenConsole();
  for (const char* button : {"buttStart", "buttWriteEEPROM", "buttReset"}) {
    ClickThrough(button, kNotQuenby);
    ExpectOffline();
  }
  EXPECT_EQ(Register(66), 0x0101);
  StartSimulator("quenby");
  StartSession();
}

TEST_F(QuenbyPage, TellsAVanishedModuleAndTakesItBack) {
  OpenSession("quenby:40006=77");
  simulator->Freeze();
  Until("Message.Caption = \"" + kWrongComm + "\"");
  EXPECT_EQ(Output(1), "77");
  simulator->Thaw();
  Until("Message.Caption = OK");
}

TEST_F(QuenbyPage, IsFoundByTheSearch) {
  StartSimulator("quenby:line=38400n81,fw=5,40003=77,40004=0x0884,40005=1234");
  OpenConsole();
  Do("click LabHome");
  Do("nowait click buttCheckDevice");
  Until("StatusBar1(2).Text contains Connected", "20s");
  Do("idle within 5s");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Quenby, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Get("NrFinestra"), "11");
  ExpectOffline();
  EXPECT_EQ(Get("labFW.Caption"), "FW vers. : 5");
  EXPECT_EQ(Get("labTimeout.Caption"), "77");
  EXPECT_EQ(Get("cbBaud.Text"), "38400");
  EXPECT_EQ(Output(0), "1234");
  StartSession();
}

TEST_F(QuenbyPage, IsShownAsTextWithItsThreeOutputs) {
  OpenSession("quenby:40005=1234,40006=5678,40007=9012");
  SetDefault(1, "4321");
  const std::string page = console->Try("show").Line();
  for (const char* words : {"1234", "5678", "9012", "4321", "set start scale to 0mA (0V) "}) {
    EXPECT_THAT(page, testing::HasSubstr(words));
  }
}

}  // namespace
}  // namespace tarvo
