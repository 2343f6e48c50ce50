// A click on an output of the Marlo page, in a session and without one.

#include "support/marlo_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class MarloOutput : public MarloFixture, public testing::WithParamInterface<int> {
 protected:
  int Mask() const { return 1 << GetParam(); }
  std::string Button() const { return Out(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Outputs, MarloOutput, testing::Range(0, 10),
                         [](const auto& given) { return std::to_string(given.param + 1); });

// In a session.

TEST_P(MarloOutput, IsTurnedOnInASessionAndLeavesAllElse) {
  Set(kOutputs, 0xFFFF & ~Mask());
  StartSession();
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0xFFFF"));
}

TEST_P(MarloOutput, IsTurnedOffInASessionAndLeavesAllElse) {
  Set(kOutputs, 0xFFFF);
  StartSession();
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", Writing(kOutputs, 0xFFFF & ~Mask())));
}

TEST_P(MarloOutput, IsToggledFromWhatTheModuleHasAtThatMoment) {
  StartSession();
  RunUntilTheBusIsFree();
  Set(kOutputs, Mask());  // not polled yet
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0x0000"));
}

TEST_P(MarloOutput, IsNotWrittenInASessionWhenTheReadFails) {
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(4));
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003: exception 4"));
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(Enabled(Button()));
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
}

TEST_P(MarloOutput, IsShownByTheNextPoll) {
  StartSession();
  Click(Button());
  RunThroughADecode();
  EXPECT_EQ(OutputsShown(), Mask());
  Click(Button());
  RunThroughADecode();
  EXPECT_EQ(OutputsShown(), 0);
}

TEST_P(MarloOutput, UpdatesThePolledWordWithAGoodWrite) {
  Set(kOutputs, 0x0400);
  StartSession();
  Click(Button());
  EXPECT_EQ(Polled(1), 0x0400 | Mask());
}

TEST_P(MarloOutput, StaysAsItWasWhenTheWriteIsLost) {
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Button());
  RunThroughADecode();
  EXPECT_EQ(OutputsShown(), 0);
  EXPECT_EQ(Panel1(), "");
  EXPECT_TRUE(NothingInFront());
  EXPECT_TRUE(TimersRun());
}

TEST_P(MarloOutput, HoldsTimersPointerAndItselfWhileItIsWritten) {
  StartSession();
  const auto run = ClickAndGoOn(Button());
  while (!run->Done()) {
    ASSERT_TRUE(TimersRest());
    ASSERT_TRUE(Hourglass());
    ASSERT_EQ(RefusalOf(Button()), Button() + " is disabled");
    Run(core::milliseconds(1));
  }
  EXPECT_TRUE(TimersRun());
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(Enabled(Button()));
  EXPECT_TRUE(PortOpen());
}

// Without a session.

TEST_P(MarloOutput, IsTurnedOnWithoutASessionAndAllIsReadAnew) {
  Set(kOutputs, 0xFFFF & ~Mask());
  Click(Button());
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(Reading({"reads 40003", "writes 40003 = 0xFFFF"})));
}

TEST_P(MarloOutput, IsTurnedOffWithoutASessionAndAllIsReadAnew) {
  Set(kOutputs, 0xFFFF);
  Click(Button());
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(Reading({"reads 40003", Writing(kOutputs, 0xFFFF & ~Mask())})));
}

TEST_P(MarloOutput, IsShownByTheReadingWithoutASession) {
  Click(Button());
  EXPECT_EQ(OutputsShown(), Mask());
  Click(Button());
  EXPECT_EQ(OutputsShown(), 0);
}

TEST_P(MarloOutput, IsNotWrittenWithoutASessionWhenTheReadFails) {
  Set(kOutputs, 0x0042);
  module.Next(ModuleFault::Exception(4));
  Click(Button());
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(Reading({"reads 40003: exception 4"})));
  EXPECT_EQ(OutputsShown(), 0x0042);
  EXPECT_TRUE(Enabled(Button()));
  ExpectOffline();
}

TEST_P(MarloOutput, ClosesThePortTwiceWithoutASession) {
  Click(Button());
  EXPECT_EQ(line.Opens(), 2);
  EXPECT_EQ(line.Closes(), 2);
  EXPECT_TRUE(Enabled(Button()));
  ExpectOffline();
}

TEST_P(MarloOutput, HoldsPointerNavigationAndItselfWithoutASession) {
  const auto run = ClickAndGoOn(Button());
  while (!run->Done()) {
    ASSERT_TRUE(Hourglass());
    ASSERT_EQ(RefusalOf(Button()), Button() + " is disabled");
    ASSERT_NE(RefusalOf("MDIForm1.labBelk"), "");
    Run(core::milliseconds(1));
  }
  EXPECT_EQ(module[kOutputs], Mask());
  ExpectOffline();
}

