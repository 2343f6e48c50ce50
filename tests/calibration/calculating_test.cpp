// What the calibration dialog computes and writes.

#include "calibration/calibration_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;

struct Points {
  int low;
  int high;
  const char* wantedLow;
  const char* wantedHigh;
};

class CalibrationCalculate : public CalibrationFixture {
 protected:
  /// A fresh dialog with both points, up to the press of Calculate.
  void Calculate(const Points& points) {
    if (WindowInFront() == kDialog) Click(Of("OKButton"));
    // The last row's result is not what the next one begins with.
    Set(kZero1, 0);
    Set(kSpan1, 10000);
    OpenWithReads(points.low, points.high);
    Want(points.wantedLow, points.wantedHigh);
    Click(Of("buttCalibra"));
  }
  void ExpectCalculated(int span, int zero) {
    EXPECT_EQ(BoxInFront(), nullptr);
    EXPECT_THAT(module.TakeLog(), ElementsAreArray(Writes(span, zero)));
    EXPECT_EQ(Field("tbSpan"), std::to_string(span));
    EXPECT_EQ(Field("tbZero"), std::to_string(zero));
    EXPECT_EQ(Status(), "Calculated values : Zero = " + std::to_string(zero) + " , Span =" + std::to_string(span));
    EXPECT_TRUE(PortAtRest());
    EXPECT_FALSE(Hourglass());
  }
};

struct Result {
  Points points;
  int span;
  int zero;
};

TEST_F(CalibrationCalculate, LaysTheLineThroughBothPoints) {
  const Result rows[] = {{{1000, 9000, "1000", "9000"}, 10000, 0},       {{1000, 9000, "1100", "9900"}, 11000, 0},
                         {{200, 8200, "250", "8450"}, 10250, 45},        {{-1000, 1000, "-1005", "995"}, 10000, -5},
                         {{-2000, -1000, "-2100", "-1000"}, 11000, 100}, {{0, 10000, "+0", " 10000 "}, 10000, 0}};
  for (const Result& row : rows) {
    SCOPED_TRACE(testing::Message() << row.points.wantedLow << " to " << row.points.wantedHigh);
    Calculate(row.points);
    ExpectCalculated(row.span, row.zero);
  }
}

TEST_F(CalibrationCalculate, TakesWantedValuesWithDecimals) {
  Calculate({0, 10000, "10.4", "10010,4"});
  ExpectCalculated(10000, 10);
}

TEST_F(CalibrationCalculate, RoundsHalvesToTheEvenNumber) {
  const Result rows[] = {{{0, 10000, "0.5", "10000.5"}, 10000, 0},  {{0, 10000, "1.5", "10001.5"}, 10000, 2},
                         {{0, 10000, "2.5", "10002.5"}, 10000, 2},  {{0, 10000, "-0.5", "9999.5"}, 10000, 0},
                         {{0, 10000, "-1.5", "9998.5"}, 10000, -2}, {{0, 10000, "0", "10000.5"}, 10000, 0},
                         {{0, 10000, "0", "10001.5"}, 10002, 0},    {{0, 10000, "0", "9999.5"}, 10000, 0}};
  for (const Result& row : rows) {
    SCOPED_TRACE(testing::Message() << row.points.wantedLow << " to " << row.points.wantedHigh);
    Calculate(row.points);
    ExpectCalculated(row.span, row.zero);
  }
}

TEST_F(CalibrationCalculate, TakesTheUnroundedSlopeForTheZero) {
  Calculate({20000, 30000, "20000", "30000.4"});
  ExpectCalculated(10000, -1);
}

TEST_F(CalibrationCalculate, WritesANegativeZeroAsAWord) {
  Calculate({0, 10000, "-5", "9995"});
  EXPECT_THAT(module.TakeLog(), ElementsAreArray({"writes 40021 = 0xFFFB", "writes 40025 = 0x2710",
                                                  "writes 40085 = 0xFFFB", "writes 40089 = 0x2710"}));
  EXPECT_EQ(module[40021], 65531);
}

TEST_F(CalibrationCalculate, TakesSpanAndZeroAsTheyStand) {
  // X is the value divided by the span, less the zero: 0.125 and 1.125.
  OpenWithReads(1000, 9000);
  Want("1000", "11000");
  Type(Of("tbSpan"), "8000");
  Click(Of("buttCalibra"));
  ExpectCalculated(10000, -250);
  // Now with a zero of -1: X is 1.1 and 1.9.
  Type(Of("tbSpan"), "10000");
  Type(Of("tbZero"), "-1");
  Want("11000", "19000");
  Click(Of("buttCalibra"));
  ExpectCalculated(10000, 0);
}

