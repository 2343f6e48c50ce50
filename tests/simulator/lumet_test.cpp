#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::Each;
using ::testing::ElementsAre;

constexpr int kInputs = 10;
constexpr int kStates = 40002;
constexpr int kCounters = 40003;
constexpr int kTotal9 = 40011;
constexpr int kTotal10 = 40013;
constexpr int kOverflows = 40015;
constexpr int kMeasure1 = 40016;
constexpr int kMeasure2 = 40017;
constexpr int kMeasureSetup = 40018;
constexpr int kFilter = 40019;
constexpr int kFlags = 40020;
constexpr int kCommunication = 40021;
constexpr int kReset = 40022;

constexpr int kNegate = 0x01;
constexpr int kDown = 0x02;
constexpr int kDelay = 0x04;
constexpr int kParity = 0x08;
constexpr int kOdd = 0x10;

class PlayedLumet : public PlayedModule {
 public:
  explicit PlayedLumet(const ModuleOptions& options) : PlayedModule("lumet", options) {}

  /// A counter of 32 bits.
  std::int64_t ReadTotal(int low) { return std::int64_t{Read(low + 1)} << 16 | Read(low); }
};

std::vector<std::pair<int, unsigned>> CountersAt(unsigned value) {
  std::vector<std::pair<int, unsigned>> presets;
  for (int i = 0; i < 8; ++i) presets.emplace_back(kCounters + i, value);
  return presets;
}

// Registers row by row.

TEST(SimulatedLumet, TellsItsModelAndFirmwareInTheIdentity) {
  ModuleOptions options = StillWith({});
  options.firmware = 2;
  EXPECT_EQ(PlayedLumet(options).Read(40001), 0x0A02);
}

TEST(SimulatedLumet, ShowsAddressAndBaudCodeInTheCommunicationWord) {
  ModuleOptions options = StillWith({});
  options.setting = {200, LineOf("38400,n,8,1")};
  PlayedLumet lumet(options);
  EXPECT_EQ(lumet.Read(kCommunication), 0x03C8);
  EXPECT_EQ(lumet.Read(40085), 0x03C8);
}

TEST(SimulatedLumet, ShowsItsParityInTheFlags) {
  const std::vector<std::pair<const char*, int>> rows = {
      {"9600,n,8,1", 0}, {"9600,e,8,1", kParity}, {"9600,o,8,1", kParity | kOdd}};
  for (const auto& [line, bits] : rows) {
    ModuleOptions options = StillWith({{kFlags, 0x0400 | kDown}});
    options.setting.line = LineOf(line);
    EXPECT_EQ(PlayedLumet(options).Read(kFlags), 0x0400 | kDown | bits) << line;
  }
}

TEST(SimulatedLumet, StartsWithTheImageOfWhatIsLive) {
  ModuleOptions options = StillWith({{kMeasureSetup, 0x3211}, {kFilter, 20}, {kFlags, 0x0803}});
  options.setting = {9, LineOf("38400,e,8,1")};
  EXPECT_THAT(PlayedLumet(options).ReadAll(40082, 40085), ElementsAre(0x3211, 20, 0x080B, 0x0309));
}

TEST(SimulatedLumet, BeginsWithInputs1And2AndAFilterOf10) {
  PlayedLumet lumet(StillWith({}));
  EXPECT_THAT(lumet.ReadAll(kMeasureSetup, kFlags), ElementsAre(0x0201, 10, 0));
}

TEST(SimulatedLumet, RefusesWritesToIdentityInputsAndMeasures) {
  PlayedLumet lumet(StillWith({{kStates, 0x0155}, {kMeasure1, 71}, {kMeasure2, 72}}));
  for (const int reg : {40001, kStates, kMeasure1, kMeasure2}) {
    EXPECT_EQ(lumet.Execute(test::WriteRequest(1, reg, 5)), test::ExceptionReply(1, 6, 2)) << reg;
    EXPECT_NE(lumet.Read(reg), 5) << reg;
  }
}

