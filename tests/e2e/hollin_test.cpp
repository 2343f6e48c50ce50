// The Hollin page against a simulated module: what is shown of it, what the user stores, and the search.

#include <array>

#include "e2e/page_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kLampOff;
using test::kLampOn;
using test::kNothing;
using test::kValueDialog;
using test::kWrongComm;
using test::Life;

const std::string kNotHollin = BoxJson("ERROR! Module is not Hollin or communication failed", "critical");
const std::string kUpdated = BoxJson("EEProm updated! Please reset module to apply changes.", "information");
const std::string kReset = BoxJson("Module is Resetted!", "information");
const std::string kFixed = "com port fixed, baud rate fixed : ";

class HollinPage : public test::PageBench {
 protected:
  HollinPage() : PageBench(test::PageNames{.model = "Hollin", .label = "MenuHollin"}) {}

  static std::string Member(const std::string& array, int index) { return array + '(' + std::to_string(index) + ')'; }

  /// A click that opens the value dialog, and what it takes.
  void Edit(const std::string& label, const std::string& text) const {
    EXPECT_EQ(Do("click " + label), kValueDialog);
    EXPECT_EQ(EnterValue(text), kNothing);
    EXPECT_EQ(Get(label + ".Caption"), text);
  }
  void Commit() const {
    EXPECT_EQ(Do("click WEEPHollin"), kUpdated);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  /// Until the module is back.
  void Reset() const {
    EXPECT_EQ(Do("click ResetHollin"), kReset);
    EXPECT_EQ(Do("answer OK"), kNothing);
    Do("wait 350ms");
  }
  /// What a register of the module holds, whatever its line.
  std::string Held(int number) const {
    const std::string answer = simulator->Order("com1 get " + std::to_string(number));
    EXPECT_TRUE(answer.starts_with("ok ")) << answer;
    return answer.substr(answer.rfind(' ') + 1);
  }
};

TEST_F(HollinPage, ShowsRawAndScaledValues) {
  OpenSession(
      "hollin:40003=0x0100,40017=1000,40018=65535,40019=2,40020=32768,40021=55536,40022=10001,40023=50,40024=7");
  const std::pair<const char*, const char*> shown[] = {
      {"ValueGaven(2)", "1000"},    {"ValueGaven(5)", "-1"},     {"ValueGaven(9)", "2"},   {"ValueGaven(13)", "-32768"},
      {"ValueHollin(3)", "-10000"}, {"ValueHollin(4)", "10001"}, {"ValueHollin(8)", "50"}, {"ValueHollin(12)", "7"}};
  for (const auto& [label, text] : shown) EXPECT_EQ(Get(std::string(label) + ".Caption"), text) << label;
  LetPoll();
  EXPECT_EQ(Get("BargHollin(0).Percent"), "100");
  EXPECT_EQ(Get("BargHollin(0).FillColor"), "255");
  EXPECT_EQ(Get("BargHollin(1).Percent"), "100");
  EXPECT_EQ(Get("BargHollin(1).FillColor"), std::to_string(0xFF8080));
  EXPECT_EQ(Get("BargHollin(2).Percent"), "0");
}

TEST_F(HollinPage, ShowsOverAndUnderflowOfEachInput) {
  OpenSession("hollin:40016=0x9600");
  LetPoll();
  constexpr std::array<bool, 8> kLit = {true, false, false, true, false, true, true, false};
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(Get(Member("OverflowHollin", i) + ".BackColor"), kLit[static_cast<std::size_t>(i)] ? kLampOn : kLampOff)
        << i;
  }
}

TEST_F(HollinPage, ShowsALivingModule) {
  OpenSession("hollin", Life::kLive);
  for (const char* raw : {"ValueHollin(3)", "ValueHollin(4)", "ValueHollin(8)", "ValueHollin(12)"}) {
    const std::string before = Get(raw + std::string(".Caption"));
    Until(raw + std::string(".Caption != ") + before);
  }
}

TEST_F(HollinPage, ShowsTheFlagsOfTheModule) {
  OpenSession("hollin:40003=0x7502,fw=9");
  EXPECT_EQ(Get("FirmwHollin.Caption"), "Firmware rel: 9");
  constexpr std::array<const char*, 6> kValues = {"1", "1", "0", "1", "0", "1"};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(Get(Member("CheckHollin", i) + ".Value"), kValues[static_cast<std::size_t>(i)]) << i;
  }
  EXPECT_EQ(Get("OptionHollin2.Value"), "true");
  EXPECT_EQ(Get("OptionHollin1.Value"), "false");
  EXPECT_EQ(Get("CheckHollinBitOrder.Value"), "1");
}

TEST_F(HollinPage, LocksItsSettingsInASession) {
  OpenSession("hollin");
  for (const std::string name : {"CheckHollin(0)", "CheckHollin(5)", "CheckHollinBitOrder", "OptionHollin2",
                                 "ValueHollin(0)", "WEEPHollin", "ResetHollin"}) {
    EXPECT_EQ(console->Try("click " + name).Error(), name + " is disabled");
  }
  EXPECT_FALSE(console->Try("choose FilterHollin(0) 1").Ok());
  StopSession();
  EXPECT_EQ(Do("choose FilterHollin(0) 1"), kNothing);
  EXPECT_EQ(Do("click CheckHollin(5)"), kNothing);
}

