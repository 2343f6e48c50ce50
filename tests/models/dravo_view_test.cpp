// The Dravo page before anything was read: names, lists, texts and tool tips.

#include <algorithm>
#include <array>

#include "support/dravo_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

class DravoView : public DravoFixture {
 protected:
  /// The captions of all frames.
  static void CollectFrames(const view::Node& node, std::vector<std::string>* captions) {
    if (node.kind == view::Node::Kind::kFrame) captions->push_back(node.text);
    for (const view::Node& child : node.children) CollectFrames(child, captions);
  }
  /// The names of all controls.
  static void CollectControls(const view::Node& node, std::vector<std::string>* names) {
    if (node.control != nullptr) names->push_back(node.control->Name());
    for (const view::Node& child : node.children) CollectControls(child, names);
  }
};

TEST_F(DravoView, BeginsWithTheLowestValues) {
  EXPECT_THAT(ValueTexts(), Each(std::string("0")));
  EXPECT_EQ(Text("InputTechDravo"), "0");
  EXPECT_EQ(Text("InputScaledDravo"), "0");
  EXPECT_EQ(Text("AddressDravo"), "1");
  EXPECT_EQ(ListIndex("InputTypeDravo"), 0);
  EXPECT_EQ(ListIndex("InputFilterDravo"), 0);
  EXPECT_EQ(ListIndex("BaudDravo"), 1);
  EXPECT_THAT(LitLamps(), IsEmpty());
  for (const char* box : {"CheckDravo1", "CheckDravo2", "CheckDravo3", "CheckDravo4", "CheckDravo5"}) {
    EXPECT_FALSE(Checked(box)) << box;
  }
  EXPECT_FALSE(Enabled("OptionDravo1"));
  EXPECT_FALSE(Enabled("OptionDravo2"));
}

TEST_F(DravoView, ListsTheInputTypes) {
  EXPECT_THAT(List("InputTypeDravo"),
              ElementsAre("mV (50 .. 10000)", "Ohm (350 .. 15000)", "uA (2000 .. 20000)", "PT100 (-200.0 .. 600.0 °C)",
                          "NI100 (-60 .. 180.0 °C)", "TC-J (-200.0 .. 1000.0 °C)", "TC-K (-250.0 .. 1200.0 °C)",
                          "TC-R (0 .. 1750.0 °C)", "TC-S (0 .. 1750.0 °C)", "TC-T (-200.0 .. 400.0 °C)",
                          "TC-B (0 .. 1800.0 °C)", "TC-E (-200.0 .. 800.0 °C)", "TC-N (-200.0 .. 1300.0 °C)"));
}

TEST_F(DravoView, ListsTheFilters) {
  EXPECT_THAT(List("InputFilterDravo"), ElementsAre("0 Sec", "1 Sec", "2 Sec", "5 Sec", "10 Sec", "20 Sec", "60 Sec"));
}

TEST_F(DravoView, ListsFiveRatesBeforeItHasSeenItsModule) {
  EXPECT_THAT(List("BaudDravo"), ElementsAre("4800", "9600", "19200", "38400", "57600"));
  EXPECT_THAT(ItemData("BaudDravo"), ElementsAre(0, 1, 2, 3, 4));
}

