// What the Lumet page reads of its module's settings at Start, and when a search asks it to.

#include "support/lumet_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// Who makes the page read.
enum class Road { kStart, kReading };

class LumetSettings : public LumetFixture, public testing::WithParamInterface<Road> {
 protected:
  void Read() {
    if (GetParam() == Road::kStart) {
      Visit();
    } else {
      ReadEEPromFlags();
    }
  }
  /// The same, with these faults for what is read after the identity.
  void Read(std::initializer_list<ModuleFault> faults) {
    module.ForgetLog();
    module.Next(ModuleFault::None());
    for (const ModuleFault& fault : faults) module.Next(fault);
    if (GetParam() == Road::kStart) {
      Click("StartLumet");
      ASSERT_TRUE(InSession());
      Click("StopLumet");
    } else {
      ReadEEPromFlags();
    }
  }
  /// What was read, but for the polls.
  std::vector<std::string> Reads() { return Exchanges(); }

  /// Another module than the one that the page has read before, in every setting.
  void ChangeAll() {
    Set(kFlags, 0x0410);
    Set(kFilter, 200);
    Set(kStoredCommunication, 0x0463);
    Set(kMeasureSetup, 0x3612);
  }
  void ExpectFlags(bool changed) const {
    EXPECT_EQ(Checked("CheckLumet2"), !changed);
    EXPECT_EQ(Checked("CheckLumet6"), !changed);
    EXPECT_EQ(Checked("OptionLumet2"), changed);
    EXPECT_EQ(Enabled("OptionLumet1"), !changed);
    EXPECT_EQ(Enabled("OptionLumet2"), !changed);
    EXPECT_EQ(ListIndex("cbCombIngressi"), changed ? 3 : 1);
  }
  void ExpectFilter(bool changed) const { EXPECT_EQ(Text("FilterLumet"), changed ? "200" : "20"); }
  void ExpectCommunication(bool changed) const {
    EXPECT_EQ(Text("AddressLumet"), changed ? "99" : "9");
    EXPECT_EQ(Text("BaudLumet"), changed ? "57600" : "38400");
  }
  void ExpectMeasures(bool changed) const {
    EXPECT_EQ(ListIndex("cbIngresso(0)"), changed ? 1 : 3);
    EXPECT_EQ(ListIndex("cbTipoMisura(0)"), changed ? 1 : 2);
    EXPECT_EQ(ListIndex("cbIngresso(1)"), changed ? 5 : 8);
    EXPECT_EQ(ListIndex("cbTipoMisura(1)"), changed ? 3 : 0);
  }
  /// The module of before is read whole, the one of after with those faults.
  void ReadBoth(std::initializer_list<ModuleFault> faults) {
    Lumet().CheckFWVersion(2);
    Set(kFlags, 0x0109);
    Set(kFilter, 20);
    Set(kStoredCommunication, 0x0309);
    Set(kMeasureSetup, 0x0924);
    Read();
    ExpectFlags(false);
    ExpectFilter(false);
    ExpectCommunication(false);
    ExpectMeasures(false);
    ChangeAll();
    Read(faults);
  }
  static ModuleFault Refused() { return ModuleFault::Exception(4); }
};

INSTANTIATE_TEST_SUITE_P(Roads, LumetSettings, testing::Values(Road::kStart, Road::kReading),
                         [](const auto& given) { return given.param == Road::kStart ? "Start" : "Reading"; });

TEST_P(LumetSettings, AreReadOneByOneInTheirOrder) {
  ReadBoth({});
  EXPECT_THAT(Reads(), ElementsAre("reads 40001", "reads 40020", "reads 40019", "reads 40085", "reads 40018"));
  ExpectFlags(true);
  ExpectFilter(true);
  ExpectCommunication(true);
  ExpectMeasures(true);
}

TEST_P(LumetSettings, AreNotReadBehindFlagsThatAreRefusedButForTheMeasures) {
  ReadBoth({Refused()});
  EXPECT_THAT(Reads(), ElementsAre("reads 40001", "reads 40020: exception 4", "reads 40018"));
  ExpectFlags(false);
  ExpectFilter(false);
  ExpectCommunication(false);
  ExpectMeasures(true);
  EXPECT_TRUE(NothingInFront());
}

TEST_P(LumetSettings, AreReadBehindAFilterThatIsRefused) {
  ReadBoth({ModuleFault::None(), Refused()});
  EXPECT_THAT(Reads(),
              ElementsAre("reads 40001", "reads 40020", "reads 40019: exception 4", "reads 40085", "reads 40018"));
  ExpectFlags(true);
  ExpectFilter(false);
  ExpectCommunication(true);
  ExpectMeasures(true);
  EXPECT_TRUE(NothingInFront());
}

