#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::ElementsAre;

constexpr int kOutputs = 40002;
constexpr int kSafeStates = 40003;
constexpr int kSafeTime = 40004;
constexpr int kFlags = 40005;
constexpr int kCommunication = 40006;

constexpr int kNegate = 0x01;
constexpr int kDelay = 0x04;
constexpr int kParity = 0x08;
constexpr int kOdd = 0x10;
constexpr int kRestartOnTx = 0x40;
constexpr int kSafeStateInUse = 0x80;

class PlayedCobin : public PlayedModule {
 public:
  explicit PlayedCobin(const ModuleOptions& options) : PlayedModule("cobin", options) {}
};

TEST(SimulatedCobin, CanBeAskedForByItsName) {
  EXPECT_THAT(ModelNames(), ::testing::Contains("cobin"));
}

// Registers row by row.

TEST(SimulatedCobin, TellsItsModelAndFirmwareInTheIdentity) {
  ModuleOptions options = StillWith({});
  options.firmware = 2;
  EXPECT_EQ(PlayedCobin(options).Read(40001), 0x0202);
}

TEST(SimulatedCobin, RefusesWritesToItsIdentity) {
  PlayedCobin cobin(StillWith({}));
  EXPECT_EQ(cobin.Execute(test::WriteRequest(1, 40001, 5)), test::ExceptionReply(1, 6, 2));
  EXPECT_EQ(cobin.Read(40001), 0x0203);
}

TEST(SimulatedCobin, TakesEachOutputAndSafeStateByItsBit) {
  PlayedCobin cobin(StillWith({}));
  for (const int reg : {kOutputs, kSafeStates}) {
    for (int bit = 0; bit < 5; ++bit) {
      EXPECT_TRUE(cobin.Write(reg, 1 << bit));
      EXPECT_EQ(cobin.Read(reg), 1 << bit);
    }
  }
}

TEST(SimulatedCobin, KeepsAllSixteenBitsOfOutputsSafeStatesAndFlags) {
  PlayedCobin cobin(StillWith({}));
  for (const int reg : {kOutputs, kSafeStates, kFlags}) {
    EXPECT_TRUE(cobin.Write(reg, 0xA5E2));
    EXPECT_EQ(cobin.Read(reg), 0xA5E2) << reg;
  }
}

TEST(SimulatedCobin, TakesASafeTimeFrom5To250Only) {
  PlayedCobin cobin(StillWith({{kSafeTime, 20}}));
  for (const int value : {0, 4, 251, 65535}) {
    EXPECT_EQ(cobin.Execute(test::WriteRequest(1, kSafeTime, value)), test::ExceptionReply(1, 6, 3)) << value;
    EXPECT_EQ(cobin.Read(kSafeTime), 20);
  }
  for (const int value : {5, 250}) {
    EXPECT_TRUE(cobin.Write(kSafeTime, value));
    EXPECT_EQ(cobin.Read(kSafeTime), value);
  }
}

TEST(SimulatedCobin, ShowsAddressAndBaudCodeInTheCommunicationWord) {
  ModuleOptions options = StillWith({});
  options.setting = {255, LineOf("1200,n,8,1")};
  EXPECT_EQ(PlayedCobin(options).Read(kCommunication), 0x06FF);
}

TEST(SimulatedCobin, ShowsItsParityInTheFlags) {
  const std::vector<std::pair<const char*, int>> rows = {
      {"9600,n,8,1", 0}, {"9600,e,8,1", kParity}, {"9600,o,8,1", kParity | kOdd}};
  for (const auto& [line, bits] : rows) {
    ModuleOptions options = StillWith({{kFlags, kSafeStateInUse}});
    options.setting.line = LineOf(line);
    EXPECT_EQ(PlayedCobin(options).Read(kFlags), kSafeStateInUse | bits) << line;
  }
}

TEST(SimulatedCobin, StartsWithTheImageOfWhatIsLive) {
  ModuleOptions options = StillWith({{kSafeStates, 0x15}, {kSafeTime, 20}, {kFlags, 0xC1}});
  options.setting = {9, LineOf("38400,e,8,1")};
  EXPECT_THAT(PlayedCobin(options).ReadAll(40067, 40070), ElementsAre(0x15, 20, 0xC9, 0x0309));
}

