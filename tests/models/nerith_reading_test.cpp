// How the page of Nerith and Pellor reads its module: when it is entered, and what it makes of the registers.

#include "support/nerith_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

// Entering the page.

class NerithEntry : public NerithModule, public testing::WithParamInterface<NerithKind> {
 protected:
  NerithEntry() { SetKind(GetParam(), kNew); }

  /// Clicks on the page's label and lets time go by until the module has taken so many requests.
  void EnterUntilRequest(int requests) {
    ClickAndGoOn("MDIForm1.labNerith");
    ASSERT_TRUE(RunUntil([&] { return module.Requests() == requests; }));
  }
  /// As the page is once its module is read, or could not be.
  void ExpectEntered() {
    EXPECT_EQ(Page().Name(), "frmNerith");
    EXPECT_EQ(State().NrFinestra, 9);
    EXPECT_EQ(State().pageReadDone, state::kTrue);
    ExpectOffline();
  }
};

INSTANTIATE_TEST_SUITE_P(, NerithEntry, testing::Values(kNerith, kPellor),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(NerithEntry, ReadsTheModuleOneRegisterAtATime) {
  line.ForgetCounts();
  Enter();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SettingsReads(GetParam().channels)));
  EXPECT_EQ(line.Opens(), 1);
  ExpectEntered();
}

TEST_P(NerithEntry, IsTheSameByTheMenu) {
  Click("MDIForm1.menuNerith");
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SettingsReads(GetParam().channels)));
  ExpectEntered();
}

TEST_P(NerithEntry, TellsModelAndLineInTheStatusBar) {
  Enter();
  EXPECT_EQ(Panel2(), std::string("Connected to  ") + GetParam().name + " , COM1,9600,n,8,1  Module Address:1");
}

TEST_P(NerithEntry, TellsTheLineThatIsUsed) {
  module.Line.baud = 38400;
  module.Address = 17;
  State().PCSettings = "38400,n,8,1";
  State().ModuleAddress = 17;
  Enter();
  EXPECT_EQ(Panel2(), std::string("Connected to  ") + GetParam().name + " , COM1,38400,n,8,1  Module Address:17");
}

TEST_P(NerithEntry, EnablesTheFourthChannelWhereItIsThere) {
  Enter();
  for (const std::string& name : ChannelControls(3)) EXPECT_EQ(Enabled(name), GetParam().channels == 4) << name;
  for (int i = 0; i < 3; ++i) {
    for (const std::string& name : ChannelControls(i)) EXPECT_TRUE(Enabled(name)) << name;
  }
}

TEST_P(NerithEntry, LeavesTheFourthChannelOfAThreeChannelModuleUnread) {
  for (int i = 0; i < kMostChannels; ++i) SetChannel(i, 0x0305, 0x6000);
  Enter();
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ListIndex(Dump(i)), 5) << i;
  EXPECT_EQ(ListIndex(Dump(3)), GetParam().channels == 4 ? 5 : 0);
  EXPECT_EQ(Checked(Burned(3)), GetParam().channels == 4);
}

TEST_P(NerithEntry, KeepsTheUserOnThePageUntilTheModuleIsRead) {
  EnterUntilRequest(2);
  EXPECT_TRUE(Hourglass());
  for (const char* name : {"LabHome", "labBelk", "MenuBelk", "buttCheckDevice"}) {
    EXPECT_NE(RefusalOf(std::string("MDIForm1.") + name), "") << name;
  }
  RunUntilIdle();
  ExpectEntered();
}

TEST_P(NerithEntry, HasItsNumberOnlyWhenTheModuleIsRead) {
  EnterUntilRequest(5);
  EXPECT_NE(State().NrFinestra, 9);
  EXPECT_EQ(State().pageReadDone, state::kFalse);
  RunUntilIdle();
  ExpectEntered();
}

TEST_P(NerithEntry, ReadsTheModuleAnewAtEachVisit) {
  Enter();
  Click("MDIForm1.LabHome");
  EXPECT_EQ(State().pageReadDone, state::kFalse);
  Set(kSystem, 0x12);
  module.ForgetLog();
  Enter();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SettingsReads(GetParam().channels)));
  EXPECT_EQ(ListIndex("cbUnits"), 2);
  ExpectEntered();
}

