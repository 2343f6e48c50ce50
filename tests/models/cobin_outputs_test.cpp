#include <algorithm>
#include <array>

#include "support/cobin_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct Masks {
  int output;
  int bit;
  int clear;  ///< eight bits wide: the high byte goes, too
};

constexpr std::array kMasks = {Masks{0, 1, 254}, Masks{1, 2, 253}, Masks{2, 4, 251}, Masks{3, 8, 247},
                               Masks{4, 16, 239}};

std::string NameOf(const testing::TestParamInfo<Masks>& given) {
  return std::to_string(given.param.output + 1);
}

// Outputs.

class CobinOutput : public CobinFixture, public testing::WithParamInterface<Masks> {
 protected:
  std::string Button() const { return Out(GetParam().output); }
};

INSTANTIATE_TEST_SUITE_P(Outputs, CobinOutput, testing::ValuesIn(kMasks), NameOf);

TEST_P(CobinOutput, IsTurnedOnAndLeavesAllElse) {
  Set(kOutputs, 0xFFFF & ~GetParam().bit);
  StartSession();
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40002", "writes 40002 = 0xFFFF"));
}

TEST_P(CobinOutput, IsTurnedOffAndClearsTheHighByteToo) {
  Set(kOutputs, 0xFFFF);
  StartSession();
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40002", Writing(kOutputs, GetParam().clear)));
}

TEST_P(CobinOutput, IsToggledFromWhatTheModuleHasAtThatMoment) {
  StartSession();
  RunUntilTheBusIsFree();
  Set(kOutputs, GetParam().bit);  // not polled yet
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40002", "writes 40002 = 0x0000"));
}

TEST_P(CobinOutput, IsToggledFromZeroWhenTheReadIsRefused) {
  Set(kOutputs, 0xFFFF);
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(2));
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40002: exception 2", Writing(kOutputs, GetParam().bit)));
}

TEST_P(CobinOutput, IsPaintedByTheNextPollAndNotByTheClick) {
  StartSession();
  const History picture(At(Button()), "Picture");
  Click(Button());
  EXPECT_EQ(Picture(Button()), 1);
  RunThroughADecode();
  EXPECT_EQ(Picture(Button()), 2);
  Click(Button());
  EXPECT_EQ(Picture(Button()), 2);
  RunThroughADecode();
  EXPECT_THAT(picture.Values<std::int64_t>(), ElementsAre(2, 1));
}

TEST_P(CobinOutput, StaysAsItWasWhenTheWriteIsLost) {
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Button());
  EXPECT_EQ(Polled(kPolledOutputs), 0);
  RunThroughADecode();
  EXPECT_EQ(Picture(Button()), 1);
  EXPECT_TRUE(NothingInFront());
  EXPECT_TRUE(TimersRun());
}

TEST_P(CobinOutput, LeavesSafeStatesAndFlagsAlone) {
  Set(kSafeStates, 0x15);
  Set(kFlags, 0x0080);
  StartSession();
  Click(Button());
  RunThroughADecode();
  EXPECT_EQ(module[kSafeStates], 0x15);
  EXPECT_EQ(module[kFlags], 0x0080);
  EXPECT_TRUE(Checked("CheckCobin1"));
}

TEST_P(CobinOutput, DoesNothingWithoutASession) {
  ResetASession();
  SetPolled(kPolledOutputs, 0x0A0A);
  const int before = Picture(Button());
  Click(Button());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_EQ(Polled(kPolledOutputs), 0x0A0A);
  EXPECT_EQ(Picture(Button()), before);
}

class CobinOutputs : public CobinFixture {};

TEST_F(CobinOutputs, OfTwoQuickClicksBothReachTheModule) {
  StartSession();
  const auto first = ClickAndGoOn(Out(0));
  const auto second = ClickAndGoOn(Out(3));
  ASSERT_TRUE(RunUntil([&] { return first->Done() && second->Done(); }));
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40002", "writes 40002 = 0x0001", "reads 40002", "writes 40002 = 0x0009"));
  EXPECT_TRUE(TimersRun());
}

TEST_F(CobinOutputs, OfFiveQuickClicksInTheMiddleOfAPollAllReachTheModule) {
  Set(kOutputs, 0x0A);
  StartSession();
  const History message(At("MessageCobin"), "Caption");
  RunIntoAPoll();
  module.ForgetLog();
  for (int i = 0; i < kOutputCount; ++i) ClickAndGoOn(Out(i));
  RunUntilIdle();
  EXPECT_THAT(module.TakeLog(), SizeIs(10));
  EXPECT_EQ(module[kOutputs], 0x15);
  Run(std::chrono::seconds(1));
  for (int i = 0; i < kOutputCount; ++i) EXPECT_EQ(Picture(Out(i)), i % 2 == 0 ? 2 : 1) << i;
  EXPECT_THAT(message.Entries(), IsEmpty());
}

TEST_F(CobinOutputs, HoldTheTimersWhileTheyAreWritten) {
  StartSession();
  const auto run = ClickAndGoOn(Out(0));
  while (!run->Done()) {
    ASSERT_TRUE(TimersRest());
    Run(core::milliseconds(1));
  }
  EXPECT_TRUE(TimersRun());
}

