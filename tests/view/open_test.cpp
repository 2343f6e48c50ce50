// Pages that no navigation leads to.

#include <string>
#include <utility>
#include <vector>

#include "view/view_bench.h"

namespace tarvo::view {
namespace {

class HiddenPage : public TestWindow {
 public:
  using TestWindow::TestWindow;

  bool Hidden() const override { return true; }
  /// A page that asks before it is left.
  core::Task<bool> QueryUnload() override {
    if (question.empty()) co_return co_await TestWindow::QueryUnload();
    std::vector<std::string> buttons = {"Yes", "No"};
    const std::string answer = co_await GetScreen().Ask(question, Icon::kQuestion, std::move(buttons));
    co_return answer == "Yes";
  }

  std::string question;
};

class HiddenPages : public ViewBench {
 protected:
  HiddenPage hidden_{screen_, "frmHidden", log_};
  HiddenPage another_{screen_, "frmAnother", log_};
};

TEST_F(HiddenPages, AreShownInPlaceOfThePageThatIsLeft) {
  const GestureResult result = screen_.Open(hidden_);
  EXPECT_TRUE(result.taken) << result.refusal;
  EXPECT_EQ(screen_.Page(), &hidden_);
  EXPECT_THAT(log_, ElementsAre("Belk QueryUnload", "Belk Deactivate", "frmHidden Load", "frmHidden Activate"));
  ASSERT_NE(result.run, nullptr);
  EXPECT_TRUE(result.run->Done());
}

TEST_F(HiddenPages, AreShownWhenThereIsNoPage) {
  ShowPage(nullptr);
  log_.clear();
  EXPECT_TRUE(screen_.Open(hidden_).taken);
  EXPECT_EQ(screen_.Page(), &hidden_);
  EXPECT_THAT(log_, ElementsAre("frmHidden Load", "frmHidden Activate"));
}

TEST_F(HiddenPages, AreOpenWhenTheirActivateHasEnded) {
  hidden_.activateTime = milliseconds(100);
  const GestureResult result = screen_.Open(hidden_);
  ASSERT_TRUE(result.taken);
  EXPECT_FALSE(result.run->Done());
  EXPECT_FALSE(screen_.Idle());
  scheduler_.Run(milliseconds(100));
  EXPECT_TRUE(result.run->Done());
  EXPECT_EQ(log_.back(), "frmHidden Activate ends");
}

TEST_F(HiddenPages, AreLoadedOnlyTheFirstTime) {
  screen_.Open(hidden_);
  ShowPage(&page_);
  log_.clear();
  EXPECT_TRUE(screen_.Open(hidden_).taken);
  EXPECT_THAT(log_, ElementsAre("Belk QueryUnload", "Belk Deactivate", "frmHidden Activate"));
}

TEST_F(HiddenPages, FollowEachOther) {
  screen_.Open(hidden_);
  log_.clear();
  EXPECT_TRUE(screen_.Open(another_).taken);
  EXPECT_EQ(screen_.Page(), &another_);
  EXPECT_THAT(log_,
              ElementsAre("frmHidden QueryUnload", "frmHidden Deactivate", "frmAnother Load", "frmAnother Activate"));
}

TEST_F(HiddenPages, AreNotShownWhenThePageRefusesToBeLeft) {
  page_.mayClose = false;
  const GestureResult result = screen_.Open(hidden_);
  EXPECT_TRUE(result.taken);
  EXPECT_TRUE(result.run->Done());
  EXPECT_EQ(screen_.Page(), &page_);
  EXPECT_THAT(log_, ElementsAre("Belk QueryUnload"));
  EXPECT_FALSE(hidden_.Loaded());
}

TEST_F(HiddenPages, AreShownWhenThePageAgreesAfterItHasAsked) {
  screen_.Open(hidden_);
  hidden_.question = "Sure?";
  const GestureResult result = screen_.Open(another_);
  EXPECT_EQ(FrontText(), "Sure?");
  EXPECT_EQ(screen_.Page(), &hidden_);
  EXPECT_FALSE(result.run->Done());
  EXPECT_EQ(screen_.Answer("Yes").run, result.run);
  scheduler_.RunReady();
  EXPECT_EQ(screen_.Page(), &another_);
  EXPECT_TRUE(result.run->Done());
}

TEST_F(HiddenPages, AreNotShownWhenThePageRefusesAfterItHasAsked) {
  screen_.Open(hidden_);
  hidden_.question = "Sure?";
  screen_.Open(another_);
  screen_.Answer("No");
  scheduler_.RunReady();
  EXPECT_EQ(screen_.Page(), &hidden_);
  EXPECT_FALSE(another_.Loaded());
}

/// What `Open` refuses does nothing else.
class RefusedOpening : public HiddenPages {
 protected:
  void ExpectRefused(Window& page, const std::string& why) {
    Window* const before = screen_.Page();
    log_.clear();
    const GestureResult result = screen_.Open(page);
    scheduler_.RunReady();
    EXPECT_FALSE(result.taken);
    EXPECT_EQ(result.refusal, why);
    EXPECT_EQ(result.run, nullptr);
    EXPECT_EQ(screen_.Page(), before);
    EXPECT_THAT(log_, IsEmpty());
  }
};

TEST_F(RefusedOpening, OfAPageThatNavigationLeadsTo) {
  ExpectRefused(other_, "Cobin is no hidden page");
}

TEST_F(RefusedOpening, OfTheMainWindowAndOfADialog) {
  ExpectRefused(main_, "MDIForm1 is no hidden page");
  ExpectRefused(dialog_, "ChangeValue is no hidden page");
}

TEST_F(RefusedOpening, OfThePageThatIsShown) {
  screen_.Open(hidden_);
  ExpectRefused(hidden_, "frmHidden is on the screen");
}

TEST_F(RefusedOpening, BehindAModalWindow) {
  page_.StartBelk.OnClick = Opening(page_, dialog_);
  screen_.Click(page_.StartBelk);
  ExpectRefused(hidden_, "frmHidden would be behind what is in front");
}

TEST_F(RefusedOpening, BehindAMessageBox) {
  page_.StartBelk.OnClick = Asking("Sure?", {"Yes", "No"});
  screen_.Click(page_.StartBelk);
  ExpectRefused(hidden_, "frmHidden would be behind what is in front");
  EXPECT_EQ(FrontText(), "Sure?");
}

}  // namespace
}  // namespace tarvo::view
