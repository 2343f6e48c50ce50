#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::FileOf;
using testing::ElementsAre;

/// The control that stands for a bit.
struct Flag {
  const char* control;
  int mask;
};
constexpr Flag kFlags[] = {{"CheckHollin(0)", 0x0002}, {"CheckHollin(1)", 0x0100},     {"CheckHollin(2)", 0x0200},
                           {"CheckHollin(3)", 0x0400}, {"CheckHollin(4)", 0x0800},     {"CheckHollin(5)", 0x1000},
                           {"OptionHollin2", 0x2000},  {"CheckHollinBitOrder", 0x4000}};

class HollinFile : public test::PageFileFixture {
 protected:
  static constexpr std::size_t kFlagsField = 2;
  static constexpr int kScaled[] = {2, 5, 9, 13};
  static constexpr int kRaw[] = {3, 4, 8, 12};

  HollinFile() { OpenPage("Hollin"); }
  void LoadFlags(const std::string& flags) { LoadFields("Hollin", FieldsWith("Hollin", kFlagsField, flags)); }
  std::string SavedField(std::size_t number) {
    Save();
    return FileField(number);
  }
  /// A session of a module whose live values, lamps and bars are not 0.
  void RunLiveSession() {
    module[40016] = 0x2100;
    for (int i = 0; i < 8; ++i) module[40017 + i] = static_cast<std::uint16_t>(5000 + i);
    RunSession("Hollin", 11);
  }
};

TEST_F(HollinFile, HoldsTheFirstViewInQuotedLines) {
  EXPECT_EQ(Save(),
            "\"DATAFORMAT 1.0 Hollin\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n"
            "\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n");
}

TEST_F(HollinFile, HoldsWhatTheUserHasSet) {
  Click("CheckHollin(0)");
  Click("CheckHollin(4)");
  Click("OptionHollin2");
  for (int i = 0; i < 4; ++i) Choose(Member("FilterHollin", i), i + 2);
  for (const int index : {1, 7, 11, 15, 0, 6, 10, 14}) {
    Edit(Member("ValueHollin", index), std::to_string(-100 - index));
  }
  EXPECT_EQ(Save(), FileOf("Hollin", {"0", "10242", "2", "3", "4", "5", "-101", "-107", "-111", "-115", "-100", "-106",
                                      "-110", "-114"}));
}

TEST_F(HollinFile, HoldsWhatASessionRead) {
  module[40002] = 0x0342;
  module[40003] = 0xFFFF;
  for (int i = 0; i < 4; ++i) {
    module[40004 + i] = static_cast<std::uint16_t>(6 - i);
    module[40008 + i] = static_cast<std::uint16_t>(10000 - i);
    module[40012 + i] = static_cast<std::uint16_t>(0xFFFF - i);
  }
  RunSession("Hollin", 11);
  EXPECT_EQ(Save(), FileOf("Hollin", {"0", "32514", "6", "5", "4", "3", "10000", "9999", "9998", "9997", "-1", "-2",
                                      "-3", "-4"}));
}

TEST_F(HollinFile, BeginsWithAZeroWhateverTheModulesState) {
  module[40002] = 0x0342;
  module[40066] = 0x0342;
  RunSession("Hollin", 11);
  SetBuffer(0, 785);
  EXPECT_EQ(SavedField(1), "0");
  LoadFields("Hollin", FieldsWith("Hollin", 1, "785"));
  EXPECT_EQ(FileField(1), "785");
  EXPECT_EQ(SavedField(1), "0");
}

TEST_F(HollinFile, HasABitForEachControlThatTheUserSets) {
  int word = 0;
  for (const Flag& flag : kFlags) {
    Click(flag.control);
    word |= flag.mask;
    EXPECT_EQ(SavedField(kFlagsField), std::to_string(word)) << flag.control;
  }
}

TEST_F(HollinFile, SetsEachControlByItsBit) {
  for (const Flag& flag : kFlags) {
    LoadFlags(std::to_string(flag.mask));
    for (const Flag& other : kFlags) {
      EXPECT_EQ(Checked(other.control), other.mask == flag.mask) << flag.mask << other.control;
    }
  }
}

TEST_F(HollinFile, SelectsScaledWhereItsBitSaysNotRaw) {
  LoadFlags("8192");
  EXPECT_TRUE(Checked("OptionHollin2"));
  EXPECT_FALSE(Checked("OptionHollin1"));
  LoadFlags("0");
  EXPECT_FALSE(Checked("OptionHollin2"));
  EXPECT_TRUE(Checked("OptionHollin1"));
}

TEST_F(HollinFile, LooksAtNoOtherBit) {
  LoadFlags("32514");
  LoadFlags("33021");  // 0x80FD
  for (const Flag& flag : kFlags) EXPECT_FALSE(Checked(flag.control)) << flag.control;
  EXPECT_EQ(SavedField(kFlagsField), "0");
}

TEST_F(HollinFile, TakesANegativeWordByItsBits) {
  LoadFlags("-1");
  for (const Flag& flag : kFlags) EXPECT_TRUE(Checked(flag.control)) << flag.control;
}

