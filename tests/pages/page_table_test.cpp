#include "pages/page_table.h"

#include <set>

#include "pages/device_page.h"
#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The routines that go by `NrFinestra`, on a table with the one page.
class PageTable : public BelkFixture {
 protected:
  PageTable() { table.Add(dynamic_cast<pages::DevicePage&>(Page())); }

  /// `LeggiModulo` to its end, with the port open.
  void Read() {
    ASSERT_TRUE(Modcom().SetPortOpen(true).Ok());
    State().PollRegister = state::Register(40002);
    State().PollCount = 9;
    Page().Spawn(table.LeggiModulo());
    Run(core::milliseconds(100));
  }

  pages::PageTable table{State()};
};

TEST_F(PageTable, KnowsThePageByItsNumber) {
  EXPECT_EQ(table.Page(0), &Page());
  EXPECT_EQ(table.Current(), &Page());
  for (const int number : {-1, 1, 12, 13, 99}) EXPECT_EQ(table.Page(number), nullptr) << number;
}

TEST_F(PageTable, HasNoCurrentPageWhereTheNumberHasNone) {
  State().NrFinestra = -1;
  EXPECT_EQ(table.Current(), nullptr);
  State().NrFinestra = 5;
  EXPECT_EQ(table.Current(), nullptr);
}

TEST_F(PageTable, LeggiModuloDoesNothingOutOfASession) {
  const std::string message = Text("MessageBelk");
  Read();
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_EQ(Text("MessageBelk"), message);
}

TEST_F(PageTable, LeggiModuloReadsTheBlockOfTheCurrentPage) {
  State().StartComm = state::kTrue;
  module[kCounter1] = 4711;
  Read();
  EXPECT_THAT(module.TakeLog(), ElementsAre(kBelkPoll));
  EXPECT_EQ(Polled(kPolledCounter1), 4711);
  EXPECT_EQ(Text("MessageBelk"), "OK");
}

TEST_F(PageTable, LeggiModuloDoesNothingWhereNoPageIsCurrent) {
  State().StartComm = state::kTrue;
  State().NrFinestra = -1;
  Read();
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_F(PageTable, LeggiModuloNeverWaitsForAFreeBus) {
  State().StartComm = state::kTrue;
  module.Next(ModuleFault::Late(core::milliseconds(300)));
  Read();
  ASSERT_TRUE(Modcom().CommBusy());
  Page().Spawn(table.LeggiModulo());
  Run(core::milliseconds(1));
  EXPECT_TRUE(Modcom().CommBusy());
  EXPECT_EQ(Text("MessageBelk"), kPollFailed);
}

TEST_F(PageTable, DeselectStartDisablesStartInASessionOnly) {
  table.DeselectStart();
  EXPECT_TRUE(Enabled("StartBelk"));
  State().StartComm = state::kTrue;
  table.DeselectStart();
  EXPECT_FALSE(Enabled("StartBelk"));
}

TEST_F(PageTable, ReselectStartEnablesStartOutOfASessionOnly) {
  State().StartComm = state::kTrue;
  table.DeselectStart();
  table.ReselectStart();
  EXPECT_FALSE(Enabled("StartBelk"));
  State().StartComm = state::kFalse;
  table.ReselectStart();
  EXPECT_TRUE(Enabled("StartBelk"));
}

TEST_F(PageTable, StartOfAnotherPageIsLeftAlone) {
  State().StartComm = state::kTrue;
  State().NrFinestra = 1;
  table.DeselectStart();
  EXPECT_TRUE(Enabled("StartBelk"));
}

TEST_F(PageTable, MuoviIngranaggiShowsTheGearsOfPhases2To5) {
  const int before = Picture("Ingranaggi1");
  State().GearStep = 1;
  table.MuoviIngranaggi();
  EXPECT_EQ(Picture("Ingranaggi1"), before);
  std::set<int> pictures;
  for (int phase = 2; phase <= 5; ++phase) {
    State().GearStep = phase;
    table.MuoviIngranaggi();
    pictures.insert(Picture("Ingranaggi1"));
  }
  EXPECT_EQ(pictures.size(), 4U);
  const int last = Picture("Ingranaggi1");
  State().GearStep = 1;
  table.MuoviIngranaggi();
  EXPECT_EQ(Picture("Ingranaggi1"), last);
}

}  // namespace
}  // namespace tarvo::test
