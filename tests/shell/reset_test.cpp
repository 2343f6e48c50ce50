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

TEST_F(ResetInSession, WaitsForThePollThatIsUnderWay) {
  StartSession();
  RunIntoAPoll();
  module.ForgetLog();
  Click("ResetBelk");
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("writes 40011 = 0x0001"));
  EXPECT_EQ(Text("MessageBelk"), "OK");
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

TEST_F(ResetInSession, ChangesNoneOfThePcsSettings) {
  StartSession();
  Edit("AddressBelk", "17");
  Click("ResetBelk");
  AnswerOk();
  EXPECT_EQ(State().PCSettings, "9600,n,8,1");
  EXPECT_EQ(State().PCPort, 1);
  EXPECT_EQ(State().ModuleAddress, 1);
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

TEST_F(ResetOffline, ClosesThePortAfterItsBox) {
  Click("ResetBelk");
  ASSERT_NE(BoxInFront(), nullptr);
  EXPECT_TRUE(PortOpen());
  EXPECT_FALSE(Enabled("WEEPBelk"));
  EXPECT_FALSE(Enabled("ResetBelk"));
  AnswerOk();
  ExpectOffline();
}

TEST_F(ResetOffline, SetsTheBusUpFromTheSharedValues) {
  MemoryLine otherLine(scheduler);
  MemoryModule otherModule(scheduler, otherLine, 7);
  otherModule.Line = {19200, bus::Parity::kOdd};
  otherModule[kIdentity] = 0x0103;
  ports.Connect(3, otherLine);
  State().PCPort = 3;
  State().PCSettings = "19200,o,8,1";
  Click("MDIForm1.LabPCSetup");
  Click("PCAddress");
  AnswerChangeValue("7");
  Click("MDIForm1.labBelk");
  Modcom().LinkParamA = 1;
  Modcom().LinkParamB = 1;
  Click("ResetBelk");
  EXPECT_EQ(Modcom().CommPort(), 3);
  EXPECT_EQ(Modcom().Settings(), "19200,o,8,1");
  EXPECT_EQ(Modcom().LinkParamA(), 3);
  EXPECT_EQ(Modcom().LinkParamB(), 3);
  EXPECT_EQ(Modcom().ModuleAddr(), 7);
  EXPECT_THAT(BoxInFront(), IsBox(kReset, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(otherModule.TakeLog(), ElementsAre("reads 40001", "writes 40011 = 0x0001"));
  EXPECT_FALSE(otherLine.IsOpen());
}

TEST_F(ResetOffline, HoldsTheProgramWhileItRuns) {
  const auto reset = ClickAndGoOn("ResetBelk");
  EXPECT_TRUE(Hourglass());
  EXPECT_FALSE(Enabled("WEEPBelk"));
  EXPECT_FALSE(Enabled("ResetBelk"));
  for (const char* name : {"labBelk", "LabHome", "MenuPCSetup", "buttCheckDevice"}) {
    EXPECT_NE(RefusalOf(std::string("MDIForm1.") + name), "") << name;
  }
  Close();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_FALSE(program.Ended());
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  EXPECT_THAT(BoxInFront(), IsBox(kReset, view::Icon::kInformation));
  AnswerOk();
  ExpectOffline();
}

TEST_F(ResetOffline, IsRefusedByAModuleOfAnotherModel) {
  module[kIdentity] = 0x0203;
  Click("ResetBelk");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  ExpectRefused();
  module[kIdentity] = 0x0103;
  ExpectStartWorks();
}

TEST_F(ResetOffline, IsRefusedWithoutAModule) {
  module.Always(ModuleFault::Unheard());
  Click("ResetBelk");
  ExpectRefused();
  module.Always(ModuleFault::None());
  ExpectStartWorks();
}

TEST_F(ResetOffline, IsRefusedByAPortThatDoesNotOpen) {
  for (const char* fault : {core::kPortAlreadyOpen, core::kDeviceNotFound}) {
    SCOPED_TRACE(fault);
    ports.SetFault(1, fault);
    Click("ResetBelk");
    ExpectRefused();
  }
  ports.SetFault(1, {});
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
