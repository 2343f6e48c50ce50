#include "core/task.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include "core/fault.h"
#include "core/sanitizer.h"
#include "core/virtual_scheduler.h"
#include "support/instance_counter.h"
#include "support/run_task.h"
#include "support/task_runner.h"

namespace tarvo::core {
namespace {

using test::Instance;
using test::RunTask;
using test::TaskRunner;

Task<> Mark(bool& mark) {
  mark = true;
  co_return;
}

Task<int> Give(int value) {
  co_return value;
}

TEST(Task, DoesNotStartUntilAwaited) {
  bool started = false;
  {
    const Task<> task = Mark(started);
    EXPECT_TRUE(task);
  }
  EXPECT_FALSE(started);

  TaskRunner runner;
  runner.Start(Mark(started));
  EXPECT_TRUE(started);
}

TEST(Task, GivesItsResultToTheOneThatAwaits) {
  VirtualScheduler scheduler;
  EXPECT_EQ(RunTask(scheduler, Give(17)), 17);
}

Task<std::unique_ptr<std::string>> GiveOwned(std::unique_ptr<std::string> text) {
  *text += "!";
  co_return text;
}

TEST(Task, PassesMoveOnlyParametersAndResults) {
  VirtualScheduler scheduler;
  const auto result = RunTask(scheduler, GiveOwned(std::make_unique<std::string>("Belk")));
  EXPECT_EQ(*result, "Belk!");
}

Task<int> Fail(std::string text) {
  throw Fault(text, 53, "Open");
  co_return 0;
}

Task<std::string> CatchFrom(Task<int> task) {
  std::string caught;
  try {
    const int value = co_await std::move(task);
    caught = "value " + std::to_string(value);
  } catch (const Fault& fault) {
    caught = fault.Source() + ": " + fault.what() + " (" + std::to_string(fault.Number()) + ")";
  }
  co_return caught;
}

Task<int> PassOn(Task<int> task) {
  const int value = co_await std::move(task);
  co_return value + 1;
}

TEST(Task, LetsAnExceptionTravelToTheOneThatAwaits) {
  VirtualScheduler scheduler;
  EXPECT_EQ(RunTask(scheduler, CatchFrom(PassOn(Fail(kFileNotFound)))), "Open: File not found (53)");
  EXPECT_EQ(RunTask(scheduler, CatchFrom(PassOn(Give(16)))), "value 17");
}

TEST(Task, LeavesNothingBehindWhenMovedFrom) {
  Task<int> first = Give(3);
  Task<int> second = std::move(first);
  EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): that is what is asked
  EXPECT_TRUE(second);
  VirtualScheduler scheduler;
  EXPECT_EQ(RunTask(scheduler, std::move(second)), 3);
}

Task<> Hold(Instance /*held*/, Scheduler& scheduler) {
  const Instance local;
  co_await scheduler.Sleep(milliseconds(10));
}

TEST(Task, FreesTheFrameThatAnAssignmentReplaces) {
  VirtualScheduler scheduler;
  const std::size_t frames = FramePool::InUse();
  Task<> task = Hold(Instance(), scheduler);
  EXPECT_EQ(FramePool::InUse(), frames + 1);
  EXPECT_EQ(Instance::Alive(), 1);
  task = Task<>();
  EXPECT_EQ(FramePool::InUse(), frames);
  EXPECT_EQ(Instance::Alive(), 0);
}

TEST(Task, FreesParametersAndLocalsWhenItEnds) {
  VirtualScheduler scheduler;
  const std::size_t frames = FramePool::InUse();
  TaskRunner runner;
  runner.Start(Hold(Instance(), scheduler));
  EXPECT_EQ(Instance::Alive(), 2);
  scheduler.Run(milliseconds(10));
  EXPECT_EQ(Instance::Alive(), 0);
  EXPECT_EQ(FramePool::InUse(), frames);
}

class Gesture : public Origin {};

/// Tells a coroutine what it was started for.
class OriginOf {
 public:
  bool await_ready() const noexcept { return false; }
  template <class Promise>
  bool await_suspend(std::coroutine_handle<Promise> frame) noexcept {
    origin_ = frame.promise().origin;
    return false;
  }
  Origin* await_resume() const noexcept { return origin_; }

 private:
  Origin* origin_ = nullptr;
};

Task<Origin*> AskOrigin() {
  Origin* origin = co_await OriginOf();
  co_return origin;
}

Task<> AskOriginTwoDeep(Scheduler& scheduler, Origin*& seen) {
  co_await scheduler.Sleep(milliseconds(1));
  seen = co_await AskOrigin();
}

TEST(Task, InheritsItsOriginFromTheOneThatAwaits) {
  VirtualScheduler scheduler;
  TaskRunner runner;
  const auto gesture = std::make_shared<Gesture>();
  Origin* seen = nullptr;
  runner.Start(AskOriginTwoDeep(scheduler, seen), gesture);
  scheduler.Run(milliseconds(1));
  EXPECT_EQ(seen, gesture.get());
}

TEST(Task, KeepsItsOriginAliveUntilItEnds) {
  VirtualScheduler scheduler;
  TaskRunner runner;
  auto gesture = std::make_shared<Gesture>();
  const std::weak_ptr<Gesture> watched = gesture;
  Origin* seen = nullptr;
  runner.Start(AskOriginTwoDeep(scheduler, seen), std::move(gesture));
  EXPECT_FALSE(watched.expired());
  scheduler.Run(milliseconds(1));
  EXPECT_TRUE(watched.expired());
}

// GCC makes no tail calls under the address sanitizer: there each await that ends at once costs stack.
#if !TARVO_ADDRESS_SANITIZER || defined(__clang__)

/// Where the stack stands, to see whether it grows.
[[gnu::noinline]] std::uintptr_t StackPlace() {
  return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
}

struct StackSpan {
  std::uintptr_t lowest = UINTPTR_MAX;
  std::uintptr_t highest = 0;

  void Note() {
    const std::uintptr_t place = StackPlace();
    lowest = std::min(lowest, place);
    highest = std::max(highest, place);
  }
  std::uintptr_t Size() const { return highest - lowest; }
};

Task<int> One(StackSpan& span) {
  span.Note();
  co_return 1;
}

Task<int> SumOfOnes(int count, StackSpan& span) {
  int sum = 0;
  for (int i = 0; i < count; ++i) {
    span.Note();
    sum += co_await One(span);
  }
  co_return sum;
}

TEST(Task, AMillionAwaitsThatEndAtOnceDoNotGrowTheStack) {
  constexpr int kCount = 1'000'000;
  StackSpan span;
  VirtualScheduler scheduler;
  EXPECT_EQ(RunTask(scheduler, SumOfOnes(kCount, span)), kCount);
  EXPECT_LT(span.Size(), 4096U);
}

Task<int> Depth(int levels, StackSpan& span) {
  span.Note();
  if (levels == 0) co_return 0;
  const int below = co_await Depth(levels - 1, span);
  span.Note();
  co_return below + 1;
}

TEST(Task, AHundredThousandNestedTasksDoNotGrowTheStack) {
  constexpr int kLevels = 100'000;
  StackSpan span;
  VirtualScheduler scheduler;
  EXPECT_EQ(RunTask(scheduler, Depth(kLevels, span)), kLevels);
  EXPECT_LT(span.Size(), 4096U);
}

#endif

}  // namespace
}  // namespace tarvo::core
