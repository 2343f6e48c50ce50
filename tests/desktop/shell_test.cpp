// The shell's own windows, bar, list, menus and status bar, in the whole program.

#include <gmock/gmock.h>

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QHelpEvent>
#include <QMenu>
#include <QMenuBar>
#include <QToolTip>
#include <vector>

#include "desktop/colours.h"
#include "desktop/widgets/gear_group.h"
#include "desktop/widgets/page_list.h"
#include "desktop/widgets/text_label.h"
#include "support/look_bench.h"
#include "support/shell_bench.h"

namespace tarvo::test {
namespace {

using core::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kRefusal[] = "You may not use /dev/ttyUSB0. Run: sudo usermod -aG dialout anna - then log in again.";
constexpr char kConnected[] = "Connected to Belk, COM1,9600,n,8,1  Module Address:1";

class Shell : public ShellBench {
 protected:
  Shell() { EXPECT_TRUE(QTest::qWaitForWindowActive(front.Window())); }

  void Choose(const char* action) {
    Find<QAction>(action)->trigger();
    Settle();
  }
  std::string Shown(const char* label) { return Find<desktop::TextLabel>(label)->Text().toStdString(); }
  /// Begins a search that finds a line without a module.
  void Search() {
    module.Address = 9;
    Tap("buttCheckDevice");
  }
};

// Home.

TEST_F(Shell, HomeShowsTheGearsAndTheRelease) {
  EXPECT_NE(dynamic_cast<desktop::GearGroup*>(Find("Picture1")), nullptr);
  EXPECT_EQ(Find("Picture1")->focusPolicy(), Qt::NoFocus);
  EXPECT_EQ(Shown("Label2"), "Release: 1.0.0");
}

TEST_F(Shell, EachPhaseTurnsTheGears) {
  std::vector<QImage> pictures;
  for (int phase = 1; phase <= 5; ++phase) {
    Part<view::ImageBox>("Picture1").Picture = phase;
    Settle();
    const QImage picture = Find("Picture1")->grab().toImage();
    EXPECT_THAT(pictures, testing::Not(testing::Contains(picture))) << phase;
    pictures.push_back(picture);
  }
  Part<view::ImageBox>("Picture1").Picture = 1;
  Settle();
  EXPECT_EQ(Find("Picture1")->grab().toImage(), pictures.front());
}

TEST(Gears, StandBackFromTheTextOnLightAndDark) {
  const Look look;
  for (const QPalette& palette : {desktop::LightPalette(), desktop::DarkPalette()}) {
    QApplication::setPalette(palette);
    desktop::GearGroup gears(nullptr);
    gears.resize(gears.sizeHint());
    const QImage picture = gears.grab().toImage();
    const QColor ground = palette.color(QPalette::Window);
    double most = 1;
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) most = std::max(most, Contrast(ground, picture.pixelColor(x, y)));
    }
    EXPECT_GE(most, 1.3);
    EXPECT_LE(most, 3.0);
  }
}

// About.

TEST_F(Shell, AboutHasTheNameInLargeLetters) {
  Choose("frmAbout");
  EXPECT_EQ(front.FrontDialog()->windowTitle(), "About Tarvo");
  const desktop::TextLabel* name = nullptr;
  for (const QWidget* widget : front.FrontDialog()->findChildren<QWidget*>()) {
    const auto* label = dynamic_cast<const desktop::TextLabel*>(widget);
    if (label != nullptr && label->Text() == "Tarvo") name = label;
  }
  ASSERT_NE(name, nullptr);
  EXPECT_GT(name->font().pointSizeF(), Find("lblVersion")->font().pointSizeF() * 1.3);
  EXPECT_EQ(Shown("lblTitle"), "Series Vesk setup tool");
  EXPECT_EQ(Shown("lblVersion"), "Version 1.0.0");
}

TEST_F(Shell, EnterEscapeOkAndTheCloseBoxLeaveAbout) {
  const std::vector<std::function<void()>> ways = {[this] { Key(Qt::Key_Return); }, [this] { Key(Qt::Key_Escape); },
                                                   [this] { Tap("cmdOK"); },
                                                   [this] {
                                                     front.FrontDialog()->close();
                                                     Settle();
                                                   }};
  for (const auto& way : ways) {
    Choose("frmAbout");
    ASSERT_TRUE(QTest::qWaitForWindowActive(front.FrontDialog()));
    EXPECT_EQ(Focus(), "cmdOK");
    way();
    EXPECT_EQ(front.FrontDialog(), nullptr);
    ASSERT_TRUE(UntilNothingInFront());
    EXPECT_EQ(Focus(), "LabHome");
  }
}

