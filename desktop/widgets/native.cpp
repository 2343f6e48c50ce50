#include "desktop/widgets/native.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "desktop/widgets/measure.h"

namespace tarvo::desktop {

namespace {

bool IsEnter(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

}  // namespace

PushButton::PushButton(QWidget* parent, std::function<void()> onEnter)
    : QPushButton(parent), onEnter_(std::move(onEnter)) {
  // Enter belongs to the button that has the focus, in a dialog too.
  setAutoDefault(false);
}

void PushButton::keyPressEvent(QKeyEvent* event) {
  if (!IsEnter(*event)) return QPushButton::keyPressEvent(event);
  if (!event->isAutoRepeat()) onEnter_();
}

void PushButton::paintEvent(QPaintEvent* event) {
  if (!accent_ || !isEnabled()) return QPushButton::paintEvent(event);
  QStyleOptionButton option;
  initStyleOption(&option);
  option.palette.setColor(QPalette::Button, palette().color(QPalette::Highlight));
  option.palette.setColor(QPalette::ButtonText, palette().color(QPalette::HighlightedText));
  QStylePainter(this).drawControl(QStyle::CE_PushButton, option);
}

void CheckMark::SetRole(Role role) {
  if (role_ == role) return;
  role_ = role;
  update();
}

void CheckMark::paintEvent(QPaintEvent* event) {
  if (role_ != Role::kDark) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Mix(CardGround(palette()), ToneOf(role_, palette()), 0.2));
    const double corner = Em(*this, 0.25);
    painter.drawRoundedRect(QRectF(rect()), corner, corner);
  }
  QCheckBox::paintEvent(event);
}

OptionMark::OptionMark(QWidget* parent) : QRadioButton(parent) {
  // The view's groups decide what excludes what.
  setAutoExclusive(false);
}

ListField::ListField(QWidget* parent) : QComboBox(parent) {
  setFocusPolicy(Qt::StrongFocus);
}

QSize ListField::sizeHint() const {
  int widest = 0;
  for (int i = 0; i < count(); ++i) widest = std::max(widest, fontMetrics().horizontalAdvance(itemText(i)));
  QStyleOptionComboBox option;
  initStyleOption(&option);
  return style()->sizeFromContents(QStyle::CT_ComboBox, &option, {widest, fontMetrics().height()}, this);
}

void ListField::wheelEvent(QWheelEvent* event) {
  event->ignore();
}

TextField::TextField(QWidget* parent) : QLineEdit(parent) {
  const int side = Em(*this, 0.25);
  setTextMargins(side, 0, side, 0);
}

void TextField::keyPressEvent(QKeyEvent* event) {
  if (IsEnter(*event)) {
    if (!event->isAutoRepeat()) onKey(view::Key::kEnter);
  } else if (event->key() == Qt::Key_Escape) {
    onKey(view::Key::kEscape);
  } else {
    QLineEdit::keyPressEvent(event);
  }
}

void TextField::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  // Another window in front, or the field's own menu, does not take the focus from it within its window.
  const Qt::FocusReason reason = event->reason();
  if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason) onLeave();
}

}  // namespace tarvo::desktop