TEST_P(LumetSettings, AreReadBehindAnAddressThatIsRefused) {
  ReadBoth({ModuleFault::None(), ModuleFault::None(), Refused()});
  EXPECT_THAT(Reads(),
              ElementsAre("reads 40001", "reads 40020", "reads 40019", "reads 40085: exception 4", "reads 40018"));
  ExpectFlags(true);
  ExpectFilter(true);
  ExpectCommunication(false);
  ExpectMeasures(true);
  EXPECT_TRUE(NothingInFront());
}

TEST_P(LumetSettings, StayAsTheyWereWhereTheMeasuresAreRefused) {
  ReadBoth({ModuleFault::None(), ModuleFault::None(), ModuleFault::None(), Refused()});
  EXPECT_THAT(Reads(),
              ElementsAre("reads 40001", "reads 40020", "reads 40019", "reads 40085", "reads 40018: exception 4"));
  ExpectFlags(true);
  ExpectFilter(true);
  ExpectCommunication(true);
  ExpectMeasures(false);
  EXPECT_TRUE(NothingInFront());
}

// Flags.

struct FlagBox {
  const char* box;
  int bit;
};
constexpr FlagBox kFlagBoxes[] = {{"CheckLumet2", 0}, {"CheckLumet4", 1}, {"CheckLumet5", 2}, {"CheckLumet6", 3}};

TEST_P(LumetSettings, TickEachBoxByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kFlags, 1 << bit);
    Read();
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit == bit) << flag.box;
    EXPECT_FALSE(Checked("CheckLumet3"));
    EXPECT_EQ(Checked("OptionLumet2"), bit == 4);
    EXPECT_EQ(Checked("OptionLumet1"), bit != 4);
    EXPECT_EQ(Enabled("OptionLumet1"), bit == 3);
    EXPECT_EQ(Enabled("OptionLumet2"), bit == 3);
  }
}

TEST_P(LumetSettings, ClearEachBoxWhoseBitIsClear) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kFlags, 0xFFFF & ~(1 << bit));
    Read();
    for (const FlagBox& flag : kFlagBoxes) EXPECT_EQ(Checked(flag.box), flag.bit != bit) << flag.box;
    EXPECT_EQ(Checked("OptionLumet2"), bit != 4);
    EXPECT_EQ(Checked("OptionLumet1"), bit == 4);
    EXPECT_EQ(Enabled("OptionLumet1"), bit != 3);
    EXPECT_EQ(Enabled("OptionLumet2"), bit != 3);
  }
}

TEST_P(LumetSettings, LeaveTheAutoresetBoxAsItIs) {
  Click("CheckLumet3");
  Set(kFlags, 0xFFDF);
  Read();
  EXPECT_TRUE(Checked("CheckLumet3"));
  Click("CheckLumet3");
  Set(kFlags, 0xFFFF);
  Read();
  EXPECT_FALSE(Checked("CheckLumet3"));
}

TEST_P(LumetSettings, SelectTheConfigurationOfInputs9And10ByTheHighByte) {
  const std::pair<int, int> rows[] = {{0x0000, 0}, {0x0100, 1}, {0x0200, 2}, {0x0400, 3}, {0x0800, 4}, {0x1000, 5}};
  for (const int low : {0x00, 0xFF}) {
    for (const auto& [word, index] : rows) {
      Choose("cbCombIngressi", index == 0 ? 5 : 0);
      Set(kFlags, word | low);
      Read();
      EXPECT_EQ(ListIndex("cbCombIngressi"), index) << word;
    }
  }
}

TEST_P(LumetSettings, LeaveTheConfigurationForAHighByteThatIsNotListed) {
  for (const int word : {0x0300, 0x0500, 0x1100, 0x2000, 0x4000, 0x8000, 0xFF00}) {
    for (const int index : {0, 4}) {
      Choose("cbCombIngressi", index);
      Set(kFlags, word);
      Read();
      EXPECT_EQ(ListIndex("cbCombIngressi"), index) << word;
    }
  }
}

// Filter, address and rate.

TEST_P(LumetSettings, ShowTheFilterAsItIs) {
  for (const int filter : {0, 1, 254, 255, 32768, 65535}) {
    Set(kFilter, filter);
    Set(kStoredFilter, 33);
    Read();
    EXPECT_EQ(Text("FilterLumet"), std::to_string(filter));
  }
}

