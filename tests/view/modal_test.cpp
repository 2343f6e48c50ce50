#include "core/fault.h"
#include "core/frame_pool.h"
#include "view/view_bench.h"

namespace tarvo::view {
namespace {

class Modals : public ViewBench {
 protected:
  const MessageBox* FrontBox() const { return screen_.Front() == nullptr ? nullptr : screen_.Front()->AsMessageBox(); }

  /// A handler that asks for a file and writes the path down.
  Handler AskingForFile(bool save) {
    return [this, save] { return AskForFile(save); };
  }

 private:
  core::Task<> AskForFile(bool save) {
    const std::optional<std::string> path = co_await screen_.AskForFile(save, "All Files (*.txt) | *.txt");
    log_.push_back(path ? "path " + *path : "no path");
  }
};

core::Task<> Tell(Screen& screen, Log& log) {
  const std::string answer = co_await screen.MsgBox("EEProm updated!", Icon::kInformation);
  log.push_back("answer " + answer);
}

TEST_F(Modals, AMessageBoxShowsItsTextIconCaptionAndButton) {
  page_.Spawn(Tell(screen_, log_));
  ASSERT_NE(FrontBox(), nullptr);
  EXPECT_EQ(FrontBox()->text, "EEProm updated!");
  EXPECT_EQ(FrontBox()->caption, "Tarvo");
  EXPECT_EQ(FrontBox()->icon, Icon::kInformation);
  EXPECT_THAT(FrontBox()->buttons, ElementsAre("OK"));
  EXPECT_EQ(screen_.FrontWindow(), nullptr);
  EXPECT_EQ(screen_.ModalDepth(), 1U);
}

TEST_F(Modals, AnAnswerTakesTheBoxAwayAndItsAskerGoesOnInTheNextTurn) {
  page_.StartBelk.OnClick = Asking("Sure?", {"Yes", "No"});
  const GestureResult click = screen_.Click(page_.StartBelk);
  const GestureResult answer = screen_.Answer("No");
  EXPECT_TRUE(answer.taken);
  EXPECT_EQ(screen_.Front(), nullptr);
  EXPECT_THAT(log_, IsEmpty());
  EXPECT_FALSE(click.run->Done());
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("answer No"));
  EXPECT_TRUE(click.run->Done());
}

TEST_F(Modals, AnAnswerGivesTheRunThatGoesOnBecauseOfIt) {
  page_.StartBelk.OnClick = Asking("Sure?", {"Yes"});
  const GestureResult click = screen_.Click(page_.StartBelk);
  EXPECT_EQ(screen_.Front()->Opener(), click.run);
  EXPECT_EQ(screen_.Answer("Yes").run, click.run);
}

TEST_F(Modals, ABoxThatNoGestureLedToHasNoOpener) {
  page_.Spawn(Tell(screen_, log_));
  EXPECT_EQ(screen_.Front()->Opener(), nullptr);
  EXPECT_EQ(screen_.Answer("OK").run, nullptr);
}

TEST_F(Modals, ABoxIsAnsweredWithItsOwnButtonsOnly) {
  page_.StartBelk.OnClick = Asking("Sure?", {"Yes", "No"});
  screen_.Click(page_.StartBelk);
  const GestureResult result = screen_.Answer("OK");
  EXPECT_FALSE(result.taken);
  EXPECT_EQ(result.refusal, "the message box has no button OK");
  EXPECT_NE(FrontBox(), nullptr);
}

TEST_F(Modals, AnAnswerWithoutAQuestionIsRefused) {
  EXPECT_EQ(screen_.Answer("OK").refusal, "nothing waits for an answer");
  page_.StartBelk.OnClick = Opening(page_, dialog_);
  screen_.Click(page_.StartBelk);
  EXPECT_EQ(screen_.Answer("OK").refusal, "ChangeValue takes no answer");
}

TEST_F(Modals, EachModalThingHasANumberOfItsOwn) {
  page_.StartBelk.OnClick = Asking("Sure?", {"Yes"});
  screen_.Click(page_.StartBelk);
  const int first = screen_.Front()->Id();
  screen_.Answer("Yes");
  scheduler_.RunReady();
  screen_.Click(page_.StartBelk);
  EXPECT_NE(screen_.Front()->Id(), first);
}

TEST_F(Modals, AFileDialogGivesThePathOrNothing) {
  page_.StartBelk.OnClick = AskingForFile(true);
  screen_.Click(page_.StartBelk);
  ASSERT_NE(screen_.Front(), nullptr);
  ASSERT_NE(screen_.Front()->AsFileDialog(), nullptr);
  EXPECT_TRUE(screen_.Front()->AsFileDialog()->save);
  EXPECT_EQ(screen_.Front()->AsFileDialog()->filter, "All Files (*.txt) | *.txt");
  EXPECT_TRUE(screen_.Answer("/tmp/belk.txt").taken);
  scheduler_.RunReady();

  page_.StartBelk.OnClick = AskingForFile(false);
  screen_.Click(page_.StartBelk);
  EXPECT_FALSE(screen_.Front()->AsFileDialog()->save);
  EXPECT_TRUE(screen_.Answer("Cancel").taken);
  scheduler_.RunReady();
  screen_.Click(page_.StartBelk);
  EXPECT_TRUE(screen_.Close().taken);
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("path /tmp/belk.txt", "no path", "no path"));
}

