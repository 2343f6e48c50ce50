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
using ::testing::ElementsAre;

constexpr int kStatus = 40002;
constexpr int kMeasure = 40003;
constexpr int kWire = 40016;
constexpr int kAddress = 40035;
constexpr int kBaud = 40036;
constexpr int kChannel = 40037;
constexpr int kInputs = 4;

// Of a channel's register.
constexpr int kCompensated = 0x10;
constexpr int kOhm = 0x20;
constexpr int kPt100 = 0x00;
constexpr int kPt500 = 0x40;
constexpr int kPt1000 = 0x80;
constexpr int kNi100 = 0xC0;

constexpr int kLastFailed = 0x0800;

class PlayedOswin : public PlayedModule {
 public:
  explicit PlayedOswin(const ModuleOptions& options) : PlayedModule("oswin", options) {}

  void SetAllChannels(int value) {
    for (int input = 0; input < kInputs; ++input) EXPECT_TRUE(Write(kChannel + input, value));
  }
  /// The measure with its sign.
  int Degrees(int input) { return state::Word(static_cast<unsigned>(Peek(kMeasure + input))).Signed(); }
  std::vector<int> Measures() { return {Peek(40003), Peek(40004), Peek(40005), Peek(40006)}; }
  /// Lets one conversion go by.
  void Convert() { Pass(milliseconds(100)); }
};

TEST(SimulatedOswin, CanBeAskedForByItsName) {
  EXPECT_THAT(ModelNames(), ::testing::Contains("oswin"));
}

// Registers row by row.

TEST(SimulatedOswin, TellsItsModelAndFirmwareInTheIdentity) {
  ModuleOptions options = StillWith({});
  options.firmware = 18;
  EXPECT_EQ(PlayedOswin(options).Read(40001), 0x1612);
}

TEST(SimulatedOswin, AnswersTheBlockThatBeginsWithItsStatus) {
  PlayedOswin oswin(StillWith({{kStatus, 0x2100}, {40003, 1}, {40004, 0xFFFF}, {40005, 3}, {40006, 4}}));
  EXPECT_EQ(oswin.Execute(test::ReadRequest(1, kStatus, 5)), test::ReadReply(1, {0x2100, 1, 0xFFFF, 3, 4}));
}

TEST(SimulatedOswin, RefusesWritesToWhatItMeasures) {
  PlayedOswin oswin(StillWith({}));
  for (const int reg : {40001, kStatus, 40003, 40004, 40005, 40006, 40016, 40017, 40018, 40019}) {
    const int before = oswin.Read(reg);
    EXPECT_EQ(oswin.Execute(test::WriteRequest(1, reg, 5)), test::ExceptionReply(1, 6, 2)) << reg;
    EXPECT_EQ(oswin.Read(reg), before) << reg;
  }
}

