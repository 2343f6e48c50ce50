#include "desktop/widgets/value_box.h"

#include <QPainter>
#include <algorithm>

#include "desktop/style.h"
#include "desktop/widgets/measure.h"
#include "desktop/widgets/tabular.h"

namespace tarvo::desktop {

ValueBox::ValueBox(QWidget* parent) : Clickable(parent) {
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ValueBox::SetText(const QString& text) {
  if (text_ == text) return;
  text_ = text;
  // It grows for a long text and stays so: a page must not sway while its values move.
  const int width = TabularWidth(fontMetrics(), text);
  if (width > widest_) {
    widest_ = width;
    updateGeometry();
  }
  update();
}

QSize ValueBox::sizeHint() const {
  const int usual = TabularWidth(fontMetrics(), QStringLiteral("000000"));
  return {std::max(usual, widest_) + Em(*this, 1.6), FieldHeight(fontMetrics())};
}

void ValueBox::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QColor ground = palette().color(isEnabled() ? QPalette::Base : QPalette::Window);
  PaintField(painter, rect(), palette(), ground, Hovered(), hasFocus());
  painter.setPen(palette().color(QPalette::Text));
  const int side = Em(*this, 0.5);
  DrawTabular(painter, rect().adjusted(side, 0, -side, 0), IsNumber(text_) ? Qt::AlignRight : Qt::AlignLeft, text_);
}

}  // namespace tarvo::desktop
