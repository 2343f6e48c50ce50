// Write EEprom and Module Reset of the Lumet page. A commit is paced by the clock: one second before its first write,
// two before each of the others.

#include <algorithm>
#include <cstdint>

#include "support/lumet_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr char kCommitted[] = "EEProm updated! Please reset module to apply changes.";
constexpr char kResetInSession[] = "Module is Resetted! Comunication Stopped";
constexpr char kResetDone[] = "Module is Resetted!";

/// A write to the module and when it went out, in milliseconds since the button was pressed.
struct TimedWrite {
  std::string what;
  std::int64_t at;
};

class LumetCommitBench : public LumetFixture {
 protected:
  /// Presses Write EEprom; from then on the module's writes are noted.
  void BeginCommit() {
    module.ForgetLog();
    writes_.clear();
    pressed_ = scheduler.Now();
    module.AfterWrite = [this](int number, std::uint16_t value) {
      writes_.push_back({Writing(number, value), SincePressed()});
    };
    ClickAndGoOn("WEEPLumet");
  }
  std::int64_t SincePressed() const { return Milliseconds(scheduler.Now()) - Milliseconds(pressed_); }
  /// Lets time go by up to that many milliseconds after the button was pressed.
  void RunTo(std::int64_t milliseconds) { Run(core::milliseconds(milliseconds - SincePressed())); }
  /// Lets time go by until a box is in front.
  void RunToItsBox() {
    ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  }
  void FinishCommit() {
    RunToItsBox();
    EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
    AnswerOk();
    EXPECT_TRUE(NothingInFront());
  }
  /// Write EEprom to its end; gives what went over the line, but for the polls.
  std::vector<std::string> Commit() {
    BeginCommit();
    FinishCommit();
    return Exchanges();
  }
  /// What a commit leaves in a register.
  int Committed(int number) {
    Commit();
    return module[number];
  }
  std::vector<std::string> Writes() const {
    std::vector<std::string> writes;
    for (const TimedWrite& write : writes_) writes.push_back(write.what);
    return writes;
  }
  const std::vector<TimedWrite>& TimedWrites() const { return writes_; }

  void ExpectRefused() {
    EXPECT_THAT(BoxInFront(), IsBox(kNotALumet, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), Not(Contains(StartsWith("writes"))));
    ExpectOffline();
  }
  void ExpectSessionGoesOn() {
    EXPECT_TRUE(InSession());
    EXPECT_TRUE(TimersRun());
    EXPECT_TRUE(PortOpen());
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
    EXPECT_TRUE(Enabled("WEEPLumet"));
    EXPECT_TRUE(Enabled("ResetLumet"));
    RunThroughBothSteps();
    EXPECT_EQ(Text("MessageLumet"), "OK");
  }

 private:
  std::vector<TimedWrite> writes_;
  core::TimePoint pressed_;
};

// What a commit does in a session and out of one alike.

