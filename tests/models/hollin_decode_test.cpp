// What the Hollin page shows of its module's inputs and their settings.

#include <map>

#include "support/hollin_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HollinDecode : public HollinFixture {
 protected:
  /// Start anew, with this in the module; its blocks are looked at before the first tick of a timer.
  void ShowAtStart(int number, int value) {
    Set(number, value);
    Begin();
  }
  /// In a session, through the repeating paint.
  void ShowRepeating(int number, int value) {
    if (!InSession()) StartSession();
    Set(number, value);
    RunThroughADecode();
  }
};

// The first block, at Start.

TEST_F(HollinDecode, SelectsEachFilterByItsRegister) {
  for (int input = 0; input < kInputs; ++input) {
    for (int level = 6; level >= 0; --level) {
      SCOPED_TRACE(level);
      ShowAtStart(kFilter1 + input, level);
      for (int i = 0; i < kInputs; ++i) EXPECT_EQ(Text(Filter(i)), std::to_string(i == input ? level : 0)) << i;
    }
  }
}

TEST_F(HollinDecode, BearsAFilterThatNoListHas) {
  Set(kFilter1 + 3, 5);
  for (const int level : {7, 0x8000, 0xFFFF}) {
    ShowAtStart(kFilter1, level);
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(ListIndex(Filter(3)), 5);
  }
}

TEST_F(HollinDecode, ShowsEachScaleInItsOwnLabel) {
  for (int input = 0; input < kInputs; ++input) {
    SCOPED_TRACE(input);
    ShowAtStart(kFullScale1 + input, 1000 + input);
    ShowAtStart(kStartScale1 + input, -1000 - input);
    for (int i = 0; i < kElements; ++i) {
      const std::string shown = Text(Value(i));
      EXPECT_EQ(shown == std::to_string(1000 + input), i == RowOf(input).full) << i << ' ' << shown;
      EXPECT_EQ(shown == std::to_string(-1000 - input), i == RowOf(input).start) << i << ' ' << shown;
    }
  }
}

TEST_F(HollinDecode, ShowsScalesWithTheirSign) {
  for (const int scale : {0, 10000, 32767, -1, -32768}) {
    ShowAtStart(kFullScale1, scale);
    EXPECT_EQ(Text(Value(1)), std::to_string(scale));
    ShowAtStart(kStartScale1, scale);
    EXPECT_EQ(Text(Value(0)), std::to_string(scale));
    ShowAtStart(kStartScale1 + 1, scale);
    EXPECT_EQ(Text(Value(6)), std::to_string(scale));
  }
}

TEST_F(HollinDecode, ShowsSettingsAtStartOnly) {
  for (int i = 0; i < kInputs; ++i) {
    Set(kFilter1 + i, 1);
    Set(kFullScale1 + i, 100);
    Set(kStartScale1 + i, 10);
  }
  StartSession();
  for (int i = 0; i < kInputs; ++i) {
    Set(kFilter1 + i, 2);
    Set(kFullScale1 + i, 200);
    Set(kStartScale1 + i, 20);
  }
  Run(std::chrono::seconds(2));
  for (const Row& row : kRows) {
    EXPECT_EQ(Text(Value(row.full)), "100");
    EXPECT_EQ(Text(Value(row.start)), "10");
  }
  for (int i = 0; i < kInputs; ++i) EXPECT_EQ(ListIndex(Filter(i)), 1);
}

// The values, in both roads.

enum class Road { kAtStart, kRepeating };

