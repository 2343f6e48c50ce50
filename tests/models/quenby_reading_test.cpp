// How the Quenby page reads its module without a session: when it is entered, and what it makes of the registers.

#include "support/quenby_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;

// Entering the page.

class QuenbyEntry : public QuenbyModule {
 protected:
  /// Clicks on the page's label and lets time go by until the module has taken so many requests.
  void EnterUntilRequest(int requests) {
    ClickAndGoOn("MDIForm1.LabQuenby");
    ASSERT_TRUE(RunUntil([&] { return module.Requests() == requests; }));
  }
  /// As the page is once its module is read, or could not be.
  void ExpectEntered() {
    EXPECT_EQ(Page().Name(), "frmQuenby");
    EXPECT_EQ(State().NrFinestra, 11);
    EXPECT_EQ(State().pageEntered, state::kTrue);
    ExpectOffline();
  }
};

TEST_F(QuenbyEntry, ReadsTheModuleOneRegisterAtATime) {
  line.ForgetCounts();
  Click("MDIForm1.LabQuenby");
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SettingsReads()));
  EXPECT_EQ(line.Opens(), 1);
  ExpectEntered();
}

TEST_F(QuenbyEntry, IsTheSameByTheMenu) {
  Click("MDIForm1.mnuQuenby");
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SettingsReads()));
  ExpectEntered();
}

TEST_F(QuenbyEntry, HoldsStartUntilTheModuleIsRead) {
  const History start(At("frmQuenby.buttStart"), "Enabled");
  EnterUntilRequest(9);
  EXPECT_THAT(start.Values<bool>(), ElementsAre(false));
  RunUntilIdle();
  EXPECT_THAT(start.Values<bool>(), ElementsAre(false, true));
  ExpectEntered();
}

TEST_F(QuenbyEntry, KeepsTheUserOnThePageUntilTheModuleIsRead) {
  EnterUntilRequest(2);
  EXPECT_TRUE(Hourglass());
  for (const char* name : {"LabHome", "labBelk", "MenuBelk", "buttCheckDevice"}) {
    EXPECT_NE(RefusalOf(std::string("MDIForm1.") + name), "") << name;
  }
  RunUntilIdle();
  ExpectEntered();
}

TEST_F(QuenbyEntry, HasItsNumberOnlyWhenTheModuleIsRead) {
  EnterUntilRequest(9);
  EXPECT_EQ(State().NrFinestra, -1);
  EXPECT_EQ(State().pageEntered, state::kFalse);
  RunUntilIdle();
  ExpectEntered();
}

TEST_F(QuenbyEntry, ReadsNothingAtTheNextVisit) {
  OpenPage();
  module.ForgetLog();
  Click("MDIForm1.LabHome");
  EXPECT_EQ(State().pageEntered, state::kTrue);
  Click("MDIForm1.LabQuenby");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  ExpectEntered();
}

TEST_F(QuenbyEntry, ReadsAgainOnceItCountsAsNotEntered) {
  OpenPage();
  module.ForgetLog();
  VisitAnew();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SettingsReads()));
  ExpectEntered();
}

TEST_F(QuenbyEntry, ReadsNothingOnceItCountsAsEntered) {
  State().pageEntered = state::kTrue;
  OpenPage();
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  ExpectEntered();
}

TEST_F(QuenbyEntry, ReadsNothingWhenADialogOverThePageCloses) {
  OpenPage();
  module.ForgetLog();
  Edit("labAddress", "7");
  Click(Output(1));
  Click("dlgSetNewValue.Cancel");
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_EQ(Text("labAddress"), "7");
}

TEST_F(QuenbyEntry, EndsWhatCountedAsASession) {
  State().StartComm = state::kTrue;
  Click("MDIForm1.LabQuenby");
  EXPECT_EQ(State().StartComm, state::kFalse);
}

TEST_F(QuenbyEntry, EndsWhatCountedAsASessionAtTheNextVisitToo) {
  OpenPage();
  Click("MDIForm1.LabHome");
  State().StartComm = state::kTrue;
  Click("MDIForm1.LabQuenby");
  EXPECT_EQ(State().StartComm, state::kFalse);
}

TEST_F(QuenbyEntry, SpeaksToThePortLineAndAddressOfPcSetup) {
  MemoryLine otherLine(scheduler);
  MemoryModule other(scheduler, otherLine, 7);
  other.Line = {19200, bus::Parity::kEven};
  other[kIdentity] = 0x0F00;
  other[kSafeTime] = 123;
  ports.Connect(2, otherLine);
  State().PCPort = 2;
  State().PCSettings = "19200,e,8,1";
  State().ModuleAddress = 7;
  OpenPage();
  EXPECT_EQ(Text("labTimeout"), "123");
  EXPECT_THAT(other.TakeLog(), ElementsAreArray(SettingsReads()));
  EXPECT_FALSE(otherLine.IsOpen());
}

