#pragma once

#include <QWidget>

#include "view/screen.h"

namespace tarvo::desktop {

/// The sign beside a message box's text: told by its shape as well as by its colour.
class BoxIcon : public QWidget {
 public:
  BoxIcon(QWidget* parent, view::Icon icon);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  view::Icon icon_;
};

}  // namespace tarvo::desktop
