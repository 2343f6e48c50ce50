// What the pages of the family "OTHER DEVICES!" have alike: their session, their lock, and the flags of the PLC side.

#include <algorithm>
#include <tuple>

#include "support/plc_page_fixture.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class PlcPageTest : public PlcPageFixture, public testing::WithParamInterface<InputPage> {
 protected:
  PlcPageTest() : PlcPageFixture(GetParam()) {}
};

std::string NameOf(const testing::TestParamInfo<InputPage>& given) {
  return given.param.model;
}

// The session.

class PlcSession : public PlcPageTest {
 protected:
  /// What a session locks on both pages.
  std::vector<std::string> Locked() const {
    std::vector<std::string> names = {BitOrder(), Own("WEEP"), Own("Reset")};
    for (int i = 0; i < kBoxes; ++i) names.push_back(Box(i));
    for (int input = 0; input < kInputs; ++input) names.push_back(Own("Filter", input));
    return names;
  }
  void ExpectLocked(bool locked) const {
    for (const std::string& name : Locked()) EXPECT_EQ(Enabled(name), !locked) << name;
  }
};

INSTANTIATE_TEST_SUITE_P(Pages, PlcSession, testing::Values(kHollin, kKelmar), NameOf);

TEST_P(PlcSession, IsThatOfThePageWithItsNumber) {
  EXPECT_EQ(Page().Name(), GetParam().model);
  EXPECT_EQ(State().NrFinestra, GetParam().number);
  EXPECT_EQ(State().FamilyShown, state::kFalse);
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_P(PlcSession, IsReachedByTheLabelOnceItsFamilyIsChosen) {
  Click("MDIForm1.MenuBelk");
  EXPECT_FALSE(Visible(Label()));
  EXPECT_NE(RefusalOf(Label()), "");
  Choose("MDIForm1.cbSelectDevice", 1);
  ASSERT_TRUE(Visible(Label()));
  Click(Label());
  EXPECT_EQ(Page().Name(), GetParam().model);
  EXPECT_EQ(State().NrFinestra, GetParam().number);
}

TEST_P(PlcSession, HasItsMenuItemUnderTheOtherDevices) {
  const view::MenuItem* menu = dynamic_cast<view::MenuItem&>(At(Menu())).Menu();
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->Name(), "mnuOthers");
  EXPECT_EQ(Text("MDIForm1.mnuOthers"), "Other Devices");
  EXPECT_EQ(Text(Label()), GetParam().model);
}

TEST_P(PlcSession, ShowsItsFamilyWhicheverWayThePageIsReached) {
  Click("MDIForm1.MenuBelk");
  Click(Menu());
  EXPECT_EQ(ListIndex("MDIForm1.cbSelectDevice"), 1);
  for (const char* label : {"MDIForm1.labHollin", "MDIForm1.labKelmar"}) EXPECT_TRUE(Visible(label)) << label;
  for (const char* label : {"MDIForm1.labBelk", "MDIForm1.labGaven"}) EXPECT_FALSE(Visible(label)) << label;
}

TEST_P(PlcSession, BeginsTheSameWayAgain) {
  StartSession();
  Click(Own("Stop"));
  module.ForgetLog();
  Click(Own("Start"));
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(StartReads(GetParam())));
}

TEST_P(PlcSession, HasBegunWhenTheFirstBlockIsRead) {
  State().ReadStep = 5;
  State().RunKind = 77;
  StartUntilRequest(2);
  EXPECT_TRUE(InSession());
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_TRUE(TimersRest());
}

TEST_P(PlcSession, GivesItsOwnFamilysLabelsBackWithStop) {
  StartSession();
  Click(Own("Stop"));
  for (const char* label : {"MDIForm1.labHollin", "MDIForm1.labKelmar"}) {
    EXPECT_TRUE(Visible(label)) << label;
    EXPECT_TRUE(Enabled(label)) << label;
  }
  EXPECT_FALSE(Visible("MDIForm1.labBelk"));
  EXPECT_EQ(ListIndex("MDIForm1.cbSelectDevice"), 1);
}

