#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::ElementsAre;

constexpr int kIdentity = 40001;
constexpr int kCommunication = 40002;
constexpr int kSafeTime = 40003;
constexpr int kFlags = 40004;
constexpr int kOutput1 = 40005;
constexpr int kOutput2 = 40006;
constexpr int kOutput3 = 40007;
constexpr int kStatus = 40008;
constexpr int kFirmware = 40010;
constexpr int kStoredCommunication = 40066;
constexpr int kStoredFlags = 40068;
constexpr int kDefault1 = 40069;
constexpr int kDefault2 = 40070;
constexpr int kDefault3 = 40071;

constexpr int kDelay = 0x0004;
constexpr int kParity = 0x0008;
constexpr int kOdd = 0x0010;
constexpr int kWritesOnly = 0x0040;
constexpr int kDefaultsInUse = 0x0080;

class PlayedQuenby : public PlayedModule {
 public:
  explicit PlayedQuenby(const ModuleOptions& options) : PlayedModule("quenby", options) {}

  std::vector<int> PeekOutputs() { return {Peek(kOutput1), Peek(kOutput2), Peek(kOutput3)}; }
};

/// A living module whose outputs are not at their defaults, with a safe time of a second.
PlayedQuenby Watching(unsigned flags) {
  return PlayedQuenby(AliveWith({{kSafeTime, 10},
                                 {kFlags, flags},
                                 {kOutput1, 1000},
                                 {kOutput2, 2000},
                                 {kOutput3, 3000},
                                 {kDefault1, 10},
                                 {kDefault2, 20},
                                 {kDefault3, 30}}));
}

MATCHER(AsSet, "") {
  return arg == std::vector({1000, 2000, 3000});
}
MATCHER(AtTheirDefaults, "") {
  return arg == std::vector({10, 20, 30});
}

TEST(SimulatedQuenby, CanBeAskedForByItsName) {
  EXPECT_THAT(ModelNames(), ::testing::Contains("quenby"));
}

// Registers row by row.

TEST(SimulatedQuenby, TellsItsModelAloneInTheIdentity) {
  ModuleOptions options = StillWith({});
  options.firmware = 0xAB;
  EXPECT_EQ(PlayedQuenby(options).Read(kIdentity), 0x0F00);
}

TEST(SimulatedQuenby, TellsItsFirmwareInARegisterOfItsOwn) {
  for (const int release : {0, 3, 255}) {
    ModuleOptions options = StillWith({});
    options.firmware = release;
    EXPECT_EQ(PlayedQuenby(options).Read(kFirmware), release);
  }
}

TEST(SimulatedQuenby, RefusesWritesToWhatItIs) {
  PlayedQuenby quenby(StillWith({}));
  for (const int reg : {kIdentity, kFirmware}) {
    EXPECT_EQ(quenby.Execute(test::WriteRequest(1, reg, 5)), test::ExceptionReply(1, 6, 2)) << reg;
  }
  EXPECT_EQ(quenby.Read(kIdentity), 0x0F00);
  EXPECT_EQ(quenby.Read(kFirmware), 3);
}

