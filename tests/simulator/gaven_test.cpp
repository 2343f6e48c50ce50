#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::Each;
using ::testing::ElementsAre;

constexpr int kInputs = 4;
constexpr int kFilter = 40004;
constexpr int kFullScale = 40008;
constexpr int kStartScale = 40012;
constexpr int kStatus = 40016;
constexpr int kScaled = 40017;
constexpr int kRaw = 40021;

constexpr int kSpeedUp = 0x02;
constexpr int kDelay = 0x04;
constexpr int kParity = 0x08;
constexpr int kOdd = 0x10;

class PlayedGaven : public PlayedModule {
 public:
  explicit PlayedGaven(const ModuleOptions& options) : PlayedModule("gaven", options) {}

  int ReadSigned(int reg) { return static_cast<std::int16_t>(Read(reg)); }
  bool WriteSigned(int reg, int value) { return Write(reg, value & 0xFFFF); }
};

unsigned Raw(int value) {
  return static_cast<unsigned>(value) & 0xFFFFU;
}

// Registers row by row.

TEST(SimulatedGaven, TellsItsModelAndFirmwareInTheIdentity) {
  ModuleOptions options = StillWith({});
  options.firmware = 2;
  EXPECT_EQ(PlayedGaven(options).Read(40001), 0x0702);
}

TEST(SimulatedGaven, ShowsAddressAndBaudCodeInTheCommunicationWord) {
  ModuleOptions options = StillWith({});
  options.setting = {200, LineOf("38400,n,8,1")};
  PlayedGaven gaven(options);
  EXPECT_EQ(gaven.Read(40002), 0x03C8);
  EXPECT_EQ(gaven.Read(40066), 0x03C8);
}

TEST(SimulatedGaven, ShowsItsParityInTheFlags) {
  const std::vector<std::pair<const char*, int>> rows = {
      {"9600,n,8,1", 0}, {"9600,e,8,1", kParity}, {"9600,o,8,1", kParity | kOdd}};
  for (const auto& [line, bits] : rows) {
    ModuleOptions options = StillWith({{40003, kSpeedUp}});
    options.setting.line = LineOf(line);
    EXPECT_EQ(PlayedGaven(options).Read(40003), kSpeedUp | bits) << line;
  }
}

TEST(SimulatedGaven, BeginsUnfilteredWithAScaleTo10000) {
  PlayedGaven gaven(StillWith({}));
  EXPECT_THAT(gaven.ReadAll(kFilter, kFilter + 3), Each(0));
  EXPECT_THAT(gaven.ReadAll(kFullScale, kFullScale + 3), Each(10000));
  EXPECT_THAT(gaven.ReadAll(kStartScale, kStartScale + 3), Each(0));
}

TEST(SimulatedGaven, StartsWithTheImageOfEachRegister) {
  std::vector<std::pair<int, unsigned>> presets = {{40003, 0x07}};
  for (int i = 0; i < kInputs; ++i) {
    presets.emplace_back(kFilter + i, 1 + i);
    presets.emplace_back(kFullScale + i, 1000 + i);
    presets.emplace_back(kStartScale + i, Raw(-1000 - i));
  }
  PlayedGaven gaven(StillWith(presets));
  EXPECT_EQ(gaven.ReadAll(40066, 40079), gaven.ReadAll(40002, 40015));
  EXPECT_EQ(gaven.ReadSigned(40079), -1003);
}

TEST(SimulatedGaven, RefusesWritesToIdentityAndValues) {
  PlayedGaven gaven(StillWith({{kRaw, 77}}));
  EXPECT_EQ(gaven.Execute(test::WriteRequest(1, 40001, 5)), test::ExceptionReply(1, 6, 2));
  for (int reg = kScaled; reg < kRaw + kInputs; ++reg) {
    EXPECT_EQ(gaven.Execute(test::WriteRequest(1, reg, 5)), test::ExceptionReply(1, 6, 2)) << reg;
  }
  EXPECT_EQ(gaven.Read(kRaw), 77);
}

