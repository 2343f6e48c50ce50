// What the user changes on the Jorun page, its commit and its reset.

#include "support/jorun_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;

class JorunSettings : public JorunFixture {};

TEST_F(JorunSettings, TakeAnAddressFrom1To255) {
  Click("labAddressJorun");
  EXPECT_EQ(Text("MinValue"), "Min Value :1");
  EXPECT_EQ(Text("MaxValue"), "Max Value :255");
  AnswerChangeValue("256");
  EXPECT_EQ(Text("Text1"), "255");
  AnswerChangeValue("0");
  EXPECT_EQ(Text("Text1"), "1");
  AnswerChangeValue("254");
  EXPECT_EQ(Text("labAddressJorun"), "254");
  ExpectNothingOnTheLine();
}

TEST_F(JorunSettings, KeepTheAddressWhenItsDialogIsCancelled) {
  Click("labAddressJorun");
  Type("ChangeValue.Text1", "99");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text("labAddressJorun"), "1");
}

TEST_F(JorunSettings, AreChosenWithoutAWordOnTheLine) {
  for (int input = 0; input < kInputs; ++input) {
    Choose(TypeList(input), 8 - input);
    Choose(Filter(input), input + 1);
  }
  Choose("cbBaudJorun", 4);
  for (const char* box : {"CheckJorun(0)", "CheckJorun(1)", "CheckJorun(2)", "OptionOdd", "OptionEven"}) Click(box);
  EXPECT_EQ(ListIndex(TypeList(3)), 5);
  EXPECT_EQ(ListIndex(Filter(3)), 4);
  EXPECT_TRUE(Checked("CheckJorun(0)"));
  EXPECT_TRUE(Checked("CheckJorun(1)"));
  EXPECT_TRUE(Checked("CheckJorun(2)"));
  EXPECT_TRUE(Checked("OptionEven"));
  ExpectNothingOnTheLine();
}

TEST_F(JorunSettings, EnableTheKindsOfParityWithTheParityBoxAlone) {
  Click("CheckJorun(0)");
  Click("CheckJorun(1)");
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
  Click("CheckJorun(2)");
  EXPECT_TRUE(Enabled("OptionEven"));
  EXPECT_TRUE(Enabled("OptionOdd"));
  Click("CheckJorun(2)");
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
  EXPECT_FALSE(Checked("CheckJorun(2)"));
}

TEST_F(JorunSettings, KeepTheKindOfParityWhileParityIsOff) {
  Click("CheckJorun(2)");
  Click("OptionOdd");
  EXPECT_FALSE(Checked("OptionEven"));
  Click("CheckJorun(2)");
  EXPECT_TRUE(Checked("OptionOdd"));
}

// Write EEprom.

class JorunCommit : public JorunFixture {};

TEST_F(JorunCommit, WritesThePageAsItBegan) {
  EXPECT_THAT(Commit(), ElementsAre("reads 40001", "writes 40067 = 0x0000", "writes 40068 = 0x0000",
                                    "writes 40069 = 0x0000", "writes 40070 = 0x0000", "writes 40071 = 0x0000",
                                    "writes 40072 = 0x0000", "writes 40073 = 0x0000", "writes 40074 = 0x0000",
                                    "writes 40075 = 0x0000", "writes 40066 = 0x0101"));
  ExpectOffline();
}

TEST_F(JorunCommit, WritesFlagsTypesFiltersAndAddressInThisOrder) {
  for (int input = 0; input < kInputs; ++input) {
    Choose(TypeList(input), 8 - input);
    Choose(Filter(input), input + 1);
  }
  Choose("cbBaudJorun", 4);
  Click("CheckJorun(0)");
  Click("CheckJorun(2)");
  Click("OptionOdd");
  Click("labAddressJorun");
  AnswerChangeValue("200");
  EXPECT_THAT(Commit(), ElementsAre("reads 40001", "writes 40067 = 0x001A", "writes 40068 = 0x0008",
                                    "writes 40069 = 0x0007", "writes 40070 = 0x0006", "writes 40071 = 0x0005",
                                    "writes 40072 = 0x0001", "writes 40073 = 0x0002", "writes 40074 = 0x0003",
                                    "writes 40075 = 0x0004", "writes 40066 = 0x04C8"));
}

TEST_F(JorunCommit, BuildsTheFlagsOfItsFourControlsAlone) {
  const std::pair<int, int> rows[] = {{0x0000, 0x00}, {0x0002, 0x02}, {0x0004, 0x04}, {0x0008, 0x08},
                                      {0x0010, 0x10}, {0xFFE1, 0x00}, {0xFFFF, 0x1E}};
  for (const auto& [live, stored] : rows) {
    Set(kFlags, live);
    StartSession();
    Click("StopJorun");
    const std::vector<std::string> written = Commit();
    ASSERT_GT(written.size(), 1U);
    EXPECT_EQ(written[1], Writing(40067, stored)) << live;
  }
}

TEST_F(JorunCommit, WritesTheCodeOfEachRate) {
  StartSession();
  Click("StopJorun");
  const std::vector<int> codes = ItemData("cbBaudJorun");
  ASSERT_THAT(codes, ElementsAre(6, 7, 0, 1, 2, 3, 4));
  for (std::size_t row = 0; row < codes.size(); ++row) {
    Choose("cbBaudJorun", static_cast<int>(row));
    EXPECT_EQ(Commit().back(), Writing(40066, codes[row] << 8 | 1));
  }
}

