#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::Fields;
using test::FileOf;
using test::IsBox;
using testing::ElementsAre;
using view::Icon;

class NerithFile : public test::PageFileFixture {
 protected:
  static constexpr std::size_t kSerialField = 1;
  static constexpr std::size_t kSystemField = 2;
  static constexpr std::size_t kChannelField = 3;  ///< the first of four
  static constexpr int kNerith = 0x0800;
  static constexpr int kPellor = 0x0900;
  static constexpr int kOld = 17;  ///< the last release before the sensors changed
  static constexpr int kNew = 18;

  /// Shows the page on a module of that kind, which it reads.
  void Become(int identity) {
    module[40001] = static_cast<std::uint16_t>(identity);
    module[40035] = 0x0401;
    module[40040] = 1;
    OpenPage("Nerith");
  }
  static std::string Sensor(int channel) { return Member("cbSensorType", channel); }
  static std::string Dump(int channel) { return Member("cbDumpFactor", channel); }
  static std::string Conv(int channel) { return Member("chkConv", channel); }

  static Fields Serial(int word) { return FieldsWith("Nerith", kSerialField, std::to_string(word)); }
  static Fields System(int word) { return FieldsWith("Nerith", kSystemField, std::to_string(word)); }
  void LoadSerial(int word) { LoadFields("Nerith", Serial(word)); }
  void LoadSystem(int word) { LoadFields("Nerith", System(word)); }
  /// That word for every channel.
  void LoadChannels(int word) {
    LoadFields("Nerith",
               {"1025", "1", std::to_string(word), std::to_string(word), std::to_string(word), std::to_string(word)});
  }
  std::string SavedField(std::size_t number) {
    Save();
    return FileField(number);
  }
  Fields SavedChannels() {
    Save();
    return {FileField(3), FileField(4), FileField(5), FileField(6)};
  }
};

/// On a four-channel module of the older layout.
class NerithOldFile : public NerithFile {
 protected:
  NerithOldFile() { Become(kNerith | kOld); }
};

/// On a four-channel module of the newer layout.
class NerithNewFile : public NerithFile {
 protected:
  NerithNewFile() { Become(kNerith | kNew); }
};

/// On a three-channel module.
class PellorFile : public NerithFile {
 protected:
  PellorFile() { Become(kPellor | kOld); }
};

TEST_F(NerithOldFile, HoldsTheFirstViewInQuotedLines) {
  EXPECT_EQ(Save(), "\"DATAFORMAT 1.0 Nerith\"\r\n\"1025\"\r\n\"1\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n");
}

TEST_F(NerithOldFile, HoldsWhatTheUserHasSet) {
  Click("labModuleAddress");
  AnswerChangeValue("200");
  // The page is the one with files again.
  Click("MDIForm1.labNerith");
  Choose("cbBaudRate", 5);
  Click("checkParity");
  Click("OptionEven");
  Choose("cbUnits", 3);
  Choose("cbDecimalNumbers", 2);
  for (int i = 0; i < 4; ++i) {
    Choose(Sensor(i), 3 - i);
    Choose(Dump(i), 4 + i);
  }
  EXPECT_EQ(Save(), FileOf("Nerith", {"3528", "19", "1027", "1282", "1537", "1792"}));
}

TEST_F(NerithFile, HoldsWhatWasReadOfTheModule) {
  module[40062] = 0x0207;
  module[40078] = 0x0300;
  module[40094] = 0x0101;
  module[40110] = 0x0006;
  module[40063] = module[40079] = 0x6000;
  Become(kNerith | kOld);
  EXPECT_EQ(Save(), FileOf("Nerith", {"1025", "1", "1794", "3", "257", "1536"}));
}

TEST_F(NerithOldFile, IsNotSavedAfterAValueDialog) {
  Click("labModuleAddress");
  AnswerChangeValue("200");
  Click("MDIForm1.SaveMNU");
  Answer(kPath);
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(files.Content(kPath), std::nullopt);
}

TEST_F(NerithOldFile, IsNotOpenedAfterAValueDialog) {
  Click("labModuleAddress");
  AnswerChangeValue("200");
  const View before = ViewOf("frmNerith");
  Load(FileOf("Nerith", test::FilePageOf("Nerith").fields));
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(ViewOf("frmNerith"), before);
  EXPECT_EQ(files.Reads(), 0);
}

// The line.

/// Place in `cbBaudRate` and code.
constexpr std::pair<int, int> kRates[] = {{0, 6}, {1, 7}, {2, 0}, {3, 1}, {4, 2}, {5, 3}, {6, 4}};

