// The Oswin page as it stands: names, lists, texts and tool tips; and the edits that no register hears of.

#include "support/oswin_fixture.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class OswinView : public OswinFixture {};

TEST_F(OswinView, ComesByItsLabelAndByItsMenuItem) {
  for (const char* road : {"MDIForm1.labOswin", "MDIForm1.menuOswin"}) {
    Click("MDIForm1.LabHome");
    ASSERT_EQ(State().NrFinestra, -1);
    Click(road);
    EXPECT_EQ(Page().Name(), "frmOswin") << road;
    EXPECT_EQ(State().NrFinestra, 12) << road;
    EXPECT_EQ(State().FamilyShown, state::kTrue) << road;
  }
  EXPECT_EQ(Text("MDIForm1.labOswin"), "Oswin");
}

TEST_F(OswinView, IsInTheListOfTheFirstFamily) {
  Choose("MDIForm1.cbSelectDevice", 1);
  EXPECT_FALSE(Visible("MDIForm1.labOswin"));
  Choose("MDIForm1.cbSelectDevice", 0);
  EXPECT_TRUE(Visible("MDIForm1.labOswin"));
}

TEST_F(OswinView, HasFourOfEachChannelsControls) {
  for (const char* array : {"labTI_RTD", "labRES_RTD", "labChannelFail", "labSensorFail", "cbFilter", "chkRejection",
                            "chkComp", "cbUnits", "cbSensorType"}) {
    for (int i = 0; i < kChannels; ++i) EXPECT_NE(FindControl(Member(array, i)), nullptr) << array << i;
    EXPECT_EQ(FindControl(Member(array, kChannels)), nullptr) << array;
  }
}

TEST_F(OswinView, HasNoneOfItsForerunnersOtherControls) {
  for (const char* name : {"cbDumpFactor(0)", "cbRangePT100(0)", "chkBurnedSensor(0)", "chkConv(0)",
                           "chkDINCoefficients", "cbDecimalNumbers", "labRange(0)", "StopOswin", "StartNerith"}) {
    EXPECT_EQ(FindControl(std::string("frmOswin.") + name), nullptr) << name;
  }
}

TEST_F(OswinView, ListsFiltersUnitsAndSensorsForEachChannel) {
  for (int i = 0; i < kChannels; ++i) {
    EXPECT_THAT(List(Filter(i)), ElementsAre("Not ins.", "Avg.", "Hires + Avg.", "Hires + Avg. + Exp")) << i;
    EXPECT_THAT(List(Units(i)), ElementsAre("°C", "ohm")) << i;
    EXPECT_THAT(List(SensorType(i)), ElementsAre("0-PT100", "1-PT500", "2-PT1000", "3-NI100")) << i;
  }
}

