// The Marlo page: what stands on it, its texts, and what only the page itself sees.

#include <algorithm>

#include "support/marlo_fixture.h"
#include "support/page_words.h"
#include "view/arrangement.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

class MarloView : public MarloFixture {
 protected:
  explicit MarloView(Entered entered = Entered::kYes) : MarloFixture(entered) {}

  /// All that can be read on the page, whether it is a shown control's or stands between them.
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    VisitNodes(Page().Arrangement(), [&](const view::Node& node) {
      texts.push_back(node.text);
      texts.insert(texts.end(), node.headings.begin(), node.headings.end());
    });
    for (const view::Control* control : view::ReadingOrder(Page().Arrangement())) {
      for (const view::NamedValue& value : control->Properties()) {
        if (value.name == "Caption") texts.push_back(std::get<std::string>(value.value));
      }
    }
    return texts;
  }
};

TEST_F(MarloView, IsInTheListOfTheFirstFamily) {
  EXPECT_EQ(Text("MDIForm1.labMarlo"), "Marlo");
  Choose("MDIForm1.cbSelectDevice", 1);
  EXPECT_FALSE(Visible("MDIForm1.labMarlo"));
  Choose("MDIForm1.cbSelectDevice", 0);
  EXPECT_TRUE(Visible("MDIForm1.labMarlo"));
}

TEST_F(MarloView, LetsFilesBeOpenedAndSaved) {
  EXPECT_TRUE(Enabled("MDIForm1.OpenMNU"));
  EXPECT_TRUE(Enabled("MDIForm1.SaveMNU"));
}