TEST_F(NerithOldFile, HasACodeForEachRate) {
  for (const auto& [position, code] : kRates) {
    Choose("cbBaudRate", position);
    EXPECT_EQ(SavedField(kSerialField), std::to_string(code * 1024 + 1)) << position;
  }
}

TEST_F(NerithOldFile, SelectsTheRateOfItsCode) {
  for (const auto& [position, code] : kRates) {
    LoadSerial(code * 1024 + 1);
    EXPECT_EQ(ListIndex("cbBaudRate"), position) << code;
  }
}

TEST_F(NerithOldFile, LeavesTheRateAtTheCodeThatStandsForNone) {
  LoadSerial(3 * 1024 + 1);
  LoadSerial(5 * 1024 + 2);
  EXPECT_EQ(ListIndex("cbBaudRate"), 5);
  EXPECT_EQ(Text("labModuleAddress"), "2");
}

TEST_F(NerithOldFile, ShowsAllBitsOfTheAddress) {
  for (const int address : {255, 128, 17, 1}) {
    LoadSerial(0x0400 + address);
    EXPECT_EQ(Text("labModuleAddress"), std::to_string(address));
  }
}

TEST_F(NerithOldFile, HasACodeForEachParity) {
  EXPECT_EQ(SavedField(kSerialField), "1025");
  Click("checkParity");
  Click("OptionEven");
  EXPECT_EQ(SavedField(kSerialField), "1281");
  Click("OptionOdd");
  EXPECT_EQ(SavedField(kSerialField), "1537");
  Click("checkParity");
  EXPECT_EQ(SavedField(kSerialField), "1025");
}

TEST_F(NerithOldFile, ShowsEachParityByItsCode) {
  for (const auto& [code, odd] : {std::pair{1, false}, {2, true}, {1, false}}) {
    LoadSerial(code * 256 + 1);
    EXPECT_TRUE(Checked("checkParity")) << code;
    EXPECT_EQ(Checked("OptionOdd"), odd) << code;
    EXPECT_EQ(Checked("OptionEven"), !odd) << code;
    EXPECT_TRUE(Enabled("OptionEven")) << code;
    EXPECT_TRUE(Enabled("OptionOdd")) << code;
    LoadSerial(1);
    EXPECT_FALSE(Checked("checkParity"));
    EXPECT_FALSE(Enabled("OptionEven"));
    EXPECT_FALSE(Enabled("OptionOdd"));
  }
}

TEST_F(NerithOldFile, LeavesTheParityAtACodeOfNoKind) {
  for (const int code : {1, 2}) {
    LoadSerial(code * 256 + 1);
    LoadSerial(3 * 256 + 1);
    EXPECT_TRUE(Checked("checkParity")) << code;
    EXPECT_EQ(Checked("OptionOdd"), code == 2);
    EXPECT_EQ(Checked("OptionEven"), code == 1);
    EXPECT_TRUE(Enabled("OptionEven")) << code;
    EXPECT_TRUE(Enabled("OptionOdd")) << code;
  }
}

// Units, digits and coefficients.

TEST_F(NerithOldFile, HoldsUnitsDigitsAndCoefficientsInOneWord) {
  for (int units = 0; units < 4; ++units) {
    for (int digits = 0; digits < 3; ++digits) {
      Choose("cbUnits", units);
      Choose("cbDecimalNumbers", digits);
      EXPECT_EQ(SavedField(kSystemField), std::to_string(units + 8 * digits));
    }
  }
  Click("chkDINCoefficients");
  EXPECT_EQ(SavedField(kSystemField), "51");
}

TEST_F(NerithOldFile, ShowsUnitsDigitsAndCoefficients) {
  for (int units = 0; units < 4; ++units) {
    for (int digits = 0; digits < 3; ++digits) {
      const bool coefficients = digits % 2 == 0;
      LoadSystem(units + 8 * digits + (coefficients ? 32 : 0));
      EXPECT_EQ(ListIndex("cbUnits"), units);
      EXPECT_EQ(ListIndex("cbDecimalNumbers"), digits);
      EXPECT_EQ(Checked("chkDINCoefficients"), coefficients);
    }
  }
}

TEST_F(NerithOldFile, LeavesTheUnitsThatThereAreNot) {
  LoadSystem(2);
  for (int units = 4; units <= 7; ++units) {
    LoadSystem(units + 8);
    EXPECT_EQ(ListIndex("cbUnits"), 2) << units;
    EXPECT_EQ(ListIndex("cbDecimalNumbers"), 1) << units;
  }
}

