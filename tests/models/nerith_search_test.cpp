// What the search does with the page of Nerith and Pellor.

#include "support/nerith_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAreArray;

class NerithSearch : public NerithModule, public testing::WithParamInterface<NerithKind> {
 protected:
  NerithSearch() {
    SetKind(GetParam(), kNew);
    module.Line.baud = 38400;
    Set(kSerial, 0x0C01);
  }

  /// From its button up to its end.
  void Search() {
    Click("MDIForm1.buttCheckDevice");
    ASSERT_TRUE(RunUntil([this] { return State().SearchRunning == state::kFalse && program.GetScreen().Idle(); }));
  }
  /// What went over the line but for the short reads by which the bus proves that answers are in step.
  std::vector<std::string> Asked() {
    std::vector<std::string> log = module.TakeLog();
    std::erase_if(log, [](const std::string& exchange) { return exchange.starts_with("reads 40001 x"); });
    return log;
  }
  /// One read by the search, and a full reading by the page.
  static std::vector<std::string> Expected() {
    std::vector<std::string> expected = SettingsReads(GetParam().channels);
    expected.insert(expected.begin(), "reads 40001");
    return expected;
  }
};

INSTANTIATE_TEST_SUITE_P(, NerithSearch, testing::Values(kNerith, kPellor),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(NerithSearch, FindsAndShowsTheModule) {
  Set(kSystem, 0x2B);
  SetChannel(2, 0x0704, 0x6000);
  Search();
  EXPECT_EQ(Page().Name(), "frmNerith");
  EXPECT_EQ(State().NrFinestra, 9);
  EXPECT_EQ(State().PCSettings, "38400,n,8,1");
  EXPECT_EQ(Panel2(), std::string("Connected to ") + GetParam().name + ", COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(ListIndex("cbUnits"), 3);
  EXPECT_EQ(ListIndex("cbDecimalNumbers"), 1);
  EXPECT_EQ(Text("cbBaudRate"), "38400");
  EXPECT_EQ(Text(Sensor(2)), "NI100");
  EXPECT_EQ(ListIndex(Dump(2)), 4);
  EXPECT_EQ(Text(Heading(2)), "Resistance");
  EXPECT_EQ(ListIndex(Range(2)), 2);
  ExpectOffline();
}

TEST_P(NerithSearch, LetsThePageReadItsModuleOnce) {
  Search();
  EXPECT_THAT(Asked(), ElementsAreArray(Expected()));
  EXPECT_EQ(State().pageReadDone, state::kTrue);
}

TEST_P(NerithSearch, LetsThePageReadItsModuleAnewFromThePageItself) {
  module.Line.baud = 9600;
  Enter();
  module.Line.baud = 38400;
  Set(kSystem, 0x12);
  module.ForgetLog();
  Search();
  EXPECT_THAT(Asked(), ElementsAreArray(Expected()));
  EXPECT_EQ(ListIndex("cbUnits"), 2);
}

TEST_P(NerithSearch, TellsThatAPellorHasThreeChannels) {
  Search();
  const bool told = Panel1() == "Pellor, only 3 channels available";
  EXPECT_EQ(told, GetParam().channels == 3) << Panel1();
}

TEST_P(NerithSearch, LeavesASessionToTheUser) {
  Search();
  Click("StartNerith");
  EXPECT_THAT(Exchanges(), testing::IsSupersetOf({"reads 40001", "reads 40035"}));
  ExpectSessionGoesOn();
}

TEST_P(NerithSearch, FindsTheOtherKindAfterwards) {
  Search();
  const NerithKind other = GetParam().channels == 4 ? kPellor : kNerith;
  SetKind(other, kNew);
  Search();
  EXPECT_EQ(Panel2(), std::string("Connected to ") + other.name + ", COM1,38400,n,8,1  Module Address:1");
  for (const std::string& name : ChannelControls(3)) EXPECT_EQ(Enabled(name), other.channels == 4) << name;
}

}  // namespace
}  // namespace tarvo::test
