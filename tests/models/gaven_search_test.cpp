#include "pages/device_page.h"
#include "support/gaven_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::SizeIs;

/// What the page reads of its module when no session runs, in this order.
const std::vector<std::string>& SingleReads() {
  static const std::vector<std::string> reads = {"reads 40001", "reads 40004", "reads 40005", "reads 40006",
                                                 "reads 40007", "reads 40008", "reads 40009", "reads 40010",
                                                 "reads 40011", "reads 40012", "reads 40013", "reads 40014",
                                                 "reads 40015", "reads 40003", "reads 40066"};
  return reads;
}

class GavenReadEEPromFlags : public GavenFixture {};

TEST_F(GavenReadEEPromFlags, ReadsOneRegisterAtATimeInItsOrder) {
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SingleReads()));
}

TEST_F(GavenReadEEPromFlags, ShowsFlagsAndTheStoredLine) {
  Set(kFlags, 0x001C);
  Set(kCommunication, 0x0405);
  Set(kStoredCommunication, 0xFBC8);
  ReadEEPromFlags();
  EXPECT_FALSE(Checked("CheckGaven(0)"));
  EXPECT_TRUE(Checked("CheckGaven(1)"));
  EXPECT_TRUE(Checked("CheckGaven(2)"));
  EXPECT_TRUE(Checked("OptionGaven2"));
  EXPECT_TRUE(Enabled("OptionGaven1"));
  EXPECT_TRUE(Enabled("OptionGaven2"));
  EXPECT_EQ(Text("AddressGaven"), "200");
  EXPECT_EQ(Text("BaudGaven"), "38400");
}

TEST_F(GavenReadEEPromFlags, KeepsFlagsAndLineThatAreNotRead) {
  Set(kFlags, 0x001E);
  Set(kStoredCommunication, 0x0309);
  ReadEEPromFlags();
  module.Next(ModuleFault::None());
  for (std::size_t i = 1; i < SingleReads().size(); ++i) module.Next(ModuleFault::Exception(2));
  ReadEEPromFlags();
  EXPECT_TRUE(Checked("CheckGaven(0)"));
  EXPECT_TRUE(Checked("OptionGaven2"));
  EXPECT_EQ(Text("AddressGaven"), "9");
  EXPECT_EQ(Text("BaudGaven"), "38400");
  EXPECT_TRUE(NothingInFront());
}

class GavenCheckFWVersion : public GavenFixture {
 protected:
  pages::DevicePage& Gaven() { return dynamic_cast<pages::DevicePage&>(Page()); }
};

TEST_F(GavenCheckFWVersion, FillsTheRatesAndShowsNothingElse) {
  Gaven().CheckFWVersion(2);
  EXPECT_THAT(List("BaudGaven"), ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
  EXPECT_EQ(Text("BaudGaven"), "9600");
  Gaven().CheckFWVersion(1);
  EXPECT_THAT(List("BaudGaven"), ElementsAre("4800", "9600", "19200", "38400", "57600"));
  EXPECT_THAT(ItemData("BaudGaven"), ElementsAre(0, 1, 2, 3, 4));
  EXPECT_EQ(Text("FirmwGaven"), "Firmware rel:");
  EXPECT_EQ(ports.Attempts(), 0);
}

TEST_F(GavenCheckFWVersion, SparesStartAnotherCheckUntilThePageIsLeft) {
  Gaven().CheckFWVersion(1);
  StartSession();
  EXPECT_THAT(List("BaudGaven"), SizeIs(5));
  EXPECT_EQ(Text("FirmwGaven"), "Firmware rel: 2");
  Click("StopGaven");
  Click("LabHome");
  Click("labGaven");
  StartSession();
  EXPECT_THAT(List("BaudGaven"), SizeIs(7));
}

class GavenSearch : public GavenFixture {
 protected:
  /// From another page, as after the program's start.
  void Search() {
    Click("LabHome");
    module.ForgetLog();
    ClickAndGoOn("buttCheckDevice");
    ASSERT_TRUE(RunUntil([this] { return State().SearchRunning == state::kFalse; }));
    RunUntilIdle();
  }
};

TEST_F(GavenSearch, OpensThePageOfTheModuleThatItFinds) {
  Search();
  EXPECT_EQ(Page().Name(), "Gaven");
  EXPECT_EQ(State().NrFinestra, 4);
  EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), "Connected to Gaven, COM1,9600,n,8,1  Module Address:1");
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(line.IsOpen());
  EXPECT_TRUE(NothingInFront());
  EXPECT_FALSE(Hourglass());
}

TEST_F(GavenSearch, LetsThePageReadItsModule) {
  Set(kFilter1 + 2, 3);
  Set(kFullScale1, -42);
  Search();
  const std::vector<std::string> log = module.TakeLog();
  ASSERT_GT(log.size(), SingleReads().size());
  EXPECT_THAT(std::vector(log.end() - static_cast<std::ptrdiff_t>(SingleReads().size()), log.end()),
              ElementsAreArray(SingleReads()));
  EXPECT_EQ(ListIndex("FilterGaven(2)"), 3);
  EXPECT_EQ(Text(Value(1)), "-42");
}

TEST_F(GavenSearch, FillsTheRatesByTheRelease) {
  SetRelease(1);
  Search();
  EXPECT_THAT(List("BaudGaven"), SizeIs(5));
  SetRelease(2);
  Search();
  EXPECT_THAT(List("BaudGaven"), SizeIs(7));
}

TEST_F(GavenSearch, ReadsTheRateBeforeTheListHasTheSlowOnes) {
  Set(kStoredCommunication, 0x0601);
  Search();
  EXPECT_THAT(List("BaudGaven"), SizeIs(7));
  EXPECT_EQ(Text("BaudGaven"), "9600");
  Search();
  EXPECT_EQ(Text("BaudGaven"), "1200");
}

TEST_F(GavenSearch, KeepsTheRateThatWasReadWhenTheListGrows) {
  Set(kStoredCommunication, 0x0401);
  Search();
  EXPECT_THAT(List("BaudGaven"), SizeIs(7));
  EXPECT_EQ(Text("BaudGaven"), "57600");
}

TEST_F(GavenSearch, SparesTheNextStartAnotherCheck) {
  Search();
  SetRelease(1);
  StartSession();
  EXPECT_THAT(List("BaudGaven"), SizeIs(7));
  EXPECT_EQ(Text("FirmwGaven"), "Firmware rel: 1");
}

}  // namespace
}  // namespace tarvo::test
