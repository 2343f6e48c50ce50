#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "played_module.h"
#include "simulator/options.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::AllOf;
using ::testing::Ge;
using ::testing::HasSubstr;
using ::testing::Le;

constexpr int kDelay = 0x0004;
constexpr int kParity = 0x0008;
constexpr int kOdd = 0x0010;
constexpr int kSquareRoot = 0x0100;
constexpr int kPositiveBurnOut = 0x0200;
constexpr int kAuto = 0x0400;
constexpr int kInverted = 0x0800;
constexpr int kReload = 0x1000;

constexpr int kDataError = 0x0100;
constexpr int kInputOverflow = 0x0200;
constexpr int kInputUnderflow = 0x0400;
constexpr int kBurnOut = 0x0800;
constexpr int kOutputOverflow = 0x4000;
constexpr int kOutputUnderflow = 0x8000;

class PlayedFerrun : public PlayedModule {
 public:
  explicit PlayedFerrun(const ModuleOptions& options) : PlayedModule("ferrun", options) {}

  int Signed(int reg) { return static_cast<std::int16_t>(Read(reg)); }
  int Measured() { return Signed(40021); }
  int Output() { return Read(40019); }
  int Status() { return Read(40022); }
  /// As a master that polls: no communication time-out.
  void Poll(core::Duration time) {
    for (core::Duration gone{}; gone < time; gone += milliseconds(100)) {
      Pass(milliseconds(100));
      Read(40001);
    }
  }
};

/// Manual, with that output, for so long that the measured value has followed.
PlayedFerrun Settled(std::vector<std::pair<int, unsigned>> presets) {
  presets.insert(presets.begin(), {40011, 0});
  PlayedFerrun ferrun(AliveWith(presets));
  ferrun.Pass(minutes(1));
  return ferrun;
}

/// The load moves the measured value by so much to both sides.
constexpr int kLoad = 300;
/// A process with that output, and no loop.
testing::Matcher<int> FollowsOutput(int output) {
  return AllOf(Ge(400 + output - kLoad), Le(400 + output + kLoad));
}

// Registers.

TEST(SimulatedFerrun, IsKnownToTheCommandLine) {
  EXPECT_THAT(ModelNames(), ::testing::Contains("ferrun"));
  EXPECT_THAT(HelpText(), HasSubstr(" ferrun"));
}

TEST(SimulatedFerrun, TellsItsModelAndFirmwareInTheIdentity) {
  ModuleOptions options = StillWith({});
  options.firmware = 7;
  EXPECT_EQ(PlayedFerrun(options).Read(40001), 0x0407);
}

TEST(SimulatedFerrun, ShowsAddressBaudCodeAndParity) {
  ModuleOptions options = StillWith({{40011, kAuto}});
  options.setting = {255, LineOf("38400,o,8,1")};
  PlayedFerrun ferrun(options);
  EXPECT_EQ(ferrun.Read(40009), 0x03FF);
  EXPECT_EQ(ferrun.Read(40011), kAuto | kParity | kOdd);
}

TEST(SimulatedFerrun, StartsWithTheImageOfWhatIsLive) {
  std::vector<std::pair<int, unsigned>> presets;
  for (int i = 0; i < 17; ++i) {
    if (40002 + i != 40009) presets.emplace_back(40002 + i, 100 + static_cast<unsigned>(i));
  }
  PlayedFerrun ferrun(StillWith(presets));
  EXPECT_EQ(ferrun.ReadAll(40066, 40082), ferrun.ReadAll(40002, 40018));
  EXPECT_EQ(ferrun.Read(40073), 0x0101);
  EXPECT_EQ(ferrun.Read(40082), 116);
}

