#include "core/scope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/fault.h"
#include "core/virtual_scheduler.h"
#include "core/wait_list.h"
#include "support/instance_counter.h"
#include "support/task_runner.h"

namespace tarvo::core {
namespace {

using test::Instance;
using test::TaskRunner;
using testing::ElementsAre;
using Log = std::vector<std::string>;

Task<> Walk(Log& log, std::string name, Scheduler& scheduler) {
  const Instance held;
  log.push_back(name + " begins");
  co_await scheduler.Sleep(milliseconds(5));
  log.push_back(name + " ends");
}

TEST(Scope, RunsASpawnedTaskUpToItsFirstWait) {
  VirtualScheduler scheduler;
  TaskRunner runner;
  Log log;
  runner.Start(Walk(log, "a", scheduler));
  EXPECT_THAT(log, ElementsAre("a begins"));
  EXPECT_FALSE(runner.Idle());
  scheduler.Run(milliseconds(5));
  EXPECT_THAT(log, ElementsAre("a begins", "a ends"));
  EXPECT_TRUE(runner.Idle());
}

TEST(Scope, RunsTasksInTheOrderInWhichTheyWereSpawned) {
  VirtualScheduler scheduler;
  TaskRunner runner;
  Log log;
  for (const char* name : {"a", "b", "c"}) runner.Start(Walk(log, name, scheduler));
  scheduler.Run(milliseconds(5));
  EXPECT_THAT(log, ElementsAre("a begins", "b begins", "c begins", "a ends", "b ends", "c ends"));
}

Task<> SpawnOther(Log& log, TaskRunner& runner, Scheduler& scheduler) {
  log.emplace_back("outer begins");
  runner.Start(Walk(log, "inner", scheduler));
  log.emplace_back("outer ends");
  co_return;
}

TEST(Scope, RunsATaskThatATaskSpawnsBeforeTheSpawnerGoesOn) {
  VirtualScheduler scheduler;
  TaskRunner runner;
  Log log;
  runner.Start(SpawnOther(log, runner, scheduler));
  EXPECT_THAT(log, ElementsAre("outer begins", "inner begins", "outer ends"));
  scheduler.Run(milliseconds(5));
  EXPECT_EQ(log.back(), "inner ends");
  EXPECT_TRUE(runner.Idle());
}

Task<> FailHolding(Scheduler& scheduler, Instance /*held*/) {
  const Instance local;
  co_await scheduler.Sleep(milliseconds(1));
  throw Fault(kOverflow);
}

TEST(Scope, ReportsAFaultAfterTheTaskHasLetGoOfWhatItHeld) {
  VirtualScheduler scheduler;
  int reports = 0;
  int aliveAtReport = -1;
  Scope scope([&](const std::exception_ptr& fault) {
    ++reports;
    aliveAtReport = Instance::Alive();
    EXPECT_THROW(std::rethrow_exception(fault), Fault);
  });
  scope.Spawn(FailHolding(scheduler, Instance()));
  EXPECT_EQ(reports, 0);
  EXPECT_EQ(Instance::Alive(), 2);
  scheduler.Run(milliseconds(1));
  EXPECT_EQ(reports, 1);
  EXPECT_EQ(aliveAtReport, 0);
  EXPECT_TRUE(scope.Idle());
}

TEST(Scope, AFaultLeavesTheOtherTasksRunning) {
  VirtualScheduler scheduler;
  TaskRunner runner;
  Log log;
  runner.Start(Walk(log, "a", scheduler));
  runner.Start(FailHolding(scheduler, Instance()));
  runner.Start(Walk(log, "b", scheduler));
  scheduler.Run(milliseconds(5));
  EXPECT_THAT(runner.Faults(), ElementsAre("Overflow"));
  EXPECT_THAT(log, ElementsAre("a begins", "b begins", "a ends", "b ends"));
}

TEST(Scope, MaySpawnFromItsFaultReport) {
  VirtualScheduler scheduler;
  Log log;
  Scope* self = nullptr;
  Scope scope([&](const std::exception_ptr&) { self->Spawn(Walk(log, "report", scheduler)); });
  self = &scope;
  scope.Spawn(FailHolding(scheduler, Instance()));
  scheduler.Run(milliseconds(10));
  EXPECT_THAT(log, ElementsAre("report begins", "report ends"));
}

Task<> Outer(Log& log, std::string name, Scheduler& scheduler) {
  const Instance held;
  co_await Walk(log, std::move(name), scheduler);
  log.emplace_back("outer ends");
}

TEST(Scope, CancelDestroysEveryFrameAndItsCallees) {
  VirtualScheduler scheduler;
  const std::size_t frames = FramePool::InUse();
  TaskRunner runner;
  Log log;
  runner.Start(Outer(log, "a", scheduler));
  runner.Start(Outer(log, "b", scheduler));
  EXPECT_EQ(Instance::Alive(), 4);
  EXPECT_GT(FramePool::InUse(), frames);

  runner.Cancel();
  EXPECT_EQ(Instance::Alive(), 0);
  EXPECT_EQ(FramePool::InUse(), frames);
  EXPECT_TRUE(runner.Idle());
  scheduler.Run(milliseconds(100));
  EXPECT_THAT(log, ElementsAre("a begins", "b begins"));
  EXPECT_TRUE(runner.Faults().empty());
}

TEST(Scope, MaySpawnAgainAfterCancel) {
  VirtualScheduler scheduler;
  TaskRunner runner;
  Log log;
  runner.Start(Walk(log, "a", scheduler));
  runner.Cancel();
  runner.Start(Walk(log, "b", scheduler));
  scheduler.Run(milliseconds(5));
  EXPECT_THAT(log, ElementsAre("a begins", "b begins", "b ends"));
}

Task<> WaitIn(WaitList& list, Log& log, std::string name) {
  const Instance held;
  co_await list.Wait();
  log.push_back(std::move(name));
}

TEST(Scope, ItsEndFreesTasksThatSleepOrWait) {
  VirtualScheduler scheduler;
  const std::size_t frames = FramePool::InUse();
  WaitList list;
  Log log;
  {
    TaskRunner runner;
    runner.Start(Walk(log, "sleeper", scheduler));
    runner.Start(WaitIn(list, log, "waiter"));
    EXPECT_FALSE(list.Empty());
    EXPECT_EQ(Instance::Alive(), 2);
  }
  EXPECT_EQ(Instance::Alive(), 0);
  EXPECT_EQ(FramePool::InUse(), frames);

  // Neither the list nor the scheduler still knows them.
  EXPECT_TRUE(list.Empty());
  EXPECT_FALSE(list.WakeOne());
  EXPECT_FALSE(scheduler.RunUntil([] { return false; }, std::chrono::hours(1)));
  EXPECT_THAT(log, ElementsAre("sleeper begins"));
}

TEST(Scope, CancelOfOneOfSeveralWaitersKeepsTheLineOfTheOthers) {
  WaitList list;
  Log log;
  TaskRunner first;
  TaskRunner second;
  first.Start(WaitIn(list, log, "a"));
  second.Start(WaitIn(list, log, "b"));
  first.Start(WaitIn(list, log, "c"));
  second.Cancel();
  list.WakeAll();
  EXPECT_THAT(log, ElementsAre("a", "c"));
}

/// Wakes those who wait for it when it goes, as the holder of a bus does.
class WakesAtItsEnd {
 public:
  explicit WakesAtItsEnd(WaitList& list) : list_(list) {}
  WakesAtItsEnd(const WakesAtItsEnd&) = delete;
  WakesAtItsEnd& operator=(const WakesAtItsEnd&) = delete;
  ~WakesAtItsEnd() { list_.WakeAll(); }

 private:
  WaitList& list_;
};

Task<> HoldUntilLate(WaitList& list, Scheduler& scheduler) {
  const WakesAtItsEnd wakes(list);
  co_await scheduler.Sleep(std::chrono::hours(1));
}

TEST(Scope, CancelBearsFramesThatWakeOthersOfTheSameScope) {
  VirtualScheduler scheduler;
  const std::size_t frames = FramePool::InUse();
  WaitList list;
  Log log;
  TaskRunner runner;
  runner.Start(HoldUntilLate(list, scheduler));
  runner.Start(WaitIn(list, log, "woken"));
  runner.Start(Walk(log, "other", scheduler));
  runner.Cancel();
  EXPECT_THAT(log, ElementsAre("other begins", "woken"));
  EXPECT_EQ(Instance::Alive(), 0);
  EXPECT_EQ(FramePool::InUse(), frames);
}

}  // namespace
}  // namespace tarvo::core
