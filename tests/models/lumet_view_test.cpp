// The Lumet page before anything was read, what stands on it, and what the user chooses on it.

#include "support/lumet_fixture.h"
#include "support/page_words.h"
#include "view/arrangement.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

class LumetView : public LumetFixture {};

TEST_F(LumetView, ComesByItsLabelAndByItsMenuItem) {
  for (const char* road : {"MDIForm1.labLumet", "MDIForm1.mnuLumet"}) {
    Click("MDIForm1.LabHome");
    ASSERT_EQ(State().NrFinestra, -1);
    EXPECT_FALSE(Enabled("MDIForm1.OpenMNU"));
    EXPECT_FALSE(Enabled("MDIForm1.SaveMNU"));
    Click(road);
    EXPECT_EQ(Page().Name(), "frmLumet") << road;
    EXPECT_EQ(State().NrFinestra, 6) << road;
    EXPECT_EQ(State().FamilyShown, state::kTrue) << road;
    EXPECT_TRUE(Enabled("MDIForm1.OpenMNU")) << road;
    EXPECT_TRUE(Enabled("MDIForm1.SaveMNU")) << road;
  }
  EXPECT_EQ(Text("MDIForm1.labLumet"), "Lumet");
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(LumetView, IsInTheListOfTheFirstFamily) {
  Choose("MDIForm1.cbSelectDevice", 1);
  EXPECT_FALSE(Visible("MDIForm1.labLumet"));
  Choose("MDIForm1.cbSelectDevice", 0);
  EXPECT_TRUE(Visible("MDIForm1.labLumet"));
}

TEST_F(LumetView, BringsItsFamilyBack) {
  Choose("MDIForm1.cbSelectDevice", 1);
  Click("MDIForm1.mnuLumet");
  EXPECT_EQ(ListIndex("MDIForm1.cbSelectDevice"), 0);
  EXPECT_TRUE(Visible("MDIForm1.labLumet"));
}

TEST_F(LumetView, BeginsWithTheLowestValues) {
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_EQ(Picture(Stato(i)), 1) << i;
    EXPECT_EQ(Text(Total(i)), "0") << i;
    EXPECT_EQ(BackColor(Overflow(i)), 64) << i;
  }
  for (int channel = 0; channel < 2; ++channel) EXPECT_EQ(Text(Misura(channel)), "0");
  for (const char* box : {"CheckLumet2", "CheckLumet3", "CheckLumet4", "CheckLumet5", "CheckLumet6"}) {
    EXPECT_FALSE(Checked(box)) << box;
  }
  EXPECT_EQ(Text("FilterLumet"), "1");
  EXPECT_EQ(Text("AddressLumet"), "1");
  EXPECT_EQ(Text("MessageLumet"), "");
  EXPECT_EQ(Text("FirmwLumet"), "Firmware rel:");
  EXPECT_FALSE(Enabled("OptionLumet1"));
  EXPECT_FALSE(Enabled("OptionLumet2"));
}

TEST_F(LumetView, BeginsWithTheFirstEntryOfEachList) {
  for (const char* list :
       {"cbIngresso(0)", "cbIngresso(1)", "cbTipoMisura(0)", "cbTipoMisura(1)", "cbCombIngressi", "BaudLumet"}) {
    EXPECT_EQ(ListIndex(list), 0) << list;
  }
}

TEST_F(LumetView, HasItsLists) {
  for (int channel = 0; channel < 2; ++channel) {
    EXPECT_THAT(List(Ingresso(channel)), ElementsAre("inp. #1", "inp. #2", "inp. #3", "inp. #4", "inp. #5", "inp. #6",
                                                     "inp. #7", "inp. #8", "inp. #9", "inp. #10"));
    EXPECT_THAT(List(TipoMisura(channel)), ElementsAre("frequency", "period", "TON", "TOFF"));
  }
  EXPECT_THAT(List("cbCombIngressi"),
              ElementsAre("inc. 9 - inc.10", "dec. 9 - inc.10", "inc.9 - dec.10", "dec.9 - dec.10", "inc.9 - dec.9 ",
                          "clock 9 -if  IN10 =0  INC. TOT.9"));
  ExpectFiveRates();
}

TEST_F(LumetView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {{"StartLumet", "&Start"},
                                                          {"StopLumet", "S&top"},
                                                          {"WEEPLumet", "&Write EEprom"},
                                                          {"ResetLumet", "Module &Reset"},
                                                          {"LabelFASTLumet", "Fast"},
                                                          {"CheckLumet2", "Negate Inputs"},
                                                          {"CheckLumet3", "Autoreset Counters"},
                                                          {"CheckLumet4", "Down Counters"},
                                                          {"CheckLumet5", "Delay 12ms "},
                                                          {"CheckLumet6", "Parity ON/OFF"},
                                                          {"OptionLumet1", "Even"},
                                                          {"OptionLumet2", "Odd"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption);
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_EQ(Text(Member("LabelIN", i)), "Input " + std::to_string(i + 1));
    EXPECT_EQ(Text(Overflow(i)), "Overflow");
  }
}

