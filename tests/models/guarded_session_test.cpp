// What the sessions of the pages have alike that tell whether they go on: Start, Stop, leaving, and the reset button of
// the modules that have no reset.

#include <type_traits>

#include "support/nerith_fixture.h"
#include "support/oswin_fixture.h"
#include "support/quenby_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::Types;

template <class Fixture>
class GuardedSession : public Fixture {
 protected:
  void PressStart() { this->Click(this->Names().start); }
  void PressStop() { this->Click(this->Names().stop); }
  /// How many requests Start brings before the first poll.
  int RequestsOfStart() {
    PressStart();
    const auto requests = static_cast<int>(this->Exchanges().size());
    PressStop();
    return requests;
  }
};

class PageName {
 public:
  template <class Fixture>
  static std::string GetName(int /*index*/) {
    if (std::is_same_v<Fixture, NerithFixture>) return "Nerith";
    return std::is_same_v<Fixture, OswinFixture> ? "Oswin" : "Quenby";
  }
};

using Pages = Types<NerithFixture, OswinFixture, QuenbyFixture>;
TYPED_TEST_SUITE(GuardedSession, Pages, PageName);

// Start.

TYPED_TEST(GuardedSession, HasOpenedThePortBeforeTheIdentityIsRead) {
  this->ClickAndGoOn(this->Names().start);
  EXPECT_TRUE(this->Hourglass());
  EXPECT_TRUE(this->PortOpen());
  EXPECT_FALSE(this->InSession());
  EXPECT_FALSE(this->Playing("MediaPlayer1"));
  EXPECT_TRUE(this->TimersRest());
}

TYPED_TEST(GuardedSession, LeavesTheKindOfRunAsItWas) {
  this->State().RunKind = 77;
  this->StartSession();
  EXPECT_EQ(this->State().RunKind, 77);
}

TYPED_TEST(GuardedSession, TakesNoSecondStart) {
  this->StartSession();
  EXPECT_EQ(this->RefusalOf(this->Names().start), this->Names().start + " is disabled");
}

TYPED_TEST(GuardedSession, IsRefusedToASilentModule) {
  this->module.Always(ModuleFault::Unheard());
  this->PressStart();
  EXPECT_THAT(this->BoxInFront(), IsBox(this->NotOurs(), view::Icon::kCritical));
  this->AnswerOk();
  this->module.Always(ModuleFault::None());
  this->ExpectOffline();
  this->StartSession();
}

// Stop and leaving.

TYPED_TEST(GuardedSession, EndsWithStop) {
  this->StartSession();
  this->PressStop();
  EXPECT_FALSE(this->Playing("MediaPlayer1"));
  this->ExpectOffline();
  this->StartSession();
}

TYPED_TEST(GuardedSession, ReadsNothingWhenItEnds) {
  this->StartSession();
  this->Run(std::chrono::seconds(2));
  this->module.ForgetLog();
  this->PressStop();
  this->Run(std::chrono::seconds(2));
  EXPECT_THAT(this->Exchanges(), IsEmpty());
}

TYPED_TEST(GuardedSession, HeedsAStopDuringStartOnceItHasBegun) {
  // Where there is no session yet, Stop does nothing and Start goes on.
  const int last = this->RequestsOfStart();
  ASSERT_GE(last, 3);
  for (int requests = 1; requests <= last; ++requests) {
    SCOPED_TRACE(requests);
    this->StartUntilRequest(requests);
    const bool begun = this->InSession();
    EXPECT_EQ(begun, requests > this->kRequestsBeforeTheSession);
    this->ClickAndGoOn(this->Names().stop);
    this->RunUntilIdle();
    EXPECT_EQ(this->InSession(), !begun);
    if (this->InSession()) this->PressStop();
    EXPECT_FALSE(this->Playing("MediaPlayer1"));
    this->ExpectOffline();
  }
  this->StartSession();
  this->ExpectSessionGoesOn();
}

TYPED_TEST(GuardedSession, WaitsAtStopForThePollUnderWay) {
  this->StartSession();
  this->RunIntoAPoll();
  const History message(this->At(this->Page().Name() + "." + this->Names().message), "Caption");
  this->PressStop();
  EXPECT_THAT(message.Values<std::string>(), Not(Contains(std::string(kPollFailed))));
  this->ExpectOffline();
}

TYPED_TEST(GuardedSession, KeepsThePageFromClosing) {
  this->StartSession();
  this->ClosePage();
  EXPECT_THAT(this->BoxInFront(), IsBox(kMustStopFirst, view::Icon::kExclamation));
  this->AnswerOk();
  EXPECT_EQ(this->Page().Name(), "frm" + this->Names().model);
  this->ExpectSessionGoesOn();
}

TYPED_TEST(GuardedSession, TakesNoticeOfEscapeWithoutEnding) {
  this->StartSession();
  this->PressKey(view::Key::kEscape);
  EXPECT_EQ(this->State().EscPressed, 1);
  this->ExpectSessionGoesOn();
}

TYPED_TEST(GuardedSession, OutlivesAModuleThatIsPulledOut) {
  this->StartSession();
  this->line.Lose();
  this->Run(std::chrono::seconds(2));
  EXPECT_EQ(this->Message(), kPollFailed);
  EXPECT_TRUE(this->InSession());
  EXPECT_TRUE(this->NothingInFront());
  this->PressStop();
  this->ExpectOffline();
}

// The reset button, of modules that have no reset.

template <class Fixture>
class NoReset : public Fixture {};

using PagesWithoutReset = Types<NerithFixture, OswinFixture>;
TYPED_TEST_SUITE(NoReset, PagesWithoutReset, PageName);

TYPED_TEST(NoReset, OnlyTellsWhatToDo) {
  this->line.ForgetCounts();
  this->Click("ResetGaven");
  EXPECT_THAT(this->BoxInFront(), IsBox(kSwitchOffAndOn, view::Icon::kInformation));
  this->AnswerOk();
  EXPECT_THAT(this->module.TakeLog(), IsEmpty());
  EXPECT_EQ(this->line.Opens(), 0);
  this->ExpectOffline();
}

TYPED_TEST(NoReset, LetsASessionGoOn) {
  this->StartSession();
  const auto number = this->State().NrFinestra;
  this->Click("ResetGaven");
  EXPECT_THAT(this->BoxInFront(), IsBox(kSwitchOffAndOn, view::Icon::kInformation));
  EXPECT_TRUE(this->InSession());
  this->AnswerOk();
  EXPECT_THAT(this->Exchanges(), IsEmpty());
  EXPECT_EQ(this->State().NrFinestra, number);
  this->ExpectSessionGoesOn();
}

}  // namespace
}  // namespace tarvo::test
