// Write EEprom of the Oswin page: it writes what the controls show, 200 ms before each write, and says nothing.

#include <array>
#include <cstdint>
#include <cstdio>

#include "support/oswin_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// What a commit of these settings writes, in this order.
std::vector<std::string> WritesOf(const std::array<int, 4>& channels, int baud, int address) {
  std::vector<std::string> writes;
  writes.reserve(6);
  const auto add = [&](int number, int word) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "writes %d = 0x%04X", number, static_cast<unsigned>(word));
    writes.emplace_back(text.data());
  };
  for (int i = 0; i < 4; ++i) add(40037 + i, channels.at(static_cast<std::size_t>(i)));
  add(40036, baud);
  add(40035, address);
  return writes;
}

std::vector<std::string> AfterTheIdentity(std::vector<std::string> writes) {
  writes.insert(writes.begin(), "reads 40001");
  return writes;
}

/// The same in a session and out of one.
class OswinCommit : public OswinFixture, public testing::WithParamInterface<bool> {
 protected:
  OswinCommit() {
    if (GetParam()) StartSession();
  }

  bool Session() const { return GetParam(); }
  /// A commit to its end; gives what went over the line, but for the polls.
  std::vector<std::string> Commit() {
    Exchanges();
    Click("WEEPGaven");
    EXPECT_TRUE(NothingInFront());
    return Exchanges();
  }
  void ExpectAsBefore() {
    EXPECT_TRUE(Enabled("WEEPGaven"));
    EXPECT_TRUE(Enabled("ResetGaven"));
    if (Session()) {
      ExpectSessionGoesOn();
    } else {
      ExpectOffline();
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Roads, OswinCommit, testing::Bool(),
                         [](const auto& given) { return given.param ? "InASession" : "WithoutASession"; });

TEST_P(OswinCommit, OfAnUntouchedPageWritesWhatWasRead) {
  EXPECT_THAT(Commit(), ElementsAreArray(AfterTheIdentity(WritesOf({0, 0, 0, 0}, 0x0100, 0x0100))));
  ExpectAsBefore();
}

TEST_P(OswinCommit, WritesWhatTheControlsShow) {
  Choose(Filter(0), 3);
  Click(Rejection(1));
  Click(Comp(1));
  Choose(Units(2), 1);
  Choose(SensorType(2), 2);
  Choose(SensorType(3), 3);
  Click(Comp(3));
  Choose(Filter(3), 1);
  Choose("cbBaudRate", 5);
  Edit("labModuleAddress", "254");
  Click("checkParity");
  Click("OptionOdd");
  EXPECT_THAT(Commit(), ElementsAreArray(AfterTheIdentity(WritesOf({0x03, 0x18, 0xA0, 0xD1}, 0x0300, 0xFE02))));
  ExpectAsBefore();
}

TEST_P(OswinCommit, SaysNothingWhenItIsDone) {
  const std::string panel = Panel1();
  Commit();
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Panel1(), panel);
}

TEST_P(OswinCommit, WritesEachSettingOfAChannelInItsBits) {
  for (int i = 0; i < kChannels; ++i) {
    SCOPED_TRACE(i);
    const auto expect = [&](int word) { EXPECT_THAT(Commit(), Contains(Writing(kChannel1 + i, word))); };
    for (const int filter : {1, 2, 3, 0}) {
      Choose(Filter(i), filter);
      expect(filter);
    }
    for (const int sensor : {1, 2, 3, 0}) {
      Choose(SensorType(i), sensor);
      expect(64 * sensor);
    }
    for (const int units : {1, 0}) {
      Choose(Units(i), units);
      expect(32 * units);
    }
    for (const int set : {1, 0}) {
      Click(Rejection(i));
      expect(8 * set);
    }
    for (const int set : {1, 0}) {
      Click(Comp(i));
      expect(16 * set);
    }
  }
}

TEST_P(OswinCommit, WritesTheCodeOfEachRate) {
  int position = 0;
  for (const int code : {6, 7, 0, 1, 2, 3, 4}) {
    Choose("cbBaudRate", position++);
    EXPECT_THAT(Commit(), Contains(Writing(kBaud, code << 8))) << code;
  }
}

TEST_P(OswinCommit, WritesAddressAndParityInOneWord) {
  for (const int address : {1, 17, 128, 255}) {
    SCOPED_TRACE(address);
    Edit("labModuleAddress", std::to_string(address));
    EXPECT_THAT(Commit(), Contains(Writing(kAddress, address << 8)));
    Click("checkParity");
    Click("OptionEven");
    EXPECT_THAT(Commit(), Contains(Writing(kAddress, address << 8 | 1)));
    Click("OptionOdd");
    EXPECT_THAT(Commit(), Contains(Writing(kAddress, address << 8 | 2)));
    Click("checkParity");
    EXPECT_THAT(Commit(), Contains(Writing(kAddress, address << 8)));
  }
}

TEST_P(OswinCommit, ReplacesAllThatTheModuleHeld) {
  SetFour(kChannel1, {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF});
  Set(kBaud, 0xFFFF);
  Set(kAddress, 0xFFFF);
  Commit();
  for (int i = 0; i < kChannels; ++i) EXPECT_EQ(module[kChannel1 + i], 0) << i;
  EXPECT_EQ(module[kBaud], 0x0100);
  EXPECT_EQ(module[kAddress], 0x0100);
}

TEST_P(OswinCommit, StoresNothingIn64RegistersAbove) {
  for (int number = 40099; number <= 40104; ++number) Set(number, 0x5A5A);
  Commit();
  for (int number = 40099; number <= 40104; ++number) EXPECT_EQ(module[number], 0x5A5A) << number;
}

TEST_P(OswinCommit, WaitsBeforeEachWrite) {
  std::vector<std::int64_t> at;
  module.AfterWrite = [&](int, std::uint16_t) { at.push_back(Milliseconds(scheduler.Now())); };
  at.push_back(Milliseconds(scheduler.Now()));
  Commit();
  ASSERT_EQ(at.size(), 7U);
  for (std::size_t i = 1; i < at.size(); ++i) {
    EXPECT_GE(at[i] - at[i - 1], 200) << i;
    // The exchanges beside it, in a session with a poll under way before the first.
    EXPECT_LT(at[i] - at[i - 1], i == 1 ? 450 : 250) << i;
  }
}

TEST_P(OswinCommit, HoldsTimersAndButtonsWhileItWrites) {
  int writes = 0;
  module.AfterWrite = [&](int number, std::uint16_t) {
    ++writes;
    EXPECT_TRUE(TimersRest()) << number;
    EXPECT_TRUE(Hourglass()) << number;
    EXPECT_FALSE(Enabled("WEEPGaven")) << number;
    EXPECT_FALSE(Enabled("ResetGaven")) << number;
  };
  Commit();
  EXPECT_EQ(writes, 6);
  EXPECT_FALSE(Hourglass());
  ExpectAsBefore();
}

TEST_P(OswinCommit, WritesTheOthersWhenOneFails) {
  for (int failing = 0; failing < 6; ++failing) {
    SCOPED_TRACE(failing);
    if (Session()) RunToAPollsEnd();
    std::vector<std::string> expected = AfterTheIdentity(WritesOf({0, 0, 0, 0}, 0x0100, 0x0100));
    expected.at(static_cast<std::size_t>(failing) + 1) += ": exception 4";
    RefuseAfter(1 + failing);
    EXPECT_THAT(Commit(), ElementsAreArray(expected));
  }
  ExpectAsBefore();
}

TEST_P(OswinCommit, IsRefusedByAModuleOfAnotherModel) {
  for (const int identity : {0x0805, 0x1505, 0x1705, 0x9605, 0x0000}) {
    SCOPED_TRACE(identity);
    Set(kIdentity, identity);
    Exchanges();
    Click("WEEPGaven");
    EXPECT_THAT(BoxInFront(), IsBox(kNotAnOswin, view::Icon::kCritical));
    AnswerOk();
    EXPECT_THAT(Exchanges(), ElementsAre("reads 40001"));
    ExpectAsBefore();
  }
}

TEST_P(OswinCommit, IsRefusedByAModuleThatDoesNotTellItself) {
  if (Session()) RunToAPollsEnd();
  RefuseAfter(0);
  Click("WEEPGaven");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAnOswin, view::Icon::kCritical));
  AnswerOk();
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40001: exception 4"));
  ExpectAsBefore();
}

