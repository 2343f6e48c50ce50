#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QTest>
#include <QWidget>
#include <string>

#include "core/virtual_scheduler.h"
#include "desktop/front.h"
#include "desktop/text.h"
#include "support/desktop_windows.h"
#include "support/window_hands.h"

namespace tarvo::test {

/// The test windows in a real main window. Virtual time runs the program, the toolkit only the window.
class DesktopBench : public testing::Test {
 public:
  DesktopBench() {
    screen.SetMain(&main);
    front.StageChanged();
    page.Spawn(Show());
    Settle();
  }

  /// Lets all that is due happen, in the program and in the window.
  void Settle() {
    scheduler.RunReady();
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  /// The widget of that name in the window or in the dialog in front; null when there is none.
  template <class Widget = QWidget>
  Widget* Find(const std::string& name) {
    return FindIn<Widget>(front, name);
  }

  void Click(const std::string& name) {
    QWidget* widget = Find(name);
    ASSERT_NE(widget, nullptr) << name;
    ClickOn(widget);
    Settle();
  }
  void Press(const std::string& name, Qt::Key key) {
    QWidget* widget = Find(name);
    ASSERT_NE(widget, nullptr) << name;
    QTest::keyClick(widget, key);
    Settle();
  }

  core::VirtualScheduler scheduler;
  view::Screen screen{scheduler};
  TestPage page{screen};
  TestDialog dialog{screen};
  TestMain main{screen, page};
  desktop::Front front{screen, [this] { return main.ended; }};

 private:
  core::Task<> Show() { co_await screen.ShowPage(&page); }
};

}  // namespace tarvo::test