TEST_F(OswinView, HasTheSameListsWhateverTheFirmware) {
  for (const int release : {0, 17, 18, 255}) {
    Set(kIdentity, 0x1600 | release);
    VisitAnew();
    EXPECT_THAT(List(SensorType(3)), ElementsAre("0-PT100", "1-PT500", "2-PT1000", "3-NI100")) << release;
    EXPECT_THAT(List("cbBaudRate"), ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600")) << release;
    EXPECT_TRUE(Enabled(SensorType(3))) << release;
    EXPECT_TRUE(Visible(Comp(3))) << release;
  }
}

TEST_F(OswinView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {{"StartOswin", "&Start"},
                                                          {"StopNerith", "S&top"},
                                                          {"WEEPGaven", "&Write EEprom"},
                                                          {"ResetGaven", "Module &Reset"},
                                                          {"chkRejection(0)", "Frequency rejection (60Hz)"},
                                                          {"chkRejection(3)", "Frequency rejection (60Hz)"},
                                                          {"chkComp(0)", "3-wire compensation"},
                                                          {"chkComp(3)", "3-wire compensation"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption) << name;
}

TEST_F(OswinView, HasTheToolTipsOfItsForerunner) {
  for (int i = 0; i < kChannels; ++i) {
    EXPECT_EQ(ToolTip(Filter(i)), "40055.0-3 - Dump Factor") << i;
    EXPECT_EQ(ToolTip(Rejection(i)), "Check to get down-scale on burned sensor.") << i;
    EXPECT_EQ(ToolTip(Comp(i)), "Check to get temperature, uncheck to get resitance.") << i;
    EXPECT_EQ(ToolTip(Units(i)), "40040.0-2  Tecnical Units") << i;
    EXPECT_EQ(ToolTip(SensorType(i)), "40055.8-10-Sensor Type") << i;
    EXPECT_EQ(ToolTip(Measure(i)), "40003 - Temperature 1 value") << i;
  }
  const std::pair<const char*, const char*> toolTips[] = {{"labModuleAddress", "40035.0-7   Module Address"},
                                                          {"checkParity", "40035.8-9  - Parity ON/OFF"},
                                                          {"cbBaudRate", "40035.10-12   Module Baud Rate"},
                                                          {"StartOswin", "Start Communication"},
                                                          {"StopNerith", "Stop Communication"}};
  for (const auto& [name, toolTip] : toolTips) EXPECT_EQ(ToolTip(name), toolTip) << name;
}

TEST_F(OswinView, HasTheTimersOfASlowSession) {
  EXPECT_EQ(Interval("TimerLetturaSeriale"), 500);
  EXPECT_EQ(Interval("TimerGestioneLetture"), 200);
  EXPECT_EQ(Interval("TimerIngranaggi"), 200);
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(Enabled("TimerIngranaggi"));
  EXPECT_EQ(FindControl("frmOswin.TimerControllo"), nullptr);
}

TEST_F(OswinView, EnablesTheParityOptionsByTheirBox) {
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
  Click("checkParity");
  EXPECT_TRUE(Enabled("OptionEven"));
  EXPECT_TRUE(Enabled("OptionOdd"));
  Click("checkParity");
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
}

TEST_F(OswinView, HasNoFileThoughItsMenusAreEnabled) {
  constexpr char kPath[] = "/bench/module.txt";
  EXPECT_TRUE(Enabled("MDIForm1.OpenMNU"));
  Click("MDIForm1.SaveMNU");
  Answer(kPath);
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(files.Count(), 0U);
  files[kPath] = "\"DATAFORMAT 1.0 OSWIN\"\r\n";
  Click("MDIForm1.OpenMNU");
  Answer(kPath);
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(files.Writes(), 0);
}

/// The page of a module that it could not read.
class OswinUnread : public OswinModule {
 protected:
  OswinUnread() {
    Set(kIdentity, 0);
    OpenPage();
  }
};

TEST_F(OswinUnread, BeginsWithZeroMeasuresAndTheFirstAddress) {
  EXPECT_THAT(Four(&Measure), Each(std::string("0")));
  EXPECT_EQ(Text("labModuleAddress"), "1");
}

TEST_F(OswinUnread, BeginsWithTheSecondRate) {
  EXPECT_EQ(ListIndex("cbBaudRate"), 1);
  EXPECT_EQ(Text("cbBaudRate"), "2400");
}

TEST_F(OswinUnread, BeginsWithoutAnOption) {
  for (int i = 0; i < kChannels; ++i) {
    EXPECT_FALSE(Checked(Rejection(i))) << i;
    EXPECT_FALSE(Checked(Comp(i))) << i;
    EXPECT_EQ(ListIndex(Filter(i)), 0) << i;
  }
  EXPECT_FALSE(Checked("checkParity"));
}

// The address, which reaches the module only by the commit.

class OswinAddress : public OswinFixture {};

TEST_F(OswinAddress, HasItsBounds) {
  Click("labModuleAddress");
  ASSERT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(Text("MinValue"), "Min Value :1");
  EXPECT_EQ(Text("MaxValue"), "Max Value :255");
  AnswerChangeValue("256");
  EXPECT_EQ(Text("Text1"), "255");
  AnswerChangeValue("0");
  EXPECT_EQ(Text("Text1"), "1");
}

TEST_F(OswinAddress, TakesBothItsBounds) {
  for (const char* bound : {"1", "255"}) {
    Edit("labModuleAddress", bound);
    EXPECT_EQ(Text("labModuleAddress"), bound);
  }
}

TEST_F(OswinAddress, IsLeftAsItIsWhenTheDialogIsCancelled) {
  Click("labModuleAddress");
  Type("ChangeValue.Text1", "99");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text("labModuleAddress"), "1");
}

TEST_F(OswinAddress, IsEditedInTheViewAloneWithoutASession) {
  Edit("labModuleAddress", "99");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("labModuleAddress"), "99");
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(OswinAddress, IsEditedInTheViewAloneInASession) {
  StartSession();
  Edit("labModuleAddress", "99");
  EXPECT_EQ(Text("labModuleAddress"), "99");
  EXPECT_THAT(Exchanges(), IsEmpty());
  ExpectSessionGoesOn();
  EXPECT_EQ(Text("labModuleAddress"), "99");
}

TEST_F(OswinAddress, LeavesTheSessionRunningWhenItsDialogCloses) {
  StartSession();
  Click("labModuleAddress");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(State().NrFinestra, 12);
  ExpectSessionGoesOn();
}

// All other settings, too, wait for the commit.

class OswinSettings : public OswinFixture {
 protected:
  void ChangeAll() {
    for (int i = 0; i < kChannels; ++i) {
      Choose(Filter(i), 3);
      Choose(Units(i), 1);
      Choose(SensorType(i), 2);
      Click(Rejection(i));
      Click(Comp(i));
    }
    Choose("cbBaudRate", 4);
    Click("checkParity");
    Click("OptionOdd");
    Run(std::chrono::seconds(1));
    EXPECT_THAT(ChannelsShown(), Each(0xBB));
    EXPECT_EQ(Text("cbBaudRate"), "19200");
    EXPECT_TRUE(Checked("OptionOdd"));
  }
};

TEST_F(OswinSettings, ChangeInTheViewAloneWithoutASession) {
  ChangeAll();
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(OswinSettings, ChangeInTheViewAloneInASession) {
  StartSession();
  ChangeAll();
  EXPECT_THAT(Exchanges(), IsEmpty());
  ExpectSessionGoesOn();
}

}  // namespace
}  // namespace tarvo::test
