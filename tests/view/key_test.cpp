#include "core/fault.h"
#include "view/view_bench.h"

namespace tarvo::view {
namespace {

class Keys : public ViewBench {
 protected:
  void SetUp() override {
    ViewBench::SetUp();
    for (KindsPage* window : {&page_, &dialog_}) {
      window->Text1.OnKey = [window](Key key) {
        return window->Noting("Text1 " + std::to_string(static_cast<int>(key)))();
      };
      window->StartBelk.OnClick = window->Noting("click");
    }
  }

  /// Opens the dialog from the page.
  void OpenDialog() {
    page_.FilterBelk.OnClick = Opening(page_, dialog_);
    screen_.Click(page_.FilterBelk);
    log_.clear();
  }
};

TEST_F(Keys, ThePageSeesAKeyWhenNothingStandsInFront) {
  EXPECT_TRUE(screen_.PressKey(nullptr, Key::kEscape).taken);
  EXPECT_THAT(log_, ElementsAre("Belk KeyDown 27"));
}

TEST_F(Keys, TheWindowSeesAKeyBeforeItsTextBox) {
  EXPECT_TRUE(screen_.PressKey(&page_.Text1, Key::kEnter).taken);
  EXPECT_THAT(log_, ElementsAre("Belk KeyDown 13", "Text1 13"));
}

TEST_F(Keys, ThePageSeesTheKeysOfTheMainWindow) {
  EXPECT_TRUE(screen_.PressKey(&main_.BaudBelk, Key::kEscape).taken);
  EXPECT_THAT(log_, ElementsAre("Belk KeyDown 27"));
}

TEST_F(Keys, EnterClicksWhatTakesAClick) {
  EXPECT_TRUE(screen_.PressKey(&page_.StartBelk, Key::kEnter).taken);
  EXPECT_THAT(log_, ElementsAre("Belk KeyDown 13", "click"));
  EXPECT_TRUE(screen_.PressKey(&page_.BaudBelk, Key::kEnter).taken);
  EXPECT_EQ(page_.BaudBelk.ListIndex(), -1);
}

TEST_F(Keys, EscapeOnAPageClosesNothing) {
  EXPECT_TRUE(screen_.PressKey(&page_.StartBelk, Key::kEscape).taken);
  EXPECT_THAT(log_, ElementsAre("Belk KeyDown 27"));
}

TEST_F(Keys, EnterAnswersAMessageBoxWithItsFirstButton) {
  page_.StartBelk.OnClick = Asking("Save?", {"Yes", "No", "Cancel"});
  screen_.Click(page_.StartBelk);
  EXPECT_TRUE(screen_.PressKey(nullptr, Key::kEnter).taken);
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("answer Yes"));
}

TEST_F(Keys, EscapeAnswersAMessageBoxWithCancelElseWithItsLastButton) {
  page_.StartBelk.OnClick = Asking("Save?", {"Cancel", "No", "Yes"});
  screen_.Click(page_.StartBelk);
  EXPECT_TRUE(screen_.PressKey(nullptr, Key::kEscape).taken);
  scheduler_.RunReady();
  page_.StartBelk.OnClick = Asking("Save?", {"Yes", "No"});
  screen_.Click(page_.StartBelk);
  EXPECT_TRUE(screen_.PressKey(nullptr, Key::kEscape).taken);
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("answer Cancel", "answer No"));
}

TEST_F(Keys, AMessageBoxKeepsKeysFromThePage) {
  page_.StartBelk.OnClick = Asking("Save?", {"Yes"});
  screen_.Click(page_.StartBelk);
  EXPECT_EQ(screen_.PressKey(&page_.Text1, Key::kEnter).refusal, "Text1 is behind a message box");
  EXPECT_THAT(log_, IsEmpty());
}

TEST_F(Keys, AModalWindowSeesEscapeAndCloses) {
  OpenDialog();
  EXPECT_TRUE(screen_.PressKey(nullptr, Key::kEscape).taken);
  EXPECT_EQ(screen_.Front(), nullptr);
  scheduler_.RunReady();
  EXPECT_THAT(log_, ElementsAre("ChangeValue KeyDown 27", "ChangeValue QueryUnload", "ChangeValue Unload",
                                "Belk Activate", "Belk goes on"));
}

TEST_F(Keys, AModalWindowThatRefusesStaysOpenAtEscape) {
  dialog_.mayClose = false;
  OpenDialog();
  EXPECT_TRUE(screen_.PressKey(&dialog_.StartBelk, Key::kEscape).taken);
  EXPECT_EQ(screen_.FrontWindow(), &dialog_);
  EXPECT_THAT(log_, ElementsAre("ChangeValue KeyDown 27", "ChangeValue QueryUnload"));
}

TEST_F(Keys, ATextBoxThatTakesKeysHasEscapeForItself) {
  OpenDialog();
  EXPECT_TRUE(screen_.PressKey(&dialog_.Text1, Key::kEscape).taken);
  EXPECT_EQ(screen_.FrontWindow(), &dialog_);
  EXPECT_THAT(log_, ElementsAre("ChangeValue KeyDown 27", "Text1 27"));
}

TEST_F(Keys, ATextBoxWithoutAKeyHandlerLeavesEscapeToItsWindow) {
  dialog_.Text1.OnKey = nullptr;
  OpenDialog();
  EXPECT_TRUE(screen_.PressKey(&dialog_.Text1, Key::kEscape).taken);
  EXPECT_EQ(screen_.Front(), nullptr);
}

TEST_F(Keys, EnterInAModalWindowIsSeenByItOnly) {
  OpenDialog();
  EXPECT_TRUE(screen_.PressKey(nullptr, Key::kEnter).taken);
  EXPECT_EQ(screen_.FrontWindow(), &dialog_);
  EXPECT_THAT(log_, ElementsAre("ChangeValue KeyDown 13"));
}

/// Closes itself when it sees a key.
class ShyWindow : public TestWindow {
 public:
  using TestWindow::TestWindow;
  ~ShyWindow() override { CancelTasks(); }
  void KeyDown(Key /*key*/) override { GetScreen().CloseModal(*this); }
};

TEST_F(Keys, EscapeClosesNoMoreThanTheWindowThatClosesItself) {
  ShyWindow shy(screen_, "Shy", log_);
  OpenDialog();
  dialog_.StartBelk.OnClick = Opening(dialog_, shy);
  screen_.Click(dialog_.StartBelk);
  EXPECT_TRUE(screen_.PressKey(nullptr, Key::kEscape).taken);
  EXPECT_EQ(screen_.FrontWindow(), &dialog_);
}

/// Fails when it sees a key.
class FailingWindow : public TestWindow {
 public:
  using TestWindow::TestWindow;
  ~FailingWindow() override { CancelTasks(); }
  void KeyDown(Key /*key*/) override { throw core::Fault(core::kOverflow); }
};

TEST_F(Keys, AFaultInKeyDownShowsABox) {
  FailingWindow failing(screen_, "Failing", log_);
  ShowPage(&failing);
  EXPECT_TRUE(screen_.PressKey(nullptr, Key::kEnter).taken);
  EXPECT_EQ(FrontText(), "Overflow");
  ShowPage(nullptr);
}

TEST_F(Keys, NothingOnTheScreenTakesAKeyQuietly) {
  ShowPage(nullptr);
  screen_.SetMain(nullptr);
  log_.clear();
  EXPECT_TRUE(screen_.PressKey(nullptr, Key::kEscape).taken);
  EXPECT_THAT(log_, IsEmpty());
}

}  // namespace
}  // namespace tarvo::view
