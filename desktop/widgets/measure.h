#pragma once

#include <QFontMetrics>
#include <QWidget>

namespace tarvo::desktop {

/// So many times the height of a line of text: sizes follow the font, not the pixels.
inline int Em(const QWidget& widget, double count) {
  return static_cast<int>(widget.fontMetrics().height() * count + 0.5);
}

}  // namespace tarvo::desktop
