#include <gtest/gtest.h>

#include "modcom_bench.h"
#include "support/allocation_counter.h"

namespace tarvo::bus {
namespace {

#if TARVO_COUNTS_ALLOCATIONS

using state::Word;
using namespace state::literals;

/// Polls `count` times and counts the good ones.
core::Task<> Poll(ModComBench* bench, int count, int* good) {
  for (int i = 0; i < count; ++i) {
    const std::span<Word> block(bench->Block);
    const Outcome outcome = co_await bench->ModCom1.ReadPLC("40002"_reg, block, 9);
    if (outcome.Good()) ++*good;
    Word flags;
    co_await bench->ModCom1.ReadPLC("40009"_reg, flags);
    co_await bench->ModCom1.WritePLC("40009"_reg, flags.Or(1));
    co_await bench->ModCom1.Free();
    co_await bench->Scheduler.Sleep(core::milliseconds(50));
  }
}

class Allocations : public testing::Test, protected ModComBench {};

TEST_F(Allocations, SteadyPollingAllocatesNothing) {
  ASSERT_TRUE(Open());
  Module.SetLogging(false);
  int good = 0;
  Tasks.Start(Poll(this, 1010, &good));
  const auto polled = [&good](int count) { return [&good, count] { return good == count; }; };
  const std::function<bool()> warm = polled(5);
  const std::function<bool()> done = polled(1005);
  ASSERT_TRUE(Scheduler.RunUntil(warm, std::chrono::hours(1)));
  const std::size_t before = test::Allocations();
  ASSERT_TRUE(Scheduler.RunUntil(done, std::chrono::hours(1)));
  EXPECT_EQ(test::Allocations() - before, 0U);
}

TEST_F(Allocations, PollingADeadLineAllocatesNothing) {
  ASSERT_TRUE(Open());
  Module.SetLogging(false);
  Module.Always(test::ModuleFault::Torn(5));
  int good = 0;
  Tasks.Start(Poll(this, 1'000'000, &good));
  Scheduler.Run(std::chrono::seconds(30));
  const std::size_t before = test::Allocations();
  const int requests = Module.Requests();
  Scheduler.Run(std::chrono::minutes(10));
  EXPECT_EQ(test::Allocations() - before, 0U);
  EXPECT_GT(Module.Requests() - requests, 1000);
}

#endif

}  // namespace
}  // namespace tarvo::bus
