// Write EEprom and Module Reset of the Belk page, looked up in the module's own EEPROM.

#include "e2e/shell_bench.h"

namespace tarvo {
namespace {

using test::kCommittedBox;
using test::kNotBelk;
using test::kNothing;
using test::kResetBox;
using test::kResetInSessionBox;
using testing::ElementsAre;

class BelkCommit : public test::ShellBench {
 protected:
  void Commit() {
    EXPECT_EQ(Do("click WEEPBelk"), kCommittedBox);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  void ExpectRefused(const std::string& button) {
    EXPECT_EQ(Do("click " + button), kNotBelk);
    EXPECT_EQ(Do("answer OK"), kNothing);
    ExpectOffline();
    EXPECT_FALSE(console->Process().HasOpen(Device()));
    EXPECT_EQ(Get("WEEPBelk.Enabled"), "true");
    EXPECT_EQ(Get("ResetBelk.Enabled"), "true");
  }
};

TEST_F(BelkCommit, InASessionReachesTheEepromAndActsAfterTheReset) {
  OpenBelkSession("belk:fw=3,40008=20");
  EXPECT_THAT(Images(), ElementsAre("20", "0", "257"));
  Edit("FilterBelk", "77");
  Edit("AddressBelk", "9");
  EXPECT_EQ(Do("choose BaudBelk 38400"), kNothing);
  EXPECT_EQ(Do("click CheckBelk2"), kNothing);
  EXPECT_EQ(Do("click CheckBelk6"), kNothing);
  EXPECT_EQ(Do("click OptionBelk2"), kNothing);
  Commit();
  EXPECT_THAT(Images(), ElementsAre("77", "25", "777"));
  // Until its reset the module goes by what it had.
  EXPECT_EQ(Held(40008), "20");
  EXPECT_EQ(Held(40010), "257");
  LetPoll();
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
  EXPECT_EQ(Get("StartComm"), "-1");

  EXPECT_EQ(Do("click ResetBelk"), kResetInSessionBox);
  EXPECT_EQ(Do("answer OK"), kNothing);
  ExpectOffline();
  EXPECT_EQ(Get("PCSettings"), "9600,n,8,1");
  EXPECT_EQ(Get("ModuleAddress"), "1");
  AwaitRestart();
  EXPECT_EQ(Held(40008), "77");
  EXPECT_EQ(Held(40010), "777");

  SetPcLine("38400", "Option5", "9");
  StartSession();
  EXPECT_EQ(Get("FilterBelk.Caption"), "77");
  EXPECT_EQ(Get("AddressBelk.Caption"), "9");
  EXPECT_EQ(Get("BaudBelk.Text"), "38400");
  EXPECT_EQ(Get("CheckBelk2.Value"), "1");
  EXPECT_EQ(Get("CheckBelk6.Value"), "1");
  EXPECT_EQ(Get("OptionBelk2.Value"), "true");
}

TEST_F(BelkCommit, WithoutASessionReachesTheEepromAndActsAfterTheReset) {
  StartSimulator("belk:fw=1,40008=20");
  OpenBelk();
  Edit("FilterBelk", "254");
  Edit("AddressBelk", "255");
  EXPECT_EQ(Do("choose BaudBelk 57600"), kNothing);
  EXPECT_EQ(Do("click CheckBelk1"), kNothing);
  EXPECT_EQ(Held(40072), "20");
  Commit();
  ExpectOffline();
  EXPECT_THAT(Images(), ElementsAre("254", "128", "1279"));
  EXPECT_EQ(Held(40008), "20");

  EXPECT_EQ(Do("click ResetBelk"), kResetBox);
  EXPECT_EQ(Do("answer OK"), kNothing);
  ExpectOffline();
  EXPECT_FALSE(console->Process().HasOpen(Device()));
  AwaitRestart();
  SetPcLine("57600", "Option3", "255");
  StartSession();
  EXPECT_EQ(Get("FilterBelk.Caption"), "254");
  EXPECT_EQ(Get("AddressBelk.Caption"), "255");
  EXPECT_EQ(Get("CheckBelk1.Value"), "1");
}

TEST_F(BelkCommit, AfterASearchKeepsTheModulesOwnFlags) {
  StartSimulator("belk:line=38400n81,40008=33,40009=0xA4E5");
  WriteSettings("AUTOSCAN=TRUE\n");
  console = OpenShell({Device()}, Settings());
  EXPECT_EQ(Get("FilterBelk.Caption"), "33");
  EXPECT_EQ(Do("choose BaudBelk 38400"), kNothing);
  Commit();
  EXPECT_THAT(Images(), ElementsAre("33", std::to_string(0xA4E5), std::to_string(0x0301)));
}

TEST_F(BelkCommit, IsUndoneByNoReset) {
  OpenBelkSession("belk:40008=20");
  Edit("FilterBelk", "77");
  EXPECT_EQ(Do("click ResetBelk"), kResetInSessionBox);
  EXPECT_EQ(Do("answer OK"), kNothing);
  AwaitRestart();
  StartSession();
  EXPECT_EQ(Get("FilterBelk.Caption"), "20");
  EXPECT_THAT(Images(), ElementsAre("20", "0", "257"));
}

TEST_F(BelkCommit, HoldsThePollWhileItsBoxWaits) {
  OpenBelkSession("belk:40003=1");
  EXPECT_EQ(Do("click WEEPBelk"), kCommittedBox);
  EXPECT_EQ(Get("TimerLetturaSeriale.Enabled"), "false");
  simulator->Order("com1 set 40003 2");
  Do("wait 500ms");
  EXPECT_EQ(Get("Belk.TotIN(0).Caption"), "1");
  EXPECT_EQ(Do("answer OK"), kNothing);
  Until("TotIN(0).Caption = 2");
  EXPECT_EQ(Get("WEEPBelk.Enabled"), "true");
  EXPECT_EQ(Get("ResetBelk.Enabled"), "true");
}

TEST_F(BelkCommit, IsRefusedByAnotherModel) {
  StartSimulator("belk:40001=0x0203,40008=20");
  OpenBelk();
  Edit("FilterBelk", "77");
  ExpectRefused("WEEPBelk");
  ExpectRefused("ResetBelk");
  EXPECT_EQ(Held(40072), "20");
  StartSimulator("belk");
  StartSession();
}

TEST_F(BelkCommit, IsRefusedWithoutAModule) {
  OpenBelk();
  ExpectRefused("WEEPBelk");
  ExpectRefused("ResetBelk");
  StartSimulator("belk:addr=2");
  ExpectRefused("WEEPBelk");
  StartSimulator("belk");
  StartSession();
}

TEST_F(BelkCommit, IsTornByNothing) {
  StartSimulator("belk");
  OpenBelk();
  simulator->Freeze();
  Do("nowait click WEEPBelk");
  EXPECT_EQ(Do("close"), test::BoxJson(test::kMustStop, "exclamation"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  for (const std::string name : {"labBelk", "LabHome", "MenuPCSetup", "buttCheckDevice", "mnuCheckconnection"}) {
    EXPECT_FALSE(console->Try("click MDIForm1." + name).Ok()) << name;
  }
  simulator->Thaw();
  EXPECT_EQ(Do("wait 900ms"), kCommittedBox);
  EXPECT_EQ(Do("answer OK"), kNothing);
  ExpectOffline();
  EXPECT_THAT(Images(), ElementsAre("1", "0", "257"));
}

}  // namespace
}  // namespace tarvo