TEST_F(QuenbyEntry, TellsAnotherModuleInTheStatusBarAndReadsNoMoreOfIt) {
  for (const int identity : {0x0D00, 0x0E00, 0x1000, 0x8F00, 0x000F, 0x0000, 0x1F00}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    VisitAnew();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_EQ(Panel2(), kThisIsNoQuenby);
    EXPECT_EQ(Text("labTimeout"), "0");
    ExpectEntered();
  }
}

TEST_F(QuenbyEntry, TakesAnyLowByteOfTheIdentity) {
  for (const int identity : {0x0F00, 0x0F01, 0x0FFF}) {
    Set(kIdentity, identity);
    VisitAnew();
    EXPECT_THAT(module.TakeLog(), ElementsAreArray(SettingsReads())) << identity;
    EXPECT_NE(Panel2(), kThisIsNoQuenby) << identity;
  }
}

TEST_F(QuenbyEntry, TellsASilentModuleLikewise) {
  module.Always(ModuleFault::Unheard());
  OpenPage();
  EXPECT_THAT(module.TakeLog(), Each(StartsWith("reads 40001")));
  EXPECT_EQ(Panel2(), kThisIsNoQuenby);
  module.Always(ModuleFault::None());
  ExpectEntered();
}

TEST_F(QuenbyEntry, IsPossibleWithoutAPort) {
  ports.Disconnect(1);
  OpenPage();
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  ExpectEntered();
}

TEST_F(QuenbyEntry, GoesOnBehindARegisterThatIsRefused) {
  for (std::size_t refused = 1; refused < SettingsReads().size(); ++refused) {
    std::vector<std::string> expected = SettingsReads();
    expected[refused] += ": exception 2";
    for (std::size_t i = 0; i < refused; ++i) module.Next(ModuleFault::None());
    module.Next(ModuleFault::Exception(2));
    VisitAnew();
    EXPECT_THAT(module.TakeLog(), ElementsAreArray(expected));
    ExpectEntered();
  }
}

TEST_F(QuenbyEntry, ShowsTheRegistersBehindOneThatIsRefused) {
  Set(kSafeTime, 77);
  SetOutputs(1, 2, 3);
  for (int i = 0; i < 3; ++i) module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(2));
  OpenPage();
  ASSERT_THAT(module.TakeLog(), Contains("reads 40004: exception 2"));
  EXPECT_EQ(Text("labTimeout"), "77");
  EXPECT_THAT(OutputTexts(), ElementsAre("1", "2", "3"));
}

TEST_F(QuenbyEntry, KeepsWhatItShowedOfARegisterThatIsRefused) {
  Set(kFlags, kAllFlags);
  Set(kStatus, 0x0003);
  Set(kSafeTime, 77);
  Set(kCommunication, 0x0305);
  SetOutputs(1, 20, 300);
  OpenPage();
  module.Next(ModuleFault::None());
  for (std::size_t i = 1; i < SettingsReads().size(); ++i) module.Next(ModuleFault::Exception(2));
  VisitAnew();
  EXPECT_EQ(Text("labFW"), "FW vers. : 3");
  EXPECT_TRUE(Checked("CheckError(0)"));
  EXPECT_TRUE(Checked("CheckError(1)"));
  EXPECT_EQ(FlagsShown(), kAllFlags);
  EXPECT_EQ(Text("labTimeout"), "77");
  EXPECT_EQ(Text("labAddress"), "5");
  EXPECT_EQ(Text("cbBaud"), "38400");
  EXPECT_THAT(OutputTexts(), ElementsAre("1", "20", "300"));
}

// What it shows of what it reads.

class QuenbyReading : public QuenbyFixture {};

TEST_F(QuenbyReading, ShowsTheFirmwareAfterItsOwnWords) {
  const std::pair<int, const char*> rows[] = {
      {0, "FW vers. : 0"}, {3, "FW vers. : 3"}, {12, "FW vers. : 12"}, {258, "FW vers. : 258"}};
  for (const auto& [version, text] : rows) {
    Set(kFirmware, version);
    VisitAnew();
    EXPECT_EQ(Text("labFW"), text);
  }
}

TEST_F(QuenbyReading, KeepsTheFirmwareThatItShowedWhenAnotherModuleAnswers) {
  Set(kIdentity, 0x0D00);
  Set(kFirmware, 9);
  VisitAnew();
  EXPECT_EQ(Text("labFW"), "FW vers. : 3");
}

TEST_F(QuenbyReading, TicksEachErrorBoxByItsOwnBitOfTheStatus) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Set(kStatus, 1 << bit);
    VisitAnew();
    EXPECT_EQ(Checked("CheckError(0)"), bit == 0);
    EXPECT_EQ(Checked("CheckError(1)"), bit == 1);
    Set(kStatus, 0xFFFF & ~(1 << bit));
    VisitAnew();
    EXPECT_EQ(Checked("CheckError(0)"), bit != 0);
    EXPECT_EQ(Checked("CheckError(1)"), bit != 1);
  }
}

