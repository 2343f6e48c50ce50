#pragma once

#include <QBasicTimer>
#include <QColor>
#include <QPixmap>
#include <QWidget>
#include <array>

namespace tarvo::desktop {

/// The activity indicator: a gear that turns while something goes on.
class Gear : public QWidget {
 public:
  explicit Gear(QWidget* parent);

  void SetTurning(bool turning);
  /// Stands as at the start of its turn, so that two pictures of the same state are the same.
  void Rewind();

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  /// So many steps lead from one tooth to the next, where the picture is the same again.
  static constexpr int kSteps = 6;

  void StartOrStop();
  /// Draws the steps anew when size or colour is another than before.
  void DrawSteps();

  std::array<QPixmap, kSteps> steps_;
  QColor tone_;
  QBasicTimer timer_;
  bool turning_ = false;
  int step_ = 0;
};

}  // namespace tarvo::desktop