TEST_P(OswinCommit, TakesAnyRelease) {
  for (const int release : {0, 17, 255}) {
    Set(kIdentity, 0x1600 | release);
    EXPECT_THAT(Commit(), ElementsAreArray(AfterTheIdentity(WritesOf({0, 0, 0, 0}, 0x0100, 0x0100)))) << release;
  }
}

TEST_P(OswinCommit, WritesBackWhateverWasRead) {
  if (Session()) Click("StopNerith");
  for (int word = 0; word < 256; word += 29) {
    const int shown = word & 0xFB;
    SetFour(kChannel1, {shown, shown ^ 0xC0, shown ^ 0x38, shown ^ 0x03});
    Set(kBaud, word % 5 << 8);
    Set(kAddress, 0x0100 | word % 3);
    VisitAnew();
    if (Session()) StartSession();
    EXPECT_THAT(Commit(), ElementsAreArray(AfterTheIdentity(WritesOf({shown, shown ^ 0xC0, shown ^ 0x38, shown ^ 0x03},
                                                                     word % 5 << 8, 0x0100 | word % 3))));
    if (Session()) Click("StopNerith");
  }
}

// Without a session.

class OswinOfflineCommit : public OswinFixture {};

TEST_F(OswinOfflineCommit, GoesToTheAddressOnPcSetup) {
  module.Address = 7;
  SetPcAddress("7");
  module.ForgetLog();
  Click("WEEPGaven");
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(AfterTheIdentity(WritesOf({0, 0, 0, 0}, 0x0100, 0x0100))));
  ExpectOffline();
}