class LumetCommit : public LumetCommitBench, public testing::WithParamInterface<bool> {
 protected:
  bool Session() const { return GetParam(); }
  /// Shows the module's settings, by a session that goes on or is ended again.
  void ShowModule() {
    StartSession();
    if (!Session()) Click("StopLumet");
    module.ForgetLog();
  }
  void ExpectAsBefore() {
    if (Session()) {
      ExpectSessionGoesOn();
    } else {
      ExpectOffline();
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Roads, LumetCommit, testing::Bool(),
                         [](const auto& given) { return given.param ? "InASession" : "WithoutASession"; });

TEST_P(LumetCommit, WritesTheFourImagesInTheirOrder) {
  Set(kFlags, 0x0219);
  Set(kMeasureSetup, 0x0A23);
  Set(kStoredCommunication, 0x0377);
  Set(kFilter, 200);
  ShowModule();
  std::vector<std::string> expected = {"writes 40084 = 0x0219", "writes 40082 = 0x0A23", "writes 40085 = 0x0377",
                                       "writes 40083 = 0x00C8"};
  if (!Session()) expected.insert(expected.begin(), "reads 40001");
  EXPECT_THAT(Commit(), testing::ElementsAreArray(expected));
  ExpectAsBefore();
}

TEST_P(LumetCommit, PausesASecondAndThenTwoBeforeEachWrite) {
  ShowModule();
  BeginCommit();
  RunToItsBox();
  const std::int64_t boxAt = SincePressed();
  const std::vector<TimedWrite>& writes = TimedWrites();
  ASSERT_EQ(writes.size(), 4U);
  constexpr std::int64_t kSlack = 150;  // for the exchanges
  EXPECT_GE(writes[0].at, 1000);
  EXPECT_LT(writes[0].at, 1000 + kSlack);
  for (std::size_t i = 1; i < 4; ++i) {
    const std::int64_t pause = writes[i].at - writes[i - 1].at;
    EXPECT_GE(pause, 2000) << i;
    EXPECT_LT(pause, 2000 + kSlack) << i;
  }
  EXPECT_LT(boxAt - writes[3].at, kSlack);
  AnswerOk();
}

TEST_P(LumetCommit, TakesTheFlagsAfterTheFirstSecond) {
  ShowModule();
  Choose("cbCombIngressi", 1);
  BeginCommit();
  RunTo(700);
  Choose("cbCombIngressi", 2);
  RunTo(1500);
  Choose("cbCombIngressi", 3);
  FinishCommit();
  EXPECT_EQ(Writes().front(), "writes 40084 = 0x0200");
}

TEST_P(LumetCommit, TakesTheMeasuresAtTheirOwnStep) {
  ShowModule();
  BeginCommit();
  RunTo(2700);
  Choose("cbIngresso(0)", 4);
  RunTo(3500);
  Choose("cbIngresso(0)", 6);
  FinishCommit();
  EXPECT_THAT(Writes(), Contains("writes 40082 = 0x0105"));
}

TEST_P(LumetCommit, TakesRateAndAddressBeforeTheirPause) {
  ShowModule();
  BeginCommit();
  RunTo(2700);
  Choose("BaudLumet", 5);
  Force("AddressLumet", "17");
  RunTo(3500);
  Choose("BaudLumet", 4);
  Force("AddressLumet", "18");
  FinishCommit();
  EXPECT_THAT(Writes(), Contains("writes 40085 = 0x0311"));
}

TEST_P(LumetCommit, TakesTheFilterBeforeItsPause) {
  ShowModule();
  BeginCommit();
  RunTo(4700);
  Force("FilterLumet", "77");
  RunTo(5700);
  Force("FilterLumet", "88");
  FinishCommit();
  EXPECT_EQ(Writes().back(), Writing(kStoredFilter, 77));
}

TEST_P(LumetCommit, BuildsTheFlagsFromTheControlsAlone) {
  const std::pair<const char*, int> bits[] = {
      {"CheckLumet2", 1}, {"CheckLumet4", 2}, {"CheckLumet5", 4}, {"CheckLumet6", 8}, {"OptionLumet2", 16}};
  Set(kFlags, 0xE0E0);
  ShowModule();
  int expected = 0;
  EXPECT_EQ(Committed(kStoredFlags), 0);
  for (const auto& [control, bit] : bits) {
    Click(control);
    expected |= bit;
    EXPECT_EQ(Committed(kStoredFlags), expected) << control;
  }
  Click("OptionLumet1");
  EXPECT_EQ(Committed(kStoredFlags), 0x000F);
  Click("CheckLumet3");
  EXPECT_EQ(Committed(kStoredFlags), 0x000F);
}

TEST_P(LumetCommit, GivesEachConfigurationOfInputs9And10ItsBit) {
  ShowModule();
  constexpr int kBits[] = {0x0000, 0x0100, 0x0200, 0x0400, 0x0800, 0x1000};
  for (int index = 0; index < 6; ++index) {
    Choose("cbCombIngressi", index);
    EXPECT_EQ(Committed(kStoredFlags), kBits[index]) << index;
  }
}

TEST_P(LumetCommit, KeepsTheKindOfParityWhileParityIsOff) {
  Set(kFlags, 0x0010);
  ShowModule();
  ASSERT_FALSE(Enabled("OptionLumet2"));
  EXPECT_EQ(Committed(kStoredFlags), 0x0010);
}

TEST_P(LumetCommit, PutsInputAndKindOfEachMeasureIntoItsByte) {
  struct Row {
    int input0;
    int type0;
    int input1;
    int type1;
    int word;
  };
  constexpr Row kRows[] = {{0, 0, 0, 0, 0x0101}, {1, 1, 2, 0, 0x0312}, {7, 3, 0, 2, 0x2138},
                           {8, 0, 9, 0, 0x0A09}, {9, 0, 7, 3, 0x380A}, {4, 2, 5, 1, 0x1625}};
  ShowModule();
  for (const Row& row : kRows) {
    Choose("cbIngresso(0)", row.input0);
    Choose("cbTipoMisura(0)", row.type0);
    Choose("cbIngresso(1)", row.input1);
    Choose("cbTipoMisura(1)", row.type1);
    EXPECT_EQ(Committed(kStoredMeasureSetup), row.word);
  }
}

TEST_P(LumetCommit, WritesTheCodeOfEachRateWithTheAddress) {
  ShowModule();
  constexpr int kCodes[] = {6, 7, 0, 1, 2, 3, 4};
  Edit("AddressLumet", "255");
  for (int position = 0; position < 7; ++position) {
    Choose("BaudLumet", position);
    EXPECT_EQ(Committed(kStoredCommunication), kCodes[position] << 8 | 255) << position;
  }
}

TEST_P(LumetCommit, WritesTheBoundsOfTheEdits) {
  ShowModule();
  for (const auto& [filter, address] : {std::pair("1", "1"), std::pair("254", "255")}) {
    Edit("FilterLumet", filter);
    Edit("AddressLumet", address);
    Commit();
    EXPECT_EQ(module[kStoredFilter], std::atoi(filter));
    EXPECT_EQ(module[kStoredCommunication], 0x0100 | std::atoi(address));
  }
}

TEST_P(LumetCommit, RoundsATextWithADecimalPart) {
  ShowModule();
  Edit("FilterLumet", "12.4");
  Edit("AddressLumet", "16,5");
  Commit();
  EXPECT_EQ(module[kStoredFilter], 12);
  EXPECT_EQ(module[kStoredCommunication], 0x0110);
}

TEST_P(LumetCommit, ChangesNoLiveRegister) {
  Set(kFlags, 0x0201);
  ShowModule();
  Choose("cbCombIngressi", 5);
  Choose("cbIngresso(0)", 4);
  Edit("FilterLumet", "99");
  Edit("AddressLumet", "9");
  Commit();
  EXPECT_EQ(module[kFlags], 0x0201);
  EXPECT_EQ(module[kMeasureSetup], 0x0101);
  EXPECT_EQ(module[kFilter], 10);
  EXPECT_EQ(module[kCommunication], 0x0101);
}

TEST_P(LumetCommit, GoesOnThroughWritesThatAreRefused) {
  ShowModule();
  BeginCommit();
  RunTo(500);
  module.Always(ModuleFault::Exception(4));
  RunToItsBox();
  EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
  module.Always(ModuleFault::None());
  AnswerOk();
  const std::vector<std::string> log = module.TakeLog();
  for (const char* write : {"writes 40084 = 0x0000: exception 4", "writes 40082 = 0x0101: exception 4",
                            "writes 40085 = 0x0101: exception 4", "writes 40083 = 0x000A: exception 4"}) {
    EXPECT_THAT(log, Contains(write));
  }
  ExpectAsBefore();
}

TEST_P(LumetCommit, HoldsItsButtonsUntilItsBoxIsAnswered) {
  ShowModule();
  BeginCommit();
  for (const int at : {0, 500, 2000, 4000, 6500}) {
    RunTo(at);
    EXPECT_FALSE(Enabled("WEEPLumet")) << at;
    EXPECT_FALSE(Enabled("ResetLumet")) << at;
    EXPECT_TRUE(Hourglass()) << at;
  }
  RunToItsBox();
  EXPECT_FALSE(Enabled("WEEPLumet"));
  EXPECT_FALSE(Enabled("ResetLumet"));
  AnswerOk();
  ExpectAsBefore();
}

TEST_P(LumetCommit, GivesThePointerBackBeforeItsBox) {
  ShowModule();
  BeginCommit();
  RunTo(6500);
  EXPECT_TRUE(Hourglass());
  RunToItsBox();
  EXPECT_FALSE(Hourglass());
  AnswerOk();
  EXPECT_FALSE(Hourglass());
}

struct NoNumber {
  const char* label;
  const char* text;
  const char* box;
};
constexpr NoNumber kNoNumbers[] = {
    {"FilterLumet", "abc", "Type mismatch"},    {"FilterLumet", "", "Type mismatch"},
    {"FilterLumet", "70000", "Overflow"},       {"FilterLumet", "99999999999", "Overflow"},
    {"AddressLumet", "abc", "Type mismatch"},   {"AddressLumet", "", "Type mismatch"},
    {"AddressLumet", "99999999999", "Overflow"}};

TEST_P(LumetCommit, WritesNothingWhenATextIsNoNumber) {
  for (const NoNumber& row : kNoNumbers) {
    SCOPED_TRACE(std::string(row.label) + " " + row.text);
    ShowModule();
    Force(row.label, row.text);
    BeginCommit();
    RunToItsBox();
    EXPECT_THAT(BoxInFront(), IsBox(row.box, view::Icon::kExclamation));
    AnswerOk();
    EXPECT_TRUE(NothingInFront());
    Run(std::chrono::seconds(8));
    EXPECT_THAT(Writes(), IsEmpty());
    ExpectAsBefore();
    if (Session()) Click("StopLumet");
  }
}

// In a session.

class LumetCommitInASession : public LumetCommitBench {};

TEST_F(LumetCommitInASession, LeavesThePollOn) {
  StartSession();
  BeginCommit();
  for (const int at : {0, 500, 2000, 4000, 6500}) {
    RunTo(at);
    EXPECT_TRUE(TimersRun()) << at;
  }
  RunToItsBox();
  EXPECT_TRUE(TimersRun());
  const std::vector<std::string> log = module.TakeLog();
  for (const char* poll : {kLumetFirstPoll, kLumetSecondPoll}) {
    EXPECT_GT(std::count(log.begin(), log.end(), poll), 60) << poll;
  }
  EXPECT_THAT(log, Not(Contains("reads 40001")));
  AnswerOk();
  ExpectSessionGoesOn();
}

TEST_F(LumetCommitInASession, ShowsWhatThePollBringsMeanwhile) {
  StartSession();
  BeginCommit();
  RunTo(1500);
  Set(kCounter1, 4321);
  Set(kTotal9, 77);
  RunThroughBothSteps();
  EXPECT_EQ(Text("TotIN(0)"), "4321");
  EXPECT_EQ(Text("TotIN(8)"), "77");
  FinishCommit();
}

TEST_F(LumetCommitInASession, StoresAFlagThatWasClickedRightBefore) {
  Set(kFlags, 0x0100);
  StartSession();
  ClickAndGoOn("CheckLumet5");
  EXPECT_EQ(Committed(kStoredFlags), 0x0104);
  EXPECT_EQ(module[kFlags], 0x0104);
}

TEST_F(LumetCommitInASession, TakesAFlagThatIsClickedMeanwhile) {
  StartSession();
  BeginCommit();
  RunTo(500);
  Click("CheckLumet2");
  EXPECT_EQ(module[kFlags], 1);
  RunTo(2000);
  Click("CheckLumet4");
  EXPECT_EQ(module[kFlags], 3);
  FinishCommit();
  EXPECT_EQ(module[kStoredFlags], 1);
  ExpectSessionGoesOn();
}

TEST_F(LumetCommitInASession, WritesNothingMoreOnceTheSessionIsStopped) {
  StartSession();
  BeginCommit();
  RunTo(2000);
  Click("StopLumet");
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  Run(std::chrono::seconds(10));
  EXPECT_TRUE(NothingInFront());
  EXPECT_THAT(Writes(), ElementsAre("writes 40084 = 0x0000"));
  ExpectOffline();
  StartSession();
}

TEST_F(LumetCommitInASession, SaysNothingWhenAStopCameBeforeItsFirstWrite) {
  StartSession();
  // A poll is on its way: the commit waits for it, and the Stop behind it.
  const int polled = module.Requests();
  ASSERT_TRUE(RunUntil([&] { return module.Requests() > polled; }));
  ClickAndGoOn("WEEPLumet");
  ClickAndGoOn("StopLumet");
  Run(std::chrono::seconds(10));
  EXPECT_THAT(Writes(), IsEmpty());
  EXPECT_TRUE(NothingInFront());
  ExpectOffline();
}

TEST_F(LumetCommitInASession, LeavesTheNextSessionAloneOnceItsOwnIsStopped) {
  StartSession();
  BeginCommit();
  RunTo(2000);
  Click("StopLumet");
  Click("StartLumet");
  EXPECT_TRUE(InSession());
  Run(std::chrono::seconds(10));
  EXPECT_THAT(Writes(), ElementsAre("writes 40084 = 0x0000"));
  EXPECT_EQ(Text("StatusBar1(1)"), "unable to write 40082");
  EXPECT_TRUE(NothingInFront());
}

// Without a session.

class LumetCommitWithoutASession : public LumetCommitBench {};

TEST_F(LumetCommitWithoutASession, BeforeAnythingWasReadWritesTheLowestValues) {
  EXPECT_THAT(Commit(), ElementsAre("reads 40001", "writes 40084 = 0x0000", "writes 40082 = 0x0101",
                                    "writes 40085 = 0x0001", "writes 40083 = 0x0001"));
}

TEST_F(LumetCommitWithoutASession, CarriesTheFlagsThatWereClickedMeanwhile) {
  Set(kFlags, 0x0109);
  Visit();
  Click("CheckLumet2");
  Click("CheckLumet4");
  Click("OptionLumet2");
  Choose("cbCombIngressi", 4);
  EXPECT_EQ(Committed(kStoredFlags), 0x081A);
  EXPECT_EQ(module[kFlags], 0x0109);
}

TEST_F(LumetCommitWithoutASession, SetsTheFirstBlock) {
  State().PollRegister = state::Register(40013);
  State().PollCount = 12;
  Commit();
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 9);
}

TEST_F(LumetCommitWithoutASession, GoesToTheAddressOfThePcSetup) {
  Click("MDIForm1.LabPCSetup");
  Click("PCAddress");
  AnswerChangeValue("9");
  Click("MDIForm1.labLumet");
  module.Address = 9;
  Edit("AddressLumet", "33");
  EXPECT_EQ(Committed(kStoredCommunication), 33);
  EXPECT_EQ(State().ModuleAddress, 9);
}

TEST_F(LumetCommitWithoutASession, StoresTheSettingsThatASearchHasRead) {
  Set(kFlags, 0x040A);
  Set(kMeasureSetup, 0x3817);
  Set(kFilter, 44);
  Set(kStoredCommunication, 0x0277);
  ReadEEPromFlags();
  module.ForgetLog();
  EXPECT_THAT(Commit(), ElementsAre("reads 40001", "writes 40084 = 0x040A", "writes 40082 = 0x3817",
                                    "writes 40085 = 0x0277", "writes 40083 = 0x002C"));
}

TEST_F(LumetCommitWithoutASession, RunsNoTimer) {
  BeginCommit();
  for (const int at : {0, 500, 2000, 4000, 6500}) {
    RunTo(at);
    for (const char* timer : {"TimerLetturaSeriale", "TimerGestioneLetture", "TimerIngranaggi"}) {
      EXPECT_FALSE(Enabled(timer)) << timer << ' ' << at;
    }
    EXPECT_FALSE(InSession());
  }
  FinishCommit();
}

TEST_F(LumetCommitWithoutASession, IsNotTornByAStart) {
  BeginCommit();
  RunTo(2000);
  Click("StartLumet");
  EXPECT_FALSE(InSession());
  FinishCommit();
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001", "writes 40084 = 0x0000", "writes 40082 = 0x0101",
                                       "writes 40085 = 0x0001", "writes 40083 = 0x0001"));
  ExpectOffline();
  StartSession();
}