TEST_F(LumetView, NamesItsSettings) {
  EXPECT_THAT(WordsOf(Page()), IsSupersetOf({"Input  reg. 40016", "Input  reg. 40017", "Meas. Type 40016",
                                             "Meas. Type 40017", "Value reg. 40016", "Value reg. 40017",
                                             "Inp. 9-10 configuration", "Inputs Filter (mSec)", "Fast"}));
}

TEST_F(LumetView, NamesRegisterAndBitInItsToolTips) {
  const std::pair<const char*, const char*> toolTips[] = {{"StartLumet", "Start Communication"},
                                                          {"StopLumet", "Stop Communication"},
                                                          {"WEEPLumet", "Write current  settings to eeprom"},
                                                          {"ResetLumet", "Module Reset"},
                                                          {"CheckLumet2", "40020.0 - Negate Inputs"},
                                                          {"CheckLumet3", "40009.5 - Autoreset Counters"},
                                                          {"CheckLumet4", "40020.1 - Down Counters"},
                                                          {"CheckLumet5", "40020.2 - Latency Time"},
                                                          {"CheckLumet6", "40020.3 - Parity ON/OFF"},
                                                          {"OptionLumet1", "40020.4 - Parity Type"},
                                                          {"OptionLumet2", "40020.4 - Parity Type"},
                                                          {"cbCombIngressi", " 40020.8-40020.13,  setup inputs 9-10"},
                                                          {"cbIngresso(0)", "reg. 40018 - Measure Type"},
                                                          {"cbIngresso(1)", "reg. 40018 - Measure Type"},
                                                          {"cbTipoMisura(0)", "reg. 40018 - Measure Type"},
                                                          {"cbTipoMisura(1)", "reg. 40018 - Measure Type"},
                                                          {"FilterLumet", "40019 - Input Filter"},
                                                          {"AddressLumet", "40021(L) - Module Address"},
                                                          {"BaudLumet", "40021(H) - Module Baud Rate"},
                                                          {"TotIN(8)", "40011-40012 : Counter Input 9"},
                                                          {"TotIN(9)", "40013-40014 :  Counter Input 10"}};
  for (const auto& [name, toolTip] : toolTips) EXPECT_EQ(ToolTip(name), toolTip) << name;
  for (int i = 0; i < kInputs; ++i) {
    const std::string bit = std::to_string(i);
    const std::string number = std::to_string(i + 1);
    EXPECT_EQ(ToolTip(Stato(i)), "40002." + bit + " - Input " + number);
    EXPECT_EQ(ToolTip(Overflow(i)), "40015." + bit + " - Overflow Input " + number);
  }
  for (int i = 0; i < kNarrow; ++i) {
    EXPECT_EQ(ToolTip(Total(i)), std::to_string(kCounter1 + i) + " - Counter Input " + std::to_string(i + 1));
  }
}

TEST_F(LumetView, ShowsAllThatCanBeUsed) {
  std::vector<std::string> shown;
  for (const view::Control* control : view::ReadingOrder(Page().Arrangement())) shown.push_back(control->Name());
  std::vector<std::string> expected = {
      "StartLumet",    "StopLumet",   "WEEPLumet",       "ResetLumet",      "MessageLumet",   "FirmwLumet",
      "MediaPlayer1",  "FilterLumet", "AddressLumet",    "BaudLumet",       "cbCombIngressi", "CheckLumet2",
      "CheckLumet3",   "CheckLumet4", "CheckLumet5",     "CheckLumet6",     "OptionLumet1",   "OptionLumet2",
      "cbIngresso(0)", "tbMisura(0)", "cbTipoMisura(0)", "cbTipoMisura(1)", "cbIngresso(1)",  "tbMisura(1)"};
  for (int i = 0; i < kInputs; ++i) {
    expected.insert(expected.end(), {Stato(i), Total(i), Bar(i), Overflow(i), Member("LabelIN", i)});
  }
  EXPECT_THAT(shown, IsSupersetOf(expected));
}

TEST_F(LumetView, HasItsTimersAtTheirIntervals) {
  const std::pair<const char*, int> intervals[] = {
      {"TimerLetturaSeriale", 50}, {"TimerGestioneLetture", 200}, {"TimerIngranaggi", 200}, {"TimerControllo", 250}};
  for (const auto& [name, interval] : intervals) {
    EXPECT_EQ(Interval(name), interval) << name;
    EXPECT_FALSE(Enabled(name)) << name;
  }
}

// Its Load.

class LumetLoad : public PageFixture {
 protected:
  LumetLoad() : PageFixture("Lumet") {}
};

