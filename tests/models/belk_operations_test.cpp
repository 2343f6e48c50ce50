#include "models/belk.h"
#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

/// Operations that others call: the search, or nobody yet.
class BelkOperations : public BelkFixture {
 protected:
  models::Belk& Belk() { return dynamic_cast<models::Belk&>(*program.FindWindow("Belk")); }

  void ReadEEPromFlags() {
    bool ended = false;
    Belk().Spawn(ReadAndTell(&Belk(), &ended));
    ASSERT_TRUE(RunUntil([&] { return ended; }));
  }

 private:
  static core::Task<> ReadAndTell(models::Belk* page, bool* ended) {
    co_await page->ReadEEPromFlags();
    *ended = true;
  }
};

// CheckFWVersion.

TEST_F(BelkOperations, CheckFWVersionShowsTheRelease) {
  Belk().CheckFWVersion(3);
  EXPECT_EQ(Text("FirmwBelk"), "FW. Release: 3");
  Belk().CheckFWVersion(0);
  EXPECT_EQ(Text("FirmwBelk"), "FW. Release: 0");
}

TEST_F(BelkOperations, CheckFWVersionGrowsTheListAndKeepsTheCode) {
  Belk().CheckFWVersion(3);
  EXPECT_THAT(List("BaudBelk"), ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
  EXPECT_THAT(ItemData("BaudBelk"), ElementsAre(6, 7, 0, 1, 2, 3, 4));
  EXPECT_EQ(Text("BaudBelk"), "9600");
}

TEST_F(BelkOperations, CheckFWVersionShrinksTheListAndKeepsThePosition) {
  Belk().CheckFWVersion(3);
  Choose("BaudBelk", 0);
  Belk().CheckFWVersion(2);
  EXPECT_THAT(List("BaudBelk"), ElementsAre("4800", "9600", "19200", "38400", "57600"));
  EXPECT_THAT(ItemData("BaudBelk"), ElementsAre(0, 1, 2, 3, 4));
  EXPECT_EQ(ListIndex("BaudBelk"), 0);
}

TEST_F(BelkOperations, CheckFWVersionTouchesNeitherLineNorFlags) {
  Belk().CheckFWVersion(1);
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_EQ(Polled(kPolledFlags), 0);
}

// ReadEEPromFlags.

TEST_F(BelkOperations, ReadEEPromFlagsReadsTheIdentityAndThenOneRegisterAtATime) {
  ReadEEPromFlags();
  const std::vector<std::string> log = module.TakeLog();
  ASSERT_THAT(log, SizeIs(9));
  EXPECT_EQ(log.front(), "reads 40001");
  EXPECT_THAT(std::vector(log.begin() + 1, log.end()),
              UnorderedElementsAre("reads 40002", "reads 40003", "reads 40004", "reads 40005", "reads 40006",
                                   "reads 40007", "reads 40008", "reads 40009"));
}

TEST_F(BelkOperations, ReadEEPromFlagsShowsWhatItReads) {
  module[kStatus] = 0x0402;
  for (int i = 0; i < kInputs; ++i) module[kCounter1 + i] = static_cast<std::uint16_t>(13107 * (i + 1));
  module[kFilter] = 200;
  module[kFlags] = 0x0098;
  ReadEEPromFlags();
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_EQ(Picture(Member("StatoIN", i)), i == 1 ? 2 : 1) << i;
    EXPECT_EQ(BackColor(Member("OverFlowIN", i)), i == 2 ? 255 : 64) << i;
    EXPECT_EQ(Text(Member("TotIN", i)), std::to_string(13107 * (i + 1)));
    EXPECT_EQ(Percent(Bar(i)), 20 * (i + 1));
  }
  EXPECT_EQ(Text("FilterBelk"), "200");
  EXPECT_TRUE(Checked("CheckBelk1"));
  EXPECT_TRUE(Visible("LabelFASTBelk"));
  EXPECT_TRUE(Checked("CheckBelk6"));
  EXPECT_TRUE(Enabled("OptionBelk1"));
  EXPECT_TRUE(Checked("OptionBelk2"));
  EXPECT_FALSE(Checked("CheckBelk2"));
  EXPECT_FALSE(Checked("CheckBelk3"));
}