TEST(SimulatedQuenby, HasNoRegistersBetweenAndBehindThose) {
  PlayedQuenby quenby(StillWith({}));
  for (const int reg : {40009, 40011, 40065, 40072, 40001 + 0xFFFF}) {
    EXPECT_EQ(quenby.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(quenby.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedQuenby, ShowsAddressAndBaudCodeInTheCommunicationWord) {
  ModuleOptions options = StillWith({});
  options.setting = {200, LineOf("57600,n,8,1")};
  PlayedQuenby quenby(options);
  EXPECT_EQ(quenby.Read(kCommunication), 0x04C8);
  EXPECT_EQ(quenby.Read(kStoredCommunication), 0x04C8);
}

TEST(SimulatedQuenby, ShowsItsParityInTheFlags) {
  const std::vector<std::pair<const char*, int>> rows = {
      {"9600,n,8,1", 0}, {"9600,e,8,1", kParity}, {"9600,o,8,1", kParity | kOdd}};
  for (const auto& [line, bits] : rows) {
    ModuleOptions options = StillWith({{kFlags, 0x0FC0}});
    options.setting.line = LineOf(line);
    PlayedQuenby quenby(options);
    EXPECT_EQ(quenby.Read(kFlags), 0x0FC0 | bits) << line;
    EXPECT_EQ(quenby.Read(kStoredFlags), 0x0FC0 | bits) << line;
  }
}

TEST(SimulatedQuenby, AnswersLaterWithTheDelayFlag) {
  PlayedQuenby quenby(StillWith({}));
  EXPECT_EQ(quenby.GetModule().ReplyDelay(), milliseconds(0));
  quenby.Write(kFlags, kDelay);
  EXPECT_EQ(quenby.GetModule().ReplyDelay(), milliseconds(12));
}

TEST(SimulatedQuenby, HasAllOutputsAtZeroWhenItStandsStill) {
  EXPECT_THAT(PlayedQuenby(StillWith({})).ReadAll(kCommunication, kStatus), ElementsAre(0x0101, 50, 0, 0, 0, 0, 0));
}

TEST(SimulatedQuenby, TakesOutputsUpToTheirFullScaleOnly) {
  PlayedQuenby quenby(StillWith({}));
  for (const int reg : {kOutput1, kOutput2, kOutput3}) {
    for (const int value : {10000, 1, 0, 4321}) {
      EXPECT_TRUE(quenby.Write(reg, value));
      EXPECT_EQ(quenby.Read(reg), value) << reg;
    }
    for (const int value : {10001, 0x8000, 0xFFFF}) {
      EXPECT_EQ(quenby.Execute(test::WriteRequest(1, reg, value)), test::ExceptionReply(1, 6, 3)) << value;
      EXPECT_EQ(quenby.Read(reg), 4321) << reg;
    }
  }
}

TEST(SimulatedQuenby, TakesAnyWordAsSafeTimeAndFlags) {
  PlayedQuenby quenby(StillWith({}));
  for (const int reg : {kSafeTime, kFlags}) {
    for (const int value : {0xFFFF, 0, 0xA5E2}) {
      EXPECT_TRUE(quenby.Write(reg, value));
      EXPECT_EQ(quenby.Read(reg), value) << reg;
    }
  }
}

TEST(SimulatedQuenby, TakesAnyWordInEachImage) {
  PlayedQuenby quenby(StillWith({}));
  for (int reg = kStoredCommunication; reg <= kDefault3; ++reg) {
    for (const int value : {0, 65535, reg}) {
      EXPECT_TRUE(quenby.Write(reg, value));
      EXPECT_EQ(quenby.Read(reg), value);
    }
  }
}

TEST(SimulatedQuenby, StartsWithTheImageOfWhatIsLive) {
  PlayedQuenby quenby(StillWith({{kSafeTime, 77}, {kFlags, 0x0884}, {kOutput1, 1}, {kOutput2, 20}, {kOutput3, 300}}));
  EXPECT_THAT(quenby.ReadAll(kStoredCommunication, kDefault3), ElementsAre(0x0101, 77, 0x0884, 1, 20, 300));
}

TEST(SimulatedQuenby, StartsWithOtherDefaultsWhenTold) {
  PlayedQuenby quenby(StillWith({{kOutput1, 5000}, {kDefault1, 700}}));
  EXPECT_EQ(quenby.Read(kOutput1), 5000);
  EXPECT_EQ(quenby.Read(kDefault1), 700);
}

TEST(SimulatedQuenby, ChangesNoOutputWhenADefaultIsStored) {
  PlayedQuenby quenby(StillWith({{kOutput2, 5000}}));
  EXPECT_TRUE(quenby.Write(kDefault2, 700));
  EXPECT_EQ(quenby.Read(kOutput2), 5000);
}

TEST(SimulatedQuenby, StoresNoDefaultWhenAnOutputIsSet) {
  PlayedQuenby quenby(StillWith({{kOutput2, 5000}}));
  EXPECT_TRUE(quenby.Write(kOutput2, 700));
  EXPECT_EQ(quenby.Read(kDefault2), 5000);
}

TEST(SimulatedQuenby, KeepsTheErrorsThatTheWorldOutsideGivesIt) {
  for (const unsigned errors : {1U, 2U, 3U}) {
    PlayedQuenby told(AliveWith({{kStatus, errors}}));
    told.Pass(minutes(1));
    EXPECT_EQ(told.Read(kStatus), static_cast<int>(errors));
    PlayedQuenby set(AliveWith({}));
    EXPECT_EQ(set.Read(kStatus), 0);
    set.Set(kStatus, errors);
    EXPECT_EQ(set.Read(kStatus), static_cast<int>(errors));
  }
}

// The safe time.

TEST(SimulatedQuenby, PutsItsOutputsToTheirDefaultsAfterTheSafeTime) {
  PlayedQuenby quenby = Watching(kDefaultsInUse);
  quenby.Pass(milliseconds(999));
  EXPECT_THAT(quenby.PeekOutputs(), AsSet());
  quenby.Pass(milliseconds(1));
  EXPECT_THAT(quenby.PeekOutputs(), AtTheirDefaults());
}

TEST(SimulatedQuenby, CountsItsSafeTimeInTenthsOfASecond) {
  for (const int time : {1, 7, 250, 65535}) {
    PlayedQuenby quenby = Watching(kDefaultsInUse);
    quenby.Write(kSafeTime, time);
    quenby.Pass(milliseconds(100) * time - milliseconds(1));
    EXPECT_THAT(quenby.PeekOutputs(), AsSet()) << time;
    quenby.Pass(milliseconds(1));
    EXPECT_THAT(quenby.PeekOutputs(), AtTheirDefaults()) << time;
  }
}

TEST(SimulatedQuenby, WatchesNothingWithoutASafeTime) {
  PlayedQuenby quenby = Watching(kDefaultsInUse);
  quenby.Write(kSafeTime, 0);
  quenby.Pass(minutes(5));
  EXPECT_THAT(quenby.PeekOutputs(), AsSet());
}

TEST(SimulatedQuenby, KeepsItsOutputsWithoutTheFlag) {
  PlayedQuenby quenby = Watching(0xFFFF & ~kDefaultsInUse & ~kParity);
  quenby.Pass(minutes(5));
  EXPECT_THAT(quenby.PeekOutputs(), AsSet());
}

TEST(SimulatedQuenby, KeepsItsOutputsWhileAMasterTalksToIt) {
  const std::vector<test::Bytes> requests = {test::ReadRequest(1, kFlags, 4), test::WriteRequest(1, kDefault1, 10),
                                             test::WriteRequest(1, kOutput1, 10001),  // refused
                                             test::WriteRequest(0, kDefault2, 20)};   // to all, without an answer
  PlayedQuenby quenby = Watching(kDefaultsInUse);
  for (std::size_t i = 0; i < 100; ++i) {
    quenby.Pass(milliseconds(999));
    quenby.Execute(requests[i % requests.size()]);
  }
  EXPECT_THAT(quenby.PeekOutputs(), AsSet());
}

TEST(SimulatedQuenby, IsNotKeptAwakeByTalkWithAnother) {
  PlayedQuenby quenby = Watching(kDefaultsInUse);
  for (int i = 0; i < 10; ++i) {
    quenby.Pass(milliseconds(100));
    quenby.Execute(test::WriteRequest(2, kOutput1, 1));
  }
  EXPECT_THAT(quenby.PeekOutputs(), AtTheirDefaults());
}

TEST(SimulatedQuenby, IsNotKeptAwakeByReadsWhenOnlyWritesCount) {
  PlayedQuenby quenby = Watching(kDefaultsInUse | kWritesOnly);
  for (int i = 0; i < 9; ++i) {
    quenby.Pass(milliseconds(100));
    quenby.Execute(test::ReadRequest(1, kFlags, 4));
    EXPECT_THAT(quenby.PeekOutputs(), AsSet()) << i;
  }
  quenby.Pass(milliseconds(100));
  EXPECT_THAT(quenby.PeekOutputs(), AtTheirDefaults());
}

TEST(SimulatedQuenby, IsKeptAwakeByWritesWhenOnlyWritesCount) {
  PlayedQuenby quenby = Watching(kDefaultsInUse | kWritesOnly);
  for (int i = 0; i < 20; ++i) {
    quenby.Pass(milliseconds(999));
    quenby.Write(kDefault1, 10);
  }
  EXPECT_THAT(quenby.PeekOutputs(), AsSet());
  quenby.Pass(seconds(1));
  EXPECT_THAT(quenby.PeekOutputs(), AtTheirDefaults());
}

TEST(SimulatedQuenby, TakesNewOutputsAfterItsDefaults) {
  PlayedQuenby quenby = Watching(kDefaultsInUse);
  quenby.Pass(seconds(1));
  EXPECT_TRUE(quenby.Write(kOutput2, 4000));
  quenby.Pass(milliseconds(999));
  EXPECT_THAT(quenby.PeekOutputs(), ElementsAre(10, 4000, 30));
  quenby.Pass(milliseconds(1));
  EXPECT_THAT(quenby.PeekOutputs(), AtTheirDefaults());
}

TEST(SimulatedQuenby, HoldsADefaultAboveTheFullScaleToIt) {
  PlayedQuenby quenby = Watching(kDefaultsInUse);
  quenby.Write(kDefault3, 10001);
  quenby.Pass(seconds(1));
  EXPECT_THAT(quenby.PeekOutputs(), ElementsAre(10, 20, 10000));
}

TEST(SimulatedQuenby, FallsBackHoweverSeldomItIsLookedAt) {
  PlayedQuenby often = Watching(kDefaultsInUse);
  PlayedQuenby once = Watching(kDefaultsInUse);
  for (int step = 0; step < 100; ++step) {
    often.Pass(milliseconds(70));
    often.Peek(kOutput1);
  }
  once.Pass(milliseconds(7000));
  EXPECT_THAT(often.PeekOutputs(), AtTheirDefaults());
  EXPECT_THAT(once.PeekOutputs(), AtTheirDefaults());
}

// Life.

TEST(SimulatedQuenby, StandsStillWhenTold) {
  PlayedQuenby quenby(StillWith({{kFlags, kDefaultsInUse}, {kOutput1, 1000}, {kDefault1, 10}}));
  quenby.Pass(minutes(5));
  EXPECT_THAT(quenby.ReadAll(kSafeTime, kOutput1), ElementsAre(50, kDefaultsInUse, 1000));
}

TEST(SimulatedQuenby, GoesBackToWhatItStartedWithWithinSecondsWhateverTheSeed) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    ModuleOptions options;
    options.seed = seed;
    PlayedQuenby quenby(options);
    const std::vector<int> start = quenby.PeekOutputs();
    for (const int output : {kOutput1, kOutput2, kOutput3}) {
      EXPECT_TRUE(quenby.Write(output, quenby.Peek(output) / 2 + 1));
    }
    EXPECT_NE(quenby.PeekOutputs(), start) << seed;
    quenby.Pass(seconds(5));
    EXPECT_EQ(quenby.PeekOutputs(), start) << seed;
  }
}

TEST(SimulatedQuenby, StartsTheSameWithTheSameSeed) {
  const auto outputs = [](unsigned seed) {
    ModuleOptions options;
    options.seed = seed;
    return PlayedQuenby(options).PeekOutputs();
  };
  EXPECT_EQ(outputs(1), outputs(1));
  EXPECT_NE(outputs(1), outputs(2));
}

// Reset.

TEST(SimulatedQuenby, RestartsByOneInItsStatusRegisterOnly) {
  PlayedQuenby quenby(StillWith({{kStatus, 2}}));
  for (const int value : {0, 2, 256, 65535}) {
    EXPECT_TRUE(quenby.Write(kStatus, value));
    EXPECT_FALSE(quenby.GetModule().Restarting());
    EXPECT_EQ(quenby.Read(kStatus), 2);
  }
  EXPECT_TRUE(quenby.Write(kStatus, 1));
  EXPECT_TRUE(quenby.GetModule().Restarting());
}

TEST(SimulatedQuenby, ForgetsAtResetWhatWasNotStored) {
  PlayedQuenby quenby(StillWith({{kSafeTime, 20}, {kFlags, 0x0800}, {kOutput1, 100}, {kOutput2, 200}}));
  for (int reg = kCommunication; reg <= kOutput3; ++reg) quenby.Write(reg, 77);
  quenby.Reset();
  EXPECT_THAT(quenby.ReadAll(kCommunication, kOutput3), ElementsAre(0x0101, 20, 0x0800, 100, 200, 0));
}

TEST(SimulatedQuenby, KeepsWhatIsLiveUntilTheReset) {
  PlayedQuenby quenby(StillWith({}));
  const std::vector<int> live = quenby.ReadAll(kCommunication, kOutput3);
  for (int reg = kStoredCommunication; reg <= kDefault3; ++reg) quenby.Write(reg, 0x0407);
  EXPECT_EQ(quenby.ReadAll(kCommunication, kOutput3), live);
  EXPECT_EQ(quenby.GetModule().InForce(), (Setting{1, LineOf("9600,n,8,1")}));
}

TEST(SimulatedQuenby, TakesItsImagesAtReset) {
  PlayedQuenby quenby(StillWith({}));
  const std::vector<int> images = {0x0307, 99, kParity | kOdd | 0x0800, 1, 20, 10000};
  for (std::size_t i = 0; i < images.size(); ++i) {
    quenby.Write(kStoredCommunication + static_cast<int>(i), images[i]);
  }
  quenby.Reset();
  EXPECT_EQ(quenby.GetModule().InForce(), (Setting{7, LineOf("38400,o,8,1")}));
  EXPECT_EQ(quenby.ReadAll(kCommunication, kOutput3), images);
}

TEST(SimulatedQuenby, StaysReachableWhateverItsImagesHold) {
  PlayedQuenby quenby(StillWith({}));
  for (int reg = kDefault1; reg <= kDefault3; ++reg) quenby.Write(reg, 65535);
  quenby.Write(kStoredCommunication, 0x0500);
  quenby.Reset();
  EXPECT_EQ(quenby.GetModule().InForce(), (Setting{1, LineOf("9600,n,8,1")}));
  EXPECT_THAT(quenby.ReadAll(kOutput1, kOutput3), ElementsAre(10000, 10000, 10000));
}

TEST(SimulatedQuenby, TellsTheSameReleaseAfterTheReset) {
  ModuleOptions options = StillWith({});
  options.firmware = 12;
  PlayedQuenby quenby(options);
  quenby.Reset();
  EXPECT_EQ(quenby.Read(kIdentity), 0x0F00);
  EXPECT_EQ(quenby.Read(kFirmware), 12);
}

TEST(SimulatedQuenby, BeginsItsSafeTimeAnewAtReset) {
  PlayedQuenby quenby = Watching(kDefaultsInUse | kWritesOnly);
  quenby.Pass(milliseconds(900));
  quenby.Reset();
  quenby.Set(kOutput1, 1000);
  quenby.Pass(milliseconds(999));
  EXPECT_EQ(quenby.Peek(kOutput1), 1000);
  quenby.Pass(milliseconds(1));
  EXPECT_EQ(quenby.Peek(kOutput1), 10);
}

}  // namespace
}  // namespace tarvo::simulator
