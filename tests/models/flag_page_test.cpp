// What a click on a check box or a parity option does, on the pages where it writes the flags of the module at once.

#include <algorithm>
#include <iterator>
#include <optional>
#include <ostream>
#include <span>

#include "support/flag_boxes.h"
#include "support/simple_page_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::ValuesIn;

struct FlagPage : SimplePage {
  int flags;   ///< register
  int others;  ///< those that have no box, and maybe the kind of parity
  std::span<const FlagBox> boxes;
  const char* parity;
  /// Element of `PollBuffer` with the flags; none where no poll brings them.
  std::optional<std::size_t> polled;
  /// Whether the repeating decode shows them.
  bool repeated;
};

const std::vector<FlagPage>& Pages() {
  static const std::vector<FlagPage> pages = {
      {BelkPage(), 40009, 0xAB40, kBelkFlags, "CheckBelk6", 7, true},
      {CobinPage(), 40005, 0xAB22, kCobinFlags, "CheckCobin5", 3, true},
      {DravoPage(), 40010, 0xBCF3, kDravoFlags, "CheckDravo4", 8, false},
      {LumetPage(), 40020, 0xAB60, kLumetFlags, "CheckLumet6", std::nullopt, false}};
  return pages;
}

class FlagPageFixture : public SimplePageFixture {
 protected:
  explicit FlagPageFixture(const FlagPage& page) : SimplePageFixture(page), page_(page) {}

  void SetFlags(int word) { module[page_.flags] = static_cast<std::uint16_t>(word); }
  int FlagsOfModule() { return module[page_.flags]; }
  /// A session in which the module has these flags.
  void BeginWith(int flags) {
    SetFlags(flags);
    StartSession();
    RunUntilTheBusIsFree();
    module.ForgetLog();
  }
  /// ... and every box shows them: a session does not tell all of them on each page.
  void BeginShowing(int flags) {
    SetFlags(flags);
    ReadEEPromFlags();
    BeginWith(flags);
  }
  int PolledFlags() const { return Polled(page_.polled.value()); }
  void SetPolled(std::size_t element, int word) {
    State().PollBuffer.at(element) = state::Word(static_cast<unsigned>(word));
  }

  std::string Reading() const { return "reads " + std::to_string(page_.flags); }
  std::string WritingFlags(int word) const { return Writing(page_.flags, word); }

 private:
  const FlagPage& page_;
};

/// A box and its page.
struct BoxCase {
  const FlagPage* page;
  FlagBox flag;

  friend void PrintTo(const BoxCase& row, std::ostream* out) { *out << row.flag.box; }
};

template <class Choice>
std::vector<FlagPage> PagesThat(Choice fits) {
  std::vector<FlagPage> pages;
  std::ranges::copy_if(Pages(), std::back_inserter(pages), fits);
  return pages;
}

template <class Choice>
std::vector<BoxCase> BoxesThat(Choice fits) {
  std::vector<BoxCase> boxes;
  for (const FlagPage& page : Pages()) {
    if (!fits(page)) continue;
    for (const FlagBox& flag : page.boxes) boxes.push_back({&page, flag});
  }
  return boxes;
}

bool Any(const FlagPage& /*page*/) {
  return true;
}
bool IsPolled(const FlagPage& page) {
  return page.polled.has_value();
}
bool IsRepeated(const FlagPage& page) {
  return page.repeated;
}
bool IsNotRepeated(const FlagPage& page) {
  return !page.repeated;
}

std::string NameOfBox(const testing::TestParamInfo<BoxCase>& given) {
  return given.param.flag.box;
}
std::string NameOfPage(const testing::TestParamInfo<FlagPage>& given) {
  return given.param.model;
}

class Flag : public FlagPageFixture, public testing::WithParamInterface<BoxCase> {
 protected:
  Flag() : FlagPageFixture(*GetParam().page) {}

