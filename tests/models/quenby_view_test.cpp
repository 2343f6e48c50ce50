// The Quenby page as it stands before its module is known: names, lists, texts and tool tips; and its plain settings.

#include "support/quenby_fixture.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class QuenbyView : public QuenbyFixture {};

TEST_F(QuenbyView, ComesByItsLabelAndByItsMenuItem) {
  for (const char* road : {"MDIForm1.LabQuenby", "MDIForm1.mnuQuenby"}) {
    Click("MDIForm1.LabHome");
    ASSERT_EQ(State().NrFinestra, -1);
    Click(road);
    EXPECT_EQ(Page().Name(), "frmQuenby") << road;
    EXPECT_EQ(State().NrFinestra, 11) << road;
    EXPECT_EQ(State().FamilyShown, state::kTrue) << road;
  }
  EXPECT_EQ(Text("MDIForm1.LabQuenby"), "Quenby");
}

TEST_F(QuenbyView, IsInTheListOfTheFirstFamily) {
  Choose("MDIForm1.cbSelectDevice", 1);
  EXPECT_FALSE(Visible("MDIForm1.LabQuenby"));
  Choose("MDIForm1.cbSelectDevice", 0);
  EXPECT_TRUE(Visible("MDIForm1.LabQuenby"));
}

TEST_F(QuenbyView, HasAFile) {
  Click("MDIForm1.LabHome");
  ASSERT_FALSE(Enabled("MDIForm1.OpenMNU"));
  Click("MDIForm1.LabQuenby");
  EXPECT_TRUE(Enabled("MDIForm1.OpenMNU"));
  EXPECT_TRUE(Enabled("MDIForm1.SaveMNU"));
}

TEST_F(QuenbyView, HasThreeOutputsButOneFullScale) {
  for (const char* array : {"txtVal", "txtValRam", "cbStartScale"}) {
    for (int i = 0; i < kOutputs; ++i) EXPECT_NE(FindControl(Member(array, i)), nullptr) << array << i;
    EXPECT_EQ(FindControl(Member(array, kOutputs)), nullptr) << array;
  }
  EXPECT_NE(FindControl("cbFullScale(0)"), nullptr);
  EXPECT_EQ(FindControl("cbFullScale(1)"), nullptr);
  EXPECT_NE(FindControl("CheckError(1)"), nullptr);
  EXPECT_EQ(FindControl("CheckError(2)"), nullptr);
}

TEST_F(QuenbyView, ShowsOutputsAsLabelsAndTakesDefaultsAsText) {
  for (int i = 0; i < kOutputs; ++i) {
    EXPECT_EQ(At(Output(i)).GetKind(), view::Kind::kLabel);
    EXPECT_EQ(At(Default(i)).GetKind(), view::Kind::kTextBox);
  }
}

TEST_F(QuenbyView, ListsTheScales) {
  EXPECT_THAT(List("cbStartScale(0)"), ElementsAre("set start scale to 0mA (0V) ", "set start scale to 4mA (1 or 2V)"));
  EXPECT_THAT(List("cbStartScale(1)"), ElementsAre("set start scale to 0mA", "set start scale to 4mA"));
  EXPECT_THAT(List("cbStartScale(2)"), ElementsAre("set start scale to 0mA", "set start scale to 4mA"));
  EXPECT_THAT(List("cbFullScale(0)"), ElementsAre("set full scale to 10mA (5V)", "set full scale to 20mA (10V)"));
}

TEST_F(QuenbyView, ListsSevenRatesWhateverTheFirmware) {
  for (const int release : {0, 1, 255}) {
    Set(kFirmware, release);
    VisitAnew();
    EXPECT_THAT(List("cbBaud"), ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("cbBaud"), ElementsAre(6, 7, 0, 1, 2, 3, 4));
  }
}