// The search's window.

TEST_F(Shell, TheSearchSaysWhatItTriesAndHowFarItIs) {
  Search();
  ASSERT_NE(front.FrontDialog(), nullptr);
  EXPECT_EQ(front.FrontDialog()->windowTitle(), "Tarvo  1.0.0");
  EXPECT_TRUE(front.FrontDialog()->isModal());
  EXPECT_THAT(Shown("Label1"), HasSubstr("ESC"));
  EXPECT_EQ(Shown("Label2"), "COM1, 38400,n,8,1");
  const QImage before = Find("Progress")->grab().toImage();
  Advance(milliseconds(2500));
  EXPECT_EQ(Shown("Label2"), "COM1, 9600,n,8,1");
  EXPECT_NE(Find("Progress")->grab().toImage(), before);
  EXPECT_EQ(Shown("StatusBar1(1)"), "Check if a device is on line...");
}

TEST_F(Shell, EscapeAndTheCloseBoxStopTheSearchWhoseWindowGoesAtItsEnd) {
  for (const bool byKey : {true, false}) {
    Search();
    Advance(milliseconds(100));
    if (byKey) {
      QTest::keyClick(front.FrontDialog(), Qt::Key_Escape);
    } else {
      front.FrontDialog()->close();
    }
    Settle();
    ASSERT_NE(front.FrontDialog(), nullptr);
    EXPECT_TRUE(front.FrontDialog()->isVisible());
    EXPECT_EQ(Shown("Label2"), "Stopping...");
    Advance(milliseconds(2500));
    EXPECT_EQ(front.FrontDialog(), nullptr);
    EXPECT_EQ(Shown("StatusBar1(2)"), "No devices on line");
  }
}

TEST_F(Shell, NothingBehindTheSearchTakesAClick) {
  Search();
  const int autoScan = State().AutoScan;
  for (const char* name : {"LabPCSetup", "CheckEnableCheckConnection", "buttCheckDevice"}) {
    ClickOn(front.Window()->findChild<QWidget*>(name));
  }
  for (const char* name : {"menuEnableCheckConnection", "frmAbout", "ExitMNU"}) Choose(name);
  front.Window()->close();
  Settle();
  EXPECT_EQ(State().AutoScan, autoScan);
  EXPECT_EQ(Page().Name(), "Home");
  EXPECT_EQ(WindowInFront(), "frmKeyb");
  EXPECT_FALSE(program.Ended());
}

