#include "desktop/widgets/meter_bar.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "desktop/widgets/measure.h"

namespace tarvo::desktop {

MeterBar::MeterBar(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void MeterBar::SetShare(double share) {
  share = std::clamp(share, 0.0, 1.0);
  if (share == share_) return;
  share_ = share;
  update();
}

void MeterBar::SetRole(Role role) {
  if (role_ == role) return;
  role_ = role;
  update();
}

QSize MeterBar::sizeHint() const {
  return {Em(*this, 14), Em(*this, 1)};
}

QSize MeterBar::minimumSizeHint() const {
  return {Em(*this, 2.5), Em(*this, 1)};
}

void MeterBar::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  const double thickness = Em(*this, 0.8);
  const QRectF groove(0, (height() - thickness) / 2, width(), thickness);
  const double radius = thickness / 4;
  QPainterPath shape;
  shape.addRoundedRect(groove, radius, radius);
  painter.fillPath(shape, Mix(CardGround(palette()), palette().color(QPalette::Active, QPalette::WindowText), 0.1));
  if (share_ <= 0) return;

  QColor tone = ToneOf(role_, palette());
  if (!isEnabled()) tone = Mix(CardGround(palette()), tone, 0.5);
  // Cut from the groove's own shape, so that a sliver at the left keeps its round corners.
  painter.setClipRect(QRectF(groove.left(), groove.top(), groove.width() * share_, groove.height()));
  painter.fillPath(shape, tone);
}

}  // namespace tarvo::desktop
