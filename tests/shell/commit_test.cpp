// Write EEprom of the Belk page, in a session and out of one.

#include "shell/commit_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

// In a session.

class CommitInSession : public CommitFixture {
 protected:
  void ExpectEachSpeedWritten(const std::vector<int>& codes) {
    ASSERT_EQ(ItemData("BaudBelk"), codes);
    for (std::size_t position = 0; position < codes.size(); ++position) {
      Choose("BaudBelk", static_cast<int>(position));
      module.ForgetLog();
      Click("WEEPBelk");
      AnswerOk();
      EXPECT_THAT(Exchanges(), Contains(Writing(40074, codes.at(position) << 8 | 1)));
    }
  }
};

TEST_F(CommitInSession, WritesTheThreeImagesInTheirOrder) {
  module[kFlags] = 0xABC5;
  StartSession();
  Click("WEEPBelk");
  EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40072 = 0x000A", "writes 40073 = 0xABC5", "writes 40074 = 0x0101"));
  ExpectSessionGoesOn();
}

TEST_F(CommitInSession, WritesWhatWasEdited) {
  StartSession();
  Edit("FilterBelk", "200");
  Edit("AddressBelk", "17");
  Choose("BaudBelk", 5);
  module.ForgetLog();
  Click("WEEPBelk");
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40072 = 0x00C8", "writes 40073 = 0x0000", "writes 40074 = 0x0311"));
}

TEST_F(CommitInSession, KeepsAnEditThroughThePollUntilTheCommit) {
  StartSession();
  Edit("FilterBelk", "200");
  Edit("AddressBelk", "17");
  Choose("BaudBelk", 5);
  Run(std::chrono::seconds(2));
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_EQ(Text("FilterBelk"), "200");
  EXPECT_EQ(Text("AddressBelk"), "17");
  EXPECT_EQ(Text("BaudBelk"), "38400");
}

TEST_F(CommitInSession, WritesTheCodeOfEachSpeed) {
  StartSession();
  ExpectEachSpeedWritten({6, 7, 0, 1, 2, 3, 4});
}

TEST_F(CommitInSession, WritesTheCodeOfEachSpeedOfAnOldRelease) {
  SetRelease(2);
  StartSession();
  ExpectEachSpeedWritten({0, 1, 2, 3, 4});
}

TEST_F(CommitInSession, WritesTheBoundsOfTheEdits) {
  StartSession();
  for (const auto& [filter, address, filterWord, addressWord] :
       {std::tuple("1", "1", 1, 0x0101), std::tuple("254", "255", 254, 0x01FF)}) {
    Edit("FilterBelk", filter);
    Edit("AddressBelk", address);
    module.ForgetLog();
    Click("WEEPBelk");
    AnswerOk();
    EXPECT_THAT(Exchanges(),
                ElementsAre(Writing(40072, filterWord), "writes 40073 = 0x0000", Writing(40074, addressWord)));
  }
}

TEST_F(CommitInSession, RoundsATextWithADecimalPart) {
  StartSession();
  Edit("FilterBelk", "12.4");
  Edit("AddressBelk", "16,5");
  module.ForgetLog();
  Click("WEEPBelk");
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40072 = 0x000C", "writes 40073 = 0x0000", "writes 40074 = 0x0110"));
}

TEST_F(CommitInSession, StoresAFlagThatWasClickedRightBefore) {
  StartSession();
  Click("CheckBelk2");
  Click("WEEPBelk");
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009", "writes 40009 = 0x0001", "writes 40072 = 0x000A",
                                       "writes 40073 = 0x0001", "writes 40074 = 0x0101"));
}

TEST_F(CommitInSession, HoldsPollButtonsAndPointerUntilItsBoxIsAnswered) {
  StartSession();
  const auto commit = ClickAndGoOn("WEEPBelk");
  EXPECT_TRUE(Hourglass());
  EXPECT_FALSE(Enabled("WEEPBelk"));
  EXPECT_FALSE(Enabled("ResetBelk"));
  EXPECT_TRUE(TimersRest());
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  EXPECT_FALSE(Enabled("WEEPBelk"));
  EXPECT_FALSE(Enabled("ResetBelk"));
  EXPECT_TRUE(TimersRest());
  module.ForgetLog();
  Run(std::chrono::seconds(2));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_TRUE(InSession());
  AnswerOk();
  ExpectSessionGoesOn();
}