TEST_F(BelkOperations, ReadEEPromFlagsKeepsTheFlagsForACommit) {
  module[kFlags] = 0xABCD;
  ReadEEPromFlags();
  EXPECT_EQ(Polled(kPolledFlags), 0xABCD);
}

TEST_F(BelkOperations, ReadEEPromFlagsBeginsNoSessionAndClosesItsPort) {
  ReadEEPromFlags();
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_FALSE(line.IsOpen());
  EXPECT_EQ(line.Opens(), 1);
  EXPECT_TRUE(TimersRest());
  EXPECT_TRUE(Enabled("StartBelk"));
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
}

TEST_F(BelkOperations, ReadEEPromFlagsUsesTheSharedLineValues) {
  module.Line.baud = 38400;
  module.Address = 9;
  State().PCSettings = "38400,n,8,1";
  State().ModuleAddress = 9;
  module[kFilter] = 55;
  ReadEEPromFlags();
  EXPECT_EQ(Text("FilterBelk"), "55");
}

TEST_F(BelkOperations, ReadEEPromFlagsStopsAtAnotherModelWithoutAMessage) {
  module[kIdentity] = 0x0203;
  module[kFilter] = 99;
  module[kFlags] = 0x00FF;
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text("FilterBelk"), "1");
  EXPECT_EQ(Polled(kPolledFlags), 0);
  EXPECT_FALSE(line.IsOpen());
  EXPECT_FALSE(Hourglass());
}

TEST_F(BelkOperations, ReadEEPromFlagsStopsAtASilentModuleWithoutAMessage) {
  module.Always(ModuleFault::Unheard());
  ReadEEPromFlags();
  EXPECT_TRUE(NothingInFront());
  EXPECT_FALSE(line.IsOpen());
  EXPECT_EQ(Text("FilterBelk"), "1");
}

TEST_F(BelkOperations, ReadEEPromFlagsStopsAtAPortThatIsNotThere) {
  ports.Disconnect(1);
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  EXPECT_EQ(Text("FilterBelk"), "1");
  EXPECT_FALSE(Hourglass());
}

TEST_F(BelkOperations, ReadEEPromFlagsLeavesAPageThatStarts) {
  ReadEEPromFlags();
  StartSession();
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageBelk"), "OK");
}

TEST_F(BelkOperations, ReadEEPromFlagsHoldsTheNavigationWhileItReads) {
  Belk().Spawn(Belk().ReadEEPromFlags());
  ASSERT_TRUE(RunUntil([this] { return module.Requests() == 3; }));
  EXPECT_TRUE(Hourglass());
  EXPECT_NE(RefusalOf("MDIForm1.labBelk"), "");
  Close();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  ASSERT_TRUE(RunUntil([this] { return !Hourglass(); }));
  EXPECT_EQ(module.Requests(), 9);
  EXPECT_EQ(RefusalOf("MDIForm1.labBelk"), "");
}

// The enabling routine.

constexpr const char* kEdits[] = {"CheckBelk1", "CheckBelk2", "CheckBelk3",  "CheckBelk4", "CheckBelk5",
                                  "CheckBelk6", "FilterBelk", "AddressBelk", "BaudBelk",   "TotIN(0)",
                                  "TotIN(1)",   "TotIN(2)",   "TotIN(3)",    "TotIN(4)"};

TEST_F(BelkOperations, BelkEnableControlsDisablesAllThatEdits) {
  Click("CheckBelk6");
  ASSERT_TRUE(Enabled("OptionBelk1"));
  Belk().BelkEnableControls(false);
  for (const char* edit : kEdits) EXPECT_FALSE(Enabled(edit)) << edit;
  EXPECT_FALSE(Enabled("OptionBelk1"));
  EXPECT_FALSE(Enabled("OptionBelk2"));
  EXPECT_TRUE(Enabled("StartBelk"));
}

TEST_F(BelkOperations, BelkEnableControlsEnablesThemAgain) {
  Belk().BelkEnableControls(false);
  Belk().BelkEnableControls(true);
  for (const char* edit : kEdits) EXPECT_TRUE(Enabled(edit)) << edit;
}

}  // namespace
}  // namespace tarvo::test