TEST_F(Shell, TheWindowBehindTheSearchKeepsPaintingUnderAnHourglass) {
  Search();
  ASSERT_NE(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  QTest::qWait(60);
  class : public QObject {
   public:
    int paints = 0;

   protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
      if (event->type() == QEvent::Paint) ++paints;
      return false;
    }
  } counter;
  Find("StatusBar1(1)")->installEventFilter(&counter);
  Part<view::Panel>("StatusBar1(1)").Text = "something else";
  Settle();
  EXPECT_TRUE(QTest::qWaitFor([&] { return counter.paints > 0; }, 2000));
  Key(Qt::Key_Escape);
  ASSERT_TRUE(UntilNothingInFront());
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

// Focus.

TEST_F(Shell, TheKeyboardBeginsAtThePageList) {
  EXPECT_EQ(Focus(), "LabHome");
}

TEST(ShellStart, TheKeyboardIsAtThePageFoundAfterTheFirstSearch) {
  ShellBench bench("TRUE");
  bench.module[40001] = 0x0103;
  ASSERT_EQ(bench.front.FrontDialog()->objectName(), "frmKeyb");
  ASSERT_TRUE(bench.UntilNothingInFront());
  EXPECT_EQ(bench.Focus(), "labBelk");
}

TEST_F(Shell, AfterASearchTheKeyboardIsWhereItWasBefore) {
  Find("buttCheckDevice")->setFocus();
  Search();
  ASSERT_TRUE(UntilNothingInFront());
  EXPECT_EQ(Focus(), "buttCheckDevice");
}

TEST_F(Shell, TheKeyboardGoesOnFromStartToStop) {
  module[40001] = 0x0103;
  Tap("labBelk");
  Find("StartBelk")->setFocus();
  Key(Qt::Key_Space);
  Advance(milliseconds(2000));
  EXPECT_EQ(front.FrontDialog(), nullptr);
  EXPECT_FALSE(Find("StartBelk")->isEnabled());
  EXPECT_EQ(Focus(), "StopBelk");
}

TEST_F(Shell, AMenuThatChangesThePageTakesTheListsKeyboardAlong) {
  Choose("MenuPCSetup");
  EXPECT_EQ(Focus(), "LabPCSetup");
  Choose("MenuBelk");
  EXPECT_EQ(Focus(), "labBelk");
}

TEST_F(Shell, TabGoesFromTheBarToTheListToThePageToItsFoot) {
  Tap("LabPCSetup");
  Find("cbSelectDevice")->setFocus();
  std::vector<std::string> walked;
  for (int i = 0; i < 5; ++i) {
    Key(Qt::Key_Tab);
    walked.push_back(Focus());
  }
  EXPECT_THAT(walked,
              ElementsAre("buttCheckDevice", "Command1", "CheckEnableCheckConnection", "LabPCSetup", "SetCOM1"));
}

// Page list.

TEST_F(Shell, ArrowsHomeAndEndMoveInThePageListAndEnterOpens) {
  Key(Qt::Key_Down);
  EXPECT_EQ(Focus(), "LabPCSetup");
  Key(Qt::Key_Home);
  EXPECT_EQ(Focus(), "LabHome");
  Key(Qt::Key_Up);
  EXPECT_EQ(Focus(), "LabHome");
  Key(Qt::Key_End);
  const std::string last = Focus();
  Key(Qt::Key_Down);
  EXPECT_EQ(Focus(), last);
  EXPECT_NE(last, "LabHome");
  Key(Qt::Key_Home);
  Key(Qt::Key_Down);
  Key(Qt::Key_Return);
  EXPECT_EQ(Page().Name(), "PCsetup");
  EXPECT_TRUE(Find<desktop::PageLabel>("LabPCSetup")->Selected());
}

TEST_F(Shell, AFamilysLabelsComeAndGo) {
  QWidget* label = Find("labBelk");
  auto* family = Find<QComboBox>("cbSelectDevice");
  EXPECT_TRUE(label->isVisible());
  family->setFocus();
  Key(Qt::Key_Down);
  EXPECT_FALSE(label->isVisible());
  EXPECT_TRUE(Find("LabHome")->isVisible());
  Key(Qt::Key_Up);
  EXPECT_TRUE(label->isVisible());
}

// Menus.

TEST_F(Shell, F10OpensTheFirstMenu) {
  Key(Qt::Key_F10);
  ASSERT_NE(QApplication::activePopupWidget(), nullptr);
  EXPECT_EQ(QApplication::activePopupWidget(), Find<QAction>("FileMNU")->menu());
  QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
}

TEST_F(Shell, TheMenusOpenByTheirLetters) {
  const std::vector<std::pair<Qt::Key, const char*>> letters = {
      {Qt::Key_F, "FileMNU"}, {Qt::Key_O, "MenuOptions"}, {Qt::Key_H, "HelpMNU"}};
  for (const auto& [letter, name] : letters) {
    Key(letter, Qt::AltModifier);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr) << name;
    EXPECT_EQ(QApplication::activePopupWidget(), Find<QAction>(name)->menu());
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    Settle();
  }
}

TEST_F(Shell, TheCheckMarkInTheMenuFollowsTheSwitch) {
  auto* item = Find<QAction>("menuEnableCheckConnection");
  EXPECT_FALSE(item->isChecked());
  Tap("CheckEnableCheckConnection");
  EXPECT_EQ(State().AutoScan, 1);
  EXPECT_TRUE(item->isChecked());
  Choose("menuEnableCheckConnection");
  EXPECT_EQ(State().AutoScan, 0);
  EXPECT_FALSE(item->isChecked());
}

TEST_F(Shell, WhatLeadsAwayIsDisabledWhileASessionRuns) {
  module[40001] = 0x0103;
  Tap("labBelk");
  Tap("StartBelk");
  Advance(milliseconds(2000));
  for (const char* name : {"MenuHome", "MenuPCSetup", "MenuBelk", "mnuCheckconnection"}) {
    EXPECT_FALSE(Find<QAction>(name)->isEnabled()) << name;
  }
  for (const char* name : {"LabHome", "LabPCSetup", "labBelk", "cbSelectDevice", "buttCheckDevice"}) {
    EXPECT_FALSE(Find(name)->isEnabled()) << name;
  }
  EXPECT_TRUE(Find<QAction>("frmAbout")->isEnabled());
}

