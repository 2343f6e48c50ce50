// The Dravo page against a simulated module: live values, settings through commit and reset, the search.

#include <array>
#include <string>
#include <utility>

#include "e2e/shell_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kCommittedBox;
using test::kLampOn;
using test::kNothing;
using test::kResetBox;
using test::kResetInSessionBox;
using testing::HasSubstr;

const std::string kNotDravo = BoxJson("ERROR! Module is not Dravo or communication failed", "critical");

class DravoPage : public test::ShellBench {
 protected:
  void OpenDravo() {
    WriteSettings("AUTOSCAN=FALSE\n");
    console = OpenShell({Device()}, Settings());
    EXPECT_EQ(Do("click labDravo"), kNothing);
  }
  void StartDravo() const {
    EXPECT_EQ(Do("click StartDravo"), kNothing);
    EXPECT_EQ(Get("StartComm"), "-1");
    EXPECT_EQ(Get("MessageDravo.Caption"), "OK");
  }
  void StopDravo() const {
    EXPECT_EQ(Do("click StopDravo"), kNothing);
    EXPECT_EQ(Get("StartComm"), "0");
  }
  void OpenDravoSession(const std::string& module, test::Life life = test::Life::kStill) {
    StartSimulator(module, life);
    OpenDravo();
    StartDravo();
  }
  void Commit() const {
    EXPECT_EQ(Do("click WEEPDravo"), kCommittedBox);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  std::string Value(int index) const { return Get("ValueDravo(" + std::to_string(index) + ").Caption"); }
};

TEST_F(DravoPage, ShowsWhatTheModuleHolds) {
  OpenDravoSession(
      "dravo:fw=3,40002=0x0402,40003=600,40004=65336,40005=32000,40006=33536,40007=9500,40008=65529,"
      "40010=0x4200,40011=65459,40012=4200,40013=0x0A00");
  EXPECT_EQ(Get("InputTypeDravo.Text"), "PT100 (-200.0 .. 600.0 °C)");
  EXPECT_EQ(Get("InputFilterDravo.Text"), "2 Sec");
  const std::array<std::string, 6> values = {"600", "-200", "32000", "-32000", "9500", "-7"};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(Value(i), values.at(static_cast<std::size_t>(i))) << i;
  EXPECT_EQ(Get("CheckDravo2.Value"), "1");
  EXPECT_EQ(Get("CheckDravo3.Value"), "1");
  EXPECT_EQ(Get("CheckDravo1.Value"), "0");
  EXPECT_EQ(Get("FirmwDravo.Caption"), "Firmware rel: 3");
  EXPECT_EQ(Get("UnitaMisuraDravo1.Caption"), "°C");
  EXPECT_EQ(Get("InputTechDravo.Caption"), "-77");
  EXPECT_EQ(Get("InputScaledDravo.Caption"), "4200");
  Until("BargDravo1.Percent = 42");
  EXPECT_EQ(Get("BargDravo2.Percent"), "42");
  for (int i = 0; i < 6; ++i) {
    const std::string colour = Get("StatusDravo(" + std::to_string(i) + ").BackColor");
    EXPECT_EQ(colour == kLampOn, i == 1 || i == 3) << i;
  }
}

TEST_F(DravoPage, LivesWithItsModule) {
  OpenDravoSession("dravo", test::Life::kLive);
  const std::string before = Get("InputScaledDravo.Caption");
  Until("InputScaledDravo.Caption != " + before);
  Until("MessageDravo.Caption = OK");
  // A broken sensor.
  EXPECT_THAT(simulator->Order("com1 set 40013 0x0800"), HasSubstr("ok"));
  Until("StatusDravo(3).BackColor = " + kLampOn);
  Until("InputScaledDravo.Caption = -500");
  Until("BargDravo1.Percent = 0");
}

TEST_F(DravoPage, TogglesAFlagOfTheModuleAndKeepsItByCommitAndReset) {
  OpenDravoSession("dravo");
  EXPECT_EQ(Do("click CheckDravo3"), kNothing);
  EXPECT_EQ(Held(40010), "16384");
  EXPECT_EQ(Held(40074), "0");
  Commit();
  EXPECT_EQ(Held(40074), "16384");
  EXPECT_EQ(Do("click ResetDravo"), kResetInSessionBox);
  EXPECT_EQ(Do("answer OK"), kNothing);
  AwaitRestart();
  StartDravo();
  EXPECT_EQ(Get("CheckDravo3.Value"), "1");
}

TEST_F(DravoPage, KeepsEditsByCommitResetAndANewStart) {
  OpenDravoSession("dravo");
  EXPECT_EQ(Do("choose InputTypeDravo \"TC-K\""), kNothing);
  EXPECT_EQ(Do("choose InputFilterDravo \"20 Sec\""), kNothing);
  Edit("ValueDravo(3)", "-100");
  Edit("ValueDravo(5)", "-1");
  const std::array<std::string, 6> values = {"1200", "-250", "1200", "-100", "10000", "-1"};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(Value(i), values.at(static_cast<std::size_t>(i))) << i;
  Commit();
  EXPECT_EQ(Held(40002), "256");
  EXPECT_EQ(Held(40066), std::to_string(0x0705));
  EXPECT_EQ(Held(40070), "65436");
  StopDravo();
  EXPECT_EQ(Do("click ResetDravo"), kResetBox);
  EXPECT_EQ(Do("answer OK"), kNothing);
  AwaitRestart();
  // Another program starts with nothing of this one.
  console.reset();
  OpenDravo();
  StartDravo();
  EXPECT_EQ(Get("InputTypeDravo.ListIndex"), "6");
  EXPECT_EQ(Get("InputFilterDravo.Text"), "20 Sec");
  for (int i = 0; i < 6; ++i) EXPECT_EQ(Value(i), values.at(static_cast<std::size_t>(i))) << i;
}

TEST_F(DravoPage, CommitsOutOfASession) {
  StartSimulator("dravo");
  OpenDravo();
  EXPECT_EQ(Do("choose InputTypeDravo 1"), kNothing);
  Edit("ValueDravo(1)", "0");
  Edit("ValueDravo(4)", "9001");
  EXPECT_EQ(Do("click CheckDravo1"), kNothing);
  Commit();
  EXPECT_EQ(Held(40066), "512");
  EXPECT_EQ(Held(40067), "15000");
  EXPECT_EQ(Held(40068), "0");
  EXPECT_EQ(Held(40071), "9001");
  EXPECT_EQ(Held(40073), "257");
  EXPECT_EQ(Held(40074), "256");
  EXPECT_EQ(Get("ModCom1.PortOpen"), "false");
}

TEST_F(DravoPage, FollowsItsModuleToANewAddressAndLine) {
  OpenDravoSession("dravo");
  Edit("AddressDravo", "9");
  EXPECT_EQ(Do("choose BaudDravo 38400"), kNothing);
  EXPECT_EQ(Do("click CheckDravo4"), kNothing);
  Commit();
  EXPECT_EQ(Do("click ResetDravo"), kResetInSessionBox);
  EXPECT_EQ(Do("answer OK"), kNothing);
  AwaitRestart();
  EXPECT_EQ(Do("click StartDravo"), kNotDravo);
  EXPECT_EQ(Do("answer OK"), kNothing);
  EXPECT_EQ(Do("click LabPCSetup"), kNothing);
  EXPECT_EQ(Do("choose PCBaudRate 38400"), kNothing);
  EXPECT_EQ(Do("click Option4"), kNothing);
  Edit("PCAddress", "9");
  EXPECT_EQ(Do("click labDravo"), kNothing);
  StartDravo();
  EXPECT_EQ(Get("AddressDravo.Caption"), "9");
  EXPECT_EQ(Get("BaudDravo.Text"), "38400");
  EXPECT_EQ(Get("CheckDravo4.Value"), "1");
}

TEST_F(DravoPage, ShowsNoTypeForTcRAfterStart) {
  OpenDravoSession("dravo:40002=0x0800");
  EXPECT_EQ(Get("InputTypeDravo.ListIndex"), "-1");
}

TEST_F(DravoPage, OffersWhatAnOldReleaseHas) {
  OpenDravoSession("dravo:fw=1");
  EXPECT_EQ(Get("FirmwDravo.Caption"), "Firmware rel: 1");
  EXPECT_EQ(Get("CheckDravo5.Enabled"), "false");
  EXPECT_EQ(Get("CheckDravo4.Enabled"), "false");
  EXPECT_EQ(Get("BaudDravo.List"), R"(["4800","9600","19200","38400","57600"])");
}

TEST_F(DravoPage, RefusesABelk) {
  StartSimulator("belk");
  OpenDravo();
  for (const std::string button : {"StartDravo", "WEEPDravo", "ResetDravo"}) {
    EXPECT_EQ(Do("click " + button), kNotDravo);
    EXPECT_EQ(Do("answer OK"), kNothing);
    EXPECT_EQ(Get("ModCom1.PortOpen"), "false");
  }
}

TEST_F(DravoPage, IsFoundByTheSearch) {
  StartSimulator("dravo:line=38400n81,fw=3,40002=0x0504,40003=150,40010=0x0304");
  WriteSettings("AUTOSCAN=FALSE\n");
  console = OpenShell({Device()}, Settings());
  Do("click buttCheckDevice");
  Do("idle within 30s");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Dravo, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Get("NrFinestra"), "2");
  EXPECT_EQ(Get("InputTypeDravo.ListIndex"), "4");
  EXPECT_EQ(Get("InputFilterDravo.Text"), "10 Sec");
  EXPECT_EQ(Value(0), "150");
  EXPECT_EQ(Get("CheckDravo1.Value"), "1");
  EXPECT_EQ(Get("CheckDravo2.Value"), "1");
  EXPECT_EQ(Get("CheckDravo5.Value"), "1");
  EXPECT_EQ(Get("BaudDravo.Text"), "38400");
  StartDravo();
}

}  // namespace
}  // namespace tarvo
