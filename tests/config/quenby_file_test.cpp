#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::Fields;
using test::FileOf;
using testing::ElementsAre;
using testing::IsEmpty;

class QuenbyFile : public test::PageFileFixture {
 protected:
  QuenbyFile() {
    module[40001] = 0x0F00;
    module[40002] = 0x0101;
    module[40003] = 50;
    module[40010] = 3;
    Click("MDIForm1.LabQuenby");
    module.ForgetLog();
    ports.ForgetAttempts();
  }

  /// Comes back to the page as on a first visit, so that it reads its module.
  void ReadModule() {
    Click("MDIForm1.LabHome");
    State().pageEntered = state::kFalse;
    Click("MDIForm1.LabQuenby");
    module.ForgetLog();
    ports.ForgetAttempts();
  }
  void TypeDefaults(const Fields& three) {
    for (int i = 0; i < 3; ++i) Type(Member("txtVal", i), three.at(static_cast<std::size_t>(i)));
  }
  std::vector<std::string> Texts(const std::string& array) const {
    return {Text(Member(array, 0)), Text(Member(array, 1)), Text(Member(array, 2))};
  }
  /// The four scale lists, output 1's full scale last.
  std::vector<int> Scales() const {
    return {ListIndex("cbStartScale(0)"), ListIndex("cbStartScale(1)"), ListIndex("cbStartScale(2)"),
            ListIndex("cbFullScale(0)")};
  }
};

TEST_F(QuenbyFile, HoldsTheFirstViewInQuotedLines) {
  EXPECT_EQ(Save(), "\"DATAFORMAT 1.0 Quenby\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"257\"\r\n\"50\"\r\n");
}

TEST_F(QuenbyFile, HoldsWhatThePageReadAndNotTheOutputs) {
  module[40002] = 0x04FF;
  module[40003] = 65535;
  module[40004] = 0xFFFF;
  module[40005] = 5000;
  ReadModule();
  EXPECT_EQ(Save(), FileOf("Quenby", {"4060", "0", "0", "0", "1279", "65535"}));
}

TEST_F(QuenbyFile, HoldsWhatTheUserHasSet) {
  Click("CheckDelay12ms");
  Choose("cbStartScale(2)", 1);
  TypeDefaults({"1", "20", "10000"});
  Edit("labAddress", "17");
  Choose("cbBaud", 0);
  Edit("labTimeout", "0");
  EXPECT_EQ(Save(), FileOf("Quenby", {"1028", "1", "20", "10000", "1553", "0"}));
}

TEST_F(QuenbyFile, ShowsItsFlags) {
  LoadFields("Quenby", {"2716", "0", "0", "0", "257", "0"});
  EXPECT_TRUE(Checked("CheckDelay12ms"));
  EXPECT_TRUE(Checked("checkParity"));
  EXPECT_TRUE(Checked("OptionOdd"));
  EXPECT_FALSE(Checked("CheckResetTimer"));
  EXPECT_TRUE(Checked("CheckDefaultOutputs"));
  EXPECT_THAT(Scales(), ElementsAre(0, 1, 0, 1));
  EXPECT_TRUE(Enabled("OptionEven"));
  EXPECT_TRUE(Enabled("OptionOdd"));

  LoadFields("Quenby", {"1344", "0", "0", "0", "257", "0"});
  EXPECT_FALSE(Checked("CheckDelay12ms"));
  EXPECT_FALSE(Checked("checkParity"));
  EXPECT_TRUE(Checked("OptionEven"));
  EXPECT_TRUE(Checked("CheckResetTimer"));
  EXPECT_FALSE(Checked("CheckDefaultOutputs"));
  EXPECT_THAT(Scales(), ElementsAre(1, 0, 1, 0));
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
}

TEST_F(QuenbyFile, ShowsItsDefaultsAndSafeTime) {
  LoadFields("Quenby", {"0", "1", "20", "10000", "257", "65535"});
  EXPECT_THAT(Texts("txtVal"), ElementsAre("1", "20", "10000"));
  EXPECT_EQ(Text("labTimeout"), "65535");
}

TEST_F(QuenbyFile, LosesTheHighBitsOfTheAddress) {
  const std::pair<int, const char*> rows[] = {{1, "1"}, {15, "15"}, {16, "0"}, {17, "1"}, {255, "15"}};
  for (const auto& [stored, shown] : rows) {
    LoadFields("Quenby", {"0", "0", "0", "0", std::to_string(0x0300 | stored), "0"});
    EXPECT_EQ(Text("labAddress"), shown) << stored;
    EXPECT_EQ(Text("cbBaud"), "38400") << stored;
  }
}

