#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::FileOf;
using testing::ElementsAre;

/// The box that stands for a bit.
struct Flag {
  const char* box;
  int mask;
};
constexpr Flag kFlags[] = {{"CheckKelmar(0)", 0x0002},     {"CheckKelmar(1)", 0x0100}, {"CheckKelmar(2)", 0x0200},
                           {"CheckKelmar(3)", 0x0400},     {"CheckKelmar(4)", 0x0800}, {"CheckKelmar(5)", 0x1000},
                           {"CheckKelmarBitOrder", 0x4000}};

class KelmarFile : public test::PageFileFixture {
 protected:
  KelmarFile() { OpenPage("Kelmar"); }
  void LoadFlags(const std::string& flags) { LoadFields("Kelmar", FieldsWith("Kelmar", 1, flags)); }
  std::string SavedFlags() {
    Save();
    return FileField(1);
  }
  std::vector<int> Positions(const std::string& lists) const {
    std::vector<int> positions;
    for (int i = 0; i < 4; ++i) positions.push_back(ListIndex(Member(lists, i)));
    return positions;
  }
};

TEST_F(KelmarFile, HoldsTheFirstViewInQuotedLines) {
  EXPECT_EQ(Save(),
            "\"DATAFORMAT 1.0 Kelmar\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n"
            "\"0\"\r\n");
}

TEST_F(KelmarFile, HoldsWhatTheUserHasSet) {
  Click("CheckKelmar(0)");
  Click("CheckKelmar(3)");
  Click("CheckKelmarBitOrder");
  for (int i = 0; i < 4; ++i) {
    Choose(Member("InputTypeKelmar", i), 8 - i);
    Choose(Member("FilterKelmar", i), 3 + i);
  }
  EXPECT_EQ(Save(), FileOf("Kelmar", {"17410", "8", "7", "6", "5", "3", "4", "5", "6"}));
}

TEST_F(KelmarFile, HoldsWhatASessionRead) {
  module[40003] = 0xFFFF;
  for (int i = 0; i < 4; ++i) {
    module[40004 + i] = static_cast<std::uint16_t>(i + 5);
    module[40008 + i] = static_cast<std::uint16_t>(6 - i);
  }
  RunSession("Kelmar", 12);
  EXPECT_EQ(Save(), FileOf("Kelmar", {"24322", "5", "6", "7", "8", "6", "5", "4", "3"}));
}

TEST_F(KelmarFile, HasABitForEachBoxThatTheUserSets) {
  int word = 0;
  for (const Flag& flag : kFlags) {
    Click(flag.box);
    word |= flag.mask;
    EXPECT_EQ(SavedFlags(), std::to_string(word)) << flag.box;
  }
}

TEST_F(KelmarFile, SetsEachBoxByItsBit) {
  for (const Flag& flag : kFlags) {
    LoadFlags(std::to_string(flag.mask));
    for (const Flag& other : kFlags) EXPECT_EQ(Checked(other.box), other.mask == flag.mask) << flag.mask << other.box;
  }
}

TEST_F(KelmarFile, LooksAtNoOtherBit) {
  LoadFlags("24322");
  LoadFlags("41213");  // 0xA0FD
  for (const Flag& flag : kFlags) EXPECT_FALSE(Checked(flag.box)) << flag.box;
  EXPECT_EQ(SavedFlags(), "0");
}

TEST_F(KelmarFile, TakesANegativeWordByItsBits) {
  LoadFlags("-1");
  for (const Flag& flag : kFlags) EXPECT_TRUE(Checked(flag.box)) << flag.box;
}

TEST_F(KelmarFile, DoesNotHoldWhetherTheDataAreRaw) {
  Click("OptionKelmar2");
  ASSERT_TRUE(Checked("OptionKelmar2"));
  EXPECT_EQ(SavedFlags(), "0");
}

TEST_F(KelmarFile, LeavesRawAndScaledAsTheyAre) {
  LoadFlags("8192");
  EXPECT_TRUE(Checked("OptionKelmar1"));
  EXPECT_FALSE(Checked("OptionKelmar2"));
  Click("OptionKelmar2");
  LoadFlags("0");
  EXPECT_FALSE(Checked("OptionKelmar1"));
  EXPECT_TRUE(Checked("OptionKelmar2"));
}

TEST_F(KelmarFile, ShowsItsTypesAndFilters) {
  LoadFields("Kelmar", {"0", "8", "0", "3", "1", "6", "0", "2", "1"});
  EXPECT_THAT(Positions("InputTypeKelmar"), ElementsAre(8, 0, 3, 1));
  EXPECT_THAT(Positions("FilterKelmar"), ElementsAre(6, 0, 2, 1));
}

TEST_F(KelmarFile, SetsTheFullScalesOfItsTypes) {
  LoadFields("Kelmar", {"0", "8", "0", "3", "1", "6", "0", "2", "1"});
  EXPECT_THAT(State().FullScaleTC, ElementsAre(13000, 16000, 17500, 10000));
}

TEST_F(KelmarFile, KeepsTheControlsThatWereSetBeforeAFault) {
  Load(FileOf("Kelmar", {"512", "8", "TC-K", "3", "1", "6", "0", "2", "1"}));
  EXPECT_THAT(BoxInFront(), test::IsBox(core::kTypeMismatch, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_TRUE(Checked("CheckKelmar(2)"));
  EXPECT_THAT(Positions("InputTypeKelmar"), ElementsAre(8, 0, 0, 0));
  EXPECT_THAT(Positions("FilterKelmar"), ElementsAre(0, 0, 0, 0));
}

TEST_F(KelmarFile, LeavesTheLiveValuesAlone) {
  module[40012] = 0x1100;
  for (int i = 0; i < 4; ++i) module[40013 + i] = static_cast<std::uint16_t>(8000 + i);
  RunSession("Kelmar", 12);
  const View before = ViewOf("Kelmar");
  LoadFields("Kelmar", test::FilePageOf("Kelmar").fields);
  const View after = ViewOf("Kelmar");
  for (int i = 0; i < 4; ++i) {
    for (const std::string& value :
         {Member("ValueKelmar", i) + ".Caption", Member("BargKelmar", i) + ".Percent",
          Member("OverflowKelmar", i) + ".BackColor", Member("OverflowKelmar", i + 4) + ".BackColor"}) {
      EXPECT_EQ(after.at(value), before.at(value)) << value;
    }
  }
}

TEST_F(KelmarFile, GoesToTheModuleByTheCommit) {
  LoadFields("Kelmar", test::FilePageOf("Kelmar").fields);
  module[40001] = 0x0C03;
  module.ForgetLog();
  Click("WEEPKelmar");
  AnswerOk();
  EXPECT_THAT(TakeExchanges("reads 40001"),
              ElementsAre("writes 40067 = 0x5302", "writes 40068 = 0x0008", "writes 40069 = 0x0000",
                          "writes 40070 = 0x0003", "writes 40071 = 0x0001", "writes 40072 = 0x0006",
                          "writes 40073 = 0x0000", "writes 40074 = 0x0002", "writes 40075 = 0x0001"));
}

}  // namespace
}  // namespace tarvo
