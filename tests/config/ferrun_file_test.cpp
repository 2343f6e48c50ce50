#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::Fields;
using test::FileOf;
using test::IsBox;

class FerrunFile : public test::PageFileFixture {
 protected:
  FerrunFile() {
    module[40073] = 0x0101;
    OpenPage("Ferrun");
  }
  /// A good file's fields with another one at `number`, from 1.
  static Fields With(std::size_t number, const std::string& text) {
    Fields fields = test::FilePageOf("Ferrun").fields;
    fields.at(number - 1) = text;
    return fields;
  }
  std::string Value(int index) const { return Text(Member("ValueFerrun", index)); }
};

TEST_F(FerrunFile, HoldsWhatTheUserHasSet) {
  Choose("comboInputTypeFerrun", 2);
  Choose("comboInputFilterFerrun", 6);
  const Fields expected = {"19000", "1", "-2", "3", "10001", "-5", "6", "7", "8", "9", "10", "11", "12", "13"};
  for (int i = 0; i < 14; ++i) Edit(Member("ValueFerrun", i), expected.at(static_cast<std::size_t>(i)));
  Edit("labAddressFerrun", "33");
  Edit("labSafetimeFerrun", "44");
  Choose("comboBaudFerrun", 2);
  Click("CheckSquareRoot");
  Click("CheckReload");
  Click("CheckInv");
  EXPECT_EQ(Save(),
            "\"DATAFORMAT 1.0 Ferrun\"\r\n\"774\"\r\n\"19000\"\r\n\"1\"\r\n\"-2\"\r\n\"3\"\r\n\"10001\"\r\n\"-5\"\r\n"
            "\"545\"\r\n\"44\"\r\n\"6400\"\r\n\"6\"\r\n\"7\"\r\n\"8\"\r\n\"9\"\r\n\"12\"\r\n\"10\"\r\n\"11\"\r\n"
            "\"13\"\r\n");
}

TEST_F(FerrunFile, HoldsWhatASessionRead) {
  module[40002] = 0x0D06;
  module[40003] = 1300;
  module[40004] = 0xFF38;
  module[40005] = 1;
  module[40006] = 0x8300;
  module[40007] = 9000;
  module[40008] = 0xFC18;
  module[40009] = 0x0404;
  module[40010] = 250;
  module[40011] = 0xFFF8;  // bits 5 to 7 have no control
  for (int i = 0; i < 7; ++i) module[40012 + i] = static_cast<std::uint16_t>(100 + i);
  module[40073] = 0x0342;
  module[40083] = 9876;
  RunSession("Ferrun", 4);
  EXPECT_EQ(Save(), FileOf("Ferrun", {"3334", "1300", "-200", "1", "-32000", "9000", "-1000", "834", "250", "-232",
                                      "100", "101", "102", "103", "104", "105", "106", "9876"}));
}

TEST_F(FerrunFile, IsLoadedIntoEveryControl) {
  LoadFields("Ferrun", {"3334", "1300", "-200", "1", "-32000", "9000", "-1000", "834", "250", "0", "100", "101", "102",
                        "103", "104", "105", "106", "9876"});
  EXPECT_EQ(ListIndex("comboInputTypeFerrun"), 12);
  EXPECT_EQ(ListIndex("comboInputFilterFerrun"), 6);
  const Fields expected = {"1300", "-200", "1",   "-32000", "9000", "-1000", "100",
                           "101",  "102",  "103", "105",    "106",  "104",   "9876"};
  for (int i = 0; i < 14; ++i) EXPECT_EQ(Value(i), expected.at(static_cast<std::size_t>(i))) << i;
  EXPECT_EQ(Text("labAddressFerrun"), "66");
  EXPECT_EQ(Text("comboBaudFerrun"), "38400");
  EXPECT_EQ(Text("labSafetimeFerrun"), "250");
}

struct Flag {
  std::string word;
  std::string box;
};

TEST_F(FerrunFile, HasABitForEachBox) {
  const std::vector<Flag> flags = {{"4", "CheckDelay"},         {"8", "checkParity"},   {"256", "CheckSquareRoot"},
                                   {"512", "CheckBurnOUt"},     {"1024", "CheckAuto"},  {"2048", "CheckInv"},
                                   {"4096", "CheckReload"},     {"8192", "Check_4_20"}, {"16384", "Check_4_wires"},
                                   {"-32768", "CheckResetonTx"}};
  for (const Flag& flag : flags) {
    LoadFields("Ferrun", With(10, flag.word));
    for (const Flag& other : flags) EXPECT_EQ(Checked(other.box), other.box == flag.box) << flag.word << other.box;
    EXPECT_TRUE(Checked("OptionEven"));
    EXPECT_EQ(Enabled("OptionEven"), flag.box == "checkParity");
    EXPECT_EQ(Enabled("OptionOdd"), flag.box == "checkParity");
    EXPECT_EQ(Enabled("OutputFerrun"), flag.box != "CheckAuto") << flag.box;
    EXPECT_EQ(Save(), FileOf("Ferrun", With(10, flag.word)));
  }
}

TEST_F(FerrunFile, HasABitForOddParity) {
  LoadFields("Ferrun", With(10, "24"));
  EXPECT_TRUE(Checked("OptionOdd"));
  EXPECT_FALSE(Checked("OptionEven"));
  EXPECT_EQ(Save(), FileOf("Ferrun", With(10, "24")));
}

