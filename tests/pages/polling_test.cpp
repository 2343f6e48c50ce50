#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

class Polling : public BelkFixture {
 protected:
  /// Changes the first counter at each read, so that every block is a new one.
  void LetTheFirstCounterRun() {
    module.BeforeRead = [this](int, int) { ++module[kCounter1]; };
  }
  /// Milliseconds between entries that follow each other.
  static std::vector<std::int64_t> Gaps(const std::vector<core::TimePoint>& times) {
    std::vector<std::int64_t> gaps;
    for (std::size_t i = 1; i < times.size(); ++i) {
      gaps.push_back(std::chrono::duration_cast<core::milliseconds>(times[i] - times[i - 1]).count());
    }
    return gaps;
  }
  std::vector<core::TimePoint> WriteTimes() const {
    std::vector<core::TimePoint> times;
    for (const MemoryLine::Write& write : line.Writes()) times.push_back(write.at);
    return times;
  }
};

TEST_F(Polling, ReadsABlockEvery50Milliseconds) {
  StartSession();
  line.ForgetWrites();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), AllOf(SizeIs(20), Each(std::string(kBelkPoll))));
  EXPECT_THAT(Gaps(WriteTimes()), Each(50));
}

TEST_F(Polling, DecodesEvery200Milliseconds) {
  LetTheFirstCounterRun();
  StartSession();
  const History shown(At("TotIN(0)"), "Caption");
  Run(core::milliseconds(2100));
  std::vector<core::TimePoint> times;
  for (const History::Entry& entry : shown.Entries()) times.push_back(entry.at);
  EXPECT_THAT(times, SizeIs(10));
  EXPECT_THAT(Gaps(times), Each(200));
}

TEST_F(Polling, DecodesTheLatestBlockWhileAReadIsPending) {
  StartSession();
  module.Always(ModuleFault::Unheard());
  Run(core::milliseconds(100));
  State().PollBuffer[kPolledCounter1] = state::Word(77);
  Run(core::milliseconds(200));
  EXPECT_TRUE(Modcom().CommBusy());
  EXPECT_EQ(Text("TotIN(0)"), "77");
}

TEST_F(Polling, ShowsWhatTheModuleHasWithinOneDecode) {
  StartSession();
  module[kCounter1 + 4] = 321;
  RunThroughADecode();
  EXPECT_EQ(Text("TotIN(4)"), "321");
}

TEST_F(Polling, FillsNineElementsAndLeavesTheOthers) {
  for (std::size_t i = 0; i < 20; ++i) State().PollBuffer[i] = state::Word(0xEEEE);
  for (int i = 0; i < 12; ++i) module[kStatus + i] = static_cast<std::uint16_t>(0x0100 + i);
  StartSession();
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(Polled(static_cast<std::size_t>(i)), i < 9 ? 0x0100 + i : 0xEEEE) << i;
  }
}

TEST_F(Polling, SaysOkOnlyAsLongAsTheModuleAnswers) {
  StartSession();
  const History message(At("MessageBelk"), "Caption");
  Run(std::chrono::seconds(1));
  EXPECT_THAT(message.Entries(), IsEmpty());
  module.Always(ModuleFault::Unheard());
  Run(std::chrono::seconds(5));
  EXPECT_EQ(Text("MessageBelk"), kPollFailed);
  module.Always(ModuleFault::None());
  Run(std::chrono::seconds(5));
  EXPECT_EQ(Text("MessageBelk"), "OK");
  EXPECT_THAT(message.Values<std::string>(), ElementsAre(kPollFailed, "OK"));
}

TEST_F(Polling, GoesOnWithoutADialogWhileTheCableIsPulled) {
  StartSession();
  module.Always(ModuleFault::Unheard());
  for (int i = 0; i < 60; ++i) {
    Run(std::chrono::seconds(1));
    ASSERT_TRUE(NothingInFront());
    ASSERT_TRUE(InSession());
    ASSERT_TRUE(PortOpen());
  }
  EXPECT_TRUE(TimersRun());
  EXPECT_FALSE(Enabled("StartBelk"));
  EXPECT_FALSE(Enabled("MDIForm1.labBelk"));
}

TEST_F(Polling, KeepsTheLastValuesWhileTheCableIsPulled) {
  module[kStatus] = 0x0101;
  module[kCounter1] = 500;
  module[kFlags] = 0x0080;
  StartSession();
  module.Always(ModuleFault::Unheard());
  module[kStatus] = 0;
  module[kCounter1] = 600;
  module[kFlags] = 0;
  Run(std::chrono::seconds(10));
  EXPECT_EQ(Text("TotIN(0)"), "500");
  EXPECT_EQ(Picture("StatoIN(0)"), 2);
  EXPECT_EQ(BackColor("OverFlowIN(0)"), view::kRed);
  EXPECT_TRUE(Checked("CheckBelk1"));
  EXPECT_EQ(Polled(kPolledCounter1), 500);
  module.Always(ModuleFault::None());
  Run(std::chrono::seconds(5));
  EXPECT_EQ(Text("TotIN(0)"), "600");
}

class PollingFault : public Polling, public testing::WithParamInterface<std::pair<const char*, ModuleFault>> {};

TEST_P(PollingFault, ShowsTheErrorAndTheNextGoodReadRestoresOk) {
  module[kCounter1] = 5;
  StartSession();
  const History message(At("MessageBelk"), "Caption");
  module.Always(GetParam().second);
  Run(std::chrono::seconds(5));
  EXPECT_EQ(Text("MessageBelk"), kPollFailed);
  EXPECT_EQ(Text("TotIN(0)"), "5");
  module.Always(ModuleFault::None());
  Run(std::chrono::seconds(6));
  EXPECT_EQ(Text("MessageBelk"), "OK");
  EXPECT_THAT(message.Values<std::string>(), ElementsAre(kPollFailed, "OK"));
}

