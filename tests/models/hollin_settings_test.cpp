// What the user edits on the Hollin page, and its commit.

#include "support/hollin_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAreArray;

class HollinScale : public HollinFixture {};

TEST_F(HollinScale, IsLockedInASession) {
  StartSession();
  for (const Row& row : kRows) {
    for (const std::string& scale : {Value(row.start), Value(row.full)}) {
      EXPECT_EQ(RefusalOf(scale), scale + " is disabled");
      EXPECT_TRUE(NothingInFront());
    }
  }
}

// Write EEprom.

class HollinCommit : public HollinFixture {
 protected:
  int Committed(int number) {
    Commit();
    return module[number];
  }
  void Edit(const std::string& label, const char* text) {
    Click(label);
    AnswerChangeValue(text);
  }
};

TEST_F(HollinCommit, WritesAllImagesInTheirOrder) {
  Set(kFlags, 0xB802);
  for (int i = 0; i < kInputs; ++i) {
    Set(kFilter1 + i, 6 - i);
    Set(kFullScale1 + i, 1000 * (i + 1));
    Set(kStartScale1 + i, -1 - i);
  }
  ReadModule();
  EXPECT_THAT(Commit(), ElementsAreArray({"reads 40001", "writes 40067 = 0x3802", "writes 40068 = 0x0006",
                                          "writes 40069 = 0x0005", "writes 40070 = 0x0004", "writes 40071 = 0x0003",
                                          "writes 40072 = 0x03E8", "writes 40073 = 0x07D0", "writes 40074 = 0x0BB8",
                                          "writes 40075 = 0x0FA0", "writes 40076 = 0xFFFF", "writes 40077 = 0xFFFE",
                                          "writes 40078 = 0xFFFD", "writes 40079 = 0xFFFC"}));
}

TEST_F(HollinCommit, WritesTheLowestValuesBeforeAnythingWasRead) {
  std::vector<std::string> expected = {"reads 40001"};
  for (int number = 40067; number <= 40079; ++number) expected.push_back(Writing(number, 0));
  EXPECT_THAT(Commit(), ElementsAreArray(expected));
}

TEST_F(HollinCommit, StoresRawDataWithStatusAndInputs) {
  for (const char* control : {"OptionHollin2", "CheckHollin(5)", "CheckHollin(1)", "CheckHollin(3)"}) Click(control);
  EXPECT_EQ(Committed(kStoredFlags), 8192 + 4096 + 256 + 1024);
  Click("OptionHollin1");
  EXPECT_EQ(Committed(kStoredFlags), 4096 + 256 + 1024);
}

TEST_F(HollinCommit, ChangesNoLiveRegister) {
  Set(kStartScale1, 3);
  Set(kFilter1, 6);
  Edit("ValueHollin(0)", "5");
  Choose(Filter(0), 2);
  Commit();
  EXPECT_EQ(module[kStartScale1], 3);
  EXPECT_EQ(module[kFilter1], 6);
  EXPECT_EQ(module[40076], 5);
  EXPECT_EQ(module[40068], 2);
}

}  // namespace
}  // namespace tarvo::test
