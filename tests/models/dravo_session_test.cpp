// Session, commit, reset and reading of the Dravo page, and what the search does with it.

#include <iterator>
#include <tuple>

#include "support/dravo_fixture.h"

namespace tarvo::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr char kCommitted[] = "EEProm updated! Please reset module to apply changes.";

class DravoSession : public DravoFixture {
 protected:
  void ExpectOffline() {
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(line.IsOpen());
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
    for (const char* name : {"StartDravo", "WEEPDravo", "ResetDravo", "MDIForm1.labDravo", "MDIForm1.MenuDravo",
                             "MDIForm1.buttCheckDevice"}) {
      EXPECT_TRUE(Enabled(name)) << name;
    }
    module.ForgetLog();
    Run(std::chrono::seconds(1));
    EXPECT_THAT(module.TakeLog(), IsEmpty());
  }
};

// Start, in the order that is told.

TEST_F(DravoSession, StartReadsIdentityBlockAndStoredCommunication) {
  Click("StartDravo");
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", kDravoPoll, "reads 40073"));
}

TEST_F(DravoSession, StartHasSetThePollBeforeTheIdentityIsRead) {
  State().RunKind = 77;
  ClickAndGoOn("StartDravo");
  EXPECT_TRUE(Hourglass());
  EXPECT_TRUE(PortOpen());
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 12);
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_THAT(List("BaudDravo"), SizeIs(5));
  EXPECT_FALSE(Playing("MediaPlayer1"));
}

TEST_F(DravoSession, StartHasCheckedTheFirmwareBeforeTheFirstBlock) {
  State().ReadStep = 5;
  StartUntilRequest(2);
  EXPECT_THAT(List("BaudDravo"), SizeIs(7));
  EXPECT_EQ(Text("FirmwDravo"), "Firmware rel: 3");
  EXPECT_TRUE(Playing("MediaPlayer1"));
  EXPECT_EQ(State().ReadStep, 0);
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_TRUE(TimersRest());
}

TEST_F(DravoSession, StartHasPaintedTheBlockBeforeItReadsTheStoredCommunication) {
  Set(kInput, 0x0402);
  SetValues({1, -2, 3, -4, 9005, -6});
  Set(kFlags, 0x4108);
  Set(kUserValue, -70);
  Set(kMeasured, 8000);
  Set(kStatus, 0x2000);
  Set(kStoredCommunication, 0x0309);
  State().RunKind = 77;
  StartUntilRequest(3);
  EXPECT_EQ(ListIndex("InputTypeDravo"), 3);
  EXPECT_EQ(ListIndex("InputFilterDravo"), 2);
  EXPECT_THAT(ValueTexts(), ElementsAre("1", "-2", "3", "-4", "9005", "-6"));
  EXPECT_TRUE(Checked("CheckDravo1"));
  EXPECT_TRUE(Checked("CheckDravo3"));
  EXPECT_TRUE(Checked("CheckDravo4"));
  EXPECT_EQ(Text("InputTechDravo"), "-70");
  EXPECT_EQ(Text("InputScaledDravo"), "8000");
  EXPECT_THAT(LitLamps(), ElementsAre(5));
  EXPECT_EQ(Text("AddressDravo"), "1");
  EXPECT_TRUE(TimersRest());
  EXPECT_EQ(State().RunKind, 77);
  EXPECT_TRUE(Enabled("StartDravo"));
  EXPECT_TRUE(Enabled("MDIForm1.labDravo"));
  EXPECT_TRUE(Hourglass());
}

TEST_F(DravoSession, StartHasDoneAllWhenItEnds) {
  Set(kStoredCommunication, 0x0309);
  Click("StartDravo");
  EXPECT_EQ(Text("AddressDravo"), "9");
  EXPECT_EQ(Text("BaudDravo"), "38400");
  EXPECT_TRUE(TimersRun());
  EXPECT_FALSE(Enabled("TimerControllo"));
  EXPECT_FALSE(Enabled("TimerIngranaggi"));
  EXPECT_EQ(State().RunKind, 3);
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_FALSE(Enabled("StartDravo"));
  EXPECT_TRUE(Enabled("StopDravo"));
  for (const char* name :
       {"labDravo", "MenuDravo", "LabHome", "LabPCSetup", "buttCheckDevice", "cbSelectDevice", "mnuCheckconnection"}) {
    EXPECT_FALSE(Enabled(std::string("MDIForm1.") + name)) << name;
  }
  EXPECT_EQ(Text("MDIForm1.StatusBar1(2)"), "");
  EXPECT_EQ(Text("MessageDravo"), "OK");
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
}

TEST_F(DravoSession, PollsTwelveRegistersEvery50Milliseconds) {
  StartSession();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), AllOf(SizeIs(20), Each(std::string(kDravoPoll))));
}

