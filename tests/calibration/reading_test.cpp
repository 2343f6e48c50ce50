// How the calibration dialog opens, fills itself and reads the two points.

#include "calibration/calibration_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr char kQuestion[] = "Warning: you have to reset the module before read, do you want reset  the module?";

class CalibrationDialog : public CalibrationFixture {};

TEST_F(CalibrationDialog, OpensEmptyAndWaits) {
  Open();
  for (const char* field :
       {"tbZero", "tbSpan", "tbActualValue(0)", "tbActualValue(1)", "tbValueToSet(0)", "tbValueToSet(1)"}) {
    EXPECT_EQ(Field(field), "") << field;
  }
  ExpectSteps(false, false, false);
  EXPECT_TRUE(Enabled(Of("timerStartComm")));
  EXPECT_EQ(Interval(Of("timerStartComm")), 1000);
  for (const char* name : {"buttReset", "buttSet", "OKButton", "tbZero", "tbSpan"}) {
    EXPECT_TRUE(Enabled(Of(name))) << name;
  }
  EXPECT_FALSE(Enabled(Of("tbActualValue(0)")));
  EXPECT_FALSE(Enabled(Of("tbActualValue(1)")));
}

TEST_F(CalibrationDialog, HidesItsLeftOverButtons) {
  Open();
  EXPECT_EQ(Text(Of("buttExit")), "EXIT");
  EXPECT_EQ(Text(Of("CancelButton")), "Annulla");
  for (const char* name : {"buttExit", "CancelButton"}) {
    EXPECT_FALSE(Visible(Of(name))) << name;
    EXPECT_FALSE(Enabled(Of(name))) << name;
  }
}

TEST_F(CalibrationDialog, HasItsCaptions) {
  Open();
  const std::pair<const char*, const char*> captions[] = {{"Label3", "VALUE READ"},
                                                          {"Label4", "VALUE TO SET"},
                                                          {"Label1", "q"},
                                                          {"Label2", "m"},
                                                          {"Label5", "y=mx +q"},
                                                          {"buttRead(0)", "Read &low value"},
                                                          {"buttRead(1)", "Read &high value"},
                                                          {"buttCalibra", "&Calculate"},
                                                          {"buttReset", "&Reset"},
                                                          {"buttSet", "&Set"},
                                                          {"OKButton", "&OK"}};
  for (const auto& [name, caption] : captions) EXPECT_EQ(Text(Of(name)), caption) << name;
  const std::pair<const char*, const char*> tips[] = {{"buttRead(0)", "read low value"},
                                                      {"buttRead(1)", "read high value"},
                                                      {"buttCalibra", "Calculate and transmit  m,q"},
                                                      {"buttReset", "Reset m,q values ?"},
                                                      {"buttSet", "Set m,q values ?"}};
  for (const auto& [name, tip] : tips) EXPECT_EQ(ToolTip(Of(name)), tip) << name;
}

TEST_F(CalibrationDialog, IsLeftByItsButtonItsCloseBoxAndEscape) {
  Open();
  Click(Of("OKButton"));
  EXPECT_TRUE(NothingInFront());
  Open();
  Close();
  EXPECT_TRUE(NothingInFront());
  Open();
  PressKey(view::Key::kEscape);
  EXPECT_TRUE(NothingInFront());
  Open();
  PressKey(Of("tbSpan"), view::Key::kEscape);
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Page().Name(), "Jorun");
}

TEST_F(CalibrationDialog, OpensEmptyEachTime) {
  OpenWithReads(1000, 9000);
  Want("1", "2");
  Click(Of("OKButton"));
  Open(1);
  for (const char* field :
       {"tbZero", "tbSpan", "tbActualValue(0)", "tbActualValue(1)", "tbValueToSet(0)", "tbValueToSet(1)"}) {
    EXPECT_EQ(Field(field), "") << field;
  }
  ExpectSteps(false, false, false);
  EXPECT_TRUE(Enabled(Of("timerStartComm")));
}

