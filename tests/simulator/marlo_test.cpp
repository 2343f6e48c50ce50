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

constexpr int kStatus = 40002;
constexpr int kOutputs = 40003;
constexpr int kDiagnostics = 40004;
constexpr int kDefaults = 40005;
constexpr int kOpened = 40006;
constexpr int kShorted = 40007;
constexpr int kHot = 40008;
constexpr int kSupply = 40009;
constexpr int kAddress = 40010;
constexpr int kBaud = 40011;
constexpr int kOptions = 40012;
constexpr int kSafeTime = 40013;
constexpr int kOpenedMask = 40015;
constexpr int kLimits = 40016;
constexpr int kFirmware = 40023;

constexpr int kAll = 0x03FF;

constexpr int kShortCircuit = 0x01;
constexpr int kOpenCircuit = 0x02;
constexpr int kOvertemperature = 0x04;
constexpr int kGeneralError = 0x08;
constexpr int kUndervoltage = 0x40;

constexpr int kWritesOnly = 0x01;

/// One whose loads are good. It has just been asked something.
class PlayedMarlo : public PlayedModule {
 public:
  explicit PlayedMarlo(const ModuleOptions& options) : PlayedModule("marlo", options) {
    for (int output = 1; output <= 10; ++output) Hang(output, Load::kGood);
    Read(40001);
  }

  bool Hang(int output, Load load) { return GetModule().SetLoad(output, load, Now()); }
  /// Diagnostics, opened, shorted and hot outputs.
  std::vector<int> Rows() { return {Peek(kDiagnostics), Peek(kOpened), Peek(kShorted), Peek(kHot)}; }
};

/// One that lives without a safe time, a delay and a threshold.
ModuleOptions Watching(std::vector<std::pair<int, unsigned>> presets) {
  presets.insert(presets.begin(), {{kOutputs, 0U}, {kSafeTime, 0U}, {kLimits, 0U}});
  return AliveWith(presets);
}

TEST(SimulatedMarlo, CanBeAskedForByItsName) {
  EXPECT_THAT(ModelNames(), ::testing::Contains("marlo"));
}

// Registers row by row.

TEST(SimulatedMarlo, TellsItsModelInTheIdentityAndItsFirmwareInARegisterOfItsOwn) {
  ModuleOptions options = StillWith({});
  options.firmware = 17;
  PlayedMarlo marlo(options);
  EXPECT_EQ(marlo.Read(40001), 0x0D00);
  EXPECT_EQ(marlo.Read(kFirmware), 17);
}

TEST(SimulatedMarlo, RefusesWritesToWhatItMeasures) {
  PlayedMarlo marlo(StillWith({{kSupply, 235}}));
  for (const int reg : {40001, kStatus, kOpened, kShorted, kHot, kSupply, kFirmware}) {
    const int before = marlo.Read(reg);
    EXPECT_EQ(marlo.Execute(test::WriteRequest(1, reg, 5)), test::ExceptionReply(1, 6, 2)) << reg;
    EXPECT_EQ(marlo.Read(reg), before) << reg;
  }
}

