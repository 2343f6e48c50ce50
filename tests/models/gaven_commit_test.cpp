#include "support/gaven_fixture.h"

namespace tarvo::test {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

class GavenCommit : public GavenFixture {
 protected:
  /// A different value in each setting of the module.
  void FillModule() {
    Set(kFlags, 0x0001 | 0x0002 | 0x0008 | 0x0010 | 0xAB00);
    for (int i = 0; i < kInputs; ++i) {
      Set(kFilter1 + i, 6 - i);
      Set(kFullScale1 + i, 1000 * (i + 1));
      Set(kStartScale1 + i, -1 - i);
    }
    Set(kStoredCommunication, 0x0309);
  }
  /// What a commit of those writes.
  static std::vector<std::string> FilledImages() {
    return {"writes 40067 = 0x001A", "writes 40068 = 0x0006", "writes 40069 = 0x0005", "writes 40070 = 0x0004",
            "writes 40071 = 0x0003", "writes 40072 = 0x03E8", "writes 40073 = 0x07D0", "writes 40074 = 0x0BB8",
            "writes 40075 = 0x0FA0", "writes 40076 = 0xFFFF", "writes 40077 = 0xFFFE", "writes 40078 = 0xFFFD",
            "writes 40079 = 0xFFFC", "writes 40066 = 0x0309"};
  }
  /// The last word that a commit writes to a register.
  int Committed(int number) {
    Commit();
    return module[number];
  }
  void Edit(const std::string& label, const char* text) {
    Click(label);
    AnswerChangeValue(text);
  }
};

TEST_F(GavenCommit, WritesAllImagesInTheirOrderInASession) {
  FillModule();
  StartSession();
  EXPECT_THAT(Commit(), ElementsAreArray(FilledImages()));
}

TEST_F(GavenCommit, WritesTheSameWithoutASessionOnceTheModuleIsKnown) {
  FillModule();
  StartSession();
  Click("StopGaven");
  std::vector<std::string> expected = FilledImages();
  expected.insert(expected.begin(), "reads 40001");
  EXPECT_THAT(Commit(), ElementsAreArray(expected));
  EXPECT_FALSE(PortOpen());
  EXPECT_FALSE(InSession());
  EXPECT_TRUE(TimersRest());
}

TEST_F(GavenCommit, WritesTheLowestValuesBeforeAnythingWasRead) {
  std::vector<std::string> expected = {"reads 40001"};
  for (int number = 40067; number <= 40079; ++number) expected.push_back(Writing(number, 0));
  expected.emplace_back("writes 40066 = 0x0101");
  EXPECT_THAT(Commit(), ElementsAreArray(expected));
}

TEST_F(GavenCommit, BuildsTheFlagsFromTheControlsAlone) {
  const std::pair<const char*, int> bits[] = {
      {"CheckGaven(0)", 2}, {"CheckGaven(1)", 4}, {"CheckGaven(2)", 8}, {"OptionGaven2", 16}};
  int expected = 0;
  for (const auto& [control, bit] : bits) {
    Click(control);
    expected |= bit;
    EXPECT_EQ(Committed(40067), expected) << control;
  }
  Click("OptionGaven1");
  EXPECT_EQ(Committed(40067), 0x000E);
}

TEST_F(GavenCommit, ClearsBit0AndAllAbove4OfTheStoredFlags) {
  Set(kFlags, 0xFFFF);
  StartSession();
  EXPECT_EQ(Committed(40067), 0x001E);
  EXPECT_EQ(module[kFlags], 0xFFFF);
}

TEST_F(GavenCommit, KeepsTheKindOfParityWhileParityIsOff) {
  Set(kFlags, 0x0010);
  StartSession();
  ASSERT_FALSE(Enabled("OptionGaven2"));
  EXPECT_EQ(Committed(40067), 0x0010);
}

TEST_F(GavenCommit, WritesTheCodeOfEachRateWithTheAddress) {
  StartSession();
  constexpr int kCodes[] = {6, 7, 0, 1, 2, 3, 4};
  Edit("AddressGaven", "255");
  for (int position = 0; position < 7; ++position) {
    Choose("BaudGaven", position);
    EXPECT_EQ(Committed(kStoredCommunication), kCodes[position] << 8 | 255) << position;
  }
}

TEST_F(GavenCommit, ChangesNoLiveRegister) {
  FillModule();
  StartSession();
  Edit("ValueGaven(0)", "5");
  Edit("AddressGaven", "5");
  Choose("FilterGaven(0)", 0);
  Commit();
  EXPECT_EQ(module[kStartScale1], 0xFFFF);
  EXPECT_EQ(module[kCommunication], 0x0101);
  EXPECT_EQ(module[kFilter1], 6);
}

TEST_F(GavenCommit, HoldsTimersAndButtonsUntilItsBoxIsAnswered) {
  StartSession();
  RunIntoAPoll();
  Click("WEEPGaven");
  ASSERT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(Enabled("ResetGaven"));
  EXPECT_FALSE(Enabled("WEEPGaven"));
  AnswerOk();
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(Enabled("ResetGaven"));
  EXPECT_TRUE(Enabled("WEEPGaven"));
  EXPECT_TRUE(InSession());
  EXPECT_FALSE(Hourglass());
}

TEST_F(GavenCommit, LetsThePollingGoOnWithTheSecondBlock) {
  StartSession();
  Commit();
  module.ForgetLog();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), AllOf(SizeIs(20), Each(kGaven.poll)));
}