TEST_F(NerithOldFile, LeavesTheDigitsThatThereAreNot) {
  LoadSystem(8);
  LoadSystem(24 + 3);
  EXPECT_EQ(ListIndex("cbDecimalNumbers"), 1);
  EXPECT_EQ(ListIndex("cbUnits"), 3);
}

TEST_F(NerithOldFile, LooksAtSixBitsOfTheSystem) {
  LoadSystem(0xFFC0 + 2);
  EXPECT_EQ(ListIndex("cbUnits"), 2);
  EXPECT_EQ(ListIndex("cbDecimalNumbers"), 0);
  EXPECT_FALSE(Checked("chkDINCoefficients"));
  EXPECT_EQ(SavedField(kSystemField), "2");
}

// The channels, older layout.

TEST_F(NerithOldFile, HasSensorAndDampingOfEachChannel) {
  for (int i = 0; i < 4; ++i) {
    Choose(Sensor(i), i);
    Choose(Dump(i), 7 - 2 * i);
  }
  EXPECT_THAT(SavedChannels(), ElementsAre("1792", "1281", "770", "259"));
}

TEST_F(NerithOldFile, ShowsTheSensorByThreeBits) {
  for (int code = 0; code <= 3; ++code) {
    LoadChannels(code + 8);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(ListIndex(Sensor(i)), code) << i;
  }
}

TEST_F(NerithOldFile, ShowsTheDampingByThreeBits) {
  for (int damping = 0; damping <= 7; ++damping) {
    LoadChannels(damping * 256 + 0xF800);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(ListIndex(Dump(i)), damping) << i;
  }
}

TEST_F(NerithOldFile, ShowsEachChannelByItsOwnField) {
  LoadFields("Nerith", {"1025", "1", "1792", "1281", "770", "259"});
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(ListIndex(Sensor(i)), i);
    EXPECT_EQ(ListIndex(Dump(i)), 7 - 2 * i);
  }
}

TEST_F(NerithOldFile, LeavesTheKindOfValueAlone) {
  std::vector<bool> before;
  for (int i = 0; i < 4; ++i) before.push_back(Checked(Conv(i)));
  for (const int word : {0x0400, 0x0000, 0x0004}) {
    LoadChannels(word);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(Checked(Conv(i)), before[static_cast<std::size_t>(i)]) << word;
  }
}

// The channels, newer layout.

TEST_F(NerithNewFile, HoldsTheFirstViewWithItsTemperatureBoxes) {
  EXPECT_EQ(Save(), FileOf("Nerith", {"1025", "1", "4", "4", "4", "4"}));
}

TEST_F(NerithNewFile, HasThreeForTheSecondSensorAndFourForTheTemperatureBox) {
  Choose(Sensor(0), 1);
  Click(Conv(1));
  Choose(Sensor(2), 1);
  Click(Conv(2));
  Choose(Dump(2), 7);
  Choose(Dump(3), 4);
  EXPECT_THAT(SavedChannels(), ElementsAre("7", "0", "1795", "1028"));
}

TEST_F(NerithNewFile, ShowsTheSensorOfItsCode) {
  for (const auto& [code, position] : {std::pair{3, 1}, {0, 0}, {3, 1}, {1, 0}, {3, 1}, {2, 0}}) {
    LoadChannels(code);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(ListIndex(Sensor(i)), position) << code;
  }
}

TEST_F(NerithNewFile, ShowsTheDampingByTwoBits) {
  for (int damping = 0; damping <= 7; ++damping) {
    LoadChannels(damping * 256);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(ListIndex(Dump(i)), damping % 4) << damping;
  }
}

TEST_F(NerithNewFile, ShowsTheDampingBesideASensorThatThereIsNot) {
  LoadChannels(0x0100 + 4);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(ListIndex(Sensor(i)), 0) << i;
    EXPECT_EQ(ListIndex(Dump(i)), 1) << i;
  }
}

TEST_F(NerithNewFile, SetsTheTemperatureBoxesByTheTenthBit) {
  for (const auto& [word, temperature] : {std::pair{0x0400, true}, {0x0003, false}, {0x0700, true}, {0x0300, false}}) {
    LoadChannels(word);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(Checked(Conv(i)), temperature) << word;
  }
}

TEST_F(NerithNewFile, HeadsTheValuesByTheirTemperatureBoxes) {
  constexpr int kHeadings[] = {4, 3, 7, 10};
  for (const auto& [word, heading] : {std::pair{0x0000, "Resistance"}, {0x0400, "Temperature"}}) {
    LoadChannels(word);
    for (const int index : kHeadings) EXPECT_EQ(Text(Member("labelGaven", index)), heading) << index;
  }
}