  static const char* Box() { return GetParam().flag.box; }
  static int Mask() { return GetParam().flag.mask; }
  static int AllBut() { return 0xFFFF & ~Mask(); }
  static int Others() { return GetParam().page->others; }
};

INSTANTIATE_TEST_SUITE_P(Boxes, Flag, ValuesIn(BoxesThat(Any)), NameOfBox);

TEST_P(Flag, SetsItsBitOnTheModuleAndKeepsTheOthers) {
  BeginWith(Others());
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading(), WritingFlags(Others() | Mask())));
  EXPECT_TRUE(Checked(Box()));
  EXPECT_TRUE(TimersRun());
}

TEST_P(Flag, ClearsItsBitOnTheModuleAndKeepsTheOthers) {
  BeginShowing(0xFFFF);
  ASSERT_TRUE(Checked(Box()));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading(), WritingFlags(AllBut())));
  EXPECT_FALSE(Checked(Box()));
  EXPECT_TRUE(TimersRun());
}

TEST_P(Flag, ChangesWhatTheModuleHasAtThatMoment) {
  BeginWith(0);
  SetFlags(Others());  // not polled yet
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading(), WritingFlags(Others() | Mask())));
}

TEST_P(Flag, FollowsTheBoxThatIsShownWhateverTheRegisterHas) {
  BeginWith(0);
  SetFlags(Mask());  // set from elsewhere after the last decode
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading(), WritingFlags(Mask())));
  EXPECT_TRUE(Checked(Box()));
  SetFlags(0);
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading(), WritingFlags(0)));
  EXPECT_FALSE(Checked(Box()));
}

TEST_P(Flag, IsWrittenFromZeroWhenTheReadIsRefused) {
  BeginWith(Others());
  module.Next(ModuleFault::Exception(2));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading() + ": exception 2", WritingFlags(Mask())));
}

TEST_P(Flag, IsClearedFromZeroWhenTheReadIsRefused) {
  BeginShowing(0xFFFF);
  module.Next(ModuleFault::Exception(2));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading() + ": exception 2", WritingFlags(0)));
}

TEST_P(Flag, HoldsThePollUntilItIsWritten) {
  BeginWith(Others());
  RunIntoAPoll();
  module.ForgetLog();
  const auto click = ClickAndGoOn(Box());
  EXPECT_TRUE(Checked(Box()));
  while (!click->Done()) {
    ASSERT_TRUE(TimersRest());
    Run(core::milliseconds(1));
  }
  EXPECT_TRUE(TimersRun());
  EXPECT_THAT(module.TakeLog(), ElementsAre(Reading(), WritingFlags(Others() | Mask())));
}

TEST_P(Flag, SetsAndClearsWhenClickedTwiceAtOnce) {
  BeginWith(Others());
  RunIntoAPoll();
  ClickAndGoOn(Box());
  ClickAndGoOn(Box());
  RunUntilIdle();
  EXPECT_THAT(Exchanges(), ElementsAre(Reading(), WritingFlags(Others() | Mask()), Reading(), WritingFlags(Others())));
  EXPECT_FALSE(Checked(Box()));
  EXPECT_TRUE(TimersRun());
}

TEST_P(Flag, IsTheOnlyOneThatItsClickChanges) {
  Click(Box());
  for (const FlagBox& flag : GetParam().page->boxes) {
    EXPECT_EQ(Checked(flag.box), std::string(flag.box) == Box()) << flag.box;
  }
}

// Where a poll brings the flags, a click changes what it brought.

class PolledFlag : public Flag {
 protected:
  static std::size_t Element() { return GetParam().page->polled.value(); }
};

INSTANTIATE_TEST_SUITE_P(Boxes, PolledFlag, ValuesIn(BoxesThat(IsPolled)), NameOfBox);

TEST_P(PolledFlag, IsUpdatedWithAGoodWrite) {
  BeginWith(Others());
  Click(Box());
  EXPECT_EQ(PolledFlags(), Others() | Mask());
  Click(Box());
  EXPECT_EQ(PolledFlags(), Others());
}

