// What the user sets on the Kelmar page, its commit, its calibration entry, and what the search makes it read.

#include "support/kelmar_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;

// Write EEprom.

class KelmarCommit : public KelmarFixture {};

TEST_F(KelmarCommit, WritesFlagsTypesAndFiltersInTheirOrder) {
  for (int input = 0; input < kInputs; ++input) {
    Choose(TypeList(input), 8 - input);
    Choose(Filter(input), input + 1);
  }
  for (const char* box : {"CheckKelmar(0)", "CheckKelmar(3)", "CheckKelmar(5)", "CheckKelmarBitOrder"}) Click(box);
  EXPECT_THAT(Commit(),
              ElementsAre("reads 40001", "writes 40067 = 0x5402", "writes 40068 = 0x0008", "writes 40069 = 0x0007",
                          "writes 40070 = 0x0006", "writes 40071 = 0x0005", "writes 40072 = 0x0001",
                          "writes 40073 = 0x0002", "writes 40074 = 0x0003", "writes 40075 = 0x0004"));
}

TEST_F(KelmarCommit, WritesTheLowestValuesBeforeAnythingWasRead) {
  std::vector<std::string> expected = {"reads 40001"};
  for (int number = 40067; number <= 40075; ++number) expected.push_back(Writing(number, 0));
  EXPECT_THAT(Commit(), ElementsAreArray(expected));
}

TEST_F(KelmarCommit, StoresNoKindOfData) {
  Set(kFlags, 0x6F02);
  ReadModule();
  ASSERT_TRUE(Checked("OptionKelmar2"));
  Commit();
  EXPECT_EQ(module[kStoredFlags], 0x4F02);
  Click("OptionKelmar1");
  Commit();
  EXPECT_EQ(module[kStoredFlags], 0x4F02);
}

TEST_F(KelmarCommit, WritesEachListToItsOwnImage) {
  for (int input = 0; input < kInputs; ++input) {
    Choose(TypeList(input), 7);
    Choose(Filter(input), 5);
    const std::vector<std::string> written = Commit();
    for (int other = 0; other < kInputs; ++other) {
      EXPECT_THAT(written, Contains(Writing(40068 + other, other == input ? 7 : 0)));
      EXPECT_THAT(written, Contains(Writing(40072 + other, other == input ? 5 : 0)));
    }
    Choose(TypeList(input), 0);
    Choose(Filter(input), 0);
  }
}

TEST_F(KelmarCommit, LeavesAllLiveRegisters) {
  Set(kType1, 3);
  Choose(TypeList(0), 5);
  Commit();
  EXPECT_EQ(module[kType1], 3);
  EXPECT_EQ(module[40068], 5);
}

TEST_F(KelmarCommit, WritesWhatTheLastSessionShowed) {
  Set(kType1 + 1, 4);
  Set(kFilter1 + 2, 6);
  Set(kFlags, 0x0C00);
  ReadModule();
  EXPECT_THAT(Commit(),
              ElementsAre("reads 40001", "writes 40067 = 0x0C00", "writes 40068 = 0x0000", "writes 40069 = 0x0004",
                          "writes 40070 = 0x0000", "writes 40071 = 0x0000", "writes 40072 = 0x0000",
                          "writes 40073 = 0x0000", "writes 40074 = 0x0006", "writes 40075 = 0x0000"));
}

TEST_F(KelmarCommit, TakesWhatWasChosenWithoutAWordOnTheLine) {
  for (int input = 0; input < kInputs; ++input) {
    Choose(TypeList(input), 8 - input);
    Choose(Filter(input), input + 1);
  }
  EXPECT_EQ(ListIndex(TypeList(3)), 5);
  EXPECT_EQ(ListIndex(Filter(3)), 4);
  ExpectNothingOnTheLine();
}

// Calibration entry. What the dialog itself does is tested with it.

class KelmarCalibrationEntry : public KelmarFixture {};

