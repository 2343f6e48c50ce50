#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::Fields;
using test::FileOf;
using test::IsBox;
using testing::ElementsAre;
using view::Icon;

class LumetFile : public test::PageFileFixture {
 protected:
  static constexpr std::size_t kFlagsField = 10;
  static constexpr std::size_t kCommunicationField = 11;
  static constexpr std::size_t kMeasureField = 12;
  static constexpr std::size_t kFilterField = 13;

  LumetFile() {
    module[40085] = 0x0101;
    OpenPage("Lumet");
  }
  static Fields With(std::size_t number, const std::string& text) { return FieldsWith("Lumet", number, text); }
  void LoadWith(std::size_t number, const std::string& text) { LoadFields("Lumet", With(number, text)); }
  std::vector<std::string> Totals() const {
    std::vector<std::string> totals;
    for (int i = 0; i < 10; ++i) totals.push_back(Text(Member("TotIN", i)));
    return totals;
  }
  /// The flags' boxes, then `OptionLumet2`.
  std::vector<bool> Boxes() const {
    return {Checked("CheckLumet2"), Checked("CheckLumet4"), Checked("CheckLumet5"), Checked("CheckLumet6"),
            Checked("OptionLumet2")};
  }
  /// Input and type of the first measure, then of the second.
  std::vector<int> Measures() const {
    return {ListIndex("cbIngresso(0)"), ListIndex("cbTipoMisura(0)"), ListIndex("cbIngresso(1)"),
            ListIndex("cbTipoMisura(1)")};
  }
  std::string SavedField(std::size_t number) {
    Save();
    return FileField(number);
  }
};

TEST_F(LumetFile, HoldsTheFirstViewInQuotedLines) {
  EXPECT_EQ(Save(),
            "\"DATAFORMAT 1.0 Lumet\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n"
            "\"0\"\r\n\"0\"\r\n\"1\"\r\n\"257\"\r\n\"1\"\r\n");
}

TEST_F(LumetFile, HoldsWhatTheUserHasSet) {
  Click("CheckLumet2");
  Click("CheckLumet5");
  Choose("cbCombIngressi", 2);
  Edit("AddressLumet", "200");
  Choose("BaudLumet", 3);
  Choose("cbIngresso(0)", 4);
  Choose("cbTipoMisura(0)", 3);
  Choose("cbIngresso(1)", 8);
  Edit("FilterLumet", "254");
  EXPECT_EQ(Save(), FileOf("Lumet", {"0", "0", "0", "0", "0", "0", "0", "0", "0", "517", "968", "2357", "254"}));
}

TEST_F(LumetFile, HoldsWhatASessionRead) {
  for (int i = 0; i < 8; ++i) module[40003 + i] = static_cast<std::uint16_t>(65535 - i);
  module[40011] = 1;
  module[40012] = 2;
  module[40013] = 3;
  module[40018] = 0x1A32;
  module[40019] = 77;
  module[40020] = 0x101B;
  module[40085] = 0x0642;
  RunSession("Lumet", 10);
  ASSERT_EQ(Text("TotIN(0)"), "65535");
  EXPECT_EQ(Save(), FileOf("Lumet", {"65534", "65533", "65532", "65531", "65530", "65529", "65528", "131073", "3",
                                     "4123", "1602", "2610", "77"}));
}

TEST_F(LumetFile, LeavesTheFirstCounterOut) {
  module[40003] = 4711;
  RunSession("Lumet", 10);
  ASSERT_EQ(Text("TotIN(0)"), "4711");
  LoadFields("Lumet", test::FilePageOf("Lumet").fields);
  EXPECT_THAT(Totals(), ElementsAre("4711", "65535", "1", "2", "3", "4", "5", "6", "2147483647", "7"));
  EXPECT_EQ(Save().find("4711"), std::string::npos);
}

TEST_F(LumetFile, TakesItsTotalsAsTheyStand) {
  Fields fields = test::FilePageOf("Lumet").fields;
  for (std::size_t i = 0; i < 9; ++i) fields[i] = "total " + std::to_string(i + 1);
  LoadFields("Lumet", fields);
  for (int i = 1; i <= 9; ++i) EXPECT_EQ(Text(Member("TotIN", i)), "total " + std::to_string(i));
  EXPECT_EQ(Save(), FileOf("Lumet", fields));
}

