// Operations of the Cobin page that others call: the search, or nobody yet.

#include "models/cobin.h"
#include "support/cobin_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class CobinOperations : public CobinFixture {
 protected:
  models::Cobin& Cobin() { return dynamic_cast<models::Cobin&>(*program.FindWindow("Cobin")); }

  void ReadEEPromFlags() {
    bool ended = false;
    Cobin().Spawn(ReadAndTell(&Cobin(), &ended));
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
  static core::Task<> ReadAndTell(models::Cobin* page, bool* ended) {
    co_await page->ReadEEPromFlags();
    *ended = true;
  }
};

// CheckFWVersion.

TEST_F(CobinOperations, CheckFWVersionDecidesAt2) {
  const char* const gated[] = {"CheckCobin4", "CheckCobin5", "OptionCobin1", "OptionCobin2"};
  Cobin().CheckFWVersion(2);
  for (const char* name : gated) EXPECT_FALSE(Enabled(name)) << name;
  EXPECT_THAT(List("BaudCobin"), SizeIs(5));
  EXPECT_EQ(Text("MDIForm1.StatusBar1(1)"), "FW version :1, Delay 12ms and Parity checkboxes   are disabled");
  Cobin().CheckFWVersion(3);
  for (const char* name : gated) EXPECT_TRUE(Enabled(name)) << name;
  EXPECT_THAT(List("BaudCobin"), SizeIs(7));
}

TEST_F(CobinOperations, CheckFWVersionTouchesNeitherLineNorFlagsNorFirmwareLabel) {
  Cobin().CheckFWVersion(3);
  Cobin().CheckFWVersion(1);
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_EQ(Polled(kPolledFlags), 0);
  EXPECT_EQ(Text("FirmwCobin"), "Firmware rel:");
}

// ReadEEPromFlags.

TEST_F(CobinOperations, ReadEEPromFlagsReadsOneRegisterAtATimeInItsOrder) {
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(),
              ElementsAre("reads 40001", "reads 40002", "reads 40003", "reads 40004", "reads 40005", "reads 40070"));
  ExpectQuiet();
}

TEST_F(CobinOperations, ReadEEPromFlagsShowsWhatItReads) {
  Set(kOutputs, 0x15);
  Set(kSafeStates, 0x0A);
  Set(kSafeTime, 123);
  Set(kFlags, 0x0099);
  Set(kStoredCommunication, 0x0377);
  ReadEEPromFlags();
  for (int i = 0; i < kOutputCount; ++i) {
    EXPECT_EQ(Picture(Out(i)), i % 2 == 0 ? 2 : 1) << i;
    EXPECT_EQ(Picture(Safe(i)), i % 2 == 0 ? 1 : 2) << i;
  }
  EXPECT_EQ(Text("SafetimeCobin"), "123");
  EXPECT_TRUE(Checked("CheckCobin1"));
  EXPECT_TRUE(Checked("CheckCobin2"));
  EXPECT_FALSE(Checked("CheckCobin3"));
  EXPECT_FALSE(Checked("CheckCobin4"));
  EXPECT_TRUE(Checked("CheckCobin5"));
  EXPECT_TRUE(Checked("OptionCobin2"));
  EXPECT_TRUE(Enabled("OptionCobin1"));
  EXPECT_TRUE(Enabled("OptionCobin2"));
  EXPECT_EQ(Text("AddressCobin"), "119");
  EXPECT_EQ(Text("BaudCobin"), "38400");
}

TEST_F(CobinOperations, ReadEEPromFlagsLeavesTheWorkingCopiesAndTheButtons) {
  for (std::size_t i = 0; i < 20; ++i) SetPolled(i, 0x4000 + static_cast<int>(i));
  Set(kOutputs, 0x15);
  Set(kSafeStates, 0x0A);
  Set(kFlags, 0x0099);
  ReadEEPromFlags();
  for (std::size_t i = 0; i < 20; ++i) EXPECT_EQ(Polled(i), 0x4000 + static_cast<int>(i)) << i;
  for (int i = 0; i < kOutputCount; ++i) {
    EXPECT_FALSE(Enabled(Out(i)));
    EXPECT_FALSE(Enabled(Safe(i)));
  }
}

TEST_F(CobinOperations, ACommitAfterReadEEPromFlagsWritesTheEarlierWorkingCopies) {
  SetPolled(kPolledSafeStates, 0x1234);
  SetPolled(kPolledFlags, 0x5678);
  Set(kSafeStates, 0x0A);
  Set(kSafeTime, 123);
  Set(kFlags, 0x0099);
  Set(kStoredCommunication, 0x0177);
  ReadEEPromFlags();
  module.ForgetLog();
  Click("WEEPCobin");
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "writes 40067 = 0x1234", "writes 40068 = 0x007B",
                                            "writes 40069 = 0x5678", "writes 40070 = 0x0177"));
}