TEST_F(HollinPage, KeepsTheLastInputSelected) {
  OpenSession("hollin:40003=0x0600");
  StopSession();
  EXPECT_EQ(Do("click CheckHollin(2)"), kNothing);
  EXPECT_EQ(Get("CheckHollin(2).Value"), "0");
  EXPECT_EQ(Do("click CheckHollin(3)"), kNothing);
  EXPECT_EQ(Get("CheckHollin(3).Value"), "1");
}

TEST_F(HollinPage, CommitsWhatWasEditedAndFindsItAfterTheReset) {
  StartSimulator("hollin:40003=0x0103,40021=5000");
  OpenConsole();
  StartSession();
  StopSession();
  Edit("ValueHollin(1)", "2000");
  Edit("ValueHollin(14)", "-1");
  Do("choose FilterHollin(2) 6");
  for (const char* control : {"OptionHollin2", "CheckHollin(5)", "CheckHollin(3)"}) {
    EXPECT_EQ(Do(std::string("click ") + control), kNothing);
  }
  Commit();
  ExpectOffline();
  EXPECT_EQ(Held(40003), std::to_string(0x0103)) << "in force only from the reset on";
  EXPECT_EQ(Held(40067), std::to_string(0x3502));
  EXPECT_EQ(Held(40066), std::to_string(0x0101));
  Reset();
  ExpectOffline();
  EXPECT_EQ(Register(3), 0x3502) << "a commit loses the bits without a control";
  EXPECT_EQ(Register(8), 2000);
  EXPECT_EQ(Register(15), 0xFFFF);
  StartSession();
  EXPECT_EQ(Get("ValueHollin(1).Caption"), "2000");
  EXPECT_EQ(Get("ValueHollin(14).Caption"), "-1");
  EXPECT_EQ(Get("FilterHollin(2).ListIndex"), "6");
  EXPECT_EQ(Get("OptionHollin2.Value"), "true");
  EXPECT_EQ(Get("ValueGaven(2).Caption"), "1000") << "the new scale is in force";
}

TEST_F(HollinPage, TellsTheLineOfThePCAndNeverMovesTheModule) {
  StartSimulator("hollin:addr=9,line=38400e81");
  OpenConsole();
  EXPECT_EQ(Get("StatusBar1(1).Text"), kFixed + "9600,n,8,1");
  EXPECT_EQ(Do("click LabPCSetup"), kNothing);
  EXPECT_EQ(Do("choose PCBaudRate 38400"), kNothing);
  EXPECT_EQ(Do("click Option4"), kNothing);
  EXPECT_EQ(Do("click PCAddress"), kValueDialog);
  EXPECT_EQ(EnterValue("9"), kNothing);
  EXPECT_EQ(Do("click MenuHollin"), kNothing);
  EXPECT_EQ(Get("StatusBar1(1).Text"), kFixed + "38400,e,8,1");
  Commit();
  EXPECT_EQ(Held(40066), std::to_string(0x0309));
  Reset();
  StartSession();
}

TEST_F(HollinPage, RefusesAModuleOfAnotherModel) {
  StartSimulator("gaven");
  OpenConsole();
  for (const char* button : {"StartHollin", "WEEPHollin", "ResetHollin"}) {
    EXPECT_EQ(Do(std::string("click ") + button), kNotHollin) << button;
    EXPECT_EQ(Do("answer OK"), kNothing);
    ExpectOffline();
  }
  EXPECT_EQ(Register(67), 0);
}

TEST_F(HollinPage, TellsAVanishedModuleAndTakesItBack) {
  OpenSession("hollin:40021=77");
  simulator->Freeze();
  Until("MessageHollin.Caption = \"" + kWrongComm + "\"");
  EXPECT_EQ(Get("ValueHollin(3).Caption"), "77");
  simulator->Thaw();
  Until("MessageHollin.Caption = OK");
}

TEST_F(HollinPage, IsFoundByTheSearch) {
  StartSimulator("hollin:line=38400n81,40008=1234,40015=65535,40006=2,40003=0x1800");
  OpenConsole();
  Do("click LabHome");
  Do("nowait click buttCheckDevice");
  Until("StatusBar1(2).Text contains Connected", "20s");
  Do("idle within 5s");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Hollin, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Get("StatusBar1(1).Text"), kFixed + "38400,n,8,1");
  EXPECT_EQ(Get("NrFinestra"), "8");
  ExpectOffline();
  EXPECT_EQ(Get("ValueHollin(1).Caption"), "1234");
  EXPECT_EQ(Get("ValueHollin(14).Caption"), "-1");
  EXPECT_EQ(Get("FilterHollin(2).ListIndex"), "2");
  EXPECT_EQ(Get("CheckHollin(4).Value"), "1");
  EXPECT_EQ(Get("CheckHollin(5).Value"), "1");
  StartSession();
}

TEST_F(HollinPage, IsShownAsTextWithItsInputsAndItsInterface) {
  OpenSession("hollin:40021=4321");
  const std::string page = console->Try("show").Line();
  for (const char* words : {"Input 1", "Input 4", "Start Scale", "Raw Input", "4321", "PLC Interface Settings",
                            "Selected Registers", "INPUT #1", "STATUS", "Data", "Rev. Bit Order"}) {
    EXPECT_THAT(page, testing::HasSubstr(words));
  }
}

}  // namespace
}  // namespace tarvo