// The flags.

struct Flag {
  const char* box;
  int mask;
};
constexpr Flag kFlags[] = {{"CheckLumet2", 1}, {"CheckLumet4", 2}, {"CheckLumet5", 4}, {"CheckLumet6", 8}};

TEST_F(LumetFile, HasABitForEachBoxThatTheUserSets) {
  int word = 0;
  for (const Flag& flag : kFlags) {
    Click(flag.box);
    word |= flag.mask;
    EXPECT_EQ(SavedField(kFlagsField), std::to_string(word)) << flag.box;
  }
  Click("OptionLumet2");
  EXPECT_EQ(SavedField(kFlagsField), "31");
  Click("OptionLumet1");
  EXPECT_EQ(SavedField(kFlagsField), "15");
}

TEST_F(LumetFile, KeepsTheOptionOfAParityThatIsOff) {
  LoadWith(kFlagsField, "16");
  EXPECT_EQ(SavedField(kFlagsField), "16");
}

TEST_F(LumetFile, HasNoBitForTheAutoresetBox) {
  LoadWith(kFlagsField, "65535");
  EXPECT_FALSE(Checked("CheckLumet3"));
  LoadWith(kFlagsField, "0");
  Click("CheckLumet3");
  EXPECT_EQ(SavedField(kFlagsField), "0");
  LoadWith(kFlagsField, "0");
  EXPECT_TRUE(Checked("CheckLumet3"));
}

struct FlagsRead {
  std::string field;
  std::vector<bool> boxes;  ///< the four boxes, then `OptionLumet2`
};

TEST_F(LumetFile, SetsEachBoxByItsBit) {
  const std::vector<FlagsRead> table = {
      {"1", {true, false, false, false, false}},    {"2", {false, true, false, false, false}},
      {"4", {false, false, true, false, false}},    {"8", {false, false, false, true, false}},
      {"16", {false, false, false, false, true}},   {"31", {true, true, true, true, true}},
      {"224", {false, false, false, false, false}}, {"-1", {true, true, true, true, true}}};
  for (const FlagsRead& row : table) {
    LoadWith(kFlagsField, row.field);
    EXPECT_EQ(Boxes(), row.boxes) << row.field;
    EXPECT_NE(Checked("OptionLumet1"), Checked("OptionLumet2")) << row.field;
  }
}

TEST_F(LumetFile, EnablesTheOptionsWithTheParity) {
  for (const auto& [field, enabled] : {std::pair{"8", true}, {"16", false}, {"24", true}, {"0", false}}) {
    LoadWith(kFlagsField, field);
    EXPECT_EQ(Enabled("OptionLumet1"), enabled) << field;
    EXPECT_EQ(Enabled("OptionLumet2"), enabled) << field;
  }
}

/// Place in `cbCombIngressi` and what stands for it.
constexpr std::pair<int, const char*> kCombinations[] = {{1, "256"},  {2, "512"},  {3, "1024"},
                                                         {4, "2048"}, {5, "4096"}, {0, "0"}};

TEST_F(LumetFile, HasAHighBitForEachCombinationButTheFirst) {
  for (const auto& [position, field] : kCombinations) {
    Choose("cbCombIngressi", position);
    EXPECT_EQ(SavedField(kFlagsField), field);
  }
}

TEST_F(LumetFile, SelectsTheCombinationOfItsHighByte) {
  for (const auto& [position, field] : kCombinations) {
    LoadWith(kFlagsField, field);
    EXPECT_EQ(ListIndex("cbCombIngressi"), position) << field;
  }
}

TEST_F(LumetFile, LeavesTheCombinationAtAHighByteThatStandsForNone) {
  LoadWith(kFlagsField, "1024");
  for (const char* field : {"768", "1280", "8192", "16384", "32768", "-1", "65280"}) {
    LoadWith(kFlagsField, field);
    EXPECT_EQ(ListIndex("cbCombIngressi"), 3) << field;
  }
}

