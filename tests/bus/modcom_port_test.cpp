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

class ModComPort : public testing::Test, protected ModComBench {
 protected:
  core::Task<> NotedPoll(std::string name) {
    const std::span<Word> block(Block);
    const Outcome outcome = co_await ModCom1.ReadPLC("40002"_reg, block, 9);
    Notes.push_back(name + " " + NameOf(outcome.GetKind()));
  }
  core::Task<> NotedWrite(std::string name) {
    const Outcome outcome = co_await ModCom1.WritePLC("40009"_reg, Word(1));
    Notes.push_back(name + " " + NameOf(outcome.GetKind()));
  }
};

TEST_F(ModComPort, IsClosedAtFirst) {
  EXPECT_FALSE(ModCom1.PortOpen());
  EXPECT_EQ(Ports.Attempts(), 0);
}

TEST_F(ModComPort, FailsEachRequestAtOnceWhileItIsClosed) {
  Tasks.Start(NotedRead("read"));
  Tasks.Start(NotedPoll("poll"));
  Tasks.Start(NotedWrite("write"));
  Tasks.Start(NotedFree("waiter"));
  EXPECT_THAT(Notes, ElementsAre("read closed", "poll closed", "write closed", "waiter free"));
  EXPECT_FALSE(ModCom1.CommBusy());
}

TEST_F(ModComPort, OpensWithThePresentPortAndSettings) {
  test::MemoryLine other(Scheduler);
  Ports.Connect(3, other);
  ModCom1.CommPort = 3;
  ModCom1.Settings = "57600,e,8,1";
  EXPECT_TRUE(ModCom1.SetPortOpen(true).Ok());
  EXPECT_TRUE(ModCom1.PortOpen());
  EXPECT_TRUE(other.IsOpen());
  EXPECT_FALSE(Line.IsOpen());
  EXPECT_EQ(other.Line(), (LineSettings{57600, Parity::kEven}));
  (void)ModCom1.SetPortOpen(false);
}

TEST_F(ModComPort, OpensOnceAndClosesOnce) {
  EXPECT_TRUE(ModCom1.SetPortOpen(true).Ok());
  EXPECT_TRUE(ModCom1.SetPortOpen(true).Ok());
  EXPECT_EQ(Line.Opens(), 1);
  EXPECT_TRUE(ModCom1.SetPortOpen(false).Ok());
  EXPECT_TRUE(ModCom1.SetPortOpen(false).Ok());
  EXPECT_EQ(Line.Closes(), 1);
  EXPECT_FALSE(ModCom1.PortOpen());
}

TEST_F(ModComPort, ClosesWithItsEnd) {
  {
    ModCom second(Window, "ModCom2", Ports);
    ASSERT_TRUE(second.SetPortOpen(true).Ok());
  }
  EXPECT_FALSE(Line.IsOpen());
}

TEST_F(ModComPort, TellsWhyAPortDoesNotOpen) {
  ModCom1.CommPort = 4;
  EXPECT_EQ(ModCom1.SetPortOpen(true).Description(), "Device not found");
  ModCom1.CommPort = 1;
  for (const char* fault : {"Permission denied", "Port already open", "Device unavailable", "Device not found"}) {
    Ports.SetFault(1, fault);
    EXPECT_EQ(ModCom1.SetPortOpen(true).Description(), fault);
    EXPECT_FALSE(ModCom1.PortOpen());
    Tasks.Start(NotedRead(fault));
    EXPECT_EQ(Notes.back(), std::string(fault) + " closed");
  }
  Ports.SetFault(1, "");
  EXPECT_TRUE(ModCom1.SetPortOpen(true).Ok());
}

TEST_F(ModComPort, IsAFaultWhenAnotherInstanceHoldsIt) {
  ModCom second(Window, "ModCom2", Ports);
  ASSERT_TRUE(second.SetPortOpen(true).Ok());
  EXPECT_EQ(ModCom1.SetPortOpen(true).Description(), "Port already open");
  EXPECT_FALSE(ModCom1.PortOpen());
  EXPECT_TRUE(second.PortOpen());
}

