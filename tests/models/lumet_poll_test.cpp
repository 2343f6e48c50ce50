// The two-step poll of the Lumet page and what each step shows.

#include <cstdint>

#include "support/lumet_fixture.h"

namespace tarvo::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

class LumetPoll : public LumetFixture {
 protected:
  /// In a session: gives a register this word and waits until it must be shown.
  void Show(int number, int word) {
    if (!InSession()) StartSession();
    Set(number, word);
    RunThroughBothSteps();
  }
  /// A word of its own in each register of both blocks.
  void FillBothBlocks() {
    Set(kStates, 0x02AA);
    for (int i = 0; i < kNarrow; ++i) Set(kCounter1 + i, 1001 + i);
    Set(kTotal9, 9009);
    Set(kTotal9 + 1, 0);
    Set(kTotal10, 9010);
    Set(kTotal10 + 1, 0);
    Set(kOverflows, 0x0155);
    Set(kMeasure1, 7001);
    Set(kMeasure1 + 1, 7002);
  }
  void ExpectBothBlocks() const {
    for (int i = 0; i < kInputs; ++i) {
      EXPECT_EQ(Picture(Stato(i)), i % 2 == 0 ? 1 : 2) << i;
      EXPECT_EQ(BackColor(Overflow(i)), i % 2 == 0 ? 255 : 64) << i;
    }
    EXPECT_THAT(Totals(), ElementsAre("1001", "1002", "1003", "1004", "1005", "1006", "1007", "1008", "9009", "9010"));
    EXPECT_EQ(Text("tbMisura(0)"), "7001");
    EXPECT_EQ(Text("tbMisura(1)"), "7002");
  }
  /// When the property changed, in milliseconds since `since`.
  std::vector<std::int64_t> Times(const History& history, core::TimePoint since) const {
    std::vector<std::int64_t> times;
    for (const History::Entry& entry : history.Entries()) times.push_back(Milliseconds(entry.at) - Milliseconds(since));
    return times;
  }
};

// The steps.

TEST_F(LumetPoll, ReadsItsTwoBlocksInTurnsOf200Milliseconds) {
  StartSession();
  Run(std::chrono::seconds(2));
  const std::vector<std::string> log = module.TakeLog();
  EXPECT_THAT(log, SizeIs(40));
  std::vector<std::pair<std::string, int>> turns;
  for (const std::string& entry : log) {
    if (turns.empty() || turns.back().first != entry) turns.emplace_back(entry, 0);
    ++turns.back().second;
  }
  ASSERT_THAT(turns, SizeIs(AllOf(Ge(10U), Le(11U))));
  for (std::size_t i = 0; i < turns.size(); ++i) {
    EXPECT_EQ(turns[i].first, i % 2 == 0 ? kLumetSecondPoll : kLumetFirstPoll) << i;
    if (i > 0 && i < 9) {
      EXPECT_EQ(turns[i].second, 4) << i;
    }
  }
}

TEST_F(LumetPoll, NamesTheBlockOfThePresentStep) {
  StartSession();
  for (int turn = 0; turn < 6; ++turn) {
    Run(core::milliseconds(turn == 0 ? 100 : 200));
    EXPECT_EQ(State().PollRegister.Number(), turn % 2 == 0 ? 40011 : 40002) << turn;
    EXPECT_EQ(State().PollCount, 9);
  }
}

TEST_F(LumetPoll, ShowsTheTwoBlocksOnEverySecondTurnEach) {
  StartSession();
  const core::TimePoint started = scheduler.Now();
  module.BeforeRead = [this](int first, int /*count*/) {
    if (first == kStates) {
      ++module[kCounter1];
      module[kStates] ^= 0x0001U;
    } else {
      ++module[kTotal9];
    }
  };
  const History total1(At("TotIN(0)"), "Caption");
  const History total9(At("TotIN(8)"), "Caption");
  Run(core::milliseconds(2050));
  EXPECT_THAT(Times(total9, started), ElementsAre(200, 600, 1000, 1400, 1800));
  EXPECT_THAT(Times(total1, started), ElementsAre(400, 800, 1200, 1600, 2000));
}