TEST_F(CalibrationCalculate, WritesTheRegistersOfItsInput) {
  for (int input = 0; input < kInputs; ++input) {
    OpenWithReads(1000, 9000, input);
    Want("1090", "9890");
    Click(Of("buttCalibra"));
    ExpectCalculated(11000, -10);
    Click(Of("OKButton"));
  }
}

// Limits.

TEST_F(CalibrationCalculate, TakesResultsUpToTheLimitsWithoutAWord) {
  const Result rows[] = {{{0, 10000, "0", "12000"}, 12000, 0},          {{0, 10000, "0", "8000"}, 8000, 0},
                         {{0, 10000, "0", "12000.4"}, 12000, 0},        {{0, 10000, "0", "7999.6"}, 8000, 0},
                         {{0, 10000, "1000", "11000"}, 10000, 1000},    {{0, 10000, "-1000", "9000"}, 10000, -1000},
                         {{0, 10000, "1000.5", "11000.5"}, 10000, 1000}};
  for (const Result& row : rows) {
    SCOPED_TRACE(testing::Message() << row.points.wantedLow << " to " << row.points.wantedHigh);
    Calculate(row.points);
    ExpectCalculated(row.span, row.zero);
  }
}

TEST_F(CalibrationCalculate, LimitsWhatLiesBeyondAndWarns) {
  const Result rows[] = {{{1000, 2000, "1000", "3000"}, 12000, -1000}, {{0, 10000, "0", "12001"}, 12000, 0},
                         {{0, 10000, "0", "7999"}, 8000, 0},           {{0, 10000, "1001", "11001"}, 10000, 1000},
                         {{0, 10000, "-1001", "8999"}, 10000, -1000},  {{0, 10000, "0", "-10000"}, 8000, 0},
                         {{0, 10000, "5000", "25000"}, 12000, 1000}};
  for (const Result& row : rows) {
    SCOPED_TRACE(testing::Message() << row.points.wantedLow << " to " << row.points.wantedHigh);
    Calculate(row.points);
    EXPECT_THAT(module.TakeLog(), IsEmpty());
    ExpectBox(kLimited);
    ExpectCalculated(row.span, row.zero);
  }
}

// Points and fields that cannot be.

TEST_F(CalibrationCalculate, RefusesAHighPointThatIsNotAboveTheLowOne) {
  for (const auto& [low, high] : {std::pair(1000, 1000), std::pair(2000, 1000), std::pair(0, -1)}) {
    Calculate({low, high, "1", "2"});
    ExpectBox(kNotGreater);
    EXPECT_THAT(module.TakeLog(), IsEmpty());
    EXPECT_EQ(Field("tbSpan"), "10000");
    EXPECT_EQ(Field("tbZero"), "0");
    ExpectSteps(true, true, true);
  }
}

class CalibrationField : public CalibrationCalculate, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Fields, CalibrationField,
                         testing::Values("tbSpan", "tbZero", "tbValueToSet(0)", "tbValueToSet(1)"));

TEST_P(CalibrationField, MustBeANumberForCalculate) {
  for (const char* text : {"", " ", "abc", "1.5.2", "-", "0x10", "1,2.3", "1e3", "12 3"}) {
    SCOPED_TRACE(text);
    if (WindowInFront() == kDialog) Click(Of("OKButton"));
    OpenWithReads(1000, 9000);
    Want("1000", "9000");
    Type(Of(GetParam()), text);
    Click(Of("buttCalibra"));
    ExpectBox(kInvalidFields);
    EXPECT_THAT(module.TakeLog(), IsEmpty());
  }
}

TEST_F(CalibrationCalculate, RefusesAPointWhoseReadHasFailed) {
  for (int point = 0; point < 2; ++point) {
    if (WindowInFront() == kDialog) Click(Of("OKButton"));
    OpenWithReads(1000, 9000);
    Want("1000", "9000");
    module.Next(ModuleFault::Exception(4));
    Click(Of(Member("buttRead", point)));
    module.ForgetLog();
    Click(Of("buttCalibra"));
    ExpectBox(kInvalidFields);
    EXPECT_THAT(module.TakeLog(), IsEmpty());
  }
}

