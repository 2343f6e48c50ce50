#include "desktop/widgets/clickable.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <utility>

namespace tarvo::desktop {

Clickable::Clickable(QWidget* parent) : QWidget(parent) {}

void Clickable::TakeClicks(std::function<void()> onClick, std::function<void()> onEnter) {
  onClick_ = std::move(onClick);
  onEnter_ = std::move(onEnter);
  setFocusPolicy(Qt::StrongFocus);
  setCursor(Qt::PointingHandCursor);
  setAttribute(Qt::WA_Hover);
}

void Clickable::PaintFocus(QPainter& painter, const QRectF& around, double radius) const {
  if (!hasFocus()) return;
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(around.adjusted(1, 1, -1, -1), radius, radius);
}

void Clickable::mousePressEvent(QMouseEvent* event) {
  if (!onClick_ || event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
  pressed_ = true;
}

void Clickable::mouseReleaseEvent(QMouseEvent* event) {
  if (!onClick_ || event->button() != Qt::LeftButton) return QWidget::mouseReleaseEvent(event);
  if (std::exchange(pressed_, false) && rect().contains(event->position().toPoint())) onClick_();
}

void Clickable::keyPressEvent(QKeyEvent* event) {
  if (onClick_ && event->key() == Qt::Key_Space) {
    if (!event->isAutoRepeat()) onClick_();
  } else if (onEnter_ && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
    if (!event->isAutoRepeat()) onEnter_();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void Clickable::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange) updateGeometry();
  if (event->type() == QEvent::EnabledChange) pressed_ = false;
  QWidget::changeEvent(event);
}

}  // namespace tarvo::desktop