TEST_F(DravoSession, StartRefusesAnotherModule) {
  const std::string firmware = Text("FirmwDravo");
  for (const int identity : {0x0203, 0x0403, 0x8303, 0x3003, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    module.ForgetLog();
    Click("StartDravo");
    EXPECT_THAT(BoxInFront(), IsBox(kNotADravo, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_EQ(Text("FirmwDravo"), firmware);
    EXPECT_FALSE(Playing("MediaPlayer1"));
    ExpectOffline();
  }
  SetRelease(3);
  StartSession();
}

TEST_F(DravoSession, StartRefusesASilentModule) {
  module.Always(ModuleFault::Unheard());
  Click("StartDravo");
  EXPECT_THAT(BoxInFront(), IsBox(kNotADravo, view::Icon::kCritical));
  AnswerOk();
  module.Always(ModuleFault::None());
  ExpectOffline();
}

TEST_F(DravoSession, StopGivesAllBack) {
  StartSession();
  Click("StopDravo");
  EXPECT_FALSE(Playing("MediaPlayer1"));
  ExpectOffline();
  StartSession();
}

TEST_F(DravoSession, StoppedWhileItStartsLeavesNothingBehind) {
  StartUntilRequest(3);
  ClickAndGoOn("StopDravo");
  RunUntilIdle();
  ExpectOffline();
  StartSession();
}

TEST_F(DravoSession, ShowsAFailedPollInItsMessage) {
  StartSession();
  module.Always(ModuleFault::Exception(4));
  Run(core::milliseconds(100));
  EXPECT_EQ(Text("MessageDravo"), kPollFailed);
  EXPECT_TRUE(InSession());
  module.Always(ModuleFault::None());
  Run(core::milliseconds(100));
  EXPECT_EQ(Text("MessageDravo"), "OK");
}

TEST_F(DravoSession, IsNotLeftByClosingThePage) {
  StartSession();
  ClosePage();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_TRUE(InSession());
  EXPECT_EQ(Page().Name(), "Dravo");
}

TEST_F(DravoSession, TakesNoticeOfEscapeWithoutEnding) {
  StartSession();
  PressKey(view::Key::kEscape);
  EXPECT_EQ(State().EscPressed, 1);
  Run(std::chrono::seconds(1));
  EXPECT_TRUE(InSession());
  EXPECT_EQ(Text("MessageDravo"), "OK");
}

// Commit.

class DravoCommit : public DravoSession {
 protected:
  void EditAll() {
    Choose("InputTypeDravo", 4);
    Choose("InputFilterDravo", 6);
    Edit(Value(0), "170");
    Edit(Value(1), "-50");
    Edit(Value(2), "31999");
    Edit(Value(3), "-32000");
    Edit(Value(4), "10500");
    Edit(Value(5), "-1");
    Edit("AddressDravo", "254");
    Choose("BaudDravo", 4);
  }
  static constexpr const char* kEdited[] = {"writes 40066 = 0x0506", "writes 40067 = 0x00AA", "writes 40068 = 0xFFCE",
                                            "writes 40069 = 0x7CFF", "writes 40070 = 0x8300", "writes 40071 = 0x2904",
                                            "writes 40072 = 0xFFFF"};
  static std::vector<std::string> Edited(int flags, int communication) {
    std::vector<std::string> writes(std::begin(kEdited), std::end(kEdited));
    writes.push_back(Writing(40074, flags));
    writes.push_back(Writing(40073, communication));
    return writes;
  }
};

TEST_F(DravoCommit, InASessionWritesTheImagesInTheirOrder) {
  SetValues({10000, 1, 2, 3, 9004, 5});
  Set(kFlags, 0x4318);
  StartSession();
  Click("WEEPDravo");
  EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
  EXPECT_TRUE(TimersRest());
  EXPECT_FALSE(Enabled("WEEPDravo"));
  EXPECT_FALSE(Enabled("ResetDravo"));
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40066 = 0x0100", "writes 40067 = 0x2710", "writes 40068 = 0x0001",
                                       "writes 40069 = 0x0002", "writes 40070 = 0x0003", "writes 40071 = 0x232C",
                                       "writes 40072 = 0x0005", "writes 40074 = 0x4318", "writes 40073 = 0x0101"));
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(Enabled("WEEPDravo"));
  EXPECT_TRUE(Enabled("ResetDravo"));
  EXPECT_FALSE(Hourglass());
}

TEST_F(DravoCommit, InASessionWritesWhatWasEdited) {
  StartSession();
  EditAll();
  Choose("BaudDravo", 6);
  module.ForgetLog();
  Click("WEEPDravo");
  AnswerOk();
  EXPECT_EQ(Exchanges(), Edited(0, 0x04FE));
}

TEST_F(DravoCommit, OutOfASessionChecksTheModelAndWritesWhatWasEdited) {
  EditAll();
  Click("CheckDravo2");
  Click("CheckDravo4");
  Click("OptionDravo2");
  EXPECT_EQ(ports.Attempts(), 0);
  Click("WEEPDravo");
  EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
  EXPECT_FALSE(InSession());
  AnswerOk();
  std::vector<std::string> expected = Edited(0x0218, 0x04FE);
  expected.insert(expected.begin(), "reads 40001");
  EXPECT_EQ(module.TakeLog(), expected);
  ExpectOffline();
}

TEST_F(DravoCommit, OutOfASessionGoesToTheAddressOnPcSetup) {
  module.Address = 7;
  Click("MDIForm1.LabPCSetup");
  Click("PCAddress");
  AnswerChangeValue("7");
  Click("MDIForm1.labDravo");
  Click("WEEPDravo");
  EXPECT_THAT(BoxInFront(), IsBox(kCommitted, view::Icon::kInformation));
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, 12);
  AnswerOk();
  ExpectOffline();
}