TEST_P(PlcSession, LocksTheSettingsAsLongAsItLasts) {
  ExpectLocked(false);
  StartSession();
  ExpectLocked(true);
  Run(std::chrono::seconds(2));
  ExpectLocked(true);
  Click(Own("Stop"));
  ExpectLocked(false);
}

TEST_P(PlcSession, RefusesGesturesOnWhatIsLocked) {
  StartSession();
  for (const std::string& name : Locked()) EXPECT_EQ(RefusalOf(name), name + " is disabled") << name;
  Run(std::chrono::seconds(1));
  EXPECT_THAT(Exchanges(), IsEmpty());
}

TEST_P(PlcSession, GoesOnWhenItsFirstReadsAreRefused) {
  StartUntilRequest(1);
  for (std::size_t i = 1; i < StartReads(GetParam()).size(); ++i) module.Next(ModuleFault::Exception(2));
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(NothingInFront());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(Own("Message")), "OK");
}

TEST_P(PlcSession, IsUndoneByStopWhileItBegins) {
  ReadModule();  // what comes first may leave Stop deaf
  StartUntilRequest(2);
  Click(Own("Stop"));
  RunUntilIdle();
  ExpectOffline();
  ExpectLocked(false);
  EXPECT_FALSE(Playing("MediaPlayer1"));
  module.ForgetLog();
  StartSession();
}

TEST_P(PlcSession, NeverAsksForTheStoredAddress) {
  Set(kStoredCommunication, 0x0309);
  Click(Own("Start"));
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), Not(testing::Contains("reads 40066")));
}

// The page has no line settings.

class PlcView : public PlcPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, PlcView, testing::Values(kHollin, kKelmar), NameOf);

TEST_P(PlcView, HasNeitherAddressNorBaudRate) {
  for (const char* control : {"Address", "labAddress", "Baud", "cbBaud"}) {
    EXPECT_EQ(FindControl(Own(control)), nullptr) << control;
  }
}

TEST_P(PlcView, BeginsWithNothingSelected) {
  for (int i = 0; i < kBoxes; ++i) EXPECT_FALSE(Checked(Box(i))) << i;
  EXPECT_FALSE(Checked(BitOrder()));
  EXPECT_FALSE(Checked(RawData()));
  EXPECT_THAT(LitLamps(), IsEmpty());
}

TEST_P(PlcView, HasItsCaptions) {
  const char* boxes[] = {"Speed Up Acquisition", "INPUT #1", "INPUT #2", "INPUT #3", "INPUT #4", "STATUS"};
  for (int i = 0; i < kBoxes; ++i) EXPECT_EQ(Text(Box(i)), boxes[i]);
  EXPECT_EQ(Text(BitOrder()), "Rev. Bit Order");
  EXPECT_EQ(Text(RawData()), "Raw");
  EXPECT_EQ(Text(ScaledData()), "Scaled ");
  EXPECT_EQ(Text(Own("Start")), "&Start");
  EXPECT_EQ(Text(Own("Stop")), "S&top");
  EXPECT_EQ(Text(Own("WEEP")), "&Write EEprom");
  EXPECT_EQ(Text(Own("Reset")), "Module &Reset");
  EXPECT_EQ(ToolTip(Own("Start")), "Start Communication");
  EXPECT_EQ(ToolTip(Own("Stop")), "Stop Communication");
}

// The flags as Start shows them.

class PlcFlags : public PlcPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, PlcFlags, testing::Values(kHollin, kKelmar), NameOf);

TEST_P(PlcFlags, AreShownEachByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    BeginWithFlags(1 << bit);
    for (int i = 0; i < kBoxes; ++i) EXPECT_EQ(Checked(Box(i)), Mask(i) == 1 << bit) << i;
    EXPECT_EQ(Checked(RawData()), bit == 13);
    EXPECT_EQ(Checked(ScaledData()), bit != 13);
    EXPECT_EQ(Checked(BitOrder()), bit == 14);
  }
}

