#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::ElementsAre;

constexpr int kStatus = 40002;
constexpr int kValue1 = 40003;
constexpr int kSerial = 40035;
constexpr int kSystem = 40040;

constexpr int SensorOf(int input) {
  return 40062 + 16 * input;
}
constexpr int RangeOf(int input) {
  return 40063 + 16 * input;
}

constexpr int kNickel = 0x0300;
constexpr int kResistance = 0x0400;
constexpr int kCelsius = 0x01;
constexpr int kTenths = 0x08;
constexpr int kHundredths = 0x10;
constexpr int kDin = 0x20;

struct Kind {
  const char* name;
  int identity;
  int inputs;
};

class SimulatedRtd : public ::testing::TestWithParam<Kind> {
 protected:
  static constexpr int kOldLayout = 17;
  static constexpr int kNewLayout = 18;

  static ModuleOptions Still(int firmware, const std::vector<std::pair<int, unsigned>>& presets = {}) {
    ModuleOptions options = StillWith(presets);
    options.firmware = firmware;
    return options;
  }
  static PlayedModule Play(const ModuleOptions& options) { return {GetParam().name, options}; }
  static PlayedModule PlayStill(const std::vector<std::pair<int, unsigned>>& presets = {}) {
    return Play(Still(kNewLayout, presets));
  }
  static int Inputs() { return GetParam().inputs; }
  static int Last() { return Inputs() - 1; }
  static int Signed(PlayedModule& module, int reg) { return static_cast<std::int16_t>(module.Read(reg)); }
};