TEST_F(CalibrationCalculate, TellsANumberTooLargeForItsTypeAndWritesNothing) {
  OpenWithReads(0, 10000);
  for (const char* field : {"tbSpan", "tbZero"}) {
    Want("0", "10000");
    Type(Of("tbSpan"), "10000");
    Type(Of("tbZero"), "0");
    Type(Of(field), "99999999999");
    Click(Of("buttCalibra"));
    EXPECT_THAT(BoxInFront(), IsBox("Overflow", view::Icon::kExclamation)) << field;
    AnswerOk();
    EXPECT_EQ(WindowInFront(), kDialog);
  }
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(CalibrationCalculate, SetsNoNumberThatNoRegisterHolds) {
  OpenFilled();
  module.ForgetLog();
  for (const char* field : {"tbSpan", "tbZero"}) {
    Type(Of("tbSpan"), "10000");
    Type(Of("tbZero"), "0");
    Type(Of(field), "70000");
    Click(Of("buttSet"));
    EXPECT_THAT(BoxInFront(), IsBox("Overflow", view::Icon::kExclamation)) << field;
    AnswerOk();
  }
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(CalibrationCalculate, TakesEnterInAFieldForTheButtonBehindIt) {
  OpenWithReads(0, 10000);
  Want("0", "10000");
  PressKey(Of("tbValueToSet(1)"), view::Key::kEnter);
  EXPECT_EQ(module.TakeLog().size(), 4U);
  Type(Of("tbZero"), "7");
  PressKey(Of("tbZero"), view::Key::kEnter);
  EXPECT_THAT(module.TakeLog(), testing::Contains("writes 40021 = 0x0007"));
}

TEST_F(CalibrationCalculate, IsClosedByEscapeInAField) {
  OpenFilled();
  PressKey(Of("tbSpan"), view::Key::kEscape);
  EXPECT_NE(WindowInFront(), kDialog);
}

TEST_F(CalibrationCalculate, TellsAResultTooLargeForItsTypeAndWritesNothing) {
  Calculate({0, 10000, "0", "9999999999"});
  EXPECT_THAT(BoxInFront(), IsBox("Overflow", view::Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(WindowInFront(), kDialog);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_FALSE(Hourglass());
}

TEST_F(CalibrationCalculate, WritesNothingForASpanOfZero) {
  OpenWithReads(-5, 5);
  Want("0", "1");
  Type(Of("tbSpan"), "0");
  Click(Of("buttCalibra"));
  EXPECT_NE(BoxInFront(), nullptr);
  AnswerOk();
  EXPECT_EQ(WindowInFront(), kDialog);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_FALSE(Hourglass());
}

// Writes that fail.

/// Which of the four writes fails: 0 for zero live, 1 for span live, 2 and 3 for their stored copies.
class CalibrationWriteFault : public CalibrationCalculate, public testing::WithParamInterface<int> {
 protected:
  static constexpr int kLast = 3;

  /// The next write of that step fails. Its register belongs to input 3.
  void FailStep() {
    for (int i = 0; i < GetParam(); ++i) module.Next(ModuleFault::None());
    module.Next(ModuleFault::Exception(4));
  }
  std::string Complaint() const {
    const int registers[] = {40023, 40027, 40087, 40091};
    return "Unable To write " + std::to_string(registers[GetParam()]);
  }
  /// The four writes, that of the step refused.
  std::vector<std::string> FailedWrites(int span, int zero) const {
    std::vector<std::string> writes = Writes(span, zero);
    writes.at(static_cast<std::size_t>(GetParam())) += ": exception 4";
    return writes;
  }
};

INSTANTIATE_TEST_SUITE_P(Steps, CalibrationWriteFault, testing::Range(0, 4));

TEST_P(CalibrationWriteFault, ShowsOnSetAndDoesNotStopTheRest) {
  OpenFilled(2);
  Type(Of("tbSpan"), "10100");
  Type(Of("tbZero"), "3");
  FailStep();
  Click(Of("buttSet"));
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(FailedWrites(10100, 3)));
  EXPECT_EQ(Status(), Complaint());
  EXPECT_EQ(BoxInFront(), nullptr);
  EXPECT_TRUE(PortAtRest());
  Click(Of("buttSet"));
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(Writes(10100, 3)));
  EXPECT_EQ(Status(), "Try to write values");
}

TEST_P(CalibrationWriteFault, StopsCalculateOnlyAtTheLast) {
  OpenWithReads(1000, 9000, 2);
  Want("1100", "9900");
  FailStep();
  Click(Of("buttCalibra"));
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(FailedWrites(11000, 0)));
  if (GetParam() == kLast) {
    EXPECT_EQ(Status(), Complaint());
    EXPECT_EQ(Field("tbSpan"), "10000");
  } else {
    EXPECT_EQ(Status(), "Calculated values : Zero = 0 , Span =11000");
    EXPECT_EQ(Field("tbSpan"), "11000");
  }
}

TEST_P(CalibrationWriteFault, StopsResetOnlyAtTheLast) {
  OpenWithReads(1000, 9000, 2);
  FailStep();
  Click(Of("buttReset"));
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(FailedWrites(10000, 0)));
  EXPECT_EQ(Status(), Complaint());
  const bool last = GetParam() == kLast;
  EXPECT_EQ(Enabled(Of("timerStartComm")), !last);
  ExpectSteps(last, last, last);
}