class MarloOutputs : public MarloFixture {};

TEST_F(MarloOutputs, RepaintTheWholePageWithoutASession) {
  Set(kSupply, 123);
  Set(kSafeTime, 45);
  Set(40008, 0x0200);
  Set(kStatus, 0x0004);
  Set(kAddress, 0x0902);
  Click(Out(3));
  EXPECT_EQ(Text("txtVoltage"), "12.3");
  EXPECT_EQ(Text("labSafetimeMarlo"), "45");
  EXPECT_EQ(RedLamps("shHot"), 0x0200);
  EXPECT_EQ(RedLamps("shStatus", kStatusLamps), 0x04);
  EXPECT_EQ(Text("labAddressMarlo"), "9");
  EXPECT_TRUE(Checked("OptionOdd"));
}

TEST_F(MarloOutputs, UseTheLinkParametersOfThisPageWithoutASession) {
  StartSession();
  Click("buttStopMarlo");
  std::vector<std::pair<int, int>> parameters;
  module.BeforeRead = [&](int /*first*/, int /*count*/) {
    parameters.emplace_back(Modcom().LinkParamA, Modcom().LinkParamB);
  };
  Click(Out(0));
  EXPECT_EQ(parameters.size(), 16U);
  EXPECT_THAT(parameters, testing::Each(std::pair(6, 6)));
}

TEST_F(MarloOutputs, KeepTheLinkParametersOfTheSession) {
  StartSession();
  Click(Out(0));
  EXPECT_EQ(Modcom().LinkParamA, 3);
  EXPECT_EQ(Modcom().LinkParamB, 3);
}

TEST_F(MarloOutputs, GoToThePcsLineWithoutASession) {
  MemoryLine otherLine(scheduler);
  MemoryModule other(scheduler, otherLine, 77);
  other.Line = {19200, bus::Parity::kEven};
  other[kIdentity] = 0x0D00;
  ports.Connect(3, otherLine);
  State().PCPort = 3;
  State().PCSettings = "19200,e,8,1";
  State().ModuleAddress = 77;
  Click(Out(2));
  EXPECT_EQ(other[kOutputs], 0x0004);
  EXPECT_EQ(OutputsShown(), 0x0004);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(MarloOutputs, EndWhenThePortDoesNotOpen) {
  ports.SetFault(1, core::kPermissionDenied);
  Click(Out(0));
  EXPECT_TRUE(Enabled(Out(0)));
  EXPECT_EQ(OutputsShown(), 0);
  ExpectOffline();
}

TEST_F(MarloOutputs, EndWhenTheModuleIsSilent) {
  module.Always(ModuleFault::Unheard());
  Click(Out(0));
  EXPECT_EQ(Panel2(), kThisIsNoMarlo);
  EXPECT_TRUE(Enabled(Out(0)));
  EXPECT_EQ(module[kOutputs], 0);
  module.Always(ModuleFault::None());
  ExpectOffline();
}

TEST_F(MarloOutputs, LetNoStartInBetween) {
  const auto run = ClickAndGoOn(Out(0));
  Click("buttStartMarlo");
  ASSERT_TRUE(RunUntil([&] { return run->Done(); }));
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(Reading({"reads 40003", "writes 40003 = 0x0001"})));
  ExpectOffline();
}

TEST_F(MarloOutputs, OfTwoQuickClicksInASessionBothReachTheModule) {
  StartSession();
  const auto first = ClickAndGoOn(Out(0));
  const auto second = ClickAndGoOn(Out(9));
  ASSERT_TRUE(RunUntil([&] { return first->Done() && second->Done(); }));
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0x0001", "reads 40003", "writes 40003 = 0x0201"));
  EXPECT_TRUE(TimersRun());
}

TEST_F(MarloOutputs, OfTenQuickClicksInTheMiddleOfAPollAllReachTheModule) {
  Set(kOutputs, 0x02AA);
  StartSession();
  const History message(At("MessageMarlo"), "Caption");
  RunIntoAPoll();
  for (int i = 0; i < kCount; ++i) ClickAndGoOn(Out(i));
  RunUntilIdle();
  EXPECT_EQ(module[kOutputs], 0x0155);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(OutputsShown(), 0x0155);
  EXPECT_THAT(message.Entries(), IsEmpty());
}

}  // namespace
}  // namespace tarvo::test