INSTANTIATE_TEST_SUITE_P(Faults, PollingFault,
                         testing::Values(std::pair("Silence", ModuleFault::Silent()),
                                         std::pair("WrongCrc", ModuleFault::WrongCrc()),
                                         std::pair("TornReply", ModuleFault::Torn(10)),
                                         std::pair("AnotherAddress", ModuleFault::Foreign(2)),
                                         std::pair("Exception", ModuleFault::Exception(4)),
                                         std::pair("TooLate", ModuleFault::Late(std::chrono::seconds(3)))),
                         [](const auto& given) { return given.param.first; });

TEST_F(Polling, TakesALateAnswerAsAGoodOne) {
  StartSession();
  const History message(At("MessageBelk"), "Caption");
  module.Always(ModuleFault::Late(core::milliseconds(400)));
  module[kCounter1] = 8;
  Run(std::chrono::seconds(5));
  EXPECT_THAT(message.Entries(), IsEmpty());
  EXPECT_EQ(Text("TotIN(0)"), "8");
}

TEST_F(Polling, DropsTheTicksThatComeWhileARequestIsPending) {
  StartSession();
  RunIntoAPoll();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  line.ForgetWrites();
  module.Next(ModuleFault::Late(core::milliseconds(300)));
  Run(std::chrono::seconds(1));
  // The late one takes about 340 ms, so that its 6 ticks are dropped; then all goes on in step.
  const std::vector<std::int64_t> gaps = Gaps(WriteTimes());
  ASSERT_THAT(gaps, SizeIs(Ge(10U)));
  EXPECT_EQ(gaps.front(), 350);
  EXPECT_THAT(std::vector(gaps.begin() + 1, gaps.end()), Each(50));
}

TEST_F(Polling, ComesLessOftenOnASlowLineAndStaysOk) {
  module.Line.baud = 1200;
  State().PCSettings = "1200,n,8,1";
  LetTheFirstCounterRun();
  StartSession();
  const History message(At("MessageBelk"), "Caption");
  Run(std::chrono::seconds(10));
  EXPECT_THAT(message.Entries(), IsEmpty());
  // 31 characters of 8.3 ms and the module's 2 ms: every sixth tick finds the line free.
  EXPECT_THAT(module.TakeLog(), SizeIs(AllOf(Ge(32U), Le(34U))));
  Run(core::milliseconds(600));
  EXPECT_NE(Text("TotIN(0)"), "0");
}

core::Task<> ReadBeside(bus::ModCom* modcom, state::Word* word, bool* good) {
  const bus::Outcome outcome = co_await modcom->ReadPLC(state::Register(40072), *word);
  *good = outcome.Good();
}

TEST_F(Polling, FailsWhereItMeetsAnotherRequest) {
  module[40072] = 0xABCD;
  StartSession();
  const History message(At("MessageBelk"), "Caption");
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  state::Word word;
  bool good = false;
  module.Next(ModuleFault::Late(core::milliseconds(120)));
  Page().Spawn(ReadBeside(&Modcom(), &word, &good));
  Run(core::milliseconds(60));
  EXPECT_EQ(Text("MessageBelk"), kPollFailed);
  Run(core::milliseconds(200));
  EXPECT_EQ(Text("MessageBelk"), "OK");
  EXPECT_THAT(message.Values<std::string>(), ElementsAre(kPollFailed, "OK"));
  EXPECT_TRUE(good);
  EXPECT_EQ(word.Unsigned(), 0xABCD);
}

TEST_F(Polling, FailsAtOnceWhenThePortHasVanished) {
  StartSession();
  module.ForgetLog();
  ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  line.Lose();
  Run(core::milliseconds(60));
  EXPECT_EQ(Text("MessageBelk"), kPollFailed);
  Run(std::chrono::seconds(5));
  EXPECT_FALSE(Modcom().CommBusy());
  EXPECT_TRUE(InSession());
  EXPECT_TRUE(TimersRun());
  EXPECT_TRUE(NothingInFront());
}

TEST_F(Polling, EndsAPendingReadWhenThePortVanishes) {
  StartSession();
  module.Always(ModuleFault::Unheard());
  Run(core::milliseconds(100));
  ASSERT_TRUE(Modcom().CommBusy());
  line.Lose();
  Run(core::milliseconds(1));
  EXPECT_EQ(Text("MessageBelk"), kPollFailed);
  EXPECT_TRUE(InSession());
}

TEST_F(Polling, GoesOnWhileABoxOrADialogIsInFront) {
  StartSession();
  Click("FilterBelk");
  ASSERT_EQ(WindowInFront(), "ChangeValue");
  module.ForgetLog();
  module[kCounter1] = 17;
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), SizeIs(20));
  EXPECT_EQ(Text("Belk.TotIN(0)"), "17");
}

TEST_F(Polling, TellsFrontsNothingWhenNothingChanges) {
  StartSession();
  Run(std::chrono::seconds(1));
  class Counting final : public view::Watcher {
   public:
    void ControlsChanged(std::span<view::Control* const> changed) override { count += changed.size(); }
    void StageChanged() override { ++count; }
    std::size_t count = 0;
  } front;
  const view::Screen::Subscription subscription = program.GetScreen().Subscribe(front);
  Run(std::chrono::seconds(10));
  EXPECT_EQ(front.count, 0U);
  ++module[kCounter1];
  Run(std::chrono::seconds(1));
  EXPECT_EQ(front.count, 1U);
}

}  // namespace
}  // namespace tarvo::test
