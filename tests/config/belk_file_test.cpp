#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::FileOf;
using testing::ElementsAre;

class BelkFile : public test::PageFileFixture {
 protected:
  BelkFile() {
    module[40008] = 10;
    module[40010] = 0x0101;
    OpenPage("Belk");
  }
};

TEST_F(BelkFile, HoldsTheFirstViewInQuotedLines) {
  EXPECT_EQ(Save(), "\"DATAFORMAT 1.0 Belk\"\r\n\"1\"\r\n\"0\"\r\n\"257\"\r\n");
}

TEST_F(BelkFile, HoldsWhatASessionRead) {
  module[40008] = 254;
  module[40009] = 0x80FF;
  module[40010] = 0x0211;
  RunSession("Belk", 1);
  EXPECT_EQ(Save(), FileOf("Belk", {"254", "33023", "529"}));
}

TEST_F(BelkFile, HoldsWhatTheUserHasSet) {
  Edit("FilterBelk", "200");
  Edit("AddressBelk", "255");
  Choose("BaudBelk", 4);
  EXPECT_EQ(Save(), FileOf("Belk", {"200", "0", "1279"}));
}

TEST_F(BelkFile, HoldsTheCodeOfTheSpeedNotItsPosition) {
  RunSession("Belk", 1);
  Choose("BaudBelk", 0);
  EXPECT_EQ(Save(), FileOf("Belk", {"10", "0", "1537"}));
  Choose("BaudBelk", 1);
  EXPECT_EQ(Save(), FileOf("Belk", {"10", "0", "1793"}));
  Choose("BaudBelk", 2);
  EXPECT_EQ(Save(), FileOf("Belk", {"10", "0", "1"}));
}

TEST_F(BelkFile, HoldsTheFilterAsTypedAndTheAddressAsItsInteger) {
  Edit("FilterBelk", "12.4");
  Edit("AddressBelk", "13.5");
  EXPECT_EQ(Save(), FileOf("Belk", {"12.4", "0", "270"}));
}

TEST_F(BelkFile, HoldsAFlagClickedOffline) {
  Click("CheckBelk2");
  Click("CheckBelk1");
  EXPECT_EQ(Save(), FileOf("Belk", {"1", "129", "257"}));
  Click("CheckBelk2");
  EXPECT_EQ(Save(), FileOf("Belk", {"1", "128", "257"}));
}

TEST_F(BelkFile, HoldsTheFlagsOfThePollNotTheBoxes) {
  SetBuffer(7, 0x4040);
  EXPECT_EQ(Save(), FileOf("Belk", {"1", "16448", "257"}));
  EXPECT_FALSE(Checked("CheckBelk1"));
}

TEST_F(BelkFile, HoldsAsFlagsWhatAnotherPagesFileLeft) {
  OpenPage("Dravo");
  LoadFields("Dravo", test::FilePageOf("Dravo").fields);
  OpenPage("Belk");
  EXPECT_EQ(Save(), FileOf("Belk", {"1", "1047", "257"}));
}

TEST_F(BelkFile, ShowsItsFields) {
  LoadFields("Belk", {"200", "169", "785"});
  EXPECT_EQ(Text("FilterBelk"), "200");
  EXPECT_EQ(Text("AddressBelk"), "17");
  EXPECT_EQ(Text("BaudBelk"), "38400");
  EXPECT_TRUE(Checked("CheckBelk2"));
  EXPECT_FALSE(Checked("CheckBelk4"));
  EXPECT_FALSE(Checked("CheckBelk5"));
  EXPECT_TRUE(Checked("CheckBelk6"));
  EXPECT_TRUE(Checked("CheckBelk3"));
  EXPECT_TRUE(Checked("CheckBelk1"));
  EXPECT_TRUE(Visible("LabelFASTBelk"));
  EXPECT_TRUE(Checked("OptionBelk1"));
  EXPECT_TRUE(Enabled("OptionBelk1"));
  EXPECT_TRUE(Enabled("OptionBelk2"));

  LoadFields("Belk", {"1", "22", "1"});
  EXPECT_EQ(Text("FilterBelk"), "1");
  EXPECT_EQ(Text("AddressBelk"), "1");
  EXPECT_EQ(Text("BaudBelk"), "4800");
  EXPECT_FALSE(Checked("CheckBelk2"));
  EXPECT_TRUE(Checked("CheckBelk4"));
  EXPECT_TRUE(Checked("CheckBelk5"));
  EXPECT_FALSE(Checked("CheckBelk6"));
  EXPECT_FALSE(Checked("CheckBelk3"));
  EXPECT_FALSE(Checked("CheckBelk1"));
  EXPECT_FALSE(Visible("LabelFASTBelk"));
  EXPECT_TRUE(Checked("OptionBelk2"));
  EXPECT_FALSE(Enabled("OptionBelk1"));
  EXPECT_FALSE(Enabled("OptionBelk2"));
}

TEST_F(BelkFile, FillsThePollBuffer) {
  for (unsigned i = 0; i < 20; ++i) SetBuffer(i, 1000 + i);
  LoadFields("Belk", {"200", "33023", "785"});
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(Buffer(i), 0) << i;
  EXPECT_EQ(Buffer(6), 200);
  EXPECT_EQ(Buffer(7), 33023);
  EXPECT_EQ(Buffer(8), 785);
  for (std::size_t i = 9; i < 20; ++i) EXPECT_EQ(Buffer(i), static_cast<int>(1000 + i));
}

TEST_F(BelkFile, ZeroesTheLiveValues) {
  module[40002] = 0x1F1F;
  for (int i = 0; i < 5; ++i) module[40003 + i] = static_cast<std::uint16_t>(65535 - i);
  RunSession("Belk", 1);
  std::vector<int> overflow;
  for (int i = 0; i < 5; ++i) {
    ASSERT_EQ(Text(Member("TotIN", i)), std::to_string(65535 - i));
    ASSERT_EQ(Picture(Member("StatoIN", i)), 2);
    overflow.push_back(BackColor(Member("OverFlowIN", i)));
  }
  LoadFields("Belk", {"200", "0", "785"});
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(Text(Member("TotIN", i)), "0");
    EXPECT_EQ(Picture(Member("StatoIN", i)), 1);
    EXPECT_NE(BackColor(Member("OverFlowIN", i)), overflow.at(static_cast<std::size_t>(i)));
    EXPECT_EQ(Percent("BargBelk" + std::to_string(i + 1)), 0);
  }
}

TEST_F(BelkFile, LooksAtThreeBitsOfTheSpeed) {
  LoadFields("Belk", {"1", "0", "2306"});
  EXPECT_EQ(Text("AddressBelk"), "2");
  EXPECT_EQ(Text("BaudBelk"), "9600");
}

TEST_F(BelkFile, KeepsTheSpeedThatItsListDoesNotHave) {
  Choose("BaudBelk", 3);
  LoadFields("Belk", {"1", "0", "1553"});
  EXPECT_EQ(Text("AddressBelk"), "17");
  EXPECT_EQ(ListIndex("BaudBelk"), 3);
  EXPECT_EQ(Save(), FileOf("Belk", {"1", "0", "785"}));
}

TEST_F(BelkFile, GoesToTheModuleByTheCommit) {
  LoadFields("Belk", {"200", "169", "785"});
  module[40001] = 0x0103;
  module.ForgetLog();
  Click("WEEPBelk");
  AnswerOk();
  EXPECT_THAT(TakeExchanges("reads 40001"),
              ElementsAre("writes 40072 = 0x00C8", "writes 40073 = 0x00A9", "writes 40074 = 0x0311"));
}

}  // namespace
}  // namespace tarvo
