// What the user edits on the Hollin page, and its commit.

#include "support/hollin_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// A start or full scale, by its element of `ValueHollin`.
class HollinScale : public HollinFixture, public testing::WithParamInterface<int> {
 protected:
  std::string Scale() const { return Value(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Elements, HollinScale, testing::Values(0, 1, 6, 7, 10, 11, 14, 15));

TEST_P(HollinScale, HasItsBounds) {
  Click(Scale());
  ASSERT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(Text("MinValue"), "Min Value :-10000");
  EXPECT_EQ(Text("MaxValue"), "Max Value :10000");
  AnswerChangeValue("10001");
  EXPECT_EQ(Text("Text1"), "10000");
  AnswerChangeValue("-10001");
  EXPECT_EQ(Text("Text1"), "-10000");
  Click("ChangeValue.OK");
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text(Scale()), "-10000");
}

TEST_P(HollinScale, IsEditedOnThePageAlone) {
  Click(Scale());
  AnswerChangeValue("-123");
  for (int i = 0; i < kElements; ++i) EXPECT_EQ(Text(Value(i)), i == GetParam() ? "-123" : "0") << i;
  ExpectNothingOnTheLine();
}

TEST_P(HollinScale, IsLockedInASession) {
  StartSession();
  EXPECT_EQ(RefusalOf(Scale()), Scale() + " is disabled");
  EXPECT_TRUE(NothingInFront());
}

TEST_P(HollinScale, IsLeftAsItIsWhenTheDialogIsCancelled) {
  Click(Scale());
  Type("ChangeValue.Text1", "99");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text(Scale()), "0");
}

/// What is measured, by its element.
class HollinMeasured : public HollinFixture, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Elements, HollinMeasured, testing::Values(2, 3, 4, 5, 8, 9, 12, 13));

TEST_P(HollinMeasured, IsNotEdited) {
  for (const bool session : {false, true}) {
    if (session) StartSession();
    program.GetScreen().Click(At(Value(GetParam())));
    Run(std::chrono::seconds(1));
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(Text(Value(GetParam())), "0");
    EXPECT_THAT(Exchanges(), IsEmpty());
  }
}

// Write EEprom.

class HollinCommit : public HollinFixture {
 protected:
  /// A commit without a session up to its box, and the answer to it; gives what went over the line.
  std::vector<std::string> Commit() {
    module.ForgetLog();
    Click("WEEPHollin");
    EXPECT_THAT(BoxInFront(), IsBox("EEProm updated! Please reset module to apply changes.", view::Icon::kInformation));
    std::vector<std::string> exchanges = module.TakeLog();
    AnswerOk();
    return exchanges;
  }
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

struct ImageCase {
  const char* control;
  int image;
};
constexpr ImageCase kScaleImages[] = {{"ValueHollin(1)", 40072},  {"ValueHollin(7)", 40073}, {"ValueHollin(11)", 40074},
                                      {"ValueHollin(15)", 40075}, {"ValueHollin(0)", 40076}, {"ValueHollin(6)", 40077},
                                      {"ValueHollin(10)", 40078}, {"ValueHollin(14)", 40079}};

TEST_F(HollinCommit, WritesEachScaleToItsOwnImage) {
  for (const ImageCase& row : kScaleImages) {
    SCOPED_TRACE(row.control);
    Edit(row.control, "4660");
    const std::vector<std::string> written = Commit();
    for (const ImageCase& other : kScaleImages) {
      EXPECT_THAT(written, Contains(Writing(other.image, other.image == row.image ? 4660 : 0)));
    }
    Edit(row.control, "0");
  }
}

TEST_F(HollinCommit, WritesANegativeScaleWith65536Added) {
  const std::pair<const char*, int> rows[] = {{"-1", 65535}, {"-10000", 55536}, {"10000", 10000}, {"+7", 7}};
  for (const auto& [text, word] : rows) {
    Edit("ValueHollin(0)", text);
    EXPECT_EQ(Committed(40076), word) << text;
  }
}

TEST_F(HollinCommit, RoundsADecimalTextWithTiesToEven) {
  const std::pair<const char*, int> rows[] = {{"12.4", 12}, {"12.5", 12}, {"13,5", 14}, {"-1.5", 0xFFFE}};
  for (const auto& [text, word] : rows) {
    Edit("ValueHollin(7)", text);
    EXPECT_EQ(Committed(40073), word) << text;
  }
}

TEST_F(HollinCommit, WritesEachFilterToItsOwnImage) {
  for (int i = 0; i < kInputs; ++i) {
    for (const int level : {6, 1, 0}) {
      Choose(Filter(i), level);
      const std::vector<std::string> written = Commit();
      for (int j = 0; j < kInputs; ++j) {
        EXPECT_THAT(written, Contains(Writing(40068 + j, j == i ? level : 0))) << i << ' ' << j;
      }
    }
  }
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