class HollinValues : public HollinDecode, public testing::WithParamInterface<Road> {
 protected:
  void Show(int number, int value) {
    if (GetParam() == Road::kAtStart) {
      ShowAtStart(number, value);
    } else {
      ShowRepeating(number, value);
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Roads, HollinValues, testing::Values(Road::kAtStart, Road::kRepeating),
                         [](const auto& given) { return given.param == Road::kAtStart ? "AtStart" : "Repeating"; });

TEST_P(HollinValues, AreShownEachInItsOwnLabel) {
  for (int input = 0; input < kInputs; ++input) {
    SCOPED_TRACE(input);
    Show(kScaled1 + input, 500 + input);
    Show(kRaw1 + input, -500 - input);
    for (int i = 0; i < kElements; ++i) {
      const std::string shown = Text(Value(i));
      EXPECT_EQ(shown == std::to_string(500 + input), i == RowOf(input).scaled) << i << ' ' << shown;
      EXPECT_EQ(shown == std::to_string(-500 - input), i == RowOf(input).raw) << i << ' ' << shown;
    }
  }
}

TEST_P(HollinValues, AreShownAsReceivedWithTheirSign) {
  for (const int value : {1, 10001, 32767, -1, -10000, -32768, 0}) {
    for (int input = 0; input < kInputs; ++input) {
      Show(kScaled1 + input, value);
      EXPECT_EQ(Text(Value(RowOf(input).scaled)), std::to_string(value));
      Show(kRaw1 + input, value);
      EXPECT_EQ(Text(Value(RowOf(input).raw)), std::to_string(value));
    }
  }
}

TEST_P(HollinValues, AreShownOfInputsThatAreNotSelectedToo) {
  Set(kFlags, 0x0100);
  Show(kRaw1 + 3, 1234);
  EXPECT_EQ(Text(Value(12)), "1234");
}

// The lamps: which one a bit lights is not the same at Start and later.

struct LampRow {
  int bit;
  int atStart;
  int repeating;
};
constexpr LampRow kLampRows[] = {{8, 1, 1},  {9, 3, 0},  {10, 5, 3}, {11, 7, 2},
                                 {12, 0, 5}, {13, 2, 4}, {14, 4, 7}, {15, 6, 6}};

TEST_F(HollinDecode, LightsTheLampsAtStartInTheirOwnOrder) {
  for (const LampRow& row : kLampRows) {
    ShowAtStart(kStatus, 1 << row.bit);
    EXPECT_THAT(LitLamps(), ElementsAre(row.atStart)) << row.bit;
  }
}

TEST_F(HollinDecode, LightsTheLampsInTheRepeatingPaintByInput) {
  for (const LampRow& row : kLampRows) {
    ShowRepeating(kStatus, 1 << row.bit);
    EXPECT_THAT(LitLamps(), ElementsAre(row.repeating)) << row.bit;
  }
}

TEST_F(HollinDecode, DarkensTheLampWhoseBitIsClear) {
  for (const LampRow& row : kLampRows) {
    SCOPED_TRACE(row.bit);
    ShowAtStart(kStatus, 0xFFFF & ~(1 << row.bit));
    EXPECT_EQ(LitLamps().size(), 7U);
    EXPECT_EQ(BackColor(Own("Overflow", row.atStart)), 64);
    RunThroughADecode();
    EXPECT_EQ(LitLamps().size(), 7U);
    EXPECT_EQ(BackColor(Own("Overflow", row.repeating)), 64);
  }
}

TEST_F(HollinDecode, LightsNoLampByTheLowByte) {
  ShowAtStart(kStatus, 0x00FF);
  EXPECT_THAT(LitLamps(), IsEmpty());
  RunThroughADecode();
  EXPECT_THAT(LitLamps(), IsEmpty());
}

TEST_F(HollinDecode, MovesTheLampOfBit9WithTheFirstTick) {
  ShowAtStart(kStatus, 0x0200);
  EXPECT_THAT(LitLamps(), ElementsAre(3));
  Run(core::milliseconds(200));
  EXPECT_THAT(LitLamps(), ElementsAre(0));
}

// The bars: they follow the raw values.

class HollinBar : public HollinDecode, public testing::WithParamInterface<int> {
 protected:
  void Show(int raw) { ShowRepeating(kRaw1 + GetParam(), raw); }
  int Percent() const { return HollinDecode::Percent(Bar(GetParam())); }
  int FillColor() const { return HollinDecode::FillColor(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Inputs, HollinBar, testing::Range(0, 4));

TEST_P(HollinBar, FollowsItsOwnRawValueAlone) {
  StartSession();
  RunThroughADecode();
  Show(4200);
  for (int i = 0; i < kInputs; ++i) EXPECT_EQ(HollinDecode::Percent(Bar(i)), i == GetParam() ? 42 : 0) << i;
  Set(kScaled1 + GetParam(), 9000);
  RunThroughADecode();
  EXPECT_EQ(Percent(), 42);
}

TEST_P(HollinBar, RoundsAHundredthToTheNearestPercentAndTiesToEven) {
  const std::pair<int, int> rows[] = {{49, 0},      {50, 0},      {51, 1},      {150, 2},    {250, 2},    {251, 3},
                                      {5150, 52},   {9850, 98},   {9949, 99},   {9950, 100}, {9999, 100}, {10000, 100},
                                      {10001, 100}, {12345, 100}, {32767, 100}, {0, 0}};
  for (const auto& [raw, percent] : rows) {
    SCOPED_TRACE(raw);
    Show(raw);
    EXPECT_EQ(Percent(), percent);
    Show(-raw);
    EXPECT_EQ(Percent(), percent);
  }
}

TEST_P(HollinBar, IsRedForNegativeValuesAndBlueForOthers) {
  for (const int raw : {1, 49, 5000, 10001, 32767}) {
    SCOPED_TRACE(raw);
    Show(0);
    Show(-1200);
    EXPECT_EQ(FillColor(), kNegativeColour);
    Show(raw);
    EXPECT_EQ(FillColor(), kPositiveColour);
    Show(-raw - 1);
    EXPECT_EQ(FillColor(), kNegativeColour);
  }
}

TEST_P(HollinBar, IsFullBeyondBothEnds) {
  for (const int raw : {-10000, -10001, -32768}) {
    Show(5000);
    Show(raw);
    EXPECT_EQ(Percent(), 100);
    EXPECT_EQ(FillColor(), kNegativeColour);
  }
  Show(-5000);
  Show(10001);
  EXPECT_EQ(Percent(), 100);
  EXPECT_EQ(FillColor(), kPositiveColour);
}

TEST_P(HollinBar, KeepsItsColourWhereItsPercentIsRightAlready) {
  Show(-40);
  ASSERT_EQ(Percent(), 0);
  ASSERT_EQ(FillColor(), kNegativeColour);
  Show(0);
  EXPECT_EQ(FillColor(), kNegativeColour);
  Show(-5000);
  Show(5000);
  EXPECT_EQ(FillColor(), kNegativeColour);
  Show(5001);
  EXPECT_EQ(Percent(), 50);
  EXPECT_EQ(FillColor(), kPositiveColour);
}

TEST_P(HollinBar, IsLeftToTheRepeatingPaint) {
  Set(kRaw1 + GetParam(), -7700);
  const int before = Percent();
  StartSession();
  EXPECT_EQ(Text(Value(RowOf(GetParam()).raw)), "-7700");
  EXPECT_EQ(Percent(), before);
  RunThroughADecode();
  EXPECT_EQ(Percent(), 77);
}

TEST_F(HollinDecode, KeepsTheLastValuesWhenAPollFails) {
  Set(kRaw1, 4321);
  StartSession();
  RunThroughADecode();
  module.Always(ModuleFault::Exception(4));
  Set(kRaw1, 1);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(Value(3)), "4321");
  EXPECT_EQ(Percent(Bar(0)), 43);
  module.Always(ModuleFault::None());
  RunThroughADecode();
  EXPECT_EQ(Text(Value(3)), "1");
}

// The view before anything was read.

class HollinView : public HollinFixture {};

TEST_F(HollinView, BeginsWithTheLowestValues) {
  for (int i = 0; i < kElements; ++i) EXPECT_EQ(Text(Value(i)), "0") << i;
  for (int i = 0; i < kInputs; ++i) EXPECT_EQ(ListIndex(Filter(i)), 0);
}

TEST_F(HollinView, HasEachElementInOneArrayOnly) {
  for (int i = 0; i < kElements; ++i) {
    EXPECT_EQ(FindControl(Member("ValueGaven", i)) != nullptr, IsScaled(i)) << i;
    EXPECT_EQ(FindControl(Member("ValueHollin", i)) != nullptr, !IsScaled(i)) << i;
  }
}

TEST_F(HollinView, ListsTheFiltersByTheirLevel) {
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_THAT(List(Filter(i)), ElementsAre("0", "1", "2", "3", "4", "5", "6"));
  }
}

TEST_F(HollinView, HasItsTimerWithoutATask) {
  EXPECT_EQ(Interval("TimerControllo"), 250);
  EXPECT_FALSE(Enabled("TimerControllo"));
  StartSession();
  EXPECT_FALSE(Enabled("TimerControllo"));
}

TEST_F(HollinView, NamesItsToolTips) {
  EXPECT_EQ(ToolTip("CheckHollin(0)"), "40003.1 - Speed Up Acquisition");
  EXPECT_EQ(ToolTip("OptionHollin1"), "Scaled Input");
  EXPECT_EQ(ToolTip("OptionHollin2"), "Real Input");
  EXPECT_EQ(ToolTip("CheckHollinBitOrder"), "Reversed Bit Order");
}

}  // namespace
}  // namespace tarvo::test