TEST_F(JorunCommit, WritesWhatTheLastSessionShowed) {
  Set(kType1 + 1, 4);
  Set(kFilter1 + 2, 6);
  Set(kFlags, 0x0C);
  Set(kStoredCommunication, 0x0307);
  StartSession();
  Click("StopJorun");
  EXPECT_THAT(Commit(), ElementsAre("reads 40001", "writes 40067 = 0x000C", "writes 40068 = 0x0000",
                                    "writes 40069 = 0x0004", "writes 40070 = 0x0000", "writes 40071 = 0x0000",
                                    "writes 40072 = 0x0000", "writes 40073 = 0x0000", "writes 40074 = 0x0006",
                                    "writes 40075 = 0x0000", "writes 40066 = 0x0307"));
}

TEST_F(JorunCommit, HoldsItsButtonsAndThePort) {
  const auto commit = ClickAndGoOn("buttWEEPJorun");
  EXPECT_TRUE(Hourglass());
  EXPECT_FALSE(Enabled("buttResetJorun"));
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  EXPECT_FALSE(Enabled("buttResetJorun"));
  EXPECT_FALSE(InSession());
  AnswerOk();
  ExpectOffline();
}

TEST_F(JorunCommit, SetsThePollAndTheBusAsStartDoes) {
  State().PollCount = 1;
  Modcom().LinkParamB = 1;
  Commit();
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 10);
  EXPECT_EQ(Modcom().LinkParamB(), 3);
}

TEST_F(JorunCommit, DoesNotTestItsWrites) {
  module.Next(ModuleFault::None());
  for (int i = 0; i < 10; ++i) module.Next(ModuleFault::Exception(4));
  EXPECT_EQ(Commit().size(), 11U);
  ExpectOffline();
}

TEST_F(JorunCommit, IsRefusedByAModuleOfAnotherModel) {
  for (const char* button : {"buttWEEPJorun", "buttResetJorun"}) {
    Set(kIdentity, 0x0703);
    module.ForgetLog();
    Click(button);
    EXPECT_THAT(BoxInFront(), IsBox(NotOurs(), view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    ExpectOffline();
  }
}

TEST_F(JorunCommit, IsRefusedWithoutAModule) {
  module.Always(ModuleFault::Unheard());
  for (const char* button : {"buttWEEPJorun", "buttResetJorun"}) {
    Click(button);
    EXPECT_THAT(BoxInFront(), IsBox(NotOurs(), view::Icon::kCritical));
    AnswerOk();
    ExpectOffline();
  }
}

TEST_F(JorunCommit, IsRefusedByAPortThatDoesNotOpen) {
  ports.SetFault(1, core::kPortAlreadyOpen);
  for (const char* button : {"buttWEEPJorun", "buttResetJorun"}) {
    Click(button);
    EXPECT_THAT(BoxInFront(), IsBox(NotOurs(), view::Icon::kCritical));
    AnswerOk();
    ExpectOffline();
  }
}

// Module Reset.

using JorunReset = JorunCommit;

TEST_F(JorunReset, WritesOneToItsOwnRegister) {
  Click("buttResetJorun");
  EXPECT_THAT(BoxInFront(), IsBox("Module is Resetted!", view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "writes 40012 = 0x0001"));
  ExpectOffline();
  StartSession();
}

TEST_F(JorunReset, SetsTheBusUpFirst) {
  Modcom().LinkParamB = 1;
  Click("buttResetJorun");
  EXPECT_EQ(Modcom().LinkParamB(), 3);
  EXPECT_TRUE(PortOpen());
  AnswerOk();
  ExpectOffline();
}

// Calibration entry. What the dialog itself does is tested with it.

class JorunCalibrationEntry : public JorunFixture {
 protected:
  void OpenAndClose() {
    Click(Cal(0));
    ASSERT_EQ(WindowInFront(), "dlgCalForm");
    Click("dlgCalForm.OKButton");
  }
};

TEST_F(JorunCalibrationEntry, HasSevenRatesFromRelease3On) {
  for (const int release : {3, 4, 255}) {
    SetRelease(release);
    OpenAndClose();
    ExpectSevenRates();
  }
}

TEST_F(JorunCalibrationEntry, HasFiveRatesAgainBelowRelease3) {
  for (const int release : {0, 1, 2}) {
    SetRelease(3);
    OpenAndClose();
    ExpectSevenRates();
    SetRelease(release);
    Click(Cal(3));
    AnswerOk();
    ExpectFiveRates();
  }
}

TEST_F(JorunCalibrationEntry, LeavesTheRatesWithAnotherModel) {
  for (const int identity : {0x0C03, 0x0703, 0x8603}) {
    Set(kIdentity, identity);
    Click(Cal(1));
    AnswerOk();
    ExpectFiveRates();
  }
}

TEST_F(JorunCalibrationEntry, LeavesTheRatesWithoutAnAnswer) {
  module.Always(ModuleFault::Unheard());
  Click(Cal(2));
  AnswerOk();
  ExpectFiveRates();
}

TEST_F(JorunCalibrationEntry, SparesStartTheVersion) {
  SetRelease(2);
  Click("buttCal(0)");
  AnswerOk();
  module.ForgetLog();
  Click("StartJorun");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001", "reads 40002 x10", "reads 40066"));
}

TEST_F(JorunCalibrationEntry, IsLockedInASession) {
  StartSession();
  for (int input = 0; input < kInputs; ++input) EXPECT_NE(RefusalOf(Cal(input)), "");
}

}  // namespace
}  // namespace tarvo::test