TEST_P(PlcFlags, AreShownClearEachByItsOwnBit) {
  for (int bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    BeginWithFlags(0xFFFF & ~(1 << bit));
    for (int i = 0; i < kBoxes; ++i) EXPECT_EQ(Checked(Box(i)), Mask(i) != 1 << bit) << i;
    EXPECT_EQ(Checked(RawData()), bit != 13);
    EXPECT_EQ(Checked(ScaledData()), bit == 13);
    EXPECT_EQ(Checked(BitOrder()), bit != 14);
  }
}

TEST_P(PlcFlags, AreNotShownAgainByTheRepeatingDecode) {
  BeginWithFlags(0x6302);
  Set(kFlags, 0x1C00);
  Run(std::chrono::seconds(2));
  const std::array shown = {true, true, true, false, false, false};
  for (int i = 0; i < kBoxes; ++i) EXPECT_EQ(Checked(Box(i)), shown.at(static_cast<std::size_t>(i))) << i;
  EXPECT_TRUE(Checked(RawData()));
  EXPECT_TRUE(Checked(BitOrder()));
}

TEST_P(PlcFlags, ToggleOnThePageAloneWithoutASession) {
  Click(Box(1));  // lets the other inputs go off again
  for (const std::string& box : {Box(0), Box(2), Box(5), BitOrder()}) {
    Click(box);
    EXPECT_TRUE(Checked(box)) << box;
    Click(box);
    EXPECT_FALSE(Checked(box)) << box;
  }
  ExpectNothingOnTheLine();
  EXPECT_TRUE(TimersRest());
}

TEST_P(PlcFlags, ShowOneKindOfDataWithoutASession) {
  Click(RawData());
  EXPECT_TRUE(Checked(RawData()));
  EXPECT_FALSE(Checked(ScaledData()));
  Click(RawData());
  EXPECT_TRUE(Checked(RawData()));
  Click(ScaledData());
  EXPECT_TRUE(Checked(ScaledData()));
  EXPECT_FALSE(Checked(RawData()));
  ExpectNothingOnTheLine();
}

// The last of the four inputs stays on.

