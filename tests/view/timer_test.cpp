#include "view/view_bench.h"

namespace tarvo::view {
namespace {

/// A timer of 100 ms whose handler writes down the time, and takes `busy_`.
class Timers : public ViewBench {
 protected:
  void SetUp() override {
    ViewBench::SetUp();
    timer_.OnTimer = [this] { return Tick(); };
  }

  core::Task<> Tick() {
    ticks_.push_back(std::chrono::duration_cast<std::chrono::milliseconds>(scheduler_.Now() - start_).count());
    if (onTick_) onTick_();
    if (busy_ > core::Duration::zero()) co_await scheduler_.Sleep(busy_);
  }

  Timer& timer_ = page_.Timer1;
  core::TimePoint start_ = scheduler_.Now();
  std::vector<std::int64_t> ticks_;
  core::Duration busy_{};
  std::function<void()> onTick_;
};

TEST_F(Timers, AreOffAtFirst) {
  EXPECT_FALSE(timer_.Enabled());
  scheduler_.Run(std::chrono::seconds(1));
  EXPECT_THAT(ticks_, IsEmpty());
}

TEST_F(Timers, TickEveryInterval) {
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(350));
  EXPECT_THAT(ticks_, ElementsAre(100, 200, 300));
}

TEST_F(Timers, StopWhenTheyAreDisabled) {
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(150));
  timer_.Enabled = false;
  scheduler_.Run(milliseconds(500));
  EXPECT_THAT(ticks_, ElementsAre(100));
}

TEST_F(Timers, CountAWholeIntervalFromWhenTheyAreEnabled) {
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(190));
  timer_.Enabled = false;
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(110));
  EXPECT_THAT(ticks_, ElementsAre(100, 290));
}

TEST_F(Timers, ThatAreEnabledAlreadyGoOnAsTheyWere) {
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(50));
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(50));
  EXPECT_THAT(ticks_, ElementsAre(100));
}

TEST_F(Timers, DropTheTicksThatAreDueWhileTheHandlerRuns) {
  busy_ = milliseconds(250);
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(950));
  EXPECT_THAT(ticks_, ElementsAre(100, 400, 700));
}

TEST_F(Timers, DoNotDriftWhenTheHandlerTakesTime) {
  busy_ = milliseconds(30);
  timer_.Enabled = true;
  scheduler_.Run(std::chrono::seconds(10));
  EXPECT_EQ(ticks_.size(), 100U);
  EXPECT_EQ(ticks_.back(), 10'000);
}

TEST_F(Timers, ThatAreOverdueTickOnce) {
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(10));
  scheduler_.Block(milliseconds(445));
  scheduler_.Run(milliseconds(200));
  EXPECT_THAT(ticks_, ElementsAre(455, 555, 655));
}

TEST_F(Timers, ThatAreALittleLateKeepTheirBeat) {
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(90));
  scheduler_.Block(milliseconds(40));
  scheduler_.Run(milliseconds(170));
  EXPECT_THAT(ticks_, ElementsAre(130, 200, 300));
}

TEST_F(Timers, MayBeDisabledInTheirOwnHandler) {
  onTick_ = [this] { timer_.Enabled = false; };
  timer_.Enabled = true;
  scheduler_.Run(std::chrono::seconds(1));
  EXPECT_THAT(ticks_, ElementsAre(100));
}

TEST_F(Timers, MayBeStoppedAndRestartedInTheirOwnHandler) {
  busy_ = milliseconds(30);
  onTick_ = [this] {
    timer_.Enabled = false;
    timer_.Enabled = true;
  };
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(350));
  EXPECT_THAT(ticks_, ElementsAre(100, 200, 300));
}

TEST_F(Timers, TakeANewIntervalAtOnce) {
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(50));
  timer_.Interval = 20;
  scheduler_.Run(milliseconds(50));
  EXPECT_THAT(ticks_, ElementsAre(70, 90));
}

TEST_F(Timers, OfNoIntervalDoNotTick) {
  timer_.Interval = 0;
  timer_.Enabled = true;
  scheduler_.Run(std::chrono::seconds(1));
  EXPECT_THAT(ticks_, IsEmpty());
}

TEST_F(Timers, TickBehindAMessageBox) {
  page_.StartBelk.OnClick = Asking("Sure?", {"Yes"});
  screen_.Click(page_.StartBelk);
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(100));
  EXPECT_THAT(ticks_, ElementsAre(100));
}

TEST_F(Timers, TickAgainAfterTheirHandlerWasCancelled) {
  busy_ = std::chrono::hours(1);
  timer_.Enabled = true;
  scheduler_.Run(milliseconds(250));
  page_.EndTasks();
  scheduler_.Run(milliseconds(50));
  EXPECT_THAT(ticks_, ElementsAre(100, 300));
}

}  // namespace
}  // namespace tarvo::view
