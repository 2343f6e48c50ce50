#include "desktop/widgets/gear.h"

#include <QPainter>
#include <QTimerEvent>
#include <cmath>
#include <numbers>

#include "desktop/colours.h"
#include "desktop/widgets/measure.h"

namespace tarvo::desktop {

namespace {

constexpr int kTeeth = 9;
/// So many steps lead from one tooth to the next, where the picture is the same again.
constexpr int kSteps = 6;
constexpr int kStepTime = 80;

/// A gear of radius 1 around the origin.
QPainterPath GearShape() {
  QPolygonF outline;
  const double tooth = 2 * std::numbers::pi / kTeeth;
  const auto add = [&](double angle, double radius) {
    outline << QPointF(radius * std::sin(angle), -radius * std::cos(angle));
  };
  for (int i = 0; i < kTeeth; ++i) {
    const double middle = i * tooth;
    add(middle - tooth * 0.30, 0.74);
    add(middle - tooth * 0.17, 1.0);
    add(middle + tooth * 0.17, 1.0);
    add(middle + tooth * 0.30, 0.74);
  }
  QPainterPath shape;
  shape.addPolygon(outline);
  shape.closeSubpath();
  QPainterPath hole;
  hole.addEllipse(QPointF(0, 0), 0.32, 0.32);
  return shape.subtracted(hole);
}

}  // namespace

Gear::Gear(QWidget* parent) : QWidget(parent), shape_(GearShape()) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Gear::SetTurning(bool turning) {
  if (turning_ == turning) return;
  turning_ = turning;
  StartOrStop();
  update();
}

void Gear::StartOrStop() {
  if (turning_ && isVisible()) {
    timer_.start(kStepTime, this);
  } else {
    timer_.stop();
  }
}

QSize Gear::sizeHint() const {
  return {Em(*this, 1.5), Em(*this, 1.5)};
}

void Gear::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(width() / 2.0, height() / 2.0);
  const double radius = std::min(width(), height()) / 2.0 - 1;
  painter.scale(radius, radius);
  painter.rotate(360.0 / kTeeth * step_ / kSteps);
  painter.fillPath(shape_, turning_ ? palette().color(QPalette::Highlight) : LineTone(palette()));
}

void Gear::timerEvent(QTimerEvent* event) {
  if (event->timerId() != timer_.timerId()) return QWidget::timerEvent(event);
  step_ = (step_ + 1) % kSteps;
  update();
}

void Gear::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  StartOrStop();
}

void Gear::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  timer_.stop();
}

}  // namespace tarvo::desktop
