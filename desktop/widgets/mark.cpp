#include "desktop/widgets/mark.h"

#include <QPainter>
#include <algorithm>

#include "desktop/widgets/measure.h"

namespace tarvo::desktop {

Mark::Mark(QWidget* parent, Size size) : Clickable(parent), size_(size) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Mark::SetRole(Role role) {
  if (role_ == role) return;
  role_ = role;
  update();
}

void Mark::SetCaption(const QString& caption) {
  if (caption_ == caption) return;
  caption_ = caption;
  updateGeometry();
  update();
}

int Mark::Diameter() const {
  return Em(*this, size_ == Size::kLarge ? 1.1 : 0.7);
}

int Mark::Margin() const {
  return Em(*this, 0.25);
}

QSize Mark::sizeHint() const {
  const int height = std::max(Diameter(), fontMetrics().height()) + 2 * Margin();
  int width = Diameter() + 2 * Margin();
  if (!caption_.isEmpty()) width += Em(*this, 0.35) + fontMetrics().horizontalAdvance(caption_) + Margin();
  return {width, height};
}

void Mark::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (Hovered()) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(Mix(CardGround(palette()), palette().color(QPalette::WindowText), 0.08));
    painter.drawRoundedRect(QRectF(rect()), Margin(), Margin());
  }
  const double diameter = Diameter();
  const QRectF place(Margin(), (height() - diameter) / 2.0, diameter, diameter);
  if (Lit()) {
    QColor tone = ToneOf(role_, palette());
    if (!isEnabled()) tone = Mix(CardGround(palette()), tone, 0.5);
    painter.setPen(QPen(tone.darker(125), 1));
    painter.setBrush(tone);
    painter.drawEllipse(place.adjusted(0.5, 0.5, -0.5, -0.5));
  } else {
    const double pen = std::max(1.0, diameter / 10);
    const bool quiet = role_ == Role::kQuiet && isEnabled();
    const QColor edge =
        quiet ? ToneOf(role_, palette()) : Mix(CardGround(palette()), palette().color(QPalette::WindowText), 0.55);
    painter.setPen(QPen(edge, pen));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(place.adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2));
  }
  if (!caption_.isEmpty()) {
    const int left = Margin() + Diameter() + Em(*this, 0.35);
    painter.setPen(Lit() ? palette().color(QPalette::WindowText) : QuietText(palette()));
    painter.drawText(rect().adjusted(left, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, caption_);
  }
  PaintFocus(painter, QRectF(rect()), Margin());
}

}  // namespace tarvo::desktop
