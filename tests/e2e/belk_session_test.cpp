// Start and Stop of a Belk session against a simulated module, and what the page shows of it.

#include <array>
#include <ostream>
#include <utility>

#include "e2e/belk_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kLampOff;
using test::kLampOn;
using test::kNothing;

class BelkSession : public test::BelkBench {};

const std::string kMustStop = "Communication must be stopped before exit !";

TEST_F(BelkSession, ShowsInputsAndOverflowsBitByBit) {
  OpenSession("belk:40002=0x0A15");
  constexpr std::array<bool, 5> kInputs = {true, false, true, false, true};
  constexpr std::array<bool, 5> kOverflows = {false, true, false, true, false};
  for (std::size_t i = 0; i < kInputs.size(); ++i) {
    const std::string index = "(" + std::to_string(i) + ")";
    EXPECT_EQ(Get("StatoIN" + index + ".Picture"), kInputs[i] ? "2" : "1") << index;
    EXPECT_EQ(Get("OverFlowIN" + index + ".BackColor"), kOverflows[i] ? kLampOn : kLampOff) << index;
  }
}

TEST_F(BelkSession, ShowsCountersAsNumbersAndBars) {
  OpenSession("belk:40003=0,40004=983,40005=33100,40006=65534,40007=65535");
  const std::array<std::pair<std::string, std::string>, 5> shown = {
      {{"0", "0"}, {"983", "1"}, {"33100", "51"}, {"65534", "100"}, {"65535", "100"}}};
  for (std::size_t i = 0; i < shown.size(); ++i) {
    EXPECT_EQ(Get("TotIN(" + std::to_string(i) + ").Caption"), shown[i].first);
    EXPECT_EQ(Get("BargBelk" + std::to_string(i + 1) + ".Percent"), shown[i].second);
  }
}

TEST_F(BelkSession, ShowsFilterAddressAndSpeedOfTheModule) {
  OpenSession("belk:40008=254");
  EXPECT_EQ(Get("FilterBelk.Caption"), "254");
  EXPECT_EQ(Get("AddressBelk.Caption"), "1");
  EXPECT_EQ(Get("BaudBelk.Text"), "9600");
}

TEST_F(BelkSession, RunsUntilStop) {
  OpenSession("belk");
  EXPECT_EQ(Get("ModCom1.PortOpen"), "true");
  EXPECT_EQ(Get("TimerLetturaSeriale.Enabled"), "true");
  EXPECT_EQ(Get("TimerGestioneLetture.Enabled"), "true");
  EXPECT_EQ(Get("MediaPlayer1.Playing"), "true");
  EXPECT_EQ(Get("MousePointer"), "default");
  EXPECT_EQ(Get("PollRegister"), "40002");
  EXPECT_EQ(Get("PollCount"), "9");
  EXPECT_EQ(Get("RunKind"), "1");
  LetPoll();
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
  StopSession();
  ExpectOffline();
  EXPECT_EQ(Get("MediaPlayer1.Playing"), "false");
}

TEST_F(BelkSession, CanBeStartedAgainAfterStop) {
  OpenSession("belk");
  for (int i = 0; i < 3; ++i) {
    StopSession();
    StartSession();
  }
}

TEST_F(BelkSession, TakesNoSecondStartAndNoOtherPage) {
  OpenSession("belk");
  for (const std::string name : {"StartBelk", "labBelk", "MenuBelk"}) {
    EXPECT_EQ(console->Try("click " + name).Error(), name + " is disabled");
  }
}

TEST_F(BelkSession, ComesOnceOfTwoQuickClicks) {
  StartSimulator("belk");
  OpenConsole();
  simulator->Freeze();
  Do("nowait click StartBelk");
  EXPECT_EQ(Get("MousePointer"), "hourglass");
  console->Try("nowait click StartBelk");
  simulator->Thaw();
  EXPECT_EQ(Do("idle within 3s"), kNothing);
  EXPECT_EQ(Get("StartComm"), "-1");
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
  StopSession();
  ExpectOffline();
}

TEST_F(BelkSession, LeavesStopWithoutEffectWhenNoneRuns) {
  StartSimulator("belk");
  OpenConsole();
  console->Try("click StopBelk");
  ExpectOffline();
  StartSession();
}

TEST_F(BelkSession, FreesThePortForAnotherProgram) {
  OpenSession("belk");
  const std::unique_ptr<test::ConsoleProcess> other = OpenProgram(Device());
  StopSession();
  EXPECT_EQ(other->Do("click StartBelk"), kNothing);
  EXPECT_EQ(other->Get("StartComm"), "-1");
}

TEST_F(BelkSession, FreesThePortWhenItsProgramEnds) {
  OpenSession("belk");
  console->Process().EndInput();
  EXPECT_EQ(console->Process().WaitWithin(), 0);
  OpenConsole();
  StartSession();
}

