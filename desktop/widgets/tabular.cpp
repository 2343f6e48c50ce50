#include "desktop/widgets/tabular.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

namespace tarvo::desktop {

namespace {

int DigitWidth(const QFontMetrics& metrics) {
  int widest = 0;
  for (char digit = '0'; digit <= '9'; ++digit) {
    widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
  }
  return widest;
}

}  // namespace

bool IsNumber(const QString& text) {
  bool digits = false;
  for (const QChar character : text) {
    if (character.isDigit()) {
      digits = true;
    } else if (!QStringLiteral("+-., %").contains(character)) {
      return false;
    }
  }
  return digits;
}

int TabularWidth(const QFontMetrics& metrics, const QString& text) {
  const int digit = DigitWidth(metrics);
  int width = 0;
  for (const QChar character : text) width += character.isDigit() ? digit : metrics.horizontalAdvance(character);
  return width;
}

void DrawTabular(QPainter& painter, const QRect& place, Qt::Alignment alignment, const QString& text) {
  const QFontMetrics metrics = painter.fontMetrics();
  const int digit = DigitWidth(metrics);
  int x = place.left();
  if ((alignment & Qt::AlignRight) != 0) x = place.right() + 1 - TabularWidth(metrics, text);
  const int baseline = place.top() + (place.height() + metrics.ascent() - metrics.descent()) / 2;
  for (const QChar character : text) {
    const int own = metrics.horizontalAdvance(character);
    const int room = character.isDigit() ? digit : own;
    painter.drawText(x + (room - own) / 2, baseline, QString(character));
    x += room;
  }
}

}  // namespace tarvo::desktop