TEST_F(Modals, AModalWindowRunsLoadAndActivateEachTimeItIsShown) {
  page_.StartBelk.OnClick = Opening(page_, dialog_);
  for (int i = 0; i < 2; ++i) {
    log_.clear();
    screen_.Click(page_.StartBelk);
    EXPECT_EQ(screen_.FrontWindow(), &dialog_);
    EXPECT_THAT(log_, ElementsAre("ChangeValue Load", "ChangeValue Activate"));
    screen_.CloseModal(dialog_);
    scheduler_.RunReady();
  }
}

TEST_F(Modals, AModalWindowThatWasTouchedBeforeIsLoadedAnew) {
  dialog_.EnsureLoaded();
  log_.clear();
  page_.StartBelk.OnClick = Opening(page_, dialog_);
  screen_.Click(page_.StartBelk);
  EXPECT_THAT(log_, ElementsAre("ChangeValue Load", "ChangeValue Activate"));
}

TEST_F(Modals, AModalWindowStandsInFrontWhileItsActivateWaits) {
  dialog_.activateTime = milliseconds(100);
  page_.StartBelk.OnClick = Opening(page_, dialog_);
  screen_.Click(page_.StartBelk);
  EXPECT_EQ(screen_.FrontWindow(), &dialog_);
  EXPECT_FALSE(screen_.Click(page_.FilterBelk).taken);
}

TEST_F(Modals, AModalWindowMayBeClosedBeforeItsActivateHasEnded) {
  dialog_.activateTime = milliseconds(100);
  page_.StartBelk.OnClick = Opening(page_, dialog_);
  screen_.Click(page_.StartBelk);
  screen_.CloseModal(dialog_);
  EXPECT_EQ(screen_.Front(), nullptr);
  scheduler_.Run(milliseconds(100));
  EXPECT_THAT(log_, ElementsAre("ChangeValue Load", "ChangeValue Activate", "ChangeValue Activate ends",
                                "Belk Activate", "Belk goes on"));
}

TEST_F(Modals, ThePagesActivateRunsToItsEndBeforeTheOpenerGoesOn) {
  page_.StartBelk.OnClick = Opening(page_, dialog_);
  screen_.Click(page_.StartBelk);
  log_.clear();
  page_.activateTime = milliseconds(100);
  screen_.CloseModal(dialog_);
  EXPECT_THAT(log_, IsEmpty());
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("Belk Activate"));
  scheduler_.Run(milliseconds(100));
  EXPECT_THAT(log_, ElementsAre("Belk Activate", "Belk Activate ends", "Belk goes on"));
}

TEST_F(Modals, ThePagesActivateRunsAlsoAfterAWindowOfTheMainWindow) {
  main_.StartBelk.OnClick = Opening(main_, second_);
  screen_.Click(main_.StartBelk);
  log_.clear();
  screen_.CloseModal(second_);
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("Belk Activate", "MDIForm1 goes on"));
}

