// The page of Nerith and Pellor as it stands: names, lists, texts and tool tips; and the gestures that stay on it.

#include "support/nerith_fixture.h"
#include "support/page_words.h"
#include "view/arrangement.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

class NerithView : public NerithFixture {};

TEST_F(NerithView, IsInTheListOfTheFirstFamily) {
  EXPECT_EQ(Text("MDIForm1.labNerith"), "Nerith");
  Choose("MDIForm1.cbSelectDevice", 1);
  EXPECT_FALSE(Visible("MDIForm1.labNerith"));
  Choose("MDIForm1.cbSelectDevice", 0);
  EXPECT_TRUE(Visible("MDIForm1.labNerith"));
}

TEST_F(NerithView, BringsItsFamilyBack) {
  Choose("MDIForm1.cbSelectDevice", 1);
  Click("MDIForm1.menuNerith");
  EXPECT_EQ(ListIndex("MDIForm1.cbSelectDevice"), 0);
  EXPECT_EQ(State().FamilyShown, state::kTrue);
}

TEST_F(NerithView, HasAFile) {
  Click("MDIForm1.LabHome");
  ASSERT_FALSE(Enabled("MDIForm1.OpenMNU"));
  Enter();
  EXPECT_TRUE(Enabled("MDIForm1.OpenMNU"));
  EXPECT_TRUE(Enabled("MDIForm1.SaveMNU"));
}

TEST_F(NerithView, HasFourOfEachChannelControl) {
  for (const char* array : {"cbSensorType", "cbDumpFactor", "chkConv", "chkBurnedSensor", "cbRangePT100", "labTI_RTD",
                            "labChannelFail", "labSensorFail", "labRange"}) {
    for (int i = 0; i < kMostChannels; ++i) EXPECT_NE(FindControl(Member(array, i)), nullptr) << array << i;
    EXPECT_EQ(FindControl(Member(array, kMostChannels)), nullptr) << array;
  }
}

TEST_F(NerithView, HasItsLists) {
  for (int i = 0; i < kMostChannels; ++i) {
    EXPECT_THAT(List(Dump(i)), ElementsAre("0", "1", "2", "3", "4", "5", "6", "7"));
    EXPECT_THAT(List(Range(i)), ElementsAre("-200.. 400 C", "-200.. 850 C", "-200.. 200 C"));
  }
  EXPECT_THAT(List("cbUnits"), ElementsAre("Kelvin", "Celsius", "Farenheit", "Rankine"));
  EXPECT_THAT(List("cbDecimalNumbers"), ElementsAre("0", "1", "2"));
  EXPECT_THAT(List("cbBaudRate"), ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
}

TEST_F(NerithView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {{"StartNerith", "&Start"},
                                                          {"StopOswin", "S&top"},
                                                          {"WEEPGaven", "&Write EEprom"},
                                                          {"ResetGaven", "Module &Reset"},
                                                          {"chkDINCoefficients", "DIN Coefficients"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption);
  for (int i = 0; i < kMostChannels; ++i) {
    EXPECT_EQ(Text(Conv(i)), "Temp.");
    EXPECT_EQ(Text(Burned(i)), "Burn-out behaviour");
    EXPECT_EQ(Text(Member("labRange", i)), "Range");
  }
}

TEST_F(NerithView, NamesChannelsAndSettings) {
  EXPECT_THAT(WordsOf(Page()),
              IsSupersetOf({"Input 1", "Input 2", "Input 3", "Input 4", "Settings", "Sensor Type", "Temperature",
                            "Dump Factor", "Module Address", "Module Baud Rate", "Units", "Decimal Digits"}));
}

TEST_F(NerithView, HasItsToolTips) {
  const std::pair<const char*, const char*> toolTips[] = {
      {"StartNerith", "Start Communication"},
      {"StopOswin", "Stop Communication"},
      {"labModuleAddress", "40035.0-7   Module Address"},
      {"checkParity", "40035.8-9  - Parity ON/OFF"},
      {"cbBaudRate", "40035.10-12   Module Baud Rate"},
      {"cbUnits", "40040.0-2  Tecnical Units"},
      {"cbDecimalNumbers", "40040.3-4  Decimal Digits"},
      {"chkDINCoefficients", "Use DIN coefficients instead of ANSI coefficients."}};
  for (const auto& [name, toolTip] : toolTips) EXPECT_EQ(ToolTip(name), toolTip) << name;
  for (int i = 0; i < kMostChannels; ++i) {
    EXPECT_EQ(ToolTip(Sensor(i)), "40055.8-10-Sensor Type");
    EXPECT_EQ(ToolTip(Dump(i)), "40055.0-3 - Dump Factor");
    EXPECT_EQ(ToolTip(Value(i)), "40003 - Temperature 1 value");
    EXPECT_EQ(ToolTip(Conv(i)), "Check to get temperature, uncheck to get resitance.");
    EXPECT_EQ(ToolTip(Burned(i)), "Check to get down-scale on burned sensor.");
    EXPECT_EQ(ToolTip(Range(i)), "PT100 Range");
  }
}

TEST_F(NerithView, HasItsTimersAtTheirIntervals) {
  const std::pair<const char*, int> intervals[] = {
      {"TimerLetturaSeriale", 500}, {"TimerGestioneLetture", 200}, {"TimerIngranaggi", 200}};
  for (const auto& [name, interval] : intervals) {
    EXPECT_EQ(Interval(name), interval) << name;
    EXPECT_FALSE(Enabled(name)) << name;
  }
  EXPECT_EQ(FindControl("TimerControllo"), nullptr);
}

TEST_F(NerithView, ShowsAllThatCanBeUsed) {
  std::vector<std::string> shown;
  for (const view::Control* control : view::ReadingOrder(Page().Arrangement())) shown.push_back(control->Name());
  std::vector<std::string> expected = {"StartNerith",      "StopOswin",          "WEEPGaven",   "ResetGaven",
                                       "labMessage",       "labFWVers",          "cbUnits",     "cbDecimalNumbers",
                                       "labModuleAddress", "chkDINCoefficients", "checkParity", "OptionEven",
                                       "OptionOdd",        "cbBaudRate"};
  for (int i = 0; i < kMostChannels; ++i) {
    const std::vector<std::string> channel = ChannelControls(i);
    expected.insert(expected.end(), channel.begin(), channel.end());
    expected.insert(expected.end(), {Value(i), Failed(i), Broken(i)});
  }
  EXPECT_THAT(shown, IsSupersetOf(expected));
}

// Before anything was read.

class NerithUnread : public NerithModule {
 protected:
  NerithUnread() {
    module.Always(ModuleFault::Unheard());
    OpenPage();
  }
};

TEST_F(NerithUnread, BeginsWithTheLowestValues) {
  EXPECT_EQ(Text("labModuleAddress"), "1");
  EXPECT_THAT(Values(), ElementsAre("0", "0", "0", "0"));
  EXPECT_FALSE(Checked("checkParity"));
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
  EXPECT_FALSE(Checked("chkDINCoefficients"));
  for (int i = 0; i < kMostChannels; ++i) {
    EXPECT_FALSE(Visible(Failed(i))) << i;
    EXPECT_FALSE(Visible(Broken(i))) << i;
    EXPECT_FALSE(Checked(Burned(i))) << i;
  }
}

TEST_F(NerithUnread, BeginsWithTheFirstEntryOfEachListButTheRates) {
  EXPECT_EQ(ListIndex("cbBaudRate"), 1);
  EXPECT_EQ(ListIndex("cbUnits"), 0);
  EXPECT_EQ(ListIndex("cbDecimalNumbers"), 0);
  for (int i = 0; i < kMostChannels; ++i) {
    EXPECT_EQ(ListIndex(Dump(i)), 0) << i;
    EXPECT_EQ(ListIndex(Range(i)), 0) << i;
  }
}

// Gestures.

class NerithGesture : public NerithFixture, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    if (GetParam()) StartSession();
  }
};

