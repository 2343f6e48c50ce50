#include "core/scheduler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "core/virtual_scheduler.h"
#include "core/wait_list.h"
#include "support/task_runner.h"

namespace tarvo::core {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A virtual scheduler, and calls that write down that they were called.
class Scheduling : public testing::Test {
 protected:
  std::unique_ptr<Call> Noting(std::string name) {
    return std::make_unique<Call>(scheduler_, [this, name] { log_.push_back(name); });
  }
  std::unique_ptr<Call> Doing(std::function<void()> function) {
    return std::make_unique<Call>(scheduler_, std::move(function));
  }
  std::chrono::milliseconds Gone() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(scheduler_.Now() - start_);
  }

  VirtualScheduler scheduler_;
  TimePoint start_ = scheduler_.Now();
  std::vector<std::string> log_;
};

TEST_F(Scheduling, ATurnRunsPostedThenArrivalsThenTimersThenItsEnd) {
  const auto end = Noting("end");
  const auto timer = Noting("timer");
  const auto arrival = Noting("arrival");
  const auto posted = Noting("posted");
  end->AtTurnEnd();
  timer->After(milliseconds(0));
  arrival->ArriveAfter(milliseconds(0));
  posted->Post();
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("posted", "arrival", "timer", "end"));
}

TEST_F(Scheduling, PostedCallsRunInTheirOrderAndOnce) {
  const auto a = Noting("a");
  const auto b = Noting("b");
  a->Post();
  b->Post();
  a->Post();
  EXPECT_TRUE(a->Pending());
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("a", "b"));
  EXPECT_FALSE(a->Pending());
}

TEST_F(Scheduling, ACallPostedInATurnRunsInTheNext) {
  const auto second = Noting("second");
  const auto end = Noting("end of turn");
  const auto first = Doing([&] {
    log_.emplace_back("first");
    second->Post();
    end->AtTurnEnd();
  });
  first->Post();
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("first", "end of turn", "second"));
}

TEST_F(Scheduling, ACallThatPostsItselfLeavesTheTurnToOthers) {
  int rounds = 0;
  std::unique_ptr<Call> again;
  again = Doing([&] {
    log_.emplace_back("again");
    if (++rounds < 3) again->Post();
  });
  const auto timer = Noting("timer");
  timer->After(milliseconds(0));
  again->Post();
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("again", "timer", "again", "again"));
}

TEST_F(Scheduling, TimersRunByTheirTimeAndNotBefore) {
  const auto late = Noting("late");
  const auto early = Noting("early");
  late->After(milliseconds(20));
  early->After(milliseconds(10));
  scheduler_.Run(milliseconds(9));
  EXPECT_THAT(log_, IsEmpty());
  scheduler_.Run(milliseconds(1));
  EXPECT_THAT(log_, ElementsAre("early"));
  scheduler_.Run(milliseconds(10));
  EXPECT_THAT(log_, ElementsAre("early", "late"));
}

TEST_F(Scheduling, TimersOfOneTimeKeepTheOrderInWhichTheyWereAsked) {
  const auto a = Noting("a");
  const auto b = Noting("b");
  const auto c = Noting("c");
  a->After(milliseconds(10));
  b->After(milliseconds(10));
  c->After(milliseconds(10));
  a->After(milliseconds(10));
  scheduler_.Run(milliseconds(10));
  EXPECT_THAT(log_, ElementsAre("b", "c", "a"));
}

TEST_F(Scheduling, ALaterTimeReplacesAnEarlierOne) {
  const auto call = Noting("call");
  call->After(milliseconds(10));
  call->After(milliseconds(30));
  scheduler_.Run(milliseconds(29));
  EXPECT_THAT(log_, IsEmpty());
  scheduler_.Run(milliseconds(1));
  EXPECT_THAT(log_, ElementsAre("call"));
  scheduler_.Run(milliseconds(100));
  EXPECT_EQ(log_.size(), 1U);
}

TEST_F(Scheduling, ACancelledCallDoesNotRun) {
  const auto timer = Noting("timer");
  const auto posted = Noting("posted");
  timer->After(milliseconds(1));
  posted->Post();
  timer->Cancel();
  posted->Cancel();
  EXPECT_FALSE(timer->Pending());
  scheduler_.Run(milliseconds(10));
  EXPECT_THAT(log_, IsEmpty());
}

TEST_F(Scheduling, ACallMayArmItselfAgain) {
  std::unique_ptr<Call> tick;
  tick = Doing([&] {
    log_.push_back(std::to_string(Gone().count()));
    tick->At(tick->Due() + milliseconds(10));
  });
  tick->After(milliseconds(10));
  scheduler_.Run(milliseconds(35));
  EXPECT_THAT(log_, ElementsAre("10", "20", "30"));
  EXPECT_TRUE(tick->Pending());
}