TEST_F(LumetPoll, LetsTheMarksFollowOnOneTurnAndTheLampsOnTheOther) {
  StartSession();
  const core::TimePoint started = scheduler.Now();
  const History lamp(At("StatoIN(9)"), "Picture");
  const History mark(At("OverFlowIN(9)"), "BackColor");
  Set(kStates, 0x0200);
  Set(kOverflows, 0x0200);
  Run(core::milliseconds(450));
  Set(kStates, 0);
  Set(kOverflows, 0);
  Run(core::milliseconds(400));
  EXPECT_THAT(Times(mark, started), ElementsAre(200, 600));
  EXPECT_THAT(Times(lamp, started), ElementsAre(400, 800));
}

TEST_F(LumetPoll, ShowsEachWordOfBothBlocksInItsPlace) {
  FillBothBlocks();
  StartSession();
  RunThroughBothSteps();
  ExpectBothBlocks();
}

TEST_F(LumetPoll, KeepsAnAnswerForTheStepInWhichItWasAsked) {
  FillBothBlocks();
  // Each answer arrives a turn after its request, in the other step.
  module.TurnRound = core::milliseconds(130);
  Click("StartLumet");
  ASSERT_TRUE(InSession());
  const History total1(At("TotIN(0)"), "Caption");
  const History total9(At("TotIN(8)"), "Caption");
  const History lamp(At("StatoIN(1)"), "Picture");
  const History mark(At("OverFlowIN(0)"), "BackColor");
  Run(std::chrono::seconds(3));
  EXPECT_THAT(total1.Entries(), IsEmpty());
  EXPECT_THAT(lamp.Entries(), IsEmpty());
  EXPECT_THAT(total9.Values<std::string>(), ElementsAre("9009"));
  EXPECT_THAT(mark.Values<std::int64_t>(), ElementsAre(255));
  ExpectBothBlocks();
  EXPECT_EQ(Text("MessageLumet"), "OK");
}

TEST_F(LumetPoll, LeavesTheSharedBufferAlone) {
  for (std::size_t i = 0; i < 20; ++i) SetPolled(i, 0x4000 + static_cast<int>(i));
  FillBothBlocks();
  StartSession();
  Run(std::chrono::seconds(1));
  Click("CheckLumet2");
  RunThroughBothSteps();
  Click("StopLumet");
  for (std::size_t i = 0; i < 20; ++i) EXPECT_EQ(Polled(i), 0x4000 + static_cast<int>(i)) << i;
}

TEST_F(LumetPoll, LooksAtNeitherMeasureSetupNorFilterOfItsSecondBlock) {
  StartSession();
  Set(kMeasureSetup, 0x3723);
  Set(kFilter, 99);
  Run(std::chrono::seconds(2));
  EXPECT_EQ(Text("FilterLumet"), "10");
  for (const char* list : {"cbIngresso(0)", "cbIngresso(1)", "cbTipoMisura(0)", "cbTipoMisura(1)"}) {
    EXPECT_EQ(ListIndex(list), 0) << list;
  }
}

TEST_F(LumetPoll, KeepsWhatItShowedThroughPollsThatFail) {
  FillBothBlocks();
  StartSession();
  RunThroughBothSteps();
  module.Always(ModuleFault::Exception(4));
  FillBothBlocks();
  Set(kStates, 0);
  Set(kTotal9, 0);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageLumet"), kPollFailed);
  ExpectBothBlocks();
  EXPECT_TRUE(NothingInFront());
  module.Always(ModuleFault::None());
  RunThroughBothSteps();
  EXPECT_EQ(Text("MessageLumet"), "OK");
  EXPECT_EQ(Picture("StatoIN(1)"), 1);
  EXPECT_EQ(Text("TotIN(8)"), "0");
}