class PlcLastInput : public PlcPageTest {
 protected:
  void ExpectInputs(const std::vector<int>& on) const {
    for (int input = 1; input <= kInputs; ++input) {
      EXPECT_EQ(Checked(Box(input)), std::ranges::find(on, input) != on.end()) << input;
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Pages, PlcLastInput, testing::Values(kHollin, kKelmar), NameOf);

TEST_P(PlcLastInput, StaysOnWhicheverItIs) {
  for (int input = 1; input <= kInputs; ++input) {
    Set(kFlags, Mask(input));
    ReadModule();
    for (int click = 0; click < 3; ++click) {
      Click(Box(input));
      ExpectInputs({input});
    }
  }
}

TEST_P(PlcLastInput, StaysOnThoughTheOtherBoxesAreOn) {
  Set(kFlags, 0x0002 | 0x1000 | kReversed | Mask(2));
  ReadModule();
  Click(Box(2));
  ExpectInputs({2});
}

TEST_P(PlcLastInput, IsWhatIsLeftOfTwo) {
  for (int first = 1; first <= kInputs; ++first) {
    for (int second = 1; second <= kInputs; ++second) {
      if (first == second) continue;
      SCOPED_TRACE(testing::Message() << first << ' ' << second);
      Set(kFlags, Mask(first) | Mask(second));
      ReadModule();
      Click(Box(first));
      ExpectInputs({second});
      Click(Box(second));
      ExpectInputs({second});
    }
  }
}

TEST_P(PlcLastInput, IsWhatIsLeftOfAll) {
  Set(kFlags, 0x0F00);
  ReadModule();
  Click(Box(1));
  ExpectInputs({2, 3, 4});
  Click(Box(4));
  ExpectInputs({2, 3});
  Click(Box(2));
  ExpectInputs({3});
  Click(Box(3));
  ExpectInputs({3});
}

TEST_P(PlcLastInput, MayBeTheFirstToo) {
  for (int input = 1; input <= kInputs; ++input) {
    Set(kFlags, 0);
    ReadModule();
    Click(Box(input));
    ExpectInputs({input});
  }
}

TEST_P(PlcLastInput, HoldsNeitherSpeedNorStatusNorBitOrder) {
  Set(kFlags, 0x0002 | 0x1000 | kReversed);
  ReadModule();
  for (const std::string& box : {Box(0), Box(5), BitOrder()}) {
    Click(box);
    EXPECT_FALSE(Checked(box)) << box;
  }
}

TEST_P(PlcLastInput, IsWrittenAsOnInASession) {
  for (int input = 1; input <= kInputs; ++input) {
    SCOPED_TRACE(input);
    BeginWithFlags(Mask(input));
    Unlock(Box(input));
    Set(kFlags, 0xF003);
    Click(Box(input));
    EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", Writing(kFlags, 0xF003 | Mask(input))));
    ExpectInputs({input});
  }
}

// Boxes that write in a session. The page locks them there, yet they work as soon as they are not.

struct FlagCase {
  const char* name;
  int box;  ///< the one of the bit order behind the six
  int mask;
};
constexpr FlagCase kFlagCases[] = {{"SpeedUp", 0, 0x0002}, {"Input1", 1, 0x0100}, {"Input2", 2, 0x0200},
                                   {"Input3", 3, 0x0400},  {"Input4", 4, 0x0800}, {"Status", 5, 0x1000},
                                   {"BitOrder", 6, 0x4000}};

class PlcLiveFlag : public PlcPageFixture, public testing::WithParamInterface<std::tuple<InputPage, FlagCase>> {
 protected:
  PlcLiveFlag() : PlcPageFixture(std::get<0>(GetParam())) {}

  std::string Flag() const {
    const int box = std::get<1>(GetParam()).box;
    return box < kBoxes ? Box(box) : BitOrder();
  }
  int Bit() const { return std::get<1>(GetParam()).mask; }
  /// A session in which the module has these flags and the box takes clicks.
  void BeginUnlocked(int flags) {
    BeginWithFlags(flags);
    Unlock(Flag());
  }
};

INSTANTIATE_TEST_SUITE_P(Pages, PlcLiveFlag,
                         testing::Combine(testing::Values(kHollin, kKelmar), testing::ValuesIn(kFlagCases)),
                         [](const auto& given) {
                           return std::string(std::get<0>(given.param).model) + std::get<1>(given.param).name;
                         });

TEST_P(PlcLiveFlag, SetsItsBitAndKeepsTheOthers) {
  BeginUnlocked(0xFFFF & ~Bit());
  Click(Flag());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0xFFFF"));
  EXPECT_TRUE(Checked(Flag()));
}

TEST_P(PlcLiveFlag, SetsNoOtherBit) {
  BeginUnlocked(0x0000);
  Click(Flag());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", Writing(kFlags, Bit())));
}

TEST_P(PlcLiveFlag, ClearsItsBitAndKeepsTheOthers) {
  BeginUnlocked(0xFFFF);
  Click(Flag());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", Writing(kFlags, 0xFFFF & ~Bit())));
  EXPECT_FALSE(Checked(Flag()));
}

TEST_P(PlcLiveFlag, FollowsTheBoxWhateverTheRegisterHas) {
  BeginUnlocked(0x0F00 & ~Bit());
  Set(kFlags, 0xFFFF);
  Click(Flag());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0xFFFF"));
  EXPECT_TRUE(Checked(Flag()));
  Click(Flag());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", Writing(kFlags, 0xFFFF & ~Bit())));
}

TEST_P(PlcLiveFlag, IsWrittenFromZeroWhenTheReadIsRefused) {
  BeginUnlocked(0xFFFF & ~Bit());
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(2));
  Click(Flag());
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003: exception 2", Writing(kFlags, Bit())));
}

TEST_P(PlcLiveFlag, HoldsTheTimersForItsExchanges) {
  BeginUnlocked(0);
  RunIntoAPoll();
  module.ForgetLog();
  const auto run = ClickAndGoOn(Flag());
  EXPECT_TRUE(Checked(Flag()));
  while (!run->Done()) {
    ASSERT_TRUE(TimersRest());
    Run(core::milliseconds(1));
  }
  EXPECT_TRUE(TimersRun());
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40003", Writing(kFlags, Bit())));
}

TEST_P(PlcLiveFlag, LeavesThePolledBlockAlone) {
  for (int i = 0; i < std::get<0>(GetParam()).pollCount; ++i) Set(std::get<0>(GetParam()).pollRegister + i, 0x1000 + i);
  BeginUnlocked(0);
  RunThroughADecode();
  Click(Flag());
  for (int i = 0; i < std::get<0>(GetParam()).pollCount; ++i)
    EXPECT_EQ(Polled(static_cast<std::size_t>(i)), 0x1000 + i);
}

class PlcLiveFlags : public PlcPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, PlcLiveFlags, testing::Values(kHollin, kKelmar), NameOf);

