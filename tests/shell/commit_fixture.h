#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "support/belk_fixture.h"

namespace tarvo::test {

inline constexpr char kCommitted[] = "EEProm updated! Please reset module to apply changes.";
inline constexpr char kResetInSession[] = "Module is Resetted! Comunication Stopped";
inline constexpr char kReset[] = "Module is Resetted!";

/// The Belk page on the screen, and what its two buttons leave behind.
class CommitFixture : public BelkFixture {
 protected:
  CommitFixture() {
    const view::Window* page = program.GetScreen().Page();
    if (page == nullptr || page->Name() != "Belk") Click("MDIForm1.labBelk");
    module.ForgetLog();
  }

  /// Edits a value of the page by its dialog.
  void Edit(std::string_view control, std::string_view text) {
    Click(control);
    AnswerChangeValue(text);
    ASSERT_TRUE(NothingInFront());
  }

  void ExpectButtonsEnabled() const {
    EXPECT_TRUE(Enabled("WEEPBelk"));
    EXPECT_TRUE(Enabled("ResetBelk"));
    EXPECT_FALSE(Hourglass());
  }
  void ExpectSessionGoesOn() {
    EXPECT_TRUE(InSession());
    EXPECT_TRUE(TimersRun());
    EXPECT_TRUE(PortOpen());
    ExpectButtonsEnabled();
    module.ForgetLog();
    Run(core::milliseconds(500));
    EXPECT_THAT(module.TakeLog(), testing::AllOf(testing::SizeIs(10), testing::Each(std::string(kBelkPoll))));
    EXPECT_EQ(Text("MessageBelk"), "OK");
  }
  /// The page without a session, and quiet.
  void ExpectOffline() {
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(Enabled("TimerIngranaggi"));
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(line.IsOpen());
    EXPECT_TRUE(Enabled("StartBelk"));
    EXPECT_TRUE(Enabled("MDIForm1.labBelk"));
    EXPECT_TRUE(Enabled("MDIForm1.MenuBelk"));
    EXPECT_TRUE(Enabled("MDIForm1.buttCheckDevice"));
    EXPECT_TRUE(NothingInFront());
    ExpectButtonsEnabled();
    module.ForgetLog();
    Run(std::chrono::seconds(1));
    EXPECT_THAT(module.TakeLog(), testing::IsEmpty());
  }
  void ExpectStartWorks() {
    Click("StartBelk");
    EXPECT_TRUE(InSession());
    EXPECT_EQ(Text("MessageBelk"), "OK");
  }
  /// A box that tells a wrong module, and what it leaves.
  void ExpectRefused() {
    EXPECT_THAT(BoxInFront(), IsBox(kNotABelk, view::Icon::kCritical));
    AnswerOk();
    ExpectOffline();
  }
};

}  // namespace tarvo::test
