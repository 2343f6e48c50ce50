#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::ElementsAre;

constexpr int kType1 = 40004;
constexpr int kFilter1 = 40008;
constexpr int kStatus = 40012;
constexpr int kValue1 = 40013;
constexpr int kZero1 = 40021;
constexpr int kSpan1 = 40025;
constexpr int kStoredZero1 = 40085;
constexpr int kStoredSpan1 = 40089;
constexpr int kInputs = 4;

constexpr int kSpeedUp = 0x02;
constexpr int kDelay = 0x04;
constexpr int kParity = 0x08;
constexpr int kOdd = 0x10;

class PlayedJorun : public PlayedModule {
 public:
  explicit PlayedJorun(const ModuleOptions& options) : PlayedModule("jorun", options) {}

  int Signed(int reg) { return static_cast<std::int16_t>(Read(reg)); }
  int Value(int input) { return Signed(kValue1 + input); }
  /// The signal at an input, as the world outside gives it.
  void Feed(int input, int signal) { Set(kValue1 + input, static_cast<unsigned>(signal)); }
};

// Registers row by row.

TEST(SimulatedJorun, TellsItsModelAndFirmwareInTheIdentity) {
  ModuleOptions options = StillWith({});
  options.firmware = 2;
  EXPECT_EQ(PlayedJorun(options).Read(40001), 0x0602);
}

TEST(SimulatedJorun, ShowsAddressAndBaudCodeInTheCommunicationWord) {
  ModuleOptions options = StillWith({});
  options.setting = {255, LineOf("2400,o,8,1")};
  PlayedJorun jorun(options);
  EXPECT_EQ(jorun.Read(40002), 0x07FF);
  EXPECT_EQ(jorun.Read(40066), 0x07FF);
  EXPECT_EQ(jorun.Read(40003), kParity | kOdd);
}