TEST_F(QuenbyView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {{"CheckDelay12ms", "Answr Delay 12ms"},
                                                          {"checkParity", "Parity "},
                                                          {"OptionEven", "Even"},
                                                          {"CheckResetTimer", "Reset on Write"},
                                                          {"CheckDefaultOutputs", "Set Default Outputs"},
                                                          {"CheckError(0)", "EEPROM Prog. Error"},
                                                          {"CheckError(1)", "Data Prog. Error"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption) << name;
}

TEST_F(QuenbyView, NamesRegisterAndBitInItsToolTips) {
  const std::pair<const char*, const char*> toolTips[] = {
      {"CheckDelay12ms", "40068.2  - Communication delay answer 12 ms minimum.    "},
      {"checkParity", "40068.3 -  Parity "},
      {"OptionOdd", "40068.4 - Parity type"},
      {"CheckResetTimer", "40068.6 - Reset safe timer on write message."},
      {"CheckDefaultOutputs", "40068.7 - Set default outputs on safe time elapsed."},
      {"cbStartScale(0)", "40068.8 - OUTCH1 start scale selector"},
      {"cbStartScale(1)", "40068.9 - OUTCH2 start scale selector"},
      {"cbStartScale(2)", "40068.10 - OUTCH3 start scale selector"},
      {"cbFullScale(0)", "40068.11 - OUTCH1 full scale selector"},
      {"txtVal(0)", "40069 - OUTCH1 default value"},
      {"txtVal(1)", "40070 - OUTCH2 default value"},
      {"txtVal(2)", "40071 - OUTCH3 default value"},
      {"labAddress", "ADDRESS - 40066 "},
      {"labTimeout", "Safe time - 40067"},
      {"cbBaud", "40066- Baud rate "},
      {"buttStart", "Start Communication"},
      {"buttStop", "Stop Communication"}};
  for (const auto& [name, toolTip] : toolTips) EXPECT_EQ(ToolTip(name), toolTip) << name;
}

TEST_F(QuenbyView, NamesARegisterTooHighInTheToolTipsOfTheOutputs) {
  EXPECT_EQ(ToolTip("txtValRam(0)"), "40006 - OUTCH1 value");
  EXPECT_EQ(ToolTip("txtValRam(1)"), "40007 - OUTCH2 value");
  EXPECT_EQ(ToolTip("txtValRam(2)"), "40008 - OUTCH3 value");
}

TEST_F(QuenbyView, HasTheTimersOfASessionAndNoOthers) {
  EXPECT_EQ(Interval("TimerLetturaSeriale"), 50);
  EXPECT_EQ(Interval("TimerGestioneLetture"), 200);
  EXPECT_TRUE(TimersRest());
  EXPECT_EQ(FindControl("frmQuenby.TimerIngranaggi"), nullptr);
  EXPECT_EQ(FindControl("frmQuenby.TimerControllo"), nullptr);
}

TEST_F(QuenbyView, ExitDisablesItsTimers) {
  constexpr std::array kTimers = {"frmQuenby.TimerGestioneLetture", "frmQuenby.TimerLetturaSeriale"};
  for (const char* timer : kTimers) dynamic_cast<view::Timer&>(At(timer)).Enabled = true;
  Click("MDIForm1.ExitMNU");
  for (const char* timer : kTimers) EXPECT_FALSE(Enabled(timer)) << timer;
  EXPECT_TRUE(program.Ended());
}

/// The page of a module that it could not read.
class QuenbyUnread : public QuenbyModule {
 protected:
  QuenbyUnread() {
    Set(kIdentity, 0);
    OpenPage();
  }
};

TEST_F(QuenbyUnread, BeginsWithTheLowestValues) {
  EXPECT_THAT(OutputTexts(), Each(std::string("0")));
  EXPECT_THAT(DefaultTexts(), Each(std::string("0")));
  EXPECT_EQ(Text("labAddress"), "1");
  EXPECT_EQ(Text("labTimeout"), "0");
}

TEST_F(QuenbyUnread, BeginsWithTheFirstEntryOfEachListButTheSecondRate) {
  for (const Flag& list : kLists) EXPECT_EQ(ListIndex(list.name), 0) << list.name;
  EXPECT_EQ(ListIndex("cbBaud"), 1);
  EXPECT_EQ(Text("cbBaud"), "2400");
}

TEST_F(QuenbyUnread, BeginsWithoutAFlagAndWithoutParity) {
  EXPECT_EQ(FlagsShown(), 0);
  EXPECT_FALSE(Checked("CheckError(0)"));
  EXPECT_FALSE(Checked("CheckError(1)"));
  EXPECT_EQ(RefusalOf("OptionEven"), "OptionEven is disabled");
  EXPECT_EQ(RefusalOf("OptionOdd"), "OptionOdd is disabled");
}

// Settings that reach the module only by the commit.

struct SettingCase {
  const char* label;
  const char* read;  ///< what the page has read of its module
  const char* minimum;
  const char* maximum;
  const char* tooSmall;
  const char* tooLarge;
};

class QuenbySetting : public QuenbyFixture, public testing::WithParamInterface<SettingCase> {};

INSTANTIATE_TEST_SUITE_P(Labels, QuenbySetting,
                         testing::Values(SettingCase{"labAddress", "1", "1", "255", "0", "256"},
                                         SettingCase{"labTimeout", "50", "0", "65535", "-1", "65536"}),
                         [](const auto& given) { return given.param.label; });

TEST_P(QuenbySetting, HasItsBounds) {
  Click(GetParam().label);
  ASSERT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(Text("MinValue"), std::string("Min Value :") + GetParam().minimum);
  EXPECT_EQ(Text("MaxValue"), std::string("Max Value :") + GetParam().maximum);
  AnswerChangeValue(GetParam().tooLarge);
  EXPECT_EQ(Text("Text1"), GetParam().maximum);
  AnswerChangeValue(GetParam().tooSmall);
  EXPECT_EQ(Text("Text1"), GetParam().minimum);
}

TEST_P(QuenbySetting, TakesBothItsBounds) {
  for (const char* bound : {GetParam().minimum, GetParam().maximum}) {
    Edit(GetParam().label, bound);
    EXPECT_EQ(Text(GetParam().label), bound);
  }
}

TEST_P(QuenbySetting, IsEditedInTheViewAloneWithoutASession) {
  Edit(GetParam().label, "99");
  EXPECT_EQ(Text(GetParam().label), "99");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_P(QuenbySetting, IsEditedInTheViewAloneInASession) {
  StartSession();
  Edit(GetParam().label, "99");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(GetParam().label), "99");
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(QuenbySetting, LeavesTheSessionRunningWhenItsDialogCloses) {
  StartSession();
  Click(GetParam().label);
  Click("ChangeValue.Cancel");
  ExpectSessionGoesOn();
  Edit(GetParam().label, "99");
  ExpectSessionGoesOn();
  EXPECT_FALSE(Enabled("buttStart"));
}

TEST_P(QuenbySetting, IsLeftAsItIsWhenTheDialogIsCancelled) {
  Click(GetParam().label);
  Type("ChangeValue.Text1", "99");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text(GetParam().label), GetParam().read);
}

TEST_F(QuenbyView, TakesARateWithoutAWordOnTheLine) {
  Choose("cbBaud", 4);
  EXPECT_EQ(ports.Attempts(), 0);
  StartSession();
  Choose("cbBaud", 0);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("cbBaud"), "1200");
  EXPECT_THAT(Exchanges(), IsEmpty());
}

}  // namespace
}  // namespace tarvo::test
