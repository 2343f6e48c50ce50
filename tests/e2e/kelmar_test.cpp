// The Kelmar page against its simulated module, a calibration included.

#include "e2e/page_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kLampOff;
using test::kLampOn;
using test::kNothing;
using test::kWrongComm;

const std::string kNotKelmar = BoxJson("ERROR! Module is not Kelmar or communication failed", "critical");
const std::string kUpdated = BoxJson("EEProm updated! Please reset module to apply changes.", "information");
const std::string kReset = BoxJson("Module is Resetted!", "information");
const std::string kDialog = R"({"window":"dlgCalForm"})";

class KelmarPage : public test::PageBench {
 protected:
  KelmarPage() : PageBench(test::PageNames{.model = "Kelmar", .label = "menuKelmar", .menu = "menuKelmar"}) {}

  void Commit() const {
    EXPECT_EQ(Do("click WEEPKelmar"), kUpdated);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  /// Until the module is back.
  void Reset() const {
    EXPECT_EQ(Do("click ResetKelmar"), kReset);
    EXPECT_EQ(Do("answer OK"), kNothing);
    Do("wait 350ms");
  }
  /// What a register of the module holds, also while a session runs.
  std::string Held(int number) const {
    const std::string answer = simulator->Order("com1 get " + std::to_string(number));
    EXPECT_TRUE(answer.starts_with("ok ")) << answer;
    return answer.substr(answer.rfind(' ') + 1);
  }
  /// As the world outside gives it.
  void Feed(int number, int value) const {
    const std::string order = "com1 set " + std::to_string(number) + ' ' + std::to_string(value);
    EXPECT_EQ(simulator->Order(order), "ok " + order);
  }
};

TEST_F(KelmarPage, ShowsWhatTheModuleMeasures) {
  OpenSession("kelmar:40003=0x0100,40004=1,40005=2,40013=63531,40014=13000,40015=8000,40016=0");
  Until("ValueKelmar(0).Caption = -2005");
  EXPECT_EQ(Get("BargKelmar(0).Percent"), "20");
  EXPECT_EQ(Get("BargKelmar(0).FillColor"), "255");
  EXPECT_EQ(Get("ValueKelmar(1).Caption"), "13000");
  EXPECT_EQ(Get("BargKelmar(1).Percent"), "100");
  EXPECT_EQ(Get("BargKelmar(3).Percent"), "0");
  // Both go beyond the range of their type.
  EXPECT_EQ(Get("OverflowKelmar(0).BackColor"), kLampOn);
  EXPECT_EQ(Get("OverflowKelmar(1).BackColor"), kLampOn);
  EXPECT_EQ(Get("OverflowKelmar(3).BackColor"), kLampOff);
}

TEST_F(KelmarPage, ShowsAnOverRangeAndABurnOutAsTheyComeAndGo) {
  OpenSession("kelmar:40005=2,40014=250");
  Until("ValueKelmar(1).Caption = 250");
  Feed(40014, 12001);
  Until("OverflowKelmar(1).BackColor = " + kLampOn);
  Feed(40014, 250);
  Until("OverflowKelmar(1).BackColor = " + kLampOff);
  Feed(40012, 0x2000);
  Until("OverflowKelmar(5).BackColor = " + kLampOn);
  Until("ValueKelmar(1).Caption = 12000");
  Feed(40012, 0);
  Until("OverflowKelmar(5).BackColor = " + kLampOff);
}

TEST_F(KelmarPage, LivesWhenTheModuleDoes) {
  OpenSession("kelmar", test::Life::kLive);
  Until("ValueKelmar(1).Caption != 0");
  const std::string before = Get("ValueKelmar(1).Caption");
  Until("ValueKelmar(1).Caption != " + before);
}

TEST_F(KelmarPage, WipesTheFirmwareReleaseAndTheConnectionLine) {
  StartSimulator("kelmar:line=38400n81");
  OpenConsole();
  EXPECT_EQ(Get("StatusBar1(1).Text"), "Load Kelmar window");
  Do("nowait click buttCheckDevice");
  Until("StatusBar1(2).Text contains Connected", "20s");
  Do("idle within 5s");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Kelmar, COM1,38400,n,8,1  Module Address:1");
  StartSession();
  EXPECT_EQ(Get("FirmwKelmar.Caption"), "Firmware rel: ");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "");
}

