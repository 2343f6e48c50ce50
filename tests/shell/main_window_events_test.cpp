// What no gesture leads to: the family selector's focus and the events of the plain serial instance.

#include "shell/main_window.h"
#include "support/program_fixture.h"

namespace tarvo::test {
namespace {

class FamilyFocus : public ProgramFixture {
 protected:
  shell::MainWindow& Main() { return dynamic_cast<shell::MainWindow&>(*program.FindWindow("MDIForm1")); }
  bool TimerOn() { return Get<bool>("Dravo.TimerControllo", "Enabled"); }
};

TEST_F(FamilyFocus, EnablesNoTimerThatWasOff) {
  Main().DisableTimers();
  EXPECT_FALSE(TimerOn());
  Main().ReEnableTimers();
  EXPECT_FALSE(TimerOn());
}

TEST_F(FamilyFocus, HoldsATimerThatIsOn) {
  At("Dravo.TimerControllo").Enabled = true;
  Main().DisableTimers();
  EXPECT_FALSE(TimerOn());
  Main().ReEnableTimers();
  EXPECT_TRUE(TimerOn());
}

using Event = bus::MSComm::Event;

class LineEvents : public ProgramFixture, public testing::WithParamInterface<Event> {
 protected:
  void Raise(Event event) { dynamic_cast<bus::MSComm&>(At("MDIForm1.MSComm1")).OnComm(event); }
};

TEST_P(LineEvents, GiveTheNavigationBack) {
  At("labBelk").Enabled = false;
  Raise(GetParam());
  EXPECT_TRUE(At("labBelk").Enabled);
}
INSTANTIATE_TEST_SUITE_P(Errors, LineEvents,
                         testing::Values(Event::kBreak, Event::kFraming, Event::kOverrun, Event::kParity,
                                         Event::kTransmitFull, Event::kDeviceControl));

TEST_F(ProgramFixture, HomeShowsTheGearsOfAPhase) {
  auto& home = dynamic_cast<shell::Home&>(*program.FindWindow("Home"));
  for (int phase = 1; phase <= 5; ++phase) {
    home.ShowPhase(phase);
    EXPECT_EQ(Picture("Home.Picture1"), phase);
  }
}

TEST_F(ProgramFixture, AFullReceiverIsNoErrorOfTheLine) {
  At("labBelk").Enabled = false;
  dynamic_cast<bus::MSComm&>(At("MDIForm1.MSComm1")).OnComm(Event::kReceiveFull);
  EXPECT_FALSE(At("labBelk").Enabled);
}

}  // namespace
}  // namespace tarvo::test
