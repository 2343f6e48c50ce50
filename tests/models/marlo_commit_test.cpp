// Write of the Marlo page.

#include "support/marlo_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;

constexpr char kCommitted[] = "EEProm updated! Now you have to restart the module ";
constexpr char kNoNumbers[] = "Val Treshold or Delay fields are  not numeric !";

class MarloCommit : public MarloFixture {
 protected:
  void Commit() {
    Click("buttWEEPMarlo");
    EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kExclamation));
    AnswerOk();
    EXPECT_TRUE(NothingInFront());
  }
  /// The words written to a register by a commit; one is right.
  std::vector<std::string> CommittedTo(int number) {
    module.ForgetLog();
    Commit();
    std::vector<std::string> writes = Exchanges();
    const std::string prefix = "writes " + std::to_string(number) + " ";
    std::erase_if(writes, [&](const std::string& exchange) { return !exchange.starts_with(prefix); });
    return writes;
  }
  void ExpectCommitted(int number, int word) {
    EXPECT_THAT(CommittedTo(number), ElementsAre(Writing(number, word))) << number;
  }
  /// Settings that differ in every field, and the exchanges of their commit.
  std::vector<std::string> EditAll() {
    Choose("cbBaudMarlo", 5);
    Edit("labAddressMarlo", "17");
    Edit("labSafetimeMarlo", "1234");
    if (!Checked("checkParity")) Click("checkParity");
    Click("OptionOdd");
    Click("CheckResetTimeout");
    Choose("ComboFailLed", 2);
    Type("txtValTreshold", "19");
    Type("txtDelay", "3");
    return {"reads 40001",
            Writing(kBaud, 0x0300),
            Writing(kSafeTime, 1234),
            Writing(kOptions, 0x0201),
            Writing(kLimits, 0x03BE),
            Writing(kAddress, 0x1102)};
  }
};

// Without a session.

TEST_F(MarloCommit, ChecksTheModelAndWritesItsSettingsInTheirOrder) {
  const std::vector<std::string> expected = EditAll();
  Commit();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(expected));
  ExpectOffline();
}

TEST_F(MarloCommit, GivesTheModuleBackWhatItHas) {
  Set(kAddress, 0xFF01);
  Set(kBaud, 0x0600);
  Set(kOptions, 0x0302);
  Set(kSafeTime, 65535);
  Set(kLimits, 0xC8FA);
  Reenter();
  module.ForgetLog();
  Commit();
  EXPECT_THAT(module.TakeLog(),
              ElementsAre("reads 40001", Writing(kBaud, 0x0600), Writing(kSafeTime, 65535), Writing(kOptions, 0x0302),
                          Writing(kLimits, 0xC8FA), Writing(kAddress, 0xFF01)));
}

TEST_F(MarloCommit, WaitsBeforeEachWrite) {
  std::vector<core::TimePoint> times;
  module.BeforeRead = [&](int /*first*/, int /*count*/) { times.push_back(scheduler.Now()); };
  module.AfterWrite = [&](int /*number*/, std::uint16_t /*value*/) { times.push_back(scheduler.Now()); };
  Commit();
  ASSERT_EQ(times.size(), 6U);
  for (std::size_t i = 1; i < times.size(); ++i) {
    // Twice as long before the last; an exchange takes some 25 ms.
    const core::Duration waited = core::milliseconds(i + 1 < times.size() ? 200 : 400);
    EXPECT_GE(times[i] - times[i - 1], waited) << i;
    EXPECT_LT(times[i] - times[i - 1], waited + core::milliseconds(50)) << i;
  }
}

TEST_F(MarloCommit, HoldsButtonTimersAndNavigationUntilItsBoxIsAnswered) {
  ClickAndGoOn("buttWEEPMarlo");
  EXPECT_FALSE(Enabled("buttWEEPMarlo"));
  ASSERT_TRUE(RunUntil([this] { return !module.Log().empty(); }));
  EXPECT_TRUE(PortOpen());
  EXPECT_NE(RefusalOf("MDIForm1.labBelk"), "");
  EXPECT_NE(RefusalOf("MDIForm1.buttCheckDevice"), "");
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  EXPECT_FALSE(Enabled("buttWEEPMarlo"));
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(PortOpen());
  AnswerOk();
  EXPECT_TRUE(Enabled("buttWEEPMarlo"));
  EXPECT_EQ(RefusalOf("MDIForm1.labBelk"), "");
}

