// The dialog for a new analog value, and the turn of a point into a comma.

#include <optional>

#include "pages/dlg_set_new_value.h"
#include "shell/shell_fixture.h"
#include "state/number_text.h"

namespace tarvo::test {
namespace {

using state::PointToComma;

TEST(PointToComma, TurnsTheFirstPointAlone) {
  EXPECT_EQ(PointToComma("1.5.2"), "1,5.2");
  EXPECT_EQ(PointToComma("1.5"), "1,5");
  EXPECT_EQ(PointToComma(".5"), ",5");
  EXPECT_EQ(PointToComma("5."), "5,");
  EXPECT_EQ(PointToComma("."), ",");
  EXPECT_EQ(PointToComma("1,5.2"), "1,5,2");
}

TEST(PointToComma, LeavesATextWithoutAPoint) {
  for (const char* text : {"", "15", "1,5", "abc", " 7 "}) EXPECT_EQ(PointToComma(text), text);
}

class NewValueDialog : public ShellFixture {
 protected:
  void Open(const std::string& caption = "Set new value of output 1") {
    if (PageName().empty()) OpenQuietly();
    ended_ = false;
    result_.reset();
    auto* dialog = dynamic_cast<pages::DlgSetNewValue*>(program.FindWindow("dlgSetNewValue"));
    ASSERT_NE(dialog, nullptr);
    dialog->Spawn(Ask(dialog, caption, &result_, &ended_));
    scheduler.RunReady();
    ASSERT_EQ(WindowInFront(), "dlgSetNewValue");
  }
  void Enter(const std::string& text) {
    Type("dlgSetNewValue.txtValRam", text);
    Click("dlgSetNewValue.OK");
    scheduler.RunReady();
  }
  void ExpectOpen() const {
    EXPECT_FALSE(ended_);
    EXPECT_EQ(WindowInFront(), "dlgSetNewValue");
  }
  void ExpectResult(const std::optional<std::string>& result) {
    EXPECT_TRUE(ended_);
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(result_, result);
  }
  int Beeps() const { return program.GetScreen().Beeps(); }

 private:
  static core::Task<> Ask(pages::DlgSetNewValue* dialog, std::string caption, std::optional<std::string>* result,
                          bool* ended) {
    *result = co_await dialog->AskFor(std::move(caption));
    *ended = true;
  }

  bool ended_ = false;
  std::optional<std::string> result_;
};

TEST_F(NewValueDialog, HasTheCaptionThatItIsGiven) {
  Open("Set new value of output 2");
  EXPECT_EQ(program.FindWindow("dlgSetNewValue")->Caption, "Set new value of output 2");
  Click("dlgSetNewValue.Cancel");
}

TEST_F(NewValueDialog, GivesTheValueWithAComma) {
  for (const auto& [typed, given] :
       {std::pair("1.5", "1,5"), std::pair("1,5", "1,5"), std::pair("0", "0"), std::pair("10000", "10000"),
        std::pair("10000.9", "10000,9"), std::pair("+7", "+7")}) {
    SCOPED_TRACE(typed);
    Open();
    Enter(typed);
    ExpectResult(given);
  }
  EXPECT_EQ(Beeps(), 0);
}

TEST_F(NewValueDialog, TakesEnterInItsTextForOk) {
  Open();
  Type("dlgSetNewValue.txtValRam", "12.5");
  PressKey("dlgSetNewValue.txtValRam", view::Key::kEnter);
  scheduler.RunReady();
  ExpectResult("12,5");
}

TEST_F(NewValueDialog, BeepsAndGivesTheBoundForAValueBeyondIt) {
  for (const auto& [typed, given] : {std::pair("10001", "10000"), std::pair("65535", "10000"), std::pair("-1", "0"),
                                     std::pair("-0.5", "0"), std::pair("10001.5", "10000")}) {
    SCOPED_TRACE(typed);
    const int before = Beeps();
    Open();
    Enter(typed);
    ExpectResult(given);
    EXPECT_EQ(Beeps(), before + 1);
  }
}

TEST_F(NewValueDialog, TellsATextThatIsNoNumberAndStaysOpen) {
  for (const char* typed : {"abc", "", "1.5.2", "1,5.2", "-", "0x10"}) {
    SCOPED_TRACE(typed);
    Open();
    Enter(typed);
    EXPECT_THAT(BoxInFront(), IsBox("Value is not numeric !", view::Icon::kExclamation));
    AnswerOk();
    ExpectOpen();
    EXPECT_EQ(Text("dlgSetNewValue.txtValRam"), "0");
    Click("dlgSetNewValue.OK");
    scheduler.RunReady();
    ExpectResult("0");
  }
}

TEST_F(NewValueDialog, TellsItOnEnterToo) {
  Open();
  Type("dlgSetNewValue.txtValRam", "abc");
  PressKey("dlgSetNewValue.txtValRam", view::Key::kEnter);
  EXPECT_THAT(BoxInFront(), IsBox("Value is not numeric !", view::Icon::kExclamation));
  AnswerOk();
  ExpectOpen();
}

TEST_F(NewValueDialog, GivesNothingWhenItIsLeft) {
  Open();
  Type("dlgSetNewValue.txtValRam", "12");
  Click("dlgSetNewValue.Cancel");
  scheduler.RunReady();
  ExpectResult(std::nullopt);
  Open();
  Close();
  scheduler.RunReady();
  ExpectResult(std::nullopt);
}

TEST_F(NewValueDialog, NotesTheAcceptedValueForAll) {
  Open();
  Enter("3.5");
  EXPECT_EQ(State().NewValueText, "3,5");
}

}  // namespace
}  // namespace tarvo::test