TEST_P(PlcLiveFlags, AllReachTheModuleHoweverQuickTheClicks) {
  BeginWithFlags(0x8001);
  for (int i = 0; i < kBoxes; ++i) Unlock(Box(i));
  Unlock(BitOrder());
  RunIntoAPoll();
  for (int i = 0; i < kBoxes; ++i) ClickAndGoOn(Box(i));
  ClickAndGoOn(BitOrder());
  RunUntilIdle();
  EXPECT_EQ(module[kFlags], 0xDF03);
  EXPECT_TRUE(TimersRun());
}

// Write EEprom.

class PlcCommit : public PlcPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, PlcCommit, testing::Values(kHollin, kKelmar), NameOf);

TEST_P(PlcCommit, StoresEachBoxInItsOwnBit) {
  for (int i = 0; i < kBoxes; ++i) {
    Set(kFlags, Mask(i));
    ReadModule();
    Commit();
    EXPECT_EQ(module[kStoredFlags], Mask(i));
  }
  Set(kFlags, kReversed);
  ReadModule();
  Commit();
  EXPECT_EQ(module[kStoredFlags], kReversed);
}

TEST_P(PlcCommit, StoresTheFlagsFromTheControlsAlone) {
  Set(kFlags, 0xFFFF);
  ReadModule();
  Click(RawData());
  Click(ScaledData());
  Commit();
  EXPECT_EQ(module[kStoredFlags], 0x5F02);
  for (const int clicked : {0, 1, 4, 5}) Click(Box(clicked));
  Commit();
  EXPECT_EQ(module[kStoredFlags], 0x4600);
  Click(BitOrder());
  Commit();
  EXPECT_EQ(module[kStoredFlags], 0x0600);
}

TEST_P(PlcCommit, StoresTheFlagsFirstAndNoAddress) {
  State().ModuleAddress = 9;
  module.Address = 9;
  Set(kStoredCommunication, 0x0309);
  const std::vector<std::string> exchanges = Commit();
  ASSERT_GT(exchanges.size(), 2U);
  EXPECT_EQ(exchanges[0], "reads 40001");
  EXPECT_EQ(exchanges[1], "writes 40067 = 0x0000");
  EXPECT_THAT(exchanges, Each(Not(testing::HasSubstr("40066"))));
  EXPECT_EQ(module[kStoredCommunication], 0x0309);
}

TEST_P(PlcCommit, ChangesNoLiveFlag) {
  Click(Box(5));
  Set(kFlags, 0x0003);
  Commit();
  EXPECT_EQ(module[kFlags], 0x0003);
  EXPECT_EQ(module[kStoredFlags], 0x1000);
}

