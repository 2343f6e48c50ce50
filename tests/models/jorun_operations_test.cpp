// What others make the Jorun page do, and what it keeps for the bars.

#include "models/jorun.h"
#include "support/jorun_fixture.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNotInitialised[] = "FullScaleTC non inizializzato";

// The counts that fill a bar.

class JorunFullScale : public JorunFixture {
 protected:
  int FullScale(int input) const { return State().FullScaleTC.at(static_cast<std::size_t>(input)); }
};

TEST_F(JorunFullScale, BeginsAt16000) {
  EXPECT_THAT(State().FullScaleTC, Each(16000));
}

TEST_F(JorunFullScale, FollowsTheUsersChoiceOfAType) {
  for (int input = 0; input < kInputs; ++input) {
    for (std::size_t type = 0; type < kTypes.size(); ++type) {
      Choose(TypeList(input), static_cast<int>(type));
      EXPECT_EQ(FullScale(input), kTypes.at(type).fullScale) << type;
    }
    Choose(TypeList(input), 5);
    for (int other = 0; other < kInputs; ++other) EXPECT_EQ(FullScale(other), other <= input ? 4000 : 16000);
  }
}

TEST_F(JorunFullScale, FollowsTheTypesOfTheModule) {
  for (int input = 0; input < kInputs; ++input) Set(kType1 + input, 1 + input);
  StartSession();
  EXPECT_THAT(State().FullScaleTC, ElementsAre(10000, 12000, 17500, 17500));
}

TEST_F(JorunFullScale, IsTheModulesOwnAgainWhenAnotherPageHasChangedIt) {
  Set(kType1, 1);
  StartSession();
  Click("StopJorun");
  State().FullScaleTC.fill(16000);
  Set(kValue1, 5000);
  StartSession();
  RunThroughADecode();
  EXPECT_EQ(FullScale(0), 10000);
  EXPECT_EQ(Percent("BargJorun(0)"), 50);
}

TEST_F(JorunFullScale, OfAnUnknownTypeStays) {
  Choose(TypeList(0), 5);
  Choose(TypeList(1), 6);
  Set(kType1, 9);
  Set(kType1 + 1, 65535);
  StartSession();
  EXPECT_EQ(FullScale(0), 4000);
  EXPECT_EQ(FullScale(1), 18000);
}

TEST_F(JorunFullScale, BelowOneStopsAllBarsAndSaysSoAtEachTick) {
  for (const int missing : {0, -1}) {
    SCOPED_TRACE(missing);
    for (int input = 0; input < kInputs; ++input) Set(kValue1 + input, 0);
    StartSession();
    RunThroughADecode();
    const auto before = Percent("BargJorun(0)");
    State().FullScaleTC[3] = static_cast<std::int16_t>(missing);
    for (int input = 0; input < kInputs; ++input) Set(kValue1 + input, 8000 + input);
    Set(kStatus, 0x0100);
    for (int tick = 0; tick < 3; ++tick) {
      ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }, std::chrono::seconds(1)));
      EXPECT_THAT(BoxInFront(), IsBox(kNotInitialised, view::Icon::kCritical));
      AnswerOk();
    }
    EXPECT_EQ(Text("ValueJorun(0)"), "8000");
    EXPECT_EQ(Text("ValueJorun(3)"), "8003");
    EXPECT_EQ(BackColor("OverflowJorun(0)"), 255);
    EXPECT_EQ(Percent("BargJorun(0)"), before);
    // Mended, it is silent and the bars go on.
    State().FullScaleTC[3] = 16000;
    if (BoxInFront() != nullptr) AnswerOk();
    Run(std::chrono::seconds(1));
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(Percent("BargJorun(0)"), 50);
    Click("StopJorun");
  }
}

TEST_F(JorunFullScale, BelowOneShowsOneBoxAtATime) {
  StartSession();
  State().FullScaleTC[0] = 0;
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  Run(std::chrono::seconds(2));
  EXPECT_EQ(program.GetScreen().ModalDepth(), 1U);
}

TEST_F(JorunFullScale, BelowOneLeavesTheModuleBeingPolled) {
  StartSession();
  State().FullScaleTC[0] = 0;
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  module.ForgetLog();
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module.TakeLog().size(), 20U);
}

// The routine that no flow calls.

class JorunInputs : public JorunFixture {
 protected:
  void EnableInputs(int mode) { dynamic_cast<models::Jorun&>(Page()).EnableInputs(mode); }
  void ExpectAll(bool enabled) const {
    ExpectSettingsEnabled(enabled);
    EXPECT_EQ(Enabled("OptionEven"), enabled);
    EXPECT_EQ(Enabled("OptionOdd"), enabled);
    EXPECT_TRUE(Enabled("StartJorun"));
  }
};

