#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::Fields;
using test::FileOf;
using testing::ElementsAre;

class DravoFile : public test::PageFileFixture {
 protected:
  DravoFile() {
    module[40073] = 0x0101;
    OpenPage("Dravo");
  }
  /// The fields of a file, with that first, eighth and ninth one.
  static Fields With(const std::string& type, const std::string& flags, const std::string& communication) {
    return {type, "1", "2", "3", "4", "5", "6", flags, communication};
  }
  Fields Values() const {
    Fields expected;
    for (int i = 0; i < 6; ++i) expected.push_back(Text(Member("ValueDravo", i)));
    return expected;
  }
};

TEST_F(DravoFile, HoldsWhatTheUserHasSet) {
  Choose("InputTypeDravo", 1);
  Choose("InputFilterDravo", 3);
  const Fields expected = {"14000", "100", "32000", "-32000", "9500", "-5"};
  for (int i = 0; i < 6; ++i) Edit(Member("ValueDravo", i), expected.at(static_cast<std::size_t>(i)));
  Click("CheckDravo1");
  Click("CheckDravo3");
  Click("CheckDravo4");
  Click("OptionDravo2");
  Edit("AddressDravo", "99");
  Choose("BaudDravo", 4);
  EXPECT_EQ(Save(),
            "\"DATAFORMAT 1.0 Dravo\"\r\n\"515\"\r\n\"14000\"\r\n\"100\"\r\n\"32000\"\r\n\"-32000\"\r\n\"9500\"\r\n"
            "\"-5\"\r\n\"16664\"\r\n\"1123\"\r\n");
}

TEST_F(DravoFile, HoldsTheScalesOfAChosenType) {
  Choose("InputTypeDravo", 6);
  const std::string saved = Save();
  EXPECT_EQ(FileField(1), "1792");
  EXPECT_EQ(FileField(2), "1200");
  EXPECT_EQ(FileField(3), "-250");
  EXPECT_EQ(FileField(4), "1200");
  EXPECT_EQ(FileField(5), "-250");
  EXPECT_TRUE(saved.starts_with("\"DATAFORMAT 1.0 Dravo\"\r\n\"1792\"\r\n\"1200\"\r\n\"-250\"\r\n")) << saved;
}

TEST_F(DravoFile, HoldsWhatASessionRead) {
  module[40002] = 0x0302;
  module[40003] = 20000;
  module[40004] = 0xFF38;
  module[40005] = 0x8300;
  module[40006] = 7;
  module[40007] = 10000;
  module[40008] = 0xFFFF;
  module[40009] = 0x0404;
  module[40010] = 0xC00C;
  module[40073] = 0x0142;
  RunSession("Dravo", 3);
  EXPECT_EQ(Save(), FileOf("Dravo", {"770", "20000", "-200", "-32000", "7", "10000", "-1", "49164", "322"}));
}

TEST_F(DravoFile, HoldsNoTypeWhereThePollShowsNone) {
  // The poll looks at three bits of the type, so that the eighth is none.
  module[40002] = 0x0805;
  RunSession("Dravo", 3);
  ASSERT_EQ(ListIndex("InputTypeDravo"), -1);
  Save();
  EXPECT_EQ(FileField(1), "5");
}

TEST_F(DravoFile, HoldsTheFlagsOfTheBufferNotTheBoxes) {
  SetBuffer(8, 0x8000);
  Save();
  EXPECT_EQ(FileField(8), "32768");
}

TEST_F(DravoFile, HoldsAParityOptionClickedOffline) {
  LoadFields("Dravo", With("256", "24", "257"));
  ASSERT_TRUE(Checked("OptionDravo2"));
  Click("OptionDravo1");
  EXPECT_EQ(Save(), FileOf("Dravo", With("256", "8", "257")));
}

