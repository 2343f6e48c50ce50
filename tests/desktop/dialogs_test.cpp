#include "desktop/dialogs.h"

#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <optional>

#include "desktop/widgets/text_label.h"
#include "support/bare_window.h"
#include "support/desktop_bench.h"

namespace tarvo::test {
namespace {

/// A dialog with a line that tells how its work goes on.
class DialogWithPanel : public BareWindow {
 public:
  using BareWindow::BareWindow;
  view::Panel progress{*this, "StatusBar1", 1};
  view::Node Arrangement() const override { return view::Column({view::Show(progress)}); }
};

class Dialogs : public DesktopBench {
 protected:
  core::Task<> AskTask(std::vector<std::string> buttons) {
    answer = co_await screen.Ask("EEProm updated! Please reset module to apply changes.", view::Icon::kInformation,
                                 std::move(buttons), "Tarvo");
  }
  void Ask(std::vector<std::string> buttons) {
    page.Spawn(AskTask(std::move(buttons)));
    Settle();
  }
  void ShowDialog(const std::string& text) {
    dialog.Text1.Text = text;
    page.Spawn(screen.ShowModal(dialog));
    Settle();
  }
  core::Task<> AskFileTask(bool save) {
    path = co_await screen.AskForFile(save, "All Files (*.txt) | *.txt");
    pathTold = true;
  }

