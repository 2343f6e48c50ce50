#include "core/wait_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/task.h"
#include "support/task_runner.h"

namespace tarvo::core {
namespace {

using test::TaskRunner;
using testing::ElementsAre;
using Log = std::vector<std::string>;

Task<> WaitTwice(WaitList& list, Log& log, std::string name) {
  co_await list.Wait();
  log.push_back(name + "1");
  co_await list.Wait();
  log.push_back(name + "2");
}

TEST(WaitList, WakesFirstComeFirst) {
  WaitList list;
  Log log;
  TaskRunner runner;
  for (const char* name : {"a", "b", "c"}) runner.Start(WaitTwice(list, log, name));
  EXPECT_TRUE(list.WakeOne());
  EXPECT_THAT(log, ElementsAre("a1"));
  EXPECT_TRUE(list.WakeOne());
  EXPECT_THAT(log, ElementsAre("a1", "b1"));
}

TEST(WaitList, WhoWaitsAgainStandsAtTheEndOfTheLine) {
  WaitList list;
  Log log;
  TaskRunner runner;
  for (const char* name : {"a", "b"}) runner.Start(WaitTwice(list, log, name));
  while (list.WakeOne()) {
  }
  EXPECT_THAT(log, ElementsAre("a1", "b1", "a2", "b2"));
}

TEST(WaitList, WakeOneTellsWhenNobodyWaits) {
  WaitList list;
  EXPECT_TRUE(list.Empty());
  EXPECT_FALSE(list.WakeOne());
}

TEST(WaitList, WakeAllLeavesThoseWhoWaitAgain) {
  WaitList list;
  Log log;
  TaskRunner runner;
  for (const char* name : {"a", "b"}) runner.Start(WaitTwice(list, log, name));
  list.WakeAll();
  EXPECT_THAT(log, ElementsAre("a1", "b1"));
  EXPECT_FALSE(list.Empty());
  list.WakeAll();
  EXPECT_THAT(log, ElementsAre("a1", "b1", "a2", "b2"));
  EXPECT_TRUE(list.Empty());
}

Task<> WaitThenCancel(WaitList& list, Log& log, TaskRunner& other) {
  co_await list.Wait();
  log.emplace_back("canceller");
  other.Cancel();
}

TEST(WaitList, AWaiterThatIsCancelledDuringWakeAllIsNotWoken) {
  WaitList list;
  Log log;
  TaskRunner runner;
  TaskRunner victim;
  runner.Start(WaitThenCancel(list, log, victim));
  victim.Start(WaitTwice(list, log, "victim"));
  list.WakeAll();
  EXPECT_THAT(log, ElementsAre("canceller"));
  EXPECT_TRUE(list.Empty());
}

Task<> WaitThenDrop(std::unique_ptr<WaitList>& list, Log& log) {
  co_await list->Wait();
  list.reset();
  log.emplace_back("dropped");
}

TEST(WaitList, MayEndWhileItWakes) {
  auto list = std::make_unique<WaitList>();
  WaitList& theList = *list;
  Log log;
  TaskRunner runner;
  runner.Start(WaitThenDrop(list, log));
  theList.WakeAll();
  EXPECT_THAT(log, ElementsAre("dropped"));
}

class CountingWaiter final : public Waiter {
 public:
  void Woken() override { ++count_; }
  int Count() const { return count_; }

 private:
  int count_ = 0;
};

TEST(WaitList, WaitersThatAreNoCoroutinesStandInTheSameLine) {
  WaitList list;
  Log log;
  TaskRunner runner;
  CountingWaiter waiter;
  list.Add(waiter);
  runner.Start(WaitTwice(list, log, "a"));
  list.WakeOne();
  EXPECT_EQ(waiter.Count(), 1);
  EXPECT_TRUE(log.empty());
  list.WakeOne();
  EXPECT_EQ(waiter.Count(), 1);
  EXPECT_THAT(log, ElementsAre("a1"));
}

}  // namespace
}  // namespace tarvo::core