TEST_F(MarloCommit, OpensThePortOnceAndClosesIt) {
  Commit();
  EXPECT_EQ(line.Opens(), 1);
  ExpectOffline();
}

TEST_F(MarloCommit, UsesTheLinkParametersOfThisPage) {
  StartSession();
  Click("buttStopMarlo");
  std::pair<int, int> parameters;
  module.BeforeRead = [&](int /*first*/, int /*count*/) { parameters = {Modcom().LinkParamA, Modcom().LinkParamB}; };
  Commit();
  EXPECT_EQ(parameters, std::pair(6, 6));
}

TEST_F(MarloCommit, GoesToThePcsLine) {
  MemoryLine otherLine(scheduler);
  MemoryModule other(scheduler, otherLine, 77);
  other.Line = {19200, bus::Parity::kEven};
  other[kIdentity] = 0x0D00;
  ports.Connect(3, otherLine);
  State().PCPort = 3;
  State().PCSettings = "19200,e,8,1";
  State().ModuleAddress = 77;
  Edit("labAddressMarlo", "9");
  Commit();
  EXPECT_EQ(other[kAddress], 0x0900);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  // The PC's side stays as it is.
  EXPECT_EQ(State().ModuleAddress, 77);
  EXPECT_EQ(State().PCSettings, "19200,e,8,1");
}

TEST_F(MarloCommit, IsRefusedByAnotherModule) {
  for (const int identity : {0x0C07, 0x8D07, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    module.ForgetLog();
    Click("buttWEEPMarlo");
    EXPECT_THAT(BoxInFront(), IsBox(kNotAMarlo, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_TRUE(Enabled("buttWEEPMarlo"));
    ExpectOffline();
  }
}

TEST_F(MarloCommit, IsRefusedWhereNobodyAnswers) {
  module.Always(ModuleFault::Unheard());
  Click("buttWEEPMarlo");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAMarlo, view::Icon::kCritical));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), Each(StartsWith("reads 40001")));
  EXPECT_TRUE(Enabled("buttWEEPMarlo"));
  module.Always(ModuleFault::None());
  ExpectOffline();
}

TEST_F(MarloCommit, IsRefusedWhereThePortDoesNotOpen) {
  ports.SetFault(1, core::kPermissionDenied);
  Click("buttWEEPMarlo");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAMarlo, view::Icon::kCritical));
  AnswerOk();
  EXPECT_TRUE(Enabled("buttWEEPMarlo"));
  ExpectOffline();
}

TEST_F(MarloCommit, TellsOfAWriteThatFailsAndGoesOn) {
  for (const int number : {kBaud, kSafeTime, kOptions, kLimits, kAddress}) {
    Click("MDIForm1.LabHome");
    OpenPage();
    module.ForgetLog();
    for (const int other : {kIdentity, kBaud, kSafeTime, kOptions, kLimits, kAddress}) {
      module.Next(other == number ? ModuleFault::Exception(4) : ModuleFault::None());
    }
    Commit();
    EXPECT_EQ(Panel1(), "unable to write " + std::to_string(number));
    EXPECT_EQ(module.TakeLog().size(), 6U);
  }
}

// What is written.

TEST_F(MarloCommit, WritesTheCodeOfEachRateAndNothingElseOfItsWord) {
  Set(kBaud, 0xF90F);
  Reenter();
  const int codes[] = {6, 7, 0, 1, 2, 3, 4};
  for (int position = 0; position < 7; ++position) {
    Choose("cbBaudMarlo", position);
    ExpectCommitted(kBaud, codes[position] << 8);
  }
}

TEST_F(MarloCommit, WritesAddressAndParityInOneWord) {
  Set(kAddress, 0x01FC);
  Reenter();
  ExpectCommitted(kAddress, 0x0100);
  Click("checkParity");
  ExpectCommitted(kAddress, 0x0101);
  Click("OptionOdd");
  Edit("labAddressMarlo", "255");
  ExpectCommitted(kAddress, 0xFF02);
  Click("OptionEven");
  ExpectCommitted(kAddress, 0xFF01);
  Click("checkParity");
  ExpectCommitted(kAddress, 0xFF00);
}

TEST_F(MarloCommit, WritesNoParityWhateverTheOptionWhileItIsOff) {
  Set(kAddress, 0x0102);
  Reenter();
  Click("checkParity");
  EXPECT_TRUE(Checked("OptionOdd"));
  ExpectCommitted(kAddress, 0x0100);
}

