#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "modcom_bench.h"

namespace tarvo::bus {
namespace {

using core::milliseconds;
using state::Word;
using test::ModuleFault;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = Outcome::Kind;
using namespace state::literals;

class ModComOrder : public testing::Test, protected ModComBench {
 protected:
  void SetUp() override { ASSERT_TRUE(Open()); }

  /// Reads a register, and writes it back changed: nobody may come in between.
  core::Task<> ReadChangeWrite(std::string name, state::Register target) {
    Word data;
    co_await ModCom1.ReadPLC(target, data);
    Notes.push_back(name + " has read");
    co_await ModCom1.WritePLC(target, data.Or(1));
    Notes.push_back(name + " has written");
  }
  /// Waits for a free bus, then reads.
  core::Task<> FreeThenRead(std::string name) {
    co_await ModCom1.Free();
    Notes.push_back(name + " free");
    Word data;
    co_await ModCom1.ReadPLC("40003"_reg, data);
    Notes.push_back(name + " has read");
  }
  core::Task<> NotedPoll(std::string name) {
    const std::span<Word> block(Block);
    const Outcome outcome = co_await ModCom1.ReadPLC("40002"_reg, block, 9);
    Notes.push_back(name + " " + NameOf(outcome.GetKind()));
  }
  void RunAll() {
    Scheduler.Run(std::chrono::seconds(10));
    EXPECT_TRUE(Tasks.Idle());
  }
};

TEST_F(ModComOrder, AFreeBusIsWaitedForByNobody) {
  Tasks.Start(NotedFree("waiter"));
  EXPECT_THAT(Notes, ElementsAre("waiter free"));
}

TEST_F(ModComOrder, TheIssuerGoesOnBeforeThoseWhoWait) {
  Tasks.Start(NotedRead("issuer"));
  Tasks.Start(NotedFree("waiter"));
  EXPECT_THAT(Notes, IsEmpty());
  RunAll();
  EXPECT_THAT(Notes, ElementsAre("issuer good", "waiter free"));
}

TEST_F(ModComOrder, AReadChangeWriteIsNeverTornApart) {
  Tasks.Start(ReadChangeWrite("first", "40009"_reg));
  Tasks.Start(FreeThenRead("waiter"));
  Tasks.Start(ReadChangeWrite("second", "40010"_reg));
  RunAll();
  EXPECT_THAT(Notes, ElementsAre("first has read", "first has written", "waiter free", "waiter has read",
                                 "second has read", "second has written"));
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40009", "writes 40009 = 0x006D", "reads 40003", "reads 40010",
                                            "writes 40010 = 0x006D"));
}

TEST_F(ModComOrder, RequestsAndWaitersAreOneLine) {
  Tasks.Start(NotedRead("a"));
  Tasks.Start(NotedRead("b"));
  Tasks.Start(NotedFree("c"));
  Tasks.Start(FreeThenRead("d"));
  Tasks.Start(NotedRead("e"));
  Tasks.Start(NotedFree("f"));
  RunAll();
  EXPECT_THAT(Notes, ElementsAre("a good", "b good", "c free", "d free", "d has read", "e good", "f free"));
}

TEST_F(ModComOrder, AWaiterIsNotWokenToABusThatIsTakenAgain) {
  Tasks.Start(NotedRead("issuer"));
  Tasks.Start(FreeThenRead("first"));
  Tasks.Start(FreeThenRead("second"));
  Scheduler.RunUntil([this] { return Notes.size() == 2; }, std::chrono::seconds(1));
  EXPECT_THAT(Notes, ElementsAre("issuer good", "first free"));
  EXPECT_TRUE(ModCom1.CommBusy());
  RunAll();
  EXPECT_THAT(Notes, ElementsAre("issuer good", "first free", "first has read", "second free", "second has read"));
}

TEST_F(ModComOrder, APollThatMeetsAnotherRequestFailsAtOnce) {
  Block.fill(Word(7));
  Tasks.Start(NotedRead("request"));
  Tasks.Start(NotedPoll("poll"));
  EXPECT_THAT(Notes, ElementsAre("poll busy"));
  EXPECT_THAT(Block, testing::Each(Word(7)));
  RunAll();
  EXPECT_THAT(Notes, ElementsAre("poll busy", "request good"));
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40002"));
}

