#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollArea>

#include "desktop/widgets/page_list.h"
#include "desktop/widgets/text_label.h"
#include "desktop/widgets/value_box.h"
#include "support/desktop_bench.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Gestures : public DesktopBench {
 protected:
  static core::Task<> Clear(view::CheckBox& box) {
    box.Value = 0;
    co_return;
  }
};

TEST_F(Gestures, EveryControlOfTheArrangementHasAWidgetOfItsName) {
  for (const view::Control* control : view::ReadingOrder(page.Arrangement())) {
    const QWidget* widget = Find(control->Name());
    ASSERT_NE(widget, nullptr) << control->Name();
    EXPECT_TRUE(widget->isVisible()) << control->Name();
    EXPECT_NE(widget->accessibleName(), "") << control->Name();
  }
}

TEST_F(Gestures, AClickOnAButtonRunsItsHandler) {
  Click("Start");
  EXPECT_THAT(page.written, ElementsAre("Start"));
}

TEST_F(Gestures, EnterAndSpaceClickAButton) {
  Press("Start", Qt::Key_Return);
  Press("Start", Qt::Key_Space);
  EXPECT_THAT(page.written, ElementsAre("Start", "Start"));
}

TEST_F(Gestures, AMnemonicClicksItsButton) {
  ASSERT_TRUE(QTest::qWaitForWindowActive(front.Window()));
  QTest::keyClick(front.Window(), Qt::Key_T, Qt::AltModifier);
  // A button that is clicked by its key shows for a moment that it is pressed.
  EXPECT_TRUE(QTest::qWaitFor([this] { return !page.written.empty(); }, 2000));
  EXPECT_THAT(page.written, ElementsAre("Stop"));
}

TEST_F(Gestures, AValueTakesClickEnterAndSpace) {
  Click("Tot(3)");
  Press("Tot(3)", Qt::Key_Return);
  Press("Filter", Qt::Key_Space);
  EXPECT_THAT(page.written, ElementsAre("Tot(3)", "Tot(3)", "Filter"));
}

TEST_F(Gestures, AMarkWithAHandlerTakesClickAndKey) {
  Click("Over(1)");
  Press("Over(1)", Qt::Key_Space);
  EXPECT_THAT(page.written, ElementsAre("Over(1)", "Over(1)"));
}

TEST_F(Gestures, AMarkWithoutAHandlerTakesNeitherClickNorFocus) {
  Click("Stato(0)");
  EXPECT_THAT(page.written, IsEmpty());
  EXPECT_EQ(Find("Stato(0)")->focusPolicy(), Qt::NoFocus);
}

TEST_F(Gestures, AReleaseOutsideIsNoClick) {
  QWidget* value = Find("Tot(0)");
  QTest::mousePress(value, Qt::LeftButton);
  QTest::mouseRelease(value, Qt::LeftButton, Qt::NoModifier, QPoint(-20, -20));
  Settle();
  EXPECT_THAT(page.written, IsEmpty());
}

TEST_F(Gestures, ACheckBoxTogglesInTheViewAndShowsIt) {
  Click("Negate");
  EXPECT_THAT(page.written, ElementsAre("press Negate", "Negate"));
  EXPECT_EQ(page.Negate.Value(), 1);
  EXPECT_TRUE(Find<QCheckBox>("Negate")->isChecked());
}

TEST_F(Gestures, ACheckBoxShowsTheViewsValueNotItsOwn) {
  page.Negate.OnClick = [this] { return Clear(page.Negate); };
  Click("Negate");
  EXPECT_FALSE(Find<QCheckBox>("Negate")->isChecked());
  Find<QCheckBox>("Negate")->toggle();
  Settle();
  EXPECT_FALSE(Find<QCheckBox>("Negate")->isChecked());
}

TEST_F(Gestures, ARefusedClickLeavesTheBoxAsItIs) {
  screen.Guard = [](const view::Control&) { return std::string("locked"); };
  Click("Negate");
  Click("Odd");
  EXPECT_FALSE(Find<QCheckBox>("Negate")->isChecked());
  EXPECT_FALSE(Find<QRadioButton>("Odd")->isChecked());
  EXPECT_THAT(page.written, IsEmpty());
}

TEST_F(Gestures, AProgramChangeOfABoxIsShownAndRunsNothing) {
  page.Negate.Value = 1;
  Settle();
  EXPECT_TRUE(Find<QCheckBox>("Negate")->isChecked());
  EXPECT_EQ(page.Negate.Value(), 1);
  EXPECT_THAT(page.written, IsEmpty());
}

TEST_F(Gestures, AnOptionExcludesTheOthersByTheViewsGroup) {
  Click("Even");
  Click("Odd");
  Click("Odd");
  EXPECT_THAT(page.written, ElementsAre("Even", "Odd", "Odd"));
  EXPECT_FALSE(Find<QRadioButton>("Even")->isChecked());
  EXPECT_TRUE(Find<QRadioButton>("Odd")->isChecked());
}

