// What others make the Jorun page do.

#include "models/jorun.h"
#include "support/jorun_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;

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
    RunUntilIdle();
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
