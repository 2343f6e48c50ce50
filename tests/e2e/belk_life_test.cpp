// Belk sessions with a module that lives, falls silent, or vanishes.

#include "e2e/belk_bench.h"

namespace tarvo {
namespace {

using test::kLampOff;
using test::kLampOn;
using test::kNotBelk;
using test::kNothing;
using test::kValueDialog;
using test::kWrongComm;
using test::Life;

class BelkLife : public test::BelkBench {
 protected:
  /// How far a counter goes meanwhile.
  int CountsWithin(const std::string& time, const std::string& counter = "TotIN(4)") const {
    const int before = Number(counter + ".Caption");
    Do("wait " + time);
    return Number(counter + ".Caption") - before;
  }
};

TEST_F(BelkLife, MovesInputsAndCounters) {
  OpenSession("belk:40007=100", Life::kLive);
  const std::string counted = Get("TotIN(4).Caption");
  Until("StatoIN(4).Picture = 2", "2s");
  Until("StatoIN(4).Picture = 1", "2s");
  Until("TotIN(4).Caption > " + counted, "2s");
}

TEST_F(BelkLife, BringsAnOverflowThatAClickClears) {
  OpenSession("belk:40007=65300,40009=0x80", Life::kLive);
  Until("OverFlowIN(4).BackColor = " + kLampOn, "2s");
  Do("click OverFlowIN(4)");
  Until("OverFlowIN(4).BackColor = " + kLampOff, "1s");
  EXPECT_GT(CountsWithin("300ms"), 0);
  EXPECT_LT(Number("TotIN(4).Caption"), 30000);
  EXPECT_EQ(Get("OverFlowIN(4).BackColor"), kLampOff);
}

TEST_F(BelkLife, TurnsRoundByTheFlag) {
  OpenSession("belk:40007=30000,40009=0x80", Life::kLive);
  EXPECT_GT(CountsWithin("450ms"), 0);
  Do("click CheckBelk4");
  // What is shown next may still have been counted upwards.
  LetPoll();
  EXPECT_LT(CountsWithin("450ms"), 0);
}

TEST_F(BelkLife, GoesOnFromAPresetCounter) {
  OpenSession("belk:40007=30000,40009=0x80", Life::kLive);
  EXPECT_EQ(Do("click TotIN(4)"), kValueDialog);
  EXPECT_EQ(EnterValue("100"), kNothing);
  LetPoll();
  EXPECT_GT(Number("TotIN(4).Caption"), 100);
  EXPECT_LT(Number("TotIN(4).Caption"), 20000);
}

TEST_F(BelkLife, NegatesTheLampsByTheFlag) {
  OpenSession("belk:40002=0x0005");
  Do("click CheckBelk2");
  Until("StatoIN(0).Picture = 1");
  for (const char* lit : {"StatoIN(1)", "StatoIN(3)", "StatoIN(4)"}) {
    EXPECT_EQ(Get(lit + std::string(".Picture")), "2") << lit;
  }
  EXPECT_EQ(Get("StatoIN(2).Picture"), "1");
}

TEST_F(BelkLife, IsShownBehindAnOpenDialog) {
  OpenSession("belk:40007=1000,40009=0x80", Life::kLive);
  EXPECT_EQ(Do("click FilterBelk"), kValueDialog);
  EXPECT_GT(CountsWithin("450ms", "Belk.TotIN(4)"), 0);
}

TEST_F(BelkLife, TellsAVanishedModuleAndCanStillBeStopped) {
  OpenSession("belk:40003=77");
  simulator->Kill();
  Until("MessageBelk.Caption = \"" + kWrongComm + "\"", "1s");
  LetPoll();
  EXPECT_EQ(Get("MessageBelk.Caption"), kWrongComm);
  EXPECT_EQ(Get("StartComm"), "-1");
  EXPECT_EQ(Get("TotIN(0).Caption"), "77");
  StopSession();
  ExpectOffline();
}

TEST_F(BelkLife, WorksAgainAfterAModuleThatVanished) {
  OpenSession("belk:40003=77");
  simulator->Kill();
  Until("MessageBelk.Caption = \"" + kWrongComm + "\"", "1s");
  StopSession();
  EXPECT_EQ(Do("click StartBelk"), kNotBelk);
  EXPECT_EQ(Do("answer OK"), kNothing);
  StartSimulator("belk:40003=78");
  StartSession();
  EXPECT_EQ(Get("TotIN(0).Caption"), "78");
}

TEST_F(BelkLife, DoesNotWaitForAVanishedModule) {
  OpenSession("belk");
  simulator->Kill();
  Do("nowait click CheckBelk2");
  EXPECT_EQ(Do("idle within 1s"), kNothing);
  StopSession();
  ExpectOffline();
}

TEST_F(BelkLife, TellsASilentModuleAfterItsTriesAndTakesItBack) {
  OpenSession("belk:40003=77");
  simulator->Freeze();
  // Three tries of half a second and their time on the line.
  Do("wait 800ms");
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
  Until("MessageBelk.Caption = \"" + kWrongComm + "\"", "1200ms");
  EXPECT_EQ(Get("StartComm"), "-1");
  EXPECT_EQ(Get("TotIN(0).Caption"), "77");
  simulator->Thaw();
  Until("MessageBelk.Caption = OK", "1s");
}

TEST_F(BelkLife, StopsWhileAReadIsPending) {
  OpenSession("belk");
  simulator->Freeze();
  Do("wait 100ms");
  Do("nowait click StopBelk");
  EXPECT_EQ(Get("StartComm"), "0");
  Do("wait 100ms");
  EXPECT_EQ(Get("ModCom1.PortOpen"), "true");
  Do("idle within 2s");
  ExpectOffline();
}

TEST_F(BelkLife, LeavesThePageAliveWhileTheModuleIsSilent) {
  OpenSession("belk");
  simulator->Freeze();
  Do("wait 100ms");
  EXPECT_EQ(Do("click FilterBelk"), kValueDialog);
  EXPECT_EQ(EnterValue("200"), kNothing);
  EXPECT_EQ(Get("FilterBelk.Caption"), "200");
  Do("nowait click CheckBelk2");
  EXPECT_EQ(Get("CheckBelk2.Value"), "1");
  simulator->Thaw();
  Do("idle within 2s");
  LetPoll();
  EXPECT_EQ(Get("CheckBelk2.Value"), "1");
  StopSession();
  EXPECT_EQ(Register(9), 1);
}

}  // namespace
}  // namespace tarvo