TEST_F(JorunInputs, AreEnabledByModeOneAndDisabledByAnyOther) {
  for (const int mode : {0, 2, -1}) {
    EnableInputs(mode);
    ExpectAll(false);
    EnableInputs(1);
    ExpectAll(true);
  }
}

// What the search makes it read.

class JorunFound : public JorunFixture {
 protected:
  static constexpr char kSearch[] = "MDIForm1.buttCheckDevice";

  JorunFound() { module.Line.baud = 38400; }

  /// A search that finds the module; gives what it made the page read.
  std::vector<std::string> Search() {
    module.ForgetLog();
    Click(kSearch);
    RunUntil([this] { return program.GetScreen().Idle(); });
    return module.TakeLog();
  }
};

TEST_F(JorunFound, ReadsTypesFlagsStoredAddressTypesAndFilters) {
  Click("MDIForm1.LabHome");
  EXPECT_THAT(Search(), ElementsAre("reads 40001", "reads 40004", "reads 40005", "reads 40006", "reads 40007",
                                    "reads 40003", "reads 40066", "reads 40004", "reads 40005", "reads 40006",
                                    "reads 40007", "reads 40008", "reads 40009", "reads 40010", "reads 40011"));
  EXPECT_EQ(Page().Name(), "Jorun");
  EXPECT_EQ(State().NrFinestra, 5);
  EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), "Connected to Jorun, COM1,38400,n,8,1  Module Address:1");
  EXPECT_FALSE(line.IsOpen());
  EXPECT_FALSE(InSession());
  EXPECT_TRUE(Enabled("StartJorun"));
  EXPECT_FALSE(Hourglass());
}

TEST_F(JorunFound, ShowsWhatItReads) {
  for (int input = 0; input < kInputs; ++input) {
    Set(kType1 + input, 8 - input);
    Set(kFilter1 + input, 6 - input);
  }
  Set(kFlags, 0x1A);
  Set(kStoredCommunication, 0x0321);
  Search();
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_EQ(ListIndex(TypeList(input)), 8 - input);
    EXPECT_EQ(ListIndex(Filter(input)), 6 - input);
  }
  EXPECT_THAT(State().FullScaleTC, ElementsAre(13000, 8000, 18000, 4000));
  EXPECT_TRUE(Checked("CheckJorun(0)"));
  EXPECT_FALSE(Checked("CheckJorun(1)"));
  EXPECT_TRUE(Checked("CheckJorun(2)"));
  EXPECT_TRUE(Enabled("OptionEven"));
  EXPECT_TRUE(Enabled("OptionOdd"));
  EXPECT_TRUE(Checked("OptionOdd"));
  EXPECT_EQ(Text("labAddressJorun"), "33");
  EXPECT_EQ(Text("cbBaudJorun"), "38400");
}

TEST_F(JorunFound, DisablesTheKindsOfParityWithoutParity) {
  Set(kFlags, 0x10);
  Search();
  EXPECT_FALSE(Enabled("OptionEven"));
  EXPECT_FALSE(Enabled("OptionOdd"));
  EXPECT_TRUE(Checked("OptionOdd"));
}

TEST_F(JorunFound, LeavesTheVersionToStart) {
  Search();
  ExpectFiveRates();
  module.ForgetLog();
  Click("StartJorun");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001", "reads 40001", "reads 40002 x10", "reads 40066"));
}

TEST_F(JorunFound, KeepsTheFlagsWhenTheirReadIsRefused) {
  Click("CheckJorun(1)");
  Set(kFlags, 0x1A);
  Set(kStoredCommunication, 0x0344);
  // The identity and four types, then the flags, then the stored address.
  for (int i = 0; i < 5; ++i) module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(2));
  module.Next(ModuleFault::Exception(2));
  Search();
  EXPECT_FALSE(Checked("CheckJorun(0)"));
  EXPECT_TRUE(Checked("CheckJorun(1)"));
  EXPECT_EQ(Text("labAddressJorun"), "1");
}

TEST_F(JorunFound, CommitsWhatItHasRead) {
  Set(kType1 + 3, 2);
  Set(kFilter1, 5);
  Set(kFlags, 0x06);
  Set(kStoredCommunication, 0x0309);
  Search();
  Click("buttWEEPJorun");
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "writes 40067 = 0x0006", "writes 40068 = 0x0000",
                                            "writes 40069 = 0x0000", "writes 40070 = 0x0000", "writes 40071 = 0x0002",
                                            "writes 40072 = 0x0005", "writes 40073 = 0x0000", "writes 40074 = 0x0000",
                                            "writes 40075 = 0x0000", "writes 40066 = 0x0309"));
}

}  // namespace
}  // namespace tarvo::test
