#pragma once

#include <QFontMetrics>
#include <QWidget>
#include <cmath>

namespace tarvo::desktop {

/// So many times the height of a line of text: sizes follow the font, not the pixels.
inline int Em(const QWidget& widget, double count) {
  return static_cast<int>(std::lround(widget.fontMetrics().height() * count));
}

}  // namespace tarvo::desktop