// Safe states in a session.

class CobinSafeState : public CobinFixture, public testing::WithParamInterface<Masks> {
 protected:
  std::string Button() const { return Safe(GetParam().output); }
};

INSTANTIATE_TEST_SUITE_P(Outputs, CobinSafeState, testing::ValuesIn(kMasks), NameOf);

TEST_P(CobinSafeState, IsSetTogetherWithTheSafeStateFlag) {
  Set(kFlags, 0xAB01);
  StartSession();
  Click(Button());
  EXPECT_THAT(Exchanges(),
              ElementsAre("reads 40003", Writing(kSafeStates, GetParam().bit), "reads 40005", "writes 40005 = 0xAB81"));
  EXPECT_TRUE(Checked("CheckCobin1"));
}

TEST_P(CobinSafeState, IsSetAndLeavesAllElse) {
  Set(kSafeStates, 0xFFFF & ~GetParam().bit);
  Set(kFlags, 0xFFF7);
  StartSession();
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0xFFFF", "reads 40005", "writes 40005 = 0xFFF7"));
}

TEST_P(CobinSafeState, IsClearedWithTheHighByteOfItsRegister) {
  Set(kSafeStates, 0xFFFF);
  Set(kFlags, 0x8081);
  StartSession();
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", Writing(kSafeStates, GetParam().clear), "reads 40005",
                                       "writes 40005 = 0x8081"));
  EXPECT_TRUE(Checked("CheckCobin1"));
}

TEST_P(CobinSafeState, TheLastOneClearedTakesTheFlagAndTheHighByteOfTheFlags) {
  Set(kSafeStates, GetParam().bit);
  Set(kFlags, 0xABD1);
  StartSession();
  ASSERT_TRUE(Checked("CheckCobin1"));
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0x0000", "reads 40005", "writes 40005 = 0x0051"));
  EXPECT_FALSE(Checked("CheckCobin1"));
}

TEST_P(CobinSafeState, CountsTheWholePatternAndNotItsFiveBitsAlone) {
  // Bit 5 stands for no output; what is left of the pattern still is not 0.
  Set(kSafeStates, 0x20 | GetParam().bit);
  StartSession();
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0x0020", "reads 40005", "writes 40005 = 0x0080"));
  EXPECT_TRUE(Checked("CheckCobin1"));
}

TEST_P(CobinSafeState, IsPaintedByTheNextPollAndNotByTheClick) {
  StartSession();
  const History picture(At(Button()), "Picture");
  Click(Button());
  EXPECT_EQ(Picture(Button()), 1);
  RunThroughADecode();
  EXPECT_EQ(Picture(Button()), 2);
  Click(Button());
  EXPECT_EQ(Picture(Button()), 2);
  RunThroughADecode();
  EXPECT_THAT(picture.Values<std::int64_t>(), ElementsAre(2, 1));
}

TEST_P(CobinSafeState, IsToggledFromZeroWhenTheReadIsRefused) {
  Set(kSafeStates, 0xFFFF);
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(2));
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003: exception 2", Writing(kSafeStates, GetParam().bit), "reads 40005",
                                       "writes 40005 = 0x0080"));
}

TEST_P(CobinSafeState, SetsTheFlagFromZeroWhenItsReadIsRefused) {
  Set(kFlags, 0xFFF7);
  StartSession();
  RunUntilTheBusIsFree();
  for (int i = 0; i < 2; ++i) module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(2));
  Click(Button());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", Writing(kSafeStates, GetParam().bit), "reads 40005: exception 2",
                                       "writes 40005 = 0x0080"));
}

TEST_P(CobinSafeState, UpdatesThePolledWordsWithGoodWrites) {
  Set(kFlags, 0xAB00);
  StartSession();
  Click(Button());
  EXPECT_EQ(Polled(kPolledSafeStates), GetParam().bit);
  EXPECT_EQ(Polled(kPolledFlags), 0xAB80);
  Click(Button());
  EXPECT_EQ(Polled(kPolledSafeStates), 0);
  EXPECT_EQ(Polled(kPolledFlags), 0);
}

TEST_P(CobinSafeState, ShowsTheFlagOnceAndDoesNotLetItSpringBack) {
  StartSession();
  const History shown(At("CheckCobin1"), "Value");
  Click(Button());
  Run(std::chrono::seconds(1));
  EXPECT_THAT(shown.Values<std::int64_t>(), ElementsAre(1));
  Click(Button());
  Run(std::chrono::seconds(1));
  EXPECT_THAT(shown.Values<std::int64_t>(), ElementsAre(1, 0));
}

// Safe states without a session.

TEST_P(CobinSafeState, IsSetInTheWorkingCopyAndShowsImage1WithoutASession) {
  ResetASession();
  SetPolled(kPolledSafeStates, 0xFFFF & ~GetParam().bit);
  SetPolled(kPolledFlags, 0xAB01);
  Click(Button());
  EXPECT_EQ(Polled(kPolledSafeStates), 0xFFFF);
  EXPECT_EQ(Polled(kPolledFlags), 0xAB81);
  EXPECT_EQ(Picture(Button()), 1);
  EXPECT_TRUE(Checked("CheckCobin1"));
}

