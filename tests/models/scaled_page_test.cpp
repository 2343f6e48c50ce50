// What the pages of inputs with a raw and a scaled value have alike: what they show of them, what the user edits, what
// they read without a session and what a commit writes.

#include <tuple>

#include "support/input_page_fixture.h"
#include "support/scaled_inputs.h"

namespace tarvo::test {
namespace {

using testing::Combine;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Range;
using testing::Values;
using testing::ValuesIn;

struct ScaledPage : InputPage {
  int flags;  ///< some of those that the page shows and stores
};

constexpr ScaledPage kPages[] = {{kGaven, 0x0012}, {kHollin, 0x7102}};

class ScaledPageFixture : public InputPageFixture, protected ScaledInputs {
 protected:
  explicit ScaledPageFixture(const InputPage& page) : InputPageFixture(page) {}

  /// The label that shows an element, in whichever array it stands.
  std::string Value(int element) const {
    return IsScaled(element) ? Member("ValueGaven", element) : Own("Value", element);
  }
  std::string Filter(int input) const { return Own("Filter", input); }

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
  void Edit(int element, const char* text) {
    Click(Value(element));
    AnswerChangeValue(text);
  }
};

class ScaledPageTest : public ScaledPageFixture, public testing::WithParamInterface<ScaledPage> {
 protected:
  ScaledPageTest() : ScaledPageFixture(GetParam()) {}
};

std::string NameOf(const testing::TestParamInfo<ScaledPage>& given) {
  return given.param.model;
}

/// One of the page's inputs or elements.
class ScaledPlaceTest : public ScaledPageFixture, public testing::WithParamInterface<std::tuple<ScaledPage, int>> {
 protected:
  ScaledPlaceTest() : ScaledPageFixture(std::get<0>(GetParam())) {}

