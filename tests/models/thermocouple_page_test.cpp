// What the pages of thermocouple inputs have alike: what they show of the inputs and their settings, what they keep for
// the bars, and how they come to the calibration.

#include <map>

#include "support/input_page_fixture.h"
#include "support/thermocouple_inputs.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// A page of thermocouple inputs, and what it calls or says in its own way.
struct ThermocouplePage : InputPage {
  const char* typeList;
  const char* filter;
  const char* unread;  ///< a value before any was read
  const char* calibrationTip;
};

constexpr ThermocouplePage kPages[] = {{kJorun, "cbInputType", "cbFilter", "00000", "Open Calibration window"},
                                       {kKelmar, "InputType", "Filter", "0", "Open Cal window"}};

class ThermocouplePageTest : public InputPageFixture,
                             protected ThermocoupleInputs,
                             public testing::WithParamInterface<ThermocouplePage> {
 protected:
  ThermocouplePageTest() : InputPageFixture(GetParam()) {}

  std::string TypeList(int input) const { return Own(GetParam().typeList, input); }
  std::string Filter(int input) const { return Own(GetParam().filter, input); }
  std::string Value(int input) const { return Own("Value", input); }
  static std::string Cal(int input) { return Member("buttCal", input); }

  static const TypeRow& TypeAt(int type) { return kTypes.at(static_cast<std::size_t>(type)); }
  static constexpr int kTypeCount = static_cast<int>(kTypes.size());

  /// A session with the same type on all inputs.
  void BeginWith(int type) {
    for (int input = 0; input < kInputs; ++input) Set(kType1 + input, type);
    Begin();
  }
  void Show(int input, int value) {
    Set(kValue1 + input, value);
    RunThroughADecode();
  }
};

std::string NameOf(const testing::TestParamInfo<ThermocouplePage>& given) {
  return given.param.model;
}

// The first block.

class ThermocoupleFirstBlock : public ThermocouplePageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, ThermocoupleFirstBlock, testing::ValuesIn(kPages), NameOf);

TEST_P(ThermocoupleFirstBlock, SelectsEachTypeByItsRow) {
  for (int type = 0; type < kTypeCount; ++type) {
    SCOPED_TRACE(type);
    for (int input = 0; input < kInputs; ++input) Set(kType1 + input, (type + input) % kTypeCount);
    Begin();
    for (int input = 0; input < kInputs; ++input) {
      EXPECT_EQ(ListIndex(TypeList(input)), (type + input) % kTypeCount) << input;
      EXPECT_EQ(Text(TypeList(input)), TypeAt((type + input) % kTypeCount).text) << input;
    }
  }
}

TEST_P(ThermocoupleFirstBlock, SelectsEachFilterByItsRow) {
  for (int level = 0; level < 7; ++level) {
    for (int input = 0; input < kInputs; ++input) Set(kFilter1 + input, (level + input) % 7);
    Begin();
    for (int input = 0; input < kInputs; ++input) {
      EXPECT_EQ(Text(Filter(input)), std::to_string((level + input) % 7)) << input;
    }
  }
}

TEST_P(ThermocoupleFirstBlock, BearsTypesAndFiltersThatNoListHas) {
  Set(kType1, 9);
  Set(kType1 + 1, 65535);
  Set(kType1 + 2, 4);
  Set(kFilter1, 7);
  Set(kFilter1 + 1, 32768);
  Begin();
  Run(std::chrono::seconds(1));
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text(Own("Message")), "OK");
  EXPECT_EQ(ListIndex(TypeList(2)), 4);
  EXPECT_EQ(ListIndex(TypeList(3)), 0);
}

TEST_P(ThermocoupleFirstBlock, IsNotShownAgainByTheRepeatingDecode) {
  Set(kType1, 1);
  Begin();
  Set(kType1, 2);
  Set(kFilter1, 3);
  Run(std::chrono::seconds(2));
  EXPECT_EQ(ListIndex(TypeList(0)), 1);
  EXPECT_EQ(ListIndex(Filter(0)), 0);
}

// The repeating decode.