TEST_F(MarloView, HasItsCaptions) {
  const std::pair<const char*, const char*> captions[] = {{"buttStartMarlo", "&Start"},
                                                          {"buttStopMarlo", "S&top"},
                                                          {"buttWEEPMarlo", "&Write"},
                                                          {"MessageMarlo", ""},
                                                          {"CheckResetTimeout", "Reset timeout on write"},
                                                          {"CheckFailLed", "Fail led voltage drived  "},
                                                          {"checkParity", "Parity ON/OFF"},
                                                          {"OptionEven", "Even"},
                                                          {"OptionOdd", "Odd"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(name), caption) << name;
  for (int i = 0; i < kCount; ++i) {
    EXPECT_EQ(Text(Member("checkMask", i)), "Out" + std::to_string(i + 1));
    EXPECT_EQ(Text(Member("LabelOUT", i)), "Out-" + std::to_string(i + 1));
  }
}

TEST_F(MarloView, HasItsLabelsAndItsFrame) {
  EXPECT_THAT(Texts(), IsSupersetOf({"Short Circuit", "Open Output", "Temp. over range", "Module Error",
                                     "V. under threshold", "Diagnostic", "Default Outputs", "Opened Outputs",
                                     "Shorted Outputs", "Hot Outputs", "Opened Mask", "Module Baud Rate",
                                     "Module Address", "Safe time", "Output thr. (V)", "S.C. Delay "}));
  EXPECT_THAT(TextsOf(Page(), view::Node::Kind::kFrame), Contains("Diagnostics Mask"));
}

TEST_F(MarloView, NamesRegistersInItsToolTips) {
  const std::pair<const char*, const char*> toolTips[] = {
      {"buttStartMarlo", "Start Communication"},
      {"buttStopMarlo", "Stop Communication"},
      {"buttWEEPMarlo", "Write settings to eeprom: serial settings, safety timeout, diagnostic mask"},
      {"shStatus(0)", "40002.0 - Short circuit on output"},
      {"shStatus(1)", "40002.1 - Open circuit on output"},
      {"shStatus(2)", "40002.2 - Driver overtemperature "},
      {"shStatus(3)", "40002.3 - General error"},
      {"shStatus(4)", "40002.6 - Output supply undervoltage"},
      {"cbBaudMarlo", " ST_ADDR- COM_CONF1 - 40010 "},
      {"labAddressMarlo", " ST_ADDR- COM_CONF1 - 40010 "},
      {"labSafetimeMarlo", "40013 - Safety Timeout"},
      {"checkParity", "400011.0-1 - Parity "},
      {"OptionEven", "40011.0-1 - Parity "},
      {"OptionOdd", "40011.0-1 - Parity "},
      {"CheckResetTimeout", "40012.0 - Reset timeout"},
      {"CheckFailLed", "40012.1 - Fail Led setup"},
      {"ComboFailLed", "40012.8-40012.9 led activation mode"},
      {"txtValTreshold", "register 40016 l.s.b."},
      {"txtDelay", "register 40016 m.s.b."}};
  for (const auto& [name, toolTip] : toolTips) EXPECT_EQ(ToolTip(name), toolTip) << name;
}

TEST_F(MarloView, NamesRegistersInTheToolTipsOfItsLamps) {
  const std::pair<const char*, const char*> toolTips[] = {
      {"shDamage", "40004.0-40004.9 - DIAGNOSTICS"},     {"shDefault", "40005.0-40005.9 - DEFAULT OUTPUTS"},
      {"shOpen", "40006.0-40006.9 - OPENED OUTPUTS"},    {"shShorted", "40007.0-40007.9 - SHORTED OUTPUTS"},
      {"shHot", "40008.0-40008.9 - HOT OUTPUTS"},        {"shOpenedMask", ""},
      {"checkMask", "Press button to enable diagnostic"}};
  for (const auto& [array, toolTip] : toolTips) {
    for (int i = 0; i < kCount; ++i) EXPECT_EQ(ToolTip(Member(array, i)), toolTip) << array << i;
  }
}

TEST_F(MarloView, NamesTheHotOutputsInTheToolTipOfTheOpenedMask) {
  const std::vector<view::Control*>& controls = Page().Controls();
  const auto label = std::find_if(controls.begin(), controls.end(), [this](const view::Control* control) {
    return control->GetKind() == view::Kind::kLabel && Text("frmMarlo." + control->Name()) == "Opened Mask";
  });
  ASSERT_NE(label, controls.end());
  EXPECT_EQ((*label)->ToolTipText, "40008.0-40008.9 - HOT OUTPUTS");
}

TEST_F(MarloView, NamesTheFirstTwoOutputsAlike) {
  EXPECT_EQ(ToolTip(Out(0)), "40003.1 - Output 2");
  for (int i = 1; i < kCount; ++i) {
    EXPECT_EQ(ToolTip(Out(i)), "40003." + std::to_string(i) + " - Output " + std::to_string(i + 1));
  }
}

TEST_F(MarloView, HasItsLists) {
  EXPECT_THAT(List("cbBaudMarlo"), ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
  EXPECT_THAT(ItemData("cbBaudMarlo"), ElementsAre(6, 7, 0, 1, 2, 3, 4));
  EXPECT_THAT(List("ComboFailLed"), ElementsAre("always on", "slow blink", "fast blink", "double flash"));
}

TEST_F(MarloView, HasTheTimersOfASessionAndNoTimerControllo) {
  const std::pair<const char*, int> intervals[] = {
      {"TimerLetturaSeriale", 50}, {"TimerGestioneLetture", 200}, {"TimerIngranaggi", 200}};
  for (const auto& [name, interval] : intervals) {
    EXPECT_EQ(Interval(name), interval) << name;
    EXPECT_FALSE(Enabled(name)) << name;
  }
  EXPECT_EQ(FindControl("frmMarlo.TimerControllo"), nullptr);
}

TEST_F(MarloView, NamesItsOutputsOnThePage) {
  for (int i = 0; i < kCount; ++i) EXPECT_THAT(Texts(), Contains("Out-" + std::to_string(i + 1)));
}

TEST_F(MarloView, NumbersItsColumns) {
  for (const char* name : {"labNum", "labNum2", "labNum3", "labNum4", "labNum5", "labNum6"}) {
    EXPECT_NE(FindControl("frmMarlo." + std::string(name)), nullptr) << name;
  }
}

TEST_F(MarloView, HasNoReset) {
  for (const view::Control* control : Page().Controls()) {
    if (control->GetKind() != view::Kind::kButton) continue;
    EXPECT_THAT(control->Name(), testing::Not(testing::HasSubstr("Reset")));
  }
}

TEST_F(MarloView, ShowsEveryControlOnce) {
  std::vector<std::string> names;
  for (const view::Control* control : view::ReadingOrder(Page().Arrangement())) names.push_back(control->Name());
  std::vector<std::string> expected = {
      "buttStartMarlo",  "buttStopMarlo",    "buttWEEPMarlo",  "MessageMarlo", "labFW",      "cbBaudMarlo",
      "labAddressMarlo", "labSafetimeMarlo", "checkParity",    "OptionEven",   "OptionOdd",  "CheckResetTimeout",
      "CheckFailLed",    "ComboFailLed",     "txtValTreshold", "txtDelay",     "txtVoltage", "MediaPlayer1"};
  for (int i = 0; i < kStatusLamps; ++i) expected.push_back(Member("shStatus", i));
  for (int i = 0; i < kCount; ++i) {
    for (const MarloRow& row : kMarloRows) expected.push_back(Member(row.lamps, i));
    for (const char* array : {"buttOUTMarlo", "checkMask"}) expected.push_back(Member(array, i));
  }
  EXPECT_THAT(names, IsSupersetOf(expected));
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

TEST_F(MarloView, HasItsSettingsEnabledBeforeAnySession) {
  for (const char* name : {"cbBaudMarlo", "labAddressMarlo", "labSafetimeMarlo", "CheckResetTimeout", "CheckFailLed",
                           "ComboFailLed", "txtValTreshold", "txtDelay", "buttWEEPMarlo", "checkParity"}) {
    EXPECT_TRUE(Enabled(name)) << name;
  }
  for (int i = 0; i < kCount; ++i) {
    EXPECT_TRUE(Enabled(Member("checkMask", i))) << i;
    EXPECT_TRUE(Enabled(Out(i))) << i;
  }
}

// Before anything was read.

class MarloUnread : public MarloView {
 protected:
  MarloUnread() : MarloView(Entered::kNotYet) { EnterInVain(); }
};

TEST_F(MarloUnread, BeginsWithTheLowestValues) {
  EXPECT_EQ(Text("labFW"), "Firmware rel:");
  EXPECT_EQ(Text("labAddressMarlo"), "1");
  EXPECT_EQ(Text("labSafetimeMarlo"), "0");
  EXPECT_EQ(Text("txtVoltage"), "0");
  EXPECT_EQ(Text("txtValTreshold"), "0");
  EXPECT_EQ(Text("txtDelay"), "0");
  EXPECT_EQ(ListIndex("cbBaudMarlo"), 1);
  EXPECT_EQ(ListIndex("ComboFailLed"), 0);
  EXPECT_FALSE(Checked("checkParity"));
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
  EXPECT_FALSE(Checked("CheckResetTimeout"));
  EXPECT_FALSE(Checked("CheckFailLed"));
  EXPECT_EQ(OutputsShown(), 0);
}

TEST_F(MarloUnread, CanBeCommitted) {
  Click("buttWEEPMarlo");
  ASSERT_NE(BoxInFront(), nullptr);
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "writes 40011 = 0x0700", "writes 40013 = 0x0000",
                                            "writes 40012 = 0x0000", "writes 40016 = 0x0000", "writes 40010 = 0x0100"));
}

// Values that a dialog edits.

struct ValueCase {
  const char* label;
  const char* minimum;
  const char* maximum;
  const char* tooSmall;
  const char* tooLarge;
};

class MarloValue : public MarloFixture, public testing::WithParamInterface<ValueCase> {};

INSTANTIATE_TEST_SUITE_P(Labels, MarloValue,
                         testing::Values(ValueCase{"labAddressMarlo", "1", "255", "0", "256"},
                                         ValueCase{"labSafetimeMarlo", "0", "65535", "-1", "65536"}),
                         [](const auto& given) { return given.param.label; });

TEST_P(MarloValue, HasItsBounds) {
  Click(GetParam().label);
  ASSERT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(Text("MinValue"), std::string("Min Value :") + GetParam().minimum);
  EXPECT_EQ(Text("MaxValue"), std::string("Max Value :") + GetParam().maximum);
  AnswerChangeValue(GetParam().tooLarge);
  EXPECT_EQ(Text("Text1"), GetParam().maximum);
  AnswerChangeValue(GetParam().tooSmall);
  EXPECT_EQ(Text("Text1"), GetParam().minimum);
  Click("ChangeValue.OK");
  EXPECT_EQ(Text(GetParam().label), GetParam().minimum);
}

TEST_P(MarloValue, IsEditedWithoutAWordOnTheLine) {
  for (const bool session : {false, true}) {
    if (session) StartSession();
    const std::string text = session ? "98" : "99";
    Edit(GetParam().label, text);
    Run(std::chrono::seconds(1));
    EXPECT_EQ(Text(GetParam().label), text);
    EXPECT_THAT(Exchanges(), IsEmpty());
  }
}

TEST_P(MarloValue, IsLeftAsItIsWhenTheDialogIsCancelled) {
  Edit(GetParam().label, "77");
  Click(GetParam().label);
  Type("ChangeValue.Text1", "99");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text(GetParam().label), "77");
}