  static int Place() { return std::get<1>(GetParam()); }
};

std::string PlaceOf(const testing::TestParamInfo<std::tuple<ScaledPage, int>>& given) {
  return std::string(std::get<0>(given.param).model) + std::to_string(std::get<1>(given.param));
}

// The first block, at Start.

class ScaledFirstBlock : public ScaledPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, ScaledFirstBlock, ValuesIn(kPages), NameOf);

TEST_P(ScaledFirstBlock, SelectsEachFilterByItsRegister) {
  for (int input = 0; input < kInputs; ++input) {
    for (int level = 6; level >= 0; --level) {
      SCOPED_TRACE(level);
      ShowAtStart(kFilter1 + input, level);
      for (int i = 0; i < kInputs; ++i) {
        EXPECT_EQ(ListIndex(Filter(i)), i == input ? level : 0) << i;
        EXPECT_EQ(Text(Filter(i)), std::to_string(i == input ? level : 0)) << i;
      }
    }
  }
}

TEST_P(ScaledFirstBlock, BearsAFilterThatNoListHas) {
  Set(kFilter1 + 3, 5);
  for (const int level : {7, 255, 0x8000, 0xFFFF}) {
    ShowAtStart(kFilter1, level);
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(Text(Filter(0)), "");
    EXPECT_EQ(ListIndex(Filter(3)), 5);
  }
}

TEST_P(ScaledFirstBlock, ShowsEachScaleInItsOwnLabel) {
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

TEST_P(ScaledFirstBlock, ShowsScalesWithTheirSign) {
  for (const int scale : {0, 1, 10000, 32767, -1, -10000, -32768}) {
    ShowAtStart(kFullScale1, scale);
    EXPECT_EQ(Text(Value(1)), std::to_string(scale));
    ShowAtStart(kStartScale1, scale);
    EXPECT_EQ(Text(Value(0)), std::to_string(scale));
    ShowAtStart(kStartScale1 + 1, scale);
    EXPECT_EQ(Text(Value(6)), std::to_string(scale));
  }
}

TEST_P(ScaledFirstBlock, IsTheOnlyOneToShowFiltersAndScales) {
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

class ScaledValues : public ScaledPageFixture, public testing::WithParamInterface<std::tuple<ScaledPage, Road>> {
 protected:
  ScaledValues() : ScaledPageFixture(std::get<0>(GetParam())) {}

  void Show(int number, int value) {
    if (std::get<1>(GetParam()) == Road::kAtStart) {
      ShowAtStart(number, value);
    } else {
      ShowRepeating(number, value);
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Roads, ScaledValues, Combine(ValuesIn(kPages), Values(Road::kAtStart, Road::kRepeating)),
                         [](const auto& given) {
                           const bool atStart = std::get<1>(given.param) == Road::kAtStart;
                           return std::string(std::get<0>(given.param).model) + (atStart ? "AtStart" : "Repeating");
                         });

TEST_P(ScaledValues, AreShownEachInItsOwnLabel) {
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

TEST_P(ScaledValues, AreShownAsReceivedWithTheirSign) {
  for (const int value : {1, 10000, 10001, 32767, -1, -10000, -32768, 0}) {
    for (int input = 0; input < kInputs; ++input) {
      Show(kScaled1 + input, value);
      EXPECT_EQ(Text(Value(RowOf(input).scaled)), std::to_string(value));
      Show(kRaw1 + input, value);
      EXPECT_EQ(Text(Value(RowOf(input).raw)), std::to_string(value));
    }
  }
}

// The lamps: which one a bit lights is not the same at Start and later.

struct LampRow {
  int bit;
  int atStart;
  int repeating;
};
constexpr LampRow kLampRows[] = {{8, 1, 1},  {9, 3, 0},  {10, 5, 3}, {11, 7, 2},
                                 {12, 0, 5}, {13, 2, 4}, {14, 4, 7}, {15, 6, 6}};

class ScaledLamps : public ScaledPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, ScaledLamps, ValuesIn(kPages), NameOf);

TEST_P(ScaledLamps, AreLitAtStartInTheirOwnOrder) {
  for (const LampRow& row : kLampRows) {
    ShowAtStart(kStatus, 1 << row.bit);
    EXPECT_THAT(LitLamps(), ElementsAre(row.atStart)) << row.bit;
  }
}

TEST_P(ScaledLamps, AreLitInTheRepeatingPaintByInput) {
  for (const LampRow& row : kLampRows) {
    ShowRepeating(kStatus, 1 << row.bit);
    EXPECT_THAT(LitLamps(), ElementsAre(row.repeating)) << row.bit;
  }
}

TEST_P(ScaledLamps, AreDarkWhereTheirBitIsClear) {
  for (const LampRow& row : kLampRows) {
    SCOPED_TRACE(row.bit);
    ShowAtStart(kStatus, 0xFFFF & ~(1 << row.bit));
    EXPECT_EQ(LitLamps().size(), 7U);
    EXPECT_EQ(BackColor(Lamp(row.atStart)), 64);
    RunThroughADecode();
    EXPECT_EQ(LitLamps().size(), 7U);
    EXPECT_EQ(BackColor(Lamp(row.repeating)), 64);
  }
}

TEST_P(ScaledLamps, DoNotFollowTheLowByte) {
  ShowAtStart(kStatus, 0x00FF);
  EXPECT_THAT(LitLamps(), IsEmpty());
  RunThroughADecode();
  EXPECT_THAT(LitLamps(), IsEmpty());
}

TEST_P(ScaledLamps, ChangeThatOfBit9WithTheFirstTick) {
  ShowAtStart(kStatus, 0x0200);
  EXPECT_THAT(LitLamps(), ElementsAre(3));
  Run(core::milliseconds(200));
  EXPECT_THAT(LitLamps(), ElementsAre(0));
}

// The bars: they follow the raw values.

class ScaledBar : public ScaledPlaceTest {
 protected:
  void Show(int raw) { ShowRepeating(kRaw1 + Place(), raw); }
  int Percent() const { return ScaledPlaceTest::Percent(Bar(Place())); }
  int FillColor() const { return ScaledPlaceTest::FillColor(Place()); }
};

INSTANTIATE_TEST_SUITE_P(Inputs, ScaledBar, Combine(ValuesIn(kPages), Range(0, 4)), PlaceOf);

TEST_P(ScaledBar, FollowsItsOwnRawValueAlone) {
  StartSession();
  RunThroughADecode();
  Show(4200);
  for (int i = 0; i < kInputs; ++i) EXPECT_EQ(ScaledPlaceTest::Percent(Bar(i)), i == Place() ? 42 : 0) << i;
  Set(kScaled1 + Place(), 9000);
  RunThroughADecode();
  EXPECT_EQ(Percent(), 42);
}

TEST_P(ScaledBar, RoundsAHundredthToTheNearestPercentAndTiesToEven) {
  const std::pair<int, int> rows[] = {{49, 0},      {50, 0},      {51, 1},      {149, 1},     {150, 2},
                                      {250, 2},     {251, 3},     {4950, 50},   {5050, 50},   {5150, 52},
                                      {9849, 98},   {9850, 98},   {9950, 100},  {9949, 99},   {9999, 100},
                                      {10000, 100}, {10001, 100}, {12345, 100}, {32767, 100}, {0, 0}};
  for (const auto& [raw, percent] : rows) {
    SCOPED_TRACE(raw);
    Show(raw);
    EXPECT_EQ(Percent(), percent);
    Show(-raw);
    EXPECT_EQ(Percent(), percent);
  }
}

TEST_P(ScaledBar, IsRedForNegativeValuesAndBlueForOthers) {
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

TEST_P(ScaledBar, IsFullAndRedAtTheNegativeEnd) {
  for (const int raw : {-10000, -10001, -32768}) {
    Show(5000);
    Show(raw);
    EXPECT_EQ(Percent(), 100);
    EXPECT_EQ(FillColor(), kNegativeColour);
  }
}

TEST_P(ScaledBar, IsFullAndBlueAboveThePositiveEnd) {
  Show(-5000);
  Show(10001);
  EXPECT_EQ(Percent(), 100);
  EXPECT_EQ(FillColor(), kPositiveColour);
}

TEST_P(ScaledBar, KeepsItsColourWhereItsPercentIsRightAlready) {
  Show(-40);
  ASSERT_EQ(Percent(), 0);
  ASSERT_EQ(FillColor(), kNegativeColour);
  Show(0);
  EXPECT_EQ(FillColor(), kNegativeColour);
  Show(-5000);
  Show(5000);
  EXPECT_EQ(Percent(), 50);
  EXPECT_EQ(FillColor(), kNegativeColour);
  Show(10001);
  Show(-10000);
  EXPECT_EQ(Percent(), 100);
  EXPECT_EQ(FillColor(), kPositiveColour);
}

TEST_P(ScaledBar, ComparesBeforeItRounds) {
  Show(-5000);
  Show(5000);
  ASSERT_EQ(FillColor(), kNegativeColour);
  Show(5001);
  EXPECT_EQ(Percent(), 50);
  EXPECT_EQ(FillColor(), kPositiveColour);
  Show(-10000);
  Show(10001);
  EXPECT_EQ(FillColor(), kPositiveColour);
}

TEST_P(ScaledBar, IsLeftToTheRepeatingPaint) {
  Set(kRaw1 + Place(), -7700);
  const int before = Percent();
  StartSession();
  EXPECT_EQ(Text(Value(RowOf(Place()).raw)), "-7700");
  EXPECT_EQ(Percent(), before);
  RunThroughADecode();
  EXPECT_EQ(Percent(), 77);
}

// A block that did not come.

class ScaledPoll : public ScaledPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, ScaledPoll, ValuesIn(kPages), NameOf);

TEST_P(ScaledPoll, KeepsTheLastValuesWhenItFails) {
  Set(kRaw1, 4321);
  StartSession();
  RunThroughADecode();
  module.Always(ModuleFault::Exception(4));
  Set(kRaw1, 1);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(Own("Message")), kPollFailed);
  EXPECT_EQ(Text(Value(3)), "4321");
  EXPECT_EQ(Percent(Bar(0)), 43);
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(NothingInFront());
  module.Always(ModuleFault::None());
  RunThroughADecode();
  EXPECT_EQ(Text(Own("Message")), "OK");
  EXPECT_EQ(Text(Value(3)), "1");
}

// The view before anything was read.

class ScaledView : public ScaledPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, ScaledView, ValuesIn(kPages), NameOf);

TEST_P(ScaledView, BeginsWithTheLowestValues) {
  for (int i = 0; i < kElements; ++i) EXPECT_EQ(Text(Value(i)), "0") << i;
  for (int i = 0; i < kInputs; ++i) EXPECT_EQ(ListIndex(Filter(i)), 0);
  EXPECT_THAT(LitLamps(), IsEmpty());
}

TEST_P(ScaledView, ListsTheFiltersByTheirLevel) {
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_THAT(List(Filter(i)), ElementsAre("0", "1", "2", "3", "4", "5", "6"));
  }
}

/// A start or full scale, by its element.
class Scale : public ScaledPlaceTest {
 protected:
  std::string Label() const { return Value(Place()); }
};

INSTANTIATE_TEST_SUITE_P(Elements, Scale, Combine(ValuesIn(kPages), Values(0, 1, 6, 7, 10, 11, 14, 15)), PlaceOf);

TEST_P(Scale, HasItsBounds) {
  Click(Label());
  ASSERT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(Text("MinValue"), "Min Value :-10000");
  EXPECT_EQ(Text("MaxValue"), "Max Value :10000");
  AnswerChangeValue("10001");
  EXPECT_EQ(Text("Text1"), "10000");
  AnswerChangeValue("-10001");
  EXPECT_EQ(Text("Text1"), "-10000");
  Click("ChangeValue.OK");
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text(Label()), "-10000");
}

TEST_P(Scale, IsEditedOnThePageAlone) {
  Edit(Place(), "-123");
  for (int i = 0; i < kElements; ++i) EXPECT_EQ(Text(Value(i)), i == Place() ? "-123" : "0") << i;
  ExpectNothingOnTheLine();
}

TEST_P(Scale, IsLeftAsItIsWhenTheDialogIsCancelled) {
  Click(Label());
  Type("ChangeValue.Text1", "99");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text(Label()), "0");
}

