#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::ElementsAre;

constexpr int kNegate = 0x01;
constexpr int kDown = 0x02;
constexpr int kDelay = 0x04;
constexpr int kParity = 0x08;
constexpr int kOdd = 0x10;
constexpr int kAutoreset = 0x20;
constexpr int kFast = 0x80;

// Registers row by row.

TEST(SimulatedBelk, TellsItsModelAndFirmwareInTheIdentity) {
  ModuleOptions options = StillWith({});
  options.firmware = 7;
  EXPECT_EQ(PlayedBelk(options).Read(40001), 0x0107);
}

TEST(SimulatedBelk, ShowsAddressAndBaudCodeInTheCommunicationWord) {
  const std::vector<std::pair<const char*, int>> rows = {{"1200,n,8,1", 6}, {"2400,n,8,1", 7},  {"4800,n,8,1", 0},
                                                         {"9600,n,8,1", 1}, {"19200,n,8,1", 2}, {"38400,n,8,1", 3},
                                                         {"57600,n,8,1", 4}};
  for (const auto& [line, code] : rows) {
    ModuleOptions options = StillWith({});
    options.setting = {255, LineOf(line)};
    EXPECT_EQ(PlayedBelk(options).Read(40010), code << 8 | 255) << line;
  }
}

TEST(SimulatedBelk, ShowsItsParityInTheFlags) {
  const std::vector<std::pair<const char*, int>> rows = {
      {"9600,n,8,1", 0}, {"9600,e,8,1", kParity}, {"9600,o,8,1", kParity | kOdd}};
  for (const auto& [line, bits] : rows) {
    ModuleOptions options = StillWith({{40009, kFast}});
    options.setting.line = LineOf(line);
    EXPECT_EQ(PlayedBelk(options).Read(40009), kFast | bits) << line;
  }
}

TEST(SimulatedBelk, StartsWithTheImageOfWhatIsLive) {
  ModuleOptions options = StillWith({{40008, 20}, {40009, 0x81}});
  options.setting = {9, LineOf("38400,e,8,1")};
  EXPECT_THAT(PlayedBelk(options).ReadAll(40072, 40074), ElementsAre(20, 0x89, 0x0309));
}

TEST(SimulatedBelk, TakesAnImageOfItsOwnFromAPreset) {
  PlayedBelk belk(StillWith({{40074, 0x0205}}));
  EXPECT_EQ(belk.Read(40010), 0x0101);
  EXPECT_EQ(belk.Read(40074), 0x0205);
}

TEST(SimulatedBelk, RefusesWritesToItsIdentity) {
  PlayedBelk belk(StillWith({}));
  EXPECT_EQ(belk.Execute(test::WriteRequest(1, 40001, 5)), test::ExceptionReply(1, 6, 2));
  EXPECT_EQ(belk.Read(40001), 0x0103);
}

