#include "desktop/front.h"

#include <QApplication>
#include <QDialog>
#include <algorithm>
#include <utility>

#include "desktop/dialogs.h"

namespace tarvo::desktop {

Front::Front(view::Screen& screen, std::function<bool()> ended)
    : screen_(screen), ended_(std::move(ended)), faces_(screen), beeps_(screen.Beeps()) {
  subscription_ = screen_.Subscribe(*this);
  StageChanged();
}

Front::~Front() {
  if (hourglass_) QApplication::restoreOverrideCursor();
}

QDialog* Front::FrontDialog() const {
  return dialogs_.empty() ? nullptr : dialogs_.back().dialog.data();
}

void Front::ControlsChanged(std::span<view::Control* const> changed) {
  for (const view::Control* control : changed) faces_.Refresh(*control);
  if (window_ != nullptr) window_->SettleFocus();
}

void Front::StageChanged() {
  if (window_ != nullptr) {
    window_->ShowStage();
    window_->SettleFocus();
  } else if (screen_.Main() != nullptr) {
    window_ = std::make_unique<MainWindow>(screen_, faces_, *screen_.Main(), ended_);
    window_->SettleFocus();
    window_->show();
  }
  ShowDialogs();
  ShowPointer();
  if (std::exchange(beeps_, screen_.Beeps()) != screen_.Beeps()) QApplication::beep();
}

void Front::ShowDialogs() {
  const auto& modals = screen_.Modals();
  const auto gone = [&](const Standing& standing) {
    const bool stands =
        std::any_of(modals.begin(), modals.end(), [&](const auto& modal) { return modal->Id() == standing.id; });
    if (!stands && standing.dialog != nullptr) {
      standing.dialog->hide();
      // The gesture that closed it may have come from one of its own widgets.
      standing.dialog->deleteLater();
    }
    return !stands;
  };
  std::erase_if(dialogs_, gone);
  for (const auto& modal : modals) {
    const bool shown = std::any_of(dialogs_.begin(), dialogs_.end(),
                                   [&](const Standing& standing) { return standing.id == modal->Id(); });
    if (shown) continue;
    QDialog* dialog = MakeDialog(screen_, faces_, *modal, window_.get());
    dialogs_.push_back({modal->Id(), dialog});
    dialog->show();
  }
}

void Front::ShowPointer() {
  const bool hourglass = screen_.MousePointer() == view::Screen::Pointer::kHourglass;
  if (hourglass == hourglass_) return;
  hourglass_ = hourglass;
  if (hourglass) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

}  // namespace tarvo::desktop
