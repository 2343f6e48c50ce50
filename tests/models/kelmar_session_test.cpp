// The Kelmar page's lock, what its Start clears, and the kinds of data in a session.

#include "support/kelmar_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kBareFirmware[] = "Firmware rel: ";
constexpr char kLoads[] = "Load Kelmar window";

// The status bar.

class KelmarPanels : public KelmarFixture {};

TEST_F(KelmarPanels, TellThatThePageIsLoaded) {
  EXPECT_EQ(Panel(1), kLoads);
}

TEST_F(KelmarPanels, TellSoAtEachReturnToThePage) {
  Click("LabHome");
  SetPanel(1, "passing");
  Click("menuKelmar");
  EXPECT_EQ(Panel(1), kLoads);
}

TEST_F(KelmarPanels, TellSoWhenADialogOverThePageCloses) {
  SetPanel(1, "passing");
  Click(Cal(0));
  ASSERT_EQ(WindowInFront(), "dlgCalForm");
  EXPECT_EQ(Panel(1), "passing");
  Click("dlgCalForm.OKButton");
  EXPECT_EQ(Panel(1), kLoads);
}

TEST_F(KelmarPanels, LoseTheConnectionLineWithStart) {
  SetPanel(2, "Connected to Kelmar, COM1,9600,n,8,1  Module Address:1");
  StartSession();
  EXPECT_EQ(Panel(2), "");
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Panel(2), "");
}

TEST_F(KelmarPanels, KeepTheConnectionLineWhenStartIsRefused) {
  SetPanel(2, "Connected to Kelmar");
  Set(kIdentity, 0x0B01);
  Click("StartKelmar");
  AnswerOk();
  EXPECT_EQ(Panel(2), "Connected to Kelmar");
}

// The session.

class KelmarSession : public KelmarFixture {};

TEST_F(KelmarSession, ShowsTheFirmwareLineWithoutItsNumber) {
  for (const int release : {0, 1, 12, 255}) {
    SetRelease(release);
    Begin();
    EXPECT_EQ(Text("FirmwKelmar"), kBareFirmware) << release;
    Run(std::chrono::seconds(1));
    EXPECT_EQ(Text("FirmwKelmar"), kBareFirmware) << release;
    Click("StopKelmar");
    EXPECT_EQ(Text("FirmwKelmar"), kBareFirmware) << release;
  }
}

TEST_F(KelmarSession, HasTheBareFirmwareLineWhenTheFirstBlockIsRead) {
  StartUntilRequest(2);
  EXPECT_EQ(Text("FirmwKelmar"), kBareFirmware);
}

TEST_F(KelmarSession, ClearsWhatTheLastOneShowed) {
  Set(kStatus, 0xFF00);
  for (int input = 0; input < kInputs; ++input) Set(kValue1 + input, 5000);
  StartSession();
  RunThroughADecode();
  Click("StopKelmar");
  ASSERT_EQ(Text(Value(3)), "5000");
  ASSERT_EQ(LitLamps().size(), 8U);
  StartUntilRequest(2);
  EXPECT_EQ(Text("MessageKelmar"), "");
  EXPECT_THAT(LitLamps(), IsEmpty());
  for (int input = 0; input < kInputs; ++input) {
    EXPECT_EQ(Text(Value(input)), "0");
    EXPECT_EQ(Percent(Bar(input)), 0);
  }
  RunUntilIdle();
  RunThroughADecode();
  EXPECT_EQ(Text(Value(3)), "5000");
  EXPECT_EQ(LitLamps().size(), 8U);
}

TEST_F(KelmarSession, LeavesWhatIsShownWhenItIsRefused) {
  Set(kValue1, 5000);
  StartSession();
  RunThroughADecode();
  Click("StopKelmar");
  Set(kIdentity, 0x0601);
  Click("StartKelmar");
  AnswerOk();
  EXPECT_EQ(Text(Value(0)), "5000");
}

TEST_F(KelmarSession, HasLockedTheSettingsWhenTheFirstBlockIsRead) {
  ClickAndGoOn("StartKelmar");
  ExpectSettingsEnabled(true);
  RunUntilIdle();
  Click("StopKelmar");
  StartUntilRequest(2);
  ExpectSettingsEnabled(false);
}