TEST_P(NerithEntry, BeginsNoSession) {
  Enter();
  EXPECT_FALSE(Playing("MediaPlayer1"));
  ExpectEntered();
}

TEST_P(NerithEntry, LeavesTheMeasuredValuesAtZero) {
  for (int reg = kValue1; reg < kValue1 + kMostChannels; ++reg) Set(reg, 77);
  Set(kStatus, 0x00FF);
  Enter();
  EXPECT_THAT(Values(), ElementsAre("0", "0", "0", "0"));
  for (int i = 0; i < kMostChannels; ++i) {
    EXPECT_FALSE(Visible(Failed(i))) << i;
    EXPECT_FALSE(Visible(Broken(i))) << i;
  }
}

TEST_P(NerithEntry, SetsTheValuesOfAnEarlierSessionToZero) {
  Enter();
  Set(kValue1, 77);
  StartSession();
  RunThroughADecode();
  ASSERT_EQ(Text(Value(0)), "77");
  Click("StopOswin");
  VisitAnew();
  EXPECT_THAT(Values(), ElementsAre("0", "0", "0", "0"));
}

class NerithEntryRefused : public NerithModule {
 protected:
  void ExpectRefused() {
    EXPECT_EQ(Panel2(), kThisIsNoNerith);
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(State().NrFinestra, 9);
    EXPECT_EQ(State().pageReadDone, state::kTrue);
    ExpectOffline();
  }
};

