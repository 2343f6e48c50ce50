#pragma once

#include <QPointer>
#include <functional>
#include <memory>
#include <vector>

#include "desktop/faces.h"
#include "desktop/main_window.h"
#include "view/screen.h"

class QDialog;

namespace tarvo::desktop {

/// The desktop front of a screen: its main window, its modal things, its pointer and its beep. Shows the main window as
/// soon as there is one.
class Front final : public view::Watcher {
 public:
  /// `ended` tells whether the program has ended, so that the window may close.
  Front(view::Screen& screen, std::function<bool()> ended);
  ~Front();

  /// Null while the screen has no main window.
  MainWindow* Window() const { return window_.get(); }
  /// The dialog in front, null when there is none.
  QDialog* FrontDialog() const;

  void ControlsChanged(std::span<view::Control* const> changed) override;
  void StageChanged() override;

 private:
  struct Standing {
    int id = 0;
    QPointer<QDialog> dialog;
  };

  void ShowDialogs();
  void ShowPointer();

  view::Screen& screen_;
  std::function<bool()> ended_;
  Faces faces_;
  std::unique_ptr<MainWindow> window_;
  std::vector<Standing> dialogs_;
  int beeps_;
  bool hourglass_ = false;
  view::Screen::Subscription subscription_;
};

}  // namespace tarvo::desktop
