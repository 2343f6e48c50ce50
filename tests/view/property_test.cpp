#include "view/property.h"

#include "support/allocation_counter.h"
#include "view/view_bench.h"

namespace tarvo::view {
namespace {

class Properties : public ViewBench {
 protected:
  TestWatcher watcher_;
  Screen::Subscription subscription_ = screen_.Subscribe(watcher_);

  void SetUp() override {
    ViewBench::SetUp();
    scheduler_.RunReady();
    watcher_.notices.clear();
    watcher_.stageNotices = 0;
  }
};

TEST_F(Properties, AnEqualValueIsSilent) {
  page_.FilterBelk.Caption = "20";
  page_.CheckBelk1.Value = 0;
  page_.StartBelk.Enabled = true;
  page_.BaudBelk.SetRows(kBauds);
  EXPECT_FALSE(scheduler_.RunUntil([&] { return !watcher_.notices.empty(); }, milliseconds(1)));
}

TEST_F(Properties, FrontsAreToldOnceATurnOfAllThatChanged) {
  page_.FilterBelk.Caption = "21";
  page_.StartBelk.Enabled = false;
  page_.FilterBelk.Caption = "22";
  page_.FilterBelk.ToolTipText = "40008";
  EXPECT_THAT(watcher_.notices, IsEmpty());
  scheduler_.RunReady();
  EXPECT_THAT(watcher_.notices, ElementsAre(ElementsAre("FilterBelk", "StartBelk")));
  EXPECT_EQ(watcher_.stageNotices, 0);
}

TEST_F(Properties, TheNoticeComesAfterAllElseOfTheTurn) {
  core::Call posted(scheduler_, [&] { page_.FilterBelk.Caption = "21"; });
  core::Call timer(scheduler_, [&] {
    EXPECT_THAT(watcher_.notices, IsEmpty());
    page_.StartBelk.Enabled = false;
  });
  posted.Post();
  timer.After(milliseconds(0));
  scheduler_.RunReady();
  EXPECT_THAT(watcher_.notices, ElementsAre(ElementsAre("FilterBelk", "StartBelk")));
}

TEST_F(Properties, ATurnWithoutAChangeTellsNothing) {
  core::Call timer(scheduler_, [&] { page_.FilterBelk.Caption = "20"; });
  timer.After(milliseconds(1));
  scheduler_.Run(milliseconds(10));
  EXPECT_THAT(watcher_.notices, IsEmpty());
  EXPECT_EQ(watcher_.stageNotices, 0);
}

TEST_F(Properties, AChangeDuringANoticeIsToldInTheNextTurn) {
  watcher_.onNotice = [&] { page_.FilterBelk.Caption = "30"; };
  page_.FilterBelk.Caption = "21";
  scheduler_.RunReady();
  EXPECT_THAT(watcher_.notices, ElementsAre(ElementsAre("FilterBelk"), ElementsAre("FilterBelk")));
}

TEST_F(Properties, EveryFrontIsTold) {
  TestWatcher second;
  const Screen::Subscription subscription = screen_.Subscribe(second);
  page_.FilterBelk.Caption = "21";
  scheduler_.RunReady();
  EXPECT_EQ(watcher_.notices.size(), 1U);
  EXPECT_EQ(second.notices.size(), 1U);
}

TEST_F(Properties, ASubscriptionEndsWithItsOwner) {
  subscription_ = Screen::Subscription();
  page_.FilterBelk.Caption = "21";
  scheduler_.RunReady();
  EXPECT_THAT(watcher_.notices, IsEmpty());
}

TEST_F(Properties, ASubscriptionMovesToAnotherOwner) {
  Screen::Subscription second = std::move(subscription_);
  page_.FilterBelk.Caption = "21";
  scheduler_.RunReady();
  EXPECT_EQ(watcher_.notices.size(), 1U);
}

TEST_F(Properties, AFrontMayEndASubscriptionWhileItIsTold) {
  TestWatcher second;
  TestWatcher third;
  Screen::Subscription secondSubscription = screen_.Subscribe(second);
  const Screen::Subscription thirdSubscription = screen_.Subscribe(third);
  watcher_.onNotice = [&] {
    secondSubscription = Screen::Subscription();
    subscription_ = Screen::Subscription();
  };
  page_.FilterBelk.Caption = "21";
  scheduler_.RunReady();
  page_.FilterBelk.Caption = "22";
  scheduler_.RunReady();
  EXPECT_EQ(watcher_.notices.size(), 1U);
  EXPECT_THAT(second.notices, IsEmpty());
  EXPECT_EQ(third.notices.size(), 2U);
}

TEST_F(Properties, AFrontThatComesDuringANoticeIsToldOfLaterChangesOnly) {
  TestWatcher second;
  Screen::Subscription secondSubscription;
  watcher_.onNotice = [&] { secondSubscription = screen_.Subscribe(second); };
  page_.FilterBelk.Caption = "21";
  scheduler_.RunReady();
  EXPECT_THAT(second.notices, IsEmpty());
  page_.StartBelk.Enabled = false;
  scheduler_.RunReady();
  EXPECT_THAT(second.notices, ElementsAre(ElementsAre("StartBelk")));
}

TEST_F(Properties, AControlThatHasGoneIsNotTold) {
  {
    KindsPage shortLived(screen_, "ShortLived", log_);
    shortLived.FilterBelk.Caption = "21";
    page_.StartBelk.Enabled = false;
  }
  scheduler_.RunReady();
  EXPECT_THAT(watcher_.notices, ElementsAre(ElementsAre("StartBelk")));
}

TEST_F(Properties, ABlockTellsFirstWhatChanged) {
  page_.FilterBelk.Caption = "21";
  scheduler_.Block(milliseconds(100));
  EXPECT_THAT(watcher_.notices, ElementsAre(ElementsAre("FilterBelk")));
}

TEST_F(Properties, AnotherPageAPointerAndABeepAreStageNotices) {
  ShowPage(&other_);
  scheduler_.RunReady();
  EXPECT_EQ(watcher_.stageNotices, 1);
  screen_.SetMousePointer(Screen::Pointer::kHourglass);
  screen_.SetMousePointer(Screen::Pointer::kHourglass);
  scheduler_.RunReady();
  EXPECT_EQ(watcher_.stageNotices, 2);
  screen_.SetMousePointer(Screen::Pointer::kHourglass);
  scheduler_.RunReady();
  EXPECT_EQ(watcher_.stageNotices, 2);
  screen_.Beep();
  scheduler_.RunReady();
  EXPECT_EQ(watcher_.stageNotices, 3);
  EXPECT_EQ(screen_.Beeps(), 1);
  EXPECT_THAT(watcher_.notices, IsEmpty());
}

TEST_F(Properties, ModalThingsThatComeAndGoAreStageNotices) {
  page_.StartBelk.OnClick = Asking("Sure?", {"Yes"});
  screen_.Click(page_.StartBelk);
  scheduler_.RunReady();
  EXPECT_EQ(watcher_.stageNotices, 1);
  screen_.Answer("Yes");
  scheduler_.RunReady();
  EXPECT_EQ(watcher_.stageNotices, 2);
}

TEST_F(Properties, APropertyTakesTheValueOfAnother) {
  page_.FilterBelk.Caption = "21";
  other_.FilterBelk.Caption = page_.FilterBelk.Caption;
  EXPECT_EQ(other_.FilterBelk.Caption(), "21");
  scheduler_.RunReady();
  EXPECT_THAT(watcher_.notices, ElementsAre(ElementsAre("FilterBelk", "FilterBelk")));
}

#if TARVO_COUNTS_ALLOCATIONS

/// A front that only counts, so that it allocates nothing itself.
class CountingWatcher final : public Watcher {
 public:
  void ControlsChanged(std::span<Control* const> changed) override { count += changed.size(); }
  void StageChanged() override {}
  std::size_t count = 0;
};

core::Task<> CountUp(Label& label, Panel& panel, int& ticks) {
  ++ticks;
  label.BackColor = ticks;
  panel.Visible = ticks % 2 == 0;
  co_return;
}

TEST_F(Properties, ATimerWhoseHandlerChangesControlsAllocatesNothingOnceItRuns) {
  subscription_ = Screen::Subscription();
  CountingWatcher counting;
  const Screen::Subscription subscription = screen_.Subscribe(counting);
  Panel panel(page_, "StatusBar1");
  int ticks = 0;
  page_.Timer1.OnTimer = [&] { return CountUp(page_.FilterBelk, panel, ticks); };
  page_.Timer1.Enabled = true;
  scheduler_.Run(milliseconds(1000));
  ASSERT_EQ(ticks, 10);

  const std::size_t allocations = test::Allocations();
  scheduler_.Run(std::chrono::minutes(10));
  EXPECT_EQ(test::Allocations(), allocations);
  EXPECT_EQ(ticks, 6010);
  // Two controls a tick, and the timer itself when it was enabled.
  EXPECT_EQ(counting.count, 2U * 6010U + 1U);
}

#endif

}  // namespace
}  // namespace tarvo::view