class ThermocoupleDecode : public ThermocouplePageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, ThermocoupleDecode, testing::ValuesIn(kPages), NameOf);

TEST_P(ThermocoupleDecode, ShowsEachValueInItsOwnRowWithItsSign) {
  BeginWith(0);
  for (int input = 0; input < kInputs; ++input) Set(kValue1 + input, -1111 * (input + 1));
  RunThroughADecode();
  for (int input = 0; input < kInputs; ++input) EXPECT_EQ(Text(Value(input)), std::to_string(-1111 * (input + 1)));
}

TEST_P(ThermocoupleDecode, ShowsAllOf16BitsAsReceived) {
  BeginWith(1);
  for (const int value : {0, 1, -1, 7, 2005, -2005, 32767, -32768}) {
    Show(2, value);
    EXPECT_EQ(Text(Value(2)), std::to_string(value));
  }
}

TEST_P(ThermocoupleDecode, LightsEachLampByItsOwnBit) {
  BeginWith(0);
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kStatus, 1 << bit);
    RunThroughADecode();
    if (bit < 8) {
      EXPECT_THAT(LitLamps(), IsEmpty());
    } else {
      EXPECT_THAT(LitLamps(), ElementsAre(bit - 8));
    }
  }
}

TEST_P(ThermocoupleDecode, DarkensEachLampWhoseBitIsClear) {
  BeginWith(0);
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kStatus, 0xFFFF & ~(1 << bit));
    RunThroughADecode();
    std::vector<int> others;
    for (int lamp = 0; lamp < kLamps; ++lamp) {
      if (lamp != bit - 8) others.push_back(lamp);
    }
    EXPECT_THAT(LitLamps(), ElementsAreArray(others));
  }
}

TEST_P(ThermocoupleDecode, LeavesLampsAndValuesToTheFirstTick) {
  Set(kStatus, 0xFF00);
  Set(kValue1, 77);
  StartSession();
  EXPECT_THAT(LitLamps(), IsEmpty());
  EXPECT_EQ(Text(Value(0)), GetParam().unread);
  RunThroughADecode();
  EXPECT_EQ(LitLamps().size(), 8U);
  EXPECT_EQ(Text(Value(0)), "77");
}

struct BarCase {
  int type;
  int value;
  int percent;
};

TEST_P(ThermocoupleDecode, ShowsTheShareOfTheFullScale) {
  const BarCase rows[] = {{1, -2005, 20},   {1, 2005, 20},   {1, 9949, 99},    {1, 9950, 100}, {1, 10000, 100},
                          {2, 13000, 100},  {2, 12000, 100}, {2, 11999, 100},  {2, 6000, 50},  {0, 16000, 100},
                          {0, -16001, 100}, {0, 32767, 100}, {0, -32768, 100}, {5, 4000, 100}, {5, 1000, 25},
                          {6, 9000, 50},    {7, 800, 10},    {8, 1300, 10},    {3, 1750, 10},  {4, 3500, 20}};
  for (const BarCase& row : rows) {
    SCOPED_TRACE(testing::Message() << "type " << row.type << ", value " << row.value);
    BeginWith(row.type);
    Show(0, 0);
    Show(0, row.value);
    EXPECT_EQ(Percent(Bar(0)), row.percent);
    EXPECT_EQ(FillColor(0), row.value < 0 ? kNegativeColour : kPositiveColour);
  }
}

TEST_P(ThermocoupleDecode, GivesEachInputTheFullScaleOfItsOwnType) {
  for (int type = 0; type < kTypeCount; ++type) {
    SCOPED_TRACE(type);
    for (int input = 0; input < kInputs; ++input) {
      const int own = (type + input) % kTypeCount;
      Set(kType1 + input, own);
      Set(kValue1 + input, TypeAt(own).fullScale / 100 * (20 + 10 * input));
    }
    Begin();
    RunThroughADecode();
    for (int input = 0; input < kInputs; ++input) EXPECT_EQ(Percent(Bar(input)), 20 + 10 * input) << input;
  }
}