TEST_F(KelmarSession, LocksAllSettingsAsLongAsItLasts) {
  ExpectSettingsEnabled(true);
  StartSession();
  ExpectSettingsEnabled(false);
  Run(std::chrono::seconds(2));
  ExpectSettingsEnabled(false);
  Click("StopKelmar");
  ExpectSettingsEnabled(true);
}

TEST_F(KelmarSession, LeavesTheKindsOfDataToTheUser) {
  for (const int flags : {0x0000, 0x2000}) {
    BeginWithFlags(flags);
    EXPECT_TRUE(Enabled("OptionKelmar1"));
    EXPECT_TRUE(Enabled("OptionKelmar2"));
  }
}

TEST_F(KelmarSession, IsEndedByStopWhateverTheRunKind) {
  StartSession();
  State().RunKind = 3;
  Click("StopKelmar");
  ExpectOffline();
  ExpectSettingsEnabled(true);
}

// The kinds of data: "Raw" is written at once, "Scaled " is not.

class KelmarData : public KelmarFixture {};

TEST_F(KelmarData, RawIsWrittenAtOnceInASession) {
  BeginWithFlags(0x9A57);
  Click("OptionKelmar2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0xBA57"));
  EXPECT_TRUE(Checked("OptionKelmar2"));
  EXPECT_FALSE(Checked("OptionKelmar1"));
}

TEST_F(KelmarData, RawIsWrittenAgainWhenItIsClickedAgain) {
  BeginWithFlags(0x2000);
  ASSERT_TRUE(Checked("OptionKelmar2"));
  Click("OptionKelmar2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003", "writes 40003 = 0x2000"));
}

TEST_F(KelmarData, RawIsWrittenFromZeroWhenTheReadIsRefused) {
  BeginWithFlags(0x0F00);
  RunUntilTheBusIsFree();
  module.Next(ModuleFault::Exception(2));
  Click("OptionKelmar2");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40003: exception 2", "writes 40003 = 0x2000"));
}

TEST_F(KelmarData, RawHoldsTheTimersForItsExchanges) {
  StartSession();
  RunIntoAPoll();
  module.ForgetLog();
  const auto run = ClickAndGoOn("OptionKelmar2");
  EXPECT_TRUE(Checked("OptionKelmar2"));
  while (!run->Done()) {
    ASSERT_TRUE(TimersRest());
    Run(core::milliseconds(1));
  }
  EXPECT_TRUE(TimersRun());
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40003", "writes 40003 = 0x2000"));
}

TEST_F(KelmarData, ScaledWritesNothingInASession) {
  BeginWithFlags(0x2F00);
  Click("OptionKelmar1");
  EXPECT_TRUE(Checked("OptionKelmar1"));
  EXPECT_FALSE(Checked("OptionKelmar2"));
  Run(std::chrono::seconds(1));
  EXPECT_THAT(Exchanges(), IsEmpty());
  EXPECT_EQ(module[kFlags], 0x2F00);
  EXPECT_TRUE(TimersRun());
}

TEST_F(KelmarData, ScaledStores239WhereTheNextPollOverwritesIt) {
  for (int i = 0; i < 5; ++i) Set(kStatus + i, 0x1000 + i);
  BeginWithFlags(0x2000);
  RunThroughADecode();
  RunUntilTheBusIsFree();
  Click("OptionKelmar1");
  EXPECT_EQ(Polled(1), 239);
  for (const int other : {0, 2, 3, 4}) EXPECT_EQ(Polled(static_cast<std::size_t>(other)), 0x1000 + other);
  Run(core::milliseconds(150));
  EXPECT_EQ(Polled(1), 0x1001);
}

TEST_F(KelmarData, ScaledStores239WithoutASessionToo) {
  Click("OptionKelmar2");
  EXPECT_EQ(Polled(1), 0);
  Click("OptionKelmar1");
  EXPECT_EQ(Polled(1), 239);
  ExpectNothingOnTheLine();
}

TEST_F(KelmarData, RawStoresNothingInThePolledBlock) {
  for (int i = 0; i < 5; ++i) Set(kStatus + i, 0x1000 + i);
  BeginWithFlags(0);
  RunThroughADecode();
  Click("OptionKelmar2");
  for (int i = 0; i < 5; ++i) EXPECT_EQ(Polled(static_cast<std::size_t>(i)), 0x1000 + i);
}

}  // namespace
}  // namespace tarvo::test