TEST_F(KelmarPage, LocksItsSettingsInASession) {
  OpenSession("kelmar");
  for (const std::string name :
       {"WEEPKelmar", "ResetKelmar", "buttCal(0)", "CheckKelmar(0)", "CheckKelmar(5)", "CheckKelmarBitOrder"}) {
    EXPECT_EQ(console->Try("click " + name).Error(), name + " is disabled");
  }
  EXPECT_FALSE(console->Try("choose InputTypeKelmar(0) 1").Ok());
  StopSession();
  EXPECT_EQ(Do("choose InputTypeKelmar(0) TC-K"), kNothing);
}

TEST_F(KelmarPage, WritesRawDataAtOnceAndScaledDataNot) {
  OpenSession("kelmar:40003=0x0F02");
  EXPECT_EQ(Do("click OptionKelmar2"), kNothing);
  EXPECT_EQ(Held(40003), std::to_string(0x2F02));
  EXPECT_EQ(Do("click OptionKelmar1"), kNothing);
  LetPoll();
  EXPECT_EQ(Held(40003), std::to_string(0x2F02));
  EXPECT_EQ(Get("OptionKelmar2.Value"), "false");
  StopSession();
  StartSession();
  EXPECT_EQ(Get("OptionKelmar2.Value"), "true");
}

TEST_F(KelmarPage, KeepsTheLastInputSelected) {
  OpenSession("kelmar:40003=0x0300");
  StopSession();
  EXPECT_EQ(Do("click CheckKelmar(2)"), kNothing);
  EXPECT_EQ(Get("CheckKelmar(2).Value"), "0");
  EXPECT_EQ(Do("click CheckKelmar(1)"), kNothing);
  EXPECT_EQ(Get("CheckKelmar(1).Value"), "1");
}

TEST_F(KelmarPage, CommitsWhatWasEditedAndFindsItAfterTheReset) {
  OpenSession("kelmar:40003=0x2F00");
  StopSession();
  for (int input = 0; input < 4; ++input) {
    const std::string index = "(" + std::to_string(input) + ") ";
    EXPECT_EQ(Do("choose InputTypeKelmar" + index + std::to_string(8 - input)), kNothing);
    EXPECT_EQ(Do("choose FilterKelmar" + index + std::to_string(1 + input)), kNothing);
  }
  for (const std::string box : {"CheckKelmar(0)", "CheckKelmar(2)", "CheckKelmarBitOrder"}) {
    EXPECT_EQ(Do("click " + box), kNothing);
  }
  Commit();
  ExpectOffline();
  EXPECT_EQ(Held(40067), std::to_string(0x4D02)) << "without the kind of data";
  EXPECT_EQ(Held(40066), std::to_string(0x0101));
  EXPECT_EQ(Held(40004), "1") << "in force only from the reset on";
  Reset();
  ExpectOffline();
  EXPECT_EQ(Held(40003), std::to_string(0x4D02));
  StartSession();
  for (int input = 0; input < 4; ++input) {
    const std::string index = "(" + std::to_string(input) + ")";
    EXPECT_EQ(Get("InputTypeKelmar" + index + ".ListIndex"), std::to_string(8 - input));
    EXPECT_EQ(Get("FilterKelmar" + index + ".ListIndex"), std::to_string(1 + input));
  }
  EXPECT_EQ(Get("CheckKelmar(0).Value"), "1");
  EXPECT_EQ(Get("CheckKelmar(2).Value"), "0");
  EXPECT_EQ(Get("CheckKelmarBitOrder.Value"), "1");
  EXPECT_EQ(Get("OptionKelmar1.Value"), "true");
}