TEST(SimulatedGaven, HasNoRegistersBetweenTheValuesAndTheImagesOrBehind) {
  PlayedGaven gaven(StillWith({}));
  for (const int reg : {40025, 40065, 40080, 40001 + 0xFFFF}) {
    EXPECT_EQ(gaven.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(gaven.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedGaven, AnswersTheTwoBlocksOfAMaster) {
  PlayedGaven gaven(StillWith({}));
  EXPECT_EQ(gaven.Execute(test::ReadRequest(1, 40002, 11)).size(), 5U + 2 * 11);
  EXPECT_EQ(gaven.Execute(test::ReadRequest(1, 40013, 12)).size(), 5U + 2 * 12);
}

TEST(SimulatedGaven, TakesAFilterFrom0To6Only) {
  PlayedGaven gaven(StillWith({}));
  for (int i = 0; i < kInputs; ++i) {
    for (const int value : {7, 65535}) {
      EXPECT_EQ(gaven.Execute(test::WriteRequest(1, kFilter + i, value)), test::ExceptionReply(1, 6, 3)) << value;
    }
    EXPECT_TRUE(gaven.Write(kFilter + i, 6));
    EXPECT_EQ(gaven.Read(kFilter + i), 6);
  }
}

TEST(SimulatedGaven, TakesScalesOfBothSigns) {
  PlayedGaven gaven(StillWith({}));
  for (int reg = kFullScale; reg < kStartScale + kInputs; ++reg) {
    EXPECT_TRUE(gaven.WriteSigned(reg, -10000));
    EXPECT_EQ(gaven.ReadSigned(reg), -10000);
  }
}

TEST(SimulatedGaven, KeepsItsStatusWhateverIsWritten) {
  PlayedGaven gaven(StillWith({{kStatus, 0xA500}}));
  for (const int value : {0, 2, 0xFFFF}) {
    EXPECT_TRUE(gaven.Write(kStatus, value));
    EXPECT_EQ(gaven.Read(kStatus), 0xA500);
  }
  EXPECT_FALSE(gaven.GetModule().Restarting());
}

TEST(SimulatedGaven, AnswersLaterWithTheDelayFlag) {
  PlayedGaven gaven(StillWith({}));
  EXPECT_EQ(gaven.GetModule().ReplyDelay(), milliseconds(0));
  gaven.Write(40003, kDelay);
  EXPECT_EQ(gaven.GetModule().ReplyDelay(), milliseconds(12));
}

// Life.

TEST(SimulatedGaven, StandsStillWhenTold) {
  PlayedGaven gaven(StillWith({{kStatus, 0x0200}, {kScaled, 11}, {kRaw + 3, 44}}));
  const std::vector<int> before = gaven.ReadAll(40001, 40024);
  gaven.Pass(minutes(5));
  EXPECT_EQ(gaven.ReadAll(40001, 40024), before);
  EXPECT_THAT(gaven.ReadAll(kStatus, kRaw + 3), ElementsAre(0x0200, 11, 0, 0, 0, 0, 0, 0, 44));
}

TEST(SimulatedGaven, LetsEachInputSwingThroughItsWholeRange) {
  PlayedGaven gaven(AliveWith({}));
  std::vector<int> lowest(kInputs, 0);
  std::vector<int> highest(kInputs, 0);
  for (int step = 0; step < 1000; ++step) {
    gaven.Pass(milliseconds(100));
    for (std::size_t i = 0; i < kInputs; ++i) {
      const int raw = gaven.ReadSigned(kRaw + static_cast<int>(i));
      lowest[i] = std::min(lowest[i], raw);
      highest[i] = std::max(highest[i], raw);
    }
  }
  constexpr int kSwings[] = {10600, 10400, 10300, 10200};
  for (std::size_t i = 0; i < kInputs; ++i) {
    EXPECT_NEAR(highest[i], kSwings[i], 2) << i;
    EXPECT_NEAR(lowest[i], -kSwings[i], 2) << i;
  }
}

TEST(SimulatedGaven, MovesEachInputSlowly) {
  PlayedGaven gaven(AliveWith({}));
  std::vector<int> before = gaven.ReadAll(kRaw, kRaw + 3);
  for (int step = 0; step < 1000; ++step) {
    gaven.Pass(milliseconds(100));
    const std::vector<int> now = gaven.ReadAll(kRaw, kRaw + 3);
    for (std::size_t i = 0; i < kInputs; ++i) {
      ASSERT_LE(std::abs(static_cast<std::int16_t>(now[i]) - static_cast<std::int16_t>(before[i])), 350) << i;
    }
    before = now;
  }
}

TEST(SimulatedGaven, TellsOverAndUnderflowByTheirOwnBitsAndNowAndThenOnly) {
  PlayedGaven gaven(AliveWith({}));
  std::vector<int> lit(16, 0);
  constexpr int kSteps = 2000;
  for (int step = 0; step < kSteps; ++step) {
    gaven.Pass(milliseconds(100));
    const int status = gaven.Read(kStatus);
    int expected = 0;
    for (int i = 0; i < kInputs; ++i) {
      if (gaven.ReadSigned(kRaw + i) > 10000) expected |= 0x100 << 2 * i;
      if (gaven.ReadSigned(kRaw + i) < -10000) expected |= 0x200 << 2 * i;
    }
    ASSERT_EQ(status, expected);
    for (std::size_t bit = 0; bit < 16; ++bit) lit[bit] += status >> bit & 1;
  }
  for (std::size_t bit = 8; bit < 16; ++bit) {
    EXPECT_GT(lit[bit], 0) << bit;
    EXPECT_LT(lit[bit], kSteps / 4) << bit;
  }
}

TEST(SimulatedGaven, IsTheSameHoweverSeldomItIsRead) {
  PlayedGaven often(AliveWith({{kFilter, 3}}));
  PlayedGaven once(AliveWith({{kFilter, 3}}));
  for (int step = 0; step < 1000; ++step) {
    often.Pass(milliseconds(37));
    often.Read(kStatus);
  }
  once.Pass(milliseconds(37) * 1000);
  EXPECT_EQ(often.ReadAll(kStatus, kRaw + 3), once.ReadAll(kStatus, kRaw + 3));
}

TEST(SimulatedGaven, StartsTheSameWithTheSameSeed) {
  ModuleOptions options;
  PlayedGaven one(options);
  PlayedGaven same(options);
  options.seed = 2;
  PlayedGaven other(options);
  EXPECT_EQ(one.ReadAll(kStatus, kRaw + 3), same.ReadAll(kStatus, kRaw + 3));
  EXPECT_NE(one.ReadAll(kRaw, kRaw + 3), other.ReadAll(kRaw, kRaw + 3));
}

TEST(SimulatedGaven, ConvertsFourTimesAsOftenSpedUp) {
  for (const bool speedUp : {false, true}) {
    PlayedGaven gaven(AliveWith({{40003, speedUp ? kSpeedUp : 0U}}));
    int changes = 0;
    int before = gaven.Read(kRaw);
    for (int step = 0; step < 80; ++step) {
      gaven.Pass(milliseconds(25));
      const int now = gaven.Read(kRaw);
      if (now != before) ++changes;
      before = now;
    }
    EXPECT_EQ(changes, speedUp ? 80 : 20);
  }
}

// Scales and filter.

TEST(SimulatedGaven, ShowsTheRawCountsWithoutScaleAndFilter) {
  PlayedGaven gaven(AliveWith({}));
  for (int step = 0; step < 300; ++step) {
    gaven.Pass(milliseconds(100));
    ASSERT_EQ(gaven.ReadAll(kScaled, kScaled + 3), gaven.ReadAll(kRaw, kRaw + 3));
  }
}

TEST(SimulatedGaven, ScalesEachInputFromItsStartToItsFullScale) {
  struct Scale {
    int start;
    int full;
  };
  const Scale scales[] = {{0, 2000}, {4000, 10000}, {10000, -10000}, {-500, -500}};
  PlayedGaven gaven(AliveWith({}));
  for (int i = 0; i < kInputs; ++i) {
    gaven.WriteSigned(kStartScale + i, scales[i].start);
    gaven.WriteSigned(kFullScale + i, scales[i].full);
  }
  for (int step = 0; step < 300; ++step) {
    gaven.Pass(milliseconds(100));
    for (int i = 0; i < kInputs; ++i) {
      const double share = gaven.ReadSigned(kRaw + i) / 10000.0;
      const double expected = scales[i].start + share * (scales[i].full - scales[i].start);
      ASSERT_NEAR(gaven.ReadSigned(kScaled + i), expected, 0.51) << i;
    }
  }
}

TEST(SimulatedGaven, KeepsAScaledValueWithinSixteenBits) {
  PlayedGaven gaven(AliveWith({{kStartScale, 32767}, {kFullScale, Raw(-32768)}}));
  gaven.Pass(milliseconds(100));
  int lowest = 0;
  int highest = 0;
  for (int step = 0; step < 300; ++step) {
    const int before = gaven.ReadSigned(kScaled);
    gaven.Pass(milliseconds(100));
    const int now = gaven.ReadSigned(kScaled);
    ASSERT_LE(std::abs(now - before), 2400) << "no going round";
    lowest = std::min(lowest, now);
    highest = std::max(highest, now);
  }
  EXPECT_EQ(lowest, -32768);
  EXPECT_EQ(highest, 32767);
}

/// How far a scaled value gets to each side.
int Swing(int level, int flags = 0) {
  PlayedGaven gaven(AliveWith({{kFilter, static_cast<unsigned>(level)}, {40003, static_cast<unsigned>(flags)}}));
  gaven.Pass(minutes(2));
  int highest = 0;
  for (int step = 0; step < 400; ++step) {
    gaven.Pass(milliseconds(100));
    highest = std::max(highest, std::abs(gaven.ReadSigned(kScaled)));
  }
  return highest;
}

TEST(SimulatedGaven, FlattensTheScaledValueMoreWithEachLevelOfTheFilter) {
  for (int level = 1; level <= 6; ++level) EXPECT_LT(Swing(level), Swing(level - 1)) << level;
  EXPECT_LT(Swing(6), 6000);
}

TEST(SimulatedGaven, FiltersLessSpedUp) {
  EXPECT_GT(Swing(6, kSpeedUp), Swing(6) + 1000);
}

TEST(SimulatedGaven, LeavesTheRawCountsUnfiltered) {
  PlayedGaven filtered(AliveWith({{kFilter, 6}}));
  PlayedGaven plain(AliveWith({}));
  for (PlayedGaven* gaven : {&filtered, &plain}) gaven->Pass(seconds(7));
  EXPECT_EQ(filtered.Read(kRaw), plain.Read(kRaw));
  EXPECT_NE(filtered.Read(kScaled), plain.Read(kScaled));
  EXPECT_EQ(filtered.ReadAll(kScaled + 1, kScaled + 3), plain.ReadAll(kScaled + 1, kScaled + 3));
}

// Reset.

TEST(SimulatedGaven, RestartsByA1WrittenToItsStatus) {
  PlayedGaven gaven(StillWith({}));
  EXPECT_TRUE(gaven.Write(kStatus, 1));
  EXPECT_EQ(gaven.Read(40001), -1);
  gaven.Pass(milliseconds(299));
  EXPECT_EQ(gaven.Read(40001), -1);
  gaven.Pass(milliseconds(1));
  EXPECT_EQ(gaven.Read(40001), 0x0703);
}

TEST(SimulatedGaven, TakesItsImagesAtReset) {
  PlayedGaven gaven(StillWith({}));
  gaven.Write(40066, 0x0407);
  gaven.Write(40067, kSpeedUp | kParity | kOdd);
  for (int i = 0; i < kInputs; ++i) {
    gaven.Write(40068 + i, 6 - i);
    gaven.WriteSigned(40072 + i, -100 * i);
    gaven.WriteSigned(40076 + i, -7 * i);
  }
  EXPECT_THAT(gaven.ReadAll(40002, 40004), ElementsAre(0x0101, 0, 0)) << "in force only from the reset on";
  gaven.Reset();
  EXPECT_EQ(gaven.GetModule().InForce(), (Setting{7, LineOf("57600,o,8,1")}));
  EXPECT_EQ(gaven.ReadAll(40002, 40015), gaven.ReadAll(40066, 40079));
  EXPECT_THAT(gaven.ReadAll(kFilter, kFilter + 3), ElementsAre(6, 5, 4, 3));
  EXPECT_EQ(gaven.ReadSigned(kStartScale + 3), -21);
}

TEST(SimulatedGaven, ForgetsAtResetWhatWasNotStored) {
  PlayedGaven gaven(StillWith({{kFilter, 2}, {kFullScale, 500}}));
  gaven.Write(kFilter, 5);
  gaven.Write(kFullScale, 900);
  gaven.Write(40003, kSpeedUp);
  gaven.Reset();
  EXPECT_EQ(gaven.Read(kFilter), 2);
  EXPECT_EQ(gaven.Read(kFullScale), 500);
  EXPECT_EQ(gaven.Read(40003), 0);
}

TEST(SimulatedGaven, HoldsAFilterInItsBoundsWhateverItsImageHas) {
  PlayedGaven gaven(StillWith({}));
  gaven.Write(40068, 65535);
  gaven.Reset();
  EXPECT_EQ(gaven.Read(kFilter), 6);
}

TEST(SimulatedGaven, ConvertsAnewAtResetEvenWhenItStandsStill) {
  PlayedGaven gaven(StillWith({{kRaw, 5000}, {kRaw + 1, 10001}, {kRaw + 2, Raw(-10001)}, {kRaw + 3, Raw(-10000)}}));
  EXPECT_EQ(gaven.Read(kScaled), 0);
  gaven.Write(40072, 2000);
  gaven.Write(40068, 6);
  gaven.Reset();
  EXPECT_EQ(gaven.Read(kRaw), 5000);
  EXPECT_EQ(gaven.Read(kScaled), 1000);
  EXPECT_EQ(gaven.Read(kStatus), 0x0400 | 0x2000);
}

}  // namespace
}  // namespace tarvo::simulator