TEST(SimulatedMarlo, HasNoRegistersBeyondItsOwn) {
  PlayedMarlo marlo(StillWith({}));
  for (const int reg : {40014, 40017, 40022, 40024, 40066}) {
    EXPECT_EQ(marlo.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(marlo.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedMarlo, TakesEachOutputDefaultAndMaskByItsBit) {
  PlayedMarlo marlo(StillWith({}));
  for (const int reg : {kOutputs, kDefaults, kOpenedMask}) {
    for (int bit = 0; bit < 10; ++bit) {
      EXPECT_TRUE(marlo.Write(reg, 1 << bit));
      EXPECT_EQ(marlo.Read(reg), 1 << bit);
    }
    EXPECT_TRUE(marlo.Write(reg, kAll));
  }
}

TEST(SimulatedMarlo, RefusesBitsOfAnEleventhOutput) {
  PlayedMarlo marlo(StillWith({{kOpenedMask, 0}}));
  for (const int reg : {kOutputs, kDiagnostics, kDefaults, kOpenedMask}) {
    EXPECT_EQ(marlo.Execute(test::WriteRequest(1, reg, 0x0400)), test::ExceptionReply(1, 6, 3)) << reg;
    EXPECT_EQ(marlo.Read(reg), 0) << reg;
  }
}

TEST(SimulatedMarlo, KeepsAllSixteenBitsOfItsOtherSettings) {
  PlayedMarlo marlo(StillWith({}));
  for (const int reg : {kAddress, kBaud, kOptions, kSafeTime, kLimits}) {
    EXPECT_TRUE(marlo.Write(reg, 0xA5E2));
    EXPECT_EQ(marlo.Read(reg), 0xA5E2) << reg;
  }
}

TEST(SimulatedMarlo, ClearsDiagnosticsByZerosAndSetsNone) {
  PlayedMarlo marlo(StillWith({{kDiagnostics, 0x0105}}));
  EXPECT_TRUE(marlo.Write(kDiagnostics, 0x02FE));
  EXPECT_EQ(marlo.Read(kDiagnostics), 0x0004);
  EXPECT_TRUE(marlo.Write(kDiagnostics, 0));
  EXPECT_EQ(marlo.Read(kDiagnostics), 0);
}

TEST(SimulatedMarlo, ShowsItsAddressAndParityInOneWordAndItsBaudCodeInAnother) {
  struct Row {
    const char* line;
    int address;
    int parity;
    int baud;
  };
  for (const Row& row : {Row{"1200,n,8,1", 0xFF00, 0, 0x0600}, Row{"2400,e,8,1", 0xFF00, 1, 0x0700},
                         Row{"4800,o,8,1", 0xFF00, 2, 0x0000}, Row{"9600,n,8,1", 0xFF00, 0, 0x0100},
                         Row{"19200,e,8,1", 0xFF00, 1, 0x0200}, Row{"38400,o,8,1", 0xFF00, 2, 0x0300},
                         Row{"57600,n,8,1", 0xFF00, 0, 0x0400}}) {
    ModuleOptions options = StillWith({{kBaud, 0x050A}});
    options.setting = {255, LineOf(row.line)};
    PlayedMarlo marlo(options);
    EXPECT_EQ(marlo.Read(kAddress), row.address | row.parity) << row.line;
    EXPECT_EQ(marlo.Read(kBaud), row.baud | 0x0A) << row.line;
  }
}

TEST(SimulatedMarlo, AnswersAtOnceWhateverItsOptions) {
  PlayedMarlo marlo(StillWith({{kOptions, 0xFFFF}}));
  EXPECT_EQ(marlo.GetModule().ReplyDelay(), milliseconds(0));
}

TEST(SimulatedMarlo, HasGoodValuesWhenItStandsStill) {
  PlayedMarlo marlo(StillWith({}));
  marlo.Pass(minutes(5));
  EXPECT_THAT(marlo.ReadAll(kStatus, kSafeTime), ElementsAre(0, 0, 0, 0, 0, 0, 0, 240, 0x0100, 0x0100, 0, 0));
  EXPECT_THAT(marlo.ReadAll(kOpenedMask, kLimits), ElementsAre(kAll, 0x05B4));
}

TEST(SimulatedMarlo, StandsStillWhenTold) {
  PlayedMarlo marlo(StillWith({{kOutputs, 1}, {kOpened, 0x15}, {kSafeTime, 1}, {kDefaults, 2}, {kSupply, 100}}));
  marlo.Hang(1, Load::kShort);
  marlo.Pass(minutes(5));
  EXPECT_THAT(marlo.ReadAll(kStatus, kSupply), ElementsAre(0, 1, 0, 2, 0x15, 0, 0, 100));
}

// Loads.

TEST(SimulatedMarlo, HasTenLoads) {
  PlayedMarlo marlo(StillWith({}));
  for (int output = 1; output <= 10; ++output) EXPECT_TRUE(marlo.Hang(output, Load::kOpen)) << output;
  EXPECT_FALSE(marlo.Hang(0, Load::kOpen));
  EXPECT_FALSE(marlo.Hang(11, Load::kOpen));
}

TEST(SimulatedMarlo, HasNothingToTellOfGoodLoads) {
  PlayedMarlo marlo(Watching({{kOutputs, kAll}}));
  marlo.Pass(minutes(1));
  EXPECT_THAT(marlo.Rows(), ElementsAre(0, 0, 0, 0));
  EXPECT_EQ(marlo.Peek(kStatus), 0);
}

TEST(SimulatedMarlo, SeesEachMissingLoadWhetherItsOutputIsOnOrOff) {
  for (const unsigned outputs : {0U, 0x03FFU}) {
    for (int output = 1; output <= 10; ++output) {
      PlayedMarlo marlo(Watching({{kOutputs, outputs}}));
      marlo.Hang(output, Load::kOpen);
      marlo.Pass(milliseconds(1));
      const int bit = 1 << (output - 1);
      EXPECT_THAT(marlo.Rows(), ElementsAre(bit, bit, 0, 0));
      EXPECT_EQ(marlo.Peek(kStatus), kOpenCircuit | kGeneralError);
    }
  }
}

TEST(SimulatedMarlo, LooksForMissingLoadsOnlyWhereTheMaskTellsSo) {
  PlayedMarlo marlo(Watching({{kOpenedMask, 0x0001}}));
  marlo.Hang(1, Load::kOpen);
  marlo.Hang(2, Load::kOpen);
  marlo.Pass(milliseconds(1));
  EXPECT_THAT(marlo.Rows(), ElementsAre(1, 1, 0, 0));
  marlo.Write(kOpenedMask, 0x0002);
  marlo.Pass(milliseconds(1));
  EXPECT_THAT(marlo.Rows(), ElementsAre(3, 2, 0, 0));
}

TEST(SimulatedMarlo, SeesEachShortCircuitOnlyWhileItsOutputIsOn) {
  for (int output = 1; output <= 10; ++output) {
    PlayedMarlo marlo(Watching({}));
    marlo.Hang(output, Load::kShort);
    marlo.Pass(seconds(1));
    EXPECT_THAT(marlo.Rows(), ElementsAre(0, 0, 0, 0));
    const int bit = 1 << (output - 1);
    marlo.Write(kOutputs, bit);
    marlo.Pass(milliseconds(1));
    EXPECT_THAT(marlo.Rows(), ElementsAre(bit, 0, bit, 0));
    EXPECT_EQ(marlo.Peek(kStatus), kShortCircuit | kGeneralError);
  }
}

TEST(SimulatedMarlo, WaitsOutTheDelayOfAShortCircuit) {
  for (const int delay : {1, 20, 255}) {
    PlayedMarlo marlo(Watching({{kLimits, static_cast<unsigned>(delay) << 8}}));
    marlo.Hang(3, Load::kShort);
    marlo.Write(kOutputs, 0x0004);
    marlo.Pass(milliseconds(10 * delay - 1));
    EXPECT_THAT(marlo.Rows(), ElementsAre(0, 0, 0, 0)) << delay;
    marlo.Pass(milliseconds(1));
    EXPECT_THAT(marlo.Rows(), ElementsAre(4, 0, 4, 0)) << delay;
  }
}

TEST(SimulatedMarlo, BeginsTheDelayAnewWhenTheOutputIsTurnedOnAgain) {
  PlayedMarlo marlo(Watching({{kLimits, 0x1400}}));
  marlo.Hang(3, Load::kShort);
  for (int turn = 0; turn < 5; ++turn) {
    marlo.Write(kOutputs, 0x0004);
    marlo.Pass(milliseconds(199));
    marlo.Write(kOutputs, 0);
    marlo.Pass(milliseconds(1));
  }
  EXPECT_THAT(marlo.Rows(), ElementsAre(0, 0, 0, 0));
}

TEST(SimulatedMarlo, SeesEachHotOutputOnlyWhileItIsOn) {
  for (int output = 1; output <= 10; ++output) {
    PlayedMarlo marlo(Watching({}));
    marlo.Hang(output, Load::kHot);
    marlo.Pass(seconds(1));
    EXPECT_THAT(marlo.Rows(), ElementsAre(0, 0, 0, 0));
    const int bit = 1 << (output - 1);
    marlo.Write(kOutputs, bit);
    marlo.Pass(milliseconds(1));
    EXPECT_THAT(marlo.Rows(), ElementsAre(bit, 0, 0, bit));
    EXPECT_EQ(marlo.Peek(kStatus), kOvertemperature | kGeneralError);
  }
}

TEST(SimulatedMarlo, LatchesInTheDiagnosticsWhatHasGone) {
  PlayedMarlo marlo(Watching({{kOutputs, kAll}}));
  marlo.Hang(1, Load::kOpen);
  marlo.Hang(2, Load::kShort);
  marlo.Hang(10, Load::kHot);
  marlo.Pass(milliseconds(1));
  EXPECT_THAT(marlo.Rows(), ElementsAre(0x0203, 0x0001, 0x0002, 0x0200));
  EXPECT_EQ(marlo.Peek(kStatus), kOpenCircuit | kShortCircuit | kOvertemperature | kGeneralError);
  for (const int output : {1, 2, 10}) marlo.Hang(output, Load::kGood);
  marlo.Pass(milliseconds(1));
  EXPECT_THAT(marlo.Rows(), ElementsAre(0x0203, 0, 0, 0));
  EXPECT_EQ(marlo.Peek(kStatus), kGeneralError);
}

TEST(SimulatedMarlo, ForgetsClearedDiagnosticsUnlessTheTroubleIsStillThere) {
  PlayedMarlo marlo(Watching({{kDiagnostics, 0x0003}}));
  marlo.Hang(2, Load::kOpen);
  EXPECT_TRUE(marlo.Write(kDiagnostics, 0));
  marlo.Pass(milliseconds(1));
  EXPECT_EQ(marlo.Peek(kDiagnostics), 0x0002);
  marlo.Hang(2, Load::kGood);
  EXPECT_TRUE(marlo.Write(kDiagnostics, 0));
  marlo.Pass(milliseconds(1));
  EXPECT_EQ(marlo.Peek(kDiagnostics), 0);
  EXPECT_EQ(marlo.Peek(kStatus), 0);
}

// The supply.

TEST(SimulatedMarlo, TellsASupplyBelowItsThreshold) {
  for (const unsigned supply : {200U, 205U}) {
    PlayedMarlo marlo(Watching({{kLimits, 205}, {kSupply, supply}}));
    marlo.Pass(milliseconds(1));
    EXPECT_EQ(marlo.Peek(kStatus), supply < 205 ? kUndervoltage | kGeneralError : 0) << supply;
    EXPECT_EQ(marlo.Peek(kDiagnostics), 0);
  }
}

TEST(SimulatedMarlo, HasASupplyThatSwaysALittleAboutWhatWasSet) {
  PlayedMarlo marlo(Watching({}));
  for (const unsigned supply : {240U, 120U, 0U}) {
    marlo.Set(kSupply, supply);
    std::vector<int> seen;
    for (int i = 0; i < 100; ++i) {
      marlo.Pass(milliseconds(300));
      seen.push_back(marlo.Peek(kSupply));
    }
    const auto [lowest, highest] = std::minmax_element(seen.begin(), seen.end());
    EXPECT_GE(*lowest, static_cast<int>(supply) - 4) << supply;
    EXPECT_LE(*highest, static_cast<int>(supply) + 4) << supply;
    EXPECT_EQ(*highest - *lowest, 4) << supply;
  }
}

// The safe time.

TEST(SimulatedMarlo, TakesItsDefaultsAfterTheSafeTime) {
  for (const int time : {1, 20, 3000}) {
    PlayedMarlo marlo(Watching({{kOutputs, kAll}, {kDefaults, 0x0155}, {kSafeTime, static_cast<unsigned>(time)}}));
    marlo.Pass(milliseconds(100 * time - 1));
    EXPECT_EQ(marlo.Peek(kOutputs), kAll) << time;
    marlo.Pass(milliseconds(1));
    EXPECT_EQ(marlo.Peek(kOutputs), 0x0155) << time;
  }
}

TEST(SimulatedMarlo, KeepsItsOutputsWithoutASafeTime) {
  PlayedMarlo marlo(Watching({{kOutputs, kAll}, {kDefaults, 0x0155}}));
  marlo.Pass(minutes(60));
  EXPECT_EQ(marlo.Peek(kOutputs), kAll);
}

TEST(SimulatedMarlo, IsKeptAwakeByEachRequest) {
  PlayedMarlo marlo(Watching({{kOutputs, kAll}, {kSafeTime, 5}}));
  for (int i = 0; i < 50; ++i) {
    marlo.Pass(milliseconds(499));
    if (i % 2 == 0) {
      marlo.Read(kStatus);
    } else {
      marlo.Write(kOptions, 0);
    }
  }
  EXPECT_EQ(marlo.Peek(kOutputs), kAll);
}

TEST(SimulatedMarlo, IsKeptAwakeByWritesAloneWithTheOption) {
  PlayedMarlo marlo(Watching({{kOutputs, kAll}, {kDefaults, 0x000F}, {kSafeTime, 5}, {kOptions, kWritesOnly}}));
  for (int i = 0; i < 10; ++i) {
    marlo.Pass(milliseconds(400));
    marlo.Write(kLimits, 0);
  }
  EXPECT_EQ(marlo.Peek(kOutputs), kAll);
  for (int i = 0; i < 2; ++i) {
    marlo.Pass(milliseconds(250));
    marlo.Read(kStatus);
  }
  EXPECT_EQ(marlo.Peek(kOutputs), 0x000F);
}

TEST(SimulatedMarlo, TakesNewOutputsAfterTheDefaults) {
  PlayedMarlo marlo(Watching({{kOutputs, kAll}, {kSafeTime, 5}}));
  marlo.Pass(seconds(1));
  EXPECT_TRUE(marlo.Write(kOutputs, 0x0011));
  marlo.Pass(milliseconds(499));
  EXPECT_EQ(marlo.Peek(kOutputs), 0x0011);
}

TEST(SimulatedMarlo, SeesTheSameHoweverSeldomItIsLookedAt) {
  const ModuleOptions options = Watching({{kOutputs, 0x0001}, {kDefaults, 0x0002}, {kSafeTime, 10}, {kLimits, 0x32B4}});
  PlayedMarlo often(options);
  PlayedMarlo once(options);
  for (PlayedMarlo* marlo : {&often, &once}) {
    marlo->Hang(1, Load::kShort);
    marlo->Hang(2, Load::kShort);
  }
  for (int step = 0; step < 27; ++step) {
    often.Pass(milliseconds(50));
    often.Peek(kStatus);
  }
  once.Pass(milliseconds(1350));
  for (int reg = kStatus; reg <= kSupply; ++reg) EXPECT_EQ(often.Peek(reg), once.Peek(reg)) << reg;
  // The first was seen before the defaults came; the second is not yet half a second on.
  EXPECT_THAT(once.Rows(), ElementsAre(1, 0, 0, 0));
}

// Life.

TEST(SimulatedMarlo, ShowsTroubleAndItsDefaultsWithinSecondsWhateverTheSeed) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    ModuleOptions options;
    options.seed = seed;
    PlayedModule marlo("marlo", options);
    marlo.Pass(seconds(1));
    EXPECT_EQ(marlo.Read(kStatus), kShortCircuit | kOpenCircuit | kGeneralError) << seed;
    EXPECT_NE(marlo.Read(kShorted), marlo.Read(kOpened)) << seed;
    marlo.Pass(seconds(5));
    EXPECT_EQ(marlo.Peek(kOutputs), marlo.Peek(kDefaults)) << seed;
    EXPECT_GT(marlo.Peek(kDefaults), 0) << seed;
  }
}

TEST(SimulatedMarlo, StartsTheSameWithTheSameSeed) {
  const auto patterns = [](unsigned seed) {
    ModuleOptions options;
    options.seed = seed;
    return PlayedModule("marlo", options).ReadAll(kOutputs, kDefaults);
  };
  EXPECT_EQ(patterns(1), patterns(1));
  EXPECT_NE(patterns(1), patterns(2));
}

// Restart.

TEST(SimulatedMarlo, HasNoRegisterThatRestartsIt) {
  PlayedMarlo marlo(StillWith({}));
  for (int reg = kOutputs; reg <= kFirmware; ++reg) {
    marlo.Write(reg, 1);
    EXPECT_FALSE(marlo.GetModule().Restarting()) << reg;
  }
}

TEST(SimulatedMarlo, TakesItsDefaultsAndClearsItsDiagnosticsAtARestart) {
  PlayedMarlo marlo(StillWith({{kOutputs, 0x02AA}, {kDefaults, 0x0155}, {kDiagnostics, 0x0007}}));
  marlo.Restart();
  EXPECT_THAT(marlo.ReadAll(kOutputs, kDefaults), ElementsAre(0x0155, 0, 0x0155));
}

TEST(SimulatedMarlo, KeepsItsSettingsOverARestart) {
  PlayedMarlo marlo(StillWith({}));
  const std::vector<std::pair<int, int>> settings = {{kDefaults, 0x0155}, {kAddress, 0x0100}, {kBaud, 0x0104},
                                                     {kOptions, 0x0303},  {kSafeTime, 1234},  {kOpenedMask, 0x02AA},
                                                     {kLimits, 0x1234}};
  for (const auto& [reg, value] : settings) EXPECT_TRUE(marlo.Write(reg, value)) << reg;
  marlo.Restart();
  for (const auto& [reg, value] : settings) EXPECT_EQ(marlo.Read(reg), value) << reg;
}

TEST(SimulatedMarlo, TakesItsSerialSettingsAtARestartOnly) {
  PlayedMarlo marlo(StillWith({}));
  EXPECT_TRUE(marlo.Write(kBaud, 0x0300));
  EXPECT_TRUE(marlo.Write(kAddress, 0x1102));
  EXPECT_EQ(marlo.GetModule().InForce(), (Setting{1, LineOf("9600,n,8,1")}));
  marlo.Restart();
  EXPECT_EQ(marlo.GetModule().InForce(), (Setting{17, LineOf("38400,o,8,1")}));
}

TEST(SimulatedMarlo, StaysReachableWhateverItsSerialSettingsHold) {
  struct Row {
    int address;
    int baud;
    Setting setting;
  };
  for (const Row& row : {Row{0x0000, 0x0500, {1, LineOf("9600,n,8,1")}}, Row{0x0003, 0xFD00, {1, LineOf("9600,n,8,1")}},
                         Row{0xFFFD, 0xF8FF, {255, LineOf("4800,e,8,1")}}}) {
    PlayedMarlo marlo(StillWith({}));
    marlo.Write(kAddress, row.address);
    marlo.Write(kBaud, row.baud);
    marlo.Restart();
    EXPECT_EQ(marlo.GetModule().InForce(), row.setting) << row.address;
  }
}

TEST(SimulatedMarlo, BeginsItsSafeTimeAndDelaysAnewAtARestart) {
  PlayedMarlo marlo(
      Watching({{kOutputs, 0x0001}, {kDefaults, 0x0001}, {kSafeTime, 5}, {kLimits, 0x1400}, {kOpenedMask, 0}}));
  marlo.Hang(1, Load::kShort);
  marlo.Pass(milliseconds(199));
  marlo.Restart();
  marlo.Set(kOutputs, 0x0003);
  marlo.Pass(milliseconds(199));
  EXPECT_EQ(marlo.Peek(kShorted), 0);
  marlo.Pass(milliseconds(1));
  EXPECT_EQ(marlo.Peek(kShorted), 1);
  marlo.Pass(milliseconds(299));
  EXPECT_EQ(marlo.Peek(kOutputs), 0x0003);
  marlo.Pass(milliseconds(1));
  EXPECT_EQ(marlo.Peek(kOutputs), 0x0001);
}

}  // namespace
}  // namespace tarvo::simulator
