#include "desktop/widgets/page_list.h"

#include <QFrame>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/colours.h"
#include "desktop/widgets/measure.h"

namespace tarvo::desktop {

PageLabel::PageLabel(QWidget* parent) : Clickable(parent) {
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void PageLabel::SetText(const QString& text) {
  if (text_ == text) return;
  text_ = text;
  updateGeometry();
  update();
}

void PageLabel::SetSelected(bool selected) {
  if (selected_ == selected) return;
  selected_ = selected;
  update();
}

QSize PageLabel::sizeHint() const {
  return {fontMetrics().horizontalAdvance(text_) + Em(*this, 2), Em(*this, 1.9)};
}

void PageLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double radius = Em(*this, 0.35);
  QColor text = palette().color(QPalette::WindowText);
  painter.setPen(Qt::NoPen);
  if (selected_) {
    // The page shown is told also while the list is locked, but quietly.
    const QColor locked = Mix(CardGround(palette()), palette().color(QPalette::Active, QPalette::WindowText), 0.2);
    painter.setBrush(isEnabled() ? palette().color(QPalette::Highlight) : locked);
    painter.drawRoundedRect(QRectF(rect()), radius, radius);
    text = isEnabled() ? palette().color(QPalette::HighlightedText)
                       : palette().color(QPalette::Active, QPalette::WindowText);
  } else if (Hovered()) {
    painter.setBrush(Mix(CardGround(palette()), palette().color(QPalette::WindowText), 0.08));
    painter.drawRoundedRect(QRectF(rect()), radius, radius);
  }
  if (hasFocus()) {
    // On the highlight itself the ring lies inside, in the text's colour.
    painter.setPen(QPen(selected_ ? text : palette().color(QPalette::Highlight), selected_ ? 1 : 2));
    painter.setBrush(Qt::NoBrush);
    const double inset = selected_ ? 2.5 : 1;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius - 1, radius - 1);
  }
  painter.setPen(text);
  painter.drawText(rect().adjusted(Em(*this, 1), 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text_);
}

PageList::PageList(QWidget* parent) : QScrollArea(parent), column_(new QWidget), layout_(new QVBoxLayout(column_)) {
  const int side = Em(*this, 0.5);
  layout_->setContentsMargins(side, side, side, side);
  layout_->setSpacing(Em(*this, 0.1));
  layout_->addStretch();
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  setWidget(column_);
  column_->setAutoFillBackground(false);
  viewport()->setAutoFillBackground(false);
  setFixedWidth(Em(*this, 11));
}

void PageList::Add(PageLabel* label) {
  label->installEventFilter(this);
  labels_.push_back(label);
  layout_->insertWidget(layout_->count() - 1, label);
  LabelsChanged();
}

void PageList::LabelsChanged() {
  // Tab stops at one label: that of the page shown, else the first that can be clicked.
  const auto usable = [](const PageLabel* label) { return !label->isHidden() && label->isEnabled(); };
  auto stop = std::find_if(labels_.begin(), labels_.end(),
                           [&](PageLabel* label) { return usable(label) && label->Selected(); });
  if (stop == labels_.end()) stop = std::find_if(labels_.begin(), labels_.end(), usable);
  for (PageLabel* label : labels_) {
    const bool stops = stop != labels_.end() && label == *stop;
    label->setFocusPolicy(stops || label->hasFocus() ? Qt::StrongFocus : Qt::ClickFocus);
  }
}

bool PageList::eventFilter(QObject* watched, QEvent* event) {
  // The scroll area watches its own parts with this filter too.
  const auto label = std::find(labels_.begin(), labels_.end(), watched);
  if (label == labels_.end()) return QScrollArea::eventFilter(watched, event);
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Down || key == Qt::Key_Up) {
      Move(*label, key == Qt::Key_Down ? 1 : -1);
      return true;
    }
  }
  if (event->type() == QEvent::FocusIn) ensureWidgetVisible(*label, 0, 0);
  if (event->type() == QEvent::FocusOut) LabelsChanged();
  return QScrollArea::eventFilter(watched, event);
}

void PageList::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(viewport());
  painter.fillRect(viewport()->rect(), CardGround(palette()));
}

void PageList::Move(const PageLabel* from, int direction) {
  const auto size = static_cast<int>(labels_.size());
  auto place = static_cast<int>(std::find(labels_.begin(), labels_.end(), from) - labels_.begin()) + direction;
  for (; place >= 0 && place < size; place += direction) {
    PageLabel* label = labels_[static_cast<std::size_t>(place)];
    if (label->isHidden() || !label->isEnabled()) continue;
    label->setFocus(direction > 0 ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return;
  }
}

}  // namespace tarvo::desktop