TEST_F(HollinFile, ShowsItsFields) {
  LoadFields("Hollin", {"0", "0", "1", "2", "6", "0", "10000", "-10000", "500", "7", "-1", "3", "-9999", "1"});
  const std::vector<int> filters = {1, 2, 6, 0};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(ListIndex(Member("FilterHollin", i)), filters.at(static_cast<std::size_t>(i)));
  const std::vector<std::pair<int, std::string>> expected = {{1, "10000"}, {7, "-10000"}, {11, "500"},   {15, "7"},
                                                             {0, "-1"},    {6, "3"},      {10, "-9999"}, {14, "1"}};
  for (const auto& [index, text] : expected) EXPECT_EQ(Text(Member("ValueHollin", index)), text) << index;
}

TEST_F(HollinFile, ZeroesTheLiveValues) {
  RunLiveSession();
  ASSERT_EQ(Text("ValueGaven(2)"), "5000");
  ASSERT_EQ(Text("ValueHollin(12)"), "5007");
  LoadFields("Hollin", test::FilePageOf("Hollin").fields);
  for (const int index : kScaled) EXPECT_EQ(Text(Member("ValueGaven", index)), "0") << index;
  for (const int index : kRaw) EXPECT_EQ(Text(Member("ValueHollin", index)), "0") << index;
}

TEST_F(HollinFile, DarkensTheLamps) {
  RunLiveSession();
  const auto isLit = [this](int lamp) { return BackColor(Member("OverflowHollin", lamp)) == 255; };
  int lit = 0;
  for (int lamp = 0; lamp < 8; ++lamp) lit += isLit(lamp) ? 1 : 0;
  ASSERT_EQ(lit, 2);
  LoadFields("Hollin", test::FilePageOf("Hollin").fields);
  for (int lamp = 0; lamp < 8; ++lamp) EXPECT_EQ(BackColor(Member("OverflowHollin", lamp)), 64) << lamp;
}

TEST_F(HollinFile, LeavesTheBarsAlone) {
  RunLiveSession();
  const View before = ViewOf("Hollin");
  ASSERT_NE(Percent("BargHollin(0)"), 0);
  LoadFields("Hollin", test::FilePageOf("Hollin").fields);
  const View after = ViewOf("Hollin");
  for (int i = 0; i < 4; ++i) {
    const std::string bar = Member("BargHollin", i) + ".Percent";
    EXPECT_EQ(after.at(bar), before.at(bar));
  }
}

TEST_F(HollinFile, FillsThePollBufferInTwoSteps) {
  for (unsigned i = 0; i < 20; ++i) SetBuffer(i, 1000 + i);
  LoadFields("Hollin", {"785", "25602", "1", "2", "6", "0", "10000", "-10000", "500", "7", "-1", "3", "-9999", "1"});
  const std::vector<int> expected = {3, 0xD8F1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(Buffer(i), expected[i]) << i;
  for (std::size_t i = expected.size(); i < 20; ++i) EXPECT_EQ(Buffer(i), static_cast<int>(1000 + i));
}

TEST_F(HollinFile, KeepsItsFirstStepWhenAFieldOfTheSecondIsNoNumber) {
  RunLiveSession();
  Load(FileOf("Hollin", {"0", "2", "1", "2", "6", "0", "10000", "-10000", "500", "7", "-1", "low", "-9999", "1"}));
  EXPECT_THAT(BoxInFront(), test::IsBox(core::kTypeMismatch, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_TRUE(Checked("CheckHollin(0)"));
  EXPECT_EQ(ListIndex("FilterHollin(2)"), 6);
  EXPECT_EQ(Text("ValueHollin(1)"), "10000");
  EXPECT_EQ(Text("ValueHollin(0)"), "-1");
  EXPECT_EQ(Text("ValueHollin(6)"), "0");
  EXPECT_EQ(Text("ValueGaven(2)"), "5000");
}

TEST_F(HollinFile, ChangesNothingOnThePageWhenAFieldOfTheFirstStepIsNoNumber) {
  const View before = ViewOf("Hollin");
  Load(FileOf("Hollin", FieldsWith("Hollin", 11, "low")));
  EXPECT_THAT(BoxInFront(), test::IsBox(core::kTypeMismatch, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(ViewOf("Hollin"), before);
}

TEST_F(HollinFile, GoesToTheModuleByTheCommit) {
  LoadFields("Hollin", test::FilePageOf("Hollin").fields);
  module[40001] = 0x0B03;
  module.ForgetLog();
  Click("WEEPHollin");
  AnswerOk();
  EXPECT_THAT(
      TakeExchanges("reads 40001"),
      ElementsAre("writes 40067 = 0x6402", "writes 40068 = 0x0001", "writes 40069 = 0x0002", "writes 40070 = 0x0006",
                  "writes 40071 = 0x0000", "writes 40072 = 0x2710", "writes 40073 = 0xD8F0", "writes 40074 = 0x01F4",
                  "writes 40075 = 0x0007", "writes 40076 = 0xFFFF", "writes 40077 = 0x0000", "writes 40078 = 0xD8F1",
                  "writes 40079 = 0x0001"));
}

}  // namespace
}  // namespace tarvo
