// The Lumet page against a simulated module: its two blocks, what the user changes and stores, and the search.

#include <array>
#include <vector>

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
using testing::ElementsAre;

const std::string kNotLumet = BoxJson("ERROR! Module is not Lumet or communication failed", "critical");
const std::string kCommitted = BoxJson("EEProm updated! Please reset module to apply changes.", "information");
const std::string kResetInSession = BoxJson("Module is Resetted! Comunication Stopped", "information");
const std::string kResetDone = BoxJson("Module is Resetted!", "information");

constexpr int kInputs = 10;
constexpr int kFlags = 40020;

class LumetPage : public test::PageBench {
 protected:
  LumetPage() : PageBench(test::PageNames{.model = "Lumet", .menu = "mnuLumet"}) {}

  static std::string Member(const std::string& array, int index) { return array + '(' + std::to_string(index) + ')'; }
  /// Inputs count from 0 here.
  static std::string Bar(int input) { return "BargLumet" + std::to_string(input + 1); }

  /// What a register of the simulated module holds, also while a session runs; it is no talk on the line.
  int Held(int number) const {
    const std::string answer = simulator->Order("com1 get " + std::to_string(number));
    EXPECT_TRUE(answer.starts_with("ok ")) << answer;
    return std::atoi(answer.substr(answer.rfind(' ') + 1).c_str());
  }
  /// As the world outside gives it.
  void Give(int number, int value) const {
    const std::string order = "com1 set " + std::to_string(number) + ' ' + std::to_string(value);
    EXPECT_EQ(simulator->Order(order), "ok " + order);
  }
  std::vector<int> Images() const { return {Held(40082), Held(40083), Held(40084), Held(40085)}; }

  /// A measure, whether its control has a caption or a text.
  std::string Measure(int channel) const {
    const test::ConsoleReply caption = console->Try("get " + Member("tbMisura", channel) + ".Caption");
    return caption.Ok() ? caption.Value() : Get(Member("tbMisura", channel) + ".Text");
  }
  /// "1" for each lit mark, "0" for each dark one, from input 1 on.
  std::string Marks() const {
    std::string marks;
    for (int i = 0; i < kInputs; ++i) {
      const std::string colour = Get(Member("OverFlowIN", i) + ".BackColor");
      EXPECT_TRUE(colour == kLampOn || colour == kLampOff) << colour;
      marks += colour == kLampOn ? '1' : '0';
    }
    return marks;
  }
  std::string Pictures() const {
    std::string pictures;
    for (int i = 0; i < kInputs; ++i) pictures += Get(Member("StatoIN", i) + ".Picture");
    return pictures;
  }
  /// Long enough for a poll of both blocks and the paint after it.
  void LetPollBoth() const { Do("wait 700ms"); }