TEST_F(DravoCommit, OfAnUntouchedPageSendsNoAddressOf0) {
  Click("WEEPDravo");
  AnswerOk();
  EXPECT_THAT(module.TakeLog(),
              ElementsAre("reads 40001", "writes 40066 = 0x0100", "writes 40067 = 0x0000", "writes 40068 = 0x0000",
                          "writes 40069 = 0x0000", "writes 40070 = 0x0000", "writes 40071 = 0x0000",
                          "writes 40072 = 0x0000", "writes 40074 = 0x0000", "writes 40073 = 0x0101"));
}

TEST_F(DravoCommit, WritesTheFlagsOfTheViewWithoutBitsOfNoControl) {
  Set(kFlags, 0xFFFF);
  StartSession();
  Click("WEEPDravo");
  AnswerOk();
  // The first block has left the delay box clear.
  EXPECT_THAT(Exchanges(), Contains("writes 40074 = 0x4318"));
  Click("StopDravo");
  ReadEEPromFlags();
  module.ForgetLog();
  Click("WEEPDravo");
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), Contains("writes 40074 = 0x431C"));
}

TEST_F(DravoCommit, WritesTypeNumber0WithoutASelectedType) {
  Set(kInput, 0x0803);
  StartSession();
  Click("WEEPDravo");
  AnswerOk();
  EXPECT_THAT(Exchanges(), Contains("writes 40066 = 0x0003"));
}

TEST_F(DravoCommit, WritesTheCodeOfEachRate) {
  StartSession();
  const std::vector<int> codes = {6, 7, 0, 1, 2, 3, 4};
  ASSERT_EQ(ItemData("BaudDravo"), codes);
  for (std::size_t position = 0; position < codes.size(); ++position) {
    Choose("BaudDravo", static_cast<int>(position));
    module.ForgetLog();
    Click("WEEPDravo");
    AnswerOk();
    EXPECT_THAT(Exchanges(), Contains(Writing(40073, codes.at(position) << 8 | 1)));
  }
}

TEST_F(DravoCommit, WritesBothBoundsOfEachValue) {
  StartSession();
  Choose("InputTypeDravo", 0);
  const std::tuple<int, int, int> rows[] = {{0, 50, 10000},     {1, -10000, 10000}, {2, -32000, 32000},
                                            {3, -32000, 32000}, {4, 9000, 11000},   {5, -1000, 1000}};
  for (const auto& [index, minimum, maximum] : rows) {
    for (const int value : {minimum, maximum}) {
      SCOPED_TRACE(value);
      Edit(Value(index), std::to_string(value));
      module.ForgetLog();
      Click("WEEPDravo");
      AnswerOk();
      EXPECT_THAT(Exchanges(), Contains(Writing(40067 + index, value)));
    }
  }
}

TEST_F(DravoCommit, IsRefusedByAModuleOfAnotherModel) {
  Set(kIdentity, 0x0403);
  Click("WEEPDravo");
  EXPECT_THAT(BoxInFront(), IsBox(kNotADravo, view::Icon::kCritical));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  ExpectOffline();
}

// Reset.

class DravoReset : public DravoSession {};

TEST_F(DravoReset, InASessionWritesOneToTheStatusAndEndsTheSession) {
  StartSession();
  Click("ResetDravo");
  EXPECT_THAT(BoxInFront(), IsBox("Module is Resetted! Comunication Stopped", view::Icon::kInformation));
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(PortOpen());
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("writes 40013 = 0x0001"));
  ExpectOffline();
}

TEST_F(DravoReset, OutOfASessionChecksTheModelAndWritesOneToTheStatus) {
  Click("ResetDravo");
  EXPECT_THAT(BoxInFront(), IsBox("Module is Resetted!", view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "writes 40013 = 0x0001"));
  ExpectOffline();
}