TEST_F(Gestures, AChoiceInAListReachesTheView) {
  page.Baud.ListIndex = 1;
  Settle();
  EXPECT_EQ(Find<QComboBox>("Baud")->currentText(), "9600");
  Press("Baud", Qt::Key_Down);
  EXPECT_EQ(page.Baud.ListIndex(), 2);
  EXPECT_THAT(page.written, ElementsAre("Baud 1", "Baud 2"));
}

TEST_F(Gestures, ARefusedChoiceShowsWhatHeldBefore) {
  page.Baud.ListIndex = 1;
  Settle();
  screen.Guard = [](const view::Control&) { return std::string("locked"); };
  Press("Baud", Qt::Key_Down);
  EXPECT_EQ(Find<QComboBox>("Baud")->currentIndex(), 1);
  EXPECT_EQ(page.Baud.ListIndex(), 1);
}

TEST_F(Gestures, AListFollowsTheViewsEntries) {
  page.Baud.ListIndex = 4;
  page.Baud.RemoveItem(0);
  Settle();
  EXPECT_EQ(Find<QComboBox>("Baud")->count(), 4);
  EXPECT_EQ(Find<QComboBox>("Baud")->currentText(), "57600");
  page.Baud.ListIndex = -1;
  Settle();
  EXPECT_EQ(Find<QComboBox>("Baud")->currentText(), "");
}

TEST_F(Gestures, AWheelOverAListChangesNothing) {
  page.Baud.ListIndex = 1;
  Settle();
  QWidget* list = Find("Baud");
  list->setFocus();
  QWheelEvent wheel(QPointF(5, 5), list->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -240), Qt::NoButton, Qt::NoModifier,
                    Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(list, &wheel);
  Settle();
  EXPECT_EQ(page.Baud.ListIndex(), 1);
}

TEST_F(Gestures, TypedTextIsTheViewsText) {
  QTest::keyClicks(Find("Entry"), "12.4");
  Settle();
  EXPECT_EQ(page.Entry.Text(), "12.4");
  Press("Entry", Qt::Key_Return);
  Press("Entry", Qt::Key_Escape);
  EXPECT_THAT(page.written, ElementsAre("key 13", "key 27"));
}

TEST_F(Gestures, AFieldTellsWhenTheFocusLeavesIt) {
  ASSERT_TRUE(QTest::qWaitForWindowActive(front.Window()));
  Find("Entry")->setFocus();
  Find("Filter")->setFocus();
  Settle();
  EXPECT_THAT(page.written, ElementsAre("leave Entry"));
}

TEST_F(Gestures, ADisabledControlTakesNothing) {
  page.Start.Enabled = false;
  page.Tot[0].Enabled = false;
  page.Negate.Enabled = false;
  Settle();
  Click("Start");
  Click("Tot(0)");
  Click("Negate");
  EXPECT_THAT(page.written, IsEmpty());
  EXPECT_EQ(page.Negate.Value(), 0);
}

TEST_F(Gestures, ACoveredControlTakesNothing) {
  page.Spawn(screen.ShowModal(dialog));
  Settle();
  Click("Start");
  Click("Tot(0)");
  Click("Negate");
  EXPECT_THAT(page.written, IsEmpty());
  EXPECT_FALSE(Find<QCheckBox>("Negate")->isChecked());
}

TEST_F(Gestures, EscapeOnThePageIsThePagesKey) {
  Press("Tot(0)", Qt::Key_Escape);
  EXPECT_EQ(page.keysSeen, 1);
}

TEST_F(Gestures, AHiddenControlLeavesItsPlaceEmpty) {
  const QRect before = Find("Even")->geometry();
  const QRect bar = Find("Bar(2)")->geometry();
  page.Fast.Visible = false;
  page.Over[2].Visible = false;
  Settle();
  EXPECT_FALSE(Find("Fast")->isVisible());
  EXPECT_EQ(Find("Even")->geometry(), before);
  EXPECT_EQ(Find("Bar(2)")->geometry(), bar);
  page.Fast.Visible = true;
  Settle();
  EXPECT_TRUE(Find("Fast")->isVisible());
}

TEST_F(Gestures, AHeadingGoesComesAndGreysWithItsField) {
  const auto heading = [this] {
    for (const auto* label : front.Window()->findChildren<QWidget*>()) {
      const auto* text = dynamic_cast<const desktop::TextLabel*>(label);
      if (text != nullptr && text->Text() == "Input Filter") return text;
    }
    return static_cast<const desktop::TextLabel*>(nullptr);
  };
  ASSERT_NE(heading(), nullptr);
  EXPECT_TRUE(heading()->isVisible());
  page.Filter.Visible = false;
  Settle();
  EXPECT_FALSE(heading()->isVisible());
  page.Filter.Visible = true;
  page.Filter.Enabled = false;
  Settle();
  EXPECT_TRUE(heading()->isVisible());
  EXPECT_FALSE(heading()->isEnabled());
}