TEST_F(GavenCommit, GoesOnPastAWriteThatIsRefused) {
  FillModule();
  StartSession();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  const std::vector<std::string> written = Commit();
  ASSERT_THAT(written, SizeIs(14));
  EXPECT_EQ(written[1], "writes 40068 = 0x0006: exception 4");
  EXPECT_EQ(written[13], "writes 40066 = 0x0309");
}

TEST_F(GavenCommit, GoesToTheAddressOfThePC) {
  State().ModuleAddress = 9;
  module.Address = 9;
  Edit("AddressGaven", "33");
  EXPECT_EQ(Committed(kStoredCommunication), 0x0121);
  EXPECT_EQ(State().ModuleAddress, 9);
}

TEST_F(GavenCommit, SetsTheFirstBlockWithoutASession) {
  StartSession();
  Click("StopGaven");
  Commit();
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 11);
}

TEST_F(GavenCommit, WritesNothingToAModuleOfAnotherModel) {
  Set(kIdentity, 0x0602);
  Click("WEEPGaven");
  EXPECT_THAT(BoxInFront(), IsBox(NotOurs(), view::Icon::kCritical));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  EXPECT_FALSE(PortOpen());
  EXPECT_FALSE(InSession());
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(Enabled("ResetGaven"));
  EXPECT_TRUE(Enabled("WEEPGaven"));
  EXPECT_TRUE(Enabled("StartGaven"));
  EXPECT_FALSE(Hourglass());
}

TEST_F(GavenCommit, WritesNothingToASilentModule) {
  module.Always(ModuleFault::Unheard());
  Click("WEEPGaven");
  EXPECT_THAT(BoxInFront(), IsBox(NotOurs(), view::Icon::kCritical));
  AnswerOk();
  EXPECT_FALSE(PortOpen());
  module.Always(ModuleFault::None());
  Commit();
}

class GavenReset : public GavenFixture {};

TEST_F(GavenReset, Writes1To40016AndEndsTheSession) {
  StartSession();
  Click("ResetGaven");
  EXPECT_THAT(BoxInFront(), IsBox("Module is Resetted! Comunication Stopped", view::Icon::kInformation));
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40016 = 0x0001"));
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
  EXPECT_TRUE(TimersRest());
  for (const char* name : {"StartGaven", "WEEPGaven", "ResetGaven", "MDIForm1.labGaven", "MDIForm1.MenuGaven"}) {
    EXPECT_TRUE(Enabled(name)) << name;
  }
  EXPECT_FALSE(Hourglass());
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  StartSession();
}

TEST_F(GavenReset, Writes1To40016WithoutASession) {
  Click("ResetGaven");
  EXPECT_THAT(BoxInFront(), IsBox("Module is Resetted!", view::Icon::kInformation));
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "writes 40016 = 0x0001"));
  AnswerOk();
  EXPECT_FALSE(PortOpen());
  EXPECT_TRUE(Enabled("ResetGaven"));
  EXPECT_TRUE(Enabled("WEEPGaven"));
  EXPECT_FALSE(Hourglass());
}

TEST_F(GavenReset, WritesNothingToAModuleOfAnotherModel) {
  Set(kIdentity, 0x0602);
  Click("ResetGaven");
  EXPECT_THAT(BoxInFront(), IsBox(NotOurs(), view::Icon::kCritical));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  EXPECT_FALSE(PortOpen());
  EXPECT_FALSE(InSession());
  EXPECT_TRUE(Enabled("ResetGaven"));
  EXPECT_FALSE(Hourglass());
}

}  // namespace
}  // namespace tarvo::test