TEST(SimulatedCobin, HasNoRegistersBetweenTheResetAndTheImagesOrBehind) {
  PlayedCobin cobin(StillWith({}));
  for (const int reg : {40008, 40066, 40071}) {
    EXPECT_EQ(cobin.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(cobin.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedCobin, AnswersLaterWithTheDelayFlag) {
  PlayedCobin cobin(StillWith({}));
  EXPECT_EQ(cobin.GetModule().ReplyDelay(), milliseconds(0));
  cobin.Write(kFlags, kDelay);
  EXPECT_EQ(cobin.GetModule().ReplyDelay(), milliseconds(12));
}

TEST(SimulatedCobin, ShowsItsOutputsAsTheyWereSetNegatedOrNot) {
  PlayedCobin cobin(StillWith({{kOutputs, 0x05}}));
  cobin.Write(kFlags, kNegate);
  EXPECT_EQ(cobin.Read(kOutputs), 0x05);
  cobin.Write(kOutputs, 0x06);
  EXPECT_EQ(cobin.Read(kOutputs), 0x06);
}

// The watchdog.

TEST(SimulatedCobin, PutsItsOutputsIntoTheSafeStateAfterTheSafeTime) {
  PlayedCobin cobin(AliveWith({{kOutputs, 0x1F}, {kSafeStates, 0x0A}, {kSafeTime, 20}, {kFlags, kSafeStateInUse}}));
  cobin.Pass(milliseconds(1999));
  EXPECT_EQ(cobin.Peek(kOutputs), 0x1F);
  cobin.Pass(milliseconds(1));
  EXPECT_EQ(cobin.Peek(kOutputs), 0x0A);
}

TEST(SimulatedCobin, CountsItsSafeTimeInTenthsOfASecond) {
  for (const int time : {5, 6, 100, 250}) {
    PlayedCobin cobin(AliveWith(
        {{kOutputs, 1}, {kSafeStates, 2}, {kSafeTime, static_cast<unsigned>(time)}, {kFlags, kSafeStateInUse}}));
    cobin.Pass(milliseconds(100 * time - 1));
    EXPECT_EQ(cobin.Peek(kOutputs), 1) << time;
    cobin.Pass(milliseconds(1));
    EXPECT_EQ(cobin.Peek(kOutputs), 2) << time;
  }
}

TEST(SimulatedCobin, ClearsOutputsThatTheSafeStateHasClear) {
  PlayedCobin cobin(AliveWith({{kOutputs, 0xAB1F}, {kSafeStates, 0xFF00}, {kFlags, kSafeStateInUse}}));
  cobin.Pass(minutes(1));
  // The bits above the outputs are no outputs.
  EXPECT_EQ(cobin.Peek(kOutputs), 0xAB00);
}

TEST(SimulatedCobin, KeepsItsOutputsWithoutTheFlag) {
  PlayedCobin cobin(AliveWith(
      {{kOutputs, 0x1F}, {kSafeStates, 0x0A}, {kSafeTime, 5}, {kFlags, 0xFFFF & ~kSafeStateInUse & ~kParity}}));
  cobin.Pass(minutes(5));
  EXPECT_EQ(cobin.Peek(kOutputs), 0x1F);
}

TEST(SimulatedCobin, KeepsItsOutputsWhileAMasterTalksToIt) {
  PlayedCobin cobin(AliveWith({{kOutputs, 0x1F}, {kSafeStates, 0x0A}, {kSafeTime, 5}, {kFlags, kSafeStateInUse}}));
  const std::vector<test::Bytes> requests = {
      test::ReadRequest(1, kOutputs, 5), test::WriteRequest(1, kSafeTime, 5),
      test::WriteRequest(1, 40001, 1),          // refused
      test::WriteRequest(0, kSafeStates, 0x0A)  // to all, without an answer
  };
  for (int i = 0; i < 100; ++i) {
    cobin.Pass(milliseconds(499));
    cobin.Execute(requests[static_cast<std::size_t>(i) % requests.size()]);
  }
  EXPECT_EQ(cobin.Peek(kOutputs), 0x1F);
}

TEST(SimulatedCobin, IsNotKeptAwakeByTalkWithAnother) {
  PlayedCobin cobin(AliveWith({{kOutputs, 0x1F}, {kSafeStates, 0x0A}, {kSafeTime, 5}, {kFlags, kSafeStateInUse}}));
  for (int i = 0; i < 5; ++i) {
    cobin.Pass(milliseconds(100));
    cobin.Execute(test::ReadRequest(2, kOutputs, 1));
  }
  EXPECT_EQ(cobin.Peek(kOutputs), 0x0A);
}

TEST(SimulatedCobin, TakesNewOutputsAfterTheSafeState) {
  PlayedCobin cobin(AliveWith({{kOutputs, 0x1F}, {kSafeStates, 0x0A}, {kSafeTime, 5}, {kFlags, kSafeStateInUse}}));
  cobin.Pass(seconds(1));
  EXPECT_EQ(cobin.Read(kOutputs), 0x0A);
  EXPECT_TRUE(cobin.Write(kOutputs, 0x11));
  cobin.Pass(milliseconds(499));
  EXPECT_EQ(cobin.Peek(kOutputs), 0x11);
  cobin.Pass(milliseconds(1));
  EXPECT_EQ(cobin.Peek(kOutputs), 0x0A);
}

TEST(SimulatedCobin, FallsIntoTheSafeStateHoweverSeldomItIsLookedAt) {
  PlayedCobin often(AliveWith({}));
  PlayedCobin once(AliveWith({}));
  for (int step = 0; step < 100; ++step) {
    often.Pass(milliseconds(70));
    often.Peek(kOutputs);
  }
  once.Pass(milliseconds(7000));
  EXPECT_EQ(often.Peek(kOutputs), once.Peek(kOutputs));
  EXPECT_EQ(once.Peek(kOutputs), once.Peek(kSafeStates));
}

TEST(SimulatedCobin, WatchesTheSameWithTheRestartOnTransmission) {
  PlayedCobin cobin(
      AliveWith({{kOutputs, 0x1F}, {kSafeStates, 0x0A}, {kSafeTime, 5}, {kFlags, kSafeStateInUse | kRestartOnTx}}));
  cobin.Pass(milliseconds(499));
  EXPECT_EQ(cobin.Read(kOutputs), 0x1F);
  cobin.Pass(milliseconds(499));
  EXPECT_EQ(cobin.Peek(kOutputs), 0x1F);
  cobin.Pass(milliseconds(1));
  EXPECT_EQ(cobin.Peek(kOutputs), 0x0A);
}

// Life.

TEST(SimulatedCobin, StandsStillWhenTold) {
  PlayedCobin cobin(StillWith({{kOutputs, 0x1F}, {kSafeStates, 0x0A}, {kFlags, kSafeStateInUse}}));
  cobin.Pass(minutes(5));
  EXPECT_THAT(cobin.ReadAll(kOutputs, kFlags), ElementsAre(0x1F, 0x0A, 50, kSafeStateInUse));
}

TEST(SimulatedCobin, IsBlankWhenItStandsStill) {
  EXPECT_THAT(PlayedCobin(StillWith({})).ReadAll(kOutputs, kCommunication), ElementsAre(0, 0, 50, 0, 0x0101));
}

TEST(SimulatedCobin, ShowsOutputsAndItsWatchdogWithinSecondsWhateverTheSeed) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    ModuleOptions options;
    options.seed = seed;
    PlayedCobin cobin(options);
    EXPECT_GT(cobin.Read(kOutputs), 0) << seed;
    EXPECT_LE(cobin.Read(kOutputs), 0x1F) << seed;
    EXPECT_GT(cobin.Read(kSafeStates), 0) << seed;
    EXPECT_LE(cobin.Read(kSafeStates), 0x1F) << seed;
    cobin.Pass(seconds(5));
    EXPECT_EQ(cobin.Peek(kOutputs), cobin.Peek(kSafeStates)) << seed;
  }
}

TEST(SimulatedCobin, StartsTheSameWithTheSameSeed) {
  const auto patterns = [](unsigned seed) {
    ModuleOptions options;
    options.seed = seed;
    return PlayedCobin(options).ReadAll(kOutputs, kSafeStates);
  };
  EXPECT_EQ(patterns(1), patterns(1));
  EXPECT_NE(patterns(1), patterns(2));
}

// Reset.

TEST(SimulatedCobin, RestartsByOneInItsResetRegisterOnly) {
  PlayedCobin cobin(StillWith({}));
  EXPECT_TRUE(cobin.Write(40007, 2));
  EXPECT_FALSE(cobin.GetModule().Restarting());
  EXPECT_EQ(cobin.Read(40007), 0);
  EXPECT_TRUE(cobin.Write(40007, 1));
  EXPECT_TRUE(cobin.GetModule().Restarting());
}

TEST(SimulatedCobin, TurnsItsOutputsOffAtReset) {
  PlayedCobin cobin(StillWith({{kOutputs, 0x1F}, {kSafeStates, 0x0A}, {kFlags, kSafeStateInUse}}));
  cobin.Reset();
  EXPECT_EQ(cobin.Read(kOutputs), 0);
}

TEST(SimulatedCobin, ForgetsAtResetWhatWasNotStored) {
  PlayedCobin cobin(StillWith({{kSafeStates, 0x0A}, {kSafeTime, 20}, {kFlags, 0x81}}));
  cobin.Write(kSafeStates, 0x15);
  cobin.Write(kSafeTime, 30);
  cobin.Write(kFlags, 0x40);
  cobin.Write(kCommunication, 0x0405);
  cobin.Reset();
  EXPECT_THAT(cobin.ReadAll(kSafeStates, kCommunication), ElementsAre(0x0A, 20, 0x81, 0x0101));
}

TEST(SimulatedCobin, KeepsWhatIsLiveUntilTheReset) {
  PlayedCobin cobin(StillWith({{kSafeStates, 0x0A}, {kSafeTime, 20}, {kFlags, 0x81}}));
  for (const auto& [image, value] : {std::pair{40067, 3}, {40068, 99}, {40069, 0x40}, {40070, 0x0407}}) {
    EXPECT_TRUE(cobin.Write(image, value));
  }
  EXPECT_THAT(cobin.ReadAll(kSafeStates, kCommunication), ElementsAre(0x0A, 20, 0x81, 0x0101));
}

TEST(SimulatedCobin, TakesItsImagesAtReset) {
  PlayedCobin cobin(StillWith({{kSafeStates, 0x0A}, {kSafeTime, 20}, {kFlags, 0x81}}));
  for (const auto& [image, value] :
       {std::pair{40067, 3}, {40068, 99}, {40069, 0x40 | kParity | kOdd}, {40070, 0x0407}}) {
    cobin.Write(image, value);
  }
  cobin.Reset();
  EXPECT_EQ(cobin.GetModule().InForce(), (Setting{7, LineOf("57600,o,8,1")}));
  EXPECT_THAT(cobin.ReadAll(kSafeStates, kCommunication), ElementsAre(3, 99, 0x40 | kParity | kOdd, 0x0407));
}

TEST(SimulatedCobin, HoldsASafeTimeOutOfBoundsToThemAtReset) {
  PlayedCobin cobin(StillWith({}));
  const std::vector<std::pair<int, int>> rows = {{0, 5}, {4, 5}, {251, 250}, {65535, 250}};
  for (const auto& [image, live] : rows) {
    EXPECT_TRUE(cobin.Write(40068, image));
    cobin.Reset();
    EXPECT_EQ(cobin.Read(kSafeTime), live) << image;
  }
}

TEST(SimulatedCobin, BeginsItsSafeTimeAnewAtReset) {
  PlayedCobin cobin(AliveWith({{kSafeStates, 0x0A}, {kSafeTime, 5}, {kFlags, kSafeStateInUse}}));
  cobin.Pass(milliseconds(400));
  cobin.Reset();
  cobin.Pass(milliseconds(499));
  EXPECT_EQ(cobin.Peek(kOutputs), 0);
  cobin.Pass(milliseconds(1));
  EXPECT_EQ(cobin.Peek(kOutputs), 0x0A);
}

}  // namespace
}  // namespace tarvo::simulator