TEST_F(Gestures, MarksSayOnOrOffAndMetersTheirPercent) {
  page.Over[0].BackColor = view::kRed;
  page.Stato[1].Picture = 2;
  page.Bar[0].SetPercent(28);
  Settle();
  EXPECT_EQ(Find("Over(0)")->accessibleName(), "Input 1 Overflow, on");
  EXPECT_EQ(Find("Over(1)")->accessibleName(), "Input 2 Overflow, off");
  EXPECT_EQ(Find("Stato(1)")->accessibleName(), "Input 2, on");
  EXPECT_EQ(Find("Bar(0)")->accessibleName(), "Input 1, 28 %");
  EXPECT_EQ(Find("Bar(0)")->toolTip(), "28 %");
  EXPECT_EQ(Find("Tot(0)")->toolTip(), "40003 - Counter");
}

TEST_F(Gestures, ControlsAreCalledByWhatStandsBesideThem) {
  page.Tot[3].Caption = "402";
  page.Negate.Value = 1;
  page.Odd.Value = true;
  page.Baud.ListIndex = 1;
  page.Message.Caption = "OK";
  Settle();
  const auto called = [this](const char* name) { return Find(name)->accessibleName(); };
  EXPECT_EQ(called("Tot(3)"), "Input 4 Counter, 402");
  EXPECT_EQ(called("Filter"), "Input Filter, 20");
  EXPECT_EQ(called("Baud"), "Module Baud Rate, 9600");
  EXPECT_EQ(called("Entry"), "Entry");
  EXPECT_EQ(called("Negate"), "Negate Inputs, on");
  EXPECT_EQ(called("Even"), "Even, off");
  EXPECT_EQ(called("Odd"), "Odd, on");
  EXPECT_EQ(called("Start"), "Start");
  EXPECT_EQ(called("Gears"), "Activity, off");
  EXPECT_EQ(called("Message"), "OK");
  EXPECT_EQ(called("labBelk"), "Belk");
  Click("labBelk");
  EXPECT_EQ(called("labBelk"), "Belk, selected");
}

TEST_F(Gestures, AFieldWithoutHeadingIsCalledLikeItsWindow) {
  page.Spawn(screen.ShowModal(dialog));
  Settle();
  EXPECT_EQ(Find("Text1")->accessibleName(), "Change Value");
}

TEST_F(Gestures, AHandPointsAtWhatAClickEdits) {
  for (const char* name : {"Tot(0)", "Filter", "Over(0)", "labBelk"}) {
    EXPECT_EQ(Find(name)->cursor().shape(), Qt::PointingHandCursor) << name;
  }
  for (const char* name : {"Stato(0)", "Bar(0)", "Firmware"}) {
    EXPECT_EQ(Find(name)->cursor().shape(), Qt::ArrowCursor) << name;
  }
}

TEST_F(Gestures, TabGoesInReadingOrder) {
  std::vector<std::string> wanted;
  for (const view::Control* control : view::ReadingOrder(page.Arrangement())) {
    if (Find(control->Name())->focusPolicy() != Qt::NoFocus) wanted.push_back(control->Name());
  }
  ASSERT_GT(wanted.size(), 15U);

  std::vector<std::string> walked;
  const QWidget* first = Find(wanted.front());
  const QWidget* widget = first;
  do {
    const std::string name = widget->objectName().toStdString();
    if (page.Find(name) != nullptr && (widget->focusPolicy() & Qt::TabFocus) != 0) walked.push_back(name);
    widget = widget->nextInFocusChain();
  } while (widget != first);
  EXPECT_EQ(walked, wanted);
}

TEST_F(Gestures, TabReallyWalksFromTheBarToThePage) {
  ASSERT_TRUE(QTest::qWaitForWindowActive(front.Window()));
  Find("AutoSearch")->setFocus();
  std::vector<std::string> walked;
  for (int i = 0; i < 4; ++i) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    walked.push_back(QApplication::focusWidget()->objectName().toStdString());
  }
  EXPECT_THAT(walked, ElementsAre("labHome", "Start", "Stop", "Tot(0)"));
}

class MainFrame : public DesktopBench {};

TEST_F(MainFrame, AMenuItemIsClickedThroughTheView) {
  Find<QAction>("Exit")->trigger();
  EXPECT_EQ(main.clicks, 1);
  EXPECT_EQ(Find<QAction>("File")->text(), "&File");
}