TEST_P(LumetSettings, ShowTheStoredAddressAndNotTheOneInForce) {
  Set(kCommunication, 0x0363);
  for (const int address : {0, 1, 128, 247, 255}) {
    Set(kStoredCommunication, 0x0200 | address);
    Read();
    EXPECT_EQ(Text("AddressLumet"), std::to_string(address));
    EXPECT_EQ(Text("BaudLumet"), "19200");
  }
}

TEST_P(LumetSettings, SelectTheRateByTheStoredCode) {
  Lumet().CheckFWVersion(2);
  const std::pair<int, const char*> rates[] = {{6, "1200"},  {7, "2400"},  {0, "4800"}, {1, "9600"},
                                               {2, "19200"}, {3, "38400"}, {4, "57600"}};
  for (const auto& [code, rate] : rates) {
    Set(kStoredCommunication, code << 8 | 0xFF);
    Read();
    EXPECT_EQ(Text("BaudLumet"), rate) << code;
  }
}

TEST_P(LumetSettings, TakeTheCodeFromTheWholeHighByte) {
  Set(kStoredCommunication, 0x0301);
  Read();
  ASSERT_EQ(Text("BaudLumet"), "38400");
  for (const int high : {0x05, 0x09, 0x0B, 0x11, 0x83, 0xF8, 0xFF}) {
    Set(kStoredCommunication, high << 8 | 7);
    Read();
    EXPECT_EQ(Text("BaudLumet"), "38400") << high;
    EXPECT_EQ(Text("AddressLumet"), "7");
  }
}

TEST_P(LumetSettings, LeaveTheRateWhereAnOlderListLacksTheCode) {
  SetRelease(1);
  Lumet().CheckFWVersion(1);
  Set(kStoredCommunication, 0x0201);
  Read();
  ASSERT_EQ(Text("BaudLumet"), "19200");
  for (const int code : {6, 7}) {
    Set(kStoredCommunication, code << 8 | 1);
    Read();
    EXPECT_EQ(Text("BaudLumet"), "19200") << code;
  }
}

// Measures.

struct MeasureCase {
  int byte;
  int input;  ///< position
  int type;   ///< position
};
constexpr MeasureCase kMeasureCases[] = {{0x01, 0, 0},
                                         {0x02, 1, 0},
                                         {0x07, 6, 0},
                                         {0x08, 7, 0},
                                         {0x09, 8, 0},
                                         {0x0A, 9, 0},
                                         {0x11, 0, 1},
                                         {0x21, 0, 2},
                                         {0x31, 0, 3},
                                         {0x18, 7, 1},
                                         {0x28, 7, 2},
                                         {0x38, 7, 3},
                                         {0x35, 4, 3},
                                         // No input is the first one.
                                         {0x00, 0, 0},
                                         {0x10, 0, 1},
                                         {0x30, 0, 3},
                                         // Inputs 9 and 10 have no other kind than the frequency.
                                         {0x19, 8, 0},
                                         {0x29, 8, 0},
                                         {0x3A, 9, 0}};

TEST_P(LumetSettings, SelectInputAndKindOfEachMeasureByItsByte) {
  for (int channel = 0; channel < 2; ++channel) {
    for (const MeasureCase& row : kMeasureCases) {
      SCOPED_TRACE(row.byte);
      // The other byte asks for the period of input 4.
      Set(kMeasureSetup, channel == 0 ? 0x1400 | row.byte : row.byte << 8 | 0x14);
      Read();
      EXPECT_EQ(ListIndex(Ingresso(channel)), row.input);
      EXPECT_EQ(ListIndex(TipoMisura(channel)), row.type);
      EXPECT_THAT(List(TipoMisura(channel)), SizeIs(row.input >= 8 ? 1 : 4));
      EXPECT_EQ(ListIndex(Ingresso(1 - channel)), 3);
      EXPECT_EQ(ListIndex(TipoMisura(1 - channel)), 1);
    }
  }
}

TEST_P(LumetSettings, KeepTheKindThatIsReadThoughItsInputWasChosenBefore) {
  Choose("cbIngresso(0)", 4);
  Choose("cbTipoMisura(0)", 3);
  Set(kMeasureSetup, 0x0125);
  Read();
  EXPECT_EQ(ListIndex("cbIngresso(0)"), 4);
  EXPECT_EQ(ListIndex("cbTipoMisura(0)"), 2);
}

TEST_P(LumetSettings, BearAMeasureThatNoListHas) {
  for (const int byte : {0x41, 0x81, 0xF2, 0x0B, 0x0F, 0xFF}) {
    SCOPED_TRACE(byte);
    Set(kMeasureSetup, 0x2300 | byte);
    Read();
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(ListIndex("cbIngresso(1)"), 2);
    EXPECT_EQ(ListIndex("cbTipoMisura(1)"), 2);
  }
}

