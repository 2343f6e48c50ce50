#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using ::testing::Each;
using ::testing::ElementsAre;

constexpr int kInputs = 4;
constexpr int kFlags = 40003;
constexpr int kFilter = 40004;
constexpr int kFullScale = 40008;
constexpr int kStartScale = 40012;
constexpr int kStatus = 40016;
constexpr int kScaled = 40017;
constexpr int kRaw = 40021;

constexpr int kSpeedUp = 0x0002;
constexpr int kAllInputs = 0x0F00;
// What the flags of other models tell of the line.
constexpr int kDelay = 0x04;
constexpr int kParity = 0x08;
constexpr int kOdd = 0x10;

class PlayedHollin : public PlayedModule {
 public:
  explicit PlayedHollin(const ModuleOptions& options) : PlayedModule("hollin", options) {}

  int ReadSigned(int reg) { return static_cast<std::int16_t>(Read(reg)); }
};

unsigned Raw(int value) {
  return static_cast<unsigned>(value) & 0xFFFFU;
}

// Registers row by row.

TEST(SimulatedHollin, TellsItsModelAndFirmwareInTheIdentity) {
  ModuleOptions options = StillWith({});
  options.firmware = 7;
  EXPECT_EQ(PlayedHollin(options).Read(40001), 0x0B07);
}

TEST(SimulatedHollin, BeginsUnfilteredWithAScaleTo10000AndPublishesAllInputs) {
  PlayedHollin hollin(StillWith({}));
  EXPECT_EQ(hollin.Read(kFlags), kAllInputs);
  EXPECT_THAT(hollin.ReadAll(kFilter, kFilter + 3), Each(0));
  EXPECT_THAT(hollin.ReadAll(kFullScale, kFullScale + 3), Each(10000));
  EXPECT_THAT(hollin.ReadAll(kStartScale, kStartScale + 3), Each(0));
}

TEST(SimulatedHollin, HoldsEveryBitOfItsFlags) {
  PlayedHollin hollin(StillWith({}));
  for (int bit = 0; bit < 16; ++bit) {
    EXPECT_TRUE(hollin.Write(kFlags, 1 << bit));
    EXPECT_EQ(hollin.Read(kFlags), 1 << bit);
  }
}

TEST(SimulatedHollin, StartsWithTheImageOfEachRegister) {
  std::vector<std::pair<int, unsigned>> presets = {{kFlags, 0x7F02}};
  for (int i = 0; i < kInputs; ++i) {
    presets.emplace_back(kFilter + i, 1 + i);
    presets.emplace_back(kFullScale + i, 1000 + i);
    presets.emplace_back(kStartScale + i, Raw(-1000 - i));
  }
  PlayedHollin hollin(StillWith(presets));
  EXPECT_EQ(hollin.ReadAll(40066, 40079), hollin.ReadAll(40002, 40015));
  EXPECT_EQ(hollin.Read(40067), 0x7F02);
  EXPECT_EQ(hollin.ReadSigned(40079), -1003);
}

TEST(SimulatedHollin, RefusesWritesToIdentityAndValues) {
  PlayedHollin hollin(StillWith({{kRaw, 77}}));
  EXPECT_EQ(hollin.Execute(test::WriteRequest(1, 40001, 5)), test::ExceptionReply(1, 6, 2));
  for (int reg = kScaled; reg < kRaw + kInputs; ++reg) {
    EXPECT_EQ(hollin.Execute(test::WriteRequest(1, reg, 5)), test::ExceptionReply(1, 6, 2)) << reg;
  }
  EXPECT_EQ(hollin.Read(kRaw), 77);
}