TEST_F(MarloCommit, WritesTheSafeTime) {
  for (const int time : {0, 1, 32768, 65535}) {
    Edit("labSafetimeMarlo", std::to_string(time));
    ExpectCommitted(kSafeTime, time);
  }
}

TEST_F(MarloCommit, WritesEachOptionAndNothingElseOfItsWord) {
  Set(kOptions, 0xFCFC);
  Reenter();
  ExpectCommitted(kOptions, 0);
  Click("CheckResetTimeout");
  ExpectCommitted(kOptions, 0x0001);
  Click("CheckFailLed");
  ExpectCommitted(kOptions, 0x0003);
  Click("CheckResetTimeout");
  ExpectCommitted(kOptions, 0x0002);
  for (int mode = 0; mode < 4; ++mode) {
    Choose("ComboFailLed", mode);
    ExpectCommitted(kOptions, mode << 8 | 0x0002);
  }
}

struct LimitsCase {
  const char* name;
  const char* threshold;
  const char* delay;
  int word;
};

class MarloLimits : public MarloCommit, public testing::WithParamInterface<LimitsCase> {};

INSTANTIATE_TEST_SUITE_P(Texts, MarloLimits,
                         testing::Values(LimitsCase{"Zero", "0", "0", 0}, LimitsCase{"Whole", "12", "7", 0x0778},
                                         LimitsCase{"LargestOfOneByte", "25", "255", 0xFFFA},
                                         // A threshold beyond its byte runs into the delay's bits.
                                         LimitsCase{"ThresholdTooLarge", "30", "2", 0x032C},
                                         LimitsCase{"WithAPoint", "2.5", "3.9", 0x0314},
                                         LimitsCase{"WithAComma", "2,9", "3,5", 0x0314},
                                         LimitsCase{"WithBlanks", " 12 ", " 7 ", 0x0778}),
                         [](const auto& given) { return given.param.name; });

TEST_P(MarloLimits, AreCutToWholeNumbersAndJoined) {
  Type("txtValTreshold", GetParam().threshold);
  Type("txtDelay", GetParam().delay);
  ExpectCommitted(kLimits, GetParam().word);
}

TEST_F(MarloCommit, LeavesTheLimitsOutWhenOneIsNoNumberAndGoesOn) {
  const std::pair<const char*, const char*> rows[] = {{"abc", "5"}, {"18", "x"}, {"", "5"}, {"18", ""}, {"1.2.3", "5"}};
  for (const auto& [threshold, delay] : rows) {
    SCOPED_TRACE(std::string(threshold) + "/" + delay);
    Type("txtValTreshold", threshold);
    Type("txtDelay", delay);
    module.ForgetLog();
    Click("buttWEEPMarlo");
    EXPECT_THAT(BoxInFront(), IsBox(kNoNumbers, view::Icon::kExclamation));
    EXPECT_THAT(module.TakeLog(),
                ElementsAre("reads 40001", Writing(kBaud, 0x0100), Writing(kSafeTime, 0), Writing(kOptions, 0)));
    AnswerOk();
    EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kExclamation));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre(Writing(kAddress, 0x0100)));
    EXPECT_TRUE(Enabled("buttWEEPMarlo"));
    ExpectOffline();
  }
}

TEST_F(MarloCommit, TellsAnOverflowAndWritesNothing) {
  for (const char* box : {"txtValTreshold", "txtDelay"}) {
    SCOPED_TRACE(box);
    Reenter();
    Type(box, "99999999999");
    module.ForgetLog();
    Click("buttWEEPMarlo");
    EXPECT_THAT(BoxInFront(), IsBox(core::kOverflow, view::Icon::kExclamation));
    AnswerOk();
    while (BoxInFront() != nullptr) AnswerOk();
    EXPECT_THAT(module.TakeLog(), testing::Not(Contains(StartsWith("writes"))));
    ASSERT_TRUE(Enabled("buttWEEPMarlo"));
    ExpectOffline();
  }
}

TEST_F(MarloCommit, DoesNotWriteTheDiagnosticsMask) {
  for (int i = 0; i < kCount; ++i) Click(Member("checkMask", i));
  Commit();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", Writing(kBaud, 0x0100), Writing(kSafeTime, 0),
                                            Writing(kOptions, 0), Writing(kLimits, 0x05B4), Writing(kAddress, 0x0100)));
}

// In a session.

