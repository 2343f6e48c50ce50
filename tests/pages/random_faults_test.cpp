#include <iostream>
#include <random>

#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

class RandomFaults : public BelkFixture, public testing::WithParamInterface<unsigned> {
 protected:
  ModuleFault RandomFault() {
    switch (random_() % 8) {
      case 0:
        return ModuleFault::Unheard();
      case 1:
        return ModuleFault::Silent();
      case 2:
        return ModuleFault::WrongCrc();
      case 3:
        return ModuleFault::Late(core::milliseconds(random_() % 2000));
      case 4:
        return ModuleFault::Torn(static_cast<int>(random_() % 20));
      case 5:
        return ModuleFault::Foreign(static_cast<std::uint8_t>(2 + random_() % 250));
      case 6:
        return ModuleFault::Exception(static_cast<std::uint8_t>(1 + random_() % 8));
      default: {
        std::vector<std::uint8_t> noise(1 + random_() % 12);
        for (std::uint8_t& byte : noise) byte = static_cast<std::uint8_t>(random_());
        return ModuleFault::Noise(noise);
      }
    }
  }

  std::mt19937 random_{GetParam()};
};

TEST_P(RandomFaults, OfTenMinutesNeitherEndTheSessionNorShowAWrongValue) {
  std::cout << "seed " << GetParam() << '\n';
  // The five counters go up together, so that a block that is torn or old can be told from a good one.
  module.BeforeRead = [this](int, int) {
    for (int i = 0; i < kInputs; ++i) ++module[kCounter1 + i];
  };
  for (int i = 0; i < kInputs; ++i) module[kCounter1 + i] = static_cast<std::uint16_t>(1000 * i);
  StartSession();
  module.SetLogging(false);

  int good = 0;
  int failed = 0;
  int last = Polled(kPolledCounter1);
  constexpr auto kSlice = core::milliseconds(50);
  for (core::Duration time{}; time < std::chrono::minutes(10); time += kSlice) {
    module.Always(random_() % 5 == 0 ? RandomFault() : ModuleFault::None());
    Run(kSlice);
    ASSERT_TRUE(InSession());
    ASSERT_TRUE(TimersRun());
    ASSERT_TRUE(NothingInFront());
    ++(Text("MessageBelk") == "OK" ? good : failed);
    ASSERT_TRUE(Text("MessageBelk") == "OK" || Text("MessageBelk") == kPollFailed) << Text("MessageBelk");
    for (std::size_t i = 1; i < kInputs; ++i) {
      ASSERT_EQ(Polled(kPolledCounter1 + i), Polled(kPolledCounter1) + 1000 * static_cast<int>(i));
    }
    ASSERT_GE(Polled(kPolledCounter1), last);
    last = Polled(kPolledCounter1);
  }
  // The faults did show, and did not take over.
  EXPECT_GT(failed, 100);
  EXPECT_GT(good, failed);

  module.Always(ModuleFault::None());
  Run(std::chrono::seconds(5));
  EXPECT_EQ(Text("MessageBelk"), "OK");
  module.BeforeRead = nullptr;
  RunThroughADecode();
  EXPECT_EQ(Text("TotIN(4)"), std::to_string(module[kCounter1 + 4]));
  Click("StopBelk");
  EXPECT_FALSE(PortOpen());
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomFaults, testing::Values(20260101U, 42U, 7777U));

TEST_P(RandomFaults, OfTenMinutesOfClicksLeaveNoHandlerBehind) {
  std::cout << "seed " << GetParam() << '\n';
  module[kFlags] = 0x0008;
  StartSession();
  module.SetLogging(false);
  const char* const controls[] = {"CheckBelk1", "CheckBelk2",    "CheckBelk3",  "CheckBelk4", "CheckBelk5",
                                  "CheckBelk6", "OverFlowIN(3)", "OptionBelk1", "OptionBelk2"};
  constexpr auto kSlice = core::milliseconds(100);
  for (core::Duration time{}; time < std::chrono::minutes(10); time += kSlice) {
    module.Always(random_() % 10 == 0 ? RandomFault() : ModuleFault::None());
    module[kStatus] = 0xFFFF;
    if (random_() % 4 == 0) program.GetScreen().Click(At(controls[random_() % std::size(controls)]));
    Run(kSlice);
    ASSERT_TRUE(InSession());
    ASSERT_TRUE(NothingInFront());
  }
  module.Always(ModuleFault::None());
  ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle(); }));
  EXPECT_TRUE(TimersRun());
  Run(std::chrono::seconds(2));
  EXPECT_EQ(Text("MessageBelk"), "OK");
  EXPECT_EQ(Polled(kPolledFlags), module[kFlags]);
  Click("StopBelk");
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(PortOpen());
}

}  // namespace
}  // namespace tarvo::test
