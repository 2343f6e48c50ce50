// A commit whose values came from a file that holds no numbers.

#include "support/program_fixture.h"

namespace tarvo::test {
namespace {

class CommitOfText : public ProgramFixture, public testing::WithParamInterface<const char*> {
 protected:
  CommitOfText() {
    module[40001] = 0x0702;
    Click("labGaven");
    static_cast<view::Label&>(At("ValueGaven(14)")).Caption = GetParam();
  }
};

TEST_P(CommitOfText, WritesNothingAndClosesThePort) {
  Click("WEEPGaven");
  ASSERT_NE(BoxInFront(), nullptr);
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), testing::ElementsAre("reads 40001"));
  EXPECT_FALSE(line.IsOpen());
  EXPECT_TRUE(Enabled("WEEPGaven"));
}

TEST_P(CommitOfText, LeavesTheSessionRunning) {
  Click("StartGaven");
  ASSERT_EQ(State().StartComm, state::kTrue);
  static_cast<view::Label&>(At("ValueGaven(14)")).Caption = GetParam();
  Click("WEEPGaven");
  AnswerOk();
  for (const std::string& entry : module.TakeLog()) EXPECT_THAT(entry, testing::Not(testing::HasSubstr("writes")));
  EXPECT_TRUE(Enabled("TimerLetturaSeriale"));
}

INSTANTIATE_TEST_SUITE_P(Values, CommitOfText, testing::Values("abc", "70000", "99999999999"));

}  // namespace
}  // namespace tarvo::test
