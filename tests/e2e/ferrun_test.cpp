// The Ferrun page against a simulated module: what is edited reaches the module, its EEPROM and the next session, and
// the loop is seen at work.

#include "e2e/shell_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kCommittedBox;
using test::kNothing;
using test::kResetBox;
using test::kResetInSessionBox;
using test::Life;
using testing::HasSubstr;

const std::string kNotFerrun = BoxJson("ERROR! Module is not Ferrun or communication failed", "critical");

class Ferrun : public test::ShellBench {
 protected:
  void OpenFerrun(const std::string& module, Life life = Life::kStill) {
    StartSimulator(module, life);
    WriteSettings("AUTOSCAN=FALSE\n");
    console = OpenShell({Device()}, Settings());
    EXPECT_EQ(Do("click labFerrun"), kNothing);
  }
  void Start() {
    EXPECT_EQ(Do("click StartFerrun"), kNothing);
    EXPECT_EQ(Get("StartComm"), "-1");
    EXPECT_EQ(Get("MessageFerrun.Caption"), "OK");
  }
  void ExpectBox(const std::string& button, const std::string& box) {
    EXPECT_EQ(Do("click " + button), box);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  /// The PC's line; then the page again.
  void SetPcLineAndReturn(const std::string& baud, const std::string& parityOption, const std::string& address) {
    SetPcLine(baud, parityOption, address);
    EXPECT_EQ(Do("click labFerrun"), kNothing);
  }
};

TEST_F(Ferrun, KeepsInItsEepromWhatASessionCommits) {
  OpenFerrun("ferrun:fw=3");
  Start();
  Edit("ValueFerrun(6)", "4200");
  EXPECT_EQ(Held(40012), "4200");
  Edit("ValueFerrun(11)", "150");
  EXPECT_EQ(Held(40018), "150");
  Edit("ValueFerrun(13)", "2500");
  Edit("ValueFerrun(5)", "-12");
  Edit("labSafetimeFerrun", "77");
  EXPECT_EQ(Do("choose comboInputTypeFerrun uA"), kNothing);
  EXPECT_EQ(Do("choose comboInputFilterFerrun \"5 Sec\""), kNothing);
  EXPECT_EQ(Do("click CheckInv"), kNothing);
  EXPECT_EQ(Do("click CheckResetonTx"), kNothing);
  EXPECT_EQ(Held(40011), std::to_string(0x8800));
  EXPECT_EQ(Held(40083), "0");
  ExpectBox("buttWEEPFerrun", kCommittedBox);
  EXPECT_EQ(Held(40066), std::to_string(0x0303));
  EXPECT_EQ(Held(40072), std::to_string(0x10000 - 12));
  EXPECT_EQ(Held(40075), std::to_string(0x8800));
  EXPECT_EQ(Held(40083), "2500");
  // Until its reset the module goes by what it had.
  EXPECT_EQ(Held(40002), std::to_string(0x0100));
  LetPoll();
  EXPECT_EQ(Get("MessageFerrun.Caption"), "OK");

  ExpectBox("buttResetFerrun", kResetInSessionBox);
  EXPECT_EQ(Get("StartComm"), "0");
  AwaitRestart();
  Start();
  EXPECT_EQ(Get("ValueFerrun(6).Caption"), "4200");
  EXPECT_EQ(Get("ValueFerrun(11).Caption"), "150");
  EXPECT_EQ(Get("ValueFerrun(13).Caption"), "2500");
  EXPECT_EQ(Get("ValueFerrun(5).Caption"), "-12");
  EXPECT_EQ(Get("labSafetimeFerrun.Caption"), "77");
  EXPECT_EQ(Get("comboInputTypeFerrun.ListIndex"), "2");
  EXPECT_EQ(Get("comboInputFilterFerrun.Text"), "5 Sec");
  EXPECT_EQ(Get("CheckInv.Value"), "1");
  EXPECT_EQ(Get("CheckResetonTx.Value"), "1");
  // Its output begins where the image says.
  EXPECT_EQ(Get("OutputFerrun.Caption"), "2500");
}

TEST_F(Ferrun, ForgetsAtAResetWhatWasNotCommitted) {
  OpenFerrun("ferrun:40012=1000");
  Start();
  Edit("ValueFerrun(6)", "4200");
  EXPECT_EQ(Do("click CheckReload"), kNothing);
  ExpectBox("buttResetFerrun", kResetInSessionBox);
  AwaitRestart();
  Start();
  EXPECT_EQ(Get("ValueFerrun(6).Caption"), "1000");
  EXPECT_EQ(Get("CheckReload.Value"), "0");
}

TEST_F(Ferrun, MovesToAnotherLineByACommitWithoutASession) {
  OpenFerrun("ferrun:fw=3,40012=3000");
  Start();
  EXPECT_EQ(Do("click StopFerrun"), kNothing);
  Edit("labAddressFerrun", "9");
  EXPECT_EQ(Do("choose comboBaudFerrun 38400"), kNothing);
  EXPECT_EQ(Do("click checkParity"), kNothing);
  EXPECT_EQ(Do("click OptionOdd"), kNothing);
  ExpectBox("buttWEEPFerrun", kCommittedBox);
  EXPECT_EQ(Held(40073), std::to_string(0x0309));
  EXPECT_EQ(Held(40075), std::to_string(0x0018));
  ExpectBox("buttResetFerrun", kResetBox);
  EXPECT_FALSE(console->Process().HasOpen(Device()));
  AwaitRestart();
  EXPECT_EQ(Do("click StartFerrun"), kNotFerrun);
  EXPECT_EQ(Do("answer OK"), kNothing);
  SetPcLineAndReturn("38400", "Option5", "9");
  Start();
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Ferrun, COM1,38400,o,8,1  Module Address:9");
  EXPECT_EQ(Get("labAddressFerrun.Caption"), "9");
  EXPECT_EQ(Get("comboBaudFerrun.Text"), "38400");
  EXPECT_EQ(Get("checkParity.Value"), "1");
  EXPECT_EQ(Get("OptionOdd.Value"), "true");
  EXPECT_EQ(Get("ValueFerrun(6).Caption"), "3000");
}

TEST_F(Ferrun, ShowsASetpointsChangeInItsBars) {
  OpenFerrun("ferrun:40011=0x0400,40012=1500", Life::kLive);
  Start();
  EXPECT_EQ(Get("CheckAuto.Value"), "1");
  EXPECT_EQ(console->Try("click OutputFerrun").Error(), "OutputFerrun is disabled");
  Until("BargFerrun1.Percent < 25");
  Edit("ValueFerrun(6)", "6000");
  Until("BargFerrun3.Percent > 50", "5s");
  Until("BargFerrun1.Percent > 45", "20s");
  EXPECT_GT(Number("BargFerrun2.Percent"), 40);
  EXPECT_GT(Number("InputScaledFerrun.Caption"), 4000);
  EXPECT_GT(Number("InputTechFerrun.Caption"), 400);
}

TEST_F(Ferrun, HandsTheOutputToTheUserInManual) {
  OpenFerrun("ferrun:40011=0x0400,40012=5000", Life::kLive);
  Start();
  EXPECT_EQ(Do("click CheckAuto"), kNothing);
  Edit("OutputFerrun", "10000");
  Until("BargFerrun3.Percent = 100");
  Until("BargFerrun1.Percent > 70", "20s");
  EXPECT_EQ(Held(40019), "10000");
  EXPECT_EQ(Get("OutputFerrun.Caption"), "10000");
}

TEST_F(Ferrun, LightsItsStatusLampsByTheModule) {
  OpenFerrun("ferrun");
  Start();
  for (int bit = 0; bit < 8; ++bit) {
    const std::string lamp = "StatusFerrun(" + std::to_string(bit) + ").BackColor";
    simulator->Order("com1 set 40022 " + std::to_string(0x0100 << bit));
    Until(lamp + " = 255");
    simulator->Order("com1 set 40022 0");
    Until(lamp + " != 255");
  }
}

TEST_F(Ferrun, IsFoundByTheSearch) {
  StartSimulator("ferrun:line=38400n81,fw=3,40002=0x0402,40012=4321,40011=0x8000,40083=99");
  WriteSettings("AUTOSCAN=TRUE\n");
  console = OpenShell({Device()}, Settings());
  EXPECT_EQ(Get("StartComm"), "0");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Ferrun, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Get("NrFinestra"), "3");
  EXPECT_THAT(Get("comboInputTypeFerrun.Text"), HasSubstr("PT100"));
  EXPECT_EQ(Get("comboInputFilterFerrun.Text"), "2 Sec");
  EXPECT_EQ(Get("ValueFerrun(6).Caption"), "4321");
  EXPECT_EQ(Get("ValueFerrun(13).Caption"), "99");
  EXPECT_EQ(Get("CheckResetonTx.Value"), "1");
  EXPECT_EQ(Get("comboBaudFerrun.Text"), "38400");
  Start();
}

