// What the search makes the Hollin page read.

#include "pages/device_page.h"
#include "support/hollin_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

/// What the page reads of its module when no session runs, in this order.
const std::vector<std::string>& SingleReads() {
  static const std::vector<std::string> reads = {
      "reads 40001", "reads 40004", "reads 40005", "reads 40006", "reads 40007", "reads 40008", "reads 40009",
      "reads 40010", "reads 40011", "reads 40012", "reads 40013", "reads 40014", "reads 40015", "reads 40003"};
  return reads;
}

class HollinReadEEPromFlags : public HollinFixture {
 protected:
  void ReadEEPromFlags() {
    auto& hollin = dynamic_cast<pages::DevicePage&>(*program.FindWindow("Hollin"));
    bool ended = false;
    hollin.Spawn(ReadAndTell(&hollin, &ended));
    ASSERT_TRUE(RunUntil([&] { return ended; }));
  }

 private:
  static core::Task<> ReadAndTell(pages::DevicePage* page, bool* ended) {
    co_await page->ReadEEPromFlags();
    *ended = true;
  }
};

TEST_F(HollinReadEEPromFlags, ReadsOneRegisterAtATimeAndNoStoredAddress) {
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SingleReads()));
}

TEST_F(HollinReadEEPromFlags, ShowsWhatItReads) {
  for (int i = 0; i < kInputs; ++i) {
    Set(kFilter1 + i, i + 1);
    Set(kFullScale1 + i, 100 * (i + 1));
    Set(kStartScale1 + i, -100 * (i + 1));
    Set(kRaw1 + i, 77);
  }
  Set(kFlags, 0x7A02);
  ReadEEPromFlags();
  for (int i = 0; i < kInputs; ++i) {
    EXPECT_EQ(ListIndex(Filter(i)), i + 1);
    EXPECT_EQ(Text(Value(RowOf(i).full)), std::to_string(100 * (i + 1)));
    EXPECT_EQ(Text(Value(RowOf(i).start)), std::to_string(-100 * (i + 1)));
    EXPECT_EQ(Text(Value(RowOf(i).raw)), "0");
  }
  const std::array boxes = {true, false, true, false, true, true};
  for (int i = 0; i < kBoxes; ++i) EXPECT_EQ(Checked(Box(i)), boxes.at(static_cast<std::size_t>(i))) << i;
  EXPECT_TRUE(Checked("OptionHollin2"));
  EXPECT_FALSE(Checked("OptionHollin1"));
  EXPECT_TRUE(Checked("CheckHollinBitOrder"));
}

TEST_F(HollinReadEEPromFlags, BeginsNoSessionAndClosesItsPort) {
  ReadEEPromFlags();
  ExpectOffline();
  EXPECT_EQ(line.Opens(), 1);
}

TEST_F(HollinReadEEPromFlags, StopsAtAnotherModelWithoutAMessage) {
  Set(kIdentity, 0x0701);
  Set(kFilter1, 5);
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  EXPECT_EQ(ListIndex(Filter(0)), 0);
  ExpectOffline();
}

TEST_F(HollinReadEEPromFlags, KeepsWhatItShowedOfARegisterThatIsNotRead) {
  Set(kFilter1, 3);
  Set(kFullScale1, 50);
  Set(kStartScale1, -50);
  Set(kFlags, 0x3102);
  ReadEEPromFlags();
  module.Next(ModuleFault::None());
  for (std::size_t i = 1; i < SingleReads().size(); ++i) module.Next(ModuleFault::Exception(2));
  ReadEEPromFlags();
  EXPECT_EQ(ListIndex(Filter(0)), 3);
  EXPECT_EQ(Text(Value(1)), "50");
  EXPECT_EQ(Text(Value(0)), "-50");
  for (const char* on : {"CheckHollin(0)", "CheckHollin(1)", "CheckHollin(5)", "OptionHollin2"}) {
    EXPECT_TRUE(Checked(on)) << on;
  }
}

TEST_F(HollinReadEEPromFlags, LetsACommitStoreTheModulesOwnSettings) {
  Set(kFlags, 0x7102);
  Set(kFilter1 + 3, 4);
  Set(kStartScale1, -7);
  ReadEEPromFlags();
  Click("WEEPHollin");
  AnswerOk();
  EXPECT_EQ(module[40067], 0x7102);
  EXPECT_EQ(module[40071], 4);
  EXPECT_EQ(module[40076], 0xFFF9);
}

class HollinSearch : public HollinFixture {
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

TEST_F(HollinSearch, OpensThePageOfTheModuleThatItFinds) {
  Search();
  EXPECT_EQ(Page().Name(), "Hollin");
  EXPECT_EQ(State().NrFinestra, 8);
  EXPECT_EQ(State().FamilyShown, state::kFalse);
  EXPECT_EQ(Panel(2), "Connected to Hollin, COM1,9600,n,8,1  Module Address:1");
  ExpectOffline();
}

TEST_F(HollinSearch, TellsTheLineThatItHasFound) {
  module.Line.baud = 38400;
  Search();
  EXPECT_EQ(Panel(1), "com port fixed, baud rate fixed : 38400,n,8,1");
}

TEST_F(HollinSearch, LetsThePageReadItsModule) {
  Set(kFilter1 + 2, 3);
  Set(kFullScale1, -42);
  Search();
  const std::vector<std::string> log = module.TakeLog();
  ASSERT_GT(log.size(), SingleReads().size());
  EXPECT_THAT(std::vector(log.end() - static_cast<std::ptrdiff_t>(SingleReads().size()), log.end()),
              ElementsAreArray(SingleReads()));
  EXPECT_EQ(ListIndex(Filter(2)), 3);
  EXPECT_EQ(Text(Value(1)), "-42");
}

}  // namespace
}  // namespace tarvo::test