TEST_F(MainFrame, ACheckedItemShowsTheViewsValueNotItsOwn) {
  main.Checked.Value = 1;
  Settle();
  auto* item = Find<QAction>("Checked");
  EXPECT_TRUE(item->isChecked());
  item->trigger();
  EXPECT_EQ(main.clicks, 1);
  EXPECT_TRUE(item->isChecked());
  main.Checked.Value = 0;
  Settle();
  EXPECT_FALSE(item->isChecked());
}

TEST_F(MainFrame, ADisabledMenuItemIsGrey) {
  main.Exit.Enabled = false;
  Settle();
  EXPECT_FALSE(Find<QAction>("Exit")->isEnabled());
}

TEST_F(MainFrame, ThePageListGoesByArrowsAndEnter) {
  ASSERT_TRUE(QTest::qWaitForWindowActive(front.Window()));
  main.labels[1].Visible = false;
  Settle();
  Find("labHome")->setFocus();
  Press("labHome", Qt::Key_Down);
  EXPECT_EQ(QApplication::focusWidget(), Find("labBelk"));
  Press("labBelk", Qt::Key_Return);
  EXPECT_EQ(main.clicks, 1);
  EXPECT_TRUE(Find<desktop::PageLabel>("labBelk")->Selected());
  EXPECT_FALSE(Find<desktop::PageLabel>("labHome")->Selected());
  Press("labBelk", Qt::Key_Up);
  EXPECT_EQ(QApplication::focusWidget(), Find("labHome"));
}

TEST_F(MainFrame, TabStopsOnceInThePageListAtThePageShown) {
  Click("labBelk");
  front.Window()->setFocus();
  Settle();
  std::vector<std::string> stops;
  for (const view::Label& label : main.labels) {
    if ((Find(label.Name())->focusPolicy() & Qt::TabFocus) != 0) stops.push_back(label.Name());
  }
  EXPECT_THAT(stops, ElementsAre("labBelk"));
}

TEST_F(MainFrame, ThePanelsShowTheirTexts) {
  main.StatusBar1[1].Text = "Connected to Belk, COM1,9600,n,8,1  Module Address:1";
  Settle();
  EXPECT_EQ(Find<desktop::TextLabel>("StatusBar1(2)")->Text(), "Connected to Belk, COM1,9600,n,8,1  Module Address:1");
  EXPECT_EQ(Find<desktop::TextLabel>("StatusBar1(1)")->Text(), "");
}

TEST_F(MainFrame, ALongPanelTextDoesNotWidenTheWindow) {
  const int before = front.Window()->minimumSizeHint().width();
  main.StatusBar1[0].Text = std::string(500, 'x');
  Settle();
  EXPECT_EQ(front.Window()->minimumSizeHint().width(), before);
}

TEST_F(MainFrame, TheTitleIsTheWindowsCaption) {
  EXPECT_EQ(front.Window()->windowTitle(), "Tarvo 1.0.0");
}

TEST_F(MainFrame, TheWindowHasTheProgramsIcon) {
  for (const int side : {16, 32, 64}) {
    EXPECT_EQ(front.Window()->windowIcon().pixmap(side, side).size(), QSize(side, side));
  }
}

TEST_F(MainFrame, TheWindowStaysWhenTheProgramRefusesToClose) {
  main.mayClose = false;
  front.Window()->close();
  Settle();
  EXPECT_TRUE(front.Window()->isVisible());
  EXPECT_FALSE(main.ended);
}

TEST_F(MainFrame, TheWindowClosesOnlyWhenTheProgramHasEnded) {
  EXPECT_FALSE(front.Window()->close());
  EXPECT_TRUE(main.ended);
  EXPECT_TRUE(front.Window()->close());
  EXPECT_FALSE(front.Window()->isVisible());
}

TEST_F(MainFrame, TheWindowIsWholeAtItsSmallestSize) {
  const QSize least = front.Window()->minimumSizeHint();
  EXPECT_LE(least.width(), 1024);
  EXPECT_LE(least.height(), 640);
  front.Window()->resize(1024, 640);
  Settle();
  const auto* area = Find<QScrollArea>("Page");
  ASSERT_NE(area, nullptr);
  EXPECT_LE(area->widget()->width(), area->viewport()->width());
  EXPECT_LE(area->widget()->height(), area->viewport()->height());
}

TEST_F(MainFrame, APageTakesTheWidthItCanUseAndNoMore) {
  front.Window()->resize(2400, 900);
  Settle();
  const auto* area = Find<QScrollArea>("Page");
  EXPECT_LT(area->widget()->width(), area->viewport()->width());
}

TEST_F(MainFrame, AnHourglassIsAWaitCursor) {
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  screen.SetMousePointer(view::Screen::Pointer::kHourglass);
  Settle();
  ASSERT_NE(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  screen.SetMousePointer(view::Screen::Pointer::kDefault);
  Settle();
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

}  // namespace
}  // namespace tarvo::test