TEST_F(CobinOperations, ReadEEPromFlagsSkipsOnlyThePaintingOfARefusedRead) {
  Set(kOutputs, 0x15);
  Set(kSafeStates, 0x0A);
  Set(kFlags, 0x0081);
  ReadEEPromFlags();
  const auto refuseTheRead = [this](int number) {
    for (int i = 0; i < number; ++i) module.Next(ModuleFault::None());
    module.Next(ModuleFault::Exception(4));
  };
  Set(kOutputs, 0x0A);
  Set(kSafeStates, 0x15);
  refuseTheRead(1);
  ReadEEPromFlags();
  for (int i = 0; i < kOutputCount; ++i) EXPECT_EQ(Picture(Out(i)), i % 2 == 0 ? 2 : 1) << i;
  for (int i = 0; i < kOutputCount; ++i) EXPECT_EQ(Picture(Safe(i)), i % 2 == 0 ? 2 : 1) << i;

  Set(kSafeStates, 0x00);
  Set(kFlags, 0x0040);
  refuseTheRead(2);
  ReadEEPromFlags();
  for (int i = 0; i < kOutputCount; ++i) EXPECT_EQ(Picture(Safe(i)), i % 2 == 0 ? 2 : 1) << i;
  EXPECT_FALSE(Checked("CheckCobin1"));
  EXPECT_TRUE(Checked("CheckCobin3"));

  Set(kFlags, 0x0000);
  Set(kStoredCommunication, 0x0309);
  refuseTheRead(4);
  ReadEEPromFlags();
  EXPECT_TRUE(Checked("CheckCobin3"));
  EXPECT_EQ(Text("AddressCobin"), "9");
  ExpectQuiet();
}

TEST_F(CobinOperations, ReadEEPromFlagsTakesARefusedSafeTimeForZero) {
  Set(kSafeStates, 0x0A);
  for (int i = 0; i < 3; ++i) module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  ReadEEPromFlags();
  EXPECT_EQ(Text("SafetimeCobin"), "0");
}

TEST_F(CobinOperations, ReadEEPromFlagsLeavesAddressAndRateWhenTheyAreNotRead) {
  Set(kStoredCommunication, 0x0309);
  const std::string rate = Text("BaudCobin");
  for (int i = 0; i < 5; ++i) module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  ReadEEPromFlags();
  EXPECT_EQ(Text("AddressCobin"), "1");
  EXPECT_EQ(Text("BaudCobin"), rate);
}

TEST_F(CobinOperations, ReadEEPromFlagsUsesTheSharedLineValues) {
  module.Line.baud = 38400;
  module.Address = 9;
  State().PCSettings = "38400,n,8,1";
  State().ModuleAddress = 9;
  Modcom().LinkParamB = 1;
  ReadEEPromFlags();
  EXPECT_EQ(Text("SafetimeCobin"), "50");
  EXPECT_EQ(Modcom().LinkParamB(), 3);
}

TEST_F(CobinOperations, ReadEEPromFlagsEndsAtAnotherModelWithoutAMessage) {
  Set(kIdentity, 0x0103);
  Set(kOutputs, 0x1F);
  Set(kFlags, 0x00FF);
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  EXPECT_EQ(Picture(Out(0)), 1);
  EXPECT_EQ(Text("SafetimeCobin"), "5");
  EXPECT_FALSE(Checked("CheckCobin1"));
  ExpectQuiet();
}

TEST_F(CobinOperations, ReadEEPromFlagsEndsAtASilentModuleWithoutAMessage) {
  module.Always(ModuleFault::Unheard());
  ReadEEPromFlags();
  EXPECT_EQ(Text("SafetimeCobin"), "5");
  ExpectQuiet();
}

TEST_F(CobinOperations, ReadEEPromFlagsHoldsTheNavigationWhileItReads) {
  Cobin().Spawn(Cobin().ReadEEPromFlags());
  ASSERT_TRUE(RunUntil([this] { return module.Requests() == 3; }));
  EXPECT_TRUE(Hourglass());
  EXPECT_NE(RefusalOf("MDIForm1.labCobin"), "");
  ASSERT_TRUE(RunUntil([this] { return !Hourglass(); }));
  EXPECT_EQ(RefusalOf("MDIForm1.labCobin"), "");
}

// The enabling routines.