TEST_F(LumetPoll, ShowsNothingOfTheFirstBlockThatStartCouldNotRead) {
  FillBothBlocks();
  Visit();
  StartUntilRequest(5);
  module.Next(ModuleFault::Exception(2));
  Set(kCounter1, 5);
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_EQ(Text("TotIN(0)"), "1001") << "of the session before";
  RunThroughBothSteps();
  EXPECT_EQ(Text("TotIN(0)"), "5");
}

// The first step.

TEST_F(LumetPoll, ShowsEachInputBitInItsOwnPicture) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kStates, 1 << bit);
    for (int i = 0; i < kInputs; ++i) EXPECT_EQ(Picture(Stato(i)), i == bit ? 2 : 1) << i;
  }
}

TEST_F(LumetPoll, DarkensEachInputWhoseBitIsClear) {
  for (int bit = 0; bit < kInputs; ++bit) {
    SCOPED_TRACE(bit);
    Show(kStates, 0xFFFF & ~(1 << bit));
    for (int i = 0; i < kInputs; ++i) EXPECT_EQ(Picture(Stato(i)), i == bit ? 1 : 2) << i;
  }
}

TEST_F(LumetPoll, ShowsEachCounterOf16BitsInItsOwnRow) {
  for (int counter = 0; counter < kNarrow; ++counter) {
    SCOPED_TRACE(counter);
    Show(kCounter1 + counter, 6554 * (counter + 2));
    for (int i = 0; i < kInputs; ++i) {
      const bool counted = i <= counter;
      EXPECT_EQ(Text(Total(i)), counted ? std::to_string(6554 * (i + 2)) : "0") << i;
      EXPECT_EQ(Percent(Bar(i)), counted ? 10 * (i + 2) : 0) << i;
    }
  }
}

struct Share {
  int total;
  int percent;
};
constexpr Share kShares[] = {{0, 0},      {1, 0},      {327, 0},     {328, 1},     {655, 1},
                             {983, 1},    {984, 2},    {32767, 50},  {32768, 50},  {33095, 50},
                             {33096, 51}, {65207, 99}, {65208, 100}, {65534, 100}, {65535, 100}};

TEST_F(LumetPoll, RoundsTheShareOf65535ToTheNearestPercent) {
  for (const Share& share : kShares) {
    SCOPED_TRACE(share.total);
    Show(kCounter1 + 7, share.total);
    EXPECT_EQ(Text("TotIN(7)"), std::to_string(share.total));
    EXPECT_EQ(Percent("BargLumet8"), share.percent);
  }
}

// The second step.

TEST_F(LumetPoll, LightsEachOverflowMarkByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(kOverflows, 1 << bit);
    for (int i = 0; i < kInputs; ++i) EXPECT_EQ(BackColor(Overflow(i)), i == bit ? 255 : 64) << i;
  }
}

TEST_F(LumetPoll, DarkensEachOverflowMarkWhoseBitIsClear) {
  for (int bit = 0; bit < kInputs; ++bit) {
    SCOPED_TRACE(bit);
    Show(kOverflows, 0xFFFF & ~(1 << bit));
    for (int i = 0; i < kInputs; ++i) EXPECT_EQ(BackColor(Overflow(i)), i == bit ? 64 : 255) << i;
  }
}

TEST_F(LumetPoll, ShowsTheMeasuresWithoutASign) {
  for (const int value : {0, 1, 32767, 32768, 65535}) {
    Show(kMeasure1, value);
    EXPECT_EQ(Text("tbMisura(0)"), std::to_string(value));
    Show(kMeasure1 + 1, value);
    EXPECT_EQ(Text("tbMisura(1)"), std::to_string(value));
    Show(kMeasure1, 7);
    EXPECT_EQ(Text("tbMisura(1)"), std::to_string(value));
  }
}