  std::string answer;
  std::optional<std::string> path;
  bool pathTold = false;
};

TEST_F(Dialogs, AMessageBoxShowsItsTextAsToldAndNothingMore) {
  Ask({"OK"});
  ASSERT_NE(front.FrontDialog(), nullptr);
  EXPECT_EQ(front.FrontDialog()->objectName(), "MsgBox");
  EXPECT_TRUE(front.FrontDialog()->isVisible());
  EXPECT_EQ(front.FrontDialog()->windowTitle(), "Tarvo");
  EXPECT_EQ(Find<QLabel>("text")->text(), "EEProm updated! Please reset module to apply changes.");
  EXPECT_EQ(Find("icon")->accessibleName(), "information");
  EXPECT_EQ(front.FrontDialog()->findChildren<QPushButton*>().size(), 1);
}

TEST_F(Dialogs, AButtonAnswersTheBoxAndTakesItAway) {
  Ask({"Yes", "No"});
  Click("No");
  EXPECT_EQ(answer, "No");
  EXPECT_EQ(front.FrontDialog(), nullptr);
}

TEST_F(Dialogs, EnterAnswersTheButtonWithTheFocus) {
  Ask({"Yes", "No"});
  ASSERT_TRUE(QTest::qWaitForWindowActive(front.FrontDialog()));
  EXPECT_EQ(QApplication::focusWidget(), Find("Yes"));
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  Settle();
  EXPECT_EQ(answer, "No");
}

TEST_F(Dialogs, EscapeAndTheCloseBoxAnswerCancel) {
  Ask({"Yes", "No", "Cancel"});
  QTest::keyClick(front.FrontDialog(), Qt::Key_Escape);
  Settle();
  EXPECT_EQ(answer, "Cancel");
  answer.clear();
  Ask({"Yes", "No", "Cancel"});
  front.FrontDialog()->close();
  Settle();
  EXPECT_EQ(answer, "Cancel");
  EXPECT_EQ(front.FrontDialog(), nullptr);
}

TEST_F(Dialogs, AModalWindowHasTheFocusInItsFieldWithTheTextSelected) {
  ShowDialog("17");
  ASSERT_TRUE(QTest::qWaitForWindowActive(front.FrontDialog()));
  EXPECT_EQ(front.FrontDialog()->objectName(), "Dialog");
  EXPECT_EQ(front.FrontDialog()->windowTitle(), "Change Value");
  EXPECT_EQ(QApplication::focusWidget(), Find("Text1"));
  EXPECT_EQ(Find<QLineEdit>("Text1")->selectedText(), "17");
}

TEST_F(Dialogs, APanelInADialogShowsItsText) {
  DialogWithPanel working(screen);
  page.Spawn(screen.ShowModal(working));
  Settle();
  working.progress.Text = "Try to Read value";
  Settle();
  auto* shown = Find<desktop::TextLabel>("StatusBar1(1)");
  ASSERT_NE(shown, nullptr);
  EXPECT_EQ(shown->Text(), "Try to Read value");
  EXPECT_TRUE(shown->isVisible());
  EXPECT_GE(shown->width(), shown->sizeHint().width());
  front.FrontDialog()->close();
  Settle();
}

TEST_F(Dialogs, EnterInTheFieldIsOK) {
  ShowDialog("17");
  QTest::keyClicks(Find("Text1"), "42");
  Press("Text1", Qt::Key_Return);
  EXPECT_EQ(dialog.accepted, "42");
  EXPECT_EQ(front.FrontDialog(), nullptr);
}

TEST_F(Dialogs, EscapeLeavesAModalWindow) {
  ShowDialog("17");
  Press("Text1", Qt::Key_Escape);
  EXPECT_EQ(front.FrontDialog(), nullptr);
  ShowDialog("17");
  Press("Cancel", Qt::Key_Escape);
  EXPECT_EQ(front.FrontDialog(), nullptr);
  ShowDialog("17");
  front.FrontDialog()->close();
  Settle();
  EXPECT_EQ(front.FrontDialog(), nullptr);
  EXPECT_EQ(dialog.accepted, "");
}

TEST_F(Dialogs, WhatTheProgramPutsRightIsSelectedAndKeepsTheFocus) {
  ShowDialog("");
  ASSERT_TRUE(QTest::qWaitForWindowActive(front.FrontDialog()));
  QTest::keyClicks(Find("Text1"), "300");
  Click("OK");
  ASSERT_NE(front.FrontDialog(), nullptr);
  EXPECT_EQ(QApplication::focusWidget(), Find("Text1"));
  EXPECT_EQ(Find<QLineEdit>("Text1")->selectedText(), "254");
  Click("OK");
  EXPECT_EQ(dialog.accepted, "254");
}

TEST_F(Dialogs, AModalWindowOpensAnewWithFreshWidgets) {
  ShowDialog("1");
  Click("OK");
  ShowDialog("2");
  ASSERT_NE(Find<QLineEdit>("Text1"), nullptr);
  EXPECT_EQ(Find<QLineEdit>("Text1")->text(), "2");
  dialog.Text1.Text = "3";
  Settle();
  EXPECT_EQ(Find<QLineEdit>("Text1")->text(), "3");
}

TEST_F(Dialogs, ABoxOverAModalWindowLeavesItStanding) {
  ShowDialog("17");
  QDialog* window = front.FrontDialog();
  Ask({"OK"});
  EXPECT_NE(front.FrontDialog(), window);
  EXPECT_TRUE(window->isVisible());
  window->close();
  Settle();
  EXPECT_TRUE(window->isVisible());
  Click("OK");
  EXPECT_EQ(answer, "OK");
  EXPECT_EQ(front.FrontDialog(), window);
}

TEST_F(Dialogs, AModalWindowThatGoesUnderABoxTakesOnlyItself) {
  ShowDialog("17");
  Ask({"Yes", "No"});
  screen.CloseModal(dialog);
  Settle();
  ASSERT_NE(front.FrontDialog(), nullptr);
  EXPECT_TRUE(front.FrontDialog()->isVisible());
  EXPECT_EQ(front.FrontDialog()->objectName(), "MsgBox");
  Click("Yes");
  EXPECT_EQ(answer, "Yes");
}

TEST_F(Dialogs, AFileDialogGivesThePathChosen) {
  const QTemporaryDir folder;
  page.Spawn(AskFileTask(true));
  Settle();
  auto* files = qobject_cast<QFileDialog*>(front.FrontDialog());
  ASSERT_NE(files, nullptr);
  EXPECT_EQ(files->acceptMode(), QFileDialog::AcceptSave);
  const QString chosen = QDir(folder.path()).filePath("belk.txt");
  auto* name = files->findChild<QLineEdit*>("fileNameEdit");
  ASSERT_NE(name, nullptr);
  name->setText(chosen);
  QTest::keyClick(name, Qt::Key_Return);
  Settle();
  ASSERT_TRUE(pathTold);
  EXPECT_EQ(path, chosen.toStdString());
  EXPECT_EQ(front.FrontDialog(), nullptr);
}

TEST_F(Dialogs, AFileDialogThatIsCancelledGivesNoPath) {
  page.Spawn(AskFileTask(false));
  Settle();
  ASSERT_NE(front.FrontDialog(), nullptr);
  front.FrontDialog()->reject();
  Settle();
  EXPECT_TRUE(pathTold);
  EXPECT_EQ(path, std::nullopt);
  EXPECT_EQ(front.FrontDialog(), nullptr);
}

TEST(FileFilters, PairsBecomeTheToolkitsFilters) {
  EXPECT_EQ(desktop::NameFilters("All Files (*.txt) | *.txt"), "All Files (*.txt)");
  EXPECT_EQ(desktop::NameFilters("All Files (*.txt) | *.txt|Text Files (*.txt) | *.txt"),
            "All Files (*.txt);;Text Files (*.txt)");
  EXPECT_EQ(desktop::NameFilters("Texts|*.txt;*.cfg"), "Texts (*.txt *.cfg)");
}

}  // namespace
}  // namespace tarvo::test
