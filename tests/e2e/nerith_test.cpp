// The page of Nerith and Pellor against simulated modules: both layouts, what is stored, failures, and the search.

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

const std::string kNotNerith = BoxJson("ERROR! Module is not Nerith or communication failed", "critical");
const std::string kSwitchOff = BoxJson("Switch the module off and on to restart it.", "information");

class NerithPage : public test::PageBench {
 protected:
  NerithPage() : PageBench({.model = "Nerith", .menu = "menuNerith", .stop = "StopOswin", .message = "labMessage"}) {}

  /// What a register of the simulated module holds, also while a session runs; it is no talk on the line.
  int Held(int number) const {
    const std::string answer = simulator->Order("com1 get " + std::to_string(number));
    EXPECT_TRUE(answer.starts_with("ok ")) << answer;
    return std::atoi(answer.substr(answer.rfind(' ') + 1).c_str());
  }
  std::vector<int> HeldAll(const std::vector<int>& numbers) const {
    std::vector<int> values;
    values.reserve(numbers.size());
    for (const int number : numbers) values.push_back(Held(number));
    return values;
  }
  void Order(const std::string& order) const { EXPECT_EQ(simulator->Order(order), "ok " + order); }

  static std::string Member(const char* array, int index) {
    return std::string(array) + '(' + std::to_string(index) + ')';
  }
  std::string Value(int channel) const { return Get(Member("labTI_RTD", channel) + ".Caption"); }
  /// Long enough for a poll, which comes every half second, and the decode after it.
  void LetPoll() const { Do("wait 1000ms"); }
  /// Until a module whose supply went off and on listens again.
  void Restart() const {
    Order("com1 restart");
    Do("wait 450ms");
  }
  void EditAddress(const std::string& text) const {
    EXPECT_EQ(Do("click labModuleAddress"), kValueDialog);
    EXPECT_EQ(EnterValue(text), kNothing);
    EXPECT_EQ(Get("labModuleAddress.Caption"), text);
  }
  /// A button whose box must be `box`.
  void ClickThrough(const std::string& button, const std::string& box) const {
    EXPECT_EQ(Do("click " + button), box);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  /// Shows the page by its label, which gives it its own number.
  void Enter() const { EXPECT_EQ(Do("click labNerith"), kNothing); }
};

TEST_F(NerithPage, ShowsTheSettingsOfNewFirmware) {
  StartSimulator("nerith:fw=18,40040=0x2A,40062=0x0003,40063=0x5000,40078=0x0707,40079=0x2000");
  OpenConsole();
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to  Nerith , COM1,9600,n,8,1  Module Address:1");
  EXPECT_EQ(Get("cbUnits.Text"), "Farenheit");
  EXPECT_EQ(Get("cbDecimalNumbers.ListIndex"), "1");
  EXPECT_EQ(Get("chkDINCoefficients.Value"), "1");
  EXPECT_EQ(Get("cbBaudRate.Text"), "9600");
  EXPECT_EQ(Get("labModuleAddress.Caption"), "1");
  EXPECT_EQ(Get("cbSensorType(0).List"), R"(["PT100","NI100"])");
  EXPECT_EQ(Get("cbSensorType(0).Text"), "PT100");
  EXPECT_EQ(Get("cbDumpFactor(0).Text"), "3");
  EXPECT_EQ(Get("cbRangePT100(0).Text"), "-200.. 850 C");
  EXPECT_EQ(Get("chkBurnedSensor(0).Value"), "1");
  EXPECT_EQ(Get("chkConv(0).Value"), "1");
  EXPECT_EQ(Get("labelGaven(4).Caption"), "Temperature");
  EXPECT_EQ(Get("cbSensorType(1).Text"), "NI100");
  EXPECT_EQ(Get("cbDumpFactor(1).Text"), "7");
  EXPECT_EQ(Get("cbRangePT100(1).Text"), "-200.. 200 C");
  EXPECT_EQ(Get("chkConv(1).Value"), "0");
  EXPECT_EQ(Get("labelGaven(3).Caption"), "Resistance");
  EXPECT_EQ(Get("NrFinestra"), "9");
  ExpectOffline();
}

TEST_F(NerithPage, ShowsTheSettingsOfOldFirmware) {
  StartSimulator("nerith:fw=17,40062=0x0100,40078=0x0202,40094=0x0305,40110=0x0400");
  OpenConsole();
  EXPECT_EQ(Get("cbSensorType(0).List"), R"(["0-PT100","1-PT500","2-PT1000","3-NI100"])");
  EXPECT_EQ(Get("cbSensorType(0).Text"), "1-PT500");
  EXPECT_EQ(Get("cbSensorType(1).Text"), "2-PT1000");
  EXPECT_EQ(Get("cbDumpFactor(1).ListIndex"), "2");
  EXPECT_EQ(Get("cbSensorType(2).Text"), "3-NI100");
  EXPECT_EQ(Get("cbSensorType(3).Text"), "0-PT100");
  EXPECT_EQ(Get("chkConv(0).Visible"), "false");
}

TEST_F(NerithPage, FollowsValuesAndFailures) {
  OpenSession("nerith:fw=18,40003=1234,40004=0xFFFF,40005=5,40006=0,40040=0x09");
  EXPECT_EQ(Get("labFWVers.Caption"), "Firmware rel:  18");
  LetPoll();
  EXPECT_EQ(Value(0), "123.4");
  EXPECT_EQ(Value(1), "-0.1");
  EXPECT_EQ(Value(2), "0.5");
  EXPECT_EQ(Value(3), "0.0");
  Order("com1 set 40002 0x24");
  LetPoll();
  EXPECT_EQ(Get("labChannelFail(2).Visible"), "true");
  EXPECT_EQ(Get("labChannelFail(0).Visible"), "false");
  EXPECT_EQ(Get("labSensorFail(1).Visible"), "true");
  EXPECT_EQ(Get("labSensorFail(1).Caption"), "Sensor unconnected or damaged");
  EXPECT_EQ(Value(1), "400.0") << "a broken sensor reads as the end of its range";
  Order("com1 set 40002 0");
  LetPoll();
  EXPECT_EQ(Get("labChannelFail(2).Visible"), "false");
  EXPECT_EQ(Get("labSensorFail(1).Visible"), "false");
  EXPECT_EQ(Value(1), "-0.1");
  EXPECT_EQ(Get("PollCount"), "5");
}

TEST_F(NerithPage, HasThreeChannelsOnAPellor) {
  OpenSession("pellor:fw=18,40003=11,40004=22,40005=33,40040=0x01");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to  Pellor , COM1,9600,n,8,1  Module Address:1");
  Order("com1 set 40002 0x88");
  LetPoll();
  EXPECT_EQ(Value(2), "33");
  EXPECT_EQ(Value(3), "0");
  EXPECT_EQ(Get("labSensorFail(3).Visible"), "false");
  for (const std::string name : {"cbSensorType(3)", "cbDumpFactor(3)", "cbRangePT100(3)", "chkBurnedSensor(3)"}) {
    EXPECT_EQ(Get(name + ".Enabled"), "false") << name;
  }
  EXPECT_EQ(Do("choose cbDumpFactor(2) 6"), kNothing);
  EXPECT_EQ(Do("click WEEPGaven"), kNothing);
  EXPECT_EQ(Held(40094), 6);
  StopSession();
  ExpectOffline();
}

TEST_F(NerithPage, FollowsALivingModule) {
  OpenSession("nerith:fw=18", Life::kLive);
  for (int channel = 0; channel < 3; ++channel) {
    Until(Member("labTI_RTD", channel) + ".Caption != 0");
    Until(Member("labTI_RTD", channel) + ".Caption != " + Value(channel), "5s");
  }
}

TEST_F(NerithPage, StoresASessionsSettingsAtOnce) {
  OpenSession("nerith:fw=18,40003=1234,40040=0x01");
  EXPECT_EQ(Do("choose cbUnits Rankine"), kNothing);
  EXPECT_EQ(Do("choose cbDecimalNumbers 2"), kNothing);
  EXPECT_EQ(Do("choose cbSensorType(0) NI100"), kNothing);
  EXPECT_EQ(Do("choose cbDumpFactor(0) 5"), kNothing);
  EXPECT_EQ(Do("click chkConv(3)"), kNothing);
  EXPECT_EQ(Do("choose cbRangePT100(3) 2"), kNothing);
  EXPECT_EQ(Do("click chkBurnedSensor(3)"), kNothing);
  EXPECT_EQ(Held(40040), 0x01) << "nothing goes out before the commit";
  EXPECT_EQ(Do("click WEEPGaven"), kNothing);
  EXPECT_THAT(HeldAll({40040, 40062, 40063, 40078, 40079, 40094, 40095, 40110, 40111, 40035}),
              ElementsAre(0x13, 0x0305, 0, 0, 0, 0, 0, 0x0400, 0x6000, 0x0401));
  EXPECT_EQ(Get("StartComm"), "-1");
  LetPoll();
  EXPECT_EQ(Value(0), "12.34");
  StopSession();
  Restart();
  EXPECT_EQ(Held(40062), 0x0305);
}

TEST_F(NerithPage, StoresSettingsWithoutASession) {
  StartSimulator("nerith:fw=17");
  OpenConsole();
  EXPECT_EQ(Do("choose cbSensorType(2) 2-PT1000"), kNothing);
  EXPECT_EQ(Do("click WEEPGaven"), kNothing);
  EXPECT_EQ(Held(40094), 0x0200);
  ExpectOffline();
}

TEST_F(NerithPage, MovesTheModuleToAnotherAddressAndLine) {
  StartSimulator("nerith:fw=18");
  OpenConsole();
  EditAddress("200");
  EXPECT_EQ(Do("choose cbBaudRate 38400"), kNothing);
  EXPECT_EQ(Do("click checkParity"), kNothing);
  EXPECT_EQ(Do("click OptionEven"), kNothing);
  EXPECT_EQ(Do("click WEEPGaven"), kNothing);
  EXPECT_EQ(Held(40035), 0x0DC8);
  EXPECT_EQ(Register(35), 0x0DC8) << "in force only when it is switched off and on";
  Restart();
  Enter();
  ClickThrough("StartNerith", kNotNerith);
  ExpectOffline();
  const test::Polled polled = test::RunMbpoll(Device(), "-a 200 -b 38400 -P even -r 35 -c 1");
  EXPECT_EQ(polled.registers, (std::map<int, int>{{35, 0x0DC8}})) << polled.errors;
}

TEST_F(NerithPage, TellsHowTheModuleIsRestarted) {
  StartSimulator("nerith:fw=18");
  OpenConsole();
  ClickThrough("ResetGaven", kSwitchOff);
  ExpectOffline();
}

TEST_F(NerithPage, RefusesAModuleOfAnotherModel) {
  StartSimulator("gaven");
  OpenConsole();
  EXPECT_EQ(Get("StatusBar1(2).Text"), "This is not a Pellor or Nerith");
  for (const char* button : {"StartNerith", "WEEPGaven"}) {
    ClickThrough(button, kNotNerith);
    ExpectOffline();
  }
  StartSimulator("pellor:fw=18");
  StartSession();
}

TEST_F(NerithPage, TellsAVanishedModuleAndTakesItBack) {
  OpenSession("nerith:fw=18,40003=77,40040=0x01");
  LetPoll();
  simulator->Freeze();
  Until("labMessage.Caption = \"" + kWrongComm + "\"", "6s");
  EXPECT_EQ(Value(0), "77");
  simulator->Thaw();
  Until("labMessage.Caption = OK", "10s");
}

TEST_F(NerithPage, PollsNoMoreOnceADialogWasOpen) {
  OpenSession("nerith:fw=18,40003=77,40040=0x01");
  LetPoll();
  EditAddress("9");
  EXPECT_EQ(Get("NrFinestra"), "12");
  Order("com1 set 40003 88");
  LetPoll();
  EXPECT_EQ(Value(0), "77");
  StopSession();
  EXPECT_EQ(Get("StartNerith.Enabled"), "false");
  Enter();
  EXPECT_EQ(Get("NrFinestra"), "9");
}

class NerithFound : public NerithPage, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(, NerithFound, testing::Values("Nerith", "Pellor"),
                         [](const auto& model) { return std::string(model.param); });

TEST_P(NerithFound, BySearch) {
  const std::string model = GetParam();
  StartSimulator((model == "Nerith" ? "nerith" : "pellor") + std::string(":fw=18,line=38400n81,40040=0x12,40078=5"));
  OpenConsole();
  Do("click LabHome");
  Do("nowait click buttCheckDevice");
  Until("StatusBar1(2).Text contains COM1,38400", "20s");
  Do("idle within 10s");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to " + model + ", COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Get("NrFinestra"), "9");
  ExpectOffline();
  EXPECT_EQ(Get("cbUnits.Text"), "Farenheit");
  EXPECT_EQ(Get("cbDumpFactor(1).ListIndex"), "5");
  EXPECT_EQ(Get("cbBaudRate.Text"), "38400");
  EXPECT_EQ(Get("cbDumpFactor(1).Enabled"), "false");
  EXPECT_EQ(Get("cbDumpFactor(3).Enabled"), model == "Nerith" ? "true" : "false");
  StartSession();
  EXPECT_EQ(Get("cbDumpFactor(1).Enabled"), "true");
}

TEST_F(NerithPage, IsShownAsTextWithItsFourInputs) {
  OpenSession("nerith:fw=18,40003=4321,40006=8765,40040=0x01");
  LetPoll();
  const std::string page = console->Try("show").Line();
  for (const char* words : {"Input 1", "Input 4", "4321", "8765", "Celsius", "Burn-out behaviour"}) {
    EXPECT_THAT(page, testing::HasSubstr(words));
  }
}

}  // namespace
}  // namespace tarvo