TEST_P(LumetSettings, ShowAsMeasuresWhatTheSharedBufferHolds) {
  for (std::size_t i = 0; i < 20; ++i) SetPolled(i, 50'000 + static_cast<int>(i));
  Set(kMeasure1, 11);
  Set(kMeasure1 + 1, 12);
  Read();
  EXPECT_EQ(Text("tbMisura(0)"), "50005");
  EXPECT_EQ(Text("tbMisura(1)"), "50006");
}

TEST_P(LumetSettings, LeaveTheMeasuredValuesWhereTheSetupIsRefused) {
  SetPolled(5, 55);
  SetPolled(6, 66);
  Read({ModuleFault::None(), ModuleFault::None(), ModuleFault::None(), Refused()});
  EXPECT_EQ(Text("tbMisura(0)"), "0");
  EXPECT_EQ(Text("tbMisura(1)"), "0");
}

class LumetSettingsInASession : public LumetFixture {};

TEST_F(LumetSettingsInASession, LeaveTheMeasuresOfTheSharedBufferUntilTheSecondStepIsShown) {
  SetPolled(5, 55);
  Set(kMeasure1, 11);
  StartSession();
  EXPECT_EQ(Text("tbMisura(0)"), "55");
  Run(core::milliseconds(250));
  EXPECT_EQ(Text("tbMisura(0)"), "11");
}

TEST_F(LumetSettingsInASession, AreNotReadAgain) {
  StartSession();
  Set(kFlags, 0x041F);
  Set(kFilter, 200);
  Set(kStoredCommunication, 0x0463);
  Set(kMeasureSetup, 0x3612);
  Run(std::chrono::seconds(2));
  for (const FlagBox& flag : kFlagBoxes) EXPECT_FALSE(Checked(flag.box)) << flag.box;
  EXPECT_EQ(ListIndex("cbCombIngressi"), 0);
  EXPECT_EQ(Text("FilterLumet"), "10");
  EXPECT_EQ(Text("AddressLumet"), "1");
  EXPECT_EQ(ListIndex("cbIngresso(0)"), 0);
  EXPECT_THAT(Exchanges(), IsEmpty());
}

// ReadEEPromFlags.

class LumetReading : public LumetFixture {};

TEST_F(LumetReading, BeginsNoSessionAndClosesItsPort) {
  ReadEEPromFlags();
  EXPECT_EQ(line.Opens(), 1);
  EXPECT_EQ(Text("FirmwLumet"), "Firmware rel:");
  EXPECT_EQ(Text("MessageLumet"), "");
  ExpectOffline();
}

TEST_F(LumetReading, ShowsNeitherInputsNorTotals) {
  Set(kStates, 0x03FF);
  for (int reg = kCounter1; reg <= kOverflows; ++reg) Set(reg, 77);
  ReadEEPromFlags();
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_EQ(Picture(Stato(i)), 1);
    EXPECT_EQ(Text(Total(i)), "0");
  }
}

TEST_F(LumetReading, UsesTheSharedLineValues) {
  module.Line.baud = 38400;
  module.Address = 9;
  State().PCSettings = "38400,n,8,1";
  State().ModuleAddress = 9;
  Modcom().LinkParamB = 1;
  ReadEEPromFlags();
  EXPECT_EQ(Text("FilterLumet"), "10");
  EXPECT_EQ(Modcom().LinkParamB(), 3);
}

TEST_F(LumetReading, EndsAtAnotherModelWithoutAMessage) {
  for (const int identity : {0x0902, 0x020A, 0x8A02}) {
    Set(kIdentity, identity);
    module.ForgetLog();
    ReadEEPromFlags();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001")) << identity;
    EXPECT_EQ(Text("FilterLumet"), "1");
    ExpectOffline();
  }
}

TEST_F(LumetReading, EndsAtASilentModuleWithoutAMessage) {
  module.Always(ModuleFault::Unheard());
  ReadEEPromFlags();
  EXPECT_EQ(Text("FilterLumet"), "1");
  ExpectOffline();
}

TEST_F(LumetReading, HoldsTheNavigationWhileItReads) {
  Lumet().Spawn(Lumet().ReadEEPromFlags());
  ASSERT_TRUE(RunUntil([this] { return module.Requests() == 3; }));
  EXPECT_TRUE(Hourglass());
  EXPECT_NE(RefusalOf("MDIForm1.labLumet"), "");
  ASSERT_TRUE(RunUntil([this] { return !Hourglass(); }));
  EXPECT_EQ(RefusalOf("MDIForm1.labLumet"), "");
}