struct WideTotal {
  int high;
  int low;
  const char* text;
};
/// Bit 15 of the high word lands in bit 15 of what the low word is added to.
constexpr WideTotal kWideTotals[] = {
    {0x0000, 0x0000, "0"},          {0x0000, 0x0001, "1"},        {0x0000, 0x8000, "32768"},
    {0x0000, 0xFFFF, "65535"},      {0x0001, 0x0000, "65536"},    {0x0001, 0x0002, "65538"},
    {0x0123, 0x4567, "19088743"},   {0x0147, 0xAE14, "21474836"}, {0x0147, 0xAE15, "21474837"},
    {0x7FFF, 0xFFFF, "2147483647"}, {0x8000, 0x0000, "32768"},    {0x8000, 0x0007, "32775"},
    {0x8000, 0x9000, "69632"},      {0x8001, 0x0001, "98305"},    {0xFFFF, 0x0000, "2147450880"},
    {0xFFFF, 0x7FFF, "2147483647"}};

TEST_F(LumetPoll, BuildsTheTotalsOfInputs9And10FromTwoWords) {
  for (const WideTotal& row : kWideTotals) {
    SCOPED_TRACE(row.text);
    Set(kTotal9 + 1, row.high);
    Show(kTotal9, row.low);
    EXPECT_EQ(Text("TotIN(8)"), row.text);
    EXPECT_EQ(Text("TotIN(9)"), "0");
    Set(kTotal9, 0);
    Set(kTotal9 + 1, 0);
    Set(kTotal10 + 1, row.high);
    Show(kTotal10, row.low);
    EXPECT_EQ(Text("TotIN(9)"), row.text);
    EXPECT_EQ(Text("TotIN(8)"), "0");
    Set(kTotal10, 0);
    Set(kTotal10 + 1, 0);
    EXPECT_TRUE(NothingInFront());
  }
}

TEST_F(LumetPoll, GivesInputs9And10BarsOfTheSameScale) {
  for (int input = 8; input < kInputs; ++input) {
    const int low = input == 8 ? kTotal9 : kTotal10;
    for (const Share& share : kShares) {
      SCOPED_TRACE(share.total);
      Show(low, share.total);
      EXPECT_EQ(Percent(Bar(input)), share.percent);
      EXPECT_EQ(Percent(Bar(17 - input)), 0) << "of the other one";
    }
    Show(low, 0);
  }
}

TEST_F(LumetPoll, BuildsABarFromTheSameTotalThatItShows) {
  Set(kTotal9 + 1, 0x8000);
  Show(kTotal9, 0);
  EXPECT_EQ(Percent("BargLumet9"), 50);
}

TEST_F(LumetPoll, LeavesABarAsItIsAboveAHundredPercent) {
  for (int input = 8; input < kInputs; ++input) {
    const int low = input == 8 ? kTotal9 : kTotal10;
    Show(low, 16384);
    ASSERT_EQ(Percent(Bar(input)), 25);
    for (const int total : {65863, 70000, 1 << 24, 21'474'836, 21'474'837, 43'000'000, 2'147'483'647}) {
      SCOPED_TRACE(total);
      Set(low + 1, total >> 16);
      Show(low, total & 0xFFFF);
      EXPECT_EQ(Text(Total(input)), std::to_string(total));
      EXPECT_EQ(Percent(Bar(input)), 25);
      EXPECT_TRUE(NothingInFront());
    }
    Set(low + 1, 0);
    Show(low, 6554);
    EXPECT_EQ(Percent(Bar(input)), 10);
  }
}

TEST_F(LumetPoll, ShowsAllBehindATotalThatNoBarHolds) {
  Set(kTotal9 + 1, 0x7FFF);
  Set(kTotal10, 32768);
  Set(kMeasure1, 11);
  Set(kMeasure1 + 1, 12);
  StartSession();
  RunThroughBothSteps();
  EXPECT_EQ(Text("TotIN(9)"), "32768");
  EXPECT_EQ(Percent("BargLumet10"), 50);
  EXPECT_EQ(Text("tbMisura(0)"), "11");
  EXPECT_EQ(Text("tbMisura(1)"), "12");
  const int before = State().PollRegister.Number();
  Run(core::milliseconds(200));
  EXPECT_NE(State().PollRegister.Number(), before) << "the steps go on";
}

}  // namespace
}  // namespace tarvo::test