TEST_F(CalibrationDialog, ReadsNothingOnceItIsClosed) {
  Open();
  Run(core::milliseconds(500));
  Click(Of("OKButton"));
  Run(std::chrono::seconds(3));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_TRUE(PortAtRest());
}

TEST_F(CalibrationDialog, FreesThePortWhenItIsClosedWhileItReads) {
  Open();
  ASSERT_TRUE(RunUntil([this] { return module.Requests() > 0 && line.IsOpen(); }));
  Click(Of("OKButton"));
  EXPECT_TRUE(NothingInFront());
  Run(std::chrono::seconds(3));
  EXPECT_TRUE(PortAtRest());
  EXPECT_FALSE(Hourglass());
  StartSession();
}

// It fills itself.

class CalibrationFill : public CalibrationFixture, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Inputs, CalibrationFill, testing::Range(0, 4));

TEST_P(CalibrationFill, ReadsZeroAndSpanOfItsInputOnce) {
  Set(kZero1 + GetParam(), -5);
  Set(kSpan1 + GetParam(), 11000);
  Open(GetParam());
  Run(core::milliseconds(990));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  Run(core::milliseconds(10) + kExchanges);
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads " + std::to_string(40021 + GetParam()),
                                            "reads " + std::to_string(40025 + GetParam())));
  EXPECT_EQ(Field("tbZero"), "-5");
  EXPECT_EQ(Field("tbSpan"), "11000");
  ExpectSteps(true, false, false);
  EXPECT_FALSE(Enabled(Of("timerStartComm")));
  EXPECT_EQ(Status(), "Read Span and Zero ");
  Run(std::chrono::seconds(5));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(CalibrationDialog, TakesThePortForEachOfItsReads) {
  Open();
  EXPECT_FALSE(line.IsOpen());
  ASSERT_TRUE(RunUntil([this] { return line.IsOpen(); }));
  EXPECT_TRUE(Hourglass());
  EXPECT_EQ(Status(), "Read Span and Zero ");
  Run(kExchanges);
  EXPECT_FALSE(line.IsOpen());
  EXPECT_FALSE(Hourglass());
  EXPECT_EQ(line.Opens(), 1);
  Click(Of("buttRead(0)"));
  EXPECT_FALSE(line.IsOpen());
  EXPECT_EQ(line.Opens(), 2);
}

TEST_F(CalibrationDialog, UsesABusOfItsOwnWithTwoTries) {
  OpenFilled();
  EXPECT_EQ(Number(Of("ModCom1"), "LinkParamA"), 2);
  EXPECT_EQ(Number(Of("ModCom1"), "LinkParamB"), 2);
  EXPECT_EQ(Number(Of("ModCom1"), "CommPort"), 1);
  EXPECT_EQ(Number(Of("ModCom1"), "ModuleAddr"), 1);
  EXPECT_EQ(Number("Jorun.ModCom1", "LinkParamB"), 3);
}

TEST_F(CalibrationDialog, GoesByTheSharedLineValues) {
  MemoryLine otherLine(scheduler);
  MemoryModule other(scheduler, otherLine, 7);
  other.Line = {19200, bus::Parity::kEven};
  other[kIdentity] = 0x0603;
  other[kZero1] = 12;
  other[kSpan1] = 9876;
  ports.Connect(2, otherLine);
  State().PCPort = 2;
  State().PCSettings = "19200,e,8,1";
  Click("MDIForm1.LabPCSetup");
  Click("PCAddress");
  AnswerChangeValue("7");
  Click("MDIForm1.labJorun");
  OpenFilled();
  EXPECT_EQ(Field("tbZero"), "12");
  EXPECT_EQ(Field("tbSpan"), "9876");
  EXPECT_EQ(Number(Of("ModCom1"), "ModuleAddr"), 7);
  EXPECT_FALSE(otherLine.IsOpen());
}

class CalibrationFillFault : public CalibrationFixture, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Requests, CalibrationFillFault, testing::Values(1, 2));