TEST_F(ModComPort, IsUnavailableWithSettingsThatNobodyUnderstands) {
  for (const char* settings : {"", "9600", "9600,n,8,2", "115200,n,8,1", "garbage"}) {
    ModCom1.Settings = settings;
    EXPECT_EQ(ModCom1.SetPortOpen(true).Description(), "Device unavailable") << settings;
    EXPECT_FALSE(ModCom1.PortOpen());
  }
  EXPECT_EQ(Ports.Attempts(), 0);
}

// Settings that change while the port is open.

TEST_F(ModComPort, TakesNewSettingsOnlyWithResetLink) {
  ASSERT_TRUE(Open());
  Module.Line = {38400, Parity::kEven};
  ModCom1.Settings = "38400,e,8,1";
  ModCom1.LinkParamB = 1;
  EXPECT_EQ(Line.Line(), LineSettings());
  Word data;
  EXPECT_EQ(ResultOf(ReadOne("40002"_reg, &data)).GetKind(), Kind::kSilence);
  EXPECT_TRUE(ModCom1.ResetLink().Ok());
  EXPECT_EQ(Line.Line(), Module.Line);
  EXPECT_TRUE(ResultOf(ReadOne("40002"_reg, &data)).Good());
}

TEST_F(ModComPort, ResetLinkOnAClosedPortDoesNothing) {
  ModCom1.Settings = "38400,e,8,1";
  EXPECT_TRUE(ModCom1.ResetLink().Ok());
  EXPECT_FALSE(ModCom1.PortOpen());
  EXPECT_EQ(Ports.Attempts(), 0);
}

TEST_F(ModComPort, ResetLinkThatFailsLeavesTheLine) {
  ASSERT_TRUE(Open());
  ModCom1.Settings = "nonsense";
  EXPECT_EQ(ModCom1.ResetLink().Description(), "Device unavailable");
  ModCom1.Settings = "1200,e,8,1";
  Line.RefuseSetLine(true);
  EXPECT_EQ(ModCom1.ResetLink().Description(), "Device unavailable");
  EXPECT_EQ(Line.Line(), LineSettings());
  Word data;
  EXPECT_TRUE(ResultOf(ReadOne("40002"_reg, &data)).Good());

  ModCom1.LinkParamB = 1;
  Module.Next(ModuleFault::Unheard());
  const core::TimePoint start = Scheduler.Now();
  EXPECT_FALSE(ResultOf(ReadOne("40002"_reg, &data)).Good());
  EXPECT_LE(Scheduler.Now() - start, milliseconds(500) + LineSettings().TimeOf(8 + 7 + 4))
      << "times are those of the line";
}

// A device that vanishes.

TEST_F(ModComPort, FailsTheRequestUnderWayAtOnceWhenTheDeviceVanishes) {
  ASSERT_TRUE(Open());
  Module.Always(ModuleFault::Unheard());
  Tasks.Start(NotedRead("under way"));
  Tasks.Start(NotedRead("next"));
  Tasks.Start(NotedFree("waiter"));
  Line.Lose(milliseconds(20));
  Scheduler.Run(milliseconds(20));
  EXPECT_THAT(Notes, ElementsAre("under way port gone", "next port gone", "waiter free"));
  EXPECT_FALSE(ModCom1.CommBusy());
}

TEST_F(ModComPort, FailsEachLaterRequestAtOnceAndStaysOpenUntilItIsClosed) {
  ASSERT_TRUE(Open());
  Line.Lose();
  Scheduler.RunReady();
  Tasks.Start(NotedRead("read"));
  Tasks.Start(NotedPoll("poll"));
  Tasks.Start(NotedWrite("write"));
  EXPECT_THAT(Notes, ElementsAre("read port gone", "poll port gone", "write port gone"));
  EXPECT_TRUE(ModCom1.PortOpen());
  EXPECT_TRUE(ModCom1.SetPortOpen(true).Ok());
  EXPECT_TRUE(ModCom1.SetPortOpen(false).Ok());
  EXPECT_FALSE(ModCom1.PortOpen());
  EXPECT_EQ(ModCom1.SetPortOpen(true).Description(), "Device not found");

  Line.PlugIn();
  Word data;
  EXPECT_TRUE(Open());
  EXPECT_TRUE(ResultOf(ReadOne("40002"_reg, &data)).Good());
}