TEST_F(Scheduling, ACallMayCancelWhatItHasJustArmed) {
  std::unique_ptr<Call> tick;
  tick = Doing([&] {
    log_.emplace_back("tick");
    tick->After(milliseconds(10));
    tick->Cancel();
  });
  tick->After(milliseconds(10));
  scheduler_.Run(milliseconds(100));
  EXPECT_THAT(log_, ElementsAre("tick"));
}

TEST_F(Scheduling, ACallThatIsDueAgainAtOnceWaitsForTheNextTurn) {
  int rounds = 0;
  std::unique_ptr<Call> again;
  again = Doing([&] {
    log_.emplace_back("again");
    if (++rounds < 2) again->After(milliseconds(0));
  });
  const auto other = Noting("other");
  const auto end = Noting("end of turn");
  again->After(milliseconds(10));
  other->After(milliseconds(10));
  const auto turn = Doing([&] { end->AtTurnEnd(); });
  turn->After(milliseconds(10));
  scheduler_.Run(milliseconds(10));
  EXPECT_THAT(log_, ElementsAre("again", "other", "end of turn", "again"));
}

TEST_F(Scheduling, ACallThatIsDueInThePastDoesNotKeepOthersFromRunning) {
  int rounds = 0;
  std::unique_ptr<Call> eager;
  eager = Doing([&] {
    if (++rounds < 100) eager->At(start_);
  });
  const auto other = Doing([&] { log_.push_back("after " + std::to_string(rounds)); });
  eager->After(milliseconds(10));
  other->After(milliseconds(10));
  scheduler_.Run(milliseconds(10));
  EXPECT_THAT(log_, ElementsAre("after 1"));
  EXPECT_EQ(rounds, 100);
}

TEST_F(Scheduling, ACallWithdrawsItselfWhenItDies) {
  auto timer = Noting("timer");
  auto arrival = Noting("arrival");
  auto posted = Noting("posted");
  auto end = Noting("end");
  timer->After(milliseconds(1));
  arrival->ArriveAfter(milliseconds(1));
  posted->Post();
  end->AtTurnEnd();
  timer.reset();
  arrival.reset();
  posted.reset();
  end.reset();
  scheduler_.Run(milliseconds(10));
  EXPECT_THAT(log_, IsEmpty());
}

TEST_F(Scheduling, ACallMayEndAnotherOfTheSameTurn) {
  auto posted = Noting("posted victim");
  auto timer = Noting("timer victim");
  auto end = Noting("end victim");
  const auto first = Doing([&] {
    log_.emplace_back("first");
    posted.reset();
  });
  const auto second = Doing([&] {
    log_.emplace_back("second");
    timer.reset();
  });
  const auto third = Doing([&] {
    log_.emplace_back("third");
    end.reset();
  });
  first->Post();
  posted->Post();
  second->After(milliseconds(0));
  timer->After(milliseconds(0));
  third->AtTurnEnd();
  end->AtTurnEnd();
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("first", "second", "third"));
}

TEST_F(Scheduling, ACallMayEndItself) {
  std::unique_ptr<Call> once;
  once = Doing([&] {
    log_.emplace_back("once");
    once.reset();  // and with it what this lambda holds
  });
  once->Post();
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("once"));
  EXPECT_EQ(once, nullptr);
}

TEST_F(Scheduling, BlockRunsTheTurnEndNoticesFirstAndNothingElse) {
  const auto notice = Doing([&] { log_.push_back("notice at " + std::to_string(Gone().count())); });
  const auto posted = Noting("posted");
  const auto arrival = Noting("arrival");
  const auto timer = Noting("timer");
  const auto blocker = Doing([&] {
    notice->AtTurnEnd();
    posted->Post();
    arrival->ArriveAfter(milliseconds(5));
    timer->After(milliseconds(1));
    log_.emplace_back("before");
    scheduler_.Block(milliseconds(50));
    log_.push_back("after at " + std::to_string(Gone().count()));
  });
  blocker->Post();
  scheduler_.Run(milliseconds(100));
  EXPECT_THAT(log_, ElementsAre("before", "notice at 0", "after at 50", "posted", "arrival", "timer"));
}

TEST_F(Scheduling, AnOverdueTimerFiresOnceAfterABlock) {
  std::unique_ptr<Call> tick;
  tick = Doing([&] {
    log_.push_back(std::to_string(Gone().count()));
    tick->After(milliseconds(10));
  });
  tick->After(milliseconds(10));
  scheduler_.Block(milliseconds(45));
  scheduler_.Run(milliseconds(12));
  EXPECT_THAT(log_, ElementsAre("45", "55"));
}

TEST_F(Scheduling, WhatArrivedDuringABlockInATimerComesBeforeTheTimersThatWereDue) {
  const auto arrival = Noting("arrival");
  const auto timeOut = Noting("time-out");
  const auto blocker = Doing([&] {
    log_.emplace_back("blocker");
    scheduler_.Block(milliseconds(50));
  });
  blocker->After(milliseconds(10));
  timeOut->After(milliseconds(10));
  arrival->ArriveAfter(milliseconds(30));
  scheduler_.Run(milliseconds(60));
  EXPECT_THAT(log_, ElementsAre("blocker", "arrival", "time-out"));
}