TEST_F(LumetFile, IgnoresFlagsThatAreNoNumber) {
  LoadWith(kFlagsField, "543");
  for (const char* field : {"", "many", "0x10", "1e2"}) {
    Fields fields = With(kFlagsField, field);
    fields[kFilterField - 1] = std::string("filter ") + field;
    LoadFields("Lumet", fields);
    EXPECT_THAT(Boxes(), ElementsAre(true, true, true, true, true)) << field;
    EXPECT_EQ(ListIndex("cbCombIngressi"), 2) << field;
    // What stands behind them is taken.
    EXPECT_EQ(Text("FilterLumet"), std::string("filter ") + field);
  }
}

// Address and speed.

TEST_F(LumetFile, ShowsAddressAndSpeed) {
  LoadWith(kCommunicationField, "1279");
  EXPECT_EQ(Text("AddressLumet"), "255");
  EXPECT_EQ(Text("BaudLumet"), "57600");
  LoadWith(kCommunicationField, "1");
  EXPECT_EQ(Text("AddressLumet"), "1");
  EXPECT_EQ(Text("BaudLumet"), "4800");
}

TEST_F(LumetFile, LooksAtTheWholeByteOfTheSpeed) {
  Choose("BaudLumet", 3);
  LoadWith(kCommunicationField, "2306");
  EXPECT_EQ(Text("AddressLumet"), "2");
  EXPECT_EQ(ListIndex("BaudLumet"), 3);
}

TEST_F(LumetFile, KnowsTheSlowSpeedsOnceItsFirmwareIsKnown) {
  LoadWith(kCommunicationField, "1537");
  EXPECT_EQ(Text("BaudLumet"), "4800");
  RunSession("Lumet", 10);
  LoadWith(kCommunicationField, "1537");
  EXPECT_EQ(Text("BaudLumet"), "1200");
  LoadWith(kCommunicationField, "1793");
  EXPECT_EQ(Text("BaudLumet"), "2400");
  EXPECT_EQ(SavedField(kCommunicationField), "1793");
}

TEST_F(LumetFile, StopsAtACommunicationThatIsNoNumberAndSaysThatItIsLoaded) {
  LoadFields("Lumet", {"1", "1", "1", "1", "1", "1", "1", "1", "1", "0", "785", "1", "20"});
  Fields fields = test::FilePageOf("Lumet").fields;
  for (const char* communication : {"", "COM1", "0x311"}) {
    fields[kCommunicationField - 1] = communication;
    LoadFields("Lumet", fields);
    EXPECT_THAT(Totals(), ElementsAre("0", "65535", "1", "2", "3", "4", "5", "6", "2147483647", "7"));
    EXPECT_THAT(Boxes(), ElementsAre(true, true, true, true, true));
    EXPECT_EQ(Text("AddressLumet"), "17");
    EXPECT_EQ(Text("BaudLumet"), "38400");
    EXPECT_THAT(Measures(), ElementsAre(0, 0, 0, 0)) << communication;
    EXPECT_EQ(Text("FilterLumet"), "20") << communication;
  }
  // The channel is closed, and a save renews all fields from the view.
  EXPECT_EQ(SavedField(kCommunicationField), "785");
  EXPECT_EQ(FileField(kFilterField), "20");
}

// The measures.

TEST_F(LumetFile, HasAByteForEachMeasure) {
  for (int input = 0; input < 8; ++input) {
    Choose("cbIngresso(0)", input);
    Choose("cbTipoMisura(0)", input % 4);
    Choose("cbIngresso(1)", 7 - input);
    Choose("cbTipoMisura(1)", 3 - input % 4);
    const int low = input + 1 + 16 * (input % 4);
    const int high = 8 - input + 16 * (3 - input % 4);
    EXPECT_EQ(SavedField(kMeasureField), std::to_string(256 * high + low));
  }
}

struct MeasureRead {
  std::string field;
  std::vector<int> shown;  ///< input and type of the first measure, then of the second
};

TEST_F(LumetFile, ShowsInputAndTypeOfEachMeasure) {
  const std::vector<MeasureRead> table = {{"257", {0, 0, 0, 0}},    // 0x0101
                                          {"14387", {2, 3, 7, 3}},  // 0x3833
                                          {"4640", {0, 2, 1, 1}},   // 0x1220: no input is shown as the first
                                          {"0", {0, 0, 0, 0}},     {"2570", {9, 0, 9, 0}},  // 0x0A0A
                                          {"6713", {8, 0, 9, 0}},  // 0x1A39: inputs 9 and 10 have the frequency only
                                          {"305", {0, 3, 0, 0}}};  // 0x0131
  for (const MeasureRead& row : table) {
    LoadWith(kMeasureField, row.field);
    EXPECT_EQ(Measures(), row.shown) << row.field;
  }
}