TEST(SimulatedBelk, HasNoRegistersBetweenTheResetAndTheImagesOrBehind) {
  PlayedBelk belk(StillWith({}));
  for (const int reg : {40012, 40071, 40075, 40001 + 0xFFFF}) {
    EXPECT_EQ(belk.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(belk.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedBelk, TakesEachCounterValue) {
  PlayedBelk belk(StillWith({}));
  for (int reg = 40003; reg <= 40007; ++reg) {
    for (const int value : {65535, 1, 0, reg}) {
      EXPECT_TRUE(belk.Write(reg, value));
      EXPECT_EQ(belk.Read(reg), value);
    }
  }
  EXPECT_THAT(belk.ReadAll(40003, 40007), ElementsAre(40003, 40004, 40005, 40006, 40007));
}

TEST(SimulatedBelk, TakesAFilterFrom1To254Only) {
  PlayedBelk belk(StillWith({{40008, 20}}));
  for (const int value : {0, 255, 65535}) {
    EXPECT_EQ(belk.Execute(test::WriteRequest(1, 40008, value)), test::ExceptionReply(1, 6, 3)) << value;
    EXPECT_EQ(belk.Read(40008), 20);
  }
  for (const int value : {1, 254}) {
    EXPECT_TRUE(belk.Write(40008, value));
    EXPECT_EQ(belk.Read(40008), value);
  }
}

TEST(SimulatedBelk, ReadsItsResetRegisterAs0AndIgnoresOtherValues) {
  PlayedBelk belk(StillWith({{40003, 5}}));
  EXPECT_TRUE(belk.Write(40011, 2));
  EXPECT_FALSE(belk.GetModule().Restarting());
  EXPECT_EQ(belk.Read(40011), 0);
  EXPECT_EQ(belk.Read(40003), 5);
}

// Bits of the status.

TEST(SimulatedBelk, KeepsItsInputsWhateverIsWritten) {
  PlayedBelk belk(StillWith({{40002, 0x0015}}));
  for (const int value : {0x0000, 0x001F, 0xFFFF}) {
    EXPECT_TRUE(belk.Write(40002, value));
    EXPECT_EQ(belk.Read(40002), 0x0015);
  }
}

TEST(SimulatedBelk, ClearsEachOverflowByItsBit) {
  for (int input = 0; input < 5; ++input) {
    PlayedBelk belk(StillWith({{40002, 0x1F00}}));
    const int left = 0x1F00 & ~(0x100 << input);
    EXPECT_TRUE(belk.Write(40002, left));
    EXPECT_EQ(belk.Read(40002), left);
  }
}

TEST(SimulatedBelk, SetsNoOverflowByAWrite) {
  PlayedBelk belk(StillWith({}));
  EXPECT_TRUE(belk.Write(40002, 0x1F00));
  EXPECT_EQ(belk.Read(40002), 0);
}

// Bits of the flags.

TEST(SimulatedBelk, NegatesTheInputsItShowsAndNothingElse) {
  PlayedBelk belk(StillWith({{40002, 0x0103}}));
  EXPECT_TRUE(belk.Write(40009, kNegate));
  EXPECT_EQ(belk.Read(40002), 0x011C);
  EXPECT_TRUE(belk.Write(40002, 0x0000));
  EXPECT_EQ(belk.Read(40002), 0x001C);
  EXPECT_TRUE(belk.Write(40009, 0));
  EXPECT_EQ(belk.Read(40002), 0x0003);
}

TEST(SimulatedBelk, AnswersLaterWithTheDelayFlag) {
  PlayedBelk belk(StillWith({}));
  EXPECT_EQ(belk.GetModule().ReplyDelay(), milliseconds(0));
  belk.Write(40009, kDelay);
  EXPECT_EQ(belk.GetModule().ReplyDelay(), milliseconds(12));
}

TEST(SimulatedBelk, KeepsItsLineWhenParityIsSetLive) {
  PlayedBelk belk(StillWith({}));
  EXPECT_TRUE(belk.Write(40009, kParity | kOdd));
  EXPECT_EQ(belk.GetModule().InForce().line, LineOf("9600,n,8,1"));
  belk.Reset();
  EXPECT_EQ(belk.Read(40009), 0);
}

// Life.

TEST(SimulatedBelk, StandsStillWhenTold) {
  PlayedBelk belk(StillWith({{40002, 0x0005}, {40004, 77}}));
  const std::vector<int> before = belk.ReadAll(40001, 40010);
  belk.Pass(minutes(5));
  EXPECT_EQ(belk.ReadAll(40001, 40010), before);
  EXPECT_THAT(belk.ReadAll(40002, 40007), ElementsAre(5, 0, 77, 0, 0, 0));
}

TEST(SimulatedBelk, TogglesEachInputAtItsOwnPace) {
  PlayedBelk belk(AliveWith({}));
  std::vector<int> changes(5, 0);
  int before = belk.Read(40002);
  for (int step = 0; step < 600; ++step) {
    belk.Pass(milliseconds(100));
    const int now = belk.Read(40002);
    for (int input = 0; input < 5; ++input) changes[static_cast<std::size_t>(input)] += (before ^ now) >> input & 1;
    before = now;
  }
  // In a minute; the half periods are 0.6, 1, 1.7, 2.9 and 0.4 s.
  EXPECT_THAT(changes, ElementsAre(100, 60, 35, 20, 150));
}

TEST(SimulatedBelk, CountsUpByOneAtEachRisingEdgeOnly) {
  PlayedBelk belk(AliveWith({{40003, 100}, {40004, 100}, {40005, 100}, {40006, 100}, {40007, 100}}));
  std::vector<int> counters = belk.ReadAll(40003, 40007);
  int before = belk.Read(40002);
  for (int step = 0; step < 200; ++step) {
    belk.Pass(milliseconds(50));
    const int now = belk.Read(40002);
    for (int input = 0; input < 5; ++input) counters[static_cast<std::size_t>(input)] += (~before & now) >> input & 1;
    before = now;
    ASSERT_EQ(belk.ReadAll(40003, 40007), counters);
  }
  EXPECT_THAT(counters, ElementsAre(108, 105, 103, 102, 113));
}

TEST(SimulatedBelk, CountsTheSameHoweverSeldomItIsRead) {
  PlayedBelk often(AliveWith({}));
  PlayedBelk once(AliveWith({}));
  for (int step = 0; step < 1000; ++step) {
    often.Pass(milliseconds(37));
    often.Read(40002);
  }
  once.Pass(milliseconds(37) * 1000);
  EXPECT_EQ(often.ReadAll(40002, 40007), once.ReadAll(40002, 40007));
}

TEST(SimulatedBelk, CountsWhatComesInNegatedOrNot) {
  PlayedBelk plain(AliveWith({}));
  PlayedBelk negated(AliveWith({{40009, kNegate}}));
  for (PlayedBelk* belk : {&plain, &negated}) belk->Pass(milliseconds(1500));
  EXPECT_EQ(plain.ReadAll(40003, 40007), negated.ReadAll(40003, 40007));
  EXPECT_EQ(plain.Read(40002) ^ 0x1F, negated.Read(40002));
}

TEST(SimulatedBelk, CountsDownByTheFlag) {
  PlayedBelk belk(AliveWith({{40003, 100}, {40009, kDown}}));
  belk.Pass(milliseconds(600 * 6));
  EXPECT_EQ(belk.Read(40003), 97);
}

TEST(SimulatedBelk, ReadsInput5FastByTheFlag) {
  PlayedBelk belk(AliveWith({{40003, 0}, {40007, 0}, {40009, kFast}}));
  belk.Pass(seconds(6));
  EXPECT_EQ(belk.Read(40007), 6000);
  EXPECT_EQ(belk.Read(40003), 5);
}

TEST(SimulatedBelk, GoesRoundAndTellsTheOverflow) {
  for (int input = 0; input < 5; ++input) {
    PlayedBelk belk(AliveWith({{40003 + input, 65535}, {40003, input == 0 ? 65535 : 0}}));
    const int overflow = 0x100 << input;
    EXPECT_EQ(belk.Read(40002) & 0x1F00, 0);
    while (belk.Read(40003 + input) == 65535) belk.Pass(milliseconds(100));
    EXPECT_EQ(belk.Read(40003 + input), 0);
    EXPECT_EQ(belk.Read(40002) & 0x1F00, overflow);
  }
}

TEST(SimulatedBelk, KeepsAnOverflowUntilItIsCleared) {
  PlayedBelk belk(AliveWith({{40003, 65535}}));
  belk.Pass(minutes(1));
  EXPECT_EQ(belk.Read(40002) & 0x0100, 0x0100);
  belk.Write(40003, 10);
  EXPECT_EQ(belk.Read(40002) & 0x0100, 0x0100);
  belk.Write(40002, 0xFEFF);
  EXPECT_EQ(belk.Read(40002) & 0x0100, 0);
}

TEST(SimulatedBelk, GoesOnFrom65535BelowZero) {
  PlayedBelk belk(AliveWith({{40003, 0}, {40009, kDown}}));
  belk.Pass(milliseconds(600 * 4));
  EXPECT_EQ(belk.Read(40003), 65534);
  EXPECT_EQ(belk.Read(40002) & 0x0100, 0x0100);
}

TEST(SimulatedBelk, StartsAgainAt0WithAutoresetBothWays) {
  for (const int direction : {0, kDown}) {
    const unsigned start = direction == 0 ? 65535 : 0;
    PlayedBelk belk(AliveWith({{40003, start}, {40009, static_cast<unsigned>(kAutoreset | direction)}}));
    belk.Pass(milliseconds(600 * 2));
    EXPECT_EQ(belk.Read(40003), 0);
    EXPECT_EQ(belk.Read(40002) & 0x0100, 0x0100);
  }
}

TEST(SimulatedBelk, ShowsAnOverflowWithinHalfAMinuteWhateverTheSeed) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    ModuleOptions options;
    options.seed = seed;
    PlayedBelk belk(options);
    EXPECT_EQ(belk.Read(40002) & 0x0100, 0) << seed;
    belk.Pass(seconds(30));
    EXPECT_EQ(belk.Read(40002) & 0x0100, 0x0100) << seed;
  }
}

TEST(SimulatedBelk, StartsTheSameWithTheSameSeed) {
  ModuleOptions options;
  PlayedBelk one(options);
  PlayedBelk same(options);
  options.seed = 2;
  PlayedBelk other(options);
  EXPECT_EQ(one.ReadAll(40003, 40007), same.ReadAll(40003, 40007));
  EXPECT_NE(one.ReadAll(40003, 40007), other.ReadAll(40003, 40007));
}

// Reset.

TEST(SimulatedBelk, IsSilentWhileItRestarts) {
  PlayedBelk belk(StillWith({}));
  EXPECT_TRUE(belk.Write(40011, 1));
  EXPECT_EQ(belk.Read(40001), -1);
  belk.Pass(milliseconds(299));
  EXPECT_EQ(belk.Read(40001), -1);
  belk.Pass(milliseconds(1));
  EXPECT_EQ(belk.Read(40001), 0x0103);
}

TEST(SimulatedBelk, ClearsCountersAndOverflowsAtReset) {
  PlayedBelk belk(StillWith({{40002, 0x1F0A}, {40003, 1}, {40004, 2}, {40005, 3}, {40006, 4}, {40007, 65535}}));
  belk.Reset();
  EXPECT_THAT(belk.ReadAll(40002, 40007), ElementsAre(0x000A, 0, 0, 0, 0, 0));
}

TEST(SimulatedBelk, ForgetsAtResetWhatWasNotStored) {
  PlayedBelk belk(StillWith({{40008, 20}, {40009, 0x81}}));
  belk.Write(40008, 30);
  belk.Write(40009, 0x22);
  belk.Write(40010, 0x0405);
  belk.Reset();
  EXPECT_THAT(belk.ReadAll(40008, 40010), ElementsAre(20, 0x81, 0x0101));
}

TEST(SimulatedBelk, KeepsWhatIsLiveUntilTheReset) {
  PlayedBelk belk(StillWith({{40008, 20}}));
  belk.Write(40072, 33);
  belk.Write(40073, kDown);
  belk.Write(40074, 0x0407);
  EXPECT_THAT(belk.ReadAll(40008, 40010), ElementsAre(20, 0, 0x0101));
  EXPECT_EQ(belk.GetModule().InForce(), (Setting{1, LineOf("9600,n,8,1")}));
}

TEST(SimulatedBelk, TakesItsImagesAtReset) {
  PlayedBelk belk(StillWith({}));
  belk.Write(40072, 33);
  belk.Write(40073, kDown | kParity | kOdd);
  belk.Write(40074, 0x0407);
  belk.Reset();
  EXPECT_EQ(belk.GetModule().InForce(), (Setting{7, LineOf("57600,o,8,1")}));
  EXPECT_THAT(belk.ReadAll(40008, 40010), ElementsAre(33, kDown | kParity | kOdd, 0x0407));
  EXPECT_TRUE(belk.Execute(test::ReadRequest(1, 40001, 1)).empty());
}

TEST(SimulatedBelk, TakesEachLineAtReset) {
  const std::vector<std::pair<int, int>> codes = {{6, 1200},  {7, 2400},  {0, 4800}, {1, 9600},
                                                  {2, 19200}, {3, 38400}, {4, 57600}};
  const std::vector<std::pair<int, bus::Parity>> parities = {{0, bus::Parity::kNone},
                                                             {kOdd, bus::Parity::kNone},
                                                             {kParity, bus::Parity::kEven},
                                                             {kParity | kOdd, bus::Parity::kOdd}};
  PlayedBelk belk(StillWith({}));
  for (const auto& [code, baud] : codes) {
    for (const auto& [flags, parity] : parities) {
      belk.Write(40073, flags);
      belk.Write(40074, code << 8 | 1);
      belk.Reset();
      EXPECT_EQ(belk.GetModule().InForce(), (Setting{1, {baud, parity}})) << code << ' ' << flags;
    }
  }
}

TEST(SimulatedBelk, StaysReachableWhateverItsImagesHold) {
  PlayedBelk belk(StillWith({}));
  belk.Write(40072, 0);
  belk.Write(40074, 0x0500);
  belk.Reset();
  EXPECT_EQ(belk.GetModule().InForce(), (Setting{1, LineOf("9600,n,8,1")}));
  EXPECT_EQ(belk.Read(40008), 1);
  belk.Write(40072, 65535);
  belk.Reset();
  EXPECT_EQ(belk.Read(40008), 254);
}

TEST(SimulatedBelk, CountsOnAfterTheReset) {
  PlayedBelk belk(AliveWith({}));
  belk.Reset();
  EXPECT_THAT(belk.ReadAll(40003, 40007), ElementsAre(0, 0, 0, 0, 0));
  belk.Pass(seconds(12));
  EXPECT_EQ(belk.Read(40003), 10);
}

}  // namespace
}  // namespace tarvo::simulator