/// Has something to tell at the beginning of a turn, as a watched descriptor has.
class WatchingScheduler : public VirtualScheduler {
 public:
  explicit WatchingScheduler(std::function<void()> poll) : poll_(std::move(poll)) {}

 protected:
  void PollDescriptors() override { poll_(); }

 private:
  std::function<void()> poll_;
};

TEST(SchedulerWithDescriptors, TellsThemAfterABlockBeforeTheTimersThatFellDueInIt) {
  std::vector<std::string> log;
  bool readable = false;
  WatchingScheduler scheduler([&] {
    if (std::exchange(readable, false)) log.emplace_back("descriptor");
  });
  Call timeOut(scheduler, [&] { log.emplace_back("time-out"); });
  Call blocker(scheduler, [&] {
    log.emplace_back("blocker");
    scheduler.Block(milliseconds(50));
    readable = true;
  });
  timeOut.After(milliseconds(10));
  blocker.Post();
  scheduler.Run(milliseconds(60));
  EXPECT_THAT(log, ElementsAre("blocker", "descriptor", "time-out"));
}

Task<> SleepAndNote(Scheduler& scheduler, Duration duration, int& count) {
  co_await scheduler.Sleep(duration);
  ++count;
}

TEST_F(Scheduling, SleepGoesOnWhenItsTimeHasGoneBy) {
  test::TaskRunner runner;
  int count = 0;
  runner.Start(SleepAndNote(scheduler_, milliseconds(10), count));
  scheduler_.Run(milliseconds(9));
  EXPECT_EQ(count, 0);
  scheduler_.Run(milliseconds(1));
  EXPECT_EQ(count, 1);
}

TEST_F(Scheduling, RunLetsTheWholeTimeGoByAndNoMore) {
  scheduler_.Run(milliseconds(70));
  EXPECT_EQ(Gone(), milliseconds(70));
}

TEST_F(Scheduling, RunReadyLetsNoTimeGoBy) {
  const auto later = Noting("later");
  const auto now = Noting("now");
  later->After(milliseconds(1));
  now->After(milliseconds(0));
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("now"));
  EXPECT_EQ(Gone(), milliseconds(0));
}

TEST_F(Scheduling, RunEndsAlsoWhenEachTickBlocksLongerThanItsPeriod) {
  std::unique_ptr<Call> tick;
  tick = Doing([&] {
    log_.emplace_back("tick");
    tick->After(milliseconds(10));
    scheduler_.Block(milliseconds(40));
  });
  tick->After(milliseconds(10));
  scheduler_.Run(milliseconds(100));
  // Due at 10, 20, 60 and 100, the last three late.
  EXPECT_EQ(log_.size(), 4U);
  EXPECT_EQ(Gone(), milliseconds(170));
  EXPECT_FALSE(scheduler_.RunUntil([] { return false; }, milliseconds(100)));
}

TEST_F(Scheduling, RunUntilStopsAsSoonAsTheConditionHolds) {
  const auto first = Noting("first");
  const auto second = Noting("second");
  first->After(milliseconds(10));
  second->After(milliseconds(20));
  EXPECT_TRUE(scheduler_.RunUntil([&] { return !log_.empty(); }, std::chrono::seconds(1)));
  EXPECT_THAT(log_, ElementsAre("first"));
  EXPECT_EQ(Gone(), milliseconds(10));
}

TEST_F(Scheduling, RunUntilGivesUpAtItsLimit) {
  const auto late = Noting("late");
  late->After(milliseconds(1001));
  EXPECT_FALSE(scheduler_.RunUntil([&] { return !log_.empty(); }, std::chrono::seconds(1)));
  EXPECT_THAT(log_, IsEmpty());
}

Task<> WaitFor(WaitList& list, bool& ended) {
  co_await list.Wait();
  ended = true;
}

TEST_F(Scheduling, AWaitThatNothingCanEndFailsAtOnce) {
  test::TaskRunner runner;
  WaitList never;
  bool ended = false;
  runner.Start(WaitFor(never, ended));
  EXPECT_FALSE(scheduler_.RunUntil([&] { return ended; }, std::chrono::hours(24 * 365)));
  EXPECT_EQ(Gone(), milliseconds(0));
}

TEST_F(Scheduling, TurnsThatFollowEachOtherForeverInNoTimeFail) {
  std::unique_ptr<Call> spin;
  spin = Doing([&] { spin->Post(); });
  spin->Post();
  EXPECT_THROW(scheduler_.RunReady(), std::logic_error);
}

TEST_F(Scheduling, VirtualTimeRefusesDescriptors) {
  EXPECT_THROW(DescriptorWatch(scheduler_, 0, [](DescriptorEvents) {}), std::logic_error);
}

}  // namespace
}  // namespace tarvo::core
