// How the Marlo page reads its module without a session: when it is entered and left, and what each register shows.

#include "support/marlo_fixture.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;

/// A register with two words and what the page shows of each.
struct Shown {
  int number;
  int word;
  const char* shown;
  int otherWord;
  const char* otherShown;
};

// In the order of their reads.
constexpr Shown kShown[] = {
    {40023, 3, "Firmware rel: 3", 40000, "Firmware rel: 40000"},
    {40003, 0x0155, "outputs 155", 0xFEAA, "outputs 2AA"},
    {40010, 0x1102, "address 17, parity Odd", 0xFFFD, "address 255, parity Even"},
    {40011, 0x030A, "38400", 0xF8F5, "4800"},
    {40009, 243, "24.3", 8, "0.8"},
    {40004, 0x0201, "lamps 201", 0xFDFE, "lamps 1FE"},
    {40005, 0x0102, "lamps 102", 0xFEFD, "lamps 2FD"},
    {40006, 0x0084, "lamps 84", 0xFF7B, "lamps 37B"},
    {40007, 0x0048, "lamps 48", 0xFFB7, "lamps 3B7"},
    {40008, 0x0030, "lamps 30", 0xFFCF, "lamps 3CF"},
    {40015, 0x02AA, "lamps 2AA", 0xFD55, "lamps 155"},
    {40002, 0x004A, "status 1A", 0xFFB5, "status 5"},
    {40013, 1234, "1234", 65535, "65535"},
    {40012, 0x0201, "reset 1, voltage 0, led fast blink", 0xFCFE, "reset 0, voltage 1, led always on"},
    {40016, 0x05B9, "threshold 18, delay 5", 0xC8FF, "threshold 25, delay 200"},
};

class MarloReading : public MarloFixture {
 protected:
  explicit MarloReading(Entered entered = Entered::kNotYet) : MarloFixture(entered) {}

  void SetAll() {
    for (const Shown& row : kShown) Set(row.number, row.word);
  }
  void SetAllOther() {
    for (const Shown& row : kShown) Set(row.number, row.otherWord);
  }

  static std::string Hex(const char* what, int word) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%s %X", what, static_cast<unsigned>(word));
    return text.data();
  }
  std::string ParityShown() const {
    EXPECT_NE(Checked("OptionEven"), Checked("OptionOdd"));
    EXPECT_EQ(Enabled("OptionEven"), Checked("checkParity"));
    EXPECT_EQ(Enabled("OptionOdd"), Checked("checkParity"));
    const std::string option = Checked("OptionEven") ? "Even" : "Odd";
    return Checked("checkParity") ? option : "off, " + option;
  }
  /// What the page shows of a register.
  std::string ShownOf(int number) const {
    switch (number) {
      case kStatus:
        return Hex("status", RedLamps("shStatus", kStatusLamps));
      case kOutputs:
        return Hex("outputs", OutputsShown());
      case kSupply:
        return Text("txtVoltage");
      case kAddress:
        return "address " + Text("labAddressMarlo") + ", parity " + ParityShown();
      case kBaud:
        return Text("cbBaudMarlo");
      case kOptions:
        return "reset " + std::to_string(Number("CheckResetTimeout", "Value")) + ", voltage " +
               std::to_string(Number("CheckFailLed", "Value")) + ", led " + Text("ComboFailLed");
      case kSafeTime:
        return Text("labSafetimeMarlo");
      case kLimits:
        return "threshold " + Text("txtValTreshold") + ", delay " + Text("txtDelay");
      case kFirmware:
        return Text("labFW");
      default:
        for (const MarloRow& row : kMarloRows) {
          if (row.source == number) return Hex("lamps", RedLamps(row.lamps));
        }
        return "nothing";
    }
  }
};

// Entering the page.

TEST_F(MarloReading, ComesWithThePageByItsLabelAndByItsMenuItem) {
  for (const char* road : {"MDIForm1.labMarlo", "MDIForm1.mnuMarlo"}) {
    Click("MDIForm1.LabHome");
    module.ForgetLog();
    Click(road);
    EXPECT_EQ(Page().Name(), "frmMarlo") << road;
    EXPECT_EQ(State().NrFinestra, 10) << road;
    EXPECT_EQ(State().FamilyShown, state::kTrue) << road;
    EXPECT_THAT(module.TakeLog(), ElementsAreArray(EntryReading())) << road;
  }
}

TEST_F(MarloReading, ShowsEachRegister) {
  SetAll();
  OpenPage();
  for (const Shown& row : kShown) EXPECT_EQ(ShownOf(row.number), row.shown) << row.number;
  SetAllOther();
  Reenter();
  for (const Shown& row : kShown) EXPECT_EQ(ShownOf(row.number), row.otherShown) << row.number;
}