TEST_F(KelmarCalibrationEntry, GivesTheDialogTheRegistersOfItsInput) {
  for (int input = 0; input < kInputs; ++input) {
    Set(40021 + input, 10 + input);
    Set(40025 + input, 9000 + input);
    Click(Cal(input));
    module.ForgetLog();
    Run(core::milliseconds(1200));
    EXPECT_THAT(module.TakeLog(),
                ElementsAre("reads " + std::to_string(40021 + input), "reads " + std::to_string(40025 + input)));
    EXPECT_EQ(Text("dlgCalForm.tbZero"), std::to_string(10 + input));
    EXPECT_EQ(Text("dlgCalForm.tbSpan"), std::to_string(9000 + input));
    Click("dlgCalForm.OKButton");
  }
}

TEST_F(KelmarCalibrationEntry, BeginsWithEmptyFieldsEachTime) {
  Click(Cal(0));
  Run(core::milliseconds(1200));
  ASSERT_EQ(Text("dlgCalForm.tbSpan"), "10000");
  Type("dlgCalForm.tbValueToSet(0)", "5");
  Click("dlgCalForm.OKButton");
  Click(Cal(0));
  for (const char* field : {"tbSpan", "tbZero", "tbValueToSet(0)"}) {
    EXPECT_EQ(Text(std::string("dlgCalForm.") + field), "") << field;
  }
}

// The search.

class KelmarFound : public KelmarFixture {
 protected:
  KelmarFound() { module.Line.baud = 38400; }

  /// A search that finds the module; gives what went over the line.
  std::vector<std::string> Search() {
    Click("LabHome");
    module.ForgetLog();
    Click("MDIForm1.buttCheckDevice");
    RunUntilIdle();
    return module.TakeLog();
  }
};

TEST_F(KelmarFound, ReadsTypesFlagsTypesAndFiltersAndNoStoredAddress) {
  EXPECT_THAT(Search(), ElementsAre("reads 40001", "reads 40004", "reads 40005", "reads 40006", "reads 40007",
                                    "reads 40003", "reads 40004", "reads 40005", "reads 40006", "reads 40007",
                                    "reads 40008", "reads 40009", "reads 40010", "reads 40011"));
}

TEST_F(KelmarFound, IsOnItsPageWithoutASession) {
  Search();
  EXPECT_EQ(Page().Name(), "Kelmar");
  EXPECT_EQ(State().NrFinestra, 7);
  EXPECT_EQ(State().FamilyShown, state::kFalse);
  EXPECT_EQ(Panel(2), "Connected to Kelmar, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Panel(1), "Load Kelmar window");
  ExpectOffline();
  StartSession();
  EXPECT_EQ(Panel(2), "");
}

TEST_F(KelmarFound, ShowsWhatItReads) {
  for (int input = 0; input < kInputs; ++input) {
    Set(kType1 + input, 8 - input);
    Set(kFilter1 + input, 6 - input);
  }
  Set(kFlags, 0x7502);
  Search();
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_EQ(ListIndex(TypeList(input)), 8 - input);
    EXPECT_EQ(ListIndex(Filter(input)), 6 - input);
  }
  EXPECT_THAT(State().FullScaleTC, ElementsAre(13000, 8000, 18000, 4000));
  const std::array boxes = {true, true, false, true, false, true};
  for (int i = 0; i < kBoxes; ++i) EXPECT_EQ(Checked(Box(i)), boxes.at(static_cast<std::size_t>(i))) << i;
  EXPECT_TRUE(Checked("OptionKelmar2"));
  EXPECT_FALSE(Checked("OptionKelmar1"));
  EXPECT_TRUE(Checked("CheckKelmarBitOrder"));
}

TEST_F(KelmarFound, KeepsTheFlagsWhenTheirReadIsRefused) {
  Click("CheckKelmar(5)");
  Set(kFlags, 0x4F02);
  // The identity and four types come before the flags.
  for (int i = 0; i < 5; ++i) module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(2));
  Search();
  EXPECT_TRUE(Checked("CheckKelmar(5)"));
  for (int i = 0; i < 5; ++i) EXPECT_FALSE(Checked(Box(i))) << i;
  EXPECT_FALSE(Checked("CheckKelmarBitOrder"));
}

}  // namespace
}  // namespace tarvo::test