  void Edit(const std::string& label, const std::string& text) const {
    EXPECT_EQ(Do("click " + label), kValueDialog);
    EXPECT_EQ(EnterValue(text), kNothing);
  }
  /// A button whose box must be `box`.
  void ClickThrough(const std::string& button, const std::string& box) const {
    EXPECT_EQ(Do("click " + button), box);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  /// Write EEprom, which takes its seconds.
  void Commit() const {
    const test::ConsoleReply reply = console->Try("click WEEPLumet", std::chrono::seconds(15));
    EXPECT_TRUE(reply.Ok()) << reply.Error();
    EXPECT_EQ(reply.Modal(), kCommitted);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  /// Until a module that was reset listens again.
  void AwaitRestart() const { Do("wait 450ms"); }
};

TEST_F(LumetPage, ShowsBothBlocks) {
  OpenSession(
      "lumet:40002=0x0205,40003=65535,40010=32768,40011=2,40012=1,40013=0,40014=0x8000,40015=0x0201,40016=40000,"
      "40017=17");
  EXPECT_EQ(Pictures(), "2121111112");
  EXPECT_EQ(Get("TotIN(0).Caption"), "65535");
  EXPECT_EQ(Get("TotIN(7).Caption"), "32768");
  EXPECT_EQ(Get(Bar(0) + ".Percent"), "100");
  EXPECT_EQ(Get(Bar(7) + ".Percent"), "50");
  LetPollBoth();
  EXPECT_EQ(Get("TotIN(8).Caption"), "65538");
  EXPECT_EQ(Get("TotIN(9).Caption"), "32768");
  EXPECT_EQ(Get(Bar(9) + ".Percent"), "50");
  EXPECT_EQ(Marks(), "1000000001");
  EXPECT_EQ(Measure(0), "40000");
  EXPECT_EQ(Measure(1), "17");
  EXPECT_EQ(Get("PollCount"), "9");
  EXPECT_EQ(Get("RunKind"), "1");
  EXPECT_EQ(Get("FirmwLumet.Caption"), "Firmware rel:  3");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Lumet , COM1,9600,n,8,1  Module Address:1");
  StopSession();
  EXPECT_EQ(Get("FirmwLumet.Caption"), "Firmware rel: ");
  EXPECT_EQ(Get("MessageLumet.Caption"), "");
  ExpectOffline();
}

TEST_F(LumetPage, ShowsTheSettings) {
  OpenSession("lumet:40018=0x3719,40019=77,40020=0x0803");
  EXPECT_EQ(Get("cbIngresso(0).Text"), "inp. #9");
  EXPECT_EQ(Get("cbTipoMisura(0).List"), R"(["frequency"])");
  EXPECT_EQ(Get("cbTipoMisura(0).Text"), "frequency");
  EXPECT_EQ(Get("cbIngresso(1).Text"), "inp. #7");
  EXPECT_EQ(Get("cbTipoMisura(1).Text"), "TOFF");
  EXPECT_EQ(Get("FilterLumet.Caption"), "77");
  EXPECT_EQ(Get("CheckLumet2.Value"), "1");
  EXPECT_EQ(Get("CheckLumet4.Value"), "1");
  EXPECT_EQ(Get("CheckLumet5.Value"), "0");
  EXPECT_EQ(Get("cbCombIngressi.Text"), "inc.9 - dec.9 ");
  EXPECT_EQ(Get("AddressLumet.Caption"), "1");
  EXPECT_EQ(Get("BaudLumet.Text"), "9600");
}

TEST_F(LumetPage, FollowsALivingModule) {
  OpenSession("lumet:40003=65534", Life::kLive);
  for (const char* total : {"TotIN(7)", "TotIN(8)", "TotIN(9)"}) {
    const std::string before = Get(total + std::string(".Caption"));
    Until(total + std::string(".Caption != ") + before);
  }
  for (const char* picture : {"1", "2"}) Until(std::string("StatoIN(0).Picture = ") + picture);
  LetPollBoth();
  EXPECT_EQ(Measure(0), "8");
  EXPECT_EQ(Measure(1), "5");
  Until("OverFlowIN(0).BackColor = " + kLampOn, "4s");
  Until("TotIN(0).Caption < 100");
}

TEST_F(LumetPage, FollowsInputsAndMarksOnTheirOwn) {
  OpenSession("lumet");
  Give(40002, 0x0155);
  Give(40015, 0x02AA);
  LetPollBoth();
  EXPECT_EQ(Pictures(), "2121212121");
  EXPECT_EQ(Marks(), "0101010101");
  Give(40002, 0x02AA);
  LetPollBoth();
  EXPECT_EQ(Pictures(), "1212121212");
  EXPECT_EQ(Marks(), "0101010101");
}

TEST_F(LumetPage, ChangesEachFlagInTheModule) {
  struct Flag {
    const char* box;
    int mask;
  };
  constexpr std::array kBoxes = {Flag{"CheckLumet2", 1}, Flag{"CheckLumet4", 2}, Flag{"CheckLumet5", 4},
                                 Flag{"CheckLumet6", 8}};
  OpenSession("lumet:40020=0x1060");
  for (const Flag& flag : kBoxes) {
    EXPECT_EQ(Do(std::string("click ") + flag.box), kNothing);
    EXPECT_EQ(Held(kFlags), 0x1060 | flag.mask) << flag.box;
    EXPECT_EQ(Do(std::string("click ") + flag.box), kNothing);
    EXPECT_EQ(Held(kFlags), 0x1060) << flag.box;
  }
  EXPECT_EQ(Do("click CheckLumet6"), kNothing);
  EXPECT_EQ(Do("click OptionLumet2"), kNothing);
  EXPECT_EQ(Held(kFlags), 0x1078);
  EXPECT_EQ(Do("click OptionLumet1"), kNothing);
  EXPECT_EQ(Held(kFlags), 0x1068);
  EXPECT_EQ(Do("click CheckLumet3"), kNothing);
  EXPECT_EQ(Held(kFlags), 0x1068);
  LetPollBoth();
  EXPECT_EQ(Get("MessageLumet.Caption"), "OK");
}

TEST_F(LumetPage, LosesNoneOfManyClicksAtOnce) {
  OpenSession("lumet:40020=0x0100");
  for (const char* box : {"CheckLumet2", "CheckLumet4", "CheckLumet5", "CheckLumet6"}) {
    Do(std::string("nowait click ") + box);
  }
  Do("idle within 3s");
  EXPECT_EQ(Held(kFlags), 0x010F);
}

TEST_F(LumetPage, StoresASessionsSettingsForAfterTheReset) {
  OpenSession("lumet:40019=20", Life::kLive);
  EXPECT_EQ(Do("click CheckLumet2"), kNothing);
  EXPECT_EQ(Do("choose cbCombIngressi 1"), kNothing);
  EXPECT_EQ(Do("choose cbIngresso(0) \"inp. #4\""), kNothing);
  EXPECT_EQ(Do("choose cbTipoMisura(0) TON"), kNothing);
  EXPECT_EQ(Do("choose cbIngresso(1) \"inp. #10\""), kNothing);
  Edit("FilterLumet", "5");
  Commit();
  EXPECT_THAT(Images(), ElementsAre(0x0A24, 5, 0x0101, 0x0101));
  EXPECT_EQ(Held(40019), 20) << "in force only from the reset on";
  EXPECT_EQ(Held(kFlags), 1);
  EXPECT_EQ(Get("StartComm"), "-1");
  ClickThrough("ResetLumet", kResetInSession);
  ExpectOffline();
  AwaitRestart();
  StartSession();
  EXPECT_EQ(Get("FilterLumet.Caption"), "5");
  EXPECT_EQ(Get("cbCombIngressi.ListIndex"), "1");
  EXPECT_EQ(Get("cbTipoMisura(0).Text"), "TON");
  EXPECT_EQ(Get("cbIngresso(1).Text"), "inp. #10");
  LetPollBoth();
  EXPECT_EQ(Measure(0), "300");
  EXPECT_EQ(Measure(1), "1250");
}

TEST_F(LumetPage, StoresAddressSpeedAndParityWithoutASession) {
  StartSimulator("lumet");
  OpenConsole();
  Edit("AddressLumet", "9");
  EXPECT_EQ(Do("choose BaudLumet 38400"), kNothing);
  EXPECT_EQ(Do("click CheckLumet6"), kNothing);
  Commit();
  ExpectOffline();
  EXPECT_THAT(Images(), ElementsAre(0x0101, 1, 0x0008, 0x0309));
  EXPECT_EQ(Held(kFlags), 0);
  ClickThrough("ResetLumet", kResetDone);
  AwaitRestart();
  ClickThrough("StartLumet", kNotLumet);
  const test::Polled polled = test::RunMbpoll(Device(), "-a 9 -b 38400 -P even -r 19 -c 3");
  EXPECT_EQ(polled.registers, (std::map<int, int>{{19, 1}, {20, 8}, {21, 0x0309}})) << polled.errors;
}

TEST_F(LumetPage, ForgetsAtTheResetWhatWasNotStored) {
  OpenSession("lumet:40003=7,40019=20,40020=0x0200");
  EXPECT_EQ(Do("click CheckLumet4"), kNothing);
  Edit("FilterLumet", "77");
  ClickThrough("ResetLumet", kResetInSession);
  AwaitRestart();
  StartSession();
  EXPECT_EQ(Get("CheckLumet4.Value"), "0");
  EXPECT_EQ(Get("FilterLumet.Caption"), "20");
  EXPECT_EQ(Get("cbCombIngressi.ListIndex"), "2");
  EXPECT_EQ(Get("TotIN(0).Caption"), "0");
}

TEST_F(LumetPage, RefusesAnotherModel) {
  StartSimulator("belk");
  OpenConsole();
  for (const char* button : {"StartLumet", "WEEPLumet", "ResetLumet"}) {
    ClickThrough(button, kNotLumet);
    ExpectOffline();
  }
  StartSimulator("lumet");
  StartSession();
}

TEST_F(LumetPage, OffersLessOnOldFirmware) {
  OpenSession("lumet:fw=1");
  EXPECT_EQ(Get("FirmwLumet.Caption"), "Firmware rel:  1");
  EXPECT_EQ(Get("StatusBar1(1).Text"), "FW Version  :1, down counters, delay, parity  checkboxes are disabled");
  EXPECT_EQ(Get("BaudLumet.List"), R"(["4800","9600","19200","38400","57600"])");
  for (const std::string name : {"CheckLumet3", "CheckLumet4", "CheckLumet5", "CheckLumet6", "OptionLumet2"}) {
    EXPECT_EQ(console->Try("click " + name).Error(), name + " is disabled");
  }
  StopSession();
  StartSimulator("lumet:fw=2");
  StartSession();
  EXPECT_EQ(Get("BaudLumet.List"), R"(["1200","2400","4800","9600","19200","38400","57600"])");
  EXPECT_EQ(Get("CheckLumet6.Enabled"), "true");
}

TEST_F(LumetPage, TellsAVanishedModuleAndTakesItBack) {
  OpenSession("lumet:40003=77,40011=88");
  LetPollBoth();
  simulator->Freeze();
  Until("MessageLumet.Caption = \"" + kWrongComm + "\"");
  EXPECT_EQ(Get("TotIN(0).Caption"), "77");
  EXPECT_EQ(Get("TotIN(8).Caption"), "88");
  simulator->Thaw();
  Until("MessageLumet.Caption = OK");
}

TEST_F(LumetPage, IsFoundByTheSearchAndRead) {
  StartSimulator("lumet:line=38400n81,40018=0x2812,40019=77,40020=0x0201");
  OpenConsole();
  Do("click LabHome");
  Do("nowait click buttCheckDevice");
  Until("StatusBar1(2).Text contains Connected", "20s");
  Do("idle within 5s");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "Connected to Lumet, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Get("NrFinestra"), "6");
  ExpectOffline();
  EXPECT_EQ(Get("FilterLumet.Caption"), "77");
  EXPECT_EQ(Get("CheckLumet2.Value"), "1");
  EXPECT_EQ(Get("cbCombIngressi.ListIndex"), "2");
  EXPECT_EQ(Get("cbTipoMisura(0).Text"), "period");
  EXPECT_EQ(Get("cbTipoMisura(1).Text"), "TON");
  EXPECT_EQ(Get("BaudLumet.Text"), "38400");
  StartSession();
}

TEST_F(LumetPage, IsShownAsTextWithItsTenInputs) {
  OpenSession("lumet:40003=4321,40011=5678");
  LetPollBoth();
  const std::string page = console->Try("show").Line();
  for (const char* words : {"Input 1", "Input 10", "4321", "5678", "Fast", "Negate Inputs"}) {
    EXPECT_THAT(page, testing::HasSubstr(words));
  }
}

}  // namespace
}  // namespace tarvo