TEST(SimulatedFerrun, HasTheTwoBlocksAndTheImagesAndNothingElse) {
  PlayedFerrun ferrun(StillWith({}));
  EXPECT_NE(ferrun.Execute(test::ReadRequest(1, 40002, 10)), test::ExceptionReply(1, 3, 2));
  EXPECT_NE(ferrun.Execute(test::ReadRequest(1, 40011, 12)), test::ExceptionReply(1, 3, 2));
  EXPECT_NE(ferrun.Execute(test::ReadRequest(1, 40066, 18)), test::ExceptionReply(1, 3, 2));
  for (const int reg : {40023, 40065, 40084}) {
    EXPECT_EQ(ferrun.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(ferrun.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedFerrun, RefusesWritesToWhatItMeasures) {
  PlayedFerrun ferrun(StillWith({{40020, 11}, {40021, 22}}));
  for (const int reg : {40001, 40020, 40021}) {
    EXPECT_EQ(ferrun.Execute(test::WriteRequest(1, reg, 5)), test::ExceptionReply(1, 6, 2)) << reg;
  }
  EXPECT_EQ(ferrun.Read(40020), 11);
  EXPECT_EQ(ferrun.Read(40021), 22);
}

struct Bounds {
  int reg;
  int lowest;
  int highest;
};

TEST(SimulatedFerrun, KeepsItsBounds) {
  const std::vector<Bounds> rows = {{40010, 5, 250},   {40012, 0, 10000}, {40013, 0, 9999},
                                    {40014, 0, 6000},  {40015, 0, 9999},  {40016, 0, 10000},
                                    {40017, 0, 10000}, {40018, 0, 10000}, {40019, 0, 10000}};
  PlayedFerrun ferrun(StillWith({}));
  for (const Bounds& row : rows) {
    for (const int value : {row.lowest, row.highest}) {
      EXPECT_TRUE(ferrun.Write(row.reg, value)) << row.reg;
      EXPECT_EQ(ferrun.Read(row.reg), value) << row.reg;
    }
    for (const int value : {row.lowest - 1, row.highest + 1}) {
      EXPECT_EQ(ferrun.Execute(test::WriteRequest(1, row.reg, value)), test::ExceptionReply(1, 6, 3)) << row.reg;
      EXPECT_EQ(ferrun.Read(row.reg), row.highest) << row.reg;
    }
  }
}

TEST(SimulatedFerrun, TakesNegativeScalesAndZero) {
  PlayedFerrun ferrun(StillWith({}));
  for (const int reg : {40003, 40004, 40005, 40006, 40008}) {
    EXPECT_TRUE(ferrun.Write(reg, 0x10000 - 200)) << reg;
    EXPECT_EQ(ferrun.Signed(reg), -200) << reg;
  }
}

TEST(SimulatedFerrun, IgnoresOtherValuesInItsResetRegister) {
  PlayedFerrun ferrun(StillWith({{40022, 0x0800}}));
  EXPECT_TRUE(ferrun.Write(40022, 2));
  EXPECT_FALSE(ferrun.GetModule().Restarting());
  EXPECT_EQ(ferrun.Status(), 0x0800);
}

TEST(SimulatedFerrun, AnswersLaterWithTheDelayFlag) {
  PlayedFerrun ferrun(StillWith({}));
  ferrun.Write(40011, kDelay);
  EXPECT_EQ(ferrun.GetModule().ReplyDelay(), milliseconds(12));
}

TEST(SimulatedFerrun, StandsStillWhenTold) {
  PlayedFerrun ferrun(StillWith({{40011, kAuto | kReload}, {40012, 7000}, {40019, 1234}, {40021, 5000}}));
  const std::vector<int> before = ferrun.ReadAll(40001, 40022);
  ferrun.Pass(minutes(5));
  EXPECT_EQ(ferrun.ReadAll(40001, 40022), before);
  EXPECT_EQ(ferrun.Output(), 1234);
  EXPECT_EQ(ferrun.Measured(), 5000);
}

// The process, without a loop.

TEST(SimulatedFerrun, FollowsItsOutputInManual) {
  PlayedFerrun ferrun = Settled({{40019, 0}});
  EXPECT_THAT(ferrun.Measured(), FollowsOutput(0));
  EXPECT_TRUE(ferrun.Write(40019, 5000));
  ferrun.Pass(seconds(30));
  EXPECT_EQ(ferrun.Output(), 5000);
  EXPECT_THAT(ferrun.Measured(), FollowsOutput(5000));
}

TEST(SimulatedFerrun, HasADeadTimeOf600Milliseconds) {
  PlayedFerrun moved = Settled({{40019, 0}});
  PlayedFerrun left = Settled({{40019, 0}});
  moved.Write(40019, 10000);
  left.Read(40019);
  for (PlayedFerrun* ferrun : {&moved, &left}) ferrun->Pass(milliseconds(600));
  EXPECT_EQ(moved.Measured(), left.Measured());
  for (PlayedFerrun* ferrun : {&moved, &left}) ferrun->Pass(milliseconds(50));
  EXPECT_GT(moved.Measured(), left.Measured() + 100);
}

TEST(SimulatedFerrun, HasATimeConstantOf4Seconds) {
  PlayedFerrun moved = Settled({{40019, 0}});
  PlayedFerrun left = Settled({{40019, 0}});
  moved.Write(40019, 8000);
  left.Read(40019);
  for (PlayedFerrun* ferrun : {&moved, &left}) ferrun->Pass(milliseconds(4600));
  EXPECT_NEAR(moved.Measured() - left.Measured(), 8000 * (1 - std::exp(-1.0)), 80);
}

TEST(SimulatedFerrun, IsAliveByItsLoad) {
  PlayedFerrun ferrun = Settled({{40019, 5000}});
  int lowest = 10000;
  int highest = 0;
  for (int second = 0; second < 45; ++second) {
    ferrun.Pass(seconds(1));
    lowest = std::min(lowest, ferrun.Measured());
    highest = std::max(highest, ferrun.Measured());
  }
  EXPECT_GT(highest - lowest, kLoad);
  EXPECT_LE(highest - lowest, 2 * kLoad + 10);
}

TEST(SimulatedFerrun, LivesTheSameHoweverSeldomItIsRead) {
  PlayedFerrun often(AliveWith({}));
  PlayedFerrun once(AliveWith({}));
  for (int step = 0; step < 1000; ++step) {
    often.Pass(milliseconds(37));
    often.Read(40021);
  }
  once.Pass(milliseconds(37) * 1000);
  EXPECT_EQ(often.ReadAll(40019, 40022), once.ReadAll(40019, 40022));
}

TEST(SimulatedFerrun, StartsTheSameWithTheSameSeed) {
  ModuleOptions options;
  PlayedFerrun one(options);
  PlayedFerrun same(options);
  options.seed = 2;
  PlayedFerrun other(options);
  for (PlayedFerrun* ferrun : {&one, &same, &other}) ferrun->Pass(seconds(20));
  EXPECT_EQ(one.ReadAll(40012, 40021), same.ReadAll(40012, 40021));
  EXPECT_NE(one.ReadAll(40012, 40021), other.ReadAll(40012, 40021));
}

// The input.

TEST(SimulatedFerrun, ScalesTheMeasuredValueForTheUser) {
  PlayedFerrun ferrun = Settled({{40019, 5000}, {40005, 600}, {40006, 0x10000 - 200}});
  EXPECT_NEAR(ferrun.Signed(40020), -200 + ferrun.Measured() * 800 / 10000.0, 1);
}

struct InputRow {
  int type;
  double sensorFull;
};

TEST(SimulatedFerrun, MeasuresBetweenTheScalesOfItsRegisters) {
  for (const InputRow& row : {InputRow{1, 10000}, {2, 15000}, {3, 20000}}) {
    const auto full = static_cast<unsigned>(row.sensorFull);
    PlayedFerrun whole = Settled({{40002, static_cast<unsigned>(row.type) << 8}, {40003, full}, {40019, 4000}});
    PlayedFerrun half = Settled({{40002, static_cast<unsigned>(row.type) << 8}, {40003, full / 2}, {40019, 4000}});
    EXPECT_THAT(whole.Measured(), FollowsOutput(4000)) << row.type;
    EXPECT_NEAR(half.Measured(), 2 * whole.Measured(), 1) << row.type;
  }
}

TEST(SimulatedFerrun, StartsAtItsStartScale) {
  PlayedFerrun from0 = Settled({{40019, 5000}});
  PlayedFerrun from2000 = Settled({{40019, 5000}, {40004, 2000}});
  EXPECT_NEAR(from2000.Measured(), (from0.Measured() - 2000) * 10000.0 / 8000, 2);
}

TEST(SimulatedFerrun, HasFixedScalesForTemperatures) {
  PlayedFerrun millivolts = Settled({{40019, 5000}});
  for (unsigned type = 4; type <= 13; ++type) {
    PlayedFerrun ferrun = Settled({{40002, type << 8}, {40003, 600}, {40004, 0x10000 - 200}, {40019, 5000}});
    EXPECT_EQ(ferrun.Measured(), millivolts.Measured()) << type;
    EXPECT_EQ(ferrun.Status(), 0) << type;
  }
}

TEST(SimulatedFerrun, FiltersItsInput) {
  // The measured value some time after a jump of the process, for each filter of the list: the longer, the less.
  int before = 10000;
  for (unsigned filter = 0; filter <= 6; ++filter) {
    PlayedFerrun ferrun = Settled({{40002, 0x0100 | filter}, {40019, 0}});
    ferrun.Pass(minutes(10));
    ferrun.Write(40019, 9000);
    ferrun.Pass(seconds(6));
    EXPECT_LT(ferrun.Measured(), before) << filter;
    before = ferrun.Measured();
  }
}

TEST(SimulatedFerrun, ExtractsTheRootByTheFlag) {
  PlayedFerrun plain = Settled({{40019, 2500}});
  PlayedFerrun root = Settled({{40011, kSquareRoot}, {40019, 2500}});
  EXPECT_NEAR(root.Measured(), std::sqrt(plain.Measured() * 10000.0), 2);
}

TEST(SimulatedFerrun, CalibratesBySpanAndZero) {
  PlayedFerrun plain = Settled({{40019, 5000}});
  PlayedFerrun span = Settled({{40007, 11000}, {40019, 5000}});
  PlayedFerrun zero = Settled({{40008, 0x10000 - 1000}, {40019, 5000}});
  EXPECT_NEAR(span.Measured(), plain.Measured() * 1.1, 2);
  EXPECT_NEAR(zero.Measured(), plain.Measured() - 1000, 2);
}

TEST(SimulatedFerrun, TellsInputsBeyondTheScale) {
  PlayedFerrun over = Settled({{40019, 10000}, {40003, 5000}});
  EXPECT_EQ(over.Status(), kInputOverflow);
  EXPECT_EQ(over.Measured(), 10500);
  PlayedFerrun under = Settled({{40019, 0}, {40004, 5000}});
  EXPECT_EQ(under.Status(), kInputUnderflow);
  EXPECT_EQ(under.Measured(), -500);
  EXPECT_EQ(Settled({{40019, 5000}}).Status(), 0);
}

TEST(SimulatedFerrun, GoesToTheEndOfItsScaleWithABurntOutSensor) {
  for (const auto& [flag, measured] : {std::pair{0, -500}, {kPositiveBurnOut, 10500}}) {
    PlayedFerrun ferrun =
        Settled({{40011, static_cast<unsigned>(flag)}, {40019, 5000}, {40022, static_cast<unsigned>(kBurnOut)}});
    EXPECT_EQ(ferrun.Measured(), measured);
    EXPECT_EQ(ferrun.Status() & kBurnOut, kBurnOut);
  }
}

TEST(SimulatedFerrun, KeepsTheFaultsThatTheWorldOutsideSets) {
  PlayedFerrun ferrun = Settled({{40019, 5000}, {40022, 0x3000}});
  EXPECT_EQ(ferrun.Status(), 0x3000);
}

TEST(SimulatedFerrun, TellsSettingsThatContradict) {
  const std::vector<std::vector<std::pair<int, unsigned>>> rows = {
      {{40002, 0x0000}}, {{40002, 0x0E00}}, {{40002, 0x0107}}, {{40003, 0}}, {{40017, 10}, {40018, 20}}};
  for (const auto& presets : rows) {
    PlayedFerrun ferrun(AliveWith(presets));
    ferrun.Pass(seconds(1));
    EXPECT_EQ(ferrun.Status() & kDataError, kDataError) << presets[0].first << ' ' << presets[0].second;
  }
  PlayedFerrun ferrun(AliveWith({}));
  ferrun.Pass(seconds(1));
  EXPECT_EQ(ferrun.Status() & kDataError, 0);
}

// The loop.

TEST(SimulatedFerrun, BringsTheMeasuredValueToTheSetpointWhateverTheSeed) {
  for (unsigned seed = 0; seed < 50; ++seed) {
    ModuleOptions options;
    options.seed = seed;
    PlayedFerrun ferrun(options);
    ferrun.Poll(seconds(30));
    for (int second = 0; second < 60; ++second) {
      ferrun.Poll(seconds(1));
      ASSERT_NEAR(ferrun.Measured(), ferrun.Read(40012), 150) << seed;
    }
  }
}

TEST(SimulatedFerrun, FollowsANewSetpointWithinSeconds) {
  PlayedFerrun ferrun(AliveWith({{40011, kAuto}, {40012, 3000}}));
  ferrun.Poll(seconds(60));
  for (const int setpoint : {7000, 2000, 9000}) {
    EXPECT_TRUE(ferrun.Write(40012, setpoint));
    const int before = ferrun.Output();
    ferrun.Poll(seconds(1));
    EXPECT_EQ(ferrun.Output() > before, setpoint > ferrun.Measured());
    ferrun.Poll(seconds(14));
    EXPECT_NEAR(ferrun.Measured(), setpoint, 200);
  }
}

TEST(SimulatedFerrun, DrivesItsOutputTheOtherWayInverted) {
  PlayedFerrun ferrun(AliveWith({{40011, kAuto | kInverted}, {40012, 5000}}));
  // Below the set-point the output falls, so that an ordinary process never gets there.
  ferrun.Poll(minutes(1));
  EXPECT_EQ(ferrun.Output(), 0);
  EXPECT_THAT(ferrun.Measured(), FollowsOutput(0));
  // Above it, it rises.
  ferrun.Write(40012, 0);
  ferrun.Poll(minutes(1));
  EXPECT_EQ(ferrun.Output(), 10000);
}

TEST(SimulatedFerrun, KeepsItsOutputWithinItsLimitsAndTells) {
  PlayedFerrun ferrun(AliveWith({{40011, kAuto}, {40012, 9000}, {40017, 6000}, {40018, 2000}}));
  ferrun.Poll(minutes(1));
  EXPECT_EQ(ferrun.Output(), 6000);
  EXPECT_EQ(ferrun.Status(), kOutputOverflow);
  ferrun.Write(40012, 0);
  ferrun.Poll(minutes(1));
  EXPECT_EQ(ferrun.Output(), 2000);
  EXPECT_EQ(ferrun.Status(), kOutputUnderflow);
}

TEST(SimulatedFerrun, LeavesALimitAtOnceHoweverLongItWasThere) {
  PlayedFerrun ferrun(AliveWith({{40011, kAuto}, {40012, 9000}, {40017, 6000}}));
  ferrun.Poll(minutes(10));
  ferrun.Write(40012, 3000);
  ferrun.Poll(seconds(1));
  EXPECT_LT(ferrun.Output(), 2000);
}

TEST(SimulatedFerrun, LeavesAnOffsetWithoutIntegralThatTheManualResetMends) {
  PlayedFerrun ferrun(AliveWith({{40011, kAuto}, {40012, 5000}, {40014, 0}, {40013, 100}}));
  ferrun.Poll(minutes(1));
  EXPECT_LT(ferrun.Measured(), 3500);
  ferrun.Write(40016, 4600);
  ferrun.Poll(minutes(1));
  EXPECT_NEAR(ferrun.Measured(), 5000, 200);
}

TEST(SimulatedFerrun, IgnoresTheManualResetWithIntegral) {
  PlayedFerrun with(AliveWith({{40011, kAuto}, {40016, 9000}}));
  PlayedFerrun without(AliveWith({{40011, kAuto}}));
  for (PlayedFerrun* ferrun : {&with, &without}) ferrun->Poll(seconds(30));
  EXPECT_EQ(with.Measured(), without.Measured());
}

TEST(SimulatedFerrun, ActsMoreStronglyWithMoreGainAndDerivative) {
  const auto outputAfterAStep = [](unsigned gain, unsigned derivative) {
    PlayedFerrun ferrun(
        AliveWith({{40011, kAuto}, {40012, 400}, {40013, gain}, {40014, 0}, {40015, derivative}, {40016, 3000}}));
    ferrun.Poll(milliseconds(1500));
    return ferrun.Output();
  };
  // The process rises towards 3400: more gain takes more off, and so does more derivative.
  EXPECT_LT(outputAfterAStep(200, 0), outputAfterAStep(50, 0));
  EXPECT_LT(outputAfterAStep(50, 50), outputAfterAStep(50, 0));
}

TEST(SimulatedFerrun, GoesToManualAndBackWithoutABump) {
  PlayedFerrun ferrun(AliveWith({{40011, kAuto}, {40012, 5000}}));
  ferrun.Poll(minutes(1));
  const int before = ferrun.Output();
  ferrun.Write(40011, 0);
  ferrun.Poll(seconds(5));
  EXPECT_EQ(ferrun.Output(), before);
  ferrun.Write(40019, 2000);
  ferrun.Poll(seconds(2));
  EXPECT_EQ(ferrun.Output(), 2000);
  ferrun.Write(40011, kAuto);
  ferrun.Pass(milliseconds(50));
  EXPECT_NEAR(ferrun.Output(), 2000, 100);
  ferrun.Poll(minutes(1));
  EXPECT_NEAR(ferrun.Measured(), 5000, 150);
}

TEST(SimulatedFerrun, TakesItsOutputBackInAutoWhateverIsWritten) {
  PlayedFerrun ferrun(AliveWith({{40011, kAuto}, {40012, 5000}}));
  ferrun.Poll(minutes(1));
  const int before = ferrun.Output();
  EXPECT_TRUE(ferrun.Write(40019, 0));
  ferrun.Pass(milliseconds(100));
  EXPECT_NEAR(ferrun.Output(), before, 100);
}

// The communication time-out.

TEST(SimulatedFerrun, ReloadsWhatIsStoredWithoutARequestForTheSafeTime) {
  PlayedFerrun ferrun(AliveWith({{40011, kReload}, {40010, 20}, {40012, 3000}, {40083, 1500}}));
  ferrun.Write(40012, 7000);
  ferrun.Write(40019, 6000);
  ferrun.Pass(milliseconds(1900));
  EXPECT_EQ(ferrun.Peek(40012), 7000);
  EXPECT_EQ(ferrun.Peek(40019), 6000);
  ferrun.Pass(milliseconds(150));
  EXPECT_EQ(ferrun.Peek(40012), 3000);
  EXPECT_EQ(ferrun.Peek(40019), 1500);
}

TEST(SimulatedFerrun, ReloadsNothingWhileItIsAsked) {
  PlayedFerrun ferrun(AliveWith({{40011, kReload}, {40010, 20}, {40012, 3000}}));
  ferrun.Write(40012, 7000);
  ferrun.Poll(minutes(1));
  EXPECT_EQ(ferrun.Read(40012), 7000);
}

TEST(SimulatedFerrun, ReloadsNothingWithoutTheFlag) {
  PlayedFerrun ferrun(AliveWith({{40011, 0}, {40010, 20}, {40012, 3000}}));
  ferrun.Write(40012, 7000);
  ferrun.Pass(minutes(1));
  EXPECT_EQ(ferrun.Read(40012), 7000);
}

TEST(SimulatedFerrun, GoesOnControllingInTheSilenceAfterAReload) {
  PlayedFerrun ferrun(AliveWith({{40011, kAuto | kReload}, {40010, 20}, {40012, 3000}}));
  ferrun.Write(40012, 7000);
  ferrun.Pass(minutes(1));
  EXPECT_NEAR(ferrun.Measured(), 3000, 150);
}

TEST(SimulatedFerrun, ReloadsOnceForEachSilence) {
  PlayedFerrun ferrun(AliveWith({{40011, kReload}, {40010, 20}, {40083, 1500}}));
  for (int silence = 0; silence < 2; ++silence) {
    ferrun.Write(40019, 6000);
    ferrun.Pass(seconds(3));
    EXPECT_EQ(ferrun.Peek(40019), 1500);
  }
}

// Reset.

TEST(SimulatedFerrun, TakesItsImagesAtReset) {
  PlayedFerrun ferrun(StillWith({}));
  for (int i = 0; i < 17; ++i) {
    if (i != 7 && i != 9) ferrun.Write(40066 + i, 200 + i);
  }
  ferrun.Write(40073, 0x0407);
  ferrun.Write(40075, 0xF700 | kParity | kOdd);
  ferrun.Write(40083, 4321);
  EXPECT_EQ(ferrun.Read(40012), 5000);
  ferrun.Reset();
  EXPECT_EQ(ferrun.GetModule().InForce(), (Setting{7, LineOf("57600,o,8,1")}));
  for (int i = 0; i < 17; ++i) {
    if (i == 7 || i == 9) continue;
    EXPECT_EQ(ferrun.Read(40002 + i), 200 + i) << i;
  }
  EXPECT_EQ(ferrun.Read(40009), 0x0407);
  EXPECT_EQ(ferrun.Read(40011), 0xF700 | kParity | kOdd);
  EXPECT_EQ(ferrun.Output(), 4321);
}

TEST(SimulatedFerrun, ForgetsAtResetWhatWasNotStored) {
  PlayedFerrun ferrun(StillWith({{40012, 3000}}));
  ferrun.Write(40012, 7000);
  ferrun.Write(40011, kAuto);
  ferrun.Reset();
  EXPECT_EQ(ferrun.Read(40012), 3000);
  EXPECT_EQ(ferrun.Read(40011), 0);
}

TEST(SimulatedFerrun, TakesImagesOutOfBoundsToTheirBound) {
  PlayedFerrun ferrun(StillWith({}));
  for (const int image : {40074, 40076, 40077, 40078, 40079, 40080, 40081, 40082, 40083}) ferrun.Write(image, 65535);
  ferrun.Reset();
  EXPECT_EQ(ferrun.Read(40010), 250);
  EXPECT_EQ(ferrun.ReadAll(40012, 40019), (std::vector{10000, 9999, 6000, 9999, 10000, 10000, 10000, 10000}));
}

TEST(SimulatedFerrun, GoesOnControllingAfterAReset) {
  PlayedFerrun ferrun(AliveWith({{40011, kAuto}, {40012, 5000}}));
  ferrun.Poll(minutes(1));
  ferrun.Reset();
  EXPECT_EQ(ferrun.Output(), 0);
  ferrun.Poll(minutes(1));
  EXPECT_NEAR(ferrun.Measured(), 5000, 150);
}

}  // namespace
}  // namespace tarvo::simulator
