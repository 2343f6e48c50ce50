// Write EEprom and Module Reset of the Cobin page.

#include "support/cobin_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr char kCommitted[] = "EEProm updated! Please reset module to apply changes.";
constexpr char kResetInSession[] = "Module is Resetted! Comunication Stopped";
constexpr char kResetDone[] = "Module is Resetted!";

class CobinCommit : public CobinFixture {
 protected:
  void Edit(std::string_view control, std::string_view text) {
    Click(control);
    AnswerChangeValue(text);
    ASSERT_TRUE(NothingInFront());
  }
  /// Write EEprom to its end; gives what went over the line.
  std::vector<std::string> Commit() {
    module.ForgetLog();
    Click("WEEPCobin");
    EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
    AnswerOk();
    return Exchanges();
  }
  void ExpectOffline() {
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(line.IsOpen());
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
    for (const char* name : {"StartCobin", "WEEPCobin", "ResetCobin", "MDIForm1.labCobin", "MDIForm1.MenuCobin"}) {
      EXPECT_TRUE(Enabled(name)) << name;
    }
    module.ForgetLog();
    Run(std::chrono::seconds(1));
    EXPECT_THAT(module.TakeLog(), IsEmpty());
  }
  void ExpectRefused() {
    EXPECT_THAT(BoxInFront(), IsBox(kNotACobin, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), Not(Contains(StartsWith("writes"))));
    ExpectOffline();
  }
  void ExpectButtons(bool enabled) const {
    for (int i = 0; i < kOutputCount; ++i) {
      EXPECT_EQ(Enabled(Out(i)), enabled) << Out(i);
      EXPECT_EQ(Enabled(Safe(i)), enabled) << Safe(i);
    }
  }
};

// Write EEprom in a session.

TEST_F(CobinCommit, InASessionWritesTheFourImagesInTheirOrder) {
  Set(kSafeStates, 0xAB15);
  Set(kSafeTime, 250);
  Set(kFlags, 0xCDC5);
  Set(kStoredCommunication, 0x0377);
  StartSession();
  EXPECT_THAT(Commit(), ElementsAre("writes 40067 = 0xAB15", "writes 40068 = 0x00FA", "writes 40069 = 0xCDC5",
                                    "writes 40070 = 0x0377"));
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(PortOpen());
}

TEST_F(CobinCommit, InASessionWritesWhatWasEdited) {
  StartSession();
  Edit("SafetimeCobin", "123");
  Edit("AddressCobin", "17");
  Choose("BaudCobin", 5);
  EXPECT_THAT(Commit(), ElementsAre("writes 40067 = 0x0000", "writes 40068 = 0x007B", "writes 40069 = 0x0000",
                                    "writes 40070 = 0x0311"));
}

TEST_F(CobinCommit, InASessionTakesPatternAndFlagsFromTheLastPoll) {
  StartSession();
  Set(kSafeStates, 0x15);
  Set(kFlags, 0x0080);
  RunThroughADecode();
  EXPECT_THAT(Commit(), ElementsAre("writes 40067 = 0x0015", "writes 40068 = 0x0032", "writes 40069 = 0x0080",
                                    "writes 40070 = 0x0101"));
}

TEST_F(CobinCommit, StoresASafeStateThatWasClickedRightBefore) {
  StartSession();
  Click(Safe(2));
  EXPECT_THAT(Commit(), ElementsAre("writes 40067 = 0x0004", "writes 40068 = 0x0032", "writes 40069 = 0x0080",
                                    "writes 40070 = 0x0101"));
}

TEST_F(CobinCommit, StoresAFlagThatWasClickedRightBefore) {
  StartSession();
  Click("CheckCobin3");
  EXPECT_THAT(Commit(), Contains("writes 40069 = 0x0040"));
}

TEST_F(CobinCommit, WritesTheCodeOfEachRate) {
  StartSession();
  const std::vector<int> codes = {6, 7, 0, 1, 2, 3, 4};
  ASSERT_EQ(ItemData("BaudCobin"), codes);
  for (std::size_t position = 0; position < codes.size(); ++position) {
    Choose("BaudCobin", static_cast<int>(position));
    EXPECT_THAT(Commit(), Contains(Writing(kStoredCommunication, codes[position] << 8 | 1)));
  }
}

TEST_F(CobinCommit, WritesTheCodeOfEachRateOfAnOlderRelease) {
  SetRelease(2);
  StartSession();
  for (int position = 0; position < 5; ++position) {
    Choose("BaudCobin", position);
    EXPECT_THAT(Commit(), Contains(Writing(kStoredCommunication, position << 8 | 1)));
  }
}

TEST_F(CobinCommit, WritesASafeTimeOutOfBoundsAsItStands) {
  for (const int time : {0, 4, 251, 65535}) {
    Set(kSafeTime, time);
    StartSession();
    EXPECT_THAT(Commit(), Contains(Writing(kStoredSafeTime, time)));
    Click("StopCobin");
  }
}

TEST_F(CobinCommit, RoundsATextWithADecimalPart) {
  StartSession();
  Edit("SafetimeCobin", "12.4");
  Edit("AddressCobin", "16,5");
  EXPECT_THAT(Commit(), ElementsAre("writes 40067 = 0x0000", "writes 40068 = 0x000C", "writes 40069 = 0x0000",
                                    "writes 40070 = 0x0110"));
}

