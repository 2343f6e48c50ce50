// The Hollin page from its activation through a session, its lock, and what it does with gestures on the way.

#include "support/hollin_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kFixed[] = "com port fixed, baud rate fixed : ";

// What it says of the line.

class HollinLine : public HollinFixture {};

TEST_F(HollinLine, IsToldWhenThePageIsShown) {
  EXPECT_EQ(Panel(1), std::string(kFixed) + "9600,n,8,1");
}

TEST_F(HollinLine, IsToldAnewAtEachReturnToThePage) {
  for (const char* settings : {"38400,n,8,1", "19200,e,8,1", "57600,o,8,1"}) {
    Click("LabHome");
    SetPanel(1, "passing");
    State().PCSettings = settings;
    Click("MenuHollin");
    EXPECT_EQ(Panel(1), kFixed + std::string(settings));
  }
}

TEST_F(HollinLine, IsToldWhenADialogOverThePageCloses) {
  SetPanel(1, "passing");
  Click(Value(0));
  EXPECT_EQ(Panel(1), "passing");
  AnswerChangeValue("5");
  EXPECT_EQ(Panel(1), std::string(kFixed) + "9600,n,8,1");
}

TEST_F(HollinLine, LeavesTheOtherPanelAlone) {
  SetPanel(2, "Connected to something");
  Click("LabHome");
  Click("MenuHollin");
  StartSession();
  EXPECT_EQ(Panel(2), "Connected to something");
}

// The session.

class HollinSession : public HollinFixture {
 protected:
  /// All that `HollinEnableControls` holds.
  static std::vector<std::string> Settings() {
    std::vector<std::string> names = {"CheckHollinBitOrder", "OptionHollin1", "OptionHollin2", "WEEPHollin",
                                      "ResetHollin"};
    for (const Row& row : kRows) names.insert(names.end(), {Value(row.start), Value(row.full)});
    for (int i = 0; i < kInputs; ++i) names.push_back(Filter(i));
    for (int i = 0; i < 6; ++i) names.push_back(Member("CheckHollin", i));
    return names;
  }
  void ExpectSettingsEnabled(bool enabled) const {
    for (const std::string& name : Settings()) EXPECT_EQ(Enabled(name), enabled) << name;
  }
  /// The group of the PLC side.
  static std::vector<std::string> Interface() {
    return {"CheckHollin(1)", "CheckHollin(2)", "CheckHollin(3)",      "CheckHollin(4)",
            "CheckHollin(5)", "OptionHollin1",  "CheckHollinBitOrder", "OptionHollin2"};
  }
};

TEST_F(HollinSession, ShowsTheFirmwareByTheLowByteAndKeepsIt) {
  for (const int release : {0, 2, 12, 255}) {
    SetRelease(release);
    Begin();
    EXPECT_EQ(Text("FirmwHollin"), "Firmware rel: " + std::to_string(release));
    Run(std::chrono::seconds(1));
    Click("StopHollin");
    EXPECT_EQ(Text("FirmwHollin"), "Firmware rel: " + std::to_string(release));
  }
}

TEST_F(HollinSession, HasTheSameControlsWhateverTheFirmware) {
  for (const int release : {0, 1, 255}) {
    SetRelease(release);
    ReadModule();
    ExpectSettingsEnabled(true);
  }
}

TEST_F(HollinSession, HasShownTheFirstBlockWhenTheSecondIsRead) {
  Set(kFilter1, 3);
  Set(kStartScale1, 5);
  Set(kStartScale1 + 1, 6);
  Set(kFlags, 0x0100);
  StartUntilRequest(3);
  EXPECT_EQ(ListIndex("FilterHollin(0)"), 3);
  EXPECT_EQ(Text(Value(0)), "5");
  EXPECT_EQ(Text(Value(6)), "0");
  EXPECT_TRUE(Checked("CheckHollin(1)"));
  EXPECT_EQ(State().PollRegister.Number(), 40013);
  EXPECT_EQ(State().PollCount, 12);
}