// Status bar.

TEST_F(Shell, ARefusalIsWholeBesideTheConnectionLine) {
  front.Window()->resize(1024, 640);
  Part<view::Panel>("StatusBar1(1)").Text = kRefusal;
  Part<view::Panel>("StatusBar1(2)").Text = kConnected;
  Settle();
  for (const char* name : {"StatusBar1(1)", "StatusBar1(2)"}) {
    EXPECT_GE(Find(name)->width(), Find(name)->sizeHint().width()) << name;
  }
  EXPECT_GT(Find("StatusBar1(2)")->x(), Find("StatusBar1(1)")->geometry().right());
}

TEST_F(Shell, InANarrowWindowTheSecondPanelKeepsBothEndsAndTellsAllInItsToolTip) {
  Part<view::Panel>("StatusBar1(1)").Text = kRefusal;
  Part<view::Panel>("StatusBar1(2)").Text = kConnected;
  front.Window()->resize(front.Window()->minimumSizeHint().width(), 640);
  Settle();
  QWidget* panel = Find("StatusBar1(2)");
  EXPECT_LT(panel->width(), panel->sizeHint().width());
  EXPECT_GE(panel->width(), front.Window()->width() / 4);
  EXPECT_LE(panel->mapTo(front.Window(), QPoint(panel->width(), 0)).x(), front.Window()->width());
  QHelpEvent asked(QEvent::ToolTip, QPoint(3, 3), panel->mapToGlobal(QPoint(3, 3)));
  QCoreApplication::sendEvent(panel, &asked);
  EXPECT_EQ(QToolTip::text().toStdString(), kConnected);
  QToolTip::hideText();
}

TEST_F(Shell, APanelGivesItsRoomBack) {
  Part<view::Panel>("StatusBar1(2)").Text = kConnected;
  Settle();
  const int before = Find("StatusBar1(2)")->width();
  Part<view::Panel>("StatusBar1(2)").Text = "Module Unknown";
  Settle();
  EXPECT_LT(Find("StatusBar1(2)")->width(), before);
  EXPECT_GE(Find("StatusBar1(2)")->width(), Find("StatusBar1(2)")->sizeHint().width());
}

// PCsetup.

class PcSetupWindow : public Shell {
 protected:
  PcSetupWindow() {
    ports.Connect(2, second_);
    Tap("LabPCSetup");
  }

 private:
  MemoryLine second_{scheduler};
};

TEST_F(PcSetupWindow, ItsLettersChoosePortAndParity) {
  // The toolkit shows a button pressed for a moment before it clicks it.
  const auto leadsTo = [this](Qt::Key key, const std::function<bool()>& done) {
    Key(key, Qt::AltModifier);
    return QTest::qWaitFor(done, 2000);
  };
  EXPECT_TRUE(leadsTo(Qt::Key_2, [this] { return State().PCPort == 2; }));
  EXPECT_TRUE(leadsTo(Qt::Key_1, [this] { return State().PCPort == 1; }));
  EXPECT_TRUE(leadsTo(Qt::Key_E, [this] { return State().PCSettings == "9600,e,8,1"; }));
  EXPECT_TRUE(leadsTo(Qt::Key_D, [this] { return State().PCSettings == "9600,o,8,1"; }));
  EXPECT_TRUE(leadsTo(Qt::Key_N, [this] { return State().PCSettings == "9600,n,8,1"; }));
}

TEST_F(PcSetupWindow, APortThatDoesNotOpenGreysItsDeviceToo) {
  for (const char* port : {"1", "2"}) {
    EXPECT_TRUE(Find(std::string("SetCOM") + port)->isEnabled());
    EXPECT_TRUE(Find(std::string("DeviceCOM") + port)->isEnabled());
  }
  for (const char* port : {"3", "4"}) {
    EXPECT_FALSE(Find(std::string("SetCOM") + port)->isEnabled());
    EXPECT_FALSE(Find(std::string("DeviceCOM") + port)->isEnabled());
  }
}

}  // namespace
}  // namespace tarvo::test