TEST_F(NerithNewFile, TakesALargeDampingBackForATemperatureBox) {
  for (int i = 0; i < 4; ++i) {
    Click(Conv(i));
    Choose(Dump(i), 6);
  }
  const std::string saved = Save();
  EXPECT_EQ(FileField(kChannelField), "1536");
  Load(saved);
  AnswerOk();
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(ListIndex(Dump(i)), 2) << i;
    EXPECT_TRUE(Checked(Conv(i))) << i;
  }
}

// Three channels.

TEST_F(PellorFile, HasNothingInItsLastFieldAfterTheStart) {
  EXPECT_EQ(Save(), FileOf("Nerith", {"1025", "1", "0", "0", "0", ""}));
}

TEST_F(PellorFile, RepeatsInItsLastFieldWhatAFileHeldThere) {
  LoadFields("Nerith", test::FilePageOf("Nerith").fields);
  EXPECT_EQ(SavedField(6), "257");
  State().FileFields.at(6) = "of another page";
  EXPECT_EQ(Save(), FileOf("Nerith", {"3601", "42", "1795", "1280", "2", "of another page"}));
}

TEST_F(PellorFile, IsLoadedWithNothingInItsLastField) {
  const Fields fields = {"3601", "42", "1795", "1280", "2", ""};
  LoadFields("Nerith", fields);
  EXPECT_EQ(ListIndex(Sensor(0)), 3);
  EXPECT_EQ(ListIndex(Sensor(1)), 0);
  EXPECT_EQ(ListIndex(Sensor(2)), 2);
  EXPECT_EQ(Save(), FileOf("Nerith", fields));
}

TEST_F(PellorFile, LeavesTheFourthChannelAlone) {
  LoadChannels(0x0703);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(ListIndex(Sensor(i)), i == 3 ? 0 : 3) << i;
    EXPECT_EQ(ListIndex(Dump(i)), i == 3 ? 0 : 7) << i;
  }
}

TEST_F(NerithOldFile, IsNotLoadedWithNothingInItsLastField) {
  Load(FileOf("Nerith", {"3601", "42", "1795", "1280", "2", ""}));
  EXPECT_THAT(BoxInFront(), IsBox(core::kTypeMismatch, Icon::kExclamation));
  AnswerOk();
  // What stands before it is set.
  EXPECT_EQ(Text("labModuleAddress"), "17");
  EXPECT_EQ(ListIndex("cbUnits"), 2);
  EXPECT_EQ(ListIndex(Sensor(0)), 3);
  EXPECT_EQ(ListIndex(Dump(1)), 5);
  EXPECT_EQ(ListIndex(Sensor(2)), 2);
}

// The rest.

TEST_F(NerithOldFile, LeavesRangesBurnOutAndLiveValuesAlone) {
  module[40003] = 123;
  module[40002] = 0x0021;
  Choose("cbRangePT100(2)", 1);
  Click("chkBurnedSensor(1)");
  RunSession("Nerith", 8);
  const View before = ViewOf("frmNerith");
  ASSERT_EQ(Text("labTI_RTD(0)"), "123");
  LoadFields("Nerith", test::FilePageOf("Nerith").fields);
  const View after = ViewOf("frmNerith");
  for (int i = 0; i < 4; ++i) {
    for (const std::string& value : {Member("labTI_RTD", i) + ".Caption", Member("labChannelFail", i) + ".Visible",
                                     Member("labSensorFail", i) + ".Visible", Member("cbRangePT100", i) + ".ListIndex",
                                     Member("chkBurnedSensor", i) + ".Value"}) {
      EXPECT_EQ(after.at(value), before.at(value)) << value;
    }
  }
}

TEST_F(NerithOldFile, GoesToTheModuleByTheCommit) {
  LoadFields("Nerith", test::FilePageOf("Nerith").fields);
  module.ForgetLog();
  Click("WEEPGaven");
  EXPECT_THAT(
      TakeExchanges("reads 40001"),
      ElementsAre("writes 40040 = 0x002A", "writes 40062 = 0x0307", "writes 40063 = 0x0000", "writes 40078 = 0x0005",
                  "writes 40079 = 0x0000", "writes 40094 = 0x0200", "writes 40095 = 0x0000", "writes 40110 = 0x0101",
                  "writes 40111 = 0x0000", "writes 40035 = 0x0E11"));
}

}  // namespace
}  // namespace tarvo
