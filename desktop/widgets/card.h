#pragma once

#include <QWidget>

namespace tarvo::desktop {

/// The ground of a frame: a rounded card.
class Card : public QWidget {
 public:
  using QWidget::QWidget;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// A thin line that parts two regions of the window.
class Rule : public QWidget {
 public:
  Rule(Qt::Orientation orientation, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace tarvo::desktop