TEST_F(LumetLoad, SetsThePollToTheIdentity) {
  State().PollRegister = state::Register(40013);
  State().PollCount = 12;
  OpenPage();
  EXPECT_EQ(State().PollRegister.Number(), 40001);
  EXPECT_EQ(State().PollCount, 1);
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(LumetLoad, GivesItsBusTheSharedLineValues) {
  State().PCPort = 3;
  State().PCSettings = "19200,e,8,1";
  State().ModuleAddress = 77;
  OpenPage();
  EXPECT_EQ(Number("ModCom1", "CommPort"), 3);
  EXPECT_EQ(Get<std::string>("ModCom1", "Settings"), "19200,e,8,1");
  EXPECT_EQ(Number("ModCom1", "ModuleAddr"), 77);
  EXPECT_EQ(Number("ModCom1", "LinkParamA"), 3);
  EXPECT_EQ(Number("ModCom1", "LinkParamB"), 3);
  EXPECT_FALSE(PortOpen());
}

TEST_F(LumetLoad, RunsOnce) {
  OpenPage();
  Choose("BaudLumet", 3);
  State().PollRegister = state::Register(40013);
  Click("MDIForm1.LabHome");
  Click("MDIForm1.labLumet");
  EXPECT_EQ(ListIndex("BaudLumet"), 3);
  EXPECT_EQ(State().PollRegister.Number(), 40013);
}

// Choices and values.

TEST_F(LumetView, KeepsChoicesInASessionWithoutAWordOnTheLine) {
  StartSession();
  Choose("BaudLumet", 5);
  Choose("cbCombIngressi", 4);
  Choose("cbIngresso(0)", 2);
  Choose("cbTipoMisura(0)", 3);
  Choose("cbIngresso(1)", 9);
  Run(std::chrono::seconds(2));
  EXPECT_EQ(Text("BaudLumet"), "38400");
  EXPECT_EQ(ListIndex("cbCombIngressi"), 4);
  EXPECT_EQ(ListIndex("cbIngresso(0)"), 2);
  EXPECT_EQ(ListIndex("cbTipoMisura(0)"), 3);
  EXPECT_EQ(ListIndex("cbIngresso(1)"), 9);
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_TRUE(TimersRun());
}

TEST_F(LumetView, TakesChoicesWithoutASession) {
  Choose("BaudLumet", 3);
  Choose("cbCombIngressi", 5);
  Choose("cbIngresso(1)", 7);
  Choose("cbTipoMisura(1)", 1);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_EQ(Text("cbCombIngressi"), "clock 9 -if  IN10 =0  INC. TOT.9");
  EXPECT_EQ(Text("cbTipoMisura(1)"), "period");
}

TEST_F(LumetView, TakesNoClickOnItsTotalsAndMarks) {
  for (const bool session : {false, true}) {
    if (session) StartSession();
    for (int i = 0; i < kInputs; ++i) {
      program.GetScreen().Click(At(Total(i)));
      program.GetScreen().Click(At(Overflow(i)));
      program.GetScreen().Click(At(Stato(i)));
      Run(core::milliseconds(100));
      ASSERT_TRUE(NothingInFront()) << i;
    }
    EXPECT_THAT(Exchanges(), IsEmpty());
  }
}

// The kinds of a measure.

TEST_F(LumetView, MeasuresOnlyTheFrequencyOfInputs9And10) {
  for (int channel = 0; channel < 2; ++channel) {
    for (int input = 0; input < kInputs; ++input) {
      SCOPED_TRACE(input);
      Choose(Ingresso(channel), input);
      if (input >= 8) {
        EXPECT_THAT(List(TipoMisura(channel)), ElementsAre("frequency"));
      } else {
        EXPECT_THAT(List(TipoMisura(channel)), ElementsAre("frequency", "period", "TON", "TOFF"));
      }
      EXPECT_EQ(ListIndex(TipoMisura(channel)), 0);
      EXPECT_THAT(List(TipoMisura(1 - channel)), Contains("frequency"));
    }
  }
}

TEST_F(LumetView, GoesBackToTheFrequencyWithEachChoiceOfAnInput) {
  for (int channel = 0; channel < 2; ++channel) {
    for (const int input : {0, 7, 7, 3, 9, 2}) {
      SCOPED_TRACE(input);
      Choose(Ingresso(channel), input);
      EXPECT_EQ(Text(TipoMisura(channel)), "frequency");
      if (input < 8) Choose(TipoMisura(channel), 2);
    }
  }
}

TEST_F(LumetView, LeavesTheOtherMeasureAlone) {
  Choose("cbTipoMisura(0)", 3);
  Choose("cbIngresso(1)", 9);
  EXPECT_EQ(ListIndex("cbTipoMisura(0)"), 3);
  EXPECT_EQ(List("cbTipoMisura(0)").size(), 4U);
  Choose("cbIngresso(1)", 4);
  Choose("cbTipoMisura(1)", 2);
  Choose("cbIngresso(0)", 8);
  EXPECT_EQ(ListIndex("cbTipoMisura(1)"), 2);
  EXPECT_EQ(List("cbTipoMisura(1)").size(), 4U);
}

}  // namespace
}  // namespace tarvo::test
