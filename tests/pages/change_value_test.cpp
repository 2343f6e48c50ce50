#include "support/belk_fixture.h"

namespace tarvo::test {
namespace {

/// The dialog as the address opens it: 1 to 255.
class ChangeValue : public BelkFixture {
 protected:
  void Open() {
    Click("AddressBelk");
    ASSERT_EQ(WindowInFront(), "ChangeValue");
  }
  void ExpectOpen() {
    EXPECT_EQ(WindowInFront(), "ChangeValue");
    EXPECT_EQ(State().ChangeValueOk, state::kFalse);
  }
  void ExpectClosedWithout() {
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(State().ChangeValueOk, state::kFalse);
    EXPECT_EQ(Text("AddressBelk"), "1");
  }
};

TEST_F(ChangeValue, ShowsItsBounds) {
  Open();
  EXPECT_EQ(State().ChangeValueMin, 1);
  EXPECT_EQ(State().ChangeValueMax, 255);
  EXPECT_EQ(Text("MinValue"), "Min Value :1");
  EXPECT_EQ(Text("MaxValue"), "Max Value :255");
}

TEST_F(ChangeValue, ForgetsAtEachOpeningThatItWasAccepted) {
  Open();
  AnswerChangeValue("7");
  ASSERT_EQ(State().ChangeValueOk, state::kTrue);
  Open();
  EXPECT_EQ(State().ChangeValueOk, state::kFalse);
}

TEST_F(ChangeValue, IsLoadedAnewAtEachOpening) {
  Open();
  EXPECT_EQ(Text("Text1"), "");
  AnswerChangeValue("7");
  Open();
  EXPECT_EQ(Text("Text1"), "");
  Type("Text1", "8");
  Click("ChangeValue.Cancel");
  Click("FilterBelk");
  EXPECT_EQ(Text("Text1"), "");
  EXPECT_EQ(Text("MaxValue"), "Max Value :254");
}

TEST_F(ChangeValue, GivesTheTextThatWasAccepted) {
  Open();
  AnswerChangeValue("17");
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(State().ChangeValueOk, state::kTrue);
  EXPECT_EQ(State().ChangeValueResult, "17");
  EXPECT_EQ(Text("AddressBelk"), "17");
}

TEST_F(ChangeValue, AcceptsBothBounds) {
  for (const char* bound : {"1", "255"}) {
    Open();
    AnswerChangeValue(bound);
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(Text("AddressBelk"), bound);
  }
}

TEST_F(ChangeValue, TurnsATooLargeValueIntoTheMaximumAndStaysOpen) {
  Open();
  AnswerChangeValue("300");
  ExpectOpen();
  EXPECT_EQ(Text("Text1"), "255");
  Click("ChangeValue.OK");
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(State().ChangeValueOk, state::kTrue);
  EXPECT_EQ(Text("AddressBelk"), "255");
}

TEST_F(ChangeValue, TurnsATooSmallValueIntoTheMinimumAndStaysOpen) {
  for (const char* small : {"0", "-5", "-2147483648"}) {
    SCOPED_TRACE(small);
    Open();
    AnswerChangeValue(small);
    ExpectOpen();
    EXPECT_EQ(Text("Text1"), "1");
    Click("ChangeValue.OK");
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(Text("AddressBelk"), "1");
  }
}

TEST_F(ChangeValue, ComparesTheRoundedNumber) {
  // To nearest, ties to even: 255.5 is 256 and too large, 254.5 is 254; 0.5 is 0 and too small.
  Open();
  AnswerChangeValue("255.5");
  ExpectOpen();
  EXPECT_EQ(Text("Text1"), "255");
  AnswerChangeValue("255.4");
  EXPECT_TRUE(NothingInFront());
  Open();
  AnswerChangeValue("0.5");
  ExpectOpen();
  EXPECT_EQ(Text("Text1"), "1");
  AnswerChangeValue("0.6");
  EXPECT_TRUE(NothingInFront());
}

TEST_F(ChangeValue, ClearsATextThatIsNoNumberAndStaysOpen) {
  for (const char* text :
       {"abc", "12a", "1.2.3", "1,2,3", "1.2,3", "0x10", "1e2", "1 2", "--1", "1-", "-", "+", ".", ","}) {
    SCOPED_TRACE(text);
    Open();
    AnswerChangeValue(text);
    ExpectOpen();
    EXPECT_EQ(Text("Text1"), "");
    Click("ChangeValue.OK");
    ExpectOpen();
    Click("ChangeValue.Cancel");
    ExpectClosedWithout();
  }
}

TEST_F(ChangeValue, StaysOpenOnAnEmptyText) {
  for (const char* text : {"", "   "}) {
    Open();
    AnswerChangeValue(text);
    ExpectOpen();
    EXPECT_EQ(Text("Text1"), "");
    Click("ChangeValue.Cancel");
  }
}

TEST_F(ChangeValue, GivesADecimalTextAsTyped) {
  for (const char* text : {"12.4", "1,5", "+7"}) {
    SCOPED_TRACE(text);
    Open();
    AnswerChangeValue(text);
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(State().ChangeValueResult, text);
    EXPECT_EQ(Text("AddressBelk"), text);
  }
}

TEST_F(ChangeValue, TakesANumberWithBlanksAround) {
  Open();
  AnswerChangeValue(" 12 ");
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(State().ChangeValueOk, state::kTrue);
}

TEST_F(ChangeValue, ShowsOneBoxForANumberTooLargeForItsTypeAndStaysOpen) {
  for (const char* text : {"2147483648", "-2147483649", "99999999999999999999999999"}) {
    SCOPED_TRACE(text);
    Open();
    AnswerChangeValue(text);
    EXPECT_THAT(BoxInFront(), IsBox("Overflow", view::Icon::kExclamation));
    EXPECT_EQ(program.GetScreen().ModalDepth(), 2U);
    AnswerOk();
    ExpectOpen();
    Click("ChangeValue.Cancel");
    ExpectClosedWithout();
  }
}

TEST_F(ChangeValue, TakesTheLargestNumberOfItsTypeForTooLarge) {
  Open();
  AnswerChangeValue("2147483647");
  ExpectOpen();
  EXPECT_EQ(Text("Text1"), "255");
}

TEST_F(ChangeValue, TakesEnterInItsTextForOk) {
  Open();
  Type("Text1", "20");
  PressKey("Text1", view::Key::kEnter);
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text("AddressBelk"), "20");
}

TEST_F(ChangeValue, ClampsOnEnterAsOnOk) {
  Open();
  Type("Text1", "300");
  PressKey("Text1", view::Key::kEnter);
  ExpectOpen();
  EXPECT_EQ(Text("Text1"), "255");
  PressKey("Text1", view::Key::kEnter);
  EXPECT_EQ(Text("AddressBelk"), "255");
}

TEST_F(ChangeValue, ClosesOnEscapeInItsTextUnaccepted) {
  Open();
  Type("Text1", "20");
  PressKey("Text1", view::Key::kEscape);
  ExpectClosedWithout();
}

TEST_F(ChangeValue, LeavesEscPressedAloneWhenEscapeClosesIt) {
  Open();
  PressKey("Text1", view::Key::kEscape);
  EXPECT_EQ(State().EscPressed, 0);
}

TEST_F(ChangeValue, ClosesOnCancelUnaccepted) {
  Open();
  Type("Text1", "20");
  Click("ChangeValue.Cancel");
  ExpectClosedWithout();
}

TEST_F(ChangeValue, ClosesByItsCloseBoxUnaccepted) {
  Open();
  Type("Text1", "20");
  Close();
  ExpectClosedWithout();
  EXPECT_FALSE(program.Ended());
}

TEST_F(ChangeValue, ClosesByItsCloseBoxInASessionToo) {
  StartSession();
  Open();
  Close();
  ExpectClosedWithout();
  EXPECT_TRUE(InSession());
}

TEST_F(ChangeValue, IsUnacceptedWhenCancelledAfterAClamp) {
  Open();
  AnswerChangeValue("300");
  Click("ChangeValue.Cancel");
  ExpectClosedWithout();
}

TEST_F(ChangeValue, CoversThePage) {
  Open();
  EXPECT_NE(RefusalOf("Belk.StartBelk"), "");
  EXPECT_NE(RefusalOf("MDIForm1.labBelk"), "");
}

TEST_F(ChangeValue, OpensOnceForAClickThatComesTwice) {
  Open();
  EXPECT_NE(RefusalOf("Belk.AddressBelk"), "");
  EXPECT_EQ(program.GetScreen().ModalDepth(), 1U);
}

}  // namespace
}  // namespace tarvo::test