TEST_F(MarloReading, EndsWithTheLineClosedAndThePageFree) {
  OpenPage();
  ExpectOffline();
  EXPECT_EQ(State().pageEntered, state::kTrue);
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_EQ(Panel2(), "");
}

TEST_F(MarloReading, IsRememberedOnceThePageHasRead) {
  OpenPage();
  EXPECT_EQ(State().pageReadDone, state::kTrue);
}

TEST_F(MarloReading, IsForgottenWhenThePageIsLeft) {
  OpenPage();
  State().pageReadDone = state::kTrue;
  Click("MDIForm1.LabHome");
  EXPECT_EQ(State().pageEntered, state::kFalse);
  EXPECT_EQ(State().pageReadDone, state::kFalse);
}

TEST_F(MarloReading, HoldsStartAndTheNavigationWhileItLasts) {
  std::vector<std::string> held;
  module.BeforeRead = [&](int first, int /*count*/) {
    if (first != kOutputs) return;
    if (!Enabled("buttStartMarlo")) held.emplace_back("Start");
    if (Hourglass()) held.emplace_back("pointer");
    if (!RefusalOf("MDIForm1.labBelk").empty()) held.emplace_back("page list");
    if (!RefusalOf("MDIForm1.buttCheckDevice").empty()) held.emplace_back("search");
    if (State().NrFinestra == -1) held.emplace_back("number");
  };
  OpenPage();
  EXPECT_THAT(held, ElementsAre("Start", "pointer", "page list", "search", "number"));
  EXPECT_EQ(RefusalOf("MDIForm1.labBelk"), "");
}

TEST_F(MarloReading, EndsASessionThatTheSharedValueTellsOf) {
  State().StartComm = state::kTrue;
  OpenPage();
  EXPECT_EQ(State().StartComm, state::kFalse);
}

TEST_F(MarloReading, IsDoneOncePerEntry) {
  OpenPage();
  module.ForgetLog();
  Click("MDIForm1.labMarlo");
  Click("MDIForm1.mnuMarlo");
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(MarloReading, IsNotDoneAgainWhenADialogCloses) {
  OpenPage();
  module.ForgetLog();
  Edit("labAddressMarlo", "9");
  Click("labSafetimeMarlo");
  Click("ChangeValue.Cancel");
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_EQ(Text("labAddressMarlo"), "9");
}

TEST_F(MarloReading, UsesTheLinkParametersOfThisPage) {
  std::vector<std::pair<int, int>> parameters;
  module.BeforeRead = [&](int first, int /*count*/) {
    if (first == kIdentity || first == kLimits) parameters.emplace_back(Modcom().LinkParamA, Modcom().LinkParamB);
  };
  OpenPage();
  EXPECT_THAT(parameters, Each(std::pair(6, 6)));
  EXPECT_EQ(parameters.size(), 2U);
}

TEST_F(MarloReading, GoesToThePcsLine) {
  MemoryLine otherLine(scheduler);
  MemoryModule other(scheduler, otherLine, 77);
  other.Line = {19200, bus::Parity::kEven};
  other[kIdentity] = 0x0D00;
  other[kFirmware] = 99;
  other[kSafeTime] = 4321;
  ports.Connect(3, otherLine);
  State().PCPort = 3;
  State().PCSettings = "19200,e,8,1";
  State().ModuleAddress = 77;
  OpenPage();
  EXPECT_EQ(Text("labFW"), "Firmware rel: 99");
  EXPECT_EQ(Text("labSafetimeMarlo"), "4321");
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

// A module that is none, or does not answer.

TEST_F(MarloReading, OfAnotherModuleEndsWithItsIdentity) {
  for (const int identity : {0x0C07, 0x0E07, 0x8D07, 0x070D, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    Reenter();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40023", "reads 40001"));
    EXPECT_EQ(Panel2(), kThisIsNoMarlo);
    EXPECT_EQ(State().pageEntered, state::kTrue);
    EXPECT_EQ(State().NrFinestra, 10);
    ExpectOffline();
  }
}

TEST_F(MarloReading, TakesAnyLowByteOfTheIdentity) {
  for (const int identity : {0x0D00, 0x0DFF}) {
    Set(kIdentity, identity);
    Reenter();
    EXPECT_THAT(module.TakeLog(), ElementsAreArray(EntryReading())) << identity;
  }
}

TEST_F(MarloReading, OfAnotherModuleKeepsWhatThePageShows) {
  SetAll();
  OpenPage();
  SetAllOther();
  Set(kIdentity, 0x0C07);
  Reenter();
  EXPECT_EQ(Panel2(), kThisIsNoMarlo);
  for (const Shown& row : kShown) {
    EXPECT_EQ(ShownOf(row.number), row.number == kFirmware ? row.otherShown : row.shown) << row.number;
  }
}

TEST_F(MarloReading, OfASilentModuleKeepsWhatThePageShows) {
  SetAll();
  OpenPage();
  SetAllOther();
  module.Always(ModuleFault::Unheard());
  Reenter();
  module.Always(ModuleFault::None());
  EXPECT_EQ(Panel2(), kThisIsNoMarlo);
  for (const Shown& row : kShown) EXPECT_EQ(ShownOf(row.number), row.shown) << row.number;
  ExpectOffline();
}

TEST_F(MarloReading, IsTriedAgainWhenThePageIsEnteredAgain) {
  EnterInVain();
  SetAll();
  Reenter();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(EntryReading()));
  for (const Shown& row : kShown) EXPECT_EQ(ShownOf(row.number), row.shown) << row.number;
  EXPECT_EQ(Panel2(), "");
}

TEST_F(MarloReading, WithoutAPortLeavesThePageFree) {
  ports.SetFault(1, core::kPermissionDenied);
  Click("labMarlo");
  while (BoxInFront() != nullptr) AnswerOk();
  EXPECT_EQ(Page().Name(), "frmMarlo");
  ExpectOffline();
  ports.SetFault(1, "");
  Reenter();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(EntryReading()));
}

/// One read of all is refused.
class MarloFailedRead : public MarloReading, public testing::WithParamInterface<std::size_t> {};

INSTANTIATE_TEST_SUITE_P(Registers, MarloFailedRead, testing::Range(std::size_t{0}, std::size(kShown)),
                         [](const auto& given) { return std::to_string(kShown[given.param].number); });

TEST_P(MarloFailedRead, KeepsWhatWasShownOfItAndShowsTheOthers) {
  SetAll();
  OpenPage();
  SetAllOther();
  const std::string refused = "reads " + std::to_string(kShown[GetParam()].number);
  std::vector<std::string> expected = EntryReading();
  for (std::string& exchange : expected) {
    const bool hit = exchange == refused;
    module.Next(hit ? ModuleFault::Exception(4) : ModuleFault::None());
    if (hit) exchange += ": exception 4";
  }
  Reenter();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(expected));
  for (std::size_t i = 0; i < std::size(kShown); ++i) {
    const Shown& row = kShown[i];
    EXPECT_EQ(ShownOf(row.number), i == GetParam() ? row.shown : row.otherShown) << row.number;
  }
  EXPECT_TRUE(Enabled("buttStartMarlo"));
}