TEST_P(PolledFlag, IsLeftWithAFailedWrite) {
  BeginWith(0);
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Box());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading(), WritingFlags(Mask()) + ": exception 4"));
  EXPECT_EQ(PolledFlags(), 0);
  EXPECT_TRUE(Checked(Box()));
  EXPECT_TRUE(NothingInFront());
}

TEST_P(PolledFlag, AloneIsChangedWithoutASession) {
  for (std::size_t i = 0; i < 20; ++i) SetPolled(i, 0x4000 + static_cast<int>(i));
  SetPolled(Element(), Others());
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  EXPECT_EQ(PolledFlags(), Others() | Mask());
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  EXPECT_EQ(PolledFlags(), Others());
  for (std::size_t i = 0; i < 20; ++i) {
    if (i == Element()) continue;
    EXPECT_EQ(Polled(i), 0x4000 + static_cast<int>(i)) << i;
  }
  ExpectOffTheLine();
}

TEST_P(PolledFlag, OfTheLastSessionIsClearedWithoutOne) {
  BeginShowing(0xFFFF);
  Click(Names().stop);
  module.ForgetLog();
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  EXPECT_EQ(PolledFlags(), AllBut());
  EXPECT_EQ(FlagsOfModule(), 0xFFFF);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

// A write that is lost.

class RepeatedFlag : public Flag {};

INSTANTIATE_TEST_SUITE_P(Boxes, RepeatedFlag, ValuesIn(BoxesThat(IsRepeated)), NameOfBox);

TEST_P(RepeatedFlag, SpringsBackWhenTheWriteIsLost) {
  BeginWith(0);
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  EXPECT_TRUE(NothingInFront());
  RunThroughADecode();
  EXPECT_FALSE(Checked(Box()));
}

class LastingFlag : public Flag {};

INSTANTIATE_TEST_SUITE_P(Boxes, LastingFlag, ValuesIn(BoxesThat(IsNotRepeated)), NameOfBox);

TEST_P(LastingFlag, StaysAsClickedThoughTheWriteIsLost) {
  BeginWith(0);
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  Click(Box());
  Run(std::chrono::seconds(1));
  EXPECT_TRUE(Checked(Box()));
  EXPECT_EQ(FlagsOfModule(), 0);
  EXPECT_TRUE(NothingInFront());
}

// All boxes of a page, and its kinds of parity.

class FlagPageTest : public FlagPageFixture, public testing::WithParamInterface<FlagPage> {
 protected:
  FlagPageTest() : FlagPageFixture(GetParam()) {}

  std::string Even() const { return std::string("Option") + GetParam().model + "1"; }
  std::string Odd() const { return std::string("Option") + GetParam().model + "2"; }
  static const char* ParityBox() { return GetParam().parity; }
};

class Flags : public FlagPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, Flags, ValuesIn(Pages()), NameOfPage);

TEST_P(Flags, AllReachTheModuleHoweverQuickTheClicks) {
  constexpr int kWithoutABox = 0x1000;
  BeginWith(kWithoutABox);
  RunIntoAPoll();
  int expected = kWithoutABox;
  for (const FlagBox& flag : GetParam().boxes) {
    ClickAndGoOn(flag.box);
    expected |= flag.mask;
  }
  RunUntilIdle();
  EXPECT_EQ(FlagsOfModule(), expected);
  EXPECT_TRUE(TimersRun());
  Run(std::chrono::seconds(1));
  for (const FlagBox& flag : GetParam().boxes) EXPECT_TRUE(Checked(flag.box)) << flag.box;
}

class Parity : public FlagPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, Parity, ValuesIn(Pages()), NameOfPage);