TEST_F(DravoFile, ShowsItsFields) {
  LoadFields("Dravo", {"2054", "600", "-200", "1000", "-1000", "10050", "-50", "17180", "1047"});
  EXPECT_EQ(ListIndex("InputTypeDravo"), 7);
  EXPECT_EQ(ListIndex("InputFilterDravo"), 6);
  EXPECT_THAT(Values(), ElementsAre("600", "-200", "1000", "-1000", "10050", "-50"));
  EXPECT_TRUE(Checked("CheckDravo1"));
  EXPECT_TRUE(Checked("CheckDravo2"));
  EXPECT_TRUE(Checked("CheckDravo3"));
  EXPECT_TRUE(Checked("CheckDravo4"));
  EXPECT_TRUE(Checked("CheckDravo5"));
  EXPECT_TRUE(Checked("OptionDravo2"));
  EXPECT_EQ(Text("AddressDravo"), "23");
  EXPECT_EQ(Text("BaudDravo"), "57600");

  LoadFields("Dravo", With("3328", "0", "1"));
  EXPECT_EQ(ListIndex("InputTypeDravo"), 12);
  EXPECT_EQ(ListIndex("InputFilterDravo"), 0);
  EXPECT_THAT(Values(), ElementsAre("1", "2", "3", "4", "5", "6"));
  for (int i = 1; i <= 5; ++i) EXPECT_FALSE(Checked("CheckDravo" + std::to_string(i))) << i;
  EXPECT_TRUE(Checked("OptionDravo1"));
  EXPECT_EQ(Text("BaudDravo"), "4800");
}

struct Flag {
  std::string word;
  std::string box;
};

TEST_F(DravoFile, HasABitForEachBox) {
  const std::vector<Flag> flags = {{"4", "CheckDravo5"},
                                   {"8", "CheckDravo4"},
                                   {"256", "CheckDravo1"},
                                   {"512", "CheckDravo2"},
                                   {"16384", "CheckDravo3"}};
  for (const Flag& flag : flags) {
    LoadFields("Dravo", With("256", flag.word, "257"));
    for (const Flag& other : flags) EXPECT_EQ(Checked(other.box), other.box == flag.box) << flag.word << other.box;
    EXPECT_EQ(Enabled("OptionDravo1"), flag.word == "8");
    EXPECT_EQ(Enabled("OptionDravo2"), flag.word == "8");
  }
}

TEST_F(DravoFile, LooksAtThreeBitsOfTheFilter) {
  LoadFields("Dravo", With("270", "0", "257"));
  EXPECT_EQ(ListIndex("InputTypeDravo"), 0);
  EXPECT_EQ(ListIndex("InputFilterDravo"), 6);
}

TEST_F(DravoFile, SelectsNoTypeForTheTypeZero) {
  LoadFields("Dravo", With("3", "0", "257"));
  EXPECT_EQ(ListIndex("InputTypeDravo"), -1);
  EXPECT_EQ(Save(), FileOf("Dravo", With("3", "0", "257")));
}

TEST_F(DravoFile, SetsTheLimitsOfItsType) {
  LoadFields("Dravo", With("2048", "0", "257"));
  EXPECT_EQ(Text("UnitaMisuraDravo1"), "°C");
  Click("ValueDravo(0)");
  EXPECT_EQ(State().ChangeValueMin, 0);
  EXPECT_EQ(State().ChangeValueMax, 1750);
}

TEST_F(DravoFile, ChangesThePlacesOfItsLastTwoFieldsInTheBuffer) {
  for (unsigned i = 0; i < 20; ++i) SetBuffer(i, 1000 + i);
  LoadFields("Dravo", {"2054", "600", "-200", "1000", "-1000", "10050", "-50", "16916", "1047"});
  const std::vector<int> expected = {2054, 600, 0xFF38, 1000, 0xFC18, 10050, 0xFFCE, 1047, 16916};
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(Buffer(i), expected[i]) << i;
  for (std::size_t i = expected.size(); i < 20; ++i) EXPECT_EQ(Buffer(i), static_cast<int>(1000 + i));
}

TEST_F(DravoFile, PaintsTheLiveValuesOfTheLastPoll) {
  SetBuffer(9, 0xFFFF);
  SetBuffer(10, 4321);
  SetBuffer(11, 0x2500);
  LoadFields("Dravo", With("256", "0", "257"));
  EXPECT_EQ(Text("InputTechDravo"), "-1");
  EXPECT_EQ(Text("InputScaledDravo"), "4321");
  const std::vector<bool> lit = {true, false, true, false, false, true};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(BackColor(Member("StatusDravo", i)) == 255, lit.at(static_cast<std::size_t>(i))) << i;
  }
}

TEST_F(DravoFile, LeavesTheLiveValuesOfASession) {
  module[40002] = 0x0101;
  module[40011] = 77;
  module[40012] = 5000;
  module[40013] = 0x0200;
  RunSession("Dravo", 3);
  LoadFields("Dravo", With("256", "0", "257"));
  EXPECT_EQ(Text("InputTechDravo"), "77");
  EXPECT_EQ(Text("InputScaledDravo"), "5000");
  EXPECT_EQ(BackColor("StatusDravo(1)"), 255);
  EXPECT_EQ(Percent("BargDravo1"), 50);
}

}  // namespace
}  // namespace tarvo
