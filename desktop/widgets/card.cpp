#include "desktop/widgets/card.h"

#include <QPainter>

#include "desktop/colours.h"
#include "desktop/widgets/measure.h"

namespace tarvo::desktop {

void Card::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(Mix(palette().color(QPalette::Window), LineTone(palette()), 0.7), 1));
  painter.setBrush(CardGround(palette()));
  const double radius = Em(*this, 0.45);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

Rule::Rule(Qt::Orientation orientation, QWidget* parent) : QWidget(parent) {
  if (orientation == Qt::Horizontal) {
    setFixedHeight(1);
  } else {
    setFixedWidth(1);
  }
}

void Rule::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(rect(), LineTone(palette()));
}

}  // namespace tarvo::desktop