TEST_P(CobinSafeState, IsClearedInTheWorkingCopyAndShowsImage2WithoutASession) {
  ResetASession();
  SetPolled(kPolledSafeStates, 0xFFFF);
  SetPolled(kPolledFlags, 0xAB01);
  Click(Button());
  EXPECT_EQ(Polled(kPolledSafeStates), GetParam().clear);
  EXPECT_EQ(Polled(kPolledFlags), 0xAB81);
  EXPECT_EQ(Picture(Button()), 2);
  EXPECT_TRUE(Checked("CheckCobin1"));
}

TEST_P(CobinSafeState, ShowsTheReverseWithEachClickWithoutASession) {
  ResetASession();
  const History picture(At(Button()), "Picture");
  for (int click = 0; click < 3; ++click) {
    Click(Button());
    Run(core::milliseconds(1));
    EXPECT_EQ(Picture(Button()), Polled(kPolledSafeStates) != 0 ? 1 : 2);
  }
  EXPECT_THAT(picture.Values<std::int64_t>(), ElementsAre(2, 1));
}

TEST_P(CobinSafeState, TheLastOneClearedTakesTheFlagInTheWorkingCopyToo) {
  Set(kSafeStates, GetParam().bit);
  Set(kFlags, 0xABD1);
  ResetASession();
  ASSERT_TRUE(Checked("CheckCobin1"));
  Click(Button());
  EXPECT_EQ(Polled(kPolledSafeStates), 0);
  EXPECT_EQ(Polled(kPolledFlags), 0x0051);
  EXPECT_FALSE(Checked("CheckCobin1"));
}

TEST_P(CobinSafeState, SaysNoWordOnTheLineWithoutASession) {
  ResetASession();
  Click(Button());
  Click(Button());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_P(CobinSafeState, IsPaintedRightAgainByTheNextSession) {
  ResetASession();
  Click(Button());
  Click(Button());
  ASSERT_EQ(Picture(Button()), 2);
  StartSession();
  EXPECT_EQ(Picture(Button()), 1);
}

class CobinSafeStates : public CobinFixture {};

TEST_F(CobinSafeStates, PaintOnlyTheButtonThatWasClickedWithoutASession) {
  Set(kSafeStates, 0x0A);
  ResetASession();
  Click(Safe(0));
  for (int i = 0; i < kOutputCount; ++i) EXPECT_EQ(Picture(Safe(i)), i % 2 == 0 ? 1 : 2) << i;
}

TEST_F(CobinSafeStates, OfTwoQuickClicksBothReachTheModule) {
  StartSession();
  const auto first = ClickAndGoOn(Safe(0));
  const auto second = ClickAndGoOn(Safe(4));
  ASSERT_TRUE(RunUntil([&] { return first->Done() && second->Done(); }));
  EXPECT_EQ(module[kSafeStates], 0x11);
  EXPECT_EQ(module[kFlags], 0x0080);
  EXPECT_TRUE(TimersRun());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Picture(Safe(0)), 2);
  EXPECT_EQ(Picture(Safe(4)), 2);
  EXPECT_TRUE(Checked("CheckCobin1"));
}

TEST_F(CobinSafeStates, LetNoPollInBetweenReadAndWriteOfEither) {
  StartSession();
  RunUntilTheBusIsFree();
  module.ForgetLog();
  for (int i = 0; i < 4; ++i) module.Next(ModuleFault::Late(core::milliseconds(300)));
  Click(Safe(1));
  const std::vector<std::string> log = module.TakeLog();
  const auto after = [&](const char* read) {
    const auto at = std::find(log.begin(), log.end(), read);
    return at == log.end() || at + 1 == log.end() ? std::string("nothing") : *(at + 1);
  };
  EXPECT_EQ(after("reads 40003: late 300 ms"), "writes 40003 = 0x0002: late 300 ms");
  EXPECT_EQ(after("reads 40005: late 300 ms"), "writes 40005 = 0x0080: late 300 ms");
}

TEST_F(CobinSafeStates, OverASessionThatEndsMeanwhileSetTheFlagInTheWorkingCopy) {
  StartSession();
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Late(core::milliseconds(200)));
  const auto safe = ClickAndGoOn(Safe(0));
  const auto stop = ClickAndGoOn("StopCobin");
  ASSERT_TRUE(RunUntil([&] { return safe->Done() && stop->Done(); }));
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003: late 200 ms", "writes 40003 = 0x0001"));
  EXPECT_EQ(Polled(kPolledFlags), 0x0080);
  EXPECT_TRUE(Checked("CheckCobin1"));
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(TimersRest());
}

TEST_F(CobinSafeStates, LeaveTheOutputsAlone) {
  Set(kOutputs, 0x15);
  StartSession();
  for (int i = 0; i < kOutputCount; ++i) Click(Safe(i));
  EXPECT_EQ(module[kOutputs], 0x15);
  EXPECT_EQ(module[kSafeStates], 0x1F);
}

}  // namespace
}  // namespace tarvo::test
