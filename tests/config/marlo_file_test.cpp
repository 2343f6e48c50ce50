#include <tuple>

#include "config/page_file_fixture.h"

namespace tarvo {
namespace {

using test::FileOf;
using test::IsBox;
using testing::ElementsAre;
using view::Icon;

class MarloFile : public test::PageFileFixture {
 protected:
  static constexpr std::size_t kBaudField = 1;
  static constexpr std::size_t kAddressField = 2;
  static constexpr std::size_t kSafeTimeField = 3;
  static constexpr std::size_t kOptionsField = 4;
  static constexpr std::size_t kLimitsField = 5;

  void LoadWith(std::size_t number, const std::string& text) { LoadFields("Marlo", FieldsWith("Marlo", number, text)); }
  std::string SavedField(std::size_t number) {
    Save();
    return FileField(number);
  }
  void TypeLimits(const std::string& threshold, const std::string& delay) {
    Type("txtValTreshold", threshold);
    Type("txtDelay", delay);
  }
};

/// On a page that could not read its module.
class MarloUnreadFile : public MarloFile {
 protected:
  MarloUnreadFile() { OpenPage("Marlo"); }
};

/// On the page of a module that has a value in each setting.
class MarloReadFile : public MarloFile {
 protected:
  MarloReadFile() {
    module[40001] = 0x0D07;
    module[40010] = 0x1102;
    module[40011] = 0xF30B;
    module[40012] = 0x0102;
    module[40013] = 65535;
    module[40016] = 0x05B4;
    OpenPage("Marlo");
  }
};

TEST_F(MarloUnreadFile, HoldsTheFirstViewInQuotedLines) {
  EXPECT_EQ(Save(), "\"DATAFORMAT 1.0 Marlo\"\r\n\"1792\"\r\n\"256\"\r\n\"0\"\r\n\"0\"\r\n\"0\"\r\n");
}

TEST_F(MarloReadFile, HoldsWhatWasReadOfTheModule) {
  EXPECT_EQ(Save(), FileOf("Marlo", {"779", "4354", "65535", "258", "1460"}));
}

TEST_F(MarloUnreadFile, HoldsWhatTheUserHasSet) {
  Edit("labAddressMarlo", "200");
  Edit("labSafetimeMarlo", "300");
  Choose("cbBaudMarlo", 6);
  Click("checkParity");
  Click("OptionEven");
  Click("CheckResetTimeout");
  Choose("ComboFailLed", 2);
  TypeLimits("20", "255");
  EXPECT_EQ(Save(), FileOf("Marlo", {"1024", "51201", "300", "513", "65480"}));
}

// The speed, and what the page keeps beside it.

/// Place in `cbBaudMarlo` and code.
constexpr std::pair<int, int> kRates[] = {{0, 6}, {1, 7}, {2, 0}, {3, 1}, {4, 2}, {5, 3}, {6, 4}};

TEST_F(MarloUnreadFile, HasACodeForEachRate) {
  for (const auto& [position, code] : kRates) {
    Choose("cbBaudMarlo", position);
    EXPECT_EQ(SavedField(kBaudField), std::to_string(code * 256));
  }
}

TEST_F(MarloUnreadFile, SelectsTheRateOfItsCode) {
  for (const auto& [position, code] : kRates) {
    LoadWith(kBaudField, std::to_string(code * 256));
    EXPECT_EQ(ListIndex("cbBaudMarlo"), position) << code;
  }
}

TEST_F(MarloUnreadFile, LooksAtThreeBitsOfTheSpeed) {
  LoadWith(kBaudField, "63744");  // 0xF900
  EXPECT_EQ(ListIndex("cbBaudMarlo"), 3);
}

TEST_F(MarloUnreadFile, LeavesTheRateAtTheCodeThatStandsForNone) {
  LoadWith(kBaudField, "768");
  LoadWith(kBaudField, "1280");
  EXPECT_EQ(ListIndex("cbBaudMarlo"), 5);
}

TEST_F(MarloUnreadFile, KeepsTheLowFourBitsBesideTheSpeed) {
  for (const auto& [field, saved] : {std::pair{"271", "271"}, {"266", "266"}, {"511", "271"}, {"256", "256"}}) {
    LoadWith(kBaudField, field);
    EXPECT_EQ(SavedField(kBaudField), saved) << field;
  }
}

TEST_F(MarloReadFile, HoldsTheLowBitsOfTheModuleUntilAFileBringsOthers) {
  Choose("cbBaudMarlo", 2);
  EXPECT_EQ(SavedField(kBaudField), "11");
  LoadWith(kBaudField, "2");
  EXPECT_EQ(SavedField(kBaudField), "2");
}

// Address and parity.

TEST_F(MarloUnreadFile, HasACodeForEachParity) {
  Click("checkParity");
  Click("OptionEven");
  EXPECT_EQ(SavedField(kAddressField), "257");
  Click("OptionOdd");
  EXPECT_EQ(SavedField(kAddressField), "258");
  Click("checkParity");
  EXPECT_EQ(SavedField(kAddressField), "256");
}

TEST_F(MarloUnreadFile, ShowsEachParityByItsCode) {
  for (const int code : {1, 0, 2, 3, 1}) {
    LoadWith(kAddressField, std::to_string(256 + code));
    const bool parity = code == 1 || code == 2;
    EXPECT_EQ(Checked("checkParity"), parity) << code;
    EXPECT_EQ(Enabled("OptionEven"), parity) << code;
    EXPECT_EQ(Enabled("OptionOdd"), parity) << code;
    if (!parity) continue;
    EXPECT_EQ(Checked("OptionEven"), code == 1);
    EXPECT_EQ(Checked("OptionOdd"), code == 2);
  }
}

TEST_F(MarloUnreadFile, ShowsAllBitsOfTheAddress) {
  for (const int address : {255, 128, 17, 1}) {
    LoadWith(kAddressField, std::to_string(address * 256 + 0xFC));
    EXPECT_EQ(Text("labAddressMarlo"), std::to_string(address));
    EXPECT_FALSE(Checked("checkParity")) << address;
  }
}

TEST_F(MarloUnreadFile, ShowsTheSafeTime) {
  for (const char* time : {"65535", "0", "250"}) {
    LoadWith(kSafeTimeField, time);
    EXPECT_EQ(Text("labSafetimeMarlo"), time);
    EXPECT_EQ(SavedField(kSafeTimeField), time);
  }
}

// The options.

TEST_F(MarloUnreadFile, HasABitForEachBoxAndTheModeOfTheLedBeside) {
  Click("CheckResetTimeout");
  EXPECT_EQ(SavedField(kOptionsField), "1");
  Click("CheckFailLed");
  EXPECT_EQ(SavedField(kOptionsField), "3");
  Click("CheckResetTimeout");
  EXPECT_EQ(SavedField(kOptionsField), "2");
  for (int mode = 0; mode < 4; ++mode) {
    Choose("ComboFailLed", mode);
    EXPECT_EQ(SavedField(kOptionsField), std::to_string(2 + 256 * mode));
  }
}

struct OptionsRead {
  std::string field;
  bool resetTimeout;
  bool failLed;
  int mode;
};

TEST_F(MarloUnreadFile, ShowsItsOptions) {
  const std::vector<OptionsRead> table = {{"1", true, false, 0},      {"2", false, true, 0},   {"3", true, true, 0},
                                          {"256", false, false, 1},   {"514", false, true, 2}, {"769", true, false, 3},
                                          {"64764", false, false, 0}, {"-1", true, true, 3}};  // 0xFCFC
  for (const OptionsRead& row : table) {
    LoadWith(kOptionsField, row.field);
    EXPECT_EQ(Checked("CheckResetTimeout"), row.resetTimeout) << row.field;
    EXPECT_EQ(Checked("CheckFailLed"), row.failLed) << row.field;
    EXPECT_EQ(ListIndex("ComboFailLed"), row.mode) << row.field;
  }
}

// Threshold and delay.

TEST_F(MarloUnreadFile, HoldsTheThresholdInTenthsUnderTheDelay) {
  TypeLimits("18", "5");
  EXPECT_EQ(SavedField(kLimitsField), "1460");
  TypeLimits("0", "1");
  EXPECT_EQ(SavedField(kLimitsField), "256");
}

TEST_F(MarloUnreadFile, HoldsATenthOfTheThreshold) {
  for (const char* threshold : {"18.5", "18,5"}) {
    TypeLimits(threshold, "5");
    EXPECT_EQ(SavedField(kLimitsField), "1465") << threshold;
  }
}

TEST_F(MarloUnreadFile, MixesAThresholdThatIsTooLargeWithTheDelay) {
  TypeLimits("30", "2");
  EXPECT_EQ(SavedField(kLimitsField), "812");  // 0x012C and 0x0200
}

TEST_F(MarloUnreadFile, ShowsTheTenthsOfTheThreshold) {
  for (const auto& [field, threshold, delay] :
       {std::tuple{"1465", "18.5", "5"}, {"180", "18", "0"}, {"255", "25.5", "0"}, {"65281", "0.1", "255"}}) {
    LoadWith(kLimitsField, field);
    EXPECT_EQ(Text("txtValTreshold"), threshold) << field;
    EXPECT_EQ(Text("txtDelay"), delay) << field;
    EXPECT_EQ(SavedField(kLimitsField), field);
  }
}

TEST_F(MarloUnreadFile, ShowsADelayOfAsManyBitsAsThereAre) {
  LoadWith(kLimitsField, "1000000");  // 3906 and 0x40
  EXPECT_EQ(Text("txtValTreshold"), "6.4");
  EXPECT_EQ(Text("txtDelay"), "3906");
  LoadWith(kLimitsField, "-600");  // cut towards zero, and 0xA8
  EXPECT_EQ(Text("txtValTreshold"), "16.8");
  EXPECT_EQ(Text("txtDelay"), "-2");
}

TEST_F(MarloReadFile, RepeatsItsLastLimitsUntilBothBoxesHoldNumbers) {
  State().FileFields.at(kLimitsField) = "of another page";
  for (const auto& [threshold, delay] : {std::pair{"abc", "5"}, {"18", "abc"}, {"", "5"}, {"18", ""}, {"1.2.3", "x"}}) {
    TypeLimits(threshold, delay);
    EXPECT_EQ(Save(), FileOf("Marlo", {"779", "4354", "65535", "258", "of another page"})) << threshold;
  }
  TypeLimits("18", "5");
  EXPECT_EQ(SavedField(kLimitsField), "1460");
  TypeLimits("abc", "5");
  EXPECT_EQ(SavedField(kLimitsField), "1460");
}

TEST_F(MarloUnreadFile, HasNoLimitsAfterTheStartWhileABoxHoldsNoNumber) {
  TypeLimits("abc", "5");
  EXPECT_EQ(SavedField(kLimitsField), "");
}

TEST_F(MarloUnreadFile, IsNotSavedWithADelayThatIsTooLarge) {
  files[kPath] = "before";
  TypeLimits("18", "99999999");
  Click("MDIForm1.SaveMNU");
  Answer(kPath);
  EXPECT_THAT(BoxInFront(), IsBox(core::kOverflow, Icon::kNone));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(files.Content(kPath), "before");
}

// The rest.

TEST_F(MarloUnreadFile, KeepsTheControlsThatWereSetBeforeAFault) {
  Load(FileOf("Marlo", FieldsWith("Marlo", kOptionsField, "blink")));
  EXPECT_THAT(BoxInFront(), IsBox(core::kTypeMismatch, Icon::kExclamation));
  AnswerOk();
  EXPECT_EQ(ListIndex("cbBaudMarlo"), 5);
  EXPECT_EQ(Text("labAddressMarlo"), "17");
  EXPECT_TRUE(Checked("OptionOdd"));
  EXPECT_EQ(Text("labSafetimeMarlo"), "250");
  EXPECT_FALSE(Checked("CheckResetTimeout"));
  EXPECT_EQ(Text("txtValTreshold"), "0");
}

TEST_F(MarloReadFile, LeavesOutputsAndLampsAlone) {
  for (int number = 40003; number <= 40008; ++number) module[number] = static_cast<std::uint16_t>(number % 16 + 1);
  module[40002] = 0x0041;
  module[40009] = 240;
  module[40015] = 0x0201;
  RunSession("Marlo", 13);
  const View before = ViewOf("frmMarlo");
  LoadFields("Marlo", test::FilePageOf("Marlo").fields);
  const View after = ViewOf("frmMarlo");
  ASSERT_EQ(Text("txtVoltage"), "24");
  for (const auto& [name, value] : before) {
    if (!name.starts_with("buttOUTMarlo") && !name.starts_with("sh") && !name.starts_with("txtVoltage")) continue;
    EXPECT_EQ(after.at(name), value) << name;
  }
}

TEST_F(MarloReadFile, GoesToTheModuleByTheCommit) {
  LoadFields("Marlo", test::FilePageOf("Marlo").fields);
  module.ForgetLog();
  Click("buttWEEPMarlo");
  AnswerOk();
  EXPECT_THAT(TakeExchanges("reads 40001"),
              ElementsAre("writes 40011 = 0x0300", "writes 40013 = 0x00FA", "writes 40012 = 0x0303",
                          "writes 40016 = 0x05B4", "writes 40010 = 0x1102"));
}

}  // namespace
}  // namespace tarvo
