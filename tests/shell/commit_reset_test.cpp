// What Write EEprom and Module Reset of the Belk page have alike.

#include <ostream>

#include "shell/commit_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAreArray;

/// One of the two buttons, what it writes and what it tells.
struct ButtonCase {
  const char* name;
  const char* button;
  std::vector<std::string> writes;
  const char* told;

  friend void PrintTo(const ButtonCase& row, std::ostream* out) { *out << row.name; }
};

const ButtonCase& Commit() {
  static const ButtonCase row = {
      "Commit", "WEEPBelk", {"writes 40072 = 0x0001", "writes 40073 = 0x0000", "writes 40074 = 0x0101"}, kCommitted};
  return row;
}

const ButtonCase& Reset() {
  static const ButtonCase row = {"Reset", "ResetBelk", {"writes 40011 = 0x0001"}, kReset};
  return row;
}

class CommitAndReset : public CommitFixture, public testing::WithParamInterface<ButtonCase> {
 protected:
  void Press() { Click(GetParam().button); }
  /// What the button brings over the line without a session.
  static std::vector<std::string> CheckAndWrites() {
    std::vector<std::string> exchanges = GetParam().writes;
    exchanges.insert(exchanges.begin(), "reads 40001");
    return exchanges;
  }
};

INSTANTIATE_TEST_SUITE_P(Buttons, CommitAndReset, testing::Values(Commit(), Reset()),
                         [](const auto& given) { return given.param.name; });

// In a session.

TEST_P(CommitAndReset, WaitForThePollThatIsUnderWay) {
  module[kFilter] = 1;
  StartSession();
  RunIntoAPoll();
  module.ForgetLog();
  Press();
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(GetParam().writes));
  EXPECT_EQ(Text("MessageBelk"), "OK");
}

TEST_P(CommitAndReset, ChangeNoneOfThePcsSettings) {
  StartSession();
  Edit("AddressBelk", "17");
  Choose("BaudBelk", 5);
  Press();
  AnswerOk();
  EXPECT_EQ(State().PCSettings, "9600,n,8,1");
  EXPECT_EQ(State().PCPort, 1);
  EXPECT_EQ(State().ModuleAddress, 1);
}

TEST_P(CommitAndReset, DoNothingWhileStartAsksWhoIsThere) {
  ClickAndGoOn("StartBelk");
  ASSERT_TRUE(PortOpen());
  ASSERT_FALSE(InSession());
  Press();
  EXPECT_TRUE(NothingInFront());
  ASSERT_TRUE(RunUntil([this] { return TimersRun(); }));
  EXPECT_THAT(module.TakeLog(), testing::ElementsAre("reads 40001", kBelkPoll));
  ExpectSessionGoesOn();
}

// Out of a session.

TEST_P(CommitAndReset, SetTheBusUpFromTheSharedValues) {
  const std::pair<int, std::string> lines[] = {{2, "19200,e,8,1"}, {3, "19200,o,8,1"}};
  for (const auto& [port, settings] : lines) {
    SCOPED_TRACE(settings);
    MemoryLine otherLine(scheduler);
    MemoryModule otherModule(scheduler, otherLine, 7);
    otherModule.Line = *bus::LineSettings::Parse(settings);
    otherModule[kIdentity] = 0x0103;
    ports.Connect(port, otherLine);
    State().PCPort = port;
    State().PCSettings = settings;
    Click("MDIForm1.LabPCSetup");
    Click("PCAddress");
    AnswerChangeValue("7");
    Click("MDIForm1.labBelk");
    Modcom().LinkParamA = 1;
    Modcom().LinkParamB = 1;
    Press();
    EXPECT_EQ(Modcom().CommPort(), port);
    EXPECT_EQ(Modcom().Settings(), settings);
    EXPECT_EQ(Modcom().LinkParamA(), 3);
    EXPECT_EQ(Modcom().LinkParamB(), 3);
    EXPECT_EQ(Modcom().ModuleAddr(), 7);
    EXPECT_THAT(BoxInFront(), IsBox(GetParam().told, view::Icon::kInformation));
    AnswerOk();
    EXPECT_THAT(otherModule.TakeLog(), ElementsAreArray(CheckAndWrites()));
    EXPECT_FALSE(otherLine.IsOpen());
    ports.Disconnect(port);
  }
}

TEST_P(CommitAndReset, KeepThePortUntilTheirBoxIsAnswered) {
  Press();
  ASSERT_NE(BoxInFront(), nullptr);
  EXPECT_TRUE(PortOpen());
  EXPECT_FALSE(Enabled("WEEPBelk"));
  EXPECT_FALSE(Enabled("ResetBelk"));
  AnswerOk();
  ExpectOffline();
}

TEST_P(CommitAndReset, HoldTheProgramWhileTheyRun) {
  const auto run = ClickAndGoOn(GetParam().button);
  EXPECT_TRUE(Hourglass());
  EXPECT_FALSE(Enabled("WEEPBelk"));
  EXPECT_FALSE(Enabled("ResetBelk"));
  for (const char* name : {"labBelk", "MenuBelk", "LabHome", "MenuHome", "LabPCSetup", "MenuPCSetup", "buttCheckDevice",
                           "mnuCheckconnection"}) {
    EXPECT_NE(RefusalOf(std::string("MDIForm1.") + name), "") << name;
  }
  Close();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_FALSE(program.Ended());
  ASSERT_TRUE(RunUntil([this] { return BoxInFront() != nullptr; }));
  EXPECT_THAT(BoxInFront(), IsBox(GetParam().told, view::Icon::kInformation));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(CheckAndWrites()));
  ExpectOffline();
}

TEST_P(CommitAndReset, AreRefusedByAModuleOfAnotherModel) {
  for (const int identity : {0x0203, 0x8103}) {
    SCOPED_TRACE(identity);
    module[kIdentity] = static_cast<std::uint16_t>(identity);
    module.ForgetLog();
    Press();
    EXPECT_THAT(module.TakeLog(), testing::ElementsAre("reads 40001"));
    ExpectRefused();
  }
  module[kIdentity] = 0x0103;
  ExpectStartWorks();
}

TEST_P(CommitAndReset, AreRefusedWithoutAModule) {
  module.Always(ModuleFault::Unheard());
  Press();
  ExpectRefused();
  module.Always(ModuleFault::None());
  ExpectStartWorks();
}

TEST_P(CommitAndReset, AreRefusedByAPortThatDoesNotOpen) {
  for (const char* fault : {core::kPortAlreadyOpen, core::kDeviceNotFound}) {
    SCOPED_TRACE(fault);
    ports.SetFault(1, fault);
    Press();
    ExpectRefused();
  }
  ports.SetFault(1, {});
  ExpectStartWorks();
}

TEST_P(CommitAndReset, NeedTheModuleAtThePcsAddress) {
  module.Address = 9;
  Press();
  ExpectRefused();
}

}  // namespace
}  // namespace tarvo::test