TEST(SimulatedJorun, StartsWithAGainOfOneOnEveryInput) {
  PlayedJorun jorun(StillWith({}));
  EXPECT_THAT(jorun.ReadAll(kZero1, kZero1 + 3), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(jorun.ReadAll(kSpan1, kSpan1 + 3), ElementsAre(10000, 10000, 10000, 10000));
}

TEST(SimulatedJorun, HasTheImageOfEachSetting64Above) {
  std::vector<std::pair<int, unsigned>> presets = {{40003, kSpeedUp}};
  for (int i = 0; i < kInputs; ++i) {
    presets.emplace_back(kType1 + i, 5 + i);
    presets.emplace_back(kFilter1 + i, 3 + i);
    presets.emplace_back(kZero1 + i, 100 + i);
    presets.emplace_back(kSpan1 + i, 9000 + i);
  }
  PlayedJorun jorun(StillWith(presets));
  EXPECT_THAT(jorun.ReadAll(40066, 40075), ElementsAre(0x0101, kSpeedUp, 5, 6, 7, 8, 3, 4, 5, 6));
  EXPECT_THAT(jorun.ReadAll(40085, 40092), ElementsAre(100, 101, 102, 103, 9000, 9001, 9002, 9003));
}

TEST(SimulatedJorun, HasNoRegistersBetweenItsBlocks) {
  PlayedJorun jorun(StillWith({}));
  for (const int reg : {40017, 40020, 40029, 40065, 40076, 40084, 40093}) {
    EXPECT_EQ(jorun.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(jorun.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedJorun, RefusesWritesToWhatItMeasuresAndToItsIdentity) {
  PlayedJorun jorun(StillWith({{kValue1, 7}}));
  for (const int reg : {40001, 40013, 40014, 40015, 40016}) {
    EXPECT_EQ(jorun.Execute(test::WriteRequest(1, reg, 5)), test::ExceptionReply(1, 6, 2)) << reg;
  }
  EXPECT_EQ(jorun.Read(kValue1), 7);
}

TEST(SimulatedJorun, TakesATypeOfItsTableOnly) {
  PlayedJorun jorun(StillWith({}));
  for (int input = 0; input < kInputs; ++input) {
    for (const int type : {0, 8}) {
      EXPECT_TRUE(jorun.Write(kType1 + input, type));
      EXPECT_EQ(jorun.Read(kType1 + input), type);
    }
    for (const int type : {9, 65535}) {
      EXPECT_EQ(jorun.Execute(test::WriteRequest(1, kType1 + input, type)), test::ExceptionReply(1, 6, 3)) << type;
    }
  }
}

TEST(SimulatedJorun, TakesAFilterUpTo6) {
  PlayedJorun jorun(StillWith({}));
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_TRUE(jorun.Write(kFilter1 + input, 6));
    EXPECT_EQ(jorun.Execute(test::WriteRequest(1, kFilter1 + input, 7)), test::ExceptionReply(1, 6, 3));
    EXPECT_EQ(jorun.Read(kFilter1 + input), 6);
  }
}

TEST(SimulatedJorun, AnswersLaterWithTheDelayFlag) {
  PlayedJorun jorun(StillWith({}));
  EXPECT_EQ(jorun.GetModule().ReplyDelay(), milliseconds(0));
  jorun.Write(40003, kDelay);
  EXPECT_EQ(jorun.GetModule().ReplyDelay(), milliseconds(12));
}

// Span and zero.

struct Correction {
  int signal;
  int span;
  int zero;
  int shown;
};

TEST(SimulatedJorun, CorrectsWhatItMeasuresBySpanAndZero) {
  const Correction rows[] = {
      {1000, 10000, 0, 1000},         {1000, 11000, 0, 1100},   {9000, 11000, 0, 9900}, {1000, 10000, -50, 950},
      {-1000, 12000, 7, -1193},       {0, 8000, -1000, -1000},  {9999, 8000, 0, 7999},  {32000, 12000, 1000, 32767},
      {-32000, 12000, -1000, -32768}, {-2005, 10000, 0, -2005}, {5, 9000, 0, 5},        {4, 11000, 0, 4},
      {1000, 0xFFFF, 100, 100}};
  for (int input = 0; input < kInputs; ++input) {
    PlayedJorun jorun(StillWith({}));
    for (const Correction& row : rows) {
      jorun.Feed(input, row.signal);
      EXPECT_TRUE(jorun.Write(kSpan1 + input, row.span));
      EXPECT_TRUE(jorun.Write(kZero1 + input, row.zero & 0xFFFF));
      EXPECT_EQ(jorun.Value(input), row.shown) << row.signal << ' ' << row.span << ' ' << row.zero;
    }
  }
}

TEST(SimulatedJorun, CorrectsEachInputByItsOwnSpanAndZero) {
  PlayedJorun jorun(StillWith({{kValue1, 1000}, {kValue1 + 1, 1000}, {kValue1 + 2, 1000}, {kValue1 + 3, 1000}}));
  for (int input = 0; input < kInputs; ++input) {
    jorun.Write(kSpan1 + input, 9000 + 1000 * input);
    jorun.Write(kZero1 + input, input);
  }
  EXPECT_THAT(jorun.ReadAll(kValue1, kValue1 + 3), ElementsAre(900, 1001, 1102, 1203));
}

TEST(SimulatedJorun, BringsTwoPointsToTheWantedValues) {
  PlayedJorun jorun(StillWith({}));
  // From 200 and 8200, 250 and 8450 are wanted: 250 = m * 0.02 + q, 8450 = m * 0.82 + q.
  jorun.Write(kSpan1 + 2, 10250);
  jorun.Write(kZero1 + 2, 45);
  jorun.Feed(2, 200);
  EXPECT_EQ(jorun.Value(2), 250);
  jorun.Feed(2, 8200);
  EXPECT_EQ(jorun.Value(2), 8450);
}

TEST(SimulatedJorun, ForgetsAtResetACorrectionThatIsNotStored) {
  PlayedJorun jorun(StillWith({{kValue1, 1000}, {kValue1 + 1, 1000}}));
  jorun.Write(kZero1, 5);
  jorun.Write(kSpan1, 11000);
  jorun.Write(kZero1 + 1, 5);
  jorun.Write(kSpan1 + 1, 11000);
  jorun.Write(kStoredZero1 + 1, 6);
  jorun.Write(kStoredSpan1 + 1, 12000);
  EXPECT_THAT(jorun.ReadAll(kValue1, kValue1 + 1), ElementsAre(1105, 1105));
  jorun.Reset();
  EXPECT_THAT(jorun.ReadAll(kValue1, kValue1 + 1), ElementsAre(1000, 1206));
  EXPECT_THAT(jorun.ReadAll(kZero1, kZero1 + 1), ElementsAre(0, 6));
  EXPECT_THAT(jorun.ReadAll(kSpan1, kSpan1 + 1), ElementsAre(10000, 12000));
}

// Over-range and burn-out.

struct RangeRow {
  int type;
  int low;
  int high;
};

TEST(SimulatedJorun, TellsAnOverRangeByTheRangeOfTheType) {
  const RangeRow rows[] = {{0, -16000, 16000}, {1, -2000, 10000}, {2, -2500, 12000}, {3, 0, 17500},    {4, 0, 17500},
                           {5, -2000, 4000},   {6, 0, 18000},     {7, -2000, 8000},  {8, -2000, 13000}};
  for (const RangeRow& row : rows) {
    SCOPED_TRACE(row.type);
    for (int input = 0; input < kInputs; ++input) {
      PlayedJorun jorun(StillWith({}));
      const int overRange = 0x100 << input;
      jorun.Write(kType1 + input, row.type);
      for (const auto& [signal, status] :
           {std::pair(row.low, 0), std::pair(row.high, 0), std::pair(row.low - 1, overRange),
            std::pair(row.high + 1, overRange), std::pair(row.high - 1, 0)}) {
        jorun.Feed(input, signal);
        EXPECT_EQ(jorun.Read(kStatus), status) << signal;
        EXPECT_EQ(jorun.Value(input), signal);
      }
    }
  }
}

TEST(SimulatedJorun, JudgesTheRangeByTheSignalAndNotByTheCorrectedValue) {
  PlayedJorun jorun(StillWith({{kType1, 1}, {kValue1, 10000}, {kSpan1, 12000}}));
  EXPECT_EQ(jorun.Value(0), 12000);
  EXPECT_EQ(jorun.Read(kStatus), 0);
  jorun.Feed(0, 10001);
  EXPECT_EQ(jorun.Read(kStatus), 0x0100);
}

TEST(SimulatedJorun, ReadsTheUpperEndWhereAWireIsOpen) {
  for (int input = 0; input < kInputs; ++input) {
    PlayedJorun jorun(StillWith({}));
    jorun.Write(kType1 + input, 2);
    jorun.Feed(input, 250);
    jorun.Set(kStatus, static_cast<unsigned>(0x1000 << input));
    EXPECT_EQ(jorun.Read(kStatus), 0x1000 << input);
    EXPECT_EQ(jorun.Value(input), 12000);
    jorun.Set(kStatus, 0);
    EXPECT_EQ(jorun.Read(kStatus), 0);
    EXPECT_EQ(jorun.Value(input), 250);
  }
}

TEST(SimulatedJorun, TakesEachStatusBitFromAPreset) {
  EXPECT_EQ(PlayedJorun(StillWith({{kStatus, 0x0A00}})).Read(kStatus), 0x0A00);
  EXPECT_EQ(PlayedJorun(StillWith({{kStatus, 0x5000}})).Read(kStatus), 0x5000);
}

TEST(SimulatedJorun, KeepsItsStatusWhateverIsWrittenButTheReset) {
  PlayedJorun jorun(StillWith({{kStatus, 0x0200}}));
  EXPECT_TRUE(jorun.Write(kStatus, 0));
  EXPECT_TRUE(jorun.Write(kStatus, 0xFF00));
  EXPECT_EQ(jorun.Read(kStatus), 0x0200);
  EXPECT_FALSE(jorun.GetModule().Restarting());
}

TEST(SimulatedJorun, StaysAliveWithATypeThatThereIsNot) {
  PlayedJorun jorun(AliveWith({{kType1, 65535}}));
  jorun.Pass(seconds(5));
  EXPECT_NE(jorun.Read(kValue1), -1);
  EXPECT_EQ(jorun.Read(kType1), 65535);
}

// Life.

TEST(SimulatedJorun, StandsStillWhenTold) {
  PlayedJorun jorun(StillWith({{kValue1, 123}, {kFilter1, 3}}));
  const std::vector<int> before = jorun.ReadAll(40001, 40016);
  jorun.Pass(minutes(5));
  EXPECT_EQ(jorun.ReadAll(40001, 40016), before);
  EXPECT_THAT(jorun.ReadAll(kValue1, kValue1 + 3), ElementsAre(123, 0, 0, 0));
}

/// The lowest and the highest value of an input in two minutes, and how often its status bits came up.
struct Course {
  int low = 32767;
  int high = -32768;
  int overRanges = 0;
  int burnOuts = 0;
};

std::vector<Course> Watch(PlayedJorun& jorun) {
  std::vector<Course> courses(kInputs);
  int before = 0;
  for (int step = 0; step < 1200; ++step) {
    jorun.Pass(milliseconds(100));
    const int status = jorun.Read(kStatus);
    for (int input = 0; input < kInputs; ++input) {
      Course& course = courses[static_cast<std::size_t>(input)];
      course.overRanges += (status & ~before) >> (8 + input) & 1;
      course.burnOuts += (status & ~before) >> (12 + input) & 1;
      if ((status >> (12 + input) & 1) != 0) continue;
      course.low = std::min(course.low, jorun.Value(input));
      course.high = std::max(course.high, jorun.Value(input));
    }
    before = status;
  }
  return courses;
}

TEST(SimulatedJorun, MovesEachInputThroughItsRangeWhateverTheSeed) {
  for (unsigned seed = 0; seed < 5; ++seed) {
    SCOPED_TRACE(seed);
    ModuleOptions options;
    options.seed = seed;
    PlayedJorun jorun(options);
    const std::vector<Course> courses = Watch(jorun);
    // The middle of the range and what the input swings to either side.
    EXPECT_NEAR(courses[0].low, 4000 - 3600, 10);
    EXPECT_NEAR(courses[0].high, 4000 + 3600, 10);
    EXPECT_NEAR(courses[1].low, 4750 - 6525, 10);
    EXPECT_NEAR(courses[1].high, 4750 + 6525, 10);
    EXPECT_NEAR(courses[2].low, 1000 - 3090, 10);
    EXPECT_NEAR(courses[2].high, 1000 + 3090, 10);
    EXPECT_NEAR(courses[3].low, -8000, 20);
    EXPECT_NEAR(courses[3].high, 8000, 20);
  }
}

TEST(SimulatedJorun, ShowsOverRangesOnInput3AndBurnOutsOnInput4) {
  PlayedJorun jorun(ModuleOptions{});
  const std::vector<Course> courses = Watch(jorun);
  for (int input = 0; input < kInputs; ++input) {
    const Course& course = courses[static_cast<std::size_t>(input)];
    // Twice in each of the four periods of half a minute; every forty seconds.
    EXPECT_EQ(course.overRanges, input == 2 ? 8 : 0) << input;
    EXPECT_EQ(course.burnOuts, input == 3 ? 3 : 0) << input;
  }
}

TEST(SimulatedJorun, MovesTheSameHoweverSeldomItIsRead) {
  PlayedJorun often(ModuleOptions{});
  PlayedJorun once(ModuleOptions{});
  for (int step = 0; step < 1000; ++step) {
    often.Pass(milliseconds(37));
    often.Read(kStatus);
  }
  once.Pass(milliseconds(37) * 1000);
  EXPECT_EQ(often.ReadAll(kStatus, kValue1 + 3), once.ReadAll(kStatus, kValue1 + 3));
}

TEST(SimulatedJorun, StartsTheSameWithTheSameSeed) {
  ModuleOptions options;
  PlayedJorun one(options);
  PlayedJorun same(options);
  options.seed = 2;
  PlayedJorun other(options);
  EXPECT_EQ(one.ReadAll(kValue1, kValue1 + 3), same.ReadAll(kValue1, kValue1 + 3));
  EXPECT_NE(one.ReadAll(kValue1, kValue1 + 3), other.ReadAll(kValue1, kValue1 + 3));
}

TEST(SimulatedJorun, FollowsAFilteredInputMoreSlowly) {
  // Far from where the wave goes, so that each conversion closes its share of the gap.
  std::vector<int> reached;
  for (const unsigned level : {0U, 1U, 3U, 6U}) {
    PlayedJorun filtered(AliveWith({{kFilter1, level}, {kValue1, 30000}}));
    filtered.Pass(milliseconds(200));
    reached.push_back(filtered.Value(0));
  }
  EXPECT_LT(reached[0], 8000);
  EXPECT_GT(reached[1], reached[0] + 1000);
  EXPECT_GT(reached[2], reached[1] + 1000);
  EXPECT_GT(reached[3], reached[2] + 1000);
  EXPECT_LT(reached[3], 30000);
}

TEST(SimulatedJorun, ConvertsFourTimesAsOftenWithTheSpeedUpFlag) {
  PlayedJorun plain(ModuleOptions{});
  PlayedJorun fast(AliveWith({{40003, kSpeedUp}}));
  int plainChanges = 0;
  int fastChanges = 0;
  int plainBefore = plain.Read(kValue1 + 1);
  int fastBefore = fast.Read(kValue1 + 1);
  for (int step = 0; step < 80; ++step) {
    plain.Pass(milliseconds(25));
    fast.Pass(milliseconds(25));
    if (plain.Read(kValue1 + 1) != plainBefore) ++plainChanges;
    if (fast.Read(kValue1 + 1) != fastBefore) ++fastChanges;
    plainBefore = plain.Read(kValue1 + 1);
    fastBefore = fast.Read(kValue1 + 1);
  }
  EXPECT_NEAR(plainChanges, 20, 2);
  EXPECT_NEAR(fastChanges, 80, 8);
}

TEST(SimulatedJorun, CorrectsAMovingInputToo) {
  PlayedJorun plain(ModuleOptions{});
  PlayedJorun corrected(AliveWith({{kSpan1, 12000}, {kZero1, 100}}));
  for (int step = 0; step < 20; ++step) {
    plain.Pass(milliseconds(500));
    corrected.Pass(milliseconds(500));
    EXPECT_NEAR(corrected.Value(0), plain.Value(0) * 1.2 + 100, 1);
  }
}

// Reset.

TEST(SimulatedJorun, IsSilentWhileItRestarts) {
  PlayedJorun jorun(StillWith({}));
  EXPECT_TRUE(jorun.Write(kStatus, 1));
  jorun.Pass(milliseconds(299));
  EXPECT_EQ(jorun.Read(40001), -1);
  jorun.Pass(milliseconds(1));
  EXPECT_EQ(jorun.Read(40001), 0x0603);
}

TEST(SimulatedJorun, TakesItsImagesAtResetAndNotBefore) {
  PlayedJorun jorun(StillWith({{kType1, 1}}));
  jorun.Write(40067, kSpeedUp | kParity | kOdd);
  jorun.Write(40068, 8);
  jorun.Write(40075, 5);
  jorun.Write(40066, 0x0407);
  EXPECT_EQ(jorun.Read(kType1), 1);
  EXPECT_EQ(jorun.Read(40003), 0);
  jorun.Reset();
  EXPECT_EQ(jorun.GetModule().InForce(), (Setting{7, LineOf("57600,o,8,1")}));
  EXPECT_EQ(jorun.Read(40003), kSpeedUp | kParity | kOdd);
  EXPECT_EQ(jorun.Read(kType1), 8);
  EXPECT_EQ(jorun.Read(kFilter1 + 3), 5);
}

TEST(SimulatedJorun, HoldsWhatItsImagesTellWithinItsBounds) {
  PlayedJorun jorun(StillWith({}));
  jorun.Write(40068, 900);
  jorun.Write(40072, 900);
  jorun.Write(40066, 0x0500);
  jorun.Reset();
  EXPECT_EQ(jorun.GetModule().InForce(), (Setting{1, LineOf("9600,n,8,1")}));
  EXPECT_EQ(jorun.Read(kType1), 8);
  EXPECT_EQ(jorun.Read(kFilter1), 6);
}

TEST(SimulatedJorun, KeepsItsInputsAndItsOpenWiresThroughAReset) {
  PlayedJorun jorun(StillWith({{kValue1, 1234}, {kStatus, 0x2000}}));
  jorun.Reset();
  EXPECT_EQ(jorun.Read(kValue1), 1234);
  EXPECT_EQ(jorun.Read(kStatus), 0x2000);
}

}  // namespace
}  // namespace tarvo::simulator