TEST_P(Scale, KeepsTheTextAsTyped) {
  Edit(Place(), "12.4");
  EXPECT_EQ(Text(Label()), "12.4");
}

/// What is measured, by its element.
class Measured : public ScaledPlaceTest {};

INSTANTIATE_TEST_SUITE_P(Elements, Measured, Combine(ValuesIn(kPages), Values(2, 3, 4, 5, 8, 9, 12, 13)), PlaceOf);

TEST_P(Measured, IsNotEdited) {
  for (const bool session : {false, true}) {
    if (session) StartSession();
    program.GetScreen().Click(At(Value(Place())));
    Run(std::chrono::seconds(1));
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(Text(Value(Place())), "0");
    EXPECT_THAT(Exchanges(), IsEmpty());
  }
}

// What the page reads of its module when no session runs.

class ScaledReadEEPromFlags : public ScaledPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, ScaledReadEEPromFlags, ValuesIn(kPages), NameOf);

TEST_P(ScaledReadEEPromFlags, ShowsFiltersAndScalesButNoValues) {
  for (int i = 0; i < kInputs; ++i) {
    Set(kFilter1 + i, i + 1);
    Set(kFullScale1 + i, 100 * (i + 1));
    Set(kStartScale1 + i, -100 * (i + 1));
    Set(kScaled1 + i, 66);
    Set(kRaw1 + i, 77);
  }
  ReadEEPromFlags();
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_EQ(ListIndex(Filter(i)), i + 1);
    EXPECT_EQ(Text(Value(RowOf(i).full)), std::to_string(100 * (i + 1)));
    EXPECT_EQ(Text(Value(RowOf(i).start)), std::to_string(-100 * (i + 1)));
    EXPECT_EQ(Text(Value(RowOf(i).scaled)), "0");
    EXPECT_EQ(Text(Value(RowOf(i).raw)), "0");
  }
}