TEST_F(CommitInSession, DoesNotTestItsWrites) {
  StartSession();
  module.Always(ModuleFault::Exception(4));
  Click("WEEPBelk");
  EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
  module.Always(ModuleFault::None());
  AnswerOk();
  ExpectSessionGoesOn();
}

TEST_F(CommitInSession, EndsThoughThePortIsGone) {
  StartSession();
  line.Lose();
  Run(core::milliseconds(100));
  Click("WEEPBelk");
  EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
  AnswerOk();
  ExpectButtonsEnabled();
  Click("StopBelk");
  ExpectOffline();
}

TEST_F(CommitInSession, LeavesTheTimersAtRestWhenTheSessionIsStoppedMeanwhile) {
  StartSession();
  const auto commit = ClickAndGoOn("WEEPBelk");
  ASSERT_TRUE(RunUntil([this] { return module.Requests() > 2; }));
  Click("StopBelk");
  ASSERT_TRUE(RunUntil([&] { return commit->Done() || BoxInFront() != nullptr; }));
  if (BoxInFront() != nullptr) AnswerOk();
  ASSERT_TRUE(RunUntil([&] { return commit->Done(); }));
  ExpectOffline();
}

TEST_F(CommitInSession, CanBeRepeated) {
  StartSession();
  for (int i = 0; i < 3; ++i) {
    Click("WEEPBelk");
    AnswerOk();
    ExpectSessionGoesOn();
  }
}

// Out of a session.

class CommitOffline : public CommitFixture {};

TEST_F(CommitOffline, ChecksTheModelAndWritesTheThreeImages) {
  Click("WEEPBelk");
  EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(),
              ElementsAre("reads 40001", "writes 40072 = 0x0001", "writes 40073 = 0x0000", "writes 40074 = 0x0101"));
  ExpectOffline();
}

TEST_F(CommitOffline, WritesWhatWasEditedOnThePage) {
  Edit("FilterBelk", "50");
  Edit("AddressBelk", "254");
  Choose("BaudBelk", 4);
  Click("CheckBelk1");
  Click("CheckBelk5");
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  Click("WEEPBelk");
  AnswerOk();
  EXPECT_THAT(module.TakeLog(),
              ElementsAre("reads 40001", "writes 40072 = 0x0032", "writes 40073 = 0x0084", "writes 40074 = 0x04FE"));
}

TEST_F(CommitOffline, WritesTheFlagsOfTheLastSession) {
  module[kFlags] = 0xFF45;
  StartSession();
  RunThroughADecode();
  Click("StopBelk");
  Click("CheckBelk2");
  module.ForgetLog();
  Click("WEEPBelk");
  AnswerOk();
  EXPECT_THAT(module.TakeLog(),
              ElementsAre("reads 40001", "writes 40072 = 0x000A", "writes 40073 = 0xFF44", "writes 40074 = 0x0101"));
}

TEST_F(CommitOffline, SetsThePollAsStartDoes) {
  State().PollCount = 1;
  Click("WEEPBelk");
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 9);
  AnswerOk();
}

TEST_F(CommitOffline, BeginsNoSession) {
  const auto commit = ClickAndGoOn("WEEPBelk");
  ASSERT_TRUE(RunUntil([this] { return module.Requests() == 2; }));
  EXPECT_FALSE(InSession());
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(Hourglass());
  EXPECT_FALSE(Enabled("WEEPBelk"));
  EXPECT_FALSE(Enabled("ResetBelk"));
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  AnswerOk();
  ExpectOffline();
  ExpectStartWorks();
}

TEST_F(CommitOffline, IsNotDisturbedByStart) {
  const auto commit = ClickAndGoOn("WEEPBelk");
  ASSERT_TRUE(RunUntil([this] { return module.Requests() == 2; }));
  const view::GestureResult start = program.GetScreen().Click(At("StartBelk"));
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(),
              ElementsAre("reads 40001", "writes 40072 = 0x0001", "writes 40073 = 0x0000", "writes 40074 = 0x0101"));
  ExpectOffline();
}

}  // namespace
}  // namespace tarvo::test