TEST_F(HollinSession, HasShownTheFirmwareBeforeTheFirstBlockIsRead) {
  StartUntilRequest(2);
  EXPECT_EQ(Text("FirmwHollin"), "Firmware rel: 1");
}

TEST_F(HollinSession, EnablesTheInterfaceWhileItBeginsAndLocksItAtItsEnd) {
  for (const std::string& name : Interface()) At(name).Enabled = false;
  StartUntilRequest(2);
  for (const std::string& name : Interface()) EXPECT_TRUE(Enabled(name)) << name;
  RunUntilIdle();
  for (const std::string& name : Interface()) EXPECT_FALSE(Enabled(name)) << name;
}

TEST_F(HollinSession, LocksAllSettingsAsLongAsItLasts) {
  ExpectSettingsEnabled(true);
  StartSession();
  ExpectSettingsEnabled(false);
  Run(std::chrono::seconds(2));
  ExpectSettingsEnabled(false);
  Click("StopHollin");
  ExpectSettingsEnabled(true);
}

TEST_F(HollinSession, StaysLockedWhenACommitThatBeganBeforeTheLockEnds) {
  StartUntilRequest(2);
  ClickAndGoOn("WEEPHollin");
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  AnswerOk();
  RunUntilIdle();
  ASSERT_TRUE(InSession());
  for (const std::string& name : Settings()) EXPECT_FALSE(Enabled(name)) << name;
}

TEST_F(HollinSession, LeavesStartAndStopOutOfItsLock) {
  StartSession();
  EXPECT_TRUE(Enabled("StopHollin"));
  EXPECT_FALSE(Enabled("StartHollin"));
}

TEST_F(HollinSession, WritesAFlagThatIsClickedBeforeTheLock) {
  Set(kFlags, 0x8300);
  ReadModule();
  StartUntilRequest(2);
  Click("CheckHollin(5)");
  RunUntilIdle();
  EXPECT_THAT(Exchanges(), Contains("writes 40003 = 0x9300"));
  EXPECT_EQ(module[kFlags], 0x9300);
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
}

// Stop listens to the code that Start leaves at its end.

TEST_F(HollinSession, IsNotEndedByStopUnlessTheRunKindIs6) {
  StartSession();
  for (const int kind : {0, 1, 5, 7}) {
    State().RunKind = static_cast<std::int16_t>(kind);
    Click("StopHollin");
    EXPECT_TRUE(InSession()) << kind;
    EXPECT_TRUE(TimersRun()) << kind;
    EXPECT_TRUE(PortOpen()) << kind;
    ExpectSettingsEnabled(false);
    EXPECT_FALSE(Enabled("StartHollin"));
    EXPECT_FALSE(Enabled(Menu()));
    EXPECT_TRUE(Playing("MediaPlayer1"));
  }
  State().RunKind = 6;
  Click("StopHollin");
  ExpectOffline();
  ExpectSettingsEnabled(true);
}

TEST_F(HollinSession, IsNotEndedByStopWhileTheFirstOneBegins) {
  StartUntilRequest(2);
  Click("StopHollin");
  RunUntilIdle();
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
  EXPECT_EQ(State().RunKind, 6);
}

// The kinds of data, once the lock lets them be clicked.

TEST_F(HollinSession, LeavesTheOtherKindOfDataAndTheLineWhenOneIsClicked) {
  for (const bool raw : {false, true}) {
    BeginWithFlags(raw ? 0x2000 : 0);
    const std::string clicked = raw ? "OptionHollin1" : "OptionHollin2";
    const std::string other = raw ? "OptionHollin2" : "OptionHollin1";
    ASSERT_TRUE(Checked(other));
    Unlock(clicked);
    Click(clicked);
    EXPECT_TRUE(Checked(clicked));
    EXPECT_TRUE(Checked(other));
    Run(std::chrono::seconds(1));
    EXPECT_THAT(Exchanges(), IsEmpty());
  }
}

}  // namespace
}  // namespace tarvo::test