TEST_F(OswinOfflineCommit, IsRefusedByASilentModule) {
  module.Always(ModuleFault::Unheard());
  Click("WEEPGaven");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAnOswin, view::Icon::kCritical));
  AnswerOk();
  module.Always(ModuleFault::None());
  ExpectOffline();
}

TEST_F(OswinOfflineCommit, IsRefusedWithoutAPort) {
  State().PCPort = 2;
  Click("WEEPGaven");
  EXPECT_THAT(BoxInFront(), IsBox(kNotAnOswin, view::Icon::kCritical));
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), IsEmpty());
  ExpectOffline();
}

TEST_F(OswinOfflineCommit, KeepsTheUserOnThePage) {
  ClickAndGoOn("WEEPGaven");
  ASSERT_TRUE(RunUntil([this] { return module.Requests() > 0 && module.Log().size() == 3; }));
  EXPECT_TRUE(Hourglass());
  EXPECT_NE(RefusalOf("MDIForm1.LabHome"), "");
  EXPECT_NE(RefusalOf("MDIForm1.buttCheckDevice"), "");
  RunUntilIdle();
  EXPECT_EQ(module.Log().size(), 7U);
  ExpectOffline();
}

TEST_F(OswinOfflineCommit, LeavesAStartToTheUser) {
  Click("WEEPGaven");
  StartSession();
  ExpectSessionGoesOn();
}

// In a session.

class OswinSessionCommit : public OswinFixture {};

TEST_F(OswinSessionCommit, DoesNotPollWhileItWrites) {
  StartSession();
  RunToAPollsEnd();
  Click("WEEPGaven");
  std::vector<std::string> log = module.TakeLog();
  ASSERT_GE(log.size(), 6U);
  EXPECT_THAT(std::vector(log.end() - 6, log.end()), ElementsAreArray(WritesOf({0, 0, 0, 0}, 0x0100, 0x0100)));
  ExpectSessionGoesOn();
}

TEST_F(OswinSessionCommit, LeavesTheShownValues) {
  SetFour(kMeasure1, {11, 22, 33, 44});
  StartSession();
  RunThroughAPoll();
  Edit("labModuleAddress", "77");
  Click("WEEPGaven");
  EXPECT_EQ(Text(Measure(3)), "4.4");
  EXPECT_EQ(Text("labModuleAddress"), "77");
  EXPECT_EQ(State().ModuleAddress, 1);
  ExpectSessionGoesOn();
}

TEST_F(OswinSessionCommit, MayBeOvertakenByStop) {
  for (std::size_t requests = 1; requests <= 7; ++requests) {
    SCOPED_TRACE(requests);
    StartSession();
    RunToAPollsEnd();
    ClickAndGoOn("WEEPGaven");
    ASSERT_TRUE(RunUntil([&] { return module.Log().size() == requests; }));
    ClickAndGoOn("StopNerith");
    ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle() || !NothingInFront(); }));
    if (!NothingInFront()) AnswerOk();
    ExpectOffline();
  }
}

TEST_F(OswinSessionCommit, ComesWellThroughAPollUnderWay) {
  for (std::size_t read = 0; read < PollReads().size(); ++read) {
    SCOPED_TRACE(PollReads().at(read));
    if (!InSession()) StartSession();
    RunToAPollsEnd();
    ASSERT_TRUE(RunUntil([&] { return module.Log().size() == read + 1; }));
    Click("WEEPGaven");
    EXPECT_THAT(Exchanges(), ElementsAreArray(AfterTheIdentity(WritesOf({0, 0, 0, 0}, 0x0100, 0x0100))));
    ExpectSessionGoesOn();
  }
}

}  // namespace
}  // namespace tarvo::test
