#include "support/cobin_fixture.h"
#include "support/page_words.h"
#include "view/arrangement.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

/// The page before anything was read, and what stands on it.
class CobinView : public CobinFixture {};

TEST_F(CobinView, ComesByItsLabelAndByItsMenuItem) {
  for (const char* road : {"MDIForm1.labCobin", "MDIForm1.MenuCobin"}) {
    Click("MDIForm1.LabHome");
    ASSERT_EQ(State().NrFinestra, -1);
    Click(road);
    EXPECT_EQ(Page().Name(), "Cobin") << road;
    EXPECT_EQ(State().NrFinestra, 1) << road;
    EXPECT_EQ(State().FamilyShown, state::kTrue) << road;
  }
  EXPECT_EQ(Text("MDIForm1.labCobin"), "Cobin");
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(CobinView, IsInTheListOfTheFirstFamily) {
  Choose("MDIForm1.cbSelectDevice", 1);
  EXPECT_FALSE(Visible("MDIForm1.labCobin"));
  Choose("MDIForm1.cbSelectDevice", 0);
  EXPECT_TRUE(Visible("MDIForm1.labCobin"));
}

TEST_F(CobinView, BeginsWithTheLowestValues) {
  for (int i = 0; i < kOutputCount; ++i) {
    EXPECT_EQ(Picture(Out(i)), 1);
    EXPECT_EQ(Picture(Safe(i)), 1);
  }
  EXPECT_EQ(Text("SafetimeCobin"), "5");
  EXPECT_EQ(Text("AddressCobin"), "1");
  EXPECT_EQ(ListIndex("BaudCobin"), 1);
  EXPECT_EQ(Text("MessageCobin"), "");
  EXPECT_EQ(Text("FirmwCobin"), "Firmware rel:");
  EXPECT_FALSE(Enabled("OptionCobin1"));
  EXPECT_FALSE(Enabled("OptionCobin2"));
}

TEST_F(CobinView, BeginsWithItsOutputAndSafeStateButtonsOff) {
  for (int i = 0; i < kOutputCount; ++i) {
    EXPECT_EQ(RefusalOf(Out(i)), Out(i) + " is disabled");
    EXPECT_EQ(RefusalOf(Safe(i)), Safe(i) + " is disabled");
  }
}

TEST_F(CobinView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {{"StartCobin", "&Start"},
                                                          {"StopCobin", "S&top"},
                                                          {"WEEPCobin", "&Write EEprom"},
                                                          {"ResetCobin", "Module &Reset"},
                                                          {"CheckCobin1", "Safe State Set"},
                                                          {"CheckCobin2", "Negate Outputs"},
                                                          {"CheckCobin3", "Reset on Tx"},
                                                          {"CheckCobin4", "Delay 12ms "},
                                                          {"CheckCobin5", "Parity ON/OFF"},
                                                          {"OptionCobin1", "Even"},
                                                          {"OptionCobin2", "Odd"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption);
  for (int i = 0; i < kOutputCount; ++i) {
    EXPECT_EQ(Text(Member("LabelOUT", i)), "Out-" + std::to_string(i + 1));
    EXPECT_EQ(Text(Member("LabelOUTsafe", i)), "Safe-" + std::to_string(i + 1));
  }
}

TEST_F(CobinView, NamesRegisterAndBitInItsToolTips) {
  const std::pair<const char*, const char*> toolTips[] = {{"StartCobin", "Start Communication"},
                                                          {"StopCobin", "Stop Communication"},
                                                          {"CheckCobin1", "40005.7 - Safe state Off/On"},
                                                          {"CheckCobin2", "40005.0 - Negate Outputs"},
                                                          {"CheckCobin3", "40005.6 - Reset Comm Timer on Rx/Tx"},
                                                          {"CheckCobin4", "40005.2 - Latency Time"},
                                                          {"CheckCobin5", "40005.3 - Parity ON/OFF"},
                                                          {"OptionCobin1", "40005.4 - Parity Type"},
                                                          {"OptionCobin2", "40005.4 - Parity Type"},
                                                          {"BaudCobin", "40006(H) - Module Baud Rate"},
                                                          {"AddressCobin", "40006(L) - Module Address"},
                                                          {"SafetimeCobin", "40004 - Safe Time"}};
  for (const auto& [name, toolTip] : toolTips) EXPECT_EQ(ToolTip(name), toolTip) << name;
  for (int i = 0; i < kOutputCount; ++i) {
    const std::string bit = std::to_string(i);
    const std::string number = std::to_string(i + 1);
    EXPECT_EQ(ToolTip(Out(i)), "40002." + bit + " - Output " + number);
    EXPECT_EQ(ToolTip(Safe(i)), "40003." + bit + " - Safe State Output " + number);
  }
}

TEST_F(CobinView, HasItsFramesAndValueLabels) {
  EXPECT_THAT(TextsOf(Page(), view::Node::Kind::kFrame),
              IsSupersetOf({"Safe State Settings", "Settings", "Outputs Setting"}));
  EXPECT_THAT(TextsOf(Page(), view::Node::Kind::kField),
              IsSupersetOf({"Module Baud Rate", "Module Address", "Safe time "}));
}

TEST_F(CobinView, ShowsAllThatCanBeUsed) {
  std::vector<std::string> shown;
  for (const view::Control* control : view::ReadingOrder(Page().Arrangement())) shown.push_back(control->Name());
  std::vector<std::string> expected = {"StartCobin",   "StopCobin",   "WEEPCobin",    "ResetCobin",    "MessageCobin",
                                       "FirmwCobin",   "BaudCobin",   "AddressCobin", "SafetimeCobin", "CheckCobin1",
                                       "CheckCobin2",  "CheckCobin3", "CheckCobin4",  "CheckCobin5",   "OptionCobin1",
                                       "OptionCobin2", "MediaPlayer1"};
  for (int i = 0; i < kOutputCount; ++i) {
    expected.insert(expected.end(), {Out(i), Safe(i), Member("LabelOUT", i), Member("LabelOUTsafe", i)});
  }
  EXPECT_THAT(shown, IsSupersetOf(expected));
}

TEST_F(CobinView, HasTheTimersOfASessionAndNoTimerControllo) {
  const std::pair<const char*, int> intervals[] = {
      {"TimerLetturaSeriale", 50}, {"TimerGestioneLetture", 200}, {"TimerIngranaggi", 200}};
  for (const auto& [name, interval] : intervals) {
    EXPECT_EQ(Interval(name), interval) << name;
    EXPECT_FALSE(Enabled(name)) << name;
  }
  EXPECT_EQ(FindControl("Cobin.TimerControllo"), nullptr);
}

TEST_F(CobinView, TakesARateWithoutAWordOnTheLine) {
  StartSession();
  Choose("BaudCobin", 0);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("BaudCobin"), "1200");
  EXPECT_THAT(Exchanges(), ElementsAre());
}

}  // namespace
}  // namespace tarvo::test