INSTANTIATE_TEST_SUITE_P(, NerithGesture, testing::Bool(),
                         [](const auto& session) { return session.param ? "InASession" : "WithoutASession"; });

TEST_P(NerithGesture, OnATemperatureBoxRenamesTheHeadingOfItsChannel) {
  for (int channel = 0; channel < kMostChannels; ++channel) {
    for (const bool temperature : {false, true, false}) {
      Click(Conv(channel));
      for (int i = 0; i < kMostChannels; ++i) {
        const bool clear = i < channel || (i == channel && !temperature);
        EXPECT_EQ(Checked(Conv(i)), !clear) << i;
        EXPECT_EQ(Text(Heading(i)), clear ? "Resistance" : "Temperature") << i;
      }
    }
  }
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(NerithGesture, OnTheParityBoxEnablesItsOptions) {
  for (const bool on : {true, false, true}) {
    Click("checkParity");
    EXPECT_EQ(Checked("checkParity"), on);
    EXPECT_EQ(Enabled("OptionEven"), on);
    EXPECT_EQ(Enabled("OptionOdd"), on);
  }
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(NerithGesture, OnAParityOptionSelectsIt) {
  Click("checkParity");
  for (const bool odd : {true, false, true}) {
    Click(odd ? "OptionOdd" : "OptionEven");
    EXPECT_EQ(Checked("OptionOdd"), odd);
    EXPECT_EQ(Checked("OptionEven"), !odd);
  }
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(NerithGesture, OnTheAddressAsksForOneWithinItsBounds) {
  Click("labModuleAddress");
  ASSERT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(Text("MinValue"), "Min Value :1");
  EXPECT_EQ(Text("MaxValue"), "Max Value :255");
  AnswerChangeValue("256");
  EXPECT_EQ(Text("Text1"), "255");
  AnswerChangeValue("0");
  EXPECT_EQ(Text("Text1"), "1");
  AnswerChangeValue("99");
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text("labModuleAddress"), "99");
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(NerithGesture, OnTheAddressThatIsCancelledLeavesIt) {
  Click("labModuleAddress");
  Type("ChangeValue.Text1", "99");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text("labModuleAddress"), "1");
}

TEST_P(NerithGesture, OnValuesAndFailuresDoesNothing) {
  for (int i = 0; i < kMostChannels; ++i) {
    for (const std::string& name : {Value(i), Failed(i), Broken(i)}) {
      program.GetScreen().Click(At(name));
      Run(core::milliseconds(100));
      ASSERT_TRUE(NothingInFront()) << name;
    }
  }
  EXPECT_THAT(Exchanges(), IsEmpty());
}

}  // namespace
}  // namespace tarvo::test
