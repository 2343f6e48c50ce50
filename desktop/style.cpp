#include "desktop/style.h"

#include <QAbstractButton>
#include <QPainter>
#include <QPainterPath>
#include <QStyleFactory>
#include <QStyleOption>
#include <algorithm>

#include "desktop/colours.h"

namespace tarvo::desktop {

namespace {

double Radius(const QFontMetrics& metrics) {
  return metrics.height() * 0.28;
}

bool Has(const QStyleOption& option, QStyle::StateFlag flag) {
  return (option.state & flag) != 0;
}

bool Hovered(const QStyleOption& option) {
  return Has(option, QStyle::State_Enabled) && Has(option, QStyle::State_MouseOver);
}

void PaintButton(const QStyleOption& option, QPainter& painter) {
  QColor ground = option.palette.color(QPalette::Button);
  const QColor text = option.palette.color(QPalette::ButtonText);
  if (Has(option, QStyle::State_Sunken)) {
    ground = Mix(ground, text, 0.16);
  } else if (Hovered(option)) {
    ground = Mix(ground, text, 0.07);
  }
  PaintField(painter, option.rect, option.palette, ground, false, Has(option, QStyle::State_HasFocus));
}

/// The tone of a check mark or an option's dot, and the edge around it.
struct MarkTones {
  QColor ground;
  QColor edge;
  QColor sign;
};

MarkTones TonesOf(const QStyleOption& option) {
  const QPalette& palette = option.palette;
  const QColor text = palette.color(QPalette::WindowText);
  if (!Has(option, QStyle::State_Enabled)) {
    const QColor ground = Mix(CardGround(palette), text, 0.06);
    return {ground, Mix(palette.color(QPalette::Window), text, 0.5), text};
  }
  if (Has(option, QStyle::State_On)) {
    const QColor accent = palette.color(QPalette::Highlight);
    return {Hovered(option) ? Mix(accent, text, 0.15) : accent, accent, palette.color(QPalette::HighlightedText)};
  }
  const QColor edge = Mix(palette.color(QPalette::Window), text, 0.45);
  return {palette.color(QPalette::Base), Hovered(option) ? palette.color(QPalette::Highlight) : edge, text};
}

QRectF MarkPlace(const QStyleOption& option) {
  const int side = std::min(option.rect.width(), option.rect.height());
  const int above = (option.rect.height() - side) / 2;
  return {option.rect.x() + 0.5, option.rect.y() + above + 0.5, side - 1.0, side - 1.0};
}

void PaintCheckBox(const QStyleOption& option, QPainter& painter) {
  const MarkTones tones = TonesOf(option);
  const QRectF place = MarkPlace(option);
  painter.setPen(QPen(tones.edge, 1));
  painter.setBrush(tones.ground);
  painter.drawRoundedRect(place, place.width() * 0.2, place.width() * 0.2);
  if (!Has(option, QStyle::State_On)) return;
  const auto at = [&](double x, double y) {
    return QPointF(place.x() + place.width() * x, place.y() + place.height() * y);
  };
  painter.setPen(QPen(tones.sign, place.width() * 0.13, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPolyline(QPolygonF{at(0.24, 0.52), at(0.43, 0.70), at(0.76, 0.30)});
}

void PaintOption(const QStyleOption& option, QPainter& painter) {
  const MarkTones tones = TonesOf(option);
  const QRectF place = MarkPlace(option);
  painter.setPen(QPen(tones.edge, 1));
  painter.setBrush(tones.ground);
  painter.drawEllipse(place);
  if (!Has(option, QStyle::State_On)) return;
  const double inset = place.width() * 0.3;
  painter.setPen(Qt::NoPen);
  painter.setBrush(tones.sign);
  painter.drawEllipse(place.adjusted(inset, inset, -inset, -inset));
}

/// Around the caption of a box or an option: their marks have no room for a ring.
void PaintFocus(const QStyleOption& option, QPainter& painter) {
  const double radius = Radius(option.fontMetrics);
  painter.setPen(QPen(option.palette.color(QPalette::Highlight), 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(option.rect).adjusted(1, 1, -1, -1), radius, radius);
}

void PaintArrow(const QRect& place, const QFontMetrics& metrics, const QColor& tone, QPainter& painter) {
  const double half = metrics.height() * 0.25;
  const QPointF middle = QRectF(place).center();
  painter.setPen(QPen(tone, metrics.height() * 0.1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawPolyline(
      QPolygonF{middle + QPointF(-half, -half / 2), middle + QPointF(0, half / 2), middle + QPointF(half, -half / 2)});
}

}  // namespace

void PaintField(QPainter& painter, const QRect& place, const QPalette& palette, const QColor& ground, bool hovered,
                bool focused) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  const double radius = Radius(painter.fontMetrics());
  const QColor accent = palette.color(QPalette::Highlight);
  QColor edge = LineTone(palette);
  if (hovered) edge = Mix(edge, accent, 0.7);
  // A field on the accent itself shows its focus in the text's colour.
  if (focused) edge = ground == accent ? palette.color(QPalette::WindowText) : accent;
  const double pen = focused ? 2 : 1;
  painter.setPen(QPen(edge, pen));
  painter.setBrush(ground);
  painter.drawRoundedRect(QRectF(place).adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2), radius, radius);
  painter.restore();
}

int FieldHeight(const QFontMetrics& metrics) {
  return static_cast<int>(metrics.height() * 1.75);
}

Style::Style() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void Style::polish(QPalette& palette) {
  QProxyStyle::polish(palette);
  // Many desktops make disabled texts so pale that nobody reads them.
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    const QColor text = palette.color(QPalette::Active, role);
    palette.setColor(QPalette::Disabled, role, Mix(palette.color(QPalette::Active, QPalette::Window), text, 0.55));
  }
}

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const {
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  switch (element) {
    case PE_PanelButtonCommand:
      PaintButton(*option, *painter);
      break;
    case PE_IndicatorCheckBox:
      PaintCheckBox(*option, *painter);
      break;
    case PE_IndicatorRadioButton:
      PaintOption(*option, *painter);
      break;
    case PE_FrameDefaultButton:
      break;
    case PE_FrameFocusRect:
      // Lists and menus show their own.
      if (qobject_cast<const QAbstractButton*>(widget) != nullptr) {
        PaintFocus(*option, *painter);
      } else {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
      }
      break;
    case PE_PanelLineEdit:
      if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
          frame != nullptr && frame->lineWidth > 0) {
        const bool enabled = Has(*option, State_Enabled);
        PaintField(*painter, option->rect, option->palette,
                   option->palette.color(enabled ? QPalette::Base : QPalette::Window), Hovered(*option),
                   enabled && Has(*option, State_HasFocus));
      } else {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
      }
      break;
    default:
      painter->restore();
      QProxyStyle::drawPrimitive(element, option, painter, widget);
      return;
  }
  painter->restore();
}

void Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                               const QWidget* widget) const {
  const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
  if (control != CC_ComboBox || combo == nullptr || combo->editable) {
    return QProxyStyle::drawComplexControl(control, option, painter, widget);
  }
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  const bool enabled = Has(*option, State_Enabled);
  PaintField(*painter, option->rect, option->palette,
             option->palette.color(enabled ? QPalette::Base : QPalette::Window), Hovered(*option),
             enabled && Has(*option, State_HasFocus));
  const QRect arrow = subControlRect(CC_ComboBox, option, SC_ComboBoxArrow, widget);
  PaintArrow(arrow, option->fontMetrics, QuietText(option->palette), *painter);
  painter->restore();
}

QRect Style::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                            const QWidget* widget) const {
  if (control == CC_ComboBox && (part == SC_ComboBoxEditField || part == SC_ComboBoxArrow)) {
    const int em = option->fontMetrics.height();
    const int arrow = em * 3 / 2;
    QRect place = option->rect;
    if (part == SC_ComboBoxArrow) {
      place.setLeft(place.right() + 1 - arrow);
    } else {
      place.adjust(em / 2, 2, -arrow, -2);
    }
    return visualRect(option->direction, option->rect, place);
  }
  return QProxyStyle::subControlRect(control, option, part, widget);
}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                              const QWidget* widget) const {
  QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
  const QFontMetrics metrics = option != nullptr ? option->fontMetrics : QFontMetrics(QFont());
  const int em = metrics.height();
  switch (type) {
    case CT_PushButton:
      return {std::max(contents.width() + 2 * em, 5 * em), std::max(size.height(), 2 * em)};
    case CT_ComboBox:
      return {std::max(size.width(), contents.width() + 5 * em / 2), std::max(size.height(), FieldHeight(metrics))};
    case CT_LineEdit:
      return {size.width(), std::max(size.height(), FieldHeight(metrics))};
    case CT_CheckBox:
    case CT_RadioButton:
      // With room for the ring of the focus around the caption.
      return {size.width() + em / 4, std::max(size.height(), em + em / 2)};
    case CT_MenuBarItem:
      return {size.width(), size.height() + em / 3};
    default:
      return size;
  }
}

int Style::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget, QStyleHintReturn* more) const {
  // On a dark ground the shadow of a disabled text reads as a second text.
  if (hint == SH_EtchDisabledText) return 0;
  return QProxyStyle::styleHint(hint, option, widget, more);
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  const int em = option != nullptr ? option->fontMetrics.height() : QFontMetrics(QFont()).height();
  switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
      // Odd, so that the dot of an option sits in its middle.
      return static_cast<int>(em * 0.95) | 1;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
      return em / 2;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
      return 0;
    default:
      return QProxyStyle::pixelMetric(metric, option, widget);
  }
}

}  // namespace tarvo::desktop
