#include "desktop/widgets/page_list.h"

#include <QFrame>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
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
    const QColor locked = Mix(CardGround(palette()), palette().color(QPalette::Active, QPalette::Highlight), 0.2);
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

namespace {

bool Usable(const PageLabel* label) {
  return !label->isHidden() && label->isEnabled();
}

}  // namespace

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
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

QSize PageList::sizeHint() const {
  // With the bar that comes when the list is longer than the window is high.
  const int widest = column_->sizeHint().width() + style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
  return {std::max(widest, Em(*this, 7.5)), column_->sizeHint().height()};
}

void PageList::Add(PageLabel* label) {
  label->installEventFilter(this);
  labels_.push_back(label);
  layout_->insertWidget(layout_->count() - 1, label);
  LabelsChanged();
}

void PageList::LabelsChanged() {
  updateGeometry();
  const PageLabel* stop = Stop();
  for (PageLabel* label : labels_) {
    label->setFocusPolicy(label == stop || label->hasFocus() ? Qt::StrongFocus : Qt::ClickFocus);
  }
}

PageLabel* PageList::Stop() const {
  const auto shown = std::find_if(labels_.begin(), labels_.end(),
                                  [](const PageLabel* label) { return Usable(label) && label->Selected(); });
  return shown == labels_.end() ? UsableFrom(0, 1) : *shown;
}

bool PageList::eventFilter(QObject* watched, QEvent* event) {
  // The scroll area watches its own parts with this filter too.
  const auto label = std::find(labels_.begin(), labels_.end(), watched);
  if (label == labels_.end()) return QScrollArea::eventFilter(watched, event);
  if (event->type() == QEvent::KeyPress) {
    if (Move(*label, static_cast<QKeyEvent*>(event)->key())) return true;
  }
  if (event->type() == QEvent::FocusIn) ensureWidgetVisible(*label, 0, 0);
  if (event->type() == QEvent::FocusOut) LabelsChanged();
  return QScrollArea::eventFilter(watched, event);
}

void PageList::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(viewport());
  painter.fillRect(viewport()->rect(), CardGround(palette()));
}

PageLabel* PageList::UsableFrom(int place, int direction) const {
  const auto size = static_cast<int>(labels_.size());
  for (; place >= 0 && place < size; place += direction) {
    PageLabel* label = labels_[static_cast<std::size_t>(place)];
    if (Usable(label)) return label;
  }
  return nullptr;
}

bool PageList::Move(const PageLabel* from, int key) {
  const auto place = static_cast<int>(std::find(labels_.begin(), labels_.end(), from) - labels_.begin());
  PageLabel* to = nullptr;
  switch (key) {
    case Qt::Key_Down:
      to = UsableFrom(place + 1, 1);
      break;
    case Qt::Key_Up:
      to = UsableFrom(place - 1, -1);
      break;
    case Qt::Key_Home:
      to = UsableFrom(0, 1);
      break;
    case Qt::Key_End:
      to = UsableFrom(static_cast<int>(labels_.size()) - 1, -1);
      break;
    default:
      return false;
  }
  if (to != nullptr)
    to->setFocus(key == Qt::Key_Up || key == Qt::Key_Home ? Qt::BacktabFocusReason : Qt::TabFocusReason);
  return true;
}

}  // namespace tarvo::desktop