TEST_F(BelkSession, RefusesTheCloseBox) {
  OpenSession("belk");
  EXPECT_EQ(Do("close"), BoxJson(kMustStop, "exclamation"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  LetPoll();
  EXPECT_EQ(Get("StartComm"), "-1");
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
}

TEST_F(BelkSession, RefusesExitOfTheMenu) {
  OpenSession("belk");
  EXPECT_EQ(Do("quit"), BoxJson(kMustStop, "none"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  LetPoll();
  EXPECT_EQ(Get("StartComm"), "-1");
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
}

TEST_F(BelkSession, LetsTheProgramEndAfterStop) {
  StartSimulator("belk");
  for (const std::string road : {"close", "quit"}) {
    OpenConsole();
    StartSession();
    StopSession();
    EXPECT_TRUE(console->Process().Write(road + '\n'));
    EXPECT_EQ(console->Process().WaitWithin(), 0) << road;
  }
}

TEST_F(BelkSession, IsTornByNothingWhileItStarts) {
  StartSimulator("belk");
  OpenConsole();
  simulator->Freeze();
  Do("nowait click StartBelk");
  EXPECT_EQ(Do("close"), BoxJson(kMustStop, "exclamation"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  EXPECT_FALSE(console->Try("click labBelk").Ok());
  EXPECT_FALSE(console->Try("click MenuBelk").Ok());
  simulator->Thaw();
  Do("idle within 3s");
  EXPECT_EQ(Get("StartComm"), "-1");
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
}

TEST_F(BelkSession, IsNotStoppedByEscape) {
  OpenSession("belk");
  EXPECT_EQ(Do("key Escape"), kNothing);
  EXPECT_EQ(Get("EscPressed"), "1");
  LetPoll();
  EXPECT_EQ(Get("StartComm"), "-1");
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
}

struct Gate {
  int firmware;
  bool newerControls;
  std::string speeds;
  std::string codes;
};
void PrintTo(const Gate& gate, std::ostream* out) {
  *out << gate.firmware;
}

class BelkFirmware : public test::BelkBench, public testing::WithParamInterface<Gate> {};

TEST_P(BelkFirmware, DecidesWhatThePageOffers) {
  const Gate& gate = GetParam();
  OpenSession("belk:fw=" + std::to_string(gate.firmware));
  EXPECT_EQ(Get("FirmwBelk.Caption"), "Firmware rel: " + std::to_string(gate.firmware));
  for (const char* name : {"CheckBelk3", "CheckBelk4", "CheckBelk5", "CheckBelk6"}) {
    EXPECT_EQ(Get(name + std::string(".Enabled")), gate.newerControls ? "true" : "false") << name;
  }
  EXPECT_EQ(Get("CheckBelk1.Enabled"), "true");
  EXPECT_EQ(Get("CheckBelk2.Enabled"), "true");
  // The parity is off, and that decides last.
  EXPECT_EQ(Get("OptionBelk1.Enabled"), "false");
  EXPECT_EQ(Get("OptionBelk2.Enabled"), "false");
  EXPECT_EQ(Get("BaudBelk.List"), gate.speeds);
  EXPECT_EQ(Get("BaudBelk.ItemData"), gate.codes);
  EXPECT_EQ(Get("BaudBelk.Text"), "9600");
}

TEST_P(BelkFirmware, LeavesTheParityOptionsToTheParityFlag) {
  OpenSessionWithFlags(0x18, GetParam().firmware);
  EXPECT_EQ(Get("OptionBelk1.Enabled"), "true");
  EXPECT_EQ(Get("OptionBelk2.Enabled"), "true");
  EXPECT_EQ(Get("OptionBelk2.Value"), "true");
}

const std::string kFiveSpeeds = R"(["4800","9600","19200","38400","57600"])";
const std::string kSevenSpeeds = R"(["1200","2400","4800","9600","19200","38400","57600"])";

INSTANTIATE_TEST_SUITE_P(Releases, BelkFirmware,
                         testing::Values(Gate{1, false, kFiveSpeeds, "[0,1,2,3,4]"},
                                         Gate{2, true, kFiveSpeeds, "[0,1,2,3,4]"},
                                         Gate{3, true, kSevenSpeeds, "[6,7,0,1,2,3,4]"},
                                         Gate{255, true, kSevenSpeeds, "[6,7,0,1,2,3,4]"}),
                         [](const auto& instance) { return std::to_string(instance.param.firmware); });

TEST_F(BelkSession, TakesBackWhatAnOlderFirmwareLacks) {
  OpenSession("belk:fw=3");
  StopSession();
  StartSimulator("belk:fw=1");
  StartSession();
  EXPECT_EQ(Get("FirmwBelk.Caption"), "Firmware rel: 1");
  EXPECT_EQ(Get("CheckBelk4.Enabled"), "false");
  EXPECT_EQ(Get("BaudBelk.List"), kFiveSpeeds);
  EXPECT_EQ(Get("BaudBelk.Text"), "9600");
  StopSession();
  StartSimulator("belk:fw=3");
  StartSession();
  EXPECT_EQ(Get("CheckBelk4.Enabled"), "true");
  EXPECT_EQ(Get("BaudBelk.List"), kSevenSpeeds);
  EXPECT_EQ(Get("BaudBelk.Text"), "9600");
}

}  // namespace
}  // namespace tarvo