TEST_F(Modals, AMessageBoxOrAFileDialogDoesNotRunThePagesActivate) {
  page_.StartBelk.OnClick = Asking("Sure?", {"Yes"});
  screen_.Click(page_.StartBelk);
  screen_.Answer("Yes");
  scheduler_.RunReady();
  page_.StartBelk.OnClick = AskingForFile(false);
  screen_.Click(page_.StartBelk);
  screen_.Answer("Cancel");
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("answer Yes", "no path"));
}

TEST_F(Modals, WindowsStackAndOnlyTheLastToCloseRunsThePagesActivate) {
  page_.StartBelk.OnClick = Opening(page_, dialog_);
  dialog_.StartBelk.OnClick = Opening(dialog_, second_);
  screen_.Click(page_.StartBelk);
  screen_.Click(dialog_.StartBelk);
  EXPECT_EQ(screen_.ModalDepth(), 2U);
  EXPECT_EQ(screen_.FrontWindow(), &second_);
  log_.clear();

  screen_.CloseModal(second_);
  scheduler_.RunReady();
  EXPECT_EQ(screen_.FrontWindow(), &dialog_);
  EXPECT_THAT(log_, ElementsAre("ChangeValue goes on"));
  screen_.CloseModal(dialog_);
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("ChangeValue goes on", "Belk Activate", "Belk goes on"));
  EXPECT_EQ(screen_.FrontWindow(), &page_);
}

TEST_F(Modals, ClosingAWindowThatIsNotOpenDoesNothing) {
  screen_.CloseModal(dialog_);
  scheduler_.RunReady();
  EXPECT_THAT(log_, IsEmpty());
}

TEST_F(Modals, TheCloseBoxAsksTheWindowInFront) {
  page_.StartBelk.OnClick = Opening(page_, dialog_);
  screen_.Click(page_.StartBelk);
  log_.clear();
  dialog_.mayClose = false;
  EXPECT_TRUE(screen_.Close().taken);
  scheduler_.RunReady();
  EXPECT_EQ(screen_.FrontWindow(), &dialog_);
  EXPECT_THAT(log_, ElementsAre("ChangeValue QueryUnload"));

  dialog_.mayClose = true;
  EXPECT_TRUE(screen_.Close().taken);
  scheduler_.RunReady();
  EXPECT_EQ(screen_.Front(), nullptr);
  EXPECT_THAT(log_, ElementsAre("ChangeValue QueryUnload", "ChangeValue QueryUnload", "ChangeValue Unload",
                                "Belk Activate", "Belk goes on"));
}

TEST_F(Modals, TheCloseBoxOfTheMainWindowAsksItWhenNothingStandsInFront) {
  main_.mayClose = false;
  EXPECT_TRUE(screen_.Close().taken);
  EXPECT_THAT(log_, ElementsAre("MDIForm1 QueryUnload"));
  main_.mayClose = true;
  EXPECT_TRUE(screen_.Close().taken);
  EXPECT_THAT(log_, ElementsAre("MDIForm1 QueryUnload", "MDIForm1 QueryUnload", "MDIForm1 Unload"));
}

TEST_F(Modals, TheCloseBoxOfAPageAsksIt) {
  page_.mayClose = false;
  EXPECT_TRUE(screen_.ClosePage(page_).taken);
  EXPECT_THAT(log_, ElementsAre("Belk QueryUnload"));
  EXPECT_EQ(screen_.ClosePage(other_).refusal, "Cobin is not in front");
}

TEST_F(Modals, TheCloseBoxOfAMessageBoxAnswersAsEscapeDoes) {
  page_.StartBelk.OnClick = Asking("Sure?", {"Yes", "No"});
  screen_.Click(page_.StartBelk);
  EXPECT_TRUE(screen_.Close().taken);
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("answer No"));
}

