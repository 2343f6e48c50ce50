#pragma once

#include <QWidget>

#include "desktop/colours.h"

namespace tarvo::desktop {

/// A bar that grows from the left.
class MeterBar : public QWidget {
 public:
  explicit MeterBar(QWidget* parent);

  /// `share` of the width from 0 to 1; what is below 0 draws nothing.
  void SetShare(double share);
  void SetRole(Role role);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double share_ = 0;
  Role role_ = Role::kBar;
};

}  // namespace tarvo::desktop