TEST_P(ThermocoupleDecode, RoundsAHalfPercentToTheEvenOne) {
  BeginWith(1);
  const std::pair<int, int> rows[] = {{50, 0}, {51, 1}, {149, 1}, {150, 2}, {250, 2}, {251, 3}, {350, 4}, {9850, 98}};
  for (const auto& [value, percent] : rows) {
    for (const int sign : {1, -1}) {
      Show(1, sign * value);
      EXPECT_EQ(Percent(Bar(1)), percent) << sign * value;
    }
  }
}

TEST_P(ThermocoupleDecode, LeavesTheColourWhenThePercentIsTheSameToTheLastDigit) {
  BeginWith(1);
  Show(0, 2000);
  ASSERT_EQ(Percent(Bar(0)), 20);
  ASSERT_EQ(FillColor(0), kPositiveColour);
  Show(0, -2000);
  EXPECT_EQ(Text(Value(0)), "-2000");
  EXPECT_EQ(FillColor(0), kPositiveColour);
  Show(0, -2001);
  EXPECT_EQ(Percent(Bar(0)), 20);
  EXPECT_EQ(FillColor(0), kNegativeColour);
  Show(0, 2000);
  EXPECT_EQ(FillColor(0), kNegativeColour);
}

TEST_P(ThermocoupleDecode, ColoursAnewAtTheFullScaleOnlyBeyondIt) {
  BeginWith(1);
  Show(0, 10000);
  ASSERT_EQ(Percent(Bar(0)), 100);
  const int colour = FillColor(0);
  Show(0, -10000);
  EXPECT_EQ(FillColor(0), colour);
  Show(0, -10001);
  EXPECT_EQ(Percent(Bar(0)), 100);
  EXPECT_EQ(FillColor(0), kNegativeColour);
}

TEST_P(ThermocoupleDecode, KeepsTheFullScaleOfTheLastTypeForOneThatThereIsNot) {
  BeginWith(5);
  BeginWith(9);
  Show(0, 1000);
  EXPECT_EQ(Percent(Bar(0)), 25);
  EXPECT_TRUE(NothingInFront());
}

TEST_P(ThermocoupleDecode, KeepsWhatItShowsWhileThePollFails) {
  BeginWith(1);
  Set(kStatus, 0x1200);
  Show(3, 5000);
  module.Always(ModuleFault::Exception(4));
  Set(kStatus, 0);
  Show(3, 1);
  EXPECT_EQ(Text(Value(3)), "5000");
  EXPECT_EQ(Percent(Bar(3)), 50);
  EXPECT_THAT(LitLamps(), ElementsAre(1, 4));
}

// The counts that fill a bar.

class ThermocoupleFullScale : public ThermocouplePageTest {
 protected:
  static constexpr char kNotInitialised[] = "FullScaleTC non inizializzato";

  int FullScale(int input) const { return State().FullScaleTC.at(static_cast<std::size_t>(input)); }
};

INSTANTIATE_TEST_SUITE_P(Pages, ThermocoupleFullScale, testing::ValuesIn(kPages), NameOf);

TEST_P(ThermocoupleFullScale, BeginsAt16000) {
  EXPECT_THAT(State().FullScaleTC, Each(16000));
}

TEST_P(ThermocoupleFullScale, FollowsTheUsersChoiceOfAType) {
  for (int input = 0; input < kInputs; ++input) {
    for (int type = 0; type < kTypeCount; ++type) {
      Choose(TypeList(input), type);
      EXPECT_EQ(FullScale(input), TypeAt(type).fullScale) << type;
    }
    Choose(TypeList(input), 5);
    for (int other = 0; other < kInputs; ++other) EXPECT_EQ(FullScale(other), other <= input ? 4000 : 16000);
  }
}

TEST_P(ThermocoupleFullScale, FollowsTheTypesOfTheModule) {
  for (int input = 0; input < kInputs; ++input) Set(kType1 + input, 1 + input);
  StartSession();
  EXPECT_THAT(State().FullScaleTC, ElementsAre(10000, 12000, 17500, 17500));
}