TEST_P(ScaledReadEEPromFlags, BeginsNoSessionAndClosesItsPort) {
  ReadEEPromFlags();
  EXPECT_EQ(line.Opens(), 1);
  ExpectOffline();
}

TEST_P(ScaledReadEEPromFlags, StopsAtAnotherModelWithoutAMessage) {
  const int sister = GetParam().code == kGaven.code ? kHollin.code : kGaven.code;
  Set(kIdentity, sister << 8 | 2);
  Set(kFilter1, 5);
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  EXPECT_EQ(ListIndex(Filter(0)), 0);
  ExpectOffline();
}

TEST_P(ScaledReadEEPromFlags, KeepsWhatItShowedOfARegisterThatIsNotRead) {
  Set(kFilter1, 3);
  Set(kFullScale1, 50);
  Set(kStartScale1, -50);
  ReadEEPromFlags();
  const std::size_t reads = module.TakeLog().size();
  module.Next(ModuleFault::None());
  for (std::size_t i = 1; i < reads; ++i) module.Next(ModuleFault::Exception(2));
  ReadEEPromFlags();
  EXPECT_EQ(ListIndex(Filter(0)), 3);
  EXPECT_EQ(Text(Value(1)), "50");
  EXPECT_EQ(Text(Value(0)), "-50");
  EXPECT_TRUE(NothingInFront());
}

