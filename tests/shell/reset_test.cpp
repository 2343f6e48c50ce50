// Module Reset of the Belk page, in a session and out of one.

#include "shell/commit_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ResetInSession : public CommitFixture {};

TEST_F(ResetInSession, WritesOneToTheResetRegisterAndEndsTheSession) {
  StartSession();
  Click("ResetBelk");
  EXPECT_THAT(BoxInFront(), IsBox(kResetInSession, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40011 = 0x0001"));
  ExpectOffline();
  ExpectStartWorks();
}

TEST_F(ResetInSession, HasEndedTheSessionBeforeItsBox) {
  StartSession();
  Click("ResetBelk");
  ASSERT_NE(BoxInFront(), nullptr);
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(Enabled("TimerIngranaggi"));
  EXPECT_TRUE(Enabled("StartBelk"));
  EXPECT_TRUE(Enabled("MDIForm1.labBelk"));
  EXPECT_TRUE(Enabled("MDIForm1.buttCheckDevice"));
  EXPECT_FALSE(Enabled("WEEPBelk"));
  EXPECT_FALSE(Enabled("ResetBelk"));
  module.ForgetLog();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  AnswerOk();
  ExpectOffline();
}

TEST_F(ResetInSession, ClearsStartCommBeforeItWritesWithThePortStillOpen) {
  StartSession();
  bool written = false;
  module.AfterWrite = [&](int number, std::uint16_t value) {
    written = number == 40011 && value == 1;
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(PortOpen());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(Enabled("WEEPBelk"));
    EXPECT_FALSE(Enabled("ResetBelk"));
    EXPECT_FALSE(Enabled("StartBelk"));
  };
  Click("ResetBelk");
  EXPECT_TRUE(written);
  module.AfterWrite = nullptr;
  AnswerOk();
}

TEST_F(ResetInSession, EndsTheSessionThoughTheModuleDoesNotAnswer) {
  StartSession();
  module.Always(ModuleFault::Silent());
  Click("ResetBelk");
  EXPECT_THAT(BoxInFront(), IsBox(kResetInSession, view::Icon::kInformation));
  AnswerOk();
  module.Always(ModuleFault::None());
  ExpectOffline();
}

TEST_F(ResetInSession, EndsTheSessionThoughThePortIsGone) {
  StartSession();
  line.Lose();
  Run(core::milliseconds(100));
  Click("ResetBelk");
  EXPECT_THAT(BoxInFront(), IsBox(kResetInSession, view::Icon::kInformation));
  AnswerOk();
  ExpectOffline();
}

TEST_F(ResetInSession, ShowsTheSameFamilyAgain) {
  StartSession();
  Click("ResetBelk");
  AnswerOk();
  EXPECT_EQ(State().FamilyShown, state::kTrue);
  EXPECT_TRUE(Visible("MDIForm1.labBelk"));
}

// Out of a session.

class ResetOffline : public CommitFixture {};

TEST_F(ResetOffline, ChecksTheModelAndWritesOneToTheResetRegister) {
  Click("ResetBelk");
  EXPECT_THAT(BoxInFront(), IsBox(kReset, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "writes 40011 = 0x0001"));
  ExpectOffline();
  ExpectStartWorks();
}

TEST_F(ResetOffline, TellsItsEndThoughTheWriteIsNotAnswered) {
  // A module that restarts at once says nothing any more.
  module.AfterWrite = [this](int /*number*/, std::uint16_t /*value*/) { module.Always(ModuleFault::Unheard()); };
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Silent());
  Click("ResetBelk");
  EXPECT_THAT(BoxInFront(), IsBox(kReset, view::Icon::kInformation));
  AnswerOk();
  module.AfterWrite = nullptr;
  module.Always(ModuleFault::None());
  ExpectOffline();
}

}  // namespace
}  // namespace tarvo::test