TEST_P(CalibrationFillFault, LeavesTheFieldsAndTellsIt) {
  Open();
  for (int i = 1; i < GetParam(); ++i) module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(2));
  Run(kFillsItself + kExchanges);
  EXPECT_EQ(Status(), "Unable To Read");
  EXPECT_EQ(Field("tbZero"), "");
  EXPECT_EQ(Field("tbSpan"), "");
  ExpectSteps(false, false, false);
  EXPECT_FALSE(Enabled(Of("timerStartComm")));
  EXPECT_TRUE(PortAtRest());
  EXPECT_EQ(WindowInFront(), kDialog);
}

TEST_F(CalibrationDialog, TellsASilentModule) {
  Open();
  const History status(At(Of("StatusBar1(1)")), "Text");
  module.Always(ModuleFault::Unheard());
  ASSERT_TRUE(RunUntil([this] { return Status() == "Unable To Read"; }));
  scheduler.RunReady();
  EXPECT_THAT(status.Values<std::string>(), ElementsAre("Read Span and Zero ", "Unable To Read"));
  EXPECT_TRUE(PortAtRest());
  EXPECT_FALSE(Hourglass());
  ExpectSteps(false, false, false);
}

TEST_F(CalibrationDialog, TellsAPortThatIsGone) {
  Open();
  ports.Disconnect(1);
  Run(kFillsItself + kExchanges);
  EXPECT_EQ(Status(), "Unable To Read");
  EXPECT_FALSE(Hourglass());
  EXPECT_EQ(WindowInFront(), kDialog);
}

// The two points.

class CalibrationRead : public CalibrationFixture, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Inputs, CalibrationRead, testing::Range(0, 4));

TEST_P(CalibrationRead, GoesFromLowOverHighToCalculate) {
  OpenFilled(GetParam());
  const std::string reading = "reads " + std::to_string(40013 + GetParam());
  ReadPoint(0, -123);
  EXPECT_EQ(Field("tbActualValue(0)"), "-123");
  EXPECT_EQ(Field("tbActualValue(1)"), "");
  EXPECT_EQ(Status(), "Try to Read value");
  ExpectSteps(true, true, false);
  ReadPoint(1, 31234);
  EXPECT_EQ(Field("tbActualValue(0)"), "-123");
  EXPECT_EQ(Field("tbActualValue(1)"), "31234");
  ExpectSteps(true, true, true);
  EXPECT_THAT(module.TakeLog(), ElementsAre(reading, reading));
  EXPECT_TRUE(PortAtRest());
}

TEST_F(CalibrationDialog, ReadsAPointAgain) {
  OpenWithReads(100, 200);
  ReadPoint(0, 50);
  ReadPoint(1, 300);
  EXPECT_EQ(Field("tbActualValue(0)"), "50");
  EXPECT_EQ(Field("tbActualValue(1)"), "300");
  ExpectSteps(true, true, true);
}

TEST_F(CalibrationDialog, TellsALowReadThatFailsAndGoesNoFurther) {
  OpenFilled();
  module.Next(ModuleFault::Exception(4));
  Click(Of("buttRead(0)"));
  EXPECT_EQ(Status(), "Unable to Read value");
  EXPECT_EQ(Field("tbActualValue(0)"), "");
  ExpectSteps(true, false, false);
  EXPECT_TRUE(PortAtRest());
}

TEST_F(CalibrationDialog, TellsAHighReadThatFailsAndGoesNoFurther) {
  OpenFilled();
  ReadPoint(0, 5);
  module.Always(ModuleFault::Unheard());
  Click(Of("buttRead(1)"));
  EXPECT_EQ(Status(), "Unable to Read value");
  EXPECT_EQ(Field("tbActualValue(0)"), "5");
  EXPECT_EQ(Field("tbActualValue(1)"), "");
  ExpectSteps(true, true, false);
  EXPECT_TRUE(PortAtRest());
}