TEST_F(Ferrun, IsFoundByTheSearchWithAnOldFirmware) {
  StartSimulator("ferrun:line=38400n81,fw=1");
  WriteSettings("AUTOSCAN=TRUE\n");
  console = OpenShell({Device()}, Settings());
  EXPECT_EQ(Get("StartComm"), "0");
  EXPECT_EQ(Get("StatusBar1(1).Text"), "FW Version = 1, Delay 12ms and Parity checkboxes  are disabled");
  EXPECT_EQ(Get("CheckDelay.Enabled"), "false");
  EXPECT_EQ(Get("checkParity.Enabled"), "false");
}

TEST_F(Ferrun, RefusesAnotherModelAndOneThatIsNotThere) {
  OpenFerrun("belk");
  for (const std::string button : {"StartFerrun", "buttWEEPFerrun", "buttResetFerrun"}) ExpectBox(button, kNotFerrun);
  StartSimulator("ferrun:addr=2");
  for (const std::string button : {"StartFerrun", "buttWEEPFerrun", "buttResetFerrun"}) ExpectBox(button, kNotFerrun);
  EXPECT_EQ(Get("StartComm"), "0");
  EXPECT_EQ(Get("ModCom1.PortOpen"), "false");
  StartSimulator("ferrun");
  Start();
}

TEST_F(Ferrun, GoesOnWhenTheLineComesBack) {
  OpenFerrun("ferrun");
  Start();
  simulator->Order("com1 silence");
  Until("MessageFerrun.Caption = \"ERROR! Wrong Comm.\"", "5s");
  simulator->Order("com1 clear");
  Until("MessageFerrun.Caption = OK", "5s");
  EXPECT_EQ(Get("StartComm"), "-1");
}

}  // namespace
}  // namespace tarvo