TEST(SimulatedOswin, HasNoRegistersBeyondItsOwn) {
  PlayedOswin oswin(StillWith({}));
  for (const int reg : {40007, 40015, 40020, 40034, 40041, 40062, 40066, 40101}) {
    EXPECT_EQ(oswin.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(oswin.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedOswin, KeepsEachBitOfItsChannels) {
  PlayedOswin oswin(StillWith({}));
  for (int reg = kChannel; reg < kChannel + kInputs; ++reg) {
    for (int bit = 0; bit < 8; ++bit) {
      EXPECT_TRUE(oswin.Write(reg, 1 << bit));
      EXPECT_EQ(oswin.Read(reg), 1 << bit) << reg;
    }
  }
}

TEST(SimulatedOswin, RefusesMoreThanAChannelHas) {
  PlayedOswin oswin(StillWith({{kChannel, 0xFF}}));
  EXPECT_EQ(oswin.Execute(test::WriteRequest(1, kChannel, 0x0100)), test::ExceptionReply(1, 6, 3));
  EXPECT_EQ(oswin.Read(kChannel), 0xFF);
}

TEST(SimulatedOswin, RefusesMoreThanABaudCode) {
  PlayedOswin oswin(StillWith({}));
  EXPECT_TRUE(oswin.Write(kBaud, 0x0700));
  EXPECT_EQ(oswin.Execute(test::WriteRequest(1, kBaud, 0x0800)), test::ExceptionReply(1, 6, 3));
  EXPECT_EQ(oswin.Read(kBaud), 0x0700);
}

TEST(SimulatedOswin, ShowsItsAddressAndParityInOneWordAndItsBaudCodeInAnother) {
  struct Row {
    const char* line;
    int address;
    int baud;
  };
  for (const Row& row :
       {Row{"1200,n,8,1", 0xFF00, 0x0600}, Row{"2400,e,8,1", 0xFF01, 0x0700}, Row{"4800,o,8,1", 0xFF02, 0x0000},
        Row{"9600,n,8,1", 0xFF00, 0x0100}, Row{"19200,e,8,1", 0xFF01, 0x0200}, Row{"38400,o,8,1", 0xFF02, 0x0300},
        Row{"57600,n,8,1", 0xFF00, 0x0400}}) {
    ModuleOptions options = StillWith({});
    options.setting = {255, LineOf(row.line)};
    PlayedOswin oswin(options);
    EXPECT_EQ(oswin.Read(kAddress), row.address) << row.line;
    EXPECT_EQ(oswin.Read(kBaud), row.baud) << row.line;
  }
}

TEST(SimulatedOswin, AnswersAtOnceWhateverItsSerialSettings) {
  PlayedOswin oswin(StillWith({}));
  EXPECT_TRUE(oswin.Write(kAddress, 0x01FC));
  EXPECT_EQ(oswin.GetModule().ReplyDelay(), milliseconds(0));
}

TEST(SimulatedOswin, HasAChannelOfEachTypeAtFirst) {
  PlayedOswin oswin(StillWith({}));
  EXPECT_THAT(oswin.ReadAll(kChannel, kChannel + 3),
              ElementsAre(kPt100 | kCompensated, kPt500 | 1, kPt1000 | kOhm, kNi100 | kCompensated | 2));
  EXPECT_THAT(oswin.ReadAll(kWire, kWire + 3), ElementsAre(350, 820, 1500, 640));
}

TEST(SimulatedOswin, StandsStillWhenTold) {
  PlayedOswin oswin(StillWith({{kStatus, 0x1000}, {40003, 11}, {40006, 44}, {kWire, 7}}));
  oswin.Pass(minutes(5));
  EXPECT_THAT(oswin.ReadAll(kStatus, 40006), ElementsAre(0x1000, 11, 0, 0, 44));
  EXPECT_EQ(oswin.Read(kWire), 7);
}

// Measures.

TEST(SimulatedOswin, MeasuresTheDegreesThatEachSensorCanFeel) {
  struct Row {
    int type;
    int lowest;
    int highest;
  };
  for (const Row& row :
       {Row{kPt100, 600, 4200}, Row{kPt500, 600, 4200}, Row{kPt1000, 600, 4200}, Row{kNi100, 600, 1800}}) {
    PlayedOswin oswin(AliveWith({{kChannel + 2, static_cast<unsigned>(row.type | kCompensated)}}));
    int lowest = 32767;
    int highest = -32768;
    for (int i = 0; i < 900; ++i) {
      oswin.Convert();
      lowest = std::min(lowest, oswin.Degrees(2));
      highest = std::max(highest, oswin.Degrees(2));
    }
    EXPECT_EQ(lowest, row.lowest) << row.type;
    EXPECT_EQ(highest, row.highest) << row.type;
  }
}

TEST(SimulatedOswin, MeasuresBelowZero) {
  PlayedOswin oswin(AliveWith({{kChannel + 1, kPt500 | kCompensated}}));
  int lowest = 32767;
  for (int i = 0; i < 450; ++i) {
    oswin.Convert();
    lowest = std::min(lowest, oswin.Degrees(1));
  }
  EXPECT_EQ(lowest, -350);
}

TEST(SimulatedOswin, GivesTheResistanceThatBelongsToTheDegrees) {
  struct Row {
    int type;
    double ohmAt0;
    double a;
    double b;
    int unitsPerOhm;
  };
  for (const Row& row : {Row{kPt100, 100, 3.9083e-3, -5.775e-7, 100}, Row{kPt500, 500, 3.9083e-3, -5.775e-7, 10},
                         Row{kPt1000, 1000, 3.9083e-3, -5.775e-7, 10}, Row{kNi100, 100, 5.485e-3, 6.65e-6, 100}}) {
    PlayedOswin inDegrees(AliveWith({{kChannel, static_cast<unsigned>(row.type | kCompensated)}}));
    PlayedOswin inOhm(AliveWith({{kChannel, static_cast<unsigned>(row.type | kCompensated | kOhm)}}));
    inDegrees.Pass(seconds(3));
    inOhm.Pass(seconds(3));
    const double degrees = inDegrees.Degrees(0) / 10.0;
    const double ohm = row.ohmAt0 * (1 + degrees * (row.a + degrees * row.b));
    // Half a tenth of a degree is lost on the way.
    const double error = row.ohmAt0 * row.a * 0.06 * row.unitsPerOhm + 1;
    EXPECT_NEAR(inOhm.Peek(kMeasure), ohm * row.unitsPerOhm, error) << row.type;
  }
}

TEST(SimulatedOswin, GoesBeyondFifteenBitsInOhm) {
  PlayedOswin oswin(AliveWith({{kChannel + 2, kPt1000 | kOhm}, {kStatus, 0x0400}}));
  oswin.Convert();
  EXPECT_GT(oswin.Peek(kMeasure + 2), 32767);
}

TEST(SimulatedOswin, AddsItsWiresUnlessTheyAreCompensated) {
  struct Row {
    int type;
    int unitsPerOhm;
  };
  for (const Row& row : {Row{kPt100, 100}, Row{kPt500, 10}, Row{kPt1000, 10}, Row{kNi100, 100}}) {
    PlayedOswin oswin(AliveWith({{kWire, 2000}, {kChannel, static_cast<unsigned>(row.type | kOhm | kCompensated)}}));
    PlayedOswin other(AliveWith({{kWire, 2000}, {kChannel, static_cast<unsigned>(row.type | kOhm)}}));
    oswin.Pass(seconds(1));
    other.Pass(seconds(1));
    EXPECT_NEAR(other.Peek(kMeasure) - oswin.Peek(kMeasure), 4 * row.unitsPerOhm, 1) << row.type;
  }
}

TEST(SimulatedOswin, TakesTheUnitsOfAChannelWithItsNextConversion) {
  PlayedOswin oswin(AliveWith({{kChannel, kPt100 | kCompensated}}));
  oswin.Convert();
  const int degrees = oswin.Degrees(0);
  EXPECT_TRUE(oswin.Write(kChannel, kPt100 | kCompensated | kOhm));
  EXPECT_EQ(oswin.Degrees(0), degrees);
  oswin.Convert();
  EXPECT_NEAR(oswin.Peek(kMeasure), 10000 + degrees * 3.9, 50);
}

/// How far behind a channel without a filter one with this filter gets, in tenths of a degree.
int Lag(int filter) {
  PlayedOswin sharp(AliveWith({{kChannel + 2, kPt100 | kCompensated}}));
  PlayedOswin filtered(AliveWith({{kChannel + 2, static_cast<unsigned>(kPt100 | kCompensated | filter)}}));
  int lag = 0;
  for (int i = 0; i < 900; ++i) {
    sharp.Convert();
    filtered.Convert();
    lag = std::max(lag, std::abs(sharp.Degrees(2) - filtered.Degrees(2)));
  }
  return lag;
}

TEST(SimulatedOswin, LagsTheMoreTheStrongerItsFilter) {
  EXPECT_EQ(Lag(0), 0);
  EXPECT_GT(Lag(1), 0);
  EXPECT_GT(Lag(2), Lag(1));
  EXPECT_GT(Lag(3), Lag(2));
}

TEST(SimulatedOswin, HasNoStrongerFilterThanItsThird) {
  for (const int filter : {4, 5, 6, 7}) EXPECT_EQ(Lag(filter), Lag(3)) << filter;
}

// Failures.

TEST(SimulatedOswin, IsPulledToTheUpperEndByAFailedSensor) {
  struct Row {
    int channel;
    int measure;
  };
  for (const Row& row : {Row{kPt100, 8500}, Row{kPt500, 8500}, Row{kPt1000, 8500}, Row{kNi100, 1800},
                         Row{kPt100 | kOhm, 39048}, Row{kNi100 | kOhm, 22028}}) {
    PlayedOswin oswin(AliveWith({{kChannel, static_cast<unsigned>(row.channel)}}));
    oswin.Set(kStatus, 0x0100);
    oswin.Convert();
    EXPECT_EQ(oswin.Peek(kMeasure), row.measure) << row.channel;
    EXPECT_EQ(oswin.Peek(kStatus), 0x0100);
  }
}

TEST(SimulatedOswin, TellsTheFailuresOfItsOwnInputOnly) {
  for (int input = 0; input < 3; ++input) {
    PlayedOswin oswin(AliveWith({{40037, 0}, {40038, 0}, {40039, 0}}));
    oswin.Set(kStatus, 0x0100U << input);
    oswin.Convert();
    for (int other = 0; other < 3; ++other) {
      EXPECT_EQ(oswin.Degrees(other) == 8500, other == input) << input << other;
    }
  }
}

TEST(SimulatedOswin, LosesTheWireOfItsLastInputNowAndThenWhateverTheSeed) {
  for (unsigned seed = 0; seed < 100; ++seed) {
    ModuleOptions options;
    options.seed = seed;
    PlayedOswin oswin(options);
    int failed = 0;
    int first = -1;
    for (int i = 0; i < 400; ++i) {
      oswin.Convert();
      const int status = oswin.Peek(kStatus);
      EXPECT_EQ(status & ~kLastFailed, 0) << seed;
      if (status == kLastFailed) {
        ++failed;
        if (first < 0) first = i;
      }
    }
    EXPECT_EQ(failed, 50) << seed;
    EXPECT_GE(first, 45) << seed;
  }
}

TEST(SimulatedOswin, KeepsTheUnavailableChannelsThatWereSet) {
  PlayedOswin oswin(AliveWith({{kStatus, 0x5000}}));
  oswin.Pass(seconds(1));
  EXPECT_EQ(oswin.Peek(kStatus), 0x5000);
  oswin.Restart();
  EXPECT_EQ(oswin.Peek(kStatus), 0x5000);
}

// Life.

TEST(SimulatedOswin, MovesAllItsMeasures) {
  PlayedOswin oswin(ModuleOptions{});
  const std::vector<int> before = oswin.Measures();
  oswin.Pass(seconds(4));
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_NE(oswin.Peek(kMeasure + input), before.at(static_cast<std::size_t>(input))) << input;
  }
}

TEST(SimulatedOswin, HasSomethingToShowAtItsStart) {
  PlayedOswin oswin(ModuleOptions{});
  EXPECT_THAT(oswin.Measures(), ::testing::Each(::testing::Ne(0)));
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_GE(oswin.Peek(kWire + input), 100) << input;
    EXPECT_LE(oswin.Peek(kWire + input), 3000) << input;
  }
}

TEST(SimulatedOswin, StartsTheSameWithTheSameSeed) {
  const auto start = [](unsigned seed) {
    ModuleOptions options;
    options.seed = seed;
    PlayedOswin oswin(options);
    std::vector<int> values = oswin.Measures();
    for (const int wire : oswin.ReadAll(kWire, kWire + 3)) values.push_back(wire);
    return values;
  };
  EXPECT_EQ(start(1), start(1));
  EXPECT_NE(start(1), start(2));
}

TEST(SimulatedOswin, SeesTheSameHoweverSeldomItIsLookedAt) {
  PlayedOswin often(ModuleOptions{});
  PlayedOswin once(ModuleOptions{});
  for (int i = 0; i < 1000; ++i) {
    often.Pass(milliseconds(37));
    often.Peek(kStatus);
  }
  once.Pass(milliseconds(37000));
  EXPECT_EQ(often.Measures(), once.Measures());
  EXPECT_EQ(often.Peek(kStatus), once.Peek(kStatus));
}

// Restart.

TEST(SimulatedOswin, HasNoRegisterThatRestartsIt) {
  PlayedOswin oswin(StillWith({}));
  for (int reg = kStatus; reg <= 40128; ++reg) {
    oswin.Write(reg, 1);
    EXPECT_FALSE(oswin.GetModule().Restarting()) << reg;
  }
}

TEST(SimulatedOswin, KeepsItsSettingsOverARestart) {
  PlayedOswin oswin(StillWith({}));
  const std::vector<std::pair<int, int>> settings = {{kAddress, 0x0100},   {kBaud, 0x0100},      {kChannel, 0xC3},
                                                     {kChannel + 1, 0x78}, {kChannel + 2, 0x11}, {kChannel + 3, 0xFF}};
  for (const auto& [reg, value] : settings) EXPECT_TRUE(oswin.Write(reg, value)) << reg;
  oswin.Restart();
  for (const auto& [reg, value] : settings) EXPECT_EQ(oswin.Read(reg), value) << reg;
}

TEST(SimulatedOswin, TakesItsSerialSettingsAtARestartOnly) {
  PlayedOswin oswin(StillWith({}));
  EXPECT_TRUE(oswin.Write(kBaud, 0x0300));
  EXPECT_TRUE(oswin.Write(kAddress, 0x1102));
  EXPECT_EQ(oswin.GetModule().InForce(), (Setting{1, LineOf("9600,n,8,1")}));
  oswin.Restart();
  EXPECT_EQ(oswin.GetModule().InForce(), (Setting{17, LineOf("38400,o,8,1")}));
}

TEST(SimulatedOswin, StaysReachableWhateverItsSerialSettingsHold) {
  struct Row {
    int address;
    int baud;
    Setting setting;
  };
  for (const Row& row : {Row{0x0000, 0x0500, {1, LineOf("9600,n,8,1")}}, Row{0x0003, 0x05FF, {1, LineOf("9600,n,8,1")}},
                         Row{0xFFFD, 0x00FF, {255, LineOf("4800,e,8,1")}}}) {
    PlayedOswin oswin(StillWith({}));
    EXPECT_TRUE(oswin.Write(kAddress, row.address));
    EXPECT_TRUE(oswin.Write(kBaud, row.baud));
    oswin.Restart();
    EXPECT_EQ(oswin.GetModule().InForce(), row.setting) << row.address;
  }
}

}  // namespace
}  // namespace tarvo::simulator
