// Write EEprom and Module Reset of the Ferrun page.

#include "support/ferrun_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kCommitted[] = "EEProm updated! Please reset module to apply changes.";
constexpr char kResetInSession[] = "Module is Resetted! Comunication Stopped";
constexpr char kResetDone[] = "Module is Resetted!";

class FerrunCommit : public FerrunFixture {
 protected:
  /// A module whose every setting is another, and what a commit of it writes.
  std::vector<std::string> GiveTheModuleItsSettings() {
    Set(kInput, 0x0305);
    const int scales[] = {1111, -2222, 3333, -4444, 9500, -77};
    for (int i = 0; i < 6; ++i) Set(40003 + i, scales[i]);
    Set(40009, 0x0701);
    Set(kSafeTime, 33);
    Set(kFlags, 0xFFFF);
    for (int i = 0; i < 7; ++i) Set(kSetpoint + i, 101 + i);
    Set(kStoredCommunication, 0x0311);
    Set(kStoredOutput, 4321);

    std::vector<std::string> writes = {Writing(40066, 0x0305)};
    for (int i = 0; i < 6; ++i) writes.push_back(Writing(40067 + i, scales[i]));
    writes.push_back(Writing(40073, 0x0311));
    writes.push_back(Writing(40074, 33));
    // The word is built from the view: bits without a control stay 0.
    writes.push_back(Writing(40075, 0xFF1C));
    for (int i = 0; i < 7; ++i) writes.push_back(Writing(40076 + i, 101 + i));
    writes.push_back(Writing(40083, 4321));
    return writes;
  }
  void Commit() {
    Click("buttWEEPFerrun");
    EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
    AnswerOk();
  }
  void ExpectOffline() {
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(line.IsOpen());
    EXPECT_TRUE(Enabled("StartFerrun"));
    EXPECT_TRUE(Enabled("MDIForm1.labFerrun"));
    EXPECT_TRUE(Enabled("buttWEEPFerrun"));
    EXPECT_TRUE(Enabled("buttResetFerrun"));
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
    module.ForgetLog();
    Run(std::chrono::seconds(1));
    EXPECT_THAT(module.TakeLog(), IsEmpty());
  }
};

// In a session.

TEST_F(FerrunCommit, InASessionWritesTheEighteenImagesInTheirOrder) {
  const std::vector<std::string> writes = GiveTheModuleItsSettings();
  StartSession();
  RunThroughADecode();
  module.ForgetLog();
  Commit();
  EXPECT_THAT(Exchanges(), ElementsAreArray(writes));
}

TEST_F(FerrunCommit, InASessionHoldsPollAndButtonsUntilItsBoxIsAnswered) {
  StartSession();
  ClickAndGoOn("buttWEEPFerrun");
  EXPECT_TRUE(Hourglass());
  EXPECT_FALSE(Enabled("buttWEEPFerrun"));
  EXPECT_FALSE(Enabled("buttResetFerrun"));
  EXPECT_TRUE(TimersRest());
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  module.ForgetLog();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  AnswerOk();
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(Enabled("buttWEEPFerrun"));
  EXPECT_TRUE(Enabled("buttResetFerrun"));
  EXPECT_FALSE(Hourglass());
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), testing::AllOf(SizeIs(20), Each(std::string(kFerrunPoll))));
  EXPECT_EQ(Text("MessageFerrun"), "OK");
}

TEST_F(FerrunCommit, InASessionResetsTheLinkAfterItsBox) {
  StartSession();
  Click("buttWEEPFerrun");
  ASSERT_NE(BoxInFront(), nullptr);
  // Only a link reset takes new settings to an open port.
  Modcom().Settings = "19200,n,8,1";
  Run(std::chrono::seconds(1));
  EXPECT_EQ(line.Line().baud, 9600);
  AnswerOk();
  EXPECT_EQ(line.Line().baud, 19200);
}

TEST_F(FerrunCommit, InASessionWritesWhatWasEdited) {
  StartSession();
  Choose("comboInputTypeFerrun", 12);
  Choose("comboInputFilterFerrun", 6);
  Choose("comboBaudFerrun", 6);
  Edit("labAddressFerrun", "255");
  Edit("labSafetimeFerrun", "250");
  Edit(Value(5), "-1000");
  Edit(Value(6), "4000");
  Edit(Value(10), "9000");
  Edit(Value(11), "100");
  Edit(Value(12), "55");
  Edit(Value(13), "777");
  Click("CheckResetonTx");
  module.ForgetLog();
  Commit();
  EXPECT_THAT(Exchanges(),
              ElementsAre(Writing(40066, 0x0D06), Writing(40067, 1300), Writing(40068, -200), Writing(40069, 1300),
                          Writing(40070, -200), Writing(40071, 10000), Writing(40072, -1000), Writing(40073, 0x04FF),
                          Writing(40074, 250), Writing(40075, 0x8000), Writing(40076, 4000), Writing(40077, 0),
                          Writing(40078, 0), Writing(40079, 0), Writing(40080, 55), Writing(40081, 9000),
                          Writing(40082, 100), Writing(40083, 777)));
}