TEST_F(QuenbyReading, ShowsTheSafeTimeWithoutSign) {
  for (const int time : {0, 1, 32767, 32768, 65535}) {
    Set(kSafeTime, time);
    VisitAnew();
    EXPECT_EQ(Text("labTimeout"), std::to_string(time));
  }
}

TEST_F(QuenbyReading, ShowsTheAddressOfTheLowByte) {
  for (const int address : {1, 16, 128, 255}) {
    Set(kCommunication, 0x0300 | address);
    VisitAnew();
    EXPECT_EQ(Text("labAddress"), std::to_string(address));
    EXPECT_EQ(Text("cbBaud"), "38400");
  }
}

TEST_F(QuenbyReading, SelectsTheRateByTheCodeOfTheHighByte) {
  const std::pair<int, const char*> rates[] = {{6, "1200"},  {7, "2400"},  {0, "4800"}, {1, "9600"},
                                               {2, "19200"}, {3, "38400"}, {4, "57600"}};
  for (const auto& [code, rate] : rates) {
    Set(kCommunication, code << 8 | 0x80);
    VisitAnew();
    EXPECT_EQ(Text("cbBaud"), rate) << code;
  }
}

TEST_F(QuenbyReading, LeavesTheRateWhereTheCodeHasNoEntry) {
  Set(kCommunication, 0x0301);
  VisitAnew();
  Set(kCommunication, 0x0507);
  VisitAnew();
  EXPECT_EQ(Text("cbBaud"), "38400");
  EXPECT_EQ(Text("labAddress"), "7");
}

TEST_F(QuenbyReading, TakesTheWorkingRegistersNotTheirImages) {
  for (int number = kStoredCommunication; number < kStoredCommunication + 6; ++number) Set(number, 0x0A7F);
  VisitAnew();
  EXPECT_EQ(Text("labAddress"), "1");
  EXPECT_EQ(Text("labTimeout"), "50");
  EXPECT_EQ(FlagsShown(), 0);
  EXPECT_THAT(OutputTexts(), Each(std::string("0")));
  EXPECT_THAT(DefaultTexts(), Each(std::string("0")));
}

TEST_F(QuenbyReading, ShowsTheOutputsAndLeavesTheDefaults) {
  EnterDefault(0, "11");
  EnterDefault(1, "22");
  EnterDefault(2, "33");
  SetOutputs(1, 5000, 10000);
  VisitAnew();
  EXPECT_THAT(OutputTexts(), ElementsAre("1", "5000", "10000"));
  EXPECT_THAT(DefaultTexts(), ElementsAre("11", "22", "33"));
}

TEST_F(QuenbyReading, WritesNothingThoughTheListsChange) {
  Set(kFlags, kAllFlags);
  VisitAnew();
  for (const Flag& list : kLists) EXPECT_EQ(ListIndex(list.name), 1) << list.name;
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SettingsReads()));
}

// Flags, by the two roads on which they come into the view.

enum class Road { kReading, kPoll };

class QuenbyShownFlags : public QuenbyFixture, public testing::WithParamInterface<Road> {
 protected:
  void Show(int flags) {
    Set(kFlags, flags);
    if (GetParam() == Road::kReading) {
      VisitAnew();
    } else {
      if (!InSession()) StartSession();
      RunThroughADecode();
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Roads, QuenbyShownFlags, testing::Values(Road::kReading, Road::kPoll),
                         [](const auto& given) { return given.param == Road::kReading ? "Reading" : "Poll"; });

TEST_P(QuenbyShownFlags, SetEachControlByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(1 << bit);
    EXPECT_EQ(FlagsShown(), 1 << bit & kAllFlags);
  }
}

TEST_P(QuenbyShownFlags, ClearEachControlWhoseBitIsClear) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    Show(0xFFFF & ~(1 << bit));
    EXPECT_EQ(FlagsShown(), kAllFlags & ~(1 << bit));
  }
}

TEST_P(QuenbyShownFlags, SelectTheFirstEntryOfEachListByAClearBit) {
  Show(0xFFFF);
  for (const Flag& list : kLists) EXPECT_EQ(ListIndex(list.name), 1) << list.name;
  Show(0);
  for (const Flag& list : kLists) EXPECT_EQ(ListIndex(list.name), 0) << list.name;
}

TEST_P(QuenbyShownFlags, SelectOneKindOfParity) {
  Show(0x0010);
  EXPECT_TRUE(Checked("OptionOdd"));
  EXPECT_FALSE(Checked("OptionEven"));
  Show(0xFFEF);
  EXPECT_FALSE(Checked("OptionOdd"));
  EXPECT_TRUE(Checked("OptionEven"));
}

TEST_P(QuenbyShownFlags, EnableTheKindsOfParityByTheParityBit) {
  Show(0x0008);
  EXPECT_TRUE(Enabled("OptionEven"));
  EXPECT_TRUE(Enabled("OptionOdd"));
  Show(0xFFF7);
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
}

}  // namespace
}  // namespace tarvo::test
