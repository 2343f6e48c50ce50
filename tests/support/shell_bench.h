#pragma once

#include <QApplication>
#include <string>

#include "desktop/front.h"
#include "support/program_fixture.h"
#include "support/window_hands.h"

namespace tarvo::test {

/// The whole program in its window, with a module in memory on COM1. Virtual time runs the program, the toolkit only
/// the window.
class ShellBench : public ProgramBench {
 public:
  explicit ShellBench(const char* autoScan = "FALSE") {
    ports.Connect(1, line);
    values.Keep("AUTOSCAN", autoScan);
    OpenProgram();
    front.Window()->activateWindow();
    Settle();
  }
  void TestBody() override {}

  using ProgramBench::At;
  using ProgramBench::module;
  using ProgramBench::program;

  /// Lets all that is due happen, in the program and in the window.
  void Settle() {
    scheduler.RunReady();
    // Layouts ask each other from the innermost outwards, a round each.
    constexpr int kRounds = 5;
    for (int round = 0; round < kRounds; ++round) QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  void Advance(core::Duration duration) {
    Run(duration);
    Settle();
  }
  /// Lets time go by until no search and no other dialog is in front; the window is the active one then, as a desktop
  /// would have it.
  bool UntilNothingInFront() {
    const bool done = RunUntil([this] { return NothingInFront(); });
    Settle();
    front.Window()->activateWindow();
    return done && QTest::qWaitForWindowActive(front.Window());
  }

  template <class Widget = QWidget>
  Widget* Find(const std::string& name) {
    return FindIn<Widget>(front, name);
  }
  template <class Control>
  Control& Part(const std::string& name) {
    return dynamic_cast<Control&>(At(name));
  }
  /// Clicks the widget of that name.
  void Tap(const std::string& name) {
    ASSERT_NE(Find(name), nullptr) << name;
    ClickOn(Find(name));
    Settle();
  }
  /// A key where the focus is, else in the window.
  void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* widget = QApplication::focusWidget();
    QTest::keyClick(widget == nullptr ? front.Window() : widget, key, modifiers);
    Settle();
  }
  std::string Focus() {
    const QWidget* widget = QApplication::focusWidget();
    return widget == nullptr ? std::string() : widget->objectName().toStdString();
  }

  desktop::Front front{program.GetScreen(), [this] { return program.Ended(); }};
};

}  // namespace tarvo::test
