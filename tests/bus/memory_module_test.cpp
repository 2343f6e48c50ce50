#include "support/memory_module.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "core/wait_list.h"
#include "master_bench.h"
#include "support/run_task.h"

namespace tarvo::bus {
namespace {

using test::ModuleFault;
using testing::ElementsAre;
using testing::IsEmpty;

/// A module, and the program's end of its line taken by hand.
class MemoryModule : public testing::Test {
 protected:
  MemoryModule() {
    Module[40001] = 0x0103;
    Module[40002] = 0x8081;
  }

  Frame Ask(const Frame& request) {
    Port->Write(WithCrc(request));
    Scheduler.Run(std::chrono::seconds(2));
    Frame reply(256);
    reply.resize(Port->Take(reply));
    return reply;
  }

  core::VirtualScheduler Scheduler;
  test::MemoryLine Line{Scheduler};
  test::MemoryModule Module{Scheduler, Line};
  std::unique_ptr<BytePort> Port = Line.Open({});
};

TEST_F(MemoryModule, AnswersReadsAndWrites) {
  EXPECT_EQ(Ask({1, 3, 0, 0, 0, 2}), ReadReply({0x0103, 0x8081}));
  EXPECT_EQ(Ask({1, 6, 0, 8, 0, 0x81}), WithCrc({1, 6, 0, 8, 0, 0x81}));
  EXPECT_EQ(Ask({1, 16, 0, 9, 0, 2, 4, 0, 1, 0, 2}), WithCrc({1, 16, 0, 9, 0, 2}));
  EXPECT_EQ(Module[40009], 0x81);
  EXPECT_EQ(Module[40010], 1);
  EXPECT_EQ(Module[40011], 2);
  EXPECT_THAT(Module.TakeLog(),
              ElementsAre("reads 40001 x2", "writes 40009 = 0x0081", "writes 40010 x2 = 0x0001 0x0002"));
  EXPECT_THAT(Module.Log(), IsEmpty());
}

TEST_F(MemoryModule, RefusesWhatItDoesNotHave) {
  Module.SetLast(40010);
  EXPECT_EQ(Ask({1, 4, 0, 0, 0, 1}), WithCrc({1, 0x84, 1}));
  EXPECT_EQ(Ask({1, 3, 0, 9, 0, 2}), WithCrc({1, 0x83, 2}));
  EXPECT_EQ(Ask({1, 6, 0, 10, 0, 2}), WithCrc({1, 0x86, 2}));
  EXPECT_EQ(Ask({1, 3, 0, 0, 0, 0}), WithCrc({1, 0x83, 3}));
}

TEST_F(MemoryModule, HearsOnlyItsOwnAddressAndLineSetting) {
  EXPECT_THAT(Ask({2, 3, 0, 0, 0, 1}), IsEmpty());
  Module.Line.baud = 19200;
  EXPECT_THAT(Ask({1, 3, 0, 0, 0, 1}), IsEmpty());
  EXPECT_THAT(Module.Log(), IsEmpty());
}

TEST_F(MemoryModule, TakesTheTimeOfItsTurnRoundAndTheLine) {
  Port->Write(WithCrc({1, 3, 0, 0, 0, 1}));
  const core::Duration time = Module.Line.TimeOf(8) + Module.TurnRound + Module.Line.TimeOf(7);
  Frame reply(256);
  Scheduler.Run(time - core::microseconds(1));
  EXPECT_EQ(Port->Take(reply), 0U);
  Scheduler.Run(core::microseconds(1));
  EXPECT_EQ(Port->Take(reply), 7U);
}

TEST_F(MemoryModule, ItsReplyIsThereAfterAHardWaitBeforeATurnTellsIt) {
  Port->Write(WithCrc({1, 3, 0, 0, 0, 1}));
  Frame reply(256);
  Scheduler.Block(Module.Line.TimeOf(8) + Module.TurnRound + Module.Line.TimeOf(7) - core::microseconds(1));
  EXPECT_EQ(Port->Take(reply), 0U);
  Scheduler.Block(core::microseconds(1));
  EXPECT_EQ(Port->Take(reply), 7U);
}

TEST_F(MemoryModule, AHardWaitLetsArriveWhatIsDueInItAndLeavesTheRestForLater) {
  const Frame bytes{1, 2, 3, 4, 5};
  Line.DeliverOneByOne(bytes, core::milliseconds(10), core::milliseconds(10));
  Scheduler.Block(core::milliseconds(35));
  Frame taken(256);
  ASSERT_EQ(Port->Take(taken), 3U);
  EXPECT_EQ(Frame(taken.begin(), taken.begin() + 3), (Frame{1, 2, 3}));
  Scheduler.Run(core::milliseconds(5));
  EXPECT_EQ(Port->Take(taken), 1U);
  Scheduler.Run(core::milliseconds(10));
  EXPECT_EQ(Port->Take(taken), 1U);
  EXPECT_EQ(taken[0], 5);
}

TEST_F(MemoryModule, WhatCameInAHardWaitIsThrownAwayWithTheInput) {
  Line.Deliver({1, 2, 3}, core::milliseconds(10));
  Scheduler.Block(core::milliseconds(10));
  Port->DiscardInput();
  Scheduler.Run(core::milliseconds(100));
  Frame taken(256);
  EXPECT_EQ(Port->Take(taken), 0U);
}

TEST_F(MemoryModule, TakesFaultsToOrder) {
  const Frame read{1, 3, 0, 0, 0, 1};
  const Frame good = ReadReply({0x0103});
  Module.Next(ModuleFault::Silent());
  Module.Next(ModuleFault::WrongCrc());
  Module.Next(ModuleFault::Torn(3));
  Module.Next(ModuleFault::Foreign(9));
  Module.Next(ModuleFault::Exception(4));
  Module.Next(ModuleFault::Noise({0xAA}));
  Module.Next(ModuleFault::Late(core::milliseconds(300)));
  EXPECT_THAT(Ask(read), IsEmpty());
  Frame damaged = good;
  damaged.back() ^= 1;
  EXPECT_EQ(Ask(read), damaged);
  EXPECT_EQ(Ask(read), (Frame{1, 3, 2}));
  EXPECT_EQ(Ask(read), ReadReply({0x0103}, 9));
  EXPECT_EQ(Ask(read), WithCrc({1, 0x83, 4}));
  EXPECT_EQ(Ask(read), Frame{0xAA} + good);
  EXPECT_EQ(Ask(read), good);
  EXPECT_EQ(Ask(read), good);
  EXPECT_THAT(Module.TakeLog(),
              ElementsAre("reads 40001: silent", "reads 40001: wrong CRC", "reads 40001: torn", "reads 40001: foreign",
                          "reads 40001: exception 4", "reads 40001: noise", "reads 40001: late 300 ms", "reads 40001"));
}

TEST_F(MemoryModule, DoesAWriteThatItAnswersBadlyButNotOneThatItDoesNotHear) {
  Module.Next(ModuleFault::Silent());
  Ask({1, 6, 0, 8, 0, 1});
  EXPECT_EQ(Module[40009], 1);
  Module.Next(ModuleFault::Unheard());
  Ask({1, 6, 0, 8, 0, 2});
  EXPECT_EQ(Module[40009], 1);
  Module.Next(ModuleFault::Exception(4));
  Ask({1, 6, 0, 8, 0, 3});
  EXPECT_EQ(Module[40009], 1);
}

TEST_F(MemoryModule, LetsATestLiveWithItsRegisters) {
  std::vector<int> written;
  Module.BeforeRead = [this](int first, int /*count*/) { ++Module[first]; };
  Module.AfterWrite = [&written](int number, std::uint16_t value) { written = {number, value}; };
  EXPECT_EQ(Ask({1, 3, 0, 0, 0, 1}), ReadReply({0x0104}));
  EXPECT_EQ(Ask({1, 3, 0, 0, 0, 1}), ReadReply({0x0105}));
  Ask({1, 6, 0, 8, 0, 5});
  EXPECT_THAT(written, ElementsAre(40009, 5));
}

TEST(RunTask, FailsAtOnceWhereATaskHangs) {
  core::VirtualScheduler scheduler;
  core::WaitList never;
  const auto hangs = [](core::WaitList* list) -> core::Task<> { co_await list->Wait(); };
  EXPECT_THROW(test::RunTask(scheduler, hangs(&never)), std::runtime_error);
  EXPECT_TRUE(never.Empty()) << "its frame is gone";
}

TEST(RunTask, FailsWhereATaskTakesLongerThanItsLimit) {
  core::VirtualScheduler scheduler;
  const auto sleeps = [](core::Scheduler* clock) -> core::Task<int> {
    co_await clock->Sleep(std::chrono::seconds(2));
    co_return 7;
  };
  EXPECT_THROW(test::RunTask(scheduler, sleeps(&scheduler), std::chrono::seconds(1)), std::runtime_error);
  EXPECT_EQ(test::RunTask(scheduler, sleeps(&scheduler), std::chrono::seconds(3)), 7);
}

}  // namespace
}  // namespace tarvo::bus