TEST_F(CalibrationDialog, ClearsAValueWhoseNewReadFails) {
  OpenWithReads(100, 200);
  module.Next(ModuleFault::Exception(4));
  Click(Of("buttRead(0)"));
  EXPECT_EQ(Field("tbActualValue(0)"), "");
  ExpectSteps(true, true, true);
}

// The question before a read.

class CalibrationQuestion : public CalibrationFixture {
 protected:
  void ExpectQuestion() {
    const view::MessageBox* box = BoxInFront();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text, kQuestion);
    EXPECT_EQ(box->caption, "Tarvo");
    EXPECT_EQ(box->icon, view::Icon::kQuestion);
    EXPECT_THAT(box->buttons, ElementsAre("Yes", "No"));
  }
};

struct Shown {
  const char* span;
  const char* zero;
};

TEST_F(CalibrationQuestion, ComesForAnyOtherTextOfSpanOrZero) {
  OpenFilled();
  for (const Shown& shown : {Shown{"11000", "0"}, Shown{"10000", "1"}, Shown{"10000", "-5"}, Shown{"10000.0", "0"},
                             Shown{"10000", "00"}, Shown{"", "0"}, Shown{"10000", ""}, Shown{"abc", "0"}}) {
    SCOPED_TRACE(std::string(shown.span) + " " + shown.zero);
    Type(Of("tbSpan"), shown.span);
    Type(Of("tbZero"), shown.zero);
    Click(Of("buttRead(0)"));
    ExpectQuestion();
    Answer("No");
  }
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(CalibrationQuestion, LeavesAllAsItWasOnNo) {
  Set(kZero1, 7);
  Set(kSpan1, 10500);
  OpenFilled();
  const std::string status = Status();
  Click(Of("buttRead(0)"));
  ExpectQuestion();
  Answer("No");
  EXPECT_EQ(WindowInFront(), kDialog);
  EXPECT_EQ(Field("tbZero"), "7");
  EXPECT_EQ(Field("tbSpan"), "10500");
  EXPECT_EQ(Field("tbActualValue(0)"), "");
  EXPECT_EQ(Status(), status);
  ExpectSteps(true, false, false);
  EXPECT_FALSE(Enabled(Of("timerStartComm")));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(CalibrationQuestion, ResetsAndReadsOnYes) {
  Set(kZero1, 7);
  Set(kSpan1, 10500);
  OpenFilled();
  Set(kValue1, 321);
  Click(Of("buttRead(0)"));
  ExpectQuestion();
  Answer("Yes");
  std::vector<std::string> expected = Writes(10000, 0);
  expected.emplace_back("reads 40013");
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(expected));
  EXPECT_EQ(Field("tbActualValue(0)"), "321");
  // The reset has locked the low point, the low read has opened the high one.
  ExpectSteps(false, true, false);
  EXPECT_TRUE(Enabled(Of("timerStartComm")));
  Run(kFillsItself + kExchanges);
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40021", "reads 40025"));
  EXPECT_EQ(Field("tbZero"), "0");
  EXPECT_EQ(Field("tbSpan"), "10000");
  ExpectSteps(true, true, false);
}

TEST_F(CalibrationQuestion, ReadsOnYesThoughTheResetFails) {
  Set(kSpan1, 10500);
  OpenFilled();
  Set(kValue1, 321);
  Click(Of("buttRead(0)"));
  for (int i = 0; i < 3; ++i) module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Answer("Yes");
  EXPECT_THAT(module.TakeLog(), Contains("reads 40013"));
  EXPECT_EQ(Field("tbActualValue(0)"), "321");
  EXPECT_FALSE(Enabled(Of("timerStartComm")));
  ExpectSteps(true, true, false);
}

TEST_F(CalibrationQuestion, DoesNotComeForAModuleThatIsReset) {
  OpenFilled();
  Click(Of("buttRead(0)"));
  EXPECT_EQ(BoxInFront(), nullptr);
  Click(Of("buttRead(1)"));
  EXPECT_EQ(BoxInFront(), nullptr);
}

}  // namespace
}  // namespace tarvo::test
