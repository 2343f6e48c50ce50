#include "desktop/widgets/gear.h"

#include <QPainter>
#include <QSvgRenderer>
#include <QTimerEvent>
#include <algorithm>

#include "desktop/colours.h"
#include "desktop/widgets/measure.h"

namespace tarvo::desktop {

namespace {

constexpr int kTeeth = 9;
constexpr int kStepTime = 80;

}  // namespace

Gear::Gear(QWidget* parent) : QWidget(parent) {
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

void Gear::Rewind() {
  step_ = 0;
  update();
}

void Gear::DrawSteps() {
  const QColor tone = turning_ ? palette().color(QPalette::Highlight) : LineTone(palette());
  const QSize wanted = size() * devicePixelRatio();
  if (tone == tone_ && steps_.front().size() == wanted) return;
  tone_ = tone;
  QSvgRenderer drawing(QStringLiteral(":/gear.svg"));
  for (int step = 0; step < kSteps; ++step) {
    QPixmap picture(wanted);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(wanted.width() / 2.0, wanted.height() / 2.0);
    painter.rotate(360.0 / kTeeth * step / kSteps);
    const double side = std::min(wanted.width(), wanted.height());
    drawing.render(&painter, QRectF(-side / 2, -side / 2, side, side));
    painter.resetTransform();
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(picture.rect(), tone);
    painter.end();
    steps_[static_cast<std::size_t>(step)] = picture;
  }
}

void Gear::paintEvent(QPaintEvent* /*event*/) {
  DrawSteps();
  QPainter(this).drawPixmap(rect(), steps_[static_cast<std::size_t>(step_)]);
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
