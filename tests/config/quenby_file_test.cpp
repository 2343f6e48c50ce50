#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::Fields;
using test::FileOf;
using test::IsBox;
using testing::ElementsAre;
using view::Icon;

/// The control that stands for a bit; a list does so by its second entry.
struct Flag {
  const char* control;
  int mask;
};
constexpr Flag kBoxes[] = {
    {"CheckDelay12ms", 0x0004}, {"checkParity", 0x0008}, {"CheckResetTimer", 0x0040}, {"CheckDefaultOutputs", 0x0080}};
constexpr Flag kLists[] = {
    {"cbStartScale(0)", 0x0100}, {"cbStartScale(1)", 0x0200}, {"cbStartScale(2)", 0x0400}, {"cbFullScale(0)", 0x0800}};
constexpr int kOdd = 0x0010;

class QuenbyFile : public test::PageFileFixture {
 protected:
  static constexpr std::size_t kFlagsField = 1;
  static constexpr std::size_t kCommunicationField = 5;

  void LoadWith(std::size_t number, const std::string& text) {
    LoadFields("Quenby", FieldsWith("Quenby", number, text));
  }
  std::string SavedField(std::size_t number) {
    Save();
    return FileField(number);
  }
  /// The flags as the view shows them.
  int FlagsShown() const {
    int flags = Checked("OptionOdd") ? kOdd : 0;
    for (const Flag& box : kBoxes) flags |= Checked(box.control) ? box.mask : 0;
    for (const Flag& list : kLists) flags |= ListIndex(list.control) == 1 ? list.mask : 0;
    return flags;
  }
};

/// On a page that could not read its module.
class QuenbyUnreadFile : public QuenbyFile {
 protected:
  QuenbyUnreadFile() { OpenPage("Quenby"); }
};

/// On the page of a module that has a value in each setting.
class QuenbyReadFile : public QuenbyFile {
 protected:
  QuenbyReadFile() {
    module[40001] = 0x0F00;
    module[40002] = 0x0642;
    module[40003] = 65535;
    module[40004] = 0xFFFF;
    for (int i = 0; i < 3; ++i) {
      module[40005 + i] = static_cast<std::uint16_t>(5000 + i);
      module[40069 + i] = static_cast<std::uint16_t>(7000 + i);
    }
    OpenPage("Quenby");
  }
};

TEST_F(QuenbyUnreadFile, HoldsTheFirstViewInQuotedLines) {
  EXPECT_EQ(Save(), "\"DATAFORMAT 1.0 Quenby\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"1793\"\r\n\"0\"\r\n");
}

TEST_F(QuenbyReadFile, HoldsWhatWasReadOfTheModuleButNoOutputs) {
  EXPECT_EQ(Save(), FileOf("Quenby", {"4060", "0", "0", "0", "1602", "65535"}));
}

TEST_F(QuenbyUnreadFile, HoldsWhatTheUserHasSet) {
  Click("CheckDelay12ms");
  Click("CheckDefaultOutputs");
  Choose("cbStartScale(1)", 1);
  const Fields defaults = {"10000", "1", "5000"};
  for (int i = 0; i < 3; ++i) Type(Member("txtVal", i), defaults[static_cast<std::size_t>(i)]);
  Edit("labAddress", "200");
  Choose("cbBaud", 6);
  Edit("labTimeout", "300");
  EXPECT_EQ(Save(), FileOf("Quenby", {"644", "10000", "1", "5000", "1224", "300"}));
}

// The flags.

TEST_F(QuenbyUnreadFile, HasABitForEachFlagThatTheUserSets) {
  int word = 0;
  for (const Flag& box : kBoxes) {
    Click(box.control);
    word |= box.mask;
    EXPECT_EQ(SavedField(kFlagsField), std::to_string(word)) << box.control;
  }
  for (const Flag& list : kLists) {
    Choose(list.control, 1);
    word |= list.mask;
    EXPECT_EQ(SavedField(kFlagsField), std::to_string(word)) << list.control;
  }
  Click("OptionOdd");
  EXPECT_EQ(SavedField(kFlagsField), std::to_string(word | kOdd));
  Click("OptionEven");
  EXPECT_EQ(SavedField(kFlagsField), std::to_string(word));
}

TEST_F(QuenbyUnreadFile, SetsEachFlagByItsBit) {
  for (int bit = 0; bit < 16; ++bit) {
    LoadWith(kFlagsField, std::to_string(1 << bit));
    EXPECT_EQ(FlagsShown(), (1 << bit) & 0x0FDC) << bit;
    EXPECT_NE(Checked("OptionEven"), Checked("OptionOdd")) << bit;
  }
}

TEST_F(QuenbyUnreadFile, TakesANegativeWordByItsBits) {
  LoadWith(kFlagsField, "-1");
  EXPECT_EQ(FlagsShown(), 0x0FDC);
}

TEST_F(QuenbyUnreadFile, SelectsTheFirstEntriesWhereNoBitIsSet) {
  LoadWith(kFlagsField, "4060");
  LoadWith(kFlagsField, "0");
  for (const Flag& list : kLists) EXPECT_EQ(ListIndex(list.control), 0) << list.control;
  EXPECT_EQ(FlagsShown(), 0);
}