constexpr const char* kEdits[] = {"BaudCobin",   "AddressCobin", "SafetimeCobin", "WEEPCobin",
                                  "ResetCobin",  "CheckCobin1",  "CheckCobin2",   "CheckCobin3",
                                  "CheckCobin4", "CheckCobin5",  "OptionCobin1",  "OptionCobin2"};

TEST_F(CobinOperations, CobinEnableControlsDisablesAllThatEdits) {
  Click("CheckCobin5");
  Cobin().CobinEnableControls(false);
  for (const char* edit : kEdits) EXPECT_FALSE(Enabled(edit)) << edit;
  EXPECT_TRUE(Enabled("StartCobin"));
  EXPECT_TRUE(Enabled("StopCobin"));
}

TEST_F(CobinOperations, CobinEnableControlsEnablesThemAgain) {
  Click("CheckCobin5");
  Cobin().CobinEnableControls(false);
  Cobin().CobinEnableControls(true);
  for (const char* edit : kEdits) EXPECT_TRUE(Enabled(edit)) << edit;
}

TEST_F(CobinOperations, CobinEnableControlsLeavesOutputAndSafeStateButtons) {
  Cobin().CobinEnableControls(true);
  for (int i = 0; i < kOutputCount; ++i) {
    EXPECT_FALSE(Enabled(Out(i)));
    EXPECT_FALSE(Enabled(Safe(i)));
  }
}

// The search.

class CobinSearch : public CobinOperations {
 protected:
  /// A search from the start page, to its end.
  void Search() {
    Click("MDIForm1.LabHome");
    module.ForgetLog();
    Click("MDIForm1.buttCheckDevice");
    ASSERT_TRUE(RunUntil([this] { return State().SearchRunning == state::kFalse && NothingInFront(); }));
  }
};

TEST_F(CobinSearch, OpensThePageAndReadsTheModule) {
  Set(kOutputs, 0x11);
  Set(kSafeTime, 77);
  Set(kFlags, 0x0080);
  Set(kStoredCommunication, 0x0105);
  Search();
  EXPECT_EQ(Page().Name(), "Cobin");
  EXPECT_EQ(State().NrFinestra, 1);
  EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), "Connected to Cobin, COM1,9600,n,8,1  Module Address:1");
  EXPECT_EQ(Picture(Out(0)), 2);
  EXPECT_EQ(Picture(Out(4)), 2);
  EXPECT_EQ(Text("SafetimeCobin"), "77");
  EXPECT_TRUE(Checked("CheckCobin1"));
  EXPECT_EQ(Text("AddressCobin"), "5");
  EXPECT_THAT(List("BaudCobin"), SizeIs(7));
  ExpectQuiet();
  EXPECT_TRUE(Enabled("StartCobin"));
  std::vector<std::string> log = module.TakeLog();
  std::erase_if(log, [](const std::string& entry) { return entry.starts_with("reads 40001"); });
  EXPECT_THAT(log, ElementsAre("reads 40002", "reads 40003", "reads 40004", "reads 40005", "reads 40070"));
}

TEST_F(CobinSearch, AppliesTheReleaseOfTheLowByte) {
  SetRelease(2);
  Search();
  EXPECT_THAT(List("BaudCobin"), SizeIs(5));
  EXPECT_FALSE(Enabled("CheckCobin4"));
  EXPECT_FALSE(Enabled("CheckCobin5"));
  EXPECT_EQ(Text("MDIForm1.StatusBar1(1)"), "FW version :1, Delay 12ms and Parity checkboxes   are disabled");
}

TEST_F(CobinSearch, LetsTheParityBitHaveTheLastWordOnTheOptions) {
  SetRelease(2);
  Set(kFlags, 0x0008);
  Search();
  EXPECT_FALSE(Enabled("CheckCobin5"));
  EXPECT_TRUE(Enabled("OptionCobin1"));
  EXPECT_TRUE(Enabled("OptionCobin2"));
}

TEST_F(CobinSearch, LeavesAPageThatStarts) {
  Search();
  StartSession();
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text("MessageCobin"), "OK");
}

TEST_F(CobinSearch, KeepsTheWorkingCopiesOfTheEarlierSession) {
  Set(kSafeStates, 0x15);
  Set(kFlags, 0x0081);
  StartSession();
  Click("StopCobin");
  Set(kSafeStates, 0x01);
  Set(kFlags, 0x0040);
  Search();
  EXPECT_EQ(Polled(kPolledSafeStates), 0x15);
  EXPECT_EQ(Polled(kPolledFlags), 0x0081);
}

}  // namespace
}  // namespace tarvo::test