TEST_F(ModComPort, CanBeClosedByTheIssuerOfTheRequestThatLostIt) {
  ASSERT_TRUE(Open());
  const auto stop = [](ModComBench& bench) -> core::Task<> {
    Word data;
    co_await bench.ModCom1.ReadPLC("40002"_reg, data);
    (void)bench.ModCom1.SetPortOpen(false);
  };
  Tasks.Start(stop(*this));
  Line.Lose(milliseconds(1));
  Scheduler.Run(milliseconds(10));
  EXPECT_TRUE(Tasks.Idle());
  EXPECT_FALSE(Line.IsOpen());
}

// Closed with requests under way.

TEST_F(ModComPort, FailsWhatIsUnderWayWhenItIsClosed) {
  ASSERT_TRUE(Open());
  Tasks.Start(NotedRead("under way"));
  Tasks.Start(NotedRead("next"));
  Tasks.Start(NotedFree("waiter"));
  Scheduler.Run(milliseconds(5));
  (void)ModCom1.SetPortOpen(false);
  EXPECT_FALSE(Line.IsOpen()) << "closed at once";
  EXPECT_THAT(Notes, IsEmpty()) << "nobody goes on from within the setter";
  Scheduler.RunReady();
  EXPECT_THAT(Notes, ElementsAre("under way closed", "next closed", "waiter free"));
  EXPECT_FALSE(ModCom1.CommBusy());
  EXPECT_TRUE(Tasks.Idle());
}

TEST_F(ModComPort, FailsWhatWasUnderWayThoughItIsOpenedAgainAtOnce) {
  ASSERT_TRUE(Open());
  Tasks.Start(NotedRead("under way"));
  Tasks.Start(NotedRead("next"));
  (void)ModCom1.SetPortOpen(false);
  ASSERT_TRUE(ModCom1.SetPortOpen(true).Ok());
  Tasks.Start(NotedRead("new"));
  Scheduler.Run(std::chrono::seconds(5));
  EXPECT_THAT(Notes, ElementsAre("under way closed", "next closed", "new good"));
}

TEST_F(ModComPort, CanBeClosedByTheOneWhoWaitedForAFreeBus) {
  ASSERT_TRUE(Open());
  const auto stop = [](ModComBench& bench) -> core::Task<> {
    co_await bench.ModCom1.Free();
    (void)bench.ModCom1.SetPortOpen(false);
    bench.Notes.emplace_back("stopped");
  };
  Tasks.Start(NotedRead("under way"));
  Tasks.Start(stop(*this));
  Tasks.Start(NotedRead("next"));
  Scheduler.Run(milliseconds(100));
  EXPECT_THAT(Notes, ElementsAre("under way good", "stopped", "next closed"));
  EXPECT_FALSE(Line.IsOpen());
}

TEST_F(ModComPort, KeepsAReplyThatCameBeforeItWasClosed) {
  ASSERT_TRUE(Open());
  core::Call close(Scheduler, [this] { (void)ModCom1.SetPortOpen(false); });
  Module.BeforeRead = [&](int /*first*/, int /*count*/) {
    close.After(Module.Line.TimeOf(8) + Module.TurnRound + Module.Line.TimeOf(7));
  };
  Tasks.Start(NotedRead("read"));
  Scheduler.Run(milliseconds(100));
  EXPECT_THAT(Notes, ElementsAre("read good"));
  EXPECT_FALSE(ModCom1.PortOpen());
}

TEST_F(ModComPort, AReplyThatComesAfterItWasOpenedAgainIsNobodysAnswer) {
  ASSERT_TRUE(Open());
  Module.Next(ModuleFault::Late(milliseconds(80)));
  Tasks.Start(NotedRead("stopped"));
  Scheduler.Run(milliseconds(5));
  (void)ModCom1.SetPortOpen(false);
  ASSERT_TRUE(ModCom1.SetPortOpen(true).Ok());
  Word data;
  EXPECT_TRUE(ResultOf(ReadOne("40005"_reg, &data)).Good());
  EXPECT_EQ(data, Word(104));
  EXPECT_THAT(Notes, ElementsAre("stopped closed"));
}

}  // namespace
}  // namespace tarvo::bus
