#pragma once

#include <QWidget>

namespace tarvo::desktop {

/// The picture of three gears that mesh, in one of five phases. Drawn quietly, in tones between the window's ground and
/// its text.
class GearGroup : public QWidget {
 public:
  explicit GearGroup(QWidget* parent);

  /// From 1 to 5, each a fifth of a tooth further; the first follows the last without a jump. Another one is the first.
  void SetPhase(int phase);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  /// So many lines of text high, and as wide as the picture is then.
  QSize SizeOf(double height) const;

  int phase_ = 1;
};

}  // namespace tarvo::desktop