// What single registers show.

TEST_F(MarloReading, LightsEachLampAndOutputByItsBit) {
  for (int i = 0; i < kCount; ++i) {
    for (const MarloRow& row : kMarloRows) Set(row.source, 1 << i);
    Set(kOutputs, 1 << i);
    Reenter();
    EXPECT_EQ(OutputsShown(), 1 << i);
    for (const MarloRow& row : kMarloRows) EXPECT_EQ(RedLamps(row.lamps), 1 << i) << row.lamps;
  }
}

TEST_F(MarloReading, LightsEachStatusLampByItsBit) {
  const int lampOfBit[16] = {0, 1, 2, 3, -1, -1, 4, -1, -1, -1, -1, -1, -1, -1, -1, -1};
  for (int bit = 0; bit < 16; ++bit) {
    Set(kStatus, 1 << bit);
    Reenter();
    EXPECT_EQ(RedLamps("shStatus", kStatusLamps), lampOfBit[bit] < 0 ? 0 : 1 << lampOfBit[bit]) << bit;
  }
}

TEST_F(MarloReading, TakesTheParityFromTwoBits) {
  const std::pair<int, const char*> rows[] = {{0x0102, "Odd"},       {0x0100, "off, Even"}, {0x0101, "Even"},
                                              {0x0103, "off, Even"}, {0x01FE, "Odd"},       {0x01FF, "off, Even"},
                                              {0x01FD, "Even"},      {0x01FC, "off, Even"}};
  for (const auto& [word, parity] : rows) {
    Set(kAddress, word);
    Reenter();
    EXPECT_EQ(ParityShown(), parity) << word;
  }
}

TEST_F(MarloReading, TakesTheAddressFromTheHighByte) {
  for (const int address : {1, 127, 128, 255}) {
    Set(kAddress, address << 8 | 0x42);
    Reenter();
    EXPECT_EQ(Text("labAddressMarlo"), std::to_string(address));
  }
}

TEST_F(MarloReading, SelectsTheRateByItsCode) {
  const std::pair<int, const char*> rows[] = {{6, "1200"},  {7, "2400"},  {0, "4800"}, {1, "9600"},
                                              {2, "19200"}, {3, "38400"}, {4, "57600"}};
  for (const auto& [code, rate] : rows) {
    Set(kBaud, 0xF8FF | code << 8);
    Reenter();
    EXPECT_EQ(Text("cbBaudMarlo"), rate);
  }
}