TEST_F(FerrunCommit, WritesEachFlagOfTheView) {
  StartSession();
  Click("checkParity");
  Click("OptionOdd");
  Click("checkParity");
  Commit();
  // The kind of parity goes along though parity is off.
  EXPECT_THAT(Exchanges(), Contains(Writing(40075, 0x0010)));
  int word = 0x0010;
  for (const FerrunFlag& flag : kFerrunFlags) {
    Click(flag.box);
    word |= flag.mask;
    module.ForgetLog();
    Commit();
    EXPECT_THAT(Exchanges(), Contains(Writing(40075, word))) << flag.box;
  }
}

TEST_F(FerrunCommit, WritesTheTypeFrom1OnAndTheFilterInOneWord) {
  StartSession();
  for (int type = 0; type < kFerrunInputCount; ++type) {
    Choose("comboInputTypeFerrun", type);
    Choose("comboInputFilterFerrun", type % 7);
    module.ForgetLog();
    Commit();
    EXPECT_THAT(Exchanges(), Contains(Writing(40066, (type + 1) << 8 | type % 7)));
  }
}

TEST_F(FerrunCommit, GivesTheModuleBackAnInputThatTheListsDoNotHave) {
  for (const int word : {0x0000, 0x0003, 0x0E00, 0x010A, 0xFFFF}) {
    Set(kInput, word);
    StartSession();
    Commit();
    EXPECT_THAT(Exchanges(), Contains(Writing(40066, word)));
    Click("StopFerrun");
  }
}

TEST_F(FerrunCommit, WritesTheCodeOfEachRate) {
  StartSession();
  const int codes[] = {6, 7, 0, 1, 2, 3, 4};
  for (int position = 0; position < 7; ++position) {
    Choose("comboBaudFerrun", position);
    module.ForgetLog();
    Commit();
    EXPECT_THAT(Exchanges(), Contains(Writing(40073, codes[position] << 8 | 1)));
  }
}

TEST_F(FerrunCommit, RoundsATextWithADecimalPart) {
  StartSession();
  Edit(Value(13), "12.5");
  Edit(Value(5), "-13.5");
  module.ForgetLog();
  Commit();
  const std::vector<std::string> writes = Exchanges();
  EXPECT_THAT(writes, Contains(Writing(40083, 12)));
  EXPECT_THAT(writes, Contains(Writing(40072, -14)));
}

TEST_F(FerrunCommit, DoesNotTestItsWrites) {
  StartSession();
  module.Always(ModuleFault::Exception(4));
  Commit();
  module.Always(ModuleFault::None());
  EXPECT_TRUE(InSession());
}

// Without a session.

TEST_F(FerrunCommit, OfflineChecksTheModelAndWritesTheView) {
  const std::vector<std::string> writes = GiveTheModuleItsSettings();
  StartSession();
  Click("StopFerrun");
  module.ForgetLog();
  Commit();
  std::vector<std::string> expected = {"reads 40001"};
  expected.insert(expected.end(), writes.begin(), writes.end());
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(expected));
  ExpectOffline();
}

TEST_F(FerrunCommit, OfflineWritesFlagsThatWereClickedWithoutASession) {
  StartSession();
  Click("StopFerrun");
  Click("CheckResetonTx");
  Click("CheckAuto");
  module.ForgetLog();
  Commit();
  EXPECT_THAT(module.TakeLog(), Contains("writes 40075 = 0x8400"));
}

TEST_F(FerrunCommit, OfflineGoesToTheAddressOfThePc) {
  module.Address = 9;
  State().ModuleAddress = 9;
  Edit("labAddressFerrun", "33");
  Commit();
  EXPECT_THAT(module.TakeLog(), Contains("writes 40073 = 0x0121"));
  ExpectOffline();
}

TEST_F(FerrunCommit, OfflineIsRefusedByAnotherModuleOrNone) {
  for (const bool silent : {false, true}) {
    SCOPED_TRACE(silent);
    Set(kIdentity, 0x0303);
    if (silent) module.Always(ModuleFault::Unheard());
    module.ForgetLog();
    Click("buttWEEPFerrun");
    EXPECT_THAT(BoxInFront(), IsBox(kNotAFerrun, view::Icon::kCritical));
    AnswerOk();
    const std::vector<std::string> log = module.TakeLog();
    EXPECT_THAT(log, silent ? testing::Matcher<std::vector<std::string>>(Each(testing::StartsWith("reads 40001")))
                            : testing::Matcher<std::vector<std::string>>(ElementsAre("reads 40001")));
    ExpectOffline();
  }
}

// Reset.

TEST_F(FerrunCommit, ResetInASessionWritesOneTo40022AndEndsTheSession) {
  StartSession();
  Click("buttResetFerrun");
  EXPECT_THAT(BoxInFront(), IsBox(kResetInSession, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40022 = 0x0001"));
  ExpectOffline();
}

TEST_F(FerrunCommit, ResetOfflineChecksTheModelFirst) {
  Click("buttResetFerrun");
  EXPECT_THAT(BoxInFront(), IsBox(kResetDone, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "writes 40022 = 0x0001"));
  ExpectOffline();
}

TEST_F(FerrunCommit, ResetOfflineIsRefusedByAnotherModule) {
  Set(kIdentity, 0x0303);
  Click("buttResetFerrun");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAFerrun, view::Icon::kCritical));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  ExpectOffline();
}

}  // namespace
}  // namespace tarvo::test