TEST_F(ModComOrder, ARequestThatMeetsAPollWaitsItsTurn) {
  Tasks.Start(NotedPoll("poll"));
  Tasks.Start(NotedRead("request"));
  RunAll();
  EXPECT_THAT(Notes, ElementsAre("poll good", "request good"));
}

TEST_F(ModComOrder, AWaitForTheBusEndsWhenTheModuleIsSilent) {
  Module.Always(ModuleFault::Unheard());
  Tasks.Start(NotedRead("issuer"));
  Tasks.Start(NotedFree("waiter"));
  bool alive = false;
  core::Call other(Scheduler, [&alive] { alive = true; });
  other.After(milliseconds(100));
  Scheduler.Run(milliseconds(200));
  EXPECT_TRUE(alive) << "the wait lets other things run";
  EXPECT_THAT(Notes, IsEmpty());
  RunAll();
  EXPECT_THAT(Notes, ElementsAre("issuer silence", "waiter free"));
}

TEST_F(ModComOrder, ALongLineOfRequestsKeepsItsOrder) {
  std::vector<std::string> expected;
  for (int i = 0; i < 500; ++i) {
    Tasks.Start(NotedRead(std::to_string(i)));
    expected.push_back(std::to_string(i) + " good");
  }
  Scheduler.Run(std::chrono::minutes(1));
  EXPECT_EQ(Notes, expected);
}

// Frames that end early.

TEST_F(ModComOrder, AFrameThatEndsFreesTheBus) {
  {
    test::TaskRunner page;
    page.Start(NotedRead("gone"));
    EXPECT_TRUE(ModCom1.CommBusy());
  }
  EXPECT_FALSE(ModCom1.CommBusy());
  Tasks.Start(NotedRead("next"));
  RunAll();
  EXPECT_THAT(Notes, ElementsAre("next good"));
}

TEST_F(ModComOrder, AFrameThatEndsLetsThoseGoOnWhoWaitForIt) {
  test::TaskRunner page;
  page.Start(NotedRead("gone"));
  Tasks.Start(NotedFree("waiter"));
  Tasks.Start(NotedRead("request"));
  page.Cancel();
  EXPECT_THAT(Notes, IsEmpty()) << "not from within the frame's end";
  RunAll();
  EXPECT_THAT(Notes, ElementsAre("waiter free", "request good"));
}

TEST_F(ModComOrder, AFrameThatEndsLeavesTheLine) {
  Tasks.Start(NotedRead("issuer"));
  test::TaskRunner page;
  page.Start(NotedRead("gone"));
  page.Start(NotedFree("gone too"));
  Tasks.Start(NotedRead("last"));
  page.Cancel();
  RunAll();
  EXPECT_THAT(Notes, ElementsAre("issuer good", "last good"));
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40002", "reads 40002"));
}

TEST_F(ModComOrder, AFrameThatEndsBetweenTheReplyAndItsTurnLeavesTheBusFree) {
  test::TaskRunner page;
  core::Call end(Scheduler, [&page] { page.Cancel(); });
  Module.BeforeRead = [&](int /*first*/, int /*count*/) {
    // At the very time at which the reply arrives: 8 and 7 characters and the turn-round time on.
    end.After(Module.Line.TimeOf(8) + Module.TurnRound + Module.Line.TimeOf(7));
  };
  page.Start(NotedRead("gone"));
  Tasks.Start(NotedFree("waiter"));
  Scheduler.Run(milliseconds(200));
  EXPECT_THAT(Notes, ElementsAre("waiter free"));
  EXPECT_FALSE(ModCom1.CommBusy());
}

TEST_F(ModComOrder, TheReplyToAFrameThatEndedIsNobodysAnswer) {
  {
    test::TaskRunner page;
    page.Start(NotedRead("gone"));
  }
  Word data;
  EXPECT_TRUE(ResultOf(ReadOne("40005"_reg, &data)).Good());
  EXPECT_EQ(data, Word(104));
}

}  // namespace
}  // namespace tarvo::bus
