#include "view/view_bench.h"

namespace tarvo::view {
namespace {

class Pages : public ViewBench {};

TEST_F(Pages, LoadRunsWhenAPageIsFirstShownAndNotAgain) {
  ShowPage(&other_);
  EXPECT_THAT(log_, ElementsAre("Belk Deactivate", "Cobin Load", "Cobin Activate", "Cobin is shown"));
  log_.clear();
  ShowPage(&page_);
  EXPECT_THAT(log_, ElementsAre("Cobin Deactivate", "Belk Activate", "Belk is shown"));
}

TEST_F(Pages, APageThatWasTouchedBeforeIsLoadedAlready) {
  EXPECT_FALSE(other_.Loaded());
  other_.EnsureLoaded();
  other_.EnsureLoaded();
  EXPECT_TRUE(other_.Loaded());
  EXPECT_THAT(log_, ElementsAre("Cobin Load"));
  ShowPage(&other_);
  EXPECT_THAT(log_, ElementsAre("Cobin Load", "Belk Deactivate", "Cobin Activate", "Cobin is shown"));
}

TEST_F(Pages, ThePageThatIsShownIsNotActivatedAgain) {
  ShowPage(&page_);
  EXPECT_THAT(log_, ElementsAre("Belk is shown"));
}

TEST_F(Pages, ShowingEndsWhenActivateHasEnded) {
  other_.activateTime = milliseconds(100);
  ShowPage(&other_);
  EXPECT_EQ(screen_.Page(), &other_);
  EXPECT_EQ(log_.back(), "Cobin Activate");
  scheduler_.Run(milliseconds(100));
  EXPECT_THAT(log_,
              ElementsAre("Belk Deactivate", "Cobin Load", "Cobin Activate", "Cobin Activate ends", "Cobin is shown"));
}

TEST_F(Pages, AShowingIsToldThatAnotherPageHasOvertakenIt) {
  other_.activateTime = milliseconds(100);
  ShowPage(&other_);
  ShowPage(&page_);
  scheduler_.Run(milliseconds(100));
  EXPECT_EQ(screen_.Page(), &page_);
  EXPECT_THAT(log_, ElementsAre("Belk Deactivate", "Cobin Load", "Cobin Activate", "Cobin Deactivate", "Belk Activate",
                                "Belk is shown", "Cobin Activate ends", "Cobin was overtaken"));
}

TEST_F(Pages, AShowingWasOvertakenAlsoWhenItsPageHasComeBack) {
  other_.activateTime = milliseconds(100);
  ShowPage(&other_);
  scheduler_.Run(milliseconds(50));
  ShowPage(&page_);
  ShowPage(&other_);
  log_.clear();
  scheduler_.Run(milliseconds(50));
  EXPECT_THAT(log_, ElementsAre("Cobin Activate ends", "Cobin was overtaken"));
  scheduler_.Run(milliseconds(50));
  EXPECT_EQ(log_.back(), "Cobin is shown");
}

TEST_F(Pages, ThereMayBeNoPage) {
  ShowPage(nullptr);
  EXPECT_EQ(screen_.Page(), nullptr);
  EXPECT_EQ(screen_.FrontWindow(), nullptr);
  EXPECT_THAT(log_, ElementsAre("Belk Deactivate", "nothing is shown"));
}

TEST_F(Pages, AWindowFindsItsControlsByName) {
  EXPECT_EQ(page_.Find("StartBelk"), &page_.StartBelk);
  EXPECT_EQ(page_.Find("startbelk"), nullptr);
}

}  // namespace
}  // namespace tarvo::view