TEST_F(NerithEntryRefused, TellsAnotherModelInTheStatusBarOnly) {
  for (const int identity : {0x0A12, 0x0712, 0x1612, 0x0012, 0x8812, 0x8912, 0x1208, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    module.ForgetLog();
    VisitAnew();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    ExpectRefused();
  }
}

TEST_F(NerithEntryRefused, TellsASilentModuleInTheStatusBarOnly) {
  module.Always(ModuleFault::Unheard());
  Enter();
  module.Always(ModuleFault::None());
  ExpectRefused();
}

TEST_F(NerithEntryRefused, KeepsWhatThePageShowed) {
  Set(kSystem, 0x2A);
  SetChannel(1, 0x0304, 0x5000);
  Enter();
  Set(kIdentity, 0x0712);
  Set(kSystem, 0);
  SetChannel(1, 0, 0);
  VisitAnew();
  EXPECT_EQ(ListIndex("cbUnits"), 2);
  EXPECT_EQ(ListIndex("cbDecimalNumbers"), 1);
  EXPECT_TRUE(Checked("chkDINCoefficients"));
  EXPECT_EQ(ListIndex(Dump(1)), 4);
  EXPECT_EQ(ListIndex(Range(1)), 1);
}

TEST_F(NerithEntryRefused, StillFillsTheListsAtTheFirstGoodRead) {
  module.Always(ModuleFault::Unheard());
  Enter();
  module.Always(ModuleFault::None());
  VisitAnew();
  EXPECT_THAT(List(Sensor(0)), ElementsAre("PT100", "NI100"));
}

TEST_F(NerithEntryRefused, StillFillsTheListsAtStart) {
  SetKind(kNerith, kOld);
  module.Always(ModuleFault::Unheard());
  Enter();
  module.Always(ModuleFault::None());
  StartSession();
  EXPECT_THAT(List(Sensor(0)), ElementsAre("0-PT100", "1-PT500", "2-PT1000", "3-NI100"));
}

// Address, parity and rate.

class NerithReading : public NerithFixture {};

TEST_F(NerithReading, ShowsTheAddress) {
  for (const int address : {1, 2, 128, 255}) {
    Set(kSerial, 0x1D00 | address);
    VisitAnew();
    EXPECT_EQ(Text("labModuleAddress"), std::to_string(address));
  }
}

TEST_F(NerithReading, SelectsTheRateByItsCode) {
  const std::pair<int, int> rows[] = {{6, 0}, {7, 1}, {0, 2}, {1, 3}, {2, 4}, {3, 5}, {4, 6}};
  const char* const rates[] = {"1200", "2400", "4800", "9600", "19200", "38400", "57600"};
  for (const int others : {0xE301, 0x0001}) {
    for (const auto& [code, index] : rows) {
      Set(kSerial, others | code << 10);
      VisitAnew();
      EXPECT_EQ(ListIndex("cbBaudRate"), index) << code;
      EXPECT_EQ(Text("cbBaudRate"), rates[index]) << code;
    }
  }
}

TEST_F(NerithReading, LeavesTheRateForACodeThatThereIsNot) {
  for (const int code : {0, 3}) {
    Set(kSerial, code << 10 | 1);
    VisitAnew();
    const int selected = ListIndex("cbBaudRate");
    Set(kSerial, 5 << 10 | 9);
    VisitAnew();
    EXPECT_EQ(ListIndex("cbBaudRate"), selected);
    EXPECT_EQ(Text("labModuleAddress"), "9");
  }
}

TEST_F(NerithReading, ShowsTheParity) {
  struct Row {
    int code;
    bool on;
    bool even;
    bool odd;
  };
  for (const Row& row : {Row{1, true, true, false}, Row{2, true, false, true}, Row{1, true, true, false},
                         Row{0, false, true, false}, Row{2, true, false, true}, Row{0, false, false, true}}) {
    SCOPED_TRACE(row.code);
    Set(kSerial, 0xFC01 | row.code << 8);
    VisitAnew();
    EXPECT_EQ(Checked("checkParity"), row.on);
    EXPECT_EQ(Checked("OptionEven"), row.even);
    EXPECT_EQ(Checked("OptionOdd"), row.odd);
    EXPECT_EQ(Enabled("OptionEven"), row.on);
    EXPECT_EQ(Enabled("OptionOdd"), row.on);
  }
}

TEST_F(NerithReading, SelectsNoParityOptionForACodeThatThereIsNot) {
  for (const int code : {1, 2}) {
    Set(kSerial, 0x0401 | code << 8);
    VisitAnew();
    Set(kSerial, 0x0701);
    VisitAnew();
    EXPECT_TRUE(Checked("checkParity"));
    EXPECT_EQ(Checked("OptionEven"), code == 1);
    EXPECT_EQ(Checked("OptionOdd"), code == 2);
  }
}

// Units, digits and coefficients.

TEST_F(NerithReading, SelectsTheUnits) {
  const char* const units[] = {"Kelvin", "Celsius", "Farenheit", "Rankine"};
  for (const int others : {0x0000, 0xFF20}) {
    for (int code = 3; code >= 0; --code) {
      Set(kSystem, others | code);
      VisitAnew();
      EXPECT_EQ(ListIndex("cbUnits"), code);
      EXPECT_EQ(Text("cbUnits"), units[code]);
    }
  }
}

TEST_F(NerithReading, SelectsTheNumberOfDigits) {
  for (const int others : {0x0001, 0xFF21}) {
    for (int digits = 2; digits >= 0; --digits) {
      Set(kSystem, others | digits << 3);
      VisitAnew();
      EXPECT_EQ(ListIndex("cbDecimalNumbers"), digits);
    }
  }
}

TEST_F(NerithReading, TicksTheCoefficientsByTheirBit) {
  for (const int word : {0x0021, 0x0001, 0xFFF1, 0xFFD1}) {
    Set(kSystem, word);
    VisitAnew();
    EXPECT_EQ(Checked("chkDINCoefficients"), (word & 0x20) != 0) << word;
  }
}

// Channels.

TEST_F(NerithReading, SelectsTheDumpFactorOfEachChannel) {
  for (int channel = 0; channel < kMostChannels; ++channel) {
    for (int factor = 7; factor >= 0; --factor) {
      Set(First(channel), 0xF0F8 | factor);
      VisitAnew();
      for (int i = 0; i < kMostChannels; ++i) EXPECT_EQ(ListIndex(Dump(i)), i == channel ? factor : 0) << i;
    }
  }
}

TEST_F(NerithReading, SelectsTheRangeOfEachChannel) {
  const std::pair<int, int> rows[] = {{0x1000, 1}, {0x2000, 2}, {0x0000, 0}, {0x3000, 2},
                                      {0x4FFF, 0}, {0xDFFF, 1}, {0xEFFF, 2}, {0xFFFF, 2}};
  for (int channel = 0; channel < kMostChannels; ++channel) {
    for (const auto& [word, index] : rows) {
      Set(Second(channel), word);
      VisitAnew();
      EXPECT_EQ(ListIndex(Range(channel)), index) << word;
      EXPECT_EQ(ListIndex(Range((channel + 1) % kMostChannels)), 0) << word;
    }
    Set(Second(channel), 0);
  }
}

TEST_F(NerithReading, TicksTheBurnOutOfEachChannel) {
  for (int channel = 0; channel < kMostChannels; ++channel) {
    for (const int word : {0x4000, 0x0000, 0xFFFF, 0xBFFF}) {
      Set(Second(channel), word);
      VisitAnew();
      for (int i = 0; i < kMostChannels; ++i) {
        EXPECT_EQ(Checked(Burned(i)), i == channel && (word & kBurned) != 0) << word;
      }
    }
    Set(Second(channel), 0);
  }
}

// The two layouts.

TEST_F(NerithReading, SelectsPlatinumOrNickelOnNewFirmware) {
  const std::pair<int, const char*> rows[] = {{0x0300, "NI100"}, {0x0000, "PT100"}, {0x0700, "NI100"},
                                              {0x0100, "PT100"}, {0xFFFF, "NI100"}, {0x0200, "PT100"},
                                              {0x0B00, "NI100"}, {0x0600, "PT100"}};
  for (int channel = 0; channel < kMostChannels; ++channel) {
    for (const auto& [word, sensor] : rows) {
      Set(First(channel), word);
      VisitAnew();
      EXPECT_EQ(Text(Sensor(channel)), sensor) << word;
      EXPECT_EQ(Text(Sensor((channel + 1) % kMostChannels)), "PT100") << word;
    }
    Set(First(channel), 0);
  }
}

TEST_F(NerithReading, ShowsTemperatureOrResistanceOnNewFirmware) {
  for (int channel = 0; channel < kMostChannels; ++channel) {
    for (const int word : {0x0400, 0x0000, 0x0700, 0xFBFF, 0xFFFF, 0x0300}) {
      Set(First(channel), word);
      VisitAnew();
      for (int i = 0; i < kMostChannels; ++i) {
        const bool temperature = i != channel || (word & kResistance) == 0;
        EXPECT_EQ(Checked(Conv(i)), temperature) << word;
        EXPECT_EQ(Text(Heading(i)), temperature ? "Temperature" : "Resistance") << word;
      }
    }
    Set(First(channel), 0);
  }
}

TEST_F(NerithReading, ListsTwoSensorsOnNewFirmware) {
  for (int i = 0; i < kMostChannels; ++i) {
    EXPECT_THAT(List(Sensor(i)), ElementsAre("PT100", "NI100"));
    EXPECT_TRUE(Visible(Conv(i))) << i;
  }
}

TEST_F(NerithReading, HidesTheTemperatureBoxesOfOldFirmwareAfterNewer) {
  ASSERT_TRUE(Visible(Conv(0)));
  SetKind(kNerith, kOld);
  VisitAnew();
  for (int i = 0; i < kMostChannels; ++i) EXPECT_FALSE(Visible(Conv(i))) << i;
}

class NerithFirmware : public NerithModule, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(, NerithFirmware, testing::Values(0, 1, 17, 18, 19, 255), testing::PrintToStringParamName());

TEST_P(NerithFirmware, DecidesAboutListsAndTemperatureBoxes) {
  const bool isNew = GetParam() >= 18;
  SetKind(kNerith, GetParam());
  Enter();
  for (int i = 0; i < kMostChannels; ++i) {
    if (isNew) {
      EXPECT_THAT(List(Sensor(i)), ElementsAre("PT100", "NI100"));
    } else {
      EXPECT_THAT(List(Sensor(i)), ElementsAre("0-PT100", "1-PT500", "2-PT1000", "3-NI100"));
    }
    EXPECT_EQ(Visible(Conv(i)), isNew) << i;
  }
}

TEST_P(NerithFirmware, TakesACodeOf2AsItsLayoutHasIt) {
  SetKind(kNerith, GetParam());
  Set(First(0), 0x0200);
  Enter();
  EXPECT_EQ(Text(Sensor(0)), GetParam() >= 18 ? "PT100" : "2-PT1000");
}

class NerithOldFirmware : public NerithModule {
 protected:
  NerithOldFirmware() {
    SetKind(kNerith, kOld);
    OpenPage();
  }
};

TEST_F(NerithOldFirmware, SelectsTheSensorByItsCode) {
  const char* const sensors[] = {"0-PT100", "1-PT500", "2-PT1000", "3-NI100"};
  for (int channel = 0; channel < kMostChannels; ++channel) {
    for (int code = 3; code >= 0; --code) {
      Set(First(channel), 0xF8F8 | code << 8);
      VisitAnew();
      EXPECT_EQ(ListIndex(Sensor(channel)), code);
      EXPECT_EQ(Text(Sensor(channel)), sensors[code]);
    }
  }
}

TEST_F(NerithOldFirmware, SelectsTheFirstSensorForACodeThatThereIsNotAndStillTheDumpFactor) {
  for (int code = 4; code <= 7; ++code) {
    Set(First(2), 0x0201);
    VisitAnew();
    ASSERT_EQ(ListIndex(Sensor(2)), 2);
    Set(First(2), code << 8 | 6);
    Set(Second(2), 0x6000);
    VisitAnew();
    EXPECT_EQ(ListIndex(Sensor(2)), 0) << code;
    EXPECT_EQ(ListIndex(Dump(2)), 6) << code;
    EXPECT_EQ(ListIndex(Range(2)), 2) << code;
    EXPECT_TRUE(Checked(Burned(2))) << code;
    EXPECT_TRUE(NothingInFront());
  }
}

TEST_F(NerithOldFirmware, KeepsItsHeadingsWhateverTheThirdSensorBit) {
  std::vector<std::string> before;
  for (int i = 0; i < kMostChannels; ++i) before.push_back(Text(Heading(i)));
  for (int i = 0; i < kMostChannels; ++i) Set(First(i), 0x0400);
  VisitAnew();
  for (int i = 0; i < kMostChannels; ++i) EXPECT_EQ(Text(Heading(i)), before[static_cast<std::size_t>(i)]) << i;
}

TEST_F(NerithOldFirmware, KeepsItsListsForAModuleThatComesLater) {
  SetKind(kNerith, kNew);
  Set(First(0), 0x0300);
  VisitAnew();
  EXPECT_THAT(List(Sensor(0)), ElementsAre("0-PT100", "1-PT500", "2-PT1000", "3-NI100"));
  EXPECT_EQ(ListIndex(Sensor(0)), 1);
  EXPECT_TRUE(Visible(Conv(0)));
}

// Reads that fail.

class NerithFailedRead : public NerithFixture {
 protected:
  NerithFailedRead() {
    Set(kSerial, 0x1209);
    Set(kSystem, 0x2A);
    for (int i = 0; i < kMostChannels; ++i) SetChannel(i, 0x0705, 0x5000);
  }
  /// Reads the module anew; the request behind so many others is refused.
  void FailAt(int request) {
    for (int i = 0; i < request; ++i) module.Next(ModuleFault::None());
    module.Next(ModuleFault::Exception(4));
    module.ForgetLog();
    VisitAnew();
  }
  std::vector<std::string> ReadsFailedAt(std::size_t request) {
    std::vector<std::string> reads = SettingsReads();
    reads.at(request) += ": exception 4";
    return reads;
  }
};

TEST_F(NerithFailedRead, OfTheAddressGoesOn) {
  FailAt(1);
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(ReadsFailedAt(1)));
  EXPECT_EQ(ListIndex("cbUnits"), 2);
  EXPECT_EQ(ListIndex(Dump(3)), 5);
  ExpectOffline();
}