TEST_F(FerrunFile, HoldsAllFlagsAsANegativeNumber) {
  LoadFields("Ferrun", With(10, "-1"));
  EXPECT_EQ(Save(), FileOf("Ferrun", With(10, "-228")));
  LoadFields("Ferrun", With(10, "-228"));
  EXPECT_TRUE(Checked("CheckResetonTx"));
  EXPECT_EQ(Save(), FileOf("Ferrun", With(10, "-228")));
}

TEST_F(FerrunFile, LosesTheBitsWithoutAControl) {
  LoadFields("Ferrun", With(10, "227"));
  EXPECT_EQ(Save(), FileOf("Ferrun", With(10, "0")));
}

TEST_F(FerrunFile, LooksAtTheWholeByteOfTheFilter) {
  LoadFields("Ferrun", With(1, "262"));
  EXPECT_EQ(ListIndex("comboInputTypeFerrun"), 0);
  EXPECT_EQ(ListIndex("comboInputFilterFerrun"), 6);
}

TEST_F(FerrunFile, SelectsNoTypeForTheTypeZero) {
  LoadFields("Ferrun", With(1, "2"));
  EXPECT_EQ(ListIndex("comboInputTypeFerrun"), -1);
  EXPECT_EQ(Save(), FileOf("Ferrun", With(1, "2")));
}

TEST_F(FerrunFile, SetsTheScalesThatItsTypeLocks) {
  Choose("comboInputTypeFerrun", 0);
  LoadFields("Ferrun", With(1, "1792"));
  EXPECT_EQ(ListIndex("comboInputTypeFerrun"), 6);
  const Fields expected = {"10000", "-10", "32000", "-32000"};
  for (int i = 0; i < 4; ++i) {
    EXPECT_FALSE(Enabled(Member("ValueFerrun", i)));
    EXPECT_EQ(Value(i), expected.at(static_cast<std::size_t>(i)));
  }
  LoadFields("Ferrun", With(1, "256"));
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(Enabled(Member("ValueFerrun", i)));
    EXPECT_EQ(Value(i), expected.at(static_cast<std::size_t>(i)));
  }
}

TEST_F(FerrunFile, KeepsValuesAsTheyWereTyped) {
  Edit("ValueFerrun(6)", "12.4");
  Edit("ValueFerrun(4)", "9000,5");
  Save();
  EXPECT_EQ(FileField(11), "12.4");
  EXPECT_EQ(FileField(6), "9000,5");
  const std::string saved = *files.Content(kPath);
  Load(saved);
  AnswerOk();
  EXPECT_EQ(Value(6), "12.4");
  EXPECT_EQ(Value(4), "9000,5");
  EXPECT_EQ(Save(), saved);
}

TEST_F(FerrunFile, LeavesTheLiveValuesAlone) {
  module[40019] = 2500;
  module[40020] = 0xFFF6;
  module[40021] = 5000;
  module[40022] = 0x8100;
  RunSession("Ferrun", 4);
  const Fields live = {Text("InputTechFerrun"), Text("InputScaledFerrun"), Text("OutputFerrun")};
  ASSERT_THAT(live, testing::ElementsAre("-10", "5000", "2500"));
  LoadFields("Ferrun", test::FilePageOf("Ferrun").fields);
  EXPECT_EQ(Text("InputTechFerrun"), live[0]);
  EXPECT_EQ(Text("InputScaledFerrun"), live[1]);
  EXPECT_EQ(Text("OutputFerrun"), live[2]);
  EXPECT_EQ(Percent("BargFerrun1"), 50);
  EXPECT_EQ(Percent("BargFerrun3"), 25);
  EXPECT_EQ(BackColor("StatusFerrun(0)"), 255);
  EXPECT_EQ(BackColor("StatusFerrun(7)"), 255);
}

TEST_F(FerrunFile, WithAWordForAValueLeavesThePortClosedAfterACommit) {
  LoadFields("Ferrun", With(12, "much"));
  ASSERT_EQ(Value(7), "much");
  module[40001] = 0x0403;
  Click("buttWEEPFerrun");
  ASSERT_NE(BoxInFront(), nullptr);
  EXPECT_EQ(BoxInFront()->text, core::kTypeMismatch);
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  EXPECT_FALSE(PortOpen());
  EXPECT_FALSE(Hourglass());
  RunSession("Ferrun", 4);
}

TEST_F(FerrunFile, WithAFieldThatIsNoNumberKeepsWhatWasSetBeforeIt) {
  LoadFields("Ferrun",
             {"256", "1", "2", "3", "4", "5", "6", "257", "7", "4", "8", "9", "10", "11", "12", "13", "14", "15"});
  Load(FileOf("Ferrun", With(10, "on")));
  EXPECT_THAT(BoxInFront(), IsBox(core::kTypeMismatch, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  // The last field goes to its place first of all.
  EXPECT_EQ(Value(13), "2500");
  EXPECT_EQ(ListIndex("comboInputTypeFerrun"), 3);
  EXPECT_EQ(Value(0), "10000");
  EXPECT_EQ(Value(5), "-1000");
  EXPECT_EQ(Text("labAddressFerrun"), "1");
  EXPECT_EQ(Text("comboBaudFerrun"), "19200");
  EXPECT_EQ(Text("labSafetimeFerrun"), "250");
  EXPECT_TRUE(Checked("CheckDelay"));
  EXPECT_FALSE(Checked("CheckResetonTx"));
  EXPECT_EQ(Value(6), "8");
  EXPECT_EQ(Value(12), "12");
  EXPECT_EQ(FileField(18), "2500");
}

}  // namespace
}  // namespace tarvo
