#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <tuple>
#include <utility>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::Each;
using ::testing::ElementsAre;

constexpr int kInput = 40002;
constexpr int kMeasureFull = 40003;
constexpr int kMeasureInit = 40004;
constexpr int kUserFull = 40005;
constexpr int kUserInit = 40006;
constexpr int kSpan = 40007;
constexpr int kZero = 40008;
constexpr int kFlags = 40010;
constexpr int kUserValue = 40011;
constexpr int kMeasured = 40012;
constexpr int kStatus = 40013;

constexpr int kDelay = 0x0004;
constexpr int kParity = 0x0008;
constexpr int kOdd = 0x0010;
constexpr int kSquareRoot = 0x0100;
constexpr int kPositiveBurnOut = 0x0200;

constexpr int kWrongData = 0x0100;
constexpr int kOverflow = 0x0200;
constexpr int kUnderflow = 0x0400;
constexpr int kBurnOut = 0x0800;

unsigned Raw(int value) {
  return static_cast<unsigned>(value) & 0xFFFFU;
}

class PlayedDravo : public PlayedModule {
 public:
  explicit PlayedDravo(const ModuleOptions& options) : PlayedModule("dravo", options) {}

  int ReadSigned(int reg) { return static_cast<std::int16_t>(Read(reg)); }
};

/// Lowest and highest of a register in one whole wave and more.
std::pair<int, int> Swing(PlayedDravo& dravo, int reg) {
  int lowest = 32767;
  int highest = -32768;
  for (int step = 0; step < 450; ++step) {
    dravo.Pass(milliseconds(100));
    const int value = dravo.ReadSigned(reg);
    lowest = std::min(lowest, value);
    highest = std::max(highest, value);
  }
  return {lowest, highest};
}

// Registers row by row.

TEST(SimulatedDravo, TellsItsModelAndFirmwareInTheIdentity) {
  ModuleOptions options = StillWith({});
  options.firmware = 2;
  EXPECT_EQ(PlayedDravo(options).Read(40001), 0x0302);
}

TEST(SimulatedDravo, ShowsAddressAndBaudCodeInTheCommunicationWord) {
  ModuleOptions options = StillWith({});
  options.setting = {200, LineOf("2400,n,8,1")};
  PlayedDravo dravo(options);
  EXPECT_EQ(dravo.Read(40009), 0x07C8);
  EXPECT_EQ(dravo.Read(40073), 0x07C8);
}

TEST(SimulatedDravo, ShowsItsParityInTheFlags) {
  const std::vector<std::pair<const char*, int>> rows = {
      {"9600,n,8,1", 0}, {"9600,e,8,1", kParity}, {"9600,o,8,1", kParity | kOdd}};
  for (const auto& [line, bits] : rows) {
    ModuleOptions options = StillWith({{kFlags, 0x4100}});
    options.setting.line = LineOf(line);
    PlayedDravo dravo(options);
    EXPECT_EQ(dravo.Read(kFlags), 0x4100 | bits) << line;
    EXPECT_EQ(dravo.Read(40074), 0x4100 | bits) << line;
  }
}

TEST(SimulatedDravo, ComesWithMillivoltsShownAsTheyAre) {
  EXPECT_THAT(PlayedDravo(StillWith({})).ReadAll(40002, 40013),
              ElementsAre(0x0100, 10000, 0, 10000, 0, 10000, 0, 0x0101, 0, 0, 0, 0));
}

TEST(SimulatedDravo, StartsWithTheImageOfWhatIsLive) {
  PlayedDravo dravo(StillWith({{kInput, 0x0403},
                               {kMeasureFull, 600},
                               {kMeasureInit, Raw(-200)},
                               {kUserFull, 32000},
                               {kUserInit, Raw(-32000)},
                               {kSpan, 9500},
                               {kZero, Raw(-7)},
                               {kFlags, 0x0304}}));
  EXPECT_EQ(dravo.ReadAll(40066, 40074), dravo.ReadAll(40002, 40010));
  EXPECT_THAT(dravo.ReadAll(40066, 40074), ElementsAre(0x0403, 600, 65336, 32000, 33536, 9500, 65529, 0x0101, 0x0304));
}