TEST(SimulatedHollin, HasNoRegistersBetweenTheValuesAndTheImagesOrBehind) {
  PlayedHollin hollin(StillWith({}));
  for (const int reg : {40025, 40065, 40080}) {
    EXPECT_EQ(hollin.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(hollin.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedHollin, AnswersTheTwoBlocksOfAMaster) {
  PlayedHollin hollin(StillWith({}));
  EXPECT_EQ(hollin.Execute(test::ReadRequest(1, 40002, 11)).size(), 5U + 2 * 11);
  EXPECT_EQ(hollin.Execute(test::ReadRequest(1, 40013, 12)).size(), 5U + 2 * 12);
}

TEST(SimulatedHollin, TakesAFilterFrom0To6Only) {
  PlayedHollin hollin(StillWith({}));
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_EQ(hollin.Execute(test::WriteRequest(1, kFilter + i, 7)), test::ExceptionReply(1, 6, 3));
    EXPECT_TRUE(hollin.Write(kFilter + i, 6));
    EXPECT_EQ(hollin.Read(kFilter + i), 6);
  }
}

// The fixed line.

TEST(SimulatedHollin, ShowsItsAddressAndBaudCode) {
  ModuleOptions options = StillWith({});
  options.setting = {200, LineOf("38400,e,8,1")};
  PlayedHollin hollin(options);
  EXPECT_EQ(hollin.Read(40002), 0x03C8);
  EXPECT_EQ(hollin.Read(40066), 0x03C8);
  EXPECT_EQ(hollin.Read(kFlags), kAllInputs) << "no flag tells the parity";
}

TEST(SimulatedHollin, RefusesAnotherAddressOrBaudRate) {
  PlayedHollin hollin(StillWith({}));
  for (const int reg : {40002, 40066}) {
    EXPECT_EQ(hollin.Execute(test::WriteRequest(1, reg, 0x0309)), test::ExceptionReply(1, 6, 2)) << reg;
    EXPECT_EQ(hollin.Read(reg), 0x0101);
  }
}

TEST(SimulatedHollin, KeepsItsLineThroughAResetWhateverItsFlagsHold) {
  ModuleOptions options = StillWith({});
  options.setting = {7, LineOf("19200,o,8,1")};
  PlayedHollin hollin(options);
  hollin.Write(40067, 0xFFFF);
  hollin.Reset();
  EXPECT_EQ(hollin.Read(kFlags), 0xFFFF);
  EXPECT_EQ(hollin.GetModule().InForce(), options.setting);
}

TEST(SimulatedHollin, AnswersAtOnceWhateverItsFlagsHold) {
  PlayedHollin hollin(StillWith({}));
  hollin.Write(kFlags, kDelay | kParity | kOdd);
  EXPECT_EQ(hollin.GetModule().ReplyDelay(), milliseconds(0));
}

// Life.

TEST(SimulatedHollin, StandsStillWhenTold) {
  PlayedHollin hollin(StillWith({{kStatus, 0x0200}, {kScaled, 11}, {kRaw + 3, 44}}));
  const std::vector<int> before = hollin.ReadAll(40001, 40024);
  hollin.Pass(minutes(5));
  EXPECT_EQ(hollin.ReadAll(40001, 40024), before);
  EXPECT_THAT(hollin.ReadAll(kStatus, kRaw + 3), ElementsAre(0x0200, 11, 0, 0, 0, 0, 0, 0, 44));
}

TEST(SimulatedHollin, MovesEachInputWhetherItIsPublishedOrNot) {
  PlayedHollin hollin(AliveWith({{kFlags, 0x0100}}));
  const std::vector<int> before = hollin.ReadAll(kRaw, kRaw + 3);
  hollin.Pass(milliseconds(1700));
  const std::vector<int> after = hollin.ReadAll(kRaw, kRaw + 3);
  for (std::size_t i = 0; i < kInputs; ++i) EXPECT_NE(before[i], after[i]) << i;
}

TEST(SimulatedHollin, TellsOverAndUnderflowByTheirOwnBits) {
  PlayedHollin hollin(AliveWith({}));
  int seen = 0;
  for (int step = 0; step < 2000; ++step) {
    hollin.Pass(milliseconds(100));
    int expected = 0;
    for (int i = 0; i < kInputs; ++i) {
      if (hollin.ReadSigned(kRaw + i) > 10000) expected |= 0x100 << 2 * i;
      if (hollin.ReadSigned(kRaw + i) < -10000) expected |= 0x200 << 2 * i;
    }
    ASSERT_EQ(hollin.Read(kStatus), expected);
    seen |= expected;
  }
  EXPECT_EQ(seen, 0xFF00);
}

TEST(SimulatedHollin, ScalesItsInputs) {
  PlayedHollin hollin(AliveWith({{kStartScale, 4000}, {kFullScale, 10000}}));
  for (int step = 0; step < 300; ++step) {
    hollin.Pass(milliseconds(100));
    const double expected = 4000 + hollin.ReadSigned(kRaw) / 10000.0 * 6000;
    ASSERT_NEAR(hollin.ReadSigned(kScaled), expected, 0.51);
  }
}

TEST(SimulatedHollin, ConvertsFourTimesAsOftenSpedUp) {
  for (const bool speedUp : {false, true}) {
    PlayedHollin hollin(AliveWith({{kFlags, speedUp ? kSpeedUp : 0U}}));
    int changes = 0;
    int before = hollin.Read(kRaw);
    for (int step = 0; step < 80; ++step) {
      hollin.Pass(milliseconds(25));
      const int now = hollin.Read(kRaw);
      if (now != before) ++changes;
      before = now;
    }
    EXPECT_EQ(changes, speedUp ? 80 : 20);
  }
}

// Reset.

TEST(SimulatedHollin, RestartsByA1WrittenToItsStatus) {
  PlayedHollin hollin(StillWith({}));
  EXPECT_TRUE(hollin.Write(kStatus, 2));
  EXPECT_EQ(hollin.Read(40001), 0x0B03);
  EXPECT_TRUE(hollin.Write(kStatus, 1));
  hollin.Pass(milliseconds(299));
  EXPECT_EQ(hollin.Read(40001), -1);
  hollin.Pass(milliseconds(1));
  EXPECT_EQ(hollin.Read(40001), 0x0B03);
}

TEST(SimulatedHollin, TakesItsImagesAtResetAndNotBefore) {
  PlayedHollin hollin(StillWith({}));
  hollin.Write(40067, 0x7502);
  for (int i = 0; i < kInputs; ++i) {
    hollin.Write(40068 + i, 6 - i);
    hollin.Write(40072 + i, 100 * i);
    hollin.Write(40076 + i, (-7 * i) & 0xFFFF);
  }
  EXPECT_THAT(hollin.ReadAll(40003, 40004), ElementsAre(kAllInputs, 0));
  hollin.Reset();
  EXPECT_EQ(hollin.ReadAll(40003, 40015), hollin.ReadAll(40067, 40079));
  EXPECT_EQ(hollin.Read(kFlags), 0x7502);
  EXPECT_THAT(hollin.ReadAll(kFilter, kFilter + 3), ElementsAre(6, 5, 4, 3));
  EXPECT_EQ(hollin.ReadSigned(kStartScale + 3), -21);
}

TEST(SimulatedHollin, ForgetsAtResetWhatWasNotStored) {
  PlayedHollin hollin(StillWith({{kFullScale, 500}}));
  hollin.Write(kFullScale, 900);
  hollin.Write(kFlags, 0x4000);
  hollin.Reset();
  EXPECT_EQ(hollin.Read(kFullScale), 500);
  EXPECT_EQ(hollin.Read(kFlags), kAllInputs);
}

}  // namespace
}  // namespace tarvo::simulator