TEST_F(MarloCommit, InASessionLeavesThePageToStopAfterAnOverflow) {
  StartSession();
  Type("txtDelay", "99999999999");
  Click("buttWEEPMarlo");
  EXPECT_THAT(BoxInFront(), IsBox(core::kOverflow, view::Icon::kExclamation));
  AnswerOk();
  while (BoxInFront() != nullptr) AnswerOk();
  EXPECT_TRUE(Enabled("buttWEEPMarlo"));
  if (InSession()) Click("buttStopMarlo");
  ExpectOffline();
}

TEST_F(MarloCommit, InASessionWritesTheSameAndEndsThePolling) {
  StartSession();
  const std::vector<std::string> expected = EditAll();
  EXPECT_THAT(Exchanges(), IsEmpty());
  Commit();
  EXPECT_THAT(Exchanges(), ElementsAreArray(expected));
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(PortOpen());
  EXPECT_FALSE(line.IsOpen());
  EXPECT_TRUE(Enabled("buttWEEPMarlo"));
  EXPECT_FALSE(Hourglass());
  Run(std::chrono::seconds(2));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(MarloCommit, InASessionHoldsThePollFromItsBeginning) {
  StartSession();
  RunIntoAPoll();
  module.ForgetLog();
  ClickAndGoOn("buttWEEPMarlo");
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(Enabled("buttWEEPMarlo"));
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  EXPECT_THAT(module.TakeLog(), testing::Not(Contains(std::string(kMarloPoll))));
  EXPECT_EQ(module[kBaud], 0x0100);
  AnswerOk();
}

TEST_F(MarloCommit, InASessionKeepsTheLinkParametersOfStart) {
  StartSession();
  std::pair<int, int> parameters;
  module.BeforeRead = [&](int first, int /*count*/) {
    if (first == kIdentity) parameters = {Modcom().LinkParamA, Modcom().LinkParamB};
  };
  Commit();
  EXPECT_EQ(parameters, std::pair(3, 3));
}

TEST_F(MarloCommit, InASessionLeavesThePageToStop) {
  StartSession();
  Commit();
  EXPECT_FALSE(Enabled("buttStartMarlo"));
  EXPECT_FALSE(Enabled("MDIForm1.labMarlo"));
  EXPECT_FALSE(Enabled("MDIForm1.labBelk"));
  Click("buttStopMarlo");
  ExpectOffline();
  StartSession();
  EXPECT_EQ(Text("MessageMarlo"), "OK");
}

TEST_F(MarloCommit, InASessionLeavesALampToItsBeep) {
  StartSession();
  Commit();
  module.ForgetLog();
  Click("shDefault(0)");
  EXPECT_EQ(Beeps(), 1);
  EXPECT_FALSE(PortOpen());
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(MarloCommit, InASessionIsFollowedByFailingPollsAfterAToggle) {
  StartSession();
  Commit();
  module.ForgetLog();
  Click("buttOUTMarlo(0)");
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(Enabled("buttOUTMarlo(0)"));
  EXPECT_FALSE(Hourglass());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageMarlo"), kPollFailed);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(NothingInFront());
  Click("buttStopMarlo");
  ExpectOffline();
}

TEST_F(MarloCommit, InASessionWhosePortHasGoneTakesItDown) {
  StartSession();
  line.Lose();
  Run(std::chrono::seconds(1));
  Click("buttWEEPMarlo");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAMarlo, view::Icon::kCritical));
  AnswerOk();
  EXPECT_TRUE(Enabled("buttWEEPMarlo"));
  ExpectOffline();
}

TEST_F(MarloCommit, InASessionThatIsRefusedTakesItDown) {
  for (const bool silent : {false, true}) {
    SCOPED_TRACE(silent);
    Set(kIdentity, 0x0D07);
    StartSession();
    RunUntilTheBusIsFree();
    Set(kIdentity, 0x0C07);
    if (silent) module.Always(ModuleFault::Unheard());
    Click("buttWEEPMarlo");
    EXPECT_THAT(BoxInFront(), IsBox(kNotAMarlo, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(Exchanges(), Each(StartsWith("reads 40001")));
    EXPECT_TRUE(Enabled("buttWEEPMarlo"));
    EXPECT_TRUE(Enabled("MDIForm1.labBelk"));
    module.Always(ModuleFault::None());
    ExpectOffline();
  }
}

}  // namespace
}  // namespace tarvo::test