TEST_F(CalibrationCalculate, ShowsTheLastOfSeveralWritesThatFail) {
  OpenFilled();
  Type(Of("tbSpan"), "10100");
  for (const bool fails : {true, false, true, false}) {
    module.Next(fails ? ModuleFault::Exception(4) : ModuleFault::None());
  }
  Click(Of("buttSet"));
  EXPECT_EQ(Status(), "Unable To write 40085");
}

TEST_F(CalibrationCalculate, EndsThoughNobodyHearsItsWrites) {
  OpenFilled();
  module.Always(ModuleFault::Unheard());
  Click(Of("buttSet"));
  EXPECT_EQ(Status(), "Unable To write 40089");
  EXPECT_TRUE(PortAtRest());
  EXPECT_FALSE(Hourglass());
}

TEST_F(CalibrationCalculate, EndsThoughThePortIsGone) {
  OpenFilled();
  ports.Disconnect(1);
  Click(Of("buttSet"));
  EXPECT_EQ(Status(), "Unable To write 40089");
  EXPECT_FALSE(Hourglass());
}

// Reset.

TEST_F(CalibrationCalculate, ResetWritesTheNeutralValuesAndReadsThemBack) {
  Set(kZero1, -44);
  Set(kSpan1, 11111);
  OpenFilled();
  const History status(At(Of("StatusBar1(1)")), "Text");
  Click(Of("buttReset"));
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(Writes(10000, 0)));
  EXPECT_EQ(Status(), "Try to write values");
  ExpectSteps(false, false, false);
  EXPECT_TRUE(Enabled(Of("timerStartComm")));
  EXPECT_EQ(Field("tbSpan"), "11111");
  Run(kFillsItself + kExchanges);
  EXPECT_THAT(module.TakeLog(), testing::ElementsAre("reads 40021", "reads 40025"));
  EXPECT_EQ(Field("tbSpan"), "10000");
  EXPECT_EQ(Field("tbZero"), "0");
  ExpectSteps(true, false, false);
  EXPECT_EQ(Status(), "Read Span and Zero ");
}

TEST_F(CalibrationCalculate, ResetGivesTheModuleASecond) {
  OpenFilled();
  Click(Of("buttReset"));
  module.ForgetLog();
  Run(core::milliseconds(950));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  Run(core::milliseconds(50) + kExchanges);
  EXPECT_EQ(module.TakeLog().size(), 2U);
}

TEST_F(CalibrationCalculate, ResetLocksAllThreeSteps) {
  OpenWithReads(1, 2);
  Click(Of("buttReset"));
  ExpectSteps(false, false, false);
  Run(kFillsItself + kExchanges);
  ExpectSteps(true, false, false);
}

// Set.

TEST_F(CalibrationCalculate, SetWritesWhatWasTypedUnchecked) {
  struct Row {
    const char* span;
    const char* zero;
    int spanWord;
    int zeroWord;
  };
  const Row rows[] = {{"10000", "0", 10000, 0},         {"20000", "-5", 20000, 0xFFFB},
                      {"1", "5000", 1, 5000},           {"32767", "-32768", 0x7FFF, 0x8000},
                      {"10000.5", "2.5", 10000, 2},     {" 9000 ", "1,5", 9000, 2},
                      {"65535", "32767", 0xFFFF, 32767}};
  OpenFilled();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.span);
    Type(Of("tbSpan"), row.span);
    Type(Of("tbZero"), row.zero);
    Click(Of("buttSet"));
    EXPECT_EQ(BoxInFront(), nullptr);
    EXPECT_THAT(module.TakeLog(), ElementsAreArray(Writes(row.spanWord, row.zeroWord)));
    EXPECT_EQ(Status(), "Try to write values");
  }
}

TEST_F(CalibrationCalculate, SetTakesNumbersOnly) {
  OpenFilled();
  for (const char* field : {"tbSpan", "tbZero"}) {
    for (const char* text : {"", " ", "abc", "1.5.2", "-"}) {
      Type(Of("tbSpan"), "10000");
      Type(Of("tbZero"), "0");
      Type(Of(field), text);
      Click(Of("buttSet"));
      ExpectBox(kInvalidSet);
    }
  }
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(CalibrationCalculate, SetAsksForNoWantedValues) {
  Open();
  Type(Of("tbSpan"), "10100");
  Type(Of("tbZero"), "1");
  Click(Of("buttSet"));
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(Writes(10100, 1)));
}

TEST_F(CalibrationCalculate, SetTellsANumberTooLargeForItsType) {
  OpenFilled();
  Type(Of("tbSpan"), "99999999999");
  Click(Of("buttSet"));
  EXPECT_THAT(BoxInFront(), IsBox("Overflow", view::Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(WindowInFront(), kDialog);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

}  // namespace
}  // namespace tarvo::test