TEST_F(NerithFailedRead, OfTheUnitsLeavesThem) {
  FailAt(2);
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(ReadsFailedAt(2)));
  EXPECT_EQ(ListIndex("cbUnits"), 1);
  EXPECT_EQ(ListIndex("cbDecimalNumbers"), 0);
  EXPECT_FALSE(Checked("chkDINCoefficients"));
  EXPECT_EQ(Text("labModuleAddress"), "9");
  EXPECT_EQ(ListIndex(Dump(3)), 5);
  ExpectOffline();
}

TEST_F(NerithFailedRead, OfAChannelIsToldAndTheOthersGoOn) {
  for (int channel = 0; channel < kMostChannels; ++channel) {
    SCOPED_TRACE(channel);
    for (int i = 0; i < kMostChannels; ++i) SetChannel(i, 0, 0);
    VisitAnew();
    for (int i = 0; i < kMostChannels; ++i) SetChannel(i, 0x0705, 0x5000);
    FailAt(3 + 2 * channel);
    EXPECT_THAT(module.TakeLog(), ElementsAreArray(ReadsFailedAt(static_cast<std::size_t>(3 + 2 * channel))));
    EXPECT_EQ(Panel1(), "Unable to read : " + std::to_string(First(channel)));
    for (int i = 0; i < kMostChannels; ++i) {
      const bool read = i != channel;
      EXPECT_EQ(ListIndex(Dump(i)), read ? 5 : 0) << i;
      EXPECT_EQ(ListIndex(Sensor(i)), read ? 1 : 0) << i;
      EXPECT_EQ(Checked(Conv(i)), !read) << i;
      EXPECT_EQ(ListIndex(Range(i)), 1) << "its second register is read all the same";
      EXPECT_TRUE(Checked(Burned(i))) << i;
    }
    ExpectOffline();
  }
}