TEST_F(DravoView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {
      {"CheckDravo1", "Square Root Extr."}, {"CheckDravo2", "Positive Burn Out"}, {"CheckDravo3", "4 wire PT100"},
      {"CheckDravo4", "Parity ON/OFF"},     {"CheckDravo5", "Delay 12ms"},        {"OptionDravo1", "Even"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption) << name;
}

TEST_F(DravoView, NamesRegisterAndBitInItsToolTips) {
  const std::pair<const char*, const char*> toolTips[] = {{"CheckDravo5", "40010.2 - Latency Time"},
                                                          {"CheckDravo4", "40010.3 - Parity ON/OFF"},
                                                          {"OptionDravo1", "40010.4 - Parity Type"},
                                                          {"OptionDravo2", "40010.4 - Parity Type"},
                                                          {"CheckDravo1", "40010.8 - Route Square Extraction"},
                                                          {"CheckDravo2", "40010.9 - Positive Burn Out"},
                                                          {"CheckDravo3", "40010.14 - 4 Wire Reading PT100/NI100"},
                                                          {"StatusDravo(0)", "40013.8 - Data Programming Error"},
                                                          {"StatusDravo(1)", "40013.9 - Input Overflow"},
                                                          {"StatusDravo(2)", "40013.10 - Input Underflow"},
                                                          {"StatusDravo(3)", "40013.11 - Burn Out Error"},
                                                          {"StatusDravo(4)", "40013.12 - EEPROM Programming Error"},
                                                          {"StatusDravo(5)", "40013.13 - A/D Converter Failed"},
                                                          {"InputTypeDravo", "40002(H) - Input Type"},
                                                          {"InputFilterDravo", "40002(L) - Input Filter"},
                                                          {"BaudDravo", "40009(H) - Module Baud Rate"},
                                                          {"AddressDravo", "40009(L) - Module Address"},
                                                          {"InputTechDravo", "40011 - User Defined Input Value"},
                                                          {"InputScaledDravo", "40012 - Measured Input Value"},
                                                          {"ValueDravo(0)", "40003 - Measure Full Scale"},
                                                          {"ValueDravo(1)", "40004 - Measure Init Scale"},
                                                          {"ValueDravo(2)", "40005 - User Full Scale"},
                                                          {"ValueDravo(3)", "40006 - User Init Scale"},
                                                          {"ValueDravo(4)", "40007 - Module Span"},
                                                          {"ValueDravo(5)", "40008 - Module Zero"},
                                                          {"StartDravo", "Start Communication"},
                                                          {"StopDravo", "Stop Communication"}};
  for (const auto& [name, toolTip] : toolTips) EXPECT_EQ(ToolTip(name), toolTip) << name;
}

TEST_F(DravoView, HasItsFrames) {
  std::vector<std::string> captions;
  CollectFrames(Page().Arrangement(), &captions);
  EXPECT_THAT(captions, IsSupersetOf({"Input Settings", "User Settings", "Calibration", "Settings", "Status Flags",
                                      "Output (0..10000)"}));
}

TEST_F(DravoView, HasEachControlInItsArrangementOnce) {
  std::vector<std::string> names;
  CollectControls(Page().Arrangement(), &names);
  std::vector<std::string> expected = {"InputTypeDravo", "InputFilterDravo", "UnitaMisuraDravo1", "UnitaMisuraDravo2",
                                       "InputTechDravo", "InputScaledDravo", "BargDravo1",        "BargDravo2",
                                       "CheckDravo1",    "CheckDravo2",      "CheckDravo3",       "CheckDravo4",
                                       "CheckDravo5",    "OptionDravo1",     "OptionDravo2",      "AddressDravo",
                                       "BaudDravo",      "StartDravo",       "StopDravo",         "WEEPDravo",
                                       "ResetDravo",     "MessageDravo",     "FirmwDravo"};
  for (int i = 0; i < kValues; ++i) expected.push_back(Value(i));
  for (int i = 0; i < kLamps; ++i) expected.push_back(Lamp(i));
  for (const std::string& name : expected) EXPECT_EQ(std::count(names.begin(), names.end(), name), 1) << name;
}

TEST_F(DravoView, HasItsTimersAtRest) {
  const std::pair<const char*, int> timers[] = {
      {"TimerLetturaSeriale", 50}, {"TimerGestioneLetture", 200}, {"TimerIngranaggi", 200}, {"TimerControllo", 250}};
  for (const auto& [name, interval] : timers) {
    EXPECT_EQ(Interval(name), interval) << name;
    EXPECT_FALSE(Enabled(name)) << name;
  }
}

TEST_F(DravoView, IsPageNumber2) {
  EXPECT_EQ(State().NrFinestra, 2);
  EXPECT_EQ(Page().Name(), "Dravo");
  Click("MDIForm1.LabHome");
  Click("MDIForm1.MenuDravo");
  EXPECT_EQ(State().NrFinestra, 2);
  EXPECT_EQ(Page().Name(), "Dravo");
  EXPECT_EQ(State().FamilyShown, state::kTrue);
}

TEST_F(DravoView, TouchesNoPortWhenItIsShown) {
  Click("MDIForm1.LabHome");
  Click("MDIForm1.labDravo");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

// The family selector holds `TimerControllo` while it has the focus.

TEST_F(DravoView, LeavingTheFamilySelectorStartsNoTimer) {
  program.GetScreen().Leave(At("MDIForm1.cbSelectDevice"));
  Run(std::chrono::seconds(1));
  for (const char* timer : {"TimerLetturaSeriale", "TimerGestioneLetture", "TimerIngranaggi", "TimerControllo"}) {
    EXPECT_FALSE(Enabled(timer)) << timer;
  }
  EXPECT_EQ(ports.Attempts(), 0);
}

// The other thing that goes through all timers.

TEST_F(DravoView, ExitDisablesEveryTimerOfThePage) {
  constexpr std::array kTimers = {"Dravo.TimerControllo", "Dravo.TimerGestioneLetture", "Dravo.TimerIngranaggi",
                                  "Dravo.TimerLetturaSeriale"};
  for (const char* timer : kTimers) dynamic_cast<view::Timer&>(At(timer)).Enabled = true;
  Click("MDIForm1.ExitMNU");
  for (const char* timer : kTimers) EXPECT_FALSE(Enabled(timer)) << timer;
  EXPECT_TRUE(program.Ended());
}

// Firmware gates.

class DravoFirmware : public DravoFixture {
 protected:
  /// A session on a module of that release, ended again.
  void Visit(int release) {
    SetRelease(release);
    StartSession();
    Click("StopDravo");
  }
  void ExpectFiveRates() const {
    EXPECT_THAT(List("BaudDravo"), ElementsAre("4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("BaudDravo"), ElementsAre(0, 1, 2, 3, 4));
  }
  void ExpectSevenRates() const {
    EXPECT_THAT(List("BaudDravo"), ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("BaudDravo"), ElementsAre(6, 7, 0, 1, 2, 3, 4));
  }
};

TEST_F(DravoFirmware, ShowsTheReleaseOfTheLowByte) {
  for (const int release : {0, 1, 3, 12, 255}) {
    Visit(release);
    EXPECT_EQ(Text("FirmwDravo"), "Firmware rel: " + std::to_string(release));
  }
}

TEST_F(DravoFirmware, HasSevenRatesFromRelease3On) {
  for (const int release : {3, 4, 255}) {
    SCOPED_TRACE(release);
    Visit(1);
    Visit(release);
    ExpectSevenRates();
  }
}

TEST_F(DravoFirmware, HasFiveRatesBelowRelease3) {
  for (const int release : {0, 1, 2}) {
    SCOPED_TRACE(release);
    Visit(3);
    Visit(release);
    ExpectFiveRates();
  }
}

TEST_F(DravoFirmware, DisablesDelayAndParityBelowRelease2) {
  for (const int release : {0, 1}) {
    Visit(3);
    Visit(release);
    for (const char* name : {"CheckDravo5", "CheckDravo4", "OptionDravo1", "OptionDravo2"}) {
      EXPECT_FALSE(Enabled(name)) << name;
    }
    for (const char* name : {"CheckDravo1", "CheckDravo2", "CheckDravo3"}) EXPECT_TRUE(Enabled(name)) << name;
  }
}

TEST_F(DravoFirmware, EnablesDelayAndParityFromRelease2On) {
  for (const int release : {2, 3, 255}) {
    Visit(1);
    Set(kFlags, 0x0008);
    Visit(release);
    Set(kFlags, 0);
    for (const char* name : {"CheckDravo5", "CheckDravo4", "OptionDravo1", "OptionDravo2"}) {
      EXPECT_TRUE(Enabled(name)) << name;
    }
  }
}

TEST_F(DravoFirmware, LetsTheParityBitHaveTheLastWordOnTheOptionsAtStart) {
  Set(kFlags, 0x0008);
  Visit(1);
  EXPECT_TRUE(Enabled("OptionDravo1"));
  EXPECT_TRUE(Enabled("OptionDravo2"));
  EXPECT_FALSE(Enabled("CheckDravo4"));
  Set(kFlags, 0);
  Visit(3);
  EXPECT_FALSE(Enabled("OptionDravo1"));
  EXPECT_FALSE(Enabled("OptionDravo2"));
}

TEST_F(DravoFirmware, KeepsTheSelectedCodeWhenTheListGrows) {
  for (int position = 0; position < 5; ++position) {
    Dravo().CheckFWVersion(2);
    Choose("BaudDravo", position);
    Dravo().CheckFWVersion(3);
    EXPECT_EQ(ListIndex("BaudDravo"), position + 2);
  }
}

TEST_F(DravoFirmware, KeepsTheSelectedPositionWhenTheListShrinks) {
  for (int position = 0; position < 5; ++position) {
    Dravo().CheckFWVersion(3);
    Choose("BaudDravo", position);
    Dravo().CheckFWVersion(2);
    EXPECT_EQ(ListIndex("BaudDravo"), position);
  }
}

TEST_F(DravoFirmware, CheckFWVersionAloneTouchesNeitherLineNorFlags) {
  Dravo().CheckFWVersion(1);
  for (const char* name : {"CheckDravo5", "CheckDravo4", "OptionDravo1", "OptionDravo2"}) {
    EXPECT_FALSE(Enabled(name)) << name;
  }
  Dravo().CheckFWVersion(2);
  for (const char* name : {"CheckDravo5", "CheckDravo4", "OptionDravo1", "OptionDravo2"}) {
    EXPECT_TRUE(Enabled(name)) << name;
  }
  ExpectFiveRates();
  Dravo().CheckFWVersion(3);
  ExpectSevenRates();
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_EQ(Polled(kPolledFlags), 0);
}

}  // namespace
}  // namespace tarvo::test
