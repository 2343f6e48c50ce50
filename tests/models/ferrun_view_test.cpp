// The Ferrun page before anything was read, and what stands on it.

#include "support/ferrun_fixture.h"
#include "support/page_words.h"
#include "view/arrangement.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

class FerrunView : public FerrunFixture {};

TEST_F(FerrunView, ComesByItsLabelAndByItsMenuItem) {
  for (const char* road : {"MDIForm1.labFerrun", "MDIForm1.MenuFerrun"}) {
    Click("MDIForm1.LabHome");
    ASSERT_EQ(State().NrFinestra, -1);
    Click(road);
    EXPECT_EQ(Page().Name(), "Ferrun") << road;
    EXPECT_EQ(State().NrFinestra, 3) << road;
    EXPECT_EQ(State().FamilyShown, state::kTrue) << road;
  }
  EXPECT_EQ(Text("MDIForm1.labFerrun"), "Ferrun");
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(FerrunView, BeginsWithTheLowestValues) {
  for (int i = 0; i < kValues; ++i) EXPECT_EQ(Text(Value(i)), "0") << i;
  EXPECT_EQ(Text("OutputFerrun"), "0");
  EXPECT_EQ(Text("InputTechFerrun"), "0");
  EXPECT_EQ(Text("InputScaledFerrun"), "0");
  EXPECT_EQ(Text("labAddressFerrun"), "1");
  EXPECT_EQ(Text("labSafetimeFerrun"), "5");
  EXPECT_EQ(ListIndex("comboInputTypeFerrun"), 0);
  EXPECT_EQ(ListIndex("comboInputFilterFerrun"), 0);
  EXPECT_EQ(ListIndex("comboBaudFerrun"), 1);
  for (const FerrunFlag& flag : kFerrunFlags) EXPECT_FALSE(Checked(flag.box)) << flag.box;
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
  EXPECT_TRUE(Enabled("OutputFerrun"));
}

TEST_F(FerrunView, ListsTheThirteenInputTypes) {
  std::vector<std::string> texts;
  for (const FerrunInput& input : kFerrunInputs) texts.emplace_back(input.text);
  EXPECT_EQ(List("comboInputTypeFerrun"), texts);
}

TEST_F(FerrunView, ListsTheSevenFilters) {
  EXPECT_THAT(List("comboInputFilterFerrun"),
              ElementsAre("0 Sec", "1 Sec", "2 Sec", "5 Sec", "10 Sec", "20 Sec", "60 Sec"));
}

TEST_F(FerrunView, ListsFiveRatesBeforeTheFirmwareIsKnown) {
  EXPECT_THAT(List("comboBaudFerrun"), ElementsAre("4800", "9600", "19200", "38400", "57600"));
  EXPECT_THAT(ItemData("comboBaudFerrun"), ElementsAre(0, 1, 2, 3, 4));
}

TEST_F(FerrunView, NamesItsFlags) {
  const std::pair<const char*, const char*> captions[] = {{"CheckDelay", "Delay 12ms"},
                                                          {"checkParity", "Parity ON/OFF"},
                                                          {"OptionOdd", "Odd"},
                                                          {"CheckSquareRoot", "Square Root Extr."},
                                                          {"CheckBurnOUt", "Positive Burn Out"},
                                                          {"CheckAuto", "Auto"},
                                                          {"CheckInv", "Inv.Action"},
                                                          {"CheckReload", "Reload Register"},
                                                          {"Check_4_20", "Output 4..20mA"},
                                                          {"Check_4_wires", "4 wire PT100"},
                                                          {"CheckResetonTx", "Reset on Tx"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption) << name;
}

TEST_F(FerrunView, NamesRegistersInItsToolTips) {
  const std::pair<const char*, const char*> toolTips[] = {{"comboInputTypeFerrun", "40002(H) - Input Type"},
                                                          {"comboInputFilterFerrun", "40002(L) - Input Filter"},
                                                          {"comboBaudFerrun", "40009(H) - Module Baud Rate"},
                                                          {"labAddressFerrun", "40009(L) - Module Address"},
                                                          {"labSafetimeFerrun", "40010 - Safe TIme"},
                                                          {"InputTechFerrun", "40020 - User Defined Input Value"},
                                                          {"InputScaledFerrun", "40021 - Measured Input Value"},
                                                          {"OutputFerrun", "40019 - PID Output"},
                                                          {"StatusFerrun(0)", "40022.8 - Data Programming Error"},
                                                          {"StatusFerrun(1)", "40022.9 - Input Overflow"},
                                                          {"StatusFerrun(2)", "40022.10 - Input Underflow"},
                                                          {"StatusFerrun(3)", "40022.11 - Burn Out Error"},
                                                          {"StatusFerrun(4)", "40022.12 - EEPROM Programming Error"},
                                                          {"StatusFerrun(5)", "40022.13 - A/D Converter Failed"},
                                                          {"StatusFerrun(6)", "40022.14 - Output Overflow"},
                                                          {"StatusFerrun(7)", "40022.15 - Output Underflow"}};
  for (const auto& [name, toolTip] : toolTips) EXPECT_EQ(ToolTip(name), toolTip) << name;
  EXPECT_EQ(ToolTip("StartFerrun"), "Start Communication");
  EXPECT_EQ(ToolTip("StopFerrun"), "Stop Communication");
}

TEST_F(FerrunView, HasItsFrames) {
  EXPECT_THAT(TextsOf(Page(), view::Node::Kind::kFrame),
              IsSupersetOf({"Input Settings", "User Settings", "Calibration", "PID Settings", "Settings",
                            "Status Flags", "Reading (0..10000)"}));
}

TEST_F(FerrunView, ShowsEveryControlOnce) {
  const std::vector<view::Control*> shown = view::ReadingOrder(Page().Arrangement());
  std::vector<std::string> names;
  for (const view::Control* control : shown) names.push_back(control->Name());
  std::vector<std::string> expected = {"StartFerrun",
                                       "StopFerrun",
                                       "buttWEEPFerrun",
                                       "buttResetFerrun",
                                       "MessageFerrun",
                                       "FirmwFerrun",
                                       "OutputFerrun",
                                       "InputTechFerrun",
                                       "InputScaledFerrun",
                                       "comboInputTypeFerrun",
                                       "comboInputFilterFerrun",
                                       "comboBaudFerrun",
                                       "labAddressFerrun",
                                       "labSafetimeFerrun",
                                       "BargFerrun1",
                                       "BargFerrun2",
                                       "BargFerrun3",
                                       "UnitaMisuraFerrun1",
                                       "UnitaMisuraFerrun2",
                                       "OptionEven",
                                       "OptionOdd"};
  for (const FerrunFlag& flag : kFerrunFlags) expected.emplace_back(flag.box);
  for (int i = 0; i < kValues; ++i) expected.push_back(Value(i));
  for (int i = 0; i < 8; ++i) expected.push_back(Member("StatusFerrun", i));
  EXPECT_THAT(names, IsSupersetOf(expected));
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

}  // namespace
}  // namespace tarvo::test