TEST_P(ThermocoupleFullScale, IsTheModulesOwnAgainWhenAnotherPageHasChangedIt) {
  Set(kType1, 1);
  StartSession();
  Click(Own("Stop"));
  State().FullScaleTC.fill(16000);
  Set(kValue1, 5000);
  StartSession();
  RunThroughADecode();
  EXPECT_EQ(FullScale(0), 10000);
  EXPECT_EQ(Percent(Bar(0)), 50);
}

TEST_P(ThermocoupleFullScale, OfAnUnknownTypeStays) {
  Choose(TypeList(0), 5);
  Choose(TypeList(1), 6);
  Set(kType1, 9);
  Set(kType1 + 1, 65535);
  StartSession();
  EXPECT_EQ(FullScale(0), 4000);
  EXPECT_EQ(FullScale(1), 18000);
}

TEST_P(ThermocoupleFullScale, BelowOneStopsAllBarsAndSaysSoAtEachTick) {
  for (const int missing : {0, -1}) {
    SCOPED_TRACE(missing);
    for (int input = 0; input < kInputs; ++input) Set(kValue1 + input, 0);
    Begin();
    RunThroughADecode();
    const int before = Percent(Bar(0));
    ASSERT_NE(before, 50);
    State().FullScaleTC[3] = static_cast<std::int16_t>(missing);
    for (int input = 0; input < kInputs; ++input) Set(kValue1 + input, 8000 + input);
    Set(kStatus, 0x0100);
    for (int tick = 0; tick < 3; ++tick) {
      ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }, std::chrono::seconds(1)));
      EXPECT_THAT(BoxInFront(), IsBox(kNotInitialised, view::Icon::kCritical));
      AnswerOk();
    }
    EXPECT_EQ(Text(Value(0)), "8000");
    EXPECT_EQ(Text(Value(3)), "8003");
    EXPECT_THAT(LitLamps(), ElementsAre(0));
    EXPECT_EQ(Percent(Bar(0)), before);
    // Mended, it is silent and the bars go on.
    State().FullScaleTC[3] = 16000;
    if (BoxInFront() != nullptr) AnswerOk();
    Run(std::chrono::seconds(1));
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(Percent(Bar(0)), 50);
  }
}

TEST_P(ThermocoupleFullScale, BelowOneShowsOneBoxAtATime) {
  StartSession();
  State().FullScaleTC[0] = 0;
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  Run(std::chrono::seconds(2));
  EXPECT_EQ(program.GetScreen().ModalDepth(), 1U);
}

TEST_P(ThermocoupleFullScale, BelowOneLeavesTheModuleBeingPolled) {
  StartSession();
  State().FullScaleTC[0] = 0;
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  module.ForgetLog();
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module.TakeLog().size(), 20U);
}

// The view before anything was read.

class ThermocoupleView : public ThermocouplePageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, ThermocoupleView, testing::ValuesIn(kPages), NameOf);

TEST_P(ThermocoupleView, BeginsWithTheLowestValues) {
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_EQ(Text(Value(input)), GetParam().unread);
    EXPECT_EQ(ListIndex(TypeList(input)), 0);
    EXPECT_EQ(ListIndex(Filter(input)), 0);
  }
  EXPECT_THAT(LitLamps(), IsEmpty());
}

TEST_P(ThermocoupleView, HasItsLists) {
  std::vector<std::string> types;
  for (const TypeRow& row : kTypes) types.emplace_back(row.text);
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_THAT(List(TypeList(input)), ElementsAreArray(types));
    EXPECT_THAT(List(Filter(input)), ElementsAre("0", "1", "2", "3", "4", "5", "6"));
    EXPECT_EQ(Text(Cal(input)), "CAL");
  }
}

