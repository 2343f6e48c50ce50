#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using ::testing::ElementsAre;

constexpr int kFlags = 40003;
constexpr int kType1 = 40004;
constexpr int kFilter1 = 40008;
constexpr int kStatus = 40012;
constexpr int kValue1 = 40013;
constexpr int kZero1 = 40021;
constexpr int kSpan1 = 40025;
constexpr int kStoredZero1 = 40085;
constexpr int kStoredSpan1 = 40089;
constexpr int kInputs = 4;

constexpr int kSpeedUp = 0x0002;
constexpr int kAllInputs = 0x0F00;
// What the flags of other models tell of the line.
constexpr int kDelay = 0x04;
constexpr int kParity = 0x08;
constexpr int kOdd = 0x10;

class PlayedKelmar : public PlayedModule {
 public:
  explicit PlayedKelmar(const ModuleOptions& options) : PlayedModule("kelmar", options) {}

  int Value(int input) { return static_cast<std::int16_t>(Read(kValue1 + input)); }
};

// Registers row by row.

TEST(SimulatedKelmar, TellsItsModelAndFirmwareInTheIdentity) {
  ModuleOptions options = StillWith({});
  options.firmware = 0;
  EXPECT_EQ(PlayedKelmar(options).Read(40001), 0x0C00);
}

TEST(SimulatedKelmar, BeginsWithAGainOfOneAndPublishesAllInputs) {
  PlayedKelmar kelmar(StillWith({}));
  EXPECT_EQ(kelmar.Read(kFlags), kAllInputs);
  EXPECT_THAT(kelmar.ReadAll(kType1, kType1 + 3), ElementsAre(1, 2, 5, 0));
  EXPECT_THAT(kelmar.ReadAll(kZero1, kZero1 + 3), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(kelmar.ReadAll(kSpan1, kSpan1 + 3), ElementsAre(10000, 10000, 10000, 10000));
}

TEST(SimulatedKelmar, HoldsEveryBitOfItsFlags) {
  PlayedKelmar kelmar(StillWith({}));
  for (int bit = 0; bit < 16; ++bit) {
    EXPECT_TRUE(kelmar.Write(kFlags, 1 << bit));
    EXPECT_EQ(kelmar.Read(kFlags), 1 << bit);
  }
}

TEST(SimulatedKelmar, HasTheImageOfEachSetting64Above) {
  std::vector<std::pair<int, unsigned>> presets = {{kFlags, 0x5F02}};
  for (int i = 0; i < kInputs; ++i) {
    presets.emplace_back(kType1 + i, 5 + i);
    presets.emplace_back(kFilter1 + i, 3 + i);
    presets.emplace_back(kZero1 + i, 100 + i);
    presets.emplace_back(kSpan1 + i, 9000 + i);
  }
  PlayedKelmar kelmar(StillWith(presets));
  EXPECT_THAT(kelmar.ReadAll(40066, 40075), ElementsAre(0x0101, 0x5F02, 5, 6, 7, 8, 3, 4, 5, 6));
  EXPECT_THAT(kelmar.ReadAll(40085, 40092), ElementsAre(100, 101, 102, 103, 9000, 9001, 9002, 9003));
}

TEST(SimulatedKelmar, HasNoRegistersBetweenItsBlocks) {
  PlayedKelmar kelmar(StillWith({}));
  for (const int reg : {40017, 40020, 40029, 40065, 40076, 40084, 40093}) {
    EXPECT_EQ(kelmar.Execute(test::ReadRequest(1, reg, 1)), test::ExceptionReply(1, 3, 2)) << reg;
    EXPECT_EQ(kelmar.Execute(test::WriteRequest(1, reg, 0)), test::ExceptionReply(1, 6, 2)) << reg;
  }
}

TEST(SimulatedKelmar, RefusesWritesToWhatItMeasuresAndToItsIdentity) {
  PlayedKelmar kelmar(StillWith({{kValue1, 7}}));
  for (const int reg : {40001, 40013, 40014, 40015, 40016}) {
    EXPECT_EQ(kelmar.Execute(test::WriteRequest(1, reg, 5)), test::ExceptionReply(1, 6, 2)) << reg;
  }
  EXPECT_EQ(kelmar.Read(kValue1), 7);
}

TEST(SimulatedKelmar, TakesTypesAndFiltersOfTheirListsOnly) {
  PlayedKelmar kelmar(StillWith({}));
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_TRUE(kelmar.Write(kType1 + input, 8));
    EXPECT_EQ(kelmar.Execute(test::WriteRequest(1, kType1 + input, 9)), test::ExceptionReply(1, 6, 3));
    EXPECT_TRUE(kelmar.Write(kFilter1 + input, 6));
    EXPECT_EQ(kelmar.Execute(test::WriteRequest(1, kFilter1 + input, 7)), test::ExceptionReply(1, 6, 3));
  }
}

