// What every simulated module does as a Modbus slave, shown on a Belk.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "played_module.h"

namespace tarvo::simulator {
namespace {

using test::ExceptionReply;
using test::ReadReply;
using test::ReadRequest;
using test::WithCrc;
using test::WriteManyRequest;
using test::WriteRequest;

PlayedBelk Preset() {
  return PlayedBelk(StillWith({{40003, 1}, {40004, 2}, {40005, 3}, {40006, 4}, {40007, 5}, {40008, 6}}));
}

TEST(SimulatedModule, ReadsABlock) {
  EXPECT_EQ(Preset().Execute(ReadRequest(1, 40002, 9)), ReadReply(1, {0, 1, 2, 3, 4, 5, 6, 0, 0x0101}));
}

TEST(SimulatedModule, EchoesASingleWrite) {
  PlayedBelk belk = Preset();
  EXPECT_EQ(belk.Execute(WriteRequest(1, 40003, 0xABCD)), WriteRequest(1, 40003, 0xABCD));
  EXPECT_EQ(belk.Read(40003), 0xABCD);
}

TEST(SimulatedModule, WritesABlock) {
  PlayedBelk belk = Preset();
  EXPECT_EQ(belk.Execute(WriteManyRequest(1, 40003, {700, 800})), WithCrc({1, 16, 0, 2, 0, 2}));
  EXPECT_THAT(belk.ReadAll(40003, 40005), ::testing::ElementsAre(700, 800, 3));
}

TEST(SimulatedModule, ChangesNothingWhenABlockIsRefused) {
  PlayedBelk belk = Preset();
  EXPECT_EQ(belk.Execute(WriteManyRequest(1, 40007, {9, 0})), ExceptionReply(1, 16, 3));
  EXPECT_EQ(belk.Execute(WriteManyRequest(1, 40074, {9, 9})), ExceptionReply(1, 16, 2));
  EXPECT_EQ(belk.Read(40007), 5);
  EXPECT_EQ(belk.Read(40074), 0x0101);
}

TEST(SimulatedModule, RefusesABlockThatReachesBeyondItsRegisters) {
  PlayedBelk belk = Preset();
  EXPECT_EQ(belk.Execute(ReadRequest(1, 40011, 2)), ExceptionReply(1, 3, 2));
  EXPECT_EQ(belk.Execute(ReadRequest(1, 40001 + 0xFFFF, 2)), ExceptionReply(1, 3, 2));
}

TEST(SimulatedModule, RefusesOtherFunctions) {
  for (const int function : {1, 2, 4, 5, 8, 15, 17, 43, 110}) {
    const auto byte = static_cast<std::uint8_t>(function);
    EXPECT_EQ(Preset().Execute(WithCrc({1, byte, 0, 1, 0, 1})), ExceptionReply(1, function, 1)) << function;
  }
}

TEST(SimulatedModule, RefusesBadCounts) {
  PlayedBelk belk = Preset();
  EXPECT_EQ(belk.Execute(ReadRequest(1, 40001, 0)), ExceptionReply(1, 3, 3));
  EXPECT_EQ(belk.Execute(ReadRequest(1, 40001, 126)), ExceptionReply(1, 3, 3));
  EXPECT_EQ(belk.Execute(WriteManyRequest(1, 40003, {})), ExceptionReply(1, 16, 3));
  EXPECT_EQ(belk.Execute(WriteManyRequest(1, 40003, std::vector<int>(124, 1))), ExceptionReply(1, 16, 3));
}

TEST(SimulatedModule, RefusesRequestsWhoseLengthDoesNotFit) {
  PlayedBelk belk = Preset();
  const std::vector<test::Bytes> bodies = {{1, 3},
                                           {1, 3, 0, 1},
                                           {1, 3, 0, 1, 0, 1, 0},
                                           {1, 6, 0, 2, 0},
                                           {1, 16, 0, 2, 0, 1},
                                           {1, 16, 0, 2, 0, 2, 2, 0, 1},
                                           {1, 16, 0, 2, 0, 1, 2, 0}};
  for (const test::Bytes& body : bodies) {
    EXPECT_EQ(belk.Execute(WithCrc(body)), ExceptionReply(1, body[1], 3)) << ::testing::PrintToString(body);
  }
  EXPECT_EQ(belk.Read(40003), 1);
}

TEST(SimulatedModule, KeepsSilentToAnothersAddress) {
  PlayedBelk belk = Preset();
  EXPECT_TRUE(belk.Execute(WriteRequest(2, 40003, 9)).empty());
  EXPECT_EQ(belk.Read(40003), 1);
}

TEST(SimulatedModule, AnswersAtTheHighestAddress) {
  ModuleOptions options = StillWith({});
  options.setting.address = 255;
  EXPECT_EQ(PlayedBelk(options).Execute(ReadRequest(255, 40001, 1)), ReadReply(255, {0x0103}));
}

TEST(SimulatedModule, ExecutesABroadcastWithoutAReply) {
  PlayedBelk belk = Preset();
  EXPECT_TRUE(belk.Execute(WriteRequest(0, 40003, 9)).empty());
  EXPECT_EQ(belk.Read(40003), 9);
  EXPECT_TRUE(belk.Execute(ReadRequest(0, 40003, 1)).empty());
}

TEST(SimulatedModule, RestartsOnABroadcastToo) {
  PlayedBelk belk = Preset();
  belk.Execute(WriteRequest(0, 40011, 1));
  EXPECT_TRUE(belk.GetModule().Restarting());
}

TEST(SimulatedModule, RestartsWhenItsSupplyGoesOffAndOn) {
  PlayedBelk belk = Preset();
  belk.Write(40008, 9);
  belk.GetModule().Restart(belk.Now());
  EXPECT_EQ(belk.Read(40001), -1);
  belk.Pass(Module::kRestartTime - core::milliseconds(1));
  EXPECT_EQ(belk.Read(40001), -1);
  belk.Pass(core::milliseconds(1));
  EXPECT_EQ(belk.Read(40001), 0x0103);
  EXPECT_EQ(belk.Read(40008), 6);
}

TEST(SimulatedModule, IsMadeByItsName) {
  EXPECT_THAT(ModelNames(), ::testing::Contains("belk"));
  ASSERT_NE(MakeModel("belk"), nullptr);
  EXPECT_EQ(MakeModel("belk")->Data().name, "belk");
  EXPECT_EQ(MakeModel("Belk"), nullptr);
}

}  // namespace
}  // namespace tarvo::simulator