TEST(SimulatedLumet, HasNoRegistersBetweenTheResetAndTheImagesOrBehind) {
  PlayedLumet lumet(StillWith({}));
  for (const int reg : {40023, 40081, 40086, 40001 + 0xFFFF}) {
    EXPECT_EQ(lumet.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(lumet.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedLumet, AnswersTheTwoBlocksOfAMaster) {
  PlayedLumet lumet(StillWith({}));
  EXPECT_EQ(lumet.Execute(test::ReadRequest(1, 40002, 9)).size(), 5U + 2 * 9);
  EXPECT_EQ(lumet.Execute(test::ReadRequest(1, 40011, 9)).size(), 5U + 2 * 9);
}

TEST(SimulatedLumet, TakesEachCounterValue) {
  PlayedLumet lumet(StillWith({}));
  for (int reg = kCounters; reg < kOverflows; ++reg) {
    for (const int value : {65535, 1, 0, reg}) {
      EXPECT_TRUE(lumet.Write(reg, value));
      EXPECT_EQ(lumet.Read(reg), value);
    }
  }
  for (int reg = kCounters; reg < kOverflows; ++reg) EXPECT_EQ(lumet.Read(reg), reg);
}

TEST(SimulatedLumet, TakesAFilterFrom1To254Only) {
  PlayedLumet lumet(StillWith({{kFilter, 20}}));
  for (const int value : {0, 255, 65535}) {
    EXPECT_EQ(lumet.Execute(test::WriteRequest(1, kFilter, value)), test::ExceptionReply(1, 6, 3)) << value;
    EXPECT_EQ(lumet.Read(kFilter), 20);
  }
  for (const int value : {1, 254}) {
    EXPECT_TRUE(lumet.Write(kFilter, value));
    EXPECT_EQ(lumet.Read(kFilter), value);
  }
}

TEST(SimulatedLumet, TakesNoMeasureBeyondTheOffTimeOfInput10) {
  PlayedLumet lumet(StillWith({}));
  EXPECT_EQ(lumet.Execute(test::WriteRequest(1, kMeasureSetup, 0x3A3B)), test::ExceptionReply(1, 6, 3));
  EXPECT_TRUE(lumet.Write(kMeasureSetup, 0x3A3A));
  EXPECT_EQ(lumet.Read(kMeasureSetup), 0x3A3A);
}

TEST(SimulatedLumet, ReadsItsResetRegisterAs0AndIgnoresOtherValues) {
  PlayedLumet lumet(StillWith({{kCounters, 5}}));
  EXPECT_TRUE(lumet.Write(kReset, 2));
  EXPECT_FALSE(lumet.GetModule().Restarting());
  EXPECT_EQ(lumet.Read(kReset), 0);
  EXPECT_EQ(lumet.Read(kCounters), 5);
}

TEST(SimulatedLumet, ClearsEachOverflowByItsBitAndSetsNone) {
  for (int input = 0; input < kInputs; ++input) {
    PlayedLumet lumet(StillWith({{kOverflows, 0x03FF}}));
    const int left = 0x03FF & ~(1 << input);
    EXPECT_TRUE(lumet.Write(kOverflows, left));
    EXPECT_EQ(lumet.Read(kOverflows), left);
    EXPECT_TRUE(lumet.Write(kOverflows, 0x03FF));
    EXPECT_EQ(lumet.Read(kOverflows), left);
  }
}

TEST(SimulatedLumet, NegatesTheTenInputsItShows) {
  PlayedLumet lumet(StillWith({{kStates, 0x0203}}));
  EXPECT_TRUE(lumet.Write(kFlags, kNegate));
  EXPECT_EQ(lumet.Read(kStates), 0x01FC);
  EXPECT_TRUE(lumet.Write(kFlags, 0));
  EXPECT_EQ(lumet.Read(kStates), 0x0203);
}

TEST(SimulatedLumet, AnswersLaterWithTheDelayFlag) {
  PlayedLumet lumet(StillWith({}));
  EXPECT_EQ(lumet.GetModule().ReplyDelay(), milliseconds(0));
  lumet.Write(kFlags, kDelay);
  EXPECT_EQ(lumet.GetModule().ReplyDelay(), milliseconds(12));
}

// Life.

TEST(SimulatedLumet, StandsStillWhenTold) {
  PlayedLumet lumet(StillWith({{kStates, 0x0155}, {40004, 77}, {kTotal9 + 1, 3}, {kMeasure1, 9}, {kOverflows, 2}}));
  const std::vector<int> before = lumet.ReadAll(40001, kReset);
  lumet.Pass(minutes(5));
  EXPECT_EQ(lumet.ReadAll(40001, kReset), before);
  EXPECT_THAT(lumet.ReadAll(kStates, kMeasure1), ElementsAre(0x0155, 0, 77, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 2, 9));
}

/// How long an input stays high and low, in half milliseconds.
struct Times {
  int high;
  int low;
};

Times TimesOf(int input, int flags) {
  PlayedLumet lumet(AliveWith({{kFlags, static_cast<unsigned>(flags)}}));
  const auto high = [&] { return (lumet.Peek(kStates) >> input & 1) != 0; };
  const auto passWhile = [&](bool level) {
    int steps = 0;
    for (; high() == level && steps < 20'000; ++steps) lumet.Pass(std::chrono::microseconds(500));
    return steps;
  };
  passWhile(high());
  passWhile(high());
  const bool level = high();
  const int first = passWhile(level);
  const int second = passWhile(!level);
  return level ? Times{first, second} : Times{second, first};
}

TEST(SimulatedLumet, GivesEachInputAPulseOfItsOwn) {
  constexpr Times kTimes[] = {{1000, 1400},  {2000, 2000}, {2800, 4000}, {600, 5400}, {5000, 800},
                              {10000, 6000}, {80, 220},    {40, 40},     {1, 1},      {6, 10}};
  for (int input = 0; input < kInputs; ++input) {
    const Times plain = TimesOf(input, 0);
    EXPECT_EQ(plain.high, kTimes[input].high) << input;
    EXPECT_EQ(plain.low, kTimes[input].low) << input;
    const Times negated = TimesOf(input, kNegate);
    EXPECT_EQ(negated.high, kTimes[input].low) << input;
    EXPECT_EQ(negated.low, kTimes[input].high) << input;
  }
}

TEST(SimulatedLumet, CountsUpByOneAtEachRisingEdgeOnly) {
  PlayedLumet lumet(AliveWith(CountersAt(100)));
  std::vector<int> counters(8, 100);
  int before = lumet.Read(kStates);
  for (int step = 0; step < 2000; ++step) {
    lumet.Pass(milliseconds(10));
    const int now = lumet.Read(kStates);
    for (int input = 0; input < 8; ++input) counters[static_cast<std::size_t>(input)] += (~before & now) >> input & 1;
    before = now;
    ASSERT_EQ(lumet.ReadAll(kCounters, kCounters + 7), counters);
  }
  EXPECT_THAT(counters, ElementsAre(117, 110, 106, 106, 107, 103, 233, 600));
}

TEST(SimulatedLumet, CountsTheSameHoweverSeldomItIsRead) {
  for (const unsigned configuration : {0x0000U, 0x0800U, 0x1000U}) {
    PlayedLumet often(AliveWith({{kFlags, configuration}}));
    PlayedLumet once(AliveWith({{kFlags, configuration}}));
    for (int step = 0; step < 1000; ++step) {
      often.Pass(std::chrono::microseconds(3700));
      often.Read(kStates);
    }
    once.Pass(std::chrono::microseconds(3700) * 1000);
    EXPECT_EQ(often.ReadAll(kStates, kMeasure2), once.ReadAll(kStates, kMeasure2)) << configuration;
  }
}

TEST(SimulatedLumet, CountsWhatComesInNegatedOrNot) {
  PlayedLumet plain(AliveWith({}));
  PlayedLumet negated(AliveWith({{kFlags, kNegate}}));
  for (PlayedLumet* lumet : {&plain, &negated}) lumet->Pass(milliseconds(1500));
  EXPECT_EQ(plain.ReadAll(kCounters, kTotal10), negated.ReadAll(kCounters, kTotal10));
  EXPECT_EQ(plain.Read(kStates) ^ 0x03FF, negated.Read(kStates));
}

TEST(SimulatedLumet, CountsInputs1To8DownByTheFlag) {
  PlayedLumet up(AliveWith(CountersAt(1000)));
  PlayedLumet down(AliveWith(CountersAt(1000)));
  down.Write(kFlags, kDown);
  const std::int64_t totals[] = {down.ReadTotal(kTotal9), down.ReadTotal(kTotal10)};
  for (PlayedLumet* lumet : {&up, &down}) lumet->Pass(seconds(10));
  for (int i = 0; i < 8; ++i) {
    EXPECT_GT(up.Read(kCounters + i), 1000) << i;
    EXPECT_EQ(down.Read(kCounters + i), 2000 - up.Read(kCounters + i)) << i;
  }
  EXPECT_EQ(down.ReadTotal(kTotal9), totals[0] + 10'000);
  EXPECT_EQ(down.ReadTotal(kTotal10), totals[1] + 1250);
}

struct Configuration {
  unsigned flags;
  int step9;   ///< of the total of input 9 in 8 s
  int step10;  ///< of that of input 10
};

TEST(SimulatedLumet, CountsInputs9And10AsTheyAreConfigured) {
  constexpr Configuration kRows[] = {{0x0000, 8000, 1000},   {0x0100, -8000, 1000}, {0x0200, 8000, -1000},
                                     {0x0400, -8000, -1000}, {0x0800, 7000, 0},     {0x1000, 5000, 0},
                                     {0x1001, 3000, 0},      {0x2000, 8000, 1000},  {0x0300, 8000, 1000}};
  for (const Configuration& row : kRows) {
    PlayedLumet lumet(AliveWith({{kTotal9, 0}, {kTotal9 + 1, 1}, {kTotal10, 0}, {kTotal10 + 1, 1}}));
    lumet.Write(kFlags, static_cast<int>(row.flags));
    lumet.Pass(seconds(8));
    EXPECT_EQ(lumet.ReadTotal(kTotal9), 65536 + row.step9) << row.flags;
    EXPECT_EQ(lumet.ReadTotal(kTotal10), 65536 + row.step10) << row.flags;
  }
}

TEST(SimulatedLumet, GoesRoundAndTellsTheOverflow) {
  for (int input = 0; input < 8; ++input) {
    std::vector<std::pair<int, unsigned>> presets = CountersAt(0);
    presets.emplace_back(kCounters + input, 65535);
    PlayedLumet lumet(AliveWith(presets));
    EXPECT_EQ(lumet.Read(kOverflows), 0);
    while (lumet.Read(kCounters + input) == 65535) lumet.Pass(milliseconds(10));
    EXPECT_EQ(lumet.Read(kCounters + input), 0);
    EXPECT_EQ(lumet.Read(kOverflows), 1 << input);
  }
}

TEST(SimulatedLumet, GoesRoundAt32BitsOnInputs9And10) {
  for (int input = 8; input < kInputs; ++input) {
    const int low = input == 8 ? kTotal9 : kTotal10;
    PlayedLumet lumet(AliveWith({{kCounters, 0}, {low, 0xFFFF}, {low + 1, 0xFFFF}}));
    while (lumet.ReadTotal(low) == 0xFFFFFFFF) lumet.Pass(std::chrono::microseconds(500));
    EXPECT_EQ(lumet.ReadTotal(low), 0);
    EXPECT_EQ(lumet.Read(kOverflows), 1 << input);
  }
}

TEST(SimulatedLumet, CarriesIntoTheHighWordWithoutAnOverflow) {
  PlayedLumet lumet(AliveWith({{kCounters, 0}, {kTotal9, 65000}, {kTotal9 + 1, 6}}));
  lumet.Pass(seconds(1));
  EXPECT_EQ(lumet.Read(kTotal9), 65000 + 1000 - 65536);
  EXPECT_EQ(lumet.Read(kTotal9 + 1), 7);
  EXPECT_EQ(lumet.Read(kOverflows), 0);
}

TEST(SimulatedLumet, GoesOnFromTheTopBelowZero) {
  std::vector<std::pair<int, unsigned>> presets = CountersAt(0);
  for (int i = 0; i < 4; ++i) presets.emplace_back(kTotal9 + i, 0);
  PlayedLumet lumet(AliveWith(presets));
  lumet.Write(kFlags, 0x0400 | kDown);
  lumet.Pass(seconds(16));
  EXPECT_EQ(lumet.Read(kCounters), 65536 - 13);
  EXPECT_EQ(lumet.ReadTotal(kTotal9), 0x100000000 - 16'000);
  EXPECT_EQ(lumet.ReadTotal(kTotal10), 0x100000000 - 2000);
  EXPECT_EQ(lumet.Read(kOverflows), 0x03FF);
}

TEST(SimulatedLumet, KeepsAnOverflowUntilItIsCleared) {
  PlayedLumet lumet(AliveWith({{kCounters, 65535}}));
  lumet.Pass(minutes(1));
  EXPECT_EQ(lumet.Read(kOverflows) & 1, 1);
  lumet.Write(kCounters, 10);
  EXPECT_EQ(lumet.Read(kOverflows) & 1, 1);
  lumet.Write(kOverflows, 0xFFFE);
  EXPECT_EQ(lumet.Read(kOverflows) & 1, 0);
}

TEST(SimulatedLumet, ShowsAnOverflowWithinHalfAMinuteWhateverTheSeed) {
  for (unsigned seed = 0; seed < 50; ++seed) {
    ModuleOptions options;
    options.seed = seed;
    PlayedLumet lumet(options);
    EXPECT_EQ(lumet.Read(kOverflows), 0) << seed;
    EXPECT_EQ(lumet.Read(kTotal9 + 1), 0) << seed;
    lumet.Pass(seconds(30));
    EXPECT_EQ(lumet.Read(kOverflows) & 1, 1) << seed;
    EXPECT_EQ(lumet.Read(kTotal9 + 1), 1) << seed;
  }
}

TEST(SimulatedLumet, StartsTheSameWithTheSameSeed) {
  ModuleOptions options;
  PlayedLumet one(options);
  PlayedLumet same(options);
  options.seed = 2;
  PlayedLumet other(options);
  EXPECT_EQ(one.ReadAll(kCounters, kTotal10), same.ReadAll(kCounters, kTotal10));
  EXPECT_NE(one.ReadAll(kCounters, kTotal10), other.ReadAll(kCounters, kTotal10));
}

// The filter.

TEST(SimulatedLumet, TakesAwayWhatIsQuickerThanItsFilter) {
  PlayedLumet lumet(AliveWith(CountersAt(0)));
  lumet.Write(kFilter, 41);
  lumet.Pass(seconds(6));
  EXPECT_THAT(lumet.ReadAll(kCounters, kCounters + 7), ElementsAre(5, 3, 2, 2, 2, 1, 0, 0));
  EXPECT_EQ(lumet.Read(kStates) >> 6 & 3, 0);
  lumet.Write(kFilter, 40);
  lumet.Pass(seconds(6));
  EXPECT_EQ(lumet.Read(kCounters + 6), 40);
  EXPECT_EQ(lumet.Read(kCounters + 7), 0);
  lumet.Write(kFilter, 20);
  lumet.Pass(seconds(6));
  EXPECT_EQ(lumet.Read(kCounters + 6), 80);
  EXPECT_EQ(lumet.Read(kCounters + 7), 150);
}

TEST(SimulatedLumet, LeavesTheFastInputsUnfiltered) {
  PlayedLumet lumet(AliveWith({{kTotal9, 0}, {kTotal10, 0}}));
  lumet.Write(kFilter, 254);
  lumet.Pass(seconds(8));
  EXPECT_EQ(lumet.ReadTotal(kTotal9), 8000);
  EXPECT_EQ(lumet.ReadTotal(kTotal10), 1000);
}

// Measures.

struct Expected {
  int setup;  ///< one byte
  int value;
};

constexpr Expected kMeasured[] = {
    {0x01, 8},     {0x02, 5},    {0x03, 3},    {0x04, 3},    {0x05, 3},     {0x06, 1},    {0x07, 67},   {0x08, 250},
    {0x09, 10000}, {0x0A, 1250}, {0x11, 1200}, {0x12, 2000}, {0x13, 3400},  {0x14, 3000}, {0x15, 2900}, {0x16, 8000},
    {0x17, 150},   {0x18, 40},   {0x21, 500},  {0x22, 1000}, {0x23, 1400},  {0x24, 300},  {0x25, 2500}, {0x26, 5000},
    {0x27, 40},    {0x28, 20},   {0x31, 700},  {0x32, 1000}, {0x33, 2000},  {0x34, 2700}, {0x35, 400},  {0x36, 3000},
    {0x37, 110},   {0x38, 20},   {0x00, 8},    {0x10, 1200}, {0x19, 10000}, {0x2A, 1250}, {0x39, 10000}};

TEST(SimulatedLumet, MeasuresInEachChannelWhatItsByteAsksFor) {
  PlayedLumet lumet(AliveWith({}));
  for (const Expected& row : kMeasured) {
    ASSERT_TRUE(lumet.Write(kMeasureSetup, 0x0200 | row.setup));
    lumet.Pass(milliseconds(1));
    EXPECT_THAT(lumet.ReadAll(kMeasure1, kMeasure2), ElementsAre(row.value, 5)) << row.setup;
    ASSERT_TRUE(lumet.Write(kMeasureSetup, row.setup << 8 | 0x02));
    lumet.Pass(milliseconds(1));
    EXPECT_THAT(lumet.ReadAll(kMeasure1, kMeasure2), ElementsAre(5, row.value)) << row.setup;
  }
}

TEST(SimulatedLumet, MeasuresFromTheStart) {
  PlayedLumet lumet(AliveWith({}));
  EXPECT_THAT(lumet.ReadAll(kMeasure1, kMeasure2), ElementsAre(8, 5));
}

TEST(SimulatedLumet, MeasuresNothingOfInputsAndKindsThatItLacks) {
  PlayedLumet lumet(AliveWith({}));
  for (const int setup : {0x0B, 0x0F, 0x41, 0xF1}) {
    ASSERT_TRUE(lumet.Write(kMeasureSetup, 0x0200 | setup));
    lumet.Pass(milliseconds(1));
    EXPECT_THAT(lumet.ReadAll(kMeasure1, kMeasure2), ElementsAre(0, 5)) << setup;
  }
}

TEST(SimulatedLumet, MeasuresNothingThatTheFilterTakesAway) {
  PlayedLumet lumet(AliveWith({{kMeasureSetup, 0x0917}}));
  lumet.Pass(milliseconds(1));
  EXPECT_THAT(lumet.ReadAll(kMeasure1, kMeasure2), ElementsAre(150, 10000));
  lumet.Write(kFilter, 254);
  lumet.Pass(milliseconds(1));
  EXPECT_THAT(lumet.ReadAll(kMeasure1, kMeasure2), ElementsAre(0, 10000));
}

// Reset.

TEST(SimulatedLumet, IsSilentWhileItRestarts) {
  PlayedLumet lumet(StillWith({}));
  EXPECT_TRUE(lumet.Write(kReset, 1));
  EXPECT_EQ(lumet.Read(40001), -1);
  lumet.Pass(milliseconds(299));
  EXPECT_EQ(lumet.Read(40001), -1);
  lumet.Pass(milliseconds(1));
  EXPECT_EQ(lumet.Read(40001), 0x0A03);
}

TEST(SimulatedLumet, ClearsCountersAndOverflowsAtReset) {
  std::vector<std::pair<int, unsigned>> presets = {{kStates, 0x0155}};
  for (int reg = kCounters; reg <= kOverflows; ++reg) presets.emplace_back(reg, 0x03FF);
  PlayedLumet lumet(StillWith(presets));
  lumet.Reset();
  EXPECT_EQ(lumet.Read(kStates), 0x0155);
  EXPECT_THAT(lumet.ReadAll(kCounters, kOverflows), Each(0));
}

TEST(SimulatedLumet, TakesItsImagesAtReset) {
  PlayedLumet lumet(StillWith({}));
  lumet.Write(40082, 0x3211);
  lumet.Write(40083, 33);
  lumet.Write(40084, 0x0800 | kDown | kParity | kOdd);
  lumet.Write(40085, 0x0407);
  EXPECT_THAT(lumet.ReadAll(kMeasureSetup, kCommunication), ElementsAre(0x0201, 10, 0, 0x0101))
      << "in force only from the reset on";
  lumet.Reset();
  EXPECT_EQ(lumet.GetModule().InForce(), (Setting{7, LineOf("57600,o,8,1")}));
  EXPECT_THAT(lumet.ReadAll(kMeasureSetup, kCommunication), ElementsAre(0x3211, 33, 0x081A, 0x0407));
}

TEST(SimulatedLumet, ForgetsAtResetWhatWasNotStored) {
  PlayedLumet lumet(StillWith({{kMeasureSetup, 0x1112}, {kFilter, 20}, {kFlags, 0x0101}}));
  lumet.Write(kMeasureSetup, 0x0909);
  lumet.Write(kFilter, 30);
  lumet.Write(kFlags, kDown);
  lumet.Write(kCommunication, 0x0405);
  lumet.Reset();
  EXPECT_THAT(lumet.ReadAll(kMeasureSetup, kCommunication), ElementsAre(0x1112, 20, 0x0101, 0x0101));
}

TEST(SimulatedLumet, MeasuresByTheStoredSetupAfterTheReset) {
  PlayedLumet lumet(AliveWith({}));
  lumet.Write(40082, 0x3721);
  lumet.Reset();
  lumet.Pass(milliseconds(1));
  EXPECT_THAT(lumet.ReadAll(kMeasure1, kMeasure2), ElementsAre(500, 110));
}

TEST(SimulatedLumet, HoldsFilterAndMeasuresInTheirBoundsWhateverTheirImagesHave) {
  PlayedLumet lumet(StillWith({}));
  lumet.Write(40082, 65535);
  lumet.Write(40083, 0);
  lumet.Reset();
  EXPECT_THAT(lumet.ReadAll(kMeasureSetup, kFilter), ElementsAre(0x3A3A, 1));
  lumet.Write(40083, 65535);
  lumet.Reset();
  EXPECT_EQ(lumet.Read(kFilter), 254);
}

TEST(SimulatedLumet, CountsOnAfterTheReset) {
  PlayedLumet lumet(AliveWith({}));
  lumet.Reset();
  EXPECT_THAT(lumet.ReadAll(kCounters, kOverflows), Each(0));
  lumet.Pass(seconds(12));
  EXPECT_EQ(lumet.Read(kCounters), 10);
  EXPECT_EQ(lumet.ReadTotal(kTotal9), 12'000);
}

}  // namespace
}  // namespace tarvo::simulator