TEST(SimulatedDravo, RefusesWritesToWhatItMeasuresAndIs) {
  PlayedDravo dravo(StillWith({}));
  for (const int reg : {40001, kUserValue, kMeasured}) {
    EXPECT_EQ(dravo.Execute(test::WriteRequest(1, reg, 5)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedDravo, HasNoRegistersBetweenTheStatusAndTheImagesOrBehind) {
  PlayedDravo dravo(StillWith({}));
  for (const int reg : {40014, 40065, 40075, 40001 + 0xFFFF}) {
    EXPECT_EQ(dravo.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(dravo.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedDravo, TakesASpanFrom9000To11000Only) {
  PlayedDravo dravo(StillWith({}));
  for (const int value : {8999, 11001, 0, 65535}) {
    EXPECT_EQ(dravo.Execute(test::WriteRequest(1, kSpan, value)), test::ExceptionReply(1, 6, 3)) << value;
  }
  for (const int value : {9000, 11000}) {
    EXPECT_TRUE(dravo.Write(kSpan, value));
    EXPECT_EQ(dravo.Read(kSpan), value);
  }
}

TEST(SimulatedDravo, TakesAnyWordInEachImage) {
  PlayedDravo dravo(StillWith({}));
  for (int reg = 40066; reg <= 40074; ++reg) {
    for (const int value : {0, 65535, reg}) {
      EXPECT_TRUE(dravo.Write(reg, value));
      EXPECT_EQ(dravo.Read(reg), value);
    }
  }
}

TEST(SimulatedDravo, AnswersLaterWithTheDelayFlag) {
  PlayedDravo dravo(StillWith({}));
  EXPECT_EQ(dravo.GetModule().ReplyDelay(), milliseconds(0));
  dravo.Write(kFlags, kDelay);
  EXPECT_EQ(dravo.GetModule().ReplyDelay(), milliseconds(12));
}

// Life.

TEST(SimulatedDravo, StandsStillWhenTold) {
  PlayedDravo dravo(StillWith({{kUserValue, Raw(-77)}, {kMeasured, 5000}, {kStatus, 0x2600}}));
  dravo.Pass(minutes(5));
  EXPECT_THAT(dravo.ReadAll(kUserValue, kStatus), ElementsAre(65459, 5000, 0x2600));
}

TEST(SimulatedDravo, SwingsSlowlyThroughItsWholeScale) {
  PlayedDravo dravo(AliveWith({}));
  int before = dravo.ReadSigned(kMeasured);
  for (int step = 0; step < 400; ++step) {
    dravo.Pass(milliseconds(100));
    const int now = dravo.ReadSigned(kMeasured);
    ASSERT_LE(std::abs(now - before), 100) << step;
    before = now;
  }
  const auto [lowest, highest] = Swing(dravo, kMeasured);
  EXPECT_NEAR(lowest, -200, 2);
  EXPECT_NEAR(highest, 10200, 2);
}

TEST(SimulatedDravo, TellsOverflowAndUnderflowBeyondItsScaleOnly) {
  PlayedDravo dravo(AliveWith({}));
  for (int step = 0; step < 450; ++step) {
    dravo.Pass(milliseconds(100));
    const int measured = dravo.ReadSigned(kMeasured);
    if (measured == 0 || measured == 10000) continue;  // either side of the end, rounded
    const int expected = measured > 10000 ? kOverflow : measured < 0 ? kUnderflow : 0;
    ASSERT_EQ(dravo.Read(kStatus), expected) << measured;
  }
}

struct InputKind {
  int number;
  int lowest;
  int highest;
};

class SimulatedDravoInput : public testing::TestWithParam<InputKind> {};

INSTANTIATE_TEST_SUITE_P(Kinds, SimulatedDravoInput,
                         testing::Values(InputKind{1, 0, 10000}, InputKind{2, 0, 15000}, InputKind{3, 0, 20000},
                                         InputKind{4, -200, 600}, InputKind{5, -60, 180}, InputKind{6, -200, 1000},
                                         InputKind{7, -250, 1200}, InputKind{8, 0, 1750}, InputKind{9, 0, 1750},
                                         InputKind{10, -200, 400}, InputKind{11, 0, 1800}, InputKind{12, -200, 800},
                                         InputKind{13, -200, 1300}),
                         [](const auto& given) { return "Number" + std::to_string(given.param.number); });

TEST_P(SimulatedDravoInput, FillsItsScaleInItsOwnUnit) {
  const auto& [number, lowest, highest] = GetParam();
  PlayedDravo dravo(AliveWith({{kInput, static_cast<unsigned>(number) << 8},
                               {kMeasureFull, Raw(highest)},
                               {kMeasureInit, Raw(lowest)},
                               {kUserFull, Raw(highest)},
                               {kUserInit, Raw(lowest)}}));
  dravo.Pass(milliseconds(100));
  const auto [lowestShare, highestShare] = Swing(dravo, kMeasured);
  EXPECT_NEAR(lowestShare, -200, 2);
  EXPECT_NEAR(highestShare, 10200, 2);
  const double range = highest - lowest;
  const auto [lowestValue, highestValue] = Swing(dravo, kUserValue);
  EXPECT_NEAR(lowestValue, lowest - 0.02 * range, 3);
  EXPECT_NEAR(highestValue, highest + 0.02 * range, 3);
}

TEST(SimulatedDravo, ShowsItsShareInTheUsersScale) {
  PlayedDravo dravo(AliveWith({{kUserFull, Raw(-1000)}, {kUserInit, 3000}}));
  for (int step = 0; step < 450; ++step) {
    dravo.Pass(milliseconds(100));
    ASSERT_NEAR(dravo.ReadSigned(kUserValue), 3000 - 0.4 * dravo.ReadSigned(kMeasured), 1);
  }
}

TEST(SimulatedDravo, KeepsWithin16BitsInTheUsersScale) {
  PlayedDravo dravo(AliveWith({{kUserFull, 32767}, {kUserInit, Raw(-32768)}}));
  const auto [lowest, highest] = Swing(dravo, kUserValue);
  EXPECT_EQ(lowest, -32768);
  EXPECT_EQ(highest, 32767);
}

TEST(SimulatedDravo, ReadsNoFurtherThanItsMarginBeyondANarrowScale) {
  PlayedDravo dravo(AliveWith({{kMeasureFull, 6000}, {kMeasureInit, 4000}}));
  dravo.Pass(milliseconds(100));
  EXPECT_EQ(Swing(dravo, kMeasured), std::pair(-500, 10500));
}

TEST(SimulatedDravo, IsTrimmedBySpanAndZero) {
  PlayedDravo plain(AliveWith({}));
  PlayedDravo trimmed(AliveWith({{kSpan, 9000}, {kZero, 250}}));
  for (int step = 0; step < 450; ++step) {
    for (PlayedDravo* dravo : {&plain, &trimmed}) dravo->Pass(milliseconds(100));
    ASSERT_NEAR(trimmed.ReadSigned(kMeasured), 0.9 * plain.ReadSigned(kMeasured) + 250, 1);
  }
}

TEST(SimulatedDravo, TakesTheSquareRootByItsFlag) {
  PlayedDravo plain(AliveWith({}));
  PlayedDravo root(AliveWith({{kFlags, kSquareRoot}}));
  for (int step = 0; step < 450; ++step) {
    for (PlayedDravo* dravo : {&plain, &root}) dravo->Pass(milliseconds(100));
    const int share = plain.ReadSigned(kMeasured);
    const int shown = root.ReadSigned(kMeasured);
    if (share <= 0) {
      ASSERT_LE(shown, 0) << share;
    } else {
      ASSERT_NEAR(shown * shown / 10000.0, share, 2);
    }
  }
}

TEST(SimulatedDravo, DampsByEachFilterMoreThanByTheOneBefore) {
  int before = 10401;
  for (unsigned filter = 0; filter < 7; ++filter) {
    PlayedDravo dravo(AliveWith({{kInput, 0x0100 | filter}}));
    dravo.Pass(minutes(10));
    const auto [lowest, highest] = Swing(dravo, kMeasured);
    EXPECT_LT(highest - lowest, before) << filter;
    before = highest - lowest;
  }
  // 60 s against a wave of 40 s leave about a tenth.
  EXPECT_NEAR(before, 1100, 150);
}

TEST(SimulatedDravo, HasWrongDataWithSettingsThatNothingCanBeMeasuredBy) {
  const std::vector<std::pair<int, unsigned>> rows = {{kInput, 0x0000},  {kInput, 0x0E00}, {kInput, 0x0107},
                                                      {kMeasureFull, 0}, {kZero, 1001},    {kZero, Raw(-1001)}};
  for (const auto& [reg, value] : rows) {
    PlayedDravo dravo(AliveWith({}));
    EXPECT_EQ(dravo.Read(kStatus) & kWrongData, 0);
    const int good = dravo.Read(reg);
    dravo.Write(reg, static_cast<int>(value));
    dravo.Pass(milliseconds(100));
    const int measured = dravo.Read(kMeasured);
    EXPECT_EQ(dravo.Read(kStatus), kWrongData) << reg << ' ' << value;
    dravo.Pass(seconds(5));
    EXPECT_EQ(dravo.Read(kMeasured), measured);
    dravo.Write(reg, good);
    dravo.Pass(milliseconds(100));
    EXPECT_EQ(dravo.Read(kStatus) & kWrongData, 0);
    EXPECT_NE(dravo.Read(kMeasured), measured);
  }
}

TEST(SimulatedDravo, GoesToTheEndThatItsFlagTellsWithABrokenSensor) {
  for (const auto& [flags, measured, status] :
       {std::tuple(0, -500, kBurnOut | kUnderflow), std::tuple(kPositiveBurnOut, 10500, kBurnOut | kOverflow)}) {
    PlayedDravo dravo(AliveWith({{kFlags, static_cast<unsigned>(flags)}, {kInput, 0x0106}}));
    dravo.Pass(seconds(1));
    dravo.Set(kStatus, kBurnOut);
    dravo.Pass(milliseconds(100));
    EXPECT_EQ(dravo.ReadSigned(kMeasured), measured);
    EXPECT_EQ(dravo.Read(kStatus), status);
    dravo.Set(kStatus, 0);
    dravo.Pass(milliseconds(100));
    EXPECT_NE(dravo.ReadSigned(kMeasured), measured);
  }
}

TEST(SimulatedDravo, KeepsTheTroublesOfItsHardware) {
  PlayedDravo dravo(AliveWith({}));
  dravo.Set(kStatus, 0x3000);
  dravo.Pass(seconds(1));
  EXPECT_EQ(dravo.Read(kStatus) & 0x3000, 0x3000);
}

TEST(SimulatedDravo, StartsTheSameWithTheSameSeed) {
  ModuleOptions options;
  PlayedDravo one(options);
  PlayedDravo same(options);
  options.seed = 2;
  PlayedDravo other(options);
  EXPECT_EQ(one.Read(kMeasured), same.Read(kMeasured));
  EXPECT_NE(one.Read(kMeasured), other.Read(kMeasured));
}

TEST(SimulatedDravo, MeasuresTheSameHoweverSeldomItIsRead) {
  PlayedDravo often(AliveWith({{kInput, 0x0103}}));
  PlayedDravo once(AliveWith({{kInput, 0x0103}}));
  for (int step = 0; step < 1000; ++step) {
    often.Pass(milliseconds(37));
    often.Read(kMeasured);
  }
  once.Pass(milliseconds(37) * 1000);
  EXPECT_EQ(often.ReadAll(kUserValue, kStatus), once.ReadAll(kUserValue, kStatus));
}

// Reset.

TEST(SimulatedDravo, IsSilentWhileItRestarts) {
  PlayedDravo dravo(StillWith({}));
  EXPECT_TRUE(dravo.Write(kStatus, 1));
  EXPECT_EQ(dravo.Read(40001), -1);
  dravo.Pass(milliseconds(299));
  EXPECT_EQ(dravo.Read(40001), -1);
  dravo.Pass(milliseconds(1));
  EXPECT_EQ(dravo.Read(40001), 0x0303);
}

TEST(SimulatedDravo, IgnoresOtherValuesInItsResetRegister) {
  PlayedDravo dravo(StillWith({{kStatus, 0x0800}}));
  for (const int value : {0, 2, 256, 65535}) {
    EXPECT_TRUE(dravo.Write(kStatus, value));
    EXPECT_FALSE(dravo.GetModule().Restarting());
    EXPECT_EQ(dravo.Read(kStatus), 0x0800);
  }
}

TEST(SimulatedDravo, ForgetsAtResetWhatWasNotStored) {
  PlayedDravo dravo(StillWith({{kInput, 0x0302}, {kUserFull, 500}}));
  for (int reg = kInput; reg <= kFlags; ++reg) dravo.Write(reg, reg == kSpan ? 9001 : 77);
  dravo.Reset();
  EXPECT_THAT(dravo.ReadAll(40002, 40010), ElementsAre(0x0302, 10000, 0, 500, 0, 10000, 0, 0x0101, 0));
}

TEST(SimulatedDravo, KeepsWhatIsLiveUntilTheReset) {
  PlayedDravo dravo(StillWith({}));
  const std::vector<int> live = dravo.ReadAll(40002, 40010);
  for (int reg = 40066; reg <= 40074; ++reg) dravo.Write(reg, 0x0407);
  EXPECT_EQ(dravo.ReadAll(40002, 40010), live);
  EXPECT_EQ(dravo.GetModule().InForce(), (Setting{1, LineOf("9600,n,8,1")}));
}

TEST(SimulatedDravo, TakesItsImagesAtReset) {
  PlayedDravo dravo(StillWith({}));
  const std::vector<int> images = {0x0405, 600, 65336, 32000, 33536, 9500, 65529, 0x0407, kParity | kOdd | kSquareRoot};
  for (std::size_t i = 0; i < images.size(); ++i) dravo.Write(40066 + static_cast<int>(i), images[i]);
  dravo.Reset();
  EXPECT_EQ(dravo.GetModule().InForce(), (Setting{7, LineOf("57600,o,8,1")}));
  EXPECT_EQ(dravo.ReadAll(40002, 40010), images);
}

TEST(SimulatedDravo, StaysReachableWhateverItsImagesHold) {
  for (const int value : {0, 65535}) {
    PlayedDravo dravo(StillWith({}));
    for (int reg = 40066; reg <= 40074; ++reg) dravo.Write(reg, value);
    dravo.Write(40073, 0x0500);
    dravo.Write(40074, 0);
    dravo.Reset();
    EXPECT_EQ(dravo.GetModule().InForce(), (Setting{1, LineOf("9600,n,8,1")}));
    EXPECT_EQ(dravo.Read(kSpan), value == 0 ? 9000 : 11000);
  }
}

TEST(SimulatedDravo, MeasuresOnAfterTheReset) {
  PlayedDravo dravo(AliveWith({}));
  dravo.Write(40066, 0x0400);
  dravo.Write(40067, 600);
  dravo.Write(40068, static_cast<int>(Raw(-200)));
  dravo.Reset();
  dravo.Pass(milliseconds(100));
  EXPECT_EQ(dravo.Read(kStatus) & kWrongData, 0);
  const auto [lowest, highest] = Swing(dravo, kMeasured);
  EXPECT_NEAR(lowest, -200, 2);
  EXPECT_NEAR(highest, 10200, 2);
}

}  // namespace
}  // namespace tarvo::simulator
