#pragma once

#include <QString>

class QFontMetrics;
class QPainter;
class QRect;

namespace tarvo::desktop {

/// True for a number as pages show it: sign, digits, a separator, a percent sign or blanks.
bool IsNumber(const QString& text);
/// Draws `text` so that every digit takes the same room, whatever the font does. `alignment` left or right.
void DrawTabular(QPainter& painter, const QRect& place, Qt::Alignment alignment, const QString& text);
int TabularWidth(const QFontMetrics& metrics, const QString& text);

}  // namespace tarvo::desktop
