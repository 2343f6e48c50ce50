#include "core/frame_pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

#include "core/task.h"
#include "core/virtual_scheduler.h"
#include "support/allocation_counter.h"
#include "support/task_runner.h"

namespace tarvo::core {
namespace {

TEST(FramePool, CountsTheFramesInUse) {
  const std::size_t before = FramePool::InUse();
  void* small = FramePool::Take(100);
  void* large = FramePool::Take(100'000);
  EXPECT_EQ(FramePool::InUse(), before + 2);
  FramePool::Give(small, 100);
  FramePool::Give(large, 100'000);
  EXPECT_EQ(FramePool::InUse(), before);
}

TEST(FramePool, GivesAsMuchRoomAsIsAskedForAtEverySize) {
  for (const std::size_t size : {1U, 8U, 63U, 64U, 65U, 4095U, 4096U, 4097U}) {
    // Neighbours that are written to their last byte leave each other alone.
    auto* first = static_cast<unsigned char*>(FramePool::Take(size));
    auto* second = static_cast<unsigned char*>(FramePool::Take(size));
    std::fill_n(first, size, 0x5A);
    std::fill_n(second, size, 0xA5);
    EXPECT_EQ(std::count(first, first + size, 0x5A), static_cast<std::ptrdiff_t>(size)) << size;
    std::fill_n(first, size, 0x3C);
    EXPECT_EQ(std::count(second, second + size, 0xA5), static_cast<std::ptrdiff_t>(size)) << size;
    FramePool::Give(first, size);
    FramePool::Give(second, size);
  }
}

#if TARVO_COUNTS_ALLOCATIONS

TEST(FramePool, UsesAFrameOfTheSameSizeAgain) {
  void* first = FramePool::Take(200);
  FramePool::Give(first, 200);
  void* second = FramePool::Take(193);
  EXPECT_EQ(second, first);
  void* third = FramePool::Take(200);
  EXPECT_NE(third, first);
  FramePool::Give(second, 193);
  FramePool::Give(third, 200);
}

Task<int> Read(Scheduler& scheduler, int value) {
  co_await scheduler.Sleep(milliseconds(20));
  co_return value;
}

Task<> Poll(Scheduler& scheduler, int& sum) {
  while (true) {
    co_await scheduler.Sleep(milliseconds(80));
    const int value = co_await Read(scheduler, 3);
    sum += value;
  }
}

TEST(FramePool, ALoopThatSleepsAndAwaitsAllocatesNothingOnceItRuns) {
  VirtualScheduler scheduler;
  test::TaskRunner runner;
  int sum = 0;
  runner.Start(Poll(scheduler, sum));
  scheduler.Run(milliseconds(100));
  ASSERT_EQ(sum, 3);

  const std::size_t allocations = test::Allocations();
  scheduler.Run(std::chrono::minutes(10));
  EXPECT_EQ(test::Allocations(), allocations);
  EXPECT_EQ(sum, 3 * 6001);
}

#endif

}  // namespace
}  // namespace tarvo::core
