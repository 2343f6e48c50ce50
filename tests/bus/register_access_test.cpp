#include "bus/modcom/register_access.h"

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
using namespace state::literals;

class RegisterAccess : public testing::Test, protected ModComBench {
 protected:
  void SetUp() override {
    ASSERT_TRUE(Open());
    Panel1.Text = "as before";
  }
  core::Task<> Write(state::Register target, std::int32_t value) {
    co_await WriteRegister(ModCom1, target, value, Panel1);
  }

  test::BareWindow Main{Screen, "MDIForm1"};
  view::Panel Panel1{Main, "StatusBar1Panel1"};
};

TEST_F(RegisterAccess, WriteRegisterWrites) {
  test::RunTask(Scheduler, WriteRegister(ModCom1, "40009"_reg, 0x81, Panel1));
  EXPECT_EQ(Module[40009], 0x81);
  EXPECT_EQ(Panel1.Text(), "as before");
}

TEST_F(RegisterAccess, WriteRegisterSendsTheLowSixteenBits) {
  for (const std::int32_t value : {-1, 65535, 0x12345678, -32768, 0}) {
    test::RunTask(Scheduler, WriteRegister(ModCom1, "40009"_reg, value, Panel1));
    EXPECT_EQ(Module[40009], static_cast<std::uint16_t>(value)) << value;
  }
}

TEST_F(RegisterAccess, WriteRegisterTellsWhetherTheModuleHasTakenIt) {
  EXPECT_TRUE(test::RunTask(Scheduler, WriteRegister(ModCom1, "40009"_reg, 1, Panel1)));
  Module.Always(ModuleFault::Exception(2));
  EXPECT_FALSE(test::RunTask(Scheduler, WriteRegister(ModCom1, "40009"_reg, 1, Panel1)));
}

TEST_F(RegisterAccess, WriteRegisterWaitsForAFreeBus) {
  Tasks.Start(NotedRead("under way"));
  Tasks.Start(Write("40009"_reg, 1));
  Scheduler.Run(milliseconds(200));
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40002", "writes 40009 = 0x0001"));
}

TEST_F(RegisterAccess, WriteRegisterThatFailsTellsThePanelAndShowsNoBox) {
  Module.Always(ModuleFault::Unheard());
  test::RunTask(Scheduler, WriteRegister(ModCom1, "40009"_reg, 1, Panel1));
  EXPECT_EQ(Panel1.Text(), "unable to write 40009");
  EXPECT_EQ(Screen.ModalDepth(), 0U);
}

TEST_F(RegisterAccess, WriteRegisterTellsThePanelOfEachKindOfFailure) {
  Module.Always(ModuleFault::Exception(2));
  test::RunTask(Scheduler, WriteRegister(ModCom1, "40100"_reg, 1, Panel1));
  EXPECT_EQ(Panel1.Text(), "unable to write 40100");
  Line.Lose();
  Scheduler.RunReady();
  test::RunTask(Scheduler, WriteRegister(ModCom1, "40101"_reg, 1, Panel1));
  EXPECT_EQ(Panel1.Text(), "unable to write 40101");
  (void)ModCom1.SetPortOpen(false);
  test::RunTask(Scheduler, WriteRegister(ModCom1, "40102"_reg, 1, Panel1));
  EXPECT_EQ(Panel1.Text(), "unable to write 40102");
}

TEST_F(RegisterAccess, WriteRegisterIsAskedOnceHoweverOftenItsRequestIsTried) {
  ModCom1.LinkParamB = 1;
  Module.Always(ModuleFault::Unheard());
  test::RunTask(Scheduler, WriteRegister(ModCom1, "40009"_reg, 1, Panel1));
  EXPECT_EQ(Module.Log().size(), 1U);
}

TEST_F(RegisterAccess, WriteRegisterShowsARunTimeFaultInABox) {
  Tasks.Start(Write(state::Register(39999), 1));
  Scheduler.RunReady();
  ASSERT_NE(Screen.Front(), nullptr);
  const view::MessageBox* box = Screen.Front()->AsMessageBox();
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->text, "Subscript out of range");
  EXPECT_EQ(box->caption, "Tarvo");
  EXPECT_EQ(box->icon, view::Icon::kCritical);
  EXPECT_FALSE(Tasks.Idle());
  EXPECT_TRUE(Screen.Answer("OK").taken);
  Scheduler.RunReady();
  EXPECT_TRUE(Tasks.Idle());
  EXPECT_THAT(Tasks.Faults(), IsEmpty());
  EXPECT_EQ(Panel1.Text(), "as before");
}

TEST_F(RegisterAccess, ReadRegisterReadsASignedWord) {
  Module[40009] = 0xFFFE;
  EXPECT_EQ(ResultOf(ReadRegister(ModCom1, "40009"_reg)), -2);
  EXPECT_THAT(Module.TakeLog(), ElementsAre("reads 40009"));
}

TEST_F(RegisterAccess, ReadRegisterGivesZeroWhenTheReadFails) {
  Module.Always(ModuleFault::Unheard());
  EXPECT_EQ(ResultOf(ReadRegister(ModCom1, "40009"_reg)), 0);
  Line.Lose();
  Scheduler.RunReady();
  EXPECT_EQ(ResultOf(ReadRegister(ModCom1, "40009"_reg)), 0);
  (void)ModCom1.SetPortOpen(false);
  EXPECT_EQ(ResultOf(ReadRegister(ModCom1, "40009"_reg)), 0);
  EXPECT_EQ(Screen.ModalDepth(), 0U);
  EXPECT_EQ(Panel1.Text(), "as before");
}

TEST_F(RegisterAccess, WaitLetsNothingRun) {
  bool ran = false;
  core::Call timer(Scheduler, [&ran] { ran = true; });
  timer.After(milliseconds(50));
  const core::TimePoint start = Scheduler.Now();
  wait(Scheduler, 200);
  EXPECT_EQ(Scheduler.Now() - start, milliseconds(200));
  EXPECT_FALSE(ran);
  Scheduler.RunReady();
  EXPECT_TRUE(ran);
}

TEST_F(RegisterAccess, WaitOfNoTimeEndsAtOnce) {
  const core::TimePoint start = Scheduler.Now();
  wait(Scheduler, 0);
  wait(Scheduler, -5);
  EXPECT_EQ(Scheduler.Now(), start);
}

}  // namespace
}  // namespace tarvo::bus