TEST_P(ScaledReadEEPromFlags, LetsACommitStoreTheModulesOwnSettings) {
  Set(kFlags, GetParam().flags);
  Set(kFilter1 + 3, 4);
  Set(kStartScale1, -7);
  ReadEEPromFlags();
  Commit();
  EXPECT_EQ(module[40067], GetParam().flags);
  EXPECT_EQ(module[40071], 4);
  EXPECT_EQ(module[40076], 0xFFF9);
}

// Write EEprom.

class ScaledCommit : public ScaledPageTest {
 protected:
  /// The last word that a commit writes to a register.
  int Committed(int number) {
    Commit();
    return module[number];
  }
};

INSTANTIATE_TEST_SUITE_P(Pages, ScaledCommit, ValuesIn(kPages), NameOf);

struct ImageCase {
  int element;
  int image;
};
constexpr ImageCase kScaleImages[] = {{1, 40072}, {7, 40073}, {11, 40074}, {15, 40075},
                                      {0, 40076}, {6, 40077}, {10, 40078}, {14, 40079}};

TEST_P(ScaledCommit, WritesEachScaleToItsOwnImage) {
  for (const ImageCase& row : kScaleImages) {
    SCOPED_TRACE(row.element);
    Edit(row.element, "4660");
    const std::vector<std::string> written = Commit();
    for (const ImageCase& other : kScaleImages) {
      EXPECT_THAT(written, Contains(Writing(other.image, other.image == row.image ? 4660 : 0)));
    }
    Edit(row.element, "0");
  }
}

TEST_P(ScaledCommit, WritesANegativeScaleWith65536Added) {
  const std::pair<const char*, int> rows[] = {{"-1", 65535}, {"-10000", 55536}, {"10000", 10000}, {"-0", 0}, {"+7", 7}};
  for (const auto& [text, word] : rows) {
    Edit(0, text);
    EXPECT_EQ(Committed(40076), word) << text;
  }
}

TEST_P(ScaledCommit, RoundsADecimalTextWithTiesToEven) {
  const std::pair<const char*, int> rows[] = {{"12.4", 12}, {"12.5", 12}, {"13.5", 14},     {"13,5", 14},
                                              {"1,5", 2},   {"0.5", 0},   {"-1.5", 0xFFFE}, {"-2,5", 0xFFFE}};
  for (const auto& [text, word] : rows) {
    Edit(7, text);
    EXPECT_EQ(Committed(40073), word) << text;
  }
}

TEST_P(ScaledCommit, WritesEachFilterToItsOwnImage) {
  for (int i = 0; i < kInputs; ++i) {
    for (const int level : {6, 1, 0}) {
      Choose(Filter(i), level);
      const std::vector<std::string> written = Commit();
      for (int j = 0; j < kInputs; ++j) {
        EXPECT_THAT(written, Contains(Writing(40068 + j, j == i ? level : 0))) << i << ' ' << j;
      }
    }
  }
}

}  // namespace
}  // namespace tarvo::test
