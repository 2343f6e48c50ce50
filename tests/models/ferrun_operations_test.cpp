// Operations of the Ferrun page that others call: the search, or nobody yet.

#include "models/ferrun.h"
#include "support/ferrun_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class FerrunOperations : public FerrunFixture {
 protected:
  models::Ferrun& Ferrun() { return dynamic_cast<models::Ferrun&>(*program.FindWindow("Ferrun")); }

  void ReadEEPromFlags() {
    bool ended = false;
    Ferrun().Spawn(ReadAndTell(&Ferrun(), &ended));
    ASSERT_TRUE(RunUntil([&] { return ended; }));
  }
  void ExpectQuiet() {
    EXPECT_EQ(State().StartComm, state::kFalse);
    EXPECT_FALSE(line.IsOpen());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
  }

 private:
  static core::Task<> ReadAndTell(models::Ferrun* page, bool* ended) {
    co_await page->ReadEEPromFlags();
    *ended = true;
  }
};

// CheckFWVersion.

TEST_F(FerrunOperations, CheckFWVersionSetsTheRatesAndTheNewerFlags) {
  Ferrun().CheckFWVersion(3);
  EXPECT_THAT(ItemData("comboBaudFerrun"), ElementsAre(6, 7, 0, 1, 2, 3, 4));
  EXPECT_TRUE(Enabled("CheckDelay"));
  EXPECT_TRUE(Enabled("checkParity"));
  EXPECT_EQ(Panel1(), "");
  Ferrun().CheckFWVersion(2);
  EXPECT_THAT(ItemData("comboBaudFerrun"), ElementsAre(0, 1, 2, 3, 4));
  EXPECT_TRUE(Enabled("CheckDelay"));
  EXPECT_EQ(Panel1(), "");
  Ferrun().CheckFWVersion(1);
  EXPECT_THAT(ItemData("comboBaudFerrun"), ElementsAre(0, 1, 2, 3, 4));
  EXPECT_FALSE(Enabled("CheckDelay"));
  EXPECT_FALSE(Enabled("checkParity"));
  EXPECT_EQ(Panel1(), "FW Version = 1, Delay 12ms and Parity checkboxes  are disabled");
  EXPECT_EQ(ports.Attempts(), 0);
}

// ReadEEPromFlags.

TEST_F(FerrunOperations, ReadEEPromFlagsReadsTheSettingsOneByOne) {
  ReadEEPromFlags();
  const std::vector<std::string> log = module.TakeLog();
  std::vector<std::string> expected;
  for (const int reg : {40002, 40003, 40004, 40005, 40006, 40007, 40008, 40010, 40011, 40012, 40013, 40014, 40015,
                        40016, 40017, 40018, 40073, 40083}) {
    expected.push_back("reads " + std::to_string(reg));
  }
  ASSERT_THAT(log, SizeIs(expected.size() + 1));
  EXPECT_EQ(log.front(), "reads 40001");
  EXPECT_THAT(std::vector(log.begin() + 1, log.end()), testing::UnorderedElementsAreArray(expected));
  ExpectQuiet();
}

TEST_F(FerrunOperations, ReadEEPromFlagsShowsWhatItReads) {
  Set(kInput, 0x0305);
  for (int i = 0; i < 6; ++i) Set(40003 + i, -100 - i);
  Set(kSafeTime, 33);
  Set(kFlags, 0xA518);
  for (int i = 0; i < 7; ++i) Set(kSetpoint + i, 101 + i);
  Set(40009, 0x0405);
  Set(kStoredCommunication, 0x0377);
  Set(kStoredOutput, 4321);
  Ferrun().CheckFWVersion(3);
  ReadEEPromFlags();
  EXPECT_EQ(ListIndex("comboInputTypeFerrun"), 2);
  EXPECT_EQ(ListIndex("comboInputFilterFerrun"), 5);
  EXPECT_EQ(Text("UnitaMisuraFerrun1"), "uA");
  for (int i = 0; i < 6; ++i) EXPECT_EQ(Text(Value(i)), std::to_string(-100 - i)) << i;
  const int pid[] = {101, 102, 103, 104, 106, 107, 105};  // the manual reset is the last
  for (int i = 0; i < 7; ++i) EXPECT_EQ(Text(Value(6 + i)), std::to_string(pid[i])) << i;
  EXPECT_EQ(Text(Value(13)), "4321");
  EXPECT_EQ(Text("labSafetimeFerrun"), "33");
  EXPECT_EQ(Text("labAddressFerrun"), "119");
  EXPECT_EQ(Text("comboBaudFerrun"), "38400");
  for (const FerrunFlag& flag : kFerrunFlags) EXPECT_EQ(Checked(flag.box), (0xA518 & flag.mask) != 0) << flag.box;
  EXPECT_TRUE(Checked("OptionOdd"));
  EXPECT_TRUE(Enabled("OptionOdd"));
  EXPECT_FALSE(Enabled("OutputFerrun"));
  ExpectQuiet();
}

TEST_F(FerrunOperations, ReadEEPromFlagsUsesTheSharedLineValues) {
  module.Line.baud = 38400;
  module.Address = 9;
  State().PCSettings = "38400,n,8,1";
  State().ModuleAddress = 9;
  ReadEEPromFlags();
  EXPECT_EQ(Text("labSafetimeFerrun"), "50");
}

TEST_F(FerrunOperations, ReadEEPromFlagsStopsAtAnotherModelWithoutAMessage) {
  Set(kIdentity, 0x0303);
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  EXPECT_EQ(Text("labSafetimeFerrun"), "5");
  ExpectQuiet();
}

TEST_F(FerrunOperations, ReadEEPromFlagsIsACommitsGround) {
  Set(kFlags, 0x8518);
  Set(40009, 0x0405);
  Set(kStoredCommunication, 0x0311);
  Ferrun().CheckFWVersion(3);
  ReadEEPromFlags();
  module.ForgetLog();
  Click("buttWEEPFerrun");
  AnswerOk();
  const std::vector<std::string> log = module.TakeLog();
  EXPECT_THAT(log, testing::Contains("writes 40075 = 0x8518"));
  EXPECT_THAT(log, testing::Contains("writes 40073 = 0x0311"));
}

// FerrunEnableControls.

std::vector<std::string> Configuration() {
  std::vector<std::string> names = {"comboInputTypeFerrun", "comboInputFilterFerrun", "comboBaudFerrun",
                                    "buttWEEPFerrun", "buttResetFerrun"};
  for (const FerrunFlag& flag : kFerrunFlags) names.emplace_back(flag.box);
  for (int i = 0; i < 14; ++i) names.push_back("ValueFerrun(" + std::to_string(i) + ")");
  return names;
}

TEST_F(FerrunOperations, FerrunEnableControlsEnablesByState1Alone) {
  for (const int other : {0, 2, -1}) {
    Ferrun().FerrunEnableControls(1);
    for (const std::string& name : Configuration()) EXPECT_TRUE(Enabled(name)) << name;
    Ferrun().FerrunEnableControls(other);
    for (const std::string& name : Configuration()) EXPECT_FALSE(Enabled(name)) << name << ' ' << other;
    EXPECT_TRUE(Enabled("StartFerrun"));
  }
}

}  // namespace
}  // namespace tarvo::test