TEST_F(NerithFailedRead, OfTheSecondRegisterLeavesRangeAndBurnOut) {
  for (int channel = 0; channel < kMostChannels; ++channel) {
    SCOPED_TRACE(channel);
    for (int i = 0; i < kMostChannels; ++i) SetChannel(i, 0, 0);
    VisitAnew();
    for (int i = 0; i < kMostChannels; ++i) SetChannel(i, 0x0705, 0x5000);
    FailAt(4 + 2 * channel);
    EXPECT_THAT(module.TakeLog(), ElementsAreArray(ReadsFailedAt(static_cast<std::size_t>(4 + 2 * channel))));
    for (int i = 0; i < kMostChannels; ++i) {
      const bool read = i != channel;
      EXPECT_EQ(ListIndex(Dump(i)), 5) << i;
      EXPECT_EQ(ListIndex(Range(i)), read ? 1 : 0) << i;
      EXPECT_EQ(Checked(Burned(i)), read) << i;
    }
    ExpectOffline();
  }
}

TEST_F(NerithFailedRead, OfAllTheRestStillEndsTheReading) {
  module.Next(ModuleFault::None());
  module.Always(ModuleFault::Exception(4));
  VisitAnew();
  module.Always(ModuleFault::None());
  EXPECT_THAT(Panel1(), testing::StartsWith("Unable to read : "));
  EXPECT_THAT(Panel2(), testing::StartsWith("Connected to  Nerith"));
  ExpectOffline();
}

// A reading that ends early.

TEST_F(NerithReading, GoesNoFurtherThanTheAddressOnceThePageIsRead) {
  auto& page = dynamic_cast<pages::DevicePage&>(*program.FindWindow("frmNerith"));
  Set(kSerial, 0x1209);
  Set(kSystem, 0x2A);
  SetChannel(0, 0x0705, 0x5000);
  page.Spawn(page.ReadEEPromFlags());
  ASSERT_TRUE(RunUntil([this] { return module.Requests() > 0 && !Hourglass() && !Modcom().CommBusy(); }));
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "reads 40035"));
  EXPECT_EQ(Text("labModuleAddress"), "1");
  EXPECT_EQ(ListIndex("cbUnits"), 1);
  EXPECT_EQ(ListIndex(Dump(0)), 0);
}

}  // namespace
}  // namespace tarvo::test