TEST_P(ThermocoupleView, NamesRegisterAndBitOfEachInputInItsToolTips) {
  for (int input = 0; input < kInputs; ++input) {
    const std::string number = std::to_string(input + 1);
    EXPECT_EQ(ToolTip(TypeList(input)), std::to_string(40004 + input) + " - Input Type " + number);
    EXPECT_EQ(ToolTip(Filter(input)), std::to_string(40008 + input) + " - Input Filter " + number);
    EXPECT_EQ(ToolTip(Value(input)), std::to_string(40013 + input) + " - Input Value " + number);
    EXPECT_EQ(ToolTip(Lamp(input)), "40012." + std::to_string(8 + input) + " - Overflow input " + number);
    EXPECT_EQ(ToolTip(Lamp(4 + input)), "40012." + std::to_string(12 + input) + " - Burn-out input " + number);
    EXPECT_EQ(ToolTip(Cal(input)), GetParam().calibrationTip);
  }
}

// Calibration entry. What the dialog itself does is tested with it.

class ThermocoupleCalibrationEntry : public ThermocouplePageTest {
 protected:
  static constexpr char kTooOld[] = "Calibration impossible, firmware version is too old ";
  static constexpr char kUnreadable[] = "Calibration impossible, unable to read";

  void ExpectRefused(const std::string& text) {
    EXPECT_THAT(BoxInFront(), IsBox(text, view::Icon::kCritical));
    AnswerOk();
    ExpectOffline();
  }
  std::string NoModule() const { return std::string("Calibration impossible,  module is not ") + GetParam().model; }
};

INSTANTIATE_TEST_SUITE_P(Pages, ThermocoupleCalibrationEntry, testing::ValuesIn(kPages), NameOf);

TEST_P(ThermocoupleCalibrationEntry, OpensTheDialogForItsInput) {
  for (int input = 0; input < kInputs; ++input) {
    module.ForgetLog();
    Click(Cal(input));
    EXPECT_EQ(WindowInFront(), "dlgCalForm");
    EXPECT_EQ(program.FindWindow("dlgCalForm")->Caption, "Calibration Window, Input  " + std::to_string(input + 1));
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_FALSE(line.IsOpen());
    Click("dlgCalForm.OKButton");
    ExpectOffline();
  }
}

TEST_P(ThermocoupleCalibrationEntry, TakesItsFirstReleaseAndLaterOnes) {
  const int first = GetParam().release;
  for (const int release : {first, first + 1, first + 2, 255}) {
    SetRelease(release);
    Click(Cal(0));
    EXPECT_EQ(WindowInFront(), "dlgCalForm") << release;
    Click("dlgCalForm.OKButton");
  }
}

TEST_P(ThermocoupleCalibrationEntry, RefusesAnEarlierRelease) {
  for (int release = 0; release < GetParam().release; ++release) {
    SetRelease(release);
    for (int input = 0; input < kInputs; ++input) {
      Click(Cal(input));
      ExpectRefused(kTooOld);
    }
  }
}

TEST_P(ThermocoupleCalibrationEntry, RefusesAnotherModel) {
  const int code = GetParam().code;
  const int sister = code == kJorun.code ? kKelmar.code : kJorun.code;
  for (const int identity : {sister << 8 | 3, 0x0703, 0x0B03, 0x8003 | code << 8, code}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    Click(Cal(1));
    ExpectRefused(NoModule());
  }
}

TEST_P(ThermocoupleCalibrationEntry, RefusesWithoutAnAnswer) {
  module.Always(ModuleFault::Unheard());
  Click(Cal(2));
  ExpectRefused(kUnreadable);
}

TEST_P(ThermocoupleCalibrationEntry, RefusesWhenTheReadIsRefused) {
  module.Next(ModuleFault::Exception(2));
  Click(Cal(2));
  ExpectRefused(kUnreadable);
}

TEST_P(ThermocoupleCalibrationEntry, RefusesWithoutAPort) {
  ports.Disconnect(1);
  Click(Cal(2));
  ExpectRefused(kUnreadable);
}

TEST_P(ThermocoupleCalibrationEntry, LeavesThePageAsItWas) {
  const std::map<std::string, bool> before = Enabling();
  Click(Cal(0));
  EXPECT_TRUE(TimersRest());
  Click("dlgCalForm.OKButton");
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(InSession());
  EXPECT_EQ(Enabling(), before);
  StartSession();
  RunThroughADecode();
  EXPECT_EQ(Text(Own("Message")), "OK");
}

}  // namespace
}  // namespace tarvo::test