TEST_F(Modals, AFaultInAHandlerShowsOneBoxAndTheScreenGoesOn) {
  page_.StartBelk.OnClick = page_.Failing("File not found");
  const GestureResult click = screen_.Click(page_.StartBelk);
  EXPECT_TRUE(click.taken);
  EXPECT_EQ(screen_.ModalDepth(), 1U);
  ASSERT_NE(FrontBox(), nullptr);
  EXPECT_EQ(FrontBox()->text, "File not found");
  EXPECT_EQ(FrontBox()->caption, "Tarvo");
  EXPECT_EQ(FrontBox()->icon, Icon::kExclamation);
  EXPECT_THAT(FrontBox()->buttons, ElementsAre("OK"));

  screen_.Answer("OK");
  scheduler_.RunReady();
  EXPECT_EQ(screen_.Front(), nullptr);
  page_.StartBelk.OnClick = page_.Noting("click");
  EXPECT_TRUE(screen_.Click(page_.StartBelk).taken);
  EXPECT_THAT(log_, ElementsAre("click"));
}

TEST_F(Modals, AFaultOfTheCallThatGivesAHandlersTaskShowsABoxToo) {
  page_.StartBelk.OnClick = []() -> core::Task<> { throw core::Fault(core::kSubscriptOutOfRange); };
  EXPECT_TRUE(screen_.Click(page_.StartBelk).taken);
  EXPECT_EQ(FrontText(), "Subscript out of range");
  EXPECT_TRUE(screen_.Idle());
}

TEST_F(Modals, AFaultInATimersHandlerShowsABoxAndTheTimerGoesOn) {
  page_.Timer1.OnTimer = page_.Failing("Overflow");
  page_.Timer1.Enabled = true;
  scheduler_.Run(milliseconds(100));
  EXPECT_EQ(FrontText(), "Overflow");
  page_.Timer1.OnTimer = page_.Noting("tick");
  scheduler_.Run(milliseconds(100));
  EXPECT_THAT(log_, ElementsAre("tick"));
}

core::Task<> OpenThenFail(Screen& screen, Window& window) {
  co_await screen.ShowModal(window);
  throw core::Fault(core::kPermissionDenied);
}

TEST_F(Modals, AFaultAfterAWaitShowsABox) {
  page_.StartBelk.OnClick = [this] { return OpenThenFail(screen_, dialog_); };
  screen_.Click(page_.StartBelk);
  screen_.CloseModal(dialog_);
  scheduler_.RunReady();
  EXPECT_EQ(FrontText(), "Permission denied");
}

TEST_F(Modals, AWindowWhoseTasksAreCancelledTakesItsBoxesAlong) {
  const std::size_t frames = core::FramePool::InUse();
  page_.StartBelk.OnClick = Opening(page_, dialog_);
  dialog_.StartBelk.OnClick = Asking("Sure?", {"Yes"});
  screen_.Click(page_.StartBelk);
  screen_.Click(dialog_.StartBelk);
  EXPECT_EQ(screen_.ModalDepth(), 2U);
  dialog_.EndTasks();
  EXPECT_EQ(screen_.FrontWindow(), &dialog_);
  page_.EndTasks();
  EXPECT_EQ(screen_.Front(), nullptr);
  EXPECT_EQ(core::FramePool::InUse(), frames);
  EXPECT_TRUE(screen_.Idle());
  scheduler_.RunReady();
  EXPECT_TRUE(screen_.Click(page_.FilterBelk).refusal == "FilterBelk takes no click");
}

TEST_F(Modals, AWindowBehindAnotherMayTakeItsBoxAway) {
  page_.StartBelk.OnClick = Asking("Sure?", {"Yes"});
  screen_.Click(page_.StartBelk);
  other_.Spawn(Tell(screen_, log_));
  EXPECT_EQ(screen_.ModalDepth(), 2U);
  page_.EndTasks();
  EXPECT_EQ(screen_.ModalDepth(), 1U);
  EXPECT_EQ(FrontText(), "EEProm updated!");
}

TEST_F(Modals, AnAnsweredAskerThatIsCancelledBeforeItGoesOnLeavesNothing) {
  const std::size_t frames = core::FramePool::InUse();
  page_.StartBelk.OnClick = Asking("Sure?", {"Yes"});
  screen_.Click(page_.StartBelk);
  screen_.Answer("Yes");
  page_.EndTasks();
  scheduler_.RunReady();
  EXPECT_THAT(log_, IsEmpty());
  EXPECT_EQ(core::FramePool::InUse(), frames);
}

}  // namespace
}  // namespace tarvo::view
