#include "view/view_bench.h"

namespace tarvo::view {
namespace {

class Gestures : public ViewBench {};

/// Writes down what the box shows, waits, and does so again.
core::Task<> WatchBox(Log& log, CheckBox& box, core::Scheduler& scheduler, std::string name, core::Duration wait) {
  log.push_back(name + " sees " + std::to_string(box.Value()));
  if (wait > core::Duration::zero()) {
    co_await scheduler.Sleep(wait);
    log.push_back(name + " still sees " + std::to_string(box.Value()));
  }
}

TEST_F(Gestures, ACheckBoxTogglesBetweenItsPressAndItsClick) {
  CheckBox& box = page_.CheckBelk1;
  box.OnPress = [&] { return WatchBox(log_, box, scheduler_, "press", {}); };
  box.OnClick = [&] { return WatchBox(log_, box, scheduler_, "click", {}); };
  EXPECT_TRUE(screen_.Click(box).taken);
  EXPECT_THAT(log_, ElementsAre("press sees 0", "click sees 1"));
  log_.clear();
  EXPECT_TRUE(screen_.Click(box).taken);
  EXPECT_THAT(log_, ElementsAre("press sees 1", "click sees 0"));
}

TEST_F(Gestures, ACheckBoxTogglesWhenItsPressFirstWaits) {
  CheckBox& box = page_.CheckBelk1;
  box.OnPress = [&] { return WatchBox(log_, box, scheduler_, "press", milliseconds(50)); };
  box.OnClick = [&] { return WatchBox(log_, box, scheduler_, "click", {}); };
  screen_.Click(box);
  EXPECT_EQ(box.Value(), 1);
  EXPECT_THAT(log_, ElementsAre("press sees 0"));
  scheduler_.Run(milliseconds(50));
  EXPECT_THAT(log_, ElementsAre("press sees 0", "press still sees 1", "click sees 1"));
  EXPECT_EQ(box.Value(), 1);
}

TEST_F(Gestures, ASecondClickSeesWhatTheFirstHasShown) {
  CheckBox& box = page_.CheckBelk1;
  box.OnPress = [&] { return WatchBox(log_, box, scheduler_, "press", milliseconds(50)); };
  screen_.Click(box);
  screen_.Click(box);
  EXPECT_EQ(box.Value(), 0);
  EXPECT_THAT(log_, ElementsAre("press sees 0", "press sees 1"));
  scheduler_.Run(milliseconds(50));
  EXPECT_EQ(box.Value(), 0);
}

TEST_F(Gestures, ACheckBoxWithoutHandlersToggles) {
  EXPECT_TRUE(screen_.Click(page_.CheckBelk1).taken);
  EXPECT_EQ(page_.CheckBelk1.Value(), 1);
}

TEST_F(Gestures, ACheckBoxWhosePressFailsTogglesAndRunsNoClick) {
  page_.CheckBelk1.OnPress = page_.Failing("Overflow");
  page_.CheckBelk1.OnClick = page_.Noting("click");
  screen_.Click(page_.CheckBelk1);
  EXPECT_EQ(page_.CheckBelk1.Value(), 1);
  EXPECT_THAT(log_, IsEmpty());
  EXPECT_EQ(FrontText(), "Overflow");
}

TEST_F(Gestures, AProgramChangeOfACheckBoxRunsItsChangeHandlerOnly) {
  page_.CheckBelk1.OnPress = page_.Noting("press");
  page_.CheckBelk1.OnClick = page_.Noting("click");
  page_.CheckBelk1.OnChange = [&] { log_.emplace_back("change"); };
  page_.CheckBelk1.Value = 1;
  page_.CheckBelk1.Value = 1;
  page_.CheckBelk1.Caption = "other";
  EXPECT_THAT(log_, ElementsAre("change"));
}

TEST_F(Gestures, AClickRunsTheChangeHandlerWithTheToggle) {
  page_.CheckBelk1.OnPress = page_.Noting("press");
  page_.CheckBelk1.OnClick = page_.Noting("click");
  page_.CheckBelk1.OnChange = [&] { log_.emplace_back("change"); };
  screen_.Click(page_.CheckBelk1);
  EXPECT_THAT(log_, ElementsAre("press", "change", "click"));
}

core::Task<> WatchOptions(Log& log, KindsPage& page) {
  log.push_back(std::string("click sees ") + (page.Even.Value() ? "even " : "") + (page.Odd.Value() ? "odd " : "") +
                (page.Raw.Value() ? "raw" : ""));
  co_return;
}

TEST_F(Gestures, AnOptionIsSelectedAndTheOthersOfItsGroupAreClearedBeforeItsClick) {
  page_.Raw.Value = true;
  page_.Even.Value = true;
  page_.Odd.OnClick = [&] { return WatchOptions(log_, page_); };
  EXPECT_TRUE(screen_.Click(page_.Odd).taken);
  EXPECT_THAT(log_, ElementsAre("click sees odd raw"));
}

TEST_F(Gestures, AClickOnTheSelectedOptionRunsItsHandlerToo) {
  page_.Odd.Value = true;
  page_.Odd.OnClick = page_.Noting("click");
  screen_.Click(page_.Odd);
  EXPECT_THAT(log_, ElementsAre("click"));
  EXPECT_TRUE(page_.Odd.Value());
}

TEST_F(Gestures, AProgramChangeOfAnOptionClearsTheOthersAndRunsNoHandler) {
  page_.Odd.OnClick = page_.Noting("odd click");
  page_.Even.OnClick = page_.Noting("even click");
  page_.Even.Value = true;
  other_.Even.Value = true;
  page_.Odd.Value = true;
  EXPECT_FALSE(page_.Even.Value());
  EXPECT_TRUE(other_.Even.Value());
  EXPECT_THAT(log_, IsEmpty());
}

TEST_F(Gestures, AnOptionThatIsClearedLeavesTheOthersAlone) {
  page_.Even.Value = true;
  page_.Odd.Value = false;
  page_.Even.Value = false;
  EXPECT_FALSE(page_.Odd.Value());
}

TEST_F(Gestures, EachKindThatTakesAClickRunsItsHandler) {
  page_.StartBelk.OnClick = page_.Noting("button");
  page_.FilterBelk.OnClick = page_.Noting("label");
  page_.Overflow.OnClick = page_.Noting("lamp");
  page_.StatoIN.OnClick = page_.Noting("image");
  page_.SaveMNU.OnClick = page_.Noting("menu");
  for (Control* control : {static_cast<Control*>(&page_.StartBelk), static_cast<Control*>(&page_.FilterBelk),
                           static_cast<Control*>(&page_.Overflow), static_cast<Control*>(&page_.StatoIN),
                           static_cast<Control*>(&page_.SaveMNU)}) {
    EXPECT_TRUE(control->TakesClick()) << control->Name();
    const GestureResult result = screen_.Click(*control);
    EXPECT_TRUE(result.taken) << control->Name();
    ASSERT_NE(result.run, nullptr) << control->Name();
    EXPECT_TRUE(result.run->Done()) << control->Name();
  }
  EXPECT_THAT(log_, ElementsAre("button", "label", "lamp", "image", "menu"));
}

TEST_F(Gestures, WhatHasNoClickHandlerTakesNoClick) {
  for (Control* control : {static_cast<Control*>(&page_.FilterBelk), static_cast<Control*>(&page_.Overflow),
                           static_cast<Control*>(&page_.StatoIN), static_cast<Control*>(&page_.SaveMNU),
                           static_cast<Control*>(&page_.Text1), static_cast<Control*>(&page_.Timer1)}) {
    control->Enabled = true;
    EXPECT_FALSE(control->TakesClick()) << control->Name();
    const GestureResult result = screen_.Click(*control);
    EXPECT_FALSE(result.taken);
    EXPECT_EQ(result.refusal, control->Name() + " takes no click");
  }
}

TEST_F(Gestures, AButtonWithoutAHandlerIsTakenAndStartsNothing) {
  const GestureResult result = screen_.Click(page_.StartBelk);
  EXPECT_TRUE(result.taken);
  EXPECT_EQ(result.run, nullptr);
}

TEST_F(Gestures, AListTakesAChoiceAndNoClick) {
  EXPECT_EQ(screen_.Click(page_.BaudBelk).refusal, "BaudBelk takes no click");
  EXPECT_TRUE(screen_.Choose(page_.BaudBelk, 4).taken);
  EXPECT_EQ(page_.BaudBelk.Text(), "115200");
  EXPECT_EQ(screen_.Choose(page_.StartBelk, 0).refusal, "StartBelk is no list");
  EXPECT_EQ(screen_.Choose(page_.BaudBelk, 5).refusal, "BaudBelk has no entry 5");
  EXPECT_EQ(screen_.Choose(page_.BaudBelk, -1).refusal, "BaudBelk has no entry -1");
  EXPECT_EQ(page_.BaudBelk.ListIndex(), 4);
}

TEST_F(Gestures, TypingReplacesTheTextOfATextBox) {
  page_.Text1.Text = "17";
  EXPECT_TRUE(screen_.Type(page_.Text1, "300").taken);
  EXPECT_EQ(page_.Text1.Text(), "300");
  EXPECT_EQ(screen_.Type(page_.FilterBelk, "300").refusal, "FilterBelk takes no text");
}

TEST_F(Gestures, LeavingATextBoxRunsItsHandler) {
  EXPECT_TRUE(screen_.Leave(page_.Text1).taken);
  page_.Text1.OnLeave = page_.Noting("leave");
  EXPECT_TRUE(screen_.Leave(page_.Text1).taken);
  EXPECT_TRUE(screen_.Leave(page_.StartBelk).taken);
  EXPECT_THAT(log_, ElementsAre("leave"));
}

TEST_F(Gestures, ADisabledControlTakesNoGesture) {
  page_.StartBelk.OnClick = page_.Noting("click");
  page_.StartBelk.Enabled = false;
  page_.CheckBelk1.Enabled = false;
  page_.BaudBelk.Enabled = false;
  page_.Text1.Enabled = false;
  const GestureResult result = screen_.Click(page_.StartBelk);
  EXPECT_FALSE(result.taken);
  EXPECT_EQ(result.refusal, "StartBelk is disabled");
  EXPECT_EQ(screen_.WhyNot(page_.StartBelk), "StartBelk is disabled");
  EXPECT_FALSE(screen_.Click(page_.CheckBelk1).taken);
  EXPECT_FALSE(screen_.Choose(page_.BaudBelk, 1).taken);
  EXPECT_FALSE(screen_.Type(page_.Text1, "x").taken);
  EXPECT_FALSE(screen_.PressKey(&page_.StartBelk, Key::kEnter).taken);
  EXPECT_FALSE(screen_.Leave(page_.Text1).taken);
  EXPECT_THAT(log_, IsEmpty());
  EXPECT_EQ(page_.CheckBelk1.Value(), 0);
  EXPECT_EQ(page_.BaudBelk.ListIndex(), -1);
  EXPECT_EQ(page_.Text1.Text(), "");
}

TEST_F(Gestures, AHiddenControlTakesNoGesture) {
  page_.StartBelk.Visible = false;
  EXPECT_EQ(screen_.Click(page_.StartBelk).refusal, "StartBelk is hidden");
}

TEST_F(Gestures, AControlOfAPageThatIsNotShownTakesNoGesture) {
  EXPECT_EQ(screen_.Click(other_.StartBelk).refusal, "StartBelk is not on the screen");
  ShowPage(&other_);
  EXPECT_TRUE(screen_.Click(other_.StartBelk).taken);
  EXPECT_EQ(screen_.Click(page_.StartBelk).refusal, "StartBelk is not on the screen");
}

TEST_F(Gestures, TheMainWindowTakesGesturesBesideThePage) {
  EXPECT_TRUE(screen_.Click(main_.StartBelk).taken);
}

TEST_F(Gestures, WhatStandsInFrontCoversTheRest) {
  page_.FilterBelk.OnClick = Opening(page_, dialog_);
  screen_.Click(page_.FilterBelk);
  EXPECT_EQ(screen_.Click(page_.StartBelk).refusal, "StartBelk is behind ChangeValue");
  EXPECT_EQ(screen_.Click(main_.StartBelk).refusal, "StartBelk is behind ChangeValue");

  dialog_.StartBelk.OnClick = Asking("Sure?", {"Yes"});
  EXPECT_TRUE(screen_.Click(dialog_.StartBelk).taken);
  EXPECT_EQ(screen_.Click(dialog_.StartBelk).refusal, "StartBelk is behind a message box");
}

core::Task<> AskForAFile(Screen& screen) {
  const std::optional<std::string> path = co_await screen.AskForFile(false, "All Files (*.txt) | *.txt");
  EXPECT_FALSE(path);
}

TEST_F(Gestures, AFileDialogCoversTheRest) {
  page_.Spawn(AskForAFile(screen_));
  EXPECT_EQ(screen_.Click(page_.StartBelk).refusal, "StartBelk is behind a file dialog");
}

TEST_F(Gestures, TheGuardIsAskedAfterAllElse) {
  int asked = 0;
  screen_.Guard = [&](const Control& control) {
    ++asked;
    return &control == &main_.FilterBelk ? control.Name() + " is locked during a session" : std::string();
  };
  main_.FilterBelk.OnClick = main_.Noting("click");
  EXPECT_EQ(screen_.Click(main_.FilterBelk).refusal, "FilterBelk is locked during a session");
  EXPECT_TRUE(screen_.Click(page_.StartBelk).taken);
  EXPECT_EQ(asked, 2);
  page_.StartBelk.Enabled = false;
  EXPECT_EQ(screen_.Click(page_.StartBelk).refusal, "StartBelk is disabled");
  EXPECT_EQ(asked, 2);
  EXPECT_THAT(log_, IsEmpty());
}

TEST_F(Gestures, ARunIsDoneWhenItsHandlerHasEnded) {
  page_.StartBelk.OnClick = page_.Waiting("begins", milliseconds(10), "ends");
  page_.FilterBelk.OnClick = page_.Waiting("begins", milliseconds(20), "ends");
  EXPECT_TRUE(screen_.Idle());
  const GestureResult first = screen_.Click(page_.StartBelk);
  const GestureResult second = screen_.Click(page_.FilterBelk);
  EXPECT_FALSE(first.run->Done());
  EXPECT_FALSE(screen_.Idle());
  scheduler_.Run(milliseconds(10));
  EXPECT_TRUE(first.run->Done());
  EXPECT_FALSE(second.run->Done());
  EXPECT_FALSE(screen_.Idle());
  scheduler_.Run(milliseconds(10));
  EXPECT_TRUE(second.run->Done());
  EXPECT_TRUE(screen_.Idle());
}

TEST_F(Gestures, ARunIsDoneWhenItsHandlerFailsOrIsCancelled) {
  page_.StartBelk.OnClick = page_.Failing("Overflow");
  EXPECT_TRUE(screen_.Click(page_.StartBelk).run->Done());
  screen_.Answer("OK");
  scheduler_.RunReady();
  page_.StartBelk.OnClick = page_.Waiting("begins", milliseconds(10), "ends");
  const GestureResult cancelled = screen_.Click(page_.StartBelk);
  page_.EndTasks();
  EXPECT_TRUE(cancelled.run->Done());
  EXPECT_TRUE(screen_.Idle());
}

TEST_F(Gestures, ATimersHandlerIsNoGesture) {
  page_.Timer1.OnTimer = page_.Waiting("tick", milliseconds(50), "tock");
  page_.Timer1.Enabled = true;
  scheduler_.Run(milliseconds(100));
  EXPECT_THAT(log_, ElementsAre("tick"));
  EXPECT_TRUE(screen_.Idle());
}

}  // namespace
}  // namespace tarvo::view