TEST_F(CobinCommit, HoldsPollAndButtonsUntilItsBoxIsAnswered) {
  StartSession();
  Click("WEEPCobin");
  ASSERT_NE(BoxInFront(), nullptr);
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(Enabled("WEEPCobin"));
  EXPECT_FALSE(Enabled("ResetCobin"));
  AnswerOk();
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(Enabled("WEEPCobin"));
  EXPECT_TRUE(Enabled("ResetCobin"));
  EXPECT_FALSE(Hourglass());
  ExpectButtons(true);
}

TEST_F(CobinCommit, GoesOnThroughARefusedWrite) {
  StartSession();
  RunUntilTheBusIsFree();
  module.ForgetLog();
  module.Next(ModuleFault::Exception(4));
  EXPECT_THAT(Commit(), ElementsAre("writes 40067 = 0x0000: exception 4", "writes 40068 = 0x0032",
                                    "writes 40069 = 0x0000", "writes 40070 = 0x0101"));
}

// Write EEprom without a session.

TEST_F(CobinCommit, WithoutASessionLooksAtTheIdentityFirst) {
  SetPolled(kPolledSafeStates, 0x1234);
  SetPolled(kPolledFlags, 0x5678);
  Edit("SafetimeCobin", "200");
  Edit("AddressCobin", "255");
  Choose("BaudCobin", 4);
  State().PollRegister = state::Register(40013);
  State().PollCount = 12;
  EXPECT_THAT(Commit(), ElementsAre("reads 40001", "writes 40067 = 0x1234", "writes 40068 = 0x00C8",
                                    "writes 40069 = 0x5678", "writes 40070 = 0x04FF"));
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 5);
  ExpectOffline();
  ExpectButtons(false);
}

TEST_F(CobinCommit, BeforeAnythingWasReadWritesTheLowestValues) {
  EXPECT_THAT(Commit(), ElementsAre("reads 40001", "writes 40067 = 0x0000", "writes 40068 = 0x0005",
                                    "writes 40069 = 0x0000", "writes 40070 = 0x0101"));
}

TEST_F(CobinCommit, WithoutASessionStoresTheWorkingCopies) {
  Set(kSafeStates, 0x0A);
  Set(kFlags, 0x0081);
  ResetASession();
  Click(Safe(0));
  Click("CheckCobin2");
  Click("CheckCobin4");
  EXPECT_THAT(Commit(), ElementsAre("reads 40001", "writes 40067 = 0x000B", "writes 40068 = 0x0032",
                                    "writes 40069 = 0x0084", "writes 40070 = 0x0101"));
  EXPECT_EQ(module[kSafeStates], 0x0A);
  EXPECT_EQ(module[kFlags], 0x0081);
}

TEST_F(CobinCommit, WithoutASessionGoesToTheAddressOfThePcSetup) {
  Click("MDIForm1.LabPCSetup");
  Click("PCAddress");
  AnswerChangeValue("9");
  Click("MDIForm1.labCobin");
  module.Address = 9;
  EXPECT_THAT(Commit(), Contains("writes 40070 = 0x0101"));
}

TEST_F(CobinCommit, WithoutASessionRefusesAnotherModel) {
  Set(kIdentity, 0x0103);
  Click("WEEPCobin");
  ExpectRefused();
  Set(kIdentity, 0x0203);
  StartSession();
}

TEST_F(CobinCommit, WithoutASessionRefusesSilence) {
  module.Always(ModuleFault::Unheard());
  Click("WEEPCobin");
  ExpectRefused();
}

// Module Reset.

TEST_F(CobinCommit, ResetInASessionWrites1AndEndsIt) {
  StartSession();
  Click("ResetCobin");
  EXPECT_THAT(BoxInFront(), IsBox(kResetInSession, view::Icon::kInformation));
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(TimersRest());
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40007 = 0x0001"));
  ExpectOffline();
}

TEST_F(CobinCommit, ResetLeavesOutputAndSafeStateButtonsAsTheyAre) {
  StartSession();
  Click("ResetCobin");
  AnswerOk();
  ExpectButtons(true);
  Click("StopCobin");  // no session, so it does nothing
  ExpectButtons(true);
  StartSession();
  Click("StopCobin");
  Click("ResetCobin");
  AnswerOk();
  ExpectButtons(false);
}

TEST_F(CobinCommit, ResetWithoutASessionLooksAtTheIdentityFirst) {
  Click("ResetCobin");
  EXPECT_THAT(BoxInFront(), IsBox(kResetDone, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "writes 40007 = 0x0001"));
  ExpectOffline();
}

TEST_F(CobinCommit, ResetWithoutASessionRefusesAnotherModel) {
  Set(kIdentity, 0x0302);
  Click("ResetCobin");
  ExpectRefused();
}

TEST_F(CobinCommit, ResetWithoutASessionRefusesSilence) {
  module.Always(ModuleFault::Unheard());
  Click("ResetCobin");
  ExpectRefused();
}

TEST_F(CobinCommit, StartWorksAfterAReset) {
  ResetASession();
  StartSession();
  ExpectButtons(true);
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageCobin"), "OK");
}

}  // namespace
}  // namespace tarvo::test