// The fixed line.

TEST(SimulatedKelmar, ShowsItsAddressAndBaudCode) {
  ModuleOptions options = StillWith({});
  options.setting = {255, LineOf("2400,o,8,1")};
  PlayedKelmar kelmar(options);
  EXPECT_EQ(kelmar.Read(40002), 0x07FF);
  EXPECT_EQ(kelmar.Read(40066), 0x07FF);
  EXPECT_EQ(kelmar.Read(kFlags), kAllInputs) << "no flag tells the parity";
}

TEST(SimulatedKelmar, RefusesAnotherAddressOrBaudRate) {
  PlayedKelmar kelmar(StillWith({}));
  for (const int reg : {40002, 40066}) {
    EXPECT_EQ(kelmar.Execute(test::WriteRequest(1, reg, 0x0309)), test::ExceptionReply(1, 6, 2)) << reg;
    EXPECT_EQ(kelmar.Read(reg), 0x0101);
  }
}

TEST(SimulatedKelmar, KeepsItsLineThroughAResetWhateverItsFlagsHold) {
  ModuleOptions options = StillWith({});
  options.setting = {9, LineOf("57600,e,8,1")};
  PlayedKelmar kelmar(options);
  kelmar.Write(40067, 0xFFFF);
  kelmar.Reset();
  EXPECT_EQ(kelmar.Read(kFlags), 0xFFFF);
  EXPECT_EQ(kelmar.GetModule().InForce(), options.setting);
}

TEST(SimulatedKelmar, AnswersAtOnceWhateverItsFlagsHold) {
  PlayedKelmar kelmar(StillWith({}));
  kelmar.Write(kFlags, kDelay | kParity | kOdd);
  EXPECT_EQ(kelmar.GetModule().ReplyDelay(), milliseconds(0));
}

// Inputs.

TEST(SimulatedKelmar, CorrectsEachInputByItsOwnSpanAndZero) {
  PlayedKelmar kelmar(StillWith({{kValue1, 1000}, {kValue1 + 1, 1000}, {kValue1 + 2, 1000}, {kValue1 + 3, 1000}}));
  for (int input = 0; input < kInputs; ++input) {
    kelmar.Write(kSpan1 + input, 9000 + 1000 * input);
    kelmar.Write(kZero1 + input, input);
  }
  EXPECT_THAT(kelmar.ReadAll(kValue1, kValue1 + 3), ElementsAre(900, 1001, 1102, 1203));
}

TEST(SimulatedKelmar, TellsOverRangesAndBurnOutsByTheirOwnBits) {
  for (int input = 0; input < kInputs; ++input) {
    PlayedKelmar kelmar(StillWith({}));
    kelmar.Write(kType1 + input, 2);
    kelmar.Set(kValue1 + input, 12001);
    EXPECT_EQ(kelmar.Read(kStatus), 0x0100 << input);
    kelmar.Set(kStatus, static_cast<unsigned>(0x1000 << input));
    EXPECT_EQ(kelmar.Read(kStatus), 0x1000 << input);
    EXPECT_EQ(kelmar.Value(input), 12000) << "an open wire reads the upper end";
  }
}

