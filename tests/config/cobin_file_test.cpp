#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::FileOf;
using testing::ElementsAre;

class CobinFile : public test::PageFileFixture {
 protected:
  CobinFile() {
    module[40070] = 0x0101;
    OpenPage("Cobin");
  }
  std::vector<int> Pictures(const std::string& array) const {
    std::vector<int> pictures;
    for (int i = 1; i <= 5; ++i) pictures.push_back(Picture(array + std::to_string(i)));
    return pictures;
  }
};

TEST_F(CobinFile, HoldsTheFirstViewInQuotedLines) {
  EXPECT_EQ(Save(), "\"DATAFORMAT 1.0 Cobin\"\r\n\"0\"\r\n\"5\"\r\n\"0\"\r\n\"257\"\r\n");
}

TEST_F(CobinFile, HoldsWhatASessionRead) {
  module[40003] = 0x011F;
  module[40004] = 30;
  module[40005] = 0xAA41;
  module[40006] = 0x0404;
  module[40070] = 0x0305;
  RunSession("Cobin", 2);
  EXPECT_EQ(Save(), FileOf("Cobin", {"287", "30", "43585", "773"}));
}

TEST_F(CobinFile, HoldsWhatTheUserHasSet) {
  Edit("SafetimeCobin", "250");
  Edit("AddressCobin", "7");
  Choose("BaudCobin", 2);
  Click("CheckCobin2");
  Click("CheckCobin3");
  EXPECT_EQ(Save(), FileOf("Cobin", {"0", "250", "65", "519"}));
  Click("CheckCobin3");
  Click("CheckCobin1");
  EXPECT_EQ(Save(), FileOf("Cobin", {"0", "250", "129", "519"}));
}

TEST_F(CobinFile, HoldsThePollsWordsNotTheView) {
  SetBuffer(1, 0xFFFF);
  SetBuffer(3, 0x8000);
  EXPECT_EQ(Save(), FileOf("Cobin", {"65535", "5", "32768", "257"}));
}

TEST_F(CobinFile, ShowsItsFields) {
  LoadFields("Cobin", {"10", "100", "221", "1026"});
  EXPECT_THAT(Pictures("SafeCobin"), ElementsAre(1, 2, 1, 2, testing::_));
  EXPECT_EQ(Text("SafetimeCobin"), "100");
  for (int i = 1; i <= 5; ++i) EXPECT_TRUE(Checked("CheckCobin" + std::to_string(i))) << i;
  EXPECT_TRUE(Checked("OptionCobin2"));
  EXPECT_TRUE(Enabled("OptionCobin1"));
  EXPECT_TRUE(Enabled("OptionCobin2"));
  EXPECT_EQ(Text("AddressCobin"), "2");
  EXPECT_EQ(Text("BaudCobin"), "57600");

  LoadFields("Cobin", {"5", "7", "34", "511"});
  EXPECT_THAT(Pictures("SafeCobin"), ElementsAre(2, 1, 2, 1, testing::_));
  EXPECT_EQ(Text("SafetimeCobin"), "7");
  for (int i = 1; i <= 5; ++i) EXPECT_FALSE(Checked("CheckCobin" + std::to_string(i))) << i;
  EXPECT_TRUE(Checked("OptionCobin1"));
  EXPECT_FALSE(Enabled("OptionCobin1"));
  EXPECT_FALSE(Enabled("OptionCobin2"));
  EXPECT_EQ(Text("AddressCobin"), "255");
  EXPECT_EQ(Text("BaudCobin"), "9600");
}

TEST_F(CobinFile, MayHoldASafeTimeThatTheDialogRefuses) {
  LoadFields("Cobin", {"0", "999", "0", "257"});
  EXPECT_EQ(Text("SafetimeCobin"), "999");
  LoadFields("Cobin", {"0", "0", "0", "257"});
  EXPECT_EQ(Text("SafetimeCobin"), "0");
}

TEST_F(CobinFile, LeavesTheFifthSafePictureAlone) {
  module[40003] = 0x0010;
  RunSession("Cobin", 2);
  EXPECT_THAT(Pictures("SafeCobin"), ElementsAre(1, 1, 1, 1, 2));
  LoadFields("Cobin", {"15", "5", "0", "257"});
  EXPECT_THAT(Pictures("SafeCobin"), ElementsAre(2, 2, 2, 2, 2));
  module[40003] = 0;
  RunSession("Cobin", 2);
  LoadFields("Cobin", {"31", "5", "0", "257"});
  EXPECT_THAT(Pictures("SafeCobin"), ElementsAre(2, 2, 2, 2, 1));
  // The word keeps the bit all the same.
  EXPECT_EQ(Buffer(1), 31);
}

TEST_F(CobinFile, ZeroesTheLiveOutputs) {
  module[40002] = 0x001F;
  RunSession("Cobin", 2);
  ASSERT_THAT(Pictures("OutCobin"), ElementsAre(2, 2, 2, 2, 2));
  LoadFields("Cobin", {"31", "5", "0", "257"});
  EXPECT_THAT(Pictures("OutCobin"), ElementsAre(1, 1, 1, 1, 1));
}

TEST_F(CobinFile, FillsThePollBuffer) {
  for (unsigned i = 0; i < 20; ++i) SetBuffer(i, 1000 + i);
  LoadFields("Cobin", {"27", "100", "43585", "1026"});
  EXPECT_EQ(Buffer(0), 0);
  EXPECT_EQ(Buffer(1), 27);
  EXPECT_EQ(Buffer(2), 100);
  EXPECT_EQ(Buffer(3), 43585);
  EXPECT_EQ(Buffer(4), 1026);
  for (std::size_t i = 5; i < 20; ++i) EXPECT_EQ(Buffer(i), static_cast<int>(1000 + i));
}

TEST_F(CobinFile, KeepsTheSpeedThatItsListDoesNotHave) {
  LoadFields("Cobin", {"0", "5", "0", "1537"});
  EXPECT_EQ(ListIndex("BaudCobin"), 1);
  LoadFields("Cobin", {"0", "5", "0", "2561"});
  EXPECT_EQ(Text("BaudCobin"), "19200");
}

TEST_F(CobinFile, GoesToTheModuleByTheCommit) {
  LoadFields("Cobin", {"27", "100", "43585", "1026"});
  module[40001] = 0x0203;
  module.ForgetLog();
  Click("WEEPCobin");
  AnswerOk();
  EXPECT_THAT(TakeExchanges("reads 40001"), ElementsAre("writes 40067 = 0x001B", "writes 40068 = 0x0064",
                                                        "writes 40069 = 0xAA41", "writes 40070 = 0x0402"));
}

}  // namespace
}  // namespace tarvo