TEST_F(MarloReading, KeepsTheRateForACodeThatTheListDoesNotHave) {
  Set(kBaud, 0x0300);
  Reenter();
  Set(kBaud, 0x0500);
  Reenter();
  EXPECT_EQ(Text("cbBaudMarlo"), "38400");
}

TEST_F(MarloReading, ShowsTheSupplyInVolts) {
  const std::pair<int, const char*> rows[] = {{0, "0"}, {7, "0.7"}, {10, "1"}, {240, "24"}, {301, "30.1"}};
  for (const auto& [tenths, volts] : rows) {
    Set(kSupply, tenths);
    Reenter();
    EXPECT_EQ(Text("txtVoltage"), volts);
  }
}

TEST_F(MarloReading, SelectsTheFailLedsModeByTwoBits) {
  const char* const modes[] = {"always on", "slow blink", "fast blink", "double flash"};
  for (int mode = 0; mode < 4; ++mode) {
    Set(kOptions, 0xFC00 | mode << 8);
    Reenter();
    EXPECT_EQ(Text("ComboFailLed"), modes[mode]);
    EXPECT_FALSE(Checked("CheckResetTimeout"));
    EXPECT_FALSE(Checked("CheckFailLed"));
  }
}

TEST_F(MarloReading, CutsTheTenthsOffTheThreshold) {
  const std::pair<int, const char*> rows[] = {{9, "0"}, {10, "1"}, {189, "18"}, {199, "19"}, {255, "25"}};
  for (const auto& [tenths, volts] : rows) {
    Set(kLimits, 0x0300 | tenths);
    Reenter();
    EXPECT_EQ(Text("txtValTreshold"), volts) << tenths;
    EXPECT_EQ(Text("txtDelay"), "3");
  }
}

// Leaving the page.

TEST_F(MarloReading, LeavesNoTextOfItsModuleBehind) {
  Set(kIdentity, 0x0C00);
  OpenPage();
  ASSERT_EQ(Panel2(), kThisIsNoMarlo);
  Click("MDIForm1.LabHome");
  EXPECT_EQ(Panel2(), "");
}

// The search.

class MarloSearch : public MarloFixture {
 protected:
  MarloSearch() : MarloFixture(Entered::kNotYet) { module.Line.baud = 38400; }

  void Search() {
    ClickAndGoOn("MDIForm1.buttCheckDevice");
    ASSERT_TRUE(RunUntil([this] { return State().SearchRunning == state::kFalse && program.GetScreen().Idle(); }));
  }
};

TEST_F(MarloSearch, ShowsThePageWithItsSettings) {
  Set(kOutputs, 0x0155);
  Set(kSafeTime, 77);
  Set(kBaud, 0x0300);
  Search();
  EXPECT_EQ(Panel2(), "Connected to Marlo, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Page().Name(), "frmMarlo");
  EXPECT_EQ(State().NrFinestra, 10);
  EXPECT_EQ(OutputsShown(), 0x0155);
  EXPECT_EQ(Text("labSafetimeMarlo"), "77");
  EXPECT_EQ(Text("cbBaudMarlo"), "38400");
  EXPECT_EQ(Text("labFW"), "Firmware rel: 17");
  EXPECT_EQ(State().pageEntered, state::kTrue);
  ExpectOffline();
}

TEST_F(MarloSearch, ReadsWithThePageAndOnceMoreAfterIt) {
  Search();
  std::vector<std::string> expected = {"reads 40001"};
  for (int i = 0; i < 2; ++i) {
    const std::vector<std::string> reading = EntryReading();
    expected.insert(expected.end(), reading.begin(), reading.end());
  }
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(expected));
}

TEST_F(MarloSearch, FindsTheModuleFromItsOwnPageToo) {
  Click("labMarlo");
  ASSERT_EQ(Panel2(), kThisIsNoMarlo);
  Set(kSafeTime, 78);
  Search();
  EXPECT_EQ(Panel2(), "Connected to Marlo, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Text("labSafetimeMarlo"), "78");
}

TEST_F(MarloSearch, LeavesASessionToTheUser) {
  Search();
  module.ForgetLog();
  Click("buttStartMarlo");
  EXPECT_TRUE(InSession());
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "reads 40023", kMarloPoll));
}

TEST_F(MarloSearch, TakesItsTextAlongWhenThePageIsLeft) {
  Search();
  ASSERT_THAT(Panel2(), StartsWith("Connected to Marlo"));
  Click("MDIForm1.LabHome");
  EXPECT_EQ(Panel2(), "");
}

}  // namespace
}  // namespace tarvo::test
