// The search finds a Ferrun.

#include "support/ferrun_fixture.h"

namespace tarvo::test {
namespace {

using testing::SizeIs;

class FerrunSearch : public FerrunFixture {
 protected:
  void Search() {
    module.Line.baud = 38400;
    Click("MDIForm1.LabHome");
    ClickAndGoOn("MDIForm1.buttCheckDevice");
    ASSERT_TRUE(RunUntil([this] { return State().SearchRunning == state::kFalse && program.GetScreen().Idle(); }));
  }
};

TEST_F(FerrunSearch, ShowsThePageWithItsSettings) {
  Set(kInput, 0x0402);
  Set(kFlags, 0x9300);
  Set(kSetpoint, 4000);
  Set(kStoredCommunication, 0x0301);
  Search();
  EXPECT_EQ(Panel2(), "Connected to Ferrun, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Page().Name(), "Ferrun");
  EXPECT_EQ(State().NrFinestra, 3);
  EXPECT_EQ(ListIndex("comboInputTypeFerrun"), 3);
  EXPECT_EQ(ListIndex("comboInputFilterFerrun"), 2);
  EXPECT_EQ(Text(Value(6)), "4000");
  EXPECT_TRUE(Checked("CheckResetonTx"));
  EXPECT_THAT(List("comboBaudFerrun"), SizeIs(7));
  EXPECT_EQ(Text("comboBaudFerrun"), "38400");
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_FALSE(line.IsOpen());
  EXPECT_TRUE(Enabled("StartFerrun"));
}

TEST_F(FerrunSearch, ChecksTheVersionBeforeItReadsTheSettings) {
  SetRelease(3);
  std::size_t rates = 0;
  module.BeforeRead = [&](int first, int /*count*/) {
    if (first == kInput) rates = List("Ferrun.comboBaudFerrun").size();
  };
  Search();
  EXPECT_EQ(rates, 7U);
}

TEST_F(FerrunSearch, TellsWhatAnOldReleaseLacks) {
  SetRelease(1);
  Search();
  EXPECT_EQ(Panel1(), "FW Version = 1, Delay 12ms and Parity checkboxes  are disabled");
  EXPECT_FALSE(Enabled("CheckDelay"));
  EXPECT_FALSE(Enabled("checkParity"));
  EXPECT_THAT(List("comboBaudFerrun"), SizeIs(5));
}

TEST_F(FerrunSearch, LeavesASessionToTheUser) {
  Search();
  Click("StartFerrun");
  EXPECT_TRUE(InSession());
  EXPECT_EQ(Text("MessageFerrun"), "OK");
}

}  // namespace
}  // namespace tarvo::test
