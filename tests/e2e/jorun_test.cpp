// The Jorun page against its simulated module.

#include "e2e/jorun_bench.h"

namespace tarvo {
namespace {

using test::kCommittedBox;
using test::kLampOff;
using test::kLampOn;
using test::kNothing;
using test::kResetBox;

class JorunPage : public test::JorunBench {
 protected:
  void Commit() {
    EXPECT_EQ(Do("click buttWEEPJorun"), kCommittedBox);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  void Reset() {
    EXPECT_EQ(Do("click buttResetJorun"), kResetBox);
    EXPECT_EQ(Do("answer OK"), kNothing);
    AwaitRestart();
  }
};

TEST_F(JorunPage, ShowsWhatTheModuleMeasures) {
  OpenJorunSession("jorun:40004=1,40005=2,40013=63531,40014=13000,40015=8000,40016=0");
  EXPECT_EQ(Get("FirmwJorun.Caption"), "Firmware rel: 3");
  Until("ValueJorun(0).Caption = -2005");
  EXPECT_EQ(Get("BargJorun(0).Percent"), "20");
  EXPECT_EQ(Get("BargJorun(0).FillColor"), "255");
  EXPECT_EQ(Get("ValueJorun(1).Caption"), "13000");
  EXPECT_EQ(Get("BargJorun(1).Percent"), "100");
  EXPECT_EQ(Get("BargJorun(3).Percent"), "0");
  // Both go beyond the range of their type.
  EXPECT_EQ(Get("OverflowJorun(0).BackColor"), kLampOn);
  EXPECT_EQ(Get("OverflowJorun(1).BackColor"), kLampOn);
  EXPECT_EQ(Get("OverflowJorun(3).BackColor"), kLampOff);
}

TEST_F(JorunPage, ShowsAnOverRangeAndABurnOutAsTheyComeAndGo) {
  OpenJorunSession("jorun:40005=2,40014=250");
  Until("ValueJorun(1).Caption = 250");
  EXPECT_EQ(Get("OverflowJorun(1).BackColor"), kLampOff);
  Set(40014, 12001);
  Until("OverflowJorun(1).BackColor = " + kLampOn);
  Set(40014, 250);
  Until("OverflowJorun(1).BackColor = " + kLampOff);
  Set(40012, 0x2000);
  Until("OverflowJorun(5).BackColor = " + kLampOn);
  EXPECT_EQ(Get("ValueJorun(1).Caption"), "12000");
  EXPECT_EQ(Get("OverflowJorun(4).BackColor"), kLampOff);
  Set(40012, 0);
  Until("OverflowJorun(5).BackColor = " + kLampOff);
  Until("ValueJorun(1).Caption = 250");
}

TEST_F(JorunPage, LivesWhenTheModuleDoes) {
  OpenJorunSession("jorun", test::Life::kLive);
  const std::string before = Get("ValueJorun(1).Caption");
  Until("ValueJorun(1).Caption != " + before);
}

TEST_F(JorunPage, LocksItsSettingsInASession) {
  OpenJorunSession("jorun");
  for (const std::string name :
       {"buttWEEPJorun", "buttResetJorun", "buttCal(0)", "CheckJorun(2)", "OptionOdd", "labAddressJorun"}) {
    EXPECT_EQ(console->Try("click " + name).Error(), name + " is disabled");
  }
  EXPECT_FALSE(console->Try("choose cbInputTypeJorun(0) 1").Ok());
  StopJorun();
  EXPECT_EQ(Get("buttCal(0).Enabled"), "true");
  EXPECT_EQ(Do("choose cbInputTypeJorun(0) TC-K"), kNothing);
}

TEST_F(JorunPage, CommitsWhatWasEditedAndFindsItAfterTheReset) {
  StartSimulator("jorun");
  OpenJorun();
  for (int input = 0; input < 4; ++input) {
    const std::string index = "(" + std::to_string(input) + ") ";
    EXPECT_EQ(Do("choose cbInputTypeJorun" + index + std::to_string(8 - input)), kNothing);
    EXPECT_EQ(Do("choose cbFilterJorun" + index + std::to_string(1 + input)), kNothing);
  }
  for (const std::string box : {"CheckJorun(1)", "CheckJorun(2)", "OptionOdd"}) EXPECT_EQ(Do("click " + box), kNothing);
  EXPECT_EQ(Do("choose cbBaudJorun 38400"), kNothing);
  Edit("labAddressJorun", "9");
  Commit();
  EXPECT_EQ(Held(40004), "1");
  EXPECT_EQ(Held(40067), std::to_string(4 | 8 | 16));
  EXPECT_EQ(Held(40068), "8");
  EXPECT_EQ(Held(40066), std::to_string(0x0309));
  Reset();
  EXPECT_EQ(Do("click LabPCSetup"), kNothing);
  EXPECT_EQ(Do("choose PCBaudRate 38400"), kNothing);
  EXPECT_EQ(Do("click Option5"), kNothing);
  Edit("PCAddress", "9");
  EXPECT_EQ(Do("click labJorun"), kNothing);
  for (int input = 0; input < 4; ++input) {
    EXPECT_EQ(Do("choose cbInputTypeJorun(" + std::to_string(input) + ") 0"), kNothing);
  }
  StartJorun();
  for (int input = 0; input < 4; ++input) {
    const std::string index = "(" + std::to_string(input) + ")";
    EXPECT_EQ(Get("cbInputTypeJorun" + index + ".ListIndex"), std::to_string(8 - input));
    EXPECT_EQ(Get("cbFilterJorun" + index + ".ListIndex"), std::to_string(1 + input));
  }
  EXPECT_EQ(Get("CheckJorun(0).Value"), "0");
  EXPECT_EQ(Get("CheckJorun(1).Value"), "1");
  EXPECT_EQ(Get("OptionOdd.Value"), "true");
  EXPECT_EQ(Get("OptionOdd.Enabled"), "false");
  EXPECT_EQ(Get("labAddressJorun.Caption"), "9");
  EXPECT_EQ(Get("cbBaudJorun.Text"), "38400");
  StopJorun();
  EXPECT_EQ(Get("OptionOdd.Enabled"), "true");
}

TEST_F(JorunPage, IsOpenedByTheSearchWithTheModulesSettings) {
  StartSimulator("jorun:line=38400n81,40004=5,40007=8,40009=3,40003=6");
  WriteSettings("AUTOSCAN=TRUE\n");
  console = OpenShell({Device()}, Settings());
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Jorun, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Get("NrFinestra"), "5");
  EXPECT_EQ(Get("Jorun.cbInputTypeJorun(0).ListIndex"), "5");
  EXPECT_EQ(Get("Jorun.cbInputTypeJorun(3).ListIndex"), "8");
  EXPECT_EQ(Get("cbFilterJorun(1).ListIndex"), "3");
  EXPECT_EQ(Get("CheckJorun(0).Value"), "1");
  EXPECT_EQ(Get("CheckJorun(1).Value"), "1");
  EXPECT_EQ(Get("cbBaudJorun.Text"), "38400");
  StartJorun();
}

TEST_F(JorunPage, IsRefusedToAnotherModel) {
  StartSimulator("belk");
  OpenJorun();
  for (const std::string button : {"StartJorun", "buttWEEPJorun", "buttResetJorun"}) {
    EXPECT_EQ(Do("click " + button), test::kNotJorun);
    EXPECT_EQ(Do("answer OK"), kNothing);
    EXPECT_FALSE(console->Process().HasOpen(Device()));
  }
}

}  // namespace
}  // namespace tarvo