TEST(SimulatedKelmar, StandsStillWhenTold) {
  PlayedKelmar kelmar(StillWith({{kValue1, 123}}));
  const std::vector<int> before = kelmar.ReadAll(40001, 40016);
  kelmar.Pass(minutes(5));
  EXPECT_EQ(kelmar.ReadAll(40001, 40016), before);
}

TEST(SimulatedKelmar, MovesEachInputWhetherItIsPublishedOrNot) {
  PlayedKelmar kelmar(AliveWith({{kFlags, 0x0100}}));
  std::vector<int> before;
  for (int input = 0; input < kInputs; ++input) before.push_back(kelmar.Value(input));
  kelmar.Pass(milliseconds(1700));
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_NE(kelmar.Value(input), before[static_cast<std::size_t>(input)]) << input;
  }
}

TEST(SimulatedKelmar, ConvertsFourTimesAsOftenSpedUp) {
  for (const bool speedUp : {false, true}) {
    PlayedKelmar kelmar(AliveWith({{kFlags, speedUp ? kSpeedUp : 0U}}));
    int changes = 0;
    int before = kelmar.Read(kValue1 + 1);
    for (int step = 0; step < 80; ++step) {
      kelmar.Pass(milliseconds(25));
      if (kelmar.Read(kValue1 + 1) != before) ++changes;
      before = kelmar.Read(kValue1 + 1);
    }
    EXPECT_NEAR(changes, speedUp ? 80 : 20, speedUp ? 8 : 2);
  }
}

// Reset.

TEST(SimulatedKelmar, RestartsByA1WrittenToItsStatus) {
  PlayedKelmar kelmar(StillWith({{kStatus, 0x0200}}));
  EXPECT_TRUE(kelmar.Write(kStatus, 2));
  EXPECT_EQ(kelmar.Read(kStatus), 0x0200);
  EXPECT_TRUE(kelmar.Write(kStatus, 1));
  kelmar.Pass(milliseconds(299));
  EXPECT_EQ(kelmar.Read(40001), -1);
  kelmar.Pass(milliseconds(1));
  EXPECT_EQ(kelmar.Read(40001), 0x0C03);
}

TEST(SimulatedKelmar, TakesItsImagesAtResetAndNotBefore) {
  PlayedKelmar kelmar(StillWith({{kType1, 1}}));
  kelmar.Write(40067, 0x5402);
  kelmar.Write(40068, 8);
  kelmar.Write(40075, 5);
  kelmar.Write(kStoredZero1 + 1, 6);
  kelmar.Write(kStoredSpan1 + 1, 12000);
  EXPECT_EQ(kelmar.Read(kType1), 1);
  EXPECT_EQ(kelmar.Read(kFlags), kAllInputs);
  kelmar.Reset();
  EXPECT_EQ(kelmar.Read(kFlags), 0x5402);
  EXPECT_EQ(kelmar.Read(kType1), 8);
  EXPECT_EQ(kelmar.Read(kFilter1 + 3), 5);
  EXPECT_EQ(kelmar.Read(kZero1 + 1), 6);
  EXPECT_EQ(kelmar.Read(kSpan1 + 1), 12000);
}

TEST(SimulatedKelmar, ForgetsAtResetWhatWasNotStored) {
  PlayedKelmar kelmar(StillWith({{kFilter1, 2}}));
  kelmar.Write(kFilter1, 4);
  kelmar.Write(kFlags, 0x4000);
  kelmar.Write(kZero1, 50);
  kelmar.Reset();
  EXPECT_EQ(kelmar.Read(kFilter1), 2);
  EXPECT_EQ(kelmar.Read(kFlags), kAllInputs);
  EXPECT_EQ(kelmar.Read(kZero1), 0);
}

}  // namespace
}  // namespace tarvo::simulator