// Text boxes.

struct TextCase {
  const char* box;
  const char* complaint;
};

class MarloText : public MarloFixture, public testing::WithParamInterface<TextCase> {
 protected:
  /// Ends the typing, by Enter or by going elsewhere.
  void Finish(bool byEnter) {
    if (byEnter) {
      PressKey(GetParam().box, view::Key::kEnter);
    } else {
      Leave(GetParam().box);
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Boxes, MarloText,
                         testing::Values(TextCase{"txtDelay", "Delay is not numeric !"},
                                         TextCase{"txtValTreshold", "Val Treshold is not numeric !"}),
                         [](const auto& given) { return given.param.box; });

TEST_P(MarloText, TurnsAPointIntoAComma) {
  for (const bool byEnter : {true, false}) {
    for (const auto& [typed, shown] : {std::pair{"2.5", "2,5"}, {"2,5", "2,5"}, {"12", "12"}, {"-0.5", "-0,5"}}) {
      Type(GetParam().box, typed);
      Finish(byEnter);
      EXPECT_TRUE(NothingInFront());
      EXPECT_EQ(Text(GetParam().box), shown) << byEnter;
    }
  }
}

TEST_P(MarloText, ComplainsOfWhatIsNoNumber) {
  for (const bool byEnter : {true, false}) {
    for (const char* typed : {"abc", "", "1.5.2", "0x10", "12V"}) {
      Type(GetParam().box, typed);
      Finish(byEnter);
      EXPECT_THAT(BoxInFront(), IsBox(GetParam().complaint, view::Icon::kExclamation)) << typed;
      AnswerOk();
      EXPECT_TRUE(NothingInFront());
      EXPECT_EQ(Text(GetParam().box), typed);
    }
  }
}

TEST_P(MarloText, SaysNothingWhileItIsTyped) {
  Type(GetParam().box, "abc");
  PressKey(GetParam().box, view::Key::kEscape);
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text(GetParam().box), "abc");
  Type(GetParam().box, "2.5");
  EXPECT_EQ(Text(GetParam().box), "2.5");
}

TEST_P(MarloText, SaysNoWordOnTheLine) {
  StartSession();
  Type(GetParam().box, "2.5");
  Finish(true);
  Finish(false);
  Run(std::chrono::seconds(1));
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_EQ(Text(GetParam().box), "2,5");
}

// Boxes and options that stand for no register of the moment.

TEST_F(MarloView, ColoursTheBoxesOfTheDiagnosticsMask) {
  for (int i = 0; i < kCount; ++i) {
    const std::string box = Member("checkMask", i);
    for (int turn = 0; turn < 2; ++turn) {
      Click(box);
      EXPECT_TRUE(Checked(box));
      EXPECT_EQ(BackColor(box), kRed);
      Click(box);
      EXPECT_FALSE(Checked(box));
      EXPECT_EQ(BackColor(box), kGreen);
    }
  }
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(MarloView, ColoursOnlyTheBoxThatWasClicked) {
  for (const int i : {3, 4}) Click(Member("checkMask", i));
  Click("checkMask(4)");
  EXPECT_EQ(BackColor("checkMask(3)"), kRed);
  EXPECT_EQ(BackColor("checkMask(4)"), kGreen);
}

TEST_F(MarloView, KeepsTheDiagnosticsMaskToItself) {
  Click("checkMask(3)");
  Reenter();
  EXPECT_TRUE(Checked("checkMask(3)"));
  EXPECT_EQ(BackColor("checkMask(3)"), kRed);
}

TEST_F(MarloView, EnablesTheParityOptionsWithTheBox) {
  for (const bool session : {false, true}) {
    if (session) StartSession();
    Click("checkParity");
    EXPECT_TRUE(Enabled("OptionEven"));
    EXPECT_TRUE(Enabled("OptionOdd"));
    Click("OptionOdd");
    EXPECT_FALSE(Checked("OptionEven"));
    Click("checkParity");
    EXPECT_FALSE(Enabled("OptionEven"));
    EXPECT_FALSE(Enabled("OptionOdd"));
    EXPECT_TRUE(Checked("OptionOdd"));
    Run(std::chrono::seconds(1));
    EXPECT_THAT(Exchanges(), IsEmpty());
  }
}

TEST_F(MarloView, SetsItsOptionsWithoutAWordOnTheLine) {
  StartSession();
  Click("CheckResetTimeout");
  Click("CheckFailLed");
  Choose("ComboFailLed", 3);
  Choose("cbBaudMarlo", 0);
  Run(std::chrono::seconds(1));
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_TRUE(Checked("CheckResetTimeout"));
  EXPECT_TRUE(Checked("CheckFailLed"));
  EXPECT_EQ(Text("ComboFailLed"), "double flash");
  EXPECT_EQ(Text("cbBaudMarlo"), "1200");
}

TEST_F(MarloView, NotesTheEscapeKey) {
  PressKey(view::Key::kEscape);
  EXPECT_EQ(State().EscPressed, 1);
}

}  // namespace
}  // namespace tarvo::test