INSTANTIATE_TEST_SUITE_P(, SimulatedRtd, ::testing::Values(Kind{"nerith", 0x0800, 4}, Kind{"pellor", 0x0900, 3}),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(SimulatedRtd, CanBeAskedForByItsName) {
  EXPECT_THAT(ModelNames(), ::testing::Contains(GetParam().name));
}

// Registers row by row.

TEST_P(SimulatedRtd, TellsItsModelAndFirmwareInTheIdentity) {
  for (const int firmware : {kOldLayout, kNewLayout, 255}) {
    EXPECT_EQ(Play(Still(firmware)).Read(40001), GetParam().identity | firmware);
  }
}

TEST_P(SimulatedRtd, RefusesWritesToWhatItMeasures) {
  PlayedModule module = PlayStill({{kValue1, 7}});
  for (int reg = 40001; reg <= 40006; ++reg) {
    const int before = module.Read(reg);
    EXPECT_EQ(module.Execute(test::WriteRequest(1, reg, 5)), test::ExceptionReply(1, 6, 2)) << reg;
    EXPECT_EQ(module.Read(reg), before) << reg;
  }
}

TEST_P(SimulatedRtd, HasNoRegistersBeyondItsOwn) {
  PlayedModule module = PlayStill();
  for (const int reg : {40007, 40034, 40036, 40039, 40041, 40061, 40064, 40077, 40080, 40093, 40096, 40109, 40112,
                        40126, SensorOf(Inputs()), RangeOf(Inputs())}) {
    EXPECT_EQ(module.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(module.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST_P(SimulatedRtd, AnswersABlockOfFourValues) {
  PlayedModule module = PlayStill({{kStatus, 0x0001}, {kValue1, 11}, {kValue1 + 1, 0xFFFF}, {kValue1 + 2, 33}});
  EXPECT_THAT(module.ReadAll(kStatus, kValue1 + 3), ElementsAre(0x0001, 11, 0xFFFF, 33, 0));
}

TEST_P(SimulatedRtd, TakesTheSettingsOfEachInput) {
  PlayedModule module = PlayStill();
  for (int input = 0; input < Inputs(); ++input) {
    for (const int word : {0, 0x0507, 0x0707, 1 + input}) {
      EXPECT_TRUE(module.Write(SensorOf(input), word));
      EXPECT_EQ(module.Read(SensorOf(input)), word);
    }
    for (const int word : {0, 0x7000, 0x6000, 0x1000 * input}) {
      EXPECT_TRUE(module.Write(RangeOf(input), word));
      EXPECT_EQ(module.Read(RangeOf(input)), word);
    }
  }
  for (int input = 0; input < Inputs(); ++input) EXPECT_EQ(module.Read(SensorOf(input)), 1 + input);
}

TEST_P(SimulatedRtd, RefusesSettingsThatItDoesNotHave) {
  PlayedModule module = PlayStill({{kSystem, 0}});
  for (int input = 0; input < Inputs(); ++input) {
    for (const auto& [reg, word] : {std::pair(SensorOf(input), 0x0708), std::pair(SensorOf(input), 0x0800),
                                    std::pair(RangeOf(input), 0x8000), std::pair(kSystem, 0x40)}) {
      EXPECT_EQ(module.Execute(test::WriteRequest(1, reg, word)), test::ExceptionReply(1, 6, 3)) << reg;
      EXPECT_EQ(module.Read(reg), 0) << reg;
    }
  }
  EXPECT_TRUE(module.Write(kSystem, 0x3F));
}

TEST_P(SimulatedRtd, StartsWithTenthsOfADegreeCelsiusByDin) {
  EXPECT_EQ(PlayStill().Read(kSystem), kDin | kTenths | kCelsius);
}

TEST_P(SimulatedRtd, ShowsAddressParityAndBaudCodeInOneWord) {
  struct Row {
    const char* line;
    int word;
  };
  for (const Row& row : {Row{"1200,n,8,1", 6 * 1024}, Row{"2400,e,8,1", 7 * 1024 | 0x0100}, Row{"4800,o,8,1", 0x0200},
                         Row{"9600,n,8,1", 1 * 1024}, Row{"19200,e,8,1", 2 * 1024 | 0x0100},
                         Row{"38400,o,8,1", 3 * 1024 | 0x0200}, Row{"57600,n,8,1", 4 * 1024}}) {
    for (const int address : {1, 255}) {
      ModuleOptions options = Still(kNewLayout, {{kSerial, 0xA000}});
      options.setting = {address, LineOf(row.line)};
      EXPECT_EQ(Play(options).Read(kSerial), 0xA000 | row.word | address) << row.line;
    }
  }
}

TEST_P(SimulatedRtd, AnswersAtOnceWhateverItsSettings) {
  PlayedModule module = PlayStill();
  module.Write(kSerial, 0xFFFF);
  EXPECT_EQ(module.GetModule().ReplyDelay(), milliseconds(0));
}

TEST_P(SimulatedRtd, StandsStillWhenTold) {
  PlayedModule module = PlayStill({{kValue1, 123}, {kStatus, 0x0002}});
  const std::vector<int> before = module.ReadAll(40001, 40006);
  module.Pass(minutes(5));
  EXPECT_EQ(module.ReadAll(40001, 40006), before);
  EXPECT_THAT(module.ReadAll(kStatus, kValue1), ElementsAre(0x0002, 123));
}

// Failures.

TEST_P(SimulatedRtd, TellsEachFailureThatIsOrdered) {
  PlayedModule module = PlayStill();
  for (int bit = 0; bit < 8; ++bit) {
    module.Set(kStatus, 1U << bit);
    EXPECT_EQ(module.Read(kStatus), 1 << bit);
  }
}

TEST_P(SimulatedRtd, ReadsAnEndOfTheRangeWhereASensorIsBroken) {
  struct Row {
    int sensor;
    int range;
    int value;
  };
  const Row rows[] = {{0, 0x0000, 4000},  {0, 0x1000, 8500},      {0, 0x2000, 2000},       {0, 0x3000, 2000},
                      {0, 0x4000, -2000}, {0, 0x5000, -2000},     {kNickel, 0x1000, 1800}, {kNickel, 0x5000, -600},
                      {0x0100, 0, 4000},  {0x0007, 0x1000, 8500}, {0x0200, 0x4000, -2000}};
  for (const int firmware : {kOldLayout, kNewLayout}) {
    PlayedModule module = Play(Still(firmware));
    for (int input = 0; input < Inputs(); ++input) {
      module.Set(kValue1 + input, 250);
      for (const Row& row : rows) {
        EXPECT_TRUE(module.Write(SensorOf(input), row.sensor));
        EXPECT_TRUE(module.Write(RangeOf(input), row.range));
        module.Set(kStatus, 0x10U << input);
        EXPECT_EQ(Signed(module, kValue1 + input), row.value) << row.sensor << ' ' << row.range;
        module.Set(kStatus, 0x0FU);
        EXPECT_EQ(Signed(module, kValue1 + input), 250);
      }
    }
  }
}

TEST_P(SimulatedRtd, TellsABrokenSensorOfItsOwnInputOnly) {
  PlayedModule module = PlayStill({{kValue1, 11}, {kValue1 + 1, 22}, {kValue1 + 2, 33}});
  module.Set(kStatus, 0x20);
  EXPECT_THAT(module.ReadAll(kValue1, kValue1 + 2), ElementsAre(11, 4000, 33));
}

// Units, digits and resistance, by the value of a broken sensor: the upper end of its range.

TEST_P(SimulatedRtd, MeasuresInItsUnitsAndDigits) {
  struct Row {
    int system;
    int value;
  };
  // 200 degrees Celsius; the last ones do not fit in 16 bits.
  const Row rows[] = {{0, 473},
                      {1, 200},
                      {2, 392},
                      {3, 852},
                      {kTenths | 0, 4732},
                      {kTenths | 1, 2000},
                      {kTenths | 2, 3920},
                      {kTenths | 3, 8517},
                      {kHundredths | 1, 20000},
                      {kHundredths | kTenths | 1, 20000},
                      {7, 200},
                      {kHundredths | 0, 32767},
                      {kHundredths | 3, 32767}};
  PlayedModule module = PlayStill({{RangeOf(0), 0x2000}, {kStatus, 0x10}});
  for (const Row& row : rows) {
    EXPECT_TRUE(module.Write(kSystem, row.system));
    EXPECT_EQ(Signed(module, kValue1), row.value) << row.system;
  }
}

TEST_P(SimulatedRtd, MeasuresTheResistanceOfEachSensorOnNewFirmware) {
  struct Row {
    int sensor;
    int range;
    int system;
    int value;
  };
  // The resistances of the sensors' own tables, in tenths of an ohm.
  const Row rows[] = {{0, 0x0000, kDin | kTenths, 2471},     {0, 0x1000, kDin | kTenths, 3905},
                      {0, 0x2000, kDin | kTenths, 1759},     {0, 0x4000, kDin | kTenths, 185},
                      {0, 0x2000, kTenths | kCelsius, 1770}, {kNickel, 0, kDin | kTenths, 2232},
                      {kNickel, 0, kTenths, 2232},           {kNickel, 0x4000, kDin | kTenths, 695},
                      {0x0100, 0x2000, kDin, 176},           {0x0200, 0x2000, kDin | kHundredths, 17586}};
  for (int input = 0; input < Inputs(); ++input) {
    PlayedModule module = PlayStill({{kStatus, 0xF0}});
    for (const Row& row : rows) {
      module.Write(kSystem, row.system);
      module.Write(SensorOf(input), row.sensor | kResistance);
      module.Write(RangeOf(input), row.range);
      EXPECT_EQ(Signed(module, kValue1 + input), row.value) << row.sensor << ' ' << row.range;
    }
  }
}

TEST_P(SimulatedRtd, KnowsNoResistanceOnOldFirmware) {
  PlayedModule module = Play(Still(kOldLayout, {{kStatus, 0x10}, {SensorOf(0), kResistance}}));
  EXPECT_EQ(module.Read(kValue1), 4000);
}

TEST_P(SimulatedRtd, TakesTheThirdSensorBitForACodeOnOldFirmware) {
  // A code that there is not is a platinum sensor; on new firmware the same word asks for the resistance of nickel.
  const std::vector<std::pair<int, unsigned>> presets = {{kStatus, 0x10}, {SensorOf(0), 0x0700}};
  EXPECT_EQ(Play(Still(kOldLayout, presets)).Read(kValue1), 4000);
  EXPECT_EQ(Play(Still(kNewLayout, presets)).Read(kValue1), 2232);
}

// Life.

/// The lowest and the highest value of an input in three minutes, and how often its sensor broke.
struct Course {
  int low = 32767;
  int high = -32768;
  int breaks = 0;
};

std::vector<Course> Watch(PlayedModule& module) {
  std::vector<Course> courses(4);
  int before = 0;
  for (int step = 0; step < 1800; ++step) {
    module.Pass(milliseconds(100));
    const int status = module.Read(kStatus);
    for (int input = 0; input < 4; ++input) {
      Course& course = courses[static_cast<std::size_t>(input)];
      course.breaks += (status & ~before) >> (4 + input) & 1;
      if ((status >> (4 + input) & 1) != 0) continue;
      const int value = static_cast<std::int16_t>(module.Read(kValue1 + input));
      course.low = std::min(course.low, value);
      course.high = std::max(course.high, value);
    }
    before = status;
  }
  return courses;
}

TEST_P(SimulatedRtd, MovesEachInputWhateverTheSeed) {
  constexpr std::pair<int, int> kEnds[] = {{100, 400}, {400, 1200}, {-500, 100}, {400, 600}};
  for (unsigned seed = 0; seed < 5; ++seed) {
    SCOPED_TRACE(seed);
    ModuleOptions options;
    options.seed = seed;
    PlayedModule module = Play(options);
    const std::vector<Course> courses = Watch(module);
    for (int input = 0; input < Inputs(); ++input) {
      const auto at = static_cast<std::size_t>(input);
      EXPECT_NEAR(courses[at].low, kEnds[at].first, 10) << input;
      EXPECT_NEAR(courses[at].high, kEnds[at].second, 10) << input;
      EXPECT_EQ(courses[at].breaks > 0, input == Last()) << input;
    }
    EXPECT_EQ(courses[3].low == 0 && courses[3].high == 0, Inputs() == 3);
  }
}

TEST_P(SimulatedRtd, KeepsTheFailuresThatWereOrdered) {
  PlayedModule module = Play(ModuleOptions{});
  module.Set(kStatus, 0x13);
  module.Pass(seconds(1));
  EXPECT_EQ(module.Read(kStatus) & 0x13, 0x13);
  module.Pass(seconds(80));
  EXPECT_EQ(module.Read(kStatus) & 0x13, 0x13);
}

TEST_P(SimulatedRtd, HoldsAFailedChannelWhereItIs) {
  PlayedModule module = Play(ModuleOptions{});
  module.Pass(seconds(3));
  const int before = module.Read(kValue1);
  module.Set(kStatus, 0x01);
  module.Pass(seconds(20));
  EXPECT_EQ(module.Read(kValue1), before);
  module.Set(kStatus, 0);
  module.Pass(milliseconds(100));
  EXPECT_NE(module.Read(kValue1), before);
}

TEST_P(SimulatedRtd, FollowsItsInputMoreSlowlyWithAHighDumpFactor) {
  // 0.1 s of each conversion against minutes: a factor of 7 holds what swings in one.
  ModuleOptions options = AliveWith({{SensorOf(0), 7}});
  PlayedModule slow = Play(options);
  PlayedModule quick = Play(ModuleOptions{});
  const std::vector<Course> slowCourse = Watch(slow);
  const std::vector<Course> quickCourse = Watch(quick);
  EXPECT_LT(slowCourse[0].high - slowCourse[0].low, (quickCourse[0].high - quickCourse[0].low) * 3 / 4);
  EXPECT_GT(slowCourse[0].high - slowCourse[0].low, 0);
}

TEST_P(SimulatedRtd, ShowsAChangeOfUnitsWithItsNextConversion) {
  PlayedModule module = Play(ModuleOptions{});
  module.Pass(seconds(1));
  const int celsius = Signed(module, kValue1);
  module.Write(kSystem, kTenths);
  module.Pass(milliseconds(100));
  EXPECT_NEAR(Signed(module, kValue1), celsius + 2732, 5);
}

TEST_P(SimulatedRtd, MovesTheSameHoweverSeldomItIsRead) {
  PlayedModule often = Play(ModuleOptions{});
  PlayedModule once = Play(ModuleOptions{});
  for (int step = 0; step < 1000; ++step) {
    often.Pass(milliseconds(37));
    often.Read(kStatus);
  }
  once.Pass(milliseconds(37) * 1000);
  EXPECT_EQ(often.ReadAll(kStatus, 40006), once.ReadAll(kStatus, 40006));
}

TEST_P(SimulatedRtd, StartsTheSameWithTheSameSeed) {
  const auto values = [](unsigned seed) {
    ModuleOptions options;
    options.seed = seed;
    return Play(options).ReadAll(kValue1, kValue1 + 2);
  };
  EXPECT_EQ(values(1), values(1));
  EXPECT_NE(values(1), values(2));
}

// Restart.

TEST_P(SimulatedRtd, HasNoRegisterThatRestartsIt) {
  PlayedModule module = PlayStill();
  for (const int reg : {kSerial, kSystem, SensorOf(0), RangeOf(0), kStatus}) {
    module.Write(reg, 1);
    EXPECT_FALSE(module.GetModule().Restarting()) << reg;
  }
}

TEST_P(SimulatedRtd, KeepsItsSettingsOverARestart) {
  PlayedModule module = PlayStill();
  const std::vector<std::pair<int, int>> settings = {{kSerial, 0x0401},          {kSystem, 0x12},
                                                     {SensorOf(0), 0x0705},      {RangeOf(0), 0x5000},
                                                     {SensorOf(Last()), 0x0001}, {RangeOf(Last()), 0x2000}};
  for (const auto& [reg, value] : settings) EXPECT_TRUE(module.Write(reg, value)) << reg;
  module.Restart();
  for (const auto& [reg, value] : settings) EXPECT_EQ(module.Read(reg), value) << reg;
}

TEST_P(SimulatedRtd, TakesItsSerialSettingsAtARestartOnly) {
  PlayedModule module = PlayStill();
  EXPECT_TRUE(module.Write(kSerial, 3 * 1024 | 0x0200 | 17));
  EXPECT_EQ(module.GetModule().InForce(), (Setting{1, LineOf("9600,n,8,1")}));
  module.Restart();
  EXPECT_EQ(module.GetModule().InForce(), (Setting{17, LineOf("38400,o,8,1")}));
}

TEST_P(SimulatedRtd, StaysReachableWhateverItsSerialSettingsHold) {
  struct Row {
    int word;
    Setting setting;
  };
  for (const Row& row : {Row{5 * 1024, {1, LineOf("9600,n,8,1")}}, Row{0x0300 | 9, {9, LineOf("4800,n,8,1")}},
                         Row{0xFFFF, {255, LineOf("2400,n,8,1")}}, Row{0xE1FE, {254, LineOf("4800,e,8,1")}}}) {
    PlayedModule module = PlayStill();
    module.Write(kSerial, row.word);
    module.Restart();
    EXPECT_EQ(module.GetModule().InForce(), row.setting) << row.word;
  }
}

}  // namespace
}  // namespace tarvo::simulator