TEST_P(Parity, EnablesItsKindsWithTheClick) {
  for (const bool session : {false, true}) {
    SCOPED_TRACE(session);
    if (session) StartSession();
    for (const std::string& kind : {Even(), Odd()}) EXPECT_EQ(RefusalOf(kind), kind + " is disabled");
    Click(ParityBox());
    for (const std::string& kind : {Even(), Odd()}) EXPECT_TRUE(Enabled(kind)) << kind;
    Click(ParityBox());
    for (const std::string& kind : {Even(), Odd()}) EXPECT_FALSE(Enabled(kind)) << kind;
  }
}

TEST_P(Parity, LeavesItsKindInBit4WhenItIsOff) {
  BeginWith(0x0018);
  Click(ParityBox());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading(), WritingFlags(0x0010)));
  RunThroughADecode();
  EXPECT_TRUE(Checked(Odd()));
  Click(ParityBox());
  EXPECT_EQ(FlagsOfModule(), 0x0018);
  EXPECT_TRUE(Checked(Odd()));
}

TEST_P(Parity, SetsBit4ForOdd) {
  BeginWith(0xAB08);
  Click(Odd());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading(), WritingFlags(0xAB18)));
  EXPECT_TRUE(Checked(Odd()));
  EXPECT_FALSE(Checked(Even()));
  EXPECT_TRUE(TimersRun());
}

TEST_P(Parity, ClearsBit4ForEven) {
  BeginWith(0xFFFF);
  Click(Even());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading(), WritingFlags(0xFFEF)));
  EXPECT_TRUE(Checked(Even()));
  EXPECT_FALSE(Checked(Odd()));
}

TEST_P(Parity, IsWrittenAgainForTheKindThatIsSelectedAlready) {
  BeginWith(0x0018);
  Click(Odd());
  EXPECT_THAT(Exchanges(), ElementsAre(Reading(), WritingFlags(0x0018)));
}

TEST_P(Parity, IsWrittenFromZeroWhenTheReadIsRefused) {
  BeginWith(0xFFFF);
  for (const auto& [kind, word] : {std::pair(Odd(), 0x0010), std::pair(Even(), 0x0000)}) {
    SetFlags(0xFFFF);
    RunUntilTheBusIsFree();
    module.Next(ModuleFault::Exception(1));
    Click(kind);
    EXPECT_THAT(Exchanges(), ElementsAre(Reading() + ": exception 1", WritingFlags(word)));
  }
}

TEST_P(Parity, DoesNotSpringBack) {
  BeginWith(0x0008);
  const History odd(At(Odd()), "Value");
  RunIntoAPoll();
  Click(Odd());
  Run(std::chrono::seconds(1));
  EXPECT_THAT(odd.Values<bool>(), ElementsAre(true));
}

TEST_P(Parity, StaysOffTheLineWithoutASession) {
  Click(ParityBox());
  Click(Odd());
  EXPECT_TRUE(Checked(Odd()));
  EXPECT_FALSE(Checked(Even()));
  Click(Even());
  EXPECT_TRUE(Checked(Even()));
  EXPECT_FALSE(Checked(Odd()));
  ExpectOffTheLine();
}

class PolledParity : public FlagPageTest {};

INSTANTIATE_TEST_SUITE_P(Pages, PolledParity, ValuesIn(PagesThat(IsPolled)), NameOfPage);

TEST_P(PolledParity, IsUpdatedWithAGoodWrite) {
  BeginWith(0xFFFF);
  Click(Even());
  EXPECT_EQ(PolledFlags(), 0xFFEF);
  Click(Odd());
  EXPECT_EQ(PolledFlags(), 0xFFFF);
}

TEST_P(PolledParity, IsChangedWithoutASession) {
  SetPolled(GetParam().polled.value(), 0xAB00);
  Click(ParityBox());
  Click(Odd());
  EXPECT_EQ(PolledFlags(), 0xAB18);
  Click(Even());
  EXPECT_EQ(PolledFlags(), 0xAB08);
}

}  // namespace
}  // namespace tarvo::test
