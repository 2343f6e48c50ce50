// The Oswin page against a simulated module: what is shown of it, what Write EEprom stores, and the module's restart.

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
using testing::HasSubstr;

const std::string kNotOswin = BoxJson("ERROR! Module is not Oswin or communication failed", "critical");
const std::string kSwitchOffAndOn = BoxJson("Switch the module off and on to restart it.", "information");

class OswinPage : public test::PageBench {
 protected:
  OswinPage()
      : PageBench({.model = "Oswin",
                   .label = "labOswin",
                   .menu = "menuOswin",
                   .start = "StartOswin",
                   .stop = "StopNerith",
                   .message = "labMessage"}) {}

  /// What a register of the simulated module holds, also while a session runs; it is no talk on the line.
  int Held(int number) const {
    const std::string answer = simulator->Order("com1 get " + std::to_string(number));
    EXPECT_TRUE(answer.starts_with("ok ")) << answer;
    return std::atoi(answer.substr(answer.rfind(' ') + 1).c_str());
  }
  /// The four channels, the rate, and the address with the parity.
  std::vector<int> Settings() const {
    std::vector<int> settings;
    settings.reserve(6);
    for (const int number : {40037, 40038, 40039, 40040, 40036, 40035}) settings.push_back(Held(number));
    return settings;
  }
  void Hold(int number, const std::string& value) const {
    const std::string order = "com1 set " + std::to_string(number) + ' ' + value;
    EXPECT_EQ(simulator->Order(order), "ok " + order);
  }
  std::string Of(const std::string& array, int channel, const std::string& property) const {
    return Get(array + '(' + std::to_string(channel) + ")." + property);
  }
  std::vector<std::string> All(const std::string& array, const std::string& property) const {
    return {Of(array, 0, property), Of(array, 1, property), Of(array, 2, property), Of(array, 3, property)};
  }
  void Edit(const std::string& label, const std::string& text) const {
    EXPECT_EQ(Do("click " + label), kValueDialog);
    EXPECT_EQ(EnterValue(text), kNothing);
  }
  /// A button whose box must be `box`.
  void ClickThrough(const std::string& button, const std::string& box) const {
    EXPECT_EQ(Do("click " + button), box);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  /// Its supply goes off and on; until it listens again.
  void RestartModule() const {
    EXPECT_EQ(simulator->Order("com1 restart"), "ok com1 restart");
    Do("wait 450ms");
  }
};

TEST_F(OswinPage, ReadsItsModuleWhenItIsEntered) {
  StartSimulator("oswin:fw=7,40037=0x0003,40038=0x0058,40039=0x00A1,40040=0x00D2");
  OpenConsole();
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to  Oswin , COM1,9600,n,8,1  Module Address:1");
  EXPECT_EQ(Get("NrFinestra"), "12");
  EXPECT_EQ(Get("pageReadDone"), "-1");
  EXPECT_THAT(All("cbFilter", "Text"), ElementsAre("Hires + Avg. + Exp", "Not ins.", "Avg.", "Hires + Avg."));
  EXPECT_THAT(All("chkRejection", "Value"), ElementsAre("0", "1", "0", "0"));
  EXPECT_THAT(All("chkComp", "Value"), ElementsAre("0", "1", "0", "1"));
  EXPECT_THAT(All("cbUnits", "Text"), ElementsAre("°C", "°C", "ohm", "°C"));
  EXPECT_THAT(All("cbSensorType", "Text"), ElementsAre("0-PT100", "1-PT500", "2-PT1000", "3-NI100"));
  EXPECT_EQ(Get("labModuleAddress.Caption"), "1");
  EXPECT_EQ(Get("cbBaudRate.Text"), "9600");
  EXPECT_EQ(Get("checkParity.Value"), "0");
  ExpectOffline();
}

TEST_F(OswinPage, TellsAnotherModuleWhenItIsEntered) {
  StartSimulator("belk");
  OpenConsole();
  EXPECT_EQ(Get("StatusBar1(2).Text"), "This is not a Oswin");
  ExpectOffline();
}

TEST_F(OswinPage, ShowsMeasuresResistancesAndFailures) {
  OpenSession(
      "oswin:fw=7,40002=0x8200,40003=215,40004=0xFFCE,40005=39048,40006=18000,40016=350,40017=820,40018=1500,"
      "40019=640,40037=0,40038=0x40,40039=0xA0,40040=0xE0");
  EXPECT_EQ(Get("labFWVers.Caption"), "Firmware rel: 7");
  Until("labTI_RTD(3).Caption = 180.00");
  EXPECT_THAT(All("labTI_RTD", "Caption"), ElementsAre("21.5", "-5.0", "3904.7", "180.00"));
  EXPECT_THAT(All("labRES_RTD", "Caption"), ElementsAre("350", "820", "1500", "640"));
  EXPECT_THAT(All("labChannelFail", "Visible"), ElementsAre("false", "false", "false", "true"));
  EXPECT_THAT(All("labSensorFail", "Visible"), ElementsAre("false", "true", "false", "false"));
  EXPECT_EQ(Get("labChannelFail(3).Caption"), "Channel Unavailable");
  EXPECT_EQ(Get("labSensorFail(1).Caption"), "Sensor unconnected or damaged");
}

TEST_F(OswinPage, FollowsItsModule) {
  OpenSession("oswin:40037=0");
  Hold(40003, "85");
  Hold(40019, "777");
  Hold(40002, "0x1000");
  Until("labTI_RTD(0).Caption = 8.5");
  Until("labRES_RTD(3).Caption = 777");
  Until("labChannelFail(0).Visible = true");
  Hold(40002, "0x0100");
  Until("labChannelFail(0).Visible = false");
  EXPECT_EQ(Get("labSensorFail(0).Visible"), "true");
}

TEST_F(OswinPage, ShowsALivingModule) {
  OpenSession("oswin:40037=0x10,40038=0x50,40039=0xB0,40040=0x10", Life::kLive);
  Until("labTI_RTD(0).Caption != 0");
  const std::string before = Of("labTI_RTD", 2, "Caption");
  Until("labTI_RTD(2).Caption != " + before, "10s");
  EXPECT_NE(Of("labRES_RTD", 0, "Caption"), "0");
  EXPECT_EQ(Get("labMessage.Caption"), "OK");
}

TEST_F(OswinPage, ScalesByItsControlsBeforeTheModuleKnows) {
  OpenSession("oswin:40003=10000,40037=0");
  Until("labTI_RTD(0).Caption = 1000.0");
  EXPECT_EQ(Do("choose cbUnits(0) ohm"), kNothing);
  Until("labTI_RTD(0).Caption = 100.00");
  EXPECT_EQ(Do("choose cbSensorType(0) 2"), kNothing);
  Until("labTI_RTD(0).Caption = 1000.0");
  EXPECT_EQ(Held(40037), 0);
}

TEST_F(OswinPage, StoresItsSettingsInASession) {
  OpenSession("oswin");
  EXPECT_EQ(Do("choose cbFilter(0) 3"), kNothing);
  EXPECT_EQ(Do("click chkRejection(0)"), kNothing);
  EXPECT_EQ(Do("choose cbSensorType(1) 2"), kNothing);
  EXPECT_EQ(Do("choose cbUnits(2) 0"), kNothing);
  EXPECT_EQ(Do("click chkComp(3)"), kNothing);
  Edit("labModuleAddress", "200");
  EXPECT_THAT(Settings(), ElementsAre(0x10, 0x41, 0xA0, 0xD2, 0x0100, 0x0100));
  EXPECT_EQ(Do("click WEEPGaven"), kNothing);
  EXPECT_THAT(Settings(), ElementsAre(0x1B, 0x81, 0x80, 0xC2, 0x0100, 0xC800));
  EXPECT_EQ(Get("StartComm"), "-1");
  Until("labMessage.Caption = OK");
  EXPECT_EQ(Get("TimerLetturaSeriale.Enabled"), "true");
}

TEST_F(OswinPage, StoresItsSettingsWithoutASession) {
  StartSimulator("oswin");
  OpenConsole();
  EXPECT_EQ(Do("choose cbUnits(0) 1"), kNothing);
  EXPECT_EQ(Do("click checkParity"), kNothing);
  EXPECT_EQ(Do("click OptionOdd"), kNothing);
  EXPECT_EQ(Do("choose cbBaudRate 57600"), kNothing);
  EXPECT_EQ(Do("click WEEPGaven"), kNothing);
  EXPECT_THAT(Settings(), ElementsAre(0x30, 0x41, 0xA0, 0xD2, 0x0400, 0x0102));
  ExpectOffline();
}

TEST_F(OswinPage, MovesTheModuleToAnotherAddressAndLine) {
  OpenSession("oswin");
  Edit("labModuleAddress", "200");
  EXPECT_EQ(Do("choose cbBaudRate 38400"), kNothing);
  EXPECT_EQ(Do("click checkParity"), kNothing);
  EXPECT_EQ(Do("click OptionEven"), kNothing);
  EXPECT_EQ(Do("click WEEPGaven"), kNothing);
  ClickThrough("ResetGaven", kSwitchOffAndOn);
  LetPoll();
  EXPECT_EQ(Get("labMessage.Caption"), "OK");
  StopSession();
  RestartModule();
  ClickThrough("StartOswin", kNotOswin);
  ExpectOffline();
  const test::Polled polled = test::RunMbpoll(Device(), "-a 200 -b 38400 -P even -r 35 -c 2");
  EXPECT_EQ(polled.registers, (std::map<int, int>{{35, 0xC801}, {36, 0x0300}})) << polled.errors;
}

TEST_F(OswinPage, KeepsItsSettingsOverARestart) {
  OpenSession("oswin");
  EXPECT_EQ(Do("choose cbSensorType(3) 0"), kNothing);
  EXPECT_EQ(Do("click WEEPGaven"), kNothing);
  StopSession();
  RestartModule();
  EXPECT_EQ(Do("click LabHome"), kNothing);
  EXPECT_EQ(Do("click labOswin"), kNothing);
  EXPECT_EQ(Of("cbSensorType", 3, "Text"), "0-PT100");
  StartSession();
}

TEST_F(OswinPage, KeepsWhatItShowedOfAModuleThatRefuses) {
  StartSimulator("oswin");
  OpenConsole();
  EXPECT_EQ(simulator->Order("com1 exception"), "ok com1 exception");
  EXPECT_EQ(Do("click LabHome"), kNothing);
  EXPECT_EQ(Do("click labOswin"), kNothing);
  EXPECT_EQ(Get("StatusBar1(2).Text"), "This is not a Oswin");
  EXPECT_EQ(Of("cbSensorType", 3, "Text"), "3-NI100");
  ExpectOffline();
}

TEST_F(OswinPage, RefusesAModuleOfAnotherModel) {
  StartSimulator("gaven");
  OpenConsole();
  for (const char* button : {"StartOswin", "WEEPGaven"}) {
    ClickThrough(button, kNotOswin);
    ExpectOffline();
  }
  StartSimulator("oswin");
  StartSession();
}

TEST_F(OswinPage, TellsAVanishedModuleAndTakesItBack) {
  OpenSession("oswin:40003=77,40037=0");
  Until("labTI_RTD(0).Caption = 7.7");
  simulator->Freeze();
  Until("labMessage.Caption = \"" + kWrongComm + "\"", "10s");
  EXPECT_EQ(Get("labTI_RTD(0).Caption"), "7.7");
  simulator->Thaw();
  Until("labMessage.Caption = OK", "15s");
}

TEST_F(OswinPage, IsUnknownToTheSearch) {
  StartSimulator("oswin:line=38400n81");
  OpenConsole();
  Do("click LabHome");
  Do("nowait click buttCheckDevice");
  Until("StatusBar1(2).Text contains Unknown", "20s");
  Do("idle within 5s");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Module Unknown");
  EXPECT_EQ(Get("NrFinestra"), "-1");
  EXPECT_EQ(Do("click labOswin"), kNothing);
  EXPECT_EQ(Get("cbBaudRate.Text"), "38400");
  StartSession();
}

TEST_F(OswinPage, IsShownAsTextWithItsFourChannels) {
  OpenSession("oswin:40003=215,40004=315,40005=11500,40006=515,40016=1001,40017=1002,40018=1003,40019=1004");
  Until("labTI_RTD(3).Caption = 51.5");
  const std::string page = console->Try("show").Line();
  for (const char* words : {"21.5", "31.5", "1150.0", "51.5", "1001", "1002", "1003", "1004", "Measure", "Filter",
                            "Wire", "mOhm", "Units", "Sensor Type", "Firmware rel: 3"}) {
    EXPECT_THAT(page, HasSubstr(words)) << words;
  }
}

}  // namespace
}  // namespace tarvo