TEST_F(KelmarPage, CalibratesAnInputFromRelease1On) {
  StartSimulator("kelmar:fw=1,40006=2");
  OpenConsole();
  EXPECT_EQ(Do("click buttCal(2)"), kDialog);
  Until("buttRead(0).Enabled = true");
  Feed(40015, 200);
  EXPECT_EQ(Do("click buttRead(0)"), kDialog);
  Feed(40015, 8200);
  EXPECT_EQ(Do("click buttRead(1)"), kDialog);
  EXPECT_EQ(Do("type tbValueToSet(0) \"250\""), kDialog);
  EXPECT_EQ(Do("type tbValueToSet(1) \"8450\""), kDialog);
  EXPECT_EQ(Do("click buttCalibra"), kDialog);
  EXPECT_EQ(Do("click OKButton"), kNothing);
  for (const int image : {0, 64}) {
    EXPECT_EQ(Held(40023 + image), "45");
    EXPECT_EQ(Held(40027 + image), "10250");
  }
  Reset();
  StartSession();
  Until("ValueKelmar(2).Caption = 8450");
  Feed(40015, 200);
  Until("ValueKelmar(2).Caption = 250");
}

TEST_F(KelmarPage, RefusesACalibrationOfEachModuleThatHasNone) {
  const std::string none = "Calibration impossible, ";
  StartSimulator("kelmar:fw=0");
  OpenConsole();
  EXPECT_EQ(Do("click buttCal(0)"), BoxJson(none + "firmware version is too old ", "critical"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  StartSimulator("jorun");
  EXPECT_EQ(Do("click buttCal(0)"), BoxJson(none + " module is not Kelmar", "critical"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  simulator.reset();
  EXPECT_EQ(Do("click buttCal(0)"), BoxJson(none + "unable to read", "critical"));
  EXPECT_EQ(Do("answer OK"), kNothing);
}

TEST_F(KelmarPage, IsFoundByTheSearchWithItsSettings) {
  StartSimulator("kelmar:40004=5,40007=8,40009=3,40003=0x7102");
  OpenConsole();
  Do("click LabHome");
  Do("nowait click buttCheckDevice");
  Until("StatusBar1(2).Text contains Connected", "20s");
  Do("idle within 5s");
  EXPECT_EQ(Get("NrFinestra"), "7");
  ExpectOffline();
  EXPECT_EQ(Get("InputTypeKelmar(0).ListIndex"), "5");
  EXPECT_EQ(Get("InputTypeKelmar(3).ListIndex"), "8");
  EXPECT_EQ(Get("FilterKelmar(1).ListIndex"), "3");
  for (const std::string box : {"CheckKelmar(0)", "CheckKelmar(1)", "CheckKelmar(5)", "CheckKelmarBitOrder"}) {
    EXPECT_EQ(Get(box + ".Value"), "1") << box;
  }
  EXPECT_EQ(Get("CheckKelmar(2).Value"), "0");
  EXPECT_EQ(Get("OptionKelmar2.Value"), "true");
  StartSession();
}

TEST_F(KelmarPage, RefusesAModuleOfAnotherModel) {
  StartSimulator("jorun");
  OpenConsole();
  for (const char* button : {"StartKelmar", "WEEPKelmar", "ResetKelmar"}) {
    EXPECT_EQ(Do(std::string("click ") + button), kNotKelmar) << button;
    EXPECT_EQ(Do("answer OK"), kNothing);
    ExpectOffline();
  }
  EXPECT_EQ(Register(67), 0);
}

TEST_F(KelmarPage, TellsAVanishedModuleAndTakesItBack) {
  OpenSession("kelmar:40013=77");
  Until("ValueKelmar(0).Caption = 77");
  simulator->Freeze();
  Until("MessageKelmar.Caption = \"" + kWrongComm + "\"");
  EXPECT_EQ(Get("ValueKelmar(0).Caption"), "77");
  simulator->Thaw();
  Until("MessageKelmar.Caption = OK");
}

TEST_F(KelmarPage, IsShownAsTextWithItsInputsAndItsInterface) {
  OpenSession("kelmar:40013=4321");
  Until("ValueKelmar(0).Caption = 4321");
  const std::string page = console->Try("show").Line();
  for (const char* words : {"Input 1", "Input 4", "Measured Value", "4321", "PLC Interface Settings", "INPUT #1",
                            "STATUS", "Rev. Bit Order"}) {
    EXPECT_THAT(page, testing::HasSubstr(words));
  }
}

}  // namespace
}  // namespace tarvo