TEST_P(PlcCommit, HoldsItsButtonsAndThePortUntilItsBoxIsAnswered) {
  ClickAndGoOn(Own("WEEP"));
  EXPECT_TRUE(Hourglass());
  EXPECT_FALSE(Enabled(Own("Reset")));
  EXPECT_FALSE(Enabled(Own("WEEP")));
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  EXPECT_FALSE(Enabled(Own("Reset")));
  EXPECT_FALSE(InSession());
  AnswerOk();
  ExpectOffline();
}

TEST_P(PlcCommit, SetsThePollAndTheBusAsStartDoes) {
  State().PollCount = 1;
  Modcom().LinkParamB = 1;
  Commit();
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, GetParam().firstCount);
  EXPECT_EQ(Modcom().LinkParamB(), 3);
}

TEST_P(PlcCommit, GoesOnPastWritesThatAreRefused) {
  const std::size_t usual = Commit().size();
  module.Next(ModuleFault::None());
  for (std::size_t i = 1; i < usual; ++i) module.Next(ModuleFault::Exception(4));
  EXPECT_THAT(Commit(), SizeIs(usual));
  ExpectOffline();
}

TEST_P(PlcCommit, LeavesThePollingToGoOnInASession) {
  StartSession();
  Unlock(Own("WEEP"));
  RunIntoAPoll();
  Click(Own("WEEP"));
  ASSERT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(InSession());
  const std::vector<std::string> exchanges = Exchanges();
  ASSERT_FALSE(exchanges.empty());
  EXPECT_EQ(exchanges[0], "writes 40067 = 0x0000") << "the module is known";
  AnswerOk();
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(InSession());
  module.ForgetLog();
  Run(std::chrono::seconds(1));
  const std::vector<std::string> log = module.TakeLog();
  EXPECT_THAT(log, SizeIs(20));
  EXPECT_THAT(log, Each(GetParam().poll));
}

// Module Reset, and both on a module that is not there.

TEST_P(PlcCommit, IsRefusedByAModuleOfAnotherModelAsResetIs) {
  for (const char* button : {"WEEP", "Reset"}) {
    Set(kIdentity, 0x0701);
    module.ForgetLog();
    Click(Own(button));
    EXPECT_THAT(BoxInFront(), IsBox(NotOurs(), view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    ExpectOffline();
  }
}

TEST_P(PlcCommit, IsRefusedWithoutAModuleAsResetIs) {
  module.Always(ModuleFault::Unheard());
  for (const char* button : {"WEEP", "Reset"}) {
    Click(Own(button));
    EXPECT_THAT(BoxInFront(), IsBox(NotOurs(), view::Icon::kCritical));
    AnswerOk();
    ExpectOffline();
  }
}

TEST_P(PlcCommit, IsRefusedByAPortThatDoesNotOpenAsResetIs) {
  ports.SetFault(1, core::kPortAlreadyOpen);
  for (const char* button : {"WEEP", "Reset"}) {
    Click(Own(button));
    EXPECT_THAT(BoxInFront(), IsBox(NotOurs(), view::Icon::kCritical));
    AnswerOk();
    ExpectOffline();
  }
}

class PlcReset : public PlcPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, PlcReset, testing::Values(kHollin, kKelmar), NameOf);

TEST_P(PlcReset, Writes1ToItsRegister) {
  Click(Own("Reset"));
  EXPECT_THAT(BoxInFront(), IsBox("Module is Resetted!", view::Icon::kInformation));
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", Writing(GetParam().resetRegister, 1)));
  AnswerOk();
  ExpectOffline();
  StartSession();
}

TEST_P(PlcReset, EndsASession) {
  StartSession();
  Unlock(Own("Reset"));
  Click(Own("Reset"));
  EXPECT_THAT(BoxInFront(), IsBox("Module is Resetted! Comunication Stopped", view::Icon::kInformation));
  EXPECT_THAT(Exchanges(), ElementsAre(Writing(GetParam().resetRegister, 1)));
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  AnswerOk();
  ExpectOffline();
  StartSession();
}

}  // namespace
}  // namespace tarvo::test