TEST_F(DravoReset, IsRefusedByAModuleOfAnotherModel) {
  Set(kIdentity, 0x0103);
  Click("ResetDravo");
  EXPECT_THAT(BoxInFront(), IsBox(kNotADravo, view::Icon::kCritical));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  ExpectOffline();
}

// The page's own reading.

class DravoReading : public DravoSession {};

TEST_F(DravoReading, ReadsOneRegisterAtATime) {
  ReadEEPromFlags();
  std::vector<std::string> expected;
  for (int number = 40001; number <= 40013; ++number) expected.push_back("reads " + std::to_string(number));
  expected.emplace_back("reads 40073");
  EXPECT_EQ(module.TakeLog(), expected);
  ExpectOffline();
}

TEST_F(DravoReading, StopsAtAnotherModelWithoutAMessage) {
  Set(kIdentity, 0x0403);
  SetValues({1, 2, 3, 4, 5, 6});
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
  EXPECT_THAT(ValueTexts(), Each(std::string("0")));
  ExpectOffline();
}

TEST_F(DravoReading, StopsAtASilentModuleWithoutAMessage) {
  module.Always(ModuleFault::Unheard());
  ReadEEPromFlags();
  EXPECT_THAT(module.TakeLog(), Each(StartsWith("reads 40001")));
  module.Always(ModuleFault::None());
  ExpectOffline();
}

TEST_F(DravoReading, GoesOnBehindARegisterThatIsRefused) {
  SetValues({1, 2, 3, 4, 5, 6});
  for (int request = 0; request < 4; ++request) module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(2));
  ReadEEPromFlags();
  EXPECT_THAT(module.Log(), Contains("reads 40005: exception 2"));
  EXPECT_THAT(module.Log(), SizeIs(14));
  EXPECT_EQ(Text(Value(1)), "2");
  EXPECT_EQ(Text(Value(3)), "4");
}

// The search.

class DravoSearch : public DravoFixture {
 protected:
  std::string Panel2() const { return Text("MDIForm1.StatusBar1(2)"); }
};

TEST_F(DravoSearch, FindsReadsAndShowsTheModule) {
  module.Line.baud = 38400;
  Set(kInput, 0x0703);
  SetValues({1200, -250, 1200, -250, 9999, 11});
  Set(kFlags, 0x410C);
  Set(kStoredCommunication, 0x0301);
  Click("MDIForm1.LabHome");
  Search();
  EXPECT_EQ(Panel2(), "Connected to Dravo, COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(State().NrFinestra, 2);
  EXPECT_EQ(State().PCSettings, "38400,n,8,1");
  EXPECT_EQ(Page().Name(), "Dravo");
  EXPECT_EQ(ListIndex("InputTypeDravo"), 6);
  EXPECT_EQ(ListIndex("InputFilterDravo"), 3);
  EXPECT_THAT(ValueTexts(), ElementsAre("1200", "-250", "1200", "-250", "9999", "11"));
  EXPECT_TRUE(Checked("CheckDravo1"));
  EXPECT_TRUE(Checked("CheckDravo3"));
  EXPECT_TRUE(Checked("CheckDravo4"));
  EXPECT_TRUE(Checked("CheckDravo5"));
  EXPECT_EQ(Text("BaudDravo"), "38400");
  EXPECT_THAT(List("BaudDravo"), SizeIs(7));
  EXPECT_FALSE(InSession());
  EXPECT_FALSE(line.IsOpen());
  Click("StartDravo");
  EXPECT_TRUE(InSession());
}

TEST_F(DravoSearch, ChecksTheFirmwareAfterItHasReadTheModule) {
  // So the first search does not find the slow rates in the list yet: the selection stays.
  module.Line.baud = 2400;
  Set(kStoredCommunication, 0x0701);
  Search();
  EXPECT_EQ(Panel2(), "Connected to Dravo, COM1,2400,n,8,1  Module Address:1");
  EXPECT_THAT(List("BaudDravo"), SizeIs(7));
  EXPECT_EQ(Text("BaudDravo"), "9600");
  Search();
  EXPECT_EQ(Text("BaudDravo"), "2400");
}

TEST_F(DravoSearch, DisablesDelayAndParityOfAnOldModuleWhateverItsFlagsAre) {
  module.Line.baud = 38400;
  SetRelease(1);
  Set(kFlags, 0xFFFF);
  Search();
  for (const char* name : {"CheckDravo5", "CheckDravo4", "OptionDravo1", "OptionDravo2"}) {
    EXPECT_FALSE(Enabled(name)) << name;
  }
  EXPECT_TRUE(Checked("CheckDravo4"));
  EXPECT_THAT(List("BaudDravo"), SizeIs(5));
}

}  // namespace
}  // namespace tarvo::test