TEST_F(QuenbyFile, SelectsTheRateByThreeBits) {
  const std::pair<int, const char*> rows[] = {{6, "1200"},  {7, "2400"},  {0, "4800"},  {1, "9600"},    {2, "19200"},
                                              {3, "38400"}, {4, "57600"}, {14, "1200"}, {0x7C, "57600"}};
  for (const auto& [code, rate] : rows) {
    LoadFields("Quenby", {"0", "0", "0", "0", std::to_string(code << 8 | 5), "0"});
    EXPECT_EQ(Text("cbBaud"), rate) << code;
    EXPECT_EQ(Text("labAddress"), "5") << code;
  }
}

TEST_F(QuenbyFile, KeepsTheRateThatItsListDoesNotHave) {
  LoadFields("Quenby", {"0", "0", "0", "0", "1282", "0"});
  EXPECT_EQ(Text("cbBaud"), "9600");
  EXPECT_EQ(Text("labAddress"), "2");
}

TEST_F(QuenbyFile, ComesBackAsItWasSavedWhileTheAddressIsBelow16) {
  const Fields fields = {"2716", "1", "20", "10000", "783", "77"};
  LoadFields("Quenby", fields);
  EXPECT_EQ(Save(), FileOf("Quenby", fields));
}

TEST_F(QuenbyFile, MayGoOnToTwentyFields) {
  Fields fields(20, "9");
  fields[4] = "257";
  LoadFields("Quenby", fields);
  EXPECT_EQ(FileField(20), "9");
  EXPECT_THAT(Texts("txtVal"), ElementsAre("9", "9", "9"));
}

TEST_F(QuenbyFile, HasNoRoomForATwentyFirstField) {
  Fields fields(21, "9");
  Load(FileOf("Quenby", fields));
  EXPECT_THAT(BoxInFront(), test::IsBox("Subscript out of range", view::Icon::kExclamation));
  AnswerOk();
  EXPECT_THAT(Texts("txtVal"), ElementsAre("0", "0", "0"));
}

TEST_F(QuenbyFile, OfAnotherModelIsRefused) {
  Load(FileOf("Belk", {"1", "2", "3", "4", "5", "6"}));
  EXPECT_THAT(BoxInFront(), test::IsBox(test::kWrongFormat, view::Icon::kCritical));
  AnswerOk();
  EXPECT_EQ(Text("labTimeout"), "50");
}

TEST_F(QuenbyFile, LeavesOutputsAndErrorsAsTheyWereRead) {
  module[40005] = 5000;
  module[40008] = 2;
  ReadModule();
  LoadFields("Quenby", {"0", "1", "2", "3", "257", "0"});
  EXPECT_THAT(Texts("txtValRam"), ElementsAre("5000", "0", "0"));
  EXPECT_TRUE(Checked("CheckError(1)"));
  EXPECT_EQ(Text("labFW"), "FW vers. : 3");
}

TEST_F(QuenbyFile, NeverTalksToTheModule) {
  LoadFields("Quenby", {"4060", "1", "2", "3", "257", "0"});
  Save();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(QuenbyFile, IsRefusedInASession) {
  Click("buttStart");
  ASSERT_EQ(State().StartComm, state::kTrue);
  for (const char* item : {"MDIForm1.OpenMNU", "MDIForm1.SaveMNU"}) {
    Click(item);
    ASSERT_NE(BoxInFront(), nullptr) << item;
    EXPECT_EQ(BoxInFront()->text, test::kStopFirst);
    AnswerOk();
  }
}

TEST_F(QuenbyFile, GoesToTheModuleByTheCommit) {
  LoadFields("Quenby", {"2716", "1", "20", "10000", "1041", "77"});
  Click("buttWriteEEPROM");
  AnswerOk();
  EXPECT_THAT(TakeExchanges("reads 40001"),
              ElementsAre("writes 40068 = 0x0A9C", "writes 40066 = 0x0401", "writes 40067 = 0x004D",
                          "writes 40069 = 0x0001", "writes 40070 = 0x0014", "writes 40071 = 0x2710"));
}

}  // namespace
}  // namespace tarvo
