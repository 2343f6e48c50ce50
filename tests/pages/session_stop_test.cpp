#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class SessionStop : public BelkFixture {};

TEST_F(SessionStop, DoesNothingWithoutASession) {
  Click("StopBelk");
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_TRUE(Enabled("StartBelk"));
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_TRUE(NothingInFront());
}

TEST_F(SessionStop, TakesDownAllThatStartHasSetUp) {
  StartSession();
  Click("StopBelk");
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(Enabled("TimerIngranaggi"));
  EXPECT_FALSE(PortOpen());
  EXPECT_EQ(line.Closes(), 1);
  EXPECT_TRUE(Enabled("StartBelk"));
  EXPECT_TRUE(Enabled("MDIForm1.labBelk"));
  EXPECT_TRUE(Enabled("MDIForm1.MenuBelk"));
  EXPECT_FALSE(Playing("MediaPlayer1"));
}

TEST_F(SessionStop, DisablesTheGearsTimerWhoeverEnabledIt) {
  StartSession();
  dynamic_cast<view::Timer&>(At("TimerIngranaggi")).Enabled = true;
  Click("StopBelk");
  EXPECT_FALSE(Enabled("TimerIngranaggi"));
}

TEST_F(SessionStop, EndsThePolling) {
  StartSession();
  Click("StopBelk");
  module.ForgetLog();
  Run(std::chrono::seconds(5));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(SessionStop, LeavesWhatWasShown) {
  module[kCounter1] = 42;
  StartSession();
  Click("StopBelk");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("TotIN(0)"), "42");
  EXPECT_EQ(Text("FirmwBelk"), "Firmware rel: 3");
  EXPECT_EQ(Text("MessageBelk"), "OK");
}

TEST_F(SessionStop, LetsAPendingReadFinishBeforeThePortCloses) {
  StartSession();
  module.Next(ModuleFault::Late(core::milliseconds(300)));
  module.BeforeRead = [this](int, int) { module[kCounter1] = 4711; };
  RunIntoAPoll();

  const auto stop = ClickAndGoOn("StopBelk");
  Run(core::milliseconds(100));
  EXPECT_FALSE(stop->Done());
  EXPECT_TRUE(PortOpen());
  ASSERT_TRUE(RunUntil([&] { return stop->Done(); }));
  EXPECT_FALSE(PortOpen());
  EXPECT_EQ(Polled(kPolledCounter1), 4711);
}

TEST_F(SessionStop, EndsTheSessionBeforeItWaitsAndGivesBackTheNavigationAfter) {
  StartSession();
  module.Next(ModuleFault::Late(core::milliseconds(300)));
  RunIntoAPoll();
  const auto stop = ClickAndGoOn("StopBelk");
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(Enabled("StartBelk"));
  EXPECT_FALSE(Enabled("MDIForm1.labBelk"));
  EXPECT_TRUE(Playing("MediaPlayer1"));
  ASSERT_TRUE(RunUntil([&] { return stop->Done(); }));
  EXPECT_TRUE(Enabled("StartBelk"));
  EXPECT_TRUE(Enabled("MDIForm1.labBelk"));
  EXPECT_FALSE(Playing("MediaPlayer1"));
}

TEST_F(SessionStop, EndsThoughTheModuleIsSilent) {
  StartSession();
  module.Always(ModuleFault::Unheard());
  Run(core::milliseconds(200));
  ASSERT_TRUE(Modcom().CommBusy());
  Click("StopBelk");
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(Enabled("StartBelk"));
}

TEST_F(SessionStop, PressedTwiceStopsOnce) {
  StartSession();
  module.Next(ModuleFault::Late(core::milliseconds(300)));
  RunIntoAPoll();
  const auto first = ClickAndGoOn("StopBelk");
  const auto second = ClickAndGoOn("StopBelk");
  EXPECT_TRUE(second->Done());
  ASSERT_TRUE(RunUntil([&] { return first->Done(); }));
  EXPECT_EQ(line.Closes(), 1);
}

TEST_F(SessionStop, LeavesAPageThatStartsAgain) {
  for (int i = 0; i < 3; ++i) {
    StartSession();
    Run(std::chrono::seconds(1));
    EXPECT_THAT(module.TakeLog(), Contains(kBelkPoll));
    EXPECT_EQ(Text("MessageBelk"), "OK");
    Click("StopBelk");
    EXPECT_FALSE(PortOpen());
  }
}

TEST_F(SessionStop, WorksAfterThePortHasVanished) {
  StartSession();
  line.Lose();
  Run(std::chrono::seconds(1));
  ASSERT_TRUE(InSession());
  Click("StopBelk");
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(Enabled("StartBelk"));
  EXPECT_TRUE(Enabled("MDIForm1.labBelk"));
  line.PlugIn();
  StartSession();
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageBelk"), "OK");
}

TEST_F(SessionStop, LetsAFlagThatIsBeingChangedReachTheModule) {
  module[kFlags] = 0x0002;
  StartSession();
  module.Next(ModuleFault::Late(core::milliseconds(200)));
  RunUntil([this] { return !Modcom().CommBusy(); });
  const auto flag = ClickAndGoOn("CheckBelk1");
  ASSERT_FALSE(flag->Done());
  const auto stop = ClickAndGoOn("StopBelk");
  ASSERT_TRUE(RunUntil([&] { return flag->Done() && stop->Done(); }));
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40009: late 200 ms", "writes 40009 = 0x0082"));
  EXPECT_FALSE(PortOpen());
}

TEST_F(SessionStop, IsNotUndoneByAHandlerThatFinishesAfterIt) {
  StartSession();
  module.Next(ModuleFault::Late(core::milliseconds(200)));
  RunUntil([this] { return !Modcom().CommBusy(); });
  const auto flag = ClickAndGoOn("CheckBelk1");
  const auto stop = ClickAndGoOn("StopBelk");
  ASSERT_TRUE(RunUntil([&] { return flag->Done() && stop->Done(); }));
  EXPECT_TRUE(TimersRest());
  module.ForgetLog();
  Run(std::chrono::seconds(1));
  EXPECT_TRUE(TimersRest());
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(SessionStop, LeavesNoHandlerThatStartsTheTimersOfTheNextSession) {
  // The handler of the first session ends while the second one is starting.
  StartSession();
  RunUntil([this] { return !Modcom().CommBusy(); });
  module.Always(ModuleFault::Unheard());
  const auto flag = ClickAndGoOn("CheckBelk1");
  const auto stop = ClickAndGoOn("StopBelk");
  ASSERT_TRUE(RunUntil([&] { return stop->Done(); }));
  module.Always(ModuleFault::Late(core::milliseconds(300)));
  const auto start = ClickAndGoOn("StartBelk");
  while (!start->Done()) {
    ASSERT_TRUE(TimersRest());
    Run(core::milliseconds(1));
  }
  EXPECT_TRUE(flag->Done());
  EXPECT_TRUE(TimersRun());
}

}  // namespace
}  // namespace tarvo::test