TEST_F(LumetFile, ListsTheTypesOfItsInputs) {
  LoadWith(kMeasureField, "2307");  // 0x0903
  EXPECT_THAT(List("cbTipoMisura(0)"), ElementsAre("frequency", "period", "TON", "TOFF"));
  EXPECT_THAT(List("cbTipoMisura(1)"), ElementsAre("frequency"));
}

TEST_F(LumetFile, ShowsTheMeasuresOfTheSharedBuffer) {
  SetBuffer(5, 50000);
  SetBuffer(6, 6);
  LoadFields("Lumet", test::FilePageOf("Lumet").fields);
  EXPECT_EQ(Text("tbMisura(0)"), "50000");
  EXPECT_EQ(Text("tbMisura(1)"), "6");
}

TEST_F(LumetFile, IgnoresMeasuresThatAreNoNumber) {
  LoadWith(kMeasureField, "14387");
  for (const char* field : {"", "TON", "0x0101"}) {
    Fields fields = With(kMeasureField, field);
    fields[kFilterField - 1] = std::string("filter ") + field;
    LoadFields("Lumet", fields);
    EXPECT_THAT(Measures(), ElementsAre(2, 3, 7, 3)) << field;
    EXPECT_EQ(Text("FilterLumet"), std::string("filter ") + field);
  }
}

// The rest.

TEST_F(LumetFile, TakesItsFilterAsItStands) {
  for (const char* field : {"254", "0", "1000", "slow", ""}) {
    LoadWith(kFilterField, field);
    EXPECT_EQ(Text("FilterLumet"), field);
    EXPECT_EQ(SavedField(kFilterField), field);
  }
}

TEST_F(LumetFile, NamesJorunInItsWords) {
  Load(FileOf("Lumet", test::FilePageOf("Lumet").fields));
  EXPECT_THAT(BoxInFront(), IsBox("Data correctly loaded! Press 'WRITE EEPROM' to update Jorun", Icon::kInformation));
}

TEST_F(LumetFile, MayEndInAFurtherBlankLine) {
  const Fields fields = test::FilePageOf("Lumet").fields;
  Load(FileOf("Lumet", fields) + "\r\n");
  EXPECT_THAT(BoxInFront(), IsBox(test::Loaded("Lumet"), Icon::kInformation));
  AnswerOk();
  EXPECT_EQ(Text("FilterLumet"), "254");
  EXPECT_EQ(Save(), FileOf("Lumet", fields));
}

TEST_F(LumetFile, LeavesTheLiveValuesAlone) {
  module[40002] = 0x0201;
  module[40003] = 65535;
  module[40015] = 0x0002;
  RunSession("Lumet", 10);
  LoadFields("Lumet", test::FilePageOf("Lumet").fields);
  EXPECT_EQ(Picture("StatoIN(0)"), 2);
  EXPECT_EQ(Picture("StatoIN(1)"), 1);
  EXPECT_EQ(Picture("StatoIN(9)"), 2);
  EXPECT_EQ(BackColor("OverFlowIN(0)"), 64);
  EXPECT_EQ(BackColor("OverFlowIN(1)"), 255);
  EXPECT_EQ(Percent("BargLumet1"), 100);
  EXPECT_EQ(Percent("BargLumet2"), 0);
}

TEST_F(LumetFile, GoesToTheModuleByTheCommit) {
  LoadFields("Lumet", test::FilePageOf("Lumet").fields);
  module[40001] = 0x0A03;
  module.ForgetLog();
  Click("WEEPLumet");
  AnswerOk();
  EXPECT_THAT(TakeExchanges("reads 40001"), ElementsAre("writes 40084 = 0x081F", "writes 40082 = 0x0A23",
                                                        "writes 40085 = 0x0311", "writes 40083 = 0x00FE"));
}

}  // namespace
}  // namespace tarvo
