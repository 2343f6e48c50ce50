#pragma once

#include <QBasicTimer>
#include <QPainterPath>
#include <QWidget>

namespace tarvo::desktop {

/// The activity indicator: a gear that turns while something goes on.
class Gear : public QWidget {
 public:
  explicit Gear(QWidget* parent);

  void SetTurning(bool turning);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void StartOrStop();

  QPainterPath shape_;
  QBasicTimer timer_;
  bool turning_ = false;
  int step_ = 0;
};

}  // namespace tarvo::desktop
