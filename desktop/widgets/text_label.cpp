#include "desktop/widgets/text_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "desktop/colours.h"
#include "desktop/widgets/measure.h"
#include "desktop/widgets/tabular.h"

namespace tarvo::desktop {

TextLabel::TextLabel(QWidget* parent, Look look) : QWidget(parent), look_(look) {
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  if (look == Look::kTitle) {
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    setFont(large);
  }
}

void TextLabel::SetText(const QString& text) {
  if (text_ == text) return;
  text_ = text;
  const QSize size = TextSize();
  if (givesWay_ && size != largest_) {
    largest_ = size;
    updateGeometry();
  } else if (size.width() > largest_.width() || size.height() > largest_.height()) {
    largest_ = largest_.expandedTo(size);
    updateGeometry();
  }
  update();
}

void TextLabel::GiveWay(Qt::TextElideMode where) {
  givesWay_ = true;
  cut_ = where;
  updateGeometry();
}

QSize TextLabel::TextSize() const {
  if (IsNumber(text_)) return {TabularWidth(fontMetrics(), text_), fontMetrics().height()};
  // A pixel more than measured: some fonts round the other way when they draw.
  return fontMetrics().size(0, text_) + QSize(1, 0);
}

QSize TextLabel::sizeHint() const {
  return largest_.expandedTo(QSize(0, fontMetrics().height()));
}

QSize TextLabel::minimumSizeHint() const {
  return givesWay_ ? QSize(Em(*this, 3), fontMetrics().height()) : sizeHint();
}

void TextLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(look_ == Look::kQuiet ? QuietText(palette()) : palette().color(QPalette::WindowText));
  if (IsNumber(text_)) {
    DrawTabular(painter, rect(), alignNumbers_ ? Qt::AlignRight : Qt::AlignLeft, text_);
    return;
  }
  const QString shown = givesWay_ ? fontMetrics().elidedText(text_, cut_, width()) : text_;
  painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, shown);
}

void TextLabel::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange) {
    largest_ = TextSize();
    updateGeometry();
  }
  QWidget::changeEvent(event);
}

bool TextLabel::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && givesWay_ && TextSize().width() > width()) {
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text_, this);
    return true;
  }
  return QWidget::event(event);
}

}  // namespace tarvo::desktop