TEST_F(LumetCommitWithoutASession, IsNotTornByLeavingThePageOrTheProgram) {
  BeginCommit();
  RunTo(4000);
  for (const char* way :
       {"MDIForm1.LabHome", "MDIForm1.labBelk", "MDIForm1.OpenMNU", "MDIForm1.SaveMNU", "MDIForm1.buttCheckDevice"}) {
    EXPECT_NE(RefusalOf(way), "") << way;
  }
  Close();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  FinishCommit();
  EXPECT_EQ(Writes().size(), 4U);
  EXPECT_EQ(Page().Name(), "frmLumet");
}

TEST_F(LumetCommitWithoutASession, RefusesAnotherModel) {
  for (const int identity : {0x0902, 0x020A, 0x0B02}) {
    Set(kIdentity, identity);
    module.ForgetLog();
    Click("WEEPLumet");
    ExpectRefused();
  }
  SetRelease(2);
  Commit();
}

TEST_F(LumetCommitWithoutASession, RefusesSilence) {
  module.Always(ModuleFault::Unheard());
  Click("WEEPLumet");
  ExpectRefused();
}

// Module Reset.

class LumetReset : public LumetCommitBench {};

TEST_F(LumetReset, InASessionWrites1AndEndsIt) {
  StartSession();
  Click("ResetLumet");
  EXPECT_THAT(BoxInFront(), IsBox(kResetInSession, view::Icon::kInformation));
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(TimersRest());
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40022 = 0x0001"));
  ExpectOffline();
}

TEST_F(LumetReset, WithoutASessionLooksAtTheIdentityFirst) {
  Click("ResetLumet");
  EXPECT_THAT(BoxInFront(), IsBox(kResetDone, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "writes 40022 = 0x0001"));
  ExpectOffline();
}

TEST_F(LumetReset, WithoutASessionRefusesAnotherModel) {
  Set(kIdentity, 0x0903);
  Click("ResetLumet");
  ExpectRefused();
}

TEST_F(LumetReset, WithoutASessionRefusesSilence) {
  module.Always(ModuleFault::Unheard());
  Click("ResetLumet");
  ExpectRefused();
}

TEST_F(LumetReset, LetsAPageStartAgain) {
  StartSession();
  Run(core::milliseconds(300));
  Click("ResetLumet");
  AnswerOk();
  Set(kCounter1, 55);
  StartSession();
  EXPECT_EQ(Text("TotIN(0)"), "55");
  EXPECT_EQ(State().PollRegister.Number(), 40011);
  RunThroughBothSteps();
  EXPECT_EQ(Text("MessageLumet"), "OK");
}

}  // namespace
}  // namespace tarvo::test