TEST_F(QuenbyUnreadFile, EnablesTheOptionsWithTheParity) {
  for (const auto& [field, enabled] : {std::pair{"8", true}, {"16", false}, {"24", true}, {"0", false}}) {
    LoadWith(kFlagsField, field);
    EXPECT_EQ(Enabled("OptionEven"), enabled) << field;
    EXPECT_EQ(Enabled("OptionOdd"), enabled) << field;
  }
}

// Defaults and safe time.

TEST_F(QuenbyUnreadFile, TakesDefaultsAndSafeTimeAsTheyStand) {
  const Fields fields = {"0", "-5", "10001", "some", "257", "99999 ms"};
  LoadFields("Quenby", fields);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Text(Member("txtVal", i)), fields[static_cast<std::size_t>(i) + 1]);
  EXPECT_EQ(Text("labTimeout"), "99999 ms");
  EXPECT_EQ(Save(), FileOf("Quenby", fields));
}

// Address and speed.

/// Place in `cbBaud` and code.
constexpr std::pair<int, int> kRates[] = {{0, 6}, {1, 7}, {2, 0}, {3, 1}, {4, 2}, {5, 3}, {6, 4}};

TEST_F(QuenbyUnreadFile, HasACodeForEachRate) {
  for (const auto& [position, code] : kRates) {
    Choose("cbBaud", position);
    EXPECT_EQ(SavedField(kCommunicationField), std::to_string(code * 256 + 1));
  }
}

TEST_F(QuenbyUnreadFile, SelectsTheRateOfItsCode) {
  for (const auto& [position, code] : kRates) {
    LoadWith(kCommunicationField, std::to_string(code * 256 + 1));
    EXPECT_EQ(ListIndex("cbBaud"), position) << code;
  }
}

TEST_F(QuenbyUnreadFile, LooksAtThreeBitsOfTheSpeed) {
  LoadWith(kCommunicationField, "63745");  // 0xF901
  EXPECT_EQ(ListIndex("cbBaud"), 3);
}

TEST_F(QuenbyUnreadFile, LeavesTheRateAtTheCodeThatStandsForNone) {
  LoadWith(kCommunicationField, "769");
  LoadWith(kCommunicationField, "1282");
  EXPECT_EQ(ListIndex("cbBaud"), 5);
  EXPECT_EQ(Text("labAddress"), "2");
}

TEST_F(QuenbyUnreadFile, LosesTheHighBitsOfTheAddress) {
  for (const auto& [address, shown] : {std::pair{17, "1"}, {15, "15"}, {255, "15"}, {16, "0"}, {200, "8"}}) {
    LoadWith(kCommunicationField, std::to_string(256 + address));
    EXPECT_EQ(Text("labAddress"), shown) << address;
    EXPECT_EQ(ListIndex("cbBaud"), 3);
  }
}

TEST_F(QuenbyUnreadFile, HoldsAllBitsOfTheAddressUntilItIsLoaded) {
  Edit("labAddress", "17");
  Choose("cbBaud", 3);
  const std::string saved = Save();
  EXPECT_EQ(FileField(kCommunicationField), "273");
  Load(saved);
  AnswerOk();
  EXPECT_EQ(SavedField(kCommunicationField), "257");
}

// The rest.

TEST_F(QuenbyUnreadFile, KeepsTheControlsThatWereSetBeforeAFault) {
  Load(FileOf("Quenby", FieldsWith("Quenby", kCommunicationField, "COM1")));
  EXPECT_THAT(BoxInFront(), IsBox(core::kTypeMismatch, Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(FlagsShown(), 3548);
  EXPECT_EQ(Text("txtVal(0)"), "10000");
  EXPECT_EQ(Text("txtVal(2)"), "5000");
  EXPECT_EQ(Text("labAddress"), "1");
  EXPECT_EQ(ListIndex("cbBaud"), 1);
  EXPECT_EQ(Text("labTimeout"), "0");
}

TEST_F(QuenbyReadFile, LeavesOutputsAndErrorsAlone) {
  module[40008] = 3;
  RunSession("Quenby", 15);
  ASSERT_TRUE(Checked("CheckError(0)"));
  LoadFields("Quenby", test::FilePageOf("Quenby").fields);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Text(Member("txtValRam", i)), std::to_string(5000 + i));
  EXPECT_TRUE(Checked("CheckError(0)"));
  EXPECT_TRUE(Checked("CheckError(1)"));
}

TEST_F(QuenbyReadFile, GoesToTheModuleByTheCommit) {
  LoadFields("Quenby", test::FilePageOf("Quenby").fields);
  module.ForgetLog();
  Click("buttWriteEEPROM");
  AnswerOk();
  EXPECT_THAT(TakeExchanges("reads 40001"),
              ElementsAre("writes 40068 = 0x0DDC", "writes 40066 = 0x0308", "writes 40067 = 0xFFFF",
                          "writes 40069 = 0x2710", "writes 40070 = 0x0000", "writes 40071 = 0x1388"));
}

}  // namespace
}  // namespace tarvo
