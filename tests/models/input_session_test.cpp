// The session of a page of four inputs: what the four such pages have alike.

#include "support/input_page_fixture.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

constexpr InputPage kPages[] = {kGaven, kHollin, kJorun, kKelmar};

class InputSession : public InputPageFixture, public testing::WithParamInterface<InputPage> {
 protected:
  InputSession() : InputPageFixture(GetParam()) {}

  void ExpectStartRefused() {
    EXPECT_THAT(BoxInFront(), IsBox(NotOurs(), view::Icon::kCritical));
    AnswerOk();
    EXPECT_FALSE(Playing("MediaPlayer1"));
    ExpectOffline();
  }
};

INSTANTIATE_TEST_SUITE_P(Pages, InputSession, testing::ValuesIn(kPages),
                         [](const auto& given) { return given.param.model; });

TEST_P(InputSession, HasItsTimersAtTheirIntervals) {
  const std::pair<const char*, int> intervals[] = {
      {"TimerLetturaSeriale", 50}, {"TimerGestioneLetture", 200}, {"TimerIngranaggi", 200}};
  for (const auto& [name, interval] : intervals) {
    EXPECT_EQ(Interval(name), interval) << name;
    EXPECT_FALSE(Enabled(name)) << name;
  }
}

TEST_P(InputSession, BeginsWithTheReadsOfItsModel) {
  Click(Own("Start"));
  const std::vector<std::string> log = module.TakeLog();
  const std::vector<std::string> reads = StartReads(GetParam());
  ASSERT_GE(log.size(), reads.size());
  const auto polls = log.begin() + static_cast<std::ptrdiff_t>(reads.size());
  EXPECT_THAT(std::vector(log.begin(), polls), ElementsAreArray(reads));
  EXPECT_THAT(std::vector(polls, log.end()), Each(GetParam().poll));
  EXPECT_TRUE(InSession());
}

TEST_P(InputSession, HasSetTheFirstBlockBeforeTheIdentityIsRead) {
  ClickAndGoOn(Own("Start"));
  EXPECT_EQ(State().PollRegister.Number(), 40002);
  EXPECT_EQ(State().PollCount, GetParam().firstCount);
  EXPECT_FALSE(InSession());
  EXPECT_TRUE(Hourglass());
}

TEST_P(InputSession, StartsItsTimersOnlyOnceAtTheEndOfStart) {
  const History reading(At("TimerLetturaSeriale"), "Enabled");
  const History decoding(At("TimerGestioneLetture"), "Enabled");
  StartUntilRequest(static_cast<int>(StartReads(GetParam()).size()));
  EXPECT_TRUE(TimersRest());
  ASSERT_TRUE(RunUntil([this] { return !Hourglass(); }));
  EXPECT_TRUE(TimersRun());
  scheduler.RunReady();
  EXPECT_THAT(reading.Values<bool>(), ElementsAre(true));
  EXPECT_THAT(decoding.Values<bool>(), ElementsAre(true));
}

TEST_P(InputSession, PollsItsSecondBlockFromThenOn) {
  StartSession();
  EXPECT_EQ(State().PollRegister.Number(), GetParam().pollRegister);
  EXPECT_EQ(State().PollCount, GetParam().pollCount);
  Run(std::chrono::seconds(1));
  const std::vector<std::string> log = module.TakeLog();
  EXPECT_THAT(log, SizeIs(20));
  EXPECT_THAT(log, Each(GetParam().poll));
}

TEST_P(InputSession, HasDoneAllWhenStartEnds) {
  Click(Own("Start"));
  EXPECT_EQ(State().StartComm, state::kTrue);
  EXPECT_EQ(State().RunKind, GetParam().runKind);
  EXPECT_FALSE(Enabled(Own("Start")));
  EXPECT_TRUE(Enabled(Own("Stop")));
  EXPECT_FALSE(Enabled(Label()));
  EXPECT_FALSE(Enabled(Menu()));
  EXPECT_TRUE(Playing("MediaPlayer1"));
  EXPECT_FALSE(Hourglass());
  EXPECT_TRUE(NothingInFront());
  EXPECT_FALSE(Enabled("TimerIngranaggi"));
}

TEST_P(InputSession, TellsHowThePollGoes) {
  StartSession();
  RunThroughADecode();
  EXPECT_EQ(Text(Own("Message")), "OK");
  module.Always(ModuleFault::Exception(4));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(Own("Message")), kPollFailed);
  EXPECT_TRUE(NothingInFront());
  EXPECT_TRUE(InSession());
  module.Always(ModuleFault::None());
  Run(std::chrono::seconds(1));
  EXPECT_EQ(Text(Own("Message")), "OK");
}

TEST_P(InputSession, EndsWithStop) {
  StartSession();
  Click(Own("Stop"));
  ExpectOffline();
  EXPECT_FALSE(Playing("MediaPlayer1"));
  module.ForgetLog();
  Run(std::chrono::seconds(1));
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

TEST_P(InputSession, IsRefusedToAModuleOfAnotherModel) {
  const int code = GetParam().code;
  const std::map<std::string, bool> before = Enabling();
  for (const int other : {0x01, 0x06, 0x07, 0x08, 0x0B, 0x0C, 0x16, 0x80 | code, 0x10 | code, 0x00}) {
    if (other == code) continue;
    SCOPED_TRACE(other);
    // One that is known by no high byte bears the page's code in the low one.
    Set(kIdentity, other << 8 | (other == 0 ? code : GetParam().release));
    module.ForgetLog();
    Click(Own("Start"));
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    ExpectStartRefused();
    EXPECT_EQ(Enabling(), before);
  }
  SetRelease(GetParam().release);
  StartSession();
}

TEST_P(InputSession, IsRefusedToASilentModule) {
  module.Always(ModuleFault::Unheard());
  Click(Own("Start"));
  ExpectStartRefused();
}

TEST_P(InputSession, IsRefusedByAPortThatDoesNotOpen) {
  ports.SetFault(1, core::kPortAlreadyOpen);
  Click(Own("Start"));
  ExpectStartRefused();
}

TEST_P(InputSession, KeepsThePageFromClosing) {
  StartSession();
  ClosePage();
  EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  AnswerOk();
  EXPECT_TRUE(InSession());
  EXPECT_EQ(Page().Name(), GetParam().model);
}

}  // namespace
}  // namespace tarvo::test