TEST_F(LumetReading, LeavesAPageThatStarts) {
  ReadEEPromFlags();
  StartSession();
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageLumet"), "OK");
}

// CheckFWVersion.

class LumetCheckFWVersion : public LumetFixture {
 protected:
  static constexpr const char* kBoxes[] = {"CheckLumet3", "CheckLumet4", "CheckLumet5", "CheckLumet6"};
};

TEST_F(LumetCheckFWVersion, DecidesAt2) {
  for (const int release : {0, 1}) {
    Lumet().CheckFWVersion(release);
    for (const char* box : kBoxes) EXPECT_FALSE(Enabled(box)) << box;
    EXPECT_FALSE(Enabled("OptionLumet2"));
    ExpectFiveRates();
    EXPECT_EQ(Text("MDIForm1.StatusBar1(1)"), kLumetOldFirmware);
  }
  for (const int release : {2, 3, 255}) {
    Lumet().CheckFWVersion(1);
    Lumet().CheckFWVersion(release);
    for (const char* box : kBoxes) EXPECT_TRUE(Enabled(box)) << box;
    EXPECT_TRUE(Enabled("OptionLumet2"));
    ExpectSevenRates();
  }
}

TEST_F(LumetCheckFWVersion, LeavesTheEvenOptionAndTheFirstBox) {
  for (const bool parity : {false, true}) {
    if (parity) Click("CheckLumet6");
    for (const int release : {1, 2}) {
      Lumet().CheckFWVersion(release);
      EXPECT_EQ(Enabled("OptionLumet1"), parity) << release;
      EXPECT_TRUE(Enabled("CheckLumet2")) << release;
    }
  }
}

TEST_F(LumetCheckFWVersion, TouchesNeitherLineNorFirmwareLabel) {
  Lumet().CheckFWVersion(2);
  Lumet().CheckFWVersion(1);
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_EQ(Text("FirmwLumet"), "Firmware rel:");
}

// The search.

class LumetSearch : public LumetFixture {
 protected:
  /// A search from the start page, to its end.
  void Search() {
    Click("MDIForm1.LabHome");
    module.ForgetLog();
    Click("MDIForm1.buttCheckDevice");
    ASSERT_TRUE(RunUntil([this] { return State().SearchRunning == state::kFalse && NothingInFront(); }));
    RunUntilIdle();
  }
};

TEST_F(LumetSearch, OpensThePageAndReadsTheModule) {
  Set(kFlags, 0x0801);
  Set(kFilter, 77);
  Set(kStoredCommunication, 0x0105);
  Set(kMeasureSetup, 0x0923);
  Search();
  EXPECT_EQ(Page().Name(), "frmLumet");
  EXPECT_EQ(State().NrFinestra, 6);
  EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), "Connected to Lumet, COM1,9600,n,8,1  Module Address:1");
  EXPECT_TRUE(Checked("CheckLumet2"));
  EXPECT_EQ(ListIndex("cbCombIngressi"), 4);
  EXPECT_EQ(Text("FilterLumet"), "77");
  EXPECT_EQ(Text("AddressLumet"), "5");
  EXPECT_EQ(Text("BaudLumet"), "9600");
  EXPECT_EQ(ListIndex("cbTipoMisura(0)"), 2);
  EXPECT_EQ(ListIndex("cbIngresso(1)"), 8);
  std::vector<std::string> log = module.TakeLog();
  std::erase_if(log, [](const std::string& entry) { return entry.starts_with("reads 40001"); });
  EXPECT_THAT(log, ElementsAre("reads 40020", "reads 40019", "reads 40085", "reads 40018"));
  ExpectOffline();
}

TEST_F(LumetSearch, ChecksTheVersionBeforeItReadsTheRate) {
  Set(kStoredCommunication, 0x0601);
  Search();
  ExpectSevenRates();
  EXPECT_EQ(Text("BaudLumet"), "1200");
}

TEST_F(LumetSearch, AppliesTheReleaseOfTheLowByte) {
  SetRelease(1);
  Set(kFlags, 0x0008);
  Search();
  ExpectFiveRates();
  EXPECT_FALSE(Enabled("CheckLumet4"));
  EXPECT_FALSE(Enabled("CheckLumet6"));
  EXPECT_TRUE(Enabled("OptionLumet1"));
  EXPECT_TRUE(Enabled("OptionLumet2"));
  EXPECT_EQ(Text("MDIForm1.StatusBar1(1)"), kLumetOldFirmware);
}

TEST_F(LumetSearch, LeavesAPageThatStarts) {
  Search();
  StartSession();
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageLumet"), "OK");
}

}  // namespace
}  // namespace tarvo::test
