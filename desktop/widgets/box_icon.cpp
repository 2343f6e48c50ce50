#include "desktop/widgets/box_icon.h"

#include <QPainter>
#include <QPainterPath>

#include "desktop/colours.h"
#include "desktop/widgets/measure.h"

namespace tarvo::desktop {

namespace {

struct Sign {
  Role role;
  QString name;
  QString letter;
};

Sign SignOf(view::Icon icon) {
  switch (icon) {
    case view::Icon::kCritical:
      return {Role::kFault, QStringLiteral("critical"), QStringLiteral("\u00d7")};
    case view::Icon::kQuestion:
      return {Role::kBar, QStringLiteral("question"), QStringLiteral("?")};
    case view::Icon::kExclamation:
      return {Role::kCaution, QStringLiteral("exclamation"), QStringLiteral("!")};
    case view::Icon::kInformation:
    case view::Icon::kNone:
      break;
  }
  return {Role::kBar, QStringLiteral("information"), QStringLiteral("i")};
}

}  // namespace

BoxIcon::BoxIcon(QWidget* parent, view::Icon icon) : QWidget(parent), icon_(icon) {
  setObjectName(QStringLiteral("icon"));
  setAccessibleName(SignOf(icon).name);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize BoxIcon::sizeHint() const {
  return {Em(*this, 2.2), Em(*this, 2.2)};
}

void BoxIcon::paintEvent(QPaintEvent* /*event*/) {
  const Sign sign = SignOf(icon_);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF place = QRectF(rect()).adjusted(1, 1, -1, -1);
  QPainterPath shape;
  QRectF letter = place;
  if (icon_ == view::Icon::kExclamation) {
    shape.moveTo(place.center().x(), place.top() + place.height() * 0.04);
    shape.lineTo(place.right(), place.bottom() - place.height() * 0.06);
    shape.lineTo(place.left(), place.bottom() - place.height() * 0.06);
    shape.closeSubpath();
    letter.setTop(place.top() + place.height() * 0.22);
  } else {
    shape.addEllipse(place);
  }
  const QColor tone = ToneOf(sign.role, palette());
  painter.setPen(QPen(tone, place.width() * 0.08, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(tone);
  painter.drawPath(shape.simplified());
  QFont font = painter.font();
  font.setBold(true);
  font.setPixelSize(static_cast<int>(place.height() * (icon_ == view::Icon::kCritical ? 0.85 : 0.6)));
  painter.setFont(font);
  painter.setPen(IsDark(palette()) ? palette().color(QPalette::Window) : QColor(Qt::white));
  painter.drawText(letter, Qt::AlignCenter, sign.letter);
}

}  // namespace tarvo::desktop
